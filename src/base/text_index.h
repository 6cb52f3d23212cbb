/* Finds texts by what they say, however many there are: a table of pointers to texts that lie elsewhere and stay there as
   long as the index is used. Case counts. */
#ifndef TQUI_BASE_TEXT_INDEX_H
#define TQUI_BASE_TEXT_INDEX_H

#include "base/owned.h"
#include "platform/basic.h"

struct IndexedText {
    const WCHAR* wcText; /* null: a free place */
    i32 lRow;
};

/* Zeros are an index without room, in which nothing is found. */
struct TextIndex {
    OwnedBlock<IndexedText> pPlaces;
    u32 nPlaces; /* a power of two, at least twice the room */
    u32 nRoom, nTexts;
};

constexpr i32 NOT_INDEXED = -1;

/* Makes an empty index with room for nMost texts. 0, and an index without room, when memory fails. */
int PrepareTextIndex(TextIndex* pIndex, u32 nMost);

/* Adds a text under a row of the caller's, 0 and above.
   Result: 1; 0 when this text is there already, under a row that it keeps, or when there is no more room. */
int AddIndexedText(TextIndex* pIndex, const WCHAR* wcText, i32 lRow);

/* The row of the text, or NOT_INDEXED. */
i32 FindIndexedText(const TextIndex& index, const WCHAR* wcText);

#endif
