/* Text watermarks of the picture. */
#include "preview/outline_text.h"

#include <cstring>

#include "base/owned.h"
#include "preview/glyph_outline.h"

namespace {

constexpr int ENTRY_CHARS = 64; /* of WMString */
constexpr u32 LONGEST_OUTLINE = 0x100000;
constexpr i64 LONGEST_WAY = 32767; /* of what is drawn, from the screen's origin */

i32 LimitWay(i64 lWay)
{
    return static_cast<i32>(lWay > LONGEST_WAY ? LONGEST_WAY : lWay < -LONGEST_WAY ? -LONGEST_WAY : lWay);
}

LOGFONTW FontOfEntry(const WatermarkEntry& entry)
{
    LOGFONTW font = {};
    font.lfHeight = entry.WMSize;
    font.lfEscapement = ReduceAngle(entry.WMAngle);
    font.lfWeight = entry.WMBold ? FW_BOLD : FW_NORMAL;
    font.lfItalic = entry.WMItalic != 0;
    font.lfCharSet = entry.WMCharSet;
    std::memcpy(font.lfFaceName, entry.WMFace,
                static_cast<size_t>(BoundedLength(entry.WMFace, LF_FACESIZE - 1)) * sizeof(WCHAR));
    return font;
}

UINT AlignmentOfEntry(const WatermarkEntry& entry)
{
    return TA_CENTER | TA_BASELINE | (entry.WMRTL ? TA_RTLREADING : 0);
}

/* What could not be set is not put back. */
void RestoreAlignment(HDC hdc, UINT uBefore)
{
    if (uBefore != GDI_ERROR) {
        SetTextAlign(hdc, uBefore);
    }
}

/* The letters to fetch: of the text, or the shaped ones in the order in which they stand. */
struct GlyphRun {
    WCHAR wcGlyphs[ENTRY_CHARS + 1];
    int nGlyphs;
    UINT uFormat; /* GGO_* */
};

void PlaceGlyphs(HDC hdc, const WatermarkEntry& entry, GlyphRun* pRun)
{
    const int cch = BoundedLength(entry.WMString, ENTRY_CHARS);
    std::memset(pRun, 0, sizeof *pRun);
    const DWORD dwInfo = GetFontLanguageInfo(hdc);
    const DWORD dwFlags =
        dwInfo == GCP_ERROR ? 0 : dwInfo & (GCP_REORDER | GCP_GLYPHSHAPE | GCP_LIGATE | GCP_DIACRITIC);
    if (dwFlags != 0) {
        WCHAR wcOut[ENTRY_CHARS + 1] = {};
        GCP_RESULTSW results = {};
        results.lStructSize = sizeof results;
        results.lpOutString = wcOut;
        results.lpGlyphs = pRun->wcGlyphs;
        results.nGlyphs = static_cast<UINT>(cch);
        if (GetCharacterPlacementW(hdc, entry.WMString, cch, 0, &results, dwFlags) != 0) {
            pRun->nGlyphs =
                results.nGlyphs < static_cast<UINT>(cch) ? static_cast<int>(results.nGlyphs) : cch;
            pRun->uFormat = GGO_GLYPH_INDEX | GGO_NATIVE;
            return;
        }
    }
    std::memcpy(pRun->wcGlyphs, entry.WMString, static_cast<size_t>(cch) * sizeof(WCHAR));
    pRun->nGlyphs = cch;
    pRun->uFormat = GGO_NATIVE;
}

/* Strokes a letter and tells its advance. Result: 0 when it cannot be fetched. */
int DrawGlyph(HDC hdc, UINT uGlyph, UINT uFormat, POINT pen, GLYPHMETRICS* pMetrics)
{
    constexpr FIXED one = {0, 1}, zero = {0, 0};
    constexpr MAT2 identity = {one, zero, zero, one};
    const DWORD cbOutline = GetGlyphOutlineW(hdc, uGlyph, uFormat, pMetrics, 0, nullptr, &identity);
    if (cbOutline > LONGEST_OUTLINE) { /* GDI_ERROR, too */
        return 0;
    }
    if (cbOutline == 0) {
        return 1; /* a space */
    }
    OwnedBlock<u8> pOutline(static_cast<u8*>(AllocateBlock(cbOutline)));
    if (!pOutline ||
        GetGlyphOutlineW(hdc, uGlyph, uFormat, pMetrics, cbOutline, pOutline.get(), &identity) != cbOutline) {
        return 0;
    }
    DrawGlyphOutline(hdc, pOutline.get(), cbOutline, pen);
    return 1;
}

void DrawGlyphs(HDC hdc, const GlyphRun& run, POINT pen)
{
    i64 x = pen.x, y = pen.y;
    for (int i = 0; i < run.nGlyphs; i++) {
        GLYPHMETRICS metrics = {};
        if (!DrawGlyph(hdc, run.wcGlyphs[i], run.uFormat, {LimitWay(x), LimitWay(y)}, &metrics)) {
            return;
        }
        x += metrics.gmCellIncX;
        y += metrics.gmCellIncY;
    }
}

/* The font of DrawSolidText, made anew when the entry is another. */
HFONT WatermarkFont(PreviewTools& tools, const WatermarkEntry& entry)
{
    if (tools.hWatermarkFont &&
        std::memcmp(static_cast<const void*>(&entry), static_cast<const void*>(&tools.rWatermarkFontEntry),
                    sizeof entry) == 0) {
        return tools.hWatermarkFont;
    }
    if (tools.hWatermarkFont) {
        DeleteObject(tools.hWatermarkFont);
    }
    const LOGFONTW font = FontOfEntry(entry);
    tools.hWatermarkFont = CreateFontIndirectW(&font);
    tools.rWatermarkFontEntry = entry;
    return tools.hWatermarkFont;
}

} // namespace

