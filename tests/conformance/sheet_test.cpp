/* What a page hears from its sheet, in which order, and what its answers do: the system's own property sheet
   on Windows, the host of the tests on the hosted machine. */
#include "support/dialog_user.h"

#ifndef _WIN32
#include "hosted/sheet_host.h"
#endif

namespace {

using Heard = std::vector<std::string>;
Heard heard;
LONG_PTR lApplyAnswer[3];
bool bKeepsActive;

Heard TakeHeard()
{
    return std::exchange(heard, {});
}

std::string NotificationName(const PSHNOTIFY& notify)
{
    switch (notify.hdr.code) {
    case PSN_SETACTIVE: return "SETACTIVE";
    case PSN_KILLACTIVE: return "KILLACTIVE";
    case PSN_APPLY: return "APPLY";
    case PSN_RESET: return "RESET";
    case PSN_HELP: return "HELP";
    case PSN_QUERYCANCEL: return "QUERYCANCEL";
    default: return "";
    }
}

INT_PTR CALLBACK PageProc(HWND hPage, UINT uMessage, WPARAM, LPARAM lParam)
{
    if (uMessage == WM_INITDIALOG) {
        SetWindowLongPtrW(hPage, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
    }
    const LONG_PTR nPage = GetWindowLongPtrW(hPage, DWLP_USER);
    const std::string page = std::to_string(nPage);
    switch (uMessage) {
    case WM_INITDIALOG: heard.push_back(page + " INIT"); return FALSE;
    case WM_DESTROY: heard.push_back(page + " DESTROY"); return FALSE;
    case WM_NOTIFY: {
        const auto& notify = *reinterpret_cast<const PSHNOTIFY*>(lParam);
        if (const std::string name = NotificationName(notify); !name.empty()) {
            heard.push_back(page + " " + name);
        }
        SetWindowLongPtrW(hPage, DWLP_MSGRESULT,
                          notify.hdr.code == PSN_APPLY        ? lApplyAnswer[nPage]
                          : notify.hdr.code == PSN_KILLACTIVE ? bKeepsActive
                                                              : 0);
        return TRUE;
    }
    default: return FALSE;
    }
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

class SheetHost : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        heard.clear();
        bKeepsActive = false;
        std::fill(std::begin(lApplyAnswer), std::end(lApplyAnswer), PSNRET_NOERROR);
    }
    static void TellChanged(TestSheet& sheet, UINT uMessage)
    {
        SendMessageW(GetParent(sheet.Page()), uMessage, reinterpret_cast<WPARAM>(sheet.Page()), 0);
    }
};

TEST_F(SheetHost, PagesAreMadeWhenShown)
{
    TestSheet sheet;
    EXPECT_EQ(TakeHeard(), (Heard{"0 INIT", "0 SETACTIVE"}));
    EXPECT_EQ(GetParent(sheet.Page()), sheet.Frame());
    EXPECT_TRUE(sheet.Show(2));
    EXPECT_EQ(TakeHeard(), (Heard{"0 KILLACTIVE", "2 INIT", "2 SETACTIVE"}));
    EXPECT_TRUE(sheet.Show(0));
    EXPECT_EQ(TakeHeard(), (Heard{"2 KILLACTIVE", "0 SETACTIVE"}));
    bKeepsActive = true;
    sheet.Show(1);
    EXPECT_EQ(TakeHeard(), Heard{"0 KILLACTIVE"});
    EXPECT_EQ(GetWindowLongPtrW(sheet.Page(), DWLP_USER), 0);
}

TEST_F(SheetHost, ApplyGoesToEveryPageWithAWindow)
{
    TestSheet sheet;
    sheet.Show(2);
    EXPECT_FALSE(sheet.CanApply());
    TellChanged(sheet, PSM_CHANGED);
    EXPECT_TRUE(sheet.CanApply());
    TellChanged(sheet, PSM_UNCHANGED);
    EXPECT_FALSE(sheet.CanApply());
    TellChanged(sheet, PSM_CHANGED);
    TakeHeard();
    sheet.Apply();
    EXPECT_EQ(TakeHeard(), (Heard{"2 KILLACTIVE", "0 APPLY", "2 APPLY", "2 SETACTIVE"}));
    EXPECT_FALSE(sheet.CanApply());
}

TEST_F(SheetHost, RefusedApplyKeepsTheSheetOpen)
{
    TestSheet sheet;
    sheet.Show(1);
    TellChanged(sheet, PSM_CHANGED);
    TakeHeard();
    lApplyAnswer[0] = PSNRET_INVALID_NOCHANGEPAGE;
    sheet.Ok();
    EXPECT_EQ(TakeHeard(), (Heard{"1 KILLACTIVE", "0 APPLY"})); /* the later pages are not asked */
    EXPECT_TRUE(sheet.IsOpen());
    EXPECT_TRUE(sheet.CanApply());
    EXPECT_EQ(GetWindowLongPtrW(sheet.Page(), DWLP_USER), 1);
    lApplyAnswer[0] = PSNRET_INVALID; /* shows the page that refused */
    sheet.Ok();
    EXPECT_TRUE(sheet.IsOpen());
    EXPECT_EQ(GetWindowLongPtrW(sheet.Page(), DWLP_USER), 0);
    lApplyAnswer[0] = PSNRET_NOERROR;
    TakeHeard();
    sheet.Ok();
    EXPECT_EQ(TakeHeard(), (Heard{"0 KILLACTIVE", "0 APPLY", "1 APPLY", "0 DESTROY", "1 DESTROY"}));
}

TEST_F(SheetHost, CancelResetsTheShownPages)
{
    TestSheet sheet;
    sheet.Show(1);
    TakeHeard();
    sheet.Cancel();
    EXPECT_EQ(TakeHeard(), (Heard{"1 QUERYCANCEL", "0 RESET", "1 RESET", "0 DESTROY", "1 DESTROY"}));
}

} // namespace
