/* Geometry of the preview: pictures that were worked out by hand, and an account of its own of shapes, grids and page
   walks for everything else. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>

#include "preview/preview_geometry.h"
#include "support/both_builds.h"

namespace {

using Corners = std::vector<i32>;

Corners CornersOf(const RECT& rect)
{
    return {rect.left, rect.top, rect.right, rect.bottom};
}

std::string Text(const RECT& rect)
{
    return std::to_string(rect.left) + "," + std::to_string(rect.top) + "," + std::to_string(rect.right) +
           "," + std::to_string(rect.bottom);
}

std::string LabelsOf(const LayoutRow& row, i16 sOrder)
{
    std::string labels;
    for (int i = 0; i < row.nColumns * row.nRows; i++) {
        labels += (i ? " " : "") + Ascii(LabelOfCell(row, sOrder, i).wcText);
    }
    return labels;
}

PreviewDevice Device(i32 lMaxWidth, i32 lMaxLength)
{
    PreviewDevice device = {};
    device.lMaxWidth = lMaxWidth;
    device.lMaxLength = lMaxLength;
    device.lDefaultWidth = 21000;
    device.lDefaultLength = 29700;
    return device;
}

PreviewRequest Request(i32 lWidth, i32 lLength, u16 sOrientation, i16 sLayout, i16 sOrder = 0,
                       i32 bBorders = 0)
{
    PreviewRequest request = {};
    request.lPageWidth = lWidth;
    request.lPageLength = lLength;
    request.sOrientation = sOrientation;
    request.sLayout = sLayout;
    request.sPageOrder = sOrder;
    request.bBorders = bBorders;
    request.bDeviceExtent = 1;
    return request;
}

std::string GridText(const LayoutRow& row)
{
    return std::to_string(row.nIndex) + ": " + std::to_string(row.nColumns) + "x" +
           std::to_string(row.nRows) + " gap " + std::to_string(row.nGap);
}

/* What is expected stands in one line: sheet, zoom, page, grid, steps, first and last cell, labels. */
struct Picture {
    const char* name;
    PreviewRequest request;
    const char* expected;
    RECT rFrame = {12, 20, 172, 180};
    i32 lMaxWidth = 3200, lMaxLength = 4318;
};

std::vector<Picture> Pictures()
{
    std::vector<Picture> all = {
        {"A4", Request(21000, 29700, 1, 1),
         "45,46,139,180 100% 0,0,94,134 -1: 1x1 gap 0 94 134 0,0,94,134 .. 0,0,94,134 | "},
        {"A4 landscape of a record, 2-up", Request(21000, 29700, 2, 2, 0, 1),
         "45,46,139,180 100% 0,0,94,134 0: 1x2 gap 3 94 67 3,3,91,65 .. 3,70,91,131 | 1 2"},
        {"A4 landscape of a page, 2-up", Request(21000, 29700, 0, 2, 1, 1),
         "25,86,159,180 100% 0,0,134,94 0: 1x2 gap 3 134 47 3,3,131,45 .. 3,50,131,91 | 2 1"},
        {"Legal 16-up",
         Request(21590, 35560, 1, 16, 18),
         "37,70,127,221 100% 0,0,90,151 9: 4x4 gap 0 22 37 0,0,23,38 .. 66,111,89,149 | "
         "13 9 5 1 14 10 6 2 15 11 7 3 16 12 8 4",
         {7, 9, 158, 221}},
        {"A5 enlarged", Request(14800, 21000, 1, 1),
         "58,84,126,180 150% -17,-24,85,120 -1: 1x1 gap 0 68 96 0,0,68,96 .. 0,0,68,96 | "},
        {"wide paper, 6-up", Request(30000, 20000, 0, 6, 3, 1),
         "17,80,167,180 100% 0,0,150,100 2: 3x2 gap 3 50 50 3,3,48,48 .. 103,53,147,97 | 6 5 4 3 2 1"},
        {"poster",
         Request(21000, 29700, 1, 1),
         "61,62,179,230 100% 0,0,118,168 -1: 1x1 gap 0 118 168 0,0,118,168 .. 0,0,118,168 | ",
         {20, 30, 220, 230}},
        {"Letter fitted on A4", Request(21590, 27940, 1, 1),
         "45,46,139,180 97% 0,0,93,122 -1: 1x1 gap 0 93 134 0,0,94,123 .. 0,0,94,123 | "},
        {"Legal on a smaller printer",
         Request(21590, 35560, 1, 1),
         "35,-10,149,180 100% 0,0,114,190 -1: 1x1 gap 0 114 190 0,0,114,190 .. 0,0,114,190 | ",
         {12, 20, 172, 180},
         2100,
         2970},
        {"editor",
         Request(21000, 29700, 1, 0),
         "67,14,173,165 100% 0,0,106,151 -1: 1x1 gap 0 106 151 0,0,106,151 .. 0,0,106,151 | ",
         {10, 14, 231, 165}},
        {"A4 4-up", Request(21000, 29700, 1, 4, 3),
         "45,46,139,180 100% 0,0,94,134 1: 2x2 gap 0 47 67 0,0,48,68 .. 47,67,94,134 | 4 3 2 1"},
        {"A4 in a tiny frame",
         Request(21000, 29700, 1, 1),
         "10,6,38,48 100% 0,0,28,42 -1: 1x1 gap 0 28 42 0,0,28,42 .. 0,0,28,42 | ",
         {0, 0, 48, 48}},
    };
    all[4].request.sZoom = 150;
    all[7].request.lTargetWidth = 21000;
    all[7].request.lTargetLength = 29700;
    all[7].request.bFitZoom = all[7].request.bNotCentered = 1;
    all[9].request.bDeviceExtent = 0;
    return all;
}

