/* Opening and closing sheets: what the host is told, which record is edited, which pages there are, what a session
   knows and what is left when something cannot be had. */
#include "description/control_ids.h"
#include "description/printer_store.h"
#include "sheet/dialog_services.h"
#include "sheet/page_table.h"
#include "support/same_bytes.h"
#include "support/sheet_machine.h"

namespace {

using Names = std::vector<std::string>;

class SessionTest : public SheetTest {
  protected:
    WideText OverlayFolder() const
    {
        WideText wcFolder(160, u'\0');
        std::memcpy(wcFolder.data(), record.rPrivate.tcOverlayDir, 320);
        return wcFolder.c_str();
    }

    /* Opens a sheet with a record that names this overlay folder, and tells which it became. */
    WideText SettledFolder(const WideText& wcFolder)
    {
        DriverDevmode in = Defaults();
        std::memset(in.rPrivate.tcOverlayDir, 0, 320);
        std::memcpy(in.rPrivate.tcOverlayDir, wcFolder.data(), wcFolder.size() * sizeof(WCHAR));
        OpenDocument(&in);
        EXPECT_TRUE(IsSheetOpen(pSheet));
        EXPECT_TRUE(SameBytes(Session()->rSnapshot, record));
        return OverlayFolder();
    }
};

} // namespace

TEST_F(SessionTest, AnswersWithoutASheet)
{
    AddSample("QP5");
    PROPSHEETUI_INFO info = {};
    info.UserData = 77;
    info.lParamInit = reinterpret_cast<LPARAM>(&header);
    info.Reason = PROPSHEETUI_REASON_INIT;
    for (const auto& [fMode, bRoom, lWanted] :
         {std::tuple<DWORD, bool, LONG>{0, true, 4088}, {14, false, 4088}, {8, true, 1}}) {
        for (WORD wReason : {PROPSHEETUI_REASON_INIT, PROPSHEETUI_REASON_DESTROY}) {
            header = {sizeof header, 0, hPrinter, wcPrinter.data(), nullptr, bRoom ? Record() : nullptr, 5,
                      fMode};
            info.Reason = wReason;
            ResetCallCounts();
            EXPECT_EQ(DrvDocumentPropertySheets(&info, 0), lWanted);
            EXPECT_EQ(header.cbOut, lWanted == 4088 ? 4088u : 5u);
            EXPECT_EQ(CallCount(ANY_CALL), 0);
            EXPECT_EQ(info.UserData, 77u);
        }
    }
    info.lParamInit = 0;
    EXPECT_EQ(DrvDocumentPropertySheets(&info, 0), 0);
    EXPECT_EQ(DrvDevicePropertySheets(&info, 0), 0);
    EXPECT_EQ(DrvDevicePropertySheets(nullptr, 0), 0);

    for (bool bDevice : {false, true}) { /* the other reasons, an end and a second one */
        bDevice ? OpenDevice() : OpenDocument();
        for (WORD wReason : {PROPSHEETUI_REASON_GET_INFO_HEADER, PROPSHEETUI_REASON_SET_RESULT,
                             PROPSHEETUI_REASON_GET_ICON}) {
            EXPECT_EQ(AskSheetEntry(pSheet, wReason), 1);
            EXPECT_EQ(SheetInfo(pSheet).Result, 1u);
        }
        ASSERT_TRUE(PressSheetCancel(pSheet));
        EXPECT_EQ(AskSheetEntry(pSheet, PROPSHEETUI_REASON_DESTROY), 1);
        EXPECT_EQ(SheetInfo(pSheet).UserData, 0u);
        EXPECT_EQ(AskSheetEntry(pSheet, PROPSHEETUI_REASON_DESTROY), 1);
    }
}

