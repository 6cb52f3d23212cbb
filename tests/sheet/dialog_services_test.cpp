/* What pages and dialogs share, on the built library's own dialogs. */
#include "sheet/dialog_services.h"

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/edit_keys.h"
#include "sheet/zoom_and_layout.h"
#include "support/sheet_dialogs.h"
#include "support/sweep.h"

namespace {

constexpr ComboTableRow aOrders[] = {
    {16, IDS_ORDER_RIGHT_DOWN, 0, 0},   {16, IDS_ORDER_RIGHT_UP, 0, 1},
    {16, IDS_ORDER_DOWN_RIGHT, 0, 16},  {16, IDS_ORDER_UP_RIGHT, 0, 17},
    {1, IDS_ORDER_LEFT_TO_RIGHT, 0, 0}, {1, IDS_ORDER_RIGHT_TO_LEFT, 0, 1},
    {2, IDS_ORDER_TOP_TO_BOTTOM, 0, 0}, {},
};

class DialogServices : public SheetDialogs {
  protected:
    void SetUp() override
    {
        SheetDialogs::SetUp();
        OpenSession(SizedModel());
        hFrame = OpenFrame();
    }

    static i64 Count(HWND hDialog, int nControl, UINT uMessage = CB_GETCOUNT)
    {
        return SendDlgItemMessageW(hDialog, nControl, uMessage, 0, 0);
    }

    /* What the edit control shows after the spin button has moved it from that text. */
    std::string Spun(HWND hDialog, int nSpin, int nEdit, const char* cText, std::initializer_list<int> codes,
                     int bMetric = 0)
    {
        record.rPrivate.bMetric = static_cast<u16>(bMetric);
        SetDlgItemTextW(hDialog, nEdit, Wide(cText).c_str());
        for (int nCode : codes) {
            EXPECT_EQ(HandleSpin(hDialog, pSession.get(), static_cast<WPARAM>(nCode),
                                 reinterpret_cast<LPARAM>(GetDlgItem(hDialog, nSpin))),
                      nEdit);
        }
        return TextOf(hDialog, nEdit);
    }

    std::string Pressed(HWND hDialog, int nEdit, const char* cText, std::initializer_list<WPARAM> keys)
    {
        SetDlgItemTextW(hDialog, nEdit, Wide(cText).c_str());
        SetFocus(GetDlgItem(hDialog, nEdit));
        for (WPARAM uKey : keys) {
            SendKey(uKey);
        }
        return TextOf(hDialog, nEdit);
    }

