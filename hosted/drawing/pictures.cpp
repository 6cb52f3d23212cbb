/* Pictures for the tests: read from contexts and windows, kept as PNG files, compared. */
#include "hosted/pictures.h"

#include <algorithm>

#include <png.h>

#include "hosted/dialogs/window_state.h"
#include "hosted/drawing/drawing_state.h"

namespace {

constexpr size_t MOST_PIXELS = size_t{1} << 26;

/* A part of a surface; black where it has none. */
void ReadSurface(const Surface& surface, const RECT& part, Picture* pPicture)
{
    *pPicture = {part.right - part.left, part.bottom - part.top, {}};
    pPicture->pixels.reserve(static_cast<size_t>(pPicture->nWidth) * static_cast<size_t>(pPicture->nHeight));
    for (int y = part.top; y < part.bottom; y++) {
        for (int x = part.left; x < part.right; x++) {
            const bool bInside = x >= 0 && x < surface.nWidth && y >= 0 && y < surface.nHeight;
            pPicture->pixels.push_back(
                bInside ? surface.pixels[static_cast<size_t>(y) * static_cast<size_t>(surface.nWidth) +
                                         static_cast<size_t>(x)]
                        : 0);
        }
    }
}

/* Static controls show their bitmaps over what was painted below them. */
void ShowBitmaps(const Window* pWindow, int nLeft, int nTop, Picture* pPicture)
{
    const Surface* pSurface = pWindow->kind == KIND_STATIC && (pWindow->dwStyle & SS_TYPEMASK) == SS_BITMAP
                                  ? FindBitmapSurface(static_cast<HBITMAP>(pWindow->hPicture))
                                  : nullptr;
    for (int y = 0; pSurface && y < pSurface->nHeight; y++) {
        for (int x = 0; x < pSurface->nWidth; x++) {
            const int nX = nLeft + x, nY = nTop + y;
            if (nX >= 0 && nX < pPicture->nWidth && nY >= 0 && nY < pPicture->nHeight) {
                pPicture->pixels[static_cast<size_t>(nY) * static_cast<size_t>(pPicture->nWidth) +
                                 static_cast<size_t>(nX)] =
                    pSurface->pixels[static_cast<size_t>(y) * static_cast<size_t>(pSurface->nWidth) +
                                     static_cast<size_t>(x)];
            }
        }
    }
    for (HWND hChild : pWindow->children) {
        if (const Window* pChild = FindWindowState(hChild); pChild && IsShown(pChild)) {
            const POINT own = ClientOrigin(pWindow), child = ClientOrigin(pChild);
            ShowBitmaps(pChild, nLeft + child.x - own.x, nTop + child.y - own.y, pPicture);
        }
    }
}

std::vector<u8> RgbBytes(const Picture& picture)
{
    std::vector<u8> rgb;
    rgb.reserve(picture.pixels.size() * 3);
    for (COLORREF color : picture.pixels) {
        rgb.insert(rgb.end(),
                   {static_cast<u8>(color), static_cast<u8>(color >> 8), static_cast<u8>(color >> 16)});
    }
    return rgb;
}

png_image PngOf(const Picture& picture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.nWidth);
    image.height = static_cast<png_uint_32>(picture.nHeight);
    image.format = PNG_FORMAT_RGB;
    return image;
}

} // namespace

bool ReadContext(HDC hDc, Picture* pPicture)
{
    const DrawingContext* pContext = FindContext(hDc);
    if (!pContext || !pContext->pSurface) {
        return false;
    }
    ReadSurface(*pContext->pSurface, {0, 0, pContext->pSurface->nWidth, pContext->pSurface->nHeight},
                pPicture);
    return true;
}

bool WindowPicture(HWND hWnd, Picture* pPicture)
{
    const Window* pWindow = FindWindowState(hWnd);
    const Window* pTop = pWindow ? FindWindowState(TopWindow(hWnd)) : nullptr;
    const Surface* pSurface = pTop ? WindowSurface(pTop->hWnd) : nullptr;
    if (!pSurface) {
        return false;
    }
    const POINT top = ClientOrigin(pTop), origin = ClientOrigin(pWindow);
    const int nLeft = origin.x - top.x, nTop = origin.y - top.y;
    const RECT client = ClientRect(pWindow);
    ReadSurface(*pSurface, {nLeft, nTop, nLeft + client.right, nTop + client.bottom}, pPicture);
    ShowBitmaps(pWindow, 0, 0, pPicture);
    return true;
}

bool EncodePng(const Picture& picture, std::vector<u8>* pPng)
{
    const std::vector<u8> rgb = RgbBytes(picture);
    png_image image = PngOf(picture);
    png_alloc_size_t cb = PNG_IMAGE_PNG_SIZE_MAX(image);
    pPng->resize(cb);
    if (!png_image_write_to_memory(&image, pPng->data(), &cb, 0, rgb.data(), 0, nullptr)) {
        return false;
    }
    pPng->resize(cb);
    return true;
}

bool SavePng(const std::filesystem::path& path, const Picture& picture)
{
    const std::vector<u8> rgb = RgbBytes(picture);
    png_image image = PngOf(picture);
    return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

bool LoadPng(const std::filesystem::path& path, Picture* pPicture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) {
        return false;
    }
    image.format = PNG_FORMAT_RGBA;
    const size_t nPixels = size_t{image.width} * image.height;
    std::vector<u8> rgba(nPixels <= MOST_PIXELS ? nPixels * 4 : 0);
    if (rgba.empty() || !png_image_finish_read(&image, nullptr, rgba.data(), 0, nullptr)) {
        png_image_free(&image);
        return false;
    }
    *pPicture = {static_cast<int>(image.width), static_cast<int>(image.height), {}};
    pPicture->pixels.reserve(nPixels);
    for (size_t i = 0; i < rgba.size(); i += 4) {
        pPicture->pixels.push_back(RgbOf(rgba[i], rgba[i + 1], rgba[i + 2]));
    }
    return true;
}

COLORREF WINAPI GetPixel(HDC hDc, int x, int y)
{
    const DrawingContext* pContext = FindContext(hDc);
    if (!pContext || !pContext->pSurface) {
        return CLR_INVALID;
    }
    const i64 lX = i64{x} + pContext->origin.x, lY = i64{y} + pContext->origin.y;
    const RECT& clip = pContext->clip;
    return lX >= clip.left && lX < clip.right && lY >= clip.top && lY < clip.bottom
               ? pContext->pSurface->pixels[static_cast<size_t>(lY * pContext->pSurface->nWidth + lX)]
               : CLR_INVALID;
}

COLORREF WINAPI SetPixel(HDC hDc, int x, int y, COLORREF color)
{
    if (DrawingContext* pContext = FindContext(hDc)) {
        PutPixel(*pContext, x, y, color);
    }
    return GetPixel(hDc, x, y);
}
