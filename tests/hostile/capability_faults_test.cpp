/* The capability questions while the system fails or lies: every call that they make fails once, and from
   then on, at each of its turns; every call gives each kind of false answer; printer values have the wrong
   type or size. */
#include <set>

#include "support/sample_machine.h"
#include "support/sweep_totals.h"

namespace {

[[maybe_unused]] const auto* const pTotals = ExpectTotals(16000, 5000, 0);

constexpr size_t ROOM = 256; /* rows; no list of the machines below comes near */
constexpr int RUN_LIMIT = 2000;

/* What a machine may lack; what a failing call hides is one of these. */
enum Lacking : unsigned {
    NO_XPI = 1,
    EMPTY_XPI = 2,
    NO_INI = 4,
    NO_LIBRARIES = 8,
    METRIC = 16,
    NO_OPTIONS = 32, /* a stored installed set of zeros */
    NO_FORMS = 64,
    NO_SETTINGS = 128, /* no settings file of the user */
    NO_MEMORY_VALUE = 256,
    LACKING_END = 512
};

const std::string cSavedPapers =
    "[CustomSizes]\nNumCustomSizes=2\nCustomName0=Card\nCustomWidth0=20009\n"
    "CustomLength0=30000\nCustomMetric0=1\nCustomName1=Strip\nCustomWidth1=9000\n"
    "CustomLength1=50000\nCustomMetric1=0\n";

struct Expected {
    std::set<DWORD> results;
    std::set<Bytes> rows;
    DWORD dwMost = 0;
};

bool IsZero(const Bytes& row)
{
    return std::all_of(row.begin(), row.end(), [](u8 bByte) { return bByte == 0; });
}

} // namespace

class CapabilityFaults : public MachineTest {
  protected:
    /* Two samples with all that an answer can draw on, the second asked by its name alone, and a printer
       without a description. */
    void UseRichSample()
    {
        AddSample("T410A");
        tcXpi = wcDriverFolder + WideText(u"T410A.XPI");
        tcIni = wcDriverFolder + WideText(u"T410A.INI");
        ini = "[DeviceInfo]\nOptions=11\nSources=3\nTotalMemory=96\n" + cSavedPapers;
        userFile =
            "[CustomSizes]\nNumCustomSizes=1\nCustomName0=Mine\nCustomWidth0=21000\nCustomLength0=31000\n"
            "CustomMetric0=1\n";
        xpi = GetFile(tcXpi);
        Ready(hPrinter, wcPrinter);
    }

    /* An image printer, asked with its handle or by its name alone. */
    void UseImageSample(bool bByName)
    {
        AddSample("K100");
        tcXpi = wcDriverFolder + WideText(u"K100.XPI");
        tcIni = wcDriverFolder + WideText(u"K100.INI");
        ini = "[DeviceInfo]\nOptions=00000009\n" + cSavedPapers;
        xpi = GetFile(tcXpi);
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
        AddKey(wcKey);
        Ready(bByName ? nullptr : hPrinter, u"\\\\WORKPC\\" + wcPrinter + u",LocalOnly");
    }

    void UseNoModel()
    {
        AddTestPrinter({}, "[DeviceInfo]\nOptions=11\n");
        std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
        tcIni = u"C:\\drv\\qa.ini";
        ini = "[DeviceInfo]\nOptions=11\n";
        Ready(hPrinter, wcPrinter);
    }

