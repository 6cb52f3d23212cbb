/* What the preview relies on when it draws: which pixels lines, rectangles, curves and copies take, what a bitmap makes
   of rows of each form, which object may be held by whom. The figures stand for the pixels of many small scenes, drawn
   by chance from a seed; they were taken from Wine, and every pixel counts, those of the curves as well. */
#include <array>
#include <cstring>
#include <functional>
#include <optional>
#include <string>

#include "platform/resources.h"
#include "support/both_builds.h"
#include "support/picture.h"

namespace {

constexpr int SIDE = 48;
constexpr COLORREF WHITE = 0xFFFFFF, BLACK = 0, RED = 0x0000FF, GREEN = 0x00FF00, BLUE = 0xFF0000;

/* The same numbers on every build. */
class Chance {
  public:
    int Below(int n)
    {
        lState_ = lState_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<int>((lState_ >> 33) % static_cast<unsigned>(n));
    }
    int From(int nLow, int nHigh) { return nLow + Below(nHigh - nLow); }

  private:
    unsigned long long lState_ = 2463534242u;
};

class Drawing : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        canvas_.emplace(SIDE, SIDE, WHITE);
        source_.emplace(SIDE, SIDE, WHITE);
        hDc_ = canvas_->Dc();
        hSource_ = source_->Dc();
        hScreen_ = CreateDCW(TEXT("DISPLAY"), nullptr, nullptr, nullptr);
        for (int y = 0; y < SIDE; y++) {
            for (int x = 0; x < SIDE; x++) {
                SetPixel(hSource_, x, y, static_cast<COLORREF>(x * 5 | y * 3 << 8 | (x * y & 255) << 16));
            }
        }
        SetBkMode(hDc_, TRANSPARENT);
    }
    void TearDown() override
    {
        EXPECT_TRUE(DeleteDC(hScreen_));
        canvas_.reset();
        source_.reset();
        BothBuilds::TearDown();
    }
    void Clear(COLORREF color = WHITE) { FillBox(hDc_, {0, 0, SIDE, SIDE}, color); }
    void Line(int nFromX, int nFromY, int nToX, int nToY)
    {
        MoveToEx(hDc_, nFromX, nFromY, nullptr);
        LineTo(hDc_, nToX, nToY);
    }
    /* Draws with an object in its place. */
    void With(HGDIOBJ hObject, const std::function<void()>& draw)
    {
        const HGDIOBJ hOld = SelectObject(hDc_, hObject);
        draw();
        SelectObject(hDc_, hOld);
        DeleteObject(hObject);
    }
    std::string Rows(int nRows, int nWidth)
    {
        const Picture picture = canvas_->Pixels();
        std::string text;
        for (int y = 0; y < nRows; y++) {
            for (int x = 0; x < nWidth; x++) {
                const COLORREF color = picture.At(x, y);
                text += color == WHITE ? '.' : color == BLACK ? '#' : color == RED ? 'r' : '?';
            }
            text += '\n';
        }
        return text;
    }
    /* Draws nScenes scenes and holds their pixels against a figure. */
    void ExpectScenes(unsigned uExpected, int nScenes, const std::function<void(int nScene)>& draw,
                      COLORREF background = WHITE)
    {
        unsigned uSum = 2166136261u;
        for (int i = 0; i < nScenes; i++) {
            Clear(background);
            draw(i);
            for (COLORREF color : canvas_->Pixels().pixels) {
                uSum = (uSum ^ color) * 16777619u;
            }
        }
        EXPECT_EQ(uSum, uExpected) << std::hex << uSum;
    }
    /* The picture of a bitmap, against a figure. */
    void ExpectBitmap(unsigned uExpected, HGDIOBJ hImage, int nWidth = SIDE, int nHeight = SIDE)
    {
        const HGDIOBJ hOld = SelectObject(hSource_, hImage);
        ExpectScenes(uExpected, 1,
                     [&](int) { BitBlt(hDc_, 0, 0, nWidth, nHeight, hSource_, 0, 0, SRCCOPY); });
        SelectObject(hSource_, hOld);
        EXPECT_TRUE(DeleteObject(hImage));
    }
    int Near() { return chance_.From(-12, SIDE + 12); }

    std::optional<Canvas> canvas_, source_;
    HDC hScreen_ = nullptr, hDc_ = nullptr, hSource_ = nullptr;
    Chance chance_;
};

