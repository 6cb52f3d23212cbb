#include "sheet/layout_choice.h"

#include <algorithm>

#include "base/arithmetic.h"

namespace {

constexpr u16 PAPER_OF_JOB = 0xFFFF;
enum DuplexSide : u16 { ONE_SIDE = 1, LONG_EDGE = 2, SHORT_EDGE = 3 };

/* A zoom is given up; a scaling to a paper stays, and loses its place on the page. */
void SettleBookletScale(PrivateDevmode* pPart)
{
    if (pPart->sScale == SCALE_ZOOM || pPart->sScale == SCALE_ZOOM_CENTRED) {
        pPart->sScale = SCALE_NONE;
        pPart->sScaleTarget = 0;
    } else if (pPart->sScale != SCALE_NONE) {
        pPart->sScale = SCALE_FIT_CENTRED;
    }
}

/* Nothing may come between the sheets of a booklet. */
void DropOtherSheets(const LayoutDevice& device, PrivateDevmode* pPart)
{
    pPart->sSeparators = 0;
    pPart->sSeparatorPaper = PAPER_OF_JOB;
    pPart->sSeparatorLength = 0;
    pPart->sSeparatorBin = device.sDefaultBin;
    pPart->sSeparatorMediaIndex = device.sDefaultMedia;
    pPart->sInsertPages = 0;
    pPart->sInsertPaper = PAPER_OF_JOB;
    pPart->sInsertLength = 0;
    pPart->sInsertPageBin = device.sDefaultBin;
    pPart->sInsertPageMediaIndex = device.sDefaultMedia;
    pPart->bStyleCount = 0;
    pPart->bBlockCount = 0;
}

/* Two pages a side, both sides, folded along the short edge. */
void StoreBooklet(const LayoutChoice& choice, const LayoutDevice& device, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    i32 lPages = BookletPages(choice.lBooklet);
    pPart->lPagesPerSheet = 2;
    pPart->sBookletPrint = static_cast<i16>(lPages ? lPages : 1);
    pRecord->dmDuplex = SHORT_EDGE;
    pRecord->dmCollate = 1;
    pPart->sCollate = 1;
    pPart->sPageBorders = 0;
    pPart->sPageOrder = choice.bBindRight != 0;
    pPart->lBindLong = 0;
    pPart->lBindShort = 0;
    pPart->sMargins = pPart->sMargins == 2 ? u16{0} : pPart->sMargins;
    pPart->sOverlay = pPart->sOverlay == 5 ? u16{2} : pPart->sOverlay == 6 ? u16{4} : pPart->sOverlay;
    DropOtherSheets(device, pPart);
    pPart->sPosterGrowth = 0;
    SettleBookletScale(pPart);
}

/* A binding offset belongs to the edge that the sheets are turned along. */
void StoreDuplex(const LayoutChoice& choice, const LayoutDevice& device, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pRecord->dmDuplex = device.bDuplexUnit ? choice.usDuplex : u16{0};
    if (pRecord->dmDuplex == LONG_EDGE && pPart->lBindShort != 0) {
        pPart->lBindLong = pPart->lBindShort;
        pPart->lBindShort = 0;
    } else if (pRecord->dmDuplex == SHORT_EDGE && pPart->lBindLong != 0) {
        pPart->lBindShort = pPart->lBindLong;
        pPart->lBindLong = 0;
    }
}

int IsTypeOther(const LayoutChoice& choice, const PrivateDevmode& part)
{
    i32 lType = ValueOr(choice.type, part.sLayoutType);
    if (lType != part.sLayoutType || (lType == LAYOUT_BOOKLET) != (part.sBookletPrint != 0)) {
        return 1;
    }
    if (lType == LAYOUT_BOOKLET) {
        return (choice.bBindRight != 0) != (part.sPageOrder != 0) || choice.lBooklet != part.sBookletPrint;
    }
    if (lType == LAYOUT_POSTER && IsOther(choice.poster, static_cast<i16>(part.sPosterGrowth))) {
        return 1;
    }
    i32 lPages = ValueOr(choice.pages, part.lPagesPerSheet);
    return lPages != part.lPagesPerSheet ||
           (lPages > 1 && (IsOther(choice.order, static_cast<i16>(part.sPageOrder)) ||
                           (choice.bBorders != 0) != part.sPageBorders));
}

int IsDuplexOther(const LayoutChoice& choice, const LayoutDevice& device, const DriverDevmode& record)
{
    if (!device.bDuplex) {
        return 0;
    }
    return device.bDuplexUnit ? choice.usDuplex != record.dmDuplex : record.dmDuplex > 1;
}

} // namespace

