/* What a painting of the preview costs: 25 cells with a text watermark and 4 cells with an image, against the same shapes
   drawn by the same calls into a surface that is there, with nothing of the library around them. Exit code 1 when a ratio
   is over its figure, when objects are made anew, or when a large image costs more in 25 cells than in one. */
#include <cstring>

#include "bench/watch.h"
#include "description/control_ids.h"
#include "hosted/machine.h"
#include "preview/preview_geometry.h"
#include "preview/preview_tools.h"
#include "tests/support/bitmap_builder.h"

namespace {

constexpr double FIGURE = 2.0;
constexpr double CELLS_FIGURE = 1.5;
constexpr int ROUNDS = 60, LARGE_ROUNDS = 5, PAINTS = 100;
constexpr RECT FRAME = {12, 20, 172, 180};
constexpr const WCHAR *IMAGE = u"C:\\IMAGES\\LOGO.BMP", *LARGE_IMAGE = u"C:\\IMAGES\\LARGE.BMP";
constexpr i32 IMAGE_WIDTH = 100, IMAGE_HEIGHT = 60, LARGE_SIDE = 4000;

struct Sheet {
    PreviewDevice device = {3200, 4318, 21590, 27940, u"M", 0};
    PreviewRequest request = {};
    WatermarkEntry watermark = {};

    Sheet(i16 sLayout, u32 ulType)
    {
        request.lPageWidth = 21000;
        request.lPageLength = 29700;
        request.sOrientation = 1;
        request.sLayout = sLayout;
        request.sPreviewControl = IDC_PREVIEW;
        request.bDeviceExtent = request.bColor = request.bBorders = 1;
        ResetWatermarkEntry(&watermark);
        watermark.WMType = ulType;
        if (ulType == ENTRY_TEXT) {
            std::memcpy(watermark.WMString, u"Draft", sizeof u"Draft");
        } else if (ulType == ENTRY_IMAGE) {
            std::memset(watermark.WMImageName, 0, sizeof watermark.WMImageName);
            std::u16string_view(IMAGE).copy(watermark.WMImageName, PATH_CHARS);
            watermark.WMResolution = 50;
            watermark.WMScaleX = watermark.WMScaleY = 100;
        }
    }
};

void Paint(PreviewTools& tools, HDC hDc, const Sheet& sheet)
{
    Sheet painted = sheet;
    painted.request.pWatermark = painted.watermark.WMType ? &painted.watermark : nullptr;
    ComposePreview(tools, painted.device, hDc, FRAME, &painted.request);
}

/* The same work with everything known and made beforehand; of the image its rows. */
struct Floor {
    PreviewGeometry geometry{};
    WatermarkEntry entry{}; /* as arranged */
    Bytes file;
    HDC hSurfaceDc = nullptr, hImageDc = nullptr;
    HBITMAP hSurface = nullptr, hSurfaceBefore = nullptr;
    HFONT hFont = nullptr;

    Floor(HDC hDc, const Sheet& sheet)
    {
        Sheet arranged = sheet;
        arranged.request.pWatermark = &arranged.watermark;
        Require(ArrangePreview(arranged.device, FRAME, &arranged.request, &geometry), "floor",
                "nothing to draw");
        entry = arranged.watermark;
        hSurfaceDc = CreateCompatibleDC(hDc);
        hImageDc = CreateCompatibleDC(hDc);
        hSurface = CreateCompatibleBitmap(hDc, geometry.nWidth + 1, geometry.nHeight + 1);
        hSurfaceBefore = static_cast<HBITMAP>(SelectObject(hSurfaceDc, hSurface));
        SetBkMode(hSurfaceDc, TRANSPARENT);
        LOGFONTW font = {};
        font.lfHeight = entry.WMSize;
        font.lfEscapement = entry.WMAngle;
        font.lfWeight = FW_NORMAL;
        std::memcpy(font.lfFaceName, entry.WMFace, sizeof font.lfFaceName);
        hFont = CreateFontIndirectW(&font);
        file = GetFile(IMAGE);
    }
    ~Floor()
    {
        DeleteDC(hImageDc);
        SelectObject(hSurfaceDc, hSurfaceBefore);
        DeleteDC(hSurfaceDc);
        DeleteObject(hSurface);
        DeleteObject(hFont);
    }

