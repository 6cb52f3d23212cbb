/* The harness of the sweeps: asks a question between guard bytes and within bounds, and drives a body through
   faults and lies. But for the walks nothing here expects anything: verdicts are handed back as sentences, empty for a
   good one, so that a test can also demand a bad one. */
#ifndef TQUI_TESTS_SWEEP_H
#define TQUI_TESTS_SWEEP_H

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <numeric>
#include <string>

#include <gtest/gtest.h>

#include "entry/exports.h"
#include "hosted/machine.h"
#include "tools/tq/ask.h"

/* What one entry call may take, of this thread's own time and of the process heap. */
constexpr i64 CALL_MICROSECONDS = 250 * 1000;
constexpr size_t CALL_BLOCK_BYTES = size_t{16} << 20;

/* One capability question as its asker sees it: a null buffer only counts. */
using Asker = std::function<DWORD(void* pOut)>;

inline Asker ByHandle(HANDLE hPrinter, const WideText& wcPrinter, WORD wQuestion)
{
    return [=](void* pOut) {
        WideText wcName = wcPrinter;
        return DrvDeviceCapabilities(hPrinter, wcName.data(), wQuestion, pOut, nullptr);
    };
}

struct GuardedAnswer {
    DWORD dwCounted = 0, dwFilled = 0; /* without and with a buffer */
    bool bUntouched = false;           /* nothing was written */
    Bytes rows;                        /* the rows that were told */
    std::string fault;
    bool operator==(const GuardedAnswer&) const = default;
};

/* Runs one call. Result: what was wrong with its bounds. */
inline std::string WithinBounds(const std::function<void()>& call)
{
    timespec begun, ended;
    ResetCallCounts();
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &begun);
    size_t cbBefore = PeakBlockBytes();
    call();
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ended);
    i64 lMicroseconds = (ended.tv_sec - begun.tv_sec) * 1000000 + (ended.tv_nsec - begun.tv_nsec) / 1000;
    if (lMicroseconds > CALL_MICROSECONDS) {
        return "took " + std::to_string(lMicroseconds) + " microseconds; ";
    }
    size_t cbHeld = PeakBlockBytes() - cbBefore;
    return cbHeld > CALL_BLOCK_BYTES ? "held " + std::to_string(cbHeld) + " bytes; " : "";
}

/* The last error that the caller of an export has. */
constexpr DWORD LEFT_BY_CALLER = 777;

/* Runs exports, which are guests: within bounds, they show nothing and leave the last error as it was. */
inline std::string AsGuest(const std::function<void()>& exports)
{
    DWORD dwLeft = 0;
    std::string fault = WithinBounds([&] {
        SetLastError(LEFT_BY_CALLER);
        exports();
        dwLeft = GetLastError();
    });
    if (dwLeft != LEFT_BY_CALLER) {
        fault += "left the last error " + std::to_string(dwLeft) + "; ";
    }
    const int nShown =
        CallCount(CALL_DialogBoxParamW) + CallCount(CALL_MessageBoxW) + CallCount(CALL_ShowWindow);
    return fault + (nShown ? "showed something; " : "");
}

/* Asks for the count, then with a buffer of nRoom rows (0: of as many as were counted). Nothing may be written
   outside the rows that the second call tells, and every text row is left alone or has an end. */
