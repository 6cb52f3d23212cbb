/* What the library relies on in the file calls: names, dispositions, sharing, reading and seeking. */
#include <cstring>

#include "platform/files.h"
#include "platform/process.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

class Files : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
        PutTestFile(Path("a.txt"), "0123456789");
    }

    WideString Path(const std::string& name) const { return tcFolder + Wide("\\" + name); }

    WideString tcFolder;
};

HANDLE Open(const WideString& tcPath, DWORD dwAccess = GENERIC_READ,
            DWORD dwShare = FILE_SHARE_READ | FILE_SHARE_WRITE, DWORD dwDisposition = OPEN_EXISTING)
{
    return CreateFileW(tcPath.c_str(), dwAccess, dwShare, nullptr, dwDisposition, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

/* Opens and closes again. Result: the last error of the opening, ERROR_SUCCESS when it went well. */
DWORD OpenError(const WideString& tcPath, DWORD dwAccess = GENERIC_READ,
                DWORD dwShare = FILE_SHARE_READ | FILE_SHARE_WRITE, DWORD dwDisposition = OPEN_EXISTING)
{
    HANDLE hFile = Open(tcPath, dwAccess, dwShare, dwDisposition);
    DWORD dwError = GetLastError();
    if (hFile == INVALID_HANDLE_VALUE) {
        EXPECT_NE(dwError, ERROR_SUCCESS);
        return dwError;
    }
    CloseHandle(hFile);
    return ERROR_SUCCESS;
}

DWORD AttributesError(const WideString& tcPath)
{
    return GetFileAttributesW(tcPath.c_str()) == INVALID_FILE_ATTRIBUTES ? GetLastError() : ERROR_SUCCESS;
}

DWORD FolderError(const WideString& tcPath)
{
    return CreateDirectoryW(tcPath.c_str(), nullptr) ? ERROR_SUCCESS : GetLastError();
}

std::string Read(HANDLE hFile, DWORD cbWanted)
{
    char aBytes[64];
    DWORD cbRead = 0xDEAD;
    std::memset(aBytes, '~', sizeof aBytes);
    if (!ReadFile(hFile, aBytes, cbWanted, &cbRead, nullptr)) {
        return "error " + std::to_string(GetLastError());
    }
    EXPECT_LE(cbRead, cbWanted);
    EXPECT_EQ(aBytes[cbRead], '~') << "written behind the bytes read";
    return {aBytes, cbRead};
}

/* Result: the new position, or the error as a negative number. */
long long Seek(HANDLE hFile, long long lMove, DWORD dwMethod)
{
    LARGE_INTEGER move, position;
    move.QuadPart = lMove;
    position.QuadPart = -99;
    if (!SetFilePointerEx(hFile, move, &position, dwMethod)) {
        EXPECT_EQ(position.QuadPart, -99);
        return -static_cast<long long>(GetLastError());
    }
    return position.QuadPart;
}

TEST_F(Files, NamesAreReadAsWindowsReadsThem)
{
    static const struct {
        const char* cName;
        DWORD dwError;
    } aCases[] = {
        {"a.txt", 0},
        {"A.TXT", 0},
        {"a.txt ", 0},
        {"a.txt.", 0},
        {"a.txt. .", 0},
        {"\\\\a.txt", 0},
        {".\\a.txt", 0},
        {"none\\..\\a.txt", 0},
        {"a.txt\\..\\A.txt", 0},
        {" a.txt", ERROR_FILE_NOT_FOUND},
        {"none.txt", ERROR_FILE_NOT_FOUND},
        {"none\\a.txt", ERROR_PATH_NOT_FOUND},
        {"a.txt\\b.txt", ERROR_PATH_NOT_FOUND},
        {"a.txt\\", ERROR_INVALID_NAME},
        {"a*.txt", ERROR_INVALID_NAME},
        {"a?txt", ERROR_INVALID_NAME},
        {"a<txt", ERROR_INVALID_NAME},
        {"a>txt", ERROR_INVALID_NAME},
        {"a|txt", ERROR_INVALID_NAME},
        {"a\"txt", ERROR_INVALID_NAME},
        {"a\x01txt", ERROR_INVALID_NAME},
        {"b*\\a.txt", ERROR_INVALID_NAME},
        {"", ERROR_ACCESS_DENIED}, /* the folder itself */
    };
    for (const auto& one : aCases) {
        EXPECT_EQ(OpenError(Path(one.cName)), one.dwError) << one.cName;
        EXPECT_EQ(OpenError(Path(one.cName), GENERIC_READ, 0, OPEN_ALWAYS) == 0,
                  one.dwError == 0 || one.dwError == ERROR_FILE_NOT_FOUND)
            << one.cName;
    }
    WideString tcSlashes = Path("a.txt");
    for (WCHAR& character : tcSlashes) {
        character = character == '\\' ? WCHAR('/') : character;
    }
    EXPECT_EQ(OpenError(tcSlashes), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(TEXT("C:\\..\\..") + tcFolder.substr(2) + TEXT("\\a.txt")), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(TEXT("")), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(CreateFileW(nullptr, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_NE(OpenError(TEXT("a.txt")), ERROR_SUCCESS) << "a name without a folder is not looked for in ours";
    EXPECT_NE(OpenError(TEXT("\\\\nosuchserver\\share\\a.txt")), ERROR_SUCCESS);
    EXPECT_NE(OpenError(TEXT("\\\\.\\nosuchdevice")), ERROR_SUCCESS);
    EXPECT_NE(OpenError(Path(std::string(400, 'x'))), ERROR_SUCCESS);
    EXPECT_NE(OpenError(Path(std::string(40000, 'x'))), ERROR_SUCCESS);
}

TEST_F(Files, DispositionsDecideOverOldAndNewFiles)
{
    EXPECT_EQ(OpenError(Path("a.txt"), GENERIC_WRITE, 0, CREATE_NEW), ERROR_FILE_EXISTS);
    EXPECT_EQ(OpenError(tcFolder, GENERIC_WRITE, 0, CREATE_NEW), ERROR_FILE_EXISTS);
    EXPECT_EQ(OpenError(Path("new.txt"), GENERIC_WRITE, 0, CREATE_NEW), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(Path("none\\new.txt"), GENERIC_WRITE, 0, CREATE_NEW), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(OpenError(Path("none.txt"), GENERIC_WRITE, 0, TRUNCATE_EXISTING), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OpenError(Path("a.txt"), GENERIC_READ, 0, 0), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(OpenError(Path("a.txt"), GENERIC_READ, 0, 6), ERROR_INVALID_PARAMETER);

    CloseHandle(Open(Path("a.txt"), GENERIC_READ, 0, OPEN_ALWAYS));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(ReadTestFile(Path("a.txt")).size(), 10u);
    EXPECT_EQ(OpenError(Path("a.txt"), GENERIC_WRITE, 0, TRUNCATE_EXISTING), ERROR_SUCCESS);
    EXPECT_EQ(ReadTestFile(Path("a.txt")).size(), 0u);

    PutTestFile(Path("a.txt"), "0123456789");
    CloseHandle(Open(Path("a.txt"), GENERIC_WRITE, 0, CREATE_ALWAYS));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(ReadTestFile(Path("a.txt")).size(), 0u);
    CloseHandle(Open(Path("always.txt"), GENERIC_WRITE, 0, CREATE_ALWAYS));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(AttributesError(Path("always.txt")), ERROR_SUCCESS);
}

TEST_F(Files, AttributesAndFolders)
{
    EXPECT_EQ(GetFileAttributesW(Path("a.txt").c_str()), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(GetFileAttributesW(tcFolder.c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(Path("").c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(TEXT("C:\\")), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(AttributesError(Path("none.txt")), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(AttributesError(Path("none\\a.txt")), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError(Path("a.txt\\b")), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError(Path("a*")), ERROR_INVALID_NAME);
    EXPECT_EQ(AttributesError(TEXT("")), ERROR_PATH_NOT_FOUND);

    EXPECT_EQ(FolderError(Path("new")), ERROR_SUCCESS);
    EXPECT_EQ(FolderError(Path("NEW")), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(FolderError(Path("new\\inner\\")), ERROR_SUCCESS);
    EXPECT_EQ(GetFileAttributesW(Path("new\\Inner").c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(FolderError(Path("none\\inner")), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FolderError(Path("a.txt")), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(FolderError(Path("a.txt\\inner")), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FolderError(Path("a*")), ERROR_INVALID_NAME);
    EXPECT_EQ(FolderError(TEXT("C:\\")), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(FolderError(TEXT("")), ERROR_PATH_NOT_FOUND);
}

TEST_F(Files, ReadOnlyFilesAreReadAndNotWritten)
{
    WideString tcPath = Path("a.txt");
    EXPECT_FALSE(SetFileAttributesW(Path("none.txt").c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    ASSERT_TRUE(SetFileAttributesW(tcPath.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(GetFileAttributesW(tcPath.c_str()) & FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(OpenError(tcPath), ERROR_SUCCESS);
    DWORD dwWriting = OpenError(tcPath, GENERIC_WRITE);
    DWORD dwBoth = OpenError(tcPath, GENERIC_READ | GENERIC_WRITE);
    DWORD dwAlways = OpenError(tcPath, GENERIC_WRITE, 0, CREATE_ALWAYS);
    DWORD dwEmptied = OpenError(tcPath, GENERIC_READ, 0, CREATE_ALWAYS);
    ASSERT_TRUE(SetFileAttributesW(tcPath.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(GetFileAttributesW(tcPath.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(OpenError(tcPath, GENERIC_WRITE), ERROR_SUCCESS);
#ifdef _WIN32
    /* Wine leaves the attribute to the host's permissions, which do not bind the super-user. */
    if (dwWriting == ERROR_SUCCESS) {
        GTEST_SKIP() << "writing to a read-only file was allowed: Wine run by the super-user";
    }
#endif
    EXPECT_EQ(dwWriting, ERROR_ACCESS_DENIED);
    EXPECT_EQ(dwBoth, ERROR_ACCESS_DENIED);
    EXPECT_EQ(dwAlways, ERROR_ACCESS_DENIED);
    EXPECT_EQ(dwEmptied, ERROR_ACCESS_DENIED);
    EXPECT_EQ(ReadTestFile(tcPath).size(), 10u);
}

TEST_F(Files, SharingIsCheckedBothWays)
{
    /* Row: access and share of the file that is open; column: of the second opening, in the same order. */
    static const struct {
        DWORD dwAccess, dwShare;
    } aOpenings[] = {
        {GENERIC_READ, 0},
        {GENERIC_READ, 1},
        {GENERIC_READ, 2},
        {GENERIC_READ, 3},
        {GENERIC_WRITE, 0},
        {GENERIC_WRITE, 1},
        {GENERIC_WRITE, 2},
        {GENERIC_WRITE, 3},
        {GENERIC_READ | GENERIC_WRITE, 0},
        {GENERIC_READ | GENERIC_WRITE, 1},
        {GENERIC_READ | GENERIC_WRITE, 2},
        {GENERIC_READ | GENERIC_WRITE, 3},
    };
    static const char* const aExpected[] = {
        "xxxxxxxxxxxx", "x.x.xxxxxxxx", "xxxxx.x.xxxx", "x.x.x.x.x.x.", "xxxxxxxxxxxx", "xx..xxxxxxxx",
        "xxxxxx..xxxx", "xx..xx..xx..", "xxxxxxxxxxxx", "xxx.xxxxxxxx", "xxxxxxx.xxxx", "xxx.xxx.xxx.",
    };
    WideString tcPath = Path("a.txt");
    for (size_t i = 0; i < std::size(aOpenings); i++) {
        HANDLE hFile = Open(tcPath, aOpenings[i].dwAccess, aOpenings[i].dwShare);
        std::string found;
        for (const auto& second : aOpenings) {
            DWORD dwError = OpenError(tcPath, second.dwAccess, second.dwShare);
            found += dwError == ERROR_SUCCESS ? '.' : dwError == ERROR_SHARING_VIOLATION ? 'x' : '?';
        }
        EXPECT_EQ(found, aExpected[i]) << "row " << i;
        EXPECT_EQ(OpenError(tcPath, 0, 0), ERROR_SUCCESS) << "no access asked for";
        EXPECT_EQ(OpenError(tcPath, GENERIC_WRITE, 3, CREATE_NEW), ERROR_FILE_EXISTS);
        CloseHandle(hFile);
    }
    HANDLE hFile = Open(tcPath, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_EQ(OpenError(tcPath, GENERIC_WRITE, 3, CREATE_ALWAYS), ERROR_SHARING_VIOLATION);
    CloseHandle(hFile);
    EXPECT_EQ(ReadTestFile(tcPath).size(), 10u) << "a refused opening has emptied the file";
    EXPECT_EQ(OpenError(tcPath, GENERIC_WRITE, 0), ERROR_SUCCESS) << "a closed handle still holds the file";
}

TEST_F(Files, ReadingAndSeeking)
{
    HANDLE hFile = Open(Path("a.txt"));
    EXPECT_EQ(Read(hFile, 4), "0123");
    EXPECT_EQ(Seek(hFile, 0, FILE_CURRENT), 4);
    EXPECT_EQ(Read(hFile, 50), "456789");
    EXPECT_EQ(Read(hFile, 5), "");
    EXPECT_EQ(Read(hFile, 0), "");
    EXPECT_EQ(Seek(hFile, -1, FILE_BEGIN), -static_cast<long long>(ERROR_NEGATIVE_SEEK));
    EXPECT_EQ(Seek(hFile, -11, FILE_END), -static_cast<long long>(ERROR_NEGATIVE_SEEK));
    EXPECT_EQ(Seek(hFile, 0, FILE_CURRENT), 10) << "a refused seek has moved";
    EXPECT_EQ(Seek(hFile, -3, FILE_END), 7);
    EXPECT_EQ(Read(hFile, 50), "789");
    EXPECT_EQ(Seek(hFile, 1LL << 40, FILE_BEGIN), 1LL << 40);
    EXPECT_EQ(Read(hFile, 4), "");
    EXPECT_EQ(Seek(hFile, 1, FILE_CURRENT), (1LL << 40) + 1);
    EXPECT_EQ(Seek(hFile, 0, 3), -static_cast<long long>(ERROR_INVALID_PARAMETER));
    LARGE_INTEGER move;
    move.QuadPart = 2;
    EXPECT_TRUE(SetFilePointerEx(hFile, move, nullptr, FILE_BEGIN));
    EXPECT_EQ(Read(hFile, 3), "234");
    LARGE_INTEGER size;
    EXPECT_TRUE(GetFileSizeEx(hFile, &size));
    EXPECT_EQ(size.QuadPart, 10);
    EXPECT_EQ(GetFileType(hFile), DWORD{FILE_TYPE_DISK});
    CloseHandle(hFile);

    HANDLE hWriting = Open(Path("a.txt"), GENERIC_WRITE);
    EXPECT_EQ(Read(hWriting, 4), "error " + std::to_string(ERROR_ACCESS_DENIED));
    CloseHandle(hWriting);
}

TEST_F(Files, DeletingTakesFilesAndNothingElse)
{
    PutTestFile(Path("a.txt"), "0123");
    EXPECT_TRUE(DeleteFileW(Path("a.txt").c_str()));
    EXPECT_EQ(GetFileAttributesW(Path("a.txt").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(DeleteFileW(Path("a.txt").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    ASSERT_TRUE(CreateDirectoryW(Path("folder").c_str(), nullptr));
    EXPECT_FALSE(DeleteFileW(Path("folder").c_str()));
    EXPECT_NE(GetFileAttributesW(Path("folder").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(DeleteFileW(TEXT("")));
}

TEST_F(Files, HandlesThatAreNoneAreRefused)
{
    HANDLE hClosed = Open(Path("a.txt"));
    EXPECT_TRUE(CloseHandle(hClosed));
    const HANDLE aHandles[] = {hClosed, nullptr, INVALID_HANDLE_VALUE,
                               reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(0x1234567))};
    for (HANDLE hFile : aHandles) {
        LARGE_INTEGER size;
        size.QuadPart = -99;
        EXPECT_EQ(Read(hFile, 4), "error " + std::to_string(ERROR_INVALID_HANDLE)) << hFile;
        EXPECT_EQ(Seek(hFile, 0, FILE_BEGIN), -static_cast<long long>(ERROR_INVALID_HANDLE)) << hFile;
        EXPECT_FALSE(GetFileSizeEx(hFile, &size)) << hFile;
        EXPECT_EQ(size.QuadPart, -99) << hFile;
        EXPECT_EQ(GetFileType(hFile), 0u) << hFile;
        /* The invalid handle stands for the process itself, and closing that does nothing. */
        EXPECT_EQ(CloseHandle(hFile) != 0, hFile == INVALID_HANDLE_VALUE) << hFile;
    }
}

#ifndef _WIN32

TEST_F(Files, HostedPathsStayBelowTheRoot)
{
    std::string root = HostPath(u"C:\\").string();
    root = root.substr(0, root.rfind('/'));
    static const char16_t* const aPaths[] = {u"C:\\..\\..\\..\\etc\\passwd",
                                             u"C:\\x\\..\\..\\..\\etc\\passwd",
                                             u"\\\\..\\..\\etc\\passwd",
                                             u"\\\\srv\\..\\etc\\passwd",
                                             u"\\\\srv\\ .\\etc",
                                             u"\\\\srv\\share\\..\\..\\..\\..\\etc\\passwd",
                                             u"..:\\etc\\passwd",
                                             u"C:\\.. \\..\\etc",
                                             u"/etc/passwd",
                                             u"//?/etc/passwd",
                                             u"C:/../etc/passwd"};
    for (const char16_t* tcPath : aPaths) {
        std::string host = HostPath(tcPath).string();
        EXPECT_TRUE(host.empty() || host.rfind(root + "/", 0) == 0) << host;
        EXPECT_TRUE((host + "/").find("/../") == std::string::npos) << host;
        EXPECT_FALSE(HasFile(tcPath));
    }
    PutFile(u"\\\\Server\\Share\\Dir\\F.txt", "there");
    EXPECT_EQ(HostPath(u"\\\\server\\share\\dir\\f.txt"), root + "/unc/server/share/dir/f.txt");
    HANDLE hFile = Open(u"\\\\SERVER\\share\\dir\\..\\dir\\f.TXT");
    EXPECT_EQ(Read(hFile, 50), "there");
    CloseHandle(hFile);
    for (const char16_t* tcDevice : {u"NUL", u"con.txt", u"COM1", u"lpt9.x.y", u"aux "}) {
        WideString tcPath = tcFolder + u"\\" + tcDevice;
        EXPECT_EQ(OpenError(tcPath, GENERIC_WRITE, 0, CREATE_ALWAYS), ERROR_FILE_NOT_FOUND);
    }
}

/* Windows ends paths at 259 characters and folders at 247; Wine takes longer ones. */
TEST_F(Files, HostedPathsEndWhereThoseOfWindowsDo)
{
    WideString tcLong = tcFolder + u"\\" + WideString(259 - tcFolder.size() - 1, u'x');
    EXPECT_EQ(OpenError(tcLong, GENERIC_WRITE, 0, CREATE_NEW), ERROR_SUCCESS);
    EXPECT_EQ(OpenError(tcLong + u"x", GENERIC_WRITE, 0, CREATE_NEW), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError(tcLong + u"x"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FolderError(tcLong.substr(0, 248)), 206u /* ERROR_FILENAME_EXCED_RANGE */);
    EXPECT_EQ(FolderError(tcLong.substr(0, 247)), ERROR_SUCCESS);
}

TEST_F(Files, HostedFaultsAndLies)
{
    for (CallId call : {CALL_ReadFile, CALL_SetFilePointerEx, CALL_GetFileSizeEx, CALL_CloseHandle}) {
        HANDLE hFile = Open(Path("a.txt"));
        LARGE_INTEGER size;
        FailCall(call, 1);
        EXPECT_EQ(Read(hFile, 2) == "01", call != CALL_ReadFile);
        EXPECT_EQ(Seek(hFile, 0, FILE_BEGIN) == 0, call != CALL_SetFilePointerEx);
        EXPECT_EQ(GetFileSizeEx(hFile, &size) != 0, call != CALL_GetFileSizeEx);
        EXPECT_EQ(CloseHandle(hFile) != 0, call != CALL_CloseHandle);
        EXPECT_EQ(StopFaults(), 1);
        EXPECT_EQ(CountLive().nFiles, 0) << CallName(call);
    }
    HANDLE hClosed = Open(Path("a.txt"));
    CloseHandle(hClosed);
    HANDLE hFile = Open(Path("a.txt"));
    LARGE_INTEGER size;
    EXPECT_FALSE(CloseHandle(hClosed)) << "a handle that was closed has become another's";
    TellLies(LIE_SHORT);
    EXPECT_EQ(Read(hFile, 8), "0123");
    TellLies(LIE_HUGE, CALL_GetFileSizeEx);
    EXPECT_TRUE(GetFileSizeEx(hFile, &size));
    EXPECT_EQ(size.QuadPart, 1LL << 40);
    EXPECT_EQ(Read(hFile, 8), "456789");
    EXPECT_EQ(CountLive().nFiles, 1);
    CloseHandle(hFile);
}

#endif

} // namespace
