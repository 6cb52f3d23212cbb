/* Outlines of letters as curves. */
#include "preview/glyph_outline.h"

#include <cstring>

#include "base/owned.h"

namespace {

/* Sines of 0 to 90 degrees, times 10000, rounded. */
constexpr i16 SineTable[91] = {
    0,    175,  349,  523,  698,  872,  1045, 1219, 1392, 1564, 1736,  1908, 2079, 2250, 2419, 2588,
    2756, 2924, 3090, 3256, 3420, 3584, 3746, 3907, 4067, 4226, 4384,  4540, 4695, 4848, 5000, 5150,
    5299, 5446, 5592, 5736, 5878, 6018, 6157, 6293, 6428, 6561, 6691,  6820, 6947, 7071, 7193, 7314,
    7431, 7547, 7660, 7771, 7880, 7986, 8090, 8192, 8290, 8387, 8480,  8572, 8660, 8746, 8829, 8910,
    8988, 9063, 9135, 9205, 9272, 9336, 9397, 9455, 9511, 9563, 9613,  9659, 9703, 9744, 9781, 9816,
    9848, 9877, 9903, 9925, 9945, 9962, 9976, 9986, 9994, 9998, 10000,
};

constexpr i32 HALF_TURN = 1800;
constexpr i32 LONGEST_STEP = 32767; /* of a point from the screen's origin */

i32 WholeFixed(FIXED value)
{
    return static_cast<i32>(static_cast<u32>(static_cast<u16>(value.value)) << 16 | value.fract);
}

FIXED FixedOf(i32 lValue)
{
    const u32 ulValue = static_cast<u32>(lValue);
    return {static_cast<WORD>(ulValue), static_cast<i16>(static_cast<u16>(ulValue >> 16))};
}

/* Halfway between two numbers of 32 bits, cut. */
FIXED Halfway(FIXED one, FIXED other)
{
    return FixedOf(static_cast<i32>((static_cast<i64>(WholeFixed(one)) + WholeFixed(other)) / 2));
}

POINT RoundPoint(POINTFX point)
{
    return {RoundFixed(point.x), RoundFixed(point.y)};
}

u32 AppendCubic(ContourPoints* pOut, POINT first, POINT second, POINT end)
{
    if (pOut->nRoom - pOut->nPoints < 3) {
        return 0;
    }
    POINT* pNext = pOut->pPoints + pOut->nPoints;
    pNext[0] = first;
    pNext[1] = second;
    pNext[2] = end;
    pOut->nPoints += 3;
    return 3;
}

i32 LimitStep(i64 lValue)
{
    return static_cast<i32>(lValue > LONGEST_STEP    ? LONGEST_STEP
                            : lValue < -LONGEST_STEP ? -LONGEST_STEP
                                                     : lValue);
}

} // namespace

i32 ReduceAngle(i32 lAngle)
{
    const i32 lRest = lAngle % (2 * HALF_TURN);
    return lRest < 0 ? lRest + 2 * HALF_TURN : lRest;
}

i32 SineTenths(i32 lAngle)
{
    i32 a = ReduceAngle(lAngle);
    const int bBelow = a >= HALF_TURN;
    if (bBelow) {
        a -= HALF_TURN;
    }
    if (a >= HALF_TURN / 2) {
        a = HALF_TURN - a;
    }
    const i32 lDegrees = a / 10, lTenths = a % 10;
    i32 lSine = SineTable[lDegrees];
    if (lTenths) {
        lSine += (SineTable[lDegrees + 1] - lSine) * lTenths / 10;
    }
    return bBelow ? -lSine : lSine;
}

i32 CosineTenths(i32 lAngle)
{
    return SineTenths(ReduceAngle(lAngle) + HALF_TURN / 2);
}

void RotatePoint(POINT point, POINT* pResult, i32 lAngle)
{
    const i64 s = SineTenths(lAngle), c = CosineTenths(lAngle);
    pResult->x = static_cast<LONG>((point.x * c - point.y * s) / 10000);
    pResult->y = static_cast<LONG>((point.y * c + point.x * s) / 10000);
}

i32 RoundFixed(FIXED value)
{
    return value.value + (value.fract >= 0x8000);
}

u32 AppendLines(ContourPoints* pOut, POINTFX start, const POINTFX* pPoints, u32 nPoints)
{
    const u32 nBefore = pOut->nPoints;
    POINT p = RoundPoint(start);
    for (u32 i = 0; i < nPoints; i++) {
        const POINT q = RoundPoint(pPoints[i]);
        AppendCubic(pOut, q, p, q);
        p = q;
    }
    return pOut->nPoints - nBefore;
}

