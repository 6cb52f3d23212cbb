/* What the pages rely on when they talk to their controls: results, what a call leaves alone, and above all
   what is told to the dialog and what is not. One dialog with a control of every kind; its procedure writes
   down what it hears. */
#include <algorithm>
#include <functional>

#include "support/dialog_builder.h"
#include "support/dialog_user.h"

namespace {

enum {
    RADIO_ONE = 101,
    RADIO_TWO,
    RADIO_THREE,
    CHECK_BOX = 110,
    PLAIN_CHECK,
    EDIT_LINE = 120,
    EDIT_LINES,
    COMBO = 130,
    COMBO_EMPTY,
    LIST = 140,
    LIST_PLAIN,
    SPIN = 150,
    SLIDER,
    LABEL = 160,
    ICON_PLACE,
    PICTURE_PLACE,
    PUSH = 170,
    PUSH_DEFAULT,
    GROUP = 180,
    HIDDEN,
    MISSING = 999
};

const DialogBuilder& Form()
{
    static const DialogBuilder form(
        WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE | DS_MODALFRAME, 252, 200,
        {{RADIO_ONE, TEXT("Button"), BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 7, 7, 60, 10},
         {RADIO_TWO, TEXT("Button"), BS_AUTORADIOBUTTON, 7, 19, 60, 10},
         {RADIO_THREE, TEXT("Button"), BS_AUTORADIOBUTTON, 7, 31, 60, 10},
         {CHECK_BOX, TEXT("Button"), BS_AUTOCHECKBOX | WS_GROUP | WS_TABSTOP, 7, 43, 60, 10},
         {PLAIN_CHECK, TEXT("Button"), BS_CHECKBOX | WS_TABSTOP, 7, 55, 60, 10},
         {EDIT_LINE, TEXT("Edit"), ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 77, 7, 50, 14, TEXT("first")},
         {EDIT_LINES, TEXT("Edit"), ES_MULTILINE | WS_BORDER | WS_TABSTOP, 77, 23, 50, 30},
         {COMBO, TEXT("ComboBox"), CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, 137, 7, 80, 100},
         {COMBO_EMPTY, TEXT("ComboBox"), CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, 137, 27, 80, 100},
         {LIST, TEXT("ListBox"), LBS_NOTIFY | LBS_USETABSTOPS | LBS_NOINTEGRALHEIGHT | WS_BORDER | WS_TABSTOP,
          137, 50, 80, 40},
         {LIST_PLAIN, TEXT("ListBox"), WS_BORDER | WS_TABSTOP, 137, 95, 80, 40},
         {SPIN, TEXT("ScrollBar"), SBS_VERT, 230, 7, 9, 14},
         {SLIDER, TEXT("ScrollBar"), SBS_HORZ | WS_TABSTOP, 7, 150, 100, 10},
         {LABEL, TEXT("Static"), 0, 7, 70, 40, 8, TEXT("label")},
         {ICON_PLACE, TEXT("Static"), SS_ICON, 7, 80, 20, 20},
         {PICTURE_PLACE, TEXT("Static"), SS_BITMAP, 37, 80, 20, 20},
         {PUSH, TEXT("Button"), BS_PUSHBUTTON | WS_TABSTOP, 7, 170, 50, 14, TEXT("push")},
         {PUSH_DEFAULT, TEXT("Button"), BS_DEFPUSHBUTTON | WS_TABSTOP, 67, 170, 50, 14, TEXT("ok")},
         {GROUP, TEXT("Button"), BS_GROUPBOX, 3, 3, 70, 60, TEXT("group")},
         {HIDDEN, TEXT("Static"), SS_ETCHEDFRAME | HIDDEN_ITEM, 77, 60, 50, 50}});
    return form;
}

/* What the dialog hears, as "id:code"; only what pages act on. */
std::vector<std::string> heard;
std::function<void(HWND)> atInit, atCommand;

void Hear(const std::string& what)
{
    heard.push_back(what);
}

std::vector<std::string> TakeHeard()
{
    return std::exchange(heard, {});
}

using Heard = std::vector<std::string>;

std::string CommandName(const WindowClassName& name, WORD wCode)
{
    switch (wCode) {
    case EN_CHANGE: return "EN_CHANGE";
    case EN_KILLFOCUS: return "EN_KILLFOCUS";
    case CBN_SELCHANGE: return name == "Button" ? "1" : name == "Static" ? "STN_DBLCLK" : "SELCHANGE";
    case BN_CLICKED: return "CLICKED";
    case LBN_DBLCLK: return name == "ListBox" ? "DBLCLK" : "";
    default: return "";
    }
}

INT_PTR CALLBACK FormProc(HWND hDialog, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    switch (uMessage) {
    case WM_INITDIALOG:
        Hear("INITDIALOG");
        SetWindowLongPtrW(hDialog, DWLP_USER, lParam);
        if (atInit) {
            atInit(hDialog);
        }
        return FALSE;
    case WM_COMMAND: {
        const auto hControl = reinterpret_cast<HWND>(lParam);
        const std::string code = CommandName(ClassOf(hControl), HIWORD(wParam));
        if (!code.empty()) {
            Hear(std::to_string(LOWORD(wParam)) + ":" + code);
            EXPECT_EQ(hControl, hControl ? GetDlgItem(hDialog, LOWORD(wParam)) : nullptr);
        }
        if (atCommand) {
            atCommand(hDialog);
        }
        return TRUE;
    }
    case WM_VSCROLL:
    case WM_HSCROLL:
        Hear(std::to_string(GetDlgCtrlID(reinterpret_cast<HWND>(lParam))) +
             (uMessage == WM_VSCROLL ? ":VSCROLL " : ":HSCROLL ") + std::to_string(LOWORD(wParam)));
        return TRUE;
    case WM_DESTROY:
        Hear("DESTROY user " + std::to_string(GetWindowLongPtrW(hDialog, DWLP_USER)));
        return TRUE;
    case WM_USER + 7: SetWindowLongPtrW(hDialog, DWLP_MSGRESULT, 42); return wParam != 0;
    default: return FALSE;
    }
}

class Windows : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        hDialog_ = CreateDialogIndirectParamW(GetProgram(), FormData(Form()), nullptr, FormProc, 5);
        ASSERT_NE(hDialog_, nullptr);
        EXPECT_EQ(TakeHeard(), Heard{"INITDIALOG"});
    }
    void TearDown() override
    {
        atInit = atCommand = nullptr;
        if (hDialog_) {
            DestroyWindow(hDialog_);
        }
        heard.clear();
        BothBuilds::TearDown();
    }
    LRESULT Tell(int nId, UINT uMessage, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendDlgItemMessageW(hDialog_, nId, uMessage, wParam, lParam);
    }
    LRESULT TellText(int nId, UINT uMessage, WPARAM wParam, const WCHAR* wcText)
    {
        return Tell(nId, uMessage, wParam, reinterpret_cast<LPARAM>(wcText));
    }
    std::string Text(int nId)
    {
        WCHAR wcText[64] = {};
        GetDlgItemTextW(hDialog_, nId, wcText, 64);
        return Ascii(wcText);
    }
    HWND Item(int nId) { return GetDlgItem(hDialog_, nId); }
    void Fill(int nId, bool bCombo)
    {
        int nData = 100;
        for (const WCHAR* wcRow : {TEXT("Alpha"), TEXT("Beta"), TEXT("alphabet")}) {
            const LRESULT lRow = TellText(nId, bCombo ? CB_ADDSTRING : LB_ADDSTRING, 0, wcRow);
            Tell(nId, bCombo ? CB_SETITEMDATA : LB_SETITEMDATA, static_cast<WPARAM>(lRow), nData++);
        }
    }
    HWND hDialog_ = nullptr;
};

