/* Resolves paper codes; lists saved papers and spooler forms. */
#include "description/paper.h"

#include "base/arithmetic.h"
#include "description/custom_sizes.h"
#include "description/printer_store.h"

namespace {

constexpr u32 FORM_BYTES = 16384; /* holds the built-in forms and some of the user's */

BOOL AskForms(HANDLE hPrinter, BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded, DWORD* pnRows)
{
    return EnumFormsW(hPrinter, 1, pOut, cbOut, pcbNeeded, pnRows);
}

/* Thousandths of a millimetre to hundredths, rounded. */
u32 FormSide(LONG lSide)
{
    return static_cast<u32>(LowLong((static_cast<i64>(lSide) + 5) / 10));
}

} // namespace

i32 GetSavedPapers(PrinterCall& call, const XpiModel* pModel, OwnedBlock<PaperSizeRow>* outRows)
{
    const ProfileFile* pFile = &GetUserSettings(call);
    /* The file decides, not its section: a user's file without saved papers means that there are none. */
    if (pFile->state == PROFILE_ABSENT) {
        pFile = &GetDriverIni(call);
    }
    return ReadCustomSizes(*pFile, pModel, outRows);
}

int SetSavedPapers(PrinterCall& call, const PaperSizeRow* pRows, i32 nCount)
{
    WCHAR tcPath[PATH_CHARS];
    if (!GetUserSettingsPath(call, tcPath)) {
        return 0;
    }
    int bWritten = WriteCustomSizes(tcPath, pRows, nCount);
    ForgetUserSettings(call);
    return bWritten;
}

i32 GetSpoolerForms(PrinterCall& call, OwnedBlock<PaperSizeRow>* outRows)
{
    u32 cb;
    DWORD nForms;
    AskState state;
    outRows->reset();
    OwnedBlock<u8> pForms(
        static_cast<u8*>(AskSpooler(call.hPrinter, AskForms, FORM_BYTES, &cb, &nForms, &state)));
    if (!pForms) {
        return 0;
    }
    const FORM_INFO_1W* pForm = reinterpret_cast<const FORM_INFO_1W*>(pForms.get());
    u32 nAll = nForms < cb / sizeof(FORM_INFO_1W) ? nForms : static_cast<u32>(cb / sizeof(FORM_INFO_1W));
    i32 nUser = 0;
    for (u32 i = 0; i < nAll; i++) {
        nUser += pForm[i].Flags == FORM_USER;
    }
    PaperSizeRow* pRows =
        static_cast<PaperSizeRow*>(AllocateRows(static_cast<u64>(nUser), sizeof(PaperSizeRow)));
    if (!pRows) {
        return 0;
    }
    outRows->reset(pRows);
    u32 ulMetric = static_cast<u32>(IsMetricLocale());
    for (u32 i = 0; i < nAll; i++) {
        if (pForm[i].Flags == FORM_USER) {
            pRows->ulWidth = FormSide(pForm[i].Size.cx);
            pRows->ulLength = FormSide(pForm[i].Size.cy);
            pRows->ulMetric = ulMetric;
            CopyWide(pRows->wcName, static_cast<int>(sizeof pRows->wcName / sizeof(WCHAR)),
                     AnswerText(pForms.get(), cb, pForm[i].pName));
            pRows++;
        }
    }
    return nUser;
}

i32 CountPaperRows(const XpiModel* pModel)
{
    i32 nRows = 0;
    while (pModel && Row(pModel, pModel->pPaperTable, nRows)->sNameId) {
        nRows++;
    }
    return nRows;
}

const PaperRow* FindPaperRow(const XpiModel* pModel, i16 sCode)
{
    for (i32 i = 0; pModel; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        if (!pRow->sNameId) {
            break;
        }
        if (pRow->sPaperCode == sCode) {
            return pRow;
        }
    }
    return nullptr;
}

i16 GetCompanionPaper(const XpiModel* pModel, i16 sCode)
{
    const PaperRow* pRow = FindPaperRow(pModel, sCode);
    return pRow ? pRow->sCompanionPaper : static_cast<i16>(0);
}

i32 GetPaperSize(PrinterCall& call, const XpiModel* pModel, i16 sCode, i16* psWidth, i16* psLength)
{
    int bUnknown = sCode < 0 || (sCode >= FIRST_UNKNOWN_CODE && sCode <= LAST_UNKNOWN_CODE);
    if (bUnknown || !pModel || !pModel->pPaperTable) {
        return GetDefaultPaperSize(psWidth, psLength);
    }
    if (const PaperRow* pRow = FindPaperRow(pModel, sCode)) {
        *psWidth = pRow->sWidth;
        *psLength = pRow->sLength;
        return pRow->sMetric;
    }
    if (sCode >= FIRST_SAVED_CODE) {
        OwnedBlock<PaperSizeRow> pSaved, pForms;
        i32 nSaved = GetSavedPapers(call, nullptr, &pSaved);
        i32 nForms = GetSpoolerForms(call, &pForms);
        i32 nIndex = sCode - FIRST_SAVED_CODE;
        if (nIndex < nSaved + nForms) {
            const PaperSizeRow* pRow =
                nIndex < nSaved ? pSaved.get() + nIndex : pForms.get() + (nIndex - nSaved);
            *psWidth = LowWord(pRow->ulWidth / 10);
            *psLength = LowWord(pRow->ulLength / 10);
            return static_cast<i32>(pRow->ulMetric);
        }
    }
    return GetDefaultPaperSize(psWidth, psLength);
}

PaperExtents GetPaperExtents(const XpiModel* pModel)
{
    PaperExtents extents = {0x7FFFFFFF, 0x7FFFFFFF, 0, 0};
    if (!pModel) {
        return extents;
    }
    if (pModel->sMaxCustomWidth >= 1 && pModel->sMaxCustomLength >= 1) {
        extents = {pModel->sMinCustomWidth, pModel->sMinCustomLength, pModel->sMaxCustomWidth,
                   pModel->sMaxCustomLength};
    }
    for (i32 i = 0;; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        if (!pRow->sNameId) {
            return extents;
        }
        i32 lWidth = pRow->sWidth;
        i32 lLength = pRow->sLength;
        extents.lMinWidth = lWidth < extents.lMinWidth ? lWidth : extents.lMinWidth;
        extents.lMinLength = lLength < extents.lMinLength ? lLength : extents.lMinLength;
        extents.lMaxWidth = lWidth > extents.lMaxWidth ? lWidth : extents.lMaxWidth;
        extents.lMaxLength = lLength > extents.lMaxLength ? lLength : extents.lMaxLength;
    }
}
