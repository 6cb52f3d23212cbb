/* Loads libraries of the system by full path. */
#include "base/system_library.h"

#include "base/wide.h"

OwnedModule OpenSystemLibrary(const WCHAR* wcName)
{
    WCHAR tcPath[PATH_CHARS];
    UINT cch = GetSystemDirectoryW(tcPath, PATH_CHARS);
    if (cch == 0 || cch >= PATH_CHARS) {
        return nullptr;
    }
    tcPath[cch] = 0;
    if (!AppendWideWhole(tcPath, PATH_CHARS, TEXT("\\")) || !AppendWideWhole(tcPath, PATH_CHARS, wcName)) {
        return nullptr;
    }
    return OwnedModule(LoadLibraryExW(tcPath, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
}
