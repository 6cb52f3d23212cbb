/* What each question costs: asking the spooler and the disk is what a capability call pays for, so the
   numbers below may fall but not grow. */
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "description/printer_store.h"
#include "hosted/open_files.h"
#include "support/sheet_machine.h"

namespace {

/* Calls that a question may make at most, on a printer whose installed set is not stored yet. */
struct Allowance {
    const char* cQuestions; /* numbers */
    int nPrinter, nDriver, nData, nOpen, nRead, nProfile, nForms, nLibrary, nBlocks;
};

/* A model is two reads, header and body, and the offsets of its fonts where it has a font page: the first
   sample. Texts are three more: base, offsets, bytes. The .INI file, where the installed set or saved papers come from
   it, is one open and one read, and three blocks: its bytes, its text, the index of a section. */
constexpr Allowance aT410A[] = {
    {"8 9 11 14 17 18 19 20 21 22 23 24 27", 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"29", 0, 0, 0, 0, 0, 1, 0, 0, 0},
    {"26 31", 1, 0, 0, 0, 0, 0, 0, 0, 1},
    {"4 5 10 13 15 25 32 33 35", 0, 1, 1, 1, 3, 0, 0, 0, 2},
    {"28", 0, 1, 2, 1, 3, 0, 0, 0, 2},
    {"1 6 7 30", 0, 1, 2, 2, 4, 0, 0, 0, 5},
    {"2 3", 0, 1, 2, 2, 4, 1, 1, 0, 7},
    {"16", 0, 1, 2, 2, 7, 1, 1, 0, 8},
    {"12", 0, 1, 2, 2, 10, 0, 0, 1, 6}, /* bins and media are two lists */
    {"34", 0, 1, 1, 1, 6, 0, 0, 1, 3},
};
constexpr Allowance aK100[] = {
    {"8 9 11 14 17 18 19 20 21 22 23 24 27", 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {"29", 0, 0, 0, 0, 0, 1, 0, 0, 0},
    {"26 31", 1, 0, 0, 0, 0, 0, 0, 0, 1},
    {"4 5 13 15 25 28 32 33 35", 0, 1, 1, 1, 2, 0, 0, 0, 2},
    {"10", 0, 1, 2, 1, 2, 0, 0, 0, 2}, /* and the spool folder */
    {"1 6 7 30", 0, 1, 2, 2, 3, 0, 0, 0, 5},
    {"2 3", 0, 1, 2, 2, 3, 1, 1, 0, 8},
    {"16", 0, 1, 2, 2, 6, 1, 1, 1, 9},
    {"12", 0, 1, 2, 2, 6, 0, 0, 0, 6},
    {"34", 0, 1, 1, 1, 5, 0, 0, 0, 3},
};

class PlatformCallsTest : public MachineTest {
  protected:
    void AskOnce(WORD wQuestion, bool bBuffer = true)
    {
        Bytes buffer(65536);
        ResetCallCounts();
        DrvDeviceCapabilities(hPrinter, wcPrinter.data(), wQuestion, bBuffer ? buffer.data() : nullptr,
                              nullptr);
    }

    void ExpectWithin(const Allowance& allowed, WORD wQuestion)
    {
        SCOPED_TRACE(QuestionName(wQuestion));
        AskOnce(wQuestion);
        EXPECT_LE(CallCount(CALL_GetPrinterW), allowed.nPrinter);
        EXPECT_LE(CallCount(CALL_GetPrinterDriverW), allowed.nDriver);
        EXPECT_LE(CallCount(CALL_GetPrinterDataW), allowed.nData);
        EXPECT_LE(CallCount(CALL_CreateFileW), allowed.nOpen);
        EXPECT_LE(CallCount(CALL_ReadFile), allowed.nRead);
        EXPECT_LE(CallCount(CALL_SetFilePointerEx), allowed.nRead);
        EXPECT_LE(CallCount(CALL_GetProfileIntW) + CallCount(CALL_GetProfileStringW), allowed.nProfile);
        EXPECT_LE(CallCount(CALL_EnumFormsW), allowed.nForms);
        EXPECT_LE(CallCount(CALL_LoadLibraryExW), allowed.nLibrary);
        EXPECT_LE(CallCount(CALL_HeapAlloc), allowed.nBlocks);
        EXPECT_EQ(CallCount(CALL_OpenPrinterW) + CallCount(CALL_GetComputerNameW), 0);
        EXPECT_EQ(CallCount(CALL_GetEnvironmentVariableW) + CallCount(CALL_GetFileAttributesW), 0)
            << "there is no settings file of the user to look for";
        EXPECT_EQ(CallCount(CALL_SetPrinterDataW) + CallCount(CALL_CreateDirectoryW) +
                      CallCount(CALL_SetFileAttributesW) + CallCount(CALL_WriteFile) +
                      CallCount(CALL_RegSetValueExW),
                  0)
            << "a question changes nothing";
        if (!allowed.nBlocks && !allowed.nProfile) {
            EXPECT_EQ(CallCount(ANY_CALL), 0) << "a constant asks nobody";
        }
    }

    template <size_t nRows> void ExpectAllWithin(const Allowance (&aAllowed)[nRows])
    {
        std::set<int> asked;
        for (const Allowance& allowed : aAllowed) {
            std::istringstream numbers(allowed.cQuestions);
            for (int nQuestion; numbers >> nQuestion;) {
                ExpectWithin(allowed, static_cast<WORD>(nQuestion));
                asked.insert(nQuestion);
            }
        }
        EXPECT_EQ(asked.size(), size_t{35}) << "a question has no allowance";
    }
};

} // namespace

TEST_F(PlatformCallsTest, EveryQuestionOnTheFullestSample)
{
    AddSample("T410A");
    AddMachineForm(u"Card", FORM_USER, 100000, 150000);
    ExpectAllWithin(aT410A);
}

TEST_F(PlatformCallsTest, EveryQuestionOnAnImagePrinterWithSavedPapers)
{
    AddSample("K100");
    AddMachineForm(u"Card", FORM_USER, 100000, 150000);
    ExpectAllWithin(aK100);
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

TEST_F(PlatformCallsTest, LongListsCostNoMoreCallsThanShortOnes)
{
    std::map<size_t, std::array<int, 4>> byLength;
    for (size_t nPapers : std::initializer_list<size_t>{2, 300}) {
        DescriptionBuilder builder;
        std::vector<PaperRow> rows;
        for (size_t i = 0; i < nPapers; i++) {
            rows.push_back(
                {builder.Text("Paper number " + std::to_string(i)), 9, 2100, 2970, 1, 0, 0, 0, {}});
        }
        rows.push_back({});
        builder.Table(8, rows);
        AddTestPrinter(builder.Build());
        AskOnce(DC_PAPERNAMES);
        byLength[nPapers] = {CallCount(CALL_ReadFile), CallCount(CALL_GetPrinterDriverW),
                             CallCount(CALL_GetPrinterDataW), CallCount(CALL_CreateFileW)};
        EXPECT_EQ(Ask(DC_PAPERNAMES).dwResult, nPapers);
        EXPECT_EQ(Texts(Ask(DC_PAPERNAMES)).back(), "Paper number " + std::to_string(nPapers - 1));
    }
    EXPECT_EQ(byLength[2], byLength[300]);
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
