/* The hosted windows beyond what both builds state: modal dialogs that the tests drive, faults, and that nothing
   outlives its dialog. */
#include "support/dialog_user.h"
#include "support/sample_machine.h"

namespace {

enum { EDIT = 101, GO_ON = 102, LOGO = 103, AREA = 104 };

const DialogBuilder& Form()
{
    static const DialogBuilder form(WS_POPUP | WS_CAPTION | WS_SYSMENU, 200, 100,
                                    {{EDIT, u"Edit", WS_TABSTOP, 7, 7, 50, 14},
                                     {GO_ON, u"Button", WS_TABSTOP, 7, 30, 50, 14},
                                     {LOGO, u"Static", SS_NOTIFY, 100, 7, 50, 20},
                                     {AREA, u"Static", 0, 100, 40, 50, 20}});
    return form;
}

std::vector<std::string> heard;

INT_PTR CALLBACK FormProc(HWND hDialog, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    switch (uMessage) {
    case WM_COMMAND:
        heard.push_back(std::to_string(LOWORD(wParam)) + ":" + std::to_string(HIWORD(wParam)));
        if (LOWORD(wParam) == GO_ON) { /* another dialog over this one, then the end */
            EndDialog(hDialog, 10 + DialogBoxIndirectParamW(nullptr, Form().Data(), hDialog, FormProc, 0));
        } else if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(hDialog, IDCANCEL);
        }
        return TRUE;
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
        heard.push_back("mouse " + std::to_string(LOWORD(lParam)) + "," + std::to_string(HIWORD(lParam)));
        return TRUE;
    case WM_HELP:
        heard.push_back("help " + std::to_string(reinterpret_cast<const HELPINFO*>(lParam)->iCtrlId));
        return TRUE;
    case WM_CONTEXTMENU:
        heard.push_back("context " + std::to_string(GetDlgCtrlID(reinterpret_cast<HWND>(wParam))));
        return TRUE;
    default: return FALSE;
    }
}

std::vector<std::string> TakeHeard()
{
    return std::exchange(heard, {});
}

INT_PTR RunForm()
{
    return DialogBoxIndirectParamW(nullptr, Form().Data(), nullptr, FormProc, 0);
}

class HostedWindows : public MachineTest {
  protected:
    void TearDown() override
    {
        heard.clear();
        MachineTest::TearDown();
    }
};
using Heard = std::vector<std::string>;

TEST_F(HostedWindows, ModalStepsGoToTheDialogThatIsUp)
{
    HWND hOuter = nullptr;
    QueueModalStep([&](HWND hDialog) {
        hOuter = hDialog;
        EXPECT_TRUE(TypeText(hDialog, EDIT, u"12"));
        EXPECT_TRUE(ClickControl(hDialog, GO_ON));
    });
    QueueModalStep([&](HWND hDialog) {
        EXPECT_NE(hDialog, hOuter);
        EXPECT_EQ(GetParent(hDialog), hOuter);
        EXPECT_FALSE(ClickControl(hOuter, GO_ON)); /* not while another is over it */
        EndDialog(hDialog, 5);
    });
    EXPECT_EQ(RunForm(), 15);
    EXPECT_EQ(ModalStepsLeft(), 0u);
    EXPECT_EQ(CountLive().nWindows, 0);

    /* With no step left the dialog is cancelled; one that does not mind is closed by force. */
    EXPECT_EQ(RunForm(), IDCANCEL);
    EXPECT_EQ(ForcedCloses(), 0);
    const DLGPROC deaf = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, Form().Data(), nullptr, deaf, 0), IDCANCEL);
    EXPECT_EQ(ForcedCloses(), 1);
    EXPECT_EQ(DialogsOpened(), 4);
    QueueModalStep([](HWND hDialog) { DestroyWindow(hDialog); }); /* under its own feet */
    EXPECT_EQ(RunForm(), -1);
    EXPECT_EQ(CountLive().nWindows, 0);
}

