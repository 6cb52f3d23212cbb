/* Connections on Windows NT 4: marker, list and check. */
#include "entry/connection.h"

#include <cstring>

#include "description/printer_store.h"
#include "platform/process.h"

namespace {

constexpr u32 CHAR_BYTES = sizeof(WCHAR);
constexpr WCHAR wcListValue[] = TEXT("TQNetworkInstall");

/* Name of the marker; 0 and "" when there is none. PATH_CHARS of room. */
int NameMarker(const WCHAR* wcPrinterName, WCHAR* wcOut)
{
    if (!CopyWideWhole(wcOut, PATH_CHARS, wcPrinterName) || !wcOut[0]) {
        return 0;
    }
    for (int i = 0; wcOut[i]; i++) {
        wcOut[i] = wcOut[i] == '\\' ? TEXT('/') : wcOut[i];
    }
    return 1;
}

/* The printer's list. Names are counted from the first to the list's end: the first empty one, or the end of
   what the printer has. */
struct ConnectionList {
    OwnedBlock<u8> pBlock; /* the names, two NULs behind them */
    ValueState state;      /* VALUE_ABSENT also for a value that is no list */
    i32 cchNames;          /* all of them, each with its NUL */

    WCHAR* Names() const { return reinterpret_cast<WCHAR*>(pBlock.get()); }
};

ConnectionList ReadList(PrinterCall& call)
{
    ConnectionList list = {nullptr, VALUE_ABSENT, 0};
    u32 cb;
    list.state = ReadPrinterBlock(call, wcListValue, &list.pBlock, &cb);
    if (list.state != VALUE_READ) {
        return list;
    }
    if (cb < CHAR_BYTES || cb % CHAR_BYTES) {
        list.pBlock.reset();
        list.state = VALUE_ABSENT;
        return list;
    }
    i32 cch = static_cast<i32>(cb / CHAR_BYTES);
    while (list.cchNames < cch && list.Names()[list.cchNames]) {
        list.cchNames +=
            WideLength(list.Names() + list.cchNames) + 1; /* the last may end in the NULs behind */
    }
    return list;
}

/* Offset in characters of a computer's name; -1 when it is not in the list. */
i32 FindInList(const ConnectionList& list, const WCHAR* wcComputer)
{
    for (i32 n = 0; n < list.cchNames; n += WideLength(list.Names() + n) + 1) {
        if (SameWide(list.Names() + n, wcComputer)) {
            return n;
        }
    }
    return -1;
}

void WriteList(PrinterCall& call, WCHAR* wcNames, i32 cchNames)
{
    wcNames[cchNames] = 0;
    SetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcListValue), REG_MULTI_SZ,
                    reinterpret_cast<BYTE*>(wcNames), (static_cast<u32>(cchNames) + 1) * CHAR_BYTES);
}

} // namespace

int IsConnectionSystem()
{
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExW(&version) && version.dwMajorVersion == 4;
}

void MakeConnectionMarker(const WCHAR* wcPrinterName)
{
    WCHAR wcMarker[PATH_CHARS];
    if (IsConnectionSystem() && NameMarker(wcPrinterName, wcMarker)) {
        CreateSemaphoreW(nullptr, 1, 1, wcMarker);
    }
}

void AddToConnectionList(PrinterCall& call)
{
    WCHAR wcComputer[COMPUTER_CHARS];
    if (!IsConnectionSystem() || !ReadComputerName(wcComputer)) {
        return;
    }
    ConnectionList list = ReadList(call);
    u32 cbOld = static_cast<u32>(list.cchNames) * CHAR_BYTES;
    i32 cchComputer = WideLength(wcComputer) + 1;
    OwnedBlock<WCHAR> pNew(
        static_cast<WCHAR*>(AllocateBlock(cbOld + (static_cast<u32>(cchComputer) + 1) * CHAR_BYTES)));
    if (list.state == VALUE_UNREADABLE || !pNew) {
        return;
    }
    if (cbOld) {
        std::memcpy(pNew.get(), list.Names(), cbOld);
    }
    std::memcpy(pNew.get() + list.cchNames, wcComputer, static_cast<u32>(cchComputer) * CHAR_BYTES);
    WriteList(call, pNew.get(), list.cchNames + cchComputer);
}

void RemoveFromConnectionList(PrinterCall& call)
{
    WCHAR wcComputer[COMPUTER_CHARS];
    if (!IsConnectionSystem() || !ReadComputerName(wcComputer)) {
        return;
    }
    ConnectionList list = ReadList(call);
    i32 nAt = FindInList(list, wcComputer);
    if (nAt < 0) {
        return;
    }
    i32 cchGone = WideLength(wcComputer) + 1;
    i32 cchLeft = list.cchNames - cchGone;
    if (!cchLeft) {
        DeletePrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcListValue));
        return;
    }
    std::memmove(list.Names() + nAt, list.Names() + nAt + cchGone,
                 static_cast<size_t>(cchLeft - nAt) * sizeof(WCHAR));
    WriteList(call, list.Names(), cchLeft);
}

ConnectionAnswer CheckConnection(const WCHAR* wcPrinterName)
{
    constexpr ConnectionAnswer usual = {0, ERROR_INSUFFICIENT_BUFFER};
    WCHAR wcMarker[PATH_CHARS], wcComputer[COMPUTER_CHARS];
    if (!wcPrinterName || wcPrinterName[0] != '\\' || wcPrinterName[1] != '\\' || !IsConnectionSystem() ||
        !ReadComputerName(wcComputer) || IsOnComputer(wcPrinterName, wcComputer)) {
        return usual;
    }
    if (NameMarker(wcPrinterName, wcMarker)) {
        OwnedFile hMarker(OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, 0, wcMarker));
        if (IsOpen(hMarker.get())) {
            return usual;
        }
    }
    OwnedPrinter hPrinter = OpenPrinterByName(wcPrinterName);
    if (!IsOpen(hPrinter.get())) {
        return {1, ERROR_INVALID_PRINTER_NAME};
    }
    PrinterCall call(hPrinter.get());
    ConnectionList list = ReadList(call);
    if (list.state == VALUE_UNREADABLE) {
        return {0, ERROR_FILE_NOT_FOUND};
    }
    if (FindInList(list, wcComputer) < 0) {
        return {1, ERROR_INSUFFICIENT_BUFFER};
    }
    MakeConnectionMarker(wcPrinterName);
    return usual;
}