inline GuardedAnswer AskGuarded(const Asker& ask, WORD wQuestion, size_t nRoom = 0)
{
    constexpr size_t GUARD_BYTES = 256;
    constexpr u8 GUARD_BYTE = 0xA5;
    GuardedAnswer answer;
    size_t cbRow = RowBytes(wQuestion);
    answer.fault = AsGuest([&] { answer.dwCounted = ask(nullptr); });
    size_t nRows = cbRow ? (nRoom ? nRoom : answer.dwCounted) : 0;
    if (nRows > 0x10000) {
        answer.fault += "counted " + std::to_string(nRows) + " rows; ";
        return answer;
    }
    Bytes buffer(nRows * cbRow + 2 * GUARD_BYTES, GUARD_BYTE);
    u8* pRows = buffer.data() + GUARD_BYTES;
    answer.fault += AsGuest([&] { answer.dwFilled = ask(pRows); });
    if (cbRow && answer.dwFilled > nRows) {
        answer.fault += "told more rows than there was room for; ";
    }
    size_t cbTold = cbRow ? std::min<size_t>(answer.dwFilled, nRows) * cbRow : 0;
    auto isUntouched = [&](size_t nFrom, size_t nTo) {
        return std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(nFrom),
                           buffer.begin() + static_cast<std::ptrdiff_t>(nTo),
                           [](u8 bByte) { return bByte == GUARD_BYTE; });
    };
    if (!isUntouched(0, GUARD_BYTES) || !isUntouched(GUARD_BYTES + cbTold, buffer.size())) {
        answer.fault += "wrote outside the rows that it told; ";
    }
    answer.bUntouched = isUntouched(GUARD_BYTES, GUARD_BYTES + cbTold);
    answer.rows.assign(pRows, pRows + cbTold);
    for (size_t nAt = 0; cbRow > 8 && nAt < cbTold; nAt += cbRow) {
        bool bEnds = false;
        for (size_t i = nAt; i < nAt + cbRow; i += sizeof(WCHAR)) {
            bEnds |= answer.rows[i] == 0 && answer.rows[i + 1] == 0;
        }
        if (!bEnds && !isUntouched(GUARD_BYTES + nAt, GUARD_BYTES + nAt + cbRow)) {
            answer.fault += "left a text row without its end; ";
        }
    }
    return answer;
}

/* What must be the same before and behind a call of a guest in another's process. */
struct House {
    LiveCounts held = CountLive();
    std::filesystem::path folder = std::filesystem::current_path();
    std::string locale = std::setlocale(LC_ALL, nullptr);
};

/* Runs the body, which gives its own verdict. The house may not differ before and behind it. */
inline std::string HoldsNothing(const std::function<std::string()>& body)
{
    const House before;
    std::string fault = body();
    const House after;
    const auto differs = [&](const char* cName, int LiveCounts::*pMember) {
        const int nMore = after.held.*pMember - before.held.*pMember;
        fault += nMore ? std::string("held behind it: ") + cName + " " + std::to_string(nMore) + "; " : "";
    };
    differs("blocks", &LiveCounts::nBlocks);
    differs("files", &LiveCounts::nFiles);
    differs("printers", &LiveCounts::nPrinters);
    differs("keys", &LiveCounts::nKeys);
    differs("modules", &LiveCounts::nModules);
    differs("searches", &LiveCounts::nSearches);
    differs("contexts", &LiveCounts::nContexts);
    differs("semaphores", &LiveCounts::nSemaphores);
    differs("events", &LiveCounts::nEvents);
    differs("windows", &LiveCounts::nWindows);
    differs("GDI objects", &LiveCounts::nGdiObjects);
    const bool bSameHouse = after.folder == before.folder && after.locale == before.locale;
    return fault + (bSameHouse ? "" : "another folder or locale; ");
}

/* What the sweeps of a program have done so far, and the time that they took. sweep_totals.h prints it. */
struct SweepTotals {
    i64 nInjections = 0; /* runs in which a call failed, once or from then on */
    i64 nLies = 0;       /* runs in which a call gave a false answer */
    i64 nLoads = 0;      /* states of description files, each asked everything */
    double dFaultSeconds = 0, dLieSeconds = 0, dLoadSeconds = 0;
};
inline SweepTotals sweepTotals;

/* Adds the time until the end of its block. */
class SweepClock {
  public:
    explicit SweepClock(double* pSeconds) : pTotal(pSeconds) {}
    ~SweepClock()
    {
        *pTotal += std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    }
    SweepClock(const SweepClock&) = delete;
    SweepClock& operator=(const SweepClock&) = delete;

