/* Lists of papers, bins, resolutions and media. */
#include "entry/capability_lists.h"

#include <cstring>

#include "base/arithmetic.h"
#include "description/installed_set.h"
#include "description/language_dll.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "settings/driver_devmode.h"

namespace {

/* Media are listed behind the bins, so that one can be picked as a source. */

/* The saved papers and forms that follow the model's papers: none unless both custom maxima are set. */
struct AddedPapers {
    OwnedBlock<PaperSizeRow> pSaved, pForms;
    i32 nSaved, nForms;
};

void ReadAddedPapers(CapabilityCall& ask, const XpiModel* pModel, AddedPapers* pAdded)
{
    pAdded->nSaved = 0;
    pAdded->nForms = 0;
    if (pModel->sMaxCustomLength > 0 && pModel->sMaxCustomWidth > 0) {
        pAdded->nSaved = GetSavedPapers(ask.call, nullptr, &pAdded->pSaved);
        pAdded->nForms = GetSpoolerForms(ask.call, &pAdded->pForms);
    }
}

const PaperSizeRow* AddedRow(const AddedPapers& added, i32 nIndex)
{
    return nIndex < added.nSaved ? added.pSaved.get() + nIndex : added.pForms.get() + (nIndex - added.nSaved);
}

i32 CountPapers(const XpiModel* pModel)
{
    i32 nPapers = 0;
    while (Row(pModel, pModel->pPaperTable, nPapers)->sNameId) {
        nPapers++;
    }
    return nPapers;
}

i32 CountMedia(const XpiModel* pModel)
{
    i32 nMedia = 0;
    while (Row(pModel, pModel->pMediaTypes, nMedia)->ulMask) {
        nMedia++;
    }
    return nMedia;
}

/* Media follow the bins on every kind but 3, and only when the model lists media at all. */
i32 CountMediaBins(const XpiModel* pModel)
{
    return pModel->usLanguage == KIND_IMAGE ? 0 : CountMedia(pModel);
}

/* Names of a list into rows of cchStride characters at nFirst characters behind the buffer's start. All rows
   are cleared before; the ids are read in one go. */
void PutNames(CapabilityCall& ask, const i16* aIds, i32 nCount, size_t nFirst, int cchStride, int cch)
{
    XpiFile* pFile = OpenXpiFile(ask.call);
    if (!nCount || !pFile) {
        return;
    }
    OwnedModule hLanguageDll;
    if (NeedsLanguageDll(aIds, nCount)) {
        hLanguageDll = OpenLanguageDll(ask.call, nullptr);
    }
    WCHAR* wcRows = reinterpret_cast<WCHAR*>(ask.pOut) + nFirst;
    ReadXpiStrings(*pFile, GetUserLanguage(), hLanguageDll.get(), aIds, nCount, wcRows, cchStride, cch);
}

void ClearRows(CapabilityCall& ask, DWORD nRows, int cch)
{
    std::memset(ask.pOut, 0, static_cast<size_t>(nRows) * static_cast<size_t>(cch) * sizeof(WCHAR));
}

} // namespace

const XpiModel* CapabilityModel(CapabilityCall& ask)
{
    if (!ask.bModelAsked) {
        ask.bModelAsked = 1;
        ask.pModel = LoadPrinterModel(ask.call);
    }
    return ask.pModel.get();
}

void PutRow(CapabilityCall& ask, DWORD nRow, const void* pRow, size_t cb)
{
    if (ask.pOut) {
        std::memcpy(ask.pOut + nRow * cb, pRow, cb);
    }
}

