/* Stand-ins for named semaphores. Their count is used by nobody: a name that exists is what matters. */
#include <map>

#include "hosted/standin.h"

namespace {

/* Names by open handle: a semaphore is there as long as one handle is. Names compare with their case. */
std::map<HANDLE, WideText> semaphores;
std::uintptr_t nLastSemaphore = 0;

/* Only the two prefixes of sessions may stand in front of a backslash. */
DWORD NameError(std::u16string_view wcName)
{
    for (std::u16string_view wcPrefix : {u"Global\\", u"Local\\"}) {
        if (wcName.starts_with(wcPrefix)) {
            wcName.remove_prefix(wcPrefix.size());
        }
    }
    return wcName.find(u'\\') == std::u16string_view::npos ? 0 : ERROR_PATH_NOT_FOUND;
}

HANDLE KeepSemaphore(std::u16string_view wcName)
{
    const auto hSemaphore = reinterpret_cast<HANDLE>(++nLastSemaphore * 0x10000 + 4);
    semaphores.emplace(hSemaphore, wcName);
    liveCounts.nSemaphores++;
    return hSemaphore;
}

} // namespace

bool HasSemaphore(std::u16string_view wcName)
{
    for (const auto& [hSemaphore, wcOpen] : semaphores) {
        if (wcOpen == wcName) {
            return true;
        }
    }
    return false;
}

void DropSemaphores()
{
    semaphores.clear();
    liveCounts.nSemaphores = 0;
}

bool CloseSemaphore(HANDLE hObject)
{
    if (!semaphores.erase(hObject)) {
        return false;
    }
    liveCounts.nSemaphores--;
    return true;
}

HANDLE WINAPI CreateSemaphoreW(LPSECURITY_ATTRIBUTES, LONG lFirst, LONG lMost, LPCWSTR wcName)
{
    FAILS(CreateSemaphoreW);
    DWORD dwError = lMost < 1 || lFirst < 0 || lFirst > lMost ? ERROR_INVALID_PARAMETER
                    : wcName                                  ? NameError(wcName)
                                                              : 0;
    if (dwError) {
        SetHostedError(dwError);
        return nullptr;
    }
    SetHostedError(wcName && HasSemaphore(wcName) ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return KeepSemaphore(wcName ? wcName : u"");
}

HANDLE WINAPI OpenSemaphoreW(DWORD, BOOL, LPCWSTR wcName)
{
    FAILS(OpenSemaphoreW);
    DWORD dwError = !wcName                 ? ERROR_INVALID_PARAMETER
                    : NameError(wcName)     ? NameError(wcName)
                    : !HasSemaphore(wcName) ? ERROR_FILE_NOT_FOUND
                                            : 0;
    if (dwError) {
        SetHostedError(dwError);
        return nullptr;
    }
    return KeepSemaphore(wcName);
}