TEST_F(Windows, ComboBox)
{
    Fill(COMBO, true);
    EXPECT_EQ(Tell(COMBO, CB_GETCOUNT), 3);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), -1);
    EXPECT_EQ(Tell(COMBO, CB_GETITEMDATA, static_cast<WPARAM>(-1)), -1);
    EXPECT_EQ(Tell(COMBO, CB_GETITEMDATA, 3), -1);
    EXPECT_EQ(Tell(COMBO, CB_SETITEMDATA, 3, 1), -1);
    EXPECT_EQ(Text(COMBO), "");
    EXPECT_EQ(Tell(COMBO, CB_SETCURSEL, 1), 1);
    EXPECT_EQ(Text(COMBO), "Beta");
    EXPECT_EQ(Tell(COMBO, CB_GETITEMDATA, 1), 101);
    EXPECT_EQ(Tell(COMBO, CB_SETCURSEL, 7), -1); /* what is selected then, the systems do not agree on */
    EXPECT_EQ(Tell(COMBO, CB_SETCURSEL, static_cast<WPARAM>(-1)), -1);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), -1);
    EXPECT_EQ(TellText(COMBO, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), TEXT("ALPHABET")), 2);
    EXPECT_EQ(TellText(COMBO, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), TEXT("Alph")), -1);
    EXPECT_EQ(TellText(COMBO, CB_FINDSTRING, 0, TEXT("alpha")), 2); /* from behind row 0, round the end */
    EXPECT_EQ(TellText(COMBO, CB_FINDSTRING, 2, TEXT("alpha")), 0);
    EXPECT_EQ(Tell(COMBO, CB_GETLBTEXTLEN, 2), 8);
    EXPECT_EQ(Tell(COMBO, CB_GETLBTEXTLEN, 3), -1);

    Tell(COMBO, CB_SETCURSEL, 1); /* the selection stays with its row */
    EXPECT_EQ(TellText(COMBO, CB_INSERTSTRING, 0, TEXT("first")), 0);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), 2);
    EXPECT_EQ(Text(COMBO), "Beta");
    EXPECT_EQ(Tell(COMBO, CB_GETITEMDATA, 0), 0);
    EXPECT_EQ(Tell(COMBO, CB_DELETESTRING, 0), 3);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), 1);
    EXPECT_EQ(Tell(COMBO, CB_DELETESTRING, 1), 2);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), -1);
    EXPECT_EQ(Tell(COMBO, CB_DELETESTRING, 5), -1);
    EXPECT_EQ(TellText(COMBO, CB_SELECTSTRING, static_cast<WPARAM>(-1), TEXT("al")), 0);
    EXPECT_EQ(TellText(COMBO, WM_SETTEXT, 0, TEXT("Beta")), -1);
    EXPECT_EQ(TakeHeard(), Heard{}); /* the program's own changes are told to nobody */

    SetFocus(Item(COMBO));
    SendKey(VK_DOWN);
    EXPECT_EQ(TakeHeard(), Heard{"130:SELCHANGE"});
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), 1);
    Tell(COMBO, CB_RESETCONTENT);
    EXPECT_EQ(Tell(COMBO, CB_GETCURSEL), -1);
    EXPECT_EQ(Tell(COMBO_EMPTY, CB_SETCURSEL, 0), -1);
    EXPECT_EQ(Tell(COMBO_EMPTY, CB_GETITEMDATA, 0), -1);
    EXPECT_EQ(TakeHeard(), Heard{});
}