DWORD ListPaperCodes(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        i16 sPaper = GetDefaultPaper();
        PutRow(ask, 0, &sPaper, sizeof sPaper);
        return 1;
    }
    AddedPapers added;
    DWORD nRow = 0;
    ReadAddedPapers(ask, pModel, &added);
    for (i32 nPapers = CountPapers(pModel), i = 0; i < nPapers; i++) {
        i16 sCode = Row(pModel, pModel->pPaperTable, i)->sPaperCode;
        PutRow(ask, nRow++, &sCode, sizeof sCode);
    }
    for (i32 i = 0; i < added.nSaved + added.nForms; i++) {
        i16 sCode = LowWord(FIRST_SAVED_CODE + i);
        PutRow(ask, nRow++, &sCode, sizeof sCode);
    }
    return nRow;
}

DWORD ListPaperSizes(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        i16 sWidth, sLength;
        GetDefaultPaperSize(&sWidth, &sLength);
        POINT size = {sWidth, sLength};
        PutRow(ask, 0, &size, sizeof size);
        return 1;
    }
    AddedPapers added;
    DWORD nRow = 0;
    ReadAddedPapers(ask, pModel, &added);
    for (i32 nPapers = CountPapers(pModel), i = 0; i < nPapers; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        POINT size = {pRow->sWidth, pRow->sLength};
        PutRow(ask, nRow++, &size, sizeof size);
    }
    for (i32 i = 0; i < added.nSaved + added.nForms; i++) {
        const PaperSizeRow* pRow = AddedRow(added, i);
        POINT size = {static_cast<LONG>(pRow->ulWidth / 10), static_cast<LONG>(pRow->ulLength / 10)};
        PutRow(ask, nRow++, &size, sizeof size);
    }
    return nRow;
}

DWORD ListPaperNames(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        if (ask.pOut) {
            OwnedModule hLanguageDll = OpenLanguageDll(ask.call, nullptr);
            WCHAR wcName[NAME_CHARS] = {};
            ReadLibraryString(hLanguageDll.get(), GetDefaultPaper() == PAPER_LETTER ? IDS_LETTER : IDS_A4,
                              wcName, NAME_CHARS);
            PutRow(ask, 0, wcName, sizeof wcName);
        }
        return 1;
    }
    AddedPapers added;
    ReadAddedPapers(ask, pModel, &added);
    i32 nPapers = CountPapers(pModel);
    i32 nAdded = added.nSaved + added.nForms;
    DWORD nRows = static_cast<DWORD>(nPapers + nAdded);
    if (!ask.pOut || !nRows) {
        return nRows;
    }
    ClearRows(ask, nRows, NAME_CHARS);
    OwnedBlock<i16> pIds(static_cast<i16*>(AllocateRows(static_cast<u64>(nPapers), sizeof(i16))));
    for (i32 i = 0; pIds && i < nPapers; i++) {
        pIds.get()[i] = Row(pModel, pModel->pPaperTable, i)->sNameId;
    }
    if (pIds) {
        PutNames(ask, pIds.get(), nPapers, 0, NAME_CHARS, NAME_CHARS);
    }
    for (i32 i = 0; i < nAdded; i++) {
        PutRow(ask, static_cast<DWORD>(nPapers + i), AddedRow(added, i)->wcName, NAME_CHARS * sizeof(WCHAR));
    }
    return nRows;
}

DWORD ListBins(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        u16 usBin = BIN_AUTO;
        PutRow(ask, 0, &usBin, sizeof usBin);
        return 1;
    }
    const DeviceInfo* pInstalled = GetDeviceInfo(ask.call, pModel);
    DWORD nRow = 0;
    for (i32 i = 0;; i++) {
        const BinRow* pRow = Row(pModel, pModel->pInputBins, i);
        if (!pRow->ulMask) {
            break;
        }
        if (pRow->ulMask & pInstalled->ulInputs) {
            u16 usBin = pRow->usBinId;
            PutRow(ask, nRow++, &usBin, sizeof usBin);
        }
    }
    for (i32 nMedia = CountMediaBins(pModel), i = 0; i < nMedia; i++) {
        u16 usBin = static_cast<u16>(FIRST_MEDIA_SOURCE + i);
        PutRow(ask, nRow++, &usBin, sizeof usBin);
    }
    return nRow;
}

