/* Exports through which the spooler and applications exchange records without a dialog. */
#include "entry/exports.h"

#include <cstring>

#include "base/system_library.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "entry/connection.h"
#include "entry/thread_store.h"
#include "platform/process.h"
#include "settings/caller_record.h"
#include "settings/checks.h"

namespace {

/* The converted record: the caller's when it passes both checks, else the printer's default. */
void ConvertRecord(PrinterCall& call, const WCHAR* wcPrinterName, void* pIn, DriverDevmode* pConverted)
{
    if (pIn) {
        CallerRecord taken;
        OwnedModel pModel = LoadPrinterModel(call);
        TakeCallerRecord(pIn, &taken);
        int bGood = ValidatePublicPart(call, &taken.rCopy, pModel.get()) &&
                    ValidatePrivatePart(call, &taken.rCopy.rPrivate, pModel.get());
        GiveRepairs(&taken);
        if (bGood) {
            *pConverted = taken.rCopy;
            return;
        }
    }
    BuildModelRecord(call, wcPrinterName, pConverted, 1, nullptr);
}

/* A routine of the system's spooler library, which may well ask the printer's driver, us, the same: what comes
   back on the same thread is answered with 0. */
template <class Routine, class... Arguments> BOOL Forward(const char* cName, Arguments... arguments)
{
    KeptLastError kept;
    ThreadStore* pStore = GetThreadStore();
    if (!pStore || pStore->bForwarding) {
        return 0;
    }
    OwnedModule hSpooler(LoadLibraryExW(TEXT("WINSPOOL.DRV"), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    const Routine fnRoutine = FindRoutine<Routine>(hSpooler, cName);
    if (!fnRoutine) {
        return 0;
    }
    pStore->bForwarding = 1;
    BOOL bResult = fnRoutine(arguments...);
    pStore->bForwarding = 0;
    return bResult;
}

} // namespace

extern "C" {

LONG WINAPI DrvAdvancedDocumentProperties(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW)
{
    return 10;
}

BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, DWORD* pcbNeeded, DWORD)
{
    if (!pcbNeeded) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    DWORD cbRoom = *pcbNeeded;
    *pcbNeeded = RECORD_SIZE;
    if (cbRoom < RECORD_SIZE || !pdmOut) {
        ConnectionAnswer answer = CheckConnection(pPrinterName);
        SetLastError(answer.dwError);
        return answer.bResult;
    }
    OwnedPrinter hPrinter = OpenPrinterByName(pPrinterName);
    if (!IsOpen(hPrinter.get())) {
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return 0;
    }
    DriverDevmode converted;
    {
        PrinterCall call(hPrinter.get());
        ConvertRecord(call, pPrinterName, pdmIn, &converted);
    }
    std::memcpy(static_cast<void*>(pdmOut), &converted, RECORD_SIZE);
    hPrinter.reset();
    SetLastError(ERROR_SUCCESS);
    return 1;
}

BOOL WINAPI DevQueryPrintEx(void*)
{
    return 1;
}

BOOL WINAPI DevQueryPrint(HANDLE hPrinter, PDEVMODEW pDevMode, DWORD* pResID)
{
    return Forward<BOOL(WINAPI*)(HANDLE, PDEVMODEW, DWORD*)>("DevQueryPrint", hPrinter, pDevMode, pResID);
}

BOOL WINAPI PrinterProperties(HWND hWnd, HANDLE hPrinter)
{
    return Forward<BOOL(WINAPI*)(HWND, HANDLE)>("PrinterProperties", hWnd, hPrinter);
}

BOOL WINAPI DrvUpgradePrinter(DWORD, BYTE*)
{
    return 1;
}
}
