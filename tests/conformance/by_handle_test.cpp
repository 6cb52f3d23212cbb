/* What the library relies on when it judges and deletes files by their handles. Links are made hosted only: the system
   of the other build's tests makes none. */
#include "platform/files.h"
#include "platform/process.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class ByHandle : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
        PutTestFile(Path("A.txt"), "there");
        CreateDirectoryW(Path("sub").c_str(), nullptr);
    }

    WideString Path(const std::string& name) const { return tcFolder + Wide("\\" + name); }

    HANDLE Open(const std::string& name, DWORD dwAccess, DWORD dwFlags = 0, DWORD dwShare = SHARE_ALL) const
    {
        return CreateFileW(Path(name).c_str(), dwAccess, dwShare, nullptr, OPEN_EXISTING,
                           FILE_FLAG_OPEN_REPARSE_POINT | dwFlags, nullptr);
    }

    bool IsThere(const std::string& name) const
    {
        return GetFileAttributesW(Path(name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    /* Final path of what a name opens, behind the test's folder and in small letters; the handle is closed. */
    std::string FinalName(HANDLE hOpen) const
    {
        WCHAR tcFinal[260];
        DWORD cch = GetFinalPathNameByHandleW(hOpen, tcFinal, 260, 0);
        CloseHandle(hOpen);
        std::string path, front = "\\\\?\\" + Ascii(tcFolder);
        for (char c : cch < 260 ? Ascii({tcFinal, cch}) : "") {
            path.push_back(c >= 'A' && c <= 'Z' && path.size() > 4 ? static_cast<char>(c + 32) : c);
        }
        return path.compare(0, front.size(), front) == 0 ? path.substr(front.size()) : "elsewhere: " + path;
    }

    /* 1 as a last error of 0, else the error. */
    static DWORD MarkDeleted(HANDLE hOpen)
    {
        FILE_DISPOSITION_INFO info = {1};
        return SetFileInformationByHandle(hOpen, FileDispositionInfo, &info, sizeof info) ? ERROR_SUCCESS
                                                                                          : GetLastError();
    }

    WideString tcFolder;
};

} // namespace

TEST_F(ByHandle, TheFinalPathIsWhereAFileLies)
{
    EXPECT_EQ(FinalName(Open("SUB\\..\\a.TXT", 0)), "\\a.txt");
    EXPECT_EQ(FinalName(Open("a.txt. .", 0)), "\\a.txt");
    EXPECT_EQ(FinalName(Open("sub\\", 0, FILE_FLAG_BACKUP_SEMANTICS)), "\\sub");
    EXPECT_EQ(Open("sub", 0), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_ACCESS_DENIED)) << "a folder without the flag";
    HANDLE hFile = Open("a.txt", 0);
    WCHAR tcFinal[260];
    DWORD cch = GetFinalPathNameByHandleW(hFile, tcFinal, 260, 0);
    EXPECT_EQ(GetFinalPathNameByHandleW(hFile, tcFinal, cch, 0), cch + 1) << "room for the NUL is missing";
    CloseHandle(hFile);
    EXPECT_EQ(GetFinalPathNameByHandleW(INVALID_HANDLE_VALUE, tcFinal, 260, 0), 0u);
    HANDLE hNul =
        CreateFileW(Path("NUL").c_str(), GENERIC_READ, SHARE_ALL, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(GetFileType(hNul), DWORD(FILE_TYPE_CHAR)) << "a device in any folder";
    CloseHandle(hNul);
}

TEST_F(ByHandle, ADeletionIsDoneWhenTheLastHandleCloses)
{
    HANDLE hLook = Open("a.txt", 0), hGone = Open("a.txt", DELETE);
    EXPECT_EQ(Open("a.txt", GENERIC_READ, 0, FILE_SHARE_READ), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_SHARING_VIOLATION)) << "who does not share the deletion";
    EXPECT_EQ(MarkDeleted(hLook), DWORD(ERROR_ACCESS_DENIED)) << "opened without that access";
    EXPECT_EQ(MarkDeleted(hGone), DWORD(ERROR_SUCCESS));
    CloseHandle(hGone);
    CloseHandle(hLook);
    EXPECT_FALSE(IsThere("a.txt"));
    PutTestFile(Path("b.txt"), "kept");
    SetFileAttributesW(Path("b.txt").c_str(), FILE_ATTRIBUTE_READONLY);
    HANDLE hKept = Open("b.txt", DELETE);
    EXPECT_EQ(MarkDeleted(hKept), DWORD(ERROR_ACCESS_DENIED));
    CloseHandle(hKept);
    EXPECT_TRUE(IsThere("b.txt"));
    SetFileAttributesW(Path("b.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
}

#ifndef _WIN32

TEST_F(ByHandle, ALinkIsOpenedItselfAndAFolderBehindOneIsTold)
{
    std::filesystem::create_directory_symlink(HostPath(Path("sub")), HostPath(Path("way")));
    std::filesystem::create_symlink(HostPath(Path("a.txt")), HostPath(Path("link.txt")));
    PutTestFile(Path("sub\\c.txt"), "x");
    EXPECT_EQ(FinalName(Open("way\\c.txt", 0)), "\\sub\\c.txt");
    EXPECT_EQ(FinalName(Open("way", 0, FILE_FLAG_BACKUP_SEMANTICS)), "\\way");
    HANDLE hFile = Open("link.txt", DELETE);
    EXPECT_EQ(MarkDeleted(hFile), DWORD(ERROR_SUCCESS));
    CloseHandle(hFile);
    EXPECT_TRUE(IsThere("a.txt") && !IsThere("link.txt"));
    /* The folder moves away and another takes its name while the handle is open: what was opened goes. */
    hFile = Open("sub\\c.txt", DELETE);
    std::filesystem::rename(HostPath(Path("sub")), HostPath(Path("moved")));
    CreateDirectoryW(Path("sub").c_str(), nullptr);
    PutTestFile(Path("sub\\c.txt"), "another");
    EXPECT_EQ(MarkDeleted(hFile), DWORD(ERROR_SUCCESS));
    CloseHandle(hFile);
    EXPECT_TRUE(IsThere("sub\\c.txt") && !IsThere("moved\\c.txt"));
}

#endif
