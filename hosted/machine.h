/* The hosted machine as the tests see it: what is installed, whose session it is, what was called, what is
   still held, and which calls fail or lie. Everything here is for tests, benchmarks and the companion tool;
   the library itself knows only the Windows calls.

   Files lie below a temporary root. A Windows path "C:\Dir\File.txt" is the file ROOT/c/dir/file.txt: drive
   and names in small letters, so that names compare as they do on Windows. */
#ifndef TQUI_HOSTED_MACHINE_H
#define TQUI_HOSTED_MACHINE_H

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/calls.h"
#include "platform/files.h"
#include "platform/gdi.h"
#include "platform/resources.h"
#include "platform/spooler.h"

using Bytes = std::vector<u8>;
using WideText = std::u16string;

/* Starts an empty machine: no printer, no key, no file, US English user on a metric-free locale (iMeasure
   1), code page 1252, computer "WORKPC", system version 10.0. The root is a new folder below the system's
   temporary one; StopMachine removes it. A machine that is already running is stopped first. */
void StartMachine();
void StopMachine();
/* The same with files in a folder that is there, and stays: what else a machine has begins anew. */
void StartMachineIn(const std::filesystem::path& root);

/* ---- who and where ---- */
void SetUserLanguage(u16 usLangId); /* GetUserDefaultLangID */
void SetLocaleValue(std::u16string_view wcKey,
                    std::u16string_view wcText);  /* section "intl"; empty removes */
void SetComputerName(std::u16string_view wcName); /* empty: GetComputerNameW fails */
void SetEnvironmentValue(std::u16string_view wcName, std::u16string_view wcText); /* empty removes */
void SetSystemVersion(int nMajor, int nMinor);
void SetCodePage(UINT uCodePage); /* 1252, 932 (a small part: half-width, hiragana) or 65001 */

/* ---- files ---- */
std::filesystem::path HostPath(std::u16string_view tcPath);   /* where a Windows path lies on this disk */
void PutFile(std::u16string_view tcPath, const Bytes& bytes); /* makes missing folders */
void PutFile(std::u16string_view tcPath, std::string_view text);
Bytes GetFile(std::u16string_view tcPath); /* empty when there is none */
bool HasFile(std::u16string_view tcPath);
void SetReadOnly(std::u16string_view tcPath, bool bReadOnly);
void SetDiskRoom(i64 lBytes); /* bytes that WriteFile still finds room for; -1: no end of it */

/* ---- lost power: what can be left on the disk when the machine stops at some point ---- */
constexpr i64 WHOLE_WRITE = -1, LOST_WRITE = -2, ZEROED_WRITE = -3;
struct PowerCut {
    size_t nEvents; /* that were done before the cut */
    size_t nNames;  /* of them, creations, renames and deletions that reached the disk: the first ones */
    std::vector<i64> kept; /* by event, of writes: one of the above, or the bytes that reached the disk */
};
/* Starts the log of what the calls do to files, with the disk as it is. No file may be open for writing. */
void LogDisk();
/* Ends the log. Result: cuts behind every event, the same every time. Where a write was not flushed or a name
   not settled there are nPerPoint of them: all in order; all names and no unflushed write; all writes and no
   unsettled name; then any mixture. */
std::vector<PowerCut> PowerCuts(size_t nPerPoint);
/* Brings the files that the log met into the state after a cut. Any number of times, in any order. */
void CutPower(const PowerCut& cut);

/* ---- printers ---- */
struct PrinterSetup {
    WideText wcName;       /* printer */
    WideText wcDriverName; /* driver, as the print rate and the user's folder see it */
    WideText tcDriverPath, tcConfigFile, tcDataFile, tcHelpFile; /* full paths; may be empty */
    std::vector<WideText> atcDependentFiles;
    WideText wcComment, wcLocation;
    WideText wcPrintProcessor = u"winprint";
    Bytes devmode;           /* the stored default record; empty: none */
    int nSecurityWrites = 0; /* how often SetPrinterW was given a security descriptor */
};
void AddPrinter(const PrinterSetup& setup); /* replaces a printer of that name */
void SetPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue, DWORD dwType,
                     const Bytes& bytes);
