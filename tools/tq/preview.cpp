/* The command `tq preview`. */
#include "tools/tq/preview.h"

#include <ostream>
#include <stdexcept>

#include "description/language_dll.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "platform/hosted/standin.h"
#include "preview/preview_choice.h"
#include "preview/preview_tools.h"
#include "settings/defaults.h"
#include "tools/tq/canvas.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"
#include "watermark/watermark_store.h"

namespace {

constexpr const WCHAR* wcImageFile = TEXT("C:\\image.bmp");
constexpr u16 IMAGE_DPI = 300;

/* The watermark that was asked for on the command line; ENTRY_FREE when none was. */
WatermarkEntry AskedWatermark(const PreviewOptions& options)
{
    WatermarkEntry entry;
    ResetWatermarkEntry(&entry);
    if (!options.image.empty()) {
        entry = {};
        entry.WMType = ENTRY_IMAGE;
        PutFile(wcImageFile, ReadDiskFile(options.image));
        CopyWide(entry.WMImageName, PATH_CHARS, wcImageFile);
        entry.WMScaleX = entry.WMScaleY = static_cast<u32>(options.nScale);
        entry.WMPlacement = static_cast<u16>(options.nPlacement);
        entry.WMResolution = IMAGE_DPI;
    } else if (!options.text.empty()) {
        entry.WMType = ENTRY_TEXT;
        CopyWide(entry.WMString, 64, Widen(options.text).c_str());
        entry.WMOutline = options.bOutline;
        entry.WMAngle = static_cast<u16>(options.dAngle * 10);
    }
    return entry;
}

/* What the sheet's session would hold, for the time of one call. */
struct Offer {
    OwnedModel pModel;
    OwnedBlock<PaperSizeRow> pCustomPapers, pForms;
    OwnedBlock<WatermarkEntry> pWatermarks;
    PreviewLists lists = {};

    explicit Offer(PrinterCall& call) : pModel(LoadPrinterModel(call))
    {
        if (!pModel) {
            throw std::runtime_error("the description cannot be read");
        }
        lists.pModel = pModel.get();
        lists.nCustomPapers = GetSavedPapers(call, lists.pModel, &pCustomPapers);
        lists.pCustomPapers = pCustomPapers.get();
        lists.nForms = GetSpoolerForms(call, &pForms);
        lists.pForms = pForms.get();
        lists.nWatermarks = GetSavedWatermarks(call, &pWatermarks);
        lists.pWatermarks = pWatermarks.get();
    }
};

void PrintLines(const PreviewChoice& choice, const PreviewSizes& sizes, const XpiModel* pModel,
                HMODULE hTexts, const WCHAR* wcDecimal, std::ostream& out)
{
    WCHAR wcString[TEXT_CHARS], wcLine[TEXT_CHARS];
    ReadLibraryString(hTexts, UnitString(sizes.bMetric), wcString, TEXT_CHARS);
    FormatSizeLine(sizes, choice, sizes.bMetric, wcString, wcDecimal, wcLine);
    out << Narrow(wcLine) << "\n";
    StatusLine aLines[STATUS_LINES];
    const int nLines = ListStatusLines(choice, pModel, aLines);
    for (int i = 0; i < nLines; i++) {
        ReadLibraryString(hTexts, aLines[i].usString, wcString, TEXT_CHARS);
        FormatStatusLine(aLines[i], wcString, wcLine);
        out << Narrow(wcLine) << "\n";
    }
}

DriverDevmode RecordToShow(PrinterCall& call, const PreviewOptions& options, WideText wcName)
{
    DriverDevmode record;
    if (options.record.empty()) {
        BuildDefaultRecord(call, wcName.data(), &record, 1);
    } else {
        record = ReadRecordFile(options.record);
    }
    for (const std::string& assignment : options.assignments) {
        SetRecordField(&record, assignment);
    }
    return record;
}

} // namespace

int RunPreview(const PreviewOptions& options, std::ostream& out)
{
    WideText wcName = StartModel(options.model, options.package, options.bMetric).wcName;
    SetUserLanguage(static_cast<u16>(std::stoul(options.language, nullptr, 16)));
    {
        OpenSample printer(wcName);
        PrinterCall call(printer.hPrinter);
        const DriverDevmode record = RecordToShow(call, options, wcName);
        Offer offer(call);
        LanguageChoice language;
        OwnedModule hTexts = OpenLanguageDll(call, &language);
        HMODULE hTextModule = static_cast<HMODULE>(hTexts.get());
        PreviewChoice choice = ChoiceFromRecord(record, offer.lists);
        const WatermarkEntry asked = AskedWatermark(options);
        if (asked.WMType != ENTRY_FREE) {
            offer.lists.pWatermarks = &asked;
            offer.lists.nWatermarks = 1;
            choice.lWatermark = 0;
        }
        const PreviewSizes sizes = FindPreviewSizes(offer.lists, choice);
        PrintLines(choice, sizes, offer.lists.pModel, hTextModule, language.wcDecimal, out);

        PreviewDevice device;
        DescribePreviewDevice(*OpenXpiFile(call), offer.lists.pModel, language.usPrimary, hTextModule,
                              &device);
        PreviewRequest request;
        WatermarkEntry copy;
        RequestFromChoice(choice, sizes, offer.lists, &copy, &request);
        Canvas canvas(options.nFrame, options.nFrame);
        PreviewTools tools = {};
        ComposePreview(tools, device, canvas.Context(), {0, 0, options.nFrame, options.nFrame}, &request);
        ReleasePreviewTools(&tools);
        canvas.Save(options.file);
    }
    StopMachine();
    return 0;
}
