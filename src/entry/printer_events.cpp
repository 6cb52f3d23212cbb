/* What the spooler tells of a printer that comes or goes: a printer is set up once, when it is made, so that later
   calls find all they need with it. Every step that fails is passed over, but for three that an installation cannot
   do without: the printer, memory, and the value that names the rendering half's user mode driver. */
#include "base/started_program.h"
#include "base/system_library.h"
#include "base/wide.h"
#include "description/driver_files.h"
#include "description/printer_store.h"
#include "document/defaults.h"
#include "entry/connection.h"
#include "entry/digest.h"
#include "entry/exports.h"
#include "entry/font_file.h"
#include "entry/forms.h"
#include "entry/install_import.h"
#include "entry/print_processor.h"
#include "entry/printer_driver_section.h"
#include "entry/user_settings_file.h"

namespace {

enum : int { EVENT_ADD_CONNECTION = 1, EVENT_DELETE_CONNECTION, EVENT_INITIALIZE, EVENT_DELETE };

constexpr std::uintptr_t SPOOLER_ROUTINE = 204; /* of WINSPOOL.DRV: has a number and no name */

/* Names the user mode driver unless the driver's .INI file did. 0 when the name cannot be stored. */
int StoreUserModeDriver(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS];
    return CopyPrinterDriverSection(call) || !FindDriverFile(call, TEXT(""), TEXT("KRND.DLL"), tcPath) ||
           StorePrinterText(call, TEXT("SPLUserModePrinterDriver"), BehindLast(tcPath, '\\'));
}

/* Starts the font installer, without a window. */
void StartFontInstaller(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS];
    if (FindDriverFile(call, TEXT("FontInstaller"), TEXT("GLYF.EXE"), tcPath)) {
        StartProgram(tcPath, nullptr, SW_HIDE);
    }
}

/* Name and size of the font description file, before anything is added. Result: that size. */
u32 StoreFontFile(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS];
    if (GetFontFilePath(call, tcPath)) {
        StorePrinterText(call, TEXT("PDFName"), BehindLast(tcPath, '\\'));
    }
    u32 ulBase = GetFontFileSize(call);
    StorePrinterValue(call, TEXT("BasePDFSize"), REG_DWORD, &ulBase, sizeof ulBase);
    return ulBase;
}

/* Makes the record the printer's default and changes nothing else. The spooler may call our other exports before
   this returns. */
void StoreDefaultRecord(PrinterCall& call, DriverDevmode* pRecord)
{
    if (const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call)) {
        PRINTER_INFO_2W info = *pInfo;
        info.pDevMode = reinterpret_cast<PDEVMODEW>(pRecord);
        SetPrinterInfo(call, info);
    }
}

OwnedBlock<DriverDevmode> NewRecord()
{
    return OwnedBlock<DriverDevmode>(static_cast<DriverDevmode*>(AllocateBlock(sizeof(DriverDevmode))));
}

int OnInitialize(const WCHAR* wcPrinterName)
{
    OwnedPrinter hPrinter = OpenPrinterByName(wcPrinterName);
    OwnedBlock<DriverDevmode> pRecord = NewRecord();
    PrinterCall call(hPrinter.get());
    if (!IsOpen(hPrinter.get()) || !pRecord || !StoreUserModeDriver(call)) {
        return 0;
    }
    u32 ulBase = StoreFontFile(call);
    StartFontInstaller(call);
    OwnedModel pOwned = LoadPrinterModel(call);
    const XpiModel* pModel = pOwned.get();
    if (pModel) {
        DigestXpi(call, pModel);
        ExtendFontFile(call, pModel, ulBase);
    }
    BuildModelRecord(call, wcPrinterName, pRecord.get(), 1, pModel);
    StoreDefaultRecord(call, pRecord.get());
    if (pModel) {
        AddModelForms(call, pModel);
        EnsureSettingsFile(call, pRecord.get(), pModel->usLanguage);
        ImportInstallSettings(call, pModel);
        if (pModel->usLanguage == KIND_IMAGE) {
            RegisterPrintProcessor(call);
        }
    }
    return 1;
}

