/* Imports the lists of the driver's .INI file. */
#include "entry/install_import.h"

#include <cstring>

#include "base/arithmetic.h"
#include "description/custom_sizes.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "entry/digest.h"
#include "entry/forms.h"
#include "watermark/watermark_rows.h"
#include "watermark/watermark_store.h"

namespace {

const WCHAR* const wcPaperSizes = TEXT("PaperSizes");

/* Adds a row for each paper behind those that the value has. */
void AppendPaperSizes(PrinterCall& call, const PaperSizeRow* pRows, i32 nRows)
{
    OwnedBlock<u8> pOld;
    u32 cbOld;
    if (ReadPrinterBlock(call, wcPaperSizes, &pOld, &cbOld) == VALUE_UNREADABLE) {
        return; /* rows that cannot be read are not to be lost */
    }
    u32 cbNew = static_cast<u32>(nRows) * static_cast<u32>(sizeof(StoredPaperSize));
    OwnedBlock<u8> pNew(static_cast<u8*>(AllocateBlock(static_cast<u64>(cbOld) + cbNew)));
    if (!pNew) {
        return;
    }
    if (cbOld) {
        std::memcpy(pNew.get(), pOld.get(), cbOld);
    }
    for (i32 i = 0; i < nRows; i++) {
        StoredPaperSize row = {static_cast<u16>(FIRST_SAVED_CODE + i),
                               static_cast<u16>(pRows[i].ulWidth / 10),
                               static_cast<u16>(pRows[i].ulLength / 10)};
        std::memcpy(pNew.get() + cbOld + static_cast<size_t>(i) * sizeof row, &row, sizeof row);
    }
    StorePrinterValue(call, wcPaperSizes, REG_BINARY, pNew.get(), cbOld + cbNew);
}

void ImportPapers(PrinterCall& call, const XpiModel* pModel)
{
    OwnedBlock<PaperSizeRow> pRows;
    i32 nRows = ReadCustomSizes(GetDriverIni(call), nullptr, &pRows);
    if (nRows < 1) {
        return;
    }
    SetSavedPapers(call, pRows.get(), nRows);
    for (i32 i = 0; i < nRows; i++) {
        const PaperSizeRow* pRow = pRows.get() + i;
        i16 sCode = LowWord(FIRST_SAVED_CODE + i);
        Margins upright = GetSavedPaperMargins(call, pModel, pRow, sCode, 1, FORM_UNITS_PER_INCH);
        Margins rotated = GetSavedPaperMargins(call, pModel, pRow, LowWord(-sCode), 1, FORM_UNITS_PER_INCH);
        ReplacePrinterForm(call, pRow->wcName, static_cast<i64>(pRow->ulWidth) * 10,
                           static_cast<i64>(pRow->ulLength) * 10, upright, rotated);
    }
    AppendPaperSizes(call, pRows.get(), nRows);
}

void ImportWatermarks(PrinterCall& call, const XpiModel* pModel)
{
    OwnedBlock<WatermarkEntry> pRows;
    i32 nRows = ReadWatermarks(GetDriverIni(call), &pRows);
    if (nRows < 1) {
        return;
    }
    if (pModel && pModel->usLanguage == KIND_IMAGE_SECOND) {
        for (i32 i = 0; i < nRows; i++) {
            WatermarkEntry* pRow = pRows.get() + i;
            std::memset(pRow->WMFileName, 0, sizeof pRow->WMFileName);
            CopyWide(pRow->WMFileName, PATH_CHARS, pRow->WMString);
            pRow->WMResolution = 1;
            pRow->WMWidth = 1;
            pRow->WMHeight = 1;
        }
    }
    SetSavedWatermarks(call, pRows.get(), nRows);
}

} // namespace

void ImportInstallSettings(PrinterCall& call, const XpiModel* pModel)
{
    ImportPapers(call, pModel);
    ImportWatermarks(call, pModel);
}
