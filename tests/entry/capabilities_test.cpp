/* DrvDeviceCapabilities: every question on every sample printer, without a description, and on descriptions
   that were changed at the place that matters. */
#include <algorithm>
#include <map>
#include <set>

#include "entry/exports.h"
#include "support/sample_machine.h"

namespace {

using TextList = std::vector<std::string>;
using NumberList = std::vector<i64>;

/* The answers of one printer on a metric locale, as its description says them. */
struct PrinterAnswers {
    const char* cPrinter;
    DWORD dwFields;
    NumberList papers, sizes;
    TextList paperNames;
    NumberList extents; /* smallest width and length, largest width and length */
    NumberList bins;
    TextList binNames;
    NumberList resolutions;
    DWORD dwDuplex, dwStaple, dwTrueType, dwRate, dwColor;
    TextList personality;
    NumberList pagesPerSheet;
    TextList mediaNames;
    NumberList media;
};

const std::string TEST_SHEET = Narrow(u"Pr\u00FCfbogen"); /* of the K100's settings file */

const NumberList SEVEN = {1, 2, 4, 6, 8, 9, 16}, NINE = {1, 2, 4, 6, 8, 9, 12, 16, 25};

const std::vector<PrinterAnswers>& Oracle()
{
    static const std::vector<PrinterAnswers> answers = {
        {"Halden T410A",
         0x0380FF0F,
         {1, 5, 9, 8, 3, 11, 7, 20, 27, 118, 256, 257, 300, 447},
         {2159, 2794, 2159, 3556, 2100, 2970, 2970, 4200, 2794, 4318,  1480, 2100, 1842, 2667,
          1048, 2413, 1100, 2200, 1016, 1524, 2100, 2970, 2100, 11880, 3000, 2000, 1500, 2100},
         {"Letter", "Legal", "A4", "A3", "Tabloid", "A5", "Executive", "Envelope No. 10", "Envelope DL",
          "Index Card 4 x 6", "User-Defined", "Banner 210 x 1188 mm", "Wide Sheet 300 x 200 mm",
          "Label Sheet"},
         {762, 1270, 3112, 12000},
         {1025, 261, 2000, 2001, 2002, 2003},
         {" Auto", " Tray 1", "Plain", "Transparency", "Heavy", "Printer default"},
         {300, 300, 600, 600, 1200, 600, 600, 300},
         1,
         0,
         3,
         33,
         1,
         {"PCL6"},
         SEVEN,
         {"Plain", "Transparency", "Heavy", "Printer default"},
         {1, 2, 256, 300}},
        {"Quill P5",
         0xE70F,
         {1, 9, 5, 11},
         {2159, 2794, 2100, 2970, 2159, 3556, 1480, 2100},
         {"Letter", "A4", "Legal", "A5"},
         {1480, 2100, 2159, 3556},
         {1025, 261},
         {"Auto", "Tray"},
         {300, 300, 600, 600, 1200, 1200, 150, 150},
         0,
         0,
         3,
         26,
         0,
         {"PCL5e"},
         SEVEN,
         {},
         {}},
        {"Quill PS",
         0x0380EF0F,
         {11, 70, 27},
         {1480, 2100, 1050, 1480, 1100, 2200},
         {"A5", "A6", "Envelope DL"},
         {762, 1270, 1500, 3000},
         {261, 262},
         {"Cassette", "Feeder"},
         {300, 300},
         0,
         0,
         3,
         26,
         1,
         {"PostScript"},
         SEVEN,
         {},
         {}},
        {"Ostra K100",
         0x0380FF0F,
         {1, 9, 8, 258, 448, 449},
         {2159, 2794, 2100, 2970, 2970, 4200, 3050, 4570, 2200, 3200, 1270, 1778},
         {"Letter", "A4", "A3", "Proof Film", TEST_SHEET, "Card 5 x 7 in"},
         {500, 500, 3300, 13000},
         {1025, 261},
         {"Auto", ""},
         {600, 600, 300, 300},
         1,
         0,
         1,
         33,
         1,
         {"Image"},
         NINE,
         {"Paper", "Glossy", "Film"},
         {1, 3, 256}},
        {"Quill IX-300",
         0xE70F,
         {1, 9, 256, 300},
         {2159, 2794, 2100, 2970, 2100, 2970, 3050, 6000},
         {"Letter", "A4", "User-Defined", "Roll 305 x 600 mm"},
         {600, 600, 3200, 9000},
         {1025, 261},
         {"Auto", "Printer default"},
         {600, 600, 300, 300},
         0,
         0,
         1,
         26,
         0,
         {"Image"},
         NINE,
         {"Plain"},
         {1}},
        {"Halden T440B",
         0x0380FF0F,
         {1, 9, 8},
         {2159, 2794, 2100, 2970, 2970, 4200},
         {"Letter", "A4", "A3"},
         {762, 1270, 3300, 12000},
         {1025, 261, 2000, 2001, 2002},
         {" Auto", " Tray", "Plain", "Thick", "Printer default"},
         {300, 300, 600, 600},
         1,
         1,
         3,
         33,
         0,
         {""}, /* counted, but nothing is written */
         SEVEN,
         {"Plain", "Thick", "Printer default"},
         {1, 256, 257}},
    };
    return answers;
}

/* Answers that every printer gives, with a description or without. */
const std::map<WORD, DWORD> aSame = {{DC_SIZE, 220},
                                     {DC_EXTRA, 3868},
                                     {DC_VERSION, 1025},
                                     {DC_DRIVER, 2611},
                                     {DC_FILEDEPENDENCIES, 0},
                                     {DC_ORIENTATION, 90},
                                     {DC_COPIES, 99},
                                     {DC_BINADJUST, 0},
                                     {DC_EMF_COMPLIANT, 0},
                                     {DC_DATATYPE_PRODUCED, 0},
                                     {DC_COLLATE, 1},
                                     {DC_MANUFACTURER, 0},
                                     {DC_MODEL, 0},
                                     {DC_PRINTRATEUNIT, 1}};

class CapabilitiesTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetLocaleValue(u"iMeasure", u"0");
    }

    DWORD Count(WORD wQuestion)
    {
        return DrvDeviceCapabilities(hPrinter, wcPrinter.empty() ? nullptr : wcPrinter.data(), wQuestion,
                                     nullptr, nullptr);
    }

    void ExpectNumber(WORD wQuestion, DWORD dwExpected)
    {
        EXPECT_EQ(Count(wQuestion), dwExpected) << QuestionName(wQuestion);
        checked.insert(wQuestion);
    }

    void ExpectRows(WORD wQuestion, const NumberList& expected)
    {
        CapabilityAnswer answer = Ask(wQuestion);
        size_t nRows = RowBytes(wQuestion) == 8 ? expected.size() / 2 : expected.size();
        EXPECT_EQ(answer.dwResult, nRows) << QuestionName(wQuestion);
        EXPECT_EQ(Count(wQuestion), nRows) << QuestionName(wQuestion) << " counted";
        EXPECT_EQ(Numbers(answer), expected) << QuestionName(wQuestion);
        checked.insert(wQuestion);
    }

    void ExpectTexts(WORD wQuestion, const TextList& expected)
    {
        CapabilityAnswer answer = Ask(wQuestion);
        EXPECT_EQ(answer.dwResult, expected.size()) << QuestionName(wQuestion);
        EXPECT_EQ(Count(wQuestion), expected.size()) << QuestionName(wQuestion) << " counted";
        EXPECT_EQ(Texts(answer), expected) << QuestionName(wQuestion);
        checked.insert(wQuestion);
    }

    void ExpectSame()
    {
        for (const auto& [wQuestion, dwAnswer] : aSame) {
            ExpectNumber(wQuestion, dwAnswer);
        }
        ExpectTexts(DC_MEDIAREADY, {bMetric ? "A4" : "Letter"});
    }

    /* The stand-by answers, with options that the stored set tells. */
    void ExpectStandBy(DWORD dwOptions, DWORD dwRate, bool bLibrary)
    {
        i64 lWidth = bMetric ? 2100 : 2159, lLength = bMetric ? 2970 : 2794;
        ExpectSame();
        ExpectNumber(DC_FIELDS, dwOptions & 1 ? 0xF70F : 0xE70F);
        ExpectRows(DC_PAPERS, {bMetric ? 9 : 1});
        ExpectRows(DC_PAPERSIZE, {lWidth, lLength});
        ExpectTexts(DC_PAPERNAMES, {!bLibrary ? "" : bMetric ? "A4" : "Letter"});
        ExpectNumber(DC_MINEXTENT, bMetric ? 0x0B9A0834 : 0x0AEA086F);
        ExpectNumber(DC_MAXEXTENT, bMetric ? 0x0B9A0834 : 0x0AEA086F);
        ExpectRows(DC_BINS, {1025});
        ExpectTexts(DC_BINNAMES, {"Autoselect"});
        ExpectNumber(DC_DUPLEX, dwOptions & 1);
        ExpectNumber(DC_STAPLE, dwOptions >> 4 & 1);
        ExpectRows(DC_ENUMRESOLUTIONS, {300, 300});
        ExpectNumber(DC_TRUETYPE, 1);
        ExpectTexts(DC_PERSONALITY, {"Basalt"});
        ExpectNumber(DC_PRINTRATE, dwRate);
        ExpectNumber(DC_PRINTRATEPPM, dwRate);
        ExpectNumber(DC_PRINTERMEM, 0);
        ExpectNumber(DC_COLORDEVICE, 0);
        ExpectRows(DC_NUP, SEVEN);
        ExpectTexts(DC_MEDIATYPENAMES, {});
        ExpectRows(DC_MEDIATYPES, {});
        ExpectAllChecked();
    }

    void ExpectAllChecked()
    {
        EXPECT_EQ(checked.size(), size_t{35}) << "a question was left out";
        checked.clear();
    }

    /* A sample with its description changed. */
    void AddChanged(const std::string& stem,
                    const std::vector<std::pair<std::string, std::string>>& overrides)
    {
        AddSample(stem);
        PutFile(wcDriverFolder + Widen(stem) + u".XPI", CompileSample(stem, overrides));
    }

    bool bMetric = true;
    std::set<WORD> checked;
};

} // namespace

