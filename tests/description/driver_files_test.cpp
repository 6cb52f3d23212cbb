/* Companion files of the driver: found by a piece of their name in the spooler's list; printers opened by
   name; answers of the spooler that are long, short or strange. */
#include "description/driver_files.h"
#include "support/data_file.h"
#include "support/sample_machine.h"

namespace {

class DriverFilesTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(DescriptionBuilder().Build());
        setup.wcName = u"Test";
    }

    std::string Find(const WCHAR* wcValue, const WCHAR* wcDefault)
    {
        AddPrinterAgain();
        PrinterCall call(hPrinter);
        WideText tcPath(PATH_CHARS + 1, u'~');
        int bFound = FindDriverFile(call, wcValue, wcDefault, tcPath.data());
        EXPECT_EQ(tcPath.back(), u'~');
        size_t nEnd = tcPath.find(u'\0');
        EXPECT_NE(nEnd, WideText::npos);
        EXPECT_EQ(bFound, nEnd > 0) << "result and path say different things";
        return Narrow(tcPath.substr(0, nEnd));
    }

    std::string RenderCore()
    {
        AddPrinterAgain();
        PrinterCall call(hPrinter);
        WCHAR tcPath[PATH_CHARS];
        int bFound = GetRenderCorePath(call, tcPath);
        EXPECT_EQ(bFound, tcPath[0] != 0);
        return Narrow(tcPath);
    }

    /* The printer anew, with what setup and values hold at the moment. */
    void AddPrinterAgain()
    {
        AddPrinter(setup);
        for (const auto& [wcName, wcText] : values) {
            SetPrinterText(u"Test", wcName, wcText);
        }
    }

    std::string OpenByName(const WCHAR* wcName, bool* pbOpen)
    {
        size_t nBefore = OpenedPrinters().size();
        OwnedPrinter hByName = OpenPrinterByName(wcName);
        *pbOpen = IsOpen(hByName.get());
        std::string tries;
        for (size_t i = nBefore; i < OpenedPrinters().size(); i++) {
            tries += (tries.empty() ? "" : " ") + OpenedPrinters()[i];
        }
        return tries;
    }

    PrinterSetup setup;
    std::vector<std::pair<WideText, WideText>> values;
};

WideText PathOf(size_t cch, const WideText& tcEnd)
{
    return u"C:\\" + WideText(cch - 3 - tcEnd.size(), u'd') + tcEnd;
}

} // namespace

TEST_F(DriverFilesTest, SearchOrderValuesAndTheRenderCore)
{
    const std::map<std::string, WideText PrinterSetup::*> roles = {{"driver=", &PrinterSetup::tcDriverPath},
                                                                   {"config=", &PrinterSetup::tcConfigFile},
                                                                   {"help=", &PrinterSetup::tcHelpFile},
                                                                   {"data=", &PrinterSetup::tcDataFile}};
    for (const DataRow& row : ReadRows("driver_files.txt")) {
        ASSERT_EQ(row.size(), 4u) << row[0];
        setup.tcDriverPath = setup.tcConfigFile = setup.tcHelpFile = setup.tcDataFile = u"";
        setup.atcDependentFiles.clear();
        for (const std::string& word : Words(row[0])) {
            const size_t nName = word.find('=') + 1; /* 0 for a dependent file */
            const WideText tcPath =
                (word.find(':') == word.npos ? u"c:\\drv\\" : u"") + Wide(word.substr(nName));
            const auto role = roles.find(word.substr(0, nName));
            if (role != roles.end()) {
                setup.*role->second = tcPath;
            } else {
                setup.atcDependentFiles.push_back(tcPath);
            }
        }
        values.clear();
        for (const std::string& word : Words(row[1])) {
            values.emplace_back(Wide(word.substr(0, word.find('='))), Wide(word.substr(word.find('=') + 1)));
        }
        std::vector<std::string> asked = Words(row[2]);
        asked.resize(2);
        const std::string found =
            asked[0] == "core" ? RenderCore()
                               : Find(asked[0] == "-" ? u"" : Wide(asked[0]).c_str(), Wide(asked[1]).c_str());
        const bool bWhole = row[3].empty() || row[3].find(':') != row[3].npos;
        EXPECT_EQ(found, (bWhole ? "" : "C:\\DRV\\") + row[3])
            << row[0] << " | " << row[1] << " | " << row[2];
    }
    values.clear();
    setup.atcDependentFiles = {u"c:\\\u00E4\u00F6\u00FC\\\u03B1.dll"};
    EXPECT_EQ(Find(u"", u"\u00C4\u00D6"), Narrow(u"C:\\\u00C4\u00D6\u00DC\\\u0391.DLL"));

    /* At most 128 characters of it are looked for. */
    setup.atcDependentFiles = {u"c:\\" + WideText(128, u'n') + u".dll"};
    values = {{u"XPI", WideText(200, u'n')}};
    EXPECT_EQ(Find(u"XPI", u".XPI"), "C:\\" + std::string(128, 'N') + ".DLL");
    setup.atcDependentFiles = {u"c:\\" + WideText(127, u'n') + u".dll"};
    EXPECT_EQ(Find(u"XPI", u".XPI"), "");
    setup.atcDependentFiles = {u"c:\\drv\\a.xpi"};
    values = {{u"XPI", WideText(300, u'n')}}; /* more than there is room for: not there */
    EXPECT_EQ(Find(u"XPI", u".XPI"), "C:\\DRV\\A.XPI");
}

