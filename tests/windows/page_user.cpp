#include "page_user.h"

#include <sstream>

#include <commctrl.h>
#include <prsht.h>

#include "sheet_user.h"
#include "support/control_names.h"

namespace {

constexpr int STEP_MILLISECONDS = 5, PATIENCE_STEPS = 2000;
constexpr UINT KEY_F1 = 0x4D; /* what the system makes of the key for the window with the focus */

/* Where the controls are: the uppermost dialog, or the page that is shown. */
HWND Place(HWND hSheet)
{
    const HWND hTop = UppermostWindow(hSheet);
    return hTop != hSheet ? hTop : reinterpret_cast<HWND>(SendMessageW(hSheet, PSM_GETCURRENTPAGEHWND, 0, 0));
}

/* Until another window can be used: between two dialogs there is a moment when none can. */
bool Wait(HWND hSheet, HWND hBefore)
{
    HWND hNow = UppermostWindow(hSheet);
    for (int n = 0; n < PATIENCE_STEPS && (hNow == hBefore || !IsWindowEnabled(hNow)); n++) {
        Sleep(STEP_MILLISECONDS);
        hNow = UppermostWindow(hSheet);
    }
    return hNow != hBefore && IsWindowEnabled(hNow);
}

void Tell(HWND hPlace, HWND hControl, WORD wCode)
{
    SendMessageW(hPlace, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(hControl), wCode),
                 reinterpret_cast<LPARAM>(hControl));
}

bool Pick(HWND hPlace, HWND hList, int nValue)
{
    WCHAR wcClass[32] = {};
    GetClassNameW(hList, wcClass, 32);
    const bool bCombo = lstrcmpiW(wcClass, L"ComboBox") == 0;
    const LRESULT nRows = SendMessageW(hList, bCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
    for (LRESULT nRow = 0; nRow < nRows; nRow++) {
        const auto uRow = static_cast<WPARAM>(nRow);
        if (static_cast<int>(SendMessageW(hList, bCombo ? CB_GETITEMDATA : LB_GETITEMDATA, uRow, 0)) ==
            nValue) {
            SendMessageW(hList, bCombo ? CB_SETCURSEL : LB_SETCURSEL, uRow, 0);
            Tell(hPlace, hList, bCombo ? CBN_SELCHANGE : LBN_SELCHANGE);
            return true;
        }
    }
    return false;
}

std::string DoStep(HWND hSheet, const std::string& step)
{
    std::istringstream words(step);
    std::string verb, name, text;
    words >> verb >> name;
    std::getline(words >> std::ws, text);
    if (verb == "page") {
        return ShowTab(hSheet, std::stoi(name)) ? "" : "no such tab";
    }
    if (verb == "apply") {
        return SendMessageW(hSheet, PSM_APPLY, 0, 0) ? "" : "refused";
    }
    const HWND hPlace = Place(hSheet);
    const HWND hControl = GetDlgItem(hPlace, name == "IDCANCEL" ? IDCANCEL : ControlNumber(name));
    if (!hControl || !IsWindowVisible(hControl) || !IsWindowEnabled(hControl)) {
        return "the control cannot be reached";
    }
    if (verb == "pick") {
        return Pick(hPlace, hControl, std::stoi(text)) ? "" : "no such row";
    }
    if (verb == "click") {
        SendMessageW(hControl, BM_CLICK, 0, 0);
    } else if (verb == "type") {
        SetWindowTextW(hControl, std::wstring(text.begin(), text.end()).c_str());
    } else if (verb == "keys") {
        SendMessageW(hPlace, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(hControl), TRUE);
        SendMessageW(hControl, EM_SETSEL, 0, -1);
        for (const char c : text) {
            SendMessageW(hControl, WM_CHAR, static_cast<WPARAM>(c), 1);
        }
    } else if (verb == "spin") {
        const bool bDown = GetWindowLongW(hControl, GWL_STYLE) & SBS_VERT;
        SendMessageW(hPlace, bDown ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(std::stoi(text), 0),
                     reinterpret_cast<LPARAM>(hControl));
    } else if (verb == "help") {
        SendMessageW(hControl, KEY_F1, 0, 0);
    } else if (verb == "menu") {
        SendMessageW(hControl, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(hControl), -1);
    } else if (verb == "open" || verb == "end") {
        const HWND hBefore = UppermostWindow(hSheet);
        PostMessageW(hControl, BM_CLICK, 0, 0);
        return Wait(hSheet, hBefore) ? "" : "no dialog came or went";
    } else {
        return "no such step";
    }
    return "";
}

} // namespace

/* A modal dialog disables what lies below it. */
HWND UppermostWindow(HWND hSheet)
{
    struct Search {
        HWND hSheet, hFound;
    } search = {hSheet, hSheet};
    EnumThreadWindows(
        GetWindowThreadProcessId(hSheet, nullptr),
        [](HWND hWnd, LPARAM lParam) -> BOOL {
            auto* pSearch = reinterpret_cast<Search*>(lParam);
            if (hWnd != pSearch->hSheet && IsWindowVisible(hWnd) && IsWindowEnabled(hWnd) &&
                GetWindow(hWnd, GW_OWNER)) {
                pSearch->hFound = hWnd;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.hFound;
}

std::string DoSteps(HWND hSheet, const std::string& steps)
{
    std::istringstream list(steps);
    for (std::string step; std::getline(list, step, ',');) {
        const std::string fault = DoStep(hSheet, step);
        if (!fault.empty()) {
            return step + ": " + fault;
        }
    }
    return "";
}
