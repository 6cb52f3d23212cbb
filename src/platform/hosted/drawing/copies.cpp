/* Copies from one context to another, as they are or stretched and turned. */
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/hosted/drawing/drawing_state.h"

namespace {

/* One side of a copy: where the pixels of the target come from. */
struct Side {
    i64 lTarget, lTargetSize, lSource, lSourceSize; /* sizes may be below 0: counted backwards */
};

/* One source pixel that goes to one target pixel; several may go to the same. */
struct Step {
    int nTarget, nSource;
};

/* The steps of one side that both surfaces have, in ascending order of the target. A pixel goes where its centre falls;
   on a border to the lower one. */
std::vector<Step> StepsOf(const Side& side, i64 lTargetLow, i64 lTargetHigh, i64 lSourceLow, i64 lSourceHigh)
{
    const i64 lInto = std::abs(side.lTargetSize), lFrom = std::abs(side.lSourceSize);
    std::vector<Step> steps;
    if (lInto == 0 || lFrom == 0) {
        return steps;
    }
    /* Both run upwards: one side's direction is turned into the other's. */
    const i64 lTarget = side.lTargetSize < 0 ? side.lTarget + side.lTargetSize + 1 : side.lTarget;
    const i64 lSource = side.lSourceSize < 0 ? side.lSource + side.lSourceSize + 1 : side.lSource;
    const bool bTurned = (side.lTargetSize < 0) != (side.lSourceSize < 0);
    const auto add = [&](i64 lAtTarget, i64 lAtSource) {
        const i64 lIn = lTarget + (bTurned ? lInto - 1 - lAtTarget : lAtTarget), lOut = lSource + lAtSource;
        if (lIn >= lTargetLow && lIn < lTargetHigh && lOut >= lSourceLow && lOut < lSourceHigh) {
            steps.push_back({static_cast<int>(lIn), static_cast<int>(lOut)});
        }
    };
    if (lInto >= lFrom) {
        i64 lBegin = std::max<i64>(lTargetLow - lTarget, 0), lEnd = std::min(lTargetHigh - lTarget, lInto);
        if (bTurned) {
            lBegin = std::max<i64>(lInto - (lTargetHigh - lTarget), 0);
            lEnd = std::min(lInto - (lTargetLow - lTarget), lInto);
        }
        for (i64 i = lBegin; i < lEnd; i++) {
            add(i, ((2 * i + 1) * lFrom - 1) / (2 * lInto));
        }
    } else {
        const i64 lBegin = std::max<i64>(lSourceLow - lSource, 0),
                  lEnd = std::min(lSourceHigh - lSource, lFrom);
        for (i64 i = lBegin; i < lEnd; i++) {
            add(((2 * i + 1) * lInto - 1) / (2 * lFrom), i);
        }
    }
    if (bTurned) {
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

/* Contexts of a copy in the order target, source; false when there is none to draw. bDone: nothing is to be seen of
   it, but the call has done its work. */
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
