/* The preview's pictures, on both builds from one source: against goldens, with the boxes of letters left out, and what
   the letters in them are. */
#include "platform/glyphs.h"
#include "preview/picture_cases.h"
#include "support/data_file.h"

namespace {

constexpr COLORREF MASK = 0xFF00FF;
constexpr UINT CENTERED = DT_CENTER | DT_VCENTER | DT_SINGLELINE;

class PreviewPicture : public BothBuilds {
  protected:
    WideString Image(u16 usBits)
    {
        const WideString tcPath = TestFolder() + TEXT("\\Four.bmp");
        PutTestFile(tcPath, FourColors(usBits));
        return tcPath;
    }
};

TEST_F(PreviewPicture, AgreesWithItsGolden)
{
    const WideString tcImage = Image(24);
    for (const DataRow& row : ReadRows("preview_goldens.txt")) {
        const PictureCase sheet = CaseOf(row[0], row[1], tcImage);
        Picture got = DrawCase(sheet);
        for (const RECT& rBox : LabelBoxes(sheet)) {
            Fill(&got, rBox, MASK);
        }
        EXPECT_EQ(AgainstGolden(sheet.name, got), "");
    }
}

/* The same letters, drawn by themselves into a white cell; in the system's face at a height of their own, unless 0. */
Picture Lettered(const RECT& rCell, const WCHAR* wcText, COLORREF color = 0, int nHeight = 0)
{
    RECT rText = {0, 0, rCell.right - rCell.left, rCell.bottom - rCell.top};
    const Canvas canvas(static_cast<int>(rText.right), static_cast<int>(rText.bottom), 0xFFFFFF);
    LOGFONTW font = {}, system = {};
    EXPECT_TRUE(GetObjectW(GetStockObject(SYSTEM_FONT), sizeof system, &system));
    font.lfHeight = nHeight;
    std::copy_n(system.lfFaceName, LF_FACESIZE, font.lfFaceName);
    const HFONT hFont = CreateFontIndirectW(&font);
    const HGDIOBJ hOld = nHeight ? SelectObject(canvas.Dc(), hFont) : GetStockObject(SYSTEM_FONT);
    SetTextColor(canvas.Dc(), color);
    DrawTextW(canvas.Dc(), wcText, -1, &rText, CENTERED);
    SelectObject(canvas.Dc(), hOld);
    DeleteObject(hFont);
    return canvas.Pixels();
}

TEST_F(PreviewPicture, LabelsStandInTheMiddleOfTheirCells)
{
    PictureCase sheet = SheetCase("", 4);
    sheet.request.bBorders = 1;
    sheet.request.sPageOrder = 3;
    const PreviewGeometry geometry = Arrange(sheet);
    const Picture got = DrawCase(sheet);
    const WCHAR* awcLabels[] = {TEXT("4"), TEXT("3"), TEXT("2"), TEXT("1")};
    for (int i = 0; i < 4; i++) {
        RECT rCell = RectOfCell(geometry, i);
        rCell = {rCell.left + 1, rCell.top + 1, rCell.right - 1, rCell.bottom - 1};
        const Picture wanted = Lettered(rCell, awcLabels[i]);
        EXPECT_NE(std::count(wanted.pixels.begin(), wanted.pixels.end(), 0u), 0) << "no ink";
        const RECT rOnCanvas = {rCell.left + geometry.rSheet.left, rCell.top + geometry.rSheet.top,
                                rCell.right + geometry.rSheet.left, rCell.bottom + geometry.rSheet.top};
        EXPECT_EQ(Compare(wanted, PartOf(got, rOnCanvas)).nPixels, 0) << "cell " << i;
    }
}

/* A label of the model replaces the mock page and its dividers, and gives way to a watermark. */
TEST_F(PreviewPicture, ALongLabelStandsAloneOnASinglePage)
{
    PictureCase sheet = SheetCase("");
    std::copy_n(TEXT("OK!"), 4, sheet.device.wcLabel);
    sheet.device.bLabel = 1;
    const PreviewGeometry geometry = Arrange(sheet);
    const RECT& rSheet = geometry.rSheet;
    const RECT rInner = {rSheet.left + 1, rSheet.top + 1, rSheet.right - 1, rSheet.bottom - 1};
    const Picture lettered = Lettered(rInner, TEXT("OK!"));
    EXPECT_EQ(Compare(lettered, PartOf(DrawCase(sheet), rInner)).nPixels, 0);
    const Picture blank = Lettered(rInner, TEXT(""));
    EXPECT_NE(Compare(lettered, blank).nPixels, 0);

    UseImage(sheet, TEXT("C:\\none.bmp"), 0);
    EXPECT_EQ(Compare(blank, PartOf(DrawCase(sheet), rInner)).nPixels, 0)
        << "under a watermark that is not there";

    sheet = SheetCase("", 4);
    std::copy_n(TEXT("OK!"), 4, sheet.device.wcLabel);
    const Picture many = DrawCase(sheet);
    const LONG x = rSheet.left + 47, y = rSheet.top + 5; /* on the divider between columns */
    EXPECT_EQ(PartOf(many, {x, y, x + 1, y + 50}), Lettered({0, 0, 1, 50}, TEXT("")));
}

TEST_F(PreviewPicture, TheLogoIsOneLetterInTheSystemsFaceInRedOrBlack)
{
    for (const bool bColor : {true, false}) {
        PictureCase sheet = SheetCase("");
        sheet.device.wcLabel[0] = 'H';
        sheet.request.bColor = bColor;
        const RECT rBox = {45 + 3, 46 + 3, 45 + 26, 46 + 26};
        const Picture wanted = Lettered(rBox, TEXT("H"), bColor ? 0x0000FF : 0, 23);
        EXPECT_GT(std::count(wanted.pixels.begin(), wanted.pixels.end(), bColor ? 0xFFu : 0u), 10);
        EXPECT_EQ(Compare(wanted, PartOf(DrawCase(sheet), rBox)).nPixels, 0);
    }
}

/* Every depth of bitmap files shows what it holds. */
TEST_F(PreviewPicture, ImagesOfAllDepthsShow)
{
    PictureCase sheet = SheetCase("", 0);
    UseImage(sheet, Image(24), 6, 60 * 2540 / 21000 + 1);
    const Picture deep = DrawCase(sheet);
    const PreviewGeometry geometry = Arrange(sheet);
    EXPECT_EQ(deep.At(static_cast<int>(geometry.rSheet.left) + 3, static_cast<int>(geometry.rSheet.top) + 3),
              0xD08000u)
        << "the lowest rows come first";
    UseImage(sheet, Image(32), 6, 60 * 2540 / 21000 + 1);
    EXPECT_EQ(Compare(deep, DrawCase(sheet)).nPixels, 0);
    for (const u16 usBits : {u16{1}, u16{4}, u16{8}}) {
        UseImage(sheet, Image(usBits), 6, 60 * 2540 / 21000 + 1);
        const RGBQUAD color = BitmapColor(usBits == 1 ? 0 : 2);
        const Picture shown = DrawCase(sheet);
        EXPECT_EQ(
            shown.At(static_cast<int>(geometry.rSheet.left) + 3, static_cast<int>(geometry.rSheet.top) + 3),
            static_cast<COLORREF>(color.rgbRed | color.rgbGreen << 8 | color.rgbBlue << 16))
            << usBits;
    }
}

TEST_F(PreviewPicture, ASwatchIsFilledAndOutlined)
{
    PreviewTools tools = {};
    const Canvas canvas(20, 20, CANVAS_COLOR);
    const HGDIOBJ hPen = SelectObject(canvas.Dc(), GetStockObject(WHITE_PEN));
    FillColorSwatch(tools, canvas.Dc(), {2, 3, 12, 9}, 0x123456);
    EXPECT_EQ(SelectObject(canvas.Dc(), hPen), GetStockObject(WHITE_PEN));
    ReleasePreviewTools(&tools);
    Picture wanted = canvas.Pixels();
    Fill(&wanted, {0, 0, 20, 20}, CANVAS_COLOR);
    Fill(&wanted, {2, 3, 12, 9}, 0);
    Fill(&wanted, {3, 4, 11, 8}, 0x123456);
    EXPECT_EQ(Compare(wanted, canvas.Pixels()).nPixels, 0);
}

} // namespace