TEST_F(CapabilitiesTest, EveryQuestionOnEverySample)
{
    for (bool bMetricUser : {true, false}) {
        bMetric = bMetricUser;
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        for (const PrinterAnswers& expected : Oracle()) {
            SCOPED_TRACE(expected.cPrinter);
            AddSample(expected.cPrinter);
            ExpectSame();
            ExpectNumber(DC_FIELDS, expected.dwFields);
            ExpectRows(DC_PAPERS, expected.papers);
            ExpectRows(DC_PAPERSIZE, expected.sizes);
            ExpectTexts(DC_PAPERNAMES, expected.paperNames);
            ExpectNumber(DC_MINEXTENT, static_cast<DWORD>(expected.extents[0] | expected.extents[1] << 16));
            ExpectNumber(DC_MAXEXTENT, static_cast<DWORD>(expected.extents[2] | expected.extents[3] << 16));
            ExpectRows(DC_BINS, expected.bins);
            ExpectTexts(DC_BINNAMES, expected.binNames);
            ExpectRows(DC_ENUMRESOLUTIONS, expected.resolutions);
            ExpectNumber(DC_DUPLEX, expected.dwDuplex);
            ExpectNumber(DC_STAPLE, expected.dwStaple);
            ExpectNumber(DC_TRUETYPE, expected.dwTrueType);
            ExpectNumber(DC_PRINTRATE, expected.dwRate);
            ExpectNumber(DC_PRINTRATEPPM, expected.dwRate);
            ExpectNumber(DC_PRINTERMEM, 0); /* no value is stored yet */
            ExpectNumber(DC_COLORDEVICE, expected.dwColor);
            ExpectTexts(DC_PERSONALITY, expected.personality);
            ExpectRows(DC_NUP, expected.pagesPerSheet);
            ExpectTexts(DC_MEDIATYPENAMES, expected.mediaNames);
            ExpectRows(DC_MEDIATYPES, expected.media);
            ExpectAllChecked();
        }
    }
}

