/* Stand-ins for files and folders: real files below the machine's root. A drive's letter is a folder of the
   root, "\\server\share" is unc/server/share there, and every name is kept in small letters. The read-only
   attribute is the missing write permission of the file's owner; hidden and system are not kept. */
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "hosted/open_files.h"

namespace {

constexpr DWORD ERROR_CANT_ACCESS_FILE = 1920;

constexpr DWORD GENERIC_ALL = 0x10000000;

constexpr size_t PATH_LIMIT = 259;   /* characters of a path without its NUL */
constexpr size_t FOLDER_LIMIT = 247; /* a folder leaves room for a file name of 8.3 in it */
constexpr i64 HUGE_SIZE = i64{1} << 40;

struct Files {
    std::vector<OpenFile> open;
    u32 ulLastSerial = 0;
};

Files& files()
{
    static Files instance;
    return instance;
}

bool IsSeparator(char16_t character)
{
    return character == u'\\' || character == u'/';
}

std::u16string_view WithoutExtension(std::u16string_view wcName)
{
    wcName = wcName.substr(0, wcName.find(u'.'));
    return wcName.substr(0, wcName.find_last_not_of(u' ') + 1);
}

/* Device names are taken in any folder and with any extension. Only the null device can be opened here. */
bool IsDeviceName(std::u16string_view wcName)
{
    wcName = WithoutExtension(wcName);
    if (wcName.size() == 4 && wcName[3] >= u'1' && wcName[3] <= u'9') {
        return SameName(wcName.substr(0, 3), u"COM") || SameName(wcName.substr(0, 3), u"LPT");
    }
    return SameName(wcName, u"NUL") || SameName(wcName, u"CON") || SameName(wcName, u"AUX") ||
           SameName(wcName, u"PRN");
}

bool IsUsableName(std::u16string_view wcName)
{
    constexpr std::u16string_view WC_FORBIDDEN = u"<>:\"|?*";
    for (char16_t character : wcName) {
        if (character < 0x20 || WC_FORBIDDEN.find(character) != WC_FORBIDDEN.npos) {
            return false;
        }
    }
    return true;
}

/* Takes the next name and the separators behind it off the path. */
std::u16string_view TakeName(std::u16string_view* pRest, bool* pbLast)
{
    size_t nEnd = std::min(pRest->find_first_of(u"\\/"), pRest->size());
    std::u16string_view wcName = pRest->substr(0, nEnd);
    *pbLast = nEnd == pRest->size();
    pRest->remove_prefix(std::min(pRest->find_first_not_of(u"\\/", nEnd), pRest->size()));
    return wcName;
}

/* The names of a path behind its drive or share, as Windows reads them: "." and ".." go, the second never
   above the drive or share; dots end no name, and blanks not the last one. Result: 0 or an error. */
DWORD ResolveNames(std::u16string_view wcRest, std::vector<std::u16string_view>* pNames, bool* pbNeedFolder)
{
    while (!wcRest.empty()) {
        bool bLast;
        std::u16string_view wcName = TakeName(&wcRest, &bLast);
        *pbNeedFolder = !bLast;
        if (wcName.empty() || wcName == u".") {
            continue;
        }
        if (wcName == u"..") {
            if (!pNames->empty()) {
                pNames->pop_back();
            }
            continue;
        }
        while (!wcName.empty() && (wcName.back() == u'.' || (bLast && wcName.back() == u' '))) {
            wcName.remove_suffix(1);
        }
        if (wcName.empty() && bLast) {
            continue;
        }
        if (wcName.empty() || !IsUsableName(wcName)) {
            return ERROR_INVALID_NAME;
        }
        pNames->push_back(wcName);
    }
    return !pNames->empty() && IsDeviceName(pNames->back()) ? ERROR_FILE_NOT_FOUND : 0;
}

/* Start of the host path: the drive's folder or the share's. Result: 0 or an error. */
DWORD ResolveStart(std::u16string_view* pRest, WideText* pStart)
{
    std::u16string_view wcPath = *pRest;
    if (wcPath.size() >= 3 && wcPath[1] == u':' && IsSeparator(wcPath[2])) {
        char16_t wcDrive = UpperChar(wcPath[0]);
        if (wcDrive < u'A' || wcDrive > u'Z') {
            return ERROR_PATH_NOT_FOUND;
        }
        pStart->assign({u'/', wcDrive});
        pRest->remove_prefix(3);
        return 0;
    }
    if (wcPath.size() < 2 || !IsSeparator(wcPath[0]) || !IsSeparator(wcPath[1])) {
        return ERROR_PATH_NOT_FOUND; /* the root or the folder of a drive that is not told */
    }
    pRest->remove_prefix(2);
    if (!pRest->empty() && (pRest->front() == u'?' || pRest->front() == u'.')) {
        return ERROR_FILE_NOT_FOUND; /* a device */
    }
    pStart->assign(u"/unc");
    for (int i = 0; i < 2; i++) {
        bool bLast;
        std::u16string_view wcName = TakeName(pRest, &bLast);
        if (wcName.find_first_not_of(u". ") == std::u16string_view::npos || !IsUsableName(wcName)) {
            return ERROR_PATH_NOT_FOUND;
        }
        pStart->append(u"/").append(wcName);
    }
    return 0;
}

/* A handle is the slot with its serial number above it, and a mark that no other kind of handle bears. */
HANDLE HandleOf(size_t nSlot, u32 ulSerial)
{
    return reinterpret_cast<HANDLE>(u64{ulSerial} << 32 | 0x46000000 | nSlot << 2);
}

DWORD DataAccess(DWORD dwAccess)
{
    DWORD dwData = dwAccess & (FILE_READ_DATA | FILE_WRITE_DATA);
    dwData |= dwAccess & (GENERIC_READ | GENERIC_ALL) ? FILE_READ_DATA : 0;
    dwData |= dwAccess & (GENERIC_WRITE | GENERIC_ALL) ? FILE_WRITE_DATA : 0;
    dwData |= dwAccess & (DELETE | GENERIC_ALL) ? DELETE_DATA : 0;
    return dwData;
}

/* The bits of data access and of sharing are the same, so that one mask tells. */
bool Excludes(DWORD dwShare, DWORD dwData)
{
    static_assert(FILE_READ_DATA == FILE_SHARE_READ && FILE_WRITE_DATA == FILE_SHARE_WRITE);
    return (dwData & ~dwShare) != 0;
}

HANDLE KeepFile(const OpenFile& opened)
{
    std::vector<OpenFile>& open = files().open;
    size_t nSlot = 0;
    while (nSlot < open.size() && open[nSlot].nDescriptor >= 0) {
        nSlot++;
    }
    if (nSlot == open.size()) {
        open.emplace_back();
    }
    open[nSlot] = opened;
    open[nSlot].ulSerial = ++files().ulLastSerial;
    liveCounts.nFiles++;
    return HandleOf(nSlot, open[nSlot].ulSerial);
}

/* Opens or makes the file. Result: the descriptor, or -1 with the last error set. */
int OpenOnHost(const ResolvedPath& path, DWORD dwDisposition, DWORD dwData, DWORD dwAttributes, bool* pbMade)
{
    bool bMakes = dwDisposition != OPEN_EXISTING && dwDisposition != TRUNCATE_EXISTING;
    bool bLink = (dwAttributes & FILE_FLAG_OPEN_REPARSE_POINT) != 0;
    /* What the system opens of a link by this flag, the link itself, cannot be read or written here. */
    bool bOnlyNamed = bLink && !bMakes && !(dwData & (FILE_READ_DATA | FILE_WRITE_DATA));
    int nFlags = (bOnlyNamed                 ? O_PATH
                  : dwData & FILE_WRITE_DATA ? O_RDWR
                                             : O_RDONLY) |
                 O_CLOEXEC | (bLink ? O_NOFOLLOW : 0);
    *pbMade = false;
    if (dwDisposition != CREATE_NEW) {
        int nDescriptor = open(path.host.c_str(), nFlags);
        if (nDescriptor >= 0 || errno != ENOENT || !bMakes) {
            if (nDescriptor < 0) {
                Refuse(HostPathError(path.host, errno));
            }
            return nDescriptor;
        }
    }
    if (path.bNeedFolder) {
        Refuse(ERROR_INVALID_NAME);
        return -1;
    }
    mode_t nMode = dwAttributes & FILE_ATTRIBUTE_READONLY ? 0444 : 0666;
    int nDescriptor = open(path.host.c_str(), nFlags | O_CREAT | O_EXCL, nMode);
    *pbMade = true;
    if (nDescriptor < 0) {
        Refuse(errno == ENOENT ? ERROR_PATH_NOT_FOUND : HostPathError(path.host, errno));
    }
    return nDescriptor;
}

/* What forbids this opening of a file that is there: 0 or an error. */
DWORD OpeningError(const struct stat& there, const ResolvedPath& path, DWORD dwData, DWORD dwShare,
                   DWORD dwAttributes)
{
    if (S_ISDIR(there.st_mode)) {
        return dwAttributes & FILE_FLAG_BACKUP_SEMANTICS && !dwData ? 0 : ERROR_ACCESS_DENIED;
    }
    if (path.bNeedFolder) {
        return ERROR_INVALID_NAME;
    }
    if (dwData & FILE_WRITE_DATA && !(there.st_mode & S_IWUSR)) {
        return ERROR_ACCESS_DENIED; /* said here, since the super-user's opening succeeds */
    }
    return HostSharingError(there.st_dev, there.st_ino, dwData, dwShare);
}

} // namespace

