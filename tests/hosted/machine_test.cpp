/* The hosted machine itself: what it counts, what it fails, what it holds, and how it lies. A fault loop is
   worth what this harness is worth. */
#include "hosted/standin.h"
#include "support/sample_machine.h"

namespace {

class HostedMachine : public MachineTest {
  protected:
    /* Asks for DRIVER_INFO_3 with the given room. */
    bool AskDriver(Bytes* pBuffer, DWORD* pcbNeeded)
    {
        *pcbNeeded = 0;
        return GetPrinterDriverW(hPrinter, nullptr, 3, pBuffer->data(), static_cast<DWORD>(pBuffer->size()),
                                 pcbNeeded) != 0;
    }

    DWORD ReadValue(const WCHAR* wcValue, Bytes* pBuffer, DWORD* pcbNeeded)
    {
        DWORD dwType = 0;
        return GetPrinterDataW(hPrinter, const_cast<LPWSTR>(wcValue), &dwType, pBuffer->data(),
                               static_cast<DWORD>(pBuffer->size()), pcbNeeded);
    }
};

void* TakeBlock(SIZE_T cb = 16)
{
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, cb);
}

void GiveBlock(void* pBlock)
{
    if (pBlock) {
        HeapFree(GetProcessHeap(), 0, pBlock);
    }
}

} // namespace

TEST_F(HostedMachine, FailsTheNthCallOnceOrFromThere)
{
    struct Case {
        int nTh;
        FaultMode mode;
        const char* cOutcome; /* of five allocations: + or - */
        int nFailed;
    };
    for (Case row :
         {Case{1, FAIL_ONCE, "-++++", 1}, Case{3, FAIL_ONCE, "++-++", 1}, Case{5, FAIL_ONCE, "++++-", 1},
          Case{6, FAIL_ONCE, "+++++", 0}, Case{1, FAIL_FROM_THERE, "-----", 5},
          Case{4, FAIL_FROM_THERE, "+++--", 2}, Case{6, FAIL_FROM_THERE, "+++++", 0}}) {
        std::string outcome;
        FailCall(CALL_HeapAlloc, row.nTh, row.mode);
        for (int i = 0; i < 5; i++) {
            GetUserDefaultLangID(); /* other calls do not count */
            SetHostedError(0);
            void* pBlock = TakeBlock();
            outcome += pBlock ? '+' : '-';
            EXPECT_EQ(GetLastError(), pBlock ? 0 : ERROR_NOT_ENOUGH_MEMORY);
            GiveBlock(pBlock);
        }
        EXPECT_EQ(outcome, row.cOutcome);
        EXPECT_EQ(StopFaults(), row.nFailed);
        void* pBlock = TakeBlock();
        EXPECT_NE(pBlock, nullptr) << "stopped";
        GiveBlock(pBlock);
    }
}