TEST_F(Windows, ListBox)
{
    Fill(LIST, false);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), -1);
    EXPECT_EQ(Tell(LIST, LB_GETITEMDATA, static_cast<WPARAM>(-1)), -1);
    EXPECT_NE(Tell(LIST, LB_SETCURSEL, 1), -1);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), 1);
    EXPECT_EQ(Tell(LIST, LB_SETCURSEL, 9), -1);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), 1);
    EXPECT_EQ(Tell(LIST, LB_GETITEMDATA, 1), 101);
    EXPECT_EQ(Tell(LIST, LB_GETSEL, 1), 1);
    EXPECT_EQ(TellText(LIST, LB_INSERTSTRING, 0, TEXT("first")), 0);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), 2);
    EXPECT_EQ(TellText(LIST, LB_INSERTSTRING, 9, TEXT("far")), -1);
    EXPECT_EQ(Tell(LIST, LB_DELETESTRING, 0), 3);
    EXPECT_EQ(Tell(LIST, LB_DELETESTRING, 1), 2);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), -1);
    EXPECT_EQ(TellText(LIST, LB_FINDSTRING, static_cast<WPARAM>(-1), TEXT("ALPHAB")), 1);
    EXPECT_EQ(Tell(LIST, LB_GETTEXTLEN, 1), 8);
    WCHAR wcRow[16] = {};
    EXPECT_EQ(Tell(LIST, LB_GETTEXT, 1, reinterpret_cast<LPARAM>(wcRow)), 8);
    EXPECT_EQ(Ascii(wcRow), "alphabet");
    EXPECT_EQ(Tell(LIST, LB_GETTEXT, 2, reinterpret_cast<LPARAM>(wcRow)), -1);
    int aStops[] = {80};
    EXPECT_EQ(Tell(LIST, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(aStops)), 1);
    EXPECT_EQ(Tell(LIST_PLAIN, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(aStops)), 0);
    EXPECT_EQ(TakeHeard(), Heard{});

    SetFocus(Item(LIST));
    Tell(LIST, LB_SETCURSEL, 0);
    SendKey(VK_DOWN);
    EXPECT_EQ(TakeHeard(), Heard{"140:SELCHANGE"});
    Fill(LIST_PLAIN, false); /* without LBS_NOTIFY */
    SetFocus(Item(LIST_PLAIN));
    SendKey(VK_DOWN);
    EXPECT_EQ(TakeHeard(), Heard{});

    for (int i = 0; i < 40; i++) {
        TellText(LIST, LB_ADDSTRING, 0, TEXT("row"));
    }
    Tell(LIST, LB_SETCURSEL, 30); /* comes into view */
    EXPECT_GT(Tell(LIST, LB_GETTOPINDEX), 20);
    EXPECT_LE(Tell(LIST, LB_GETTOPINDEX), 30);
    Tell(LIST, LB_SETTOPINDEX, 3);
    EXPECT_EQ(Tell(LIST, LB_GETTOPINDEX), 3);
    EXPECT_EQ(Tell(LIST, LB_GETCURSEL), 30);
}

