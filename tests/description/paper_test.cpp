/* Paper codes: sizes, margins, forms and saved papers, in tenths, hundredths and thousandths of a millimetre. */
#include "description/custom_sizes.h"
#include "description/margins.h"
#include "description/paper.h"
#include "support/machine_script.h"
#include "support/same_bytes.h"

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

namespace {

class PaperLists : public Scripted<PaperTest> {
  protected:
    static std::string Trimmed(const std::string& text)
    {
        return text.substr(std::min(text.size(), text.find_first_not_of(' ')));
    }
    void AddManyForms()
    {
        for (int i = 0; i < 300; i++) { /* more than one room of the first asking holds */
            AddMachineForm(u"Form of a longer name, number " + Widen(std::to_string(i)), FORM_USER, 1000 * i,
                           500);
        }
    }
    std::string SavedOf(const std::string& count, std::string lines, const std::string& broken = "")
    {
        if (!broken.empty()) {
            lines.replace(lines.find(broken), 6, "Bottom");
        }
        return Trimmed(Saved(count, lines, pModel.get()));
    }
    /* Papers with companions; the last row is the closing one. */
    static DescriptionBuilder Companions()
    {
        DescriptionBuilder builder;
        builder.Table<PaperRow>(8, {{1, 1, 2159, 2794, 0, 0, 0, 0, {}},
                                    {1, 8, 2970, 4200, 1, 0, 0, 9, {}},
                                    {1, 20, 1048, 2413, 0, 0, 0, -1, {}},
                                    {0, 30, 9999, 9999, 0, 0, 0, 5, {}}});
        return builder;
    }
    /* Widths and lengths of custom papers: least and largest of each; the extents in the same order. */
    std::string Extents(const Args& w)
    {
        DescriptionBuilder builder = w.size() > 4 ? DescriptionBuilder() : Companions();
        for (size_t n = 0; n < 4; n++) {
            builder.Set(16 + 2 * n, static_cast<i16>(Int(w, n)));
        }
        Describe(builder);
        const PaperExtents extents = GetPaperExtents(pModel.get());
        return std::to_string(extents.lMinWidth) + " " + std::to_string(extents.lMaxWidth) + " " +
               std::to_string(extents.lMinLength) + " " + std::to_string(extents.lMaxLength);
    }
    void UseLeast(int nWidth, int nLength)
    {
        DescriptionBuilder builder;
        Describe(builder.Set(16, static_cast<i16>(nWidth)).Set(20, static_cast<i16>(nLength)));
    }
    std::string NewPaper()
    {
        PaperSizeRow fresh;
        std::memset(&fresh, 0xEE, sizeof fresh);
        NewPaperRow(&fresh, pModel.get());
        EXPECT_TRUE(SameBytes(fresh, PaperSizeRow{fresh.ulWidth, fresh.ulLength, u32(IsMetricLocale()), {}}));
        return std::to_string(fresh.ulWidth) + " " + std::to_string(fresh.ulLength);
    }
    std::string lines_;
};

SCRIPTED(PaperLists, AreToldByTheSpoolerAndTheSettingsFile, "paper_lists.txt")
{
    PlayBy({VERB("forms", Trimmed(Forms(w.empty() ? 0 : static_cast<size_t>(Int(w, 0))))),
            DEED("printer", AddTestPrinter(Bytes())), DEED("many-forms", AddManyForms()),
            DEED("lines", lines_ = Unescaped(w[0])), VERB("saved", SavedOf(w[0], lines_)),
            VERB("broken", SavedOf("2", lines_, w[0])), DEED("least", UseLeast(Int(w, 0), Int(w, 1))),
            VERB("new", NewPaper()), DEED("companions", Describe(Companions())),
            VERB("companion",
                 GetCompanionPaper(w.size() > 1 ? nullptr : pModel.get(), static_cast<i16>(Int(w, 0)))),
            VERB("extents", Extents(w)),
            VERB("default-paper",
                 (IsMetricLocale() ? "metric " : "inches ") + std::to_string(GetDefaultPaper()))});
}

TEST_F(PaperTest, TheLongestListOfSavedPapers)
{
    std::string all, wanted;
    for (int i = 0; i < 4097; i++) { /* one row more than is read */
        const std::string n = std::to_string(i);
        all += "CustomName" + n + "=P\r\nCustomWidth" + n + "=" + n + "0\r\nCustomLength" + n +
               "=1\r\nCustomMetric" + n + "=1\r\n";
        wanted += i < 4096 ? "P " + std::to_string(10 * i) + " 1 1, " : " 0 0 0";
    }
    EXPECT_EQ(Saved("4097", all), wanted);
    OwnedBlock<PaperSizeRow> pRows;
    ResetCallCounts();
    for (const WCHAR* tcNone : {u"s.ini", u""}) { /* a bare name is one of the current folder */
        EXPECT_EQ(ReadCustomSizes(OpenProfile(tcNone), nullptr, &pRows), 0);
    }
    EXPECT_EQ(CallCount(CALL_CreateFileW), 0);
    for (int n : {1, 2, 3, 4}) { /* the file's bytes and text, the index, the rows */
        FailCall(CALL_HeapAlloc, n);
        EXPECT_EQ(ReadCustomSizes(OpenProfile(u"C:\\s.ini"), nullptr, &pRows), 0);
        EXPECT_FALSE(pRows);
        EXPECT_EQ(StopFaults(), 1);
    }
}

} // namespace