TEST_F(HostedMachine, AnyCallCountsAllButThoseThatCannotFail)
{
    FailCall(ANY_CALL, 3);
    EXPECT_NE(GetProcessHeap(), nullptr);                                 /* not counted */
    EXPECT_EQ(GetUserDefaultLangID(), 0x0409);                            /* 1 */
    EXPECT_EQ(GetLastError(), 0u);                                        /* not counted */
    EXPECT_NE(GetVersion(), 0u);                                          /* 2 */
    EXPECT_EQ(GetFileAttributesW(u"C:\\Users"), INVALID_FILE_ATTRIBUTES); /* 3 */
    EXPECT_EQ(GetLastError(), ERROR_GEN_FAILURE);
    EXPECT_EQ(GetFileAttributesW(u"C:\\Users"), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(StopFaults(), 1);

    /* Each call fails with the value of its row. */
    HKEY hKey;
    WCHAR wcRoom[8] = u"~";
    FailCall(ANY_CALL, 1, FAIL_FROM_THERE);
    EXPECT_EQ(CreateFileW(u"C:\\x", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"X", 0, KEY_READ, &hKey),
              static_cast<LSTATUS>(ERROR_GEN_FAILURE));
    EXPECT_EQ(LoadLibraryExW(u"C:\\x.dll", nullptr, 2), nullptr);
    EXPECT_EQ(GetProfileStringW(u"intl", u"iMeasure", u"default", wcRoom, 8), 0u);
    EXPECT_EQ(wcRoom[0], u'~') << "a failed call writes nothing";
    EXPECT_EQ(StopFaults(), 4);
}

TEST_F(HostedMachine, AReleaseThatFailsStillReleases)
{
    AddTestPrinter(Bytes());
    AddKey(u"HKLM\\K");
    WCHAR wcName[] = u"Test";
    HANDLE hOpened = nullptr;
    HKEY hKey = nullptr;
    ASSERT_TRUE(OpenPrinterW(wcName, &hOpened, nullptr));
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"K", 0, KEY_READ, &hKey), 0);
    HANDLE hFile =
        CreateFileW(u"C:\\drv\\txt.dll", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    HMODULE hModule = LoadLibraryExW(u"C:\\drv\\txt.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    void* pBlock = TakeBlock();
    EXPECT_EQ(CountLive(), (LiveCounts{1, 1, 2, 1, 1}));

    FailCall(ANY_CALL, 1, FAIL_FROM_THERE);
    EXPECT_EQ(HeapFree(GetProcessHeap(), 0, pBlock), 0);
    EXPECT_EQ(CloseHandle(hFile), 0);
    EXPECT_EQ(ClosePrinter(hOpened), 0);
    EXPECT_NE(RegCloseKey(hKey), 0);
    EXPECT_EQ(FreeLibrary(hModule), 0);
    EXPECT_EQ(StopFaults(), 5);
    EXPECT_EQ(CountLive(), (LiveCounts{0, 0, 1, 0, 0}));

    /* What is not held cannot be given back. */
    EXPECT_EQ(CloseHandle(hFile) + ClosePrinter(hOpened) + FreeLibrary(hModule), 0);
    EXPECT_NE(RegCloseKey(hKey), 0);
    EXPECT_EQ(CountLive(), (LiveCounts{0, 0, 1, 0, 0}));
}

TEST_F(HostedMachine, CountsCallsAndThePeak)
{
    ResetCallCounts();
    void* pFirst = TakeBlock(100);
    GiveBlock(TakeBlock(1000));
    void* pLast = TakeBlock(10);
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 3);
    EXPECT_EQ(CallCount(CALL_HeapFree), 1);
    EXPECT_EQ(CallCount(ANY_CALL), 8); /* GetProcessHeap four times */
    EXPECT_EQ(PeakBlockBytes(), 1100u);
    ResetCallCounts();
    EXPECT_EQ(CallCount(ANY_CALL), 0);
    EXPECT_EQ(PeakBlockBytes(), 110u);
    FailCall(CALL_HeapAlloc, 1);
    EXPECT_EQ(TakeBlock(), nullptr);
    StopFaults();
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 1) << "failed calls count";
    GiveBlock(pFirst);
    GiveBlock(pLast);
    EXPECT_STREQ(CallName(CALL_GetPrinterDriverW), "GetPrinterDriverW");

    u8* pDirty = static_cast<u8*>(HeapAlloc(GetProcessHeap(), 0, 4));
    EXPECT_NE(pDirty[0], 0) << "a block that was not asked for zeroed is not zero";
    GiveBlock(pDirty);
}

TEST_F(HostedMachine, TheSpoolersStructuresAreLaidIntoTheCallersRoom)
{
    AddTestPrinter(Bytes());
    Bytes buffer(4, 0xEE);
    DWORD cbNeeded;
    EXPECT_FALSE(AskDriver(&buffer, &cbNeeded));
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(buffer, Bytes(4, 0xEE));
    DWORD cbAll = cbNeeded;
    ASSERT_GT(cbAll, sizeof(DRIVER_INFO_3W));
    buffer.assign(cbAll - 1, 0);
    EXPECT_FALSE(AskDriver(&buffer, &cbNeeded));
    EXPECT_EQ(cbNeeded, cbAll);
    buffer.assign(cbAll, 0);
    ASSERT_TRUE(AskDriver(&buffer, &cbNeeded));
    const DRIVER_INFO_3W* pInfo = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data());
    EXPECT_EQ(WideText(pInfo->pDriverPath), u"C:\\drv\\qrnd.dll");
    EXPECT_EQ(WideText(pInfo->pDependentFiles, 30), WideText(u"C:\\drv\\qa.xpi\0C:\\drv\\qa.ini\0C:", 30));
    for (const WCHAR* wcText : {pInfo->pDriverPath, pInfo->pConfigFile, pInfo->pDataFile, pInfo->pHelpFile,
                                pInfo->pDependentFiles}) {
        const u8* pText = reinterpret_cast<const u8*>(wcText);
        EXPECT_TRUE(pText >= buffer.data() + sizeof *pInfo && pText < buffer.data() + cbAll);
    }
    EXPECT_FALSE(GetPrinterDriverW(INVALID_HANDLE_VALUE, nullptr, 3, buffer.data(), cbAll, &cbNeeded));
    EXPECT_FALSE(GetPrinterDriverW(hPrinter, nullptr, 2, buffer.data(), cbAll, &cbNeeded));
}

