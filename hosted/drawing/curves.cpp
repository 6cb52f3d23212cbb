/* Curves as rows of short lines: pies from the pixels of their ellipse, Bezier curves by halving. */
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "hosted/drawing/drawing_state.h"

namespace {

constexpr i64 LARGEST_ELLIPSE = 0x7FFF;
constexpr int FRACTION_BITS = 4; /* of a pixel, while a curve is halved */
constexpr int MOST_HALVINGS = 8;

using Points = std::vector<Point64>;

/* The lower right quarter of an ellipse that fills lWidth x lHeight pixels, from its right end to its lowest one; each
   step goes to the neighbour that lies nearest, by the ellipse's equation in whole numbers. */
Points QuarterEllipse(i64 lWidth, i64 lHeight)
{
    const i64 lA = lWidth - 1, lB = lHeight - 1;
    const i64 lStepX = 8 * lB * lB, lStepY = 8 * lA * lA;
    i64 lErrorX = 4 * lB * lB * (1 - lA), lErrorY = 4 * lA * lA * (1 + lB % 2);
    i64 lError = lErrorX + lErrorY + lA * lA * (lB % 2);
    Points points;
    for (i64 x = lA, y = lHeight / 2; x >= lWidth / 2;) {
        points.push_back({x, y});
        const i64 lTwice = 2 * lError;
        const bool bLeft = lTwice >= lErrorX, bDown = lTwice <= lErrorY;
        if (bLeft) {
            x--;
            lError += lErrorX += lStepX;
        }
        if (bDown) {
            y++;
            lError += lErrorY += lStepY;
        }
    }
    return points;
}

/* Where the radial through a point meets the ellipse: a place in the four quarters against the clock, from the right
   end. point: from the centre, y upwards. */
size_t MeetsRadial(const Points& quarter, const Point64& point)
{
    const i64 x = std::abs(point.x), y = std::abs(point.y);
    const bool bLeft = point.x < 0; /* there a pixel on the radial belongs to the part behind it */
    size_t nAt = 0;
    while (nAt < quarter.size() &&
           (bLeft ? quarter[nAt].x * y >= quarter[nAt].y * x : quarter[nAt].x * y > quarter[nAt].y * x)) {
        nAt++;
    }
    const size_t nQuarter = quarter.size();
    if (point.y >= 0) {
        return point.x >= 0 ? nAt : 2 * nQuarter - nAt;
    }
    return point.x >= 0 ? 4 * nQuarter - nAt : 2 * nQuarter + nAt;
}

/* The closed outline of a pie, against the clock from the first radial to the second; the centre comes last. */
Points PieOutline(const Point64& corner, i64 lWidth, i64 lHeight, const Point64& first, const Point64& second)
{
    Points quarter = QuarterEllipse(lWidth, lHeight);
    const Point64 centre = {corner.x + lWidth / 2, corner.y + lHeight / 2};
    for (Point64& point : quarter) {
        point = {point.x - lWidth / 2, point.y - lHeight / 2};
    }
    const size_t nQuarter = quarter.size();
    const size_t nBegin = MeetsRadial(quarter, {first.x - centre.x, centre.y - first.y});
    size_t nEnd = MeetsRadial(quarter, {second.x - centre.x, centre.y - second.y});
    if (nEnd <= nBegin) {
        nEnd += 4 * nQuarter;
    }
    /* Opposite halves of an even side lie one pixel nearer to the centre. */
    const i64 lEvenX = lWidth % 2 == 0, lEvenY = lHeight % 2 == 0;
    Points outline;
    outline.reserve(nEnd - nBegin + 1);
    for (size_t i = nBegin; i < nEnd; i++) {
        const size_t nPart = i / nQuarter % 4, nAt = i % nQuarter;
        const Point64& point = nPart % 2 == 0 ? quarter[nAt] : quarter[nQuarter - 1 - nAt];
        const bool bLeft = nPart == 1 || nPart == 2, bUpper = nPart < 2;
        outline.push_back({bLeft ? centre.x - point.x - lEvenX : centre.x + point.x,
                           bUpper ? centre.y - point.y - lEvenY : centre.y + point.y});
    }
    outline.push_back(centre);
    return outline;
}

/* Fills a closed outline: in each row from every crossing to the next but one, as the winding tells. Right and lower
   border are left out. */
void FillOutline(DrawingContext& context, const Points& outline, COLORREF color)
{
    struct Crossing {
        i64 x;
        int nTurn;
    };
    i64 lTop = context.clip.bottom, lBottom = context.clip.top;
    for (const Point64& point : outline) {
        lTop = std::min(lTop, point.y);
        lBottom = std::max(lBottom, point.y);
    }
    lTop = std::max<i64>(lTop, context.clip.top);
    lBottom = std::min<i64>(lBottom, context.clip.bottom);
    if (lTop >= lBottom) {
        return;
    }
    std::vector<std::vector<Crossing>> rows(static_cast<size_t>(lBottom - lTop));
    for (size_t i = 0; i < outline.size(); i++) {
        const Point64& one = outline[i];
        const Point64& other = outline[(i + 1) % outline.size()];
        const Point64& upper = one.y < other.y ? one : other;
        const Point64& lower = one.y < other.y ? other : one;
        const i64 lHigh = lower.y - upper.y, lWide = lower.x - upper.x;
        for (i64 y = std::max(upper.y, lTop); y < std::min(lower.y, lBottom); y++) {
            const i64 lAlong =
                lWide * (y - upper.y); /* rounded up: the first pixel that lies behind the crossing */
            const i64 lAside = lAlong > 0 ? (lAlong + lHigh - 1) / lHigh : lAlong / lHigh;
            rows[static_cast<size_t>(y - lTop)].push_back({upper.x + lAside, one.y < other.y ? 1 : -1});
        }
    }
    for (i64 y = lTop; y < lBottom; y++) {
        auto& row = rows[static_cast<size_t>(y - lTop)];
        std::sort(row.begin(), row.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
        int nTurns = 0;
        for (size_t i = 0; i + 1 < row.size(); i++) {
            nTurns += row[i].nTurn;
            if (nTurns != 0) {
                FillBox(context, row[i].x, y, row[i + 1].x, y + 1, color);
            }
        }
    }
}

void DrawLines(DrawingContext& context, const Points& points, bool bClosed)
{
    const PenState* pPen = FindPen(context.hPen);
    i64 lPhase = 0;
    for (size_t i = 0; pPen && i + 1 < points.size() + (bClosed ? 1 : 0); i++) {
        lPhase = DrawLine(context, *pPen, points[i], points[(i + 1) % points.size()], lPhase);
    }
}

i64 WholePixels(i64 l)
{
    return (l + (1 << (FRACTION_BITS - 1))) >> FRACTION_BITS;
}

/* Whether a control point lies between the ends along the curve's longer side (on a curve that runs backwards behind its
   start), and within a pixel of the chord, whose slope is rounded to a whole number. */
bool NearChord(i64 lAlong, i64 lAside, i64 lLength, i64 lRise)
{
    if (lLength < 0 ? lAlong >= 0 || lAlong < lLength : lAlong < 0 || lAlong > lLength) {
        return false;
    }
    const i64 lPixels = WholePixels(lLength);
    return lPixels == 0 || std::abs(lAside - lRise / lPixels * WholePixels(lAlong)) <= (1 << FRACTION_BITS);
}

bool IsFlat(const Point64* aPoints)
{
    const i64 lDx = aPoints[3].x - aPoints[0].x, lDy = aPoints[3].y - aPoints[0].y;
    for (int i = 1; i <= 2; i++) {
        const i64 x = aPoints[i].x - aPoints[0].x, y = aPoints[i].y - aPoints[0].y;
        if (!(std::abs(lDy) <= std::abs(lDx) ? NearChord(x, y, lDx, lDy) : NearChord(y, x, lDy, lDx))) {
            return false;
        }
    }
    return true;
}

Point64 Middle(const Point64& one, const Point64& other)
{
    return {(one.x + other.x + 1) / 2, (one.y + other.y + 1) / 2};
}

/* Appends the ends of the pieces into which a curve falls. aPoints: in fractions of a pixel. */
void Halve(const Point64* aPoints, int nMore, Points* pOut)
{
    if (nMore == 0 || IsFlat(aPoints)) {
        pOut->push_back({WholePixels(aPoints[3].x), WholePixels(aPoints[3].y)});
        return;
    }
    const Point64 first = Middle(aPoints[0], aPoints[1]), inner = Middle(aPoints[1], aPoints[2]),
                  last = Middle(aPoints[2], aPoints[3]);
    const Point64 before = Middle(first, inner), behind = Middle(inner, last),
                  middle = Middle(before, behind);
    const Point64 aFirst[] = {aPoints[0], first, before, middle},
                  aLast[] = {middle, behind, last, aPoints[3]};
    Halve(aFirst, nMore - 1, pOut);
    Halve(aLast, nMore - 1, pOut);
}

} // namespace

BOOL WINAPI Pie(HDC hDc, int nLeft, int nTop, int nRight, int nBottom, int nX1, int nY1, int nX2, int nY2)
{
    FAILS(Pie);
    DrawingContext* pContext = FindContext(hDc);
    Point64 corner, end, first, second;
    if (!pContext || pContext->nMapMode != MM_TEXT ||
        !ToSurface(*pContext, std::min(nLeft, nRight), std::min(nTop, nBottom), &corner) ||
        !ToSurface(*pContext, std::max(nLeft, nRight), std::max(nTop, nBottom), &end) ||
        !ToSurface(*pContext, nX1, nY1, &first) || !ToSurface(*pContext, nX2, nY2, &second)) {
        return 0;
    }
    const i64 lWidth = end.x - corner.x, lHeight = end.y - corner.y;
    if (lWidth > LARGEST_ELLIPSE || lHeight > LARGEST_ELLIPSE) {
        return 0;
    }
    if (lWidth == 0 || lHeight == 0 || !pContext->pSurface) {
        return 1;
    }
    const Points outline = PieOutline(corner, lWidth, lHeight, first, second);
    if (const BrushState* pBrush = FindBrush(pContext->hBrush); pBrush && !pBrush->bNull) {
        FillOutline(*pContext, outline, pBrush->color);
    }
    DrawLines(*pContext, outline, true);
    return 1;
}

BOOL WINAPI PolyBezier(HDC hDc, const POINT* aPoints, DWORD nPoints)
{
    FAILS(PolyBezier);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext || pContext->nMapMode != MM_TEXT || !aPoints || nPoints < 4 || nPoints % 3 != 1) {
        return 0;
    }
    Points points(nPoints), pieces;
    for (size_t i = 0; i < nPoints; i++) {
        if (!ToSurface(*pContext, aPoints[i].x, aPoints[i].y, &points[i])) {
            return 0;
        }
        points[i] = {points[i].x << FRACTION_BITS, points[i].y << FRACTION_BITS};
    }
    pieces.push_back({WholePixels(points[0].x), WholePixels(points[0].y)});
    for (size_t i = 0; i + 3 < nPoints; i += 3) {
        Halve(&points[i], MOST_HALVINGS, &pieces);
    }
    DrawLines(*pContext, pieces, false);
    return 1;
}
