/* Paper codes: sizes, margins, forms and saved papers, in tenths, hundredths and thousandths of a millimetre. */
#include "description/custom_sizes.h"
#include "description/margins.h"
#include "description/paper.h"
#include "support/data_file.h"
#include "support/same_bytes.h"
#include "support/sample_machine.h"

namespace {

constexpr PaperRow A4_ROW = {1, 9, 2111, 2999, 7,
                             0, 0, 0,    {}}; /* not the built-in numbers, to tell them apart */

const char* const SAVED_TWO =
    "[CustomSizes]\r\nNumCustomSizes=2\r\n"
    "CustomName0=Sheet\r\nCustomWidth0=20009\r\nCustomLength0=30000\r\nCustomMetric0=1\r\n"
    "CustomName1=Strip\r\nCustomWidth1=9999\r\nCustomLength1=70000\r\nCustomMetric1=0\r\n";

std::string SavedSize(const std::string& width, const std::string& length)
{
    return "[CustomSizes]\r\nNumCustomSizes=1\r\nCustomName0=S\r\nCustomWidth0=" + width +
           "\r\nCustomLength0=" + length + "\r\nCustomMetric0=1\r\n";
}

class PaperTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetLocaleValue(u"iMeasure", u"0");
    }
    void TearDown() override
    {
        pModel.reset();
        MachineTest::TearDown();
    }

    void Describe(const DescriptionBuilder& builder, const std::string& ini = "")
    {
        pModel.reset();
        AddTestPrinter(builder.Build(), ini);
        PrinterCall call(hPrinter);
        pModel = LoadPrinterModel(call);
        ASSERT_TRUE(pModel);
    }

    /* The answer to a question of papers.txt. */
    std::string Answer(const std::string& question)
    {
        PrinterCall call(hPrinter);
        const XpiModel* pOf = question.find("without a model") == question.npos ? pModel.get() : nullptr;
        int nCode = 0, nOrientation = 0, nDpi = 0;
        if (std::sscanf(question.c_str(), "size %d", &nCode) == 1) {
            i16 sWidth = -77, sLength = -77;
            const i32 lMetric = GetPaperSize(call, pOf, static_cast<i16>(nCode), &sWidth, &sLength);
            return std::to_string(lMetric) + " " + std::to_string(sWidth) + " " + std::to_string(sLength);
        }
        EXPECT_EQ(std::sscanf(question.c_str(), "margins %d %d %d", &nCode, &nOrientation, &nDpi), 3)
            << question;
        const Margins margins =
            GetPrintableMargins(call, pOf, static_cast<i16>(nCode), static_cast<u16>(nOrientation), nDpi);
        return std::to_string(margins.lX) + " " + std::to_string(margins.lY);
    }

    void DescribeAs(const std::string& name);

    /* Name, width, length and measure of rows, a comma between them. */
    static std::string TextOf(const PaperSizeRow* pRows, i32 nRows)
    {
        std::string text;
        for (i32 i = 0; i < nRows; i++) {
            text += (i ? ", " : "") + Narrow(pRows[i].wcName) + " " + std::to_string(pRows[i].ulWidth) + " " +
                    std::to_string(pRows[i].ulLength) + " " + std::to_string(pRows[i].ulMetric);
        }
        return text;
    }

    std::string Forms(size_t nFirst = 0)
    {
        PrinterCall call(hPrinter);
        OwnedBlock<PaperSizeRow> pRows;
        const i32 nRows = GetSpoolerForms(call, &pRows);
        EXPECT_EQ(pRows != nullptr, nRows > 0);
        return TextOf(pRows.get() + nFirst, nRows - static_cast<i32>(nFirst));
    }

    /* Rows that a settings file yields, and what stands in the spare row behind them. */
    std::string Saved(const std::string& count, const std::string& lines, const XpiModel* pOf = nullptr)
    {
        PutFile(u"C:\\s.ini", "[CustomSizes]\r\nNumCustomSizes=" + count + "\r\n" + lines);
        OwnedBlock<PaperSizeRow> pRows;
        const i32 nRows = ReadCustomSizes(OpenProfile(u"C:\\s.ini"), pOf, &pRows);
        EXPECT_TRUE(pRows);
        return TextOf(pRows.get(), nRows + 1);
    }

    OwnedModel pModel;
};

MarginRow Margin(u16 usModes, i16 sDpi, std::array<i16, 4> margins, std::array<i16, 4> range = {})
{
    MarginRow row = {};
    row.usUsed = 1;
    row.usModes = usModes;
    row.sResolution = sDpi;
    row.sMarginX = margins[0];
    row.sMarginY = margins[1];
    row.sMarginXRotated = margins[2];
    row.sMarginYRotated = margins[3];
    row.sMinWidth = range[0];
    row.sMaxWidth = range[1];
    row.sMinLength = range[2];
    row.sMaxLength = range[3];
    return row;
}

