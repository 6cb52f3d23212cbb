/* What opening and closing the sheet of the largest sample takes: pages added, the first one shown, all of them
   shown. Most of it is files, settings and printer values. Exit code 1 when a time is over its figure. */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "entry/exports.h"
#include "hosted/sheet_host.h"
#include "places.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr double FIGURE_MILLISECONDS = 5;
constexpr int ROUNDS = 100;

LONG WINAPI Entry(PROPSHEETUI_INFO* pInfo, LPARAM lParam)
{
    return DrvDocumentPropertySheets(pInfo, lParam);
}

/* Best of the rounds. bAll: every page is shown. */
double Measure(DOCUMENTPROPERTYHEADER* pHeader, bool bAll)
{
    double best = 1e18;
    for (int n = 0; n < ROUNDS; n++) {
        const auto begun = std::chrono::steady_clock::now();
        Sheet* pSheet = OpenSheet({Entry, reinterpret_cast<LPARAM>(pHeader), 0});
        bool bGood = IsSheetOpen(pSheet);
        for (size_t i = 0; bAll && i < SheetPageCount(pSheet); i++) {
            bGood = bGood && ShowSheetPage(pSheet, i);
        }
        EndSheet(pSheet);
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begun;
        best = std::min(best, took.count());
        if (!bGood) {
            std::printf("the sheet did not open\n");
            std::exit(1);
        }
    }
    return best;
}

int Report(const char* cWhat, double milliseconds)
{
    const bool bOver = milliseconds > FIGURE_MILLISECONDS;
    std::printf("%-38s %7.2f ms (at most %.0f)%s\n", cWhat, milliseconds, FIGURE_MILLISECONDS,
                bOver ? "  OVER" : "");
    return bOver;
}

} // namespace

int main()
{
    StartMachine();
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
    int nOver;
    {
        WideText wcName =
            InstallSample(FindInfModel(ReadInf(TQUI_SAMPLES "/tqui.inf"), "T410A"), TQUI_SAMPLES).wcName;
        const OpenSample opened(wcName);
        DriverDevmode record;
        DOCUMENTPROPERTYHEADER header = {sizeof header,
                                         0,
                                         opened.hPrinter,
                                         wcName.data(),
                                         nullptr,
                                         reinterpret_cast<PDEVMODEW>(&record),
                                         0,
                                         14};
        nOver = Report("sheet opened and closed", Measure(&header, false));
        nOver += Report("the same, every page shown", Measure(&header, true));
        ResetCallCounts();
        Measure(&header, false);
        std::printf("platform calls of one sheet %d, of them files %d, spooler %d\n",
                    CallCount(ANY_CALL) / ROUNDS,
                    (CallCount(CALL_CreateFileW) + CallCount(CALL_ReadFile)) / ROUNDS,
                    (CallCount(CALL_GetPrinterDataW) + CallCount(CALL_GetPrinterDriverW) +
                     CallCount(CALL_GetPrinterW)) /
                        ROUNDS);
    }
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    StopMachine();
    return nOver != 0;
}
