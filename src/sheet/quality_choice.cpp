#include "sheet/quality_choice.h"

#include <algorithm>
#include <cstring>

#include "base/arithmetic.h"
#include "document/color_choices.h"
#include "document/merge.h"
#include "watermark/watermark_store.h"

namespace {

constexpr u16 PAGE_DPI = 600; /* of every row: what the rendering half is told, whatever the row says */

/* dmICMIntent goes with modes of the system's colour management alone. */
int HasIntent(const XpiModel* pModel, u32 ulKind)
{
    return ulKind == MODE_SYSTEM && pModel->ulIntentMask;
}

int IsModeOther(const QualityChoice& choice, const XpiModel* pModel, const DriverDevmode& record)
{
    if (!pModel->pColorModes) {
        return 0;
    }
    u32 ulKind = ColorModeKind(pModel, ValueOr(choice.mode, -1));
    return IsOther(choice.mode, record.rPrivate.sColorCorrection) ||
           (HasIntent(pModel, ulKind) && choice.intent.bChosen &&
            static_cast<u32>(choice.intent.lValue) != record.dmICMIntent);
}

int IsImageOther(const QualityChoice& choice, const PrivateDevmode& part, const PrivateDevmode& before)
{
    return IsOther(choice.resolution, part.sResolution) || IsOther(choice.screening, part.sScreening) ||
           choice.bAdjustment != part.sColorRadioSaved || choice.bBlackText != part.sBlackText ||
           IsOther(choice.contrast, part.sContrast) || IsOther(choice.brightness, part.sBrightness) ||
           part.dwColorFormat != before.dwColorFormat || part.sProfile != before.sProfile ||
           part.sScreen != before.sScreen;
}

/* Without a selection the record keeps its mode, and so all that a mode decides. */
void StoreMode(const QualityChoice& choice, const XpiModel* pModel, DriverDevmode* pRecord)
{
    if (!pModel->pColorModes || !choice.mode.bChosen) {
        return;
    }
    PrivateDevmode* pPart = &pRecord->rPrivate;
    u32 ulIntent = pRecord->dmICMIntent;
    u32 ulKind = ColorModeKind(pModel, choice.mode.lValue);
    ClearColorCommands(pPart);
    pPart->sColorCorrection = LowWord(choice.mode.lValue);
    pRecord->dmICMMethod = ulKind == MODE_SYSTEM ? METHOD_SYSTEM : METHOD_NONE;
    pRecord->dmICMIntent =
        HasIntent(pModel, ulKind) ? static_cast<u32>(ValueOr(choice.intent, LowLong(ulIntent))) : 0;
    if (ulKind == MODE_FIXED) {
        ApplyColorPreset(pPart, pModel);
    }
    if ((ulKind == MODE_OWN || ulKind == MODE_FIXED) && pModel->usLanguage != KIND_IMAGE) {
        BuildColorCommands(pPart, pModel);
    }
}

/* The fields in dots follow the resolution; a record without one has nothing to follow. */
void StoreResolution(const QualityChoice& choice, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    u32 ulOld = pPart->ulResolution;
    pPart->sResolution = LowWord(ValueOr(choice.resolution, pPart->sResolution));
    pPart->ulResolution = PAGE_DPI;
    pRecord->dmPrintQuality = PAGE_DPI;
    pRecord->dmYResolution = PAGE_DPI;
    if (ulOld && ulOld != PAGE_DPI) {
        RescalePixels(pPart, PAGE_DPI, ulOld);
        pPart->sPageBorderWidth = LowWord(static_cast<i64>(pPart->sPageBorderWidth) * PAGE_DPI / ulOld);
    }
}

i16 StoredTone(const Selection& tone, i16 sOld)
{
    return static_cast<i16>(std::clamp(ValueOr(tone, sOld), TONE_MIN, TONE_MAX));
}

/* Only the name and its NUL are written: behind them a text watermark has its font. */
void StoreWatermarkFile(const XpiModel* pModel, const WatermarkEntry* pRows, i32 nRows, PrivateDevmode* pPart)
{
    constexpr int NAME_CHARS = static_cast<int>(sizeof PrivateDevmode::wcWMOverlayName / sizeof(WCHAR));
    i32 nRow = pPart->ulWMType ? MatchWatermark(pRows, nRows, pPart) : -1;
    if (nRow < 0) {
        return;
    }
    int bColor = pPart->ulColorMode == MODE_ALWAYS_COLOR && pModel->usLanguage != KIND_IMAGE;
    WCHAR wcName[NAME_CHARS];
    CopyWide(wcName, NAME_CHARS, bColor ? pRows[nRow].WMColorFile : pRows[nRow].WMFileName);
    std::memcpy(pPart->wcWMOverlayName, wcName,
                (static_cast<size_t>(WideLength(wcName)) + 1) * sizeof(WCHAR));
}

} // namespace

ColorGroup DescribeColorGroup(const XpiModel* pModel, u32 ulModeMask, u16 usColor, u32 ulKind)
{
    ColorGroup group = {};
    if (pModel->usLanguage == KIND_IMAGE && usColor != COLOR_FULL) {
        group.bTone = 1;
        return group;
    }
    if (!pModel->pColorModes || ulModeMask == MODE_PRINTER || ulModeMask == MODE_SYSTEM ||
        ulModeMask == MODE_FIXED) {
        return group; /* with modes of one such kind there is nothing to choose */
    }
    group.bCorrection = 1;
    group.bEditable = (ulModeMask & (MODE_SYSTEM | MODE_OWN)) != 0;
    group.bIntent = HasIntent(pModel, ulKind);
    group.bOptions = !group.bIntent && (ulModeMask & MODE_OWN);
    group.bOptionsOffered = group.bOptions && ulKind != MODE_PRINTER && ulKind != MODE_SYSTEM;
    return group;
}

int QualityDiffers(const QualityChoice& choice, const XpiModel* pModel, const DriverDevmode& record,
                   const DriverDevmode& snapshot)
{
    return !SameColorChoices(record.rPrivate, snapshot.rPrivate) || IsModeOther(choice, pModel, record) ||
           (pModel->usColorClass == CLASS_COLOR && choice.bColor != (record.dmColor == COLOR_FULL)) ||
           (pModel->usLanguage == KIND_IMAGE && IsImageOther(choice, record.rPrivate, snapshot.rPrivate));
}

void StoreQuality(const QualityChoice& choice, const XpiModel* pModel, const WatermarkEntry* pRows, i32 nRows,
                  DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pRecord->dmColor = choice.bColor && pModel->usColorClass == CLASS_COLOR ? COLOR_FULL : COLOR_MONOCHROME;
    StoreWatermarkFile(pModel, pRows, nRows, pPart);
    StoreMode(choice, pModel, pRecord);
    if (pModel->usLanguage != KIND_IMAGE) {
        return;
    }
    StoreResolution(choice, pRecord);
    if (pModel->pScreens) {
        pPart->sScreening = LowWord(ValueOr(choice.screening, pPart->sScreening));
    }
    pPart->sBlackText = choice.bBlackText != 0;
    pPart->sContrast = StoredTone(choice.contrast, pPart->sContrast);
    pPart->sBrightness = StoredTone(choice.brightness, pPart->sBrightness);
    pPart->sColorRadioSaved = choice.bAdjustment != 0;
}
