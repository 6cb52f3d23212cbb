/* The dialogs of the user's own papers, worked as a user works them, and the places that know of the papers: settings
   file, printer's forms, value "PaperSizes", list of the Paper page. */
#include "sheet/saved_papers.h"

#include <map>
#include <random>

#include "base/measure.h"
#include "description/control_ids.h"
#include "description/paper.h"
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
void Confirm(HWND hEditor)
{
    ClickControl(hEditor, IDC_SIZE_ADD);
    ClickControl(hEditor, IDC_SIZE_CHANGE);
}
void Fill(HWND hEditor, const WideText& wcName, const WideText& wcWidth, const WideText& wcLength)
{
    TypeText(hEditor, IDC_SIZE_NAME, wcName);
    TypeText(hEditor, IDC_SIZE_WIDTH, wcWidth);
    TypeText(hEditor, IDC_SIZE_LENGTH, wcLength);
}
void Add(HWND hList, const WideText& wcName, const WideText& wcWidth, const WideText& wcLength)
{
    Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
        Fill(hEditor, wcName, wcWidth, wcLength);
        Confirm(hEditor);
    });
}
/* Confirms, and reads the notice that refuses. */
std::string Refusal(HWND hEditor)
{
    WCHAR wcTitle[TEXT_CHARS] = {};
    Press(hEditor, IDC_SIZE_ADD, [&](HWND hNotice) { GetWindowTextW(hNotice, wcTitle, TEXT_CHARS); });
    return Narrow(wcTitle);
}

class SavedPapersTest : public SheetTest {
  protected:
    /* Opens a document's sheet whose Paper page has been shown. */
    void Open(bool bMetric)
    {
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        AddSample("T410A");
        SetSizes({257, 2100, 11880, 300, 3000, 2000});
        OpenDocument();
        ASSERT_TRUE(ShowSheetPage(pSheet, 1));
        FillPaperCombo(Page(1), Session());
        ASSERT_TRUE(ShowSheetPage(pSheet, 0));
    }
    void SetSizes(const std::vector<u16>& words)
    {
        const u8* pBytes = reinterpret_cast<const u8*>(words.data());
        SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, Bytes(pBytes, pBytes + 2 * words.size()));
    }
    void InList(const Step& step)
    {
        Within(step, [&] { ShowSavedPapers(SheetWindow(pSheet), Session()); });
    }

    /* Rows of a list from nFirst on; for the list of the dialog also which of its buttons are enabled. */
    static std::string Rows(HWND hDialog, int nList = IDC_SIZES_LIST, LRESULT nFirst = 0)
    {
        const bool bBox = nList == IDC_SIZES_LIST;
        std::string rows;
        const LRESULT nRows = SendDlgItemMessageW(hDialog, nList, bBox ? LB_GETCOUNT : CB_GETCOUNT, 0, 0);
        for (LRESULT i = nFirst; i < nRows; i++) {
            WCHAR wcRow[3 * TEXT_CHARS] = {};
            SendDlgItemMessageW(hDialog, nList, bBox ? LB_GETTEXT : CB_GETLBTEXT, static_cast<WPARAM>(i),
                                reinterpret_cast<LPARAM>(wcRow));
            rows += Narrow(wcRow) + "|";
        }
        for (int nButton : {IDC_SIZES_NEW, IDC_SIZES_EDIT, IDC_SIZES_DELETE}) {
            rows += !bBox ? "" : IsWindowEnabled(GetDlgItem(hDialog, nButton)) ? "+" : "-";
        }
        return rows;
    }
    /* Title and edit controls, the confirm buttons that can be pressed, and the default button. */
    static std::string Editor(HWND hEditor)
    {
        WCHAR wcTitle[TEXT_CHARS] = {};
        GetWindowTextW(hEditor, wcTitle, TEXT_CHARS);
        std::string shown = Narrow(wcTitle);
        for (int nControl :
             {IDC_SIZE_NAME, IDC_SIZE_WIDTH, IDC_SIZE_WIDTH_UNIT, IDC_SIZE_LENGTH, IDC_SIZE_LENGTH_UNIT}) {
            shown += "|" + Narrow(TextOf(hEditor, nControl));
        }
        for (int nButton : {IDC_SIZE_ADD, IDC_SIZE_CHANGE}) {
            const HWND hButton = GetDlgItem(hEditor, nButton);
            const auto lStyle = GetWindowLongPtrW(hButton, GWL_STYLE);
            shown += (lStyle & static_cast<LONG_PTR>(WS_VISIBLE)) && IsWindowEnabled(hButton)
                         ? "|" + Narrow(TextOf(hEditor, nButton))
                         : "";
        }
        return shown + "|" + std::to_string(LOWORD(SendMessageW(hEditor, DM_GETDEFID, 0, 0)));
    }

    /* "" when file, forms, value and list say what the session does. Of papers that have one name in the spooler's eyes
       the last has the form. */
    std::string Disagreement()
    {
        const PaperSizeRow* pRows = Session()->pCustomPapers.get();
        const i32 nRows = Session()->sCustomPaperCount;
        PrinterCall call(hPrinter);
        OwnedBlock<PaperSizeRow> pFile;
        const i32 nFile = GetSavedPapers(call, nullptr, &pFile);
        std::string fault = SamePapers(pRows, nRows, pFile.get(), nFile) ? "" : "file; ", names;
        std::map<WideText, std::pair<u32, u32>> wanted, forms;
        std::vector<u16> sizes = {257, 2100, 11880, 300, 3000, 2000};
        for (i32 i = 0; i < nRows; i++) {
            wanted[LowerText(pRows[i].wcName)] = {pRows[i].ulWidth * 10, pRows[i].ulLength * 10};
            for (u32 ulWord : {448u + static_cast<u32>(i), pRows[i].ulWidth / 10, pRows[i].ulLength / 10}) {
                sizes.push_back(static_cast<u16>(ulWord));
            }
            names += Narrow(pRows[i].wcName) + "|";
        }
        for (const MachineForm& form : MachineForms()) {
            fault += forms.contains(LowerText(form.wcName)) ? "a form twice; " : "";
            forms[LowerText(form.wcName)] = {form.size.cx, form.size.cy};
        }
        DWORD dwType;
        Bytes value, before;
        GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &value);
        SetSizes(sizes);
        GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &before);
        return fault + (wanted == forms ? "" : "forms; ") + (value == before ? "" : "value; ") +
               (Rows(Page(1), IDC_PAPER_SIZE, CountPaperRows(Session()->pXpi.get())) == names ? "" : "list");
    }
    bool IsDirty() const { return Session()->bPageDirty[SLOT_CUSTOM_PAPERS] != 0; }
};

} // namespace

