/* Builds the default record from the printer's description, in the order in which one step may rely on another. */
#include "document/defaults.h"

#include <cstring>

#include "base/format.h"
#include "base/wide.h"
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/xpi_text.h"
#include "document/color_choices.h"
#include "settings/checks.h"
#include "settings/counted_row.h"
#include "settingsfile/settings_reader.h"

namespace {

/* Bits of dmFields that not every printer has. */

constexpr u32 STD_DISPLAY = 0x04;       /* of the model's ulStdOptions: the job head says DISPLAY */
constexpr u32 FEATURE_BARE_JOB = 0x40;  /* of its ulLanguageFeatures: PostScript without a wrapper */
constexpr u16 TRANSPARENCY_SECOND = 50; /* per cent, what a second image printer starts with */
constexpr i32 FEATURE_SLOTS = 32;
constexpr int NAME_CHARS = 32; /* of dmDeviceName and of the two fonts, the NUL included */
constexpr int FONT_NAME_BYTES =
    4 * (NAME_CHARS - 1); /* no code page has more than four bytes for a character */
constexpr int XPI_NAME_CHARS = 160;

/* The ",Local" tail of a printer's own name, or null. */
const WCHAR* FindLocalTail(const WCHAR* wcPrinterName)
{
    return FindWide(BehindLast(wcPrinterName, '\\'), TEXT(",Local"));
}

/* The printer's own name without server and tail. */
void StoreDeviceName(DriverDevmode* pRecord, const WCHAR* wcPrinterName)
{
    WCHAR wcName[NAME_CHARS] = {};
    if (wcPrinterName) {
        const WCHAR* wcOwn = BehindLast(wcPrinterName, '\\');
        const WCHAR* wcTail = FindLocalTail(wcPrinterName);
        std::ptrdiff_t nRoom = wcTail && wcTail - wcOwn < NAME_CHARS ? wcTail - wcOwn + 1 : NAME_CHARS;
        CopyWide(wcName, static_cast<int>(nRoom), wcOwn);
    }
    std::memcpy(pRecord->dmDeviceName, wcName, sizeof wcName);
}

/* What every record has, with or without a description. */
void StoreConstants(DriverDevmode* pRecord)
{
    PrivateDevmode& part = pRecord->rPrivate;
    part.sOverlayDirOffset = OVERLAY_DIR_OFFSET;
    part.sGenColorCmdOffset = COLOR_COMMAND_OFFSET;
    part.OEMData = {1, OEM_OFFSET, OEM_SIZE};
    part.bMetric = static_cast<u16>(IsMetricLocale());
}

void StoreXpiName(PrinterCall& call, DriverDevmode* pRecord)
{
    WCHAR tcName[XPI_NAME_CHARS] = {};
    CopyWideWhole(tcName, XPI_NAME_CHARS, GetXpiPath(call)); /* a cut path would name another file */
    std::memcpy(pRecord->rPrivate.tcXPIName, tcName, sizeof tcName);
}

/* A default font of the model: at most 31 characters of its name, however many bytes they take; without one the
   template's stays. pField is one of the record's two names. */
void StoreFontName(void* pField, const XpiModel* pModel, const char* pName)
{
    if (pName) {
        WCHAR wcWhole[FONT_NAME_BYTES + 1], wcName[NAME_CHARS] = {};
        WidenText(BodyText(pModel, pName), FONT_NAME_BYTES + 1, wcWhole, FONT_NAME_BYTES + 1);
        CopyWide(wcName, NAME_CHARS, wcWhole);
        std::memcpy(pField, wcName, sizeof wcName);
    }
}

/* Resolution, and the border round N-up pages that goes with the first three rows. */
void StoreResolution(DriverDevmode* pRecord, const XpiModel* pModel)
{
    static constexpr i16 asLengths[3] = {59, 118, 236};
    static constexpr i16 asWidths[3] = {3, 6, 12};
    PrivateDevmode& part = pRecord->rPrivate;
    i16 sRow = pModel->sDefaultResolution;
    part.sResolution = sRow;
    if (sRow >= 0 && sRow < 3) { /* by the row, whatever its dots per inch */
        part.sPageBorderLength = asLengths[sRow];
        part.sPageBorderWidth = asWidths[sRow];
    }
    if (const ResolutionRow* pRow = CountedRow(pModel, pModel->pResolutions, sRow)) {
        part.ulResolution = static_cast<u32>(pRow->sDpi);
        pRecord->dmPrintQuality = pRow->usDpiX;
        pRecord->dmYResolution = pRow->usDpiY;
    }
}

void StorePaper(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel)
{
    i16 sWidth, sLength;
    pRecord->dmPaperSize = GetDefaultPaper();
    GetPaperSize(call, pModel, pRecord->dmPaperSize, &sWidth, &sLength);
    pRecord->dmPaperWidth = sWidth;
    pRecord->dmPaperLength = sLength;
}

/* dmColor says monochrome on every model: the first check of a record settles it. */
void StoreColor(DriverDevmode* pRecord, const XpiModel* pModel)
{
    PrivateDevmode& part = pRecord->rPrivate;
    if (pModel->usColorClass != CLASS_COLOR) {
        return;
    }
    pRecord->dmColor = 1;
    part.sColorCorrection = static_cast<i16>(pModel->sDefaultColorMode);
    ApplyColorPreset(&part, pModel);
    pRecord->dmFields |= FIELDS_COLOR;
    if (pModel->usLanguage == KIND_IMAGE) {
        part.sScreening = static_cast<i16>(pModel->sDefaultScreen);
        part.dwColorFormat = pModel->ulDefaultColorFormat;
        part.sProfile = 0;
        part.sScreen = 0;
        return;
    }
    BuildColorCommands(&part, pModel);
    const ColorModeRow* pMode = CountedRow(pModel, pModel->pColorModes, part.sColorCorrection);
    const MediaRow* pMedia = CountedRow(pModel, pModel->pMediaTypes, pModel->sDefaultMedia - 1);
    pRecord->dmFields |= FIELDS_MATCHING;
    pRecord->dmICMMethod = pMode && pMode->ulKind == MODE_SYSTEM ? METHOD_SYSTEM : METHOD_NONE;
    pRecord->dmICMIntent = pModel->ulDefaultIntent;
    pRecord->dmMediaType = pMedia ? pMedia->ulMediaCode : 1;
}

/* Commands round the job. The rendering half replaces the marker !JOBNAME; the two SET lines tell our own job
   path where a job begins and ends. */
void StoreJobCommands(PrivateDevmode& part, const XpiModel* pModel)
{
    char cStart[sizeof part.cStartJobPJL] = {};
    static constexpr char cEnd[] = "@PJL SET GUIENDJOB=1\r\n";
    const char* cJob = pModel->ulStdOptions & STD_DISPLAY ? "@PJL JOB DISPLAY=\"!JOBNAME\"\r\n"
                                                          : "@PJL JOB NAME=\"!JOBNAME\"\r\n";
    if (pModel->usLanguage == KIND_POSTSCRIPT && pModel->ulLanguageFeatures & FEATURE_BARE_JOB) {
        part.sNoPJL = 1;
        cJob = "";
    }
    FormatNarrow(cStart, static_cast<int>(sizeof cStart), "%s@PJL SET GUISTARTJOB=1\r\n", cJob);
    std::memcpy(part.cStartJobPJL, cStart, sizeof cStart);
    std::memcpy(part.cEndJobPJL, cEnd, sizeof cEnd);
}

void StoreCollation(PrinterCall& call, PrivateDevmode& part, const XpiModel* pModel, u32 ulOptions)
{
    XpiFile* pFile = OpenXpiFile(call);
    char cCommand[sizeof part.cCollatePJL] = {};
    if (pFile && ulOptions & OPTION_DISK && pModel->sCollateCmdId) {
        ReadXpiShortCommand(*pFile, pModel->sCollateCmdId, cCommand, static_cast<int>(sizeof cCommand));
        std::memcpy(part.cCollatePJL, cCommand, sizeof cCommand);
    }
}

/* Printer options: the first value of each; where the user types one, the next of the typed values. There are
   eight of those: the check brings what goes beyond back to the first. */
void StoreOptionChoices(PrivateDevmode& part, const XpiModel* pModel)
{
    i16 sTyped = 0;
    for (i32 i = 0; i < FEATURE_SLOTS; i++) {
        const FeatureRow* pRow = Row(pModel, pModel->pPjlFeatures, i);
        if (!pRow->usNameId) {
            return;
        }
        if (!PjlValueRow(pModel, pRow->sFirstValue)->usNameId) {
            part.sPJLValueIndex[i] = --sTyped;
        }
    }
}

/* What the model says of the record. */
void StoreModel(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel)
{
    PrivateDevmode& part = pRecord->rPrivate;
    part.sExceptionInfoOffset = EXCEPTION_OFFSET;
    if (pModel->usLanguage == KIND_POSTSCRIPT) {
        part.sDoNotReportFonts = 0;
        part.sNumColors = pModel->usColorClass == CLASS_COLOR ? 2 : 0;
    } else if (pModel->usLanguage == KIND_IMAGE_SECOND) {
        part.sWMTransparency = TRANSPARENCY_SECOND;
    }
    u32 ulOptions = GetDeviceInfo(call, pModel)->ulOptions;
    if (ulOptions & OPTION_DUPLEX) {
        pRecord->dmFields |= FIELDS_DUPLEX;
        pRecord->dmDuplex = 1;
    }
    part.ulLanguageFeatures |= pModel->ulLanguageFeatures;
    part.sLanguageLevel = pModel->sLanguageLevel;
    part.ulNumResFonts = pModel->sResFontCount < 0 ? 0 : static_cast<u32>(pModel->sResFontCount);
    part.ulDefaultFontSize = static_cast<u32>(pModel->sDefaultFontSize);
    StoreFontName(part.wcDefaultFont, pModel, pModel->pDefaultFont);
    StoreFontName(part.wcDefaultPropFont, pModel, pModel->pDefaultPropFont);
    i16 sBin = static_cast<i16>(pModel->sDefaultBin);
    pRecord->dmDefaultSource = sBin;
    part.sFrontBin = sBin;
    part.sBackBin = sBin;
    part.sSeparatorBin = sBin;
    part.sInsertPageBin = sBin;
    i16 sMedia = pModel->sDefaultMedia;
    part.sMediaTypeIndex = sMedia;
    part.sFrontMediaIndex = sMedia;
    part.sBackMediaIndex = sMedia;
    part.sSeparatorMediaIndex = sMedia;
    part.sInsertPageMediaIndex = sMedia;
    StoreResolution(pRecord, pModel);
    StorePaper(call, pRecord, pModel);
    part.ulColorMode = 0;
    StoreColor(pRecord, pModel);
    StoreJobCommands(part, pModel);
    StoreCollation(call, part, pModel, ulOptions);
    part.sOutputPJLsid = pModel->sDefaultOutputBin;
    StoreOptionChoices(part, pModel);
}

/* BuildDefaultRecord without a mark left in the name. pModel null: loaded here. */
void FillRecord(PrinterCall& call, const WCHAR* wcPrinterName, DriverDevmode* pRecord, int bApplySettingsFile,
                const XpiModel* pModel)
{
    *pRecord = recordTemplate;
    StoreDeviceName(pRecord, wcPrinterName);
    StoreConstants(pRecord);
    StoreXpiName(call, pRecord);
    OwnedModel pLoaded(pModel ? nullptr : LoadPrinterModel(call));
    const XpiModel* pUsed = pModel ? pModel : pLoaded.get();
    if (!pUsed) {
        return;
    }
    StoreModel(call, pRecord, pUsed);
    if (bApplySettingsFile) {
        const ProfileFile& ini = GetDriverIni(call);
        if (call.iniState == ANSWERED) {
            ReadPrinterSettings(ini, pRecord, 0, pUsed->usLanguage);
        }
    }
}

} // namespace

