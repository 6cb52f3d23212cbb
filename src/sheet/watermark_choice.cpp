#include "sheet/watermark_choice.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr i32 MEASURES_PER_INCH = 2540;
constexpr u16 MARK_TRANSPARENCY = 50; /* that the editors leave in a row */
constexpr u32 MARK_OUTLINE = 0x10;    /* of ulWMType */
constexpr int STRING_CHARS = sizeof PrivateDevmode::wcWMString / sizeof(WCHAR);
constexpr int FACE_CHARS = sizeof PrivateDevmode::wcWMFace / sizeof(WCHAR);
constexpr int OVERLAY_CHARS = sizeof PrivateDevmode::wcWMOverlayName / sizeof(WCHAR);

/* ulWMType of what goes into a record. */
enum : u32 { TYPE_TEXT = 5, TYPE_IMAGE = 6, TYPE_BUILT = 36 };

template <int cch> void CopyZeroed(WCHAR (&wcOut)[cch], const WCHAR* wcText)
{
    std::memset(wcOut, 0, sizeof wcOut);
    CopyWide(wcOut, cch, wcText);
}

/* A measure in dots; both directions cut towards zero. */
i32 DotsOf(i32 lMeasure, u32 ulResolution, i32 lDivisor)
{
    i64 llDots = (static_cast<i64>(lMeasure) * static_cast<i64>(ulResolution & 0xFFFF) + 1270) / lDivisor;
    return static_cast<i32>(static_cast<u32>(llDots));
}

/* The record's texts of both kinds share these bytes. */
void ClearTexts(PrivateDevmode* pPart)
{
    std::memset(pPart->wcWMOverlayName, 0, sizeof pPart->wcWMOverlayName);
}

int IsPrintedInColor(const DriverDevmode& record)
{
    u32 ulMode = record.rPrivate.ulColorMode;
    return ulMode == MODE_ALWAYS_COLOR || (ulMode == 1 && record.dmColor == COLOR_FULL);
}

void StoreBuiltFile(const WatermarkEntry& row, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pPart->ulWMType = TYPE_BUILT;
    ClearTexts(pPart);
    CopyWide(pPart->wcWMOverlayName, OVERLAY_CHARS,
             IsPrintedInColor(*pRecord) ? row.WMColorFile : row.WMFileName);
    pPart->ulWMWidth = row.WMWidth;
    pPart->ulWMLength = row.WMHeight;
    pPart->sWMResolution = static_cast<i16>(row.WMResolution);
}

void StoreOwnValues(const WatermarkEntry& row, PrivateDevmode* pPart)
{
    ClearTexts(pPart);
    if (row.WMType == ENTRY_IMAGE) {
        pPart->ulWMType = TYPE_IMAGE;
        CopyWide(pPart->wcWMOverlayName, OVERLAY_CHARS, row.WMImageName);
        return;
    }
    pPart->ulWMType = TYPE_TEXT | (row.WMOutline ? MARK_OUTLINE : 0);
    CopyWide(pPart->wcWMString, STRING_CHARS, row.WMString);
    CopyWide(pPart->wcWMFace, FACE_CHARS, row.WMFace);
    pPart->sWMCharSet = row.WMCharSet;
    pPart->ulWMPtSize = static_cast<u32>(static_cast<i32>(row.WMSize));
    pPart->sWMBold = static_cast<u16>(row.WMBold);
    pPart->sWMItalic = static_cast<u16>(row.WMItalic);
    pPart->ulWMAngle = row.WMAngle;
    pPart->ulWMColor = row.WMColor;
}

void StoreText(const WatermarkEntry& shown, WatermarkEntry* pRow)
{
    pRow->WMType = ENTRY_TEXT;
    CopyZeroed(pRow->WMString, shown.WMString);
    pRow->WMRTL = shown.WMRTL;
    CopyZeroed(pRow->WMFace, shown.WMFace);
    pRow->WMCharSet = shown.WMCharSet;
    pRow->WMSize = shown.WMSize;
    pRow->WMBold = shown.WMBold;
    pRow->WMItalic = shown.WMItalic;
    pRow->WMOutline = shown.WMOutline;
    pRow->WMAngle = shown.WMAngle;
    pRow->WMColor = shown.WMColor;
    pRow->WMPositionX = shown.WMPositionX;
    pRow->WMPositionY = shown.WMPositionY;
}

} // namespace