    HWND hFrame = nullptr;
};

TEST_F(DialogServices, ListsGoByTheirItemData)
{
    const HWND hPage = OpenTemplate(IDD_LAYOUT, hFrame);
    int bChosen = 7;
    EXPECT_EQ(GetComboValue(hPage, IDC_LAYOUT_ORDER, &bChosen), -1);
    EXPECT_EQ(bChosen, 0);
    EXPECT_EQ(SelectComboValue(hPage, IDC_LAYOUT_ORDER, 0), -1) << "no rows";
    EXPECT_EQ(GetComboValue(hPage, 4711, &bChosen), 0);
    EXPECT_EQ(bChosen, 0);
    EXPECT_EQ(SelectComboValue(hPage, 4711, 0), -1);

    for (const auto& [ulFilter, nRows] :
         std::vector<std::pair<u32, i64>>{{16, 4}, {1, 2}, {2, 1}, {3, 3}, {4, 0}, {ALL_ROWS, 7}}) {
        FillComboFromTable(hPage, pSession.get(), IDC_LAYOUT_ORDER, aOrders, ulFilter);
        EXPECT_EQ(Count(hPage, IDC_LAYOUT_ORDER), nRows) << ulFilter;
    }
    constexpr ComboTableRow aAlways[] = {
        {ALL_ROWS, IDS_LAYOUT_BOOKLET, 0, 0xFFFFFFFF}, {8, IDS_LAYOUT_PAGES, 0, 5}, {}};
    FillComboFromTable(hPage, pSession.get(), IDC_LAYOUT_ORDER, aAlways, 2);
    WCHAR wcText[128] = u"";
    SendDlgItemMessageW(hPage, IDC_LAYOUT_ORDER, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(wcText));
    EXPECT_EQ(Narrow(wcText), "Booklet");
    EXPECT_EQ(SelectComboValue(hPage, IDC_LAYOUT_ORDER, -1), 0);
    EXPECT_EQ(GetComboValue(hPage, IDC_LAYOUT_ORDER, &bChosen), -1);
    EXPECT_EQ(bChosen, 1) << "a row whose value is -1";

    FillComboFromTable(hPage, pSession.get(), IDC_LAYOUT_ORDER, aOrders, 16);
    EXPECT_EQ(SelectComboValue(hPage, IDC_LAYOUT_ORDER, 17), 3);
    EXPECT_EQ(GetComboValue(hPage, IDC_LAYOUT_ORDER, nullptr), 17);
    EXPECT_EQ(SelectComboValue(hPage, IDC_LAYOUT_ORDER, 4), -1);
    EXPECT_EQ(GetComboValue(hPage, IDC_LAYOUT_ORDER, &bChosen), 0) << "the first row stands in";
    EXPECT_EQ(bChosen, 1);

    const HWND hList = OpenTemplate(IDD_WATERMARKS, hFrame);
    for (i64 lData : {5, 9}) {
        const LRESULT nRow = SendDlgItemMessageW(hList, IDC_WATERMARKS_LIST, LB_ADDSTRING, 0,
                                                 reinterpret_cast<LPARAM>(u"row"));
        SendDlgItemMessageW(hList, IDC_WATERMARKS_LIST, LB_SETITEMDATA, static_cast<WPARAM>(nRow), lData);
    }
    EXPECT_EQ(GetListValue(hList, IDC_WATERMARKS_LIST, &bChosen), -1);
    EXPECT_EQ(SelectListValue(hList, IDC_WATERMARKS_LIST, 9), 1);
    EXPECT_EQ(GetListValue(hList, IDC_WATERMARKS_LIST, &bChosen), 9);
    EXPECT_EQ(SelectListValue(hList, IDC_WATERMARKS_LIST, 1), -1);
    EXPECT_EQ(GetListValue(hList, IDC_WATERMARKS_LIST, nullptr), 5);
}

/* Which control of which dialog has a string is held by the tests of the templates. */
TEST_F(DialogServices, LabelsComeFromTheStringOfTheirNumber)
{
    UseStrings({{IDC_LAYOUT_BORDERS, u"own"}, {IDC_LAYOUT_TYPE_LABEL, u"own"}});
    const HWND hLayout = OpenTemplate(IDD_LAYOUT, hFrame);
    const std::string before = TextOf(hLayout, IDC_ABOUT) + TextOf(hLayout, IDC_LAYOUT_PORTRAIT);
    LabelControls(hLayout, pSession.get());
    EXPECT_EQ(TextOf(hLayout, IDC_LAYOUT_BORDERS) + TextOf(hLayout, IDC_LAYOUT_TYPE_LABEL), "ownown");
    EXPECT_EQ(TextOf(hLayout, IDC_ABOUT) + TextOf(hLayout, IDC_LAYOUT_PORTRAIT), before);
    SetLabel(hLayout, pSession.get(), IDC_ABOUT, IDC_CANCEL);
    EXPECT_EQ(TextOf(hLayout, IDC_ABOUT), "About...") << "what the template says stays";
    SetLabel(hLayout, pSession.get(), IDC_ABOUT, IDC_LAYOUT_BORDERS);
    EXPECT_EQ(TextOf(hLayout, IDC_ABOUT), "own");
}

TEST_F(DialogServices, MeasuresAndTheirSpins)
{
    const HWND hDialog = OpenTemplate(IDD_SIZE, hFrame);
    const auto shown = [&](i32 lValue, int bMetric, RoundingMode mode) {
        record.rPrivate.bMetric = static_cast<u16>(bMetric);
        ShowMeasure(hDialog, pSession.get(), IDC_SIZE_WIDTH, lValue, mode);
        return TextOf(hDialog, IDC_SIZE_WIDTH);
    };
    const auto read = [&](const std::string& text, int bMetric) {
        SetDlgItemTextW(hDialog, IDC_SIZE_WIDTH, Wide(text).c_str());
        record.rPrivate.bMetric = static_cast<u16>(bMetric);
        return ReadMeasure(hDialog, pSession.get(), IDC_SIZE_WIDTH);
    };
    EXPECT_EQ(shown(2540, 0, ROUND_NEAREST), "1.00");
    EXPECT_EQ(shown(-50, 1, ROUND_NEAREST), "-0.5");
    EXPECT_EQ(read("21 mm", 1), 2100);
    EXPECT_EQ(read("12,5", 1), 0);
    EXPECT_EQ(read(std::string(300, '9'), 1), 0x7FFFFFFF)
        << "only the first characters are read, and saturate";
    CopyWide(pSession->rLanguage.wcDecimal, 4, u",;");
    EXPECT_EQ(shown(2100, 1, ROUND_NEAREST), "21,;0");
    EXPECT_EQ(read("1,5", 0), 3810);
    CopyWide(pSession->rLanguage.wcDecimal, 4, u".");
    TellLies(LIE_UNTERMINATED, CALL_GetDlgItemTextW);
    EXPECT_EQ(ReadMeasure(hDialog, pSession.get(), IDC_SIZE_WIDTH), 0x7FFFFFFF);
    TellLies(LIE_NONE);

    EXPECT_EQ(Spun(hDialog, IDC_SIZE_WIDTH_SPIN, IDC_SIZE_WIDTH, "12.60", {0}), "12.59")
        << "the maximum, rounded down";
    EXPECT_EQ(Spun(hDialog, IDC_SIZE_WIDTH_SPIN, IDC_SIZE_WIDTH, "3.00", {1, 8}), "3.00");
    EXPECT_EQ(Spun(hDialog, IDC_SIZE_WIDTH_SPIN, IDC_SIZE_WIDTH, "100.0", {0, 0, 1}, 1), "100.1");
    EXPECT_EQ(Spun(hDialog, IDC_SIZE_LENGTH_SPIN, IDC_SIZE_LENGTH, "200.0", {8}, 1), "200.0");
    const HWND hEditor = OpenTemplate(IDD_IMAGE_MARK, hFrame);
    EXPECT_EQ(Spun(hEditor, IDC_MARK_X_SPIN, IDC_MARK_X, "0.00", {0, 0, 0, 0, 0}), "0.05");
    EXPECT_EQ(Spun(hEditor, IDC_MARK_Y_SPIN, IDC_MARK_Y, "-249.9", {1, 1}, 1), "-250.0");

    const HWND hLayout = OpenTemplate(IDD_LAYOUT, hFrame), hPaper = OpenTemplate(IDD_PAPER, hFrame),
               hQuality = OpenTemplate(IDD_QUALITY, hFrame);
    EXPECT_EQ(Spun(hLayout, IDC_LAYOUT_BOOKLET_SPIN, IDC_LAYOUT_BOOKLET, "4", {0, 8}), "8");
    EXPECT_EQ(Spun(hLayout, IDC_LAYOUT_BOOKLET_SPIN, IDC_LAYOUT_BOOKLET, "32762", {0}), "32764");
    EXPECT_EQ(Spun(hPaper, IDC_PAPER_COPIES_SPIN, IDC_PAPER_COPIES, "250", {8}), "99");
    EXPECT_EQ(Spun(hPaper, IDC_PAPER_COPIES_SPIN, IDC_PAPER_COPIES, "text", {1}), "1");
    EXPECT_EQ(Spun(hQuality, IDC_QUALITY_CONTRAST_SPIN, IDC_QUALITY_CONTRAST, "-50", {1}), "-50");
    EXPECT_EQ(HandleSpin(hPaper, pSession.get(), 0,
                         reinterpret_cast<LPARAM>(GetDlgItem(hPaper, IDC_PAPER_ZOOM_BAR))),
              0);
    EXPECT_EQ(HandleSpin(hPaper, pSession.get(), 0, 0), 0);
    pSession->pXpi.reset();
    SetDlgItemTextW(hDialog, IDC_SIZE_WIDTH, u"5");
    EXPECT_EQ(HandleSpin(hDialog, pSession.get(), 0,
                         reinterpret_cast<LPARAM>(GetDlgItem(hDialog, IDC_SIZE_WIDTH_SPIN))),
              0);
    EXPECT_EQ(TextOf(hDialog, IDC_SIZE_WIDTH), "5");
}

/* Stands where an edit control's own procedure does, and keeps what reaches it. */
WNDPROC pfnBelow;
int nKeys, nCharacters, nTexts, nOwnAtEnd;

LRESULT CALLBACK CountingProc(HWND hEdit, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    nKeys += uMessage == WM_KEYDOWN;
    nCharacters += uMessage == WM_CHAR;
    nTexts += uMessage == WM_SETTEXT;
    nOwnAtEnd += uMessage == WM_NCDESTROY &&
                 GetWindowLongPtrW(hEdit, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(CountingProc);
    return CallWindowProcW(pfnBelow, hEdit, uMessage, wParam, lParam);
}

TEST_F(DialogServices, KeysStepNumericEdits)
{
    const HWND hPaper = OpenTemplate(IDD_PAPER, hFrame), hSize = OpenTemplate(IDD_SIZE, hFrame);
    record.rPrivate.bMetric = 1;
    nKeys = nCharacters = nTexts = nOwnAtEnd = 0;
    for (const auto& [hDialog, nEdit] : std::vector<std::pair<HWND, int>>{
             {hPaper, IDC_PAPER_COPIES}, {hPaper, IDC_PAPER_ZOOM}, {hSize, IDC_SIZE_WIDTH}}) {
        pfnBelow = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(GetDlgItem(hDialog, nEdit), GWLP_WNDPROC,
                                                               reinterpret_cast<LONG_PTR>(CountingProc)));
    }
    for (int nTimes = 0; nTimes < 2; nTimes++) { /* a page's start is also its reload */
        SubclassNumberEdit(hPaper, pSession.get(), IDC_PAPER_COPIES);
        SubclassNumberEdit(hPaper, pSession.get(), IDC_PAPER_ZOOM);
        SubclassNumberEdit(hSize, pSession.get(), IDC_SIZE_WIDTH);
        SubclassNumberEdit(hPaper, pSession.get(), 4711);
    }
    EXPECT_EQ(pSession->pfnEditProc, CountingProc);

    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_COPIES, "5", {VK_NEXT}), "99");
    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_COPIES, "11", {VK_NEXT}), "1");
    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_COPIES, "5", {VK_UP, VK_UP, VK_DOWN, VK_PRIOR}), "16");
    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_ZOOM, "130", {VK_HOME}), "100");
    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_ZOOM, "395", {VK_PRIOR}), "400");
    EXPECT_EQ(nKeys, 0) << "the control does not see these keys";
    nTexts = 0;
    EXPECT_EQ(Pressed(hPaper, IDC_PAPER_COPIES, "99", {VK_END, VK_UP}), "99");
    EXPECT_EQ(nTexts, 1) << "what stays the same is not written";

    nCharacters = 0;
    SendMessageW(GetDlgItem(hPaper, IDC_PAPER_ZOOM), WM_CHAR, '7', 0);
    EXPECT_EQ(nCharacters, 1) << "two controls, one own procedure";
    SetFocus(GetDlgItem(hPaper, IDC_PAPER_ZOOM));
    SendKey(VK_LEFT);
    EXPECT_EQ(nKeys, 1);

    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "100.0", {VK_HOME}), "77.0");
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "100.0", {VK_NEXT, VK_DOWN}), "98.9") << "1.0 and 0.1 mm";
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "1", {VK_UP}), "76.2");
    record.rPrivate.bMetric = 0;
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "9", {VK_HOME}), "4.00");
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "9", {VK_END}), "12.59");
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "3.00", {VK_DOWN}), "3.00");
    pSession->pXpi.reset();
    EXPECT_EQ(Pressed(hSize, IDC_SIZE_WIDTH, "9", {VK_UP}), "9") << "without a model a key is a key";

    CloseWindows();
    EXPECT_EQ(nOwnAtEnd, 3);
}

