/* Bitmaps: made empty, made from the rows of a device-independent one, loaded from a library. */
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "hosted/drawing/drawing_state.h"
#include "hosted/pe_resources.h"
#include "hosted/user_input.h"

namespace {

/* What the header of a device-independent bitmap and the table behind it say. */
struct DibFormat {
    int nBits = 0;
    i64 lWidth = 0, lHeight = 0; /* above 0 */
    bool bTopDown = false;
    size_t cbRow = 0;                   /* rows end on four bytes */
    size_t cbInfo = 0;                  /* header, masks and table */
    std::array<COLORREF, 256> colors{}; /* up to 8 bits; entries behind the table are black */
    size_t nColors = 0;
    std::array<DWORD, 3> masks{}; /* 16 and 32 bits: red, green, blue */
};

constexpr DWORD CBM_INIT = 4;
constexpr size_t V3_HEADER = 52; /* from here on the masks lie in the header */

DWORD ReadDword(const u8* pBytes)
{
    DWORD dw;
    std::memcpy(&dw, pBytes, sizeof dw);
    return dw;
}

COLORREF FromRgbQuad(const u8* pQuad)
{
    return RgbOf(pQuad[2], pQuad[1], pQuad[0]);
}

/* One channel of a pixel of 16 or 32 bits, widened to 8 bits by repeating its own upper ones. */
u8 Channel(DWORD dwPixel, DWORD dwMask)
{
    const int nBits = std::popcount(dwMask);
    if (nBits == 0) {
        return 0;
    }
    const DWORD dwValue = (dwPixel & dwMask) >> std::countr_zero(dwMask);
    if (nBits >= 8) {
        return static_cast<u8>(dwValue >> (nBits - 8));
    }
    DWORD dwWide = dwValue << (8 - nBits);
    for (int nFilled = nBits; nFilled < 8; nFilled *= 2) {
        dwWide |= dwWide >> nFilled;
    }
    return static_cast<u8>(dwWide);
}

/* Reads header, masks and table from cb bytes. Result: false for a form that is not drawn (compressed, of another
   count of bits), or when the bytes do not reach. */
bool ReadFormat(const u8* pInfo, size_t cb, DibFormat* pFormat)
{
    BITMAPINFOHEADER header;
    if (cb < sizeof header) {
        return false;
    }
    std::memcpy(&header, pInfo, sizeof header);
    const int nBits = header.biBitCount;
    if (header.biSize < sizeof header || header.biSize > cb || header.biPlanes != 1 || header.biWidth < 1 ||
        header.biHeight == 0 ||
        (nBits != 1 && nBits != 4 && nBits != 8 && nBits != 16 && nBits != 24 && nBits != 32) ||
        (header.biCompression != BI_RGB &&
         !(header.biCompression == BI_BITFIELDS && (nBits == 16 || nBits == 32)))) {
        return false;
    }
    pFormat->nBits = nBits;
    pFormat->lWidth = header.biWidth;
    pFormat->bTopDown = header.biHeight < 0;
    pFormat->lHeight = pFormat->bTopDown ? -i64{header.biHeight} : header.biHeight;
    pFormat->cbRow = (static_cast<size_t>(nBits) * static_cast<size_t>(header.biWidth) + 31) / 32 * 4;
    size_t cbInfo = header.biSize;
    if (header.biCompression == BI_BITFIELDS) {
        const size_t nMasks = header.biSize >= V3_HEADER ? sizeof header : cbInfo;
        if (cb < nMasks + 12) {
            return false;
        }
        for (size_t i = 0; i < 3; i++) {
            pFormat->masks[i] = ReadDword(pInfo + nMasks + 4 * i);
        }
        cbInfo = std::max(cbInfo, nMasks + 12);
    } else {
        pFormat->masks = nBits == 16 ? std::array<DWORD, 3>{0x7C00, 0x03E0, 0x001F}
                                     : std::array<DWORD, 3>{0xFF0000, 0x00FF00, 0x0000FF};
    }
    const size_t nMost = nBits <= 8 ? size_t{1} << nBits : 0;
    pFormat->nColors = header.biClrUsed ? std::min<size_t>(header.biClrUsed, nMost) : nMost;
    if (cb - cbInfo < 4 * pFormat->nColors) {
        return false;
    }
    for (size_t i = 0; i < pFormat->nColors; i++) {
        pFormat->colors[i] = FromRgbQuad(pInfo + cbInfo + 4 * i);
    }
    pFormat->cbInfo = cbInfo + 4 * (header.biClrUsed && nMost == 0 ? header.biClrUsed : pFormat->nColors);
    return true;
}

size_t PixelIndex(const DibFormat& format, const u8* pRow, size_t x)
{
    switch (format.nBits) {
    case 1: return pRow[x / 8] >> (7 - x % 8) & 1;
    case 4: return pRow[x / 2] >> (x % 2 ? 0 : 4) & 15;
    default: return pRow[x];
    }
}

COLORREF PixelColor(const DibFormat& format, const u8* pRow, size_t x)
{
    switch (format.nBits) {
    case 16:
    case 32: {
        const DWORD dwPixel =
            format.nBits == 32 ? ReadDword(pRow + 4 * x) : DWORD{pRow[2 * x]} | DWORD{pRow[2 * x + 1]} << 8;
        return RgbOf(Channel(dwPixel, format.masks[0]), Channel(dwPixel, format.masks[1]),
                     Channel(dwPixel, format.masks[2]));
    }
    case 24: return FromRgbQuad(pRow + 3 * x);
    default: return format.colors[PixelIndex(format, pRow, x)];
    }
}

COLORREF NearerOfTwo(COLORREF color)
{
    return (color & 0xFF) + (color >> 8 & 0xFF) + (color >> 16 & 0xFF) > 3 * 0x7F ? 0xFFFFFF : 0;
}

/* A row into a row of the surface; columns that one of them lacks are left alone. */
void PutRow(const DibFormat& format, const u8* pRow, i64 y, Surface* pSurface)
{
    if (y < 0 || y >= pSurface->nHeight) {
        return;
    }
    COLORREF* pOut = pSurface->pixels.data() + y * pSurface->nWidth;
    const auto nWidth = static_cast<size_t>(std::min<i64>(format.lWidth, pSurface->nWidth));
    for (size_t x = 0; x < nWidth; x++) {
        const COLORREF color = PixelColor(format, pRow, x);
        pOut[x] = pSurface->bMono ? NearerOfTwo(color) : color;
    }
}

/* Copies nLines rows, the lowest of which is line uStart, counted from below. Result: rows that were taken. */
int PutRows(const DibFormat& format, const u8* pBits, UINT uStart, UINT nLines, Surface* pSurface)
{
    if (uStart >= format.lHeight) {
        return 0;
    }
    const i64 lLines = std::min<i64>(nLines, format.lHeight - uStart);
    for (i64 i = 0; i < lLines; i++) {
        const i64 lFromBelow = uStart + (format.bTopDown ? lLines - 1 - i : i);
        const i64 y = format.lHeight - 1 - lFromBelow;
        PutRow(format, pBits + static_cast<size_t>(i) * format.cbRow, y, pSurface);
    }
    return static_cast<int>(lLines);
}

/* What the flags of LoadImageW do to the colour table: the first pixel's colour becomes that of the window or of the
   face of things, three greys become those of the desktop. */
void MapColors(UINT uFlags, const u8* pBits, DibFormat* pFormat)
{
    if (pFormat->nBits > 8) {
        return;
    }
    if (uFlags & LR_LOADMAP3DCOLORS) {
        for (size_t i = 0; i < pFormat->nColors; i++) {
            COLORREF& color = pFormat->colors[i];
            color = color == 0x808080   ? SystemColor(COLOR_3DSHADOW)
                    : color == 0xC0C0C0 ? SystemColor(COLOR_BTNFACE)
                    : color == 0xDFDFDF ? SystemColor(COLOR_3DLIGHT)
                                        : color;
        }
    }
    if (uFlags & LR_LOADTRANSPARENT) {
        const size_t nFirst = PixelIndex(
            *pFormat,
            pBits + (pFormat->bTopDown ? 0 : (static_cast<size_t>(pFormat->lHeight) - 1) * pFormat->cbRow),
            0);
        pFormat->colors[nFirst] = SystemColor(uFlags & LR_LOADMAP3DCOLORS ? COLOR_BTNFACE : COLOR_WINDOW);
    }
}

/* A picture of a library as a bitmap of the display. */
bool LoadPicture(Bitmap* pBitmap)
{
    const Bytes& dib = pBitmap->dib;
    DibFormat format;
    if (!ReadFormat(dib.data(), dib.size(), &format) || format.lWidth > 0x7FFF || format.lHeight > 0x7FFF ||
        dib.size() - std::min(dib.size(), format.cbInfo) <
            format.cbRow * static_cast<size_t>(format.lHeight) ||
        !MakeSurface(format.lWidth, format.lHeight, false, &pBitmap->surface)) {
        return false;
    }
    const u8* pBits = dib.data() + format.cbInfo;
    MapColors(pBitmap->uFlags, pBits, &format);
    PutRows(format, pBits, 0, static_cast<UINT>(format.lHeight), &pBitmap->surface);
    return true;
}

HBITMAP MakeCompatible(const DrawingContext& context, i64 lWidth, i64 lHeight)
{
    Bitmap bitmap;
    const bool bMono = context.hBitmap && context.pSurface->bMono;
    if (!MakeSurface(std::abs(lWidth), std::abs(lHeight), bMono, &bitmap.surface)) {
        return nullptr;
    }
    return AddBitmap(std::move(bitmap));
}

} // namespace

