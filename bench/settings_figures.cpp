/* What settings files cost on Windows, where a call of the system costs what it does there: prints the times and their
   ratios, and ends with 1 when one is over its figure.

     settings_figures FOLDER   files are made in FOLDER

   The package and the ConfigFile to install are named by TQUI_BUILT and TQUI_FULL_SIZE_LIBRARY; scripts/wine-figures
   runs it. */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <windows.h>
#include <winspool.h>

#include "settingsfile/settings_reader.h"
#include "settingsfile/settings_writer.h"
#include "tests/windows/installed_printer.h"

namespace {

constexpr double SETTINGS_FIGURE = 3; /* times the whole section read by one call of the system */
constexpr double DEFAULTS_FIGURE = 5; /* times the same question with a stored default record */
constexpr int KEYS = 250, ROUNDS = 200, QUESTIONS = 20;

/* Milliseconds of one call: the best of the rounds. */
template <class Body> double Best(int nRounds, Body body)
{
    double dBest = 1e18;
    for (int i = 0; i < nRounds; i++) {
        const auto begun = std::chrono::steady_clock::now();
        if (!body()) {
            std::printf("a call failed with error %lu\n", GetLastError());
            std::exit(1);
        }
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
        dBest = std::min(dBest, took.count());
    }
    return dBest;
}

int Report(const char* cWhat, double dTime, double dFloor, double dFigure)
{
    std::printf("%-44s %8.3f ms %8.3f ms %6.2f times (at most %.0f)%s\n", cWhat, dTime, dFloor,
                dTime / dFloor, dFigure, dTime > dFloor * dFigure ? "  OVER" : "");
    return dTime > dFloor * dFigure;
}

int MeasureSettings(const std::wstring& tcPath)
{
    DriverDevmode record = recordTemplate;
    DeleteFileW(tcPath.c_str());
    if (!WritePrinterSettings(tcPath.c_str(), &record, 0)) {
        std::printf("the settings file cannot be written\n");
        std::exit(1);
    }
    std::vector<WCHAR> keys(65536);
    DWORD cch = GetPrivateProfileSectionW(L"PrinterSettings", keys.data(), 65536, tcPath.c_str());
    long nKeys = static_cast<long>(std::count(keys.begin(), keys.begin() + cch, L'\0'));
    for (; nKeys < KEYS; nKeys++) {
        const std::wstring wcKey = L"LaterKey" + std::to_wstring(nKeys);
        WritePrivateProfileStringW(L"PrinterSettings", wcKey.c_str(), L"1234", tcPath.c_str());
    }
    /* The system keeps what it read until the file has another time stamp. */
    const std::wstring tcOther = tcPath + L".other.ini";
    double dSystem = 1e18;
    for (int i = 0; i < ROUNDS; i++) {
        CopyFileW(tcPath.c_str(), tcOther.c_str(), FALSE);
        Sleep(2);
        HANDLE hFile = CreateFileW(tcOther.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        FILETIME now;
        GetSystemTimeAsFileTime(&now);
        SetFileTime(hFile, nullptr, nullptr, &now);
        CloseHandle(hFile);
        dSystem = std::min(dSystem, Best(1, [&] {
                               return GetPrivateProfileSectionW(L"PrinterSettings", keys.data(), 65536,
                                                                tcOther.c_str()) > 0;
                           }));
    }
    const double dOwn = Best(ROUNDS, [&] {
        DriverDevmode read = record;
        return ReadPrinterSettings(OpenProfile(tcPath.c_str()), &read, 0, 0) != 0;
    });
    DeleteFileW(tcPath.c_str());
    DeleteFileW(tcOther.c_str());
    return Report("250 keys, beside GetPrivateProfileSectionW", dOwn, dSystem, SETTINGS_FIGURE);
}

/* Milliseconds of the question for a record. */
double AskRecord(std::wstring wcName)
{
    HANDLE hPrinter = nullptr;
    OpenPrinterW(wcName.data(), &hPrinter, nullptr);
    LONG cb = DocumentPropertiesW(nullptr, hPrinter, wcName.data(), nullptr, nullptr, 0);
    std::vector<BYTE> record(cb > 0 ? static_cast<size_t>(cb) : 1);
    const double dBest = Best(QUESTIONS, [&] {
        return DocumentPropertiesW(nullptr, hPrinter, wcName.data(),
                                   reinterpret_cast<PDEVMODEW>(record.data()), nullptr,
                                   DM_OUT_BUFFER) == IDOK;
    });
    ClosePrinter(hPrinter);
    return dBest;
}

int MeasureDefaults(const std::wstring& wcName)
{
    static const WCHAR wcValue[] = L"Default DevMode";
    const std::wstring wcKey = L"System\\CurrentControlSet\\Control\\Print\\Printers\\" + wcName;
    std::vector<BYTE> stored(65536);
    DWORD dwType, cb = 65536;
    HKEY hKey;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, wcKey.c_str(), 0, KEY_ALL_ACCESS, &hKey) != ERROR_SUCCESS ||
        RegQueryValueExW(hKey, wcValue, nullptr, &dwType, stored.data(), &cb) != ERROR_SUCCESS) {
        std::printf("the printer has no stored default record\n");
        return 1;
    }
    const double dWith = AskRecord(wcName);
    RegDeleteValueW(hKey, wcValue);
    const double dWithout = AskRecord(wcName);
    RegSetValueExW(hKey, wcValue, 0, dwType, stored.data(), cb);
    RegCloseKey(hKey);
    return Report("a record without a stored default", dWithout, dWith, DEFAULTS_FIGURE);
}

std::wstring Widen(const char* cText)
{
    return std::wstring(cText, cText + std::string(cText).size());
}

} // namespace

int main(int nArgs, char** cArgs)
{
    if (nArgs != 2) {
        std::printf("settings_figures FOLDER\n");
        return 2;
    }
    try {
        const std::filesystem::path tcPackage = PathFromEnvironment("TQUI_BUILT");
        const InstalledPrinter printer(FindInfModel(ReadInf(tcPackage / "tqui.inf"), "T410A"), tcPackage,
                                       PathFromEnvironment("TQUI_FULL_SIZE_LIBRARY"));
        return MeasureSettings(Widen(cArgs[1]) + L"\\figures.ini") | MeasureDefaults(printer.Name());
    } catch (const std::exception& error) {
        std::printf("settings_figures: %s\n", error.what());
        return 2;
    }
}
