#include "sheet/paper_choice.h"

#include <algorithm>

namespace {

int IsZoom(u16 usScale)
{
    return usScale == SCALE_ZOOM || usScale == SCALE_ZOOM_CENTRED;
}

int IsScalingOther(const PaperChoice& choice, const PrivateDevmode& part, const PrivateDevmode& before)
{
    if (part.sScale != before.sScale || part.sScaleTarget != before.sScaleTarget) {
        return 1;
    }
    if (part.sScale == SCALE_NONE) {
        return choice.lZoom != ZOOM_NONE;
    }
    return IsZoom(part.sScale) && (choice.lZoom != static_cast<i16>(part.sScaleTarget) ||
                                   (part.sScale == SCALE_ZOOM_CENTRED) != (choice.bCentre != 0));
}

} // namespace

int HasImageOption(const XpiModel* pModel)
{
    return pModel && (pModel->usLanguage == KIND_IMAGE || pModel->usLanguage == KIND_IMAGE_SECOND);
}

i32 ShownMedia(const DriverDevmode& record)
{
    return record.dmDefaultSource >= FIRST_MEDIA_SOURCE ? record.dmDefaultSource - FIRST_MEDIA_SOURCE + 1
                                                        : record.rPrivate.sMediaTypeIndex;
}

int PaperDiffers(const PaperChoice& choice, const XpiModel* pModel, const DriverDevmode& record,
                 const DriverDevmode& snapshot)
{
    const PrivateDevmode& part = record.rPrivate;
    const PrivateDevmode& before = snapshot.rPrivate;
    return IsOther(choice.paper, record.dmPaperSize) || choice.lCopies != record.dmCopies ||
           (choice.bCollate != 0) != record.dmCollate || (choice.bReverse != 0) != part.sReverseOrder ||
           IsScalingOther(choice, part, before) ||
           ((part.ulLanguageFeatures ^ before.ulLanguageFeatures) & FEATURE_IMAGE_OPTION) ||
           IsOther(choice.media, part.sMediaTypeIndex) ||
           (pModel->pOutputBins && IsOther(choice.output, part.sOutputPJLsid));
}

void StoreZoom(i32 lZoom, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    i32 lWithin = std::clamp(lZoom, ZOOM_MIN, ZOOM_MAX);
    if (lWithin == ZOOM_NONE) {
        pPart->sScale = SCALE_NONE;
    } else {
        pPart->sScale = SCALE_ZOOM;
        pPart->sScaleTarget = static_cast<u16>(lWithin);
    }
}

void StorePaper(const PaperChoice& choice, const XpiModel* pModel, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pRecord->dmPaperSize = static_cast<i16>(ValueOr(choice.paper, pRecord->dmPaperSize));
    pRecord->dmCopies = static_cast<i16>(std::clamp(choice.lCopies, COPIES_MIN, COPIES_MAX));
    pRecord->dmCollate = choice.bCollate != 0;
    pPart->sCollate = 0;
    if (choice.media.bChosen && pModel->pMediaTypes) {
        i32 lRow = choice.media.lValue;
        pPart->sMediaTypeIndex = static_cast<i16>(lRow);
        pRecord->dmMediaType = Row(pModel, pModel->pMediaTypes, lRow - 1)->ulMediaCode;
        if (pRecord->dmDefaultSource >= FIRST_MEDIA_SOURCE) {
            pRecord->dmDefaultSource = static_cast<i16>(FIRST_MEDIA_SOURCE + lRow - 1);
        }
    }
    pPart->sReverseOrder = choice.bReverse != 0;
    if (HasImageOption(pModel)) {
        pPart->ulLanguageFeatures = (pPart->ulLanguageFeatures & ~FEATURE_IMAGE_OPTION) |
                                    (choice.bImageOption ? FEATURE_IMAGE_OPTION : 0);
    }
    i32 lZoom = std::clamp(choice.lZoom, ZOOM_MIN, ZOOM_MAX);
    pPart->sScaleTarget = static_cast<u16>(lZoom);
    pPart->sScale = lZoom == ZOOM_NONE ? SCALE_NONE : choice.bCentre ? SCALE_ZOOM_CENTRED : SCALE_ZOOM;
    pPart->sTargetLength = 0;
    pPart->sTargetWidth = 0;
    if (pModel->pOutputBins) {
        pPart->sOutputPJLsid = static_cast<u16>(ValueOr(choice.output, pPart->sOutputPJLsid));
    }
}

ScalingState DescribeScaling(const PrivateDevmode& part, int bNup, int bScalingAllowed)
{
    ScalingState state = {ZOOM_NONE, 1, bScalingAllowed, -1, 1, 1, 0, 0};
    switch (part.sScale) {
    case SCALE_ZOOM:
    case SCALE_ZOOM_CENTRED:
        state.lZoom = bScalingAllowed ? static_cast<i16>(part.sScaleTarget) : ZOOM_NONE;
        state.bCentre = part.sScale == SCALE_ZOOM_CENTRED;
        state.bTargetSet = 1;
        break;
    case SCALE_FIT:
    case SCALE_FIT_CENTRED:
    case SCALE_TARGET:
    case SCALE_TARGET_CENTRED:
        state.bZoomOffered = 0;
        state.lTarget = static_cast<i16>(part.sScaleTarget);
        state.bBlockedByLayout = bNup;
        state.bTargetSet = !bNup;
        if (!bNup) {
            state.bFit = part.sScale == SCALE_FIT || part.sScale == SCALE_FIT_CENTRED;
            state.bCentreTarget = part.sScale == SCALE_FIT_CENTRED || part.sScale == SCALE_TARGET_CENTRED;
        }
        break;
    default: break;
    }
    return state;
}