TEST_F(Windows, EditControl)
{
    EXPECT_EQ(Text(EDIT_LINE), "first");
    SetDlgItemTextW(hDialog_, EDIT_LINE, TEXT("12"));
    EXPECT_EQ(TakeHeard(), Heard{"120:EN_CHANGE"});
    SetDlgItemTextW(hDialog_, EDIT_LINE, TEXT("12")); /* also when it is the same */
    SetDlgItemInt(hDialog_, EDIT_LINE, static_cast<UINT>(-7), TRUE);
    EXPECT_EQ(TakeHeard(), (Heard{"120:EN_CHANGE", "120:EN_CHANGE"}));
    EXPECT_EQ(Text(EDIT_LINE), "-7");
    SetDlgItemInt(hDialog_, EDIT_LINE, static_cast<UINT>(-7), FALSE);
    EXPECT_EQ(Text(EDIT_LINE), "4294967289");
    TakeHeard();
    SetDlgItemTextW(hDialog_, EDIT_LINES, TEXT("many lines"));
    SetDlgItemTextW(hDialog_, LABEL, TEXT("new"));
    EXPECT_EQ(TakeHeard(), Heard{});
    EXPECT_EQ(Tell(LABEL, WM_GETTEXTLENGTH), 3);

    /* The limit is for what is typed. */
    Tell(EDIT_LINE, EM_LIMITTEXT, 3);
    EXPECT_EQ(Tell(EDIT_LINE, EM_GETLIMITTEXT), 3);
    SetDlgItemTextW(hDialog_, EDIT_LINE, TEXT("12345"));
    EXPECT_EQ(Text(EDIT_LINE), "12345");
    SetDlgItemTextW(hDialog_, EDIT_LINE, TEXT(""));
    TakeHeard();
    SetFocus(Item(EDIT_LINE));
    for (const WCHAR* pChar = TEXT("123"); *pChar; pChar++) {
        Tell(EDIT_LINE, WM_CHAR, *pChar, 1);
    }
    EXPECT_EQ(TakeHeard(), (Heard{"120:EN_CHANGE", "120:EN_CHANGE", "120:EN_CHANGE"}));
    Tell(EDIT_LINE, WM_CHAR, '4', 1);
    EXPECT_EQ(Text(EDIT_LINE), "123");
    TakeHeard(); /* some systems tell of a change that was none */
    Tell(EDIT_LINE, EM_SETSEL, 0, -1);
    Tell(EDIT_LINE, WM_CHAR, '9', 1);
    EXPECT_EQ(Text(EDIT_LINE), "9");
    Tell(EDIT_LINE, WM_CHAR, VK_BACK, 1);
    EXPECT_EQ(Text(EDIT_LINE), "");
    EXPECT_EQ(TakeHeard(), (Heard{"120:EN_CHANGE", "120:EN_CHANGE"}));
    Tell(EDIT_LINE, EM_SETREADONLY, 1);
    Tell(EDIT_LINE, WM_CHAR, '9', 1);
    EXPECT_EQ(Text(EDIT_LINE), "");
    EXPECT_EQ(TakeHeard(), Heard{});

    SetFocus(Item(PUSH));
    EXPECT_EQ(TakeHeard(), Heard{"120:EN_KILLFOCUS"});

    /* Room for the text counts its end. */
    SetDlgItemTextW(hDialog_, LABEL, TEXT("abcdef"));
    WCHAR wcShort[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(GetDlgItemTextW(hDialog_, LABEL, wcShort, 4), 3u);
    EXPECT_EQ(Ascii(wcShort), "abc");
    EXPECT_EQ(wcShort[4], 'x');
    EXPECT_EQ(GetDlgItemTextW(hDialog_, MISSING, wcShort, 4), 0u);
    EXPECT_EQ(wcShort[0], 0);
}

TEST_F(Windows, Numbers)
{
    struct {
        const WCHAR* wcText;
        BOOL bSigned;
        int nValue;
        BOOL bDone;
    } const aRows[] = {
        {TEXT("42"), TRUE, 42, TRUE},          {TEXT(""), TRUE, 0, FALSE},
        {TEXT("-5"), TRUE, -5, TRUE},          {TEXT("  17"), TRUE, 17, TRUE},
        {TEXT("12abc"), TRUE, 12, TRUE},       {TEXT("abc"), TRUE, 0, FALSE},
        {TEXT("+8"), TRUE, 8, TRUE},           {TEXT("-"), TRUE, 0, FALSE},
        {TEXT("99999999999"), TRUE, 0, FALSE}, {TEXT("2147483646"), TRUE, 2147483646, TRUE},
        {TEXT("12"), FALSE, 12, TRUE},         {TEXT("1.5"), TRUE, 1, TRUE},
        {TEXT("007"), TRUE, 7, TRUE},          {TEXT("- 5"), TRUE, 0, FALSE},
    };
    for (const auto& row : aRows) {
        SetDlgItemTextW(hDialog_, EDIT_LINE, row.wcText);
        BOOL bDone = 7;
        EXPECT_EQ(static_cast<int>(GetDlgItemInt(hDialog_, EDIT_LINE, &bDone, row.bSigned)), row.nValue)
            << Ascii(row.wcText);
        EXPECT_EQ(bDone, row.bDone) << Ascii(row.wcText);
    }
    BOOL bDone = 7;
    EXPECT_EQ(GetDlgItemInt(hDialog_, MISSING, &bDone, TRUE), 0u);
    EXPECT_EQ(bDone, FALSE);
    EXPECT_EQ(GetDlgItemInt(hDialog_, EDIT_LINE, nullptr, TRUE), 0u);
}

TEST_F(Windows, MissingControl)
{
    EXPECT_EQ(Item(MISSING), nullptr);
    EXPECT_EQ(Tell(MISSING, CB_GETCURSEL), 0);
    EXPECT_EQ(SetDlgItemTextW(hDialog_, MISSING, TEXT("x")), FALSE);
    SetDlgItemInt(hDialog_, MISSING, 1, TRUE);
    CheckDlgButton(hDialog_, MISSING, BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, MISSING), 0u);
    EXPECT_EQ(EnableWindow(nullptr, TRUE), FALSE);
    EXPECT_EQ(ShowWindow(nullptr, SW_SHOWNORMAL), FALSE);
    EXPECT_EQ(IsWindowEnabled(nullptr), FALSE);
    EXPECT_EQ(SendMessageW(nullptr, WM_USER, 0, 0), 0);
    EXPECT_EQ(GetDlgItem(nullptr, COMBO), nullptr);
    RECT rect = {1, 2, 3, 4};
    EXPECT_EQ(GetWindowRect(nullptr, &rect), FALSE);
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(TakeHeard(), Heard{});
}