TEST_F(Drawing, ThinLinesInAllDirections)
{
    ExpectScenes(0x1a2aa454, 250, [this](int i) {
        const int nFar = i % 3 ? 0 : 100; /* one in three reaches beyond the surface */
        const int nX = chance_.From(-nFar, SIDE + nFar), nY = chance_.From(-nFar, SIDE + nFar);
        const int nToX = chance_.From(-nFar, SIDE + nFar), nToY = chance_.From(-nFar, SIDE + nFar);
        Line(nX, nY, nToX, nToY);
    });
    Clear();
    Line(1, 1, 5, 1); /* the last pixel is left to the next line */
    LineTo(hDc_, 5, 4);
    Line(8, 3, 8, 3);
    EXPECT_EQ(Rows(5, 10), "..........\n.#####....\n.....#....\n.....#....\n..........\n");
    POINT old = {9, 9};
    EXPECT_TRUE(MoveToEx(hDc_, 2, 3, &old));
    EXPECT_EQ(old.x, 8);
    EXPECT_EQ(old.y, 3);
}

TEST_F(Drawing, DottedLines)
{
    With(CreatePen(PS_DOT, 0, BLACK), [this] {
        Clear();
        Line(0, 0, 14, 0);
        LineTo(hDc_, 30, 0); /* each line begins anew */
        FillBox(hDc_, {0, 2, 30, 5}, RED);
        Rectangle(hDc_, 0, 2, 13, 6); /* a rectangle runs on around its corners */
        SetBkMode(hDc_, OPAQUE);
        Line(12, 4, 28, 4);
        SetBkMode(hDc_, TRANSPARENT);
        EXPECT_EQ(Rows(6, 30), "###...###...#####...###...###.\n"
                               "..............................\n"
                               "#rrr###rrr###rrrrrrrrrrrrrrrrr\n"
                               "#...........rrrrrrrrrrrrrrrrrr\n"
                               "#...........###...###...###.rr\n"
                               "...###...###..................\n");
    });
    With(CreatePen(PS_DOT, 0, RED), [this] {
        ExpectScenes(
            0xa9fe22c8, 80,
            [this](int i) {
                SetBkMode(hDc_, i % 3 ? TRANSPARENT : OPAQUE);
                const int nX = Near(), nY = Near(), nToX = Near(), nToY = Near();
                Line(nX, nY, nToX, nToY);
                const int nLeft = Near(), nTop = Near(), nRight = Near(), nBottom = Near();
                Rectangle(hDc_, nLeft, nTop, nRight, nBottom);
            },
            BLUE);
    });
    SetBkMode(hDc_, TRANSPARENT);
}

TEST_F(Drawing, Rectangles)
{
    Clear();
    Rectangle(hDc_, 1, 1, 2, 2); /* of one pixel: none */
    Rectangle(hDc_, 4, 0, 5, 3);
    Rectangle(hDc_, 6, 0, 8, 2);
    Rectangle(hDc_, 15, 4, 10, 0); /* turned around */
    Rectangle(hDc_, 20, 0, 20, 4);
    FillBox(hDc_, {16, 1, 18, 3}, RED);
    EXPECT_EQ(Rows(4, 21),
              "....#.##..#####......\n....#.##..#...#.rr...\n....#.....#...#.rr...\n..........#####......\n");
    With(CreateSolidBrush(RED), [this] {
        ExpectScenes(0x4933be77, 60, [this](int i) {
            const auto draw = [this] {
                const int nLeft = Near(), nTop = Near(), nRight = Near(), nBottom = Near();
                Rectangle(hDc_, nLeft, nTop, nRight, nBottom);
            };
            With(i % 3 == 0 ? CreatePen(PS_SOLID, 0, GREEN)
                            : GetStockObject(i % 3 == 1 ? BLACK_PEN : NULL_PEN),
                 draw);
            With(GetStockObject(NULL_BRUSH), draw);
        });
    });
}

TEST_F(Drawing, WideFlatLines)
{
    LOGBRUSH brush = {BS_SOLID, 0x323232, 0};
    for (const auto& row : {std::pair(1u, 0xa804ca0au), {2u, 0x376cef09u}, {3u, 0x313a1c6du}}) {
        const auto uWidth = row.first;
        const auto uExpected = row.second;
        With(ExtCreatePen(PS_GEOMETRIC | PS_SOLID | PS_ENDCAP_FLAT, uWidth, &brush, 0, nullptr),
             [this, uExpected, uWidth] {
                 ExpectScenes(uExpected, 40, [this, uWidth](int) {
                     const int nX = Near(), nY = Near(), nToX = Near(), nToY = Near();
                     Line(nX, nY, nToX, nY); /* along the axes, in all four directions */
                     Line(nX, nY, nX, nToY);
                     const int nRight = Near(), nBottom = Near();
                     if (uWidth < 3) { /* the corners of wider ones are round */
                         Rectangle(hDc_, nX, nY, nRight, nBottom);
                     }
                 });
             });
    }
    EXPECT_EQ(ExtCreatePen(PS_COSMETIC, 2, &brush, 0, nullptr), nullptr);
}