TEST_F(HostedWindows, ControlsMayEndTheirDialog)
{
    /* A procedure that destroys everything at any notification: nobody looks at a freed record. */
    static bool bAtInit;
    const DLGPROC vanish = [](HWND hDialog, UINT uMessage, WPARAM, LPARAM) -> INT_PTR {
        if (uMessage == WM_COMMAND || uMessage == WM_VSCROLL) {
            DestroyWindow(hDialog);
        }
        return uMessage != WM_INITDIALOG || bAtInit; /* true: the edit control gets the focus, and tells it */
    };
    static const DialogBuilder form(WS_POPUP | WS_VISIBLE, 200, 100,
                                    {{1, u"Edit", WS_TABSTOP, 0, 0, 50, 14},
                                     {2, u"Button", BS_AUTORADIOBUTTON | WS_GROUP, 0, 20, 50, 14},
                                     {3, u"Button", BS_AUTORADIOBUTTON, 0, 40, 50, 14},
                                     {4, u"ComboBox", CBS_DROPDOWNLIST | WS_GROUP, 60, 0, 50, 60},
                                     {5, u"ListBox", LBS_NOTIFY, 60, 20, 50, 40},
                                     {6, u"ScrollBar", SBS_VERT, 120, 0, 10, 14}});
    const std::function<void(HWND)> aSteps[] = {
        [](HWND h) { TypeText(h, 1, u"xy"); },
        [](HWND h) { ClickControl(h, 2); },
        [](HWND h) {
            SetFocus(GetDlgItem(h, 2));
            SendKey(VK_DOWN);
        },
        [](HWND h) { PickRow(h, 4, 0); },
        [](HWND h) { DoubleClickRow(h, 5, 0); },
        [](HWND h) { SpinControl(h, 6, SB_THUMBTRACK, 5); },
        [](HWND h) { SetDlgItemTextW(h, 1, u"x"); },
        [](HWND h) {
            SetFocus(GetDlgItem(h, 5));
            EnableWindow(GetDlgItem(h, 5), FALSE);
        },
        [](HWND h) { SendDlgItemMessageW(h, 3, BM_CLICK, 0, 0); },
    };
    for (const auto& step : aSteps) {
        const HWND hDialog = CreateDialogIndirectParamW(nullptr, form.Data(), nullptr, vanish, 0);
        ASSERT_NE(hDialog, nullptr);
        SendDlgItemMessageW(hDialog, 4, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"row"));
        SendDlgItemMessageW(hDialog, 5, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"row"));
        step(hDialog);
        EXPECT_FALSE(IsWindow(hDialog));
        EXPECT_EQ(CountLive().nWindows, 0);
    }
    bAtInit = true;
    EXPECT_EQ(CreateDialogIndirectParamW(nullptr, form.Data(), nullptr, vanish, 0), nullptr);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, form.Data(), nullptr, vanish, 0), -1);
    EXPECT_EQ(CountLive().nWindows, 0);

    /* A click on a radio button that cannot be reached comes to an end. */
    const HWND hDialog = CreateDialogIndirectParamW(nullptr, form.Data(), nullptr, FormProc, 0);
    EnableWindow(GetDlgItem(hDialog, 2), FALSE);
    SendDlgItemMessageW(hDialog, 2, BM_CLICK, 0, 0);
    EXPECT_EQ(IsDlgButtonChecked(hDialog, 2), 1u);
    DestroyWindow(hDialog);
}

TEST_F(HostedWindows, MouseAndHelp)
{
    QueueModalStep([](HWND hDialog) {
        RECT rect;
        GetWindowRect(GetDlgItem(hDialog, AREA), &rect);
        MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&rect), 2);
        MoveMouse(hDialog, rect.left, rect.top); /* a label lets it through, in the dialog's co-ordinates */
        EXPECT_EQ(TakeHeard(), Heard{"mouse " + std::to_string(rect.left) + "," + std::to_string(rect.top)});
        GetWindowRect(GetDlgItem(hDialog, LOGO), &rect);
        MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT*>(&rect), 2);
        ReleaseMouse(hDialog, rect.left, rect.top); /* one that notifies keeps it */
        EXPECT_EQ(TakeHeard(), Heard{});
        EXPECT_TRUE(ClickControl(hDialog, LOGO));
        EXPECT_FALSE(ClickControl(hDialog, AREA));
        RightClick(hDialog, rect.left, rect.top);
        SetFocus(GetDlgItem(hDialog, GO_ON));
        SendKey(VK_F1);
        EXPECT_EQ(TakeHeard(), (Heard{"103:0", "context 103", "help 102"}));
        CloseWindowByUser(hDialog);
    });
    EXPECT_EQ(RunForm(), IDCANCEL);
}

TEST_F(HostedWindows, FaultsAnswerInTheirPlace)
{
    QueueModalStep([](HWND hDialog) {
        SetDlgItemTextW(hDialog, EDIT, u"42");
        FailCall(CALL_GetDlgItemInt, 1);
        BOOL bDone = 7;
        EXPECT_EQ(GetDlgItemInt(hDialog, EDIT, &bDone, TRUE), 0u);
        EXPECT_EQ(bDone, FALSE);
        EXPECT_EQ(StopFaults(), 1);
        TellLies(LIE_UNTERMINATED, CALL_GetDlgItemTextW);
        WCHAR wcText[5] = {0, 0, 0, 0, u'x'};
        EXPECT_EQ(GetDlgItemTextW(hDialog, EDIT, wcText, 4), 4u);
        EXPECT_TRUE(wcText[3] != 0 && wcText[4] == u'x');
        TellLies(LIE_NONE);
        FailCall(CALL_EndDialog, 1);
        EndDialog(hDialog, 9); /* ends all the same */
        StopFaults();
    });
    EXPECT_EQ(RunForm(), 9);
    FailCall(CALL_DialogBoxParamW, 1);
    EXPECT_EQ(DialogBoxParamW(nullptr, MAKEINTRESOURCEW(1), nullptr, FormProc, 0), -1);
    StopFaults();
}

} // namespace
