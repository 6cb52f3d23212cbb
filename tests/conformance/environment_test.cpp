/* What the library relies on when it looks for the user's browser and for the help control. */
#include "platform/process.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "support/both_builds.h"

class Environment : public BothBuilds {};

TEST_F(Environment, NamesAreExpanded)
{
    WCHAR wcProfile[260], wcOut[300];
    ASSERT_NE(GetEnvironmentVariableW(TEXT("USERPROFILE"), wcProfile, 260), 0u);
    const WideString wcWanted = WideString(wcProfile) + TEXT("\\%tq none%100%");
    const WCHAR* wcText = TEXT("%userprofile%\\%tq none%100%");
    const auto cchNeeded = static_cast<DWORD>(wcWanted.size() + 1);
    EXPECT_EQ(ExpandEnvironmentStringsW(wcText, wcOut, 300), cchNeeded);
    EXPECT_EQ(wcWanted, wcOut);
    EXPECT_GE(ExpandEnvironmentStringsW(wcText, wcOut, cchNeeded - 1), cchNeeded);
}

TEST_F(Environment, ClassesAreTheMachines)
{
    HKEY hKey;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, TEXT("SOFTWARE\\Classes\\TquiConformance\\shell"), &hKey), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    ASSERT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, TEXT("TquiConformance\\shell"), 0, KEY_QUERY_VALUE, &hKey), 0);
    EXPECT_EQ(RegCloseKey(hKey), 0);
    EXPECT_NE(RegOpenKeyExW(HKEY_CLASSES_ROOT, TEXT("TquiConformance\\open"), 0, KEY_QUERY_VALUE, &hKey), 0);
}

TEST_F(Environment, ALibraryIsRunFromItsFullPath)
{
    WCHAR tcSystem[260];
    ASSERT_NE(GetSystemDirectoryW(tcSystem, 260), 0u);
    const DWORD dwBeside = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
    const HMODULE hVersion =
        LoadLibraryExW((WideString(tcSystem) + TEXT("\\version.dll")).c_str(), nullptr, dwBeside);
    EXPECT_TRUE(hVersion);
    FreeLibrary(hVersion);
    EXPECT_FALSE(LoadLibraryExW((TestFolder() + TEXT("\\tqnone.dll")).c_str(), nullptr, dwBeside));
}
