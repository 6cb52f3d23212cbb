/* Stand-ins for the current folder, which relative paths go on from. */
#include <sys/stat.h>

#include "hosted/open_files.h"

namespace {

constexpr DWORD ERROR_DIRECTORY = 267;

const WideText tcFirst = u"C:\\";
WideText tcCurrent = tcFirst;

} // namespace

void ResetCurrentFolder()
{
    tcCurrent = tcFirst;
}

std::string CurrentFolderNote()
{
    return tcCurrent == tcFirst ? "" : "|in " + Narrow(tcCurrent);
}

WideText BelowCurrentFolder(std::u16string_view tcPath)
{
    const bool bRooted = !tcPath.empty() && (tcPath[0] == u'\\' || tcPath[0] == u'/');
    if (bRooted || (tcPath.size() > 1 && tcPath[1] == u':')) {
        return WideText(tcPath);
    }
    return tcCurrent + (tcCurrent.ends_with(u'\\') ? u"" : u"\\") + WideText(tcPath);
}

DWORD WINAPI GetCurrentDirectoryW(DWORD cchFolder, LPWSTR tcFolder)
{
    FAILS(GetCurrentDirectoryW);
    const DWORD cchFound = static_cast<DWORD>(tcCurrent.size());
    if (Lies(CALL_GetCurrentDirectoryW, LIE_UNTERMINATED)) {
        std::fill_n(tcFolder, cchFolder, u'F');
        return cchFolder ? cchFolder - 1 : 0;
    }
    if (Lies(CALL_GetCurrentDirectoryW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    if (cchFound >= cchFolder) {
        return cchFound + 1; /* what is needed */
    }
    tcCurrent.copy(tcFolder, cchFound);
    tcFolder[cchFound] = 0;
    return cchFound;
}

BOOL WINAPI SetCurrentDirectoryW(LPCWSTR tcPath)
{
    FAILS(SetCurrentDirectoryW);
    const ResolvedPath path = Resolve(tcPath);
    struct stat there = {};
    if (path.dwError || stat(path.host.c_str(), &there) != 0) {
        return Refuse(path.dwError ? path.dwError : DWORD{ERROR_FILE_NOT_FOUND});
    }
    if (!S_ISDIR(there.st_mode)) {
        return Refuse(ERROR_DIRECTORY);
    }
    tcCurrent = BelowCurrentFolder(tcPath);
    while (tcCurrent.size() > tcFirst.size() && tcCurrent.ends_with(u'\\')) {
        tcCurrent.pop_back();
    }
    return 1;
}