TEST_F(DriverFilesTest, AValueThatFillsItsRoom)
{
    /* 260 characters that fill the room to its last byte, without a NUL. */
    AddPrinter(setup);
    Bytes full(520);
    for (size_t i = 0; i < 520; i += 2) {
        full[i] = 'n';
    }
    SetPrinterValue(u"Test", u"XPI", REG_SZ, full);
    PrinterCall call(hPrinter);
    WCHAR tcText[PATH_CHARS];
    int bEnded = 1;
    EXPECT_EQ(ReadPrinterText(call, u"XPI", tcText, PATH_CHARS, &bEnded), 1);
    EXPECT_EQ(bEnded, 0);
    EXPECT_EQ(WideText(tcText), WideText(259, u'n'));
}

TEST_F(DriverFilesTest, PathsThatDoNotFitNameNoFile)
{
    WideText tcLongest = PathOf(259, u".xpi"), tcTooLong = PathOf(260, u".xpi");
    setup.atcDependentFiles = {tcLongest};
    EXPECT_EQ(Find(u"", u".XPI").size(), 259u);
    setup.atcDependentFiles = {tcTooLong, PathOf(1000, u".xpi"), u"c:\\drv\\next.xpi"};
    EXPECT_EQ(Find(u"", u".XPI"), "C:\\DRV\\NEXT.XPI");
    setup.atcDependentFiles = {PathOf(260, u".xpi.dll")}; /* its first 259 characters would match */
    EXPECT_EQ(Find(u"", u".XPI"), "");
    setup.tcDriverPath = tcTooLong;
    EXPECT_EQ(RenderCore(), "");
}

TEST_F(DriverFilesTest, LongAnswersOfTheSpoolerAreAskedForTwice)
{
    for (int i = 0; i < 70; i++) {
        setup.atcDependentFiles.push_back(u"c:\\drv\\" + WideText(100, static_cast<WCHAR>(u'a' + i % 26)));
    }
    setup.atcDependentFiles.push_back(u"c:\\drv\\last.xpi");
    ResetCallCounts();
    EXPECT_EQ(Find(u"", u".XPI"), "C:\\DRV\\LAST.XPI"); /* about 15,000 bytes */
    EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), 2);

    setup.wcComment = WideText(5000, u'c');
    AddPrinterAgain();
    PrinterCall call(hPrinter);
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    ASSERT_TRUE(pInfo);
    EXPECT_EQ(WideText(PrinterText(call, pInfo->pComment)).size(), 5000u);
    EXPECT_EQ(GetPrinterInfo(call), pInfo);
    EXPECT_EQ(CallCount(CALL_GetPrinterW), 2) << "asked once a call";
}