TEST(Geometry, GivesThePicturesWorkedOutByHand)
{
    for (Picture& each : Pictures()) {
        PreviewGeometry found;
        ASSERT_TRUE(
            ArrangePreview(Device(each.lMaxWidth, each.lMaxLength), each.rFrame, &each.request, &found));
        std::ostringstream text;
        text << Text(found.rSheet) << " " << each.request.sZoom << "% " << Text(found.rPage) << " "
             << GridText(found.row) << " " << found.nColumnStep << " " << found.nRowStep << " "
             << Text(RectOfCell(found, 0)) << " .. "
             << Text(RectOfCell(found, found.row.nColumns * found.row.nRows - 1)) << " | "
             << LabelsOf(found.row, each.request.sPageOrder);
        EXPECT_EQ(text.str(), each.expected) << each.name;
        EXPECT_EQ(found.nWidth, found.rSheet.right - found.rSheet.left);
        EXPECT_EQ(found.nHeight, found.rSheet.bottom - found.rSheet.top);
    }
}

/* ---- an account of its own of what the tables say ---- */

constexpr i16 asLayouts[] = {0, 1, 2, 4, 6, 8, 9, 12, 16, 25, 99, 3};
constexpr i16 asOrders[] = {0, 1, 2, 3, 16, 17, 18, 19, -1, 4, 15, 20};

/* Upright or flat, a letter for each layout in the order above. */
const char* ShapesOf(bool bWide, u16 sOrientation)
{
    static constexpr char SQUARES_STAND[] = "UUFUFFUFUUFF", OTHERS_STAND[] = "FFUFUUFUFFUF";
    if (bWide) {
        return sOrientation == 1 ? OTHERS_STAND : SQUARES_STAND;
    }
    return sOrientation == 0 ? "FFFFFFFFFFUF" : sOrientation == 1 ? SQUARES_STAND : OTHERS_STAND;
}

/* Index, columns, rows, gap: read upright, and otherwise. */
const char* const acGrids[][2] = {
    {"-1: 1x1 gap 0", "-1: 1x1 gap 0"}, {"-1: 1x1 gap 0", "-1: 1x1 gap 0"},
    {"0: 2x1 gap 3", "0: 1x2 gap 3"},   {"1: 2x2 gap 3", "1: 2x2 gap 3"},
    {"2: 3x2 gap 3", "3: 2x3 gap 3"},   {"4: 4x2 gap 2", "5: 2x4 gap 2"},
    {"6: 3x3 gap 2", "6: 3x3 gap 2"},   {"7: 4x3 gap 2", "8: 3x4 gap 2"},
    {"9: 4x4 gap 2", "9: 4x4 gap 2"},   {"10: 5x5 gap 2", "10: 5x5 gap 2"},
    {"11: 2x1 gap 0", "11: 1x2 gap 0"}, {"-1: 1x1 gap 0", "-1: 1x1 gap 0"},
};

