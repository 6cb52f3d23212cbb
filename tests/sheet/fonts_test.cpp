/* The Fonts page and its table of substitutions. */
#include "sheet/fonts_choice.h"

#include <ctime>
#include <random>

#include "description/control_ids.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

/* Texts of a data file with "/" for NUL. */
WideText WithNuls(std::string text)
{
    std::replace(text.begin(), text.end(), '/', '\0');
    return Widen(text);
}
std::string WithoutNuls(std::u16string_view wcText)
{
    WideText wcShown(wcText);
    std::replace(wcShown.begin(), wcShown.end(), u'\0', u'/');
    return Narrow(wcShown);
}

class FontPairs : public MachineTest {
  protected:
    void Use(const std::vector<FontFamily>& system, const std::vector<std::pair<std::string, u8>>& printer)
    {
        DescriptionBuilder builder;
        for (const auto& [name, bCharSet] : printer) {
            Bytes font(40);
            std::copy(name.begin(), name.end(), font.begin());
            font[32] = bCharSet;
            builder.fonts.push_back(font);
        }
        builder.Set(offsetof(XpiModel, sResFontCount), static_cast<i16>(printer.size()));
        AddTestPrinter(builder.Build());
        SetFontFamilies(system);
        Read();
    }
    void Read()
    {
        PrinterCall call(hPrinter);
        const OwnedModel pModel = LoadPrinterModel(call);
        EXPECT_TRUE(ReadResidentFonts(*OpenXpiFile(call), pModel.get(), &fonts));
        const HDC hDc = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr);
        EXPECT_TRUE(BuildFontFamilyList(hDc, &families));
        DeleteDC(hDc);
    }

    void TearDown() override
    {
        fonts = {};
        families = {};
        rows = {};
        MachineTest::TearDown();
    }

    /* Both ways, by blocks without a byte to spare. */
    WideText Rows(const WideText& wcValue)
    {
        const std::vector<WCHAR> value(wcValue.begin(), wcValue.end());
        EXPECT_TRUE(RowsOfPairs(value.data(), static_cast<u32>(value.size()), families, fonts, &rows));
        return WideText(rows.pTexts.get(), rows.cchUsed);
    }
    WideText Stored()
    {
        OwnedBlock<u8> pBlock;
        u32 cb;
        EXPECT_TRUE(PairsOfRows(rows, families, fonts, &pBlock, &cb));
        EXPECT_TRUE(cb >= 2 && cb <= PAIRS_MOST_BYTES) << cb;
        return WideText(reinterpret_cast<const WCHAR*>(pBlock.get()), cb / sizeof(WCHAR));
    }

    ResidentFontList fonts;
    FontFamilyList families;
    PairTexts rows = {};
};

TEST_F(FontPairs, AreShownAndStored)
{
    Use({{u"Arial", TRUETYPE_FONTTYPE, 0},
         {u"Courier", TRUETYPE_FONTTYPE, 0},
         {u"Symbol", TRUETYPE_FONTTYPE, 2},
         {u"Univers", TRUETYPE_FONTTYPE, 161},
         {u"Arial (Greek)", TRUETYPE_FONTTYPE, 161}},
        {{"Courier", 0},
         {"Courier", 161},
         {"", 0},
         {"Univers", 161},
         {"Symbol", 1},
         {"Symbol", 2},
         {"Courier", 0}});
    for (const DataRow& row : ReadRows("font_pairs.txt")) {
        EXPECT_EQ(WithoutNuls(Rows(WithNuls(row[1]))), row[2]) << row[0];
        EXPECT_EQ(WithoutNuls(Stored()), row[3]) << row[0];
    }
    /* A row holds 127 characters, the value whole pairs only; what was stored once is stored so again. */
    const WideText wcLong(120, u'x');
    EXPECT_EQ(Rows(wcLong + u'\0' + u"abc" + u'\0').substr(0, 120), wcLong);
    EXPECT_EQ(Rows(wcLong + u'\0' + u"abcd" + u'\0').substr(0, 7), u"Courier");
    PreparePairTexts(&rows, 500 * 100);
    AppendPairText(&rows, u" => no family", 13);
    for (int i = 0; i < 500; i++) {
        const WideText wcRow = WideText(80, u'f') + u" => " + Widen(std::to_string(i));
        AppendPairText(&rows, wcRow.c_str(), static_cast<int>(wcRow.size()));
    }
    const WideText wcCut = Stored();
    EXPECT_EQ(WithoutNuls(wcCut.substr(wcCut.size() - 7)), "f/385//");
    std::mt19937 random(1404);
    const std::vector<WideText> words = {
        u"Courier", u"Univers", u"Arial", u"Arial (Greek)",  u"Symbol (x) (y)", u"",
        u"A",       u" => ",    u" (",    WideText(70, u'm')};
    for (int i = 0; i < 5000; i++) {
        WideText wcValue;
        for (u64 n = random() % 14; n > 0; n--) {
            wcValue += words[random() % words.size()] + WideText(random() % 8 != 0, u'\0');
        }
        Rows(wcValue);
        const WideText wcOnce = Stored(), wcRows = Rows(wcOnce);
        ASSERT_EQ(WithoutNuls(Stored()), WithoutNuls(wcOnce)) << WithoutNuls(wcValue);
        ASSERT_EQ(WithoutNuls(Rows(wcOnce)), WithoutNuls(wcRows));
    }
}