TEST_F(Drawing, Pies)
{
    With(CreateSolidBrush(RED), [this] {
        /* Halves and quarters, as the preview takes them; then any. */
        ExpectScenes(0x8d72c700, 150, [this](int i) {
            const int l = chance_.Below(20), t = chance_.Below(20);
            const int r = l + 1 + chance_.Below(SIDE - 20), b = t + 1 + chance_.Below(SIDE - 20);
            const int cx = (l + r) / 2, cy = (t + b) / 2;
            const POINT aRadials[] = {{cx, t}, {cx, b}, {r, cy}, {cx, t}};
            const POINT &from = aRadials[i % 3], &to = aRadials[i % 3 + 1];
            Pie(hDc_, l, t, r, b, from.x, from.y, to.x, to.y);
        });
        ExpectScenes(0x2d90038d, 100, [this](int) {
            const int l = Near(), t = Near(), r = Near(), b = Near();
            const int nX = Near(), nY = Near(), nToX = Near(), nToY = Near();
            Pie(hDc_, l, t, r, b, nX, nY, nToX, nToY);
        });
    });
}

TEST_F(Drawing, BezierCurves)
{
    ExpectScenes(0x5258a146, 200, [this](int i) {
        std::array<POINT, 7> points;
        for (POINT& point : points) {
            point.x = Near();
            point.y = Near();
        }
        if (i % 4 == 0) { /* a line, as an outline's straight parts come */
            points[1] = points[3];
            points[2] = points[0];
        }
        EXPECT_TRUE(PolyBezier(hDc_, points.data(), i % 2 ? 4 : 7));
    });
    const POINT aFew[6] = {};
    EXPECT_FALSE(PolyBezier(hDc_, aFew, 5));
    EXPECT_FALSE(PolyBezier(hDc_, aFew, 3));
}

TEST_F(Drawing, Copies)
{
    ExpectScenes(
        0x629525a8, 80,
        [this](int) {
            const int nX = Near(), nY = Near(), nWidth = chance_.From(-SIDE, SIDE),
                      nHeight = chance_.From(-SIDE, SIDE);
            const int nFromX = Near(), nFromY = Near();
            BitBlt(hDc_, nX, nY, nWidth, nHeight, hSource_, nFromX, nFromY, SRCCOPY);
        },
        RED);
    /* Onto itself: as if all had been read before. */
    ExpectScenes(0xbf02c804, 40, [this](int) {
        BitBlt(hDc_, 0, 0, SIDE, SIDE, hSource_, 0, 0, SRCCOPY);
        const int nX = chance_.Below(20), nY = chance_.Below(20);
        const int nFromX = chance_.Below(20), nFromY = chance_.Below(20);
        BitBlt(hDc_, nX, nY, 25, 25, hDc_, nFromX, nFromY, SRCCOPY);
    });
    /* Turned by 180 degrees, as the preview's sheet. */
    ExpectScenes(0x56ed27d5, 1, [this](int) {
        EXPECT_TRUE(StretchBlt(hDc_, 39, 29, -35, -25, hSource_, 0, 0, 35, 25, SRCCOPY));
    });
}

TEST_F(Drawing, Stretching)
{
    const auto draw = [this](int nWidth, int nHeight) {
        const int nFromX = chance_.Below(24), nFromY = chance_.Below(24);
        const int nFromWidth = chance_.From(1, 24), nFromHeight = chance_.From(1, 24);
        const int nX = chance_.From(-10, 24), nY = chance_.From(-10, 24);
        const int nMirror = chance_.Below(4);
        StretchBlt(hDc_, nX + (nMirror & 1 ? nWidth - 1 : 0), nY + (nMirror & 2 ? nHeight - 1 : 0),
                   nMirror & 1 ? -nWidth : nWidth, nMirror & 2 ? -nHeight : nHeight, hSource_, nFromX, nFromY,
                   nFromWidth, nFromHeight, SRCCOPY);
    };
    ExpectScenes(
        0x60fd1abb, 100, [&](int) { draw(chance_.From(24, 60), chance_.From(24, 60)); }, RED);
    /* Dark pixels that fall together stay dark, by each of the three colours. */
    ExpectScenes(
        0xb1b7ac2a, 100, [&](int) { draw(chance_.From(2, 30), chance_.From(2, 30)); }, RED);
    EXPECT_FALSE(BitBlt(hDc_, 0, 0, 5, 5, nullptr, 0, 0, SRCCOPY));
}