TEST_F(SessionTest, EditsTheCallersRecordAsFarAsItIsGood)
{
    AddSample("T410A");
    DriverDevmode stored = Defaults();
    stored.dmCopies = 3;
    stored.rPrivate.sContrast = 7;
    SetPrinterRecord(wcPrinter, Bytes(reinterpret_cast<u8*>(&stored), reinterpret_cast<u8*>(&stored + 1)));

    OpenDevice();
    EXPECT_EQ(Session()->pRecord->dmCopies, 3) << "the printer's sheet has the printer's settings";
    OpenDocument(nullptr);
    EXPECT_EQ(Differing(stored, record), "");

    DriverDevmode in = stored;
    in.dmCopies = 7;
    in.rPrivate.sContrast = -9;
    OpenDocument(&in);
    EXPECT_EQ(Differing(in, record), "");

    in.rPrivate.sContrast = 51; /* refuses the private part, and that alone is replaced */
    DriverDevmode mixed = in;
    mixed.rPrivate = stored.rPrivate;
    OpenDocument(&in);
    EXPECT_EQ(Differing(mixed, record), "");

    record = in;
    OpenDocument(&record);
    EXPECT_EQ(Differing(mixed, record), "");

    in.dmSpecVersion = 0;
    OpenDocument(&in);
    EXPECT_EQ(Differing(stored, record), "");

    Close();
    std::memset(&record, 0xA5, sizeof record);
    RefuseCalls({CALL_GetPrinterW}); /* nothing tells the current settings: what the description gives */
    OpenDocument(nullptr);
    EXPECT_EQ(record.dmSpecVersion, 1025);
    EXPECT_EQ(record.dmCopies, 1);
    EXPECT_EQ(record.rPrivate.sContrast, 0);
}