ResolvedPath Resolve(std::u16string_view wcPath)
{
    ResolvedPath resolved;
    if (machineRoot.empty() || wcPath.empty() || wcPath.size() > PATH_LIMIT) {
        resolved.dwError = ERROR_PATH_NOT_FOUND;
        return resolved;
    }
    const WideText tcWhole = BelowCurrentFolder(wcPath);
    wcPath = tcWhole;
    WideText wcHost;
    std::vector<std::u16string_view> names;
    resolved.dwError = ResolveStart(&wcPath, &wcHost);
    if (!resolved.dwError) {
        resolved.dwError = ResolveNames(wcPath, &names, &resolved.bNeedFolder);
    }
    if (resolved.dwError) {
        resolved.bNul = !names.empty() && SameName(WithoutExtension(names.back()), u"NUL");
        return resolved;
    }
    for (std::u16string_view wcName : names) {
        wcHost.append(u"/").append(wcName);
    }
    resolved.host = machineRoot.native() + Narrow(LowerText(wcHost));
    return resolved;
}

ResolvedPath Resolve(LPCWSTR wcPath)
{
    return Resolve(wcPath ? std::u16string_view(wcPath) : std::u16string_view());
}

OpenFile* FindFile(HANDLE hFile)
{
    u64 ulHandle = reinterpret_cast<u64>(hFile);
    size_t nSlot = (ulHandle & 0xFFFFFF) >> 2;
    if (nSlot >= files().open.size()) {
        return nullptr;
    }
    OpenFile* pFile = &files().open[nSlot];
    return pFile->nDescriptor >= 0 && HandleOf(nSlot, pFile->ulSerial) == hFile ? pFile : nullptr;
}

