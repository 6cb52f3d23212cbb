/* Pictures of sheets that the goldens, the faults and the benchmark share. */
#ifndef TQUI_TESTS_PICTURE_CASES_H
#define TQUI_TESTS_PICTURE_CASES_H

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "description/control_ids.h"
#include "preview/preview_geometry.h"
#include "preview/preview_tools.h"
#include "support/bitmap_builder.h"
#include "support/both_builds.h"
#include "support/picture.h"

/* A frame of 160 pixels on a canvas that is larger and of a colour that no picture has. */
constexpr RECT FRAME = {12, 20, 172, 180};
constexpr int CANVAS_WIDTH = 184, CANVAS_HEIGHT = 200;
constexpr COLORREF CANVAS_COLOR = 0x55AA33;
constexpr DWORD FACE_COLOR = 0xF0F0F0; /* stands for what the system's frames have */

struct PictureCase {
    std::string name;
    PreviewDevice device{};
    PreviewRequest request{};
    WatermarkEntry watermark{}; /* of ENTRY_FREE: none */
    RECT rFrame = FRAME;
};

/* A4, upright, of one page in colour, on a printer of 320.0 x 431.8 mm; the logo's letter is a blank, as letters differ
   between machines. */
inline PictureCase SheetCase(const std::string& name, i16 sLayout = 1)
{
    PictureCase sheet;
    sheet.name = name;
    sheet.device = {3200, 4318, 21590, 27940, TEXT(" "), 0};
    sheet.request.lPageWidth = 21000;
    sheet.request.lPageLength = 29700;
    sheet.request.sOrientation = 1;
    sheet.request.sResolution = 600;
    sheet.request.sLayout = sLayout;
    sheet.request.sPreviewControl = IDC_PREVIEW;
    sheet.request.bDeviceExtent = 1;
    sheet.request.bColor = 1;
    return sheet;
}

inline PictureCase With(PictureCase sheet, const std::function<void(PictureCase&)>& change)
{
    change(sheet);
    return sheet;
}

/* 60 x 40 pixels of four colours, in quarters, with a black pixel in the lower left corner. */
inline std::vector<u8> FourColors(u16 usBits)
{
    return BitmapFile({60, 40, usBits}, [usBits](int x, int y) -> u32 {
        const int nQuarter = (x < 30 ? 0 : 1) + (y < 20 ? 0 : 2);
        constexpr u32 aulColors[] = {0x0000C0, 0x00A000, 0xD08000, 0x40C0C0};
        if (usBits <= 8) {
            return static_cast<u32>(nQuarter) & ((1u << usBits) - 1);
        }
        return x == 0 && y == 0 ? 0 : aulColors[nQuarter];
    });
}

inline void UseImage(PictureCase& sheet, const WideString& tcPath, u16 usPlacement, u16 usResolution = 50)
{
    sheet.watermark.WMType = ENTRY_IMAGE;
    tcPath.copy(sheet.watermark.WMImageName, PATH_CHARS - 1);
    sheet.watermark.WMPlacement = usPlacement;
    sheet.watermark.WMResolution = usResolution;
    sheet.watermark.WMScaleX = sheet.watermark.WMScaleY = 100;
}

inline void UseText(PictureCase& sheet, const WideString& wcText, u32 ulOutline)
{
    ResetWatermarkEntry(&sheet.watermark);
    sheet.watermark.WMType = ENTRY_TEXT;
    wcText.copy(sheet.watermark.WMString, 63);
    sheet.watermark.WMOutline = ulOutline;
}

