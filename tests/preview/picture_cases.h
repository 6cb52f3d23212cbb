/* Pictures of sheets that the goldens, the faults and the benchmark share. */
#ifndef TQUI_TESTS_PICTURE_CASES_H
#define TQUI_TESTS_PICTURE_CASES_H

#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
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

/* A case as words say: names of fields, each followed by its numbers. "image" takes placement and resolution of tcImage,
   "text" a word and whether only its outline is drawn. */
inline PictureCase CaseOf(const std::string& name, const std::string& words, const WideString& tcImage = {})
{
    PictureCase sheet = SheetCase(name);
    PreviewRequest& request = sheet.request;
    WatermarkEntry& mark = sheet.watermark;
    std::istringstream input(words);
    const auto take = [&input](auto&... fields) {
        const auto one = [&input](auto& field) {
            i32 lValue = 0;
            EXPECT_TRUE(input >> lValue);
            field = static_cast<std::remove_reference_t<decltype(field)>>(lValue);
        };
        (one(fields), ...);
    };
    const std::map<std::string, std::function<void()>> fields = {
        {"page", [&] { take(request.lPageWidth, request.lPageLength); }},
        {"target", [&] { take(request.lTargetWidth, request.lTargetLength); }},
        {"orientation", [&] { take(request.sOrientation); }},
        {"layout", [&] { take(request.sLayout); }},
        {"resolution", [&] { take(request.sResolution); }},
        {"order", [&] { take(request.sPageOrder); }},
        {"zoom", [&] { take(request.sZoom); }},
        {"poster", [&] { take(request.sPosterSize); }},
        {"borders", [&] { take(request.bBorders); }},
        {"turned", [&] { take(request.bRotate180); }},
        {"envelope", [&] { take(request.bEnvelope); }},
        {"colour", [&] { take(request.bColor); }},
        {"fit", [&] { take(request.bFitZoom); }},
        {"corner", [&] { take(request.bNotCentered); }},
        {"centred", [&] { take(request.bCenterInFrame); }},
        {"shrinks", [&] { take(request.bDeviceExtent); }},
        {"one-page", [&] { take(request.bWMOnePage); }},
        {"frame",
         [&] { take(sheet.rFrame.left, sheet.rFrame.top, sheet.rFrame.right, sheet.rFrame.bottom); }},
        {"largest", [&] { take(sheet.device.lMaxWidth, sheet.device.lMaxLength); }},
        {"default", [&] { take(sheet.device.lDefaultWidth, sheet.device.lDefaultLength); }},
        {"at", [&] { take(mark.WMPositionX, mark.WMPositionY); }},
        {"scale", [&] { take(mark.WMScaleX, mark.WMScaleY); }},
        {"size", [&] { take(mark.WMSize); }},
        {"image",
         [&] {
             u16 usPlacement, usResolution;
             take(usPlacement, usResolution);
             UseImage(sheet, tcImage, usPlacement, usResolution);
         }},
        {"text",
         [&] {
             std::string text;
             input >> text;
             UseText(sheet, Wide(text), 0);
             take(mark.WMOutline);
         }},
    };
    for (std::string word; input >> word;) {
        EXPECT_TRUE(fields.count(word)) << word;
        fields.count(word) ? fields.at(word)() : void();
    }
    return sheet;
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
    const PreviewGeometry geometry = Arrange(sheet);
    std::vector<RECT> boxes;
    for (int i = 0; geometry.row.nIndex >= 0 && i < geometry.row.nColumns * geometry.row.nRows; i++) {
        RECT box = RectOfCell(geometry, i);
        const LONG x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
        box = {std::max(x - 9, box.left + 1), std::max(y - 8, box.top + 1), std::min(x + 9, box.right - 1),
               std::min(y + 8, box.bottom - 1)};
        boxes.push_back({geometry.rSheet.left + box.left, geometry.rSheet.top + box.top,
                         geometry.rSheet.left + box.right, geometry.rSheet.top + box.bottom});
    }
    return boxes;
}

#endif