TEST_F(CapabilitiesTest, WithoutADescription)
{
    for (bool bMetricUser : {true, false}) {
        bMetric = bMetricUser;
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        AddSample("T410A");
        std::filesystem::remove(HostPath(wcDriverFolder + WideText(u"T410A.XPI")));
        ExpectStandBy(0, 33, true);
        SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY,
                        {0, 0, 0, 0, 0, 0, 0, 0, 0x11, 0, 0, 0, 0, 0, 0, 0});
        ExpectStandBy(0x11, 33, true);
        DropPrinterValue(wcPrinter, u"DeviceInfo");
        PutFile(wcDriverFolder + WideText(u"T410A.INI"), "[DeviceInfo]\r\nOptions=10\r\n");
        ExpectStandBy(0x10, 33, true);
    }
    /* A printer that nobody can say anything about. */
    HANDLE hOpened = hPrinter;
    for (HANDLE hNone : {HANDLE(nullptr), INVALID_HANDLE_VALUE}) {
        hPrinter = hNone;
        wcPrinter.clear();
        bMetric = false;
        ExpectStandBy(0, 26, false);
        wcPrinter = u"No Such Printer";
        ExpectStandBy(0, 26, false);
    }
    hPrinter = hOpened;
}

TEST_F(CapabilitiesTest, ANullHandleOpensThePrinterOfTheName)
{
    AddSample("K100");
    HANDLE hOpened = hPrinter;
    std::vector<CapabilityAnswer> answers;
    for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
        hPrinter = hOpened;
        CapabilityAnswer byHandle = Ask(wQuestion);
        hPrinter = nullptr;
        CapabilityAnswer byName = Ask(wQuestion);
        EXPECT_EQ(byName.dwResult, byHandle.dwResult) << QuestionName(wQuestion);
        EXPECT_EQ(byName.rows, byHandle.rows) << QuestionName(wQuestion);
        EXPECT_EQ(CountLive().nPrinters, 1) << QuestionName(wQuestion) << " left it open";
    }
    hPrinter = hOpened;
    ResetCallCounts();
    Ask(DC_PAPERS);
    EXPECT_EQ(CallCount(CALL_OpenPrinterW), 0) << "a handle is enough";
}