HBITMAP WINAPI CreateCompatibleBitmap(HDC hDc, int nWidth, int nHeight)
{
    FAILS(CreateCompatibleBitmap);
    const DrawingContext* pContext = FindContext(hDc);
    if (!pContext) {
        return nullptr;
    }
    return nWidth && nHeight ? MakeCompatible(*pContext, nWidth, nHeight) : DefaultBitmap();
}

HBITMAP WINAPI CreateDIBitmap(HDC hDc, const BITMAPINFOHEADER* pHeader, DWORD dwInit, const void* pBits,
                              const BITMAPINFO* pInfo, UINT uUsage)
{
    FAILS(CreateDIBitmap);
    const DrawingContext* pContext = FindContext(hDc);
    if (!pContext || !pHeader || pHeader->biSize < sizeof *pHeader || uUsage != DIB_RGB_COLORS) {
        return nullptr;
    }
    const HBITMAP hBitmap = pHeader->biWidth && pHeader->biHeight
                                ? MakeCompatible(*pContext, pHeader->biWidth, pHeader->biHeight)
                                : DefaultBitmap();
    DibFormat format;
    if (hBitmap && (dwInit & CBM_INIT) && pBits && pInfo &&
        ReadFormat(reinterpret_cast<const u8*>(pInfo), SIZE_MAX, &format)) {
        PutRows(format, static_cast<const u8*>(pBits), 0, static_cast<UINT>(format.lHeight),
                FindBitmapSurface(hBitmap));
    }
    return hBitmap;
}

