#include "preview/preview_choice.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/measure.h"
#include "description/control_ids.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "watermark/watermark_store.h"

namespace {

constexpr i32 LARGEST_ZOOM = 10000;

struct ScaleRow {
    u16 usScale;
    int bTarget; /* what sScaleTarget is: a paper's code, or percent */
    int bCentred, bFitZoom;
};
constexpr ScaleRow aScales[] = {
    {SCALE_FIT_CENTRED, 1, 1, 1}, {SCALE_ZOOM, 0, 0, 0},         {SCALE_TARGET, 1, 0, 0},
    {SCALE_FIT, 1, 0, 1},         {SCALE_ZOOM_CENTRED, 0, 1, 0}, {SCALE_TARGET_CENTRED, 1, 1, 0},
};

void ReadScale(const PrivateDevmode& part, PreviewChoice* pChoice)
{
    pChoice->usTarget = NO_TARGET;
    pChoice->lZoom = 100;
    for (const ScaleRow& row : aScales) {
        if (row.usScale == part.sScale) {
            pChoice->usTarget = row.bTarget ? part.sScaleTarget : NO_TARGET;
            pChoice->lZoom = row.bTarget ? 100 : part.sScaleTarget;
            pChoice->bCentred = row.bCentred;
            pChoice->bFitZoom = row.bFitZoom;
            pChoice->bScaled = 1;
        }
    }
}

/* A row of one of the two lists of paper sizes; null when neither has it. */
const PaperSizeRow* FindSizeRow(const PreviewLists& lists, i32 nIndex)
{
    if (nIndex < lists.nCustomPapers) {
        return lists.pCustomPapers ? lists.pCustomPapers + nIndex : nullptr;
    }
    nIndex -= lists.nCustomPapers;
    return lists.pForms && nIndex < lists.nForms ? lists.pForms + nIndex : nullptr;
}

/* A measure's number with as many decimals as it needs, at most one in metric and two in inches. */
void FormatShort(i32 lValue, int bMetric, const WCHAR* wcDecimal, WCHAR* wcOut)
{
    i32 lWhole, lFraction;
    SplitMeasure(lValue, bMetric, ROUND_NEAREST, &lWhole, &lFraction);
    int nDecimals = !lFraction ? 0 : bMetric ? 1 : 2;
    while (nDecimals > 0 && lFraction % 10 == 0) {
        lFraction /= 10;
        nDecimals--;
    }
    const WCHAR* wcFormat = nDecimals == 0 ? TEXT("%d") : nDecimals == 1 ? TEXT("%d%s%d") : TEXT("%d%s%02d");
    if (nDecimals == 0) {
        FormatWide(wcOut, TEXT_CHARS, wcFormat, lWhole);
    } else {
        FormatWide(wcOut, TEXT_CHARS, wcFormat, lWhole, wcDecimal, lFraction);
    }
}

/* Only these three count here, unlike where the sheet's shape is settled. */
int IsLengthFirst(const PreviewChoice& choice)
{
    int bTurned = choice.sLayout == 2 || choice.sLayout == 6 || choice.sLayout == 8;
    switch (choice.usOrientation) {
    case 1: return bTurned;
    case 2: return !bTurned;
    default: return 1;
    }
}

/* Weighs the parts of a colour as the eye does. */
u32 GreyOf(u32 ulColor)
{
    u32 ulRed = ulColor & 0xFF, ulGreen = ulColor >> 8 & 0xFF, ulBlue = ulColor >> 16 & 0xFF;
    u32 ulGrey = (155 * ulGreen + 27 * ulBlue + 74 * ulRed) / 256;
    return ulGrey | ulGrey << 8 | ulGrey << 16;
}

void CopyWatermark(const PreviewChoice& choice, const PreviewLists& lists, WatermarkEntry* pCopy,
                   PreviewRequest* pRequest)
{
    if (!lists.pWatermarks || choice.lWatermark < 0 || choice.lWatermark >= lists.nWatermarks) {
        return;
    }
    std::memcpy(pCopy, lists.pWatermarks + choice.lWatermark, sizeof *pCopy);
    u16 usClass = lists.pModel->usColorClass;
    if (pCopy->WMType == ENTRY_TEXT && !choice.bColor &&
        (usClass == CLASS_COLOR || usClass == CLASS_TOLD_COLOR)) {
        pCopy->WMColor = GreyOf(pCopy->WMColor);
    }
    pRequest->pWatermark = pCopy;
    pRequest->bWMOnePage = choice.bWMOnePage;
}

} // namespace