    void Arrange(unsigned fLacking)
    {
        PutOrRemove(tcXpi, fLacking & NO_XPI, fLacking & EMPTY_XPI ? Bytes() : xpi);
        PutOrRemove(tcIni, fLacking & NO_INI, Bytes(ini.begin(), ini.end()));
        for (const auto& [tcPath, bytes] : libraries) {
            PutOrRemove(tcPath, fLacking & NO_LIBRARIES, bytes);
        }
        SetLocaleValue(u"iMeasure", fLacking & METRIC ? u"0" : u"1");
        DropMachineForms();
        AddMachineForm(u"Built in", FORM_BUILTIN, 210000, 297000);
        if (!(fLacking & NO_FORMS)) {
            AddMachineForm(u"Form", FORM_USER, 215905, 310000);
        }
        DropPrinterValue(wcPrinter, u"DeviceInfo");
        DropPrinterValue(wcPrinter, u"Settings");
        DropPrinterValue(wcPrinter, u"Memory");
        if (fLacking & NO_OPTIONS) {
            SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, Bytes(16));
        }
        if (!(fLacking & NO_SETTINGS) && !userFile.empty()) {
            SetPrinterText(wcPrinter, u"Settings", u"user.ini");
            PutFile(u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\" + wcPrinter + u"\\user.ini",
                    std::string_view(userFile));
        }
        if (!(fLacking & NO_MEMORY_VALUE)) {
            SetPrinterValue(wcPrinter, u"Memory", REG_DWORD, {98, 0, 0, 0});
        }
    }

    GuardedAnswer AskRoomy(WORD wQuestion)
    {
        return AskGuarded(ByHandle(hAsked, wcAsked, wQuestion), wQuestion, ROOM);
    }

    /* What the question answers on this machine with up to three of the things missing. */
    Expected Collect(WORD wQuestion)
    {
        Expected expected;
        for (unsigned fLacking = 0; fLacking < LACKING_END; fLacking++) {
            if (__builtin_popcount(fLacking) > 3 || (tcXpi.empty() && fLacking & (NO_XPI | EMPTY_XPI))) {
                continue;
            }
            Arrange(fLacking);
            GuardedAnswer answer = AskRoomy(wQuestion);
            EXPECT_EQ(answer.fault, "") << QuestionName(wQuestion) << " lacking " << fLacking;
            expected.results.insert(answer.dwFilled);
            expected.dwMost = std::max(expected.dwMost, answer.dwFilled);
            size_t cbRow = RowBytes(wQuestion);
            for (size_t nAt = 0; nAt < answer.rows.size(); nAt += cbRow) {
                auto row = answer.rows.begin() + static_cast<std::ptrdiff_t>(nAt);
                expected.rows.insert(Bytes(row, row + static_cast<std::ptrdiff_t>(cbRow)));
            }
        }
        if (wQuestion == DC_PRINTRATE || wQuestion == DC_PRINTRATEPPM) {
            expected.results.insert({0, 26}); /* without memory, and for an unknown driver */
        }
        Arrange(0);
        return expected;
    }

    /* A row is one of an honest machine's, or empty (behind the blank of a bin, too); of a size either side
       may be missing. */
    static bool IsHonestRow(WORD wQuestion, const Bytes& row, const Expected& expected)
    {
        if (expected.rows.count(row) || IsZero(row)) {
            return true;
        }
        if (wQuestion == DC_PAPERSIZE) {
            return std::any_of(expected.rows.begin(), expected.rows.end(), [&](const Bytes& honest) {
                i32 lWidth = Peek<i32>(row, 0), lLength = Peek<i32>(row, 4);
                return (!lWidth && lLength == Peek<i32>(honest, 4)) ||
                       (!lLength && lWidth == Peek<i32>(honest, 0));
            });
        }
        return wQuestion == DC_BINNAMES && row[0] == ' ' && IsZero({row.begin() + 1, row.end()});
    }

    static std::string Judge(WORD wQuestion, const GuardedAnswer& answer, const Expected& expected)
    {
        size_t cbRow = RowBytes(wQuestion);
        if (!cbRow) {
            bool bKnown = expected.results.count(answer.dwCounted) && expected.results.count(answer.dwFilled);
            return answer.fault + (bKnown ? "" : "gave " + std::to_string(answer.dwFilled));
        }
        std::string fault = answer.fault;
        if (answer.dwCounted > expected.dwMost || answer.dwFilled > expected.dwMost) {
            fault += "told " + std::to_string(answer.dwFilled) + " rows of " +
                     std::to_string(expected.dwMost) + "; ";
        }
        for (size_t nAt = 0; nAt < answer.rows.size(); nAt += cbRow) {
            auto row = answer.rows.begin() + static_cast<std::ptrdiff_t>(nAt);
            if (!IsHonestRow(wQuestion, Bytes(row, row + static_cast<std::ptrdiff_t>(cbRow)), expected)) {
                fault += "row " + std::to_string(nAt / cbRow) + " is no machine's; ";
            }
        }
        return fault;
    }

    /* Fails every call, then every allocation, of all questions. Result: how many faults there were. */
    int SweepQuestions()
    {
        int nFaults = 0;
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            Expected expected = Collect(wQuestion);
            GuardedAnswer honest = AskRoomy(wQuestion);
            GuardedAnswer last;
            for (CallId call : {ANY_CALL, CALL_HeapAlloc}) {
                for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
                    FaultSweep sweep = SweepFaults(call, mode, RUN_LIMIT, [&] {
                        last = AskRoomy(wQuestion);
                        return Judge(wQuestion, last, expected);
                    });
                    EXPECT_EQ(sweep.fault, "") << QuestionName(wQuestion);
                    EXPECT_EQ(last, honest) << QuestionName(wQuestion) << ": the run without a fault";
                    nFaults += sweep.nFaults;
                }
            }
        }
        return nFaults;
    }

    /* Every kind of lie, told by all calls and by each alone. Result: how many answers came out otherwise. */
    int SweepQuestionLies()
    {
        int nOthers = 0;
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            GuardedAnswer honest = AskRoomy(wQuestion);
            EXPECT_EQ(SweepLies([&] {
                          GuardedAnswer answer = AskRoomy(wQuestion);
                          nOthers += answer != honest;
                          return answer.fault;
                      }),
                      "")
                << QuestionName(wQuestion);
        }
        return nOthers;
    }

    const WideText wcKey = u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\Ostra K100";
    WideText tcXpi, tcIni, wcAsked;
    std::string ini, userFile;
    Bytes xpi;
    HANDLE hAsked = nullptr;

  private:
    void Ready(HANDLE hHandle, const WideText& wcName)
    {
        hAsked = hHandle;
        wcAsked = wcName;
        for (const WideText& tcPath :
             {wcDriverFolder + WideText(u"TXT.DLL"), wcDriverFolder + WideText(u"ENUS.DLL"),
              WideText(u"C:\\drv\\txt.dll"), WideText(u"C:\\drv\\enus.dll")}) {
            if (HasFile(tcPath)) {
                libraries.emplace_back(tcPath, GetFile(tcPath));
            }
        }
        Arrange(0);
    }

    static void PutOrRemove(const WideText& tcPath, bool bRemove, const Bytes& bytes)
    {
        if (tcPath.empty()) {
            return;
        }
        if (bRemove) {
            std::filesystem::remove(HostPath(tcPath));
        } else {
            PutFile(tcPath, bytes);
        }
    }

    std::vector<std::pair<WideText, Bytes>> libraries;
};

