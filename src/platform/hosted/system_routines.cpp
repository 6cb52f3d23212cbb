/* Stand-ins for the system's own libraries as far as they are run: a test says which routines there are. */
#include <map>

#include "platform/hosted/standin.h"

namespace {

std::map<WideText, std::map<std::string, void*>> systemLibraries; /* by name in one form */
std::map<HMODULE, WideText> openLibraries;
std::uintptr_t nLastLibrary = 0;

} // namespace

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
    if (!systemLibraries.count(wcForm)) {
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
    auto library = openLibraries.find(hModule);
    if (library != openLibraries.end()) {
        const auto& routines = systemLibraries[library->second];
        if (auto routine = routines.find(cName); routine != routines.end()) {
            return reinterpret_cast<FARPROC>(routine->second);
        }
    }
    SetHostedError(ERROR_PROC_NOT_FOUND);
    return nullptr;
}
