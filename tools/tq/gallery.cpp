/* The contact sheet: a frame for each layout, order, paper, scaling, watermark and turn, with its name below. */
#include "tools/tq/gallery.h"

#include <cstring>
#include <functional>
#include <vector>

#include "platform/hosted/machine.h"
#include "preview/preview_tools.h"
#include "tools/tq/canvas.h"

namespace {

constexpr int FRAME = 150, MARGIN = 14, CAPTION = 24, COLUMNS = 10;
constexpr const WCHAR* wcImageFile = TEXT("C:\\stamp.bmp");

struct Tile {
    std::string caption;
    PreviewRequest request;
    WatermarkEntry entry; /* WMType 0: none */
};

struct Section {
    std::string title;
    std::vector<Tile> tiles;
};

PreviewRequest A4Request(i16 sLayout = 1, u16 usOrientation = 1)
{
    PreviewRequest request = {};
    request.lPageWidth = 21000;
    request.lPageLength = 29700;
    request.sOrientation = usOrientation;
    request.sResolution = 600;
    request.sLayout = sLayout;
    request.bDeviceExtent = 1;
    request.bColor = 1;
    request.sZoom = 100;
    return request;
}

Tile TileOf(std::string caption, const PreviewRequest& request)
{
    return {std::move(caption), request, {}};
}

WatermarkEntry TextEntry(const WCHAR* wcText, u16 usAngle, bool bOutline)
{
    WatermarkEntry entry;
    ResetWatermarkEntry(&entry);
    entry.WMType = ENTRY_TEXT;
    CopyWide(entry.WMString, 64, wcText);
    entry.WMAngle = usAngle;
    entry.WMOutline = bOutline;
    return entry;
}

WatermarkEntry ImageEntry(u16 usPlacement)
{
    WatermarkEntry entry = {};
    entry.WMType = ENTRY_IMAGE;
    CopyWide(entry.WMString, 64, TEXT("stamp"));
    CopyWide(entry.WMImageName, PATH_CHARS, wcImageFile);
    entry.WMScaleX = entry.WMScaleY = 100;
    entry.WMPlacement = usPlacement;
    entry.WMResolution = 300;
    return entry;
}

/* A stamp of 600 x 400 pixels in 24 bits: a red ring with a bar, on pale yellow. */
Bytes StampFile()
{
    constexpr int nWidth = 600, nHeight = 400, cbRow = nWidth * 3;
    Bytes file(54 + static_cast<size_t>(cbRow) * nHeight);
    const auto poke = [&](size_t nAt, auto value) { std::memcpy(file.data() + nAt, &value, sizeof value); };
    poke(0, u16{0x4D42});
    poke(2, static_cast<u32>(file.size()));
    poke(10, u32{54});
    poke(14, u32{40});
    poke(18, i32{nWidth});
    poke(22, i32{nHeight});
    poke(26, u16{1});
    poke(28, u16{24});
    for (int y = 0; y < nHeight; y++) {
        for (int x = 0; x < nWidth; x++) {
            const double dX = (x - nWidth / 2) / (nWidth / 2.0), dY = (y - nHeight / 2) / (nHeight / 2.0);
            const double dDistance = dX * dX + dY * dY;
            const bool bInk = (dDistance < 0.9 && dDistance > 0.6) || (dDistance < 0.4 && y > 220 && y < 260);
            u8* pPixel = &file[54 + static_cast<size_t>(y) * cbRow + static_cast<size_t>(x) * 3];
            pPixel[0] = bInk ? 40 : 200;
            pPixel[1] = bInk ? 40 : 245;
            pPixel[2] = bInk ? 200 : 255;
        }
    }
    return file;
}

constexpr i16 asLayouts[] = {1, 2, 4, 6, 8, 9, 12, 16, 25, 99};

Section Layouts(const char* cTitle, u16 usOrientation, int bBorders)
{
    Section section = {cTitle, {}};
    for (const i16 sLayout : asLayouts) {
        PreviewRequest request = A4Request(sLayout, usOrientation);
        request.bBorders = bBorders;
        section.tiles.push_back(
            TileOf(sLayout == 99 ? "booklet" : std::to_string(sLayout) + " a sheet", request));
    }
    return section;
}

Section Orders()
{
    Section section = {"Orders of six and of two pages", {}};
    constexpr i16 asOrders[] = {0, 1, 2, 3, 16, 17, 18, 19}, asTwoCells[] = {2, 99};
    for (const i16 sOrder : asOrders) {
        PreviewRequest request = A4Request(6);
        request.sPageOrder = sOrder;
        section.tiles.push_back(TileOf("order " + std::to_string(sOrder), request));
    }
    for (const i16 sLayout : asTwoCells) {
        PreviewRequest request = A4Request(sLayout);
        request.sPageOrder = 1;
        section.tiles.push_back(TileOf(sLayout == 99 ? "booklet, order 1" : "2 a sheet, order 1", request));
    }
    return section;
}

Section Papers()
{
    const struct {
        const char* cName;
        i32 lWidth, lLength;
        int bEnvelope;
    } papers[] = {{"A3", 29700, 42000, 0},
                  {"A5", 14800, 21000, 0},
                  {"A6", 10500, 14800, 0},
                  {"Letter", 21590, 27940, 0},
                  {"Legal", 21590, 35560, 0},
                  {"Tabloid", 27940, 43180, 0},
                  {"C5", 16200, 22900, 1},
                  {"No. 10", 10480, 24130, 1},
                  {"wide 300 x 200", 30000, 20000, 0},
                  {"banner 210 x 900", 21000, 90000, 0}};
    Section section = {"Papers", {}};
    for (const auto& paper : papers) {
        PreviewRequest request = A4Request();
        request.lPageWidth = paper.lWidth;
        request.lPageLength = paper.lLength;
        request.bEnvelope = paper.bEnvelope;
        section.tiles.push_back(TileOf(paper.cName, request));
    }
    return section;
}

Section Scalings()
{
    Section section = {"Zoom, scaling to another paper, posters, 180 degrees, grey", {}};
    const auto add = [&](const char* cCaption, const std::function<void(PreviewRequest&)>& change) {
        PreviewRequest request = A4Request();
        change(request);
        section.tiles.push_back(TileOf(cCaption, request));
    };
    add("zoom 50", [](PreviewRequest& request) { request.sZoom = 50; });
    add("zoom 50, corner", [](PreviewRequest& request) { request.sZoom = 50, request.bNotCentered = 1; });
    add("zoom 150", [](PreviewRequest& request) { request.sZoom = 150; });
    add("A4 fitted to A5", [](PreviewRequest& request) {
        request.lTargetWidth = 14800, request.lTargetLength = 21000, request.bFitZoom = 1;
    });
    add("A4 fitted to A3", [](PreviewRequest& request) {
        request.lTargetWidth = 29700, request.lTargetLength = 42000, request.bFitZoom = 1;
    });
    add("A4 on Letter", [](PreviewRequest& request) {
        request.lTargetWidth = 21590, request.lTargetLength = 27940, request.bNotCentered = 1;
    });
    add("poster 2", [](PreviewRequest& request) { request.sPosterSize = 2; });
    add("poster 5", [](PreviewRequest& request) { request.sPosterSize = 5; });
    add("180 degrees", [](PreviewRequest& request) { request.bRotate180 = 1; });
    add("grey", [](PreviewRequest& request) { request.bColor = 0; });
    return section;
}

Section Texts()
{
    constexpr u16 ausAngles[] = {0, 450, 900, 2250, 3150};
    Section section = {"Text watermarks, solid and outlined", {}};
    for (const bool bOutline : {false, true}) {
        for (const u16 usAngle : ausAngles) {
            Tile tile =
                TileOf((bOutline ? "outline " : "solid ") + std::to_string(usAngle / 10), A4Request());
            tile.entry = TextEntry(TEXT("DRAFT"), usAngle, bOutline);
            section.tiles.push_back(tile);
        }
    }
    return section;
}

Section MoreTexts()
{
    Section section = {"Text watermarks on several pages, in other scripts and styles", {}};
    const auto add = [&](const char* cCaption, i16 sLayout, const WatermarkEntry& entry, int bOnePage) {
        Tile tile = TileOf(cCaption, A4Request(sLayout));
        tile.entry = entry;
        tile.request.bWMOnePage = bOnePage;
        section.tiles.push_back(tile);
    };
    WatermarkEntry draft = TextEntry(TEXT("DRAFT"), 450, true);
    add("4, each page", 4, draft, 0);
    add("4, first page", 4, draft, 1);
    add("booklet, first page", 99, draft, 1);
    add("25", 25, draft, 0);
    draft.WMItalic = 1;
    add("italic", 1, draft, 0);
    draft.WMItalic = 0;
    draft.WMBold = 1;
    add("bold", 1, draft, 0);
    draft.WMPositionX = 4000;
    draft.WMPositionY = 8000;
    add("moved", 1, draft, 0);
    WatermarkEntry hebrew = TextEntry(TEXT("\u05D8\u05D9\u05D5\u05D8\u05D4"), 450, true);
    hebrew.WMCharSet = 177;
    hebrew.WMRTL = 1;
    CopyWide(hebrew.WMFace, 32, TEXT("DejaVu Sans"));
    add("Hebrew", 1, hebrew, 0);
    WatermarkEntry arabic = TextEntry(TEXT("\u0645\u0633\u0648\u062F\u0629"), 450, true);
    arabic.WMCharSet = 178;
    arabic.WMRTL = 1;
    CopyWide(arabic.WMFace, 32, TEXT("DejaVu Sans"));
    add("Arabic", 1, arabic, 0);
    arabic.WMOutline = 0;
    add("Arabic, solid", 1, arabic, 0);
    return section;
}

Section Images()
{
    Section section = {"Image watermarks by placement", {}};
    const char* acPlaces[] = {"centre", "tiled",    "top",       "right",       "bottom",
                              "left",   "top left", "top right", "bottom left", "bottom right"};
    for (u16 i = 0; i < 10; i++) {
        Tile tile = TileOf(acPlaces[i], A4Request());
        tile.entry = ImageEntry(i);
        section.tiles.push_back(tile);
    }
    return section;
}

} // namespace

