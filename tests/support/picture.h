/* Pictures in tests: a canvas that is drawn on, and its pixels in and out of PNG files, on both builds. */
#ifndef TQUI_TESTS_PICTURE_H
#define TQUI_TESTS_PICTURE_H

#include <filesystem>
#include <string>
#include <vector>

#include "platform/drawing.h"

struct Picture {
    int nWidth = 0, nHeight = 0;
    std::vector<COLORREF> pixels; /* rows from the top */

    COLORREF& At(int x, int y) { return pixels[static_cast<size_t>(y * nWidth + x)]; }
    COLORREF At(int x, int y) const { return pixels[static_cast<size_t>(y * nWidth + x)]; }
    void Fill(const RECT& rect, COLORREF color); /* what of it lies inside */
    Picture Part(const RECT& rect) const;        /* lies inside */
    bool operator==(const Picture&) const = default;
};

bool ReadPng(const std::filesystem::path& path, Picture* pPicture);
bool WritePng(const std::filesystem::path& path, const Picture& picture);

/* Pixels that differ; the largest difference of one channel in them; and a picture that shows where. */
struct PictureDifference {
    int nPixels = 0, nLargest = 0;
    RECT rWhere{};
    Picture shown;
};
PictureDifference Compare(const Picture& golden, const Picture& got);

/* A context in memory with a bitmap of the display's colours, all of one colour. */
class Canvas {
  public:
    Canvas(int nWidth, int nHeight, COLORREF color);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    HDC Dc() const { return hDc; }
    Picture Pixels() const;

  private:
    int nWidth, nHeight;
    HDC hDc;
    HBITMAP hBitmap;
    HGDIOBJ hOld;
};

/* Compares with tests/golden/preview/NAME.png; when TQUI_WRITE_GOLDENS is set, writes that file instead.
   Result: empty, or where the pictures of what differs were written. */
std::string AgainstGolden(const std::string& name, const Picture& got);

#endif
