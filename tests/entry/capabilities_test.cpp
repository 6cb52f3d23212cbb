/* DrvDeviceCapabilities: every question on every sample printer, without a description, and on descriptions
   that were changed at the place that matters. */
#include <algorithm>
#include <set>

#include "entry/exports.h"
#include "support/data_file.h"
#include "support/sample_machine.h"

namespace {

const std::string SEVEN = "7: 1 2 4 6 8 9 16", NINE = "9: 1 2 4 6 8 9 12 16 25";

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

    /* "99" for an answer by its number alone; "2: 1025 261" or "2: Auto; Tray" with the rows. */
    std::string Answer(WORD wQuestion)
    {
        const CapabilityAnswer answer = Ask(wQuestion);
        EXPECT_EQ(Count(wQuestion), answer.dwResult) << QuestionName(wQuestion) << " counted";
        std::string text = RowBytes(wQuestion) ? std::to_string(answer.dwResult) : "", separator = ": ";
        for (const std::string& word : AnswerWords(answer)) {
            text += (text.empty() ? "" : separator) + word;
            separator = RowBytes(wQuestion) > 8 ? "; " : " ";
        }
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }

    void Expect(WORD wQuestion, const std::string& answer)
    {
        EXPECT_EQ(Answer(wQuestion), answer) << QuestionName(wQuestion);
    }

    /* The rows of capabilities.txt for the printer and the change are true, those of "*" for all that are unchanged.
       Result: how many questions they are about. */
    size_t ExpectRows(const std::string& printer, const std::string& change = "")
    {
        static const std::vector<DataRow> rows = ReadRows("capabilities.txt");
        std::set<WORD> asked;
        for (const DataRow& row : rows) {
            if ((row[0] != printer && row[0] != "*") || row[1] != change) {
                continue;
            }
            for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
                if (row[2] == QuestionName(wQuestion)) {
                    EXPECT_EQ(Answer(wQuestion), row[3]) << row[0] << ", " << row[1] << ", " << row[2];
                    asked.insert(wQuestion);
                }
            }
        }
        return asked.size();
    }

    /* Every question with the stand-by answers, but those for which an installed option stands. */
    void ExpectStandBy(bool bMetric, const char* cDuplex = "0", const char* cStaple = "0",
                       const char* cRate = "33")
    {
        EXPECT_EQ(ExpectRows(bMetric ? "none, metric" : "none, inches"), size_t{LAST_QUESTION - 5});
        Expect(DC_FIELDS, *cDuplex == '1' ? "0x0000F70F" : "0x0000E70F");
        Expect(DC_DUPLEX, cDuplex);
        Expect(DC_STAPLE, cStaple);
        Expect(DC_PRINTRATE, cRate);
        Expect(DC_PRINTRATEPPM, cRate);
    }
};

} // namespace

TEST_F(CapabilitiesTest, EveryQuestionOnEverySample)
{
    for (bool bMetric : {true, false}) {
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        for (const char* cSample : acSamples) {
            AddSample(cSample);
            EXPECT_EQ(ExpectRows(cSample), size_t{LAST_QUESTION - 1});
            Expect(DC_MEDIAREADY, bMetric ? "1: A4" : "1: Letter");
        }
    }
}

TEST_F(CapabilitiesTest, WithoutADescription)
{
    for (bool bMetric : {true, false}) {
        SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
        AddSample("T410A");
        std::filesystem::remove(HostPath(wcDriverFolder + WideText(u"T410A.XPI")));
        ExpectStandBy(bMetric);
        SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY,
                        {0, 0, 0, 0, 0, 0, 0, 0, 0x11, 0, 0, 0, 0, 0, 0, 0});
        ExpectStandBy(bMetric, "1", "1");
        DropPrinterValue(wcPrinter, u"DeviceInfo");
        PutFile(wcDriverFolder + WideText(u"T410A.INI"), "[DeviceInfo]\r\nOptions=10\r\n");
        ExpectStandBy(bMetric, "0", "1");
    }
    /* A printer that nobody can say anything about. */
    HANDLE hOpened = hPrinter;
    for (HANDLE hNone : {HANDLE(nullptr), INVALID_HANDLE_VALUE}) {
        for (const char16_t* wcName : {u"", u"No Such Printer"}) {
            hPrinter = hNone;
            wcPrinter = wcName;
            EXPECT_EQ(ExpectRows("nobody"), size_t{LAST_QUESTION});
        }
    }
    hPrinter = hOpened;
}