void SetPrinterText(std::u16string_view wcPrinter, std::u16string_view wcValue, std::u16string_view wcText);
void SetPrinterRecord(std::u16string_view wcPrinter,
                      const Bytes& devmode); /* its stored default; empty: none */
void DropPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue);
bool GetPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue, DWORD* pdwType,
                     Bytes* pBytes);
/* A job in the printer's queue; wcDocument null: it has no name. Replaces one of that id. */
void AddJob(std::u16string_view wcPrinter, DWORD dwJobId, const WCHAR* wcDocument);
void AddMachineForm(std::u16string_view wcName, DWORD dwFlags, i32 lWidth,
                    i32 lLength); /* thousandths of a mm */
void DropMachineForms();
struct MachineForm {
    WideText wcName;
    DWORD dwFlags;
    SIZEL size; /* thousandths of a mm */
    RECTL area;
};
void AddMachineForm(const MachineForm& form);
const std::vector<MachineForm>& MachineForms(); /* in the order in which they were added */
/* What the machine knows of a printer now, and its values by name (in small letters). */
std::vector<WideText> PrinterNames();
PrinterSetup GetPrinterSetup(std::u16string_view wcPrinter);
struct MachineValue {
    WideText wcName;
    DWORD dwType;
    Bytes bytes;
};
std::vector<MachineValue> PrinterValues(std::u16string_view wcPrinter);
void RemovePrinter(std::u16string_view wcPrinter);
/* Print processors as "NAME=FILE"; a new machine has winprint. Their files lie in this folder, and only what lies there
   can be added. */
inline const WideText tcProcessorFolder = u"C:\\Windows\\System32\\spool\\prtprocs\\x64\\";
const std::vector<std::string>& PrintProcessors();
void SetPrintProcessors(const std::vector<std::string>& processors);
/* Printers whose names were handed to the spooler's routine 204. */
const std::vector<std::string>& AnnouncedPrinters();
void DenyPrinterAccess(DWORD dwAccess,
                       DWORD dwError); /* OpenPrinterW asking for dwAccess fails so; 0 lifts all */
/* Called within SetPrinterW, as the system's spooler calls the driver back there; null: nothing is. */
void SetSpoolerCallback(void (*fnCallback)());
/* What OpenPrinterW was asked, as "name|access". */
const std::vector<std::string>& OpenedPrinters();

/* ---- programs, time, fonts ---- */
/* Command lines of WinExec. Behind them "|hidden" where they were, and "|in FOLDER" of another current folder than a new
   machine's, "C:\". */
const std::vector<std::string>& StartedPrograms();
/* A program that runs when it is started, within WinExec, or the delay later when somebody waits that long. It may use
   the Windows calls. Without a routine the program cannot be started; programs that are not set are only noted. */
void SetProgram(std::u16string_view tcPath, std::function<void(const std::string& commandLine)> routine,
                u32 ulDelay = 0);
void SetTickCount(u32 ulTicks); /* GetTickCount; only waiting moves the clock */
bool HasEvent(std::u16string_view wcName);
BOOL WINAPI SetEvent(HANDLE hEvent); /* for the programs: the library never calls it */
constexpr DWORD EVENT_MODIFY_STATE = 2;
struct AskedHelp {
    HWND hWindow;
    WideText wcPath;
    UINT uCommand;
    DWORD dwTopic; /* of the window's control; 0: none, or another command */
};
#define DESKTOP_WINDOW (reinterpret_cast<HWND>(std::uintptr_t{0x10010}))
const std::vector<AskedHelp>& AskedHelps();      /* of the help control, in order */
void SetHelpControl(std::u16string_view tcPath); /* a machine has none at first */
struct FontFamily {
    WideText wcName;
    DWORD dwType; /* RASTER_FONTTYPE and so on */
    u8 bCharSet;
};
/* What the display has; a new machine has five families of a usual one. */
void SetFontFamilies(const std::vector<FontFamily>& families);
const std::vector<FontFamily>& FontFamilies();