int RunGallery(const std::string& file)
{
    StartMachine();
    PutFile(wcImageFile, StampFile());
    const Section sections[] = {Layouts("Portrait", 1, 0),
                                Layouts("Portrait, with borders", 1, 1),
                                Layouts("Landscape", 2, 1),
                                Orders(),
                                Papers(),
                                Scalings(),
                                Texts(),
                                MoreTexts(),
                                Images()};
    PreviewDevice device = {};
    device.lMaxWidth = 3200;
    device.lMaxLength = 4318;
    device.lDefaultWidth = 21000;
    device.lDefaultLength = 29700;
    device.wcLabel[0] = 'M';
    {
        constexpr int nColumn = FRAME + MARGIN, nRow = FRAME + MARGIN + CAPTION;
        Canvas canvas(MARGIN + COLUMNS * nColumn,
                      static_cast<int>(std::size(sections)) * (nRow + CAPTION) + MARGIN);
        PreviewTools tools = {};
        int y = MARGIN;
        for (const Section& section : sections) {
            canvas.Write(MARGIN, y, section.title);
            y += CAPTION;
            int x = MARGIN;
            for (const Tile& tile : section.tiles) {
                PreviewRequest request = tile.request;
                WatermarkEntry entry = tile.entry;
                request.pWatermark = entry.WMType == ENTRY_FREE ? nullptr : &entry;
                ComposePreview(tools, device, canvas.Context(), {x, y, x + FRAME, y + FRAME}, &request);
                canvas.Write(x, y + FRAME + 3, tile.caption);
                x += nColumn;
            }
            y += nRow;
        }
        ReleasePreviewTools(&tools);
        canvas.Save(file);
    }
    StopMachine();
    return 0;
}
