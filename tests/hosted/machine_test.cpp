/* The hosted machine itself: what it counts, what it fails, what it holds, and how it lies. A fault loop is
   worth what this harness is worth. */
#include <algorithm>

#include "description/string_ids.h"
#include "hosted/standin.h"
#include "support/machine_script.h"

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
    };
    for (Case row : {Case{1, FAIL_ONCE, "-++++"}, Case{5, FAIL_ONCE, "++++-"}, Case{6, FAIL_ONCE, "+++++"},
                     Case{1, FAIL_FROM_THERE, "-----"}, Case{4, FAIL_FROM_THERE, "+++--"}}) {
        std::string outcome;
        FailCall(CALL_HeapAlloc, row.nTh, row.mode);
        for (int i = 0; i < 6; i++) {
            GetUserDefaultLangID(); /* other calls do not count */
            SetHostedError(0);
            if (i == 5) {
                EXPECT_EQ(StopFaults(), std::count(outcome.begin(), outcome.end(), '-'));
            }
            void* pBlock = TakeBlock();
            outcome += pBlock ? '+' : '-';
            EXPECT_EQ(GetLastError(), pBlock ? 0 : ERROR_NOT_ENOUGH_MEMORY);
            GiveBlock(pBlock);
        }
        EXPECT_EQ(outcome, row.cOutcome + std::string("+"));
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
    u8* pDirty = static_cast<u8*>(HeapAlloc(GetProcessHeap(), 0, 10));
    EXPECT_NE(pDirty[0], 0) << "a block that was not asked for zeroed is not zero";
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 3);
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
    GiveBlock(pDirty);
    EXPECT_STREQ(CallName(CALL_GetPrinterDriverW), "GetPrinterDriverW");
}

class HostedLies : public Scripted<HostedMachine> {
  protected:
    /* The driver's path in a room of so many bytes, or in just the room that the first asking said. */
    std::string Driver(DWORD cbRoom)
    {
        DWORD cbNeeded = 0;
        Bytes buffer(8);
        if (cbRoom == 0) {
            EXPECT_FALSE(AskDriver(&buffer, &cbRoom));
        }
        buffer.assign(cbRoom, 0);
        if (!AskDriver(&buffer, &cbNeeded)) {
            return cbRoom == 4096 ? "needs " + std::to_string(cbNeeded) : "needs more";
        }
        const auto* pInfo = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data());
        EXPECT_TRUE(pInfo->pDriverPath || (!pInfo->pDependentFiles && !pInfo->pDataFile));
        return pInfo->pDriverPath ? Narrow(pInfo->pDriverPath).substr(0, 16) : "null";
    }
    /* Code, bytes needed, the first bytes as letters. */
    std::string Stored()
    {
        Bytes value(8);
        DWORD cbNeeded = 0;
        std::string text = std::to_string(ReadValue(u"Value", &value, &cbNeeded));
        text += " " + std::to_string(cbNeeded) + " ";
        for (u8 bByte : value) {
            text += bByte ? static_cast<char>(bByte) : '.';
        }
        return text;
    }
    static std::string File()
    {
        const HANDLE hFile =
            CreateFileW(u"C:\\a.txt", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        char cBytes[8];
        DWORD cbRead = 0;
        LARGE_INTEGER size = {};
        EXPECT_TRUE(GetFileSizeEx(hFile, &size) && ReadFile(hFile, cBytes, 8, &cbRead, nullptr));
        CloseHandle(hFile);
        return std::to_string(cbRead) + " of " + std::to_string(size.QuadPart);
    }
    static std::string Library()
    {
        const HMODULE hModule = LoadLibraryExW(u"C:\\drv\\txt.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE);
        WCHAR wcText[12] = {};
        const int cch = LoadStringW(hModule, IDS_TITLE_LAYOUT, wcText, 10);
        EXPECT_EQ(wcText[10], 0) << "no lie goes beyond the room";
        FreeLibrary(hModule);
        return (cch > 0x7FFF0000 ? "huge" : std::to_string(cch)) + " " + Narrow(wcText);
    }
};

SCRIPTED(HostedLies, AreToldAsWritten, "hosted_lies.txt")
{
    AddTestPrinter(Bytes());
    PlayBy({VERB("driver-info", Driver(w.empty() ? 0 : static_cast<DWORD>(Int(w, 0)))),
            VERB("stored-value", Stored()), VERB("file", File()), VERB("string", Library()),
            VERB("run", LoadLibraryExW(u"C:\\drv\\txt.dll", nullptr, 0) != nullptr)});
}

/* Windows ends paths at 259 characters and folders at 247; Wine takes longer ones. */
TEST_F(HostedMachine, PathsEndWhereThoseOfWindowsDo)
{
    const WideText tcLong = u"C:\\Users\\" + WideText(250, u'x');
    PutFile(tcLong, "x");
    EXPECT_EQ(GetFileAttributesW(tcLong.c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
    EXPECT_EQ(GetFileAttributesW((tcLong + u"x").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(CreateDirectoryW((u"C:\\Users\\" + WideText(239, u'y')).c_str(), nullptr));
    EXPECT_EQ(GetLastError(), ERROR_FILENAME_EXCED_RANGE);
    EXPECT_TRUE(CreateDirectoryW((u"C:\\Users\\" + WideText(238, u'y')).c_str(), nullptr));
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
    WCHAR wcRoom[32], wcLeft[] = u"Left";
    DWORD cch = 32, cbNeeded = 0, nForms = 7;
    EXPECT_TRUE(GetComputerNameW(wcRoom, &cch));
    EXPECT_EQ(WideText(wcRoom), u"WORKPC");
    EXPECT_EQ(MultiByteToWideChar(0, 0, "\x82\xA0", 2, wcRoom, 32), 2)
        << "two characters of 1252, not one of 932";
    EXPECT_EQ(GetEnvironmentVariableW(u"userprofile", wcRoom, 32), 15u);
    HANDLE hOpened = nullptr;
    HKEY hKey = nullptr;
    EXPECT_FALSE(OpenPrinterW(wcLeft, &hOpened, nullptr));
    EXPECT_NE(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Left", 0, KEY_READ, &hKey), 0);
    AddTestPrinter(Bytes());
    EXPECT_TRUE(EnumFormsW(hPrinter, 1, nullptr, 0, &cbNeeded, &nForms));
    EXPECT_EQ(nForms, 0u);
}
