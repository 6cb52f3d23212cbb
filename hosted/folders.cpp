/* Stand-ins for looking through folders and copying files. Names come in small letters, as they are kept. */
#include <algorithm>
#include <memory>

#include <fnmatch.h>
#include <sys/stat.h>

#include "hosted/standin.h"

namespace {

namespace fs = std::filesystem;

struct Search {
    std::vector<WIN32_FIND_DATAW> found;
    size_t nNext = 0;
};

std::vector<std::unique_ptr<Search>>& searches()
{
    static std::vector<std::unique_ptr<Search>> instance;
    return instance;
}

Search* FindSearch(HANDLE hSearch)
{
    for (const auto& search : searches()) {
        if (search.get() == hSearch) {
            return search.get();
        }
    }
    return nullptr;
}

WIN32_FIND_DATAW Entry(const WideText& wcName, const std::string& host)
{
    WIN32_FIND_DATAW entry = {};
    struct stat link = {}, there = {};
    bool bLink = lstat(host.c_str(), &link) == 0 && S_ISLNK(link.st_mode);
    bool bFolder = stat(host.c_str(), &there) == 0 && S_ISDIR(there.st_mode);
    entry.dwFileAttributes = (bFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE) |
                             (bLink ? FILE_ATTRIBUTE_REPARSE_POINT : 0);
    entry.nFileSizeLow = bFolder ? 0 : static_cast<DWORD>(there.st_size);
    if (Lies(CALL_FindFirstFileW, LIE_UNTERMINATED) || Lies(CALL_FindNextFileW, LIE_UNTERMINATED)) {
        std::fill_n(entry.cFileName, 260, u'N');
    } else {
        wcName.copy(entry.cFileName, 259);
    }
    return entry;
}

} // namespace

void ResetFolders()
{
    searches().clear();
    liveCounts.nSearches = 0;
}

HANDLE WINAPI FindFirstFileW(LPCWSTR tcPattern, LPWIN32_FIND_DATAW pFound)
{
    FAILS(FindFirstFileW);
    std::u16string_view tcAll(tcPattern ? tcPattern : u"");
    size_t nSlash = tcAll.rfind(u'\\');
    std::string folder =
        nSlash == tcAll.npos ? std::string() : HostPath(WideText(tcAll.substr(0, nSlash)) + u"\\").native();
    if (folder.empty() || !fs::is_directory(folder)) {
        Refuse(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    std::string pattern = Narrow(LowerText(tcAll.substr(nSlash + 1)));
    pattern = pattern == "*.*" ? "*" : pattern; /* names without a dot, too */
    std::vector<std::string> names = {".", ".."};
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    auto search = std::make_unique<Search>();
    for (const std::string& name : names) {
        if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) {
            search->found.push_back(Entry(Widen(name), folder + "/" + name));
        }
    }
    if (search->found.empty()) {
        Refuse(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    *pFound = search->found[search->nNext++];
    searches().push_back(std::move(search));
    liveCounts.nSearches++;
    return searches().back().get();
}

BOOL WINAPI FindNextFileW(HANDLE hSearch, LPWIN32_FIND_DATAW pFound)
{
    FAILS(FindNextFileW);
    Search* pSearch = FindSearch(hSearch);
    if (!pSearch) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (pSearch->nNext == pSearch->found.size()) {
        return Refuse(ERROR_NO_MORE_FILES);
    }
    *pFound = pSearch->found[pSearch->nNext++];
    return 1;
}

BOOL WINAPI FindClose(HANDLE hSearch)
{
    int bFails = CallFails(CALL_FindClose); /* a release that fails still releases */
    if (!std::erase_if(searches(), [hSearch](const auto& search) { return search.get() == hSearch; })) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    liveCounts.nSearches--;
    return !bFails;
}

BOOL WINAPI CopyFileW(LPCWSTR tcFrom, LPCWSTR tcTo, BOOL bKeepOld)
{
    FAILS(CopyFileW);
    std::string from = HostPath(tcFrom).native(), to = HostPath(tcTo).native();
    struct stat there = {};
    Bytes bytes;
    if (from.empty() || to.empty() || !fs::is_regular_file(from) || !ReadHostBytes(from, &bytes)) {
        return Refuse(ERROR_FILE_NOT_FOUND);
    }
    if (stat(to.c_str(), &there) == 0) {
        if (bKeepOld) {
            return Refuse(ERROR_FILE_EXISTS);
        }
        if (!S_ISREG(there.st_mode) || !(there.st_mode & S_IWUSR)) {
            return Refuse(ERROR_ACCESS_DENIED);
        }
        if (HostSharingError(there.st_dev, there.st_ino, GENERIC_WRITE, 0)) {
            return Refuse(ERROR_SHARING_VIOLATION);
        }
    }
    DWORD dwError = WriteHostBytes(to, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return dwError ? Refuse(dwError) : 1;
}
