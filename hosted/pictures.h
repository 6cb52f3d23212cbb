/* What was drawn, as the tests and the companion tool see it: the pixels of contexts and windows, and pictures as
   files. */
#ifndef TQUI_HOSTED_PICTURES_H
#define TQUI_HOSTED_PICTURES_H

#include <filesystem>
#include <vector>

#include "platform/drawing.h"

/* Pixels as COLORREFs, rows from the top. */
struct Picture {
    int nWidth = 0, nHeight = 0;
    std::vector<COLORREF> pixels;
    COLORREF At(int x, int y) const
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(nWidth) + static_cast<size_t>(x)];
    }
    bool operator==(const Picture&) const = default;
};

/* What the context draws on: the bitmap in memory, or the client area of the window of its own. False when there is
   nothing, as for the display's own context. */
bool ReadContext(HDC hDc, Picture* pPicture);
/* A window's client area as it was painted, with what lies in it. False when nothing of its window of its own has been
   painted yet. Controls paint nothing, save for the pictures that static ones show. */
bool WindowPicture(HWND hWnd, Picture* pPicture);

/* PNG files of 8 bits a channel. False when the file cannot be written; when it cannot be read as such a picture, or
   has more than 64 million pixels. Transparency is dropped. EncodePng makes the bytes of such a file. */
bool EncodePng(const Picture& picture, std::vector<u8>* pPng);
bool SavePng(const std::filesystem::path& path, const Picture& picture);
bool LoadPng(const std::filesystem::path& path, Picture* pPicture);

/* ---- what the system offers besides, for tests alone ---- */
COLORREF WINAPI GetPixel(HDC hDc, int x, int y); /* CLR_INVALID outside */
COLORREF WINAPI SetPixel(HDC hDc, int x, int y, COLORREF color);

#endif