PreviewChoice ChoiceFromRecord(const DriverDevmode& record, const PreviewLists& lists)
{
    const PrivateDevmode& part = record.rPrivate;
    PreviewChoice choice = {};
    ReadScale(part, &choice);
    choice.usPaper = static_cast<u16>(record.dmPaperSize);
    choice.lCopies = record.dmCopies;
    choice.bCollate = record.dmCollate != 0;
    choice.bReverse = part.sReverseOrder != 0;
    choice.usFrontCover = part.sFrontCover;
    choice.usBackCover = part.sBackCover;
    choice.usSeparators = part.sSeparators;
    choice.usDuplex = record.dmDuplex;
    choice.usOrientation = record.dmOrientation;
    choice.bRotate180 = part.sRotate180 != 0;
    choice.bBooklet = part.sBookletPrint != 0;
    choice.sLayout =
        choice.bBooklet ? static_cast<i16>(LAYOUT_BOOKLET) : LowWord(static_cast<i64>(part.lPagesPerSheet));
    choice.bBorders = part.sPageBorders != 0;
    choice.sPageOrder = static_cast<i16>(part.sPageOrder);
    choice.lWatermark = MatchWatermark(lists.pWatermarks, lists.nWatermarks, &part);
    choice.bWMOnePage = part.sWMOnePage != 0;
    choice.bColor = IsPreviewColor(record, record.dmColor == COLOR_FULL);
    choice.usResolution = static_cast<u16>(part.ulResolution & 0xFFFF);
    return choice;
}

int IsPreviewColor(const DriverDevmode& record, int bChosen)
{
    return record.rPrivate.ulColorMode == MODE_ALWAYS_COLOR || bChosen;
}

u16 ResolutionOfRow(const XpiModel* pModel, i32 nRow)
{
    for (i32 i = 0; i <= nRow; i++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, i);
        if (!pRow->ulUsed) {
            break;
        }
        if (i == nRow) {
            return static_cast<u16>(pRow->sDpi);
        }
    }
    return 0;
}

PreviewPaper FindPreviewPaper(const PreviewLists& lists, u16 usPaper)
{
    i16 sCode = static_cast<i16>(usPaper);
    if (const PaperRow* pRow = FindPaperRow(lists.pModel, sCode)) {
        return {pRow->sWidth * 10, pRow->sLength * 10, pRow->sMetric != 0, pRow->sEnvelope != 0};
    }
    const PaperSizeRow* pSaved =
        sCode >= FIRST_SAVED_CODE ? FindSizeRow(lists, sCode - FIRST_SAVED_CODE) : nullptr;
    if (pSaved) {
        return {LowLong(pSaved->ulWidth), LowLong(pSaved->ulLength), pSaved->ulMetric != 0, 0};
    }
    i16 sWidth, sLength;
    int bMetric = GetDefaultPaperSize(&sWidth, &sLength);
    return {sWidth * 10, sLength * 10, bMetric, 0};
}

PreviewSizes FindPreviewSizes(const PreviewLists& lists, const PreviewChoice& choice)
{
    PreviewPaper page = FindPreviewPaper(lists, choice.usPaper);
    int bTarget = choice.usTarget != NO_TARGET;
    PreviewPaper shown = bTarget ? FindPreviewPaper(lists, choice.usTarget) : page;
    return {page.lWidth,
            page.lLength,
            shown.lWidth,
            shown.lLength,
            shown.bEnvelope,
            shown.bMetric,
            bTarget ? choice.usTarget : choice.usPaper};
}

void FormatSizeLine(const PreviewSizes& sizes, const PreviewChoice& choice, int bMetric, const WCHAR* wcUnit,
                    const WCHAR* wcDecimal, WCHAR* wcOut)
{
    WCHAR wcWidth[TEXT_CHARS], wcLength[TEXT_CHARS];
    FormatShort(sizes.lTargetWidth, bMetric, wcDecimal, wcWidth);
    FormatShort(sizes.lTargetLength, bMetric, wcDecimal, wcLength);
    const WCHAR* wcFirst = IsLengthFirst(choice) ? wcLength : wcWidth;
    const WCHAR* wcSecond = IsLengthFirst(choice) ? wcWidth : wcLength;
    FormatWide(wcOut, TEXT_CHARS, TEXT("%s x %s %s"), wcFirst, wcSecond, wcUnit);
}

