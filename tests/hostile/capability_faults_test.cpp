/* The capability questions while the system fails or lies: every call that they make fails once, and from
   then on, at each of its turns; every call gives each kind of false answer. */
#include <set>

#include "support/data_file.h"
#include "support/sample_machine.h"
#include "support/sweep_totals.h"

namespace {

[[maybe_unused]] const auto* const pTotals = ExpectTotals(16000, 5000, 0);

constexpr size_t ROOM = 256; /* rows; no list of the machines below comes near */

const std::string cSavedPapers =
    "[CustomSizes]\nNumCustomSizes=2\nCustomName0=Card\nCustomWidth0=20009\n"
    "CustomLength0=30000\nCustomMetric0=1\nCustomName1=Strip\nCustomWidth1=9000\n"
    "CustomLength1=50000\nCustomMetric1=0\n";

/* What honest machines answer to a question: words of their answers, and the longest list. */
struct Expected {
    std::set<std::string> words;
    DWORD dwMost = 0;
};

} // namespace

class CapabilityFaults : public MachineTest {
  protected:
    /* A sample with all that an answer can draw on: papers that the driver saved and the user, a form, memory, options
       that are installed; asked with its handle or by its name alone. */
    void Use(const std::string& sample, bool bByName = false)
    {
        StartMachine();
        AddSample(sample);
        PutFile(wcDriverFolder + Widen(sample) + u".INI",
                std::string_view("[DeviceInfo]\nOptions=11\nSources=3\nTotalMemory=96\n" + cSavedPapers));
        AddMachineForm(u"Built in", FORM_BUILTIN, 210000, 297000);
        AddMachineForm(u"Form", FORM_USER, 215905, 310000);
        SetPrinterText(wcPrinter, u"Settings", u"user.ini");
        PutFile(UserFile(), "[CustomSizes]\nNumCustomSizes=1\nCustomName0=Mine\nCustomWidth0=21000\n"
                            "CustomLength0=31000\nCustomMetric0=1\n");
        SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {98, 0, 0, 0});
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
        AddKey(wcKey);
        hAsked = bByName ? nullptr : hPrinter;
        wcAsked = u"\\\\WORKPC\\" + wcPrinter + u",LocalOnly";
    }

    void UseNoModel()
    {
        StartMachine();
        AddTestPrinter({}, "[DeviceInfo]\nOptions=11\n");
        std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
        hAsked = hPrinter;
        wcAsked = wcPrinter;
    }

    WideText UserFile() const
    {
        return u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\" + wcPrinter + u"\\user.ini";
    }

    GuardedAnswer AskRoomy(WORD wQuestion)
    {
        return AskGuarded(ByHandle(hAsked, wcAsked, wQuestion), wQuestion, ROOM);
    }

    static std::vector<std::string> WordsOf(WORD wQuestion, const GuardedAnswer& answer)
    {
        return AnswerWords({wQuestion, answer.dwFilled, answer.rows});
    }

    /* The answers of this machine, with the user's file and without, and those of capabilities.txt, in which there are
       machines without a description, without options, with another measure. What could not be had is empty or zero. */
    Expected Collect(WORD wQuestion)
    {
        Expected expected;
        expected.words = {"", " ", "0"};
        const auto collect = [&] {
            const GuardedAnswer answer = AskRoomy(wQuestion);
            EXPECT_EQ(answer.fault, "") << QuestionName(wQuestion);
            expected.dwMost = std::max(expected.dwMost, answer.dwFilled);
            for (const std::string& word : WordsOf(wQuestion, answer)) {
                expected.words.insert(word);
            }
        };
        collect();
        const Bytes file = GetFile(UserFile());
        std::filesystem::remove(HostPath(UserFile()));
        collect();
        PutFile(UserFile(), file);
        for (const DataRow& row : rows) {
            if (row[2] == QuestionName(wQuestion)) {
                const size_t nAt = row[3].find(':');
                const std::string words =
                    nAt == row[3].npos ? row[3] : row[3].substr(std::min(nAt + 2, row[3].size()));
                for (const std::string& word : SplitTrimmed(words, RowBytes(wQuestion) > 8 ? ';' : ' ')) {
                    expected.words.insert(
                        {word, " " + word}); /* names of bins have a blank before them at times */
                }
            }
        }
        return expected;
    }

    static std::string Judge(WORD wQuestion, const GuardedAnswer& answer, const Expected& expected)
    {
        std::string fault = answer.fault;
        if (RowBytes(wQuestion) && std::max(answer.dwCounted, answer.dwFilled) > expected.dwMost) {
            fault += "told " + std::to_string(answer.dwFilled) + " rows; ";
        }
        for (const std::string& word : WordsOf(wQuestion, answer)) {
            fault += expected.words.count(word) ? "" : "'" + word + "' is no machine's; ";
        }
        return fault;
    }

    /* A scenario for each question, whose answers are within what this machine gives with things missing. */
    int SweepQuestions()
    {
        int nFaults = 0;
        sweepBudget.Plan(4 * size_t{LAST_QUESTION});
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            const Expected expected = Collect(wQuestion);
            const GuardedAnswer honest = AskRoomy(wQuestion);
            GuardedAnswer last;
            nFaults += WalkFaults({{QuestionName(wQuestion),
                                    [&] {
                                        last = AskRoomy(wQuestion);
                                        return Judge(wQuestion, last, expected);
                                    }}},
                                  {ANY_CALL, CALL_HeapAlloc});
            EXPECT_EQ(last, honest) << QuestionName(wQuestion) << ": the run without a fault";
        }
        return nFaults;
    }

    /* Result: how many answers came out otherwise. */
    int SweepQuestionLies()
    {
        int nOthers = 0;
        std::vector<Scenario> scenarios;
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            scenarios.push_back({QuestionName(wQuestion), [&, wQuestion, honest = AskRoomy(wQuestion)] {
                                     const GuardedAnswer answer = AskRoomy(wQuestion);
                                     nOthers += answer != honest;
                                     return answer.fault;
                                 }});
        }
        sweepBudget.Plan(scenarios.size());
        WalkLies(scenarios);
        return nOthers;
    }

    /* Only a sweep through all of its steps meets so many. */
    static void ExpectMany(int nMet, int nLeast) { EXPECT_GT(nMet, sweepBudget.IsSet() ? 0 : nLeast); }

    const std::vector<DataRow> rows = ReadRows("capabilities.txt");
    const WideText wcKey = u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\Ostra K100";
    WideText wcAsked;
    HANDLE hAsked = nullptr;
};

