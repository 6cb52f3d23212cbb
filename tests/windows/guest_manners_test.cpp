/* The installed library as a guest of this process: every export leaves process and thread as it found them. */
#include <clocale>
#include <cstring>
#include <functional>

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

/* What must be the same before and behind a call. */
struct House {
    DWORD dwError = GetLastError();
    std::wstring folder = Folder();
    std::string locale = std::setlocale(LC_ALL, nullptr);
    LCID threadLocale = GetThreadLocale();
    LANGID threadLanguage = GetThreadUILanguage();
    UINT uErrorMode = GetErrorMode();
    DWORD dwThreadErrorMode = GetThreadErrorMode();
    LONGLONG token = ThreadToken();
    int nWindows = Windows();
    bool operator==(const House&) const = default;

    static std::wstring Folder()
    {
        WCHAR wcFolder[MAX_PATH] = {};
        GetCurrentDirectoryW(MAX_PATH, wcFolder);
        return wcFolder;
    }
    static int Windows()
    {
        int nCount = 0;
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND, LPARAM lParam) -> BOOL {
                ++*reinterpret_cast<int*>(lParam);
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&nCount));
        return nCount;
    }
};

void Expect(const char* cExport, DWORD dwLeft, const std::function<void()>& call)
{
    SetLastError(LEFT_BY_CALLER);
    House before;
    SetLastError(LEFT_BY_CALLER);
    call();
    House after;
    EXPECT_EQ(after.dwError, dwLeft) << cExport;
    EXPECT_EQ(after.folder, before.folder) << cExport;
    EXPECT_EQ(after.locale, before.locale) << cExport;
    EXPECT_EQ(after.token, before.token) << cExport;
    EXPECT_EQ(after.nWindows, before.nWindows) << cExport;
    after.dwError = before.dwError;
    EXPECT_TRUE(after == before) << cExport << ": locale or error mode of the thread";
}

} // namespace

TEST(Guest, EveryExportLeavesTheHouseAsItWas)
{
    const auto tcPackage = PathFromEnvironment("TQUI_BUILT");
    const std::vector<InfModel> models = ReadInf(tcPackage / "tqui.inf");
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    ASSERT_NE(ThreadToken(), 0);
    for (const char* cModel : {"T410A", "K100"}) {
        SCOPED_TRACE(cModel);
        const InstalledPrinter printer(FindInfModel(models, cModel), tcPackage,
                                       PathFromEnvironment("TQUI_TEST_LIBRARY"));
        const auto name = [&](const WCHAR* wcText) {
            std::wstring wcOwn = wcText;
            wcOwn.resize(wcOwn.size() + 16);
            return wcOwn;
        };
        std::wstring wcName = name(printer.Name()), wcNone = name(L"No such printer");
        const auto guest = [&]<class Routine>(Routine, const char* cName) {
            const Routine routine = printer.Export<Routine>(cName);
            EXPECT_TRUE(routine != nullptr) << cName;
            return routine;
        };
#define GUEST(export) const auto p##export = guest(&export, #export)
        GUEST(DrvDeviceCapabilities);
        GUEST(DrvConvertDevMode);
        GUEST(DrvDocumentProperties);
        GUEST(DrvAdvancedDocumentProperties);
        GUEST(DevQueryPrint);
        GUEST(DevQueryPrintEx);
        GUEST(DrvDocumentPropertySheets);
        GUEST(DrvDevicePropertySheets);
        GUEST(DrvDocumentEvent);
        GUEST(DrvPrinterEvent);
        GUEST(DrvUpgradePrinter);
        GUEST(GuiStartJob);
        GUEST(GuiStartSheet);
        GUEST(GuiEndJob);
#undef GUEST
        if (::testing::Test::HasFailure()) {
            break;
        }
        alignas(8) static DriverDevmode in, out;
        PDEVMODEW pIn = reinterpret_cast<PDEVMODEW>(&in), pOut = reinterpret_cast<PDEVMODEW>(&out);
        DWORD cb = RECORD_SIZE, dwReason = 0;
        Expect("conversion", ERROR_SUCCESS,
               [&] { EXPECT_TRUE(pDrvConvertDevMode(wcName.data(), nullptr, pIn, &cb, 0)); });
        Expect("conversion for none", ERROR_INVALID_PRINTER_NAME,
               [&] { EXPECT_FALSE(pDrvConvertDevMode(wcNone.data(), nullptr, pOut, &cb, 0)); });
        for (WORD wQuestion = 1; wQuestion <= 35; wQuestion++) {
            Expect("capabilities", LEFT_BY_CALLER, [&] {
                pDrvDeviceCapabilities(printer.Handle(), wcName.data(), wQuestion, nullptr, nullptr);
                pDrvDeviceCapabilities(nullptr, wcNone.data(), wQuestion, nullptr, nullptr);
            });
        }
        Expect("properties", LEFT_BY_CALLER, [&] {
            pDrvDocumentProperties(nullptr, printer.Handle(), wcName.data(), pOut, pIn, 10);
            pDrvAdvancedDocumentProperties(nullptr, printer.Handle(), wcName.data(), pOut, pIn);
            pDrvDocumentPropertySheets(nullptr, 0);
            pDrvDevicePropertySheets(nullptr, 0);
            pDevQueryPrintEx(nullptr);
            pDrvUpgradePrinter(1, nullptr);
        });
        Expect("query", LEFT_BY_CALLER, [&] { pDevQueryPrint(printer.Handle(), pIn, &dwReason); });
        for (int iEsc : {1, 3, 5, 14}) {
            DOCEVENT_CREATEDCPRE create = {};
            create.pdm = pIn;
            void *pReset = pIn, *pGiven = nullptr;
            Expect("document event", LEFT_BY_CALLER, [&] {
                pDrvDocumentEvent(printer.Handle(), nullptr, iEsc, 0,
                                  iEsc == 1 ? static_cast<void*>(&create) : &pReset, 0, &pGiven);
            });
        }
        Expect("job", LEFT_BY_CALLER, [&] {
            RunJob({pGuiStartJob, pGuiStartSheet, pGuiEndJob}, printer.Handle(), 7, &in);
        });
        for (int nEvent : {3, 1, 2, 4}) {
            Expect("printer event", LEFT_BY_CALLER, [&] {
                pDrvPrinterEvent(wcName.data(), nEvent, 0, 0);
                pDrvPrinterEvent(wcNone.data(), nEvent, 0, 0);
            });
        }
    }
    RevertToSelf();
}
