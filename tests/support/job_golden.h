/* The goldens of job commands, tests/golden/job: what a sample's head, sheet and tail are, byte by byte.

     # comment                 set FIELD=VALUE       change of the default record, see tq record --set
     [head]  [sheet]  [tail]   [sheet, tail]         where the lines below belong
     "text"                    these bytes, with \0 \r \n \\ \" \xNN
     size 1040                 zeros, into which the lines below put something
     @236 FB FF   @0 "text"    bytes at an offset
     @996 job                  the job's number, a u32 */
#ifndef TQUI_TESTS_JOB_GOLDEN_H
#define TQUI_TESTS_JOB_GOLDEN_H

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

struct JobGolden {
    std::string stem;              /* "T410A-busy" */
    std::string section;           /* "T410A" */
    std::vector<std::string> sets; /* "field=value" */
    std::map<std::string, std::string> parts;
};

inline std::string UnescapeGolden(const std::string& quoted)
{
    std::string bytes;
    for (size_t i = 1; i + 1 < quoted.size(); i++) {
        char c = quoted[i];
        if (c == '\\') {
            c = quoted[++i];
            if (c == 'x') {
                c = static_cast<char>(std::stoi(quoted.substr(i + 1, 2), nullptr, 16));
                i += 2;
            } else {
                c = c == '0' ? '\0' : c == 'r' ? '\r' : c == 'n' ? '\n' : c;
            }
        }
        bytes += c;
    }
    return bytes;
}

inline std::string GoldenBytes(const std::string& text, unsigned long ulJobId)
{
    if (text.at(0) == '"') {
        return UnescapeGolden(text);
    }
    std::string bytes;
    if (text == "job") {
        for (int i = 0; i < 4; i++) {
            bytes += static_cast<char>(ulJobId >> 8 * i);
        }
        return bytes;
    }
    std::istringstream numbers(text);
    for (std::string number; numbers >> number;) {
        bytes += static_cast<char>(std::stoi(number, nullptr, 16));
    }
    return bytes;
}

inline JobGolden ReadJobGolden(const std::filesystem::path& path, unsigned long ulJobId)
{
    JobGolden golden;
    golden.stem = path.stem().string();
    golden.section = golden.stem.substr(0, golden.stem.find('-'));
    std::vector<std::string> parts;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (line[0] == '[') {
            parts.clear();
            std::string names = line.substr(1, line.size() - 2);
            for (size_t nAt = 0; nAt < names.size(); nAt += 2) {
                size_t nEnd = std::min(names.find(", ", nAt), names.size());
                parts.push_back(names.substr(nAt, nEnd - nAt));
                golden.parts[parts.back()];
                nAt = nEnd;
            }
            continue;
        }
        if (line.rfind("set ", 0) == 0) {
            golden.sets.push_back(line.substr(4));
            continue;
        }
        for (const std::string& part : parts) {
            std::string& bytes = golden.parts[part];
            if (line.rfind("size ", 0) == 0) {
                bytes.resize(std::stoul(line.substr(5)));
            } else if (line[0] == '@') {
                size_t nUsed;
                size_t nAt = std::stoul(line.substr(1), &nUsed);
                std::string piece = GoldenBytes(line.substr(nUsed + 2), ulJobId);
                bytes.replace(nAt, piece.size(), piece);
            } else {
                bytes += GoldenBytes(line, ulJobId);
            }
        }
        if (parts.empty()) {
            throw std::runtime_error(golden.stem + ": a line that belongs nowhere: " + line);
        }
    }
    if (golden.parts.size() != 3) {
        throw std::runtime_error(path.string() + ": head, sheet and tail are wanted");
    }
    return golden;
}

#endif
