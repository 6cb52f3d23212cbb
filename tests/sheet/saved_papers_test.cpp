/* The dialogs of the user's own papers, worked as a user works them, and the places that know of the papers: settings
   file, printer's forms, value "PaperSizes", list of the Paper page. */
#include "sheet/saved_papers.h"

#include <ctime>
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

const std::map<WideText, int> words = {
    {u"new", IDC_SIZES_NEW}, {u"edit", IDC_SIZES_EDIT}, {u"delete", IDC_SIZES_DELETE},
    {u"ok", IDC_OK},         {u"add", IDC_SIZE_ADD},    {u"change", IDC_SIZE_CHANGE},
    {u"unit", IDC_UNIT},     {u"cancel", IDC_CANCEL},   {u"n", IDC_SIZE_NAME},
    {u"w", IDC_SIZE_WIDTH},  {u"l", IDC_SIZE_LENGTH},   {u"close", IDC_NOTICE_OK},
    {u"row", IDC_SIZES_LIST}};

class SavedPapersTest : public SheetTest {
  protected:
    /* Opens a document's sheet whose Paper page has been shown. */
    void Open(bool bMetric)
    {
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        AddSample("T410A");
        SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, BytesOf({257, 2100, 11880, 300, 3000, 2000}));
        OpenDocument();
        ASSERT_TRUE(ShowSheetPage(pSheet, 1));
        FillPaperCombo(Page(1), Session());
        ASSERT_TRUE(ShowSheetPage(pSheet, 0));
    }
    static Bytes BytesOf(const std::vector<u16>& sizes)
    {
        const u8* pBytes = reinterpret_cast<const u8*>(sizes.data());
        return Bytes(pBytes, pBytes + 2 * sizes.size());
    }
    Bytes Sizes()
    {
        DWORD dwType;
        Bytes value;
        GetPrinterValue(wcPrinter, u"PaperSizes", &dwType, &value);
        return value;
    }

    /* The user opens the list and does one thing after the other, parted by "/", each in the dialog that is up then: the
       button of that word, "n=TEXT" typed into a control, "row=2" picked and double-clicked, "up" and "down" of the
       width's spin button, "enter"; "see" notes what is shown. Result: the notes. What does not come to its turn is not
       done later. */
    std::string Work(const WideText& wcThings)
    {
        notes.clear();
        nWork++;
        for (size_t nAt = 0, nEnd = 0; nEnd != WideText::npos; nAt = nEnd + 1) {
            nEnd = wcThings.find(u'/', nAt);
            QueueModalStep([this, nOwn = nWork, wcThing = wcThings.substr(nAt, nEnd - nAt)](HWND hDialog) {
                nOwn == nWork ? Do(hDialog, wcThing) : void();
            });
        }
        ShowSavedPapers(SheetWindow(pSheet), Session());
        return notes;
    }
    void Do(HWND hDialog, const WideText& wcThing)
    {
        const size_t nMark = wcThing.find(u'=');
        const auto word = words.find(wcThing.substr(0, nMark));
        if (wcThing == u"see") {
            notes += See(hDialog) + "\n";
        } else if (wcThing == u"enter") {
            SendKey(VK_RETURN);
        } else if (wcThing == u"up" || wcThing == u"down") {
            SpinControl(hDialog, IDC_SIZE_WIDTH_SPIN, wcThing == u"up" ? SB_LINEUP : SB_LINEDOWN);
        } else if (nMark == WideText::npos) {
            nEdits += ClickControl(hDialog, word->second) && word->first != u"unit";
        } else if (word->second == IDC_SIZES_LIST) {
            PickRow(hDialog, IDC_SIZES_LIST, wcThing.back() - u'0');
            DoubleClickRow(hDialog, IDC_SIZES_LIST, wcThing.back() - u'0');
        } else {
            TypeText(hDialog, word->second, wcThing.substr(nMark + 1));
        }
    }

    static std::string RowText(HWND hDialog, int nList, UINT uMessage, LRESULT nRow)
    {
        WCHAR wcRow[3 * TEXT_CHARS] = {};
        SendDlgItemMessageW(hDialog, nList, uMessage, static_cast<WPARAM>(nRow),
                            reinterpret_cast<LPARAM>(wcRow));
        return Narrow(wcRow) + "|";
    }
    /* Title, rows, edit controls with their units, the buttons that can be pressed, ">" at the one that Enter presses,
       "_" at the control with the focus; "*" in front when there are edits and the sheet can be applied. */
    std::string See(HWND hDialog) const
    {
        WCHAR wcTitle[TEXT_CHARS] = {};
        GetWindowTextW(hDialog, wcTitle, TEXT_CHARS);
        std::string seen = (IsDirty() && CanApplySheet(pSheet) ? "*" : "") + Narrow(wcTitle) + "|";
        for (LRESULT i = 0; i < SendDlgItemMessageW(hDialog, IDC_SIZES_LIST, LB_GETCOUNT, 0, 0); i++) {
            seen += RowText(hDialog, IDC_SIZES_LIST, LB_GETTEXT, i);
        }
        for (int nControl : {IDC_SIZE_NAME, IDC_SIZE_WIDTH, IDC_SIZE_WIDTH_UNIT, IDC_SIZE_WIDTH_SPIN,
                             IDC_SIZE_LENGTH, IDC_SIZE_LENGTH_UNIT, IDC_SIZES_NEW, IDC_SIZES_EDIT,
                             IDC_SIZES_DELETE, IDC_SIZE_ADD, IDC_SIZE_CHANGE, IDC_CANCEL, IDC_OK}) {
            const HWND hControl = GetDlgItem(hDialog, nControl);
            if (IsWindowEnabled(hControl) && IsWindowVisible(hControl)) {
                seen += LOWORD(SendMessageW(hDialog, DM_GETDEFID, 0, 0)) == nControl ? ">" : "";
                seen += GetFocus() == hControl ? "_" : "";
                seen += Narrow(TextOf(hDialog, nControl)) + "|";
            }
        }
        return seen;
    }

    /* "" when file, forms, value and list say what the session does. Of papers that have one name in the spooler's eyes
       the last has the form. */
    std::string Disagreement()
    {
        const PaperSizeRow* pRows = Session()->pCustomPapers.get();
        const i32 nRows = Session()->sCustomPaperCount, nModel = CountPaperRows(Session()->pXpi.get());
        PrinterCall call(hPrinter);
        OwnedBlock<PaperSizeRow> pFile;
        const i32 nFile = GetSavedPapers(call, nullptr, &pFile);
        std::string fault = SamePapers(pRows, nRows, pFile.get(), nFile) ? "" : "file; ";
        std::map<WideText, std::pair<u32, u32>> wanted, forms;
        std::vector<u16> sizes = {257, 2100, 11880, 300, 3000, 2000};
        for (i32 i = 0; i < nRows; i++) {
            wanted[LowerText(pRows[i].wcName)] = {pRows[i].ulWidth * 10, pRows[i].ulLength * 10};
            for (u32 ulWord : {448u + static_cast<u32>(i), pRows[i].ulWidth / 10, pRows[i].ulLength / 10}) {
                sizes.push_back(static_cast<u16>(ulWord));
            }
            const std::string row = RowText(Page(1), IDC_PAPER_SIZE, CB_GETLBTEXT, nModel + i);
            fault += row == Narrow(pRows[i].wcName) + "|" ? "" : "list; ";
        }
        for (const MachineForm& form : MachineForms()) {
            fault += forms.contains(LowerText(form.wcName)) ? "a form twice; " : "";
            forms[LowerText(form.wcName)] = {form.size.cx, form.size.cy};
        }
        return fault + (wanted == forms ? "" : "forms; ") + (Sizes() == BytesOf(sizes) ? "" : "value; ");
    }
    bool IsDirty() const { return Session()->bPageDirty[SLOT_CUSTOM_PAPERS] != 0; }

    std::string notes;
    int nWork = 0, nEdits = 0;
};

} // namespace

