/* The installed library as a guest of this process: every export leaves process and thread as it found them. */
#include <clocale>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "installed_printer.h"
#include "standins/job_core.h"

namespace {

constexpr DWORD LEFT_BY_CALLER = 777;

/* The token that the thread acts under, 0 for none. */
LONGLONG ThreadToken()
{
    HANDLE hToken;
    if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &hToken)) {
        return 0;
    }
    TOKEN_STATISTICS statistics = {};
    DWORD cb = 0;
    GetTokenInformation(hToken, TokenStatistics, &statistics, sizeof statistics, &cb);
    CloseHandle(hToken);
    return static_cast<LONGLONG>(statistics.TokenId.HighPart) << 32 | statistics.TokenId.LowPart;
}

/* What must be the same before and behind a call: folder, locales, language, error modes, token, windows. */
std::wstring House()
{
    WCHAR wcFolder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, wcFolder);
    int nWindows = 0;
    const auto count = [](HWND, LPARAM lParam) -> BOOL { return ++*reinterpret_cast<int*>(lParam); };
    EnumThreadWindows(GetCurrentThreadId(), count, reinterpret_cast<LPARAM>(&nWindows));
    std::wostringstream text;
    text << wcFolder << ' ' << std::setlocale(LC_ALL, nullptr) << ' ' << GetThreadLocale() << ' '
         << GetThreadUILanguage() << ' ' << GetErrorMode() << ' ' << GetThreadErrorMode() << ' '
         << ThreadToken() << ' ' << nWindows;
    return text.str();
}

void Expect(const char* cExport, DWORD dwLeft, const std::function<void()>& call)
{
    const std::wstring before = House();
    SetLastError(LEFT_BY_CALLER);
    call();
    EXPECT_EQ(GetLastError(), dwLeft) << cExport;
    EXPECT_EQ(House(), before) << cExport;
}

} // namespace

#define CALL(name, ...) EXPORT_OF(printer, name)(__VA_ARGS__)

TEST(Guest, EveryExportLeavesTheHouseAsItWas)
{
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    ASSERT_NE(ThreadToken(), 0);
    for (const char* cModel : {"T410A", "K100"}) {
        SCOPED_TRACE(cModel);
        const InstalledPrinter printer = Install(cModel);
        std::wstring wcName = std::wstring(printer.Name()) + std::wstring(16, L'\0');
        std::wstring wcNone = L"No such printer" + std::wstring(16, L'\0');
        alignas(8) static DriverDevmode in, out;
        PDEVMODEW pIn = reinterpret_cast<PDEVMODEW>(&in), pOut = reinterpret_cast<PDEVMODEW>(&out);
        DWORD cb = RECORD_SIZE, dwReason = 0;
        Expect("conversion", ERROR_SUCCESS,
               [&] { EXPECT_TRUE(CALL(DrvConvertDevMode, wcName.data(), nullptr, pIn, &cb, 0)); });
        Expect("conversion for none", ERROR_INVALID_PRINTER_NAME,
               [&] { EXPECT_FALSE(CALL(DrvConvertDevMode, wcNone.data(), nullptr, pOut, &cb, 0)); });
        for (WORD wQuestion = 1; wQuestion <= 35; wQuestion++) {
            Expect("capabilities", LEFT_BY_CALLER, [&] {
                CALL(DrvDeviceCapabilities, printer.Handle(), wcName.data(), wQuestion, nullptr, nullptr);
                CALL(DrvDeviceCapabilities, nullptr, wcNone.data(), wQuestion, nullptr, nullptr);
            });
        }
        Expect("properties", LEFT_BY_CALLER, [&] {
            CALL(DrvDocumentProperties, nullptr, printer.Handle(), wcName.data(), pOut, pIn, 10);
            CALL(DrvAdvancedDocumentProperties, nullptr, printer.Handle(), wcName.data(), pOut, pIn);
            CALL(DrvDocumentPropertySheets, nullptr, 0);
            CALL(DrvDevicePropertySheets, nullptr, 0);
            CALL(DevQueryPrintEx, nullptr);
            CALL(DrvUpgradePrinter, 1, nullptr);
        });
        Expect("query", LEFT_BY_CALLER, [&] { CALL(DevQueryPrint, printer.Handle(), pIn, &dwReason); });
        for (int iEsc : {1, 3, 5, 14}) {
            DOCEVENT_CREATEDCPRE create = {};
            create.pdm = pIn;
            void *pReset = pIn, *pGiven = nullptr;
            Expect("document event", LEFT_BY_CALLER, [&] {
                CALL(DrvDocumentEvent, printer.Handle(), nullptr, iEsc, 0,
                     iEsc == 1 ? static_cast<void*>(&create) : &pReset, 0, &pGiven);
            });
        }
        Expect("job", LEFT_BY_CALLER, [&] {
            RunJob({EXPORT_OF(printer, GuiStartJob), EXPORT_OF(printer, GuiStartSheet),
                    EXPORT_OF(printer, GuiEndJob)},
                   printer.Handle(), 7, &in);
        });
        for (int nEvent : {3, 1, 2, 4}) {
            Expect("printer event", LEFT_BY_CALLER, [&] {
                CALL(DrvPrinterEvent, wcName.data(), nEvent, 0, 0);
                CALL(DrvPrinterEvent, wcNone.data(), nEvent, 0, 0);
            });
        }
    }
    RevertToSelf();
}
