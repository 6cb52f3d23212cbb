/* What the library relies on of values of a thread and of the system's version, on both builds. */
#include "support/both_builds.h"

#include <atomic>
#include <thread>

#include "platform/process.h"

namespace {

std::atomic<int> nEnded = 0;

void WINAPI CountEnd(LPVOID pValue)
{
    nEnded += *static_cast<int*>(pValue);
}

using ThreadConformance = BothBuilds;

TEST_F(ThreadConformance, AThreadsValueIsItsOwnAndItsEndIsTold)
{
    DWORD dwSlot = FlsAlloc(CountEnd);
    ASSERT_NE(dwSlot, FLS_OUT_OF_INDEXES);
    int nOne = 1, nTen = 10, nHundred = 100;
    SetLastError(ERROR_MORE_DATA);
    EXPECT_EQ(FlsGetValue(dwSlot), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_TRUE(FlsSetValue(dwSlot, &nOne));
    std::thread([&] {
        EXPECT_EQ(FlsGetValue(dwSlot), nullptr);
        EXPECT_TRUE(FlsSetValue(dwSlot, &nTen));
    }).join();
    EXPECT_EQ(nEnded, 10) << "at the thread's end";
    EXPECT_EQ(FlsGetValue(dwSlot), &nOne);
    /* The toolchain's own wait for a value hangs under Wine now and then. */
    std::atomic<int> nStep = 0;
    const auto waitFor = [&](int nWanted) {
        while (nStep != nWanted) {
            std::this_thread::yield();
        }
    };
    std::thread waiting([&] {
        FlsSetValue(dwSlot, &nHundred);
        nStep = 1;
        waitFor(2);
    });
    waitFor(1);
    EXPECT_TRUE(FlsFree(dwSlot));
    EXPECT_EQ(nEnded, 111) << "at the slot's end, of threads that run as well";
    nStep = 2;
    waiting.join();
    EXPECT_EQ(nEnded, 111);
    EXPECT_FALSE(FlsFree(FLS_OUT_OF_INDEXES));
}

TEST_F(ThreadConformance, TheVersionIsToldOnlyIntoItsOwnStructure)
{
    OSVERSIONINFOW version = {};
    EXPECT_FALSE(GetVersionExW(&version));
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_TRUE(GetVersionExW(&version));
    EXPECT_GE(version.dwMajorVersion, 5u);
    EXPECT_EQ(version.dwOSVersionInfoSize, sizeof version);
}

} // namespace