TEST_F(SavedPapersTest, AreMadeByHand)
{
    Open(false);
    EXPECT_EQ(
        Work(
            u"see/new/see/n=   /see/n= Card /w=1/l=99/add/see/close/see/unit/see/w=100.0/up/see/down/l=152.4/enter/"
            u"new/n=A  B/w=9.84/l=11.81/add/new/n=Card/add/see/close/cancel/see/ok"),
        "Your Paper Sizes|New...|Cancel|>OK|\n"
        "New Paper Size|_|3.00|in||5.00|in|>Cancel|\n"
        "New Paper Size|_   |3.00|in||5.00|in|>Cancel|\n"
        "Paper Size Out of Range|\n"
        "New Paper Size| Card |_3.00|in||47.24|in|>Add|Cancel|\n"
        "New Paper Size| Card |76.2|mm||1199.9|mm|>Add|Cancel|\n"
        "New Paper Size| Card |100.1|mm|_|1199.9|mm|>Add|Cancel|\n"
        "*Name Already in Use|\n"
        "*Your Paper Sizes|Card (100.0 x 152.4 mm)|A  B (9.84 x 11.81 in)|_New...|Edit...|Delete|Cancel|>OK|\n");
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
    Work(u"new/n=One/w=100/l=200/add/new/n=Two/w=150/l=250/add/ok");
    SelectComboValue(Page(1), IDC_PAPER_SIZE, 449);
    Work(u"delete/ok");
    EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), 448);
    EXPECT_EQ(Disagreement(), "");
    EXPECT_EQ(Work(u"row=0/see/n=Three/unit/change/see/cancel"),
              "Edit Paper Size|_Two|150.0|mm||250.0|mm|>OK|Cancel|\n"
              "*Your Paper Sizes|Three (5.91 x 9.84 in)|New...|Edit...|Delete|Cancel|>OK|\n");
    EXPECT_EQ(record.rPrivate.bMetric, 0);
    EXPECT_EQ(GetComboValue(Page(1), IDC_PAPER_SIZE, nullptr), PAPER_A4) << "the name is gone";
    EXPECT_FALSE(IsDirty()) << "no page's commit waits for them";
    EXPECT_EQ(Disagreement(), "file; forms; value; ");
    Work(u"ok");
    EXPECT_EQ(Disagreement(), "") << "the next OK finds them";
    ResetCallCounts();
    Work(u"ok");
    EXPECT_EQ(CallCount(CALL_DeleteFormW) + CallCount(CALL_SetPrinterDataW), 0) << "nothing to store";
    SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, BytesOf({448, 0, 0, 449}));
    Work(u"delete/ok");
    EXPECT_TRUE(Sizes().empty()) << "no row is left";
    EXPECT_TRUE(MachineForms().empty());
}

