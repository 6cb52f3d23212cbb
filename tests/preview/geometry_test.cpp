/* Geometry of the preview: pictures that were worked out by hand, and an account of its own of shapes, grids and page
   walks for everything else. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <random>

#include "preview/preview_geometry.h"
#include "support/both_builds.h"

namespace {

using Corners = std::vector<i32>;

Corners CornersOf(const RECT& rect)
{
    return {rect.left, rect.top, rect.right, rect.bottom};
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

struct Picture {
    const char* name;
    RECT rFrame;
    PreviewRequest request;
    PreviewDevice device;
    Corners sheet;
    i16 sZoom;
    Corners page;
    int nIndex, nColumns, nRows, nGap, nColumnStep, nRowStep;
    Corners firstCell, lastCell;
    const char* labels;
};

std::vector<Picture> Pictures()
{
    const RECT rUsual = {12, 20, 172, 180};
    const PreviewDevice usual = Device(3200, 4318);
    std::vector<Picture> all = {
        {"A4",
         rUsual,
         Request(21000, 29700, 1, 1),
         usual,
         {45, 46, 139, 180},
         100,
         {0, 0, 94, 134},
         -1,
         1,
         1,
         0,
         94,
         134,
         {0, 0, 94, 134},
         {0, 0, 94, 134},
         ""},
        {"A4 landscape of a record, 2-up",
         rUsual,
         Request(21000, 29700, 2, 2, 0, 1),
         usual,
         {45, 46, 139, 180},
         100,
         {0, 0, 94, 134},
         0,
         1,
         2,
         3,
         94,
         67,
         {3, 3, 91, 65},
         {3, 70, 91, 131},
         "1 2"},
        {"A4 landscape of a page, 2-up",
         rUsual,
         Request(21000, 29700, 0, 2, 1, 1),
         usual,
         {25, 86, 159, 180},
         100,
         {0, 0, 134, 94},
         0,
         1,
         2,
         3,
         134,
         47,
         {3, 3, 131, 45},
         {3, 50, 131, 91},
         "2 1"},
        {"Legal 16-up",
         {7, 9, 158, 221},
         Request(21590, 35560, 1, 16, 18),
         usual,
         {37, 70, 127, 221},
         100,
         {0, 0, 90, 151},
         9,
         4,
         4,
         0,
         22,
         37,
         {0, 0, 23, 38},
         {66, 111, 89, 149},
         "13 9 5 1 14 10 6 2 15 11 7 3 16 12 8 4"},
        {"A5 enlarged",
         rUsual,
         Request(14800, 21000, 1, 1),
         usual,
         {58, 84, 126, 180},
         150,
         {-17, -24, 85, 120},
         -1,
         1,
         1,
         0,
         68,
         96,
         {0, 0, 68, 96},
         {0, 0, 68, 96},
         ""},
        {"wide paper, 6-up",
         rUsual,
         Request(30000, 20000, 0, 6, 3, 1),
         usual,
         {17, 80, 167, 180},
         100,
         {0, 0, 150, 100},
         2,
         3,
         2,
         3,
         50,
         50,
         {3, 3, 48, 48},
         {103, 53, 147, 97},
         "6 5 4 3 2 1"},
        {"poster",
         {20, 30, 220, 230},
         Request(21000, 29700, 1, 1),
         usual,
         {61, 62, 179, 230},
         100,
         {0, 0, 118, 168},
         -1,
         1,
         1,
         0,
         118,
         168,
         {0, 0, 118, 168},
         {0, 0, 118, 168},
         ""},
        {"Letter fitted on A4",
         rUsual,
         Request(21590, 27940, 1, 1),
         usual,
         {45, 46, 139, 180},
         97,
         {0, 0, 93, 122},
         -1,
         1,
         1,
         0,
         93,
         134,
         {0, 0, 94, 123},
         {0, 0, 94, 123},
         ""},
        {"Legal on a smaller printer",
         rUsual,
         Request(21590, 35560, 1, 1),
         Device(2100, 2970),
         {35, -10, 149, 180},
         100,
         {0, 0, 114, 190},
         -1,
         1,
         1,
         0,
         114,
         190,
         {0, 0, 114, 190},
         {0, 0, 114, 190},
         ""},
        {"editor",
         {10, 14, 231, 165},
         Request(21000, 29700, 1, 0),
         usual,
         {67, 14, 173, 165},
         100,
         {0, 0, 106, 151},
         -1,
         1,
         1,
         0,
         106,
         151,
         {0, 0, 106, 151},
         {0, 0, 106, 151},
         ""},
        {"A4 4-up",
         rUsual,
         Request(21000, 29700, 1, 4, 3),
         usual,
         {45, 46, 139, 180},
         100,
         {0, 0, 94, 134},
         1,
         2,
         2,
         0,
         47,
         67,
         {0, 0, 48, 68},
         {47, 67, 94, 134},
         "4 3 2 1"},
        {"A4 in a tiny frame",
         {0, 0, 48, 48},
         Request(21000, 29700, 1, 1),
         usual,
         {10, 6, 38, 48},
         100,
         {0, 0, 28, 42},
         -1,
         1,
         1,
         0,
         28,
         42,
         {0, 0, 28, 42},
         {0, 0, 28, 42},
         ""},
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
        SCOPED_TRACE(each.name);
        PreviewGeometry found;
        ASSERT_TRUE(ArrangePreview(each.device, each.rFrame, &each.request, &found));
        EXPECT_EQ(CornersOf(found.rSheet), each.sheet);
        EXPECT_EQ(found.nWidth, each.sheet[2] - each.sheet[0]);
        EXPECT_EQ(found.nHeight, each.sheet[3] - each.sheet[1]);
        EXPECT_EQ(each.request.sZoom, each.sZoom);
        EXPECT_EQ(CornersOf(found.rPage), each.page);
        EXPECT_EQ(found.row.nIndex, each.nIndex);
        EXPECT_EQ(found.row.nColumns, each.nColumns);
        EXPECT_EQ(found.row.nRows, each.nRows);
        EXPECT_EQ(found.row.nGap, each.nGap);
        EXPECT_EQ(found.nColumnStep, each.nColumnStep);
        EXPECT_EQ(found.nRowStep, each.nRowStep);
        EXPECT_EQ(CornersOf(RectOfCell(found, 0)), each.firstCell);
        EXPECT_EQ(CornersOf(RectOfCell(found, each.nColumns * each.nRows - 1)), each.lastCell);
        EXPECT_EQ(LabelsOf(found.row, each.request.sPageOrder), each.labels);
    }
}

} // namespace
