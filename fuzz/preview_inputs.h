/* What the fuzz targets of the preview demand of any request and any outline, for the tests as well. */
#ifndef TQUI_FUZZ_PREVIEW_INPUTS_H
#define TQUI_FUZZ_PREVIEW_INPUTS_H

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/require.h"
#include "preview/glyph_outline.h"
#include "preview/preview_geometry.h"

/* The bytes of a request as they lie, without gaps. */
struct PreviewInput {
    i32 lPageWidth, lPageLength, lTargetWidth, lTargetLength;
    u16 sOrientation;
    i16 sLayout, sPageOrder, sZoom;
    u16 bitFlags; /* borders, fit zoom, not centred, centred in the frame, device extent, metric, comma */
    u16 usWatermark;
    i32 lX, lY;
    RECT rFrame;
    i32 lMaxWidth, lMaxLength, lDefaultWidth, lDefaultLength;
};
static_assert(sizeof(PreviewInput) == 68);

inline void CheckWithin(const RECT& rect)
{
    Require(std::max({rect.left, rect.top, rect.right, rect.bottom}) <= 0x7FFF &&
            std::min({rect.left, rect.top, rect.right, rect.bottom}) >= -0x7FFF);
}

inline void CheckCells(const PreviewGeometry& found, const PreviewRequest& request)
{
    const int nCells = found.row.nColumns * found.row.nRows;
    Require(nCells >= 1 && nCells <= 25);
    u32 bitSeen = 0;
    for (int i = -1; i <= nCells; i++) {
        const RECT cell = RectOfCell(found, i);
        Require(cell.right <= std::max(found.nWidth, 0) && cell.bottom <= std::max(found.nHeight, 0));
        const CellLabel label = LabelOfCell(found.row, request.sPageOrder, i);
        const int cch = BoundedLength(label.wcText, 4);
        Require(cch < 3 && (i >= 0 && i < nCells ? true : cch == 0));
        if (cch) {
            /* Each page has one cell. */
            const bool bLetter = label.wcText[0] >= 'A';
            int nPage = bLetter ? label.wcText[0] - 'A' + 1 : label.wcText[0] - '0';
            nPage = cch == 2 ? nPage * 10 + label.wcText[1] - '0' : nPage;
            Require(nPage >= 1 && nPage <= nCells && !(bitSeen >> nPage & 1));
            bitSeen |= 1u << nPage;
        }
    }
}

/* The picture's geometry must stay within what device contexts take. Result: whether there is one. */
inline int TryPreviewRequest(const PreviewInput& input)
{
    WatermarkEntry entry = {};
    entry.WMType = input.usWatermark % 3u;
    entry.WMSize = static_cast<i16>(input.usWatermark);
    entry.WMPositionX = input.lX;
    entry.WMPositionY = input.lY;
    PreviewRequest request = {};
    request.lPageWidth = input.lPageWidth;
    request.lPageLength = input.lPageLength;
    request.lTargetWidth = input.lTargetWidth;
    request.lTargetLength = input.lTargetLength;
    request.sOrientation = input.sOrientation;
    request.sLayout = input.sLayout;
    request.sPageOrder = input.sPageOrder;
    request.sZoom = input.sZoom;
    request.bBorders = input.bitFlags & 1;
    request.bFitZoom = input.bitFlags >> 1 & 1;
    request.bNotCentered = input.bitFlags >> 2 & 1;
    request.bCenterInFrame = input.bitFlags >> 3 & 1;
    request.bDeviceExtent = input.bitFlags >> 4 & 1;
    request.pWatermark = &entry;
    PreviewDevice device = {};
    device.lMaxWidth = input.lMaxWidth;
    device.lMaxLength = input.lMaxLength;
    device.lDefaultWidth = input.lDefaultWidth;
    device.lDefaultLength = input.lDefaultLength;
    PreviewGeometry found;
    const int bDrawn = ArrangePreview(device, input.rFrame, &request, &found);
    Require(!bDrawn || (found.nWidth > 0 && found.nHeight > 0));
    Require(request.sZoom >= 1 && request.sZoom <= 10000);
    CheckWithin(found.rSheet);
    CheckWithin(found.rPage);
    CheckCells(found, request);
    if (bDrawn) { /* the watermark is pixels then */
        CheckWithin({entry.WMPositionX, entry.WMPositionY, 0, 0});
        Require(entry.WMType != ENTRY_TEXT || entry.WMSize >= -0x7FFF);
    }
    return bDrawn;
}

/* Contours of a letter; outline and points lie in blocks of their own size. Result: the contours. */
inline std::vector<std::vector<POINT>> TryOutline(const u8* pBytes, u32 cbOutline, POINT origin)
{
    std::vector<std::vector<POINT>> contours;
    const u32 nRoom = cbOutline / 8 * 3;
    const std::unique_ptr<u8[]> outline(new u8[cbOutline]);
    std::copy_n(pBytes, cbOutline, outline.get());
    const std::unique_ptr<POINT[]> room(new POINT[nRoom]);
    ContourPoints points = {room.get(), 0, nRoom};
    u32 ulOffset = 0, ulBefore = 0;
    while (NextContour(outline.get(), cbOutline, &ulOffset, origin, &points)) {
        Require(ulOffset >= ulBefore + sizeof(TTPOLYGONHEADER) && ulOffset <= cbOutline);
        Require(points.nPoints <= nRoom && points.nPoints % 3 == 1);
        for (u32 i = 0; i < points.nPoints; i++) {
            CheckWithin({points.pPoints[i].x, points.pPoints[i].y, 0, 0});
        }
        contours.emplace_back(points.pPoints, points.pPoints + points.nPoints);
        ulBefore = ulOffset;
    }
    return contours;
}

#endif
