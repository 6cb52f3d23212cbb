/* Stored values of the printer, the installed set, and the user's folder and settings file. */
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "support/data_file.h"
#include "support/sample_machine.h"

namespace {

using Set = std::array<u32, 4>;

Set WordsOf(const DeviceInfo& info)
{
    return {info.ulInputs, info.ulOutputs, info.ulOptions, info.ulMemoryKey};
}

/* Standard and optional words that together give 3, 3, 7 and 96. */
DescriptionBuilder FourWords()
{
    DescriptionBuilder builder;
    builder.Set<u32>(56, 1).Set<u32>(60, 2).Set<u32>(64, 4).Set<u32>(68, 2).Set<u32>(72, 1).Set<u32>(76, 3);
    builder.Set<u32>(80, 0xF0).Set<u32>(84, 0xF0).Set<u32>(88,
                                                           0xF0); /* what can be bought is not installed */
    builder.Set<i16>(92, 64).Set<u16>(94, 32);
    return builder;
}

class PrinterStoreTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(FourWords().Build());
    }

    Set Installed(bool bModel = true)
    {
        PrinterCall call(hPrinter);
        OwnedModel pModel = bModel ? LoadPrinterModel(call) : OwnedModel();
        EXPECT_EQ(pModel != nullptr, bModel);
        return WordsOf(*GetDeviceInfo(call, pModel.get()));
    }

    Set WithIni(const std::string& ini, bool bModel = true)
    {
        PutFile(u"C:\\drv\\qa.ini", "[DeviceInfo]\r\n" + ini);
        return Installed(bModel);
    }

    /* The printer with another driver name; its values are gone. */
    void NameDriver(const WideText& wcDriver)
    {
        PrinterSetup setup;
        setup.wcName = u"Test";
        setup.wcDriverName = wcDriver;
        AddPrinter(setup);
    }

    std::string UserFolder()
    {
        PrinterCall call(hPrinter);
        WCHAR tcFolder[PATH_CHARS + 1] = {};
        tcFolder[PATH_CHARS] = u'~';
        int bNamed = GetUserFolder(call, tcFolder);
        EXPECT_EQ(tcFolder[PATH_CHARS], u'~');
        EXPECT_EQ(bNamed, tcFolder[0] != 0);
        return Narrow(tcFolder);
    }

    std::string SettingsPath(const WideText& wcSettings)
    {
        SetPrinterText(u"Test", u"Settings", wcSettings);
        PrinterCall call(hPrinter);
        WCHAR tcPath[PATH_CHARS];
        int bNamed = GetUserSettingsPath(call, tcPath);
        EXPECT_EQ(bNamed, tcPath[0] != 0);
        return Narrow(tcPath);
    }
};

const std::string FOLDER = "C:\\Users\\worker\\Application Data\\Corvantis Optics\\";

} // namespace

TEST_F(PrinterStoreTest, ValuesOfEveryTypeAndSize)
{
    const std::map<std::string, DWORD> types = {
        {"SZ", REG_SZ}, {"BINARY", REG_BINARY}, {"DWORD", REG_DWORD}, {"MULTI_SZ", REG_MULTI_SZ}};
    PutFile(u"C:\\drv\\qa.ini", "[DeviceInfo]\r\nOptions=11\r\n");
    for (const DataRow& row : ReadRows("printer_values.txt")) {
        SetPrinterValue(u"Test", Wide(row[0]), types.at(row[1]), FromHex<Bytes>(row[2]));
        PrinterCall call(hPrinter);
        WCHAR wcText[PATH_CHARS] = u"~";
        std::string answer;
        if (row[0] == "XPI") { /* a path */
            FindDriverFile(call, u"XPI", u".XPI", wcText);
            answer = Narrow(wcText);
            DropPrinterValue(u"Test", u"XPI");
        } else if (row[0] == "Memory") { /* a number */
            answer = std::to_string(GetPrinterMemory(call));
        } else if (row[0] == "DeviceInfo") { /* inputs, outputs, options, memory */
            for (u32 ulWord : Installed()) {
                answer += (answer.empty() ? "" : " ") + std::to_string(ulWord);
            }
        } else if (row[0] == "FontSubs") { /* bytes, two NULs behind the last */
            OwnedBlock<u8> pPairs(static_cast<u8*>(AllocateBlock(4)));
            const u32 cb = GetFontSubs(call, &pPairs);
            answer = std::to_string(cb);
            EXPECT_EQ(pPairs != nullptr, cb != 0) << "what was in the block's place is let go";
            EXPECT_TRUE(!cb ||
                        Bytes(pPairs.get() + cb - 1, pPairs.get() + cb + 4) == (Bytes{'x', 0, 0, 0, 0}));
        } else { /* a name */
            EXPECT_EQ(GetSettingsFileName(call, wcText, 4), !row[3].empty());
            answer = Narrow(wcText);
        }
        EXPECT_EQ(answer, row[3]) << row[0] << " " << row[1] << " " << row[2];
    }
}