/* Ten times the families, fonts and pairs take about ten times as long. */
TEST_F(FontPairs, GrowWithTheirNumber)
{
    const auto measure = [&](int nFamilies) {
        std::vector<FontFamily> system;
        std::vector<std::pair<std::string, u8>> printer;
        WideText wcValue;
        for (int i = 0; i < nFamilies; i++) {
            const std::string name = "Family of a usual name " + std::to_string(i);
            system.push_back({Widen(name), TRUETYPE_FONTTYPE, 0});
            printer.push_back({name, 0});
            wcValue += i % 2 ? Widen(name) + u'\0' + u"Font" + u'\0' : u"";
        }
        std::clock_t best = CLOCKS_PER_SEC;
        Use(system, printer);
        for (int i = 0; i < 5; i++) {
            const std::clock_t begun = std::clock();
            Read();
            Rows(wcValue);
            Stored();
            best = std::min(best, std::clock() - begun);
        }
        EXPECT_EQ(rows.nTexts, nFamilies);
        return best;
    };
    const std::clock_t small = measure(100);
    EXPECT_LT(measure(1000), 25 * small);
}

class FontsPage : public SheetScript {
  protected:
    void SetUp() override
    {
        SheetScript::SetUp();
        system = {{u"Arial", TRUETYPE_FONTTYPE, 0},       {u"Courier New", TRUETYPE_FONTTYPE, 0},
                  {u"Halden Sans", TRUETYPE_FONTTYPE, 0}, {u"Halden Serif", DEVICE_FONTTYPE, 0},
                  {u"Symbol", TRUETYPE_FONTTYPE, 2},      {u"Times New Roman", TRUETYPE_FONTTYPE, 0},
                  {u"Terminal", RASTER_FONTTYPE, 255},    {u"Arial (Greek)", TRUETYPE_FONTTYPE, 161}};
        SetFontFamilies(system);
    }
    int ListWidth()
    {
        RECT rect = {};
        ControlRect(PageOf("FONTS_LIST"), IDC_FONTS_LIST, &rect);
        return static_cast<int>(rect.right - rect.left);
    }
    int Extent()
    {
        return static_cast<int>(
            SendDlgItemMessageW(PageOf("FONTS_LIST"), IDC_FONTS_LIST, LB_GETHORIZONTALEXTENT, 0, 0));
    }

    std::vector<FontFamily> system;
};

TEST_F(FontsPage, GoesByItsScript)
{
    Play("fonts_page.txt");
}