TEST_F(DriverFilesTest, StrangeAnswersOfTheSpooler)
{
    for (LieKind lie : {LIE_NULL_MEMBERS, LIE_HUGE, LIE_GROWS}) {
        PrinterCall call(hPrinter);
        WCHAR tcPath[PATH_CHARS];
        TellLies(lie, CALL_GetPrinterDriverW);
        if (lie == LIE_GROWS) {
            setup.atcDependentFiles.assign(60, WideText(60, u'x')); /* so that the first room is too small */
            AddPrinterAgain();
        }
        ResetCallCounts();
        EXPECT_EQ(FindDriverFile(call, u"", u".XPI", tcPath), 0) << lie;
        EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), lie == LIE_GROWS ? 2 : 1)
            << "a room that grows is tried twice";
        EXPECT_EQ(tcPath[0], 0);
        EXPECT_EQ(GetFontFilePath(call, tcPath), 0);
        TellLies(LIE_NONE);
        EXPECT_EQ(FindDriverFile(call, u"", u".XPI", tcPath), 0) << "a call does not ask again";
    }
    FailCall(CALL_HeapAlloc, 1);
    PrinterCall call(hPrinter);
    EXPECT_FALSE(GetDriverInfo(call));
    EXPECT_EQ(call.driverState, NO_MEMORY);
    EXPECT_EQ(StopFaults(), 1);

    for (HANDLE hNone : {HANDLE(nullptr), INVALID_HANDLE_VALUE}) {
        PrinterCall none(hNone);
        WCHAR tcPath[PATH_CHARS];
        ResetCallCounts();
        EXPECT_EQ(FindDriverFile(none, u"XPI", u".XPI", tcPath), 0);
        EXPECT_FALSE(OpenXpiFile(none));
        EXPECT_EQ(CallCount(ANY_CALL), 0) << "there is nobody to ask";
    }
}

TEST_F(DriverFilesTest, TextsOfAnAnswerStayInItsBlock)
{
    WCHAR awcBlock[8] = {u'a', 0, u'b', u'c', 0, 0, 0, 0};
    EXPECT_EQ(AnswerText(awcBlock, 8, awcBlock + 2), awcBlock + 2);
    EXPECT_EQ(WideText(AnswerText(awcBlock, 8, awcBlock + 4)), u"") << "right behind the block";
    EXPECT_NE(AnswerText(awcBlock, 8, awcBlock + 4), awcBlock + 4);
    EXPECT_NE(AnswerText(awcBlock, 8, awcBlock - 1), awcBlock - 1);
    EXPECT_EQ(WideText(AnswerText(awcBlock, 8, nullptr)), u"");
    const WCHAR* wcOdd;
    std::uintptr_t nOdd = reinterpret_cast<std::uintptr_t>(awcBlock) + 3;
    std::memcpy(&wcOdd, &nOdd, sizeof wcOdd);
    EXPECT_EQ(WideText(AnswerText(awcBlock, 8, wcOdd)), u"") << "an odd address";
}

TEST_F(DriverFilesTest, TheDescriptionIsOpenedOnceACall)
{
    PrinterCall call(hPrinter);
    ResetCallCounts();
    EXPECT_TRUE(OpenXpiFile(call));
    EXPECT_EQ(OpenXpiFile(call), OpenXpiFile(call));
    EXPECT_EQ(CallCount(CALL_CreateFileW), 1);
    EXPECT_EQ(CallCount(CALL_GetPrinterDataW), 1);
    EXPECT_TRUE(LoadPrinterModel(call));

    SetPrinterText(u"Test", u"XPI", u"missing.xpi");
    PrinterCall other(hPrinter);
    EXPECT_FALSE(OpenXpiFile(other));
    SetPrinterText(u"Test", u"XPI", u"");
    EXPECT_FALSE(OpenXpiFile(other)) << "a call does not change its mind";
    EXPECT_FALSE(LoadPrinterModel(other));
}

