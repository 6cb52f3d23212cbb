/* The merge: pick a source record, copy it, fit the copy to the printer. The order of the fitting is part of the
   behaviour. */
#include "document/merge.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/file_name.h"
#include "base/format.h"
#include "description/installed_set.h"
#include "description/paper.h"
#include "document/color_choices.h"
#include "document/defaults.h"
#include "document/spool_folder.h"
#include "settings/caller_record.h"
#include "settings/checks.h"
#include "settings/counted_row.h"
#include "watermark/watermark_store.h"

namespace {

constexpr u32 MODE_UPDATE = 1, MODE_COPY = 2, MODE_MODIFY = 8; /* fMode */

constexpr u32 FIELDS_FOREIGN = 0x830F; /* orientation, paper and its two sides, copies, source, collation */

constexpr u32 FEATURE_OVERLAYS = 0x01; /* ulLanguageFeatures of an image model */

/* From a text field of the record into a buffer with room for it and a NUL. */
template <int cch> void TakeText(const void* pField, WCHAR (&wcOut)[cch], size_t cbField)
{
    std::memset(wcOut, 0, sizeof wcOut);
    std::memcpy(wcOut, pField, cbField < sizeof wcOut ? cbField : sizeof wcOut - sizeof(WCHAR));
}

/* The basic fields of a record of a foreign size. The record beyond its public size counts as zero. */
void TakeForeignFields(PrinterCall& call, const XpiModel* pModel, const DriverDevmode& taken,
                       DriverDevmode* pOut)
{
    DriverDevmode in = taken;
    if (in.dmSize < PUBLIC_BYTES) {
        u32 cbWhole = in.dmSize & ~1u; /* what is taken are words: half of one is none */
        std::memset(reinterpret_cast<u8*>(&in) + cbWhole, 0, PUBLIC_BYTES - cbWhole);
    }
    pOut->dmFields = FIELDS_FOREIGN | (pModel->usColorClass == CLASS_COLOR ? FIELDS_COLOR : 0);
    pOut->dmCopies = in.dmCopies < 1 ? static_cast<i16>(1) : in.dmCopies;
    pOut->dmCollate = in.dmCollate > 1 ? static_cast<u16>(0) : in.dmCollate;
    pOut->dmDefaultSource =
        in.dmDefaultSource < 1 ? static_cast<i16>(pModel->sDefaultBin) : in.dmDefaultSource;
    pOut->dmOrientation =
        in.dmOrientation == 0 || in.dmOrientation > 2 ? static_cast<u16>(1) : in.dmOrientation;
    in.dmPaperSize = in.dmPaperSize < 1 ? GetDefaultPaper() : in.dmPaperSize;
    StorePaperSize(call, pModel, &in);
    pOut->dmPaperSize = in.dmPaperSize;
    pOut->dmPaperWidth = in.dmPaperWidth;
    pOut->dmPaperLength = in.dmPaperLength;
    if (pModel->usColorClass == CLASS_COLOR) {
        u16 usColor = pOut->dmColor;
        pOut->dmColor = usColor == 0 || usColor > COLOR_FULL ? COLOR_FULL : usColor;
    }
}

void FitPaper(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord)
{
    PrivateDevmode& part = pRecord->rPrivate;
    if (pRecord->dmPaperSize >= FIRST_UNKNOWN_CODE && pRecord->dmPaperSize < USER_SIZED_PAPER) {
        pRecord->dmPaperSize = GetDefaultPaper();
    }
    if (pRecord->dmPaperSize != USER_SIZED_PAPER) {
        StorePaperSize(call, pModel, pRecord);
        i16 sCompanion = GetCompanionPaper(pModel, pRecord->dmPaperSize);
        if (sCompanion > 0 && part.sScale != SCALE_FIT_CENTRED && part.sScale != SCALE_FIT) {
            i16 sWidth, sLength;
            GetPaperSize(call, pModel, sCompanion, &sWidth, &sLength);
            part.sScaleTarget = static_cast<u16>(sCompanion);
            part.sScale = SCALE_FIT;
            part.sTargetWidth = sWidth;
            part.sTargetLength = sLength;
        }
    } else if (!pRecord->dmPaperWidth || !pRecord->dmPaperLength) {
        pRecord->dmPaperSize = GetDefaultPaper();
        StorePaperSize(call, pModel, pRecord);
    }
}

/* A source from FIRST_MEDIA_SOURCE up names a row of the media table. */
void FitMediaSource(const XpiModel* pModel, DriverDevmode* pRecord)
{
    i16 sRow = static_cast<i16>(pRecord->dmDefaultSource - FIRST_MEDIA_SOURCE);
    if (pRecord->dmDefaultSource < FIRST_MEDIA_SOURCE || !pModel->pMediaTypes) {
        return;
    }
    pRecord->rPrivate.sMediaTypeIndex = static_cast<i16>(sRow + 1);
    if (const MediaRow* pMedia = CountedRow(pModel, pModel->pMediaTypes, sRow)) {
        pRecord->dmMediaType = pMedia->ulMediaCode;
    }
}

/* Ends a watermark that the user no longer has; takes the built file that goes with the record's colour. */
void FitWatermark(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord)
{
    constexpr int NAME_CHARS = static_cast<int>(sizeof(PrivateDevmode::wcWMOverlayName) / sizeof(WCHAR));
    PrivateDevmode& part = pRecord->rPrivate;
    OwnedBlock<WatermarkEntry> pRows;
    i32 nRows = GetSavedWatermarks(call, &pRows);
    i32 nRow = MatchWatermark(pRows.get(), nRows, &part);
    if (nRow < 0) {
        part.ulWMType = 0;
        return;
    }
    if (pModel->usLanguage == KIND_IMAGE || pModel->usLanguage == KIND_IMAGE_SECOND) {
        return;
    }
    const WatermarkEntry& row = pRows.get()[nRow];
    WCHAR wcBuilt[NAME_CHARS] = {}, wcNow[NAME_CHARS + 1];
    CopyWide(wcBuilt, NAME_CHARS, pRecord->dmColor == COLOR_MONOCHROME ? row.WMFileName : row.WMColorFile);
    TakeText(part.wcWMOverlayName, wcNow, sizeof part.wcWMOverlayName);
    if (!SameWide(wcNow, wcBuilt)) {
        std::memset(wcNow, 0, sizeof wcNow);
        CopyWide(wcNow, NAME_CHARS, wcBuilt);
        std::memcpy(part.wcWMOverlayName, wcNow, sizeof part.wcWMOverlayName);
    }
    if (!wcBuilt[0]) {
        part.ulWMType = 0;
    }
}

void FitColor(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord)
{
    PrivateDevmode& part = pRecord->rPrivate;
    if (pModel->usColorClass != CLASS_COLOR && pModel->usColorClass != CLASS_TOLD_COLOR) {
        pRecord->dmFields &= ~FIELDS_ALL_COLOR;
        pRecord->dmColor = 0;
        pRecord->dmICMMethod = 0;
        pRecord->dmICMIntent = 0;
        ClearColorCommands(&part);
        return;
    }
    pRecord->dmFields |= FIELDS_COLOR | FIELDS_MEDIATYPE;
    if (pRecord->dmColor != COLOR_MONOCHROME || part.ulColorMode == MODE_ALWAYS_COLOR) {
        pRecord->dmColor = COLOR_FULL;
    }
    if (part.ulWMType) {
        FitWatermark(call, pModel, pRecord);
    }
    if (pRecord->dmColor == COLOR_MONOCHROME) {
        pRecord->dmICMMethod = METHOD_NONE;
        ClearColorCommands(&part);
    }
    if (!pRecord->dmMediaType) {
        pRecord->dmFields &= ~FIELDS_MEDIATYPE;
    }
}

/* Row of the resolution table with both numbers, or -1. */
i32 FindResolution(const XpiModel* pModel, u16 usDpiX, u16 usDpiY)
{
    for (i32 i = 0;; i++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, i);
        if (!pRow->ulUsed) {
            return -1;
        }
        if (pRow->usDpiX == usDpiX && pRow->usDpiY == usDpiY) {
            return i;
        }
    }
}