int WINAPI SetDIBits(HDC hDc, HBITMAP hBitmap, UINT uStart, UINT nLines, const void* pBits,
                     const BITMAPINFO* pInfo, UINT uUsage)
{
    FAILS(SetDIBits);
    Surface* pSurface = FindBitmapSurface(hBitmap);
    DibFormat format;
    if ((hDc && !FindContext(hDc)) || !pSurface || hBitmap == DefaultBitmap() || !pBits || !pInfo ||
        uUsage != DIB_RGB_COLORS || !ReadFormat(reinterpret_cast<const u8*>(pInfo), SIZE_MAX, &format)) {
        return 0;
    }
    if (Lies(CALL_SetDIBits, LIE_SHORT)) {
        nLines /= 2;
    }
    return PutRows(format, static_cast<const u8*>(pBits), uStart, nLines, pSurface);
}

HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR wcName, UINT uType, int nWidth, int nHeight,
                         UINT uFlags)
{
    FAILS(LoadImageW);
    Bitmap bitmap;
    bitmap.bLoaded = true;
    bitmap.uFlags = uFlags;
    if (uType != IMAGE_BITMAP || nWidth != 0 || nHeight != 0 || /* of its own size */
        !FindModuleResource(hInstance, PE_BITMAP, wcName, &bitmap.dib) || !LoadPicture(&bitmap)) {
        SetHostedError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    return AddBitmap(std::move(bitmap));
}

bool GetPicture(HBITMAP hBitmap, PictureSize* pSize, Bytes* pDib)
{
    const Bitmap* pBitmap = FindBitmap(hBitmap);
    if (!pBitmap || !pBitmap->bLoaded) {
        return false;
    }
    *pSize = {pBitmap->surface.nWidth, pBitmap->surface.nHeight, pBitmap->uFlags};
    if (pDib) {
        *pDib = pBitmap->dib;
    }
    return true;
}