TEST_F(DriverFilesTest, FontFile)
{
    PrinterCall none(nullptr);
    EXPECT_EQ(GetFontFileSize(none), 0xFFFFFFFF);
    EXPECT_FALSE(IsOpen(OpenFontFile(none, GENERIC_READ).get()));

    setup.tcDataFile = u"C:\\drv\\qa.fdf";
    AddPrinterAgain();
    PrinterCall call(hPrinter);
    EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF) << "named, but not there";
    EXPECT_FALSE(IsOpen(OpenFontFile(call, GENERIC_READ).get()));
    PutFile(u"C:\\drv\\qa.fdf", "");
    EXPECT_EQ(GetFontFileSize(call), 0u);
    PutFile(u"C:\\drv\\qa.fdf", std::string(1000, 'f'));
    EXPECT_EQ(GetFontFileSize(call), 1000u);
    TellLies(LIE_HUGE, CALL_GetFileSizeEx);
    EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF) << "4 GB and more";
    TellLies(LIE_NONE);

    SetReadOnly(u"C:\\drv\\qa.fdf", true);
    {
        OwnedFile hFont = OpenFontFile(call, GENERIC_READ | GENERIC_WRITE);
        EXPECT_TRUE(IsOpen(hFont.get())) << "the read-only attribute is cleared first";
        EXPECT_FALSE(IsOpen(OpenFontFile(call, GENERIC_READ).get())) << "nobody shares it";
        EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF);
    }
    EXPECT_EQ(GetFileAttributesW(u"C:\\drv\\qa.fdf") & FILE_ATTRIBUTE_READONLY, 0u);
}

TEST_F(DriverFilesTest, PrintersOpenedByName)
{
    bool bOpen;
    for (const WCHAR* wcName :
         {u"Test", u"\\\\WORKPC\\Test,LocalOnly", u"\\\\WORKPC\\Test", u"\\\\WORKPC\\Test,LocalA,LocalB"}) {
        const WideText wcBare = WideText(wcName).substr(0, WideText(wcName).find(u','));
        EXPECT_EQ(OpenByName(wcName, &bOpen), Narrow(wcBare) + "|F000C");
        EXPECT_TRUE(bOpen) << Narrow(wcName);
    }
    /* Names of other computers, in other letters, or without the leading backslashes stay as they are. */
    for (const WCHAR* wcName :
         {u"\\\\WORKPC\\Test,local", u"\\\\OTHER\\Test,Local", u"\\\\workpc\\Test,Local",
          u"\\\\WORKPC2\\Test,Local", u"\\\\WORKPC", u"\\WORKPC\\Test,Local", u"Test,Local", u""}) {
        EXPECT_EQ(OpenByName(wcName, &bOpen), Narrow(wcName) + "|F000C");
        EXPECT_FALSE(bOpen) << Narrow(wcName);
    }
    EXPECT_EQ(OpenByName(WideText(200, u'n').c_str(), &bOpen), std::string(128, 'n') + "|F000C");
    EXPECT_EQ(OpenByName(nullptr, &bOpen), "") << "no name would be the print server";
    EXPECT_FALSE(bOpen);

    SetComputerName(u"");
    EXPECT_EQ(OpenByName(u"\\\\WORKPC\\Test,Local", &bOpen), "\\\\WORKPC\\Test,Local|F000C");
    SetComputerName(WideText(15, u'W'));
    EXPECT_EQ(OpenByName((u"\\\\" + WideText(15, u'W') + u"\\Test,Local").c_str(), &bOpen),
              "\\\\" + std::string(15, 'W') + "\\Test|F000C");
    TellLies(LIE_UNTERMINATED, CALL_GetComputerNameW);
    EXPECT_EQ(OpenByName(u"\\\\WORKPC\\Test,Local", &bOpen), "\\\\WORKPC\\Test,Local|F000C");
    TellLies(LIE_NONE);
}

TEST_F(DriverFilesTest, LessAccessIsAskedForBehindARefusalOnly)
{
    bool bOpen;
    DenyPrinterAccess(0xF000C, 5);
    EXPECT_EQ(OpenByName(u"Test", &bOpen), "Test|F000C Test|8");
    EXPECT_TRUE(bOpen);
    DenyPrinterAccess(8, 5);
    EXPECT_EQ(OpenByName(u"Test", &bOpen), "Test|F000C Test|8");
    EXPECT_FALSE(bOpen);
    DenyPrinterAccess(0, 0);
    DenyPrinterAccess(0xF000C, 1722);
    EXPECT_EQ(OpenByName(u"Test", &bOpen), "Test|F000C");
    EXPECT_FALSE(bOpen);
}