void FitResolution(const XpiModel* pModel, DriverDevmode* pRecord)
{
    PrivateDevmode& part = pRecord->rPrivate;
    const ResolutionRow* pNow = CountedRow(pModel, pModel->pResolutions, part.sResolution);
    if (pNow && pNow->usDpiX == pRecord->dmPrintQuality && pNow->usDpiY == pRecord->dmYResolution) {
        return;
    }
    i32 nRow = FindResolution(pModel, pRecord->dmPrintQuality, pRecord->dmYResolution);
    if (nRow < 0) {
        nRow = pModel->sDefaultResolution;
    }
    const ResolutionRow* pRow = CountedRow(pModel, pModel->pResolutions, nRow);
    if (!pRow) {
        return; /* the model has no default row: there is nothing better than what the record says */
    }
    u32 ulDpi = static_cast<u32>(pRow->sDpi);
    pRecord->dmPrintQuality = pRow->usDpiX;
    pRecord->dmYResolution = pRow->usDpiY;
    if (ulDpi != part.ulResolution && part.ulResolution) {
        RescalePixels(&part, pRow->sDpi, part.ulResolution);
    }
    part.sResolution = static_cast<i16>(nRow);
    part.ulResolution = ulDpi;
}

void FitCollation(PrinterCall& call, const XpiModel* pModel, PrivateDevmode& part, u32 ulOptions)
{
    char cCommand[sizeof part.cCollatePJL] = {};
    if (!pModel->sCollateCmdId) {
        return;
    }
    XpiFile* pFile = OpenXpiFile(call);
    if (pFile && ulOptions & OPTION_DISK) {
        ReadXpiShortCommand(*pFile, pModel->sCollateCmdId, cCommand, static_cast<int>(sizeof cCommand));
    }
    std::memcpy(part.cCollatePJL, cCommand, sizeof cCommand);
}