TEST_F(CapabilitiesTest, QuestionsThatAreNone)
{
    AddSample("T410A");
    ResetCallCounts();
    for (WORD wQuestion : std::initializer_list<WORD>{0, 36, 37, 0x8001, 0xFFFF}) {
        Bytes buffer(256, 0xEE);
        EXPECT_EQ(DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, buffer.data(), nullptr), 0u)
            << wQuestion;
        EXPECT_EQ(buffer, Bytes(256, 0xEE)) << wQuestion;
    }
    DrvDeviceCapabilities(nullptr, wcPrinter.data(), 36, nullptr, nullptr);
    EXPECT_EQ(CallCount(ANY_CALL), 0);
}

TEST_F(CapabilitiesTest, NumbersLeaveTheBufferAlone)
{
    for (const char* cSample : {"T410A", "T440B"}) {
        AddSample(cSample);
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            bool bUnwritten = RowBytes(wQuestion) == 0 ||
                              (wQuestion == DC_PERSONALITY && cSample[2] == '4' && cSample[3] == '0');
            if (!bUnwritten) {
                continue;
            }
            Bytes buffer(4096, 0xEE);
            DWORD dwFilled =
                DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, buffer.data(), nullptr);
            EXPECT_EQ(dwFilled, Count(wQuestion)) << QuestionName(wQuestion);
            EXPECT_EQ(buffer, Bytes(4096, 0xEE)) << cSample << " " << QuestionName(wQuestion);
        }
    }
}