/* The cases of the goldens; tcImage is a file of FourColors. */
inline std::vector<PictureCase> GoldenCases(const WideString& tcImage)
{
    const auto borders = [](PictureCase& sheet) { sheet.request.bBorders = 1; };
    return {
        SheetCase("page-colour"),
        With(SheetCase("page-grey-landscape"),
             [](PictureCase& sheet) {
                 sheet.request.sOrientation = 2;
                 sheet.request.bColor = 0;
             }),
        With(SheetCase("page-zoomed"),
             [](PictureCase& sheet) {
                 sheet.request.lPageWidth = 14800;
                 sheet.request.lPageLength = 21000;
                 sheet.request.sZoom = 150;
             }),
        With(SheetCase("page-half"), [](PictureCase& sheet) { sheet.request.sZoom = 50; }),
        With(SheetCase("page-tiny"),
             [](PictureCase& sheet) {
                 sheet.rFrame = {12, 20, 60, 68};
             }),
        With(SheetCase("envelope"),
             [](PictureCase& sheet) {
                 sheet.request.lPageWidth = 11000;
                 sheet.request.lPageLength = 22000;
                 sheet.request.sOrientation = 2;
                 sheet.request.bEnvelope = 1;
             }),
        With(SheetCase("two-borders", 2), borders),
        SheetCase("sixteen-dividers", 16),
        With(SheetCase("twenty-five-borders", 25), borders),
        SheetCase("booklet", 99),
        With(SheetCase("poster"), [](PictureCase& sheet) { sheet.request.sPosterSize = 3; }),
        With(SheetCase("image-first-page", 4),
             [&](PictureCase& sheet) {
                 UseImage(sheet, tcImage, 9, 30);
                 sheet.request.sPageOrder = 3;
                 sheet.request.bWMOnePage = 1;
             }),
        With(SheetCase("image-clipped"),
             [&](PictureCase& sheet) {
                 UseImage(sheet, tcImage, 6, 12);
                 sheet.watermark.WMPositionX = -3000;
                 sheet.watermark.WMPositionY = 2000;
             }),
        With(SheetCase("image-tiles-turned", 0), /* no page content */
             [&](PictureCase& sheet) {
                 UseImage(sheet, tcImage, 1);
                 sheet.watermark.WMPositionX = 2540;
                 sheet.watermark.WMPositionY = -5080;
                 sheet.watermark.WMScaleX = 90;
                 sheet.request.bRotate180 = 1;
             }),
    };
}

/* Draws a case on a canvas with objects of its own. */
inline void Compose(PreviewTools& tools, HDC hDc, const PictureCase& sheet)
{
    PictureCase drawn = sheet;
    drawn.request.pWatermark = drawn.watermark.WMType == ENTRY_FREE ? nullptr : &drawn.watermark;
    ComposePreview(tools, drawn.device, hDc, drawn.rFrame, &drawn.request);
}

/* A canvas with the frame in the tests' colour. */
inline Picture Shown(const Canvas& canvas)
{
    Picture picture = canvas.Pixels();
    std::replace(picture.pixels.begin(), picture.pixels.end(), GetSysColor(COLOR_BTNFACE), FACE_COLOR);
    return picture;
}

inline Picture DrawCase(const PictureCase& sheet)
{
    PreviewTools tools = {};
    Canvas canvas(CANVAS_WIDTH, CANVAS_HEIGHT, CANVAS_COLOR);
    Compose(tools, canvas.Dc(), sheet);
    ReleasePreviewTools(&tools);
    return Shown(canvas);
}

inline PreviewGeometry Arrange(const PictureCase& sheet)
{
    PictureCase drawn = sheet;
    PreviewGeometry geometry = {};
    EXPECT_TRUE(ArrangePreview(drawn.device, drawn.rFrame, &drawn.request, &geometry));
    return geometry;
}

/* Where the labels of a sheet that is not turned may have ink, on the canvas. */
inline std::vector<RECT> LabelBoxes(const PictureCase& sheet)
{
    constexpr LONG HALF_WIDTH = 9, HALF_HEIGHT = 8;
    const PreviewGeometry geometry = Arrange(sheet);
    std::vector<RECT> boxes;
    for (int i = 0; geometry.row.nIndex >= 0 && i < geometry.row.nColumns * geometry.row.nRows; i++) {
        const RECT cell = RectOfCell(geometry, i);
        const LONG x = geometry.rSheet.left + (cell.left + cell.right) / 2;
        const LONG y = geometry.rSheet.top + (cell.top + cell.bottom) / 2;
        const auto within = [](LONG lAt, LONG lHalf, LONG lLow, LONG lHigh) {
            return std::pair(std::max(lAt - lHalf, lLow + 1), std::min(lAt + lHalf, lHigh - 1));
        };
        const auto [left, right] =
            within(x, HALF_WIDTH, geometry.rSheet.left + cell.left, geometry.rSheet.left + cell.right);
        const auto [top, bottom] =
            within(y, HALF_HEIGHT, geometry.rSheet.top + cell.top, geometry.rSheet.top + cell.bottom);
        boxes.push_back({left, top, right, bottom});
    }
    return boxes;
}

#endif