void BuildDefaultRecord(PrinterCall& call, WCHAR* wcPrinterName, DriverDevmode* pRecord,
                        int bApplySettingsFile)
{
    const WCHAR* wcTail = wcPrinterName ? FindLocalTail(wcPrinterName) : nullptr;
    if (wcTail) {
        wcPrinterName[wcTail - wcPrinterName] = 0;
    }
    FillRecord(call, wcPrinterName, pRecord, bApplySettingsFile, nullptr);
}

void BuildModelRecord(PrinterCall& call, const WCHAR* wcPrinterName, DriverDevmode* pRecord,
                      int bApplySettingsFile, const XpiModel* pModel)
{
    FillRecord(call, wcPrinterName, pRecord, bApplySettingsFile, pModel);
}

DefaultSource FindPrinterDefaults(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel)
{
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    if (!pInfo) {
        return DEFAULT_NONE;
    }
    const WCHAR* wcName = PrinterText(call, pInfo->pPrinterName);
    if (!pInfo->pDevMode) {
        FillRecord(call, wcName, pRecord, 1, pModel);
        return DEFAULT_BUILT;
    }
    OwnedModel pLoaded = pModel ? nullptr : LoadPrinterModel(call);
    pModel = pModel ? pModel : pLoaded.get();
    const void* pStored = PrinterBytes(call, pInfo->pDevMode, RECORD_SIZE);
    if (pStored && pModel) {
        /* On a copy: a second look within this call finds the stored record as it was. */
        std::memcpy(pRecord, pStored, RECORD_SIZE);
        if (ValidatePublicPart(call, pRecord, pModel) &&
            ValidatePrivatePart(call, &pRecord->rPrivate, pModel)) {
            return DEFAULT_STORED;
        }
    }
    FillRecord(call, wcName, pRecord, 1, pModel);
    return DEFAULT_STORED;
}

int GetPrinterDefaults(PrinterCall& call, DriverDevmode* pRecord)
{
    return FindPrinterDefaults(call, pRecord) == DEFAULT_STORED;
}
