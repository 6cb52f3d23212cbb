/* The dialogs of the user's own papers, worked as a user works them, and the four places that know of the papers: the
   settings file, the printer's forms, the value "PaperSizes", and the lists of the Paper page. */
#include "sheet/saved_papers.h"

#include <random>

#include "base/measure.h"
#include "description/control_ids.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "sheet/dialog_services.h"
#include "sheet/paper_lists.h"
#include "sheet/saved_papers_dialog.h"
#include "support/sheet_machine.h"
#include "support/sweep.h"

namespace {

using Step = std::function<void(HWND hDialog)>;

/* Takes a step in the dialog that an action opens; when none opens, the step is not taken later either. */
void Within(const Step& step, const std::function<void()>& action)
{
    const auto bOpen = std::make_shared<bool>(true);
    QueueModalStep([=](HWND hDialog) { *bOpen ? step(hDialog) : void(); });
    action();
    *bOpen = false;
}
void Press(HWND hDialog, int nButton, const Step& step)
{
    Within(step, [=] { ClickControl(hDialog, nButton); });
}

class SavedPapersTest : public SheetTest {
  protected:
    /* Opens a document's sheet at its Paper page; the value "PaperSizes" is as an installation leaves it, with a row of
       a paper that is no more. */
    void Open(bool bMetric)
    {
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        AddSample("T410A");
        const u16 ausSizes[] = {257, 2100, 11880, 300, 3000, 2000, 448, 1, 1};
        const u8* pSizes = reinterpret_cast<const u8*>(ausSizes);
        SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, Bytes(pSizes, pSizes + sizeof ausSizes));
        OpenDocument();
        ASSERT_TRUE(ShowSheetPage(pSheet, 1));
        FillPaperCombo(Page(1), Session());
        DropMachineForms();
    }
    void InList(const Step& step)
    {
        Within(step, [&] { ShowSavedPapers(SheetWindow(pSheet), Session()); });
    }
    static void Fill(HWND hEditor, const WideText& wcName, const WideText& wcWidth, const WideText& wcLength)
    {
        TypeText(hEditor, IDC_SIZE_NAME, wcName);
        TypeText(hEditor, IDC_SIZE_WIDTH, wcWidth);
        TypeText(hEditor, IDC_SIZE_LENGTH, wcLength);
    }
    static void Confirm(HWND hEditor)
    {
        ClickControl(hEditor, IDC_SIZE_ADD);
        ClickControl(hEditor, IDC_SIZE_CHANGE);
    }
    void Add(HWND hList, const WideText& wcName, const WideText& wcWidth, const WideText& wcLength)
    {
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            Fill(hEditor, wcName, wcWidth, wcLength);
            Confirm(hEditor);
        });
    }

    static std::string Title(HWND hDialog)
    {
        WCHAR wcTitle[TEXT_CHARS] = {};
        GetWindowTextW(hDialog, wcTitle, TEXT_CHARS);
        return Narrow(wcTitle);
    }
    /* Rows of a list from nFirst on, "*" at the selected one, and what the dialog's buttons can do. */
    static std::string Rows(HWND hDialog, int nControl, int nFirst = 0)
    {
        const bool bCombo = nControl != IDC_SIZES_LIST;
        std::string rows;
        const LRESULT nRows =
            SendDlgItemMessageW(hDialog, nControl, bCombo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0);
        for (LRESULT i = nFirst; i < nRows; i++) {
            WCHAR wcRow[3 * TEXT_CHARS] = {};
            SendDlgItemMessageW(hDialog, nControl, bCombo ? CB_GETLBTEXT : LB_GETTEXT, static_cast<WPARAM>(i),
                                reinterpret_cast<LPARAM>(wcRow));
            rows += SendDlgItemMessageW(hDialog, nControl, bCombo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0) == i
                        ? "*"
                        : "";
            rows += Narrow(wcRow) + "|";
        }
        for (int nButton : {IDC_SIZES_NEW, IDC_SIZES_EDIT, IDC_SIZES_DELETE}) {
            rows += bCombo ? "" : IsWindowEnabled(GetDlgItem(hDialog, nButton)) ? "+" : "-";
        }
        return rows;
    }
    static std::string Editor(HWND hEditor)
    {
        std::string shown = Title(hEditor);
        for (int nControl :
             {IDC_SIZE_NAME, IDC_SIZE_WIDTH, IDC_SIZE_WIDTH_UNIT, IDC_SIZE_LENGTH, IDC_SIZE_LENGTH_UNIT}) {
            shown += "|" + Narrow(TextOf(hEditor, nControl));
        }
        for (int nButton : {IDC_SIZE_ADD, IDC_SIZE_CHANGE}) {
            const HWND hButton = GetDlgItem(hEditor, nButton);
            shown += !(GetWindowLongPtrW(hButton, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE)) ? ""
                     : IsWindowEnabled(hButton) ? "|" + Narrow(TextOf(hEditor, nButton))
                                                : "|off";
        }
        return shown + "|" + std::to_string(LOWORD(SendMessageW(hEditor, DM_GETDEFID, 0, 0)));
    }

    /* "" when file, forms, value and list say what the session does; of papers with one name in the spooler's eyes the
       last has the form. */
    std::string Disagreement()
    {
        const PaperSizeRow* pRows = Session()->pCustomPapers.get();
        const i32 nRows = Session()->sCustomPaperCount;
        std::string fault;
        PrinterCall call(hPrinter);
        OwnedBlock<PaperSizeRow> pFile;
        const i32 nFile = GetSavedPapers(call, nullptr, &pFile);
        fault += SamePapers(pRows, nRows, pFile.get(), nFile) ? "" : "file; ";
        std::map<WideText, std::pair<i32, i32>> wanted, forms;
        std::vector<u16> sizes = {257, 2100, 11880, 300, 3000, 2000}, stored;
        std::string names;
        for (i32 i = 0; i < nRows; i++) {
            wanted[LowerText(pRows[i].wcName)] = {pRows[i].ulWidth * 10, pRows[i].ulLength * 10};
            for (u32 ulWord : {448u + static_cast<u32>(i), pRows[i].ulWidth / 10, pRows[i].ulLength / 10}) {
                sizes.push_back(static_cast<u16>(ulWord));
            }
            names += Narrow(pRows[i].wcName) + "|";
        }
        for (const MachineForm& form : MachineForms()) {
            forms[LowerText(form.wcName)] = {form.size.cx, form.size.cy};
        }
        fault += wanted == forms && MachineForms().size() == forms.size() ? "" : "forms; ";
        DWORD dwType;
        Bytes value;
        GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &value);
        stored.resize(value.size() / 2);
        std::memcpy(stored.data(), value.data(), 2 * stored.size());
        fault += stored == sizes ? "" : "value; ";
        std::string shown = Rows(Page(1), IDC_PAPER_SIZE, CountPaperRows(Session()->pXpi.get()));
        std::erase(shown, '*');
        return fault + (shown == names ? "" : "list " + shown + " not " + names);
    }
    WideText Settings()
    {
        WCHAR tcPath[PATH_CHARS];
        PrinterCall call(hPrinter);
        GetUserSettingsPath(call, tcPath);
        return tcPath;
    }
    bool IsDirty() const { return Session()->bPageDirty[SLOT_CUSTOM_PAPERS] != 0; }
};

} // namespace