TEST_F(CapabilitiesTest, NamesFillTheirRowsWithZerosBehind)
{
    AddSample("T410A");
    for (WORD wQuestion : std::initializer_list<WORD>{DC_PAPERNAMES, DC_BINNAMES, DC_MEDIATYPENAMES,
                                                      DC_PERSONALITY, DC_MEDIAREADY}) {
        size_t cch = RowBytes(wQuestion) / sizeof(WCHAR), nRows = Count(wQuestion);
        std::vector<WCHAR> rows(cch * nRows + 8, 0xEEEE);
        EXPECT_EQ(DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, rows.data(), nullptr), nRows);
        EXPECT_TRUE(std::all_of(rows.begin() + static_cast<i64>(cch * nRows), rows.end(),
                                [](WCHAR wc) { return wc == 0xEEEE; }));
        for (size_t nRow = 0; nRow < nRows; nRow++) {
            WideText wcRow(rows.data() + nRow * cch, cch);
            size_t nEnd = wcRow.find(u'\0');
            ASSERT_NE(nEnd, WideText::npos);
            EXPECT_EQ(wcRow.find_first_not_of(u'\0', nEnd), WideText::npos)
                << QuestionName(wQuestion) << " row " << nRow;
        }
    }
}

TEST_F(CapabilitiesTest, TheSettingsOfADocumentAndTheBuffersAddressDoNotMatter)
{
    AddSample("T410A");
    Bytes nothing(4, 0xEE);
    PDEVMODEW pNotARecord = reinterpret_cast<PDEVMODEW>(nothing.data());
    for (WORD wQuestion : std::initializer_list<WORD>{DC_PAPERS, DC_PAPERSIZE, DC_ENUMRESOLUTIONS, DC_BINS,
                                                      DC_NUP, DC_MEDIATYPES}) {
        CapabilityAnswer answer = Ask(wQuestion);
        Bytes buffer(answer.rows.size() + 3, 0xEE);
        EXPECT_EQ(
            DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, buffer.data() + 1, pNotARecord),
            answer.dwResult);
        EXPECT_EQ(Bytes(buffer.begin() + 1, buffer.end() - 2), answer.rows) << QuestionName(wQuestion);
        EXPECT_EQ(buffer.front() + buffer.back(), 2 * 0xEE);
    }
}

TEST_F(CapabilitiesTest, ColourClasses)
{
    struct Case {
        const char* cSample;
        const char* cClass;
        DWORD dwFields, dwColor;
        const char* cPersonality;
    };
    constexpr Case aCases[] = {
        {"T410A", "0", 0x0380FF0F, 1, "PCL6"},  {"T410A", "42", 0x0380FF0F, 0, "PCL6"},
        {"T410A", "1", 0xF70F, 0, "PCL6"},      {"QP5", "0", 0x0380EF0F, 1, "PCL5c"},
        {"QP5", "42", 0x0380EF0F, 0, "PCL5c"},  {"QP5", "41", 0xE70F, 0, "PCL5e"},
        {"QPS", "1", 0xE70F, 0, "PostScript"},  {"IX300", "42", 0x0380EF0F, 0, "Image"},
        {"IX300", "0", 0x0380EF0F, 1, "Image"},
    };
    for (const Case& row : aCases) {
        SCOPED_TRACE(std::string(row.cSample) + " as " + row.cClass);
        AddChanged(row.cSample, {{"model.color_class", row.cClass}});
        ExpectNumber(DC_FIELDS, row.dwFields);
        ExpectNumber(DC_COLORDEVICE, row.dwColor);
        ExpectTexts(DC_PERSONALITY, {row.cPersonality});
    }
}

