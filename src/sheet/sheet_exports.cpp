/* The exports that the property sheet host calls, and the one that asks the same without a host: what is edited, who may
   write, and the life of the session. */
#include "description/printer_store.h"
#include "document/defaults.h"
#include "document/merge.h"
#include "entry/exports.h"
#include "entry/font_file.h"
#include "settings/caller_record.h"
#include "settings/checks.h"
#include "sheet/page_table.h"

namespace {

constexpr DWORD MODE_PROMPT = 4, MODE_MODIFY = 8; /* fMode */

/* The printer's current settings; what the description alone gives when the printer does not tell them. */
void CurrentSettings(PrinterCall& call, const WCHAR* wcName, const XpiModel* pModel, DriverDevmode* pRecord)
{
    if (FindPrinterDefaults(call, pRecord) == DEFAULT_NONE) {
        BuildModelRecord(call, wcName, pRecord, 1, pModel);
    }
}

/* The record to edit: the caller's, with what a check refused replaced by the printer's current settings. */
void ChooseRecord(PrinterCall& call, const DOCUMENTPROPERTYHEADER& header, const XpiModel* pModel,
                  DriverDevmode* pChosen)
{
    CallerRecord taken;
    if (header.pdmIn) {
        TakeCallerRecord(header.pdmIn, &taken);
        int bPublic = ValidatePublicPart(call, &taken.rCopy, pModel);
        int bPrivate = bPublic && ValidatePrivatePart(call, &taken.rCopy.rPrivate, pModel);
        GiveRepairs(&taken);
        if (bPrivate) {
            *pChosen = taken.rCopy;
            return;
        }
        CurrentSettings(call, header.pszPrinterName, pModel, pChosen);
        if (bPublic) {
            PrivateDevmode part = pChosen->rPrivate;
            *pChosen = taken.rCopy;
            pChosen->rPrivate = part;
        }
        return;
    }
    CurrentSettings(call, header.pszPrinterName, pModel, pChosen);
}

/* 1 when the user may write the printer's values: one is stored, read back and deleted. */
int MayWrite(PrinterCall& call)
{
    constexpr const WCHAR* wcProbe = TEXT("Test");
    constexpr const WCHAR* wcText = TEXT("Application");
    WCHAR wcBack[TEXT_CHARS], wcName[8];
    if (!StorePrinterText(call, wcProbe, wcText) ||
        !ReadPrinterText(call, wcProbe, wcBack, TEXT_CHARS, nullptr) || !SameWide(wcBack, wcText)) {
        return 0;
    }
    CopyWide(wcName, 8, wcProbe);
    DeletePrinterDataW(call.hPrinter, wcName);
    return 1;
}

/* The rest of both starts. Without a session there is no sheet. */
int OpenSheet(PrinterCall& call, PROPSHEETUI_INFO* pInfo, UiSession* pSession, const WCHAR* wcPrinterName)
{
    if (!pSession) {
        pInfo->UserData = 0;
        pInfo->Result = 0;
        return 0;
    }
    CopyWide(pSession->wcPrinterName, PATH_CHARS, wcPrinterName);
    pSession->bReadOnly = !MayWrite(call);
    return BuildSheetPages(pSession, pInfo, aPageTable, rAboutPage);
}

int OpenDocumentSheet(PROPSHEETUI_INFO* pInfo, const DOCUMENTPROPERTYHEADER& header)
{
    PrinterCall call(header.hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    DriverDevmode* pRecord = reinterpret_cast<DriverDevmode*>(header.pdmOut);
    ChooseRecord(call, header, pModel.get(), pRecord);
    return OpenSheet(call, pInfo, CreateUiSession(call, std::move(pModel), pRecord), header.pszPrinterName);
}

int OpenDeviceSheet(PROPSHEETUI_INFO* pInfo, const DEVICEPROPERTYHEADER& header)
{
    PrinterCall call(header.hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    OwnedBlock<DriverDevmode> pRecord(static_cast<DriverDevmode*>(AllocateBlock(sizeof(DriverDevmode))));
    UiSession* pSession = nullptr;
    if (pRecord) {
        CurrentSettings(call, header.pszPrinterName, pModel.get(), pRecord.get());
        pSession = CreateUiSession(call, std::move(pModel), pRecord.get());
    }
    if (pSession) {
        pSession->pOwnRecord = std::move(pRecord);
        pSession->bDeviceSheet = 1;
    }
    return OpenSheet(call, pInfo, pSession, header.pszPrinterName);
}

/* Also of a sheet whose start failed, or that has ended before. */
void CloseSheet(PROPSHEETUI_INFO* pInfo, HANDLE hPrinter)
{
    UiSession* pSession = reinterpret_cast<UiSession*>(pInfo->UserData);
    pInfo->UserData = 0;
    if (pSession) {
        {
            PrinterCall call(hPrinter);
            SyncDataFileCopies(call);
        }
        DestroyUiSession(pSession);
    }
}

} // namespace

extern "C" {

LONG WINAPI DrvDocumentPropertySheets(void* pPSUIInfo, LPARAM lParam)
{
    PROPSHEETUI_INFO* pInfo = static_cast<PROPSHEETUI_INFO*>(pPSUIInfo);
    DOCUMENTPROPERTYHEADER* pHeader =
        reinterpret_cast<DOCUMENTPROPERTYHEADER*>(pInfo ? pInfo->lParamInit : lParam);
    if (!pHeader) {
        return 0;
    }
    if (pHeader->fMode == 0 || !pHeader->pdmOut) {
        pHeader->cbOut = RECORD_SIZE;
        return RECORD_SIZE;
    }
    KeptLastError kept;
    if (!pInfo) {
        OwnedPrinter hNamed;
        if (!IsOpen(pHeader->hPrinter) && pHeader->pszPrinterName) {
            hNamed = OpenPrinterByName(pHeader->pszPrinterName);
        }
        PrinterCall call(hNamed ? hNamed.get() : pHeader->hPrinter);
        MergeDocumentSettings(call, *pHeader);
        return 1;
    }
    if (!(pHeader->fMode & MODE_PROMPT)) {
        return 1;
    }
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: return OpenDocumentSheet(pInfo, *pHeader);
    case PROPSHEETUI_REASON_DESTROY: CloseSheet(pInfo, pHeader->hPrinter); return 1;
    default: pInfo->Result = 1; return 1;
    }
}

LONG WINAPI DrvDocumentProperties(HWND, HANDLE hPrinter, LPWSTR pszPrinterName, PDEVMODEW pdmOut,
                                  PDEVMODEW pdmIn, DWORD fMode)
{
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof header;
    header.hPrinter = hPrinter;
    header.pszPrinterName = pszPrinterName;
    header.pdmIn = pdmIn;
    header.pdmOut = pdmOut;
    header.cbOut =
        fMode & MODE_MODIFY && pdmIn ? reinterpret_cast<const DriverDevmode*>(pdmIn)->dmSize : PUBLIC_BYTES;
    header.fMode = fMode;
    return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
}

LONG WINAPI DrvDevicePropertySheets(void* pPSUIInfo, LPARAM)
{
    PROPSHEETUI_INFO* pInfo = static_cast<PROPSHEETUI_INFO*>(pPSUIInfo);
    const DEVICEPROPERTYHEADER* pHeader =
        pInfo ? reinterpret_cast<const DEVICEPROPERTYHEADER*>(pInfo->lParamInit) : nullptr;
    if (!pHeader) {
        return 0;
    }
    KeptLastError kept;
    switch (pInfo->Reason) {
    case PROPSHEETUI_REASON_INIT: return OpenDeviceSheet(pInfo, *pHeader);
    case PROPSHEETUI_REASON_DESTROY: CloseSheet(pInfo, pHeader->hPrinter); return 1;
    default: return 1;
    }
}
}