TEST_F(CapabilityFaults, EveryCallFailsOnARichSample)
{
    Use("T410A");
    EXPECT_EQ(AskRoomy(DC_PAPERS).dwFilled, 16u) << "the list holds no saved paper or no form";
    ExpectMany(SweepQuestions(), 5000);
}

/* The spool folder is copied for a caller's own handle alone. */
TEST_F(CapabilityFaults, EveryCallFailsOnAnImageSample)
{
    for (bool bByName : {false, true}) {
        Use("K100", bByName);
        EXPECT_EQ(AskRoomy(DC_PAPERS).dwFilled, 6u) << "the list holds no saved paper or no form";
        ExpectMany(SweepQuestions(), 5000);
        DWORD dwType;
        Bytes folder;
        EXPECT_NE(GetKeyValue(wcKey, u"SpoolDirectory", &dwType, &folder), bByName);
        EXPECT_EQ(folder.size(), bByName ? 0 : 2 * (sizeof "D:\\Spool"));
    }
}

TEST_F(CapabilityFaults, EveryCallFailsWithoutAModel)
{
    UseNoModel();
    ExpectMany(SweepQuestions(), 1000);
}

TEST_F(CapabilityFaults, EveryCallLies)
{
    Use("T410A");
    ExpectMany(SweepQuestionLies(), 20);
    Use("K100", true);
    ExpectMany(SweepQuestionLies(), 20);
    UseNoModel();
    ExpectMany(SweepQuestionLies(), 20);
}

/* ---- the harness itself ---- */

class SweepCanary : public MachineTest {
  protected:
    /* Whether an asker that fills one row of 64 characters, of two that there is room for, is found at fault. */
    static bool IsAtFault(const std::function<DWORD(u8* pOut)>& fill)
    {
        return !AskGuarded([&](void* pOut) { return pOut ? fill(static_cast<u8*>(pOut)) : 1; }, DC_PAPERNAMES,
                           2)
                    .fault.empty();
    }
};

TEST_F(SweepCanary, SeesWhatAnAskerDoesWrong)
{
    const auto put = [](int nAt, char c, size_t cb) {
        return [=](u8* pOut) {
            std::memset(pOut + nAt, c, cb);
            return DWORD{1};
        };
    };
    EXPECT_FALSE(IsAtFault(put(0, 0, 128)));
    EXPECT_TRUE(IsAtFault(put(0, 0, 129)));
    EXPECT_TRUE(IsAtFault(put(-1, 0, 129)));
    EXPECT_TRUE(IsAtFault(put(0, 'x', 128))) << "no end";
    EXPECT_TRUE(IsAtFault([](u8*) { return 3; })) << "more rows than there is room for";
    EXPECT_TRUE(IsAtFault([](u8*) {
        for (clock_t begun = clock(); clock() - begun < CLOCKS_PER_SEC * 3 / 10;) {
        }
        return 0;
    }));
    EXPECT_TRUE(IsAtFault([](u8*) {
        HeapFree(GetProcessHeap(), 0, HeapAlloc(GetProcessHeap(), 0, CALL_BLOCK_BYTES + 1));
        return 0;
    }));
    EXPECT_TRUE(IsAtFault([](u8*) {
        SetLastError(0);
        return 0;
    }));
}

TEST_F(SweepCanary, SeesWhatABodyDoesWrong)
{
    std::vector<void*> kept;
    const auto allocate = [] { return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 8); };
    const auto release = [](void* pBlock) { return pBlock ? HeapFree(GetProcessHeap(), 0, pBlock) : 0; };
    const auto sweep = [](FaultMode mode, const std::function<std::string()>& body) {
        return SweepFaults(CALL_HeapAlloc, mode, 20, body);
    };
    const FaultSweep clean = sweep(FAIL_ONCE, [&] {
        release(allocate());
        return "";
    });
    EXPECT_EQ(clean.fault, "");
    EXPECT_EQ(clean.nFaults, 1);
    const FaultSweep leaking = sweep(FAIL_ONCE, [&] {
        void *pFirst = allocate(), *pSecond = allocate();
        pSecond ? static_cast<void>(release(pFirst)) : kept.push_back(pFirst);
        release(pSecond);
        return "";
    });
    EXPECT_NE(leaking.fault.find("number 2"), std::string::npos);
    for (void* pBlock : kept) {
        release(pBlock);
    }
    const FaultSweep endless = sweep(FAIL_ONCE, [&] {
        while (release(allocate())) {
        }
        return "";
    });
    EXPECT_NE(endless.fault.find("no end"), std::string::npos);
    const FaultSweep wrong = sweep(FAIL_FROM_THERE, [&] { return release(allocate()) ? "" : "no block"; });
    EXPECT_NE(wrong.fault.find("no block"), std::string::npos);
    EXPECT_NE(HoldsNothing([] {
                  std::setlocale(LC_ALL, "C.UTF-8");
                  return "";
              }),
              "");
    std::setlocale(LC_ALL, "C");
}