u32 AppendQuadratics(ContourPoints* pOut, POINTFX start, const POINTFX* pPoints, u32 nPoints)
{
    const u32 nBefore = pOut->nPoints;
    POINTFX from = start;
    for (u32 i = 0; i + 1 < nPoints;) {
        POINTFX to = pPoints[i + 1];
        const POINT b = RoundPoint(pPoints[i]);
        if (i + 2 == nPoints) {
            i += 2;
        } else {
            to = {Halfway(pPoints[i].x, to.x), Halfway(pPoints[i].y, to.y)};
            i++;
        }
        const POINT a = RoundPoint(from), c = RoundPoint(to);
        AppendCubic(pOut, {a.x + 2 * (b.x - a.x) / 3, a.y + 2 * (b.y - a.y) / 3},
                    {b.x + (c.x - b.x) / 3, b.y + (c.y - b.y) / 3}, c);
        from = to;
    }
    return pOut->nPoints - nBefore;
}

u32 AppendClosingLine(ContourPoints* pOut)
{
    if (pOut->nPoints == 0) {
        return 0;
    }
    const POINT first = pOut->pPoints[0], last = pOut->pPoints[pOut->nPoints - 1];
    if (first.x == last.x && first.y == last.y) {
        return 0;
    }
    return AppendCubic(pOut, first, last, first);
}

int NextContour(const u8* pOutline, u32 cbOutline, u32* pOffset, POINT origin, ContourPoints* pOut)
{
    TTPOLYGONHEADER header;
    pOut->nPoints = 0;
    if (*pOffset > cbOutline || cbOutline - *pOffset < sizeof header || pOut->nRoom < 1) {
        return 0;
    }
    std::memcpy(&header, pOutline + *pOffset, sizeof header);
    /* Headers and records are whole words, so that their points lie as the outline does. */
    if (header.dwType != TT_POLYGON_TYPE || header.cb % 4 != 0 || header.cb < sizeof header ||
        header.cb > cbOutline - *pOffset) {
        return 0;
    }
    const u8* pRecord = pOutline + *pOffset + sizeof header;
    const u8* pEnd = pOutline + *pOffset + header.cb;
    pOut->pPoints[0] = RoundPoint(header.pfxStart);
    pOut->nPoints = 1;
    POINTFX last = header.pfxStart;
    while (pRecord < pEnd) {
        constexpr u32 cbHead = offsetof(TTPOLYCURVE, apfx);
        WORD wType, nPoints;
        if (pEnd - pRecord < static_cast<std::ptrdiff_t>(cbHead)) {
            return 0;
        }
        std::memcpy(&wType, pRecord, sizeof wType);
        std::memcpy(&nPoints, pRecord + sizeof wType, sizeof nPoints);
        pRecord += cbHead;
        const u64 cbPoints = static_cast<u64>(nPoints) * sizeof(POINTFX);
        if (static_cast<u64>(pEnd - pRecord) < cbPoints) {
            return 0;
        }
        const auto* pPoints = reinterpret_cast<const POINTFX*>(pRecord);
        if (wType == TT_PRIM_LINE) {
            AppendLines(pOut, last, pPoints, nPoints);
        } else if (wType == TT_PRIM_QSPLINE) {
            AppendQuadratics(pOut, last, pPoints, nPoints);
        }
        if (nPoints > 0) {
            last = pPoints[nPoints - 1];
        }
        pRecord += cbPoints;
    }
    AppendClosingLine(pOut);
    for (u32 i = 0; i < pOut->nPoints; i++) {
        POINT* pPoint = pOut->pPoints + i;
        *pPoint = {LimitStep(static_cast<i64>(origin.x) + pPoint->x),
                   LimitStep(static_cast<i64>(origin.y) - pPoint->y)};
    }
    *pOffset += header.cb;
    return 1;
}

void DrawGlyphOutline(HDC hdc, const u8* pOutline, u32 cbOutline, POINT origin)
{
    const u32 nRoom = cbOutline / 8 * 3;
    OwnedBlock<POINT> pPoints(static_cast<POINT*>(AllocateRows(nRoom, sizeof(POINT))));
    if (!pPoints) {
        return;
    }
    ContourPoints points = {pPoints.get(), 0, nRoom};
    for (u32 ulOffset = 0; NextContour(pOutline, cbOutline, &ulOffset, origin, &points);) {
        if (points.nPoints > 1) {
            PolyBezier(hdc, points.pPoints, points.nPoints);
        }
    }
}
