/* Imports the lists of the driver's .INI file. */
#include "entry/install_import.h"

#include <cstring>

#include "description/custom_sizes.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "entry/forms.h"
#include "entry/paper_sizes.h"
#include "watermark/watermark_rows.h"
#include "watermark/watermark_store.h"

namespace {

void ImportPapers(PrinterCall& call, const XpiModel* pModel)
{
    OwnedBlock<PaperSizeRow> pRows;
    i32 nRows = ReadCustomSizes(GetDriverIni(call), nullptr, &pRows);
    if (nRows < 1) {
        return;
    }
    SetSavedPapers(call, pRows.get(), nRows);
    AddSavedPaperForms(call, pModel, pRows.get(), nRows);
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
