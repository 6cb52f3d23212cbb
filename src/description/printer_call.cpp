/* Asks the spooler, each thing once a call. */
#include "description/printer_call.h"

#include <cstring>

#include "base/wide.h"

namespace {

constexpr u32 FIRST_BYTES = 4096;
constexpr u32 FIRST_PRINTER_BYTES = 8192;     /* a stored record takes half of it */
constexpr u32 ANSWER_LIMIT = 2 * 1024 * 1024; /* no honest answer of a spooler comes near */
constexpr u32 CLOSING_BYTES = 16;             /* zeros behind an answer, so that its last text has an end */
constexpr int NAME_CHARS = 129;               /* a printer's name that is opened: 128 characters and NUL */

BOOL AskDriver(HANDLE hPrinter, BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded, DWORD*)
{
    return GetPrinterDriverW(hPrinter, nullptr, 3, pOut, cbOut, pcbNeeded);
}

BOOL AskPrinter(HANDLE hPrinter, BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded, DWORD*)
{
    return GetPrinterW(hPrinter, 2, pOut, cbOut, pcbNeeded);
}

} // namespace

const WCHAR* AnswerText(const void* pBlock, u32 cbBlock, const WCHAR* wcMember)
{
    u64 ullBlock = reinterpret_cast<std::uintptr_t>(pBlock);
    u64 ullText = reinterpret_cast<std::uintptr_t>(wcMember);
    int bInside = ullText >= ullBlock && ullText < ullBlock + cbBlock && ullText % alignof(WCHAR) == 0;
    return bInside ? wcMember : TEXT("");
}

namespace {

/* The asking itself; ask(pOut, cbOut, pcbNeeded) gives the spooler's result. */
template <class Ask> void* AskGrowing(HANDLE hPrinter, u32 cbFirst, u32* pcb, AskState* pState, Ask ask)
{
    *pState = NO_ANSWER;
    if (!IsOpen(hPrinter)) {
        return nullptr;
    }
    u32 cb = cbFirst;
    for (int nTry = 0; nTry < 2; nTry++) {
        OwnedBlock<u8> pBlock(static_cast<u8*>(AllocateBlock(cb + CLOSING_BYTES)));
        if (!pBlock) {
            *pState = NO_MEMORY;
            return nullptr;
        }
        DWORD cbNeeded = 0;
        if (ask(pBlock.get(), cb, &cbNeeded)) {
            *pState = ANSWERED;
            *pcb = cb;
            return pBlock.release();
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER || cbNeeded <= cb) {
            return nullptr;
        }
        if (cbNeeded > ANSWER_LIMIT) {
            *pState = NO_MEMORY;
            return nullptr;
        }
        cb = cbNeeded;
    }
    return nullptr; /* it grew between the two calls */
}

} // namespace

void* AskSpooler(HANDLE hPrinter, AskFunction fnAsk, u32 cbFirst, u32* pcb, DWORD* pnRows, AskState* pState)
{
    return AskGrowing(hPrinter, cbFirst, pcb, pState, [=](BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded) {
        *pnRows = 0;
        return fnAsk(hPrinter, pOut, cbOut, pcbNeeded, pnRows);
    });
}

OwnedBlock<WCHAR> ReadDocumentName(PrinterCall& call, DWORD dwJobId)
{
    u32 cbJob;
    AskState state;
    OwnedBlock<JOB_INFO_2W> pJob(static_cast<JOB_INFO_2W*>(
        AskGrowing(call.hPrinter, FIRST_BYTES, &cbJob, &state,
                   [&call, dwJobId](BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded) {
                       return GetJobW(call.hPrinter, dwJobId, 2, pOut, cbOut, pcbNeeded);
                   })));
    if (!pJob || !pJob->pDocument) {
        return nullptr;
    }
    const WCHAR* wcDocument = AnswerText(pJob.get(), cbJob, pJob->pDocument);
    size_t cbName = (static_cast<size_t>(WideLength(wcDocument)) + 1) * sizeof(WCHAR);
    OwnedBlock<WCHAR> wcName(static_cast<WCHAR*>(AllocateBlock(cbName)));
    if (wcName) {
        std::memcpy(wcName.get(), wcDocument, cbName);
    }
    return wcName;
}

const DRIVER_INFO_3W* GetDriverInfo(PrinterCall& call)
{
    if (call.driverState == NOT_ASKED) {
        DWORD nRows;
        call.pDriverInfo.reset(static_cast<DRIVER_INFO_3W*>(AskSpooler(
            call.hPrinter, AskDriver, FIRST_BYTES, &call.cbDriverInfo, &nRows, &call.driverState)));
    }
    return call.pDriverInfo.get();
}

const PRINTER_INFO_2W* GetPrinterInfo(PrinterCall& call)
{
    if (call.printerState == NOT_ASKED) {
        DWORD nRows;
        call.pPrinterInfo.reset(
            static_cast<PRINTER_INFO_2W*>(AskSpooler(call.hPrinter, AskPrinter, FIRST_PRINTER_BYTES,
                                                     &call.cbPrinterInfo, &nRows, &call.printerState)));
    }
    return call.pPrinterInfo.get();
}

namespace {

/* 1 when the record that the spooler gave lies in its answer with all the bytes that it tells of itself. */
int IsWholeRecord(const PrinterCall& call, const void* pRecord)
{
    constexpr u32 SIZES_AT = 68; /* u16 dmSize, u16 dmDriverExtra */
    u16 ausSizes[2];
    const void* pHead = PrinterBytes(call, pRecord, SIZES_AT + sizeof ausSizes);
    if (!pHead) {
        return 0;
    }
    std::memcpy(ausSizes, static_cast<const u8*>(pHead) + SIZES_AT, sizeof ausSizes);
    return PrinterBytes(call, pRecord, static_cast<u32>(ausSizes[0]) + ausSizes[1]) != nullptr;
}

} // namespace