/* What a text typed for the width becomes: a refusal shows the limit, and that is taken in either unit. */
TEST_F(SavedPapersTest, TakeNoSizeBeyondTheModels)
{
    Open(true);
    const WideText wcMany(200, u'9'), wcArabic = u"\u0661\u0660\u0660";
    const std::map<u32, std::vector<WideText>> taken = {
        {7620, {u"", u"-", u"-100", u"abc", wcArabic, u"100,5", u"76.1"}},
        {10000, {u" 100 x"}},
        {10050, {u"+100.5"}},
        {31120, {u"311.2", u"311.3", wcMany}}};
    for (const auto& [ulTaken, texts] : taken) {
        for (const WideText& wcText : texts) {
            Work(u"new/n=Card/w=" + wcText + u"/l=200/add/close/add/cancel");
            EXPECT_EQ(Session()->pCustomPapers->ulWidth, ulTaken) << Narrow(wcText);
            Work(u"edit/unit/change/cancel");
            EXPECT_EQ(Session()->pCustomPapers->ulMetric, 0u) << Narrow(wcText);
            Work(u"delete/cancel");
        }
    }
    EXPECT_EQ(Work(u"new/n=" + WideText(20, u'n') + u"/see/cancel"),
              "New Paper Size|_nnnnnnnnnnnnnnnn|76.0|mm||127.0|mm|>Add|Cancel|\n");
    for (i32 i = 20; i <= 2 * 0x7FFF + 1; i++) { /* the limits of every model, in both units */
        const i32 lLimit = i / 2 * 10, bMetric = i % 2;
        WCHAR wcText[TEXT_CHARS];
        FormatMeasure(lLimit, bMetric, ROUND_UP, u".", wcText, TEXT_CHARS);
        ASSERT_GE(MeasureOfText(wcText, u".", bMetric), lLimit);
        FormatMeasure(lLimit, bMetric, ROUND_DOWN, u".", wcText, TEXT_CHARS);
        ASSERT_LE(MeasureOfText(wcText, u".", bMetric), lLimit);
    }
}

TEST_F(SavedPapersTest, AThousandEditsLeaveAllPlacesOfOneMind)
{
    Open(true);
    std::mt19937 random(16);
    const WideText aThings[] = {u"new",   u"new",      u"new",     u"edit",    u"delete", u"unit",
                                u"up",    u"down",     u"close",   u"enter",   u"row=0",  u"row=2",
                                u"n=A",   u"n=a",      u"n= B ",   u"n=\"C\"", u"n='",    u"n=E\tF",
                                u"n=",    u"n=D=;[x]", u"w=100.5", u"w=x",     u"w=9.99", u"n=\u00E4\u4E00",
                                u"l=150", u"l=8.25",   u"l=999",   u"enter",   u"enter"};
    size_t nMost = 0;
    while (nEdits < 1000) {
        WideText wcThings;
        for (int i = 0; i < 80; i++) {
            wcThings += aThings[random() % std::size(aThings)] + u"/";
        }
        Work(wcThings + u"close/close");
        Work(u"ok");
        ASSERT_EQ(Disagreement(), "") << Narrow(wcThings);
        nMost = std::max(nMost, MachineForms().size());
    }
    EXPECT_GE(nMost, 5u);
    EXPECT_EQ(ForcedCloses(), 0);
}

/* Whatever failed, nothing is held, all rows but the spare one have a name, and the next edit puts everything in order. */
TEST_F(SavedPapersTest, SurviveEveryFailure)
{
    Open(true);
    const auto clear = [&] {
        Work(u"delete/delete/ok");
        FillPaperCombo(Page(1), Session());
        return Disagreement();
    };
    const auto use = [&] {
        return Work(u"new/n=A/w=1/add/close/add/edit/n=B/unit/change/ok"), std::string();
    };
    use();
    int nFaults = 0;
    for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        for (int n = 1, nHit = 1; nHit; n++) {
            ASSERT_EQ(clear(), "") << n;
            FailCall(ANY_CALL, n, mode);
            ASSERT_EQ(HoldsNothing(use), "") << n;
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
    const std::clock_t begun = std::clock();
    FillPaperCombo(Page(1), Session());
    EXPECT_LT(std::clock() - begun, CLOCKS_PER_SEC / 50);
    EXPECT_EQ(SendDlgItemMessageW(Page(1), IDC_PAPER_SIZE, CB_GETCOUNT, 0, 0), 1014);
}