void FitDuplex(DriverDevmode* pRecord, u32 ulOptions)
{
    if (!(ulOptions & OPTION_DUPLEX)) {
        pRecord->dmFields &= ~FIELDS_DUPLEX;
        pRecord->dmDuplex = 0;
    } else if (!(pRecord->dmFields & FIELDS_DUPLEX) || pRecord->dmDuplex == 0 || pRecord->dmDuplex > 3) {
        pRecord->dmFields |= FIELDS_DUPLEX;
        pRecord->dmDuplex = 1;
    }
}

/* 1 for a file that is there. The record may name anything, so the file is asked for and not opened, and a device is
   not even asked for. */
int IsFile(const WCHAR* tcPath)
{
    DWORD dwAttributes = IsDevicePath(tcPath) ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(tcPath);
    return dwAttributes != INVALID_FILE_ATTRIBUTES && !(dwAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

/* An overlay that was to be made exists once its file does. */
void FitOverlay(const XpiModel* pModel, PrivateDevmode& part)
{
    WCHAR tcFolder[sizeof part.tcOverlayDir / sizeof(WCHAR) + 1];
    WCHAR wcFile[sizeof part.wcOverlayFile / sizeof(WCHAR) + 1];
    WCHAR tcPath[PATH_CHARS];
    TakeText(part.tcOverlayDir, tcFolder, sizeof part.tcOverlayDir);
    TakeText(part.wcOverlayFile, wcFile, sizeof part.wcOverlayFile);
    if (part.sOverlay == 1 && wcFile[0] &&
        FormatWide(tcPath, PATH_CHARS, TEXT("%s\\%s"), static_cast<const WCHAR*>(tcFolder),
                   static_cast<const WCHAR*>(wcFile)) &&
        IsFile(tcPath)) {
        part.sOverlay = 0;
        std::memset(part.wcOverlayFile, 0, sizeof part.wcOverlayFile);
        std::memset(part.wcWMString, 0, sizeof part.wcWMString);
    }
    if (pModel->usColorClass == CLASS_COLOR && pModel->usLanguage == KIND_IMAGE) {
        part.ulLanguageFeatures |= pModel->ulLanguageFeatures & FEATURE_OVERLAYS;
    }
}

void FitRecord(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord)
{
    u32 ulOptions = GetDeviceInfo(call, pModel)->ulOptions;
    FitPaper(call, pModel, pRecord);
    FitMediaSource(pModel, pRecord);
    FitColor(call, pModel, pRecord);
    FitResolution(pModel, pRecord);
    FitCollation(call, pModel, pRecord->rPrivate, ulOptions);
    FitDuplex(pRecord, ulOptions);
    FitOverlay(pModel, pRecord->rPrivate);
}

/* The source that a caller's full-sized record makes, in the record's copy. 0 when it needs the printer's default
   and there is none. */
int SettleCallerRecord(PrinterCall& call, const XpiModel* pModel, CallerRecord* pTaken)
{
    int bPublic = ValidatePublicPart(call, &pTaken->rCopy, pModel);
    int bPrivate = bPublic && ValidatePrivatePart(call, &pTaken->rCopy.rPrivate, pModel);
    GiveRepairs(pTaken);
    if (bPrivate) {
        return 1;
    }
    DriverDevmode standard;
    if (FindPrinterDefaults(call, &standard) == DEFAULT_NONE) {
        return 0;
    }
    if (!bPublic) {
        pTaken->rCopy = standard;
    } else {
        pTaken->rCopy.rPrivate = standard.rPrivate;
    }
    return 1;
}

void Merge(PrinterCall& call, const XpiModel* pModel, const DOCUMENTPROPERTYHEADER& header)
{
    CallerRecord source;
    DriverDevmode* pOut = reinterpret_cast<DriverDevmode*>(header.pdmOut);
    if (header.cbOut < RECORD_SIZE || !pModel || !ModelBodyBytes(pModel)) {
        return;
    }
    if (header.fMode & MODE_MODIFY && header.pdmIn) {
        TakeCallerRecord(header.pdmIn, &source);
        if (IsForeign(source)) {
            TakeForeignFields(call, pModel, source.rCopy, pOut);
            return;
        }
        if (!SettleCallerRecord(call, pModel, &source)) {
            return;
        }
    } else if (FindPrinterDefaults(call, &source.rCopy) == DEFAULT_NONE) {
        return;
    }
    if (header.fMode & (MODE_UPDATE | MODE_COPY)) {
        FitRecord(call, pModel, &source.rCopy);
        std::memcpy(pOut, &source.rCopy, RECORD_SIZE);
    }
}

} // namespace

void StorePaperSize(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord)
{
    i16 sWidth, sLength;
    GetPaperSize(call, pModel, pRecord->dmPaperSize, &sWidth, &sLength);
    pRecord->dmPaperWidth = sWidth;
    pRecord->dmPaperLength = sLength;
}

void RescalePixels(PrivateDevmode* pPart, i32 lNew, u32 ulOld)
{
    const auto pixels = [=](i32 lOld) { return static_cast<i64>(lOld) * lNew / static_cast<i64>(ulOld); };
    pPart->ptlWMPosition.x = LowLong(pixels(pPart->ptlWMPosition.x));
    pPart->ptlWMPosition.y = LowLong(pixels(pPart->ptlWMPosition.y));
    pPart->lBindLong = LowLong(pixels(pPart->lBindLong));
    pPart->lBindShort = LowLong(pixels(pPart->lBindShort));
    pPart->sMarginLeft = LowWord(pixels(pPart->sMarginLeft));
    pPart->sMarginTop = LowWord(pixels(pPart->sMarginTop));
    pPart->sMarginRight = LowWord(pixels(pPart->sMarginRight));
    pPart->sMarginBottom = LowWord(pixels(pPart->sMarginBottom));
    pPart->usCenterMargin = static_cast<u16>(LowWord(pixels(pPart->usCenterMargin)));
    pPart->usOuterMargin = static_cast<u16>(LowWord(pixels(pPart->usOuterMargin)));
}

void MergeDocumentSettings(PrinterCall& call, const DOCUMENTPROPERTYHEADER& header)
{
    DOCUMENTPROPERTYHEADER own = header; /* a buffer that overlaps it may not change it under us */
    OwnedModel pModel = LoadPrinterModel(call);
    Merge(call, pModel.get(), own);
    if (own.pszPrinterName) {
        CopySpoolFolder(call, pModel.get(), own.pszPrinterName);
    }
}
