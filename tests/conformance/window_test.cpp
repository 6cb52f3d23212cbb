/* What the pages rely on when they talk to their controls: results, what a call leaves alone, and above all
   what is told to the dialog and what is not. One dialog with a control of every kind; its procedure writes
   down what it hears. The steps are those of tests/data/conformance_windows.txt. */
#include <algorithm>

#include "support/dialog_builder.h"
#include "support/dialog_user.h"
#include "support/script.h"

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

#define NAMED(name) std::pair(#name, name)
const std::map<std::string, int> controls = {
    NAMED(RADIO_ONE),     NAMED(RADIO_TWO),  NAMED(RADIO_THREE),  NAMED(CHECK_BOX),   NAMED(PLAIN_CHECK),
    NAMED(EDIT_LINE),     NAMED(EDIT_LINES), NAMED(COMBO),        NAMED(COMBO_EMPTY), NAMED(LIST),
    NAMED(LIST_PLAIN),    NAMED(SPIN),       NAMED(SLIDER),       NAMED(LABEL),       NAMED(ICON_PLACE),
    NAMED(PICTURE_PLACE), NAMED(PUSH),       NAMED(PUSH_DEFAULT), NAMED(GROUP),       NAMED(HIDDEN),
    NAMED(MISSING),       NAMED(IDCANCEL)};
const std::map<std::string, UINT> messages = {
    NAMED(CB_GETCOUNT),     NAMED(CB_GETCURSEL),       NAMED(CB_GETITEMDATA),  NAMED(CB_SETITEMDATA),
    NAMED(CB_SETCURSEL),    NAMED(CB_FINDSTRINGEXACT), NAMED(CB_FINDSTRING),   NAMED(CB_GETLBTEXTLEN),
    NAMED(CB_INSERTSTRING), NAMED(CB_DELETESTRING),    NAMED(CB_SELECTSTRING), NAMED(CB_RESETCONTENT),
    NAMED(WM_SETTEXT),      NAMED(LB_GETCURSEL),       NAMED(LB_GETITEMDATA),  NAMED(LB_SETCURSEL),
    NAMED(LB_GETSEL),       NAMED(LB_INSERTSTRING),    NAMED(LB_DELETESTRING), NAMED(LB_FINDSTRING),
    NAMED(LB_GETTEXTLEN),   NAMED(LB_SETTOPINDEX),     NAMED(LB_GETTOPINDEX),  NAMED(WM_GETTEXTLENGTH),
    NAMED(EM_LIMITTEXT),    NAMED(EM_GETLIMITTEXT),    NAMED(EM_SETSEL),       NAMED(EM_SETREADONLY),
    NAMED(BM_GETCHECK),     NAMED(BM_SETCHECK),        NAMED(BM_SETSTYLE),     NAMED(STM_GETICON),
    NAMED(STM_GETIMAGE),    NAMED(DM_GETDEFID),        NAMED(DM_SETDEFID),     NAMED(WM_USER)};
const std::map<std::string, WPARAM> keys = {NAMED(VK_DOWN), NAMED(VK_TAB), NAMED(VK_RETURN), NAMED(VK_ESCAPE),
                                            NAMED(VK_BACK), NAMED(VK_UP),  NAMED(VK_HOME)};

std::string NameOf(int nId)
{
    const auto named = std::find_if(controls.begin(), controls.end(),
                                    [nId](const auto& each) { return each.second == nId; });
    return named == controls.end() ? "none" : named->first;
}

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

/* What the dialog hears, as "CONTROL code"; only what pages act on. */
std::string heard;
std::function<void(HWND)> atInit, atCommand;

void Hear(const std::string& what)
{
    heard += (heard.empty() ? "" : ", ") + what;
}

std::string TakeHeard()
{
    return std::exchange(heard, {});
}

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
            Hear(NameOf(LOWORD(wParam)) + " " + code);
            EXPECT_EQ(hControl, hControl ? GetDlgItem(hDialog, LOWORD(wParam)) : nullptr);
        }
        if (atCommand) {
            atCommand(hDialog);
        }
        return TRUE;
    }
    case WM_VSCROLL:
    case WM_HSCROLL:
        Hear(NameOf(GetDlgCtrlID(reinterpret_cast<HWND>(lParam))) +
             (uMessage == WM_VSCROLL ? " VSCROLL " : " HSCROLL ") + std::to_string(LOWORD(wParam)));
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
        OpenForm();
        EXPECT_EQ(TakeHeard(), "INITDIALOG");
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
    void OpenForm()
    {
        hDialog_ = CreateDialogIndirectParamW(GetProgram(), FormData(Form()), nullptr, FormProc, 5);
        ASSERT_NE(hDialog_, nullptr);
    }
    LRESULT Tell(int nId, UINT uMessage, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return SendDlgItemMessageW(hDialog_, nId, uMessage, wParam, lParam);
    }
    std::string Text(int nId)
    {
        WCHAR wcText[64] = {};
        GetDlgItemTextW(hDialog_, nId, wcText, 64);
        return Ascii(wcText);
    }
    HWND Item(int nId) { return GetDlgItem(hDialog_, nId); }
    HWND hDialog_ = nullptr;
};

