/* What a page hears from its sheet, in which order, and what its answers do: the system's own property sheet
   on Windows, the host of the tests on the hosted machine. The steps are those of tests/data/conformance_sheet.txt. */
#include <algorithm>

#include "support/dialog_user.h"
#include "support/script.h"

#ifndef _WIN32
#include "hosted/sheet_host.h"
#endif

namespace {

std::string heard; /* "PAGE NOTICE, ..." */
LONG_PTR lApplyAnswer[3];
bool bKeepsActive;

std::string NotificationName(const PSHNOTIFY& notify)
{
    static const std::map<UINT, const char*> names = {
        {PSN_SETACTIVE, "SETACTIVE"}, {PSN_KILLACTIVE, "KILLACTIVE"},   {PSN_APPLY, "APPLY"},
        {PSN_RESET, "RESET"},         {PSN_QUERYCANCEL, "QUERYCANCEL"}, {PSN_HELP, "HELP"}};
    const auto name = names.find(notify.hdr.code);
    return name == names.end() ? "" : name->second;
}

INT_PTR CALLBACK PageProc(HWND hPage, UINT uMessage, WPARAM, LPARAM lParam)
{
    if (uMessage == WM_INITDIALOG) {
        SetWindowLongPtrW(hPage, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
    }
    const LONG_PTR nPage = GetWindowLongPtrW(hPage, DWLP_USER);
    const auto* pNotify = uMessage == WM_NOTIFY ? reinterpret_cast<const PSHNOTIFY*>(lParam) : nullptr;
    const std::string name = uMessage == WM_INITDIALOG ? "INIT"
                             : uMessage == WM_DESTROY  ? "DESTROY"
                             : pNotify                 ? NotificationName(*pNotify)
                                                       : "";
    if (!name.empty()) {
        heard += (heard.empty() ? "" : ", ") + std::to_string(nPage) + " " + name;
    }
    if (pNotify) {
        SetWindowLongPtrW(hPage, DWLP_MSGRESULT,
                          pNotify->hdr.code == PSN_APPLY        ? lApplyAnswer[nPage]
                          : pNotify->hdr.code == PSN_KILLACTIVE ? bKeepsActive
                                                                : 0);
    }
    return pNotify != nullptr;
}

const DialogBuilder& PageForm()
{
    static const DialogBuilder form(WS_CHILD | WS_CAPTION, 200, 100,
                                    {{101, TEXT("Button"), BS_PUSHBUTTON | WS_TABSTOP, 7, 7, 50, 14}});
    return form;
}

PROPSHEETPAGEW PageSetup(int nPage)
{
    PROPSHEETPAGEW setup = {};
    setup.dwSize = sizeof setup;
    setup.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    setup.hInstance = GetProgram();
    setup.pResource = FormData(PageForm());
    setup.pszTitle = TEXT("Page");
    setup.pfnDlgProc = PageProc;
    setup.lParam = nPage;
    return setup;
}

#ifdef _WIN32

class TestSheet {
  public:
    TestSheet()
    {
        PROPSHEETPAGEW aPages[] = {PageSetup(0), PageSetup(1), PageSetup(2)};
        PROPSHEETHEADERW header = {};
        header.dwSize = sizeof header;
        header.dwFlags = PSH_PROPSHEETPAGE | PSH_MODELESS;
        header.pszCaption = TEXT("Sheet");
        header.nPages = 3;
        header.ppsp = aPages;
        hSheet_ = reinterpret_cast<HWND>(PropertySheetW(&header));
    }
    ~TestSheet() { DestroyWindow(hSheet_); }
    HWND Frame() { return hSheet_; }
    HWND Page() { return PropSheet_GetCurrentPageHwnd(hSheet_); }
    bool IsOpen() { return Page() != nullptr; }
    bool Show(int nPage) { return PropSheet_SetCurSel(hSheet_, nullptr, nPage) != FALSE; }
    bool CanApply() { return IsWindowEnabled(GetDlgItem(hSheet_, 0x3021)) != FALSE; }
    void Apply() { SendMessageW(hSheet_, PSM_PRESSBUTTON, PSBTN_APPLYNOW, 0); }
    void Ok() { Press(PSBTN_OK); }
    void Cancel() { Press(PSBTN_CANCEL); }

  private:
    void Press(int nButton)
    {
        SendMessageW(hSheet_, PSM_PRESSBUTTON, static_cast<WPARAM>(nButton), 0);
        if (!IsOpen()) { /* as the program's message loop does */
            DestroyWindow(hSheet_);
        }
    }
    HWND hSheet_;
};

#else

LONG WINAPI AddThreePages(PROPSHEETUI_INFO* pInfo, LPARAM)
{
    for (int nPage = 0; pInfo->Reason == PROPSHEETUI_REASON_INIT && nPage < 3; nPage++) {
        PROPSHEETPAGEW setup = PageSetup(nPage);
        pInfo->Result = pInfo->pfnComPropSheet(pInfo->hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW,
                                               reinterpret_cast<LPARAM>(&setup), 0) != 0;
    }
    return 1;
}

class TestSheet {
  public:
    TestSheet() : pSheet_(OpenSheet({AddThreePages, 0, 0})) {}
    ~TestSheet() { EndSheet(pSheet_); }
    HWND Frame() { return SheetWindow(pSheet_); }
    HWND Page() { return SheetPageWindow(pSheet_, static_cast<size_t>(ActiveSheetPage(pSheet_))); }
    bool IsOpen() { return IsSheetOpen(pSheet_); }
    bool Show(int nPage) { return ShowSheetPage(pSheet_, static_cast<size_t>(nPage)); }
    bool CanApply() { return CanApplySheet(pSheet_); }
    void Apply() { PressSheetApply(pSheet_); }
    void Ok() { PressSheetOk(pSheet_); }
    void Cancel() { PressSheetCancel(pSheet_); }

  private:
    Sheet* pSheet_;
};

#endif

class SheetHost : public BothBuilds, public testing::WithParamInterface<Script> {};

TEST_P(SheetHost, TellsItsPagesAsWritten)
{
    heard.clear();
    bKeepsActive = false;
    std::fill(std::begin(lApplyAnswer), std::end(lApplyAnswer), PSNRET_NOERROR);
    TestSheet sheet;
    EXPECT_EQ(GetParent(sheet.Page()), sheet.Frame());
    const auto tell = [&](UINT uMessage) {
        SendMessageW(GetParent(sheet.Page()), uMessage, reinterpret_cast<WPARAM>(sheet.Page()), 0);
        return sheet.CanApply();
    };
    const std::map<std::string, LONG_PTR> answers = {{"accept", PSNRET_NOERROR},
                                                     {"refuse", PSNRET_INVALID},
                                                     {"refuse-in-place", PSNRET_INVALID_NOCHANGEPAGE}};
    const Verbs verbs = {
        VERB("heard", std::exchange(heard, {})),
        VERB("show", sheet.Show(static_cast<int>(ToNumber(w[0])))),
        VERB("active", GetWindowLongPtrW(sheet.Page(), DWLP_USER)),
        DEED("keep-active", bKeepsActive = true),
        DEED("answer-apply", lApplyAnswer[0] = answers.at(w[0])),
        VERB("changed", tell(PSM_CHANGED)),
        VERB("unchanged", tell(PSM_UNCHANGED)),
        VERB("can-apply", sheet.CanApply()),
        DEED("apply", sheet.Apply()),
        VERB("ok", (sheet.Ok(), sheet.IsOpen())),
        DEED("cancel", sheet.Cancel()),
    };
    Play(GetParam(), verbs);
}

INSTANTIATE_TEST_SUITE_P(, SheetHost, testing::ValuesIn(ReadScripts("conformance_sheet.txt")), ScriptName);

} // namespace
