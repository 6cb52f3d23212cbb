/* What the library relies on when it starts a program in the program's own folder. */
#include "platform/files.h"
#include "platform/process.h"
#include "support/both_builds.h"

class CurrentFolder : public BothBuilds {};

TEST_F(CurrentFolder, RelativePathsGoOnFromIt)
{
    const WideString tcFolder = TestFolder();
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