  private:
    double* pTotal;
    std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
};

/* How much of their steps the sweeps visit. TQUI_SWEEP_SECONDS is what a program's sweeps may take in sum; each test
   that plans for it gets a like share of what is left, and each of its sweeps of that. A sweep then visits its steps in
   a spread order, LEAST_PART of them and LEAST_STEPS in any case. Without the variable, and in a test that plans
   nothing, every step is visited, in order. */
class SweepBudget {
  public:
    static constexpr size_t LEAST_PART = 50, LEAST_STEPS = 4; /* one step of so many, and so many */

    bool IsSet() const { return dSeconds > 0; }

    /* The running test makes so many sweeps from here on. */
    void Plan(size_t nSweeps)
    {
        const ::testing::UnitTest& unit = *::testing::UnitTest::GetInstance();
        const int nLeft = unit.test_to_run_count() - unit.successful_test_count() - unit.failed_test_count() -
                          unit.skipped_test_count();
        pPlanned = unit.current_test_info();
        nSweepsLeft = nSweeps;
        dTestEnd = Now() + std::max(0.0, dSeconds - Now()) / std::max(1, nLeft);
    }

    /* Runs steps of 0 to nCount - 1. */
    void Visit(size_t nCount, const std::function<void(size_t nStep)>& step)
    {
        const bool bSpread = IsSet() && pPlanned == ::testing::UnitTest::GetInstance()->current_test_info();
        const double dEnd =
            Now() + (dTestEnd - Now()) / static_cast<double>(std::max<size_t>(1, nSweepsLeft));
        const size_t nStride = bSpread ? StrideOf(nCount) : 1;
        const size_t nLeast = bSpread ? std::max(LEAST_STEPS, nCount / LEAST_PART + 1) : nCount;
        size_t nAt = nStride / 2, nDone = 0;
        while (nDone < nCount && (nDone < nLeast || Now() < dEnd)) {
            step(nAt);
            nAt = (nAt + nStride) % nCount;
            nDone++;
        }
        nSweepsLeft -= nSweepsLeft > 0;
        nSteps += nCount;
        nVisited += nDone;
    }

    size_t nSteps = 0, nVisited = 0; /* of all sweeps so far */

  private:
    double Now() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    }
    /* About a golden section of the count, so that any few steps in a row lie far from each other. */
    static size_t StrideOf(size_t nCount)
    {
        size_t nStride = std::max<size_t>(1, nCount * 618 / 1000);
        while (std::gcd(nStride, nCount) > 1) {
            nStride++;
        }
        return nStride;
    }

    const char* cSeconds = std::getenv("TQUI_SWEEP_SECONDS");
    const double dSeconds = cSeconds ? std::strtod(cSeconds, nullptr) : 0;
    const std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
    double dTestEnd = 0;
    size_t nSweepsLeft = 0;
    const ::testing::TestInfo* pPlanned = nullptr;
};
inline SweepBudget sweepBudget;

struct FaultSweep {
    int nFaults = 0; /* calls that were made to fail, over all runs */
    std::string fault;
};

/* Fails the n-th call for each n that a run without a fault makes, at most nLimit; the first run and the last are
   such ones. */
inline FaultSweep SweepFaults(CallId call, FaultMode mode, int nLimit,
                              const std::function<std::string()>& body)
{
    FaultSweep sweep;
    SweepClock clock(&sweepTotals.dFaultSeconds);
    int nHit = 0, nTurns = 0;
    const auto run = [&](int n) {
        std::string fault = HoldsNothing([&] {
            FailCall(call, n, mode);
            std::string own = body();
            nHit = StopFaults();
            nTurns = FaultTurns();
            return own;
        });
        sweep.nFaults += nHit;
        sweepTotals.nInjections += nHit > 0;
        if (!fault.empty()) {
            sweep.fault += std::string(CallName(call)) + " number " + std::to_string(n) +
                           (mode == FAIL_ONCE ? " fails: " : " and all behind it fail: ") + fault + "\n";
        }
    };
    run(nLimit + 1);
    if (nHit) {
        sweep.fault += "no end after " + std::to_string(nLimit) + " faults\n";
        return sweep;
    }
    sweepBudget.Visit(static_cast<size_t>(nTurns), [&](size_t nStep) { run(static_cast<int>(nStep) + 1); });
    run(nLimit + 1);
    return sweep;
}