TEST_F(FontsPage, ShowsRowsToTheirEnds)
{
    system.insert(system.begin(), {WideText(31, u'W'), TRUETYPE_FONTTYPE, 0});
    SetFontFamilies(system);
    Begin("T410A", "ulNumResFonts=3");
    Do("click FONTS_DEFAULTS");
    const int nWidth = ListWidth(), nShort = Extent();
    EXPECT_GT(nShort, nWidth / 2);
    DoAll({"open FONTS_ADD", "end PAIR_OK"});
    const int nLong = Extent();
    EXPECT_GT(nLong, nShort);
    DoAll({"apply", "click FONTS_DEFAULTS"});
    EXPECT_EQ(Extent(), nShort);
    DoAll({"reopen", "page 9"});
    EXPECT_EQ(Extent(), nLong);
    DoAll(SplitTrimmed("readonly, click FONTS_RESIDENT, click FONTS_RESIDENT, reload", ','));
    EXPECT_EQ(ListWidth(), nWidth * 3 / 2) << "once";
}

/* Whatever fails while the page is filled and applied, the printer keeps its table whole. */
TEST_F(FontsPage, NeverStoresHalfATable)
{
    Begin("T410A", "ulNumResFonts=3");
    std::string stored;
    const auto use = [&] {
        const HWND hPage = Session()->hPageWnd[SLOT_FONTS];
        SendMessageW(GetDlgItem(hPage, IDC_FONTS_LIST), LB_RESETCONTENT, 0, 0);
        ReloadPage(Session(), SLOT_FONTS);
        ClickControl(hPage, IDC_FONTS_BITMAPS);
        PressSheetApply(pSheet);
        Session()->pFontSubsSnapshot.reset(); /* which a run without memory lacks */
        return Seen("value.FontSubs:") == stored ? "" : std::string("the table is another; ");
    };
    const auto edit = [&] {
        const HWND hPage = Session()->hPageWnd[SLOT_FONTS];
        ReloadPage(Session(), SLOT_FONTS);
        for (int nButton : {IDC_FONTS_ADD, IDC_FONTS_EDIT, IDC_FONTS_DELETE, IDC_FONTS_DEFAULTS}) {
            QueueModalStep([](HWND hDialog) { PickRow(hDialog, IDC_PAIR_SYSTEM, 7); });
            QueueModalStep([](HWND hDialog) { ClickControl(hDialog, IDC_PAIR_OK); });
            ClickControl(hPage, nButton);
        }
        PressSheetApply(pSheet);
        Session()->pFontSubsSnapshot.reset();
        return std::string();
    };
    ShowSlot(SLOT_FONTS);
    use(), edit(), use();
    stored = Seen("value.FontSubs:");
    for (CallId call : {CALL_HeapAlloc, CALL_ReadFile, CALL_SetFilePointerEx, CALL_SetPrinterDataW,
                        CALL_CreateCompatibleDC, CALL_GetTextExtentPoint32W}) {
        for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
            const FaultSweep sweep = SweepFaults(call, mode, 1000, use);
            EXPECT_EQ(sweep.fault, "");
            EXPECT_GT(sweep.nFaults, 0) << CallName(call);
        }
    }
    for (CallId call : {CALL_HeapAlloc, CALL_DialogBoxParamW, CALL_GetDlgItem, CALL_SendMessageW,
                        CALL_SendDlgItemMessageW, CALL_CreateDCW}) {
        EXPECT_EQ(SweepFaults(call, FAIL_ONCE, 3000, edit).fault, "");
    }
}

TEST_F(FontsPage, FillsAndStoresALongTableAtOnce)
{
    WideText wcValue;
    for (int i = 0; i < 500; i++) {
        system.push_back({u"Family " + Widen(std::to_string(i)), TRUETYPE_FONTTYPE, 0});
        wcValue += i < 200 ? system.back().wcName + u'\0' + u"Halden Sans" + u'\0' : u"";
    }
    SetFontFamilies(system);
    Begin("T410A", "ulNumResFonts=3");
    Do("value FontSubs " + WithoutNuls(wcValue) + "/");
    DoAll({"reopen", "page 9"});
    const std::clock_t begun = std::clock();
    Do("reload");
    Do("click FONTS_BITMAPS");
    Do("apply");
    EXPECT_LT(std::clock() - begun, CLOCKS_PER_SEC / 50);
    EXPECT_EQ(Seen("value.FontSubs:").size(), wcValue.size() + 1 + sizeof "value.FontSubs:" - 1);
}

} // namespace