/* Calls the spooler's routine with the printer's name, without the tail of a printer that this computer shares with
   itself; what it gives is not looked at. It is looked up here, since an import by number alone would keep the library
   from loading wherever it is missing. */
void TellSpooler(const WCHAR* wcPrinterName)
{
    WCHAR wcName[PATH_CHARS];
    if (!wcPrinterName || !CopyWideWhole(wcName, PATH_CHARS, wcPrinterName)) {
        return;
    }
    if (const WCHAR* wcTail = FindWide(BehindLast(wcName, '\\'), TEXT(",Local"))) {
        wcName[wcTail - wcName] = 0;
    }
    OwnedModule hSpooler(LoadLibraryExW(TEXT("WINSPOOL.DRV"), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const auto fnRoutine =
        FindRoutine<BOOL(WINAPI*)(LPCWSTR)>(hSpooler, reinterpret_cast<LPCSTR>(SPOOLER_ROUTINE));
    if (fnRoutine) {
        fnRoutine(wcName);
    }
}

/* Extends this machine's font description file, unless that was done. */
void ExtendConnectedFontFile(PrinterCall& call, const XpiModel* pModel)
{
    u32 ulBase;
    if (pModel->usLanguage != KIND_IMAGE &&
        ReadPrinterBytes(call, TEXT("BasePDFSize"), &ulBase, sizeof ulBase) == sizeof ulBase &&
        GetFontFileSize(call) <= ulBase) {
        ExtendFontFile(call, pModel, ulBase);
    }
}

void OnAddConnection(const WCHAR* wcPrinterName)
{
    OwnedPrinter hPrinter = OpenPrinterByName(wcPrinterName);
    if (!IsOpen(hPrinter.get())) {
        return;
    }
    PrinterCall call(hPrinter.get());
    StartFontInstaller(call);
    if (IsConnectionSystem()) {
        MakeConnectionMarker(wcPrinterName);
        AddToConnectionList(call);
    }
    OwnedModel pOwned = LoadPrinterModel(call);
    const XpiModel* pModel = pOwned.get();
    OwnedBlock<DriverDevmode> pRecord = NewRecord();
    if (!pModel || !pRecord) {
        return;
    }
    ExtendConnectedFontFile(call, pModel);
    *pRecord = recordTemplate;
    FindPrinterDefaults(call, pRecord.get());
    if (EnsureSettingsFile(call, pRecord.get(), pModel->usLanguage)) {
        ImportInstallSettings(call, pModel);
    }
}

void OnDeleteConnection(const WCHAR* wcPrinterName)
{
    OwnedPrinter hPrinter = OpenPrinterByName(wcPrinterName);
    if (IsOpen(hPrinter.get())) {
        PrinterCall call(hPrinter.get());
        if (IsConnectionSystem()) {
            RemoveFromConnectionList(call);
        }
        DeleteUserSettings(call);
    }
}

void OnDeletePrinter(const WCHAR* wcPrinterName)
{
    OwnedPrinter hPrinter = OpenPrinterByName(wcPrinterName);
    if (IsOpen(hPrinter.get())) {
        PrinterCall call(hPrinter.get());
        DeleteAllSettings(call);
    }
}

} // namespace

extern "C" {

BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, int iDriverEvent, DWORD, LPARAM)
{
    if (iDriverEvent < EVENT_ADD_CONNECTION || iDriverEvent > EVENT_DELETE) {
        return 1;
    }
    KeptLastError kept;
    int bResult = 1;
    switch (iDriverEvent) {
    case EVENT_ADD_CONNECTION: OnAddConnection(pPrinterName); break;
    case EVENT_DELETE_CONNECTION: OnDeleteConnection(pPrinterName); break;
    case EVENT_INITIALIZE:
        bResult = OnInitialize(pPrinterName);
        TellSpooler(pPrinterName);
        break;
    case EVENT_DELETE: OnDeletePrinter(pPrinterName); break;
    }
    return bResult;
}
}
