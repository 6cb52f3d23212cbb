/* Copies from one context to another, as they are or stretched and turned. */
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

#include "hosted/drawing/drawing_state.h"

namespace {

/* One side of a copy: where the pixels of the target come from. */
struct Side {
    i64 lTarget, lTargetSize, lSource, lSourceSize; /* sizes may be below 0: counted backwards */
};

/* One source pixel that goes to one target pixel; several may go to the same. */
struct Step {
    int nTarget, nSource;
};

/* Counts of steps at which a row of pixels, counted in its own direction, lies in [lLow, lHigh). */
struct Range {
    i64 lBegin, lEnd;
};

Range Visible(i64 lStart, i64 lSize, i64 lLow, i64 lHigh)
{
    const Range seen =
        lSize < 0 ? Range{lStart - lHigh + 1, lStart - lLow + 1} : Range{lLow - lStart, lHigh - lStart};
    return {std::max<i64>(seen.lBegin, 0), std::min(seen.lEnd, std::abs(lSize))};
}

/* Where the centre of pixel l of a row of lFrom falls in one of lInto; counts of up to 2^31 each. */
i64 Scaled(i64 l, i64 lInto, i64 lFrom)
{
    return static_cast<i64>((static_cast<u64>(2 * l + 1) * static_cast<u64>(lInto) - 1) /
                            (2 * static_cast<u64>(lFrom)));
}

/* The steps of one side that both surfaces have, in ascending order of the target. Each row is counted in its own
   direction; a pixel goes where its centre falls, on a border to the earlier one. */
std::vector<Step> StepsOf(const Side& side, i64 lTargetLow, i64 lTargetHigh, i64 lSourceLow, i64 lSourceHigh)
{
    const i64 lInto = std::abs(side.lTargetSize), lFrom = std::abs(side.lSourceSize);
    const int nTargetStep = side.lTargetSize < 0 ? -1 : 1, nSourceStep = side.lSourceSize < 0 ? -1 : 1;
    std::vector<Step> steps;
    if (lInto == 0 || lFrom == 0) {
        return steps;
    }
    const bool bGrows = lInto >= lFrom;
    const Range range = bGrows ? Visible(side.lTarget, side.lTargetSize, lTargetLow, lTargetHigh)
                               : Visible(side.lSource, side.lSourceSize, lSourceLow, lSourceHigh);
    for (i64 i = range.lBegin; i < range.lEnd; i++) {
        const i64 lAtTarget = bGrows ? i : Scaled(i, lInto, lFrom);
        const i64 lAtSource = bGrows ? Scaled(i, lFrom, lInto) : i;
        const i64 lTarget = side.lTarget + nTargetStep * lAtTarget,
                  lSource = side.lSource + nSourceStep * lAtSource;
        if (lTarget >= lTargetLow && lTarget < lTargetHigh && lSource >= lSourceLow &&
            lSource < lSourceHigh) {
            steps.push_back({static_cast<int>(lTarget), static_cast<int>(lSource)});
        }
    }
    if (nTargetStep < 0) {
        std::reverse(steps.begin(), steps.end());
    }
    return steps;
}

/* What a pixel becomes on the other surface: a monochrome source takes the target's colours, and a monochrome target
   asks for the source's background. */
struct ColorChange {
    bool bExpand, bReduce;
    COLORREF zero, one, background;
    COLORREF operator()(COLORREF color) const
    {
        if (bExpand) {
            return color ? one : zero;
        }
        return bReduce ? (color == background ? 0xFFFFFF : 0) : color;
    }
};

void Copy(DrawingContext& into, const DrawingContext& from, const Side& sideX, const Side& sideY)
{
    const RECT clip = into.clip, seen = from.clip;
    const std::vector<Step> columns = StepsOf(sideX, clip.left, clip.right, seen.left, seen.right);
    const std::vector<Step> rows = StepsOf(sideY, clip.top, clip.bottom, seen.top, seen.bottom);
    if (columns.empty() || rows.empty()) {
        return;
    }
    Surface& target = *into.pSurface;
    const Surface& source = *from.pSurface;
    const ColorChange change = {source.bMono && !target.bMono, !source.bMono && target.bMono,
                                into.textColor & 0xFFFFFF, into.backColor & 0xFFFFFF,
                                from.backColor & 0xFFFFFF};
    /* All is read before anything is written when both are one surface. */
    std::vector<COLORREF> copy;
    const COLORREF* pSource = source.pixels.data();
    if (&target == &source) {
        copy = source.pixels;
        pSource = copy.data();
    }
    /* Pixels that fall together are combined, as dark ones stay visible on a light ground. */
    const int nBase = columns.front().nTarget;
    std::vector<COLORREF> line(static_cast<size_t>(columns.back().nTarget - nBase) + 1);
    int nDone = -1;
    for (size_t i = 0; i < rows.size(); i++) {
        const bool bMore = rows[i].nTarget == nDone;
        if (!bMore) {
            std::fill(line.begin(), line.end(), 0xFFFFFF);
        }
        const COLORREF* pRow = pSource + std::ptrdiff_t{rows[i].nSource} * source.nWidth;
        for (const Step& step : columns) {
            line[static_cast<size_t>(step.nTarget - nBase)] &= pRow[step.nSource];
        }
        nDone = rows[i].nTarget;
        if (i + 1 == rows.size() || rows[i + 1].nTarget != nDone) {
            COLORREF* pOut = target.pixels.data() + std::ptrdiff_t{nDone} * target.nWidth + nBase;
            std::transform(line.begin(), line.end(), pOut, change);
        }
    }
}

/* Contexts of a copy; false when one is none, or for any other operation than copying. */
bool FindBoth(HDC hInto, HDC hFrom, DWORD dwOperation, DrawingContext** ppInto, DrawingContext** ppFrom)
{
    *ppInto = FindContext(hInto);
    *ppFrom = *ppInto ? FindContext(hFrom) : nullptr;
    return *ppFrom && dwOperation == SRCCOPY && (*ppInto)->nMapMode == MM_TEXT &&
           (*ppFrom)->nMapMode == MM_TEXT;
}

bool CopySides(DrawingContext* pInto, DrawingContext* pFrom, Side x, Side y)
{
    if (!pInto->pSurface || !pFrom->pSurface) {
        return true;
    }
    x.lTarget += pInto->origin.x;
    y.lTarget += pInto->origin.y;
    x.lSource += pFrom->origin.x;
    y.lSource += pFrom->origin.y;
    Copy(*pInto, *pFrom, x, y);
    return true;
}

} // namespace

BOOL WINAPI BitBlt(HDC hInto, int x, int y, int nWidth, int nHeight, HDC hFrom, int nFromX, int nFromY,
                   DWORD dwOperation)
{
    FAILS(BitBlt);
    DrawingContext *pInto, *pFrom;
    return FindBoth(hInto, hFrom, dwOperation, &pInto, &pFrom) &&
           CopySides(pInto, pFrom, {x, nWidth, nFromX, nWidth}, {y, nHeight, nFromY, nHeight});
}

BOOL WINAPI StretchBlt(HDC hInto, int x, int y, int nWidth, int nHeight, HDC hFrom, int nFromX, int nFromY,
                       int nFromWidth, int nFromHeight, DWORD dwOperation)
{
    FAILS(StretchBlt);
    DrawingContext *pInto, *pFrom;
    return FindBoth(hInto, hFrom, dwOperation, &pInto, &pFrom) &&
           CopySides(pInto, pFrom, {x, nWidth, nFromX, nFromWidth}, {y, nHeight, nFromY, nFromHeight});
}