TEST_F(DialogServices, ZoomAndLayoutExcludeEachOther)
{
    UiSession* p = pSession.get();
    PrivateDevmode& part = record.rPrivate;
    for (const auto& [sLayoutType, lPages, bAllowed, bNup] :
         std::vector<std::tuple<i16, i32, int, int>>{{0, 1, 1, 0}, {0, 2, 0, 1}, {99, 1, 0, 0}}) {
        part.sLayoutType = sLayoutType;
        part.lPagesPerSheet = lPages;
        EXPECT_EQ(ScalingAllowed(p), bAllowed);
        EXPECT_EQ(NupActive(p), bNup);
    }
    for (const auto& [usScale, usTarget, bFull] : std::vector<std::tuple<u16, u16, int>>{
             {u16{0}, u16{150}, 1}, {u16{1}, u16{9}, 0}, {u16{1}, u16{100}, 1}, {u16{66}, u16{100}, 1}}) {
        part.sScale = usScale;
        part.sScaleTarget = usTarget;
        EXPECT_EQ(IsZoom100(p), bFull) << usScale << " " << usTarget;
    }
    EnableLayoutGroup(p, 0); /* no page has a window */
    EnableScalingGroup(p, 0);

    /* The record says two pages and a zoom; the controls say otherwise, and they count. */
    part.lPagesPerSheet = 2;
    part.sScale = 66;
    part.sScaleTarget = 150;
    const HWND hLayout = p->hPageWnd[SLOT_LAYOUT] = OpenTemplate(IDD_LAYOUT, hFrame);
    const HWND hPaper = p->hPageWnd[SLOT_PAPER] = OpenTemplate(IDD_PAPER, hFrame);
    constexpr ComboTableRow aTypes[] = {
        {ALL_ROWS, IDS_LAYOUT_PAGES, 0, 0}, {ALL_ROWS, IDS_LAYOUT_BOOKLET, 0, 99}, {}};
    constexpr ComboTableRow aPages[] = {{ALL_ROWS, IDS_PAGES_1, 0, 1}, {ALL_ROWS, IDS_PAGES_4, 0, 4}, {}};
    EXPECT_EQ(ScalingAllowed(p), 0) << "nothing is chosen";
    FillComboFromTable(hLayout, p, IDC_LAYOUT_TYPE, aTypes, ALL_ROWS);
    FillComboFromTable(hLayout, p, IDC_LAYOUT_PAGES, aPages, ALL_ROWS);
    SelectComboValue(hLayout, IDC_LAYOUT_TYPE, 0);
    SelectComboValue(hLayout, IDC_LAYOUT_PAGES, 1);
    EXPECT_EQ(ScalingAllowed(p), 1);
    EXPECT_EQ(NupActive(p), 0);
    SelectComboValue(hLayout, IDC_LAYOUT_PAGES, 4);
    EXPECT_EQ(ScalingAllowed(p), 0);
    EXPECT_EQ(NupActive(p), 1);
    SetDlgItemInt(hPaper, IDC_PAPER_ZOOM, 100, 0);
    EXPECT_EQ(IsZoom100(p), 1);
    SetDlgItemInt(hPaper, IDC_PAPER_ZOOM, 99, 0);
    EXPECT_EQ(IsZoom100(p), 0);

    const auto enabled = [&] {
        std::string states;
        for (const auto& [hPage, nControl] : {std::pair{hLayout, IDC_LAYOUT_GROUP},
                                              {hLayout, IDC_LAYOUT_TYPE},
                                              {hLayout, IDC_LAYOUT_PAGES},
                                              {hLayout, IDC_LAYOUT_POSTER},
                                              {hLayout, IDC_LAYOUT_PORTRAIT},
                                              {hPaper, IDC_PAPER_ZOOM_LABEL},
                                              {hPaper, IDC_PAPER_ZOOM},
                                              {hPaper, IDC_PAPER_ZOOM_BAR},
                                              {hPaper, IDC_PERCENT},
                                              {hPaper, IDC_PAPER_CENTRE},
                                              {hPaper, IDC_PAPER_COPIES}}) {
            states += IsWindowEnabled(GetDlgItem(hPage, nControl)) ? '1' : '0';
        }
        return states;
    };
    EnableLayoutGroup(p, 0);
    EXPECT_EQ(enabled(), "00001111111");
    EnableWindow(GetDlgItem(hLayout, IDC_LAYOUT_PAGES), 1);
    EnableLayoutGroup(p, 0);
    EXPECT_EQ(enabled(), "00101111111") << "it acts only on a change of the group";
    EnableLayoutGroup(p, 100);
    EnableScalingGroup(p, 0);
    EXPECT_EQ(enabled(), "11111000001");
}

