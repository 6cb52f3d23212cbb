#include "description/margins.h"

#include "base/arithmetic.h"
#include "description/paper.h"

namespace {

constexpr int PAPER_BITS = 256;

struct PaperSides {
    i16 sWidth, sLength; /* tenths of a millimetre */
};

/* The row that serves the paper; when none does, the closing row, whose margins are the model's default. */
const MarginRow* FindMarginRow(const XpiModel* pModel, i32 lCode, PaperSides sides, u16 usOrientation)
{
    for (i32 i = 0;; i++) {
        const MarginRow* pRow = Row(pModel, pModel->pMargins, i);
        if (!pRow->usUsed) {
            return pRow;
        }
        if (!(pRow->usModes & usOrientation)) {
            continue;
        }
        if (lCode < USER_SIZED_PAPER) {
            if (IsBitSet(pRow->bPapers, PAPER_BITS, lCode)) {
                return pRow;
            }
        } else if (IsBitSet(pRow->bPapers, PAPER_BITS, 0) && sides.sWidth >= pRow->sMinWidth &&
                   sides.sWidth <= pRow->sMaxWidth && sides.sLength >= pRow->sMinLength &&
                   sides.sLength <= pRow->sMaxLength) {
            return pRow;
        }
    }
}

/* The row's margins; a code below 1 takes those of the rotated paper. */
Margins MarginsOfRow(const MarginRow* pRow, i16 sCode, i32 lDpi)
{
    if (!pRow->sResolution) {
        return {lDpi / 4, lDpi / 4};
    }
    i16 sX = sCode > 0 ? pRow->sMarginX : pRow->sMarginXRotated;
    i16 sY = sCode > 0 ? pRow->sMarginY : pRow->sMarginYRotated;
    return {LowWord(MulDivTrunc(sX, lDpi, pRow->sResolution)),
            LowWord(MulDivTrunc(sY, lDpi, pRow->sResolution))};
}

} // namespace

Margins GetPrintableMargins(PrinterCall& call, const XpiModel* pModel, i16 sCode, u16 usOrientation, i32 lDpi)
{
    if (!pModel || !pModel->pMargins) {
        return {lDpi / 4, lDpi / 4};
    }
    i32 lCode = AbsoluteCode(sCode);
    if (lCode >= FIRST_UNKNOWN_CODE && lCode <= LAST_UNKNOWN_CODE) {
        lCode = GetDefaultPaper();
    }
    PaperSides sides = {};
    if (lCode >= USER_SIZED_PAPER) {
        GetPaperSize(call, pModel, LowWord(lCode), &sides.sWidth, &sides.sLength);
    }
    return MarginsOfRow(FindMarginRow(pModel, lCode, sides, usOrientation), sCode, lDpi);
}

Margins GetSavedPaperMargins(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRow, i16 sCode,
                             u16 usOrientation, i32 lDpi)
{
    i32 lCode = AbsoluteCode(sCode);
    if (!pModel || !pModel->pMargins || !pModel->pPaperTable || FindPaperRow(pModel, LowWord(lCode))) {
        return GetPrintableMargins(call, pModel, sCode, usOrientation, lDpi);
    }
    PaperSides sides = {LowWord(pRow->ulWidth / 10), LowWord(pRow->ulLength / 10)};
    return MarginsOfRow(FindMarginRow(pModel, lCode, sides, usOrientation), sCode, lDpi);
}