TEST_F(HostedMachine, LiesOfTheSpooler)
{
    AddTestPrinter(Bytes());
    SetPrinterText(u"Test", u"Value", u"abc");
    Bytes buffer(4096);
    DWORD cbNeeded, cbHonest;
    ASSERT_TRUE(AskDriver(&buffer, &cbHonest));
    const DRIVER_INFO_3W* pInfo = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data());

    TellLies(LIE_NULL_MEMBERS);
    ASSERT_TRUE(AskDriver(&buffer, &cbNeeded));
    EXPECT_TRUE(!pInfo->pDriverPath && !pInfo->pDependentFiles && !pInfo->pDataFile);
    TellLies(LIE_UNTERMINATED);
    ASSERT_TRUE(AskDriver(&buffer, &cbNeeded));
    EXPECT_TRUE(WideText(pInfo->pDriverPath).starts_with(u"C:\\drv\\qrnd.dllX"))
        << "runs on into the next text";
    TellLies(LIE_HUGE);
    EXPECT_FALSE(AskDriver(&buffer, &cbNeeded));
    EXPECT_EQ(cbNeeded, 0xFFFFFFF0u);
    TellLies(LIE_GROWS);
    DWORD cbFirst, cbSecond;
    Bytes small(8);
    EXPECT_FALSE(AskDriver(&small, &cbFirst));
    small.resize(cbFirst);
    EXPECT_FALSE(AskDriver(&small, &cbSecond)) << "what the first asking said is too little for the second";
    EXPECT_GT(cbSecond, cbFirst);
    EXPECT_GT(cbFirst, cbHonest);

    Bytes value(8);
    TellLies(LIE_SHORT);
    EXPECT_EQ(ReadValue(u"Value", &value, &cbNeeded), ERROR_SUCCESS);
    EXPECT_EQ(cbNeeded, 4u);
    TellLies(LIE_UNTERMINATED);
    EXPECT_EQ(ReadValue(u"Value", &value, &cbNeeded), ERROR_SUCCESS);
    EXPECT_EQ(value, Bytes(8, 'A'));
    TellLies(LIE_GROWS);
    EXPECT_EQ(ReadValue(u"Value", &value, &cbNeeded), ERROR_MORE_DATA);
    EXPECT_EQ(cbNeeded, 72u);

    TellLies(LIE_NULL_MEMBERS, CALL_GetPrinterW); /* for one call alone */
    ASSERT_TRUE(AskDriver(&buffer, &cbNeeded));
    EXPECT_TRUE(pInfo->pDriverPath);
    TellLies(LIE_NONE);
    EXPECT_EQ(ReadValue(u"Value", &value, &cbNeeded), ERROR_SUCCESS);
    EXPECT_EQ(value, (Bytes{'a', 0, 'b', 0, 'c', 0, 0, 0}));
}

TEST_F(HostedMachine, StoredValuesSizesAndTypes)
{
    AddTestPrinter(Bytes());
    SetPrinterValue(u"Test", u"Value", REG_BINARY, {1, 2, 3});
    Bytes room(2, 0xEE);
    DWORD cbNeeded = 0, dwType = 0;
    EXPECT_EQ(ReadValue(u"Value", &room, &cbNeeded), ERROR_MORE_DATA);
    EXPECT_EQ(cbNeeded, 3u);
    EXPECT_EQ(room, Bytes(2, 0xEE));
    room.resize(5, 0xEE);
    EXPECT_EQ(ReadValue(u"VALUE", &room, &cbNeeded), ERROR_SUCCESS);
    EXPECT_EQ(room, (Bytes{1, 2, 3, 0xEE, 0xEE})) << "nothing is written behind the value";
    EXPECT_EQ(ReadValue(u"Other", &room, &cbNeeded), ERROR_FILE_NOT_FOUND);
    u8 bNew = 7;
    EXPECT_EQ(SetPrinterDataW(hPrinter, const_cast<LPWSTR>(u"value"), REG_DWORD, &bNew, 1), ERROR_SUCCESS);
    ASSERT_TRUE(GetPrinterValue(u"TEST", u"Value", &dwType, &room));
    EXPECT_EQ(dwType, REG_DWORD);
    EXPECT_EQ(room, Bytes(1, 7));
    DropPrinterValue(u"Test", u"Value");
    EXPECT_FALSE(GetPrinterValue(u"Test", u"Value", &dwType, &room));
}