class WindowScripts : public Windows, public testing::WithParamInterface<Script> {
  protected:
    static int Id(const std::string& name) { return controls.at(name); }
    HWND Named(const std::string& name)
    {
        return name == "DIALOG" ? hDialog_ : name == "NOTHING" ? nullptr : Item(Id(name));
    }
    /* A number, or the number of a control. */
    static WPARAM Value(const Args& words, size_t n)
    {
        return n >= words.size()          ? 0
               : controls.count(words[n]) ? static_cast<WPARAM>(controls.at(words[n]))
                                          : static_cast<WPARAM>(ToNumber(words[n]));
    }
    std::string TellDialog(const Args& words)
    {
        const UINT uMessage = messages.at(words[0]) + (words[0] == "WM_USER" ? 7 : 0);
        const LRESULT lResult = SendMessageW(hDialog_, uMessage, Value(words, 1), 0);
        return Said(LOWORD(lResult)) + (HIWORD(lResult) == DC_HASDEFID ? " default" : "");
    }
    void Type(const Args& words)
    {
        for (const char c : words[1]) {
            Tell(Id(words[0]), WM_CHAR, static_cast<WPARAM>(c), 1);
        }
    }
    static std::string NameOfWindow(HWND hWnd) { return hWnd ? NameOf(GetDlgCtrlID(hWnd)) : "none"; }

    /* Three rows with the data 100, 101, 102. */
    void Fill(const std::string& name)
    {
        const bool bCombo = name == "COMBO";
        LPARAM lData = 100;
        for (const WCHAR* wcRow : {TEXT("Alpha"), TEXT("Beta"), TEXT("alphabet")}) {
            const LRESULT lRow =
                Tell(Id(name), bCombo ? CB_ADDSTRING : LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcRow));
            Tell(Id(name), bCombo ? CB_SETITEMDATA : LB_SETITEMDATA, static_cast<WPARAM>(lRow), lData++);
        }
    }
    std::string Row(const Args& words)
    {
        WCHAR wcRow[16] = {};
        const LRESULT lResult =
            Tell(Id(words[0]), LB_GETTEXT, Value(words, 1), reinterpret_cast<LPARAM>(wcRow));
        return Said(lResult) + (*wcRow ? " " + Ascii(wcRow) : "");
    }
    std::string NumberOf(const Args& words)
    {
        SetDlgItemTextW(hDialog_, EDIT_LINE, WideWord(words[0]).c_str());
        BOOL bDone = 7;
        const UINT uNumber = GetDlgItemInt(hDialog_, EDIT_LINE, &bDone, words.size() < 2);
        return std::to_string(static_cast<int>(uNumber)) + (bDone ? "" : " failed");
    }
    LRESULT TabStops(const Args& words)
    {
        int nStop = 80;
        return Tell(Id(words[0]), LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&nStop));
    }
};

TEST_P(WindowScripts, AnswerAsWritten)
{
    const auto item = [&](const Args& w) { return Id(w[0]); };
    const auto window = [&](const Args& w) { return Named(w[0]); };
    const Verbs verbs = {
        VERB("tell", Tell(item(w), messages.at(w[1]), Value(w, 2), static_cast<LPARAM>(Value(w, 3)))),
        VERB("tell-text",
             Tell(item(w), messages.at(w[1]), Value(w, 2), reinterpret_cast<LPARAM>(WideWord(w[3]).c_str()))),
        VERB("dialog", TellDialog(w)),
        VERB("heard", TakeHeard()),
        DEED("fill", Fill(w[0])),
        VERB("row", Row(w)),
        VERB("tab-stops", TabStops(w)),
        VERB("text", Text(item(w))),
        VERB("set", SetDlgItemTextW(hDialog_, item(w), WideWord(w[1]).c_str()) != 0),
        DEED("set-number", SetDlgItemInt(hDialog_, item(w), static_cast<UINT>(Value(w, 1)), w.size() < 3)),
        VERB("number-of", NumberOf(w)),
        DEED("type", Type(w)),
        DEED("erase", Tell(item(w), WM_CHAR, VK_BACK, 1)),
        DEED("key", SendKey(keys.at(w[0]))),
        DEED("click", ClickControl(hDialog_, item(w))),
        DEED("spin", SpinControl(hDialog_, item(w), static_cast<int>(Value(w, 1)))),
        VERB("focus", NameOfWindow(SetFocus(window(w)))),
        VERB("focused", NameOfWindow(GetFocus())),
        VERB("enable", EnableWindow(window(w), Value(w, 1) != 0) != 0),
        VERB("enabled", IsWindowEnabled(window(w)) != 0),
        VERB("show", ShowWindow(window(w), Value(w, 1) ? SW_SHOWNORMAL : SW_HIDE) != 0),
        VERB("visible", IsWindowVisible(window(w)) != 0),
        DEED("check", CheckDlgButton(hDialog_, item(w), static_cast<UINT>(Value(w, 1)))),
        VERB("radio", CheckRadioButton(hDialog_, RADIO_ONE, RADIO_THREE, item(w)) != 0),
        VERB("checked", IsDlgButtonChecked(hDialog_, item(w))),
        VERB("button-type", GetWindowLongPtrW(window(w), GWL_STYLE) & BS_TYPEMASK),
    };
    Play(GetParam(), verbs);
}

