/* The arithmetic of the picture. It runs on records that nothing has checked yet: every number is brought within its
   range before it multiplies another, and products are taken in 64 bits. */
#include "preview/preview_geometry.h"

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/measure.h"
#include "settings/driver_devmode.h"

namespace {

constexpr i64 FARTHEST = 0x7FFF;     /* pixels, as far as device contexts of all systems go */
constexpr i32 LONGEST_SIDE = 35560;  /* measure: the longest side that a picture knows, 14 inches */
constexpr i32 LONGEST_EXTENT = 3556; /* the same in tenths of a millimetre */
constexpr i32 SMALLEST_ZOOM = 1, LARGEST_ZOOM = 10000;
constexpr i32 POINTS_PER_INCH = 72;
constexpr int FIRST_INDEX_OF_TWO = 0, INDEX_OF_BOOK = 11;

struct GridRow {
    i16 sLayout;
    int nUprightIndex, nOtherIndex;
    int nColumns, nRows; /* upright; turned around otherwise */
    int nGap;
};
constexpr GridRow aGrids[] = {
    {2, 0, 0, 2, 1, 3},  {4, 1, 1, 2, 2, 3},    {6, 2, 3, 3, 2, 3},
    {8, 4, 5, 4, 2, 2},  {9, 6, 6, 3, 3, 2},    {12, 7, 8, 4, 3, 2},
    {16, 9, 9, 4, 4, 2}, {25, 10, 10, 5, 5, 2}, {99, 11, 11, 2, 1, 0},
};

i32 Limit(i64 llValue, i64 llMin, i64 llMax)
{
    return static_cast<i32>(llValue < llMin ? llMin : llValue > llMax ? llMax : llValue);
}

LONG Pixel(i64 llValue)
{
    return Limit(llValue, -FARTHEST, FARTHEST);
}

/* A rectangle in 64 bits while it is being worked on. */
struct Area {
    i64 l, t, r, b;
};

Area WithinReach(const RECT& rect)
{
    return {Pixel(rect.left), Pixel(rect.top), Pixel(rect.right), Pixel(rect.bottom)};
}

RECT ToRect(const Area& area)
{
    return {Pixel(area.l), Pixel(area.t), Pixel(area.r), Pixel(area.b)};
}

/* Grids of as many columns as rows. */
int KeepsShape(i16 sLayout)
{
    return sLayout == 0 || sLayout == 1 || sLayout == 4 || sLayout == 9 || sLayout == 16 || sLayout == 25;
}

int TurnsShape(i16 sLayout)
{
    return sLayout == 2 || sLayout == 6 || sLayout == 8 || sLayout == 12 || sLayout == LAYOUT_BOOKLET;
}

/* 1 when the sheet stands upright. A landscape that an open page tells (0) and one from a record (2) are not alike on
   tall paper. */
int StandsUpright(int bWide, u16 sOrientation, i16 sLayout)
{
    if (bWide) {
        return sOrientation == 1 ? TurnsShape(sLayout) : KeepsShape(sLayout);
    }
    switch (sOrientation) {
    case 1: return KeepsShape(sLayout);
    case 2: return TurnsShape(sLayout);
    default: return sLayout == LAYOUT_BOOKLET;
    }
}

/* Cuts the frame to a square. */
Area Squared(Area frame, int bCentered)
{
    i64 llWidth = frame.r - frame.l, llHeight = frame.b - frame.t;
    if (llWidth > llHeight) {
        i64 llCentre = (frame.l + frame.r) / 2;
        frame.l = llCentre - llHeight / 2;
        frame.r = llCentre + llHeight / 2;
    } else if (llHeight > llWidth) {
        i64 llCentre = (frame.t + frame.b) / 2;
        frame.t = bCentered ? llCentre - llWidth / 2 : frame.b - llWidth;
        frame.b = bCentered ? llCentre + llWidth / 2 : frame.b;
    }
    return frame;
}

/* What lScaled becomes when lSide is brought to the longest side. */
void ScaleToLongest(i32* plScaled, i32 lSide)
{
    *plScaled = LowLong(MulDivTrunc(*plScaled, LONGEST_SIDE, lSide));
}

void SettleSizes(PreviewRequest* pRequest)
{
    if (!pRequest->lTargetWidth || !pRequest->lTargetLength) {
        pRequest->lTargetWidth = pRequest->lPageWidth;
        pRequest->lTargetLength = pRequest->lPageLength;
    }
    i32 lSide = pRequest->lTargetLength;
    if (lSide > LONGEST_SIDE) {
        ScaleToLongest(&pRequest->lPageLength, lSide);
        ScaleToLongest(&pRequest->lPageWidth, lSide);
        ScaleToLongest(&pRequest->lTargetWidth, lSide);
        pRequest->lTargetLength = LONGEST_SIDE;
    }
    lSide = pRequest->lTargetWidth;
    if (lSide > LONGEST_SIDE) {
        ScaleToLongest(&pRequest->lPageLength, lSide);
        ScaleToLongest(&pRequest->lPageWidth, lSide);
        ScaleToLongest(&pRequest->lTargetLength, lSide);
        pRequest->lTargetWidth = LONGEST_SIDE;
    }
}

int SizesDiffer(const PreviewRequest& request)
{
    return request.lTargetWidth != request.lPageWidth || request.lTargetLength != request.lPageLength;
}

void SettleZoom(PreviewRequest* pRequest)
{
    i64 llZoom = pRequest->sZoom ? pRequest->sZoom : 100;
    if (pRequest->bFitZoom && SizesDiffer(*pRequest)) {
        i64 llTarget = MulDivTrunc(pRequest->lTargetLength, 1000, pRequest->lTargetWidth);
        i64 llPage = MulDivTrunc(pRequest->lPageLength, 1000, pRequest->lPageWidth);
        llZoom = llTarget >= llPage ? MulDivTrunc(pRequest->lTargetWidth, 100, pRequest->lPageWidth)
                                    : MulDivTrunc(pRequest->lTargetLength, 100, pRequest->lPageLength);
    }
    pRequest->sZoom = static_cast<i16>(Limit(llZoom, SMALLEST_ZOOM, LARGEST_ZOOM));
}

RECT PlacePage(const RECT& rFitted, const PreviewRequest& request, int nSheetWidth, int nSheetHeight)
{
    i64 llWidth = Pixel(static_cast<i64>(rFitted.right - rFitted.left) * request.sZoom / 100);
    i64 llHeight = Pixel(static_cast<i64>(rFitted.bottom - rFitted.top) * request.sZoom / 100);
    i64 dx = request.bNotCentered ? 0 : (nSheetWidth - llWidth) / 2;
    i64 dy = request.bNotCentered ? 0 : (nSheetHeight - llHeight) / 2;
    return ToRect({dx, dy, dx + llWidth, dy + llHeight});
}

void DivideBase(const PreviewRequest& request, PreviewGeometry* pGeometry)
{
    const LayoutRow& row = pGeometry->row;
    int bOnPage = row.nIndex < 0 && SizesDiffer(request);
    pGeometry->rBase = bOnPage ? pGeometry->rPage : RECT{0, 0, pGeometry->nWidth, pGeometry->nHeight};
    int nWidth = pGeometry->rBase.right - pGeometry->rBase.left;
    int nHeight = pGeometry->rBase.bottom - pGeometry->rBase.top;
    pGeometry->nColumnStep = nWidth / row.nColumns;
    pGeometry->nRowStep = pGeometry->nHeight / row.nRows;
    pGeometry->nCellWidth = (nWidth + row.nColumns) / row.nColumns - row.nGap;
    pGeometry->nCellHeight = (nHeight + row.nRows) / row.nRows - row.nGap;
}

/* From the units of the list to pixels of a cell; the sides of the paper change their places on a flat cell. */
void ScaleWatermark(const RECT& rCell, const PreviewRequest& request)
{
    WatermarkEntry* pRow = request.pWatermark;
    i32 lWidth = rCell.right - rCell.left, lHeight = rCell.bottom - rCell.top;
    int bTall = lHeight > lWidth;
    i32 lAcross = bTall ? request.lPageWidth : request.lPageLength;
    i32 lDown = bTall ? request.lPageLength : request.lPageWidth;
    pRow->WMPositionX = Pixel(MulDivTrunc(pRow->WMPositionX, lWidth, lAcross));
    pRow->WMPositionY = Pixel(MulDivTrunc(pRow->WMPositionY, lHeight, lDown));
    if (pRow->WMType == ENTRY_TEXT) {
        i64 llSize = static_cast<i64>(bTall ? lWidth : lHeight) * pRow->WMSize * HUNDREDTHS_PER_INCH;
        i64 llUnits = static_cast<i64>(lAcross) * POINTS_PER_INCH;
        pRow->WMSize = static_cast<i16>(llUnits ? Pixel(llSize / llUnits) : 0);
    }
}

} // namespace

