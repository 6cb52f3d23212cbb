/* Drawing objects of the preview, made when first needed and kept for all paints of a session. */
#ifndef TQUI_PREVIEW_PREVIEW_TOOLS_H
#define TQUI_PREVIEW_PREVIEW_TOOLS_H

#include "platform/glyphs.h"
#include "preview/preview_request.h"

/* A copy of a watermark's image in the size that cells show. */
struct ShrunkImage {
    HBITMAP hBitmap;
    SIZE size;
};

struct PreviewTools {
    HDC hPreviewDC; /* draws on hPreviewBitmap while a picture is composed */
    HDC hImageDC;   /* for watermark images */
    HBITMAP
    hPreviewBitmap; /* ten times the first sheet, or as large as the frame; anew for a sheet beyond it */
    SIZE rSurface;  /* its pixels */
    HBITMAP hImage; /* of the watermark, for the time of one paint */
    ShrunkImage aShrunk[2]; /* of that image; cells of a sheet have two widths at most */
    int bImageAsked;        /* its file was asked for in this paint, with or without success */
    HPEN hFramePen, hSheetPen, hCellPen, hEnvelopePen, hPosterPen;
    HPEN ahPiePen[2][3]; /* grey, colour; left half, lower right, upper right quarter */
    HBRUSH ahPieBrush[2][3];
    HFONT hLogoFont; /* of the last mock page */
    WCHAR wcLogoFace[32];
    HFONT hWatermarkFont; /* of DrawSolidText, made for rWatermarkFontEntry */
    WatermarkEntry rWatermarkFontEntry;
};

/* Deletes all of them; the structure is zero afterwards. */
void ReleasePreviewTools(PreviewTools* pTools);

/* A pen one pixel wide or a brush of one colour, made when *pPen or *pBrush is still null. Null when it cannot be had. */
HPEN NeedPen(HPEN* pPen, int nStyle, COLORREF color);
HBRUSH NeedBrush(HBRUSH* pBrush, COLORREF color);

/* Draws a rectangle with pen and brush; hdc keeps the objects it had. 0 when it does not take one of them. */
int DrawFilledRectangle(HDC hdc, const RECT& rect, HPEN hPen, HBRUSH hBrush);

/* Draws the request's picture into a frame of hdc: works out the geometry, composes off screen and copies the sheet in
   one operation. The request and its watermark are changed. A drawing object that cannot be made ends it without
   a picture; the frame is then empty. hdc keeps the objects it had. */
void ComposePreview(PreviewTools& tools, const PreviewDevice& device, HDC hdc, const RECT& rFrame,
                    PreviewRequest* pRequest);

/* Draws a rectangle of a colour with a black line around it; draws nothing when an object cannot be made. */
void FillColorSwatch(PreviewTools& tools, HDC hdc, const RECT& rect, COLORREF color);

/* Draws the request's watermark, whose position and size are pixels by now, into an inner rectangle of a cell. */
void DrawWatermark(PreviewTools& tools, HDC hdc, const PreviewRequest& request, const RECT& rCell);

/* The same for an image. Its file is read at the first cell that shows it and kept for the others, which must be of the
   same request, until DropWatermarkImage. */
void DrawWatermarkImage(PreviewTools& tools, HDC hdc, const PreviewRequest& request, const RECT& rCell);
void DropWatermarkImage(PreviewTools& tools);

#endif