TEST_F(SavedPapersTest, AreMadeChangedAndDeletedByHand)
{
    Open(false);
    InList([&](HWND hList) {
        EXPECT_EQ(Title(hList) + " " + Rows(hList, IDC_SIZES_LIST), "Your Paper Sizes +--");
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            EXPECT_EQ(Editor(hEditor), "New Paper Size||3.00|in|5.00|in|off|1703");
            TypeText(hEditor, IDC_SIZE_NAME, u"   ");
            EXPECT_EQ(Editor(hEditor), "New Paper Size|   |3.00|in|5.00|in|off|1703");
            Fill(hEditor, u" Card ", u"1", u"99");
            Press(hEditor, IDC_SIZE_ADD, [&](HWND hNotice) {
                EXPECT_EQ(Title(hNotice), "Paper Size Out of Range");
                ClickControl(hNotice, IDC_NOTICE_OK);
            });
            EXPECT_EQ(Editor(hEditor), "New Paper Size| Card |3.00|in|47.24|in|Add|1710");
            EXPECT_EQ(GetFocus(), GetDlgItem(hEditor, IDC_SIZE_WIDTH)) << "the first of those that were out";
            ClickControl(hEditor, IDC_UNIT);
            EXPECT_EQ(Editor(hEditor), "New Paper Size| Card |76.2|mm|1199.9|mm|Add|1710");
            TypeText(hEditor, IDC_SIZE_WIDTH, u"100.0");
            SpinControl(hEditor, IDC_SIZE_WIDTH_SPIN, SB_LINEUP);
            EXPECT_EQ(GetFocus(), GetDlgItem(hEditor, IDC_SIZE_WIDTH_SPIN));
            TypeText(hEditor, IDC_SIZE_LENGTH, u"152.4");
            SpinControl(hEditor, IDC_SIZE_WIDTH_SPIN, SB_LINEDOWN);
            SendKey(VK_RETURN);
        });
        EXPECT_EQ(Rows(hList, IDC_SIZES_LIST), "*Card (100.0 x 152.4 mm)|+++");
        EXPECT_TRUE(IsDirty() && CanApplySheet(pSheet));
        EXPECT_EQ(Rows(Page(1), IDC_PAPER_SIZE, 14), "Card|");
        Add(hList, u"A  B", u"9.84", u"11.81");
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            Fill(hEditor, u"Card", u"8.00", u"10.00");
            Press(hEditor, IDC_SIZE_ADD, [&](HWND hNotice) {
                EXPECT_EQ(Title(hNotice), "Name Already in Use");
                ClickControl(hNotice, IDC_NOTICE_OK);
            });
            CloseWindowByUser(hEditor);
        });
        EXPECT_EQ(Session()->sCustomPaperCount, 2);
        ClickControl(hList, IDC_OK);
    });
    EXPECT_EQ(ForcedCloses(), 0);
    EXPECT_EQ(Disagreement(), "");
    /* Margins of 130 and 140, and of 160 and 170, at 600 dots to the inch. */
    ASSERT_EQ(MachineForms().size(), 2u);
    const RECTL card = MachineForms()[0].area;
    EXPECT_EQ(card.left, 5503);
    EXPECT_EQ(card.top, 5926);
    EXPECT_EQ(card.right, 100000 - 5926);
    EXPECT_EQ(card.bottom, 152400 - 5503);
    EXPECT_EQ(MachineForms()[1].area.left, 6773);
    EXPECT_FALSE(IsDirty());
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
}