RECT rcPainted;
int nPaintings;

INT_PTR CALLBACK PaintProc(HWND hDialog, UINT uMessage, WPARAM, LPARAM)
{
    if (uMessage == WM_PAINT) {
        nPaintings++;
        GetInvalidRect(hDialog, &rcPainted);
    }
    return 0;
}

TEST_F(DialogServices, PlacesOfControlsAndDialogs)
{
    const auto placed = [](HWND hDialog) {
        RECT rect;
        GetWindowRect(hDialog, &rect);
        return std::vector<LONG>{rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    };
    const HWND hParent = OpenFrame(100, 50, 301, 400);
    const HWND hDialog = OpenTemplate(IDD_QUESTION, hParent);
    MoveWindow(hDialog, 7, 7, 200, 100, 0);
    CentreDialog(hDialog, CENTRE_X, 25);
    EXPECT_EQ(placed(hDialog), (std::vector<LONG>{150, 75, 200, 100}));
    CentreDialog(hDialog, 10, CENTRE_Y);
    EXPECT_EQ(placed(hDialog), (std::vector<LONG>{110, 200, 200, 100}));
    MoveWindow(hParent, 100, 50, 200, 400, 0);
    MoveWindow(hDialog, 7, 7, 301, 100, 0);
    ShowWindow(hDialog, SW_HIDE);
    CentreDialog(hDialog, CENTRE_X, -5);
    EXPECT_EQ(placed(hDialog), (std::vector<LONG>{50, 45, 301, 100}));
    EXPECT_FALSE(IsWindowVisible(hDialog)) << "being placed does not show it";
    TellLies(LIE_HUGE);
    CentreDialog(hDialog, CENTRE_X, CENTRE_Y);
    TellLies(LIE_NONE);
    CentreDialog(hParent, CENTRE_X, CENTRE_Y);
    EXPECT_EQ(placed(hParent), (std::vector<LONG>{100, 50, 200, 400})) << "a window without a parent";

    const HWND hPage = OpenTemplate(IDD_LAYOUT, hFrame, PaintProc);
    PaintWindows(hPage);
    nPaintings = 0;
    RECT rect, screen;
    ASSERT_TRUE(ControlRect(hPage, IDC_PREVIEW, &rect));
    GetWindowRect(GetDlgItem(hPage, IDC_PREVIEW), &screen);
    EXPECT_EQ(rect.right - rect.left, screen.right - screen.left);
    RepaintControl(hPage, IDC_PREVIEW);
    EXPECT_EQ(nPaintings, 1) << "at once";
    EXPECT_EQ(std::memcmp(&rcPainted, &rect, sizeof rect), 0);
    RepaintControl(hPage, 4711);
    EXPECT_EQ(nPaintings, 1);
    EXPECT_FALSE(ControlRect(hPage, 4711, &rect));
}

TEST_F(DialogServices, SurviveEveryFailure)
{
    const auto body = [&] {
        UiSession* p = pSession.get();
        const HWND hLayout = p->hPageWnd[SLOT_LAYOUT] = OpenTemplate(IDD_LAYOUT, hFrame);
        const HWND hPaper = p->hPageWnd[SLOT_PAPER] = OpenTemplate(IDD_PAPER, hFrame);
        LabelControls(hPaper, p);
        FillComboFromTable(hLayout, p, IDC_LAYOUT_ORDER, aOrders, 1);
        SelectComboValue(hLayout, IDC_LAYOUT_ORDER, 1);
        GetComboValue(hLayout, IDC_LAYOUT_ORDER, nullptr);
        SubclassNumberEdit(hPaper, p, IDC_PAPER_COPIES);
        SetFocus(GetDlgItem(hPaper, IDC_PAPER_COPIES));
        SendKey(VK_UP);
        TypeText(hPaper, IDC_PAPER_COPIES, u"3");
        SpinEdit(hPaper, SPIN_UP, IDC_PAPER_COPIES, 1, 99);
        StepMeasureEdit(hPaper, p, SPIN_UP, IDC_PAPER_COPIES, 1, 99);
        EnableLayoutGroup(p, IsZoom100(p));
        EnableScalingGroup(p, ScalingAllowed(p));
        RepaintControl(hPaper, IDC_PREVIEW);
        CentreDialog(hPaper, CENTRE_X, CENTRE_Y);
        p->hPageWnd[SLOT_LAYOUT] = p->hPageWnd[SLOT_PAPER] = nullptr;
        p->pfnEditProc = nullptr;
        DestroyWindow(hPaper);
        DestroyWindow(hLayout);
        return std::string();
    };
    for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        EXPECT_EQ(SweepFaults(CALL_GetDlgItem, mode, 300, body).fault, "");
    }
    for (CallId call :
         {CALL_GetDlgItem, CALL_SendMessageW, CALL_GetWindowLongPtrW, CALL_SetWindowLongPtrW,
          CALL_CallWindowProcW, CALL_GetParent, CALL_GetDlgCtrlID, CALL_GetDlgItemTextW, CALL_LoadStringW,
          CALL_GetWindowPlacement, CALL_GetWindowRect, CALL_EnumChildWindows}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, 300, body);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 0) << CallName(call);
    }
}

} // namespace