    void DrawText(const RECT& rCell) const
    {
        SIZE extent;
        const HGDIOBJ hBefore = SelectObject(hSurfaceDc, hFont);
        GetTextExtentPointW(hSurfaceDc, entry.WMString, 5, &extent);
        SetTextAlign(hSurfaceDc, TA_CENTER | TA_BASELINE);
        SetTextColor(hSurfaceDc, entry.WMColor);
        ExtTextOutW(hSurfaceDc, (rCell.left + rCell.right) / 2, (rCell.top + rCell.bottom) / 2, ETO_CLIPPED,
                    &rCell, entry.WMString, 5, nullptr);
        SetTextColor(hSurfaceDc, 0);
        SetTextAlign(hSurfaceDc, TA_LEFT);
        SelectObject(hSurfaceDc, hBefore);
    }

    HBITMAP ReadImage() const
    {
        const HANDLE hFile =
            CreateFileW(IMAGE, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        u8 abHead[54], abRow[4 * IMAGE_WIDTH];
        DWORD cb;
        ReadFile(hFile, abHead, sizeof abHead, &cb, nullptr);
        BITMAPINFO info = {};
        std::memcpy(&info.bmiHeader, abHead + 14, sizeof info.bmiHeader);
        const HBITMAP hBitmap =
            CreateDIBitmap(hSurfaceDc, &info.bmiHeader, 0, nullptr, nullptr, DIB_RGB_COLORS);
        for (UINT y = 0; y < IMAGE_HEIGHT; y++) {
            ReadFile(hFile, abRow, 3 * IMAGE_WIDTH, &cb, nullptr);
            SetDIBits(hSurfaceDc, hBitmap, y, 1, abRow, &info, DIB_RGB_COLORS);
        }
        CloseHandle(hFile);
        return hBitmap;
    }

    void DrawImage(HBITMAP hBitmap, const RECT& rCell) const
    {
        const HGDIOBJ hBefore = SelectObject(hImageDc, hBitmap);
        StretchBlt(hSurfaceDc, rCell.left, rCell.top,
                   (rCell.right - rCell.left) * IMAGE_WIDTH * 2540 / (50 * 21000),
                   (rCell.right - rCell.left) * IMAGE_HEIGHT * 2540 / (50 * 21000), hImageDc, 0, 0,
                   IMAGE_WIDTH, IMAGE_HEIGHT, SRCCOPY);
        SelectObject(hImageDc, hBefore);
    }

    void Draw(HDC hDc) const
    {
        Rectangle(hDc, FRAME.left, FRAME.top, FRAME.right, FRAME.bottom);
        Rectangle(hSurfaceDc, 0, 0, geometry.nWidth, geometry.nHeight);
        const HBITMAP hImage = entry.WMType == ENTRY_IMAGE ? ReadImage() : nullptr;
        for (int i = 0; i < geometry.row.nColumns * geometry.row.nRows; i++) {
            RECT rCell = RectOfCell(geometry, i);
            Rectangle(hSurfaceDc, rCell.left, rCell.top, rCell.right, rCell.bottom);
            entry.WMType == ENTRY_TEXT ? DrawText(rCell) : DrawImage(hImage, rCell);
            const CellLabel label = LabelOfCell(geometry.row, 0, i);
            DrawTextW(hSurfaceDc, label.wcText, -1, &rCell, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        }
        if (hImage) {
            DeleteObject(hImage);
        }
        MoveToEx(hSurfaceDc, 0, 0, nullptr);
        LineTo(hSurfaceDc, geometry.nWidth - 1, 0);
        LineTo(hSurfaceDc, geometry.nWidth - 1, geometry.nHeight - 1);
        LineTo(hSurfaceDc, 0, geometry.nHeight - 1);
        LineTo(hSurfaceDc, 0, 0);
        BitBlt(hDc, geometry.rSheet.left, geometry.rSheet.top, geometry.nWidth, geometry.nHeight, hSurfaceDc,
               0, 0, SRCCOPY);
    }
};

double PaintTime(PreviewTools& tools, HDC hDc, const Sheet& sheet)
{
    Watch paint;
    for (int i = 0; i < ROUNDS; i++) {
        paint.Round(3, [&] { Paint(tools, hDc, sheet); });
    }
    return paint.best;
}

int MeasureAgainstFloor(PreviewTools& tools, HDC hDc, const Sheet& sheet, const char* cSection,
                        const char* cWhat)
{
    const Floor floor(hDc, sheet);
    Watch paint, bare;
    for (int i = 0; i < ROUNDS; i++) {
        paint.Round(3, [&] { Paint(tools, hDc, sheet); });
        bare.Round(3, [&] { floor.Draw(hDc); });
    }
    return Report(cSection, cWhat, paint.best, bare.best, FIGURE);
}

/* An image that takes long to read: in 25 cells, against one read and one cell as wide as the sheet. */
int MeasureLargeImage(PreviewTools& tools, HDC hDc)
{
    PutFile(LARGE_IMAGE, BitmapFile({LARGE_SIDE, LARGE_SIDE, 24}));
    Sheet many(25, ENTRY_IMAGE), one(0, ENTRY_IMAGE);
    Watch manyCells, oneCell;
    for (Sheet* pSheet : {&many, &one}) {
        pSheet->watermark.WMResolution = LARGE_SIDE * 2540 / 21000; /* fills its cells */
        std::u16string_view(LARGE_IMAGE).copy(pSheet->watermark.WMImageName, PATH_CHARS);
    }
    for (int i = 0; i < LARGE_ROUNDS; i++) {
        manyCells.Round(1, [&] { Paint(tools, hDc, many); });
        oneCell.Round(1, [&] { Paint(tools, hDc, one); });
    }
    return Report("cells", "25 cells with a large image, to one", manyCells.best, oneCell.best, CELLS_FIGURE);
}

/* Objects made over many paintings of every kind behind the first of each: the fonts of mock pages alone. */
int CountObjects(PreviewTools& tools, HDC hDc, const std::vector<Sheet>& sheets)
{
    ResetCallCounts();
    for (int i = 0; i < PAINTS; i++) {
        Paint(tools, hDc, sheets[static_cast<size_t>(i) % sheets.size()]);
    }
    const int nMade = CallCount(CALL_CreatePen) + CallCount(CALL_ExtCreatePen) +
                      CallCount(CALL_CreateSolidBrush) + CallCount(CALL_CreateCompatibleDC) +
                      CallCount(CALL_CreateCompatibleBitmap);
    std::printf("       objects made in %d paintings: %d, fonts %d, images %d%s\n", PAINTS, nMade,
                CallCount(CALL_CreateFontIndirectW), CallCount(CALL_CreateDIBitmap), nMade ? "  OVER" : "");
    return nMade != 0;
}

} // namespace

int main()
{
    StartMachine();
    PutFile(IMAGE, BitmapFile({IMAGE_WIDTH, IMAGE_HEIGHT, 24}));
    const HDC hScreen = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr), hDc = CreateCompatibleDC(hScreen);
    const HBITMAP hCanvas = CreateCompatibleBitmap(hScreen, 184, 200);
    const HGDIOBJ hBefore = SelectObject(hDc, hCanvas);
    int nOver = 0;
    PreviewTools tools = {};
    const Sheet page(1, ENTRY_FREE), text(25, ENTRY_TEXT), image(4, ENTRY_IMAGE);
    nOver += MeasureAgainstFloor(tools, hDc, text, "text", "25 cells with a text watermark");
    nOver += MeasureAgainstFloor(tools, hDc, image, "image", "4 cells with an image");
    std::printf("       a single page %.0f ns\n", PaintTime(tools, hDc, page));
    nOver += CountObjects(tools, hDc, {page, text, image});
    nOver += MeasureLargeImage(tools, hDc);
    ReleasePreviewTools(&tools);
    SelectObject(hDc, hBefore);
    DeleteDC(hDc);
    DeleteDC(hScreen);
    DeleteObject(hCanvas);
    StopMachine();
    return nOver != 0;
}