TEST_F(Windows, ButtonsByProgram)
{
    EXPECT_NE(CheckRadioButton(hDialog_, RADIO_ONE, RADIO_THREE, RADIO_TWO), FALSE);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_ONE), 0u);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_TWO), 1u);
    CheckDlgButton(hDialog_, RADIO_THREE, BST_CHECKED); /* takes nothing from the others */
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_TWO), 1u);
    CheckRadioButton(hDialog_, RADIO_ONE, RADIO_THREE, MISSING);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_TWO), 0u);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_THREE), 0u);
    CheckDlgButton(hDialog_, CHECK_BOX, BST_CHECKED);
    EXPECT_EQ(Tell(CHECK_BOX, BM_GETCHECK), 1);
    Tell(CHECK_BOX, BM_SETCHECK, 8); /* any other number checks */
    EXPECT_EQ(Tell(CHECK_BOX, BM_GETCHECK), 1);
    CheckDlgButton(hDialog_, PUSH, BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, PUSH), 0u);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, EDIT_LINE), 0u);
    EXPECT_EQ(TakeHeard(), Heard{});
}

TEST_F(Windows, ButtonsByUser)
{
    ClickControl(hDialog_, CHECK_BOX);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, CHECK_BOX), 1u);
    ClickControl(hDialog_, CHECK_BOX);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, CHECK_BOX), 0u);
    ClickControl(hDialog_, PLAIN_CHECK); /* the program's business */
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, PLAIN_CHECK), 0u);
    ClickControl(hDialog_, PUSH);
    EXPECT_EQ(TakeHeard(), (Heard{"110:CLICKED", "110:CLICKED", "111:CLICKED", "170:CLICKED"}));

    CheckRadioButton(hDialog_, RADIO_ONE, RADIO_THREE, RADIO_ONE);
    ClickControl(hDialog_, RADIO_TWO);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_ONE), 0u);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_TWO), 1u);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, CHECK_BOX), 0u);
    ClickControl(hDialog_, RADIO_TWO); /* is told again */
    EXPECT_EQ(TakeHeard(), (Heard{"102:CLICKED", "102:CLICKED"}));
    SendKey(VK_DOWN);
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_THREE), 1u);
    EXPECT_EQ(GetFocus(), Item(RADIO_THREE));
    SendKey(VK_DOWN); /* round the group */
    EXPECT_EQ(IsDlgButtonChecked(hDialog_, RADIO_ONE), 1u);
    EXPECT_EQ(TakeHeard(), (Heard{"103:CLICKED", "101:CLICKED"}));
    SendKey(VK_TAB);
    EXPECT_EQ(GetFocus(), Item(CHECK_BOX));
    EXPECT_EQ(TakeHeard(), Heard{});

    EnableWindow(Item(PUSH), FALSE);
    ClickControl(hDialog_, PUSH);
    EXPECT_EQ(TakeHeard(), Heard{});
}

TEST_F(Windows, DefaultButton)
{
    EXPECT_EQ(SendMessageW(hDialog_, DM_GETDEFID, 0, 0),
              static_cast<LRESULT>(MAKELONG(PUSH_DEFAULT, DC_HASDEFID)));
    SetFocus(Item(EDIT_LINE));
    SendKey(VK_RETURN);
    EXPECT_EQ(TakeHeard(), Heard{"171:CLICKED"});
    SendMessageW(hDialog_, DM_SETDEFID, PUSH, 0);
    EXPECT_EQ(SendMessageW(hDialog_, DM_GETDEFID, 0, 0), static_cast<LRESULT>(MAKELONG(PUSH, DC_HASDEFID)));
    SendKey(VK_RETURN);
    EXPECT_EQ(TakeHeard(), Heard{"170:CLICKED"});
    EnableWindow(Item(PUSH), FALSE); /* a default button that is disabled does nothing */
    SendKey(VK_RETURN);
    EXPECT_EQ(TakeHeard(), Heard{});
    SendKey(VK_ESCAPE);
    EXPECT_EQ(TakeHeard(), Heard{"2:CLICKED"});
    Tell(PUSH_DEFAULT, BM_SETSTYLE, BS_PUSHBUTTON, 1);
    EXPECT_EQ(GetWindowLongPtrW(Item(PUSH_DEFAULT), GWL_STYLE) & BS_TYPEMASK, LONG_PTR{BS_PUSHBUTTON});
}

