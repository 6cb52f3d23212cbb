/* Reads bitmap files row by row and draws them into cells. */
#include "preview/watermark_image.h"

#include <cstring>

#include "base/measure.h"
#include "base/owned.h"
#include "base/short_path.h"
#include "platform/files.h"
#include "preview/preview_tools.h"

namespace {

constexpr WORD BITMAP_FILE_TYPE = 0x4D42;
constexpr u32 FIRST_ROWS = FILE_HEADER_BYTES + INFO_BYTES, LAST_ROWS = 0x10000;
constexpr LONG LONGEST_SIDE = 0x7FFF;
constexpr i64 LONGEST_ROW = 0xFFFF;
constexpr i32 MASK_COUNT = 3;
constexpr u16 LAST_PLACEMENT = 9;
constexpr i64 LARGEST_SIDE =
    0x7FFFFFFF;                   /* of an image on screen; beyond it no pixel of a cell would differ */
constexpr i64 MOST_TILES = 20000; /* in a cell */
/* From so many pixels on an image may be shrunk; up to so many its pieces are taken from the image itself. */
constexpr i64 FEWEST_SHRUNK_PIXELS = 0x4000, MOST_CUT_PIXELS = 0x100000;

int ReadWhole(HANDLE hFile, void* pOut, u32 cb)
{
    DWORD cbGot = 0;
    return cb == 0 || (ReadFile(hFile, pOut, cb, &cbGot, nullptr) && cbGot == cb);
}

/* Only a file of a disk: nothing else is sure to answer. */
OwnedFile OpenImage(const WatermarkEntry& entry, i64* plSize)
{
    WCHAR tcPath[PATH_CHARS];
    LARGE_INTEGER size;
    std::memcpy(tcPath, entry.WMImageName, sizeof tcPath);
    tcPath[PATH_CHARS - 1] = 0;
    ShortPathName(tcPath, PATH_CHARS);
    OwnedFile hFile(CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!IsOpen(hFile.get()) || GetFileType(hFile.get()) != FILE_TYPE_DISK ||
        !GetFileSizeEx(hFile.get(), &size)) {
        return nullptr;
    }
    *plSize = size.QuadPart;
    return hFile;
}

/* Leaves the file at its first row. */
int ReadHead(HANDLE hFile, i64 lFileSize, BitmapHead* pHead)
{
    u8 abFileHeader[FILE_HEADER_BYTES], abHead[HEAD_BYTES];
    if (!ReadWhole(hFile, abFileHeader, FILE_HEADER_BYTES)) {
        return 0;
    }
    u32 ulRows = RowsOfBitmapFile(abFileHeader, lFileSize);
    if (!ulRows) {
        return 0;
    }
    u32 cbHead = ulRows - FILE_HEADER_BYTES < HEAD_BYTES ? ulRows - FILE_HEADER_BYTES : HEAD_BYTES;
    LARGE_INTEGER rows;
    rows.QuadPart = ulRows;
    return ReadWhole(hFile, abHead, cbHead) && ReadBitmapHead(abHead, cbHead, ulRows, lFileSize, pHead) &&
           SetFilePointerEx(hFile, rows, nullptr, FILE_BEGIN);
}

/* A row of the file may be shorter than what the system reads of it: the rest is zero. */
int CopyRows(HANDLE hFile, HDC hdc, HBITMAP hBitmap, const BitmapHead& head)
{
    OwnedBlock<u8> pRow(static_cast<u8*>(AllocateBlock(head.cbRow)));
    const auto* pInfo = reinterpret_cast<const BITMAPINFO*>(&head);
    for (LONG y = 0; y < head.rInfo.biHeight; y++) {
        if (!pRow || !ReadWhole(hFile, pRow.get(), head.cbFileRow) ||
            SetDIBits(hdc, hBitmap, static_cast<UINT>(y), 1, pRow.get(), pInfo, DIB_RGB_COLORS) != 1) {
            return 0;
        }
    }
    return 1;
}

/* Makes the second context and reads the file into a bitmap like hdc's, the caller's; null when anything fails. */
HBITMAP ReadImage(PreviewTools& tools, HDC hdc, const WatermarkEntry& entry)
{
    i64 lFileSize = 0;
    BitmapHead head;
    OwnedFile hFile = OpenImage(entry, &lFileSize);
    if (!hFile || !ReadHead(hFile.get(), lFileSize, &head)) {
        return nullptr;
    }
    if (!tools.hImageDC) {
        tools.hImageDC = CreateCompatibleDC(hdc);
    }
    if (!tools.hImageDC || !SetMapMode(tools.hImageDC, GetMapMode(hdc))) {
        return nullptr;
    }
    HBITMAP hBitmap = CreateDIBitmap(hdc, &head.rInfo, 0, nullptr, nullptr, DIB_RGB_COLORS);
    if (hBitmap && !CopyRows(hFile.get(), hdc, hBitmap, head)) {
        DeleteObject(hBitmap);
        return nullptr;
    }
    return hBitmap;
}

/* What cells are drawn from. */
struct ImageSource {
    HDC hDc;                 /* has one of the bitmaps */
    HBITMAP hWhole, hShrunk; /* the latter null when the image is drawn from as it is */
    StretchArea whole, shrunk;
    int bCutWhole; /* pieces that an edge cuts off come from the whole image */
};

void CopyOne(HDC hdc, const ImageSource& image, const StretchArea& place, const RECT& rCell)
{
    StretchArea source = image.hShrunk ? image.shrunk : image.whole, target = place;
    if (!ClipStretch(&source, &target, rCell)) {
        return;
    }
    HBITMAP hBitmap = image.hShrunk;
    if (hBitmap && image.bCutWhole && (target.cx != place.cx || target.cy != place.cy)) {
        hBitmap = image.hWhole;
        source = image.whole;
        target = place;
        if (!ClipStretch(&source, &target, rCell)) {
            return;
        }
    }
    if (!hBitmap || SelectObject(image.hDc, hBitmap)) {
        StretchBlt(hdc, static_cast<int>(target.x), static_cast<int>(target.y), static_cast<int>(target.cx),
                   static_cast<int>(target.cy), image.hDc, static_cast<int>(source.x),
                   static_cast<int>(source.y), static_cast<int>(source.cx), static_cast<int>(source.cy),
                   SRCCOPY);
    }
}

void CopyTiles(HDC hdc, const ImageSource& image, const StretchArea& first, const RECT& rCell)
{
    i64 lLeft = FirstTile(first.x, first.cx, rCell.left), lTop = FirstTile(first.y, first.cy, rCell.top);
    i64 nColumns = (rCell.right - lLeft + first.cx - 1) / first.cx;
    i64 nRows = (rCell.bottom - lTop + first.cy - 1) / first.cy;
    if (nColumns < 1 || nRows < 1 || nColumns > MOST_TILES || nRows > MOST_TILES ||
        nColumns * nRows > MOST_TILES) {
        return;
    }
    for (i64 y = lTop; y < rCell.bottom; y += first.cy) {
        for (i64 x = lLeft; x < rCell.right; x += first.cx) {
            CopyOne(hdc, image, {x, y, first.cx, first.cy}, rCell);
        }
    }
}

/* A bitmap of the target's size with the whole image, which hImageDC has; null when it cannot be had. */
HBITMAP Shrink(PreviewTools& tools, HDC hdc, const StretchArea& whole, const StretchArea& target)
{
    HDC hDc = CreateCompatibleDC(hdc);
    const int nWidth = static_cast<int>(target.cx), nHeight = static_cast<int>(target.cy);
    HBITMAP hBitmap = hDc ? CreateCompatibleBitmap(hdc, nWidth, nHeight) : nullptr;
    HGDIOBJ hOld = hBitmap ? SelectObject(hDc, hBitmap) : nullptr;
    int bDrawn = hOld && StretchBlt(hDc, 0, 0, nWidth, nHeight, tools.hImageDC, 0, 0,
                                    static_cast<int>(whole.cx), static_cast<int>(whole.cy), SRCCOPY);
    if (hOld) {
        SelectObject(hDc, hOld);
    }
    if (hDc) {
        DeleteDC(hDc);
    }
    if (hBitmap && !bDrawn) {
        DeleteObject(hBitmap);
        return nullptr;
    }
    return hBitmap;
}

/* An image that is far larger than what is shown of it is shrunk once for all cells and tiles of a size. The copy has the
   pixels that each of them would get. Null without one. */
HBITMAP NeedShrunk(PreviewTools& tools, HDC hdc, const StretchArea& whole, const StretchArea& target)
{
    if (whole.cx * whole.cy < FEWEST_SHRUNK_PIXELS || target.cx > LONGEST_SIDE || target.cy > LONGEST_SIDE ||
        target.cx * target.cy * 4 > whole.cx * whole.cy) {
        return nullptr;
    }
    for (ShrunkImage& shrunk : tools.aShrunk) {
        if (!shrunk.hBitmap) {
            shrunk.hBitmap = Shrink(tools, hdc, whole, target);
            shrunk.size = {static_cast<LONG>(target.cx), static_cast<LONG>(target.cy)};
            return shrunk.hBitmap;
        }
        if (shrunk.size.cx == target.cx && shrunk.size.cy == target.cy) {
            return shrunk.hBitmap;
        }
    }
    return nullptr;
}

/* The bitmap is in the context of images. */
void CopyImage(PreviewTools& tools, HDC hdc, const PreviewRequest& request, const RECT& rCell)
{
    BITMAP bitmap = {};
    StretchArea target;
    if (!SetBkMode(tools.hImageDC, TRANSPARENT) || !GetObjectW(tools.hImage, sizeof bitmap, &bitmap)) {
        return;
    }
    POINT corner = {bitmap.bmWidth, bitmap.bmHeight};
    if (!DPtoLP(tools.hImageDC, &corner, 1) ||
        !PlaceWatermarkImage(request, rCell, bitmap.bmWidth, bitmap.bmHeight, &target)) {
        return;
    }
    ImageSource image = {
        tools.hImageDC, tools.hImage, nullptr, {0, 0, corner.x, corner.y}, {0, 0, target.cx, target.cy}, 0};
    image.hShrunk = NeedShrunk(tools, hdc, image.whole, target);
    image.bCutWhole = image.whole.cx * image.whole.cy <= MOST_CUT_PIXELS;
    if (PlacementOf(*request.pWatermark) == PLACEMENT_TILED) {
        CopyTiles(hdc, image, target, rCell);
    } else {
        CopyOne(hdc, image, target, rCell);
    }
}

/* Clips one axis to lLow..lHigh: place and size on the target, on the source. Each step sees what the one before it has
   left. 0 when nothing is left. */
int ClipAxis(i64* plTarget, i64* plTargetSize, i64* plSource, i64* plSourceSize, i64 lLow, i64 lHigh)
{
    if (*plTargetSize < 1 || *plSourceSize < 1 || lLow - *plTarget >= *plTargetSize || *plTarget >= lHigh) {
        return 0;
    }
    if (*plTarget < lLow) {
        i64 lCut = (lLow - *plTarget) * *plSourceSize / *plTargetSize;
        *plSource += lCut;
        *plSourceSize -= lCut;
        *plTargetSize -= lLow - *plTarget;
        *plTarget = lLow;
    }
    if (*plTarget + *plTargetSize > lHigh) {
        *plSourceSize -= (*plTarget + *plTargetSize - lHigh) * *plSourceSize / *plTargetSize;
        *plTargetSize = lHigh - *plTarget;
    }
    return *plTargetSize >= 1 && *plSourceSize >= 1;
}

/* Pixels of one side on screen, in which an image of cxImage pixels has this many by its resolution. */
i64 SideOnScreen(i64 lPixels, u32 ulScale)
{
    if (ulScale != 100) {
        i64 lLimit = LARGEST_SIDE * LARGEST_SIDE / (static_cast<i64>(ulScale) + 1);
        lPixels = static_cast<i64>(ulScale) * (lPixels < lLimit ? lPixels : lLimit) / 100;
    }
    return lPixels < LARGEST_SIDE ? lPixels : LARGEST_SIDE;
}

} // namespace

