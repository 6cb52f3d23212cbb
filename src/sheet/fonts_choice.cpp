#include "sheet/fonts_choice.h"

#include <cstring>

namespace {

const WCHAR* const wcArrow = TEXT(" => ");
const WCHAR* const wcScript = TEXT(" (");

u32 ResidentFonts(const FontsChoice& choice, const XpiModel* pModel)
{
    return choice.bResident && pModel->sResFontCount > 0 ? static_cast<u32>(pModel->sResFontCount) : 0;
}

u16 BitmapFonts(const FontsChoice& choice)
{
    return choice.bBitmaps ? BITMAP_FONTS : u16{0};
}

/* The families that a resident font serves without being told to, one after the other: the first font of a name, with a
   family of that name and character set. A name that is present already is passed over, and each one is present from
   then on. Null behind the last. */
const WCHAR* NextServedFamily(const FontFamilyList& families, const ResidentFontList& fonts, i32* pnFont,
                              TextIndex* pPresent)
{
    while (*pnFont < fonts.nFonts) {
        const ResidentFont& font = fonts.pFonts.get()[(*pnFont)++];
        if (!font.bRepeatsName && FindFamily(families, font.wcName) == font.bCharSet &&
            AddIndexedText(pPresent, font.wcName, 0)) {
            return font.wcName;
        }
    }
    return nullptr;
}

/* What is still to be read of a multi-string. */
struct TextWalk {
    const WCHAR* wcAt;
    u32 cchLeft;
};

/* The next text; null when the rest holds no whole one. */
const WCHAR* TakeText(TextWalk* pWalk)
{
    int cchLeft = static_cast<int>(pWalk->cchLeft);
    int cch = BoundedLength(pWalk->wcAt, cchLeft);
    if (cch >= cchLeft) {
        return nullptr;
    }
    const WCHAR* wcText = pWalk->wcAt;
    pWalk->wcAt += cch + 1;
    pWalk->cchLeft -= static_cast<u32>(cch) + 1;
    return wcText;
}

struct Pair {
    const WCHAR *wcFamily, *wcFont;
};

/* The next pair; 0 at the end, which is an empty family or half a pair. */
int TakePair(TextWalk* pWalk, Pair* pPair)
{
    pPair->wcFamily = TakeText(pWalk);
    pPair->wcFont = pPair->wcFamily && pPair->wcFamily[0] ? TakeText(pWalk) : nullptr;
    return pPair->wcFont != nullptr;
}

/* 1 for the short form of the pair before, which comes of storing that one. */
int IsShortForm(const Pair& pair, const Pair& before)
{
    int cch = WideLength(pair.wcFamily);
    return before.wcFamily && SameWide(pair.wcFont, before.wcFont) &&
           BoundedLength(before.wcFamily, cch) == cch &&
           !std::memcmp(pair.wcFamily, before.wcFamily, static_cast<size_t>(cch) * sizeof(WCHAR)) &&
           before.wcFamily[cch] == wcScript[0] && before.wcFamily[cch + 1] == wcScript[1];
}

void AppendRow(PairTexts* pRows, const WCHAR* wcFamily, const WCHAR* wcFont)
{
    WCHAR wcRow[PAIR_CHARS];
    if (pRows->nTexts < PAIR_ROWS_MOST && JoinPair(wcRow, wcFamily, wcFont)) {
        AppendPairText(pRows, wcRow, WideLength(wcRow));
    }
}

/* A new list's room and an index of nNames names. */
int PrepareLists(PairTexts* pTexts, u32 cchRoom, TextIndex* pPresent, u32 nNames)
{
    return PreparePairTexts(pTexts, cchRoom) && PrepareTextIndex(pPresent, nNames);
}

/* The family at the end of the list counts as present from now on; then comes its font. */
void AppendPair(PairTexts* pPairs, TextIndex* pPresent, const WCHAR* wcFamily, int cchFamily,
                const WCHAR* wcFont)
{
    const WCHAR* wcKept = pPairs->pTexts.get() + pPairs->cchUsed;
    if (AppendPairText(pPairs, wcFamily, cchFamily) && AppendPairText(pPairs, wcFont, WideLength(wcFont))) {
        AddIndexedText(pPresent, wcKept, 0);
    }
}

/* All pairs that the rows make, those of equal names among them, and the families that are kept out. */
void AppendAllPairs(PairTexts* pPairs, TextIndex* pPresent, const PairTexts& rows,
                    const FontFamilyList& families, const ResidentFontList& fonts)
{
    TextWalk walk = {rows.pTexts.get(), rows.cchUsed};
    for (i32 i = 0; i < rows.nTexts; i++) {
        const WCHAR* wcRow = TakeText(&walk);
        const WCHAR* wcEnd = wcRow ? FindPairArrow(wcRow) : nullptr;
        if (!wcEnd || wcEnd == wcRow) {
            continue; /* no pair, or one without a family, which would end the value */
        }
        const WCHAR* wcFont = wcEnd + PAIR_ARROW_CHARS;
        AppendPair(pPairs, pPresent, wcRow, static_cast<int>(wcEnd - wcRow), wcFont);
        const WCHAR* wcShort = FindWide(wcRow, wcScript);
        if (wcShort && wcShort > wcRow && wcShort < wcEnd) {
            AppendPair(pPairs, pPresent, wcRow, static_cast<int>(wcShort - wcRow), wcFont);
        }
    }
    i32 nFont = 0;
    while (const WCHAR* wcFamily = NextServedFamily(families, fonts, &nFont, pPresent)) {
        AppendPairText(pPairs, wcFamily, WideLength(wcFamily));
        AppendPairText(pPairs, TEXT(""), 0);
    }
}

} // namespace

