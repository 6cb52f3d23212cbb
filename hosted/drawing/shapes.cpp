/* Lines and rectangles: which pixels they take. Loops run over what is visible only. */
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "hosted/drawing/drawing_state.h"

namespace {

constexpr i64 FARTHEST = i64{1} << 27;
constexpr i64 DOT_LENGTH = 3, DASH_LENGTH = 18, DASH_GAP = 6;

/* Of a pen's pattern: pixels of a period, and how many of them are drawn. */
struct Pattern {
    i64 lPeriod, lDrawn;
};

Pattern PatternOf(const PenState& pen)
{
    switch (pen.nStyle) {
    case PS_DOT: return {2 * DOT_LENGTH, DOT_LENGTH};
    case PS_DASH: return {DASH_LENGTH + DASH_GAP, DASH_LENGTH};
    default: return {1, 1};
    }
}

/* Steps k of lFirst + k * nStep that lie in [lLow, lHigh). */
struct Steps {
    i64 lBegin, lEnd;
};

Steps Visible(Steps all, i64 lFirst, int nStep, i64 lLow, i64 lHigh)
{
    const Steps seen =
        nStep > 0 ? Steps{lLow - lFirst, lHigh - lFirst} : Steps{lFirst - lHigh + 1, lFirst - lLow + 1};
    return {std::max(all.lBegin, seen.lBegin), std::min(all.lEnd, seen.lEnd)};
}

/* At a tie between two pixels, four of the eight octants take the farther one: the grid is intersected the same way
   whichever end a line begins at. */
bool TakesFarther(i64 lDx, i64 lDy)
{
    const bool bWide = std::abs(lDx) > std::abs(lDy);
    return lDy > 0 ? lDx < 0 && !bWide : lDx < 0 || bWide;
}

/* A pen of more than a pixel, flat ended: a box along an axis, else the pixels whose centres lie in the slanted one. */
void DrawWideLine(DrawingContext& context, const PenState& pen, const Point64& from, const Point64& to)
{
    const i64 lWidth = std::max(pen.nWidth, 1), lBefore = lWidth / 2;
    if (from.y == to.y) {
        const i64 lTop = from.y - lBefore;
        FillBox(context, std::min(from.x, to.x), lTop, std::max(from.x, to.x), lTop + lWidth, pen.color);
        return;
    }
    if (from.x == to.x) {
        const i64 lLeft = from.x - lBefore;
        FillBox(context, lLeft, std::min(from.y, to.y), lLeft + lWidth, std::max(from.y, to.y), pen.color);
        return;
    }
    const i64 lDx = to.x - from.x, lDy = to.y - from.y;
    const double dLength = std::sqrt(static_cast<double>(lDx * lDx + lDy * lDy));
    const RECT& clip = context.clip;
    const i64 lReach = lWidth + 1;
    const i64 lTop = std::max<i64>(std::min(from.y, to.y) - lReach, clip.top);
    const i64 lBottom = std::min<i64>(std::max(from.y, to.y) + lReach, clip.bottom);
    const i64 lLeft = std::max<i64>(std::min(from.x, to.x) - lReach, clip.left);
    const i64 lRight = std::min<i64>(std::max(from.x, to.x) + lReach, clip.right);
    for (i64 y = lTop; y < lBottom; y++) {
        for (i64 x = lLeft; x < lRight; x++) {
            const auto dAlong = static_cast<double>((x - from.x) * lDx + (y - from.y) * lDy) / dLength;
            const auto dAside = static_cast<double>((x - from.x) * lDy - (y - from.y) * lDx) / dLength;
            if (dAlong >= 0 && dAlong < dLength && std::abs(dAside) * 2 < static_cast<double>(lWidth)) {
                context.pSurface->pixels[static_cast<size_t>(y * context.pSurface->nWidth + x)] = pen.color;
            }
        }
    }
}

} // namespace

bool ToSurface(const DrawingContext& context, i64 x, i64 y, Point64* pPoint)
{
    *pPoint = {x + context.origin.x, y + context.origin.y};
    return std::abs(pPoint->x) < FARTHEST && std::abs(pPoint->y) < FARTHEST;
}

COLORREF SurfaceColor(const Surface& surface, COLORREF color)
{
    return !surface.bMono || color == 0xFFFFFF ? color & 0xFFFFFF : 0;
}

void FillBox(DrawingContext& context, i64 lLeft, i64 lTop, i64 lRight, i64 lBottom, COLORREF color)
{
    const RECT& clip = context.clip;
    lLeft = std::max<i64>(lLeft, clip.left);
    lTop = std::max<i64>(lTop, clip.top);
    lRight = std::min<i64>(lRight, clip.right);
    lBottom = std::min<i64>(lBottom, clip.bottom);
    if (!context.pSurface || lLeft >= lRight) {
        return;
    }
    Surface& surface = *context.pSurface;
    color = SurfaceColor(surface, color);
    for (i64 y = lTop; y < lBottom; y++) {
        std::fill_n(surface.pixels.begin() + y * surface.nWidth + lLeft, lRight - lLeft, color);
    }
}

void PutPixel(DrawingContext& context, int x, int y, COLORREF color, const RECT* pClip)
{
    if (!context.pSurface ||
        (pClip && (x < pClip->left || x >= pClip->right || y < pClip->top || y >= pClip->bottom))) {
        return;
    }
    const i64 lX = i64{x} + context.origin.x, lY = i64{y} + context.origin.y;
    const RECT& clip = context.clip;
    if (lX >= clip.left && lX < clip.right && lY >= clip.top && lY < clip.bottom) {
        Surface& surface = *context.pSurface;
        surface.pixels[static_cast<size_t>(lY * surface.nWidth + lX)] = SurfaceColor(surface, color);
    }
}