/* Walks over the cells as the pages are laid down and counts them. */
std::string WalkedLabels(i16 sLayout, int nColumns, int nRows, i16 sOrder)
{
    std::vector<std::string> cells(static_cast<size_t>(nColumns * nRows));
    const bool bKnown = (sOrder >= 0 && sOrder <= 3) || (sOrder >= 16 && sOrder <= 19);
    int nPage = 0;
    const auto Lay = [&](int nRow, int nColumn) {
        cells[static_cast<size_t>(nRow * nColumns + nColumn)] = std::to_string(++nPage);
    };
    const bool bUp = sOrder % 2 == 1, bLeft = sOrder % 4 >= 2;
    if (sLayout == 2 || sLayout == 99) {
        if (sOrder == 0 || sOrder == 1) {
            cells = {sLayout == 2 ? "1" : "A", sLayout == 2 ? "2" : "B"};
            if (sOrder == 1) {
                std::reverse(cells.begin(), cells.end());
            }
        }
    } else if (bKnown && cells.size() > 1) {
        for (int nOuter = 0; nOuter < (sOrder < 16 ? nRows : nColumns); nOuter++) {
            for (int nInner = 0; nInner < (sOrder < 16 ? nColumns : nRows); nInner++) {
                const int nRow = sOrder < 16 ? nOuter : nInner, nColumn = sOrder < 16 ? nInner : nOuter;
                Lay(bUp ? nRows - 1 - nRow : nRow, bLeft ? nColumns - 1 - nColumn : nColumn);
            }
        }
    }
    std::string text;
    for (size_t i = 0; i < cells.size(); i++) {
        text += (i ? " " : "") + cells[i];
    }
    return text;
}

/* The sheet has the paper's proportions and its share of the device's longest paper, and stands in the middle of the
   frame's bottom edge; all within what is lost to whole pixels. */
void ExpectSheet(const RECT& rFrame, const PreviewRequest& request, bool bUpright,
                 const PreviewGeometry& found)
{
    const double dWidth = request.lTargetWidth, dLength = request.lTargetLength;
    const double dLong = std::max(dWidth, dLength), dShort = std::min(dWidth, dLength);
    const double dSide = std::min(rFrame.right - rFrame.left, rFrame.bottom - rFrame.top) * dLong / 35560;
    EXPECT_NEAR(bUpright ? found.nHeight : found.nWidth, dSide, 3);
    EXPECT_NEAR(bUpright ? found.nWidth : found.nHeight, dSide * dShort / dLong, 5);
    EXPECT_NEAR(found.rSheet.left - rFrame.left, rFrame.right - found.rSheet.right, 2);
    EXPECT_EQ(found.rSheet.bottom, rFrame.bottom);
}

/* Cells lie on the sheet in rows and columns, none over another by more than the line that they share, and none so
   small that the sheet would not be covered. */
void ExpectCells(const PreviewGeometry& found)
{
    const LayoutRow& row = found.row;
    i64 llArea = 0;
    for (int i = 0; i < row.nColumns * row.nRows; i++) {
        const RECT cell = RectOfCell(found, i);
        EXPECT_TRUE(cell.left >= 0 && cell.top >= 0 && cell.right <= found.nWidth &&
                    cell.bottom <= found.nHeight);
        EXPECT_TRUE(cell.left < cell.right && cell.top < cell.bottom);
        if (i % row.nColumns) {
            const RECT left = RectOfCell(found, i - 1);
            EXPECT_TRUE(left.top == cell.top && left.right <= cell.left + 1 && left.left < cell.left);
        }
        if (i >= row.nColumns) {
            const RECT above = RectOfCell(found, i - row.nColumns);
            EXPECT_TRUE(above.left == cell.left && above.bottom <= cell.top + 1 && above.top < cell.top);
        }
        llArea += static_cast<i64>(cell.right - cell.left + 2 * row.nGap + row.nColumns) *
                  (cell.bottom - cell.top + 2 * row.nGap + row.nRows);
    }
    EXPECT_GE(llArea, static_cast<i64>(found.nWidth) * found.nHeight);
    for (int nOutside : {-1, row.nColumns * row.nRows}) {
        EXPECT_EQ(CornersOf(RectOfCell(found, nOutside)), Corners(4, 0));
        EXPECT_EQ(Ascii(LabelOfCell(row, 0, nOutside).wcText), "");
    }
}

