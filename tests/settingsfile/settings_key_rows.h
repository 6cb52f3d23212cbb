/* The keys of section "PrinterSettings": what the tests of reading and writing hold the library against. */
#ifndef TQUI_TESTS_SETTINGS_KEY_ROWS_H
#define TQUI_TESTS_SETTINGS_KEY_ROWS_H

#include "support/data_file.h"

struct KeyRow {
    std::string key;
    int nAt;                   /* offset in the record */
    char cType;                /* b u8, u u16, s i16, l 32 bits, x 32 bits in hexadecimal, t text */
    int nCount;                /* indexed keys, or characters of a text */
    int nStride;               /* bytes from one to the next */
    std::string read, written; /* kinds, as digits */

    int Width() const { return cType == 'b' ? 1 : cType == 'l' || cType == 'x' ? 4 : 2; }
    int Numbers() const { return cType == 't' ? 1 : nCount; }
    int At(int nIndex) const { return nAt + nIndex * nStride; }
    /* Text and file watermarks share bytes, and each has keys of its own. */
    bool IsOfOtherWatermark(bool bText) const
    {
        return key == "WMFileName" ? bText : nAt >= 426 && nAt < 636 && !bText;
    }
};

inline const std::vector<KeyRow>& KeyRows()
{
    static const std::vector<KeyRow> keys = [] {
        std::vector<KeyRow> rows;
        for (DataRow row : ReadRows("settings_keys.txt")) {
            row.resize(6);
            KeyRow key = {row[0], static_cast<int>(ToNumber(row[1])), row[2][0], 1, 0, row[4], row[5]};
            std::sscanf(row[3].c_str(), "%d by %d", &key.nCount, &key.nStride);
            key.nStride = key.nStride ? key.nStride : key.Width();
            if (key.read.empty()) {
                key.read = key.written = "01234";
            }
            rows.push_back(key);
        }
        return rows;
    }();
    return keys;
}

#endif
