/* The bytes are a preset in C:\\TEMP, the first one says for which sample: its sheet is opened, all pages are shown and
   painted, the preset's button is pressed on one of them, all are shown, painted and applied. Whatever the record then
   holds, both checks judge it and a job can be started with it, and nothing is held behind the sheet. */
#include "description/control_ids.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "entry/exports.h"
#include "fuzz/require.h"
#include "hosted/sheet_host.h"
#include "places.h"
#include "settings/checks.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr const char* acSamples[] = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};
constexpr size_t SAMPLES = std::size(acSamples);
WideText* const awcPrinters = new WideText[SAMPLES];

void StartSamples()
{
    StartMachine();
    const std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    for (size_t i = 0; i < SAMPLES; i++) {
        awcPrinters[i] = InstallSample(FindInfModel(models, acSamples[i]), TQUI_SAMPLES).wcName;
    }
}

void ShowAndPaint(Sheet* pSheet)
{
    for (size_t nPage = 0; nPage < SheetPageCount(pSheet); nPage++) {
        ShowSheetPage(pSheet, nPage);
        PaintWindows(SheetPageWindow(pSheet, nPage));
    }
}

void PressPreset(HANDLE hPrinter, WideText wcName, DriverDevmode* pRecord, size_t nPage)
{
    DOCUMENTPROPERTYHEADER header = {sizeof header, 0,        hPrinter,
                                     wcName.data(), nullptr,  reinterpret_cast<PDEVMODEW>(pRecord),
                                     220,           4 | 2 | 8};
    Sheet* pSheet = OpenSheet({[](PROPSHEETUI_INFO* pInfo, LPARAM lParam) -> LONG {
                                   return DrvDocumentPropertySheets(pInfo, lParam);
                               },
                               reinterpret_cast<LPARAM>(&header), 0});
    Require(SheetPageCount(pSheet) > 0);
    ShowAndPaint(pSheet);
    ShowSheetPage(pSheet, nPage % SheetPageCount(pSheet));
    Require(ClickControl(SheetPageWindow(pSheet, nPage % SheetPageCount(pSheet)), IDC_PRESET_APPLY));
    ShowAndPaint(pSheet);
    PressSheetApply(pSheet);
    EndSheet(pSheet);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    static bool bStarted = false;
    if (!bStarted) {
        StartSamples();
        bStarted = true;
    }
    if (cb < 1) {
        return 0;
    }
    const LiveCounts before = CountLive();
    {
        const WideText& wcName = awcPrinters[pBytes[0] % SAMPLES];
        const OpenSample printer(wcName);
        DriverDevmode record = {};
        PutFile(u"C:\\TEMP\\fuzz.ini", Bytes(pBytes + 1, pBytes + cb));
        PressPreset(printer.hPrinter, wcName, &record, pBytes[0] / SAMPLES);
        GuiJobRecord job = {};
        job.hPrinter = printer.hPrinter;
        job.dwJobId = 1;
        DriverDevmode used = record;
        DWORD cbHead = 0;
        GuiStartJob(&used, nullptr, &cbHead, &job);
        FreeBlock(job.pJobName);
        PrinterCall call(printer.hPrinter);
        const OwnedModel pModel = LoadPrinterModel(call);
        ValidatePublicPart(call, &record, pModel.get());
        ValidatePrivatePart(call, &record.rPrivate, pModel.get());
    }
    Require(CountLive() == before);
    return 0;
}
