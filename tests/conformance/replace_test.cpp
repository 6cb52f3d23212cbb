/* What the library relies on when a file is written and put in another's place. */
#include <cstring>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/profile.h"
#include "support/both_builds.h"

namespace {

constexpr DWORD REPLACE = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;

class Replacing : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
        PutTestFile(Path("new"), "new");
        PutTestFile(Path("old"), "old");
    }

    WideString Path(const std::string& name) const { return tcFolder + Wide("\\" + name); }

    std::string Text(const std::string& name) const
    {
        std::vector<unsigned char> bytes = ReadTestFile(Path(name));
        return {bytes.begin(), bytes.end()};
    }

    bool IsThere(const std::string& name) const
    {
        return GetFileAttributesW(Path(name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    /* Error of the move; ERROR_SUCCESS when it went well. */
    DWORD Move(const std::string& from, const std::string& to, DWORD dwFlags = REPLACE) const
    {
        return MoveFileExW(Path(from).c_str(), Path(to).c_str(), dwFlags) ? ERROR_SUCCESS : GetLastError();
    }

    HANDLE Open(const std::string& name, DWORD dwAccess, DWORD dwShare,
                DWORD dwDisposition = OPEN_EXISTING) const
    {
        return CreateFileW(Path(name).c_str(), dwAccess, dwShare, nullptr, dwDisposition,
                           FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    }

    WideString tcFolder;
};

TEST_F(Replacing, OneFileTakesAnothersPlace)
{
    EXPECT_EQ(Move("new", "old", 0), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(Text("old"), "old");
    EXPECT_EQ(Move("new", "old"), ERROR_SUCCESS);
    EXPECT_EQ(Text("old"), "new");
    EXPECT_FALSE(IsThere("new"));
    EXPECT_EQ(Move("old", "third"), ERROR_SUCCESS) << "nothing need be there";
    EXPECT_EQ(Text("third"), "new");
}

TEST_F(Replacing, WhatCannotBeReplaced)
{
    CreateDirectoryW(Path("folder").c_str(), nullptr);
    EXPECT_EQ(Move("none", "old"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Move("new", "folder"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Move("new", "missing\\old"), ERROR_PATH_NOT_FOUND);
    HANDLE hHeld = Open("old", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
    DWORD dwError = Move("new", "old");
    EXPECT_TRUE(dwError == ERROR_ACCESS_DENIED || dwError == ERROR_SHARING_VIOLATION) << dwError;
    CloseHandle(hHeld);
    hHeld = Open("new", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(Move("new", "old"), ERROR_SHARING_VIOLATION);
    CloseHandle(hHeld);
    EXPECT_EQ(Text("new") + Text("old"), "newold");
}

TEST_F(Replacing, WritesFollowEachOtherAndFlush)
{
    HANDLE hFile = Open("made", GENERIC_WRITE, 0, CREATE_NEW);
    DWORD cbDone = 77;
    EXPECT_TRUE(WriteFile(hFile, "abc", 3, &cbDone, nullptr));
    EXPECT_EQ(cbDone, 3u);
    EXPECT_TRUE(WriteFile(hFile, "de", 2, &cbDone, nullptr));
    EXPECT_TRUE(WriteFile(hFile, "", 0, &cbDone, nullptr));
    EXPECT_EQ(cbDone, 0u);
    EXPECT_TRUE(FlushFileBuffers(hFile));
    EXPECT_EQ(Move("made", "old"), ERROR_SHARING_VIOLATION) << "still open";
    CloseHandle(hFile);
    EXPECT_EQ(Text("made"), "abcde");
    EXPECT_EQ(Open("made", GENERIC_WRITE, 0, CREATE_NEW), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
    CreateDirectoryW(Path("folder").c_str(), nullptr);
    EXPECT_EQ(Open("folder", GENERIC_WRITE, 0, CREATE_NEW), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS) << "a folder in the way counts as a file";

    hFile = Open("made", GENERIC_READ, FILE_SHARE_READ);
    EXPECT_FALSE(WriteFile(hFile, "x", 1, &cbDone, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(hFile);
    EXPECT_FALSE(WriteFile(INVALID_HANDLE_VALUE, "x", 1, &cbDone, nullptr));
    EXPECT_FALSE(FlushFileBuffers(INVALID_HANDLE_VALUE));
}

} // namespace
