/* Rows of test data from text files under tests/data, for both builds. A row is a line; its columns are separated
   by '|'. Blanks around a column, empty lines and lines that begin with '#' are left out; {TEXT*NUMBER} is that text so
   often. */
#ifndef TQUI_TESTS_DATA_FILE_H
#define TQUI_TESTS_DATA_FILE_H

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
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

/* The text with each {TEXT*NUMBER} as that text so often. */
inline std::string Repeated(std::string text)
{
    for (size_t nAt = 0; (nAt = text.find('{', nAt)) != text.npos; nAt++) {
        const size_t nStar = text.find('*', nAt), nEnd = text.find('}', nAt);
        if (nStar < nEnd && nEnd != text.npos) {
            std::string all;
            for (long long n = ToNumber(text.substr(nStar + 1, nEnd - nStar - 1)); n > 0; n--) {
                all += text.substr(nAt + 1, nStar - nAt - 1);
            }
            text.replace(nAt, nEnd + 1 - nAt, all);
        }
    }
    return text;
}

/* The rows of tests/data/NAME. The running test fails when the file is missing or has no rows. */
inline std::vector<DataRow> ReadRows(const char* cName)
{
    std::vector<DataRow> rows;
    std::ifstream file(std::string(TQUI_SOURCE_DIR "/tests/data/") + cName);
    for (std::string line; std::getline(file, line);) {
        DataRow row = SplitTrimmed(line[0] == '#' ? line : Repeated(line), '|');
        if ((row.size() > 1 || !row[0].empty()) && line[0] != '#') {
            rows.push_back(row);
        }
    }
    if (rows.empty()) {
        ADD_FAILURE() << "tests/data/" << cName << " is missing or empty";
    }
    return rows;
}

/* The text with \r and \n as what they stand for. */
inline std::string Unescaped(std::string text)
{
    for (size_t nAt = 0; (nAt = text.find('\\', nAt)) != text.npos; nAt++) {
        const char cCode = nAt + 1 < text.size() ? text[nAt + 1] : ' ';
        if (cCode == 'r' || cCode == 'n') {
            text.replace(nAt, 2, 1, cCode == 'r' ? '\r' : '\n');
        }
    }
    return text;
}

/* What blanks separate, as words and as numbers. */
inline std::vector<std::string> Words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

template <class Number = long long> std::vector<Number> ToNumbers(const std::string& text)
{
    std::vector<Number> numbers;
    for (const std::string& word : Words(text)) {
        numbers.push_back(static_cast<Number>(ToNumber(word)));
    }
    return numbers;
}

/* Groups of hexadecimal digits, "82A0*40" for one that is repeated, as numbers of nDigits each. */
template <class Text> Text FromHex(const std::string& groups, size_t nDigits = 2)
{
    Text text;
    for (const std::string& group : Words(groups)) {
        const size_t nStar = group.find('*');
        for (int n = nStar == group.npos ? 1 : std::stoi(group.substr(nStar + 1)); n > 0; n--) {
            for (size_t i = 0; i < std::min(nStar, group.size()); i += nDigits) {
                text.push_back(
                    static_cast<typename Text::value_type>(std::stoi(group.substr(i, nDigits), nullptr, 16)));
            }
        }
    }
    return text;
}

#endif