TEST_F(CapabilitiesTest, KindsDecideOnMediaBinsFontsAndPages)
{
    Bytes description = CompileSample("T410A");
    for (u16 usKind : std::initializer_list<u16>{0, 1, 2, 3, 4, 5, 0xFFFF}) {
        SCOPED_TRACE(usKind);
        bool bImage = usKind == 3;
        Poke(&description, Peek<u32>(description, AT_BODY) + 2, usKind);
        AddSample("T410A");
        PutFile(wcDriverFolder + WideText(u"T410A.XPI"), description);
        ExpectRows(DC_BINS, bImage ? NumberList{1025, 261} : NumberList{1025, 261, 2000, 2001, 2002, 2003});
        ExpectTexts(DC_BINNAMES, bImage ? TextList{"Auto", "Tray 1"}
                                        : TextList{" Auto", " Tray 1", "Plain", "Transparency", "Heavy",
                                                   "Printer default"});
        ExpectRows(DC_MEDIATYPES, {1, 2, 256, 300});
        ExpectNumber(DC_TRUETYPE, bImage ? 1 : 3);
        ExpectRows(DC_NUP, bImage ? NINE : SEVEN);
        ExpectNumber(DC_PERSONALITY, 1);
        WCHAR wcName[33] = u"################################";
        DrvDeviceCapabilities(hPrinter, wcPrinter.data(), DC_PERSONALITY, wcName, nullptr);
        constexpr const WCHAR* aNames[] = {u"PCL6", u"PCL5c", u"PostScript", u"Image"};
        EXPECT_EQ(WideText(wcName), usKind < 4 ? WideText(aNames[usKind]) : WideText(32, u'#'));
    }
}

TEST_F(CapabilitiesTest, InstalledOptionsAndBins)
{
    struct Case {
        u32 ulInputs, ulOptions;
        NumberList bins;
        DWORD dwFields, dwDuplex, dwStaple;
    };
    for (const Case& row :
         {Case{0x3, 0x00, {1025, 261, 2000, 2001, 2002, 2003}, 0x0380EF0F, 0, 0},
          Case{0x4, 0x01, {262, 2000, 2001, 2002, 2003}, 0x0380FF0F, 1, 0},
          Case{0x0, 0x10, {2000, 2001, 2002, 2003}, 0x0380EF0F, 0, 1},
          Case{0xFFFFFFFF, 0xFFFFFFFF, {1025, 261, 262, 300, 2000, 2001, 2002, 2003}, 0x0380FF0F, 1, 1}}) {
        AddSample("T410A");
        Bytes set(16);
        Poke(&set, 0, row.ulInputs);
        Poke(&set, 8, row.ulOptions);
        SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, set);
        ExpectRows(DC_BINS, row.bins);
        EXPECT_EQ(Ask(DC_BINNAMES).dwResult, row.bins.size());
        ExpectNumber(DC_FIELDS, row.dwFields);
        ExpectNumber(DC_DUPLEX, row.dwDuplex);
        ExpectNumber(DC_STAPLE, row.dwStaple);
    }
}

TEST_F(CapabilitiesTest, WithoutMediaTheBinsHaveNoBlank)
{
    AddChanged("T410A", {{"media_types", ""}});
    ExpectRows(DC_BINS, {1025, 261});
    ExpectTexts(DC_BINNAMES, {"Auto", "Tray 1"});
    ExpectTexts(DC_MEDIATYPENAMES, {});
    AddChanged("T410A", {{"media_types.rows", "[]"}}); /* a table, but nothing in it: no media row follows */
    ExpectTexts(DC_BINNAMES, {"Auto", "Tray 1"});
    ExpectRows(DC_MEDIATYPES, {});
    AddChanged("T410A", {{"input_bins", ""}});
    ExpectTexts(DC_BINNAMES, {"Plain", "Transparency", "Heavy", "Printer default"});
}