TEST(Geometry, AgreesWithTheTablesForEveryLayoutOrderAndOrientation)
{
    const i32 alPapers[][2] = {{21000, 29700}, {20000, 20000}, {30000, 20000}, {42000, 59400}, {9000, 14000}};
    const RECT arFrames[] = {{12, 20, 172, 180}, {-300, -90, -79, 61}, {7, 9, 158, 221}};
    for (const auto& [lWidth, lLength] : alPapers) {
        for (u16 sOrientation = 0; sOrientation <= 2; sOrientation++) {
            const bool bWide = lWidth > lLength;
            const u16 sRead = !bWide ? sOrientation : sOrientation == 1 ? u16{2} : u16{1};
            for (size_t i = 0; i < std::size(asLayouts); i++) {
                for (int bBorders : {0, 1}) {
                    for (const RECT& rFrame : arFrames) {
                        SCOPED_TRACE(testing::Message()
                                     << lWidth << " x " << lLength << " orientation " << sOrientation
                                     << " layout " << asLayouts[i] << " borders " << bBorders);
                        PreviewRequest request =
                            Request(lWidth, lLength, sOrientation, asLayouts[i], 0, bBorders);
                        PreviewGeometry found;
                        ASSERT_TRUE(ArrangePreview(Device(3556, 3556), rFrame, &request, &found));
                        std::string grid = acGrids[i][sRead == 1 ? 0 : 1];
                        grid.back() = bBorders ? grid.back() : '0';
                        EXPECT_EQ(GridText(found.row), grid);
                        ExpectSheet(rFrame, request, ShapesOf(bWide, sOrientation)[i] == 'U', found);
                        ExpectCells(found);
                        for (i16 sOrder : asOrders) {
                            EXPECT_EQ(LabelsOf(found.row, sOrder),
                                      WalkedLabels(asLayouts[i], found.row.nColumns, found.row.nRows, sOrder))
                                << sOrder;
                        }
                    }
                }
            }
        }
    }
}

TEST(Geometry, CentresAFlatSheetWhereAsked)
{
    struct Case {
        i32 bCenterInFrame, bDeviceExtent;
        Corners sheet;
    };
    for (const Case& each : {Case{1, 0, {0, 65, 100, 135}}, Case{1, 1, {8, 70, 92, 130}},
                             Case{0, 0, {0, 130, 100, 200}}, Case{0, 1, {8, 140, 92, 200}}}) {
        PreviewRequest request = Request(21000, 29700, 0, 1);
        request.bCenterInFrame = each.bCenterInFrame;
        request.bDeviceExtent = each.bDeviceExtent;
        PreviewGeometry found;
        ASSERT_TRUE(ArrangePreview(Device(3200, 4318), {0, 0, 100, 200}, &request, &found));
        EXPECT_EQ(CornersOf(found.rSheet), each.sheet);
    }
    RECT rect = {0, 0, 100, 100};
    EXPECT_EQ(FitSheetRect(Device(0, 0), &rect, 0, 29700, Request(0, 0, 7, 1)), 0)
        << "a paper without a size, on a device without papers";
    EXPECT_EQ(CornersOf(rect), (Corners{0, 30, 100, 100}));
}

TEST(Geometry, SettlesSizesAndZoom)
{
    struct Case {
        i32 lPageWidth, lPageLength, lTargetWidth, lTargetLength;
        i16 sZoom;
        i32 bFitZoom;
        Corners settled; /* page, target */
        i16 sSettledZoom;
    };
    const Case aCases[] = {
        {50000, 70000, 0, 29700, 0, 0, {25400, 35560, 25400, 35560}, 100},
        {42000, 59400, 42000, 59400, 70, 1, {25143, 35560, 25143, 35560}, 70},
        {21000, 29700, 71120, 35561, 80, 0, {10499, 14849, 35560, 17780}, 80},
        {21000, 29700, 21000, 29700, 70, 1, {21000, 29700, 21000, 29700}, 70},
        {21590, 27940, 21000, 29700, 33, 1, {21590, 27940, 21000, 29700}, 97},
        {21590, 27940, 29700, 21000, 33, 1, {21590, 27940, 29700, 21000}, 75},
        {100, 100, 35560, 35560, 1, 1, {100, 100, 35560, 35560}, 10000},
        {-100, 100, 100, 100, -3, 1, {-100, 100, 100, 100}, 1},
        {0, 0, 0, 0, 32767, 0, {0, 0, 0, 0}, 10000},
    };
    for (const Case& each : aCases) {
        SCOPED_TRACE(testing::Message() << each.lPageWidth << " on " << each.lTargetWidth);
        PreviewRequest request = Request(each.lPageWidth, each.lPageLength, 1, 1);
        request.lTargetWidth = each.lTargetWidth;
        request.lTargetLength = each.lTargetLength;
        request.sZoom = each.sZoom;
        request.bFitZoom = each.bFitZoom;
        PreviewGeometry found;
        EXPECT_TRUE(ArrangePreview(Device(3200, 4318), {0, 0, 100, 100}, &request, &found));
        EXPECT_EQ(
            (Corners{request.lPageWidth, request.lPageLength, request.lTargetWidth, request.lTargetLength}),
            each.settled);
        EXPECT_EQ(request.sZoom, each.sSettledZoom);
    }
}

