/* Text watermarks of the picture: the numbers behind turned text, contours of letters from outlines sound and broken. */
#include <map>
#include <random>
#include <tuple>

#include "fuzz/preview_inputs.h"
#include "preview/outline_text.h"
#include "support/data_file.h"

namespace {

FIXED Fixed(double d)
{
    const auto raw = static_cast<u32>(static_cast<i32>(d * 65536));
    return {static_cast<WORD>(raw), static_cast<i16>(raw >> 16)};
}

POINTFX At(double x, double y)
{
    return {Fixed(x), Fixed(y)};
}

/* An outline under construction. */
struct Outline {
    std::vector<u8> bytes;
    size_t nPolygon = 0;

    template <class T> void Put(const T& value)
    {
        const auto* p = reinterpret_cast<const u8*>(&value);
        bytes.insert(bytes.end(), p, p + sizeof value);
    }
    template <class T> void Poke(size_t nAt, T value)
    {
        std::memcpy(bytes.data() + nAt, &value, sizeof value);
    }
    Outline& Polygon(POINTFX start)
    {
        nPolygon = bytes.size();
        Put(TTPOLYGONHEADER{16, TT_POLYGON_TYPE, start});
        return *this;
    }
    Outline& Record(WORD wType, const std::vector<POINTFX>& points)
    {
        Put(wType);
        Put(static_cast<WORD>(points.size()));
        for (const POINTFX& point : points) {
            Put(point);
        }
        Poke(nPolygon, static_cast<DWORD>(bytes.size() - nPolygon));
        return *this;
    }
};

using Contour = std::vector<std::pair<int, int>>;

/* All contours of an outline, y upwards again. */
std::vector<Contour> ContoursOf(const Outline& outline, POINT origin = {})
{
    std::vector<Contour> contours;
    for (const std::vector<POINT>& points :
         TryOutline(outline.bytes.data(), static_cast<u32>(outline.bytes.size()), origin)) {
        contours.emplace_back();
        for (const POINT& point : points) {
            contours.back().emplace_back(point.x - origin.x, origin.y - point.y);
        }
    }
    return contours;
}

TEST(OutlineText, SinesComeFromATableOfWholeDegrees)
{
    for (const auto& [lAngle, lSine] : std::map<i32, i32>{{0, 0},
                                                          {450, 7071},
                                                          {455, 7132},
                                                          {899, 9999},
                                                          {900, 10000},
                                                          {1799, 17},
                                                          {1800, 0},
                                                          {1805, -87},
                                                          {2255, -7132},
                                                          {2700, -10000},
                                                          {3585, -262},
                                                          {3599, -17},
                                                          {3600, 0},
                                                          {-450, -7071},
                                                          {4050, 7071},
                                                          {-3600, 0},
                                                          {300, 5000}}) {
        EXPECT_EQ(SineTenths(lAngle), lSine) << lAngle;
    }
    for (const auto& [lAngle, lCosine] :
         std::map<i32, i32>{{0, 10000}, {1795, -9999}, {2700, 0}, {2701, 17}, {3000, 5000}, {3600, 10000}}) {
        EXPECT_EQ(CosineTenths(lAngle), lCosine) << lAngle;
    }
    for (const i32 lExtreme : {INT32_MIN, INT32_MAX}) {
        EXPECT_LE(std::abs(SineTenths(lExtreme)), 10000);
        EXPECT_LE(std::abs(CosineTenths(lExtreme)), 10000);
    }
}

TEST(OutlineText, PointsTurnAroundTheOriginAndAreCut)
{
    for (const auto& [point, nAngle, wanted] : {std::tuple(POINT{100, 0}, 450, POINT{70, 70}),
                                                {{-50, -7}, 450, {-30, -40}},
                                                {{-50, -7}, 3150, {-40, 30}},
                                                {{1, 1}, 450, {0, 1}}}) {
        POINT turned;
        RotatePoint(point, &turned, nAngle);
        EXPECT_TRUE(turned.x == wanted.x && turned.y == wanted.y)
            << point.x << "," << point.y << " by " << nAngle;
    }
}

TEST(OutlineText, HalvesOfAPixelGoUp)
{
    for (const auto& [value, nRounded] : {std::pair(Fixed(-0.5), 0),
                                          {Fixed(-1.5), -1},
                                          {Fixed(2.5), 3},
                                          {{0x7FFF, -1}, -1},
                                          {{0x7FFF, 0}, 0},
                                          {{0x8000, 0}, 1},
                                          {{0xFFFF, 32767}, 32768},
                                          {{0, -32768}, -32768}}) {
        EXPECT_EQ(RoundFixed(value), nRounded) << value.value << " " << value.fract;
    }
}

TEST(OutlineText, EachContourIsOneChainOfCubics)
{
    /* Lines, with the closing one; then a contour that ends where it began. */
    Outline lines;
    lines.Polygon(At(0.5, -0.5)).Record(TT_PRIM_LINE, {At(3.49, 2.5), At(-4.5, -2.51)});
    lines.Polygon(At(0, 0)).Record(TT_PRIM_LINE, {At(0, 9), At(0.4, 0.4)});
    EXPECT_EQ(ContoursOf(lines),
              (std::vector<Contour>{
                  {{1, 0}, {3, 3}, {1, 0}, {3, 3}, {-4, -3}, {3, 3}, {-4, -3}, {1, 0}, {-4, -3}, {1, 0}},
                  {{0, 0}, {0, 9}, {0, 0}, {0, 9}, {0, 0}, {0, 9}, {0, 0}}}));

    /* Quadratics: two points one cubic, three points two; one point adds nothing but is where the next record starts. */
    Outline one, two, rounding, cutting, single;
    one.Polygon(At(0, 0)).Record(TT_PRIM_QSPLINE, {At(10, 20), At(30, 0)});
    EXPECT_EQ(ContoursOf(one)[0], (Contour{{0, 0}, {6, 13}, {16, 14}, {30, 0}, {0, 0}, {30, 0}, {0, 0}}));
    two.Polygon(At(0, 0)).Record(TT_PRIM_QSPLINE, {At(0, 10), At(11, 10), At(11, 0)});
    EXPECT_EQ(
        ContoursOf(two)[0],
        (Contour{{0, 0}, {0, 6}, {2, 10}, {6, 10}, {9, 10}, {11, 7}, {11, 0}, {0, 0}, {11, 0}, {0, 0}}));
    rounding.Polygon(At(0.6, 0)).Record(TT_PRIM_QSPLINE, {At(2.4, 0), At(4.5, 0)});
    EXPECT_EQ(ContoursOf(rounding)[0], (Contour{{1, 0}, {1, 0}, {3, 0}, {5, 0}, {1, 0}, {5, 0}, {1, 0}}));
    cutting.Polygon(At(0, 0)).Record(TT_PRIM_QSPLINE, {At(0, 0), At(-4, 0)});
    EXPECT_EQ(ContoursOf(cutting)[0], (Contour{{0, 0}, {0, 0}, {-1, 0}, {-4, 0}, {0, 0}, {-4, 0}, {0, 0}}));
    single.Polygon(At(0, 0))
        .Record(TT_PRIM_QSPLINE, {At(5, 5)})
        .Record(3, {At(7, 7)})
        .Record(TT_PRIM_LINE, {})
        .Record(TT_PRIM_LINE, {At(9, 9)});
    EXPECT_EQ(ContoursOf(single)[0], (Contour{{0, 0}, {9, 9}, {7, 7}, {9, 9}, {0, 0}, {9, 9}, {0, 0}}));

    /* A chain whose midpoints leave 32 bits when they are added. */
    Outline far;
    far.Polygon(At(0, 0)).Record(TT_PRIM_QSPLINE, {At(32767, -32768), At(32767, -32768), At(0, 0)});
    EXPECT_EQ(ContoursOf(far)[0][3], (std::pair{32767, -32767})); /* on the screen no further than that */
}

TEST(OutlineText, BrokenOutlinesEndTheLetter)
{
    Outline sound;
    sound.Polygon(At(0, 0)).Record(TT_PRIM_LINE, {At(8, 0), At(8, 8)});
    sound.Polygon(At(2, 2)).Record(TT_PRIM_QSPLINE, {At(4, 2), At(4, 4)}).Record(TT_PRIM_LINE, {At(2, 4)});
    const size_t nSecond = 16 + 4 + 16;
    ASSERT_EQ(ContoursOf(sound).size(), 2u);

    const auto expectFirstAlone = [&](size_t nAt, auto value, const char* cWhat) {
        Outline broken = sound;
        broken.Poke(nAt, value);
        EXPECT_EQ(ContoursOf(broken), std::vector<Contour>{ContoursOf(sound)[0]}) << cWhat;
    };
    for (const DWORD cb : {0u, 1u, 15u, 18u, 57u, 1000u, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFF0u}) {
        expectFirstAlone(nSecond, cb, "length of a polygon");
    }
    expectFirstAlone(nSecond + 4, DWORD{23}, "type of a polygon");
    for (const WORD nPoints : {WORD{3}, WORD{100}, WORD{0xFFFF}}) {
        expectFirstAlone(nSecond + 16 + 2, nPoints, "points of a record");
    }
    expectFirstAlone(nSecond, DWORD{16 + 20 + 12 + 2}, "a record's head cut off");

    /* Cut anywhere, and with any byte changed: no step beyond (the sanitizers watch), and what is whole stays. */
    for (size_t n = 0; n < sound.bytes.size(); n++) {
        Outline cut = sound;
        cut.bytes.resize(n);
        EXPECT_EQ(ContoursOf(cut).size(), n < nSecond ? 0u : 1u) << n;
    }
    std::mt19937 random(1);
    for (int i = 0; i < 20000; i++) {
        Outline changed = sound;
        for (int k = 0; k < 3; k++) {
            changed.bytes[random() % changed.bytes.size()] = static_cast<u8>(random());
        }
        ContoursOf(changed, {INT32_MAX, INT32_MIN});
    }
}

TEST(OutlineText, TextStartsCentredOnItsCell)
{
    for (const DataRow& row : ReadRows("preview_text_starts.txt")) {
        const auto n = ToNumbers<i32>(row[0] + " " + row[1] + " " + row[2]);
        WatermarkEntry entry = {};
        entry.WMType = ENTRY_TEXT;
        entry.WMAngle = static_cast<u16>(n[0]);
        entry.WMSize = static_cast<i16>(n[1]);
        entry.WMItalic = static_cast<u32>(n[2]);
        entry.WMPositionX = n[3];
        entry.WMPositionY = n[4];
        entry.WMPlacement = 9; /* plays no part */
        const RECT rCell = {n[7], n[8], n[9], n[10]};
        const POINT outline = StartOfOutline(entry, {n[5], n[6]}, rCell),
                    solid = StartOfSolid(entry, n[6], rCell);
        EXPECT_EQ((std::vector<i32>{outline.x, outline.y, solid.x, solid.y}), ToNumbers<i32>(row[3]))
            << row[0];
    }
}

} // namespace
