/* What each question costs: asking the spooler and the disk is what a capability call pays for, so the
   numbers below may fall but not grow. */
#include <filesystem>
#include <set>

#include "description/printer_store.h"
#include "hosted/open_files.h"
#include "support/data_file.h"
#include "support/sheet_machine.h"

namespace {

class PlatformCallsTest : public MachineTest {
  protected:
    void AskOnce(WORD wQuestion, bool bBuffer = true)
    {
        Bytes buffer(65536);
        ResetCallCounts();
        DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, bBuffer ? buffer.data() : nullptr,
                              nullptr);
    }
};

} // namespace

/* A row of question_calls.txt has a question's allowance: what stands there may fall but not grow. */
TEST_F(PlatformCallsTest, EveryQuestionMakesNoMoreThanItsCalls)
{
    constexpr CallId aCounted[] = {CALL_GetPrinterW, CALL_GetPrinterDriverW, CALL_GetPrinterDataW,
                                   CALL_CreateFileW, CALL_ReadFile,          CALL_GetProfileStringW,
                                   CALL_EnumFormsW,  CALL_LoadLibraryExW,    CALL_HeapAlloc};
    /* There is no settings file of the user to look for, and a question changes nothing. */
    constexpr CallId aNever[] = {CALL_OpenPrinterW,       CALL_GetComputerNameW, CALL_GetEnvironmentVariableW,
                                 CALL_GetFileAttributesW, CALL_SetPrinterDataW,  CALL_CreateDirectoryW,
                                 CALL_SetFileAttributesW, CALL_WriteFile,        CALL_RegSetValueExW};
    std::set<std::pair<std::string, int>> asked;
    for (const DataRow& row : ReadRows("question_calls.txt")) {
        ASSERT_EQ(row.size(), 2 + std::size(aCounted));
        StartMachine();
        AddSample(row[0]);
        AddMachineForm(u"Card", FORM_USER, 100000, 150000);
        for (WORD wQuestion : ToNumbers<WORD>(row[1])) {
            SCOPED_TRACE(row[0] + ", " + QuestionName(wQuestion));
            AskOnce(wQuestion);
            i64 lAllowed = 0;
            for (size_t i = 0; i < std::size(aCounted); i++) {
                const i64 lMost = ToNumber(row[2 + i]);
                const CallId other = aCounted[i] == CALL_ReadFile            ? CALL_SetFilePointerEx
                                     : aCounted[i] == CALL_GetProfileStringW ? CALL_GetProfileIntW
                                                                             : aCounted[i];
                EXPECT_LE(std::max(CallCount(aCounted[i]), CallCount(other)), lMost) << CallName(aCounted[i]);
                EXPECT_EQ(CallCount(aNever[i]), 0) << CallName(aNever[i]);
                lAllowed += lMost;
            }
            EXPECT_TRUE(lAllowed > 0 || CallCount(ANY_CALL) == 0) << "a constant asks nobody";
            asked.insert({row[0], wQuestion});
        }
    }
    EXPECT_EQ(asked.size(), 2u * LAST_QUESTION) << "a question has no allowance";
}

TEST_F(PlatformCallsTest, CountingReadsNoTextAndLoadsNoLibrary)
{
    for (const char* cSample : {"T410A", "K100"}) {
        AddSample(cSample);
        for (WORD wQuestion : std::initializer_list<WORD>{DC_PAPERNAMES, DC_BINNAMES, DC_MEDIATYPENAMES}) {
            AskOnce(wQuestion, false);
            EXPECT_LE(CallCount(CALL_ReadFile), 4) << QuestionName(wQuestion);
            EXPECT_EQ(CallCount(CALL_LoadLibraryExW), 0) << QuestionName(wQuestion);
        }
    }
}

TEST_F(PlatformCallsTest, AStoredSetAsksNoSettingsFile)
{
    AddSample("T410A");
    SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, Bytes(16, 1));
    for (WORD wQuestion : std::initializer_list<WORD>{DC_FIELDS, DC_BINS, DC_DUPLEX, DC_STAPLE}) {
        AskOnce(wQuestion);
        EXPECT_EQ(CallCount(CALL_CreateFileW), 1) << QuestionName(wQuestion) << ": the description";
        EXPECT_LE(CallCount(CALL_GetPrinterDataW), 2) << QuestionName(wQuestion);
    }
}

namespace {

class SettingsFileOpens : public SheetTest {
  protected:
    void SetUp() override
    {
        SheetTest::SetUp();
        AddSample("K100");
    }

    std::string UserFile()
    {
        WCHAR tcPath[PATH_CHARS];
        PrinterCall call(hPrinter);
        EXPECT_TRUE(GetUserSettingsPath(call, tcPath));
        return HostPath(tcPath).native();
    }

    /* Opens of the driver's .INI file and of the user's settings file since the counts were cleared. */
    std::pair<int, int> Opens()
    {
        const auto counts = OpenCounts();
        int nDriver = 0;
        const std::string userFile = UserFile();
        for (const auto& [host, nOpens] : counts) {
            std::string ending = host.size() < 4 ? "" : host.substr(host.size() - 4);
            nDriver += host != userFile && (ending == ".ini" || ending == ".INI") ? nOpens : 0;
        }
        return {nDriver, counts.contains(userFile) ? counts.at(userFile) : 0};
    }
};

} // namespace

TEST_F(SettingsFileOpens, OnceACallAndAgainForEachWriting)
{
    using Pair = std::pair<int, int>;
    ResetCallCounts();
    ASSERT_TRUE(DrvPrinterEvent(wcPrinter.data(), 3, 0, 0));
    EXPECT_EQ(Opens(), Pair(1, 2)) << "papers and watermarks are written into the file that was made";

    BYTE abRows[8192];
    for (WORD wQuestion : {DC_PAPERS, DC_PAPERSIZE}) {
        ResetCallCounts();
        EXPECT_GT(DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, abRows, nullptr), 0u);
        EXPECT_EQ(Opens(), Pair(0, 1)) << QuestionName(wQuestion);
    }

    ResetCallCounts();
    ASSERT_TRUE(IsSheetOpen(OpenDocument()));
    EXPECT_EQ(Opens(), Pair(0, 1)) << "papers, watermarks and names are in one file";
    Close();
    std::filesystem::remove(UserFile());
    ResetCallCounts();
    ASSERT_TRUE(IsSheetOpen(OpenDocument()));
    EXPECT_EQ(Opens(), Pair(1, 3)) << "read once more than it was written into";
}