TEST_F(CapabilitiesTest, ChangedSamples)
{
    std::set<std::pair<std::string, std::string>> changes;
    for (const DataRow& row : ReadRows("capabilities.txt")) {
        if (!row[1].empty() && changes.insert({row[0], row[1]}).second) {
            StartMachine();
            AddChanged(row[0], row[1]);
            ExpectRows(row[0], row[1]);
        }
    }
    EXPECT_GE(changes.size(), 24u);
}

TEST_F(CapabilitiesTest, ANullHandleOpensThePrinterOfTheName)
{
    AddSample("K100");
    HANDLE hOpened = hPrinter;
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

TEST_F(CapabilitiesTest, KindsDecideOnMediaBinsFontsAndPages)
{
    Bytes description = CompileSample("T410A");
    for (u16 usKind : std::initializer_list<u16>{0, 1, 2, 3, 4, 5, 0xFFFF}) {
        SCOPED_TRACE(usKind);
        const bool bImage = usKind == 3;
        Poke(&description, Peek<u32>(description, AT_BODY) + 2, usKind);
        AddSample("T410A");
        PutFile(wcDriverFolder + WideText(u"T410A.XPI"), description);
        Expect(DC_BINS, bImage ? "2: 1025 261" : "6: 1025 261 2000 2001 2002 2003");
        Expect(DC_BINNAMES,
               bImage ? "2: Auto; Tray 1" : "6:  Auto;  Tray 1; Plain; Transparency; Heavy; Printer default");
        Expect(DC_MEDIATYPES, "4: 1 2 256 300");
        Expect(DC_TRUETYPE, bImage ? "1" : "3");
        Expect(DC_NUP, bImage ? NINE : SEVEN);
        EXPECT_EQ(Count(DC_PERSONALITY), 1u);
        WCHAR wcName[33] = u"################################";
        DrvDeviceCapabilities(hPrinter, wcPrinter.data(), DC_PERSONALITY, wcName, nullptr);
        constexpr const WCHAR* aNames[] = {u"PCL6", u"PCL5c", u"PostScript", u"Image"};
        EXPECT_EQ(WideText(wcName), usKind < 4 ? WideText(aNames[usKind]) : WideText(32, u'#'));
    }
}

TEST_F(CapabilitiesTest, ANegativeWidthDoesNotRunIntoTheLength)
{
    DescriptionBuilder builder;
    builder.Table<PaperRow>(offsetof(XpiModel, pPaperTable), {{1, 1, -1, -2, 0, 0, 0, 0, {}}, {}});
    AddTestPrinter(builder.Build());
    Expect(DC_MINEXTENT, "0xFFFEFFFF");
}

TEST_F(CapabilitiesTest, LongNamesAreCutToTheirRows)
{
    DescriptionBuilder builder;
    i16 sLong = builder.Text("0123456789012345678901234567890123456789012345678901234567890123456789");
    builder.Table<PaperRow>(offsetof(XpiModel, pPaperTable), {{sLong, 9, 2100, 2970, 1, 0, 0, 0, {}}, {}});
    builder.Table<BinRow>(offsetof(XpiModel, pInputBins), {{1, 1025, sLong}, {}});
    builder.Set(offsetof(XpiModel, ulStdInputs), u32{1});
    AddTestPrinter(builder.Build());
    Expect(DC_PAPERNAMES, "1: 012345678901234567890123456789012345678901234567890123456789012");
    Expect(DC_BINNAMES, "1: 01234567890123456789012");
    builder.Table<MediaRow>(offsetof(XpiModel, pMediaTypes), {{1, sLong, 0, {}, 1}, {}});
    AddTestPrinter(builder.Build());
    Expect(DC_BINNAMES, "2:  0123456789012345678901; 01234567890123456789012");
    Expect(DC_MEDIATYPENAMES, "1: 012345678901234567890123456789012345678901234567890123456789012");
}

TEST_F(CapabilitiesTest, WithoutTheLibraryItsTextsAreEmpty)
{
    AddSample("T410A");
    std::filesystem::remove(HostPath(wcDriverFolder + WideText(u"ENUS.DLL")));
    std::filesystem::remove(HostPath(wcDriverFolder + WideText(u"TXT.DLL")));
    Expect(DC_MEDIATYPENAMES, "4: Plain; Transparency; Heavy;");
}
