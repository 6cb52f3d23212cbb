/* Makes and releases the drawing objects of the preview. */
#include "preview/preview_tools.h"

HPEN NeedPen(HPEN* pPen, int nStyle, COLORREF color)
{
    if (!*pPen) {
        *pPen = CreatePen(nStyle, 0, color);
    }
    return *pPen;
}

HBRUSH NeedBrush(HBRUSH* pBrush, COLORREF color)
{
    if (!*pBrush) {
        *pBrush = CreateSolidBrush(color);
    }
    return *pBrush;
}

int DrawFilledRectangle(HDC hdc, const RECT& rect, HPEN hPen, HBRUSH hBrush)
{
    HGDIOBJ hOldPen = hPen && hBrush ? SelectObject(hdc, hPen) : nullptr;
    HGDIOBJ hOldBrush = hOldPen ? SelectObject(hdc, hBrush) : nullptr;
    if (hOldBrush) {
        Rectangle(hdc, rect.left, rect.top, rect.right, rect.bottom);
        SelectObject(hdc, hOldBrush);
    }
    if (hOldPen) {
        SelectObject(hdc, hOldPen);
    }
    return hOldBrush != nullptr;
}

void FillColorSwatch(PreviewTools& tools, HDC hdc, const RECT& rect, COLORREF color)
{
    if (HBRUSH hBrush = CreateSolidBrush(color)) {
        DrawFilledRectangle(hdc, rect, NeedPen(&tools.hSheetPen, PS_SOLID, 0), hBrush);
        DeleteObject(hBrush);
    }
}

/* The contexts go first: nothing is deleted that is still selected. */
void ReleasePreviewTools(PreviewTools* pTools)
{
    HDC ahContexts[] = {pTools->hPreviewDC, pTools->hImageDC};
    for (HDC hDc : ahContexts) {
        if (hDc) {
            DeleteDC(hDc);
        }
    }
    DropWatermarkImage(*pTools);
    HGDIOBJ ahObjects[] = {pTools->hPreviewBitmap, pTools->hFramePen,     pTools->hSheetPen,
                           pTools->hCellPen,       pTools->hEnvelopePen,  pTools->hPosterPen,
                           pTools->hLogoFont,      pTools->hWatermarkFont};
    for (HGDIOBJ hObject : ahObjects) {
        if (hObject) {
            DeleteObject(hObject);
        }
    }
    for (int bColor = 0; bColor < 2; bColor++) {
        for (int nSlice = 0; nSlice < 3; nSlice++) {
            if (pTools->ahPiePen[bColor][nSlice]) {
                DeleteObject(pTools->ahPiePen[bColor][nSlice]);
            }
            if (pTools->ahPieBrush[bColor][nSlice]) {
                DeleteObject(pTools->ahPieBrush[bColor][nSlice]);
            }
        }
    }
    *pTools = {};
}
