/* A picture to draw on. */
#include "tools/tq/canvas.h"

#include <stdexcept>

#include "base/wide.h"
#include "hosted/pictures.h"
#include "hosted/standin.h"
#include "tools/save_file.h"

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
    LOGFONTW font = {};
    font.lfHeight = 16;
    CopyWide(font.lfFaceName, LF_FACESIZE, TEXT("DejaVu Sans"));
    hFont = CreateFontIndirectW(&font);
}

Canvas::~Canvas()
{
    SelectObject(hDc, hBitmapBefore);
    DeleteObject(hFont);
    DeleteObject(hBitmap);
    DeleteDC(hDc);
}

void Canvas::Write(int x, int y, const std::string& text)
{
    RECT rText = {x, y, x + 2000, y + 30};
    HGDIOBJ hFontBefore = SelectObject(hDc, hFont);
    DrawTextW(hDc, Widen(text).c_str(), -1, &rText, DT_SINGLELINE);
    SelectObject(hDc, hFontBefore);
}

void Canvas::Save(const std::filesystem::path& path) const
{
    Picture picture;
    std::vector<u8> png;
    if (!ReadContext(hDc, &picture) || !EncodePng(picture, &png)) {
        throw std::runtime_error("the picture cannot be made");
    }
    SaveFile(path, png.data(), png.size());
}