TEST_F(CapabilitiesTest, SavedPapersAndFormsNeedBothCustomMaxima)
{
    AddMachineForm(u"Letter", FORM_BUILTIN, 215900, 279400);
    AddMachineForm(u"Card", FORM_USER, 100059, 150059); /* 10006 and 15006 hundredths */
    AddMachineForm(u"Driver's", FORM_PRINTER, 1000, 1000);
    AddMachineForm(WideText(80, u'f'), FORM_USER, 655369995, 4);
    AddSample("K100");
    ExpectRows(DC_PAPERS, {1, 9, 8, 258, 448, 449, 450, 451});
    ExpectRows(DC_PAPERSIZE, {2159, 2794, 2100, 2970, 2970, 4200, 3050, 4570, 2200, 3200, 1270, 1778, 1000,
                              1500, 6553700, 0});
    ExpectTexts(DC_PAPERNAMES, {"Letter", "A4", "A3", "Proof Film", TEST_SHEET, "Card 5 x 7 in", "Card",
                                std::string(63, 'f')});
    ExpectNumber(DC_MINEXTENT, 500 | 500 << 16);
    ExpectNumber(DC_MAXEXTENT, 3300 | 13000 << 16);
    for (auto [cKey, cValue] : {std::pair{"model.max_custom_width", "0"},
                                {"model.max_custom_length", "0"},
                                {"model.max_custom_width", "-1"}}) {
        SCOPED_TRACE(cKey);
        AddChanged("K100", {{cKey, cValue}});
        ExpectRows(DC_PAPERS, {1, 9, 8, 258});
        ExpectTexts(DC_PAPERNAMES, {"Letter", "A4", "A3", "Proof Film"});
        ExpectNumber(DC_MINEXTENT, 2100 | 2794 << 16); /* the table alone */
        ExpectNumber(DC_MAXEXTENT, 3050 | 4570 << 16);
    }
    /* A row that is broken takes the others with it, and the forms take their codes. */
    AddSample("K100");
    PutFile(
        wcDriverFolder + WideText(u"K100.INI"),
        "[CustomSizes]\r\nNumCustomSizes=2\r\nCustomName0=A\r\nCustomWidth0=1\r\nCustomLength0=1\r\nCustomMetric0=1\r\n");
    ExpectRows(DC_PAPERS, {1, 9, 8, 258, 448, 449});
    EXPECT_EQ(Texts(Ask(DC_PAPERNAMES))[4], "Card");

    AddChanged("QPS", {{"papers.rows", "[]"}, {"model.max_custom_width", "0"}});
    DropMachineForms();
    ExpectRows(DC_PAPERS, {});
    ExpectTexts(DC_PAPERNAMES, {});
    ExpectNumber(DC_MINEXTENT, 0xFFFFFFFF);
    ExpectNumber(DC_MAXEXTENT, 0);
}

TEST_F(CapabilitiesTest, ExtentsTakeEachSideByItself)
{
    DescriptionBuilder builder;
    builder.Table<PaperRow>(8, {{1, 1, 2159, 2794, 0, 0, 0, 0, {}},
                                {1, 9, 2100, 2970, 1, 0, 0, 0, {}},
                                {1, 20, 1048, 2413, 0, 0, 0, 0, {}},
                                {}});
    AddTestPrinter(builder.Build());
    ExpectNumber(DC_MINEXTENT, 0x096D0418);
    ExpectNumber(DC_MAXEXTENT, 0x0B9A086F);
    builder.Table<PaperRow>(8, {{1, 1, -1, -2, 0, 0, 0, 0, {}}, {}});
    AddTestPrinter(builder.Build());
    ExpectNumber(DC_MINEXTENT, 0xFFFEFFFF); /* a negative width does not run into the length */
}

TEST_F(CapabilitiesTest, LongNamesAreCutToTheirRows)
{
    DescriptionBuilder builder;
    i16 sLong = builder.Text("0123456789012345678901234567890123456789012345678901234567890123456789");
    builder.Table<PaperRow>(8, {{sLong, 9, 2100, 2970, 1, 0, 0, 0, {}}, {}});
    builder.Table<BinRow>(24, {{1, 1025, sLong}, {}});
    builder.Set<u32>(56, 1);
    AddTestPrinter(builder.Build());
    ExpectTexts(DC_PAPERNAMES, {"012345678901234567890123456789012345678901234567890123456789012"});
    ExpectTexts(DC_BINNAMES, {"01234567890123456789012"});
    builder.Table<MediaRow>(48, {{1, sLong, 0, {}, 1}, {}});
    AddTestPrinter(builder.Build());
    ExpectTexts(DC_BINNAMES, {" 0123456789012345678901", "01234567890123456789012"});
    ExpectTexts(DC_MEDIATYPENAMES, {"012345678901234567890123456789012345678901234567890123456789012"});
}

