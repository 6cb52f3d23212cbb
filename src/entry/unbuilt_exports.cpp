/* Exports that the spooler's interface wants by name and that answer in full already, and those that answer
   failure until the settings record, the job path and the sheets are there (CHANGES.md lists them). */
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

LONG WINAPI DrvDevicePropertySheets(void*, LPARAM)
{
    return -1;
}

int WINAPI DrvDocumentEvent(HANDLE, void*, int, u32, void*, u32, void*)
{
    return -1;
}

BOOL WINAPI DrvPrinterEvent(LPWSTR, int, DWORD, LPARAM)
{
    return 0;
}

BOOL WINAPI DrvUpgradePrinter(DWORD, BYTE*)
{
    return 0;
}

DWORD WINAPI GuiStartJob(void*, DWORD*)
{
    return 0;
}

DWORD WINAPI GuiStartSheet(void*, DWORD*)
{
    return 0;
}

DWORD WINAPI GuiEndJob(void*, DWORD*)
{
    return 0;
}
}