int ListStatusLines(const PreviewChoice& choice, const XpiModel* pModel, StatusLine (&aLines)[STATUS_LINES])
{
    struct {
        int bShown;
        StatusLine line;
    } const aAll[] = {
        {choice.bBooklet, {IDS_STATUS_BOOKLET, 0}},
        {pModel->usColorClass == CLASS_COLOR && !choice.bColor, {IDS_STATUS_MONOCHROME, 0}},
        {choice.lCopies >= 2,
         {static_cast<u16>(choice.bCollate || choice.sLayout == LAYOUT_BOOKLET ? IDS_STATUS_COLLATED
                                                                               : IDS_STATUS_COPIES),
          choice.lCopies}},
        {choice.bReverse, {IDS_STATUS_REVERSE, 0}},
        {choice.usFrontCover == 1, {IDS_STATUS_FRONT_COVER, 0}},
        {choice.usFrontCover == 2, {IDS_STATUS_FRONT_COVER_EMPTY, 0}},
        {choice.usBackCover == 1, {IDS_STATUS_BACK_COVER, 0}},
        {choice.usBackCover == 2, {IDS_STATUS_BACK_COVER_EMPTY, 0}},
        {choice.usSeparators == 1, {IDS_STATUS_SEPARATORS, 0}},
        {choice.usSeparators == 2, {IDS_STATUS_SEPARATORS_PRINTED, 0}},
        {!choice.bBooklet && choice.usDuplex == 2, {IDS_STATUS_LONG_EDGE, 0}},
        {!choice.bBooklet && choice.usDuplex == 3, {IDS_STATUS_SHORT_EDGE, 0}},
        {choice.bScaled, {IDS_STATUS_SCALED, 0}},
    };
    int nLines = 0;
    for (const auto& row : aAll) {
        if (row.bShown && nLines < STATUS_LINES) {
            aLines[nLines++] = row.line;
        }
    }
    return nLines;
}

void FormatStatusLine(const StatusLine& line, const WCHAR* wcString, WCHAR* wcOut)
{
    if (line.lCopies > 0) {
        FormatWide(wcOut, TEXT_CHARS, wcString, line.lCopies);
    } else {
        CopyWide(wcOut, TEXT_CHARS, wcString);
    }
}

void RequestFromChoice(const PreviewChoice& choice, const PreviewSizes& sizes, const PreviewLists& lists,
                       WatermarkEntry* pCopy, PreviewRequest* pRequest)
{
    *pRequest = {};
    pRequest->lPageWidth = sizes.lPageWidth;
    pRequest->lPageLength = sizes.lPageLength;
    pRequest->sOrientation = choice.usOrientation;
    pRequest->bRotate180 = choice.bRotate180;
    pRequest->sResolution = choice.usResolution;
    pRequest->sLayout = choice.sLayout;
    pRequest->sPageOrder = choice.sPageOrder;
    pRequest->sPosterSize = choice.sPosterSize;
    pRequest->bBorders = choice.bBorders;
    pRequest->sPreviewControl = IDC_PREVIEW;
    pRequest->bDeviceExtent = 1;
    pRequest->bEnvelope = sizes.bEnvelope;
    pRequest->bColor = choice.bColor;
    pRequest->sZoom = static_cast<i16>(choice.lZoom < 0              ? 1
                                       : choice.lZoom > LARGEST_ZOOM ? LARGEST_ZOOM
                                                                     : choice.lZoom);
    pRequest->lTargetWidth = sizes.lTargetWidth;
    pRequest->lTargetLength = sizes.lTargetLength;
    pRequest->bNotCentered = !choice.bCentred;
    pRequest->bFitZoom = choice.bFitZoom;
    CopyWatermark(choice, lists, pCopy, pRequest);
}

void DescribePreviewDevice(XpiFile& file, const XpiModel* pModel, u16 usLanguage, HMODULE hLanguageDll,
                           PreviewDevice* pDevice)
{
    *pDevice = {};
    PaperExtents extents = GetPaperExtents(pModel);
    pDevice->lMaxWidth = extents.lMaxWidth;
    pDevice->lMaxLength = extents.lMaxLength;
    i16 sWidth, sLength;
    GetDefaultPaperSize(&sWidth, &sLength);
    pDevice->lDefaultWidth = sWidth * 10;
    pDevice->lDefaultLength = sLength * 10;
    pDevice->bLabel = pModel->usPreviewLabel != 0;
    if (pDevice->bLabel) {
        ReadXpiString(file, usLanguage, hLanguageDll, static_cast<i16>(pModel->usPreviewLabel),
                      pDevice->wcLabel, TEXT_CHARS);
    } else {
        pDevice->wcLabel[0] = 'M';
    }
}
