/* Stand-ins for what changes files that are there: writing, flushing, renaming, deleting, attributes. */
#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include "hosted/open_files.h"

namespace {

i64 lDiskRoom = -1; /* bytes that can still be written; -1: no end */

constexpr DWORD ERROR_DISK_FULL = 112;

} // namespace

void SetDiskRoom(i64 lBytes)
{
    lDiskRoom = lBytes;
}

BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID pBytes, DWORD cbWanted, LPDWORD pcbDone, LPOVERLAPPED pOverlapped)
{
    FAILS(WriteFile);
    if (!pcbDone || pOverlapped) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    *pcbDone = 0;
    OpenFile* pFile = FindFile(hFile);
    if (!pFile) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (!(pFile->dwAccess & FILE_WRITE_DATA)) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    if (!pBytes && cbWanted) {
        return Refuse(ERROR_NOACCESS);
    }
    if (lDiskRoom >= 0 && cbWanted > lDiskRoom) {
        return Refuse(ERROR_DISK_FULL);
    }
    lDiskRoom -= lDiskRoom < 0 ? 0 : cbWanted;
    if (Lies(CALL_WriteFile, LIE_SHORT)) {
        cbWanted = cbWanted > 1 ? cbWanted / 2 : cbWanted;
    }
    i64 lAt = pFile->lPosition;
    while (*pcbDone < cbWanted) {
        ssize_t cb = pwrite(pFile->nDescriptor, static_cast<const u8*>(pBytes) + *pcbDone,
                            cbWanted - *pcbDone, pFile->lPosition);
        if (cb < 0 && errno == EINTR) {
            continue;
        }
        if (cb <= 0) {
            return Refuse(errno == ENOSPC ? ERROR_DISK_FULL : ERROR_GEN_FAILURE);
        }
        *pcbDone += static_cast<DWORD>(cb);
        pFile->lPosition += cb;
    }
    LogWrite(pFile->ulNode, lAt, pBytes, *pcbDone);
    if (Lies(CALL_WriteFile, LIE_HUGE)) {
        *pcbDone = 0xFFFFFFF0;
    }
    return 1;
}

BOOL WINAPI FlushFileBuffers(HANDLE hFile)
{
    FAILS(FlushFileBuffers);
    OpenFile* pFile = FindFile(hFile);
    if (!pFile) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (!(pFile->dwAccess & FILE_WRITE_DATA)) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    LogFlush(pFile->ulNode); /* the host's own disk need not take part */
    return 1;
}

BOOL WINAPI MoveFileExW(LPCWSTR tcFrom, LPCWSTR tcTo, DWORD dwFlags)
{
    FAILS(MoveFileExW);
    std::string from, to;
    struct stat source = {}, target = {};
    if (dwFlags & ~(MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    if (!LookUp(tcFrom, &from, &source)) {
        return 0;
    }
    ResolvedPath path = Resolve(tcTo);
    if (path.dwError || (path.bNeedFolder && !S_ISDIR(source.st_mode))) {
        return Refuse(path.dwError ? path.dwError : ERROR_INVALID_NAME);
    }
    if (IsHeld(source)) {
        return Refuse(ERROR_SHARING_VIOLATION);
    }
    bool bSame = false;
    if (lstat(path.host.c_str(), &target) == 0) {
        bSame = source.st_ino == target.st_ino && source.st_dev == target.st_dev;
        if (!(dwFlags & MOVEFILE_REPLACE_EXISTING) && !bSame) {
            return Refuse(ERROR_ALREADY_EXISTS);
        }
        bool bReadOnly = S_ISREG(target.st_mode) && !(target.st_mode & S_IWUSR);
        if (!bSame && (S_ISDIR(target.st_mode) || S_ISDIR(source.st_mode) || bReadOnly || IsHeld(target))) {
            return Refuse(ERROR_ACCESS_DENIED);
        }
    }
    LogBefore(from);
    LogBefore(path.host);
    if (rename(from.c_str(), path.host.c_str()) != 0) {
        return Refuse(HostPathError(path.host, errno));
    }
    LogRename(from, path.host, (dwFlags & MOVEFILE_WRITE_THROUGH) != 0);
    return 1;
}

DWORD WINAPI GetFileAttributesW(LPCWSTR tcPath)
{
    FAILS(GetFileAttributesW);
    std::string host;
    struct stat there = {}, behind = {};
    if (!LookUp(tcPath, &host, &there)) {
        return INVALID_FILE_ATTRIBUTES;
    }
    if (S_ISLNK(there.st_mode)) {
        bool bFolder = stat(host.c_str(), &behind) == 0 && S_ISDIR(behind.st_mode);
        return FILE_ATTRIBUTE_REPARSE_POINT | (bFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE);
    }
    return S_ISDIR(there.st_mode)    ? FILE_ATTRIBUTE_DIRECTORY
           : there.st_mode & S_IWUSR ? FILE_ATTRIBUTE_ARCHIVE
                                     : FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY;
}

BOOL WINAPI SetFileAttributesW(LPCWSTR tcPath, DWORD dwAttributes)
{
    FAILS(SetFileAttributesW);
    std::string host;
    struct stat there = {};
    if (!LookUp(tcPath, &host, &there)) {
        return 0;
    }
    /* On a folder the attribute forbids nothing. */
    mode_t nMode = dwAttributes & FILE_ATTRIBUTE_READONLY ? 0444 : 0644;
    return !S_ISREG(there.st_mode) || chmod(host.c_str(), nMode) == 0 ? 1
                                                                      : Refuse(HostPathError(host, errno));
}

BOOL WINAPI DeleteFileW(LPCWSTR tcPath)
{
    FAILS(DeleteFileW);
    std::string host;
    struct stat there = {};
    if (!LookUp(tcPath, &host, &there)) {
        return 0;
    }
    if (!S_ISLNK(there.st_mode) && (!S_ISREG(there.st_mode) || !(there.st_mode & S_IWUSR))) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    if (IsHeld(there)) {
        return Refuse(ERROR_SHARING_VIOLATION);
    }
    LogBefore(host);
    if (unlink(host.c_str()) != 0) {
        return Refuse(HostPathError(host, errno));
    }
    LogDeletion(host);
    return 1;
}