int FontsDiffer(const FontsChoice& choice, const XpiModel* pModel, const PrivateDevmode& settings)
{
    return settings.ulNumResFonts != ResidentFonts(choice, pModel) ||
           settings.sBitmapFonts != BitmapFonts(choice);
}

void StoreFonts(const FontsChoice& choice, const XpiModel* pModel, PrivateDevmode* pSettings)
{
    pSettings->ulNumResFonts = ResidentFonts(choice, pModel);
    pSettings->sBitmapFonts = BitmapFonts(choice);
}

int PreparePairTexts(PairTexts* pList, u32 cchRoom)
{
    *pList = {};
    pList->pTexts.reset(static_cast<WCHAR*>(AllocateRows(cchRoom + 1u, sizeof(WCHAR))));
    pList->cchRoom = pList->pTexts ? cchRoom : 0;
    return pList->pTexts != nullptr;
}

int AppendPairText(PairTexts* pList, const WCHAR* wcText, int cch)
{
    u32 cchWhole = static_cast<u32>(cch) + 1;
    if (cchWhole > pList->cchRoom - pList->cchUsed) {
        return 0;
    }
    WCHAR* wcOut = pList->pTexts.get() + pList->cchUsed;
    std::memcpy(wcOut, wcText, static_cast<size_t>(cch) * sizeof(WCHAR));
    wcOut[cch] = 0;
    pList->cchUsed += cchWhole;
    pList->nTexts++;
    return 1;
}

int JoinPair(WCHAR (&wcRow)[PAIR_CHARS], const WCHAR* wcFamily, const WCHAR* wcFont)
{
    return CopyWideWhole(wcRow, PAIR_CHARS, wcFamily) && AppendWideWhole(wcRow, PAIR_CHARS, wcArrow) &&
           AppendWideWhole(wcRow, PAIR_CHARS, wcFont);
}

const WCHAR* FindPairArrow(const WCHAR* wcRow)
{
    return FindWide(wcRow, wcArrow);
}

int IsPairOf(const WCHAR* wcRow, const WCHAR* wcFamily)
{
    int cch = WideLength(wcFamily);
    return BoundedLength(wcRow, cch) == cch &&
           !std::memcmp(wcRow, wcFamily, static_cast<size_t>(cch) * sizeof(WCHAR)) &&
           FindPairArrow(wcRow + cch) == wcRow + cch;
}

int RowsOfPairs(const WCHAR* wcPairs, u32 cch, const FontFamilyList& families, const ResidentFontList& fonts,
                PairTexts* outRows)
{
    constexpr u32 SERVED_ROW_CHARS = 2 * RESIDENT_NAME_BYTES + PAIR_ARROW_CHARS + 1;
    u32 cchTaken = wcPairs ? cch : 0;
    if (cchTaken > PAIRS_MOST_BYTES / sizeof(WCHAR)) {
        cchTaken = PAIRS_MOST_BYTES / sizeof(WCHAR);
    }
    u32 nFonts = static_cast<u32>(fonts.nFonts);
    TextIndex present = {};
    /* A pair takes four characters at least, and its row three more than it. */
    if (!PrepareLists(outRows, 2 * cchTaken + nFonts * SERVED_ROW_CHARS, &present, cchTaken / 2 + nFonts)) {
        *outRows = {};
        return 0;
    }
    TextWalk walk = {wcPairs, cchTaken};
    Pair pair, before = {};
    for (; TakePair(&walk, &pair); before = pair) {
        AddIndexedText(&present, pair.wcFamily, 0);
        if (pair.wcFont[0] && !IsShortForm(pair, before)) {
            AppendRow(outRows, pair.wcFamily, pair.wcFont);
        }
    }
    i32 nFont = 0;
    while (const WCHAR* wcFamily = NextServedFamily(families, fonts, &nFont, &present)) {
        AppendRow(outRows, wcFamily, wcFamily);
    }
    return 1;
}

int PairsOfRows(const PairTexts& rows, const FontFamilyList& families, const ResidentFontList& fonts,
                OwnedBlock<u8>* outBlock, u32* pcb)
{
    constexpr u32 SERVED_PAIR_CHARS = RESIDENT_NAME_BYTES + 2;
    u32 nFonts = static_cast<u32>(fonts.nFonts), nRows = static_cast<u32>(rows.nTexts);
    PairTexts pairs = {}, stored = {};
    TextIndex present = {};
    outBlock->reset();
    *pcb = 0;
    if (!PrepareLists(&pairs, 2 * rows.cchUsed + nFonts * SERVED_PAIR_CHARS, &present, 2 * nRows + nFonts) ||
        !PreparePairTexts(&stored, PAIRS_MOST_BYTES / sizeof(WCHAR) + 2)) {
        return 0;
    }
    AppendAllPairs(&pairs, &present, rows, families, fonts);
    TextWalk walk = {pairs.pTexts.get(), pairs.cchUsed};
    for (Pair pair; TakePair(&walk, &pair);) {
        int cchFamily = WideLength(pair.wcFamily), cchFont = WideLength(pair.wcFont);
        if (SameWide(pair.wcFamily, pair.wcFont)) {
            continue;
        }
        if (stored.cchUsed + static_cast<u32>(cchFamily + cchFont) + 3 > PAIRS_MOST_BYTES / sizeof(WCHAR)) {
            break;
        }
        AppendPairText(&stored, pair.wcFamily, cchFamily);
        AppendPairText(&stored, pair.wcFont, cchFont);
    }
    AppendPairText(&stored, TEXT(""), 0);
    *pcb = stored.cchUsed * static_cast<u32>(sizeof(WCHAR));
    outBlock->reset(reinterpret_cast<u8*>(stored.pTexts.release()));
    return 1;
}