TEST_F(CapabilityFaults, EveryCallFailsOnARichSample)
{
    UseRichSample();
    EXPECT_EQ(AskRoomy(DC_PAPERS).dwFilled, 16u) << "the list holds no saved paper or no form";
    EXPECT_GT(SweepQuestions(), 5000);
}

TEST_F(CapabilityFaults, EveryCallFailsOnAnImageSample)
{
    UseImageSample(false);
    EXPECT_GT(SweepQuestions(), 5000);
    DWORD dwType;
    Bytes folder;
    ASSERT_TRUE(GetKeyValue(wcKey, u"SpoolDirectory", &dwType, &folder));
    EXPECT_EQ(folder.size(), 2 * (sizeof "D:\\Spool"));
}

TEST_F(CapabilityFaults, EveryCallFailsForAPrinterAskedByName)
{
    UseImageSample(true);
    EXPECT_EQ(AskRoomy(DC_PAPERS).dwFilled, 7u) << "the list holds no saved paper or no form";
    EXPECT_GT(SweepQuestions(), 5000);
    DWORD dwType;
    Bytes folder;
    EXPECT_FALSE(GetKeyValue(wcKey, u"SpoolDirectory", &dwType, &folder))
        << "copied without a caller's handle";
}

TEST_F(CapabilityFaults, EveryCallFailsWithoutAModel)
{
    UseNoModel();
    EXPECT_GT(SweepQuestions(), 1000);
}

TEST_F(CapabilityFaults, EveryCallLies)
{
    UseRichSample();
    EXPECT_GT(SweepQuestionLies(), 20);
}

