/* Rows of test data from text files under tests/data, for both builds. A row is a line; its columns are separated
   by '|'. Blanks around a column, empty lines and lines that begin with '#' are left out. */
#ifndef TQUI_TESTS_DATA_FILE_H
#define TQUI_TESTS_DATA_FILE_H

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "places.h"

using DataRow = std::vector<std::string>;

inline std::vector<std::string> SplitTrimmed(const std::string& text, char cSeparator)
{
    std::vector<std::string> pieces;
    size_t nFrom = 0;
    for (size_t nAt = 0; nAt <= text.size(); nAt++) {
        if (nAt == text.size() || text[nAt] == cSeparator) {
            const std::string piece = text.substr(nFrom, nAt - nFrom);
            const size_t nBegin = piece.find_first_not_of(" \t\r");
            pieces.push_back(nBegin == std::string::npos
                                 ? std::string()
                                 : piece.substr(nBegin, piece.find_last_not_of(" \t\r") + 1 - nBegin));
            nFrom = nAt + 1;
        }
    }
    return pieces;
}

/* The rows of tests/data/NAME. The running test fails when the file is missing or has no rows. */
inline std::vector<DataRow> ReadRows(const char* cName)
{
    std::vector<DataRow> rows;
    std::ifstream file(std::string(TQUI_SOURCE_DIR "/tests/data/") + cName);
    for (std::string line; std::getline(file, line);) {
        DataRow row = SplitTrimmed(line, '|');
        if ((row.size() > 1 || !row[0].empty()) && line[0] != '#') {
            rows.push_back(row);
        }
    }
    if (rows.empty()) {
        ADD_FAILURE() << "tests/data/" << cName << " is missing or empty";
    }
    return rows;
}

/* A decimal or 0x number that is the whole text; else the running test fails. */
inline long long ToNumber(const std::string& text)
{
    char* pEnd = nullptr;
    const long long llNumber = std::strtoll(text.c_str(), &pEnd, 0);
    if (text.empty() || *pEnd) {
        ADD_FAILURE() << "not a number in a data file: '" << text << "'";
    }
    return llNumber;
}

/* Numbers separated by blanks. */
template <class Number = long long> std::vector<Number> ToNumbers(const std::string& text)
{
    std::vector<Number> numbers;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        numbers.push_back(static_cast<Number>(ToNumber(word)));
    }
    return numbers;
}

#endif
