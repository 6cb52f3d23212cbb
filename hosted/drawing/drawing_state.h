/* What the drawing stand-ins share: surfaces of pixels, objects, device contexts. Handles are numbers that no
   pointer has; a handle that is none finds null. */
#ifndef TQUI_HOSTED_DRAWING_DRAWING_STATE_H
#define TQUI_HOSTED_DRAWING_DRAWING_STATE_H

#include <vector>

#include "hosted/standin.h"

constexpr COLORREF RgbOf(BYTE bRed, BYTE bGreen, BYTE bBlue)
{
    return static_cast<COLORREF>(bRed | bGreen << 8 | bBlue << 16);
}

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
    HBITMAP hBitmap; /* of a memory context; null for any other */
    POINT position;  /* of MoveToEx, LineTo */
    int nBkMode, nMapMode;
    COLORREF textColor, backColor;
    UINT uTextAlign;
};

/* Null with ERROR_INVALID_HANDLE when there is none. */
DrawingContext* FindContext(HDC hDc);
const PenState* FindPen(HPEN hPen);
const BrushState* FindBrush(HBRUSH hBrush);
Surface* FindBitmapSurface(HBITMAP hBitmap);
const LOGFONTW* FindFont(HFONT hFont); /* stock fonts too */

/* Enters a font; counts it among the live objects. DeleteObject takes it away. */
HFONT AddFont(const LOGFONTW& font);

/* ---- objects.cpp ---- */
struct Bitmap {
    Surface surface;
    bool bLoaded = false; /* by LoadImageW: what it was made from */
    UINT uFlags = 0;
    Bytes dib;
};
Bitmap* FindBitmap(HBITMAP hBitmap);
HBITMAP AddBitmap(Bitmap&& bitmap); /* counts it */
HBITMAP DefaultBitmap();            /* of a new memory context: one black pixel, monochrome */
HGDIOBJ StockObject(int nIndex);    /* as GetStockObject, counting no call */
/* A surface of black pixels; false with ERROR_NOT_ENOUGH_MEMORY when that is more than a machine gives. */
bool MakeSurface(i64 lWidth, i64 lHeight, bool bMono, Surface* pSurface);
/* Selecting: counts the contexts that hold an object, which cannot be deleted then. */
enum ObjectKind { OBJECT_NONE, OBJECT_PEN, OBJECT_BRUSH, OBJECT_FONT, OBJECT_BITMAP };
ObjectKind KindOfObject(HGDIOBJ hObject);
bool IsSelected(HGDIOBJ hObject);
void HoldObject(HGDIOBJ hObject, int nMore); /* 1 or -1 */
COLORREF SystemColor(int nIndex);
void ResetDrawingObjects();

/* ---- contexts.cpp ---- */
/* The context of a window that is painted: draws on the surface of its window of its own, within the invalid
   rectangle, which is in client co-ordinates. */
HDC AddPaintContext(HWND hWnd, const RECT& rInvalid);
void DropPaintContext(HDC hDc);
void EraseContext(
    HDC hDc); /* fills what is to be painted with the face of things; nothing when there is none */
void DropWindowSurface(HWND hWnd); /* when a window ends */
const Surface* WindowSurface(HWND hTop);
void ResetContexts();

/* One pixel in logical co-ordinates, clipped to the surface and to rClip, which is logical, too, or null. */
void PutPixel(DrawingContext& context, int x, int y, COLORREF color, const RECT* pClip = nullptr);

/* ---- shapes.cpp: on the surface and clipped; 64 bits, so that no sum of two co-ordinates overflows ---- */
struct Point64 {
    i64 x, y;
};
/* False for co-ordinates beyond the 28 bits that the system draws in. */
bool ToSurface(const DrawingContext& context, i64 x, i64 y, Point64* pPoint);
COLORREF SurfaceColor(const Surface& surface,
                      COLORREF color); /* on a monochrome one all but white is black: nothing is
                                                                      dithered */
void FillBox(DrawingContext& context, i64 lLeft, i64 lTop, i64 lRight, i64 lBottom, COLORREF color);
/* A line in the context's pen, without its last pixel. nPhase: pixels of the pen's pattern that were used up
   before it; result: the same behind it. */
i64 DrawLine(DrawingContext& context, const PenState& pen, const Point64& from, const Point64& to,
             i64 lPhase);

#endif
