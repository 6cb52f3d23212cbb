/* Stand-ins for what concerns a file by its handle and not by its path: its kind, where it really lies, its
   deletion. */
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "hosted/open_files.h"

namespace {

/* Where the file of a descriptor lies on the host now, links resolved; "" when it has no name any more. */
std::string HostName(int nDescriptor)
{
    std::error_code error;
    struct stat there = {};
    if (fstat(nDescriptor, &there) != 0 || there.st_nlink == 0) {
        return "";
    }
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(nDescriptor), error).native();
}

/* The machine's path of a file on the host; "" outside the machine's root. */
WideText MachinePath(const std::string& host)
{
    std::error_code error;
    const std::string root = std::filesystem::canonical(machineRoot, error).native() + "/";
    if (error || host.compare(0, root.size(), root) != 0 || host.size() == root.size()) {
        return u"";
    }
    WideText tcPath = Widen(host.substr(root.size()));
    for (char16_t& character : tcPath) {
        character = character == u'/' ? u'\\' : character;
    }
    if (tcPath.substr(0, 4) == u"unc\\") {
        return u"\\\\?\\UNC" + tcPath.substr(3);
    }
    return u"\\\\?\\" + WideText(1, UpperChar(tcPath[0])) + u":" +
           (tcPath.size() > 1 ? tcPath.substr(1) : u"\\");
}

/* Takes away the name by which an open file was found. The folder is held while the name is looked at and taken
   away, so that a folder that is swapped for a link meanwhile leads nowhere else. */
void DeleteOpened(const OpenFile& file)
{
    for (int nTry = 0; nTry < 16; nTry++) {
        const std::string host = HostName(file.nDescriptor);
        size_t nSlash = host.rfind('/');
        if (nSlash == host.npos) {
            return;
        }
        struct stat there = {};
        int nFolder = open(host.substr(0, nSlash).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        const char* cName = host.c_str() + nSlash + 1;
        bool bSame = nFolder >= 0 && fstatat(nFolder, cName, &there, AT_SYMLINK_NOFOLLOW) == 0 &&
                     there.st_ino == file.ulNode && there.st_dev == file.ulDevice;
        if (bSame) {
            LogBefore(host);
        }
        bool bGone = bSame && unlinkat(nFolder, cName, 0) == 0;
        if (bGone) {
            LogDeletion(host);
        }
        if (nFolder >= 0) {
            close(nFolder);
        }
        if (bGone) {
            return;
        }
    }
}

} // namespace

void CloseOpenFile(OpenFile* pFile)
{
    if (pFile->bDeletes) {
        if (OpenFile* pOther = FindSameFile(*pFile)) {
            pOther->bDeletes = true;
        } else {
            DeleteOpened(*pFile);
        }
    }
    close(pFile->nDescriptor);
    pFile->nDescriptor = -1;
}

DWORD WINAPI GetFileType(HANDLE hFile)
{
    FAILS(GetFileType);
    OpenFile* pFile = FindFile(hFile);
    struct stat there = {};
    if (!pFile || fstat(pFile->nDescriptor, &there) != 0) {
        Refuse(ERROR_INVALID_HANDLE);
        return 0;
    }
    SetHostedError(ERROR_SUCCESS);
    bool bDisk = S_ISREG(there.st_mode) || S_ISDIR(there.st_mode) || S_ISLNK(there.st_mode);
    return bDisk ? FILE_TYPE_DISK : S_ISCHR(there.st_mode) ? FILE_TYPE_CHAR : FILE_TYPE_PIPE;
}

DWORD WINAPI GetFinalPathNameByHandleW(HANDLE hFile, LPWSTR tcOut, DWORD cchOut, DWORD dwFlags)
{
    FAILS(GetFinalPathNameByHandleW);
    OpenFile* pFile = FindFile(hFile);
    if (!pFile || dwFlags) {
        Refuse(pFile ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
        return 0;
    }
    const WideText tcPath = MachinePath(HostName(pFile->nDescriptor));
    if (tcPath.empty()) {
        Refuse(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    if (Lies(CALL_GetFinalPathNameByHandleW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    if (tcPath.size() >= cchOut) {
        Refuse(ERROR_NOT_ENOUGH_MEMORY);
        return static_cast<DWORD>(tcPath.size()) + 1;
    }
    tcPath.copy(tcOut, tcPath.size());
    tcOut[tcPath.size()] = Lies(CALL_GetFinalPathNameByHandleW, LIE_UNTERMINATED) ? u'N' : u'\0';
    return static_cast<DWORD>(tcPath.size());
}

BOOL WINAPI SetFileInformationByHandle(HANDLE hFile, FILE_INFO_BY_HANDLE_CLASS kind, LPVOID pInfo,
                                       DWORD cbInfo)
{
    FAILS(SetFileInformationByHandle);
    OpenFile* pFile = FindFile(hFile);
    struct stat there = {};
    if (!pFile || fstat(pFile->nDescriptor, &there) != 0) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (kind != FileDispositionInfo || !pInfo || cbInfo < sizeof(FILE_DISPOSITION_INFO)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    bool bDeletes = static_cast<const FILE_DISPOSITION_INFO*>(pInfo)->DeleteFile != 0;
    bool bReadOnly = S_ISREG(there.st_mode) && !(there.st_mode & S_IWUSR);
    if (!(pFile->dwAccess & DELETE_DATA) || (bDeletes && (bReadOnly || S_ISDIR(there.st_mode)))) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    pFile->bDeletes = bDeletes;
    return 1;
}
