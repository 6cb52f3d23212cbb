/* The library's exports, under the names and in the forms that the spooler's and GDI's interfaces publish.
   TQUI.def lists the same names. */
#ifndef TQUI_ENTRY_EXPORTS_H
#define TQUI_ENTRY_EXPORTS_H

#include "entry/job_records.h"
#include "platform/spooler.h"
#include "platform/types.h"
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

/* The sheet of a document's settings.
   pPSUIInfo   IO  a PROPSHEETUI_INFO, or null: the header is then lParam, else its lParamInit
   With fMode 0 or no pdmOut tells the size of the record, also in cbOut. Without sheet information carries out
   MergeDocumentSettings and gives 1 whatever came of it; a header without a printer handle stands for the printer of
   its name, as the system asks for the first record while a printer is being installed. With it and DM_IN_PROMPT: at the start pdmOut gets the record
   to edit, made of pdmIn as far as that is good, and pages are added; pdmOut holds what is applied from then on, and
   both live until the end. cbOut is not looked at. Result: what the host's Result is at the start, 1 at the end and for
   every other reason; 0 without a header. */
LONG WINAPI DrvDocumentPropertySheets(void* pPSUIInfo, LPARAM lParam);

/* The printer's own sheet; its settings are printer values.
   pPSUIInfo   IO  a PROPSHEETUI_INFO, its lParamInit a DEVICEPROPERTYHEADER
   Result: as above. */
LONG WINAPI DrvDevicePropertySheets(void* pPSUIInfo, LPARAM lParam);

/* Fills a header and asks DrvDocumentPropertySheets. Its cbOut is the dmSize of pdmIn with DM_MODIFY, else that of
   the public part: this call tells the size of a record, and no record that is in two parts. */
LONG WINAPI DrvDocumentProperties(HWND hWnd, HANDLE hPrinter, LPWSTR pszPrinterName, PDEVMODEW pdmOut,
                                  PDEVMODEW pdmIn, DWORD fMode);

/* What the spooler tells of a printer: 1 a connection is added, 2 one is deleted, 3 the printer is set up, 4 it is
   deleted. Flags and parameter are not read. Result: 1; 0 only when a printer could not be set up. */
BOOL WINAPI DrvPrinterEvent(LPWSTR pPrinterName, int iDriverEvent, DWORD dwFlags, LPARAM lParam);

/* Brings a record to this printer and build.
   pPrinterName   only read; a default's device name comes without the ",Local" tail
   pdmIn          IO  null: the printer's default is asked for. Else it is checked, and repaired in place
   pdmOut         O   the record as it passed both checks, or the printer's default where it was refused
   pcbNeeded      IO  bytes of pdmOut; then the record's size, but in the first of the failures
   Result: 1 with last error 0. 0 with ERROR_INVALID_PARAMETER for no pcbNeeded, ERROR_INSUFFICIENT_BUFFER for too
   little room or no pdmOut (see CheckConnection for what else that can give), ERROR_INVALID_PRINTER_NAME for a
   printer that cannot be opened; pdmOut is then untouched. */
BOOL WINAPI DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, DWORD* pcbNeeded,
                              DWORD fMode);

/* The spooler's own routines of these names, in the system's WINSPOOL.DRV. 0 when there is none, when memory is
   short, and when that routine asks us again on the same thread. */
BOOL WINAPI DevQueryPrint(HANDLE hPrinter, PDEVMODEW pDevMode, DWORD* pResID);
BOOL WINAPI PrinterProperties(HWND hWnd, HANDLE hPrinter);

LONG WINAPI DrvAdvancedDocumentProperties(HWND hWnd, HANDLE hPrinter, LPWSTR pDeviceName, PDEVMODEW pdmOut,
                                          PDEVMODEW pdmIn);             /* gives 10 and does nothing */
BOOL WINAPI DevQueryPrintEx(void* pInfo);                               /* gives 1: nothing forbids a job */
BOOL WINAPI DrvUpgradePrinter(DWORD dwLevel, BYTE* pDriverUpgradeInfo); /* gives 1 */

/* The hook around device contexts and documents; see platform/spooler.h for the codes that are served. Before a
   device context is created or reset it stores a pointer to the settled record at pvOut (unless that is null) and
   tells the port monitor of large paper; at the start of a document it tells of that, and of fast printers.
   Result: always 1. */
int WINAPI DrvDocumentEvent(HANDLE hPrinter, void* hDc, int iEsc, u32 cbIn, void* pvIn, u32 cbOut,
                            void* pvOut);

/* What goes to the printer in front of a job, behind it and before a sheet: a text in printer job language, or on an
   image printer the render parameters. The rendering half calls; docs/job.md is written for it.
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

#endif