u32 RowsOfBitmapFile(const u8* pFileHeader, i64 lFileSize)
{
    BITMAPFILEHEADER header;
    std::memcpy(&header, pFileHeader, sizeof header);
    u32 ulRows = header.bfOffBits;
    return header.bfType == BITMAP_FILE_TYPE && ulRows >= FIRST_ROWS && ulRows <= LAST_ROWS &&
                   ulRows <= lFileSize && lFileSize <= LARGEST_IMAGE_FILE
               ? ulRows
               : 0;
}

int ReadBitmapHead(const u8* pBytes, u32 cbBytes, u32 ulRows, i64 lFileSize, BitmapHead* pHead)
{
    *pHead = {};
    BITMAPINFOHEADER& info = pHead->rInfo;
    if (cbBytes < INFO_BYTES) {
        return 0;
    }
    std::memcpy(&info, pBytes, INFO_BYTES);
    if (info.biSize < INFO_BYTES || info.biSize > LONGEST_INFO || info.biSize > cbBytes ||
        info.biPlanes != 1 || info.biWidth < 1 || info.biWidth > LONGEST_SIDE || info.biHeight < 1 ||
        info.biHeight > LONGEST_SIDE) {
        return 0;
    }
    u32 nColors = 0, ulColors = info.biSize;
    switch (info.biBitCount) {
    case 1:
    case 4:
    case 8:
        nColors = 1u << info.biBitCount;
        nColors = info.biClrUsed && info.biClrUsed < nColors ? info.biClrUsed : nColors;
        [[fallthrough]];
    case 24:
        if (info.biCompression != BI_RGB) {
            return 0;
        }
        break;
    case 16:
    case 32:
        if (info.biCompression == BI_BITFIELDS) { /* behind the shortest header and in all longer ones */
            nColors = MASK_COUNT;
            ulColors = INFO_BYTES;
        } else if (info.biCompression != BI_RGB) {
            return 0;
        }
        break;
    default: return 0;
    }
    u32 cbColors = nColors * static_cast<u32>(sizeof(RGBQUAD));
    u32 cbThere = cbBytes - ulColors < cbColors ? cbBytes - ulColors : cbColors;
    std::memcpy(pHead->aColors, pBytes + ulColors, cbThere);
    if (info.biCompression == BI_BITFIELDS) {
        u32 aulMasks[MASK_COUNT];
        std::memcpy(aulMasks, pHead->aColors, sizeof aulMasks);
        if (!aulMasks[0] || !aulMasks[1] || !aulMasks[2]) {
            return 0;
        }
        nColors = 0;
    }
    i64 lBits = static_cast<i64>(info.biBitCount) * info.biWidth, lRow = (lBits + 31) / 32 * 4;
    if (lRow > LONGEST_ROW) {
        return 0;
    }
    pHead->cbRow = static_cast<u32>(lRow);
    pHead->cbFileRow = static_cast<u32>(lBits / 8 + 3) & ~3u; /* whole bytes of the row only */
    info.biSize = INFO_BYTES;
    info.biClrUsed = nColors;
    info.biClrImportant = 0;
    info.biSizeImage = pHead->cbRow * static_cast<u32>(info.biHeight);
    return static_cast<i64>(info.biWidth) * info.biHeight <= MOST_IMAGE_PIXELS &&
           ulRows + static_cast<i64>(pHead->cbFileRow) * info.biHeight <= lFileSize;
}

