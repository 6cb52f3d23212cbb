/* Builds a description file byte by byte, so that a test can say exactly what is in it and put anything wrong
   anywhere. The layout: header, body, string base table, string offsets, string bytes, font offsets, command
   offsets, command bytes, font bytes, bitmap offsets, bitmap bytes, colour data. */
#ifndef TQUI_TESTS_DESCRIPTION_BUILDER_H
#define TQUI_TESTS_DESCRIPTION_BUILDER_H

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "description/xpi_load.h"

using Bytes = std::vector<u8>;

template <class Number> void Poke(Bytes* pBytes, size_t nAt, Number number)
{
    if (pBytes->size() < nAt + sizeof number) {
        pBytes->resize(nAt + sizeof number);
    }
    std::memcpy(pBytes->data() + nAt, &number, sizeof number);
}

template <class Number> Number Peek(const Bytes& bytes, size_t nAt)
{
    Number number = 0;
    if (nAt + sizeof number <= bytes.size()) {
        std::memcpy(&number, bytes.data() + nAt, sizeof number);
    }
    return number;
}

struct DescriptionBuilder {
    Bytes body = Bytes(sizeof(XpiModel));
    std::map<u16, std::vector<std::string>>
        strings;                         /* by primary language; id 1 first; missing languages: 9 */
    std::vector<Bytes> commands = {{0}}; /* id 0 first; as they stand, the NUL included */
    std::vector<Bytes> fonts;
    std::vector<Bytes> bitmaps;
    Bytes colorData;
    u16 nLanguages = 64; /* rows of the string base table */

    /* A field of the body. */
    template <class Number> DescriptionBuilder& Set(size_t nAt, Number number)
    {
        Poke(&body, nAt, number);
        return *this;
    }

    /* Appends a table behind the body and lets the slot lead to it. Result: the table's offset. The rows
       stand as given: who wants a closing row gives one. */
    template <class RowType> u32 Table(size_t nSlot, const std::vector<RowType>& rows)
    {
        u32 ulAt = static_cast<u32>(body.size());
        for (const RowType& row : rows) {
            const u8* pRow = reinterpret_cast<const u8*>(&row);
            body.insert(body.end(), pRow, pRow + sizeof row);
        }
        Poke(&body, nSlot, static_cast<u64>(ulAt));
        return ulAt;
    }

    /* A text of language 9; gives its id. */
    i16 Text(const std::string& text)
    {
        strings[9].push_back(text);
        return static_cast<i16>(strings[9].size());
    }

    /* A command ended by a NUL; gives its id. */
    u16 Command(const std::string& text)
    {
        commands.emplace_back(text.begin(), text.end());
        commands.back().push_back(0);
        return static_cast<u16>(commands.size() - 1);
    }

    Bytes Build() const;
};

/* Offsets of the header's fields. */
enum HeaderField : size_t {
    AT_BODY = 8,
    AT_STRING_BASE = 12,
    AT_STRING_ID = 16,
    AT_STRING_DATA = 20,
    AT_COMMAND_TABLE = 24,
    AT_COMMAND_DATA = 28,
    AT_FONT_TABLE = 32,
    AT_FONT_DATA = 36,
    AT_BITMAP_TABLE = 40,
    AT_BITMAP_DATA = 44,
    AT_COLOR_DATA = 48,
    AT_COLOR_SIZE = 52
};

/* A row with the listed papers' bits set, for the bit sets of constraints and margins. */
template <class RowType> RowType WithPapers(RowType row, std::initializer_list<int> codes)
{
    for (int nCode : codes) {
        row.bPapers[nCode / 8] = static_cast<u8>(row.bPapers[nCode / 8] | 1 << (7 - nCode % 8));
    }
    return row;
}

#endif
