/* An open table: a text stands at the place that its letters name, or in the first free one behind it. */
#include "base/text_index.h"

#include "base/wide.h"

namespace {

u32 HashText(const WCHAR* wcText)
{
    u32 ulHash = 2166136261u;
    for (; *wcText; wcText++) {
        ulHash = (ulHash ^ static_cast<u32>(*wcText)) * 16777619u;
    }
    return ulHash ^ ulHash >> 16;
}

/* Where the text stands, or the free place where it belongs. At least half of the places are free, so one is found. */
IndexedText* FindPlace(const TextIndex& index, const WCHAR* wcText)
{
    IndexedText* pPlaces = index.pPlaces.get();
    u32 nPlace = HashText(wcText) & (index.nPlaces - 1);
    while (pPlaces[nPlace].wcText && !SameWide(pPlaces[nPlace].wcText, wcText)) {
        nPlace = (nPlace + 1) & (index.nPlaces - 1);
    }
    return pPlaces + nPlace;
}

} // namespace

int PrepareTextIndex(TextIndex* pIndex, u32 nMost)
{
    constexpr u32 ROOM_LIMIT = 0x1000000;
    *pIndex = {};
    u32 nPlaces = 2;
    while (nMost < ROOM_LIMIT && nPlaces < 2 * nMost) {
        nPlaces *= 2;
    }
    if (nMost < ROOM_LIMIT) {
        pIndex->pPlaces.reset(static_cast<IndexedText*>(AllocateRows(nPlaces, sizeof(IndexedText))));
    }
    if (!pIndex->pPlaces) {
        return 0;
    }
    pIndex->nPlaces = nPlaces;
    pIndex->nRoom = nMost;
    return 1;
}

int AddIndexedText(TextIndex* pIndex, const WCHAR* wcText, i32 lRow)
{
    if (pIndex->nTexts >= pIndex->nRoom) {
        return 0;
    }
    IndexedText* pPlace = FindPlace(*pIndex, wcText);
    if (pPlace->wcText) {
        return 0;
    }
    *pPlace = {wcText, lRow};
    pIndex->nTexts++;
    return 1;
}

i32 FindIndexedText(const TextIndex& index, const WCHAR* wcText)
{
    const IndexedText* pPlace = index.pPlaces ? FindPlace(index, wcText) : nullptr;
    return pPlace && pPlace->wcText ? pPlace->lRow : NOT_INDEXED;
}