TEST_F(Windows, StateOfWindows)
{
    const HWND hEdit = Item(EDIT_LINE);
    EXPECT_EQ(EnableWindow(hEdit, FALSE), FALSE); /* whether it was disabled before */
    EXPECT_NE(EnableWindow(hEdit, FALSE), FALSE);
    EXPECT_EQ(IsWindowEnabled(hEdit), FALSE);
    EXPECT_NE(EnableWindow(hEdit, TRUE), FALSE);
    EnableWindow(hDialog_, FALSE);
    EXPECT_NE(IsWindowEnabled(hEdit), FALSE); /* its own state */
    EnableWindow(hDialog_, TRUE);

    EXPECT_NE(ShowWindow(hEdit, SW_HIDE), FALSE); /* whether it was visible before */
    EXPECT_EQ(ShowWindow(hEdit, SW_HIDE), FALSE);
    EXPECT_EQ(IsWindowVisible(hEdit), FALSE);
    SetDlgItemTextW(hDialog_, EDIT_LINE, TEXT("hidden")); /* changes all the same */
    EXPECT_EQ(Text(EDIT_LINE), "hidden");
    ShowWindow(hEdit, SW_SHOWNORMAL);
    EXPECT_NE(IsWindowVisible(hEdit), FALSE);
    EXPECT_EQ(IsWindowVisible(Item(HIDDEN)), FALSE);
    ShowWindow(hDialog_, SW_HIDE);
    EXPECT_EQ(IsWindowVisible(hEdit), FALSE); /* with all above it */
    ShowWindow(hDialog_, SW_SHOWNORMAL);

    EXPECT_EQ(GetParent(hEdit), hDialog_);
    EXPECT_EQ(GetDlgCtrlID(hEdit), EDIT_LINE);
    TakeHeard();
    SetFocus(hEdit);
    EXPECT_EQ(SetFocus(Item(PUSH)), hEdit);
    EnableWindow(Item(PUSH), FALSE);
    EXPECT_NE(GetFocus(), Item(PUSH));
    EXPECT_EQ(SetFocus(Item(PUSH)), nullptr); /* not while it is disabled */
    EXPECT_NE(GetFocus(), Item(PUSH));
    SetFocus(hEdit);
    ShowWindow(hEdit, SW_HIDE);
    EXPECT_NE(GetFocus(), hEdit);
    EXPECT_EQ(TakeHeard(), (Heard{"120:EN_KILLFOCUS", "120:EN_KILLFOCUS"}));
}

TEST_F(Windows, Places)
{
    /* A control lies where its dialog units say, in the dialog's client area. */
    RECT units = {77, 7, 77 + 50, 7 + 14}, rect = {};
    MapDialogRect(hDialog_, &units);
    ASSERT_NE(GetWindowRect(Item(EDIT_LINE), &rect), FALSE);
    const RECT screen = rect;
    EXPECT_NE(MapWindowPoints(nullptr, hDialog_, reinterpret_cast<POINT*>(&rect), 2), 0);
    EXPECT_EQ(rect.left, units.left);
    EXPECT_EQ(rect.top, units.top);
    EXPECT_LE(std::abs(rect.right - units.right), 1); /* the width is rounded on its own */
    EXPECT_EQ(rect.bottom, units.bottom);
    MapWindowPoints(hDialog_, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    EXPECT_EQ(std::pair(rect.left, rect.bottom), std::pair(screen.left, screen.bottom));

    /* A closed combo box is as high as one line, whatever its template says. */
    GetWindowRect(Item(COMBO), &rect);
    EXPECT_LT(rect.bottom - rect.top, 30);

    /* The client area is what the template asked for, the window is larger. */
    RECT client, size = {0, 0, 252, 200};
    MapDialogRect(hDialog_, &size);
    ASSERT_NE(GetClientRect(hDialog_, &client), FALSE);
    EXPECT_EQ(client.right, size.right);
    EXPECT_EQ(client.bottom, size.bottom);
    GetWindowRect(hDialog_, &rect);
    EXPECT_GT(rect.bottom - rect.top, client.bottom);

    /* Placement of a dialog counts on the screen; setting it keeps what it gave. */
    WINDOWPLACEMENT placement = {};
    placement.length = sizeof placement;
    ASSERT_NE(GetWindowPlacement(hDialog_, &placement), FALSE);
    const RECT normal = placement.rcNormalPosition;
    EXPECT_EQ(std::pair(normal.left, normal.bottom), std::pair(rect.left, rect.bottom));
    placement.rcNormalPosition = {normal.left + 30, normal.top + 20, normal.right + 30, normal.bottom + 20};
    EXPECT_NE(SetWindowPlacement(hDialog_, &placement), FALSE);
    RECT moved;
    GetWindowRect(hDialog_, &moved);
    EXPECT_EQ(std::pair(moved.left, moved.bottom), std::pair(rect.left + 30, rect.bottom + 20));

    EXPECT_NE(MoveWindow(Item(LIST), 10, 20, 200, 90, TRUE), FALSE);
    GetWindowRect(Item(LIST), &rect);
    MapWindowPoints(nullptr, hDialog_, reinterpret_cast<POINT*>(&rect), 2);
    EXPECT_EQ(std::pair(rect.left, rect.right), (std::pair<LONG, LONG>(10, 210)));
    EXPECT_EQ(rect.top, 20);
}

TEST_F(Windows, ScrollBars)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_POS;
    info.nMin = 25;
    info.nMax = 400;
    info.nPos = 900;
    EXPECT_EQ(SetScrollInfo(Item(SLIDER), SB_CTL, &info, TRUE), 400); /* limited to the range */
    info.fMask = SIF_ALL;
    info.nPos = info.nMin = -1;
    EXPECT_NE(GetScrollInfo(Item(SLIDER), SB_CTL, &info), FALSE);
    EXPECT_EQ(info.nPos, 400);
    EXPECT_EQ(info.nMin, 25);
    EXPECT_EQ(info.nTrackPos, 400);
    EXPECT_EQ(TakeHeard(), Heard{});

    SpinControl(hDialog_, SPIN, SB_LINEUP);
    SpinControl(hDialog_, SPIN, SB_LINEDOWN);
    EXPECT_EQ(TakeHeard(), (Heard{"150:VSCROLL 0", "150:VSCROLL 8", "150:VSCROLL 1", "150:VSCROLL 8"}));
    SpinControl(hDialog_, SLIDER, SB_LINELEFT);
    SpinControl(hDialog_, SLIDER, SB_LINERIGHT);
    EXPECT_EQ(TakeHeard(), (Heard{"151:HSCROLL 0", "151:HSCROLL 8", "151:HSCROLL 1", "151:HSCROLL 8"}));
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    GetScrollInfo(Item(SLIDER), SB_CTL, &info);
    EXPECT_EQ(info.nPos, 400); /* the program moves it */
}