TEST_F(PrinterStoreTest, TheStoredSetIsAskedForOnceACall)
{
    PutFile(u"C:\\drv\\qa.ini", "[DeviceInfo]\r\nOptions=11\r\n");
    SetPrinterValue(u"Test", u"DeviceInfo", REG_BINARY, Bytes(16, 1));
    EXPECT_EQ(Installed(false)[3], 0x01010101u);
    TellLies(LIE_SHORT, CALL_GetPrinterDataW);
    EXPECT_EQ(Installed(), (Set{3, 3, 0x11, 96}));
    TellLies(LIE_NONE);

    PrinterCall call(hPrinter);
    DeviceInfo changed = {9, 8, 7, 6};
    SetDeviceInfo(call, &changed);
    EXPECT_EQ(Installed(), (Set{9, 8, 7, 6}));
    DWORD dwType = 0;
    Bytes bytes;
    ASSERT_TRUE(GetPrinterValue(u"Test", u"DeviceInfo", &dwType, &bytes));
    EXPECT_EQ(dwType, REG_BINARY);
    EXPECT_EQ(bytes, (Bytes{9, 0, 0, 0, 8, 0, 0, 0, 7, 0, 0, 0, 6, 0, 0, 0}));

    ResetCallCounts();
    const DeviceInfo* pFirst = GetDeviceInfo(call, nullptr);
    EXPECT_EQ(GetDeviceInfo(call, nullptr), pFirst);
    EXPECT_EQ(CallCount(CALL_GetPrinterDataW), 1) << "asked once a call";
}

