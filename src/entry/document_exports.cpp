/* Exports through which the spooler and applications exchange records without a dialog. */
#include "entry/exports.h"

extern "C" {

LONG WINAPI DrvDocumentPropertySheets(void* pPSUIInfo, LPARAM lParam)
{
    DOCUMENTPROPERTYHEADER* pHeader = reinterpret_cast<DOCUMENTPROPERTYHEADER*>(lParam);
    if (pPSUIInfo || !pHeader) {
        return -1;
    }
    if (pHeader->fMode == 0 || !pHeader->pdmOut) {
        pHeader->cbOut = RECORD_SIZE;
        return RECORD_SIZE;
    }
    return -1;
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
    header.cbOut = PUBLIC_BYTES;
    header.fMode = fMode;
    return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
}

LONG WINAPI DrvAdvancedDocumentProperties(HWND, HANDLE, LPWSTR, PDEVMODEW, PDEVMODEW)
{
    return 10;
}

BOOL WINAPI DevQueryPrintEx(void*)
{
    return 1;
}

BOOL WINAPI DrvConvertDevMode(LPWSTR, PDEVMODEW, PDEVMODEW, DWORD*, DWORD)
{
    return 0;
}

BOOL WINAPI DevQueryPrint(HANDLE, PDEVMODEW, DWORD*)
{
    return 0;
}

BOOL WINAPI PrinterProperties(HWND, HANDLE)
{
    return 0;
}

BOOL WINAPI DrvUpgradePrinter(DWORD, BYTE*)
{
    return 0;
}
}