/* The same for calls that fail once and for calls that go on failing. */
inline FaultSweep SweepFaultsBothWays(CallId call, int nLimit, const std::function<std::string()>& body)
{
    FaultSweep sweep = SweepFaults(call, FAIL_ONCE, nLimit, body);
    const FaultSweep lasting = SweepFaults(call, FAIL_FROM_THERE, nLimit, body);
    return {sweep.nFaults + lasting.nFaults, sweep.fault + lasting.fault};
}

/* Runs the body while a call, or every one, gives false answers of one kind, at all turns or at the n-th.
   Result: its verdict, with the lie's name in front. */
inline std::string SweepLie(LieKind kind, CallId call, const std::function<std::string()>& body, int nTh = 0)
{
    SweepClock clock(&sweepTotals.dLieSeconds);
    std::string fault = HoldsNothing([&] {
        TellLies(kind, call, nTh);
        std::string own = body();
        sweepTotals.nLies += StopLies() > 0;
        return own;
    });
    return fault.empty() ? ""
                         : std::string(CallName(call)) + " tells lie " + std::to_string(kind) + " at turn " +
                               std::to_string(nTh) + ": " + fault + "\n";
}

/* Every kind of lie: told by all calls at once, by each alone that an honest run gives a turn, and at each single turn
   of an honest run. Result: the verdicts, a line each. */
inline std::string SweepLies(const std::function<std::string()>& body)
{
    struct Lie {
        LieKind kind;
        CallId call;
        int nTh;
    };
    std::vector<Lie> lies;
    std::string faults;
    for (int nKind = LIE_NONE + 1; nKind < LIE_KIND_COUNT; nKind++) {
        const LieKind kind = static_cast<LieKind>(nKind);
        TellLies(kind, ANY_CALL, 0x7FFFFFFF);
        faults += body();
        StopLies();
        for (int nTh = 0; nTh <= LieTurns(); nTh++) {
            lies.push_back({kind, ANY_CALL, nTh});
        }
        for (int nCall = 0; nCall < CALL_COUNT; nCall++) {
            if (CouldLie(kind, static_cast<CallId>(nCall))) {
                lies.push_back({kind, static_cast<CallId>(nCall), 0});
            }
        }
    }
    sweepBudget.Visit(lies.size(), [&](size_t nStep) {
        const Lie& lie = lies[nStep];
        faults += SweepLie(lie.kind, lie.call, body, lie.nTh);
    });
    return faults;
}

/* ---- walks, which expect good verdicts ---- */

/* Something that a test does again and again while calls fail or lie. */
struct Scenario {
    std::string name;
    std::function<std::string()> run; /* gives its verdict */
};

/* Each call of these that the scenarios make fails once, and from then on. Result: how many calls failed. */
inline int WalkFaults(const std::vector<Scenario>& scenarios, const std::vector<CallId>& calls = {ANY_CALL})
{
    constexpr int RUN_LIMIT = 20000;
    int nFaults = 0;
    for (const Scenario& scenario : scenarios) {
        for (CallId call : calls) {
            for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
                const FaultSweep sweep = SweepFaults(call, mode, RUN_LIMIT, scenario.run);
                EXPECT_EQ(sweep.fault, "") << scenario.name;
                nFaults += sweep.nFaults;
            }
        }
    }
    return nFaults;
}

inline void WalkLies(const std::vector<Scenario>& scenarios)
{
    for (const Scenario& scenario : scenarios) {
        EXPECT_EQ(SweepLies(scenario.run), "") << scenario.name;
    }
}

#endif
