/* Adds forms. */
#include "entry/forms.h"

#include "base/arithmetic.h"
#include "description/language_dll.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "platform/process.h"

namespace {

constexpr u32 SUBLANGUAGE_BITS = 0xFC00;

} // namespace

void ReplacePrinterForm(PrinterCall& call, const WCHAR* wcName, i64 lWidth, i64 lLength, Margins upright,
                        Margins rotated)
{
    if (!wcName[0]) {
        return;
    }
    LPWSTR wcForm = const_cast<LPWSTR>(wcName);
    FORM_INFO_1W form = {};
    form.Flags = FORM_PRINTER;
    form.pName = wcForm;
    form.Size = {LowLong(lWidth), LowLong(lLength)};
    form.ImageableArea = {upright.lX, upright.lY, LowLong(lWidth - rotated.lX),
                          LowLong(lLength - rotated.lY)};
    DeleteFormW(call.hPrinter, wcForm);
    AddFormW(call.hPrinter, 1, reinterpret_cast<BYTE*>(&form));
}

void AddModelForms(PrinterCall& call, const XpiModel* pModel)
{
    XpiFile* pFile = OpenXpiFile(call);
    if (!pFile || !pModel->pPaperTable) {
        return;
    }
    i32 nPapers = CountPaperRows(pModel);
    OwnedBlock<i16> pIds(static_cast<i16*>(AllocateRows(static_cast<u64>(nPapers), sizeof(i16))));
    i32 nForms = 0;
    for (i32 i = 0; pIds && i < nPapers; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        if (pRow->sPaperCode >= USER_SIZED_PAPER) {
            pIds.get()[nForms++] = pRow->sNameId;
        }
    }
    OwnedBlock<WCHAR> pNames(
        static_cast<WCHAR*>(AllocateRows(static_cast<u64>(nForms), TEXT_CHARS * sizeof(WCHAR))));
    if (!pNames) {
        return;
    }
    OwnedModule hLanguage;
    if (NeedsLanguageDll(pIds.get(), nForms)) {
        hLanguage = OpenLanguageDll(call, nullptr);
    }
    u16 usLanguage = static_cast<u16>(GetUserDefaultLCID() & ~SUBLANGUAGE_BITS);
    ReadXpiStrings(*pFile, usLanguage, hLanguage.get(), pIds.get(), nForms, pNames.get(), TEXT_CHARS,
                   TEXT_CHARS);
    const WCHAR* wcName = pNames.get();
    for (i32 i = 0; i < nPapers; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        i16 sCode = pRow->sPaperCode;
        if (sCode >= USER_SIZED_PAPER) {
            Margins upright = GetPrintableMargins(call, pModel, sCode, 1, FORM_UNITS_PER_INCH);
            Margins rotated = GetPrintableMargins(call, pModel, LowWord(-sCode), 1, FORM_UNITS_PER_INCH);
            ReplacePrinterForm(call, wcName, pRow->sWidth * i64{100}, pRow->sLength * i64{100}, upright,
                               rotated);
            wcName += TEXT_CHARS;
        }
    }
}

void AddSavedPaperForms(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRows, i32 nRows)
{
    for (i32 i = 0; i < nRows; i++) {
        const PaperSizeRow* pRow = pRows + i;
        i16 sCode = LowWord(FIRST_SAVED_CODE + i);
        Margins upright = GetSavedPaperMargins(call, pModel, pRow, sCode, 1, FORM_UNITS_PER_INCH);
        Margins rotated = GetSavedPaperMargins(call, pModel, pRow, LowWord(-sCode), 1, FORM_UNITS_PER_INCH);
        ReplacePrinterForm(call, pRow->wcName, static_cast<i64>(pRow->ulWidth) * 10,
                           static_cast<i64>(pRow->ulLength) * 10, upright, rotated);
    }
}
