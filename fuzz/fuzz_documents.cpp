/* Any bytes as a row of entry calls round a printer's records: conversion, merge and document events with records
   that lie about their sizes, while calls fail or lie. What is given is a whole record or none, nothing outside the
   claimed sizes is touched (each record lies in a block of just its bytes), and nothing is held at the end.

   Byte 0 picks the sample; then calls: kind, fault (call, turn) or lie, sizes, pokes into the printer's default. */
#include <cstring>
#include <memory>

#include "entry/connection.h"
#include "entry/exports.h"
#include "fuzz/require.h"
#include "hosted/standin.h"
#include "places.h"
#include "support/well_formed.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr u32 HEADER_BYTES = 72;
constexpr int MOST_CALLS = 12, MOST_POKES = 8;

struct Input {
    const u8* pBytes;
    size_t cb;

    u8 Byte() { return cb ? cb--, *pBytes++ : u8{0}; }
    u16 Word()
    {
        u8 bLow = Byte();
        return static_cast<u16>(bLow | Byte() << 8);
    }
};

struct Sample {
    WideText wcName;
    HANDLE hPrinter;
    DriverDevmode standard;
};

struct Given {
    std::unique_ptr<u8[]> pBytes;
    bool bLies; /* something failed or lied meanwhile */

    DriverDevmode* Record() { return reinterpret_cast<DriverDevmode*>(pBytes.get()); }
    PDEVMODEW Devmode() { return reinterpret_cast<PDEVMODEW>(pBytes.get()); }
};

Given TakeRecord(Input* pInput, const DriverDevmode& standard, u8 bFlags)
{
    DriverDevmode record = standard;
    for (int nPokes = pInput->Byte() % MOST_POKES; nPokes; nPokes--) {
        u16 usAt = pInput->Word();
        u16 usValue = pInput->Word();
        std::memcpy(reinterpret_cast<u8*>(&record) + usAt % (RECORD_SIZE - 1), &usValue, sizeof usValue);
    }
    if (bFlags & 0x10) {
        record.dmSize = pInput->Word();
        record.dmDriverExtra = pInput->Word();
    }
    u32 cb = static_cast<u32>(record.dmSize) + record.dmDriverExtra;
    cb = cb < HEADER_BYTES ? HEADER_BYTES : cb > RECORD_SIZE ? RECORD_SIZE : cb;
    Given given = {std::make_unique<u8[]>(cb), (bFlags & 0x60) != 0};
    std::memcpy(given.pBytes.get(), &record, cb);
    return given;
}

bool IsSound(const DriverDevmode& record, bool bLies)
{
    return IsWellFormed(record) || (bLies && SameBytes(record.rPrivate, recordTemplate.rPrivate));
}

void CallOnce(Input* pInput, Sample& sample)
{
    u8 bCall = pInput->Byte();
    Given given = TakeRecord(pInput, sample.standard, bCall);
    auto pOut = std::make_unique<DriverDevmode>();
    std::memset(static_cast<void*>(pOut.get()), 0x77, sizeof *pOut);
    DriverDevmode *pIn = given.Record(), *pGiven = nullptr;
    WideText wcName = sample.wcName;
    DWORD cb = bCall & 0x80 ? pInput->Word() : u32{RECORD_SIZE};
    if (bCall & 0x20) {
        CallId call = static_cast<CallId>(pInput->Byte() % (CALL_COUNT + 1) - 1);
        FailCall(call, 1 + pInput->Byte(), pInput->Byte() & 1 ? FAIL_FROM_THERE : FAIL_ONCE);
    }
    if (bCall & 0x40) {
        TellLies(static_cast<LieKind>(pInput->Byte() % LIE_KIND_COUNT),
                 static_cast<CallId>(pInput->Byte() % (CALL_COUNT + 1) - 1));
    }
    DOCUMENTPROPERTYHEADER header = {48,
                                     0,
                                     sample.hPrinter,
                                     wcName.data(),
                                     given.Devmode(),
                                     reinterpret_cast<PDEVMODEW>(pOut.get()),
                                     cb,
                                     pInput->Byte()};
    DOCEVENT_CREATEDCPRE create = {nullptr, nullptr, given.Devmode(), 0};
    bool bUntouched = true;
    switch (bCall & 7) {
    case 0:
        if (DrvConvertDevMode(wcName.data(), given.Devmode(), header.pdmOut, &cb, 0) &&
            header.cbOut >= RECORD_SIZE) {
            Require(IsWellFormed(*pOut));
        }
        bUntouched = header.cbOut < RECORD_SIZE;
        break;
    case 1:
        Require(DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header)) ==
                (header.fMode ? 1 : 4088));
        bUntouched = header.cbOut < RECORD_SIZE || !header.fMode;
        break;
    case 2:
    case 3:
        Require(DrvDocumentEvent(sample.hPrinter, nullptr, bCall & 1 ? 3 : 1, 0,
                                 bCall & 1 ? static_cast<void*>(&pIn) : &create, 0, &pGiven) == 1);
        Require(!pGiven || (pGiven != pIn && IsSound(*pGiven, given.bLies)));
        break;
    case 4: DrvDocumentEvent(sample.hPrinter, nullptr, 5, 0, nullptr, 0, nullptr); break;
    case 5:
        wcName = u"\\\\S\\" + wcName;
        cb = 0;
        DrvConvertDevMode(wcName.data(), nullptr, nullptr, &cb, 0);
        break;
    default: {
        PrinterCall call(sample.hPrinter);
        AddToConnectionList(call);
        if (pInput->Byte() & 1) {
            RemoveFromConnectionList(call);
        }
    }
    }
    StopFaults();
    TellLies(LIE_NONE);
    if (bUntouched) {
        Require(pOut->dmSize == 0x7777 && pOut->rPrivate.ulVersion == 0x77777777);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    static const std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    static std::vector<Sample> samples;
    Input input = {pBytes, cb};
    if (samples.empty()) {
        StartMachine();
        DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
        SetSystemVersion(4, 0);
        for (const InfModel& model : models) {
            Sample sample = {InstallSample(model, TQUI_SAMPLES).wcName, nullptr, {}};
            DWORD cbRoom = RECORD_SIZE;
            Require(OpenPrinterW(sample.wcName.data(), &sample.hPrinter, nullptr));
            Require(DrvConvertDevMode(sample.wcName.data(), nullptr,
                                      reinterpret_cast<PDEVMODEW>(&sample.standard), &cbRoom, 0));
            samples.push_back(sample);
        }
    }
    Sample& sample = samples[input.Byte() % samples.size()];
    DropPrinterValue(sample.wcName, u"TQNetworkInstall");
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    LiveCounts before = CountLive();
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
    for (int n = 0; n < MOST_CALLS && input.cb; n++) {
        CallOnce(&input, sample);
    }
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    DropSemaphores();
    TakeTraces();
    Require(CountLive() == before);
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
    return 0;
}