TEST_F(SavedPapersTest, KeepTheirPlaceWhenOneBeforeThemGoes)
{
    Open(true);
    InList([&](HWND hList) {
        Add(hList, u"One", u"100.0", u"200.0");
        Add(hList, u"Two", u"150", u"250");
        ClickControl(hList, IDC_OK);
    });
    SelectComboValue(Page(1), IDC_PAPER_SIZE, 449);
    InList([&](HWND hList) {
        EXPECT_EQ(Rows(hList, IDC_SIZES_LIST), "*One (100.0 x 200.0 mm)|Two (150.0 x 250.0 mm)|+++");
        EXPECT_FALSE(IsDirty());
        ClickControl(hList, IDC_SIZES_DELETE);
        EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), 448) << "known by its name";
        ClickControl(hList, IDC_OK);
    });
    EXPECT_EQ(Disagreement(), "");
    InList([&](HWND hList) {
        QueueModalStep([&](HWND hEditor) {
            EXPECT_EQ(Editor(hEditor), "Edit Paper Size|Two|150.0|mm|250.0|mm|OK|1709");
            ClickControl(hEditor, IDC_UNIT);
            ClickControl(hEditor, IDC_UNIT);
            EXPECT_EQ(Editor(hEditor), "Edit Paper Size|Two|150.1|mm|249.9|mm|OK|1709");
            TypeText(hEditor, IDC_SIZE_NAME, u"Three");
            ClickControl(hEditor, IDC_UNIT);
            Confirm(hEditor);
        });
        DoubleClickRow(hList, IDC_SIZES_LIST, 0);
        EXPECT_EQ(Rows(hList, IDC_SIZES_LIST), "*Three (5.91 x 9.84 in)|+++");
        EXPECT_EQ(Session()->pRecord->rPrivate.bMetric, 0);
        EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), 9) << "the name is gone";
        Add(hList, u"Four", u"999", u"150");
        ClickControl(hList, IDC_CANCEL);
    });
    EXPECT_FALSE(IsDirty()) << "no page's commit waits for them";
    EXPECT_EQ(Session()->sCustomPaperCount, 1) << "a new paper beyond the limits is not taken";
    EXPECT_NE(Disagreement(), "");
    InList([&](HWND hList) {
        EXPECT_TRUE(IsDirty());
        ClickControl(hList, IDC_OK);
    });
    EXPECT_EQ(Disagreement(), "");
    const Bytes file = GetFile(Settings());
    ResetCallCounts();
    InList([&](HWND hList) { ClickControl(hList, IDC_OK); });
    EXPECT_EQ(CallCount(CALL_DeleteFormW) + CallCount(CALL_SetPrinterDataW), 0) << "nothing to store";
    SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, {0xC0, 1, 0, 0, 0, 0, 7});
    InList([&](HWND hList) {
        ClickControl(hList, IDC_SIZES_DELETE);
        EXPECT_EQ(Rows(hList, IDC_SIZES_LIST), "+--");
        ClickControl(hList, IDC_OK);
    });
    DWORD dwType;
    Bytes value;
    EXPECT_FALSE(GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &value)) << "no row is left";
    EXPECT_TRUE(MachineForms().empty());
    EXPECT_NE(GetFile(Settings()), file);
}