MarginRow Closing(MarginRow row)
{
    row.usUsed = 0;
    return row;
}

DescriptionBuilder WithMargins()
{
    DescriptionBuilder builder;
    builder.Table<PaperRow>(8, {A4_ROW, {}});
    builder.Table<MarginRow>(
        166, {WithPapers(Margin(1, 600, {100, 100, 200, 50}), {9}),
              WithPapers(Margin(2, 600, {120, 60, 60, 120}), {9}),
              WithPapers(Margin(3, 600, {1, 2, 3, 4}, {3000, 2000, 0, 32767}), {0}), /* meets no size */
              WithPapers(Margin(3, 300, {25, 30, 35, 40}, {762, 2000, 1270, 3000}), {0}),
              WithPapers(Margin(1, 0, {9, 9, 9, 9}), {30}), Closing(Margin(0, 600, {150, 160, 170, 180}))});
    return builder;
}

void PaperTest::DescribeAs(const std::string& name)
{
    auto Has = [&name](const char* cWords) { return name.find(cWords) != std::string::npos; };
    DescriptionBuilder builder, margins = WithMargins();
    std::string ini = Has("saved papers") ? SAVED_TWO : "";
    const size_t nSize = name.find(" saved paper of "), nTimes = name.find(" x ");
    if (nSize != name.npos) {
        ini = SavedSize(name.substr(nSize + 16, nTimes - nSize - 16), name.substr(nTimes + 3));
    } else if (Has("a broken list")) {
        ini = SAVED_TWO;
        ini.replace(ini.find("CustomLength0"), 13, "CustomLengthX");
    }
    if (Has("paper table")) {
        builder.Table<PaperRow>(8, {A4_ROW,
                                    {1, 118, 1016, 1524, 0, 0, 0, 0, {}},
                                    {1, 0, 11, 22, 3, 0, 0, 0, {}},
                                    {1, 200, 100, 200, 0, 0, 0, 0, {}},
                                    {1, 256, 1234, 2345, 0, 0, 0, 0, {}},
                                    {1, 300, 3000, 5000, 0, 0, 0, 0, {}},
                                    {1, 447, 1500, 2100, 0, 0, 0, 0, {}},
                                    {1, 448, 777, 888, 1, 0, 0, 0, {}},
                                    {1, -9, 5, 6, 0, 0, 0, 0, {}},
                                    {}});
    } else if (Has("extreme margins")) {
        builder.Table<MarginRow>(166, {Closing(Margin(0, 1, {32767, -32768, 1, 2}))});
    } else if (Has("margins behind the body")) {
        builder.Set<u64>(166, 0x5000);
    } else if (!Has("no margins") && !Has(" alone")) {
        builder.Table<PaperRow>(8, {A4_ROW, {}});
    }
    if (Has(" forms")) { /* both custom maxima are 0: they decide what is listed, not what is resolved */
        AddMachineForm(u"Letter", FORM_BUILTIN, 215900, 279400);
        AddMachineForm(u"Card", FORM_USER, 100000, 150000);
        AddMachineForm(u"Banner", FORM_PRINTER, 210000, 1188000);
        AddMachineForm(u"Card", FORM_USER, 215904, 215905);
    }
    SetLocaleValue(u"iMeasure", Has(", inches") ? u"1" : u"0");
    Describe(name.rfind("margins", 0) == 0 && !Has(" behind") ? margins : builder, ini);
}

} // namespace

TEST_F(PaperTest, SizesAndMargins)
{
    std::string name;
    for (const DataRow& row : ReadRows("papers.txt")) {
        if (row.size() == 1) {
            name = row[0];
            pModel.reset();
            StartMachine(); /* without the forms of the description before */
            DescribeAs(name);
        } else {
            EXPECT_EQ(Answer(row[0]), row[1]) << name << ", " << row[0];
        }
    }
}

TEST_F(PaperTest, TheLocaleChoosesTheDefaultPaper)
{
    for (const WCHAR* wcMeasure : {u"0", u"1", u"2", u"-1", u"x", u""}) {
        SetLocaleValue(u"iMeasure", wcMeasure); /* "" takes the value away: that counts as 1 */
        const int bMetric = *wcMeasure && *wcMeasure != u'1';
        EXPECT_EQ(IsMetricLocale(), bMetric);
        EXPECT_EQ(GetDefaultPaper(), bMetric ? 9 : 1);
    }
}

