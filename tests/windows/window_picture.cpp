/* Copies the screen and writes the copy. */
#include "window_picture.h"

#include <cstdio>
#include <vector>

namespace {

bool WriteBitmap(HDC hdc, HBITMAP hBitmap, LONG lWidth, LONG lHeight, const std::string& path)
{
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, lWidth, lHeight, 1, 32, 0, 0, 0, 0, 0, 0};
    const size_t cb = static_cast<size_t>(lWidth) * static_cast<size_t>(lHeight) * 4;
    std::vector<char> pixels(cb);
    BITMAPFILEHEADER head{};
    head.bfType = 0x4D42;
    head.bfOffBits = sizeof head + sizeof info.bmiHeader;
    head.bfSize = head.bfOffBits + static_cast<DWORD>(cb);
    FILE* pFile = std::fopen(path.c_str(), "wb");
    if (!pFile) {
        return false;
    }
    const bool bWritten =
        GetDIBits(hdc, hBitmap, 0, static_cast<UINT>(lHeight), pixels.data(), &info, DIB_RGB_COLORS) &&
        std::fwrite(&head, sizeof head, 1, pFile) == 1 &&
        std::fwrite(&info.bmiHeader, sizeof info.bmiHeader, 1, pFile) == 1 &&
        std::fwrite(pixels.data(), cb, 1, pFile) == 1;
    return std::fclose(pFile) == 0 && bWritten;
}

} // namespace

bool WritePicture(HWND hWindow, const std::string& path)
{
    RECT rect{};
    GetWindowRect(hWindow, &rect);
    const LONG lWidth = rect.right - rect.left, lHeight = rect.bottom - rect.top;
    const HDC hScreen = GetDC(nullptr), hdc = CreateCompatibleDC(hScreen);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, lWidth, lHeight);
    const HGDIOBJ hOld = SelectObject(hdc, hBitmap);
    BitBlt(hdc, 0, 0, lWidth, lHeight, hScreen, rect.left, rect.top, SRCCOPY);
    SelectObject(hdc, hOld);
    const bool bWritten = WriteBitmap(hdc, hBitmap, lWidth, lHeight, path);
    DeleteObject(hBitmap);
    DeleteDC(hdc);
    ReleaseDC(nullptr, hScreen);
    return bWritten;
}
