/* The user's thread finds the sheet among the program's windows. */
#include "sheet_user.h"

#include <atomic>
#include <thread>

#include <commctrl.h>
#include <prsht.h>

#include "platform/spooler.h"

namespace {

constexpr int STEP_MILLISECONDS = 2, PATIENCE_STEPS = 15000;

HWND TabsOf(HWND hSheet)
{
    return FindWindowExW(hSheet, nullptr, WC_TABCONTROLW, nullptr);
}

BOOL CALLBACK FindSheet(HWND hWnd, LPARAM lParam)
{
    DWORD dwProcess = 0;
    GetWindowThreadProcessId(hWnd, &dwProcess);
    if (dwProcess == GetCurrentProcessId() && IsWindowVisible(hWnd) && TabsOf(hWnd)) {
        *reinterpret_cast<HWND*>(lParam) = hWnd;
        return FALSE;
    }
    return TRUE;
}

SheetVisit Visit(const std::function<LONG()>& open, const SheetUser& user)
{
    std::atomic<bool> bOver = false;
    SheetVisit visit = {0, false};
    std::thread thread([&] {
        HWND hSheet = nullptr;
        for (int n = 0; n < PATIENCE_STEPS && !bOver && !hSheet; n++) {
            EnumWindows(FindSheet, reinterpret_cast<LPARAM>(&hSheet));
            Sleep(STEP_MILLISECONDS);
        }
        if (hSheet) {
            visit.bShown = true;
            user(hSheet);
        }
        for (int n = 1; !bOver; n++) {
            Sleep(STEP_MILLISECONDS);
            if (n % 500 == 0 && hSheet) {
                PressCancel(hSheet);
            }
        }
    });
    visit.lResult = open();
    bOver = true;
    thread.join();
    return visit;
}

} // namespace

SheetVisit VisitDocumentSheet(const InstalledPrinter& printer, DEVMODEW* pOut, DEVMODEW* pIn,
                              const SheetUser& user)
{
    return Visit(
        [&] {
            return DocumentPropertiesW(nullptr, printer.Handle(), const_cast<LPWSTR>(printer.Name()), pOut,
                                       pIn, DM_IN_PROMPT | DM_OUT_BUFFER | (pIn ? DM_IN_BUFFER : 0u));
        },
        user);
}

SheetVisit VisitDeviceSheet(const InstalledPrinter& printer, const SheetUser& user)
{
    using HostCall = LONG(WINAPI*)(HWND, void*, LPARAM, DWORD*);
    static const auto fnHost = reinterpret_cast<HostCall>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"compstui.dll"), "CommonPropertySheetUIW")));
    DEVICEPROPERTYHEADER header = {sizeof header, 0, printer.Handle(), const_cast<LPWSTR>(printer.Name())};
    return Visit(
        [&] {
            DWORD dwResult = 0;
            return fnHost ? fnHost(nullptr, printer.Export<void*>("DrvDevicePropertySheets"),
                                   reinterpret_cast<LPARAM>(&header), &dwResult)
                          : -1;
        },
        user);
}

std::vector<std::wstring> SheetTabs(HWND hSheet)
{
    const HWND hTabs = TabsOf(hSheet);
    std::vector<std::wstring> tabs;
    const auto nTabs = static_cast<int>(SendMessageW(hTabs, TCM_GETITEMCOUNT, 0, 0));
    for (int n = 0; n < nTabs; n++) {
        WCHAR wcText[128] = {};
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = wcText;
        item.cchTextMax = 128;
        SendMessageW(hTabs, TCM_GETITEMW, static_cast<WPARAM>(n), reinterpret_cast<LPARAM>(&item));
        tabs.push_back(wcText);
    }
    return tabs;
}

HWND ShowTab(HWND hSheet, int nTab)
{
    SendMessageW(hSheet, PSM_SETCURSEL, static_cast<WPARAM>(nTab), 0);
    return reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETCURRENTPAGEHWND, 0, 0));
}

void PressOk(HWND hSheet)
{
    PostMessageW(hSheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
}

void PressCancel(HWND hSheet)
{
    PostMessageW(hSheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
}

std::wstring ControlText(HWND hPage, int nControl)
{
    WCHAR wcText[128] = {};
    GetDlgItemTextW(hPage, nControl, wcText, 128);
    return wcText;
}