LayoutDevice DescribeLayoutDevice(const XpiModel* pModel, const DeviceInfo& info, int bOnServer)
{
    LayoutDevice device = {};
    device.bOnServer = bOnServer != 0;
    if (pModel) {
        device.bDuplex =
            ((pModel->ulOptOptions | pModel->ulStdOptions | pModel->ulMoreOptions) & OPTION_DUPLEX) != 0;
        device.bDuplexUnit = device.bDuplex && (info.ulOptions & OPTION_DUPLEX);
        device.bPosterSizes = pModel->usLanguage == KIND_IMAGE || pModel->usLanguage == KIND_IMAGE_SECOND;
        device.sDefaultBin = LowWord(pModel->sDefaultBin);
        device.sDefaultMedia = pModel->sDefaultMedia;
    }
    return device;
}

i32 BookletPages(i32 lPages)
{
    return std::clamp(lPages, i32{0}, BOOKLET_LIMIT) / BOOKLET_PAGES * BOOKLET_PAGES;
}

int LayoutDiffers(const LayoutChoice& choice, const LayoutDevice& device, const DriverDevmode& record,
                  const DriverDevmode& snapshot)
{
    const PrivateDevmode& part = record.rPrivate;
    return (choice.bLandscape ? 2 : 1) != record.dmOrientation ||
           (choice.bRotate180 != 0) != part.sRotate180 ||
           part.sPosterGrowth != snapshot.rPrivate.sPosterGrowth ||
           part.sFrontCover != snapshot.rPrivate.sFrontCover || IsTypeOther(choice, part) ||
           IsDuplexOther(choice, device, record);
}

void StoreLayout(const LayoutChoice& choice, const LayoutDevice& device, DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pPart->sPosterGrowth = static_cast<u16>(ValueOr(choice.poster, pPart->sPosterGrowth));
    pRecord->dmOrientation = choice.bLandscape ? 2 : 1;
    pPart->sLayoutType = static_cast<u16>(ValueOr(choice.type, pPart->sLayoutType));
    pPart->sRotate180 = choice.bRotate180 != 0;
    pPart->lPagesPerSheet = ValueOr(choice.pages, pPart->lPagesPerSheet);
    if (pPart->lPagesPerSheet > 1) {
        pPart->sPosterGrowth = 0;
    }
    if (pPart->sLayoutType == LAYOUT_BOOKLET) {
        StoreBooklet(choice, device, pRecord);
        return;
    }
    pPart->sBookletPrint = 0;
    pPart->sPageBorders = choice.bBorders != 0;
    pPart->sPageOrder = static_cast<u16>(ValueOr(choice.order, pPart->sPageOrder));
    if (device.bDuplex) {
        StoreDuplex(choice, device, pRecord);
    }
}

void RepairSharedLayout(DriverDevmode* pRecord)
{
    PrivateDevmode* pPart = &pRecord->rPrivate;
    pRecord->dmDuplex = ONE_SIDE;
    if (pPart->sLayoutType == LAYOUT_BOOKLET) {
        pPart->sLayoutType = LAYOUT_N_UP;
        pPart->sBookletPrint = 0;
        pPart->lPagesPerSheet = 1;
    }
}