TEST_F(CapabilityFaults, EveryCallLiesForAPrinterAskedByName)
{
    UseImageSample(true);
    EXPECT_GT(SweepQuestionLies(), 20);
}

TEST_F(CapabilityFaults, EveryCallLiesWithoutAModel)
{
    UseNoModel();
    EXPECT_GT(SweepQuestionLies(), 20);
}

/* ---- printer values ---- */

namespace {

struct Value {
    DWORD dwType;
    Bytes bytes;
};

Value Text(const std::u16string& wcText, DWORD dwType = REG_SZ, bool bEnded = true)
{
    Value value = {dwType, Bytes((wcText.size() + (bEnded ? 1 : 0)) * sizeof(WCHAR))};
    std::memcpy(value.bytes.data(), wcText.data(), wcText.size() * sizeof(WCHAR));
    return value;
}

struct BadValues {
    const char16_t* wcValue;
    Value good;             /* changes an answer, so that the comparison below can fail */
    std::vector<Value> bad; /* change none */
};

const std::vector<BadValues> aBadValues = {
    {u"XPI",
     Text(u"NONE.XPI"),
     {{REG_SZ, {}},
      Text(u""),
      Text(u"NONE.XPI", REG_BINARY),
      Text(u"NONE.XPI", REG_MULTI_SZ),
      {REG_DWORD, {1, 0, 0, 0}},
      Text(std::u16string(260, u'N'))}},
    {u"DeviceInfo",
     {REG_BINARY, Bytes(16)},
     {{REG_BINARY, {}},
      {REG_BINARY, Bytes(4)},
      {REG_BINARY, Bytes(15)},
      {REG_BINARY, Bytes(17)},
      {REG_BINARY, Bytes(32)}}},
    {u"Settings",
     Text(u"other.ini"),
     {{REG_SZ, {}},
      Text(u""),
      Text(u"other.ini", REG_BINARY),
      Text(u"other.ini", REG_MULTI_SZ),
      Text(u".."),
      Text(u". ."),
      Text(u"..\\halden t410a\\other.ini"),
      Text(u"../halden t410a/other.ini"),
      Text(u"C:other.ini"),
      Text(std::u16string(260, u'N'))}},
    {u"Memory",
     {REG_DWORD, {98, 0, 0, 0}},
     {{REG_DWORD, {}}, {REG_DWORD, {98}}, {REG_DWORD, {98, 0, 0}}, {REG_BINARY, {98, 0, 0, 0, 0}}}},
    {u"DefaultSpoolDirectory",
     Text(u"D:\\Spool"),
     {{REG_SZ, {}},
      Text(u""),
      Text(u"D:\\Spool", REG_BINARY),
      Text(u"D:\\Spool", REG_SZ, false),
      Text(std::u16string(260, u'D'))}},
};

} // namespace

/* All answers of a machine, and what it has copied into the registry. */
static std::vector<GuardedAnswer> AskAll(HANDLE hPrinter, const WideText& wcPrinter, const WideText& wcKey)
{
    std::vector<GuardedAnswer> answers;
    for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
        answers.push_back(AskGuarded(ByHandle(hPrinter, wcPrinter, wQuestion), wQuestion));
    }
    DWORD dwType;
    GuardedAnswer copied;
    GetKeyValue(wcKey, u"SpoolDirectory", &dwType, &copied.rows);
    answers.push_back(copied);
    return answers;
}