INSTANTIATE_TEST_SUITE_P(, WindowScripts, testing::ValuesIn(ReadScripts("conformance_windows.txt")),
                         ScriptName);

TEST_F(Windows, NoWindowIsNone)
{
    EXPECT_EQ(GetDlgItem(nullptr, COMBO), nullptr);
    EXPECT_EQ(SendMessageW(nullptr, WM_USER, 0, 0), 0);
    RECT rect = {1, 2, 3, 4};
    EXPECT_EQ(GetWindowRect(nullptr, &rect), FALSE);
    EXPECT_EQ(rect.left, 1);
    BOOL bDone = 7;
    EXPECT_EQ(GetDlgItemInt(hDialog_, MISSING, &bDone, TRUE), 0u);
    EXPECT_EQ(bDone, FALSE);
    /* Room for a text counts its end. */
    SetDlgItemTextW(hDialog_, LABEL, TEXT("abcdef"));
    WCHAR wcShort[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(GetDlgItemTextW(hDialog_, LABEL, wcShort, 4), 3u);
    EXPECT_EQ(Ascii(wcShort), "abc");
    EXPECT_EQ(wcShort[4], 'x');
    EXPECT_EQ(GetDlgItemTextW(hDialog_, MISSING, wcShort, 4), 0u);
    EXPECT_EQ(wcShort[0], 0);
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
    EXPECT_EQ(TakeHeard(), "");
    SpinControl(hDialog_, SLIDER, SB_LINERIGHT); /* is told; the program moves it */
    info.fMask = SIF_ALL;
    info.nPos = info.nMin = -1;
    EXPECT_NE(GetScrollInfo(Item(SLIDER), SB_CTL, &info), FALSE);
    EXPECT_EQ(info.nPos, 400);
    EXPECT_EQ(info.nMin, 25);
    EXPECT_EQ(info.nTrackPos, 400);
}

TEST_F(Windows, Pictures)
{
    const auto hIcon = reinterpret_cast<WPARAM>(LoadIconW(nullptr, IDI_ASTERISK));
    ASSERT_NE(hIcon, WPARAM{0});
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETICON, hIcon), 0); /* what was shown before */
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETICON, 0), static_cast<LRESULT>(hIcon));
    EXPECT_EQ(Tell(ICON_PLACE, STM_SETIMAGE, IMAGE_BITMAP, 0), 0);
    EXPECT_EQ(Tell(LABEL, STM_SETICON, hIcon), 0);
    EXPECT_EQ(Tell(PICTURE_PLACE, STM_GETIMAGE, IMAGE_BITMAP), 0);
    EXPECT_EQ(LoadImageW(nullptr, TEXT("NOSUCHBITMAP"), IMAGE_BITMAP, 0, 0, LR_LOADTRANSPARENT), nullptr);
    const HCURSOR hHand = LoadCursorW(nullptr, IDC_HAND), hBefore = SetCursor(hHand);
    EXPECT_NE(hHand, nullptr);
    EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), hHand);
    EXPECT_EQ(GetCursor(), hHand);
    EXPECT_EQ(SetCursor(hBefore), hHand);
}

WNDPROC pfnBefore;

LRESULT CALLBACK SubclassProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    if (uMessage == WM_KEYDOWN && wParam == VK_UP) {
        SetDlgItemTextW(GetParent(hWnd), GetDlgCtrlID(hWnd), TEXT("up"));
        return 0;
    }
    if (uMessage == WM_DESTROY || uMessage == WM_KEYDOWN) {
        Hear(uMessage == WM_DESTROY ? "edit DESTROY" : "edit KEYDOWN");
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
    EXPECT_EQ(TakeHeard(), "EDIT_LINE EN_CHANGE");
    SendKey(VK_HOME);
    EXPECT_EQ(TakeHeard(), "edit KEYDOWN");

    /* The dialog hears of its end before its controls do, and still has its data. */
    SetFocus(Item(PUSH));
    TakeHeard();
    DestroyWindow(hDialog_);
    EXPECT_EQ(TakeHeard(), "DESTROY user 5, edit DESTROY");
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
    OpenForm();
    EXPECT_EQ(TakeHeard(), "INITDIALOG, EDIT_LINE EN_CHANGE, EDIT_LINE EN_CHANGE");
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
    EXPECT_EQ(TakeHeard(), "INITDIALOG, DESTROY user 6");
    EXPECT_EQ(DialogBoxParamW(GetProgram(), MAKEINTRESOURCEW(4711), hDialog_, FormProc, 6), -1);
    EXPECT_EQ(TakeHeard(), "");
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