TEST_F(CapabilitiesTest, MemoryIsToldWhereTheModelListsMemory)
{
    for (auto [cSample, bTold] : {std::pair{"T410A", true}, {"QPS", true}, {"K100", false}}) {
        AddSample(cSample);
        SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {98, 0, 0, 0});
        ExpectNumber(DC_PRINTERMEM, bTold ? 100352 : 0);
    }
    AddSample("T410A");
    SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF});
    ExpectNumber(DC_PRINTERMEM, 0xFFFFFC00);
    SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {98, 0});
    ExpectNumber(DC_PRINTERMEM, 0);
}

TEST_F(CapabilitiesTest, PrintRateGoesByTheExactNameOfTheDriver)
{
    struct Case {
        const WCHAR* wcDriver;
        DWORD dwRate;
    };
    for (Case row : {Case{u"Halden T410A", 33}, Case{u"Halden T420B", 33}, Case{u"Halden T430A", 33},
                     Case{u"Halden T440B", 33}, Case{u"Ostra K100", 33}, Case{u"Ostra K200", 33},
                     Case{u"halden T410A", 26}, Case{u"Halden T410A ", 26}, Case{u"Halden T410", 26},
                     Case{u"Halden T410AB", 26}, Case{u"Halden T440A", 26}, Case{u"", 26}}) {
        PrinterSetup setup;
        setup.wcName = u"Test";
        setup.wcDriverName = row.wcDriver;
        AddTestPrinter(Bytes());
        AddPrinter(setup);
        ExpectNumber(DC_PRINTRATE, row.dwRate);
        ExpectNumber(DC_PRINTRATEPPM, row.dwRate);
    }
    AddSample("T410A");
    TellLies(LIE_NULL_MEMBERS, CALL_GetPrinterW);
    ExpectNumber(DC_PRINTRATE, 26);
    TellLies(LIE_HUGE, CALL_GetPrinterW);
    ExpectNumber(DC_PRINTRATE, 0); /* a size that cannot be had */
    TellLies(LIE_NONE);
    FailCall(CALL_HeapAlloc, 1);
    ExpectNumber(DC_PRINTRATE, 0);
    EXPECT_EQ(StopFaults(), 1);
    FailCall(CALL_GetPrinterW, 1);
    ExpectNumber(DC_PRINTRATE, 26);
    EXPECT_EQ(StopFaults(), 1);
}

TEST_F(CapabilitiesTest, TheUsersLanguageChoosesTheTextsOfTheDescription)
{
    SetUserLanguage(0x0C07); /* German of Austria */
    AddSample("T410A");
    ExpectTexts(DC_BINNAMES, {" Automatisch", " Fach 1", "Normalpapier", "Folie", "Schweres Papier",
                              "Vorgabe des Druckers"});
    EXPECT_EQ(Texts(Ask(DC_PAPERNAMES))[7], "Umschlag Nr. 10");
    EXPECT_EQ(Texts(Ask(DC_PAPERNAMES))[0], "Letter") << "a text that the language lacks comes in English";
    AddSample("T440B"); /* has the English library alone: its own texts stay in the user's language */
    ExpectTexts(DC_MEDIATYPENAMES, {"Normalpapier", "Dickes Papier", "Printer default"});
    SetUserLanguage(0x040C);
    AddSample("T410A");
    ExpectTexts(DC_MEDIATYPENAMES, {"Plain", "Transparency", "Heavy", "Printer default"});
    std::filesystem::remove(HostPath(wcDriverFolder + WideText(u"TXT.DLL")));
    ExpectTexts(DC_MEDIATYPENAMES, {"Plain", "Transparency", "Heavy", ""});
}
