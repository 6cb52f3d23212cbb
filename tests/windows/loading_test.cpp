/* How the shipped library is loaded, and what it does to a process whose stack was overrun. */
#include <cstring>

#include <gtest/gtest.h>

#include "installed_printer.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned long long FIRST_GUARD = 0xFF0D0A0BA53C0000; /* as in the file */

/* Where the guard lies in the loaded library, from its start: found in the file by the value that it has there, which
   must stand in one place of it. 0 when it does not. */
size_t GuardPlace(const std::string& bytes)
{
    std::string guard(sizeof FIRST_GUARD, 0);
    std::memcpy(guard.data(), &FIRST_GUARD, sizeof FIRST_GUARD);
    const size_t nAt = bytes.find(guard);
    if (nAt == bytes.npos || bytes.find(guard, nAt + 1) != bytes.npos) {
        return 0;
    }
    const auto* pDos = reinterpret_cast<const IMAGE_DOS_HEADER*>(bytes.data());
    const auto* pHeader = reinterpret_cast<const IMAGE_NT_HEADERS64*>(bytes.data() + pDos->e_lfanew);
    const IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(pHeader);
    for (int n = 0; n < pHeader->FileHeader.NumberOfSections; n++, pSection++) {
        if (nAt - pSection->PointerToRawData < pSection->SizeOfRawData) {
            return nAt - pSection->PointerToRawData + pSection->VirtualAddress;
        }
    }
    return 0;
}

DWORD ExitCodeOf(const std::wstring& wcArguments)
{
    WCHAR tcOwn[MAX_PATH];
    GetModuleFileNameW(nullptr, tcOwn, MAX_PATH);
    std::wstring wcCommand =
        L"\"" + (fs::path(tcOwn).parent_path() / "overrun_program.exe").wstring() + L"\" " + wcArguments;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    DWORD dwCode = 0xFFFFFFFF;
    if (CreateProcessW(nullptr, wcCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                       &process)) {
        WaitForSingleObject(process.hProcess, 30000);
        GetExitCodeProcess(process.hProcess, &dwCode);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    return dwCode;
}

} // namespace

TEST(StackGuard, EachLoadHasItsOwnWithAZeroUnit)
{
    const fs::path tcShipped = PathFromEnvironment("TQUI_BUILT") / "TQUI.dll";
    const size_t nPlace = GuardPlace(FileBytes(tcShipped));
    ASSERT_GT(nPlace, 0u);
    unsigned long long aGuards[2] = {};
    for (unsigned long long& ullGuard : aGuards) {
        const HMODULE hLibrary = LoadLibraryW(tcShipped.c_str());
        ASSERT_TRUE(hLibrary);
        std::memcpy(&ullGuard, reinterpret_cast<const char*>(hLibrary) + nPlace, sizeof ullGuard);
        FreeLibrary(hLibrary);
        EXPECT_NE(ullGuard, FIRST_GUARD);
        EXPECT_EQ(ullGuard & 0xFFFF, 0u);
        EXPECT_GT(ullGuard, 0xFFFFFFFFu) << "the rest is not zero";
    }
    EXPECT_NE(aGuards[0], aGuards[1]);
}

/* One unit, a full buffer, and texts that reach the return address and far more. */
TEST(StackGuard, AnOverlongWideCopyEndsTheProcess)
{
    EXPECT_EQ(ExitCodeOf(L"1"), 0u);
    EXPECT_EQ(ExitCodeOf(L"15"), 0u);
    for (const WCHAR* wcUnits : {L"32", L"64", L"80"}) {
        EXPECT_EQ(ExitCodeOf(wcUnits), 0xC0000409u) << "units: " << fs::path(wcUnits);
    }
}
