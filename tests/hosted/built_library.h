/* The language libraries that the build made, for tests of what is in them. */
#ifndef TQUI_TEST_BUILT_LIBRARY_H
#define TQUI_TEST_BUILT_LIBRARY_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "hosted/pe_resources.h"
#include "hosted/standin.h"
#include "places.h"
#include "tools/tq/sample_printer.h"

/* TXT.DLL or ENUS.DLL. */
inline Bytes BuiltLibrary(const char* cName)
{
    const char* cFolder = std::getenv("TQUI_BUILT");
    return ReadDiskFile(std::filesystem::path(cFolder ? cFolder : TQUI_SAMPLES) / cName);
}

inline std::u16string TextAt(std::span<const u8> file, const PeText& text)
{
    std::u16string wcText(text.cch, u'\0');
    for (size_t n = 0; n < text.cch; n++) {
        wcText[n] = static_cast<char16_t>(file[text.nOffset + 2 * n] | file[text.nOffset + 2 * n + 1] << 8);
    }
    return wcText;
}

/* Numbers by the names that the headers of ids give them. */
inline std::map<std::string, long> NamedIds()
{
    std::map<std::string, long> ids;
    for (const char* cHeader : {"control_ids.h", "string_ids.h"}) {
        std::ifstream file(std::string(TQUI_SOURCE_DIR "/src/description/") + cHeader);
        for (std::string word; file >> word;) {
            if (word == "#define" && file >> word && file.peek() != '\n') {
                file >> ids[word];
            }
        }
    }
    return ids;
}

#endif
