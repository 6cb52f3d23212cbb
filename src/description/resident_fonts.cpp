#include "description/resident_fonts.h"

#include "base/wide.h"
#include "description/xpi_text.h"

namespace {

constexpr u32 HEAD_BYTES = RESIDENT_NAME_BYTES + 1;
constexpr u32 ROWS_AT_ONCE = 64;

/* Reads the head of one font. 0 when the read fails; a font without a name leaves the name empty. */
int ReadHead(XpiFile& file, u32 ulRow, u32 cbFont, ResidentFont* pFont)
{
    char cHead[HEAD_BYTES];
    u32 cbGot;
    pFont->wcName[0] = 0;
    if (cbFont < HEAD_BYTES || cbFont > FONT_CHUNK_BYTES) {
        return 1;
    }
    if (!ReadXpiBytes(file, static_cast<u64>(ReadXpiHeader(file)->dwFontDataOffset) + ulRow, cHead,
                      HEAD_BYTES, &cbGot)) {
        return 0;
    }
    if (cbGot == HEAD_BYTES) {
        WidenText(cHead, RESIDENT_NAME_BYTES, pFont->wcName, RESIDENT_NAME_BYTES + 1);
        pFont->bCharSet = static_cast<u8>(cHead[RESIDENT_NAME_BYTES]);
    }
    return 1;
}

/* Appends the fonts of nRows rows; the row behind them says where the last one ends. wcBefore is the name of the font before
   them, and then that of the last one. */
int AppendFonts(XpiFile& file, const u32* aRows, u32 nRows, WCHAR (&wcBefore)[RESIDENT_NAME_BYTES + 1],
                ResidentFontList* pList)
{
    for (u32 i = 0; i < nRows; i++) {
        ResidentFont* pFont = pList->pFonts.get() + pList->nFonts;
        if (!ReadHead(file, aRows[i], XpiFontBytes(aRows[i], aRows[i + 1]), pFont)) {
            return 0;
        }
        if (pFont->wcName[0]) {
            pFont->bRepeatsName = SameWide(pFont->wcName, wcBefore) != 0;
            pList->nFonts++;
        }
        CopyWide(wcBefore, RESIDENT_NAME_BYTES + 1, pFont->wcName);
    }
    return 1;
}

/* 1 when all were read that there are. */
int ReadFonts(XpiFile& file, u32 nFonts, ResidentFontList* pList)
{
    WCHAR wcBefore[RESIDENT_NAME_BYTES + 1] = {};
    for (u32 nFirst = 0; nFirst < nFonts; nFirst += ROWS_AT_ONCE) {
        u32 aRows[ROWS_AT_ONCE + 1];
        u32 nRows = nFonts - nFirst < ROWS_AT_ONCE ? nFonts - nFirst : ROWS_AT_ONCE;
        u32 nGot;
        if (!ReadXpiFontRows(file, nFirst, aRows, nRows + 1, &nGot)) {
            return 0;
        }
        if (nGot < 2) {
            return 1; /* the file ends before the table does */
        }
        if (!AppendFonts(file, aRows, nGot - 1, wcBefore, pList)) {
            return 0;
        }
    }
    return 1;
}

} // namespace

int ReadResidentFonts(XpiFile& file, const XpiModel* pModel, ResidentFontList* outList)
{
    *outList = {};
    if (!pModel || pModel->sResFontCount < 1) {
        return 1;
    }
    u32 nFonts = static_cast<u32>(pModel->sResFontCount);
    outList->pFonts.reset(static_cast<ResidentFont*>(AllocateRows(nFonts, sizeof(ResidentFont))));
    if (outList->pFonts && ReadFonts(file, nFonts, outList)) {
        return 1;
    }
    *outList = {};
    return 0;
}