TEST_F(PaperTest, FormsOfTheUser)
{
    AddTestPrinter(Bytes());
    AddMachineForm(u"Built in", FORM_BUILTIN, 1, 1);
    EXPECT_EQ(Forms(), "");
    AddMachineForm(u"Card", FORM_USER, 215905, 215904);
    AddMachineForm(u"Driver's", FORM_PRINTER, 1, 1);
    AddMachineForm(WideText(63, u'n'), FORM_USER, 0, 4);
    AddMachineForm(WideText(64, u'n'), FORM_USER, 2147483647, 0);
    AddMachineForm(WideText(62, u'n') + u"\xD83D\xDE00", FORM_USER, 5, 15);
    AddMachineForm(u"Card", FORM_USER, 1000, 2000);
    const std::string name(62, 'n');
    EXPECT_EQ(Forms(), "Card 21591 21590 1, " + name + "n 0 0 1, " + name + "n 214748365 0 1, " + name +
                           " 1 2 1, Card 100 200 1")
        << "half of the unit is added in more than 32 bits";
    SetLocaleValue(u"iMeasure", u"1");
    EXPECT_EQ(Forms(4), "Card 100 200 0");

    for (int i = 0; i < 300; i++) { /* more than one room of the first asking holds */
        AddMachineForm(u"Form of a longer name, number " + Widen(std::to_string(i)), FORM_USER, 1000 * i,
                       500);
    }
    ResetCallCounts();
    EXPECT_EQ(Forms(304), "Form of a longer name, number 299 29900 50 0");
    EXPECT_EQ(CallCount(CALL_EnumFormsW), 2);

    for (LieKind lie : {LIE_HUGE, LIE_GROWS}) {
        TellLies(lie, CALL_EnumFormsW);
        EXPECT_EQ(Forms(), "") << lie;
    }
    TellLies(LIE_NULL_MEMBERS, CALL_EnumFormsW);
    EXPECT_EQ(Forms(304), " 29900 50 0");
    TellLies(LIE_NONE);
    for (int nTh : {1, 2, 3}) {
        FailCall(CALL_HeapAlloc, nTh);
        EXPECT_EQ(Forms(), "") << nTh;
        EXPECT_EQ(StopFaults(), 1);
    }
}

TEST_F(PaperTest, CompanionsAndExtents)
{
    DescriptionBuilder builder;
    builder.Table<PaperRow>(8, {{1, 1, 2159, 2794, 0, 0, 0, 0, {}},
                                {1, 8, 2970, 4200, 1, 0, 0, 9, {}},
                                {1, 20, 1048, 2413, 0, 0, 0, -1, {}},
                                {0, 30, 9999, 9999, 0, 0, 0, 5, {}}});
    Describe(builder);
    EXPECT_EQ(GetCompanionPaper(pModel.get(), 8), 9);
    EXPECT_EQ(GetCompanionPaper(pModel.get(), 20), -1);
    EXPECT_EQ(GetCompanionPaper(pModel.get(), 1), 0);
    EXPECT_EQ(GetCompanionPaper(pModel.get(), 30), 0) << "the closing row is no paper";
    EXPECT_EQ(GetCompanionPaper(nullptr, 8), 0);

    auto Extents = [this](i16 sMinW, i16 sMaxW, i16 sMinL, i16 sMaxL, DescriptionBuilder builderOf) {
        builderOf.Set(16, sMinW).Set(18, sMaxW).Set(20, sMinL).Set(22, sMaxL);
        Describe(builderOf);
        PaperExtents extents = GetPaperExtents(pModel.get());
        return std::array<i32, 4>{extents.lMinWidth, extents.lMinLength, extents.lMaxWidth,
                                  extents.lMaxLength};
    };
    EXPECT_EQ(Extents(762, 3112, 1270, 12000, builder), (std::array<i32, 4>{762, 1270, 3112, 12000}));
    EXPECT_EQ(Extents(1200, 2000, 2500, 3000, builder), (std::array<i32, 4>{1048, 2413, 2970, 4200}));
    for (auto [sMaxW, sMaxL] : {std::pair<i16, i16>{0, 0}, {3112, 0}, {0, 12000}, {-1, 12000}}) {
        EXPECT_EQ(Extents(10, sMaxW, 20, sMaxL, builder), (std::array<i32, 4>{1048, 2413, 2970, 4200}))
            << sMaxW;
    }
    EXPECT_EQ(Extents(10, 0, 20, 0, {}), (std::array<i32, 4>{0x7FFFFFFF, 0x7FFFFFFF, 0, 0}));
    EXPECT_EQ(Extents(10, 30, 20, 40, {}), (std::array<i32, 4>{10, 20, 30, 40}));
}

