/* Draws the picture of a sheet: off screen, with co-ordinates from the sheet's top left, then onto the page in one copy. */
#include "base/wide.h"
#include "preview/outline_text.h"
#include "preview/preview_geometry.h"
#include "preview/preview_tools.h"

namespace {

constexpr COLORREF BLACK = 0x000000, RED = 0x0000FF, ENVELOPE_GREY = 0x808080, POSTER_GREY = 0x323232;
constexpr DWORD POSTER_LINE = 2; /* pixels */

/* By colour or not: left half, lower right quarter, upper right quarter of the pie. */
constexpr COLORREF aPieColors[2][3] = {{0x404040, 0x808080, 0xC0C0C0}, {0xFF0000, 0x008000, 0x00FFFF}};

/* Sides of logo and pie in parts of the largest side that a picture knows. */
constexpr i32 LOGO_SHARE = 40, PIE_SHARE = 65, LARGEST_SIDE = 35560;
constexpr i64 MOST_PIXELS = 0x7FFF;

/* The surface serves sheets of up to ten times the first one's sides, unless that were too much. */
constexpr i64 SURFACE_FACTOR = 10, SURFACE_PIXELS = 0x2000000;

constexpr UINT CENTERED = DT_CENTER | DT_VCENTER | DT_SINGLELINE;

/* What the steps of one picture share. */
struct Picture {
    PreviewTools& tools;
    const PreviewDevice& device;
    const PreviewRequest& request;
    const PreviewGeometry& geometry;
    HDC hDc;
    int nLabel; /* characters of the model's label */
};

constexpr int Larger(int nOne, int nOther)
{
    return nOne > nOther ? nOne : nOther;
}

void DrawLine(HDC hDc, int nFromX, int nFromY, int nToX, int nToY)
{
    MoveToEx(hDc, nFromX, nFromY, nullptr);
    LineTo(hDc, nToX, nToY);
}

/* Lines between equal columns and rows of the whole sheet. */
void DrawGrid(const Picture& picture, int nColumns, int nRows)
{
    int nWidth = picture.geometry.nWidth, nHeight = picture.geometry.nHeight;
    for (int k = 1; k < nColumns; k++) {
        int x = k * (nWidth / nColumns);
        DrawLine(picture.hDc, x, 0, x, nHeight - 1);
    }
    for (int k = 1; k < nRows; k++) {
        int y = k * (nHeight / nRows);
        DrawLine(picture.hDc, 0, y, nWidth - 1, y);
    }
}

int DrawDividers(const Picture& picture)
{
    HPEN hPen = NeedPen(&picture.tools.hCellPen, PS_DOT, BLACK);
    if (!hPen || !SelectObject(picture.hDc, hPen)) {
        return 0;
    }
    DrawGrid(picture, picture.geometry.row.nColumns, picture.geometry.row.nRows);
    return 1;
}

/* nCount lines of an address, nStep pixels apart, the first at nTop. */
void DrawAddress(HDC hDc, int nLeft, int nRight, int nTop, int nStep, int nCount)
{
    for (int i = 0; i < nCount; i++) {
        DrawLine(hDc, nLeft, nTop + i * nStep, nRight, nTop + i * nStep);
    }
}

int DrawEnvelope(const Picture& picture)
{
    const RECT& rPage = picture.geometry.rPage;
    int z = picture.request.sZoom;
    HPEN hPen = NeedPen(&picture.tools.hEnvelopePen, PS_SOLID, ENVELOPE_GREY);
    if (!hPen || !SelectObject(picture.hDc, hPen)) {
        return 0;
    }
    int nSender = rPage.left + Larger(3 * z / 100, 3), nStep = Larger(3 * z / 100, 2);
    DrawAddress(picture.hDc, nSender, nSender + Larger(10 * z / 100, 3), rPage.top + nStep, nStep, 3);
    int nLeft = (rPage.left + rPage.right) / 2, nRight = nLeft + Larger(20 * z / 100, 4);
    if (z <= 100 && nRight > rPage.right - 2) {
        nRight = rPage.right - 2;
    }
    int nTop = Larger((rPage.top + rPage.bottom) / 2, rPage.top + 3 * nStep);
    DrawAddress(picture.hDc, nLeft, nRight, nTop, nStep, 4);
    return 1;
}

void DrawTextLines(const Picture& picture)
{
    const RECT& rPage = picture.geometry.rPage;
    int z = picture.request.sZoom;
    int nLeft = rPage.left + Larger(3 * z / 100, 3), nRight = rPage.right - 4;
    if (nRight <= nLeft) {
        return;
    }
    for (int y = rPage.top + Larger(5 * z / 100, 5); y < rPage.bottom - 2; y += Larger(5 * z / 100, 2)) {
        DrawLine(picture.hDc, nLeft, y, nRight, y);
    }
}

/* Side of a square on the mock page. */
int SquareSide(const PreviewRequest& request, i32 lShare)
{
    i64 lShorter = request.lPageWidth < request.lPageLength ? request.lPageWidth : request.lPageLength;
    i64 lSide = lShorter * lShare / LARGEST_SIDE * request.sZoom / 100;
    return static_cast<int>(lSide < MOST_PIXELS ? lSide : MOST_PIXELS);
}

int NeedLogoFace(PreviewTools& tools)
{
    LOGFONTW font = {};
    if (tools.wcLogoFace[0]) {
        return 1;
    }
    HGDIOBJ hFont = GetStockObject(SYSTEM_FONT);
    if (!hFont || !GetObjectW(hFont, sizeof font, &font)) {
        return 0;
    }
    font.lfFaceName[LF_FACESIZE - 1] = 0;
    CopyWide(tools.wcLogoFace, LF_FACESIZE, font.lfFaceName);
    return 1;
}

/* The font of the letter is made for each mock page and takes the last one's place. */
int MakeLogoFont(PreviewTools& tools, int nHeight)
{
    LOGFONTW font = {};
    if (!NeedLogoFace(tools)) {
        return 0;
    }
    font.lfHeight = nHeight;
    CopyWide(font.lfFaceName, LF_FACESIZE, tools.wcLogoFace);
    HFONT hFont = CreateFontIndirectW(&font);
    if (!hFont) {
        return 0;
    }
    if (tools.hLogoFont) {
        DeleteObject(tools.hLogoFont);
    }
    tools.hLogoFont = hFont;
    return 1;
}

/* A context that keeps the font would outlast it: it goes as well. */
int DrawLogoLetter(const Picture& picture, RECT rBox)
{
    PreviewTools& tools = picture.tools;
    HGDIOBJ hOldFont =
        MakeLogoFont(tools, rBox.bottom - rBox.top) ? SelectObject(picture.hDc, tools.hLogoFont) : nullptr;
    if (!hOldFont) {
        return 0;
    }
    COLORREF oldColor = SetTextColor(picture.hDc, picture.request.bColor ? RED : BLACK);
    DrawTextW(picture.hDc, picture.device.wcLabel, 1, &rBox, CENTERED);
    if (oldColor != CLR_INVALID) {
        SetTextColor(picture.hDc, oldColor);
    }
    if (!SelectObject(picture.hDc, hOldFont)) {
        DeleteDC(tools.hPreviewDC);
        tools.hPreviewDC = nullptr;
        return 0;
    }
    return 1;
}

/* White, so that the lines of text end there. */
int DrawLogo(const Picture& picture, RECT* pBox)
{
    const RECT& rPage = picture.geometry.rPage;
    int nMargin = Larger(3 * picture.request.sZoom / 100, 3);
    int nSide = SquareSide(picture.request, LOGO_SHARE);
    HGDIOBJ hPen = GetStockObject(WHITE_PEN);
    if (!hPen || !SelectObject(picture.hDc, hPen)) {
        return 0;
    }
    *pBox = {rPage.left + nMargin, rPage.top + nMargin, rPage.left + nMargin + nSide,
             rPage.top + nMargin + nSide};
    Rectangle(picture.hDc, pBox->left, pBox->top, pBox->right, pBox->bottom);
    return DrawLogoLetter(picture, *pBox);
}

int SelectSlice(const Picture& picture, int nSlice)
{
    int bColor = picture.request.bColor != 0;
    COLORREF color = aPieColors[bColor][nSlice];
    HPEN hPen = NeedPen(&picture.tools.ahPiePen[bColor][nSlice], PS_SOLID, color);
    HBRUSH hBrush = hPen ? NeedBrush(&picture.tools.ahPieBrush[bColor][nSlice], color) : nullptr;
    return hBrush && SelectObject(picture.hDc, hPen) && SelectObject(picture.hDc, hBrush);
}

/* In the page's lower right corner, smaller where it would meet the logo. The radials of the slices follow each other
   around the pie against the clock. */
int DrawPie(const Picture& picture, const RECT& rLogo)
{
    const RECT& rPage = picture.geometry.rPage;
    int nSide = SquareSide(picture.request, PIE_SHARE);
    int nOverlapX = nSide - rPage.right + rLogo.right, nOverlapY = nSide - rPage.bottom + rLogo.bottom;
    if (nOverlapX > 0 && nOverlapY > 0) {
        nSide -= nOverlapX < nOverlapY ? nOverlapX : nOverlapY;
    }
    Rectangle(picture.hDc, rPage.right - 1 - nSide, rPage.bottom - 1 - nSide, rPage.right - 1,
              rPage.bottom - 1);
    int l = rPage.right - 1 - nSide + 2, t = rPage.bottom - 1 - nSide + 2, r = rPage.right - 3,
        b = rPage.bottom - 3;
    int cx = (l + r) / 2, cy = (t + b) / 2;
    const POINT aRadials[] = {{cx, t}, {cx, b}, {r, cy}, {cx, t}};
    for (int i = 0; i < 3; i++) {
        if (!SelectSlice(picture, i)) {
            return 0;
        }
        Pie(picture.hDc, l, t, r, b, aRadials[i].x, aRadials[i].y, aRadials[i + 1].x, aRadials[i + 1].y);
    }
    HGDIOBJ hBrush = GetStockObject(WHITE_BRUSH);
    return hBrush && SelectObject(picture.hDc, hBrush);
}

int DrawMockPage(const Picture& picture)
{
    RECT rLogo;
    DrawTextLines(picture);
    return DrawLogo(picture, &rLogo) && DrawPie(picture, rLogo);
}

/* Leaves the sheet's pen and brush selected. */
int DrawContent(const Picture& picture)
{
    int bMany = picture.geometry.row.nIndex >= 0, bDrawn = 1;
    if (bMany && !picture.request.bBorders) {
        bDrawn = DrawDividers(picture);
    } else if (!bMany) {
        bDrawn = picture.request.bEnvelope ? DrawEnvelope(picture) : DrawMockPage(picture);
    }
    return bDrawn && SelectObject(picture.hDc, picture.tools.hSheetPen);
}

/* Number of the cell's page; of a single cell a longer label of the model. */
const WCHAR* LabelText(const Picture& picture, const CellLabel& label)
{
    if (picture.geometry.row.nIndex >= 0) {
        return label.wcText;
    }
    return picture.device.bLabel && picture.nLabel >= 2 && !picture.request.pWatermark
               ? picture.device.wcLabel
               : TEXT("");
}

int HasWatermark(const PreviewRequest& request, const WCHAR* wcLabel)
{
    return request.pWatermark && (!request.bWMOnePage || request.sLayout < 2 ||
                                  SameWide(wcLabel, TEXT("1")) || SameWide(wcLabel, TEXT("A")));
}

void DrawCell(const Picture& picture, int nCell)
{
    RECT rCell = RectOfCell(picture.geometry, nCell);
    if (rCell.right <= rCell.left || rCell.bottom <= rCell.top) {
        return;
    }
    if (picture.request.bBorders) {
        Rectangle(picture.hDc, rCell.left, rCell.top, rCell.right, rCell.bottom);
    }
    CellLabel label = LabelOfCell(picture.geometry.row, picture.request.sPageOrder, nCell);
    const WCHAR* wcLabel = LabelText(picture, label);
    rCell = {rCell.left + 1, rCell.top + 1, rCell.right - 1, rCell.bottom - 1};
    if (rCell.right <= rCell.left || rCell.bottom <= rCell.top) {
        return;
    }
    if (HasWatermark(picture.request, wcLabel)) {
        DrawWatermark(picture.tools, picture.hDc, picture.request, rCell);
    }
    if (wcLabel[0]) {
        DrawTextW(picture.hDc, wcLabel, BoundedLength(wcLabel, TEXT_CHARS), &rCell, CENTERED);
    }
}

int DrawPosterGrid(const Picture& picture)
{
    int nTiles = picture.request.sPosterSize;
    if (nTiles < 2 || picture.request.sLayout == 99) {
        return 1;
    }
    HPEN& hPen = picture.tools.hPosterPen;
    if (!hPen) {
        const LOGBRUSH brush = {BS_SOLID, POSTER_GREY, 0};
        hPen = ExtCreatePen(PS_GEOMETRIC | PS_ENDCAP_FLAT | static_cast<DWORD>(PS_SOLID), POSTER_LINE, &brush,
                            0, nullptr);
    }
    if (!hPen || !SelectObject(picture.hDc, hPen)) {
        return 0;
    }
    DrawGrid(picture, nTiles, nTiles);
    return 1;
}

/* In the pen that is selected. */
void DrawOutline(const Picture& picture)
{
    int nRight = picture.geometry.nWidth - 1, nBottom = picture.geometry.nHeight - 1;
    MoveToEx(picture.hDc, 0, 0, nullptr);
    LineTo(picture.hDc, nRight, 0);
    LineTo(picture.hDc, nRight, nBottom);
    LineTo(picture.hDc, 0, nBottom);
    LineTo(picture.hDc, 0, 0);
}

/* Of the square that sheets lie in, if they do not outgrow it. */
int SideOfFrame(const RECT& rFrame)
{
    i64 lWidth = i64{rFrame.right} - rFrame.left, lHeight = i64{rFrame.bottom} - rFrame.top;
    i64 lSide = lWidth < lHeight ? lWidth : lHeight;
    return static_cast<int>(lSide < MOST_PIXELS ? lSide : MOST_PIXELS);
}

HBITMAP KeepSurface(PreviewTools& tools, HDC hdc, i64 lWidth, i64 lHeight)
{
    tools.rSurface = {static_cast<LONG>(lWidth), static_cast<LONG>(lHeight)};
    tools.hPreviewBitmap = CreateCompatibleBitmap(hdc, static_cast<int>(lWidth), static_cast<int>(lHeight));
    return tools.hPreviewBitmap;
}

/* Where ten times the sheet is too much, it holds what any sheet within the frame can need. */
void MakeSurface(PreviewTools& tools, HDC hdc, const PreviewGeometry& geometry, const RECT& rFrame)
{
    i64 lWidth = (i64{1} + Larger(geometry.nWidth, geometry.rPage.right)) * SURFACE_FACTOR;
    i64 lHeight = (i64{1} + Larger(geometry.nHeight, geometry.rPage.bottom)) * SURFACE_FACTOR;
    if (lWidth * lHeight <= SURFACE_PIXELS && KeepSurface(tools, hdc, lWidth, lHeight)) {
        return;
    }
    int nFrame = SideOfFrame(rFrame);
    KeepSurface(tools, hdc, i64{1} + Larger(geometry.nWidth, nFrame),
                i64{1} + Larger(geometry.nHeight, nFrame));
}

/* A surface that some later sheet outgrows is given up; the context that holds it goes first. */
void DropSmallSurface(PreviewTools& tools, const PreviewGeometry& geometry)
{
    if (!tools.hPreviewBitmap ||
        (tools.rSurface.cx >= geometry.nWidth && tools.rSurface.cy >= geometry.nHeight)) {
        return;
    }
    if (tools.hPreviewDC) {
        DeleteDC(tools.hPreviewDC);
        tools.hPreviewDC = nullptr;
    }
    DeleteObject(tools.hPreviewBitmap);
    tools.hPreviewBitmap = nullptr;
}

/* Makes context and surface and puts the white sheet on it. */
int BeginPicture(PreviewTools& tools, HDC hdc, const PreviewGeometry& geometry, const RECT& rFrame)
{
    DropSmallSurface(tools, geometry);
    if (!tools.hPreviewDC) {
        tools.hPreviewDC = CreateCompatibleDC(hdc);
    }
    if (tools.hPreviewDC && !tools.hPreviewBitmap) {
        MakeSurface(tools, hdc, geometry, rFrame);
    }
    if (!tools.hPreviewDC || !tools.hPreviewBitmap || !SelectObject(tools.hPreviewDC, tools.hPreviewBitmap)) {
        return 0;
    }
    SetBkMode(tools.hPreviewDC, TRANSPARENT);
    HGDIOBJ hBrush = GetStockObject(WHITE_BRUSH);
    HPEN hPen = NeedPen(&tools.hSheetPen, PS_SOLID, BLACK);
    if (!hBrush || !hPen || !SelectObject(tools.hPreviewDC, hBrush) ||
        !SelectObject(tools.hPreviewDC, hPen)) {
        return 0;
    }
    Rectangle(tools.hPreviewDC, 0, 0, geometry.nWidth, geometry.nHeight);
    return 1;
}

int DrawPicture(const Picture& picture)
{
    if (picture.request.sLayout > 0 && picture.nLabel == 1 && !DrawContent(picture)) {
        return 0;
    }
    int nCells = picture.geometry.row.nColumns * picture.geometry.row.nRows;
    for (int i = 0; i < nCells; i++) {
        DrawCell(picture, i);
    }
    if (!DrawPosterGrid(picture)) {
        return 0;
    }
    DrawOutline(picture);
    return 1;
}

/* Turned by 180 degrees it begins at the far corner. */
void TransferPicture(HDC hdc, const Picture& picture)
{
    const RECT& rSheet = picture.geometry.rSheet;
    int nWidth = rSheet.right - rSheet.left, nHeight = rSheet.bottom - rSheet.top;
    if (picture.request.bRotate180) {
        StretchBlt(hdc, rSheet.right - 1, rSheet.bottom - 1, -nWidth, -nHeight, picture.hDc, 0, 0, nWidth,
                   nHeight, SRCCOPY);
    } else {
        BitBlt(hdc, rSheet.left, rSheet.top, nWidth, nHeight, picture.hDc, 0, 0, SRCCOPY);
    }
}

} // namespace

