/* Drawing into device contexts: objects, shapes, copies, bitmaps. */
#ifndef TQUI_PLATFORM_DRAWING_H
#define TQUI_PLATFORM_DRAWING_H

#include "platform/gdi.h"
#include "platform/window.h"

#ifndef _WIN32

using COLORREF = DWORD; /* 0x00BBGGRR */
using HPEN = struct HPEN__*;
using HBRUSH = struct HBRUSH__*;
using HFONT = struct HFONT__*;

constexpr COLORREF CLR_INVALID = 0xFFFFFFFF;

/* GetStockObject. */
constexpr int WHITE_BRUSH = 0, BLACK_BRUSH = 4, NULL_BRUSH = 5, WHITE_PEN = 6, BLACK_PEN = 7, NULL_PEN = 8,
              SYSTEM_FONT = 13;

/* GetSysColor, GetSysColorBrush. */
constexpr int COLOR_WINDOW = 5, COLOR_BTNFACE = 15, COLOR_3DSHADOW = 16, COLOR_3DLIGHT = 22;

/* Styles of a pen; the geometric ones are for ExtCreatePen. */
constexpr int PS_SOLID = 0, PS_DASH = 1, PS_DOT = 2, PS_NULL = 5;
constexpr DWORD PS_COSMETIC = 0, PS_GEOMETRIC = 0x10000, PS_ENDCAP_FLAT = 0x200;
constexpr UINT BS_SOLID = 0;

struct LOGBRUSH {
    UINT lbStyle; /* BS_* */
    COLORREF lbColor;
    ULONG_PTR lbHatch;
};
static_assert(sizeof(LOGBRUSH) == 16);

constexpr int TRANSPARENT = 1, OPAQUE = 2; /* SetBkMode */
constexpr int MM_TEXT = 1;                 /* map modes */
constexpr DWORD SRCCOPY = 0x00CC0020;      /* of the copies */

/* GetObjectW of a bitmap. */
struct BITMAP {
    LONG bmType, bmWidth, bmHeight, bmWidthBytes;
    WORD bmPlanes, bmBitsPixel;
    LPVOID bmBits;
};
static_assert(sizeof(BITMAP) == 32);

/* The published layout of bitmap files. */
#pragma pack(push, 2)
struct BITMAPFILEHEADER {
    WORD bfType; /* 0x4D42 */
    DWORD bfSize;
    WORD bfReserved1, bfReserved2;
    DWORD bfOffBits; /* of the rows, in the file */
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14);

struct BITMAPINFOHEADER {
    DWORD biSize;           /* of this header: 40 */
    LONG biWidth, biHeight; /* a negative height: rows from the top */
    WORD biPlanes, biBitCount;
    DWORD biCompression, biSizeImage; /* BI_* */
    LONG biXPelsPerMeter, biYPelsPerMeter;
    DWORD biClrUsed, biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct RGBQUAD {
    BYTE rgbBlue, rgbGreen, rgbRed, rgbReserved;
};

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

constexpr DWORD BI_RGB = 0, BI_BITFIELDS = 3;
constexpr UINT DIB_RGB_COLORS = 0;

DRAWING_CALLS(DECLARE_CALL)

#endif
#endif