TEST_F(PaperTest, SavedPapersAreAllOrNothing)
{
    const std::string good =
        "CustomName0=A\r\nCustomWidth0=10000\r\nCustomLength0=+15000\r\nCustomMetric0=1\r\n"
        "CustomName1=" +
        std::string(80, 'b') + "\r\nCustomWidth1=1x\r\nCustomLength1=\r\nCustomMetric1=12abc\r\n";
    const std::string spare = " 0 0 0"; /* nothing of a dropped row shows in it */
    EXPECT_EQ(Saved("2", good), "A 10000 15000 1, " + std::string(63, 'b') + " 1 0 12, " + spare)
        << "an empty number is a number";
    for (const char* cKey : {"CustomName1", "CustomWidth0", "CustomLength1", "CustomMetric1"}) {
        std::string broken = good;
        broken.replace(broken.find(cKey), 6, "Bottom");
        EXPECT_EQ(Saved("2", broken), spare) << cKey;
    }
    for (const char* cCount : {"", "0", "-1", "-2147483648", "x", "3", "2147483647"}) {
        EXPECT_EQ(Saved(cCount, good), spare) << cCount;
    }
    const std::string below = "CustomName0=A\r\nCustomLength0=5\r\nCustomMetric0=1\r\nCustomWidth0=";
    EXPECT_EQ(Saved("1", below + "-1\r\n"), spare);
    EXPECT_EQ(Saved("1", below + "-2\r\n"), "A 4294967294 5 1, " + spare);

    /* The longest list that is read, and one row more. */
    std::string all, wanted;
    for (int i = 0; i < 4097; i++) {
        const std::string n = std::to_string(i);
        all += "CustomName" + n + "=P\r\nCustomWidth" + n + "=" + n + "0\r\nCustomLength" + n +
               "=1\r\nCustomMetric" + n + "=1\r\n";
        wanted += i < 4096 ? "P " + std::to_string(10 * i) + " 1 1, " : spare;
    }
    EXPECT_EQ(Saved("4097", all), wanted);

    OwnedBlock<PaperSizeRow> pRows;
    ResetCallCounts();
    EXPECT_EQ(ReadCustomSizes(OpenProfile(u"s.ini"), nullptr, &pRows), 0)
        << "a bare name is one of the current folder";
    EXPECT_EQ(ReadCustomSizes(OpenProfile(u""), nullptr, &pRows), 0);
    EXPECT_EQ(CallCount(CALL_CreateFileW), 0);
    for (int n : {1, 2, 3, 4}) { /* the file's bytes and text, the index, the rows */
        FailCall(CALL_HeapAlloc, n);
        EXPECT_EQ(ReadCustomSizes(OpenProfile(u"C:\\s.ini"), nullptr, &pRows), 0);
        EXPECT_FALSE(pRows);
        EXPECT_EQ(StopFaults(), 1);
    }
}

TEST_F(PaperTest, ANewPaperIsTheSmallestInWholeUnits)
{
    const std::tuple<i16, i32, i32> aCases[] = {{762, 7600, 7620}, {148, 1500, 2540},       {144, 1400, 2540},
                                                {145, 1500, 2540}, {126, 1300, 0},          {127, 1300, 2540},
                                                {0, 0, 0},         {32767, 327700, 327660}, {-20, -100, 0}};
    for (const auto& [sMin, lMetric, lInch] : aCases) {
        for (bool bMetric : {true, false}) {
            SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
            DescriptionBuilder builder;
            Describe(builder.Set(16, sMin).Set<i16>(20, 762));
            PaperSizeRow fresh,
                expected = {
                    static_cast<u32>(bMetric ? lMetric : lInch), bMetric ? 7600u : 7620u, bMetric, {}};
            std::memset(&fresh, 0xEE, sizeof fresh);
            NewPaperRow(&fresh, pModel.get());
            EXPECT_TRUE(SameBytes(fresh, expected)) << sMin;
        }
    }
    SetLocaleValue(u"iMeasure", u"0");
    DescriptionBuilder builder;
    Describe(builder.Set<i16>(16, 762).Set<i16>(20, 1270));
    const std::string good = "CustomName0=A\r\nCustomWidth0=1\r\nCustomLength0=1\r\nCustomMetric0=1\r\n";
    EXPECT_EQ(Saved("1", good, pModel.get()), "A 1 1 1,  7600 12700 1");
    EXPECT_EQ(Saved("2", good, pModel.get()), " 7600 12700 1") << "behind no row: at the start";
}