TEST_F(SavedPapersTest, AreMadeByHand)
{
    Open(false);
    InList([&](HWND hList) {
        EXPECT_EQ(Rows(hList), "+--");
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            EXPECT_EQ(Editor(hEditor), "New Paper Size||3.00|in|5.00|in|1703");
            Fill(hEditor, u"   ", u"1", u"99");
            EXPECT_EQ(Editor(hEditor), "New Paper Size|   |1|in|99|in|1703");
            TypeText(hEditor, IDC_SIZE_NAME, u"Card ", false);
            EXPECT_EQ(Refusal(hEditor), "Paper Size Out of Range");
            EXPECT_EQ(Editor(hEditor), "New Paper Size|   Card |3.00|in|47.24|in|Add|1710");
            EXPECT_EQ(GetFocus(), GetDlgItem(hEditor, IDC_SIZE_WIDTH)) << "the first of those that were out";
            ClickControl(hEditor, IDC_UNIT);
            EXPECT_EQ(Editor(hEditor), "New Paper Size|   Card |76.2|mm|1199.9|mm|Add|1710");
            Fill(hEditor, u" Card ", u"100.0", u"152.4");
            SpinControl(hEditor, IDC_SIZE_WIDTH_SPIN, SB_LINEUP);
            SpinControl(hEditor, IDC_SIZE_WIDTH_SPIN, SB_LINEDOWN);
            EXPECT_EQ(GetFocus(), GetDlgItem(hEditor, IDC_SIZE_WIDTH_SPIN));
            TypeText(hEditor, IDC_SIZE_LENGTH, u"152.4");
            SendKey(VK_RETURN);
        });
        EXPECT_EQ(Rows(hList), "Card (100.0 x 152.4 mm)|+++");
        EXPECT_TRUE(IsDirty() && CanApplySheet(pSheet));
        Add(hList, u"A  B", u"9.84", u"11.81");
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            Fill(hEditor, u"Card", u"8.00", u"10.00");
            EXPECT_EQ(Refusal(hEditor), "Name Already in Use");
            CloseWindowByUser(hEditor);
        });
        ClickControl(hList, IDC_OK);
    });
    EXPECT_EQ(ForcedCloses(), 0);
    EXPECT_EQ(Disagreement(), "");
    EXPECT_EQ(SheetResults(pSheet).size(), 1u);
    /* Margins of 130 and 140, and of 160 and 170, at 600 dots to the inch. */
    ASSERT_EQ(MachineForms().size(), 2u);
    const RECTL area = MachineForms()[0].area;
    EXPECT_TRUE(area.left == 5503 && area.top == 5926 && area.right == 94074 && area.bottom == 146897);
    EXPECT_EQ(MachineForms()[1].area.left, 6773);
}

