/* Stand-ins for the system's own libraries as far as they are run: a test says which routines there are. WINSPOOL.DRV
   is always there, with its routine 204. */
#include <map>

#include "platform/hosted/standin.h"

namespace {

void (*fnSpoolerCallback)() = nullptr;

std::map<WideText, std::map<std::string, void*>> systemLibraries; /* by name in one form */
std::map<HMODULE, WideText> openLibraries;
std::uintptr_t nLastLibrary = 0;
const WideText wcSpooler = u"winspool.drv"; /* in that form */

BOOL WINAPI TakeAnnouncement(LPCWSTR wcName)
{
    AnnouncePrinter(wcName);
    return 1;
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
    liveCounts.nModules -= static_cast<int>(openLibraries.size());
    openLibraries.clear();
}

HMODULE LoadSystemLibrary(std::u16string_view wcLibrary)
{
    WideText wcForm = LowerText(wcLibrary);
    if (wcForm != wcSpooler && !systemLibraries.count(wcForm)) {
        SetHostedError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const auto hLibrary = reinterpret_cast<HMODULE>(++nLastLibrary * 0x10000 + 8);
    openLibraries.emplace(hLibrary, wcForm);
    liveCounts.nModules++;
    return hLibrary;
}

bool FreeSystemLibrary(HMODULE hLibrary)
{
    if (!openLibraries.erase(hLibrary)) {
        return false;
    }
    liveCounts.nModules--;
    return true;
}

FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR cName)
{
    FAILS(GetProcAddress);
    constexpr std::uintptr_t ANNOUNCE = 204, LAST_NUMBER = 0xFFFF;
    const auto nNumber = reinterpret_cast<std::uintptr_t>(cName); /* small ones are numbers and no names */
    const auto library = openLibraries.find(hModule);
    if (library != openLibraries.end() && nNumber > LAST_NUMBER) {
        const auto& routines = systemLibraries[library->second];
        if (auto routine = routines.find(cName); routine != routines.end()) {
            return reinterpret_cast<FARPROC>(routine->second);
        }
    }
    if (library != openLibraries.end() && library->second == wcSpooler && nNumber == ANNOUNCE) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(&TakeAnnouncement));
    }
    SetHostedError(ERROR_PROC_NOT_FOUND); /* data files have no code */
    return nullptr;
}
