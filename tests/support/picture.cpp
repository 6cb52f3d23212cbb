/* Canvas, comparison and files of the pictures in tests. */
#include "support/picture.h"

#include <algorithm>
#include <cstdlib>

#ifdef _WIN32
#include <objidl.h>

#include <gdiplus.h>
#endif

#include "places.h"

namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr const char* BUILD_NAME = "windows";
#else
constexpr const char* BUILD_NAME = "hosted";
#endif

size_t PlaceOf(const Picture& picture, LONG x, LONG y)
{
    return static_cast<size_t>(y) * static_cast<size_t>(picture.nWidth) + static_cast<size_t>(x);
}

} // namespace

#ifdef _WIN32

namespace {

struct GdiPlus {
    ULONG_PTR uToken = 0;
    GdiPlus()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&uToken, &input, nullptr);
    }
    ~GdiPlus() { Gdiplus::GdiplusShutdown(uToken); }
};

constexpr CLSID PNG_ENCODER = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

} // namespace

bool LoadPng(const fs::path& path, Picture* pPicture)
{
    const GdiPlus started;
    Gdiplus::Bitmap bitmap(path.c_str());
    if (bitmap.GetLastStatus() != Gdiplus::Ok) {
        return false;
    }
    *pPicture = {static_cast<int>(bitmap.GetWidth()), static_cast<int>(bitmap.GetHeight()), {}};
    for (int y = 0; y < pPicture->nHeight; y++) {
        for (int x = 0; x < pPicture->nWidth; x++) {
            Gdiplus::Color color;
            bitmap.GetPixel(x, y, &color);
            pPicture->pixels.push_back(color.ToCOLORREF());
        }
    }
    return true;
}

bool SavePng(const fs::path& path, const Picture& picture)
{
    const GdiPlus started;
    Gdiplus::Bitmap bitmap(picture.nWidth, picture.nHeight, PixelFormat24bppRGB);
    for (int y = 0; y < picture.nHeight; y++) {
        for (int x = 0; x < picture.nWidth; x++) {
            Gdiplus::Color color;
            color.SetFromCOLORREF(picture.At(x, y));
            bitmap.SetPixel(x, y, color);
        }
    }
    return bitmap.Save(path.c_str(), &PNG_ENCODER, nullptr) == Gdiplus::Ok;
}

Picture Canvas::Pixels() const
{
    Picture picture = {nWidth, nHeight, {}};
    for (int y = 0; y < nHeight; y++) {
        for (int x = 0; x < nWidth; x++) {
            picture.pixels.push_back(GetPixel(hDc, x, y));
        }
    }
    return picture;
}

#else

Picture Canvas::Pixels() const
{
    Picture picture;
    ReadContext(hDc, &picture);
    return picture;
}

#endif

void Fill(Picture* pPicture, const RECT& rect, COLORREF color)
{
    for (LONG y = std::max<LONG>(rect.top, 0); y < std::min<LONG>(rect.bottom, pPicture->nHeight); y++) {
        for (LONG x = std::max<LONG>(rect.left, 0); x < std::min<LONG>(rect.right, pPicture->nWidth); x++) {
            pPicture->pixels[PlaceOf(*pPicture, x, y)] = color;
        }
    }
}

Picture PartOf(const Picture& picture, const RECT& rect)
{
    Picture part = {static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top), {}};
    for (LONG y = rect.top; y < rect.bottom; y++) {
        for (LONG x = rect.left; x < rect.right; x++) {
            part.pixels.push_back(picture.At(static_cast<int>(x), static_cast<int>(y)));
        }
    }
    return part;
}

void FillBox(HDC hDc, const RECT& rect, COLORREF color)
{
    const HBRUSH hBrush = CreateSolidBrush(color);
    const HGDIOBJ hOldBrush = SelectObject(hDc, hBrush);
    const HGDIOBJ hOldPen = SelectObject(hDc, GetStockObject(NULL_PEN));
    Rectangle(hDc, rect.left, rect.top, rect.right + 1, rect.bottom + 1);
    SelectObject(hDc, hOldPen);
    SelectObject(hDc, hOldBrush);
    DeleteObject(hBrush);
}

Canvas::Canvas(int nX, int nY, COLORREF color) : nWidth(nX), nHeight(nY)
{
    const HDC hScreen = CreateDCW(TEXT("DISPLAY"), nullptr, nullptr, nullptr);
    hDc = CreateCompatibleDC(hScreen);
    hBitmap = CreateCompatibleBitmap(hScreen, nWidth, nHeight);
    DeleteDC(hScreen);
    hOld = SelectObject(hDc, hBitmap);
    FillBox(hDc, {0, 0, nWidth, nHeight}, color);
}

Canvas::~Canvas()
{
    SelectObject(hDc, hOld);
    DeleteDC(hDc);
    DeleteObject(hBitmap);
}

PictureDifference Compare(const Picture& golden, const Picture& got)
{
    PictureDifference difference;
    difference.shown = {got.nWidth, got.nHeight, std::vector<COLORREF>(got.pixels.size(), 0xFFFFFF)};
    if (golden.nWidth != got.nWidth || golden.nHeight != got.nHeight) {
        difference.nPixels = got.nWidth * got.nHeight;
        difference.nLargest = 255;
        return difference;
    }
    RECT& where = difference.rWhere;
    where = {got.nWidth, got.nHeight, 0, 0};
    for (int y = 0; y < got.nHeight; y++) {
        for (int x = 0; x < got.nWidth; x++) {
            const COLORREF one = golden.At(x, y), other = got.At(x, y);
            if (one == other) {
                continue;
            }
            difference.nPixels++;
            for (int nShift = 0; nShift < 24; nShift += 8) {
                const int nApart =
                    static_cast<int>(one >> nShift & 255) - static_cast<int>(other >> nShift & 255);
                difference.nLargest = std::max(difference.nLargest, std::abs(nApart));
            }
            where = {std::min<LONG>(where.left, x), std::min<LONG>(where.top, y),
                     std::max<LONG>(where.right, x + 1), std::max<LONG>(where.bottom, y + 1)};
            difference.shown.pixels[PlaceOf(got, x, y)] = 0x0000FF;
        }
    }
    return difference;
}

std::string AgainstGolden(const std::string& name, const Picture& got)
{
    const fs::path golden = fs::path(TQUI_SOURCE_DIR "/tests/golden/preview") / (name + ".png");
    if (std::getenv("TQUI_WRITE_GOLDENS")) {
        fs::create_directories(golden.parent_path());
        return SavePng(golden, got) ? "" : golden.string() + " cannot be written";
    }
    Picture wanted;
    const bool bThere = LoadPng(golden, &wanted);
    const PictureDifference difference = Compare(wanted, got);
    if (bThere && difference.nPixels == 0) {
        return "";
    }
    const fs::path folder = fs::path(TQUI_SOURCE_DIR "/build/preview-differences") / BUILD_NAME;
    fs::create_directories(folder);
    SavePng(folder / (name + "-got.png"), got);
    SavePng(folder / (name + "-difference.png"), difference.shown);
    const RECT& where = difference.rWhere;
    return name + ": " + (bThere ? "" : "no golden; ") + std::to_string(difference.nPixels) +
           " pixels differ, by up to " + std::to_string(difference.nLargest) + ", within " +
           std::to_string(where.left) + "," + std::to_string(where.top) + "," + std::to_string(where.right) +
           "," + std::to_string(where.bottom) + "; see " + folder.string();
}