TEST_F(SavedPapersTest, AreKnownByTheirNames)
{
    Open(true);
    InList([&](HWND hList) {
        Add(hList, u"One", u"100.0", u"200.0");
        Add(hList, u"Two", u"150", u"250");
        ClickControl(hList, IDC_OK);
    });
    SelectComboValue(Page(1), IDC_PAPER_SIZE, 449);
    InList([&](HWND hList) {
        EXPECT_FALSE(IsDirty());
        ClickControl(hList, IDC_SIZES_DELETE);
        EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), 448);
        ClickControl(hList, IDC_OK);
    });
    EXPECT_EQ(Disagreement(), "");
    InList([&](HWND hList) {
        Within(
            [&](HWND hEditor) {
                EXPECT_EQ(Editor(hEditor), "Edit Paper Size|Two|150.0|mm|250.0|mm|OK|1709");
                TypeText(hEditor, IDC_SIZE_NAME, u"Three");
                ClickControl(hEditor, IDC_UNIT);
                Confirm(hEditor);
            },
            [&] { DoubleClickRow(hList, IDC_SIZES_LIST, 0); });
        EXPECT_EQ(Rows(hList), "Three (5.91 x 9.84 in)|+++");
        EXPECT_EQ(record.rPrivate.bMetric, 0);
        EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), PAPER_A4) << "the name is gone";
        ClickControl(hList, IDC_CANCEL);
    });
    EXPECT_FALSE(IsDirty()) << "no page's commit waits for them";
    EXPECT_EQ(Disagreement(), "file; forms; value; ");
    InList([&](HWND hList) { ClickControl(hList, IDC_OK); });
    EXPECT_EQ(Disagreement(), "") << "the next OK finds them";
    ResetCallCounts();
    InList([&](HWND hList) { ClickControl(hList, IDC_OK); });
    EXPECT_EQ(CallCount(CALL_DeleteFormW) + CallCount(CALL_SetPrinterDataW), 0) << "nothing to store";
    SetSizes({448, 0, 0, 449});
    InList([&](HWND hList) {
        ClickControl(hList, IDC_SIZES_DELETE);
        EXPECT_EQ(Rows(hList), "+--");
        ClickControl(hList, IDC_OK);
    });
    DWORD dwType;
    Bytes value;
    EXPECT_FALSE(GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &value)) << "no row is left";
    EXPECT_TRUE(MachineForms().empty());
}