i64 DrawLine(DrawingContext& context, const PenState& pen, const Point64& from, const Point64& to, i64 lPhase)
{
    const i64 lDx = to.x - from.x, lDy = to.y - from.y;
    const i64 lWide = std::abs(lDx), lHigh = std::abs(lDy), lSteps = std::max(lWide, lHigh);
    if (pen.nStyle == PS_NULL || !context.pSurface) {
        return lPhase + lSteps;
    }
    if (pen.bGeometric) {
        DrawWideLine(context, pen, from, to);
        return lPhase;
    }
    const Pattern pattern = PatternOf(pen);
    const bool bGaps = pattern.lDrawn < pattern.lPeriod;
    if (!bGaps && (lDx == 0 || lDy == 0)) {
        const i64 lLeft = lDx < 0 ? to.x + 1 : from.x, lTop = lDy < 0 ? to.y + 1 : from.y;
        FillBox(context, lLeft, lTop,
                lLeft + (lDx     ? lWide
                         : lHigh ? 1
                                 : 0),
                lTop + (lDx ? 1 : lHigh), pen.color);
        return 0;
    }
    const int nStepX = lDx < 0 ? -1 : 1, nStepY = lDy < 0 ? -1 : 1;
    const bool bWide = lWide > lHigh;
    const RECT& clip = context.clip;
    Surface& surface = *context.pSurface;
    /* Pixel k lies k steps along the longer side and Minor(k) along the other. */
    const i64 lMajor = lSteps, lMinor = bWide ? lHigh : lWide;
    const i64 lTie = lMajor - (TakesFarther(lDx, lDy) ? 0 : 1);
    const Steps steps = bWide ? Visible({0, lSteps}, from.x, nStepX, clip.left, clip.right)
                              : Visible({0, lSteps}, from.y, nStepY, clip.top, clip.bottom);
    const COLORREF color = SurfaceColor(surface, pen.color), back = SurfaceColor(surface, context.backColor);
    const bool bOpaque = context.nBkMode == OPAQUE;
    for (i64 k = steps.lBegin; k < steps.lEnd; k++) {
        const i64 lAside = (2 * lMinor * k + lTie) / (2 * lMajor);
        const i64 x = from.x + nStepX * (bWide ? k : lAside), y = from.y + nStepY * (bWide ? lAside : k);
        const bool bDrawn = !bGaps || (lPhase + k) % pattern.lPeriod < pattern.lDrawn;
        if ((bDrawn || bOpaque) && x >= clip.left && x < clip.right && y >= clip.top && y < clip.bottom) {
            surface.pixels[static_cast<size_t>(y * surface.nWidth + x)] = bDrawn ? color : back;
        }
    }
    return (lPhase + lSteps) % pattern.lPeriod;
}

BOOL WINAPI LineTo(HDC hDc, int x, int y)
{
    FAILS(LineTo);
    DrawingContext* pContext = FindContext(hDc);
    Point64 from, to;
    if (!pContext || pContext->nMapMode != MM_TEXT ||
        !ToSurface(*pContext, pContext->position.x, pContext->position.y, &from) ||
        !ToSurface(*pContext, x, y, &to)) {
        return 0;
    }
    if (const PenState* pPen = FindPen(pContext->hPen)) {
        DrawLine(*pContext, *pPen, from, to, 0);
    }
    pContext->position = {x, y};
    return 1;
}

BOOL WINAPI Rectangle(HDC hDc, int nLeft, int nTop, int nRight, int nBottom)
{
    FAILS(Rectangle);
    DrawingContext* pContext = FindContext(hDc);
    Point64 first, last;
    if (!pContext || pContext->nMapMode != MM_TEXT ||
        !ToSurface(*pContext, std::min(nLeft, nRight), std::min(nTop, nBottom), &first) ||
        !ToSurface(*pContext, std::max(nLeft, nRight), std::max(nTop, nBottom), &last)) {
        return 0;
    }
    const PenState* pPen = FindPen(pContext->hPen);
    const BrushState* pBrush = FindBrush(pContext->hBrush);
    if (!pPen || !pBrush || first.x == last.x || first.y == last.y) {
        return 1;
    }
    last.x--;
    last.y--;
    if (!pBrush->bNull) { /* what a pen's gaps leave open stays as it was */
        const i64 lPen = pPen->nStyle == PS_NULL ? 0 : 1;
        FillBox(*pContext, first.x + lPen, first.y + lPen, last.x, last.y, pBrush->color);
    }
    if (pPen->bGeometric && pPen->nStyle != PS_NULL) { /* its corners are whole */
        const i64 lWidth = std::max(pPen->nWidth, 1), lBefore = lWidth / 2;
        const i64 lLeft = first.x - lBefore, lTop = first.y - lBefore, lRight = last.x - lBefore,
                  lBottom = last.y - lBefore;
        FillBox(*pContext, lLeft, lTop, lRight + lWidth, lTop + lWidth, pPen->color);
        FillBox(*pContext, lLeft, lBottom, lRight + lWidth, lBottom + lWidth, pPen->color);
        FillBox(*pContext, lLeft, lTop, lLeft + lWidth, lBottom + lWidth, pPen->color);
        FillBox(*pContext, lRight, lTop, lRight + lWidth, lBottom + lWidth, pPen->color);
        return 1;
    }
    /* From the top right, against the clock. */
    const Point64 aCorners[] = {{last.x, first.y}, first, {first.x, last.y}, last, {last.x, first.y}};
    i64 lPhase = 0;
    for (size_t i = 0; i < 4; i++) {
        lPhase = DrawLine(*pContext, *pPen, aCorners[i], aCorners[i + 1], lPhase);
    }
    return 1;
}
