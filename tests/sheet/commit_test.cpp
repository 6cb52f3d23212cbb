/* Edits on their way from pages to the host: two test pages over the templates of Layout and Paper, of which one
   frames pages (sPageBorders) and the other counts copies (dmCopies). */
#include "description/control_ids.h"
#include "description/printer_store.h"
#include "description/string_ids.h"
#include "sheet/commit.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/page_table.h"
#include "support/same_bytes.h"
#include "support/sheet_machine.h"
#include "support/sweep_totals.h"

namespace {

[[maybe_unused]] const auto* const pTotals = ExpectTotals(1000, 0, 0);

int nAppliedPages, nCommands, nChecks;
bool bRefuse, bDeviceKind;

void InitFrames(HWND hPage, UiSession* pSession)
{
    CheckDlgButton(hPage, IDC_LAYOUT_BORDERS,
                   pSession->pRecord->rPrivate.sPageBorders ? BST_CHECKED : BST_UNCHECKED);
}
void CommandFrames(HWND, UiSession*, WPARAM, LPARAM)
{
    nCommands++;
}
int FramesDiffer(HWND hPage, UiSession* pSession)
{
    return (IsDlgButtonChecked(hPage, IDC_LAYOUT_BORDERS) == BST_CHECKED) !=
           (pSession->pRecord->rPrivate.sPageBorders != 0);
}
int ApplyFrames(HWND hPage, UiSession* pSession)
{
    nAppliedPages++;
    pSession->pRecord->rPrivate.sPageBorders = IsDlgButtonChecked(hPage, IDC_LAYOUT_BORDERS) == BST_CHECKED;
    return !bRefuse;
}
void InitCopies(HWND hPage, UiSession* pSession)
{
    SetDlgItemInt(hPage, IDC_PAPER_COPIES, static_cast<UINT>(pSession->pRecord->dmCopies), 1);
}
int CopiesDiffer(HWND hPage, UiSession* pSession)
{
    nChecks++;
    return ReadNumber(hPage, IDC_PAPER_COPIES) != pSession->pRecord->dmCopies;
}
int ApplyCopies(HWND hPage, UiSession* pSession)
{
    nAppliedPages++;
    pSession->pRecord->dmCopies = static_cast<i16>(ReadNumber(hPage, IDC_PAPER_COPIES));
    SetDlgItemInt(hPage, IDC_PAPER_COPIES, 99, 1); /* which tells the page of a change */
    SetDlgItemInt(hPage, IDC_PAPER_COPIES, static_cast<UINT>(pSession->pRecord->dmCopies), 1);
    return 1;
}

constexpr PageRoutines framesPage = {SLOT_LAYOUT, 0, InitFrames, FramesDiffer, ApplyFrames};
constexpr PageRoutines copiesPage = {SLOT_PAPER, 0, InitCopies, CopiesDiffer, ApplyCopies};
constexpr PageTableRow aTestPages[] = {
    {SLOT_LAYOUT, IDS_TITLE_LAYOUT, IDD_LAYOUT, IDD_LAYOUT, PageProc<framesPage>, CommandFrames},
    {SLOT_PAPER, IDS_TITLE_PAPER, IDD_PAPER, IDD_PAPER, PageProc<copiesPage>, CommandFrames},
    {SLOT_FONTS, IDS_TITLE_FONTS, IDD_FONTS, 0, PageProc<copiesPage>,
     CommandFrames}, /* not of a model without fonts */
    {0, 0, 0, 0, nullptr, nullptr}};

/* The start and the end of a sheet with these pages. */
LONG WINAPI TestEntry(PROPSHEETUI_INFO* pInfo, LPARAM)
{
    const auto* pHeader = reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(pInfo->lParamInit);
    if (pInfo->Reason == PROPSHEETUI_REASON_DESTROY) {
        DestroyUiSession(reinterpret_cast<UiSession*>(pInfo->UserData));
        return 1;
    }
    PrinterCall call(pHeader->hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    UiSession* pSession =
        CreateUiSession(call, std::move(pModel), reinterpret_cast<DriverDevmode*>(pHeader->pdmOut));
    CopyWide(pSession->wcPrinterName, PATH_CHARS, pHeader->pszPrinterName);
    pSession->bDeviceSheet = bDeviceKind;
    return BuildSheetPages(pSession, pInfo, aTestPages, rAboutPage);
}

class CommitTest : public SheetTest {
  protected:
    void Open(const char* cSample = "T410A", bool bDevice = false)
    {
        AddSample(cSample);
        nAppliedPages = 0;
        bRefuse = false;
        bDeviceKind = bDevice;
        record = Defaults();
        record.dmCopies = 1;
        record.rPrivate.sPageBorders = 0;
        OpenDocument(nullptr, 0, 4, TestEntry);
        ASSERT_TRUE(ShowSheetPage(pSheet, 1));
        ASSERT_TRUE(ShowSheetPage(pSheet, 0));
    }
    void EditFrames()
    {
        ASSERT_TRUE(ShowSheetPage(pSheet, 0));
        ASSERT_TRUE(ClickControl(Page(0), IDC_LAYOUT_BORDERS));
    }
    void EditCopies(const WCHAR* wcText)
    {
        ASSERT_TRUE(ShowSheetPage(pSheet, 1));
        ASSERT_TRUE(TypeText(Page(1), IDC_PAPER_COPIES, wcText));
    }
    bool IsDirty(int nSlot) const { return Session()->bPageDirty[nSlot] != 0; }
    bool IsSnapshotOf(const DriverDevmode& wanted) const { return SameBytes(Session()->rSnapshot, wanted); }
    /* Makes the record one that the model forbids, with a text of its own. */
    void ForbidPaper() { record.dmPaperSize = 118; }
};

} // namespace

TEST_F(CommitTest, FinishesWithTheLastPageThatHasEdits)
{
    Open();
    const DriverDevmode before = record;
    EXPECT_FALSE(IsDirty(0) || IsDirty(1) || CanApplySheet(pSheet)) << "the start's own writes are no edits";
    EditFrames();
    EditCopies(u"4");
    EXPECT_TRUE(IsDirty(0) && IsDirty(1));
    EXPECT_EQ(Differing(before, record), "") << "controls hold the edits";
    PSHNOTIFY notify = {{SheetWindow(pSheet), 0, PSN_APPLY}, 0};
    SendMessageW(Page(0), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
    EXPECT_TRUE(SheetResults(pSheet).empty());
    EXPECT_TRUE(IsSnapshotOf(before));
    ASSERT_TRUE(PressSheetApply(pSheet));
    ASSERT_EQ(SheetResults(pSheet).size(), 1u);
    EXPECT_EQ(SheetResults(pSheet)[0].hPage, SheetPageHandle(pSheet, 1));
    EXPECT_EQ(SheetResults(pSheet)[0].lResult, CPSUI_OK);
    EXPECT_EQ(nAppliedPages, 2) << "an untouched page is left alone";
    EXPECT_EQ(record.dmCopies, 4);
    EXPECT_EQ(record.rPrivate.sPageBorders, 1);
    EXPECT_TRUE(IsSnapshotOf(record));
    EXPECT_TRUE(Broadcasts().empty());
    EditCopies(u"5");
    EditCopies(u"4"); /* back to what the record has: nothing to apply */
    EXPECT_FALSE(IsDirty(1) || CanApplySheet(pSheet));
    ASSERT_TRUE(PressSheetOk(pSheet));
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
    EXPECT_EQ(Close(), CPSUI_OK);
}

TEST_F(CommitTest, CancelLeavesTheRecordAsItWas)
{
    Open();
    const DriverDevmode before = record;
    EditFrames();
    EditCopies(u"9");
    ASSERT_TRUE(PressSheetCancel(pSheet));
    EXPECT_TRUE(SameBytes(before, record));
    EXPECT_EQ(Close(), CPSUI_CANCEL);
}

TEST_F(CommitTest, AConflictHoldsTheSheetAndNamesTheModelsText)
{
    Open();
    const DriverDevmode before = record;
    EditFrames();
    EditCopies(u"2");
    ForbidPaper();
    record.dmICMMethod = 257;
    WideText wcTitle, wcText;
    QueueModalStep([&](HWND hDialog) {
        WCHAR wcCaption[TEXT_CHARS] = {};
        GetWindowTextW(hDialog, wcCaption, TEXT_CHARS);
        wcTitle = wcCaption;
        wcText = TextOf(hDialog, IDC_NOTICE_TEXT);
        ClickControl(hDialog, IDC_NOTICE_OK);
    });
    EXPECT_FALSE(PressSheetOk(pSheet));
    EXPECT_TRUE(IsSheetOpen(pSheet));
    EXPECT_EQ(wcTitle, u"Settings Do Not Fit Together");
    EXPECT_NE(wcText, u"");
    EXPECT_NE(wcText, u"This entry cannot be taken as it stands.");
    EXPECT_EQ(ActiveSheetPage(pSheet), 1);
    EXPECT_TRUE(!IsDirty(0) && IsDirty(1)) << "only the page that would have finished";
    EXPECT_EQ(record.dmCopies, 2) << "the record keeps the edits";
    EXPECT_EQ(record.dmICMMethod, 257u);
    EXPECT_TRUE(SheetResults(pSheet).empty() && IsSnapshotOf(before));

    record.dmPaperSize =
        9; /* settled; the sheet still counts as changed, and an edit that is none keeps it so */
    EditCopies(u"3");
    EditCopies(u"2");
    EXPECT_TRUE(IsDirty(1) && CanApplySheet(pSheet));
    EditFrames();
    ASSERT_TRUE(PressSheetOk(pSheet)) << "no refusal is left over";
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
    EXPECT_EQ(record.dmICMMethod, 1u);
    EXPECT_EQ(Session()->bStickyChange, 0u);
}

TEST_F(CommitTest, APageMayRefuseToBeApplied)
{
    Open();
    EditFrames();
    bRefuse = true;
    EXPECT_FALSE(PressSheetOk(pSheet));
    EXPECT_TRUE(IsDirty(0) && SheetResults(pSheet).empty());
    bRefuse = false;
    EXPECT_TRUE(PressSheetOk(pSheet));
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
}

TEST_F(CommitTest, ALoadedPresetKeepsTheSheetChanged)
{
    Open();
    Session()->bSettingsLoaded = 1;
    CopyWide(Session()->wcProfileFile, PATH_CHARS, u"new.icc");
    CopyWide(Session()->wcScreenFile, PATH_CHARS, u"new.scr");
    EditCopies(u"1"); /* no difference: the mark stays as it is */
    EXPECT_TRUE(CanApplySheet(pSheet) && !IsDirty(1));
    Session()->bPageDirty[1] = 1;
    EditCopies(u"1");
    EXPECT_TRUE(IsDirty(1));
    record.dmICMMethod = 256;
    ASSERT_TRUE(PressSheetApply(pSheet));
    EXPECT_EQ(record.dmICMMethod, 256u);
    EXPECT_EQ(Session()->bSettingsLoaded, 0u);
    EXPECT_EQ(WideText(Session()->wcProfileFileSnapshot), u"new.icc");
    WCHAR wcName[PATH_CHARS];
    PrinterCall call(hPrinter);
    GetProfileName(call, wcName, PATH_CHARS);
    EXPECT_EQ(WideText(wcName), u"new.icc");
    GetScreenName(call, wcName, PATH_CHARS);
    EXPECT_EQ(WideText(wcName), u"new.scr");
    OpenDocument(nullptr, 0, 4, TestEntry);
    EXPECT_EQ(WideText(Session()->wcScreenFile), u"new.scr") << "known to the next sheet";
}

/* What the driver sets itself is nobody's edit, and leaves the focus where the user has it. */
TEST_F(CommitTest, FillsAndAppliesRunNoCommand)
{
    Open();
    EditCopies(u"7");
    nCommands = nChecks = 0;
    const HWND hFocus = GetDlgItem(Page(1), IDC_PAPER_COPIES);
    SetFocus(hFocus);
    ReloadPage(Session(), SLOT_PAPER);
    EXPECT_EQ(TextOf(Page(1), IDC_PAPER_COPIES), u"1");
    EXPECT_EQ(nCommands + nChecks, 0) << "a fill";
    EXPECT_EQ(GetFocus(), hFocus);
    ReloadPage(Session(), SLOT_QUALITY); /* without a window */
    Session()->bPageDirty[SLOT_PAPER] = 1;
    PSHNOTIFY notify = {{SheetWindow(pSheet), 0, PSN_APPLY}, 0};
    SendMessageW(Page(1), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
    EXPECT_EQ(nCommands + nChecks, 0) << "an apply";
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
}

TEST_F(CommitTest, ADialogCommitsInThePaperPagesName)
{
    Open();
    Session()->bPageDirty[SLOT_CUSTOM_PAPERS] = 1;
    CommitPage(Session(), SLOT_CUSTOM_PAPERS, SheetWindow(pSheet));
    ASSERT_EQ(SheetResults(pSheet).size(), 1u);
    EXPECT_EQ(SheetResults(pSheet)[0].hPage, SheetPageHandle(pSheet, 1));
    ForbidPaper();
    Session()->bPageDirty[SLOT_CUSTOM_PAPERS] = 1;
    CommitPage(Session(), SLOT_CUSTOM_PAPERS, SheetWindow(pSheet));
    EXPECT_EQ(DialogsOpened(), 1);
    EXPECT_FALSE(IsDirty(SLOT_CUSTOM_PAPERS));
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
}

TEST_F(CommitTest, TheDeviceSheetTellsAllWindows)
{
    Open("QPS", true);
    EXPECT_EQ(SheetPageCount(pSheet), 2u);
    EXPECT_EQ(Session()->pfnPageCommand[SLOT_FONTS], nullptr);
    EditCopies(u"2");
    ASSERT_TRUE(PressSheetOk(pSheet));
    ASSERT_EQ(Broadcasts().size(), 1u);
    EXPECT_EQ(Broadcasts()[0].uMessage, WM_DEVMODECHANGE);
    EXPECT_EQ(Broadcasts()[0].wcText, wcPrinter);
    Open("QPS");
    EXPECT_EQ(Session()->pfnPageCommand[SLOT_FONTS], CommandFrames) << "kept before the page's condition";
    EXPECT_EQ(Session()->hPage[SLOT_FONTS], nullptr);
}

/* Opens, edits, applies and closes both sheets of a printer whose calls fail. What is there works or is not there. */
class SheetFaults : public CommitTest {
  protected:
    std::string UseSheet(bool bDevice)
    {
        std::string fault;
        bDevice ? OpenDevice() : OpenDocument();
        if ((SheetInfo(pSheet).Result != 0) != (SheetStartResult(pSheet) != 0)) {
            fault += "two answers; ";
        }
        for (size_t i = 0; i < SheetPageCount(pSheet); i++) {
            ShowSheetPage(pSheet, i);
        }
        if (!bDevice && record.dmSize != 220) {
            fault += "a stale record; ";
        }
        if (Session() && Page(0) && SessionOf(Page(0))) {
            TrackChange(Page(0), Session(), bDevice ? SLOT_FONTS : SLOT_LAYOUT, 1);
            PressSheetApply(pSheet);
            PressSheetOk(pSheet);
        }
        Close();
        return fault;
    }
};

TEST_F(SheetFaults, EveryCallFails)
{
    AddSample("T410A");
    UseSheet(false); /* the user's files are there from here on */
    int nFaults = 0;
    for (bool bDevice : {false, true}) {
        for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
            const FaultSweep sweep = SweepFaults(ANY_CALL, mode, 20000, [&] { return UseSheet(bDevice); });
            EXPECT_EQ(sweep.fault, "");
            nFaults += sweep.nFaults;
        }
    }
    EXPECT_GT(nFaults, 1000);
}

/* The same with the calls that make the user's first settings file, of a small printer. */
TEST_F(SheetFaults, EveryCallOfAFirstSheetFails)
{
    AddSample("QPS");
    auto first = [&] {
        std::filesystem::remove_all(HostPath(u"C:\\Users\\worker\\Application Data"));
        return UseSheet(false);
    };
    first();
    for (CallId call :
         {CALL_HeapAlloc, CALL_CreateFileW, CALL_WriteFile, CALL_LoadLibraryExW, CALL_LoadStringW}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, IDS_NO_TARGET, first);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 0) << CallName(call);
    }
}
