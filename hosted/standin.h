/* Shared by the stand-ins: every one opens with FAILS(Name), which takes the machine's lock to the end of the call,
   counts the call and lets a test's fault answer in its place, and asks Lies() where it can tell one. */
#ifndef TQUI_HOSTED_STANDIN_H
#define TQUI_HOSTED_STANDIN_H

#include <mutex>

#include "hosted/machine.h"
#include "platform/calls.h"
#include "platform/common_dialogs.h"
#include "platform/drawing.h"
#include "platform/files.h"
#include "platform/gdi.h"
#include "platform/glyphs.h"
#include "platform/help.h"
#include "platform/process.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "platform/spooler.h"
#include "platform/text.h"
#include "platform/version.h"
#include "platform/window.h"

/* Counts the call. 1 when a fault is set for it: the last error is then ERROR_GEN_FAILURE, or
   ERROR_NOT_ENOUGH_MEMORY for an allocation. */
int CallFails(CallId call);
int Lies(CallId call, LieKind kind);

/* The value that the call gives on failure. */
#define FAILED_RESULT(result, name, params, failed) \
    inline result Failed_##name() \
    { \
        return static_cast<result>(failed); \
    }
ALL_CALLS(FAILED_RESULT)
#undef FAILED_RESULT

#define FAILS(name) \
    std::lock_guard heldForCall(machineLock); \
    if (CallFails(CALL_##name)) { \
        return Failed_##name(); \
    } \
    static_assert(true)

/* Held by every stand-in. Tests that set the machine up do it before their threads begin. */
extern std::recursive_mutex machineLock;

/* Language id of the machine's user; counts no call. */
u16 HostedUserLanguage();
/* The folder below which the machine's files lie. */
extern std::filesystem::path machineRoot;

/* Runs what SetSpoolerCallback set. */
void CallDriverBack();

/* Keeps the name that the spooler's routine 204 was told. */
void AnnouncePrinter(LPCWSTR wcName);

void SetHostedError(DWORD dwError);
/* Sets the error and gives 0: for "return Refuse(ERROR_...)". */
BOOL Refuse(DWORD dwError);

/* Capital of one 16-bit character, by the same table as CharUpperBuffW. */
WCHAR UpperChar(WCHAR wcChar);
/* One form for all spellings of a name: capitals, but A to Z small. */
WideText LowerText(std::u16string_view wcText);
bool SameName(std::u16string_view wcOne, std::u16string_view wcOther); /* case ignored */
std::string Narrow(std::u16string_view wcText);                        /* UTF-8, for paths and messages */
WideText Widen(std::string_view text);                                 /* from UTF-8 */
WideText FromCodePage(const char* cText, size_t cb);                   /* from the machine's code page */
std::string ToCodePage(std::u16string_view wcText);

/* Bookkeeping of what is held; each kind of object counts itself up and down. */
extern LiveCounts liveCounts;
void ResetPeak(); /* the most bytes held begins anew at what is held now */

/* Closes what a kind of object left behind at StopMachine; each stand-in has one. */
void ResetProcess();
void ResetFiles();
void ResetPowerCuts();
void ResetRegistry();
void ResetSpooler();
void ResetWindows();
void ResetResources();
void ResetPrograms();
void ResetFolders();
void ResetFonts();
void ResetSystemRoutines();
void ResetThreads();
void DropEvents();
void ResetCurrentFolder();

/* Where the system's own libraries lie. */
inline const WideText tcSystemFolder = u"C:\\Windows\\system32";

/* The system's own libraries, by name or by full path, for the calls that load and free modules: null, and false, when it is none. */
HMODULE LoadSystemLibrary(std::u16string_view wcLibrary);
bool FreeSystemLibrary(HMODULE hLibrary);

/* Close the handle of a semaphore or event; false when it is none. */
bool CloseSemaphore(HANDLE hObject);
bool CloseEvent(HANDLE hObject);

/* Moves the clock to the next start of a program that is due within ulMost milliseconds and runs it; false, with the
   clock moved by all of ulMost, when none is. */
bool RunNextProgram(u32 ulMost);

/* A path as the system takes it: a relative one goes on behind the current folder. */
WideText BelowCurrentFolder(std::u16string_view tcPath);
std::string CurrentFolderNote(); /* "|in FOLDER", empty for the first */

u32 MachineTicks(); /* GetTickCount for stand-ins: not counted, never failing */

/* Locale value of section "intl"; false when the machine has none. */
bool GetLocaleValue(std::u16string_view wcKey, WideText* pText);

/* For stand-ins that open files by themselves: 0, or ERROR_SHARING_VIOLATION when what is open at the moment
   does not go with an opening of these access and share bits. */
DWORD HostSharingError(u64 ulDevice, u64 ulNode, DWORD dwAccess, DWORD dwShare);

/* The error for a host call on a path that failed with errno nError. */
DWORD HostPathError(const std::string& host, int nError);

/* Reads a whole file; false when there is none. */
bool ReadHostBytes(const std::string& host, Bytes* pBytes);

/* Makes the file hold these bytes. Result: 0 or an error. */
DWORD WriteHostBytes(const std::string& host, std::string_view bytes);

/* Bytes of a resource of a loaded module, in the user's language: false when there is none. No counting. */
bool FindModuleResource(HMODULE hModule, u16 usType, LPCWSTR wcName, Bytes* pBytes);

/* Reads a whole file of the machine for a stand-in that is not itself a file call (no counting). */
bool ReadHostFile(std::u16string_view tcPath, Bytes* pBytes);

#endif