TEST_F(SessionTest, ShowsThePagesThatPrinterAndSheetHave)
{
    const Names document = {"Layout", "Paper", "Quality", "Watermarks"};
    for (const char* cSample : {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"}) {
        const std::string sample = cSample;
        SCOPED_TRACE(sample);
        const bool bFonts = sample == "T410A" || sample == "QP5" || sample == "IX300";
        AddSample(sample);
        Names wanted = document;
        if (bFonts) {
            wanted.push_back("Fonts");
        }
        OpenDocument();
        EXPECT_EQ(Tabs(), wanted);
        for (size_t i = 0; i < wanted.size(); i++) {
            ASSERT_TRUE(ShowSheetPage(pSheet, i));
            EXPECT_EQ(ActiveSheetPage(pSheet), static_cast<int>(i));
            EXPECT_EQ(TextOf(Page(i), IDC_ABOUT), u"About...");
            EXPECT_EQ(SendDlgItemMessageW(Page(i), IDC_LOGO, STM_GETIMAGE, IMAGE_BITMAP, 0),
                      reinterpret_cast<LRESULT>(Session()->hLogoBitmap));
        }
        EXPECT_EQ(CountLive().nGdiObjects, 1) << "one logo for all pages";
        EXPECT_FALSE(CanApplySheet(pSheet)) << "opening pages is no edit";
        OpenDevice();
        EXPECT_EQ(Tabs(), bFonts ? Names{"Fonts"} : Names{"About"});
        EXPECT_TRUE(IsSheetOpen(pSheet));
        EXPECT_EQ(Session()->hPage[SLOT_ABOUT] != nullptr, !bFonts);
        Close();
    }
    AddSample("T410A");
    RefuseCalls({CALL_CreateDCW}); /* no display, no fonts */
    OpenDocument();
    EXPECT_EQ(Tabs(), (Names{"Layout", "Paper", "Quality"}));
    OpenDevice();
    EXPECT_EQ(Tabs(), Names{"About"});
    RefuseCalls({});
    SetUserLanguage(0x407);
    OpenDevice();
    EXPECT_EQ(Tabs(), Names{"Schriften"});
}

TEST_F(SessionTest, EndsTheBuildingWithTheFirstPageThatIsRefused)
{
    AddSample("T410A");
    for (int nRefused : {1, 2, 5}) {
        OpenDocument(nullptr, nRefused);
        EXPECT_EQ(SheetStartResult(pSheet), 0);
        EXPECT_EQ(SheetInfo(pSheet).Result, 0u);
        EXPECT_EQ(SheetPageCount(pSheet), static_cast<size_t>(nRefused - 1));
        EXPECT_EQ(SheetAddCalls(pSheet), nRefused);
        EXPECT_FALSE(IsSheetOpen(pSheet));
    }
    AddSample("QPS");
    OpenDevice(1);
    EXPECT_EQ(SheetInfo(pSheet).Result, 0u);
    EXPECT_EQ(SheetAddCalls(pSheet), 1);
}

TEST_F(SessionTest, IsNotThereWithoutDescriptionOrLanguage)
{
    for (const std::vector<WideText>& lost :
         {std::vector<WideText>{u"T410A.XPI"}, {u"TXT.DLL", u"ENUS.DLL"}}) {
        AddSample("T410A");
        for (const WideText& wcFile : lost) {
            std::filesystem::remove(HostPath(wcDriverFolder + wcFile));
        }
        for (bool bDevice : {false, true}) {
            bDevice ? OpenDevice() : OpenDocument();
            EXPECT_EQ(SheetStartResult(pSheet), 0);
            EXPECT_EQ(SheetInfo(pSheet).Result, 0u);
            EXPECT_EQ(SheetInfo(pSheet).UserData, 0u);
            EXPECT_EQ(SheetAddCalls(pSheet), 0);
        }
        EXPECT_EQ(record.dmSpecVersion, 1025);
    }
}

TEST_F(SessionTest, KnowsUserAndPrinter)
{
    AddSample("T410A");
    PutFile(
        wcDriverFolder + WideText(u"T410A.INI"),
        std::string_view("[CustomSizes]\nNumCustomSizes=1\nCustomName0=Card\nCustomWidth0=20009\n"
                         "CustomLength0=30000\nCustomMetric0=1\n[Watermarks]\nNumWatermarks=2\n"
                         "WMType0=2\nWMString0=Logo\nWMImageName0=C:\\a.bmp\nWMScaleX0=50\nWMScaleY0=50\n"
                         "WMType1=2\nWMString1=Seal\nWMImageName1=C:\\b.bmp\nWMScaleX1=50\nWMScaleY1=50\n"));
    SetLocaleValue(u"sDecimal", u"abcdef");
    OpenDocument(); /* the user's first: what the installation brings is there at once */
    ASSERT_NE(Session(), nullptr);
    EXPECT_EQ(Session()->sCustomPaperCount, 1);
    EXPECT_EQ(Session()->sWatermarkCount, 2);
    EXPECT_EQ(Session()->sWatermarkSnapshotCount, 2);
    EXPECT_EQ(WideText(Session()->rLanguage.wcDecimal), u"abc");
    EXPECT_EQ(WideText(Session()->wcPrinterName), wcPrinter);
    EXPECT_EQ(Session()->bOnServer, 0u);
    EXPECT_EQ(OverlayFolder(), WideText(Session()->wcUserFolder));
    EXPECT_NE(WideText(Session()->wcUserFolder).find(u"\\Application Data\\"), WideText::npos);
    EXPECT_EQ(WideText(Session()->wcRenderLib), u"C:\\WINDOWS\\SYSTEM32\\SPOOL\\DRIVERS\\X64\\3\\RDR.DLL");
    EXPECT_EQ(std::string(Session()->cOverlayLib), "C:\\WINDOWS\\SYSTEM32\\SPOOL\\DRIVERS\\X64\\3\\LAY.DLL");
    EXPECT_TRUE(SameBytes(Session()->rSnapshot, record));
}

TEST_F(SessionTest, MakesAnOverlayFolderOnlyWhereItIsPlainlyNamed)
{
    AddSample("QPS");
    OpenDocument();
    const WideText wcOwn = Session()->wcUserFolder;
    EXPECT_EQ(Session()->ulColorModeMask, 8u) << "the one kind of this model";
    PutFile(u"C:\\File", std::string_view("no folder"));
    for (const auto& [wcGiven, wcWanted] : std::vector<std::pair<WideText, WideText>>{
             {u"", wcOwn},
             {u"C:\\Overlays", u"C:\\Overlays"},
             {u"C:\\Overlays", u"C:\\Overlays"},
             {u"C:\\None\\Deep", wcOwn}, /* only the last folder is made */
             {u"C:\\Overlays\\..\\Up", wcOwn},
             {u"Beside", wcOwn},
             {u"C:\\File", wcOwn}}) {
        EXPECT_EQ(SettledFolder(wcGiven), wcWanted);
    }
    EXPECT_TRUE(std::filesystem::is_directory(HostPath(u"C:\\Overlays")));
    EXPECT_FALSE(std::filesystem::exists(HostPath(u"C:\\Up")));
    SetEnvironmentValue(u"USERPROFILE", u"C:\\" + WideText(150, u'u')); /* longer than the record's field */
    EXPECT_EQ(SettledFolder(u""), u"");
}

TEST_F(SessionTest, ProbesTheRightToWrite)
{
    DWORD dwType;
    Bytes bytes;
    AddSample("QPS");
    OpenDevice();
    EXPECT_EQ(Session()->bReadOnly, 0u);
    EXPECT_FALSE(GetPrinterValue(wcPrinter, u"Test", &dwType, &bytes));
    Close();
    RefuseCalls({CALL_SetPrinterDataW});
    OpenDocument();
    EXPECT_EQ(Tabs().size(), 4u);
    EXPECT_EQ(Session()->bReadOnly, 1u);
    Close();
    RefuseCalls({});
    TellLies(LIE_SHORT, CALL_GetPrinterDataW); /* what comes back is not what was stored */
    OpenDevice();
    ASSERT_NE(Session(), nullptr);
    EXPECT_EQ(Session()->bReadOnly, 1u);
    EXPECT_TRUE(GetPrinterValue(wcPrinter, u"Test", &dwType, &bytes));
    EXPECT_EQ(bytes.size(), 24u);
}

TEST_F(SessionTest, PagesWithoutASessionStayQuiet)
{
    AddSample("T410A");
    OpenDocument();
    const HWND hPage = Page(0);
    ASSERT_NE(hPage, nullptr);
    auto quiet = [&](HWND hWnd) {
        PSHNOTIFY notify = {{hWnd, 0, PSN_APPLY}, 0};
        for (const PageTableRow* pRow = aPageTable; pRow->sTitle; pRow++) {
            for (UINT uMessage : {WM_NOTIFY, WM_PAINT, WM_VSCROLL, WM_HSCROLL, WM_MOUSEMOVE, WM_LBUTTONUP,
                                  WM_HELP, WM_DESTROY}) {
                LPARAM lParam = uMessage == WM_NOTIFY ? reinterpret_cast<LPARAM>(&notify) : 0;
                EXPECT_EQ(pRow->pfnDialogProc(hWnd, uMessage, 0, lParam), 0) << uMessage;
            }
            for (WPARAM nControl : {IDC_ABOUT, IDC_PRESET_APPLY, IDC_LAYOUT_TYPE}) {
                EXPECT_EQ(pRow->pfnDialogProc(hWnd, WM_COMMAND, nControl, 0), 0) << nControl;
            }
        }
    };
    EXPECT_EQ(SendMessageW(hPage, WM_NOTIFY, 0, 0), 0); /* a notification without one */
    Close();
    quiet(hPage);
    quiet(nullptr);
    EXPECT_EQ(rAboutPage.pfnDialogProc(nullptr, WM_INITDIALOG, 0, 0), 1);
    EXPECT_EQ(aPageTable[0].pfnDialogProc(nullptr, WM_INITDIALOG, 0, 0), 0);
}

TEST_F(SessionTest, AboutOpensAndAPageThatGoesIsForgotten)
{
    AddSample("QPS");
    OpenDocument();
    for (size_t i = 0; i < SheetPageCount(pSheet); i++) {
        ASSERT_TRUE(ShowSheetPage(pSheet, i));
    }
    QueueModalStep([](HWND hDialog) { ClickControl(hDialog, IDC_NOTICE_OK); });
    ClickControl(Page(SheetPageCount(pSheet) - 1), IDC_ABOUT);
    EXPECT_EQ(DialogsOpened(), 1);
    for (size_t i = 0; i < SheetPageCount(pSheet); i++) {
        DestroyWindow(Page(i));
    }
    EXPECT_EQ(Session()->hPageWnd[SLOT_PAPER], nullptr);
    EXPECT_EQ(Session()->hLogoBitmap, nullptr) << "the last page takes the logo with it";
}

TEST_F(SessionTest, HotAreasFollowTheMouse)
{
    AddSample("T410A");
    OpenDocument();
    RECT area;
    PaintWindows(Page(0)); /* the first painting takes the unit from the paper */
    ASSERT_TRUE(ControlRect(Page(0), IDC_PREVIEW_SIZE, &area));
    const HCURSOR hArrow = LoadCursorW(nullptr, IDC_ARROW);
    SetCursor(hArrow);
    PressMouse(Page(0), area.left, area.top);
    EXPECT_EQ(Session()->bPreviewMetric, 0u);
    EXPECT_EQ(GetCursor(), Session()->hCursorHand);
    SetCursor(hArrow);
    u32 bMetric = 0;
    for (const auto& [x, y, bOver] : {std::tuple{area.right, area.bottom, true},
                                      {area.left, area.top, true},
                                      {area.right + 1, area.bottom, false},
                                      {area.left - 1, area.top, false},
                                      {area.left, area.bottom + 1, false}}) {
        SendMessageW(Page(0), WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
        EXPECT_EQ(GetCursor(), bOver ? Session()->hCursorHand : hArrow) << x << ", " << y;
        SendMessageW(Page(0), WM_LBUTTONUP, 0, MAKELPARAM(x, y));
        bMetric ^= bOver;
        EXPECT_EQ(Session()->bPreviewMetric, bMetric) << x << ", " << y;
    }
    ASSERT_TRUE(ControlRect(Page(0), IDC_LOGO, &area));
    SendMessageW(Page(0), WM_MOUSEMOVE, 0, MAKELPARAM(area.left, area.top));
    EXPECT_EQ(GetCursor(), Session()->hCursorHand);
}