TEST_F(PrinterStoreTest, TheSettingsFileOfTheDriverOverridesTheModelKeyByKey)
{
    EXPECT_EQ(Installed(), (Set{3, 3, 7, 96})) << "the .INI file is listed but not there";
    EXPECT_EQ(Installed(false), (Set{0, 0, 0, 0}));
    EXPECT_EQ(WithIni("Sources=A\r\n", false), (Set{10, 0, 0, 0}));
    for (const DataRow& row : ReadRows("device_info.txt")) {
        const std::vector<u32> set = ToNumbers<u32>(row[1]);
        EXPECT_EQ(WithIni(Unescaped(row[0]) + "\r\n"), (Set{set[0], set[1], set[2], set[3]})) << row[0];
    }

    PrinterCall call(hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    DeviceInfo info = {1, 1, 1, 1};
    BuildDeviceInfo(call, pModel.get(), &info, 0);
    EXPECT_EQ(WordsOf(info), (Set{3, 3, 7, 96})) << "the model alone";
    BuildDeviceInfo(call, nullptr, &info, 0);
    EXPECT_EQ(WordsOf(info), (Set{0, 0, 0, 0}));

    DescriptionBuilder wide = FourWords();
    PutFile(u"C:\\drv\\qa.xpi", wide.Set<i16>(92, -1).Set<u16>(94, 0xFFFF).Build());
    EXPECT_EQ(WithIni(""), (Set{3, 3, 7, 65534}));
}

TEST_F(PrinterStoreTest, MemoryAndFontPairs)
{
    PrinterCall call(hPrinter);
    OwnedBlock<u8> pPairs;
    SetPrinterMemory(call, 0xFFFFFFFE);
    EXPECT_EQ(GetPrinterMemory(call), 0xFFFFFFFEu);
    PrinterCall none(nullptr);
    EXPECT_EQ(GetPrinterMemory(none), 0u);

    const WCHAR awcPairs[] = u"Arial\0Halden Sans\0";
    SetFontSubs(call, awcPairs, sizeof awcPairs);
    DWORD dwType = 0;
    Bytes bytes;
    ASSERT_TRUE(GetPrinterValue(u"Test", u"FontSubs", &dwType, &bytes));
    EXPECT_EQ(dwType, REG_MULTI_SZ);
    ASSERT_EQ(GetFontSubs(call, &pPairs), sizeof awcPairs);
    EXPECT_EQ(std::memcmp(pPairs.get(), awcPairs, sizeof awcPairs), 0);

    SetFontSubs(call, awcPairs, sizeof awcPairs);
    for (int nTh : {1, 2}) {
        FailCall(CALL_GetPrinterDataW, nTh);
        EXPECT_EQ(GetFontSubs(call, &pPairs), 0u) << nTh;
        EXPECT_FALSE(pPairs);
        EXPECT_EQ(StopFaults(), 1);
    }
    FailCall(CALL_HeapAlloc, 1);
    EXPECT_EQ(GetFontSubs(call, &pPairs), 0u);
    EXPECT_EQ(StopFaults(), 1);
    for (LieKind lie : {LIE_GROWS, LIE_HUGE}) {
        TellLies(lie, CALL_GetPrinterDataW);
        EXPECT_EQ(GetFontSubs(call, &pPairs), 0u) << lie;
        EXPECT_FALSE(pPairs);
        TellLies(LIE_NONE);
    }
}

TEST_F(PrinterStoreTest, TheSettingsNameIsAPlainFileName)
{
    EXPECT_EQ(SettingsPath(u"00001234.EXT"), FOLDER + "Test Driver\\00001234.EXT");
    EXPECT_EQ(SettingsPath(u"a.b"), FOLDER + "Test Driver\\a.b");
    for (const WCHAR* wcBad :
         {u"", u"..", u".", u" . ", u"..\\x", u"a/b", u"C:x", u"x:stream", u"\\x", u"C:\\x"}) {
        EXPECT_EQ(SettingsPath(wcBad), "") << Narrow(wcBad);
    }
    /* 259 characters are the longest path: 69 of them are the folder and its backslash. */
    size_t nFolder = (FOLDER + "Test Driver\\").size();
    EXPECT_EQ(SettingsPath(WideText(259 - nFolder, u's')).size(), 259u);
    EXPECT_EQ(SettingsPath(WideText(260 - nFolder, u's')), "");
    EXPECT_EQ(SettingsPath(WideText(400, u's')), "");

    PrinterCall call(hPrinter);
    SetSettingsFileName(call, u"0000ABCD.INI");
    DWORD dwType = 0;
    Bytes bytes;
    ASSERT_TRUE(GetPrinterValue(u"Test", u"Settings", &dwType, &bytes));
    EXPECT_EQ(dwType, REG_SZ);
    EXPECT_EQ(bytes.size(), 26u) << "with its NUL";
    WCHAR wcName[13];
    EXPECT_EQ(GetSettingsFileName(call, wcName, 13), 1);
    EXPECT_EQ(WideText(wcName), u"0000ABCD.INI");
}

TEST_F(PrinterStoreTest, TheUsersFolderIsNamedByTheDriverAndMade)
{
    EXPECT_FALSE(std::filesystem::exists(HostPath(Widen(FOLDER))));
    EXPECT_EQ(UserFolder(), FOLDER + "Test Driver");
    EXPECT_TRUE(std::filesystem::is_directory(HostPath(Widen(FOLDER + "Test Driver"))));
    ResetCallCounts();
    EXPECT_EQ(UserFolder(), FOLDER + "Test Driver");
    EXPECT_EQ(CallCount(CALL_CreateDirectoryW), 0) << "it is there";

    NameDriver(u"Q\"A*B\\C<D>");
    EXPECT_EQ(UserFolder(), FOLDER + "Q'A B-C(D)");
    EXPECT_TRUE(std::filesystem::is_directory(HostPath(Widen(FOLDER + "Q'A B-C(D)"))));
    NameDriver(u"a:b?c|d/e..");
    EXPECT_EQ(UserFolder(), FOLDER + "a b c d-e..");
    for (const WCHAR* wcHollow : {u"", u"..", u".", u" ", u" .. ", u"??", u":"}) {
        NameDriver(wcHollow);
        EXPECT_EQ(UserFolder(), "") << Narrow(wcHollow);
    }
    NameDriver(u"d");
    PrinterCall call(hPrinter);
    WCHAR wcName[PATH_CHARS];
    EXPECT_EQ(GetDriverName(call, wcName), 1);
    NameDriver(u"..\\..\\x"); /* no way out of the folder */
    EXPECT_EQ(UserFolder(), FOLDER + "..-..-x");

    NameDriver(WideText(259 - FOLDER.size(), u'd'));
    EXPECT_EQ(UserFolder().size(), 259u);
    for (size_t cch : {260 - FOLDER.size(), size_t{259}, size_t{400}}) {
        NameDriver(WideText(cch, u'd'));
        EXPECT_EQ(UserFolder(), "") << cch;
    }
}

TEST_F(PrinterStoreTest, NoUsersFolderWithoutAProfileOrADriverName)
{
    SetEnvironmentValue(u"USERPROFILE", u"");
    EXPECT_EQ(UserFolder(), "");
    SetEnvironmentValue(u"USERPROFILE", u"C:\\" + WideText(300, u'u'));
    EXPECT_EQ(UserFolder(), "");
    SetEnvironmentValue(u"USERPROFILE", u"C:\\Users\\worker");
    for (LieKind lie : {LIE_HUGE, LIE_UNTERMINATED}) {
        TellLies(lie, CALL_GetEnvironmentVariableW);
        EXPECT_EQ(UserFolder(), "") << lie;
        TellLies(LIE_NONE);
    }
    TellLies(LIE_NULL_MEMBERS, CALL_GetPrinterW);
    EXPECT_EQ(UserFolder(), "");
    TellLies(LIE_NONE);
    FailCall(CALL_GetPrinterW, 1);
    EXPECT_EQ(UserFolder(), "");
    EXPECT_EQ(StopFaults(), 1);

    /* A folder that cannot be made has its name all the same. */
    PutFile(u"C:\\Users\\worker\\Application Data", "a file in the way");
    EXPECT_EQ(UserFolder(), FOLDER + "Test Driver");
}

TEST_F(PrinterStoreTest, ProfileAndScreenNamesLieInTheUsersFile)
{
    PrinterCall call(hPrinter);
    WCHAR wcName[16] = u"~";
    PutFile(u"C:\\drv\\qa.ini", "[Basalt]\r\nProfile=driver.icc\r\n");
    GetProfileName(call, wcName, 16);
    EXPECT_EQ(WideText(wcName), u"") << "the driver's own file is not asked";
    ASSERT_NE(SettingsPath(u"mine.ini"), "");
    PutFile(
        Widen(SettingsPath(u"mine.ini")),
        "[PrinterSettings]\r\nProfile=2\r\n[Basalt]\r\nProfile= \"Coated 12.icc\" \r\nScreen=fine.scr\r\n");
    GetProfileName(call, wcName, 16);
    EXPECT_EQ(WideText(wcName), u"") << "what a call has read stays for that call";
    ForgetUserSettings(call);
    GetProfileName(call, wcName, 16);
    EXPECT_EQ(WideText(wcName), u"Coated 12.icc");
    GetScreenName(call, wcName, 16);
    EXPECT_EQ(WideText(wcName), u"fine.scr");
    GetProfileName(call, wcName, 7);
    EXPECT_EQ(WideText(wcName), u"Coated");
}

TEST_F(PrinterStoreTest, SavedPapersComeFromTheUsersFileWhenThereIsOne)
{
    const std::string two =
        "[CustomSizes]\r\nNumCustomSizes=2\r\n"
        "CustomName0=A\r\nCustomWidth0=10000\r\nCustomLength0=15000\r\nCustomMetric0=1\r\n"
        "CustomName1=B\r\nCustomWidth1=20009\r\nCustomLength1=30000\r\nCustomMetric1=0\r\n";
    auto Saved = [this](std::string* pNames = nullptr) {
        PrinterCall call(hPrinter);
        OwnedBlock<PaperSizeRow> pRows;
        i32 nRows = GetSavedPapers(call, nullptr, &pRows);
        for (i32 i = 0; pNames && i < nRows; i++) {
            *pNames += Narrow(pRows.get()[i].wcName) + " ";
        }
        return nRows;
    };
    EXPECT_EQ(Saved(), 0);
    PutFile(u"C:\\drv\\qa.ini", two);
    std::string names;
    EXPECT_EQ(Saved(&names), 2);
    EXPECT_EQ(names, "A B ");
    WideText tcUser = Widen(SettingsPath(u"mine.ini"));
    EXPECT_EQ(Saved(), 2) << "named, but not there";
    PutFile(tcUser, "[PrinterSettings]\r\nCopies=1\r\n");
    EXPECT_EQ(Saved(), 0) << "the file decides, not its section";
    PutFile(tcUser, "[CustomSizes]\r\nNumCustomSizes=1\r\n"
                    "CustomName0=Mine\r\nCustomWidth0=1\r\nCustomLength0=1\r\nCustomMetric0=1\r\n");
    names.clear();
    EXPECT_EQ(Saved(&names), 1);
    EXPECT_EQ(names, "Mine ");
    SettingsPath(u"..\\mine.ini");
    EXPECT_EQ(Saved(), 2) << "a name that is none counts as no file";
}