TEST(Geometry, BringsAWatermarkToPixels)
{
    struct Case {
        const char* name;
        size_t nPicture;
        i32 lX, lY;
        i16 sSize;
        Corners scaled;
    };
    const Case aCases[] = {
        {"tall", 9, 2540, -2540, 72, {12, -12, 12}},
        {"four pages", 10, 1000, 500, 144, {2, 1, 11}},
        {"flat", 2, 1000, 500, 144, {4, 1, 7}},
        {"out of reach", 9, 0x7FFFFFFF, -0x7FFFFFFF, 32767, {32767, -32767, 5834}},
    };
    for (const Case& each : aCases) {
        for (u32 ulType : {ENTRY_TEXT, ENTRY_IMAGE}) {
            SCOPED_TRACE(testing::Message() << each.name << ulType);
            Picture picture = Pictures()[each.nPicture];
            WatermarkEntry entry = {};
            entry.WMType = ulType;
            entry.WMPositionX = each.lX;
            entry.WMPositionY = each.lY;
            entry.WMSize = each.sSize;
            picture.request.pWatermark = &entry;
            PreviewGeometry found;
            ASSERT_TRUE(ArrangePreview(Device(3200, 4318), picture.rFrame, &picture.request, &found));
            EXPECT_EQ((Corners{entry.WMPositionX, entry.WMPositionY, entry.WMSize}),
                      (Corners{each.scaled[0], each.scaled[1],
                               ulType == ENTRY_TEXT ? each.scaled[2] : each.sSize}));
        }
    }
}

TEST(Geometry, StaysWithinReachWhateverItIsGiven)
{
    constexpr i32 alExtremes[] = {
        std::numeric_limits<i32>::min(), -32768, -1, 0, 1, 2, 99, 100, 16, 3556, 35560, 35561, 65536,
        std::numeric_limits<i32>::max()};
    std::mt19937 random(6101);
    const auto Any = [&] { return alExtremes[random() % std::size(alExtremes)]; };
    int nDrawn = 0;
    for (int i = 0; i < 50000; i++) {
        PreviewDevice device = Device(Any(), Any());
        device.lDefaultWidth = Any();
        device.lDefaultLength = Any();
        PreviewRequest request = Request(Any(), Any(), static_cast<u16>(Any() & 3), asLayouts[random() % 12],
                                         asOrders[random() % 12]);
        WatermarkEntry entry = {};
        entry.WMType = static_cast<u32>(random() % 3);
        entry.WMPositionX = Any();
        entry.WMPositionY = Any();
        entry.WMSize = static_cast<i16>(Any() & 0x7FFF);
        request.pWatermark = &entry;
        request.lTargetWidth = Any();
        request.lTargetLength = Any();
        request.sZoom = static_cast<i16>(Any() & 0xFFFF);
        request.bFitZoom = random() % 2;
        request.bBorders = random() % 2;
        request.bNotCentered = random() % 2;
        request.bCenterInFrame = random() % 2;
        request.bDeviceExtent = random() % 2;
        PreviewGeometry found;
        const RECT rFrame = {Any(), Any(), Any(), Any()};
        nDrawn += ArrangePreview(device, rFrame, &request, &found);
        ASSERT_TRUE(request.sZoom >= 1 && request.sZoom <= 10000);
        ASSERT_TRUE(request.lTargetLength <= 35560 && request.lTargetWidth <= 35560);
        for (const RECT& rect : {found.rSheet, found.rPage}) {
            for (i32 lCorner : CornersOf(rect)) {
                ASSERT_LE(std::abs(lCorner), 32767);
            }
        }
        for (int nCell = 0; nCell < found.row.nColumns * found.row.nRows; nCell++) {
            const RECT cell = RectOfCell(found, nCell);
            ASSERT_TRUE(cell.right <= found.nWidth && cell.bottom <= found.nHeight);
            ASSERT_LE(WideLength(LabelOfCell(found.row, request.sPageOrder, nCell).wcText), 2);
        }
        ASSERT_LE(std::abs(entry.WMSize), 32767);
    }
    EXPECT_GT(nDrawn, 1000) << "most of it must not be refused at once";
}

} // namespace