LayoutRow FindLayoutRow(i16 sLayout, int nOrientation, int bBorders)
{
    for (const GridRow& grid : aGrids) {
        if (grid.sLayout == sLayout) {
            int nGap = bBorders ? grid.nGap : 0;
            return nOrientation == 1 ? LayoutRow{grid.nUprightIndex, grid.nColumns, grid.nRows, nGap}
                                     : LayoutRow{grid.nOtherIndex, grid.nRows, grid.nColumns, nGap};
        }
    }
    return {-1, 1, 1, 0};
}

CellLabel LabelOfCell(const LayoutRow& row, i16 sPageOrder, int nCell)
{
    CellLabel label = {};
    int bDownFirst = sPageOrder >= 16 && sPageOrder <= 19;
    if (row.nIndex < 0 || nCell < 0 || nCell >= row.nColumns * row.nRows ||
        (!bDownFirst && (sPageOrder < 0 || sPageOrder > 3))) {
        return label;
    }
    if (row.nIndex == FIRST_INDEX_OF_TWO || row.nIndex == INDEX_OF_BOOK) {
        if (sPageOrder <= 1) {
            label.wcText[0] = static_cast<WCHAR>((row.nIndex == INDEX_OF_BOOK ? 'A' : '1') +
                                                 (sPageOrder == 1 ? 1 - nCell : nCell));
        }
        return label;
    }
    /* Bit 0 of an order counts from below, bit 1 from the right. */
    int nRow = nCell / row.nColumns, nColumn = nCell % row.nColumns;
    nRow = sPageOrder & 1 ? row.nRows - 1 - nRow : nRow;
    nColumn = sPageOrder & 2 ? row.nColumns - 1 - nColumn : nColumn;
    FormatWide(label.wcText, 4, TEXT("%d"),
               1 + (bDownFirst ? nColumn * row.nRows + nRow : nRow * row.nColumns + nColumn));
    return label;
}