void DrawWatermark(PreviewTools& tools, HDC hdc, const PreviewRequest& request, const RECT& rCell)
{
    const WatermarkEntry* pEntry = request.pWatermark;
    if (!pEntry) {
        return;
    }
    if (pEntry->WMType == ENTRY_IMAGE) {
        DrawWatermarkImage(tools, hdc, request, rCell);
    } else if (pEntry->WMOutline) {
        DrawOutlineText(hdc, *pEntry, rCell);
    } else {
        DrawSolidText(tools, hdc, *pEntry, rCell);
    }
}

void ComposePreview(PreviewTools& tools, const PreviewDevice& device, HDC hdc, const RECT& rFrame,
                    PreviewRequest* pRequest)
{
    HPEN hFramePen = NeedPen(&tools.hFramePen, PS_SOLID, GetSysColor(COLOR_BTNFACE));
    PreviewGeometry geometry;
    if (!DrawFilledRectangle(hdc, rFrame, hFramePen, GetSysColorBrush(COLOR_BTNFACE)) ||
        !ArrangePreview(device, rFrame, pRequest, &geometry) || !BeginPicture(tools, hdc, geometry, rFrame)) {
        return;
    }
    const Picture picture = {tools,    device,           *pRequest,
                             geometry, tools.hPreviewDC, BoundedLength(device.wcLabel, TEXT_CHARS)};
    if (DrawPicture(picture)) {
        TransferPicture(hdc, picture);
    }
    DropWatermarkImage(tools);
}
