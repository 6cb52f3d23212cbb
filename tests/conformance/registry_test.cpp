/* What the library relies on of named semaphores and of the user's registry, on both builds. */
#include "support/both_builds.h"

#include "base/owned.h"
#include "platform/process.h"

namespace {

class SemaphoreConformance : public BothBuilds {
  protected:
    HANDLE Make(const WCHAR* wcName) { return CreateSemaphoreW(nullptr, 1, 1, wcName); }
    HANDLE Open(const WCHAR* wcName) { return OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, 0, wcName); }
};

} // namespace

TEST_F(SemaphoreConformance, ANameLivesAsLongAsOneHandle)
{
    const WCHAR* wcName = TEXT("//tqui test/Printer, one");
    EXPECT_EQ(Open(wcName), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    HANDLE hFirst = Make(wcName);
    ASSERT_NE(hFirst, nullptr);
    HANDLE hOpened = Open(wcName);
    EXPECT_NE(hOpened, nullptr);
    HANDLE hSecond = Make(wcName);
    EXPECT_NE(hSecond, nullptr) << "a second making opens";
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_TRUE(CloseHandle(hFirst) && CloseHandle(hSecond));
    EXPECT_TRUE(CloseHandle(hOpened));
    EXPECT_EQ(Open(wcName), nullptr);
    SetLastError(ERROR_MORE_DATA);
    EXPECT_EQ(GetLastError(), ERROR_MORE_DATA);
}

TEST_F(SemaphoreConformance, NamesThatNoSemaphoreCanBear)
{
    EXPECT_EQ(Make(TEXT("\\\\server\\printer")), nullptr);
    EXPECT_EQ(Make(WideString(260, TEXT('n')).c_str()), nullptr);
    HANDLE hLongest = Make(WideString(259, TEXT('n')).c_str());
    EXPECT_NE(hLongest, nullptr);
    CloseHandle(hLongest);
    EXPECT_EQ(CreateSemaphoreW(nullptr, 2, 1, TEXT("x")), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(SemaphoreConformance, TheVersionIsToldOnlyIntoItsOwnStructure)
{
    OSVERSIONINFOW version = {};
    EXPECT_FALSE(GetVersionExW(&version));
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_TRUE(GetVersionExW(&version));
    EXPECT_GE(version.dwMajorVersion, 5u);
    EXPECT_EQ(version.dwOSVersionInfoSize, sizeof version);
}