int ClipStretch(StretchArea* pSource, StretchArea* pTarget, const RECT& rClip)
{
    return ClipAxis(&pTarget->x, &pTarget->cx, &pSource->x, &pSource->cx, rClip.left, rClip.right) &&
           ClipAxis(&pTarget->y, &pTarget->cy, &pSource->y, &pSource->cy, rClip.top, rClip.bottom);
}

u16 PlacementOf(const WatermarkEntry& entry)
{
    return entry.WMPlacement <= LAST_PLACEMENT ? entry.WMPlacement : u16{0};
}

i64 FirstTile(i64 lAt, i64 lStep, i64 lEdge)
{
    i64 lAway = lAt - lEdge;
    if (lAway > 0) {
        return lAt - (lAway + lStep - 1) / lStep * lStep;
    }
    return lAway < 0 ? lAt + (-lAway - 1) / lStep * lStep : lAt;
}

int PlaceWatermarkImage(const PreviewRequest& request, const RECT& rCell, i32 cxImage, i32 cyImage,
                        StretchArea* pTarget)
{
    const WatermarkEntry& entry = *request.pWatermark;
    i64 lResolution = entry.WMResolution ? entry.WMResolution : request.sResolution;
    i64 lDivisor = lResolution * request.lPageWidth, lCell = rCell.right - rCell.left;
    if (lDivisor < 1 || lCell < 1) {
        return 0;
    }
    i64 W = SideOnScreen(lCell * cxImage * HUNDREDTHS_PER_INCH / lDivisor, entry.WMScaleX);
    i64 H = SideOnScreen(lCell * cyImage * HUNDREDTHS_PER_INCH / lDivisor, entry.WMScaleY);
    i64 lMiddle = rCell.left + (lCell - W) / 2, lRight = rCell.right - W;
    i64 lCentre = rCell.top + (rCell.bottom - rCell.top - H) / 2, lBottom = rCell.bottom - H;
    const struct {
        i64 x, y;
    } aPlaces[] = {
        {lMiddle, lCentre},    {rCell.left, rCell.top}, {lMiddle, rCell.top},    {lRight, lCentre},
        {lMiddle, lBottom},    {rCell.left, lCentre},   {rCell.left, rCell.top}, {lRight, rCell.top},
        {rCell.left, lBottom}, {lRight, lBottom},
    };
    static_assert(sizeof aPlaces / sizeof aPlaces[0] == LAST_PLACEMENT + 1);
    pTarget->x = aPlaces[PlacementOf(entry)].x + entry.WMPositionX;
    pTarget->y = aPlaces[PlacementOf(entry)].y - entry.WMPositionY;
    pTarget->cx = W;
    pTarget->cy = H;
    return W >= 1 && H >= 1;
}

void DrawWatermarkImage(PreviewTools& tools, HDC hdc, const PreviewRequest& request, const RECT& rCell)
{
    if (!tools.bImageAsked) {
        tools.bImageAsked = 1;
        tools.hImage = request.pWatermark ? ReadImage(tools, hdc, *request.pWatermark) : nullptr;
    }
    HGDIOBJ hOld = tools.hImage ? SelectObject(tools.hImageDC, tools.hImage) : nullptr;
    if (hOld) {
        CopyImage(tools, hdc, request, rCell);
        if (!SelectObject(tools.hImageDC, hOld)) {
            DeleteDC(tools.hImageDC); /* which lets go of the bitmap, too */
            tools.hImageDC = nullptr;
            DropWatermarkImage(tools);
            tools.bImageAsked = 1;
        }
    }
}

void DropWatermarkImage(PreviewTools& tools)
{
    for (ShrunkImage& shrunk : tools.aShrunk) {
        if (shrunk.hBitmap) {
            DeleteObject(shrunk.hBitmap);
            shrunk.hBitmap = nullptr;
        }
    }
    if (tools.hImage) {
        DeleteObject(tools.hImage);
        tools.hImage = nullptr;
    }
    tools.bImageAsked = 0;
}
