#include "sheet/saved_papers.h"

#include <cstring>
#include <utility>

#include "base/format.h"
#include "base/measure.h"
#include "description/custom_sizes.h"
#include "description/paper.h"
#include "entry/forms.h"
#include "entry/paper_sizes.h"

int IsListFull(i32 nCount)
{
    return nCount >= LIST_LIMIT;
}

int CompactPapers(const SavedPapers& papers, const XpiModel* pModel)
{
    PaperSizeRow* pRows = papers.pRows->get();
    i32 nRoom = *papers.psCount + 1;
    i32 nNamed = 0;
    for (i32 i = 0; i < nRoom; i++) {
        nNamed += pRows[i].wcName[0] != 0;
    }
    OwnedBlock<PaperSizeRow> pLarger;
    if (nNamed == nRoom) {
        pLarger.reset(
            static_cast<PaperSizeRow*>(AllocateRows(static_cast<u64>(nNamed) + 1, sizeof(PaperSizeRow))));
        if (!pLarger) {
            NewPaperRow(pRows + *papers.psCount, pModel);
            return 0;
        }
    }
    PaperSizeRow* pTo = pLarger ? pLarger.get() : pRows;
    for (i32 i = 0; i < nRoom; i++) {
        if (pRows[i].wcName[0]) {
            *pTo++ = pRows[i];
        }
    }
    NewPaperRow(pTo, pModel);
    if (pLarger) {
        *papers.pRows = std::move(pLarger);
    }
    *papers.psCount = static_cast<i16>(nNamed);
    return 1;
}

int SamePapers(const PaperSizeRow* pOne, i32 nOne, const PaperSizeRow* pOther, i32 nOther)
{
    return nOne == nOther && !std::memcmp(pOne, pOther, static_cast<size_t>(nOne) * sizeof(PaperSizeRow));
}

int IsPaperNameTaken(const PaperSizeRow* pRows, i32 nRows, const WCHAR* wcName)
{
    for (i32 i = 0; i < nRows; i++) {
        if (SameWide(pRows[i].wcName, wcName)) {
            return 1;
        }
    }
    return 0;
}

void FormatPaper(const PaperSizeRow& row, const WCHAR* wcDecimal, const WCHAR* wcUnit, WCHAR* wcOut, int cch)
{
    WCHAR wcWidth[TEXT_CHARS], wcLength[TEXT_CHARS];
    int bMetric = row.ulMetric != 0;
    FormatMeasure(static_cast<i32>(row.ulWidth), bMetric, ROUND_NEAREST, wcDecimal, wcWidth, TEXT_CHARS);
    FormatMeasure(static_cast<i32>(row.ulLength), bMetric, ROUND_NEAREST, wcDecimal, wcLength, TEXT_CHARS);
    FormatWide(wcOut, cch, TEXT("%s (%s x %s %s)"), static_cast<const WCHAR*>(row.wcName),
               static_cast<const WCHAR*>(wcWidth), static_cast<const WCHAR*>(wcLength), wcUnit);
}

void StorePapers(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRows, i32 nRows)
{
    OwnedBlock<PaperSizeRow> pOld;
    i32 nOld = GetSavedPapers(call, nullptr, &pOld);
    if (!pOld) {
        return; /* for want of memory; forms that nobody knows any more would stay for good */
    }
    for (i32 i = 0; i < nOld; i++) {
        DeleteFormW(call.hPrinter, pOld.get()[i].wcName);
    }
    /* Margins are asked for by a paper's code, which the file knows, so the file comes before the forms. The others say
       what the file says, also when it could not be written. */
    if (!SetSavedPapers(call, pRows, nRows)) {
        pRows = pOld.get();
        nRows = nOld;
    }
    AddSavedPaperForms(call, pModel, pRows, nRows);
    ReplacePaperSizes(call, CountPaperRows(pModel), pRows, nRows);
}
