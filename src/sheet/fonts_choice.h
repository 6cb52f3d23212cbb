/* The Fonts page in plain data: the choices of a document, and the table of substitutions, which the page shows as rows of
   text and the printer stores as the value "FontSubs". The two say different things. A family that has a resident font of
   its name and character set is shown as a row of that name twice and not stored; one that the user has taken out of
   the table is not shown and stored with an empty partner, so that it stays out. A family with a script in its name,
   "Arial (Greek)", is stored once more without it, and that pair is not shown. */
#ifndef TQUI_SHEET_FONTS_CHOICE_H
#define TQUI_SHEET_FONTS_CHOICE_H

#include "base/wide.h"
#include "description/resident_fonts.h"
#include "entry/font_families.h"
#include "settings/driver_devmode.h"

/* ---- the choices of a document ---- */

struct FontsChoice {
    int bResident, bBitmaps;
};

constexpr u16 BITMAP_FONTS = 32767; /* sBitmapFonts when it is on */

int FontsDiffer(const FontsChoice& choice, const XpiModel* pModel, const PrivateDevmode& settings);
void StoreFonts(const FontsChoice& choice, const XpiModel* pModel, PrivateDevmode* pSettings);

/* ---- the table ---- */

constexpr int PAIR_CHARS = TEXT_CHARS; /* a row with its NUL; longer ones are not taken into the table */
constexpr i32 PAIR_ROWS_MOST = 0x7FFF;
constexpr u32 PAIRS_MOST_BYTES = 65534; /* of the value */

/* Texts one behind the other, each with its NUL. Rows of the table, or families and fonts by turns. */
struct PairTexts {
    OwnedBlock<WCHAR> pTexts;
    u32 cchUsed, cchRoom;
    i32 nTexts;
};

/* Makes an empty list with room for that many characters. 0 when memory fails. */
int PreparePairTexts(PairTexts* pList, u32 cchRoom);

/* Appends a text of cch characters, which need not have its NUL. 0 when it has no room. */
int AppendPairText(PairTexts* pList, const WCHAR* wcText, int cch);

/* Joins family and font to the text of a row. 0 with an empty text when it would be too long. */
int JoinPair(WCHAR (&wcRow)[PAIR_CHARS], const WCHAR* wcFamily, const WCHAR* wcFont);

/* Where " => " stands in a row, the first time; null when it is no pair. */
const WCHAR* FindPairArrow(const WCHAR* wcRow);
constexpr int PAIR_ARROW_CHARS = 4;

/* 1 when the row is about this family. */
int IsPairOf(const WCHAR* wcRow, const WCHAR* wcFamily);

/* The rows of stored pairs, at most PAIR_ROWS_MOST.
   wcPairs   multi-string of cch characters, which may lack its end or be anything; null for none
   outRows   O   new list
   Result: 1; 0 with an empty list when memory fails. */
int RowsOfPairs(const WCHAR* wcPairs, u32 cch, const FontFamilyList& families, const ResidentFontList& fonts,
                PairTexts* outRows);

/* The value that stores the rows. Texts that are no pairs are passed over; beyond PAIRS_MOST_BYTES it ends with the last
   pair that is whole.
   outBlock  O   new block, the caller's, with two NULs behind the *pcb bytes
   Result: 1; 0 with null and 0 when memory fails. */
int PairsOfRows(const PairTexts& rows, const FontFamilyList& families, const ResidentFontList& fonts,
                OwnedBlock<u8>* outBlock, u32* pcb);

#endif
