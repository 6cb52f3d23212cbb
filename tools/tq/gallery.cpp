/* The contact sheet: a frame for each layout, order, paper, scaling, label, watermark and turn, with its name below. */
#include "tools/tq/gallery.h"

#include <cstring>
#include <functional>
#include <vector>

#include "hosted/machine.h"
#include "preview/preview_tools.h"
#include "tools/tq/canvas.h"

namespace {

/* Watermarks are drawn larger, so that one can judge their letters. */
constexpr int FRAME = 150, IMAGE_FRAME = 220, TEXT_FRAME = 300;
constexpr int MARGIN = 14, CAPTION = 24, WIDTH = 10 * (FRAME + MARGIN);
constexpr const WCHAR* wcImageFile = TEXT("C:\\stamp.bmp");

struct Tile {
    std::string caption;
    PreviewRequest request;
    WatermarkEntry entry; /* WMType 0: none */
    const WCHAR* wcLabel; /* of the model; of one letter its logo's */
};

struct Section {
    std::string title;
    std::vector<Tile> tiles;
    int nFrame = FRAME;

    int Columns() const { return WIDTH / (nFrame + MARGIN); }
    int Rows() const { return (static_cast<int>(tiles.size()) + Columns() - 1) / Columns(); }
    int RowHeight() const { return nFrame + MARGIN + CAPTION; }
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
    return {std::move(caption), request, {}, TEXT("M")};
}

WatermarkEntry TextEntry(const WCHAR* wcText, u16 usAngle, bool bOutline)
{
    WatermarkEntry entry;
    ResetWatermarkEntry(&entry);
    entry.WMType = ENTRY_TEXT;
    entry.WMSize = 180;
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
    const int nMiddleX = nWidth / 2, nMiddleY = nHeight / 2;
    for (int y = 0; y < nHeight; y++) {
        for (int x = 0; x < nWidth; x++) {
            const double dX = (x - nMiddleX) / (nWidth / 2.0), dY = (y - nMiddleY) / (nHeight / 2.0);
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
    constexpr i16 asOrders[] = {0, 1, 2, 3, 16, 17, 18, 19};
    const struct {
        i16 sLayout;
        u16 usOrientation;
        const char* cCaption;
    } twoCells[] = {{2, 1, "2, order 1"},
                    {2, 2, "2 landscape, order 1"},
                    {99, 1, "booklet, order 1"},
                    {99, 2, "booklet landscape, 1"}};
    for (const i16 sOrder : asOrders) {
        PreviewRequest request = A4Request(6);
        request.sPageOrder = sOrder;
        section.tiles.push_back(TileOf("order " + std::to_string(sOrder), request));
    }
    for (const auto& row : twoCells) {
        PreviewRequest request = A4Request(row.sLayout, row.usOrientation);
        request.sPageOrder = 1;
        section.tiles.push_back(TileOf(row.cCaption, request));
    }
    return section;
}

Section Papers()
{
    const struct {
        const char* cName;
        i32 lWidth, lLength;
        int bEnvelope;
        u16 usOrientation = 1;
    } papers[] = {{"A3", 29700, 42000, 0},
                  {"A5", 14800, 21000, 0},
                  {"A6", 10500, 14800, 0},
                  {"Letter", 21590, 27940, 0},
                  {"Legal", 21590, 35560, 0},
                  {"Tabloid", 27940, 43180, 0},
                  {"C5", 16200, 22900, 1},
                  {"C5 turned", 16200, 22900, 1, 2},
                  {"No. 10", 10480, 24130, 1},
                  {"No. 10 turned", 10480, 24130, 1, 2},
                  {"wide 300 x 200", 30000, 20000, 0},
                  {"banner 210 x 900", 21000, 90000, 0}};
    Section section = {"Papers", {}};
    for (const auto& paper : papers) {
        PreviewRequest request = A4Request(1, paper.usOrientation);
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

Section Labels()
{
    Section section = {"Labels of a model in the place of M", {}};
    const auto add = [&](const char* cCaption, const WCHAR* wcLabel, i16 sLayout) -> Tile& {
        section.tiles.push_back(TileOf(cCaption, A4Request(sLayout)));
        section.tiles.back().wcLabel = wcLabel;
        return section.tiles.back();
    };
    add("one letter", TEXT("H"), 1);
    add("two letters", TEXT("HX"), 1);
    add("two, 4 a sheet", TEXT("HX"), 4);
    add("two, watermark", TEXT("HX"), 1).entry = TextEntry(TEXT("DRAFT"), 450, true);
    add("two, watermark on 2", TEXT("HX"), 2).entry = TextEntry(TEXT("DRAFT"), 450, true);
    add("one, watermark", TEXT("H"), 1).entry = TextEntry(TEXT("DRAFT"), 450, true);
    return section;
}

Section Texts()
{
    constexpr u16 ausAngles[] = {0, 450, 900, 2250, 3150};
    Section section = {"Text watermarks of 180 points, solid and outlined", {}, TEXT_FRAME};
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
    Section section = {"Text watermarks on several pages and in several styles", {}, TEXT_FRAME};
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
    draft.WMOutline = 0;
    add("italic, solid", 1, draft, 0);
    draft.WMItalic = 0;
    draft.WMBold = 1;
    add("bold, solid", 1, draft, 0);
    draft.WMOutline = 1;
    add("bold", 1, draft, 0);
    draft.WMPositionX = 3000;
    draft.WMPositionY = 6000;
    add("moved by 30, 60 mm", 1, draft, 0);
    draft.WMOutline = 0;
    draft.WMColor = 0x808080;
    draft.WMSize = 96;
    add("96 points, grey, moved", 1, draft, 0);
    return section;
}

/* Each is asked for in a face that lacks its letters, by its character set. */
Section Scripts()
{
    const struct {
        const char* cCaption;
        const WCHAR* wcText;
        u8 bCharSet;
    } scripts[] = {{"Hebrew", TEXT("\u05D8\u05D9\u05D5\u05D8\u05D4"), 177},
                   {"Arabic", TEXT("\u0645\u0633\u0648\u062F\u0629"), 178},
                   {"mixed", TEXT("A4 \u05D8\u05D9\u05D5\u05D8\u05D4 \u0645\u0633\u0648\u062F\u0629"), 178},
                   {"Cyrillic", TEXT("\u041F\u0440\u043E\u0435\u043A\u0442"), 204},
                   {"Greek", TEXT("\u03A3\u03C7\u03AD\u03B4\u03B9\u03BF"), 161}};
    Section section = {"Other scripts, solid and outlined", {}, TEXT_FRAME};
    for (const bool bOutline : {false, true}) {
        for (const auto& script : scripts) {
            Tile tile =
                TileOf(std::string(script.cCaption) + (bOutline ? ", outline" : ", solid"), A4Request());
            tile.entry = TextEntry(script.wcText, 450, bOutline);
            tile.entry.WMSize = 100;
            tile.entry.WMCharSet = script.bCharSet;
            tile.entry.WMRTL = script.bCharSet == 177 || script.bCharSet == 178;
            section.tiles.push_back(tile);
        }
    }
    return section;
}

Section Images()
{
    Section section = {
        "Image watermarks by placement, with offset and scale, and on several pages", {}, IMAGE_FRAME};
    const auto add = [&](const char* cCaption, u16 usPlacement, i16 sLayout) -> Tile& {
        section.tiles.push_back(TileOf(cCaption, A4Request(sLayout)));
        section.tiles.back().entry = ImageEntry(usPlacement);
        return section.tiles.back();
    };
    const char* acPlaces[] = {"centre", "tiled",    "top",       "right",       "bottom",
                              "left",   "top left", "top right", "bottom left", "bottom right"};
    for (u16 i = 0; i < 10; i++) {
        add(acPlaces[i], i, 1);
    }
    Tile& moved = add("200 percent, moved", 0, 1);
    moved.entry.WMScaleX = moved.entry.WMScaleY = 200;
    moved.entry.WMPositionX = 2000;
    moved.entry.WMPositionY = 6000;
    Tile& cut = add("50 percent, cut off", 7, 1);
    cut.entry.WMScaleX = cut.entry.WMScaleY = 50;
    cut.entry.WMPositionX = cut.entry.WMPositionY = 500;
    Tile& four = add("4 a sheet, 300 percent", 4, 4);
    four.entry.WMScaleX = four.entry.WMScaleY = 300;
    Tile& nine = add("9 a sheet, first page", 9, 9);
    nine.entry.WMScaleX = nine.entry.WMScaleY = 200;
    nine.request.bWMOnePage = 1;
    return section;
}

/* Without page content, in the middle of the frame and as large as it allows. */
Section Editors()
{
    Section section = {"In the editors of watermarks", {}, TEXT_FRAME};
    const auto add = [&](const char* cCaption, const WatermarkEntry& entry, u16 usOrientation) {
        PreviewRequest request = A4Request(0, usOrientation);
        request.sPreviewControl = 1684;
        request.bCenterInFrame = 1;
        request.bDeviceExtent = 0;
        section.tiles.push_back(TileOf(cCaption, request));
        section.tiles.back().entry = entry;
    };
    add("text", TextEntry(TEXT("DRAFT"), 450, false), 1);
    add("text, outlined, landscape", TextEntry(TEXT("DRAFT"), 0, true), 2);
    add("image", ImageEntry(9), 1);
    add("image, tiled, landscape", ImageEntry(1), 2);
    return section;
}

/* Result: where the next section begins. */
int DrawSection(Canvas* pCanvas, PreviewTools* pTools, const Section& section, int nTop)
{
    pCanvas->Write(MARGIN, nTop, section.title);
    nTop += CAPTION;
    for (size_t i = 0; i < section.tiles.size(); i++) {
        const Tile& tile = section.tiles[i];
        const int nAt = static_cast<int>(i), nFrame = section.nFrame;
        const int x = MARGIN + nAt % section.Columns() * (nFrame + MARGIN);
        const int y = nTop + nAt / section.Columns() * section.RowHeight();
        PreviewDevice device = {3200, 4318, 21000, 29700, {}, 1};
        CopyWide(device.wcLabel, 128, tile.wcLabel);
        PreviewRequest request = tile.request;
        WatermarkEntry entry = tile.entry;
        request.pWatermark = entry.WMType == ENTRY_FREE ? nullptr : &entry;
        ComposePreview(*pTools, device, pCanvas->Context(), {x, y, x + nFrame, y + nFrame}, &request);
        pCanvas->Write(x, y + nFrame + 3, tile.caption);
    }
    return nTop + section.Rows() * section.RowHeight();
}

} // namespace

int RunGallery(const std::string& file)
{
    StartMachine();
    PutFile(wcImageFile, StampFile());
    const Section sections[] = {Layouts("Portrait", 1, 0),
                                Layouts("Portrait, with borders", 1, 1),
                                Layouts("Landscape", 2, 0),
                                Layouts("Landscape, with borders", 2, 1),
                                Layouts("Landscape, as an open page tells it", 0, 0),
                                Orders(),
                                Papers(),
                                Scalings(),
                                Labels(),
                                Texts(),
                                MoreTexts(),
                                Scripts(),
                                Images(),
                                Editors()};
    int nHeight = MARGIN;
    for (const Section& section : sections) {
        nHeight += CAPTION + section.Rows() * section.RowHeight();
    }
    {
        Canvas canvas(MARGIN + WIDTH, nHeight);
        PreviewTools tools = {};
        int y = MARGIN;
        for (const Section& section : sections) {
            y = DrawSection(&canvas, &tools, section, y);
        }
        ReleasePreviewTools(&tools);
        canvas.Save(file);
    }
    StopMachine();
    return 0;
}