TEST_F(Windows, Pictures)
{
    const auto hIcon = reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_ASTERISK));
    ASSERT_NE(hIcon, WPARAM{0});
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETICON, hIcon), 0); /* what was shown before */
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETICON, 0), static_cast<LRESULT>(hIcon));
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETIMAGE, IMAGE_BITMAP, 0), 0);
    EXPECT_EQ(Tell(LABEL, STM_SETICON, hIcon), 0);
    EXPECT_EQ(Tell(LABEL, STM_GETICON), 0);
    EXPECT_EQ(Tell(PICTURE_PLACE, STM_GETIMAGE, IMAGE_BITMAP), 0);
    EXPECT_EQ(LoadImageW(nullptr, TEXT("NOSUCHBITMAP"), IMAGE_BITMAP, 0, 0, LR_LOADTRANSPARENT), nullptr);
    const HCURSOR hHand = LoadCursorW(nullptr, IDC_HAND), hBefore = SetCursor(hHand);
    EXPECT_NE(hHand, nullptr);
    EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), hHand);
    EXPECT_EQ(GetCursor(), hHand);
    EXPECT_EQ(SetCursor(hBefore), hHand);
}

WNDPROC pfnBefore;
Heard subclassHeard;

LRESULT CALLBACK SubclassProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    if (uMessage == WM_KEYDOWN && wParam == VK_UP) {
        SetDlgItemTextW(GetParent(hWnd), GetDlgCtrlID(hWnd), TEXT("up"));
        return 0;
    }
    if (uMessage == WM_DESTROY || uMessage == WM_KEYDOWN) {
        subclassHeard.push_back(std::to_string(uMessage));
        heard.push_back("edit " + std::to_string(uMessage));
    }
    return CallWindowProcW(pfnBefore, hWnd, uMessage, wParam, lParam);
}

TEST_F(Windows, SubclassedEditAndEnd)
{
    const auto lProc = reinterpret_cast<LONG_PTR>(SubclassProc);
    pfnBefore = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(Item(EDIT_LINE), GWLP_WNDPROC, lProc));
    ASSERT_NE(pfnBefore, nullptr);
    EXPECT_EQ(GetWindowLongPtrW(Item(EDIT_LINE), GWLP_WNDPROC), lProc);
    SetFocus(Item(EDIT_LINE));
    SendKey(VK_UP);
    EXPECT_EQ(Text(EDIT_LINE), "up");
    EXPECT_EQ(TakeHeard(), Heard{"120:EN_CHANGE"});
    SendKey(VK_HOME);
    EXPECT_EQ(TakeHeard(), Heard{"edit " + std::to_string(WM_KEYDOWN)});

    /* Results of a dialog's own messages. */
    EXPECT_EQ(SendMessageW(hDialog_, WM_USER + 7, 1, 0), 42);
    EXPECT_EQ(SendMessageW(hDialog_, WM_USER + 7, 0, 0), 0);
    EXPECT_EQ(GetWindowLongPtrW(hDialog_, DWLP_USER), 5);

    /* The dialog hears of its end before its controls do, and still has its data. */
    SetFocus(Item(PUSH));
    TakeHeard();
    DestroyWindow(hDialog_);
    EXPECT_EQ(TakeHeard(), (Heard{"DESTROY user 5", "edit " + std::to_string(WM_DESTROY)}));
    EXPECT_EQ(IsWindow(hDialog_), FALSE);
    hDialog_ = nullptr;
}

int nEditPaints;

