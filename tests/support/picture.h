/* Pictures in tests: a canvas that is drawn on, and its pixels in and out of PNG files, on both builds. */
#ifndef TQUI_TESTS_PICTURE_H
#define TQUI_TESTS_PICTURE_H

#include <filesystem>
#include <string>
#include <vector>

#include "platform/drawing.h"

#ifdef _WIN32

/* As the hosted machine's. */
struct Picture {
    int nWidth = 0, nHeight = 0;
    std::vector<COLORREF> pixels; /* rows from the top */
    COLORREF At(int x, int y) const { return pixels[static_cast<size_t>(y * nWidth + x)]; }
    bool operator==(const Picture&) const = default;
};
bool SavePng(const std::filesystem::path& path, const Picture& picture);
bool LoadPng(const std::filesystem::path& path, Picture* pPicture);

#else
#include "hosted/pictures.h"
#endif

/* What of the rectangle lies inside. */
void Fill(Picture* pPicture, const RECT& rect, COLORREF color);
Picture PartOf(const Picture& picture, const RECT& rect); /* lies inside */

/* Fills a rectangle of a context, its right and bottom left out. */
void FillBox(HDC hDc, const RECT& rect, COLORREF color);

/* Pixels that differ; the largest difference of one channel in them; where they are; and a picture of it. */
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