int FitSheetRect(const PreviewDevice& device, RECT* pRect, i32 lWidth, i32 lLength,
                 const PreviewRequest& request)
{
    if (lWidth < 1 || lLength < 1) {
        lWidth = device.lDefaultWidth < 1 ? 1 : device.lDefaultWidth;
        lLength = device.lDefaultLength < 1 ? 1 : device.lDefaultLength;
    }
    Area area = WithinReach(*pRect);
    int bWide = lWidth > lLength;
    i64 llSpan = bWide ? area.r - area.l : area.b - area.t;
    i32 lLong = bWide ? lWidth : lLength, lShort = bWide ? lLength : lWidth;
    i64 llHalf = llSpan * 1000 / (2 * MulDivTrunc(lLong, 1000, lShort)); /* of the short side */
    int nOrientation = request.sOrientation <= 2 ? request.sOrientation : 0;
    if (StandsUpright(bWide, request.sOrientation, request.sLayout)) {
        i64 llCentre = (area.l + area.r) / 2;
        area.l = llCentre - llHalf;
        area.r = llCentre + llHalf;
    } else if (request.bCenterInFrame) {
        i64 llCentre = (area.t + area.b) / 2;
        area.t = llCentre - llHalf;
        area.b = llCentre + llHalf;
    } else {
        area.t = area.b - 2 * llHalf;
    }
    i32 lExtent = Limit(bWide ? device.lMaxWidth : device.lMaxLength, 0, LONGEST_EXTENT) * 10;
    if (request.bDeviceExtent && lExtent) {
        /* Below 0 for paper longer than the device's longest, which grows out of the frame. */
        i64 llShrink = 1000 - MulDivTrunc(lLong, 1000, lExtent);
        i64 llInset = (area.b - area.t) * llShrink / 2000;
        area.t += request.bCenterInFrame ? llInset : 2 * llInset;
        area.b -= request.bCenterInFrame ? llInset : 0;
        llInset = (area.r - area.l) * llShrink / 2000;
        area.l += llInset;
        area.r -= llInset;
    }
    *pRect = ToRect(area);
    return bWide ? (nOrientation == 1 ? 2 : 1) : nOrientation;
}

