/* Printable margins of a paper code. */
#include "base/arithmetic.h"
#include "description/paper.h"

namespace {

constexpr int PAPER_BITS = 256;
constexpr i32 CUSTOM_FROM = 256; /* codes from here up are found by their size */

/* The row that serves the paper; when none does, the closing row, whose margins are the model's default. */
const MarginRow* FindMarginRow(PrinterCall& call, const XpiModel* pModel, i32 lCode, u16 usOrientation)
{
    i16 sWidth = 0, sLength = 0;
    if (lCode >= CUSTOM_FROM) {
        GetPaperSize(call, pModel, LowWord(lCode), &sWidth, &sLength);
    }
    for (i32 i = 0;; i++) {
        const MarginRow* pRow = Row(pModel, pModel->pMargins, i);
        if (!pRow->usUsed) {
            return pRow;
        }
        if (!(pRow->usModes & usOrientation)) {
            continue;
        }
        if (lCode < CUSTOM_FROM) {
            if (IsBitSet(pRow->bPapers, PAPER_BITS, lCode)) {
                return pRow;
            }
        } else if (IsBitSet(pRow->bPapers, PAPER_BITS, 0) && sWidth >= pRow->sMinWidth &&
                   sWidth <= pRow->sMaxWidth && sLength >= pRow->sMinLength && sLength <= pRow->sMaxLength) {
            return pRow;
        }
    }
}

} // namespace

Margins GetPrintableMargins(PrinterCall& call, const XpiModel* pModel, i16 sCode, u16 usOrientation, i32 lDpi)
{
    Margins none = {lDpi / 4, lDpi / 4};
    if (!pModel || !pModel->pMargins) {
        return none;
    }
    i32 lCode = AbsoluteCode(sCode);
    if (lCode >= FIRST_UNKNOWN_CODE && lCode <= LAST_UNKNOWN_CODE) {
        lCode = GetDefaultPaper();
    }
    const MarginRow* pRow = FindMarginRow(call, pModel, lCode, usOrientation);
    if (!pRow->sResolution) {
        return none;
    }
    i16 sX = sCode > 0 ? pRow->sMarginX : pRow->sMarginXRotated;
    i16 sY = sCode > 0 ? pRow->sMarginY : pRow->sMarginYRotated;
    return {LowWord(MulDivTrunc(sX, lDpi, pRow->sResolution)),
            LowWord(MulDivTrunc(sY, lDpi, pRow->sResolution))};
}
