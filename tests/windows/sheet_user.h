/* Opens the driver's sheets in the system's own property sheet host, with a user who works on them from a thread of
   its own while the host runs its message loop. */
#ifndef TQUI_TESTS_WINDOWS_SHEET_USER_H
#define TQUI_TESTS_WINDOWS_SHEET_USER_H

#include <functional>
#include <string>
#include <vector>

#include "installed_printer.h"

/* Called with the sheet's window once it is up; a sheet that it leaves open is cancelled. */
using SheetUser = std::function<void(HWND hSheet)>;

struct SheetVisit {
    LONG lResult; /* of the call that opened the sheet */
    bool bShown;  /* a sheet came up */
};

/* DocumentPropertiesW with a prompt, on pIn into pOut. */
SheetVisit VisitDocumentSheet(const InstalledPrinter& printer, DEVMODEW* pOut, DEVMODEW* pIn,
                              const SheetUser& user);

/* The printer's own sheet, by the system's host and the library's export. */
SheetVisit VisitDeviceSheet(const InstalledPrinter& printer, const SheetUser& user);

/* ---- what the user can do and see ---- */
std::vector<std::wstring> SheetTabs(HWND hSheet);
HWND ShowTab(HWND hSheet, int nTab); /* the page's window */
void PressOk(
    HWND hSheet); /* posted: the host's loop looks at its end only behind a message that it fetched */
void PressCancel(HWND hSheet);
std::wstring ControlText(HWND hPage, int nControl);

#endif
