/* Stand-ins for the system's own libraries, and others of a full path, as far as they are run: a test says which routines
   there are, by name or as "#15" by number. WINSPOOL.DRV is always there, with its routine 204, and so are version.dll
   and comdlg32.dll, with the calls of platform/version.h and platform/common_dialogs.h. Controls (.ocx) stay loaded for
   the process, so they do not count as held. */
#include <map>

#include "hosted/standin.h"

namespace {

void (*fnSpoolerCallback)() = nullptr;

std::map<WideText, std::map<std::string, void*>> systemLibraries; /* by name in one form */
std::map<HMODULE, WideText> openLibraries;
std::uintptr_t nLastLibrary = 0;
const WideText wcSpooler = u"winspool.drv", wcVersion = u"version.dll",
               wcDialogs = u"comdlg32.dll"; /* in that form */

bool IsControl(const WideText& wcLibrary)
{
    return wcLibrary.ends_with(LowerText(u".OCX"));
}

BOOL WINAPI TakeAnnouncement(LPCWSTR wcName)
{
    AnnouncePrinter(wcName);
    return 1;
}

template <class Routine> FARPROC AnyRoutine(Routine fnRoutine)
{
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(fnRoutine));
}

/* A routine that every machine has; null when there is none of that name or number. */
FARPROC FixedRoutine(const WideText& wcLibrary, LPCSTR cName, bool bNumber)
{
    constexpr std::uintptr_t ANNOUNCE = 204;
    if (wcLibrary == wcSpooler && bNumber && reinterpret_cast<std::uintptr_t>(cName) == ANNOUNCE) {
        return AnyRoutine(&TakeAnnouncement);
    }
    if (bNumber) {
        return nullptr;
    }
#define FIND_CALL(result, name, params, failed) \
    if (std::string_view(cName) == #name) { \
        return AnyRoutine(&name); \
    }
    if (wcLibrary == wcVersion) {
        VERSION_CALLS(FIND_CALL)
    }
    if (wcLibrary == wcDialogs) {
        COMMON_DIALOG_CALLS(FIND_CALL)
    }
#undef FIND_CALL
    return nullptr;
}

} // namespace

void SetSpoolerCallback(void (*fnCallback)())
{
    fnSpoolerCallback = fnCallback;
}

void CallDriverBack()
{
    if (fnSpoolerCallback) {
        fnSpoolerCallback();
    }
}

void SetSystemRoutine(std::u16string_view wcLibrary, const std::string& name, void* fnRoutine)
{
    systemLibraries[LowerText(wcLibrary)][name] = fnRoutine;
}

void ResetSystemRoutines()
{
    systemLibraries.clear();
    while (!openLibraries.empty()) {
        FreeSystemLibrary(openLibraries.begin()->first);
    }
}

HMODULE LoadSystemLibrary(std::u16string_view wcLibrary)
{
    WideText wcForm = LowerText(wcLibrary);
    if (const WideText wcFolder = LowerText(tcSystemFolder) + u"\\"; wcForm.starts_with(wcFolder)) {
        wcForm.erase(0, wcFolder.size());
    }
    if (wcForm != wcSpooler && wcForm != wcVersion && wcForm != wcDialogs && !systemLibraries.count(wcForm)) {
        SetHostedError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const auto hLibrary = reinterpret_cast<HMODULE>(++nLastLibrary * 0x10000 + 8);
    openLibraries.emplace(hLibrary, wcForm);
    liveCounts.nModules += !IsControl(wcForm);
    return hLibrary;
}

bool FreeSystemLibrary(HMODULE hLibrary)
{
    const auto library = openLibraries.find(hLibrary);
    if (library == openLibraries.end()) {
        return false;
    }
    liveCounts.nModules -= !IsControl(library->second);
    openLibraries.erase(library);
    return true;
}

FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR cName)
{
    FAILS(GetProcAddress);
    constexpr std::uintptr_t LAST_NUMBER = 0xFFFF;
    const bool bNumber = reinterpret_cast<std::uintptr_t>(cName) <= LAST_NUMBER; /* small ones are numbers */
    if (const auto library = openLibraries.find(hModule); library != openLibraries.end()) {
        const auto& routines = systemLibraries[library->second];
        const std::string name =
            bNumber ? "#" + std::to_string(reinterpret_cast<std::uintptr_t>(cName)) : cName;
        if (const auto routine = routines.find(name); routine != routines.end()) {
            return reinterpret_cast<FARPROC>(routine->second);
        }
        if (const FARPROC fnFixed = FixedRoutine(library->second, cName, bNumber)) {
            return fnFixed;
        }
    }
    SetHostedError(ERROR_PROC_NOT_FOUND); /* data files have no code */
    return nullptr;
}
