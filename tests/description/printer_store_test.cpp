/* Stored values of the printer, the installed set, and the user's folder and settings file. */
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "support/machine_script.h"

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
};

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
}

class StoreScripts : public Scripted<MachineTest> {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(FourWords().Build());
    }

    /* "~" stands for the makers folder of the user. */
    static std::string Short(int bNamed, const WCHAR* tcPath)
    {
        const std::string path = Narrow(tcPath);
        EXPECT_EQ(bNamed, !path.empty());
        EXPECT_EQ(tcPath[PATH_CHARS], u'~');
        return path.starts_with(FOLDER) ? "~" + path.substr(FOLDER.size()) : path;
    }
    std::string Path(int (*find)(PrinterCall&, WCHAR*))
    {
        PrinterCall call(hPrinter);
        WCHAR tcPath[PATH_CHARS + 1] = {};
        tcPath[PATH_CHARS] = u'~';
        const int bNamed = find(call, tcPath);
        return Short(bNamed, tcPath);
    }
    std::string Settings(const Args& w)
    {
        SetPrinterText(wcPrinter, u"Settings", WideWord(w[0]));
        return Path(GetUserSettingsPath);
    }
    /* By a call that goes on until "next-call". */
    static std::string Name(PrinterCall& lasting, void (*read)(PrinterCall&, WCHAR*, int), int cch)
    {
        WCHAR wcName[16] = u"~";
        read(lasting, wcName, cch);
        return Narrow(wcName);
    }
    std::string SavedPapers()
    {
        PrinterCall now(hPrinter);
        OwnedBlock<PaperSizeRow> pRows;
        std::string names;
        for (i32 i = 0, nRows = GetSavedPapers(now, nullptr, &pRows); i < nRows; i++) {
            names += Narrow(pRows.get()[i].wcName) + " ";
        }
        return names;
    }
    u32 FontPairs()
    {
        PrinterCall now(hPrinter);
        OwnedBlock<u8> pPairs;
        const u32 cb = GetFontSubs(now, &pPairs);
        EXPECT_EQ(pPairs != nullptr, cb != 0);
        return cb;
    }
    /* A user's path below the folder. */
    static WideText Below(const std::string& word) { return Widen(FOLDER) + WideWord(word); }

    static inline const std::string FOLDER = "C:\\Users\\worker\\Application Data\\Corvantis Optics";
};

SCRIPTED(StoreScripts, FindTheUsersFolderAndFile, "printer_store.txt")
{
    PrinterCall lasting(hPrinter);
    PlayBy({
        VERB("folder", Path(GetUserFolder)),
        VERB("settings", Settings(w)),
        VERB("is-folder", std::filesystem::is_directory(HostPath(Below(w[0])))),
        DEED("put-user", PutFile(Below(w[0]), Unescaped(w[1]))),
        VERB("papers", SavedPapers()),
        VERB("font-pairs", FontPairs()),
        DEED("next-call", ForgetUserSettings(lasting)),
        VERB("profile-name", Name(lasting, GetProfileName, Int(w, 0))),
        VERB("screen-name", Name(lasting, GetScreenName, Int(w, 0))),
        DEED("set-name", SetSettingsFileName(lasting, WideWord(w[0]).c_str())),
        VERB("name",
             Name(
                 lasting, [](PrinterCall& of, WCHAR* wc, int cch) { GetSettingsFileName(of, wc, cch); },
                 Int(w, 0))),
    });
}
