/* What the library relies on of named semaphores and of the user's registry, on both builds. */
#include "support/both_builds.h"

#include <atomic>
#include <thread>

#include "base/owned.h"
#include "platform/process.h"
#include "platform/registry.h"

namespace {

class SemaphoreConformance : public BothBuilds {
  protected:
    HANDLE Make(const WCHAR* wcName) { return CreateSemaphoreW(nullptr, 1, 1, wcName); }
    HANDLE Open(const WCHAR* wcName) { return OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, 0, wcName); }
};

std::atomic<int> nEnded = 0;

void WINAPI CountEnd(LPVOID pValue)
{
    nEnded += *static_cast<int*>(pValue);
}

class ThreadConformance : public BothBuilds {};

class RegistryConformance : public BothBuilds {
  protected:
    static constexpr const WCHAR* wcKey = TEXT("SOFTWARE\\TquiConformance\\");

    /* Type and size that a query with a room of cb bytes tells; "error" with its number. */
    std::string Query(const WCHAR* wcValue, DWORD cb)
    {
        HKEY hKey;
        BYTE abRoom[16] = {};
        DWORD dwType = 99;
        if (LSTATUS lError = RegOpenKeyExW(HKEY_CURRENT_USER, wcKey, 0, KEY_QUERY_VALUE, &hKey)) {
            return "no key " + std::to_string(lError);
        }
        LSTATUS lError = RegQueryValueExW(hKey, wcValue, nullptr, &dwType, abRoom, &cb);
        EXPECT_EQ(RegCloseKey(hKey), 0);
        return lError == 0 ? std::to_string(dwType) + " " + std::to_string(cb)
               : lError == static_cast<LSTATUS>(ERROR_MORE_DATA) ? "more " + std::to_string(cb)
                                                                 : "error " + std::to_string(lError);
    }
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

TEST_F(ThreadConformance, AThreadsValueIsItsOwnAndItsEndIsTold)
{
    nEnded = 0;
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
        EXPECT_EQ(FlsGetValue(dwSlot), &nTen);
    }).join();
    EXPECT_EQ(nEnded, 10) << "at the thread's end";
    EXPECT_EQ(FlsGetValue(dwSlot), &nOne);
    std::atomic<int> nStep = 0;
    std::thread waiting([&] {
        FlsSetValue(dwSlot, &nHundred);
        nStep = 1;
        while (nStep != 2) {
            std::this_thread::yield();
        }
    });
    while (nStep != 1) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(FlsFree(dwSlot));
    EXPECT_EQ(nEnded, 111) << "at the slot's end, of threads that run as well";
    nStep = 2;
    waiting.join();
    EXPECT_EQ(nEnded, 111);
    EXPECT_FALSE(FlsFree(FLS_OUT_OF_INDEXES));
}

TEST_F(RegistryConformance, ValuesOfTheUserWithATrailingBackslashInTheKey)
{
    EXPECT_EQ(Query(TEXT("a"), 4), "no key 2");
    HKEY hKey, hAgain;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, wcKey, &hKey), 0);
    EXPECT_EQ(Query(TEXT("a"), 4), "error 2");
    DWORD dwValue = 7;
    const BYTE* pValue = reinterpret_cast<const BYTE*>(&dwValue);
    EXPECT_EQ(RegSetValueExW(hKey, TEXT("a"), 0, REG_DWORD, pValue, 4), 0);
    EXPECT_EQ(RegSetValueExW(hKey, TEXT("b"), 0, REG_BINARY, pValue, 3), 0);
    EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, wcKey, &hAgain), 0) << "one that is there";
    EXPECT_EQ(RegCloseKey(hAgain), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    EXPECT_EQ(Query(TEXT("a"), 4), "4 4");
    EXPECT_EQ(Query(TEXT("A"), 16), "4 4");
    EXPECT_EQ(Query(TEXT("a"), 3), "more 4");
    EXPECT_EQ(Query(TEXT("b"), 4), "3 3");
#ifdef _WIN32
    RegDeleteKeyW(HKEY_CURRENT_USER, TEXT("SOFTWARE\\TquiConformance"));
#endif
}

/* The user's classes, which Windows shows there as well and before these, are left out: Wine does not show them. */
TEST_F(RegistryConformance, ClassesAreTheMachines)
{
    HKEY hKey;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\Classes\\TquiConformance\\shell"), &hKey), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, TEXT("TquiConformance\\shell"), 0, KEY_QUERY_VALUE, &hKey), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    EXPECT_NE(RegOpenKeyExW(HKEY_CLASSES_ROOT, TEXT("TquiConformance\\open"), 0, KEY_QUERY_VALUE, &hKey), 0);
}
