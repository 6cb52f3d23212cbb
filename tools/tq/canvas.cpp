/* A picture to draw on. */
#include "tools/tq/canvas.h"

#include <stdexcept>

#include "platform/hosted/pictures.h"
#include "platform/hosted/standin.h"

Canvas::Canvas(int nWidth, int nHeight)
{
    HDC hDisplay = CreateDCW(TEXT("DISPLAY"), nullptr, nullptr, nullptr);
    hDc = CreateCompatibleDC(hDisplay);
    hBitmap = CreateCompatibleBitmap(hDisplay, nWidth, nHeight);
    DeleteDC(hDisplay);
    hBitmapBefore = SelectObject(hDc, hBitmap);
    if (!hBitmapBefore) {
        throw std::runtime_error("no picture of this size");
    }
    HGDIOBJ hPenBefore = SelectObject(hDc, GetStockObject(WHITE_PEN));
    HGDIOBJ hBrushBefore = SelectObject(hDc, GetStockObject(WHITE_BRUSH));
    Rectangle(hDc, 0, 0, nWidth, nHeight);
    SelectObject(hDc, hBrushBefore);
    SelectObject(hDc, hPenBefore);
    SetBkMode(hDc, TRANSPARENT);
}

Canvas::~Canvas()
{
    SelectObject(hDc, hBitmapBefore);
    DeleteObject(hBitmap);
    DeleteDC(hDc);
}

void Canvas::Write(int x, int y, const std::string& text)
{
    RECT rText = {x, y, x + 2000, y + 30};
    DrawTextW(hDc, Widen(text).c_str(), -1, &rText, DT_SINGLELINE);
}

void Canvas::Save(const std::filesystem::path& path) const
{
    Picture picture;
    if (!ReadContext(hDc, &picture) || !SavePng(path, picture)) {
        throw std::runtime_error(path.string() + ": cannot be written");
    }
}
