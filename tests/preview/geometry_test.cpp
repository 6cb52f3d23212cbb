/* Geometry of the preview: pictures that were worked out by hand (tests/data/preview_geometry.txt), and an account of its
   own of shapes, grids and page walks for everything else. */
#include <algorithm>
#include <random>

#include "fuzz/preview_inputs.h"
#include "preview/picture_cases.h"
#include "support/script.h"

namespace {

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

std::string GridText(const LayoutRow& row)
{
    return std::to_string(row.nIndex) + ": " + std::to_string(row.nColumns) + "x" +
           std::to_string(row.nRows) + " gap " + std::to_string(row.nGap);
}

/* Sheet, zoom, page, grid, steps, first and last cell, labels; a watermark's place and size. */
std::string PictureText(PictureCase sheet)
{
    PreviewGeometry found;
    sheet.request.pWatermark = sheet.watermark.WMType == ENTRY_FREE ? nullptr : &sheet.watermark;
    EXPECT_TRUE(ArrangePreview(sheet.device, sheet.rFrame, &sheet.request, &found));
    EXPECT_EQ(found.nWidth, found.rSheet.right - found.rSheet.left);
    EXPECT_EQ(found.nHeight, found.rSheet.bottom - found.rSheet.top);
    std::ostringstream text;
    text << Text(found.rSheet) << " " << sheet.request.sZoom << "% " << Text(found.rPage) << " "
         << GridText(found.row) << " " << found.nColumnStep << " " << found.nRowStep << " "
         << Text(RectOfCell(found, 0)) << " .. "
         << Text(RectOfCell(found, found.row.nColumns * found.row.nRows - 1));
    const std::string labels = LabelsOf(found.row, sheet.request.sPageOrder);
    text << (labels.empty() ? "" : " pages " + labels);
    if (sheet.request.pWatermark) {
        text << " mark " << sheet.watermark.WMPositionX << " " << sheet.watermark.WMPositionY << " "
             << sheet.watermark.WMSize;
    }
    return text.str();
}

/* Sizes of page and target and the zoom, as they were settled. */
std::string SizesText(PictureCase sheet)
{
    PreviewGeometry found;
    PreviewRequest& request = sheet.request;
    EXPECT_TRUE(ArrangePreview(sheet.device, sheet.rFrame, &request, &found));
    std::ostringstream text;
    text << request.lPageWidth << " x " << request.lPageLength << " on " << request.lTargetWidth << " x "
         << request.lTargetLength << " " << request.sZoom << "%";
    return text.str();
}

TEST(Geometry, GivesThePicturesWorkedOutByHand)
{
    for (const Script& scenario : ReadScripts("preview_geometry.txt")) {
        for (const DataRow& row : scenario.steps) {
            const PictureCase sheet = CaseOf("", "layout 1 default 21000 29700 " + row[0]);
            EXPECT_EQ(scenario.name == "Sizes" ? SizesText(sheet) : PictureText(sheet), row[1]) << row[0];
        }
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

TEST(Geometry, AgreesWithTheTablesForEveryLayoutOrderAndOrientation)
{
    const i32 alPapers[][2] = {{21000, 29700}, {30000, 20000}, {9000, 14000}};
    for (const auto& [lWidth, lLength] : alPapers) {
        for (u16 sOrientation = 0; sOrientation <= 2; sOrientation++) {
            const bool bWide = lWidth > lLength;
            const u16 sRead = !bWide ? sOrientation : sOrientation == 1 ? u16{2} : u16{1};
            for (size_t i = 0; i < std::size(asLayouts); i++) {
                for (int bBorders : {0, 1}) {
                    SCOPED_TRACE(testing::Message()
                                 << lWidth << " x " << lLength << " orientation " << sOrientation
                                 << " layout " << asLayouts[i] << " borders " << bBorders);
                    PictureCase sheet = SheetCase("", asLayouts[i]);
                    sheet.request.lPageWidth = lWidth;
                    sheet.request.lPageLength = lLength;
                    sheet.request.sOrientation = sOrientation;
                    sheet.request.bBorders = bBorders;
                    const PreviewGeometry found = Arrange(sheet);
                    std::string grid = acGrids[i][sRead == 1 ? 0 : 1];
                    grid.back() = bBorders ? grid.back() : '0';
                    EXPECT_EQ(GridText(found.row), grid);
                    EXPECT_EQ(found.nHeight > found.nWidth, ShapesOf(bWide, sOrientation)[i] == 'U');
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

/* The fuzz target's verdict on requests of extremes. */
TEST(Geometry, StaysWithinReachWhateverItIsGiven)
{
    constexpr i32 alExtremes[] = {INT32_MIN, -32768, -1,   0,     1,     2,     99,
                                  100,       16,     3556, 35560, 35561, 65536, INT32_MAX};
    std::mt19937 random(6101);
    int nDrawn = 0;
    for (int i = 0; i < 50000; i++) {
        PreviewInput input = {};
        for (size_t nAt = 0; nAt < sizeof input; nAt += nAt < 16 || nAt >= 28 ? 4 : 2) {
            const i32 lValue = alExtremes[random() % std::size(alExtremes)];
            std::memcpy(reinterpret_cast<u8*>(&input) + nAt, &lValue, nAt < 16 || nAt >= 28 ? 4 : 2);
        }
        input.sOrientation &= 3;
        input.sLayout = asLayouts[random() % 12];
        input.sPageOrder = asOrders[random() % 12];
        input.bitFlags = static_cast<u16>(random());
        nDrawn += TryPreviewRequest(input);
    }
    EXPECT_GT(nDrawn, 1000) << "most of it must not be refused at once";
}

TEST(Geometry, APaperWithoutASizeFitsADeviceWithoutPapers)
{
    RECT rect = {0, 0, 100, 100};
    PreviewDevice device = {};
    device.lDefaultWidth = 21000;
    device.lDefaultLength = 29700;
    PreviewRequest request = {};
    request.sOrientation = 7;
    request.sLayout = 1;
    request.bDeviceExtent = 1;
    EXPECT_EQ(FitSheetRect(device, &rect, 0, 29700, request), 0);
    EXPECT_EQ(Text(rect), "0,30,100,100");
}

} // namespace
