/* Contours of letters, from any bytes as the outline. Outline and points lie in blocks of their own size. */
#include <cstring>
#include <memory>

#include "fuzz/require.h"
#include "preview/glyph_outline.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* pData, size_t cbData)
{
    POINT origin = {};
    if (cbData < sizeof origin) {
        return 0;
    }
    std::memcpy(&origin, pData, sizeof origin);
    const u32 cbOutline = static_cast<u32>(cbData - sizeof origin), nRoom = cbOutline / 8 * 3;
    const std::unique_ptr<u8[]> outline(new u8[cbOutline]);
    std::memcpy(outline.get(), pData + sizeof origin, cbOutline);
    const std::unique_ptr<POINT[]> room(new POINT[nRoom]);
    ContourPoints points = {room.get(), 0, nRoom};
    u32 ulOffset = 0, ulBefore = 0;
    while (NextContour(outline.get(), cbOutline, &ulOffset, origin, &points)) {
        Require(ulOffset >= ulBefore + sizeof(TTPOLYGONHEADER) && ulOffset <= cbOutline);
        Require(points.nPoints <= nRoom && points.nPoints % 3 == 1);
        for (u32 i = 0; i < points.nPoints; i++) {
            const POINT point = points.pPoints[i];
            Require(point.x >= -32767 && point.x <= 32767 && point.y >= -32767 && point.y <= 32767);
        }
        ulBefore = ulOffset;
    }
    return 0;
}
