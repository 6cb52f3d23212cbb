/* The library's exports, under the names and in the forms that the spooler's and GDI's interfaces publish.
   TQUI.def lists the same names. */
#ifndef TQUI_ENTRY_EXPORTS_H
#define TQUI_ENTRY_EXPORTS_H

#include "base/types.h"
#include "entry/job_records.h"
#include "platform/spooler.h"
#include "settings/driver_devmode.h"

extern "C" {

/* Answers one question about the printer.
   hPrinter      open printer; null: the printer of the name is opened for the call
   pDeviceName   printer's name; may be null
   iDevCap       DC_FIELDS (1) to DC_MEDIATYPES (35); every other number gives 0
   pvOutput      O   rows of the answer, as many as the call without a buffer counts; null only counts
   pDevMode      not read: the answer does not depend on a document's settings
   Result: the answer, or the number of rows; 0 for a question that failed. Without a description file most
   questions have a stand-by answer that follows the locale's default paper. */
DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, LPWSTR pDeviceName, WORD iDevCap, LPVOID pvOutput,
                                   PDEVMODEW pDevMode);

/* Without sheet information: tells the size of the record when fMode is 0 or there is no room for one. */
LONG WINAPI DrvDocumentPropertySheets(void* pPSUIInfo, LPARAM lParam);

/* Fills a header and asks DrvDocumentPropertySheets. */
LONG WINAPI DrvDocumentProperties(HWND hWnd, HANDLE hPrinter, LPWSTR pszPrinterName, PDEVMODEW pdmOut,
                                  PDEVMODEW pdmIn, DWORD fMode);

/* The exports below answer failure for now; see CHANGES.md. */
LONG WINAPI DrvAdvancedDocumentProperties(HWND hWnd, HANDLE hPrinter, LPWSTR pDeviceName, PDEVMODEW pdmOut,
                                          PDEVMODEW pdmIn); /* gives 10 and does nothing */
BOOL WINAPI DevQueryPrintEx(void* pInfo);                   /* gives 1: nothing forbids a job */
BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, DWORD* pcbNeeded,
                              DWORD fMode);
BOOL WINAPI DevQueryPrint(HANDLE hPrinter, PDEVMODEW pDevMode, DWORD* pResID);
BOOL WINAPI PrinterProperties(HWND hWnd, HANDLE hPrinter);
LONG WINAPI DrvDevicePropertySheets(void* pPSUIInfo, LPARAM lParam);
int WINAPI DrvDocumentEvent(HANDLE hPrinter, void* hDc, int iEsc, u32 cbIn, void* pvIn, u32 cbOut,
                            void* pvOut);
BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, int iDriverEvent, DWORD dwFlags, LPARAM lParam);
BOOL WINAPI DrvUpgradePrinter(DWORD dwLevel, BYTE* pDriverUpgradeInfo);

/* What goes to the printer in front of a job, behind it and before a sheet: a text in printer job language,
   or on an image printer the render parameters. The rendering half calls; docs/job.md is written for it.
   pRecord     IO  4088 bytes of settings, settled in place. Null: nothing is done, the answer is 1
   pBuffer     O   may be null. A text is appended behind the NUL that the buffer begins with
   pcbLength   IO  size of the buffer; bytes used or needed, NUL included. Unchanged with result 0 and
                   for a null record
   pJob        IO  see job_records.h; pJobName is the caller's to free
   Result: one of JobResult; 0 too when pcbLength, pJob or pSheet is null. */
DWORD WINAPI GuiStartJob(DriverDevmode* pRecord, void* pBuffer, DWORD* pcbLength, GuiJobRecord* pJob);
DWORD WINAPI GuiEndJob(DriverDevmode* pRecord, void* pBuffer, DWORD* pcbLength, GuiJobRecord* pJob);
DWORD WINAPI GuiStartSheet(DriverDevmode* pRecord, GuiSheetRecord* pSheet);

BOOL WINAPI DllMain(HINSTANCE hModule, DWORD dwReason, LPVOID pReserved);
}

/* The library's own module, as its entry point was told. */
HINSTANCE GetOwnModule();

#endif
