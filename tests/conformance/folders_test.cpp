/* What the library relies on when it looks through folders and copies files. */
#include <map>

#include "platform/files.h"
#include "platform/process.h"
#include "support/both_builds.h"

namespace {

class Folders : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
    }

    /* Names that a pattern finds in the folder, with their attributes; the search's last error. */
    std::map<std::string, DWORD> Find(const char* cPattern, DWORD* pdwError)
    {
        std::map<std::string, DWORD> found;
        WIN32_FIND_DATAW entry;
        HANDLE hSearch = FindFirstFileW((tcFolder + Wide(cPattern)).c_str(), &entry);
        if (hSearch == INVALID_HANDLE_VALUE) {
            *pdwError = GetLastError();
            return found;
        }
        do {
            found[Ascii(entry.cFileName)] = entry.dwFileAttributes;
        } while (FindNextFileW(hSearch, &entry));
        *pdwError = GetLastError();
        EXPECT_TRUE(FindClose(hSearch));
        return found;
    }

    WideString tcFolder;
};

} // namespace

TEST_F(Folders, EverythingIsFoundWithItsKindAndAnEnd)
{
    DWORD dwError = 0;
    PutTestFile(tcFolder + Wide("\\plain"), "x");
    PutTestFile(tcFolder + Wide("\\with.ext"), "xx");
    ASSERT_TRUE(CreateDirectoryW((tcFolder + Wide("\\sub")).c_str(), nullptr));
    std::map<std::string, DWORD> found = Find("\\*.*", &dwError);
    EXPECT_EQ(dwError, DWORD(ERROR_NO_MORE_FILES));
    ASSERT_EQ(found.size(), 5u) << "names without a dot, too, and the two of the folder itself";
    for (const char* cFolder : {".", "..", "sub"}) {
        EXPECT_TRUE(found[cFolder] & FILE_ATTRIBUTE_DIRECTORY) << cFolder;
    }
    for (const char* cFile : {"plain", "with.ext"}) {
        EXPECT_FALSE(found[cFile] & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) << cFile;
    }
    EXPECT_EQ(Find("\\none\\*.*", &dwError).size(), 0u);
    EXPECT_EQ(dwError, DWORD(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Find("\\none*", &dwError).size(), 0u);
    EXPECT_EQ(dwError, DWORD(ERROR_FILE_NOT_FOUND));
}

TEST_F(Folders, RelativePathsGoOnFromTheCurrentOne)
{
    WCHAR tcFirst[300] = {}, tcNow[300] = {};
    const DWORD cchFirst = GetCurrentDirectoryW(300, tcFirst);
    ASSERT_EQ(cchFirst, WideString(tcFirst).size());
    EXPECT_EQ(GetCurrentDirectoryW(cchFirst, tcNow), cchFirst + 1) << "what is needed, with the NUL";
    PutTestFile(tcFolder + Wide("\\here"), "x");
    EXPECT_EQ(GetFileAttributesW(TEXT("here")), DWORD(INVALID_FILE_ATTRIBUTES));
    ASSERT_TRUE(SetCurrentDirectoryW((tcFolder + Wide("\\")).c_str()));
    EXPECT_NE(GetFileAttributesW(TEXT("here")), DWORD(INVALID_FILE_ATTRIBUTES));
    for (const char* cNone : {"none", "here"}) {
        EXPECT_FALSE(SetCurrentDirectoryW(Wide(cNone).c_str())) << cNone;
    }
    GetCurrentDirectoryW(300, tcNow);
    EXPECT_EQ(Ascii(tcNow), Ascii(tcFolder));
    EXPECT_TRUE(SetCurrentDirectoryW(tcFirst));
}

TEST_F(Folders, ACopyReplacesWhatIsThereUnlessToldNotTo)
{
    const WideString tcFrom = tcFolder + Wide("\\from"), tcTo = tcFolder + Wide("\\to");
    PutTestFile(tcFrom, "long text");
    PutTestFile(tcTo, "short");
    EXPECT_FALSE(CopyFileW(tcFrom.c_str(), tcTo.c_str(), 1));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_EXISTS));
    EXPECT_TRUE(CopyFileW(tcFrom.c_str(), tcTo.c_str(), 0));
    EXPECT_EQ(ReadTestFile(tcTo).size(), 9u);
    EXPECT_FALSE(CopyFileW((tcFolder + Wide("\\none")).c_str(), tcTo.c_str(), 0));
    EXPECT_EQ(ReadTestFile(tcTo).size(), 9u);
}
