/* The harness of the sweeps: asks a question between guard bytes and within bounds, and drives a body through
   faults and lies. Nothing here expects anything: verdicts are handed back as sentences, empty for a good
   one, so that a test can also demand a bad one. */
#ifndef TQUI_TESTS_SWEEP_H
#define TQUI_TESTS_SWEEP_H

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <string>

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

/* Asks for the count, then with a buffer of nRoom rows (0: of as many as were counted). Nothing may be written
   outside the rows that the second call tells, and every text row is left alone or has an end. */
inline GuardedAnswer AskGuarded(const Asker& ask, WORD wQuestion, size_t nRoom = 0)
{
    constexpr size_t GUARD_BYTES = 256;
    constexpr u8 GUARD_BYTE = 0xA5;
    GuardedAnswer answer;
    size_t cbRow = RowBytes(wQuestion);
    answer.fault = WithinBounds([&] { answer.dwCounted = ask(nullptr); });
    size_t nRows = cbRow ? (nRoom ? nRoom : answer.dwCounted) : 0;
    if (nRows > 0x10000) {
        answer.fault += "counted " + std::to_string(nRows) + " rows; ";
        return answer;
    }
    Bytes buffer(nRows * cbRow + 2 * GUARD_BYTES, GUARD_BYTE);
    u8* pRows = buffer.data() + GUARD_BYTES;
    answer.fault += WithinBounds([&] { answer.dwFilled = ask(pRows); });
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

/* Runs the body under each of a row of settings; the body gives its own verdict. What is held may not differ
   before and behind it. */
inline std::string HoldsNothing(const std::function<std::string()>& body)
{
    LiveCounts before = CountLive();
    std::string fault = body();
    LiveCounts after = CountLive();
    return after == before
               ? fault
               : fault + "held behind it: blocks " + std::to_string(after.nBlocks - before.nBlocks) +
                     ", files " + std::to_string(after.nFiles - before.nFiles) + ", printers " +
                     std::to_string(after.nPrinters - before.nPrinters) + ", keys " +
                     std::to_string(after.nKeys - before.nKeys) + ", modules " +
                     std::to_string(after.nModules - before.nModules) + ", semaphores " +
                     std::to_string(after.nSemaphores - before.nSemaphores) + ", events " +
                     std::to_string(after.nEvents - before.nEvents) + ", windows " +
                     std::to_string(after.nWindows - before.nWindows) + ", GDI objects " +
                     std::to_string(after.nGdiObjects - before.nGdiObjects) + "; ";
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

struct FaultSweep {
    int nFaults = 0; /* calls that were made to fail, over all runs */
    std::string fault;
};

/* Fails the n-th call for n = 1, 2, 3 ... until a run meets no fault, at most nLimit runs. */
inline FaultSweep SweepFaults(CallId call, FaultMode mode, int nLimit,
                              const std::function<std::string()>& body)
{
    FaultSweep sweep;
    SweepClock clock(&sweepTotals.dFaultSeconds);
    for (int n = 1; n <= nLimit; n++) {
        int nHit = 0;
        std::string fault = HoldsNothing([&] {
            FailCall(call, n, mode);
            std::string own = body();
            nHit = StopFaults();
            return own;
        });
        sweep.nFaults += nHit;
        sweepTotals.nInjections += nHit > 0;
        if (!fault.empty()) {
            sweep.fault += std::string(CallName(call)) + " number " + std::to_string(n) +
                           (mode == FAIL_ONCE ? " fails: " : " and all behind it fail: ") + fault + "\n";
        }
        if (!nHit) {
            return sweep;
        }
    }
    sweep.fault += "no end after " + std::to_string(nLimit) + " faults\n";
    return sweep;
}

/* Runs the body while a call, or every one, gives false answers of one kind, at all turns or at the n-th.
   pnTold gets how many were told. Result: its verdict, with the lie's name in front. */
inline std::string SweepLie(LieKind kind, CallId call, const std::function<std::string()>& body, int nTh = 0,
                            int* pnTold = nullptr)
{
    SweepClock clock(&sweepTotals.dLieSeconds);
    int nTold = 0;
    std::string fault = HoldsNothing([&] {
        TellLies(kind, call, nTh);
        std::string own = body();
        nTold = StopLies();
        return own;
    });
    sweepTotals.nLies += nTold > 0;
    if (pnTold) {
        *pnTold = nTold;
    }
    return fault.empty() ? ""
                         : std::string(CallName(call)) + " tells lie " + std::to_string(kind) + " at turn " +
                               std::to_string(nTh) + ": " + fault + "\n";
}

/* Every kind of lie: told by all calls at once, by each alone that an honest run gives a turn, and at the n-th turn
   for n = 1, 2, 3 ... until a run tells none. Result: the verdicts, a line each. */
inline std::string SweepLies(const std::function<std::string()>& body)
{
    constexpr int TURN_LIMIT = 3000;
    TellLies(LIE_NONE);
    std::string faults = body();
    std::vector<std::pair<LieKind, CallId>> turns;
    for (int nKind = LIE_NONE + 1; nKind < LIE_KIND_COUNT; nKind++) {
        for (int nCall = 0; nCall < CALL_COUNT; nCall++) {
            if (CouldLie(static_cast<LieKind>(nKind), static_cast<CallId>(nCall))) {
                turns.emplace_back(static_cast<LieKind>(nKind), static_cast<CallId>(nCall));
            }
        }
    }
    for (const auto& [kind, call] : turns) {
        faults += SweepLie(kind, call, body);
    }
    for (int nKind = LIE_NONE + 1; nKind < LIE_KIND_COUNT; nKind++) {
        int nTold = 0;
        faults += SweepLie(static_cast<LieKind>(nKind), ANY_CALL, body);
        for (int n = 1; n == 1 || nTold; n++) {
            faults += SweepLie(static_cast<LieKind>(nKind), ANY_CALL, body, n, &nTold);
            if (n > TURN_LIMIT) {
                return faults + "no end after " + std::to_string(n) + " turns\n";
            }
        }
    }
    return faults;
}

#endif
