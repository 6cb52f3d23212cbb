/* What pages and dialogs share, on the built library's own dialogs. */
#include "sheet/dialog_services.h"

#include "places.h"
#include "support/sheet_dialogs.h"
#include "support/sweep.h"

namespace {

constexpr ComboTableRow aOrders[] = {
    {16, 2330, 0, 0},
    {16, 2331, 0, 1},
    {16, 2332, 0, 2},
    {16, 2333, 0, 3},
    {16, 2334, 0, 16},
    {16, 2335, 0, 17},
    {16, 2336, 0, 18},
    {16, 2337, 0, 19},
    {1, 2338, 0, 0},
    {1, 2339, 0, 1},
    {2, 2340, 0, 0},
    {2, 2341, 0, 1},
    {},
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
        SetDlgItemTextW(hDialog, nEdit, Wide(cText).c_str());
        for (int nCode : codes) {
            EXPECT_EQ(HandleSpin(hDialog, pSession.get(), static_cast<WPARAM>(nCode),
                                 reinterpret_cast<LPARAM>(GetDlgItem(hDialog, nSpin)), bMetric),
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
    const HWND hPage = OpenTemplate(1002, hFrame);
    constexpr int ORDER = 1323;
    int bChosen = 7;
    EXPECT_EQ(GetComboValue(hPage, ORDER, &bChosen), -1);
    EXPECT_EQ(bChosen, 0);
    EXPECT_EQ(SelectComboValue(hPage, ORDER, 0), -1) << "no rows";
    EXPECT_EQ(GetComboValue(hPage, 4711, &bChosen), 0);
    EXPECT_EQ(bChosen, 0);
    EXPECT_EQ(SelectComboValue(hPage, 4711, 0), -1);

    for (const auto& [ulFilter, nRows] :
         std::vector<std::pair<u32, i64>>{{16, 8}, {1, 2}, {2, 2}, {3, 4}, {4, 0}, {ALL_ROWS, 12}}) {
        FillComboFromTable(hPage, pSession.get(), ORDER, aOrders, ulFilter);
        EXPECT_EQ(Count(hPage, ORDER), nRows) << ulFilter;
    }
    constexpr ComboTableRow aAlways[] = {{ALL_ROWS, 2754, 0, 0xFFFFFFFF}, {8, 2752, 0, 5}, {}};
    FillComboFromTable(hPage, pSession.get(), ORDER, aAlways, 2);
    WCHAR wcText[128] = u"";
    SendDlgItemMessageW(hPage, ORDER, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(wcText));
    EXPECT_EQ(Narrow(wcText), "Booklet");
    EXPECT_EQ(SelectComboValue(hPage, ORDER, -1), 0);
    EXPECT_EQ(GetComboValue(hPage, ORDER, &bChosen), -1);
    EXPECT_EQ(bChosen, 1) << "a row whose value is -1";

    FillComboFromTable(hPage, pSession.get(), ORDER, aOrders, 16);
    EXPECT_EQ(SelectComboValue(hPage, ORDER, 17), 5);
    EXPECT_EQ(GetComboValue(hPage, ORDER, nullptr), 17);
    EXPECT_EQ(SelectComboValue(hPage, ORDER, 4), -1);
    EXPECT_EQ(GetComboValue(hPage, ORDER, &bChosen), 0) << "the first row stands in";
    EXPECT_EQ(bChosen, 1);

    const HWND hList = OpenTemplate(1040, hFrame);
    constexpr int WATERMARKS = 1405;
    for (i64 lData : {5, 9}) {
        const LRESULT nRow =
            SendDlgItemMessageW(hList, WATERMARKS, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(u"row"));
        SendDlgItemMessageW(hList, WATERMARKS, LB_SETITEMDATA, static_cast<WPARAM>(nRow), lData);
    }
    EXPECT_EQ(GetListValue(hList, WATERMARKS, &bChosen), -1);
    EXPECT_EQ(SelectListValue(hList, WATERMARKS, 9), 1);
    EXPECT_EQ(GetListValue(hList, WATERMARKS, &bChosen), 9);
    EXPECT_EQ(SelectListValue(hList, WATERMARKS, 1), -1);
    EXPECT_EQ(GetListValue(hList, WATERMARKS, nullptr), 5);
}

/* In a library whose string n reads "n", each control that has a string shows its own number. */
TEST_F(DialogServices, LabelsComeFromTheStringOfTheirNumber)
{
    const Bytes built = ReadDiskFile(TQUI_SAMPLES "/ENUS.DLL");
    std::map<int, WideText> strings;
    for (u16 usId = 1000; usId < 2000; usId++) {
        PeText text{};
        if (FindPeString(built, usId, LanguageOrder(0x0409), &text) && text.cch) {
            strings[usId] = Wide(std::to_string(usId));
        }
    }
    UseStrings(strings);
    int nLabelled = 0;
    for (int nTemplate : {1002, 1003, 1004, 1007, 1008, 1011, 1030, 1031, 1032, 1040, 1041, 1042, 1063, 1064,
                          1090, 1091, 1098, 1099}) {
        const HWND hDialog = OpenTemplate(nTemplate, hFrame);
        std::map<int, std::string> before;
        const auto keepText = [](HWND hControl, LPARAM lParam) -> BOOL {
            (*reinterpret_cast<std::map<int, std::string>*>(lParam))[GetDlgCtrlID(hControl)] =
                TitleOf(hControl);
            return 1;
        };
        EnumChildWindows(hDialog, keepText, reinterpret_cast<LPARAM>(&before));
        LabelControls(hDialog, pSession.get());
        for (const auto& [nControl, text] : before) {
            const bool bOwn = strings.contains(nControl);
            EXPECT_EQ(TextOf(hDialog, nControl), bOwn ? std::to_string(nControl) : text) << nTemplate;
            nLabelled += bOwn;
        }
    }
    EXPECT_GT(nLabelled, 150);

    const HWND hPage = OpenTemplate(1002, hFrame);
    UseStrings({{1132, u"taken"}});
    LabelControls(hPage, pSession.get());
    EXPECT_EQ(TextOf(hPage, 1701), "About...") << "what the template says stays";
    SetLabel(hPage, pSession.get(), 1701, 1703);
    EXPECT_EQ(TextOf(hPage, 1701), "About...");
    SetLabel(hPage, pSession.get(), 1701, 1132);
    EXPECT_EQ(TextOf(hPage, 1701), "taken");
}

TEST_F(DialogServices, MeasuresAndTheirSpins)
{
    const HWND hDialog = OpenTemplate(1011, hFrame);
    constexpr int WIDTH = 1504, SPIN = 1622;
    const auto shown = [&](i32 lValue, int bMetric, RoundingMode mode) {
        ShowMeasure(hDialog, pSession.get(), WIDTH, lValue, bMetric, mode);
        return TextOf(hDialog, WIDTH);
    };
    const auto read = [&](const std::string& text, int bMetric) {
        SetDlgItemTextW(hDialog, WIDTH, Wide(text).c_str());
        return ReadMeasure(hDialog, pSession.get(), WIDTH, bMetric);
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
    EXPECT_EQ(ReadMeasure(hDialog, pSession.get(), WIDTH, 1), 0x7FFFFFFF);
    TellLies(LIE_NONE);

    EXPECT_EQ(Spun(hDialog, SPIN, WIDTH, "12.60", {0}), "12.59") << "the maximum, rounded down";
    EXPECT_EQ(Spun(hDialog, SPIN, WIDTH, "3.00", {1, 8}), "3.00");
    EXPECT_EQ(Spun(hDialog, SPIN, WIDTH, "100.0", {0, 0, 1}, 1), "100.1");
    EXPECT_EQ(Spun(hDialog, 1623, 1505, "200.0", {8}, 1), "200.0");
    const HWND hEditor = OpenTemplate(1042, hFrame);
    EXPECT_EQ(Spun(hEditor, 1624, 1511, "0.00", {0, 0, 0, 0, 0}), "0.05");
    EXPECT_EQ(Spun(hEditor, 1625, 1512, "-249.9", {1, 1}, 1), "-250.0");

    const HWND hLayout = OpenTemplate(1002, hFrame), hPaper = OpenTemplate(1003, hFrame),
               hQuality = OpenTemplate(1004, hFrame);
    EXPECT_EQ(Spun(hLayout, 1606, 1513, "4", {0, 8}), "8");
    EXPECT_EQ(Spun(hLayout, 1606, 1513, "32762", {0}), "32764");
    EXPECT_EQ(Spun(hPaper, 1601, 1501, "250", {8}), "99");
    EXPECT_EQ(Spun(hPaper, 1601, 1501, "text", {1}), "1");
    EXPECT_EQ(Spun(hQuality, 1612, 1530, "-50", {1}), "-50");
    EXPECT_EQ(HandleSpin(hPaper, pSession.get(), 0, reinterpret_cast<LPARAM>(GetDlgItem(hPaper, 1602)), 0),
              0);
    EXPECT_EQ(HandleSpin(hPaper, pSession.get(), 0, 0, 0), 0);
    pSession->pXpi.reset();
    SetDlgItemTextW(hDialog, WIDTH, u"5");
    EXPECT_EQ(HandleSpin(hDialog, pSession.get(), 0, reinterpret_cast<LPARAM>(GetDlgItem(hDialog, SPIN)), 0),
              0);
    EXPECT_EQ(TextOf(hDialog, WIDTH), "5");
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
    const HWND hPaper = OpenTemplate(1003, hFrame), hSize = OpenTemplate(1011, hFrame);
    u32 bMetric = 1;
    nKeys = nCharacters = nTexts = nOwnAtEnd = 0;
    for (const auto& [hDialog, nEdit] :
         std::vector<std::pair<HWND, int>>{{hPaper, 1501}, {hPaper, 1506}, {hSize, 1504}}) {
        pfnBelow = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(GetDlgItem(hDialog, nEdit), GWLP_WNDPROC,
                                                               reinterpret_cast<LONG_PTR>(CountingProc)));
    }
    for (int nTimes = 0; nTimes < 2; nTimes++) { /* a page's start is also its reload */
        SubclassNumberEdit(hPaper, pSession.get(), 1501);
        SubclassNumberEdit(hPaper, pSession.get(), 1506);
        SubclassMeasureEdit(hSize, pSession.get(), 1504, &bMetric);
        SubclassNumberEdit(hPaper, pSession.get(), 4711);
    }
    EXPECT_EQ(pSession->pfnEditProc, CountingProc);

    EXPECT_EQ(Pressed(hPaper, 1501, "5", {VK_NEXT}), "99");
    EXPECT_EQ(Pressed(hPaper, 1501, "11", {VK_NEXT}), "1");
    EXPECT_EQ(Pressed(hPaper, 1501, "5", {VK_UP, VK_UP, VK_DOWN, VK_PRIOR}), "16");
    EXPECT_EQ(Pressed(hPaper, 1506, "130", {VK_HOME}), "100");
    EXPECT_EQ(Pressed(hPaper, 1506, "395", {VK_PRIOR}), "400");
    EXPECT_EQ(nKeys, 0) << "the control does not see these keys";
    nTexts = 0;
    EXPECT_EQ(Pressed(hPaper, 1501, "99", {VK_END, VK_UP}), "99");
    EXPECT_EQ(nTexts, 1) << "what stays the same is not written";

    nCharacters = 0;
    SendMessageW(GetDlgItem(hPaper, 1506), WM_CHAR, '7', 0);
    EXPECT_EQ(nCharacters, 1) << "two controls, one own procedure";
    SetFocus(GetDlgItem(hPaper, 1506));
    SendKey(VK_LEFT);
    EXPECT_EQ(nKeys, 1);

    EXPECT_EQ(Pressed(hSize, 1504, "100.0", {VK_HOME}), "77.0");
    EXPECT_EQ(Pressed(hSize, 1504, "100.0", {VK_NEXT, VK_DOWN}), "98.9") << "1.0 and 0.1 mm";
    EXPECT_EQ(Pressed(hSize, 1504, "1", {VK_UP}), "76.2");
    bMetric = 0;
    EXPECT_EQ(Pressed(hSize, 1504, "9", {VK_HOME}), "4.00");
    EXPECT_EQ(Pressed(hSize, 1504, "9", {VK_END}), "12.59");
    EXPECT_EQ(Pressed(hSize, 1504, "3.00", {VK_DOWN}), "3.00");
    pSession->pXpi.reset();
    EXPECT_EQ(Pressed(hSize, 1504, "9", {VK_UP}), "9") << "without a model a key is a key";

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
    const HWND hLayout = p->hPageWnd[SLOT_LAYOUT] = OpenTemplate(1002, hFrame);
    const HWND hPaper = p->hPageWnd[SLOT_PAPER] = OpenTemplate(1003, hFrame);
    constexpr ComboTableRow aTypes[] = {{ALL_ROWS, 2752, 0, 0}, {ALL_ROWS, 2754, 0, 99}, {}};
    constexpr ComboTableRow aPages[] = {{ALL_ROWS, 2320, 0, 1}, {ALL_ROWS, 2323, 0, 4}, {}};
    EXPECT_EQ(ScalingAllowed(p), 0) << "nothing is chosen";
    FillComboFromTable(hLayout, p, 1359, aTypes, ALL_ROWS);
    FillComboFromTable(hLayout, p, 1306, aPages, ALL_ROWS);
    SelectComboValue(hLayout, 1359, 0);
    SelectComboValue(hLayout, 1306, 1);
    EXPECT_EQ(ScalingAllowed(p), 1);
    EXPECT_EQ(NupActive(p), 0);
    SelectComboValue(hLayout, 1306, 4);
    EXPECT_EQ(ScalingAllowed(p), 0);
    EXPECT_EQ(NupActive(p), 1);
    SetDlgItemInt(hPaper, 1506, 100, 0);
    EXPECT_EQ(IsZoom100(p), 1);
    SetDlgItemInt(hPaper, 1506, 99, 0);
    EXPECT_EQ(IsZoom100(p), 0);

    const auto enabled = [](HWND hPage, std::initializer_list<int> controls) {
        std::string states;
        for (int nControl : controls) {
            states += IsWindowEnabled(GetDlgItem(hPage, nControl)) ? '1' : '0';
        }
        return states;
    };
    const auto layout = [&] { return enabled(hLayout, {1148, 1997, 1359, 1998, 1306, 1348, 1221}); };
    EnableLayoutGroup(p, 0);
    EXPECT_EQ(layout(), "0000001");
    EnableWindow(GetDlgItem(hLayout, 1306), 1);
    EnableLayoutGroup(p, 0);
    EXPECT_EQ(layout(), "0000101") << "it acts only on a change of the group";
    EnableLayoutGroup(p, 100);
    EXPECT_EQ(layout(), "1111111");
    EnableScalingGroup(p, 0);
    EXPECT_EQ(enabled(hPaper, {1122, 1506, 1602, 1877, 1825, 1501}), "000001");
    EXPECT_EQ(layout(), "1111111");
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
    const HWND hDialog = OpenTemplate(1091, hParent);
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

    const HWND hPage = OpenTemplate(1002, hFrame, PaintProc);
    PaintWindows(hPage);
    nPaintings = 0;
    RECT rect, screen;
    ASSERT_TRUE(ControlRect(hPage, 1651, &rect));
    GetWindowRect(GetDlgItem(hPage, 1651), &screen);
    EXPECT_EQ(rect.right - rect.left, screen.right - screen.left);
    RepaintControl(hPage, 1651);
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
        const HWND hLayout = p->hPageWnd[SLOT_LAYOUT] = OpenTemplate(1002, hFrame);
        const HWND hPaper = p->hPageWnd[SLOT_PAPER] = OpenTemplate(1003, hFrame);
        LabelControls(hPaper, p);
        FillComboFromTable(hLayout, p, 1323, aOrders, 1);
        SelectComboValue(hLayout, 1323, 1);
        GetComboValue(hLayout, 1323, nullptr);
        SubclassNumberEdit(hPaper, p, 1501);
        SetFocus(GetDlgItem(hPaper, 1501));
        SendKey(VK_UP);
        TypeText(hPaper, 1501, u"3");
        SpinEdit(hPaper, SPIN_UP, 1501, 1, 99);
        StepMeasureEdit(hPaper, p, SPIN_UP, 1501, 1, 99, 1);
        EnableLayoutGroup(p, IsZoom100(p));
        EnableScalingGroup(p, ScalingAllowed(p));
        RepaintControl(hPaper, 1651);
        CentreDialog(hPaper, CENTRE_X, CENTRE_Y);
        p->hPageWnd[SLOT_LAYOUT] = p->hPageWnd[SLOT_PAPER] = nullptr;
        p->pfnEditProc = nullptr;
        DestroyWindow(hPaper);
        DestroyWindow(hLayout);
        return std::string();
    };
    for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        const FaultSweep sweep = SweepFaults(CALL_GetDlgItem, mode, 300, body);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 10);
    }
    for (CallId call :
         {CALL_SendMessageW, CALL_GetWindowLongPtrW, CALL_SetWindowLongPtrW, CALL_CallWindowProcW,
          CALL_GetParent, CALL_GetDlgCtrlID, CALL_GetDlgItemTextW, CALL_LoadStringW, CALL_GetWindowPlacement,
          CALL_GetWindowRect, CALL_EnumChildWindows}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, 300, body);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 0) << CallName(call);
    }
}

} // namespace
