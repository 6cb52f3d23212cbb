/* The command `tq preview`. */
#include "tools/tq/preview.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <stdexcept>

#include "description/language_dll.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "document/defaults.h"
#include "entry/install_import.h"
#include "entry/user_settings_file.h"
#include "hosted/standin.h"
#include "preview/preview_choice.h"
#include "preview/preview_tools.h"
#include "preview/watermark_image.h"
#include "tools/tq/canvas.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"
#include "watermark/watermark_store.h"

namespace {

constexpr const WCHAR* wcImageFile = TEXT("C:\\image.bmp");
constexpr u16 IMAGE_DPI = 300;

/* The bytes of a bitmap file that a picture can show. */
Bytes ReadImageFile(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t cb = std::filesystem::file_size(path, error); /* of plain files only */
    if (error || cb > LARGEST_IMAGE_FILE) {
        throw std::runtime_error(path + ": an image is a plain file of at most 256 MB");
    }
    Bytes file = ReadDiskFile(path);
    const i64 lSize = static_cast<i64>(file.size());
    const u32 ulRows = file.size() < FILE_HEADER_BYTES ? 0 : RowsOfBitmapFile(file.data(), lSize);
    const u32 cbHead = ulRows ? std::min(ulRows - FILE_HEADER_BYTES, HEAD_BYTES) : 0;
    BitmapHead head;
    if (!ulRows || !ReadBitmapHead(file.data() + FILE_HEADER_BYTES, cbHead, ulRows, lSize, &head)) {
        throw std::runtime_error(path + ": not a bitmap file that the sheets can show");
    }
    return file;
}

/* The character set that has the letters, as a user would choose it with the face. */
u8 CharSetOf(const WideText& wcText)
{
    constexpr struct {
        WCHAR wcFirst, wcLast;
        u8 bCharSet;
    } aScripts[] = {{0x0600, 0x077F, 178}, {0xFB50, 0xFDFF, 178}, {0xFE70, 0xFEFC, 178},
                    {0x0590, 0x05FF, 177}, {0x0E00, 0x0E7F, 222}, {0xAC00, 0xD7A3, 129},
                    {0x3040, 0x30FF, 128}, {0x4E00, 0x9FFF, 134}, {0x0400, 0x04FF, 204},
                    {0x0370, 0x03FF, 161}};
    for (const auto& script : aScripts) {
        if (std::any_of(wcText.begin(), wcText.end(),
                        [&](WCHAR wcChar) { return wcChar >= script.wcFirst && wcChar <= script.wcLast; })) {
            return script.bCharSet;
        }
    }
    return 0;
}

void FillText(const PreviewOptions& options, WatermarkEntry* pEntry)
{
    const WideText wcText = Widen(options.text);
    pEntry->WMType = ENTRY_TEXT;
    CopyWide(pEntry->WMString, 64, wcText.c_str());
    pEntry->WMCharSet = CharSetOf(wcText);
    if (!options.face.empty()) {
        std::memset(pEntry->WMFace, 0, sizeof pEntry->WMFace);
        CopyWide(pEntry->WMFace, 32, Widen(options.face).c_str());
    }
    pEntry->WMSize = options.nSize ? static_cast<i16>(options.nSize) : pEntry->WMSize;
    pEntry->WMBold = options.bBold;
    pEntry->WMItalic = options.bItalic;
    pEntry->WMOutline = options.bOutline;
    pEntry->WMRTL = options.bRightToLeft;
    pEntry->WMAngle =
        options.dAngle < 0 ? pEntry->WMAngle : static_cast<u16>(std::lround(options.dAngle * 10));
}

void FillImage(const PreviewOptions& options, WatermarkEntry* pEntry)
{
    PutFile(wcImageFile, ReadImageFile(options.image));
    *pEntry = {};
    pEntry->WMType = ENTRY_IMAGE;
    CopyWide(pEntry->WMImageName, PATH_CHARS, wcImageFile);
    pEntry->WMScaleX = pEntry->WMScaleY = static_cast<u32>(options.nScale);
    pEntry->WMPlacement = static_cast<u16>(options.nPlacement);
    pEntry->WMResolution = IMAGE_DPI;
}

/* The watermark that was asked for on the command line; ENTRY_FREE when none was. */
WatermarkEntry AskedWatermark(const PreviewOptions& options)
{
    constexpr double MEASURES_A_MILLIMETRE = 100;
    WatermarkEntry entry;
    ResetWatermarkEntry(&entry);
    if (!options.image.empty()) {
        FillImage(options, &entry);
    } else if (!options.text.empty()) {
        FillText(options, &entry);
    }
    if (options.position.size() == 2) {
        entry.WMPositionX = static_cast<i32>(std::lround(options.position[0] * MEASURES_A_MILLIMETRE));
        entry.WMPositionY = static_cast<i32>(std::lround(options.position[1] * MEASURES_A_MILLIMETRE));
    }
    return entry;
}

/* What the sheet's session would hold, for the time of one call. */
struct Offer {
    OwnedModel pModel;
    OwnedBlock<PaperSizeRow> pCustomPapers, pForms;
    OwnedBlock<WatermarkEntry> pWatermarks;
    PreviewLists lists = {};

    /* Makes the user's files as the start of a sheet does. */
    Offer(PrinterCall& call, const DriverDevmode& record) : pModel(LoadPrinterModel(call))
    {
        if (!pModel) {
            throw std::runtime_error("the description cannot be read");
        }
        if (EnsureSettingsFile(call, &record, pModel->usLanguage)) {
            ImportInstallSettings(call, pModel.get());
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

/* Throws where it would change nothing. */
void StandOnFirstPage(PreviewChoice* pChoice, int nWatermarks)
{
    if (pChoice->lWatermark < 0 || pChoice->lWatermark >= nWatermarks) {
        throw std::runtime_error("--first-page: there is no watermark");
    }
    if (pChoice->sLayout < 2) {
        throw std::runtime_error("--first-page: each sheet has one page only");
    }
    pChoice->bWMOnePage = 1;
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
        Offer offer(call, record);
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
        if (options.bFirstPage) {
            StandOnFirstPage(&choice, offer.lists.nWatermarks);
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