OpenFile* FindSameFile(const OpenFile& file)
{
    for (OpenFile& other : files().open) {
        if (&other != &file && other.nDescriptor >= 0 && other.ulNode == file.ulNode &&
            other.ulDevice == file.ulDevice) {
            return &other;
        }
    }
    return nullptr;
}

bool IsHeld(const struct stat& file)
{
    for (const OpenFile& other : files().open) {
        if (other.nDescriptor >= 0 && other.ulNode == file.st_ino && other.ulDevice == file.st_dev &&
            !(other.dwShare & FILE_SHARE_DELETE)) {
            return true;
        }
    }
    return false;
}

BOOL LookUp(LPCWSTR tcPath, std::string* pHost, struct stat* pThere)
{
    ResolvedPath path = Resolve(tcPath);
    if (path.dwError || lstat(path.host.c_str(), pThere) != 0) {
        return Refuse(path.dwError ? path.dwError : HostPathError(path.host, errno));
    }
    *pHost = path.host;
    return !path.bNeedFolder || S_ISDIR(pThere->st_mode) ? 1 : Refuse(ERROR_PATH_NOT_FOUND);
}

DWORD HostPathError(const std::string& host, int nError)
{
    struct stat parent;
    switch (nError) {
    case ENOENT:
        return stat(host.substr(0, host.rfind('/')).c_str(), &parent) == 0 && S_ISDIR(parent.st_mode)
                   ? ERROR_FILE_NOT_FOUND
                   : ERROR_PATH_NOT_FOUND;
    case ENOTDIR: return ERROR_PATH_NOT_FOUND;
    case ENAMETOOLONG: return ERROR_INVALID_NAME;
    case EEXIST: return ERROR_FILE_EXISTS;
    case ELOOP: return ERROR_CANT_ACCESS_FILE;
    case EISDIR:
    case EACCES:
    case EPERM:
    case EROFS: return ERROR_ACCESS_DENIED;
    default: return ERROR_GEN_FAILURE;
    }
}

