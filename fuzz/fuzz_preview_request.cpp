/* The bytes are a request, a frame and a device, then a text that is typed as a measure. The picture's geometry must stay
   within what device contexts take, whatever they hold. */
#include <algorithm>
#include <cstring>

#include "base/measure.h"
#include "fuzz/require.h"
#include "preview/preview_choice.h"
#include "preview/preview_geometry.h"

namespace {

constexpr i32 FARTHEST = 0x7FFF;

/* The bytes as they lie, without gaps. */
struct Input {
    i32 lPageWidth, lPageLength, lTargetWidth, lTargetLength;
    u16 sOrientation;
    i16 sLayout, sPageOrder, sZoom;
    u16 bitFlags; /* borders, fit zoom, not centred, centred in the frame, device extent, metric, comma */
    u16 usWatermark;
    i32 lX, lY;
    RECT rFrame;
    i32 lMaxWidth, lMaxLength, lDefaultWidth, lDefaultLength;
};

void CheckWithin(const RECT& rect)
{
    Require(std::max({rect.left, rect.top, rect.right, rect.bottom}) <= FARTHEST &&
            std::min({rect.left, rect.top, rect.right, rect.bottom}) >= -FARTHEST);
}

void CheckCells(const PreviewGeometry& found, const PreviewRequest& request)
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

void CheckMeasures(const Input& input, const WCHAR* wcTyped)
{
    const int bMetric = input.bitFlags >> 5 & 1;
    const WCHAR* wcDecimal = input.bitFlags >> 6 & 1 ? TEXT(",") : TEXT(".");
    PreviewSizes sizes = {};
    sizes.lTargetWidth = input.lTargetWidth;
    sizes.lTargetLength = input.lTargetLength;
    PreviewChoice choice = {};
    choice.usOrientation = input.sOrientation;
    choice.sLayout = input.sLayout;
    WCHAR wcText[TEXT_CHARS];
    FormatSizeLine(sizes, choice, bMetric, wcTyped, wcDecimal, wcText);
    Require(BoundedLength(wcText, TEXT_CHARS) < TEXT_CHARS);

    /* What was read is shown and read again as the same. */
    const i32 lRead = MeasureOfText(wcTyped, wcDecimal, bMetric);
    FormatMeasure(lRead, bMetric, ROUND_NEAREST, wcDecimal, wcText, TEXT_CHARS);
    const i64 llAgain = MeasureOfText(wcText, wcDecimal, bMetric);
    Require(llAgain - lRead >= -26 && llAgain - lRead <= 26);
}

static_assert(sizeof(Input) == 68);

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    Input input = {};
    std::memcpy(&input, pBytes, std::min(cb, sizeof input));
    WCHAR wcTyped[300] = {};
    for (size_t i = sizeof input; i < cb && i - sizeof input < 299; i++) {
        wcTyped[i - sizeof input] = pBytes[i];
    }
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
        Require(entry.WMType != ENTRY_TEXT || entry.WMSize >= -FARTHEST);
    }
    CheckMeasures(input, wcTyped);
    return 0;
}