LRESULT CALLBACK CountPaints(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    nEditPaints += uMessage == WM_PAINT;
    return CallWindowProcW(pfnBefore, hWnd, uMessage, wParam, lParam);
}

/* Whoever updates a window has what lies in it painted as well, at once and only as far as it is invalid. */
TEST_F(Windows, UpdatingReachesControls)
{
    FinishPainting(hDialog_);
    pfnBefore = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(Item(EDIT_LINE), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountPaints)));
    nEditPaints = 0;
    InvalidateRect(Item(EDIT_LINE), nullptr, FALSE);
    EXPECT_TRUE(UpdateWindow(hDialog_));
    EXPECT_EQ(nEditPaints, 1);
    EXPECT_TRUE(UpdateWindow(hDialog_));
    EXPECT_EQ(nEditPaints, 1);
}

TEST_F(Windows, Painting)
{
    /* Only what was made invalid is painted, and at once when that is asked for. */
    FinishPainting(hDialog_);
    const RECT part = {10, 20, 30, 40}, more = {15, 10, 25, 60};
    InvalidateRect(hDialog_, &part, FALSE);
    InvalidateRect(hDialog_, &more, FALSE);
    PAINTSTRUCT paint = {};
    ASSERT_NE(BeginPaint(hDialog_, &paint), nullptr);
    EXPECT_EQ(std::pair(paint.rcPaint.left, paint.rcPaint.top), (std::pair<LONG, LONG>(10, 10)));
    EXPECT_EQ(std::pair(paint.rcPaint.right, paint.rcPaint.bottom), (std::pair<LONG, LONG>(30, 60)));
    EXPECT_NE(EndPaint(hDialog_, &paint), FALSE);
    ASSERT_NE(BeginPaint(hDialog_, &paint), nullptr);
    EXPECT_EQ(paint.rcPaint.right - paint.rcPaint.left, 0);
    EndPaint(hDialog_, &paint);
}

TEST_F(Windows, WritingInInitAndCommandIsHeard)
{
    DestroyWindow(hDialog_);
    heard.clear();
    atInit = [](HWND hDialog) {
        SetDlgItemTextW(hDialog, EDIT_LINE, TEXT("7"));
        SendDlgItemMessageW(hDialog, COMBO, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(TEXT("row")));
        SendDlgItemMessageW(hDialog, COMBO, CB_SETCURSEL, 0, 0);
        CheckDlgButton(hDialog, CHECK_BOX, BST_CHECKED);
        CheckRadioButton(hDialog, RADIO_ONE, RADIO_THREE, RADIO_ONE);
    };
    atCommand = [](HWND hDialog) {
        if (GetDlgItemInt(hDialog, EDIT_LINE, nullptr, TRUE) == 7) {
            SetDlgItemInt(hDialog, EDIT_LINE, 99, TRUE); /* as a page that limits its number */
        }
    };
    hDialog_ = CreateDialogIndirectParamW(GetProgram(), FormData(Form()), nullptr, FormProc, 5);
    Heard all = TakeHeard();
    EXPECT_EQ(all, (Heard{"INITDIALOG", "120:EN_CHANGE", "120:EN_CHANGE"}));
    EXPECT_EQ(Text(EDIT_LINE), "99");
}

TEST_F(Windows, ModalDialogs)
{
    /* The owner is the window of its own in which the parent lies; it is disabled meanwhile. */
    HWND hOwnerSeen = nullptr;
    BOOL bOwnerEnabled = TRUE, bControlEnabled = FALSE;
    atInit = [&](HWND hDialog) {
        hOwnerSeen = GetParent(hDialog);
        bOwnerEnabled = IsWindowEnabled(hOwnerSeen);
        bControlEnabled = IsWindowEnabled(GetDlgItem(hOwnerSeen, PUSH));
        EndDialog(hDialog, 77);
    };
    EXPECT_EQ(DialogBoxIndirectParamW(GetProgram(), FormData(Form()), Item(LIST), FormProc, 6), 77);
    EXPECT_EQ(hOwnerSeen, hDialog_);
    EXPECT_EQ(bOwnerEnabled, FALSE);
    EXPECT_NE(bControlEnabled, FALSE);
    EXPECT_NE(IsWindowEnabled(hDialog_), FALSE);
    EXPECT_EQ(TakeHeard(), (Heard{"INITDIALOG", "DESTROY user 6"}));
    EXPECT_EQ(DialogBoxParamW(GetProgram(), MAKEINTRESOURCEW(4711), hDialog_, FormProc, 6), -1);
    EXPECT_EQ(TakeHeard(), Heard{});
}

TEST_F(Windows, EnumeratesAllBelow)
{
    std::vector<int> ids;
    EnumChildWindows(
        hDialog_,
        [](HWND hChild, LPARAM lParam) -> BOOL {
            auto& all = *reinterpret_cast<std::vector<int>*>(lParam);
            all.push_back(GetDlgCtrlID(hChild));
            return all.size() < 3;
        },
        reinterpret_cast<LPARAM>(&ids));
    EXPECT_EQ(ids, (std::vector<int>{RADIO_ONE, RADIO_TWO, RADIO_THREE}));
}

} // namespace
