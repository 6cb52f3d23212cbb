/* What one entry call knows of its printer. Asking the spooler is what costs, so each thing is asked for
   once, when it is first wanted, and goes with the call: nothing of this outlives it. Functions that serve a
   printer take a PrinterCall where others would take the handle. */
#ifndef TQUI_DESCRIPTION_PRINTER_CALL_H
#define TQUI_DESCRIPTION_PRINTER_CALL_H

#include "base/owned.h"
#include "base/wide.h"
#include "description/xpi_file.h"
#include "platform/spooler.h"
#include "profile/profile_file.h"

/* The installed set, 16 bytes as in the printer value "DeviceInfo": what option masks are tested against. */
struct DeviceInfo {
    u32 ulInputs, ulOutputs, ulOptions, ulMemoryKey;
};
static_assert(sizeof(DeviceInfo) == 16);

enum AskState : int { NOT_ASKED, ANSWERED, NO_ANSWER, NO_MEMORY };

struct PrinterCall {
    HANDLE hPrinter; /* borrowed; null or invalid: every question has no answer */
    AskState driverState, printerState, pathState, xpiState, deviceState, iniState, userState;
    u32 cbDriverInfo, cbPrinterInfo; /* bytes of the two blocks that the spooler wrote */
    OwnedBlock<DRIVER_INFO_3W> pDriverInfo;
    OwnedBlock<PRINTER_INFO_2W> pPrinterInfo;
    XpiFile rXpiFile;
    ProfileFile rIniFile, rUserFile; /* see GetDriverIni and GetUserSettings */
    WCHAR tcXpiPath[PATH_CHARS];     /* see GetXpiPath */
    DeviceInfo rDeviceInfo;

    explicit PrinterCall(HANDLE hOf)
        : hPrinter(hOf), driverState(NOT_ASKED), printerState(NOT_ASKED), pathState(NOT_ASKED),
          xpiState(NOT_ASKED), deviceState(NOT_ASKED), iniState(NOT_ASKED), userState(NOT_ASKED),
          cbDriverInfo(0), cbPrinterInfo(0), rXpiFile{}, rIniFile{}, rUserFile{}, tcXpiPath{}, rDeviceInfo{}
    {
    }
};

struct PrinterDeleter {
    using pointer = HANDLE;
    void operator()(HANDLE hPrinter) const
    {
        if (IsOpen(hPrinter)) {
            ClosePrinter(hPrinter);
        }
    }
};
using OwnedPrinter = std::unique_ptr<void, PrinterDeleter>;

/* DRIVER_INFO_3 and PRINTER_INFO_2 of the printer, the call's own; null when the spooler does not give them
   or memory fails (the state tells which). Text members are read with DriverText and PrinterText. */
const DRIVER_INFO_3W* GetDriverInfo(PrinterCall& call);
const PRINTER_INFO_2W* GetPrinterInfo(PrinterCall& call);

/* Writes the printer's information back, without its record where that is cut, and never its security. The call asks
   anew for it afterwards. 1 when the spooler took it. */
int SetPrinterInfo(PrinterCall& call, const PRINTER_INFO_2W& info);

/* A text member of one of the two blocks: "" for null and for what does not lie in the block. The text ends
   inside the block or in the zeros kept behind it, and so does a list of texts. */
const WCHAR* DriverText(const PrinterCall& call, const WCHAR* wcMember);
const WCHAR* PrinterText(const PrinterCall& call, const WCHAR* wcMember);

/* A member of PRINTER_INFO_2 that leads to cb bytes: null for null, and for what does not lie in the block
   with all of them. It may lie at any address. */
const void* PrinterBytes(const PrinterCall& call, const void* pMember, u32 cb);

/* A text member of any answer of cb bytes that AskSpooler gave. */
const WCHAR* AnswerText(const void* pBlock, u32 cb, const WCHAR* wcMember);

/* A growing answer of the spooler (size call and real call in one), zero-filled beyond what it wrote. Only
   for the askers of this folder: fnAsk gives the spooler's result for a buffer. Result: the block, or null
   with *pState telling why; *pcb is the size that was handed to the spooler. */
using AskFunction = BOOL (*)(HANDLE hPrinter, BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded, DWORD* pnRows);
void* AskSpooler(HANDLE hPrinter, AskFunction fnAsk, u32 cbFirst, u32* pcb, DWORD* pnRows, AskState* pState);

/* Document name of a job in the printer's queue, a new block of its own, the caller's. Null when the spooler
   has no such job, the job has no name, or memory fails. */
OwnedBlock<WCHAR> ReadDocumentName(PrinterCall& call, DWORD dwJobId);

/* Reads a text value of the printer into cch characters. 1 when it is there, of type REG_SZ, and fits; the
   text is ended by us where its NUL is missing (*pbEnded, which may be null, says whether it had one). Else 0
   and "". */
int ReadPrinterText(PrinterCall& call, const WCHAR* wcValue, WCHAR* wcOut, int cch, int* pbEnded);

/* Reads a value of at most cb bytes whatever its type. Result: its size, 0 when it is not there, empty, or
   larger. */
u32 ReadPrinterBytes(PrinterCall& call, const WCHAR* wcValue, void* pOut, u32 cb);

/* Name of this computer, COMPUTER_CHARS of room. 1, or 0 and "" when the system does not tell it. */
constexpr int COMPUTER_CHARS = 64;
int ReadComputerName(WCHAR* wcOut);

/* 1 for a printer's name that begins with "\\", this computer's name and a backslash. */
int IsOnComputer(const WCHAR* wcPrinterName, const WCHAR* wcComputer);

/* Opens a printer by a name that comes from outside a spooler call: a name of this computer
   ("\\THISPC\Name,LocalOnly") is cut at ",Local". Full access is tried first, use only behind a refusal. The
   caller closes it; the invalid handle when it cannot be opened. */
OwnedPrinter OpenPrinterByName(const WCHAR* wcName);

#endif