TEST_F(CapabilityFaults, PrinterValuesOfAWrongTypeOrSizeCountAsAbsent)
{
    for (const BadValues& values : aBadValues) {
        bool bImage =
            std::u16string_view(values.wcValue) == u"DefaultSpoolDirectory"; /* read for no other model */
        auto ask = [&](const Value* pValue) {
            TearDown();
            SetUp();
            AddSample(bImage ? "K100" : "T410A");
            AddKey(wcKey);
            std::string other = "[CustomSizes]\nNumCustomSizes=1\nCustomName0=Mine\nCustomWidth0=21000\n"
                                "CustomLength0=31000\nCustomMetric0=1\n";
            PutFile(u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\Halden T410A\\other.ini",
                    std::string_view(other));
            PutFile(u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\Halden T410A\\other.in",
                    std::string_view(other));
            if (pValue) {
                SetPrinterValue(wcPrinter, values.wcValue, pValue->dwType, pValue->bytes);
            }
            return AskAll(hPrinter, wcPrinter, wcKey);
        };
        std::vector<GuardedAnswer> absent = ask(nullptr);
        EXPECT_NE(ask(&values.good), absent) << Narrow(values.wcValue) << " is not read at all";
        for (const Value& bad : values.bad) {
            std::vector<GuardedAnswer> answers = ask(&bad);
            EXPECT_EQ(answers, absent) << Narrow(values.wcValue) << " of type " << bad.dwType << " and "
                                       << bad.bytes.size() << " bytes";
        }
    }
}

/* ---- the harness itself ---- */

class SweepCanary : public MachineTest {
  protected:
    /* The verdict on an asker that fills one row of 64 characters. */
    static std::string FaultOf(const std::function<DWORD(u8* pOut)>& fill)
    {
        return AskGuarded([&](void* pOut) { return pOut ? fill(static_cast<u8*>(pOut)) : 1; }, DC_PAPERNAMES,
                          2)
            .fault;
    }
};

TEST_F(SweepCanary, SeesWhatAnAskerDoesWrong)
{
    EXPECT_EQ(FaultOf([](u8* pOut) {
                  std::memset(pOut, 0, 128);
                  return 1;
              }),
              "");
    EXPECT_NE(FaultOf([](u8* pOut) {
                  std::memset(pOut, 0, 129);
                  return 1;
              }),
              "");
    EXPECT_NE(FaultOf([](u8* pOut) {
                  pOut[-1] = 0;
                  return 1;
              }),
              "");
    EXPECT_NE(FaultOf([](u8* pOut) {
                  std::memset(pOut, 'x', 128);
                  return 1;
              }),
              "");
    EXPECT_NE(FaultOf([](u8*) { return 3; }), "");
    EXPECT_NE(FaultOf([](u8*) {
                  for (clock_t begun = clock(); clock() - begun < CLOCKS_PER_SEC * 3 / 10;) {
                  }
                  return 0;
              }),
              "");
    EXPECT_NE(FaultOf([](u8*) {
                  HeapFree(GetProcessHeap(), 0, HeapAlloc(GetProcessHeap(), 0, CALL_BLOCK_BYTES + 1));
                  return 0;
              }),
              "");
}

TEST_F(SweepCanary, SeesWhatABodyDoesWrong)
{
    std::vector<void*> kept;
    auto allocate = [] { return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 8); };
    auto release = [](void* pBlock) { return pBlock ? HeapFree(GetProcessHeap(), 0, pBlock) : 0; };

    FaultSweep clean = SweepFaults(CALL_HeapAlloc, FAIL_ONCE, RUN_LIMIT, [&] {
        release(allocate());
        return std::string();
    });
    EXPECT_EQ(clean.fault, "");
    EXPECT_EQ(clean.nFaults, 1);

    FaultSweep leaking = SweepFaults(CALL_HeapAlloc, FAIL_ONCE, RUN_LIMIT, [&] {
        void* pFirst = allocate();
        if (void* pSecond = allocate()) {
            release(pSecond);
            release(pFirst);
        } else {
            kept.push_back(pFirst);
        }
        return std::string();
    });
    EXPECT_NE(leaking.fault.find("number 2"), std::string::npos);
    for (void* pBlock : kept) {
        release(pBlock);
    }

    FaultSweep endless = SweepFaults(CALL_HeapAlloc, FAIL_ONCE, 20, [&] {
        while (void* pBlock = allocate()) {
            release(pBlock);
        }
        return std::string();
    });
    EXPECT_NE(endless.fault.find("no end"), std::string::npos);

    FaultSweep wrong = SweepFaults(CALL_HeapAlloc, FAIL_FROM_THERE, RUN_LIMIT, [&] {
        void* pBlock = allocate();
        release(pBlock);
        return std::string(pBlock ? "" : "no block");
    });
    EXPECT_NE(wrong.fault.find("no block"), std::string::npos);
}