/* What a text typed for the width becomes: a refusal shows the limit, and that is taken in either unit. */
TEST_F(SavedPapersTest, TakeNoSizeBeyondTheModels)
{
    Open(true);
    const WideText wcMany(200, u'9');
    const std::map<WideText, u32> taken = {{u"", 7620},
                                           {u"-", 7620},
                                           {u"-100", 7620},
                                           {u"abc", 7620},
                                           {u"\u0661\u0660\u0660", 7620},
                                           {u"76.1", 7620},
                                           {u"100,5", 7620},
                                           {u"+100.5", 10050},
                                           {u" 100 x", 10000},
                                           {u"311.2", 31120},
                                           {u"311.3", 31120},
                                           {u"999999", 31120},
                                           {wcMany, 31120}};
    for (const auto& [wcText, ulTaken] : taken) {
        InList([&](HWND hList) {
            Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
                Fill(hEditor, u"Card", wcText, u"200");
                Refusal(hEditor);
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
    InList([&](HWND hList) {
        Press(hList, IDC_SIZES_NEW, [&](HWND hEditor) {
            TypeText(hEditor, IDC_SIZE_NAME, WideText(20, u'n'));
            EXPECT_EQ(Editor(hEditor), "New Paper Size|nnnnnnnnnnnnnnnn|76.0|mm|127.0|mm|Add|1710")
                << "a proposal is rounded, and may lie below the least";
            SetDlgItemTextW(hEditor, IDC_SIZE_NAME, (u"\tA\nB" + WideText(90, u'x')).c_str());
            SetDlgItemTextW(hEditor, IDC_SIZE_WIDTH, wcMany.c_str());
            Refusal(hEditor);
            Confirm(hEditor);
        });
        EXPECT_EQ(Rows(hList), "A B" + std::string(59, 'x') + " (311.2 x 127.0 mm)|+++");
    });
    for (i32 lLimit = 10; lLimit <= 0x7FFF * 10; lLimit += 10) { /* of every model */
        for (int bMetric : {0, 1}) {
            WCHAR wcText[TEXT_CHARS];
            FormatMeasure(lLimit, bMetric, ROUND_UP, u".", wcText, TEXT_CHARS);
            ASSERT_GE(MeasureOfText(wcText, u".", bMetric), lLimit);
            FormatMeasure(lLimit, bMetric, ROUND_DOWN, u".", wcText, TEXT_CHARS);
            ASSERT_LE(MeasureOfText(wcText, u".", bMetric), lLimit);
        }
    }
}

TEST_F(SavedPapersTest, AThousandEditsLeaveAllPlacesOfOneMind)
{
    Open(true);
    std::mt19937 random(16);
    const auto below = [&](u32 n) { return static_cast<int>(random() % n); };
    const WideText awcNames[] = {u"A",    u"a", u" B ", u"\"C\"", u"'", u"D=;[x]", u"\u00E4\u4E00",
                                 u"E\tF", u"",  u"G  H"};
    const WideText awcSides[] = {u"100.0", u"150.5", u"12",  u"200", u"311.2",
                                 u"x",     u"99999", u"250", u"",    u"-1"};
    const auto edit = [&](HWND hEditor) {
        TypeText(hEditor, IDC_SIZE_NAME, awcNames[below(10)], below(2));
        for (int i = below(5); i > 0; i--) {
            switch (below(5)) {
            case 0: SpinControl(hEditor, IDC_SIZE_LENGTH_SPIN, below(3)); break;
            case 1: TypeText(hEditor, IDC_SIZE_WIDTH, awcSides[below(10)]); break;
            case 2: TypeText(hEditor, IDC_SIZE_LENGTH, awcSides[below(10)]); break;
            case 3: ClickControl(hEditor, IDC_UNIT); break;
            default: SendKey(static_cast<WPARAM>(KEY_PRIOR + below(8))); break;
            }
        }
        Confirm(hEditor);
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

/* Whatever failed, nothing is held, all rows but the spare one have a name, and the next OK puts everything in order. */
TEST_F(SavedPapersTest, SurviveEveryFailure)
{
    Open(true);
    const auto use = [&] {
        InList([&](HWND hList) {
            Add(hList, u"A", u"100", u"300");
            Press(hList, IDC_SIZES_EDIT, [&](HWND hEditor) {
                Fill(hEditor, u"B", u"1", u"300");
                Refusal(hEditor);
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
            FailCall(ANY_CALL, n, mode);
            ASSERT_EQ(HoldsNothing([&] { return use(), std::string(); }), "") << n;
            nHit = StopFaults();
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
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begun;
    EXPECT_EQ(SendDlgItemMessageW(Page(1), IDC_PAPER_SIZE, CB_GETCOUNT, 0, 0), 1014);
    EXPECT_LT(spent.count(), 0.5) << "sanitized, and both lists";
}