int SetPrinterInfo(PrinterCall& call, const PRINTER_INFO_2W& info)
{
    PRINTER_INFO_2W copy = info;
    copy.pSecurityDescriptor =
        nullptr; /* the spooler keeps its own, with what was changed since it was read */
    if (call.pPrinterInfo && copy.pDevMode == call.pPrinterInfo->pDevMode &&
        !IsWholeRecord(call, copy.pDevMode)) {
        copy.pDevMode = nullptr; /* the spooler would read what is not there; without one it keeps its own */
    }
    int bSet = SetPrinterW(call.hPrinter, 2, reinterpret_cast<BYTE*>(&copy), 0) != 0;
    call.pPrinterInfo.reset();
    call.printerState = NOT_ASKED;
    return bSet;
}

const WCHAR* DriverText(const PrinterCall& call, const WCHAR* wcMember)
{
    return AnswerText(call.pDriverInfo.get(), call.cbDriverInfo, wcMember);
}

const WCHAR* PrinterText(const PrinterCall& call, const WCHAR* wcMember)
{
    return AnswerText(call.pPrinterInfo.get(), call.cbPrinterInfo, wcMember);
}

const void* PrinterBytes(const PrinterCall& call, const void* pMember, u32 cb)
{
    u64 ullBlock = reinterpret_cast<std::uintptr_t>(call.pPrinterInfo.get());
    u64 ullMember = reinterpret_cast<std::uintptr_t>(pMember);
    int bInside = ullBlock && ullMember >= ullBlock && cb <= call.cbPrinterInfo &&
                  ullMember - ullBlock <= call.cbPrinterInfo - cb;
    return bInside ? pMember : nullptr;
}

int ReadPrinterText(PrinterCall& call, const WCHAR* wcValue, WCHAR* wcOut, int cch, int* pbEnded)
{
    DWORD dwType = 0, cbValue = 0;
    DWORD cbRoom = static_cast<DWORD>(cch) * static_cast<DWORD>(sizeof(WCHAR));
    wcOut[0] = 0;
    if (!IsOpen(call.hPrinter) ||
        GetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcValue), &dwType, reinterpret_cast<BYTE*>(wcOut),
                        cbRoom, &cbValue) != ERROR_SUCCESS ||
        dwType != REG_SZ) {
        wcOut[0] = 0;
        return 0;
    }
    int nGot = static_cast<int>((cbValue < cbRoom ? cbValue : cbRoom) / sizeof(WCHAR));
    int nLength = BoundedLength(wcOut, nGot);
    if (pbEnded) {
        *pbEnded = nLength < nGot;
    }
    wcOut[nLength < cch ? nLength : cch - 1] = 0;
    return 1;
}

u32 ReadPrinterBytes(PrinterCall& call, const WCHAR* wcValue, void* pOut, u32 cb)
{
    DWORD dwType = 0, cbValue = 0;
    if (!IsOpen(call.hPrinter) || GetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcValue), &dwType,
                                                  static_cast<BYTE*>(pOut), cb, &cbValue) != ERROR_SUCCESS) {
        return 0;
    }
    return cbValue <= cb ? cbValue : 0;
}

int ReadComputerName(WCHAR* wcOut)
{
    DWORD cch = COMPUTER_CHARS;
    if (!GetComputerNameW(wcOut, &cch)) {
        wcOut[0] = 0;
    }
    wcOut[COMPUTER_CHARS - 1] = 0;
    return wcOut[0] != 0;
}

int IsOnComputer(const WCHAR* wcPrinterName, const WCHAR* wcComputer)
{
    if (wcPrinterName[0] != '\\' || wcPrinterName[1] != '\\') {
        return 0;
    }
    int n = 2;
    for (int i = 0; wcComputer[i]; i++) {
        if (wcPrinterName[n++] != wcComputer[i]) {
            return 0;
        }
    }
    return wcPrinterName[n] == '\\';
}

namespace {

/* Cuts ",Local" off a name that begins with this computer's own "\\NAME\". */
void CutLocalTail(WCHAR* wcName)
{
    WCHAR wcComputer[COMPUTER_CHARS];
    if (wcName[0] != '\\' || wcName[1] != '\\' || !ReadComputerName(wcComputer) ||
        !IsOnComputer(wcName, wcComputer)) {
        return;
    }
    const WCHAR* wcTail = FindWide(wcName, TEXT(",Local"));
    if (wcTail) {
        wcName[wcTail - wcName] = 0;
    }
}

} // namespace

OwnedPrinter OpenPrinterByName(const WCHAR* wcName)
{
    WCHAR wcCopy[NAME_CHARS];
    if (!wcName) {
        return OwnedPrinter(INVALID_HANDLE_VALUE); /* null would open the print server */
    }
    CopyWide(wcCopy, NAME_CHARS, wcName);
    CutLocalTail(wcCopy);
    PRINTER_DEFAULTSW defaults = {};
    HANDLE hPrinter = nullptr;
    defaults.DesiredAccess = PRINTER_ALL_ACCESS;
    if (OpenPrinterW(wcCopy, &hPrinter, &defaults)) {
        return OwnedPrinter(hPrinter);
    }
    if (GetLastError() == ERROR_ACCESS_DENIED) {
        defaults.DesiredAccess = PRINTER_ACCESS_USE;
        hPrinter = nullptr;
        if (OpenPrinterW(wcCopy, &hPrinter, &defaults)) {
            return OwnedPrinter(hPrinter);
        }
    }
    return OwnedPrinter(INVALID_HANDLE_VALUE);
}