/* What a text typed for the width becomes: a refusal shows the limit, and that is taken in either unit. */
TEST_F(SavedPapersTest, TakeNoSizeBeyondTheModels)
{
    Open(true);
    const WideText wcMany(200, u'9');
    for (const auto& [wcText, ulTaken] : std::vector<std::pair<WideText, u32>>{{u"", 7620},
                                                                               {u"-", 7620},
                                                                               {u"-100", 7620},
                                                                               {u"abc", 7620},
                                                                               {u"\u0661\u0660\u0660", 7620},
                                                                               {u"100,5", 7620},
                                                                               {u"+100.5", 10050},
                                                                               {u" 100 x", 10000},
                                                                               {u"76.1", 7620},
                                                                               {u"311.2", 31120},
                                                                               {u"311.3", 31120},
                                                                               {u"999999", 31120},
                                                                               {wcMany, 31120}}) {
        InList([&](HWND hList) {
            Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
                Fill(hEditor, u"Card", wcText, u"200");
                Press(hEditor, IDC_SIZE_ADD, [](HWND hNotice) { ClickControl(hNotice, IDC_NOTICE_OK); });
                Confirm(hEditor);
            });
            EXPECT_EQ(Session()->pCustomPapers->ulWidth, ulTaken) << Narrow(wcText);
            Press(hList, IDC_SIZES_EDIT, [&](HWND hEditor) {
                ClickControl(hEditor, IDC_UNIT);
                Confirm(hEditor);
            });
            EXPECT_EQ(Session()->pCustomPapers->ulMetric, 0u) << Narrow(wcText);
            ClickControl(hList, IDC_SIZES_DELETE);
        });
    }
    /* The proposal for a new paper is rounded, and may lie below the least width. */
    InList([&](HWND hList) {
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            TypeText(hEditor, IDC_SIZE_NAME, WideText(20, u'n'));
            EXPECT_EQ(Editor(hEditor), "New Paper Size|nnnnnnnnnnnnnnnn|76.0|mm|127.0|mm|Add|1710");
            SetDlgItemTextW(hEditor, IDC_SIZE_NAME, u"\tA\nB\"");
            SetDlgItemTextW(hEditor, IDC_SIZE_WIDTH, wcMany.c_str());
            Press(hEditor, IDC_SIZE_ADD, [](HWND hNotice) { ClickControl(hNotice, IDC_NOTICE_OK); });
            Confirm(hEditor);
        });
        EXPECT_EQ(Rows(hList, IDC_SIZES_LIST), "*A B\" (311.2 x 127.0 mm)|+++");
    });
    /* Of every model: what the refusal shows is within. */
    for (i32 lLimit = 10; lLimit <= 0x7FFF * 10; lLimit += 10) {
        WCHAR wcText[TEXT_CHARS];
        for (int bMetric : {0, 1}) {
            FormatMeasure(lLimit, bMetric, ROUND_UP, u".", wcText, TEXT_CHARS);
            ASSERT_GE(MeasureOfText(wcText, u".", bMetric), lLimit);
            FormatMeasure(lLimit, bMetric, ROUND_DOWN, u".", wcText, TEXT_CHARS);
            ASSERT_LE(MeasureOfText(wcText, u".", bMetric), lLimit);
        }
    }
}