POINT StartOfOutline(const WatermarkEntry& entry, SIZE extent, const RECT& rCell)
{
    const i32 lHeight = entry.WMSize;
    const i32 lWidth = LimitWay(extent.cx) - (entry.WMItalic ? lHeight / 2 : 0);
    const i32 lTall = LimitWay(extent.cy);
    POINT start = {-(lWidth / 2) - (entry.WMItalic ? lHeight / 4 : 0), -((lTall + lTall / 8) / 4)};
    RotatePoint(start, &start, entry.WMAngle);
    const i64 x = i64{rCell.left} + (rCell.right - rCell.left) / 2 + start.x + entry.WMPositionX;
    const i64 y = i64{rCell.top} + (rCell.bottom - rCell.top) / 2 - start.y - entry.WMPositionY;
    return {LimitWay(x), LimitWay(y)};
}

POINT StartOfSolid(const WatermarkEntry& entry, LONG cy, const RECT& rCell)
{
    POINT start = {0, cy / 4};
    RotatePoint(start, &start, entry.WMAngle);
    const i64 x = i64{rCell.left} + (rCell.right - rCell.left) / 2 + entry.WMPositionX - start.x;
    const i64 y = i64{rCell.top} + (rCell.bottom - rCell.top) / 2 - entry.WMPositionY + start.y;
    return {LimitWay(x), LimitWay(y)};
}

void DrawOutlineText(HDC hdc, const WatermarkEntry& entry, const RECT& rCell)
{
    LOGFONTW font = FontOfEntry(entry);
    font.lfOrientation = font.lfEscapement;
    font.lfOutPrecision = OUT_TT_ONLY_PRECIS;
    HFONT hFont = CreateFontIndirectW(&font);
    if (!hFont) {
        return;
    }
    HPEN hPen = CreatePen(PS_SOLID, 1, entry.WMColor);
    HGDIOBJ hFontBefore = hPen ? SelectObject(hdc, hFont) : nullptr;
    if (hFontBefore) {
        GlyphRun run;
        SIZE extent = {};
        const UINT uAlignBefore = SetTextAlign(hdc, AlignmentOfEntry(entry));
        PlaceGlyphs(hdc, entry, &run);
        GetTextExtentPoint32W(hdc, entry.WMString, BoundedLength(entry.WMString, ENTRY_CHARS), &extent);
        if (HGDIOBJ hPenBefore = SelectObject(hdc, hPen)) {
            DrawGlyphs(hdc, run, StartOfOutline(entry, extent, rCell));
            SelectObject(hdc, hPenBefore);
        }
        RestoreAlignment(hdc, uAlignBefore);
        SelectObject(hdc, hFontBefore);
    }
    if (hPen) {
        DeleteObject(hPen);
    }
    DeleteObject(hFont);
}

void DrawSolidText(PreviewTools& tools, HDC hdc, const WatermarkEntry& entry, const RECT& rCell)
{
    HFONT hFont = WatermarkFont(tools, entry);
    HGDIOBJ hFontBefore = hFont ? SelectObject(hdc, hFont) : nullptr;
    if (!hFontBefore) {
        return;
    }
    const int cch = BoundedLength(entry.WMString, ENTRY_CHARS);
    SIZE extent = {};
    GetTextExtentPointW(hdc, entry.WMString, cch, &extent);
    const POINT start = StartOfSolid(entry, extent.cy, rCell);
    const UINT uAlignBefore = SetTextAlign(hdc, AlignmentOfEntry(entry));
    const COLORREF colorBefore = SetTextColor(hdc, entry.WMColor);
    ExtTextOutW(hdc, start.x, start.y, ETO_CLIPPED, &rCell, entry.WMString, static_cast<UINT>(cch), nullptr);
    if (colorBefore != CLR_INVALID) {
        SetTextColor(hdc, colorBefore);
    }
    RestoreAlignment(hdc, uAlignBefore);
    SelectObject(hdc, hFontBefore);
}
