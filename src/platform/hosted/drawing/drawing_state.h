/* What the drawing stand-ins share: surfaces of pixels, objects, device contexts. Handles are numbers that no
   pointer has; a handle that is none finds null. */
#ifndef TQUI_HOSTED_DRAWING_STATE_H
#define TQUI_HOSTED_DRAWING_STATE_H

#include <vector>

#include "platform/hosted/standin.h"

/* Pixels as COLORREFs, rows from the top. Of a monochrome surface all are black or white. */
struct Surface {
    int nWidth = 0, nHeight = 0;
    bool bMono = false;
    std::vector<COLORREF> pixels;
};

struct PenState {
    int nStyle;      /* PS_SOLID, PS_DASH, PS_DOT, PS_NULL */
    int nWidth;      /* 0 and 1: one pixel */
    bool bGeometric; /* flat ended, nWidth pixels */
    COLORREF color;
};

struct BrushState {
    bool bNull; /* fills nothing */
    COLORREF color;
};

/* Logical co-ordinates are the surface's pixels less the origin: MM_TEXT is the only map mode that is drawn in. */
struct DrawingContext {
    Surface* pSurface; /* null: nothing comes out (the display's own context) */
    POINT origin;      /* of the co-ordinates, on the surface */
    RECT clip;         /* on the surface */
    HPEN hPen;
    HBRUSH hBrush;
    HFONT hFont;
    HBITMAP hBitmap; /* of a memory context */
    POINT position;  /* of MoveToEx, LineTo */
    int nBkMode, nMapMode;
    COLORREF textColor, backColor;
    UINT uTextAlign;
};

DrawingContext* FindContext(HDC hDc);
const PenState* FindPen(HPEN hPen);
const BrushState* FindBrush(HBRUSH hBrush);
Surface* FindBitmapSurface(HBITMAP hBitmap);
const LOGFONTW* FindFont(HFONT hFont); /* stock fonts too */

/* Enters a font; counts it among the live objects. DeleteObject takes it away. */
HFONT AddFont(const LOGFONTW& font);

/* One pixel in logical co-ordinates, clipped to the surface and to rClip, which is logical, too, or null. */
void PutPixel(DrawingContext& context, int x, int y, COLORREF color, const RECT* pClip = nullptr);

#endif
