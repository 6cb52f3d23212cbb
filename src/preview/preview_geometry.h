/* Geometry of the picture, as plain arithmetic: the sheet's rectangle in the frame, the page on it, the grid of cells
   and their labels. */
#ifndef TQUI_PREVIEW_PREVIEW_GEOMETRY_H
#define TQUI_PREVIEW_PREVIEW_GEOMETRY_H

#include "preview/preview_request.h"

/* Grid of a sheet. */
struct LayoutRow {
    int nIndex; /* of the grid among all grids, 0 to 11; -1 a single cell */
    int nColumns, nRows;
    int nGap; /* pixels around a cell, with borders */
};

/* nOrientation: as FitSheetRect answered; 1 reads the grid upright. */
LayoutRow FindLayoutRow(i16 sLayout, int nOrientation, int bBorders);

/* Label of a cell, counted row by row from the top left: the number of its page, "A" and "B" in a booklet, empty for an
   order that the layout has not, a cell outside the grid and a single cell. sPageOrder as in a request. */
struct CellLabel {
    WCHAR wcText[4];
};
CellLabel LabelOfCell(const LayoutRow& row, i16 sPageOrder, int nCell);

/* Narrows *pRect to the shape of a sheet of this size (measures); sides below 1 are those of the default paper.
   Result: the orientation in which the grid is read, 0 to 2. */
int FitSheetRect(const PreviewDevice& device, RECT* pRect, i32 lWidth, i32 lLength,
                 const PreviewRequest& request);

struct PreviewGeometry {
    RECT rSheet;         /* in the frame's co-ordinates */
    int nWidth, nHeight; /* of the sheet; from here on its top left is 0,0 */
    RECT rPage;          /* on the sheet; may be larger */
    LayoutRow row;
    RECT rBase; /* that the cells divide */
    int nColumnStep, nRowStep, nCellWidth, nCellHeight;
};

/* Settles the request (zoom, target, sizes brought to the largest side that a picture knows, watermark scaled from points
   and thousandths to pixels of a cell) and works out the picture for a frame, in any co-ordinates.
   Result: 0 when there is nothing to draw, as in a frame without a size. */
int ArrangePreview(const PreviewDevice& device, RECT rFrame, PreviewRequest* pRequest,
                   PreviewGeometry* pGeometry);

/* Inner rectangle of a cell on the sheet, 0 to columns * rows - 1: within borders and gap. Empty or turned around when
   the frame is too small: nothing is drawn in such a cell. */
RECT RectOfCell(const PreviewGeometry& geometry, int nCell);

#endif