DWORD ListBinNames(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        WCHAR wcName[BIN_CHARS] = TEXT("Autoselect");
        PutRow(ask, 0, wcName, sizeof wcName);
        return 1;
    }
    const DeviceInfo* pInstalled = GetDeviceInfo(ask.call, pModel);
    i32 nBinRows = 0, nBins = 0, nMedia = CountMediaBins(pModel);
    for (u32 ulMask; (ulMask = Row(pModel, pModel->pInputBins, nBinRows)->ulMask) != 0; nBinRows++) {
        nBins += (ulMask & pInstalled->ulInputs) != 0;
    }
    DWORD nRows = static_cast<DWORD>(nBins + nMedia);
    if (!ask.pOut || !nRows) {
        return nRows;
    }
    ClearRows(ask, nRows, BIN_CHARS);
    OwnedBlock<i16> pIds(static_cast<i16*>(AllocateRows(nRows, sizeof(i16))));
    if (!pIds) {
        return nRows;
    }
    i32 nAt = 0;
    for (i32 i = 0; i < nBinRows && nAt < nBins; i++) {
        const BinRow* pRow = Row(pModel, pModel->pInputBins, i);
        if (pRow->ulMask & pInstalled->ulInputs) {
            pIds.get()[nAt++] = pRow->sNameId;
        }
    }
    for (i32 i = 0; i < nMedia; i++) {
        pIds.get()[nBins + i] = Row(pModel, pModel->pMediaTypes, i)->sNameId;
    }
    /* A blank in front of every bin tells it from the media behind. */
    int nBlank = nMedia != 0;
    PutNames(ask, pIds.get(), nBins, static_cast<size_t>(nBlank), BIN_CHARS, BIN_CHARS - nBlank);
    PutNames(ask, pIds.get() + nBins, nMedia, static_cast<size_t>(nBins) * BIN_CHARS, BIN_CHARS, BIN_CHARS);
    for (i32 i = 0; nBlank && i < nBins; i++) {
        WCHAR wcBlank = ' ';
        std::memcpy(ask.pOut + static_cast<size_t>(i) * BIN_CHARS * sizeof(WCHAR), &wcBlank, sizeof wcBlank);
    }
    return nRows;
}

DWORD ListResolutions(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        LONG alDpi[2] = {300, 300};
        PutRow(ask, 0, alDpi, sizeof alDpi);
        return 1;
    }
    for (DWORD nRow = 0;; nRow++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, static_cast<i32>(nRow));
        if (!pRow->ulUsed) {
            return nRow;
        }
        LONG alDpi[2] = {pRow->usDpiX, pRow->usDpiY};
        PutRow(ask, nRow, alDpi, sizeof alDpi);
    }
}

DWORD ListMediaNames(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    i32 nMedia = pModel ? CountMedia(pModel) : 0;
    if (!ask.pOut || !nMedia) {
        return static_cast<DWORD>(nMedia);
    }
    ClearRows(ask, static_cast<DWORD>(nMedia), NAME_CHARS);
    OwnedBlock<i16> pIds(static_cast<i16*>(AllocateRows(static_cast<u64>(nMedia), sizeof(i16))));
    for (i32 i = 0; pIds && i < nMedia; i++) {
        pIds.get()[i] = Row(pModel, pModel->pMediaTypes, i)->sNameId;
    }
    if (pIds) {
        PutNames(ask, pIds.get(), nMedia, 0, NAME_CHARS, NAME_CHARS);
    }
    return static_cast<DWORD>(nMedia);
}

DWORD ListMediaCodes(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    i32 nMedia = pModel ? CountMedia(pModel) : 0;
    for (i32 i = 0; i < nMedia; i++) {
        u32 ulCode = Row(pModel, pModel->pMediaTypes, i)->ulMediaCode;
        PutRow(ask, static_cast<DWORD>(i), &ulCode, sizeof ulCode);
    }
    return static_cast<DWORD>(nMedia);
}