bool ReadHostBytes(const std::string& host, Bytes* pBytes)
{
    u8 aChunk[16384];
    std::FILE* pFile = std::fopen(host.c_str(), "rb");
    pBytes->clear();
    for (size_t cb = 1; pFile && cb > 0;) {
        cb = std::fread(aChunk, 1, sizeof aChunk, pFile);
        pBytes->insert(pBytes->end(), aChunk, aChunk + cb);
    }
    bool bRead = pFile && !std::ferror(pFile);
    if (pFile) {
        std::fclose(pFile);
    }
    return bRead;
}

DWORD WriteHostBytes(const std::string& host, std::string_view bytes)
{
    /* Cut behind the writing, not before: ext4 sends a file to the disk at once that was emptied first. */
    int nDescriptor = open(host.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    bool bWritten = nDescriptor >= 0;
    for (size_t cbDone = 0; bWritten && cbDone < bytes.size();) {
        ssize_t cb = write(nDescriptor, bytes.data() + cbDone, bytes.size() - cbDone);
        bWritten = cb > 0 || (cb < 0 && errno == EINTR);
        cbDone += cb > 0 ? static_cast<size_t>(cb) : 0;
    }
    bWritten = bWritten && ftruncate(nDescriptor, static_cast<off_t>(bytes.size())) == 0;
    DWORD dwError = bWritten ? 0 : HostPathError(host, errno);
    if (nDescriptor >= 0) {
        close(nDescriptor);
    }
    return dwError;
}

DWORD HostSharingError(u64 ulDevice, u64 ulNode, DWORD dwAccess, DWORD dwShare)
{
    DWORD dwData = DataAccess(dwAccess);
    for (const OpenFile& other : files().open) {
        if (other.nDescriptor >= 0 && other.ulNode == ulNode && other.ulDevice == ulDevice && dwData &&
            other.dwAccess && (Excludes(other.dwShare, dwData) || Excludes(dwShare, other.dwAccess))) {
            return ERROR_SHARING_VIOLATION;
        }
    }
    return 0;
}

std::map<std::string, int>& OpenCounts()
{
    static std::map<std::string, int> counts;
    return counts;
}

HANDLE WINAPI CreateFileW(LPCWSTR tcPath, DWORD dwAccess, DWORD dwShare, LPSECURITY_ATTRIBUTES,
                          DWORD dwDisposition, DWORD dwAttributes, HANDLE)
{
    FAILS(CreateFileW);
    ResolvedPath path = Resolve(tcPath);
    if (path.bNul && dwDisposition == OPEN_EXISTING) {
        path.host = "/dev/null";
        path.dwError = 0;
    }
    bool bEmpties = dwDisposition == CREATE_ALWAYS || dwDisposition == TRUNCATE_EXISTING;
    DWORD dwData = DataAccess(dwAccess);
    bool bBadCall = dwDisposition < CREATE_NEW || dwDisposition > TRUNCATE_EXISTING ||
                    (dwDisposition == TRUNCATE_EXISTING && !(dwData & FILE_WRITE_DATA));
    if (path.dwError || bBadCall) {
        Refuse(path.dwError ? path.dwError : ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    bool bMade;
    OpenFile opened;
    if (bEmpties || dwData & FILE_WRITE_DATA) {
        LogBefore(path.host);
    }
    /* Emptying a file is writing it, whatever access was asked for. */
    DWORD dwUse = dwData | (bEmpties ? FILE_WRITE_DATA : 0);
    opened.nDescriptor = OpenOnHost(path, dwDisposition, dwUse, dwAttributes, &bMade);
    if (opened.nDescriptor < 0) {
        return INVALID_HANDLE_VALUE;
    }
    struct stat there = {};
    DWORD dwError = fstat(opened.nDescriptor, &there) == 0 ? 0 : ERROR_GEN_FAILURE;
    if (!dwError && !bMade) {
        dwError = OpeningError(there, path, dwUse, dwShare, dwAttributes);
    }
    if (!dwError && !bMade && bEmpties && ftruncate(opened.nDescriptor, 0) != 0) {
        dwError = ERROR_GEN_FAILURE;
    }
    if (dwError) {
        close(opened.nDescriptor);
        Refuse(dwError);
        return INVALID_HANDLE_VALUE;
    }
    opened.ulDevice = there.st_dev;
    opened.ulNode = there.st_ino;
    if (bMade) {
        LogCreation(path.host, opened.ulNode);
    } else if (bEmpties) {
        LogEmptying(opened.ulNode);
    }
    opened.dwAccess = dwData;
    opened.dwShare = dwShare;
    OpenCounts()[path.host]++;
    bool bAlways = dwDisposition == CREATE_ALWAYS || dwDisposition == OPEN_ALWAYS;
    SetHostedError(bAlways && !bMade ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return KeepFile(opened);
}

BOOL WINAPI ReadFile(HANDLE hFile, LPVOID pBytes, DWORD cbWanted, LPDWORD pcbRead, LPOVERLAPPED pOverlapped)
{
    FAILS(ReadFile);
    if (!pcbRead || pOverlapped) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    *pcbRead = 0;
    OpenFile* pFile = FindFile(hFile);
    if (!pFile) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (!(pFile->dwAccess & FILE_READ_DATA)) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    if (!pBytes && cbWanted) {
        return Refuse(ERROR_NOACCESS);
    }
    if (Lies(CALL_ReadFile, LIE_SHORT)) {
        cbWanted /= 2;
    }
    while (*pcbRead < cbWanted) {
        ssize_t cb = pread(pFile->nDescriptor, static_cast<u8*>(pBytes) + *pcbRead, cbWanted - *pcbRead,
                           pFile->lPosition);
        if (cb < 0 && errno == EINTR) {
            continue;
        }
        if (cb < 0 && errno != EINVAL) { /* EINVAL: the position is beyond what a file can hold */
            return Refuse(ERROR_GEN_FAILURE);
        }
        if (cb <= 0) {
            break;
        }
        *pcbRead += static_cast<DWORD>(cb);
        pFile->lPosition += cb;
    }
    if (Lies(CALL_ReadFile, LIE_HUGE)) {
        *pcbRead = 0xFFFFFFF0;
    }
    return 1;
}

BOOL WINAPI SetFilePointerEx(HANDLE hFile, LARGE_INTEGER lMove, PLARGE_INTEGER plPosition, DWORD dwMethod)
{
    FAILS(SetFilePointerEx);
    OpenFile* pFile = FindFile(hFile);
    struct stat there = {};
    if (!pFile) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (dwMethod > FILE_END || (dwMethod == FILE_END && fstat(pFile->nDescriptor, &there) != 0)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    i64 lFrom = dwMethod == FILE_BEGIN ? 0 : dwMethod == FILE_CURRENT ? pFile->lPosition : there.st_size;
    i64 lPosition;
    if (__builtin_add_overflow(lFrom, lMove.QuadPart, &lPosition) || lPosition < 0) {
        return Refuse(ERROR_NEGATIVE_SEEK);
    }
    pFile->lPosition = lPosition;
    if (plPosition) {
        plPosition->QuadPart = lPosition;
    }
    return 1;
}

BOOL WINAPI GetFileSizeEx(HANDLE hFile, PLARGE_INTEGER plSize)
{
    FAILS(GetFileSizeEx);
    OpenFile* pFile = FindFile(hFile);
    struct stat there = {};
    if (!pFile) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (!plSize || fstat(pFile->nDescriptor, &there) != 0) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    plSize->QuadPart = Lies(CALL_GetFileSizeEx, LIE_HUGE) ? HUGE_SIZE : there.st_size;
    return 1;
}

BOOL WINAPI CloseHandle(HANDLE hObject)
{
    std::lock_guard held(machineLock);
    int bFails = CallFails(CALL_CloseHandle); /* a close that fails still closes, else the fault would leak */
    if (OpenFile* pFile = FindFile(hObject)) {
        CloseOpenFile(pFile);
        liveCounts.nFiles--;
        return !bFails;
    }
    if (CloseSemaphore(hObject) || CloseEvent(hObject)) {
        return !bFails;
    }
    /* The invalid handle is at the same time this process's own, which closes at any time without effect. */
    return bFails ? 0 : hObject == INVALID_HANDLE_VALUE ? 1 : Refuse(ERROR_INVALID_HANDLE);
}

BOOL WINAPI CreateDirectoryW(LPCWSTR tcPath, LPSECURITY_ATTRIBUTES)
{
    FAILS(CreateDirectoryW);
    ResolvedPath path = Resolve(tcPath);
    if (tcPath && std::u16string_view(tcPath).size() > FOLDER_LIMIT) {
        return Refuse(ERROR_FILENAME_EXCED_RANGE);
    }
    if (path.dwError || mkdir(path.host.c_str(), 0777) == 0) {
        return path.dwError ? Refuse(path.dwError) : 1;
    }
    return Refuse(errno == EEXIST   ? ERROR_ALREADY_EXISTS
                  : errno == ENOENT ? ERROR_PATH_NOT_FOUND
                                    : HostPathError(path.host, errno));
}

void ResetFiles()
{
    for (const OpenFile& left : files().open) {
        if (left.nDescriptor >= 0) {
            close(left.nDescriptor);
        }
    }
    files().open.clear();
    liveCounts.nFiles = 0;
}

std::filesystem::path HostPath(std::u16string_view tcPath)
{
    return Resolve(tcPath).host;
}

bool ReadHostFile(std::u16string_view tcPath, Bytes* pBytes)
{
    return ReadHostBytes(HostPath(tcPath).native(), pBytes);
}

void PutFile(std::u16string_view tcPath, std::string_view text)
{
    std::filesystem::path host = HostPath(tcPath);
    std::error_code ignored; /* the writing tells */
    std::filesystem::create_directories(host.parent_path(), ignored);
    if (host.empty() || WriteHostBytes(host.native(), text)) {
        std::fprintf(stderr, "PutFile: \"%s\" cannot be written\n", Narrow(tcPath).c_str());
        std::abort(); /* a test that goes on without its file would test nothing */
    }
}

void PutFile(std::u16string_view tcPath, const Bytes& bytes)
{
    PutFile(tcPath, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

Bytes GetFile(std::u16string_view tcPath)
{
    Bytes bytes;
    ReadHostFile(tcPath, &bytes);
    return bytes;
}

bool HasFile(std::u16string_view tcPath)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(HostPath(tcPath), ignored);
}

void SetReadOnly(std::u16string_view tcPath, bool bReadOnly)
{
    if (chmod(HostPath(tcPath).c_str(), bReadOnly ? 0444 : 0644) != 0) {
        std::fprintf(stderr, "SetReadOnly: there is no \"%s\"\n", Narrow(tcPath).c_str());
        std::abort();
    }
}