struct Info {
    BITMAPINFOHEADER header;
    std::array<BYTE, 1024> rest; /* colours or masks */
    const BITMAPINFO* Get() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

TEST_F(Drawing, RowsOfEachForm)
{
    constexpr struct {
        WORD usBits;
        DWORD aMasks[3];
        DWORD dwUsed;
        unsigned uExpected;
    } aRows[] = {{1, {}, 0, 0x5ccdd77b},
                 {4, {}, 0, 0x654220cd},
                 {4, {}, 5, 0x3db68c02}, /* colours behind the table are black */
                 {8, {}, 0, 0x87b29588},
                 {8, {}, 100, 0xd2205349},
                 {16, {}, 0, 0xbb932784},
                 {16, {0xF800, 0x07E0, 0x001F}, 0, 0xc11a6255},
                 {16, {0x0F00, 0x00F0, 0x000F}, 0, 0xf6a4116c},
                 {24, {}, 0, 0x9422f6a8},
                 {32, {}, 0, 0xcd13d16f},
                 {32, {0x0000FF, 0x00FF00, 0xFF0000}, 0, 0xb1b1004f},
                 {32, {0x3FF00000, 0x000FFC00, 0x000003FF}, 0, 0x7a45b2e6}};
    const auto fill = [this](auto* pBytes) {
        for (BYTE& b : *pBytes) {
            b = static_cast<BYTE>(chance_.Below(256));
        }
    };
    for (const auto& row : aRows) {
        Info info{};
        fill(&info.rest);
        info.header.biSize = sizeof info.header;
        info.header.biWidth = 37;
        info.header.biHeight = 21;
        info.header.biPlanes = 1;
        info.header.biBitCount = row.usBits;
        info.header.biClrUsed = row.dwUsed;
        if (row.aMasks[0]) {
            info.header.biCompression = BI_BITFIELDS;
            std::memcpy(info.rest.data(), row.aMasks, sizeof row.aMasks);
        }
        std::vector<BYTE> line(static_cast<size_t>((row.usBits * 37 + 31) / 32 * 4));
        const HBITMAP hImage = CreateDIBitmap(hScreen_, &info.header, 0, nullptr, nullptr, DIB_RGB_COLORS);
        BITMAP size;
        ASSERT_EQ(GetObjectW(hImage, sizeof size, &size), static_cast<int>(sizeof size));
        EXPECT_EQ(std::pair(size.bmWidth, size.bmHeight), (std::pair<LONG, LONG>(37, 21)));
        for (UINT y = 0; y < 21; y++) {
            fill(&line);
            EXPECT_EQ(SetDIBits(hDc_, hImage, y, 1, line.data(), info.Get(), DIB_RGB_COLORS), 1);
        }
        EXPECT_EQ(SetDIBits(hDc_, hImage, 21, 1, line.data(), info.Get(), DIB_RGB_COLORS), 0);
        ExpectBitmap(row.uExpected, hImage, 37, 21);
    }
}

TEST_F(Drawing, PicturesOfTheLibraries)
{
    for (const char* cLibrary : {"TXT.DLL", "ENUS.DLL"}) {
        const HMODULE hLibrary =
            LoadLibraryExW(BuiltFile(cLibrary).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(hLibrary, nullptr);
        for (const auto& [wcName, uExpected] : {std::pair(TEXT("DUPLONG"), 0xf8be0739),
                                                {TEXT("DUPSHORT"), 0x914aef60},
                                                {TEXT("DUPSIMPLE"), 0x62bc038f},
                                                {TEXT("LogoBitmap"), 0x59d5019d}}) {
            ExpectBitmap(uExpected, LoadImageW(hLibrary, wcName, IMAGE_BITMAP, 0, 0,
                                               LR_LOADTRANSPARENT | LR_LOADMAP3DCOLORS));
        }
        EXPECT_EQ(LoadImageW(hLibrary, TEXT("NONE"), IMAGE_BITMAP, 0, 0, 0), nullptr);
        EXPECT_TRUE(FreeLibrary(hLibrary));
    }
}

TEST_F(Drawing, MonochromeBitmaps)
{
    const HDC hFresh = CreateCompatibleDC(nullptr);
    const HBITMAP hMono =
        CreateCompatibleBitmap(hFresh, SIDE, SIDE); /* as a context in memory is before it has a bitmap */
    BITMAP size;
    ASSERT_EQ(GetObjectW(hMono, sizeof size, &size), static_cast<int>(sizeof size));
    EXPECT_EQ(size.bmBitsPixel, 1);
    EXPECT_EQ(size.bmWidthBytes, SIDE / 8);
    SelectObject(hFresh, hMono);
    FillBox(hFresh, {0, 0, SIDE, SIDE}, WHITE);
    FillBox(hFresh, {2, 1, 5, 3}, BLACK);
    EXPECT_TRUE(BitBlt(hDc_, 0, 0, 8, 4, hFresh, 0, 0, SRCCOPY));
    EXPECT_EQ(Rows(4, 8), "........\n..###...\n..###...\n........\n");
    FillBox(hDc_, {0, 0, 3, 3}, RED);
    EXPECT_TRUE(BitBlt(hFresh, 0, 0, 8, 4, hDc_, 0, 0, SRCCOPY));
    EXPECT_EQ(GetPixel(hFresh, 0, 0), BLACK);
    EXPECT_EQ(GetPixel(hFresh, 7, 0), WHITE);
    EXPECT_TRUE(DeleteDC(hFresh));
    EXPECT_TRUE(DeleteObject(hMono));
}

TEST_F(Drawing, ObjectsAndContexts)
{
    const HDC hOther = CreateCompatibleDC(hDc_);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen_, SIDE, SIDE);
    const HGDIOBJ hOld = SelectObject(hSource_, hBitmap);
    EXPECT_EQ(SelectObject(hOther, hBitmap), nullptr) << "a bitmap is in one context at a time";
    EXPECT_EQ(SelectObject(hSource_, hOld), hBitmap);
    EXPECT_EQ(SelectObject(hScreen_, hBitmap), nullptr);
    EXPECT_EQ(SelectObject(hOther, nullptr), nullptr);
    EXPECT_EQ(SelectObject(nullptr, GetStockObject(BLACK_PEN)), nullptr);
    const HPEN hPen = CreatePen(PS_SOLID, 0, RED);
    EXPECT_EQ(SelectObject(hOther, hPen), GetStockObject(BLACK_PEN));
    EXPECT_EQ(SelectObject(hOther, GetStockObject(NULL_PEN)), hPen);
    EXPECT_EQ(SelectObject(hOther, GetStockObject(WHITE_BRUSH)), GetStockObject(WHITE_BRUSH));
    EXPECT_TRUE(DeleteObject(hPen));
    EXPECT_EQ(SelectObject(hOther, hPen), nullptr) << "it is gone";
    EXPECT_FALSE(DeleteObject(hPen) || DeleteObject(nullptr));
    EXPECT_TRUE(DeleteObject(GetStockObject(WHITE_BRUSH)));
    EXPECT_TRUE(DeleteObject(GetSysColorBrush(COLOR_BTNFACE)));
    EXPECT_EQ(SetBkMode(hOther, TRANSPARENT), OPAQUE);
    EXPECT_EQ(SetBkMode(hOther, 3), 0);
    EXPECT_EQ(GetMapMode(hOther), MM_TEXT);
    EXPECT_EQ(SetMapMode(hOther, 0), 0);
    EXPECT_EQ(SetMapMode(hOther, MM_TEXT), MM_TEXT);
    POINT point = {7, -5};
    EXPECT_TRUE(DPtoLP(hOther, &point, 1));
    EXPECT_EQ(point.y, -5);
    EXPECT_TRUE(DeleteDC(hOther));
    EXPECT_FALSE(DeleteDC(hOther));
    EXPECT_EQ(CreateCompatibleDC(hOther), nullptr);
    EXPECT_EQ(CreateCompatibleBitmap(nullptr, 5, 5), nullptr);

    BITMAP bitmap;
    EXPECT_EQ(GetObjectW(hBitmap, sizeof bitmap - 1, &bitmap), 0);
    EXPECT_EQ(GetObjectW(hBitmap, sizeof bitmap, &bitmap), static_cast<int>(sizeof bitmap));
    EXPECT_EQ(bitmap.bmWidth, SIDE);
    EXPECT_EQ(bitmap.bmBitsPixel, 32);
    EXPECT_EQ(bitmap.bmWidthBytes, 4 * SIDE);
    EXPECT_TRUE(DeleteObject(hBitmap));
    LOGFONTW font;
    EXPECT_EQ(GetObjectW(GetStockObject(SYSTEM_FONT), sizeof font, &font), static_cast<int>(sizeof font));
    EXPECT_EQ(Ascii(font.lfFaceName), "System");
    EXPECT_EQ(GetObjectW(nullptr, sizeof font, &font), 0);
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), 0xF5F5F5u);
}

} // namespace