/* ---- registry ---- */
void AddKey(
    std::u16string_view
        wcPath); /* "HKLM\SYSTEM\..." or "HKCU\..."; HKEY_CLASSES_ROOT shows "SOFTWARE\Classes" of both */
void SetKeyValue(std::u16string_view wcPath, const MachineValue& value);
std::vector<WideText> KeyPaths(); /* in small letters */
std::vector<MachineValue> KeyValues(std::u16string_view wcPath);
bool GetKeyValue(std::u16string_view wcPath, std::u16string_view wcValue, DWORD* pdwType, Bytes* pBytes);

void SetKeyValue(std::u16string_view wcPath, std::u16string_view wcValue, DWORD dwType, const Bytes& bytes);
void DropKey(std::u16string_view wcPath); /* with its values, not with keys below it */

/* ---- routines of the system's libraries, and what was told to a debugger ---- */
void SetSystemRoutine(std::u16string_view wcLibrary, const std::string& name, void* fnRoutine);
std::vector<std::string> TakeTraces(); /* since the last time */

/* ---- named semaphores ---- */
bool HasSemaphore(std::u16string_view wcName);
void DropSemaphores(); /* closes every handle, as the end of the process does */

/* ---- what was called ---- */
enum CallId : int {
    ANY_CALL = -1,
#define CALL_ID(result, name, params, failed) CALL_##name,
    ALL_CALLS(CALL_ID)
#undef CALL_ID
        CALL_COUNT
};
const char* CallName(CallId call);
int CallCount(CallId call); /* since ResetCallCounts; ANY_CALL: all but those for the last error */
void ResetCallCounts();

/* ---- faults: the n-th call from now fails as its row in calls.h says ---- */
enum FaultMode { FAIL_ONCE, FAIL_FROM_THERE };
void FailCall(CallId call, int nTh, FaultMode mode = FAIL_ONCE);
/* These calls fail always, as those do that an isolated host forbids; an empty list lifts it. */
void RefuseCalls(const std::vector<CallId>& calls);
/* Ends the fault. Result: how many calls failed; 0 says that the loop over n is through. */
int StopFaults();
int FaultTurns(); /* since FailCall: how many calls there were of which each could have been the n-th */

/* ---- lies: calls succeed with answers that an honest system does not give ---- */
enum LieKind {
    LIE_NONE,
    LIE_SHORT,        /* success with half of what there is */
    LIE_UNTERMINATED, /* text without its closing NUL */
    LIE_GROWS,        /* the data is larger at the second asking than the first said */
    LIE_NULL_MEMBERS, /* text members of structures are null */
    LIE_TYPE,         /* values of another type than they were stored with */
    LIE_HUGE,         /* sizes and counts near the end of their range */
    LIE_KIND_COUNT
};
/* At every turn, or at the n-th of those at which the lie could be told; LIE_NONE stops them. */
void TellLies(LieKind kind, CallId call = ANY_CALL, int nTh = 0);
int StopLies();                           /* Result: how many were told since TellLies */
int LieTurns();                           /* since TellLies: how many turns there were */
bool CouldLie(LieKind kind, CallId call); /* whether there was a turn for it since TellLies */

/* ---- what is held ---- */
struct LiveCounts {
    int nBlocks = 0, nFiles = 0, nPrinters = 0, nKeys = 0, nModules = 0, nSearches = 0, nContexts = 0;
    int nSemaphores = 0, nEvents = 0, nWindows = 0, nGdiObjects = 0;
    bool operator==(const LiveCounts&) const = default;
};
LiveCounts CountLive();
size_t PeakBlockBytes(); /* most bytes held in blocks at once since ResetCallCounts */

#endif
