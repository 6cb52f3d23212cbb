/* Text in device contexts: fonts, measures, placement, outlines of letters. */
#ifndef TQUI_PLATFORM_GLYPHS_H
#define TQUI_PLATFORM_GLYPHS_H

#include "platform/drawing.h"

#ifndef _WIN32

constexpr LONG FW_NORMAL = 400, FW_BOLD = 700;
constexpr BYTE OUT_TT_ONLY_PRECIS = 7;

/* DrawTextW. */
constexpr UINT DT_CENTER = 1, DT_VCENTER = 4, DT_SINGLELINE = 0x20;

/* SetTextAlign. */
constexpr UINT TA_LEFT = 0, TA_CENTER = 6, TA_BASELINE = 24, TA_RTLREADING = 256;

constexpr UINT ETO_CLIPPED = 4;
constexpr DWORD GDI_ERROR = 0xFFFFFFFF;

/* GetFontLanguageInfo; the first four are also what GetCharacterPlacementW is asked for. */
constexpr DWORD GCP_REORDER = 0x0002, GCP_GLYPHSHAPE = 0x0010, GCP_LIGATE = 0x0020, GCP_DIACRITIC = 0x0100,
                GCP_ERROR = 0x8000;

struct GCP_RESULTSW {
    DWORD lStructSize; /* the caller sets it */
    LPWSTR lpOutString;
    UINT* lpOrder;
    int* lpDx;
    int* lpCaretPos;
    LPSTR lpClass;
    LPWSTR lpGlyphs;
    UINT nGlyphs; /* IO  room, glyphs */
    int nMaxFit;
};
static_assert(sizeof(GCP_RESULTSW) == 64);

/* GetGlyphOutlineW. */
constexpr UINT GGO_METRICS = 0, GGO_NATIVE = 2, GGO_GLYPH_INDEX = 0x80;

/* 16.16 with a sign. */
struct FIXED {
    WORD fract;
    i16 value;
};
struct MAT2 {
    FIXED eM11, eM12, eM21, eM22;
};
struct POINTFX {
    FIXED x, y; /* y upwards */
};
struct GLYPHMETRICS {
    UINT gmBlackBoxX, gmBlackBoxY;
    POINT gmptGlyphOrigin;
    i16 gmCellIncX, gmCellIncY;
};
static_assert(sizeof(GLYPHMETRICS) == 20);

/* An outline is a row of polygons: a header, then curves up to cb bytes from the header's start. */
constexpr DWORD TT_POLYGON_TYPE = 24;
struct TTPOLYGONHEADER {
    DWORD cb, dwType;
    POINTFX pfxStart;
};
static_assert(sizeof(TTPOLYGONHEADER) == 16);

constexpr WORD TT_PRIM_LINE = 1, TT_PRIM_QSPLINE = 2;
struct TTPOLYCURVE {
    WORD wType, cpfx; /* TT_PRIM_*, points */
    POINTFX apfx[1];
};
static_assert(sizeof(TTPOLYCURVE) == 12);

GLYPH_CALLS(DECLARE_CALL)

#endif
#endif
