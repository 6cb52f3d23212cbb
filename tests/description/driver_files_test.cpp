/* Companion files of the driver: found by a piece of their name in the spooler's list; printers opened by
   name; answers of the spooler that are long, short or strange. */
#include "description/driver_files.h"
#include "support/machine_script.h"

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

    PrinterSetup setup;
    std::vector<std::pair<WideText, WideText>> values;
};

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
                (word.find(':') == word.npos ? u"c:\\drv\\" : u"") + WideWord(word.substr(nName));
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
        const std::string found = asked[0] == "core" ? RenderCore()
                                                     : Find(asked[0] == "-" ? u"" : Wide(asked[0]).c_str(),
                                                            WideWord(asked[1]).c_str());
        const bool bWhole = row[3].empty() || row[3].find(':') != row[3].npos;
        EXPECT_EQ(found, (bWhole ? "" : "C:\\DRV\\") + row[3])
            << row[0] << " | " << row[1] << " | " << row[2];
    }
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
    const WideText tcFile = setup.tcDataFile = u"C:\\drv\\qa.fdf";
    AddPrinterAgain();
    PrinterCall none(nullptr), call(hPrinter);
    EXPECT_EQ(GetFontFileSize(none), 0xFFFFFFFF);
    EXPECT_FALSE(IsOpen(OpenFontFile(none, GENERIC_READ).get()));
    EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF) << "named, but not there";
    EXPECT_FALSE(IsOpen(OpenFontFile(call, GENERIC_READ).get()));
    for (u32 cb : {0u, 1000u}) {
        PutFile(tcFile, std::string(cb, 'f'));
        EXPECT_EQ(GetFontFileSize(call), cb);
    }
    TellLies(LIE_HUGE, CALL_GetFileSizeEx);
    EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF) << "4 GB and more";
    TellLies(LIE_NONE);
    SetReadOnly(tcFile, true);
    OwnedFile hFont = OpenFontFile(call, GENERIC_READ | GENERIC_WRITE);
    EXPECT_TRUE(IsOpen(hFont.get())) << "the read-only attribute is cleared first";
    EXPECT_FALSE(IsOpen(OpenFontFile(call, GENERIC_READ).get())) << "nobody shares it";
    EXPECT_EQ(GetFontFileSize(call), 0xFFFFFFFF);
    EXPECT_EQ(GetFileAttributesW(tcFile.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
}

class PrintersOpened : public Scripted<MachineTest> {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(DescriptionBuilder().Build());
    }

    /* The tries, and whether it is open. */
    static std::string Open(const WCHAR* wcName)
    {
        const size_t nBefore = OpenedPrinters().size();
        const OwnedPrinter hByName = OpenPrinterByName(wcName);
        std::string tries;
        for (size_t i = nBefore; i < OpenedPrinters().size(); i++) {
            tries += OpenedPrinters()[i] + " ";
        }
        std::replace(tries.begin(), tries.end(), '|', ';');
        return tries + (IsOpen(hByName.get()) ? "open" : "none");
    }
};

SCRIPTED(PrintersOpened, ByTheirOwnNameWithTheAccessThatThereIs, "printers_opened.txt")
{
    PlayBy({VERB("open", Open(w.empty() ? nullptr : WideWord(w[0]).c_str()))});
}