TEST_F(HostedMachine, PrintersOpenByNameAndAccess)
{
    AddTestPrinter(Bytes());
    size_t nBefore = OpenedPrinters().size();
    HANDLE hOpened = nullptr;
    PRINTER_DEFAULTSW full = {}, use = {};
    full.DesiredAccess = PRINTER_ALL_ACCESS;
    use.DesiredAccess = PRINTER_ACCESS_USE;
    WCHAR wcOwn[] = u"\\\\ANY\\test", wcOther[] = u"Other";
    DenyPrinterAccess(PRINTER_ALL_ACCESS, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(OpenPrinterW(wcOwn, &hOpened, &full));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    ASSERT_TRUE(OpenPrinterW(wcOwn, &hOpened, &use));
    EXPECT_TRUE(ClosePrinter(hOpened));
    DenyPrinterAccess(0, 0);
    ASSERT_TRUE(OpenPrinterW(wcOwn, &hOpened, &full));
    EXPECT_TRUE(ClosePrinter(hOpened));
    EXPECT_FALSE(OpenPrinterW(wcOther, &hOpened, &full));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PRINTER_NAME);
    EXPECT_EQ((std::vector<std::string>(OpenedPrinters().begin() + static_cast<i64>(nBefore),
                                        OpenedPrinters().end())),
              (std::vector<std::string>{"\\\\ANY\\test|F000C", "\\\\ANY\\test|8", "\\\\ANY\\test|F000C",
                                        "Other|F000C"}));
}

TEST_F(HostedMachine, KeysAreOpenedNeverMade)
{
    HKEY hKey = nullptr;
    AddKey(u"HKLM\\SYSTEM\\A\\B");
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"system\\a", 0, KEY_SET_VALUE, &hKey), 0)
        << "there, since one below it is";
    EXPECT_EQ(RegCloseKey(hKey), 0);
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\A\\C", 0, KEY_SET_VALUE, &hKey), 0);
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\A\\", 0, KEY_SET_VALUE, &hKey) != 0
                  ? 0
                  : RegCloseKey(hKey),
              1);
    EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, u"SYSTEM\\A", 0, KEY_SET_VALUE, &hKey), 0);
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYST", 0, KEY_SET_VALUE, &hKey), 0);
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"SYSTEM\\A\\B", 0, KEY_SET_VALUE, &hKey), 0);
    u8 bValue = 3;
    EXPECT_EQ(RegSetValueExW(hKey, u"V", 0, REG_BINARY, &bValue, 1), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    EXPECT_NE(RegSetValueExW(hKey, u"V", 0, REG_BINARY, &bValue, 1), 0) << "closed";
    DWORD dwType = 0;
    Bytes bytes;
    ASSERT_TRUE(GetKeyValue(u"hklm\\system\\a\\b", u"v", &dwType, &bytes));
    EXPECT_EQ(bytes, Bytes(1, 3));
}

TEST_F(HostedMachine, StartingAnewLeavesNothingBehind)
{
    std::filesystem::path oldRoot = machineRoot;
    PutFile(u"C:\\left.txt", "x");
    SetPrinterText(u"Left", u"V", u"x");
    AddKey(u"HKLM\\Left");
    AddMachineForm(u"Left", FORM_USER, 1, 1);
    SetUserLanguage(0x0407);
    SetLocaleValue(u"iMeasure", u"0");
    SetComputerName(u"OTHER");
    SetSystemVersion(5, 0);
    SetCodePage(932);
    SetEnvironmentValue(u"USERPROFILE", u"D:\\");
    DenyPrinterAccess(PRINTER_ALL_ACCESS, 5);
    TakeBlock();
    FailCall(ANY_CALL, 1, FAIL_FROM_THERE);
    TellLies(LIE_HUGE);

    StartMachine();
    EXPECT_FALSE(std::filesystem::exists(oldRoot));
    EXPECT_TRUE(std::filesystem::exists(machineRoot));
    EXPECT_EQ(CountLive(), LiveCounts{});
    EXPECT_EQ(CallCount(ANY_CALL), 0);
    EXPECT_FALSE(HasFile(u"C:\\left.txt"));
    EXPECT_EQ(GetUserDefaultLangID(), 0x0409);
    EXPECT_EQ(GetVersion() & 0xFFFF, 10u);
    EXPECT_EQ(GetProfileIntW(u"intl", u"iMeasure", 7), 1u);
    WCHAR wcRoom[32];
    DWORD cch = 32;
    EXPECT_TRUE(GetComputerNameW(wcRoom, &cch));
    EXPECT_EQ(WideText(wcRoom), u"WORKPC");
    EXPECT_EQ(MultiByteToWideChar(0, 0, "\x82\xA0", 2, wcRoom, 32), 2)
        << "two characters of 1252, not one of 932";
    EXPECT_EQ(GetEnvironmentVariableW(u"userprofile", wcRoom, 32), 15u);
    WCHAR wcLeft[] = u"Left";
    HANDLE hOpened = nullptr;
    HKEY hKey = nullptr;
    EXPECT_FALSE(OpenPrinterW(wcLeft, &hOpened, nullptr));
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Left", 0, KEY_READ, &hKey), 0);
    AddTestPrinter(Bytes());
    DWORD cbNeeded = 0, nForms = 7;
    EXPECT_TRUE(EnumFormsW(hPrinter, 1, nullptr, 0, &cbNeeded, &nForms));
    EXPECT_EQ(nForms, 0u);
}