i32 ShownTransparency(const PrivateDevmode& part)
{
    return std::min(i32{part.sWMTransparency}, TRANSPARENCY_MAX);
}

int WatermarksDiffer(const WatermarksChoice& choice, i32 nMatched, const XpiModel* pModel,
                     const DriverDevmode& record, const DriverDevmode& snapshot)
{
    const PrivateDevmode& part = record.rPrivate;
    int bMark = choice.mark.bChosen && choice.mark.lValue != NO_MARK;
    return IsOther(choice.mark, nMatched) || (choice.bFirstPage != 0) != (part.sWMOnePage != 0) ||
           part.bMetric != snapshot.rPrivate.bMetric ||
           (bMark && PrintsMarkItself(pModel) && choice.lTransparency != ShownTransparency(part));
}

void ClearWatermark(PrivateDevmode* pPart)
{
    pPart->ulWMType = 0;
    pPart->sWMOnePage = 0;
    pPart->ptlWMPosition = {};
    ClearTexts(pPart);
    pPart->sWMCharSet = 0;
    pPart->ulWMPtSize = 0;
    pPart->ulWMAngle = 0;
    pPart->ulWMColor = 0;
    pPart->sWMBold = 0;
    pPart->sWMItalic = 0;
    pPart->usWMPlacement = 0;
}

void StoreWatermark(const WatermarksChoice& choice, const WatermarkEntry& row, const XpiModel* pModel,
                    DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pPart->sWMOnePage = choice.bFirstPage != 0;
    pPart->usWMPlacement = row.WMPlacement;
    pPart->ptlWMPosition.x = DotsOf(row.WMPositionX, pPart->ulResolution, MEASURES_PER_INCH);
    pPart->ptlWMPosition.y = DotsOf(row.WMPositionY, pPart->ulResolution, -MEASURES_PER_INCH); /* downwards */
    if (!PrintsMarkItself(pModel)) {
        StoreBuiltFile(row, pRecord);
        return;
    }
    StoreOwnValues(row, pPart);
    pPart->sWMTransparency = static_cast<u16>(choice.lTransparency);
    pPart->szlWMScale.cx = row.WMScaleX;
    pPart->szlWMScale.cy = row.WMScaleY;
}

u32 ColorOfDarkness(i32 lDarkness)
{
    u32 ulGrey = lDarkness < DARKNESS_MIN   ? 255
                 : lDarkness < DARKNESS_MAX ? static_cast<u32>((25550 - 255 * lDarkness) / 100)
                                            : 0;
    return ulGrey | ulGrey << 8 | ulGrey << 16;
}

i32 DarknessOfColor(u32 ulColor)
{
    u32 ulRed = ulColor & 0xFF, ulGreen = ulColor >> 8 & 0xFF, ulBlue = ulColor >> 16 & 0xFF;
    u32 ulGrey = (155 * ulGreen + 27 * ulBlue + 74 * ulRed) / 256;
    return 100 - static_cast<i32>((ulGrey * 100 + 128) / 255);
}

u16 AngleOfDegrees(i32 lDegrees)
{
    return static_cast<u16>(std::min(std::clamp(lDegrees, 0, 360) * 10, 3599));
}

void StoreMark(const WatermarkEntry& shown, const XpiModel* pModel, WatermarkEntry* pRow)
{
    if (shown.WMType == ENTRY_IMAGE) {
        *pRow = shown;
        pRow->WMTransparency = MARK_TRANSPARENCY;
    } else {
        StoreText(shown, pRow);
    }
    if (PrintsMarkItself(pModel)) {
        CopyZeroed(pRow->WMFileName, shown.WMString);
        pRow->WMResolution = 1;
        pRow->WMWidth = 1;
        pRow->WMHeight = 1;
    }
}

void FitImageScale(const WatermarkEntry& row, const XpiModel* pModel, u16 usResolution,
                   WatermarkEntry* pShown)
{
    if (!row.WMResolution || !usResolution || PrintsMarkItself(pModel)) {
        return;
    }
    u32 ulScale = row.WMResolution * pShown->WMScaleX / usResolution;
    pShown->WMScaleX = ulScale ? ulScale : pShown->WMScaleX;
}
