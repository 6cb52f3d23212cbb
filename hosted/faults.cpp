/* Counts every call, and lets a test fail the n-th or hear a lie. */
#include <cstring>

#include "hosted/open_files.h"

LiveCounts liveCounts;

namespace {

constexpr const char* aCallNames[] = {
#define CALL_TEXT(result, name, params, failed) #name,
    ALL_CALLS(CALL_TEXT)
#undef CALL_TEXT
};

int anCounts[CALL_COUNT];
CallId faultCall = ANY_CALL;
int nFaultIn = 0; /* calls left until the fault; 0: none set */
FaultMode faultMode = FAIL_ONCE;
int bFailing = 0;    /* FAIL_FROM_THERE has begun */
int nFaultTurns = 0; /* since FailCall: calls that could have been the one to fail */
int nFailed = 0;
bool abRefused[CALL_COUNT];
LieKind lieKind = LIE_NONE;
CallId lieCall = ANY_CALL;
int nLieAt = 0;            /* the one turn at which to lie; 0: at all */
int nTurns = 0, nLies = 0; /* since TellLies: lies that could be told, and that were */
bool abCouldLie[LIE_KIND_COUNT][CALL_COUNT];

} // namespace

const char* CallName(CallId call)
{
    return call >= 0 && call < CALL_COUNT ? aCallNames[call] : "any call";
}

int CallCount(CallId call)
{
    if (call >= 0 && call < CALL_COUNT) {
        return anCounts[call];
    }
    int nAll = -anCounts[CALL_GetLastError] - anCounts[CALL_SetLastError];
    for (int nCount : anCounts) {
        nAll += nCount;
    }
    return nAll;
}

void FailCall(CallId call, int nTh, FaultMode mode)
{
    faultCall = call;
    nFaultIn = nTh;
    faultMode = mode;
    bFailing = 0;
    nFaultTurns = 0;
    nFailed = 0;
}

int FaultTurns()
{
    return nFaultTurns;
}

void RefuseCalls(const std::vector<CallId>& calls)
{
    for (bool& bRefused : abRefused) {
        bRefused = false;
    }
    for (CallId call : calls) {
        abRefused[call] = true;
    }
}

int StopFaults()
{
    nFaultIn = 0;
    bFailing = 0;
    return nFailed;
}

int CallFails(CallId call)
{
    anCounts[call]++;
    if (abRefused[call]) {
        SetHostedError(ERROR_ACCESS_DENIED);
        return 1;
    }
    if ((faultCall != ANY_CALL && faultCall != call) || (!nFaultIn && !bFailing)) {
        return 0;
    }
    /* What gives back, and what cannot fail, is not failed: a release that fails still releases, so a fault
       there would only hide the next one. */
    if (call == CALL_GetProcessHeap || call == CALL_GetLastError || call == CALL_SetLastError) {
        return 0;
    }
    nFaultTurns++;
    if (nFaultIn && --nFaultIn == 0) {
        bFailing = faultMode == FAIL_FROM_THERE;
        nFailed++;
    } else if (bFailing) {
        nFailed++;
    } else {
        return 0;
    }
    SetHostedError(call == CALL_HeapAlloc ? ERROR_NOT_ENOUGH_MEMORY : ERROR_GEN_FAILURE);
    return 1;
}

void TellLies(LieKind kind, CallId call, int nTh)
{
    lieKind = kind;
    lieCall = call;
    nLieAt = nTh;
    nTurns = nLies = 0;
    std::memset(abCouldLie, 0, sizeof abCouldLie);
}

int StopLies()
{
    lieKind = LIE_NONE;
    return nLies;
}

int LieTurns()
{
    return nTurns;
}

bool CouldLie(LieKind kind, CallId call)
{
    return abCouldLie[kind][call];
}

int Lies(CallId call, LieKind kind)
{
    abCouldLie[kind][call] = true;
    if (lieKind != kind || (lieCall != ANY_CALL && lieCall != call)) {
        return 0;
    }
    nTurns++;
    int bLies = !nLieAt || nLieAt == nTurns;
    nLies += bLies;
    return bLies;
}

LiveCounts CountLive()
{
    return liveCounts;
}

void ResetCallCounts()
{
    for (int& nCount : anCounts) {
        nCount = 0;
    }
    OpenCounts().clear();
    ResetPeak();
}
