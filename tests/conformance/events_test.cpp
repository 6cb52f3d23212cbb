/* What the library relies on when it waits for another program by a named event. */
#include "platform/files.h"
#include "platform/process.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

class Events : public BothBuilds {};

} // namespace

TEST_F(Events, AreFoundByNameUntilTheLastHandleIsClosed)
{
    const WCHAR* wcName = TEXT("00ABCDEF.tqui-test");
    EXPECT_EQ(OpenEventW(SYNCHRONIZE, 0, wcName), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND));
    HANDLE hFirst = CreateEventW(nullptr, 0, 0, wcName);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_SUCCESS));
    HANDLE hSecond = CreateEventW(nullptr, 0, 0, wcName);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_ALREADY_EXISTS));
    HANDLE hThird = OpenEventW(EVENT_MODIFY_STATE | SYNCHRONIZE, 0, wcName);
    ASSERT_TRUE(hFirst && hSecond && hThird);

    EXPECT_EQ(WaitForSingleObject(hFirst, 10), DWORD(WAIT_TIMEOUT));
    EXPECT_TRUE(SetEvent(hThird));
    EXPECT_EQ(WaitForSingleObject(hSecond, 10), DWORD(WAIT_OBJECT_0));
    EXPECT_EQ(WaitForSingleObject(hFirst, 0), DWORD(WAIT_TIMEOUT)) << "one wait takes the signal";
    EXPECT_TRUE(CloseHandle(hFirst) && CloseHandle(hThird));
    EXPECT_EQ(WaitForSingleObject(hFirst, 0), DWORD(WAIT_FAILED));
    HANDLE hFourth = OpenEventW(SYNCHRONIZE, 0, wcName);
    EXPECT_NE(hFourth, nullptr) << "one handle is still open";
    EXPECT_TRUE(CloseHandle(hSecond) && CloseHandle(hFourth));
    EXPECT_EQ(OpenEventW(SYNCHRONIZE, 0, wcName), nullptr);
}

TEST_F(Events, ShareTheirNamesWithSemaphores)
{
    HANDLE hSemaphore = CreateSemaphoreW(nullptr, 1, 1, TEXT("tqui-test-name"));
    EXPECT_EQ(CreateEventW(nullptr, 0, 0, TEXT("tqui-test-name")), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_HANDLE));
    EXPECT_EQ(CreateEventW(nullptr, 0, 0, TEXT("tqui\\name")), nullptr);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_PATH_NOT_FOUND));
    EXPECT_TRUE(CloseHandle(hSemaphore));
}