int ArrangePreview(const PreviewDevice& device, RECT rFrame, PreviewRequest* pRequest,
                   PreviewGeometry* pGeometry)
{
    *pGeometry = {};
    SettleSizes(pRequest);
    SettleZoom(pRequest);
    Area frame = WithinReach(rFrame);
    RECT rSquare = ToRect(Squared(frame, pRequest->bCenterInFrame));
    pGeometry->rSheet = rSquare;
    int nOrientation =
        FitSheetRect(device, &pGeometry->rSheet, pRequest->lTargetWidth, pRequest->lTargetLength, *pRequest);
    pGeometry->nWidth = pGeometry->rSheet.right - pGeometry->rSheet.left;
    pGeometry->nHeight = pGeometry->rSheet.bottom - pGeometry->rSheet.top;
    RECT rPage = rSquare;
    FitSheetRect(device, &rPage, pRequest->lPageWidth, pRequest->lPageLength, *pRequest);
    pGeometry->rPage = PlacePage(rPage, *pRequest, pGeometry->nWidth, pGeometry->nHeight);
    pGeometry->row = FindLayoutRow(pRequest->sLayout, nOrientation, pRequest->bBorders);
    DivideBase(*pRequest, pGeometry);
    if (frame.r <= frame.l || frame.b <= frame.t || pGeometry->nWidth <= 0 || pGeometry->nHeight <= 0) {
        return 0;
    }
    if (pRequest->pWatermark) {
        ScaleWatermark(RectOfCell(*pGeometry, 0), *pRequest);
    }
    return 1;
}

RECT RectOfCell(const PreviewGeometry& geometry, int nCell)
{
    const LayoutRow& row = geometry.row;
    if (nCell < 0 || nCell >= row.nColumns * row.nRows) {
        return {};
    }
    /* Only a single cell may begin elsewhere than at the sheet's corner. */
    LONG x = geometry.rBase.left + nCell % row.nColumns * geometry.nColumnStep;
    LONG y = geometry.rBase.top + nCell / row.nColumns * geometry.nRowStep;
    LONG lRight = x + geometry.nCellWidth, lBottom = y + geometry.nCellHeight;
    LONG lRightmost = geometry.nWidth - row.nGap, lLowest = geometry.nHeight - row.nGap;
    return {x + row.nGap, y + row.nGap, lRight < lRightmost ? lRight : lRightmost,
            lBottom < lLowest ? lBottom : lLowest};
}
