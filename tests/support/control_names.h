/* Numbers of the dialogs' controls by their names, as the resource sources have them, for scripts in text files. */
#ifndef TQUI_TESTS_CONTROL_NAMES_H
#define TQUI_TESTS_CONTROL_NAMES_H

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "places.h"

/* Names without IDC_. */
inline const std::map<std::string, int>& ControlNumbers()
{
    static const std::map<std::string, int> numbers = [] {
        std::map<std::string, int> found;
        std::ifstream header(TQUI_SOURCE_DIR "/src/description/control_ids.h");
        for (std::string line; std::getline(header, line);) {
            std::istringstream words(line);
            std::string define, name;
            int nNumber;
            if (words >> define >> name >> nNumber && define == "#define" && name.starts_with("IDC_")) {
                found[name.substr(4)] = nNumber;
            }
        }
        return found;
    }();
    return numbers;
}

/* 0 for a name that no control has. */
inline int ControlNumber(const std::string& name)
{
    const auto found = ControlNumbers().find(name);
    return found == ControlNumbers().end() ? 0 : found->second;
}

#endif