TEST_F(SavedPapersTest, AThousandEditsLeaveTheFourPlacesOfOneMind)
{
    Open(true);
    std::mt19937 random(16);
    const auto below = [&](u32 n) { return static_cast<int>(random() % n); };
    const WideText awcNames[] = {u"A",    u"a", u" B ", u"\"C\"", u"'", u"D=;[x]", u"\u00E4\u4E00",
                                 u"E\tF", u"",  u"G  H"};
    const WideText awcSides[] = {u"100.0", u"4.5",   u"12",  u"7.77", u"311.2",
                                 u"x",     u"99999", u"250", u"",     u"-1"};
    const auto edit = [&](HWND hEditor) {
        for (int i = below(5); i >= 0; i--) {
            switch (below(6)) {
            case 0: TypeText(hEditor, IDC_SIZE_NAME, awcNames[below(10)], below(2)); break;
            case 1: TypeText(hEditor, IDC_SIZE_WIDTH, awcSides[below(10)]); break;
            case 2: TypeText(hEditor, IDC_SIZE_LENGTH, awcSides[below(10)]); break;
            case 3: ClickControl(hEditor, IDC_UNIT); break;
            case 4: SpinControl(hEditor, IDC_SIZE_LENGTH_SPIN, below(3)); break;
            default: SendKey(static_cast<WPARAM>(KEY_PRIOR + below(8))); break;
            }
        }
        if (!GetDlgItem(hEditor, IDC_NOTICE_OK)) {
            Confirm(hEditor);
        }
    };
    size_t nMost = 0;
    for (int n = 0; n < 1000;) {
        InList([&](HWND hList) {
            for (int i = below(6); i >= 0; i--, n++) {
                const int anButtons[] = {IDC_SIZES_NEW, IDC_SIZES_NEW, IDC_SIZES_EDIT, IDC_SIZES_DELETE};
                PickRow(hList, IDC_SIZES_LIST, below(8));
                Press(hList, anButtons[below(4)], edit);
            }
            ClickControl(hList, IDC_OK);
        });
        ASSERT_EQ(Disagreement(), "") << n;
        nMost = std::max(nMost, MachineForms().size());
    }
    EXPECT_GE(nMost, 5u);
    EXPECT_EQ(ForcedCloses(), 0);
}

/* Whatever failed, nothing is held, every row has a name, and the next OK puts all in order. */
TEST_F(SavedPapersTest, SurviveEveryFailure)
{
    Open(true);
    const auto use = [&] {
        InList([&](HWND hList) {
            Add(hList, u"A", u"1", u"300");
            Press(hList, IDC_SIZES_EDIT, [&](HWND hEditor) {
                ClickControl(hEditor, IDC_UNIT);
                Confirm(hEditor);
            });
            ClickControl(hList, IDC_OK);
        });
    };
    const auto clear = [&] {
        InList([&](HWND hList) {
            while (Session()->sCustomPaperCount) {
                ClickControl(hList, IDC_SIZES_DELETE);
            }
            ClickControl(hList, IDC_OK);
        });
        FillPaperCombo(Page(1), Session());
        return Disagreement();
    };
    use();
    int nFaults = 0;
    for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        for (int n = 1, nHit = 1; nHit; n++) {
            ASSERT_EQ(clear(), "") << n;
            const std::string held = HoldsNothing([&] {
                FailCall(ANY_CALL, n, mode);
                use();
                nHit = StopFaults();
                return std::string();
            });
            ASSERT_EQ(held, "") << n;
            nFaults += nHit;
            const PaperSizeRow* pRows = Session()->pCustomPapers.get();
            for (i32 i = 0; i <= Session()->sCustomPaperCount; i++) {
                ASSERT_EQ(pRows[i].wcName[0] != 0, i < Session()->sCustomPaperCount) << n;
            }
        }
    }
    EXPECT_GT(nFaults, 1000);
}

TEST_F(SavedPapersTest, ALongListFillsAtOnce)
{
    Open(true);
    Session()->pCustomPapers.reset(static_cast<PaperSizeRow*>(AllocateRows(1001, sizeof(PaperSizeRow))));
    Session()->sCustomPaperCount = 1000;
    const auto begun = std::chrono::steady_clock::now();
    FillPaperCombo(Page(1), Session());
    const auto spent = std::chrono::steady_clock::now() - begun;
    EXPECT_EQ(SendDlgItemMessageW(Page(1), IDC_PAPER_SIZE, CB_GETCOUNT, 0, 0), 1014);
    EXPECT_EQ(SendDlgItemMessageW(Page(1), IDC_PAPER_TARGET, CB_GETCOUNT, 0, 0), 1015);
    EXPECT_LT(std::chrono::duration<double>(spent).count(), 0.5) << "sanitized, on a busy machine";
}
