/* Letters: how large they are, what their outlines are made of, where their ink falls, on both builds. The rows are
   what the real system gives for fonts that both builds have; smoothing is off, so that ink is ink. */
#include <algorithm>
#include <cstring>
#include <memory>

#include "support/both_builds.h"
#include "support/picture.h"

#include "platform/glyphs.h"

namespace {

constexpr BYTE WITHOUT_SMOOTHING = 3;
constexpr MAT2 IDENTITY = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
constexpr COLORREF WHITE = 0xFFFFFF, GREEN = 0x80FF80;

struct Face {
    const WCHAR* wcName;
    int nHeight, nAngle = 0, nWeight = FW_NORMAL;
    BYTE bItalic = 0, bCharSet = 0;
};

class TextOutput : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        pCanvas = std::make_unique<Canvas>(200, 120, WHITE);
        hDc = pCanvas->Dc();
        SetBkMode(hDc, TRANSPARENT);
    }
    void TearDown() override
    {
        UseFont(nullptr);
        pCanvas.reset();
        BothBuilds::TearDown();
    }
    void Use(const Face& face)
    {
        LOGFONTW font = {};
        font.lfHeight = face.nHeight;
        font.lfEscapement = font.lfOrientation = face.nAngle;
        font.lfWeight = face.nWeight;
        font.lfItalic = face.bItalic;
        font.lfCharSet = face.bCharSet;
        font.lfQuality = WITHOUT_SMOOTHING;
        std::copy_n(face.wcName, WideString(face.wcName).size(), font.lfFaceName);
        UseFont(CreateFontIndirectW(&font));
    }
    /* A new canvas of one colour. */
    void Wipe(COLORREF color)
    {
        Canvas fresh(200, 120, color);
        BitBlt(hDc, 0, 0, 200, 120, fresh.Dc(), 0, 0, SRCCOPY);
    }
    /* "left,top..right,bottom count" of the pixels of a colour. */
    std::string Ink(COLORREF color = 0) const
    {
        const Picture picture = pCanvas->Pixels();
        int nLeft = 999, nTop = 999, nRight = -1, nBottom = -1, nCount = 0;
        for (int y = 0; y < picture.nHeight; y++) {
            for (int x = 0; x < picture.nWidth; x++) {
                if (picture.At(x, y) == color) {
                    nLeft = std::min(nLeft, x), nRight = std::max(nRight, x);
                    nTop = std::min(nTop, y), nBottom = std::max(nBottom, y), nCount++;
                }
            }
        }
        return std::to_string(nLeft) + "," + std::to_string(nTop) + ".." + std::to_string(nRight) + "," +
               std::to_string(nBottom) + " " + std::to_string(nCount);
    }
    std::string Extent(const WideString& wcText) const
    {
        SIZE size = {-7, -7}, again = {-7, -7};
        int nLength = static_cast<int>(wcText.size());
        EXPECT_TRUE(GetTextExtentPoint32W(hDc, wcText.c_str(), nLength, &size));
        EXPECT_TRUE(GetTextExtentPointW(hDc, wcText.c_str(), nLength, &again));
        EXPECT_TRUE(size.cx == again.cx && size.cy == again.cy);
        return std::to_string(size.cx) + "x" + std::to_string(size.cy);
    }
    void Draw(const WideString& wcText, int x = 100, int y = 60, UINT uOptions = 0,
              const RECT* pRect = nullptr)
    {
        EXPECT_TRUE(ExtTextOutW(hDc, x, y, uOptions, pRect, wcText.c_str(), static_cast<UINT>(wcText.size()),
                                nullptr));
    }
    /* "size widthxheight@left,top step": of the outline and its metrics; "none" for no such glyph. */
    std::string Outline(UINT uChar, UINT uFormat, std::vector<unsigned char>* pNative)
    {
        GLYPHMETRICS metrics = {}, again = {};
        const DWORD cb = GetGlyphOutlineW(hDc, uChar, uFormat, &metrics, 0, nullptr, &IDENTITY);
        if (cb == GDI_ERROR) {
            return "none";
        }
        pNative->assign(cb, 0xCC);
        if (cb) {
            EXPECT_EQ(GetGlyphOutlineW(hDc, uChar, uFormat, &again, cb - 1, pNative->data(), &IDENTITY),
                      GDI_ERROR);
            EXPECT_EQ(GetGlyphOutlineW(hDc, uChar, uFormat, &again, cb, pNative->data(), &IDENTITY), cb);
            EXPECT_EQ(std::memcmp(&metrics, &again, sizeof metrics), 0);
        }
        return std::to_string(cb) + " " + std::to_string(metrics.gmBlackBoxX) + "x" +
               std::to_string(metrics.gmBlackBoxY) + "@" + std::to_string(metrics.gmptGlyphOrigin.x) + "," +
               std::to_string(metrics.gmptGlyphOrigin.y) + " " + std::to_string(metrics.gmCellIncX) + "," +
               std::to_string(metrics.gmCellIncY);
    }

    std::unique_ptr<Canvas> pCanvas;
    HDC hDc = nullptr;

  private:
    void UseFont(HFONT hNew)
    {
        if (!hBefore) {
            hBefore = SelectObject(hDc, GetStockObject(SYSTEM_FONT));
        }
        SelectObject(hDc, hNew ? hNew : hBefore);
        if (hFont) {
            DeleteObject(hFont);
        }
        hFont = hNew;
    }
    HGDIOBJ hBefore = nullptr;
    HFONT hFont = nullptr;
};

constexpr const WCHAR *SANS = TEXT("Liberation Sans"), *SERIF = TEXT("Liberation Serif"),
                      *DEJAVU = TEXT("DejaVu Sans");
const WideString HEBREW = TEXT("\u05D0\u05D1\u05D2"), ARABIC = TEXT("\u0628\u0628\u0628");

TEST_F(TextOutput, HeightsAndWidthsAreTheSystems)
{
    const struct {
        Face face;
        WideString wcText;
        const char* cExtent;
    } aRows[] = {
        {{SANS, 20}, TEXT("Wavy Agq 123"), "117x20"},
        {{SANS, -20}, TEXT("Wavy Agq 123"), "130x22"},
        {{SANS, 0}, TEXT("Wavy Agq 123"), "92x16"},
        {{SANS, 14}, TEXT("CONFIDENTIAL"), "88x14"}, /* the nearest size would be too high */
        {{SANS, 29}, TEXT("CONFIDENTIAL"), "190x30"},
        {{SANS, 33}, TEXT("CONFIDENTIAL"), "213x32"},
        {{SANS, 33, 450}, TEXT("CONFIDENTIAL"), "213x32"}, /* of the upright text */
        {{SANS, 59, 0, FW_BOLD, 1}, TEXT("CONFIDENTIAL"), "392x59"},
        {{SANS, 1}, TEXT("CONFIDENTIAL"), "10x1"},
        {{SERIF, 20}, TEXT("AVAVTo"), "72x20"}, /* no kerning */
        {{DEJAVU, 20}, TEXT("Wavy Agq 123"), "124x20"},
        {{TEXT("No Such Face"), 20}, TEXT("Wavy Agq 123"), "117x20"},
        {{SANS, 30, 0, FW_NORMAL, 0, 177},
         HEBREW,
         "43x30"}, /* the face lacks the set: another takes its place */
        {{SANS, 30, 0, FW_NORMAL, 0, 178}, ARABIC, "72x30"},
        {{SANS, 20}, TEXT(""), "0x0"},
    };
    for (const auto& row : aRows) {
        Use(row.face);
        EXPECT_EQ(Extent(row.wcText), row.cExtent)
            << Ascii(row.face.wcName) << " " << row.face.nHeight << " " << Ascii(row.wcText);
    }
    SIZE size;
    EXPECT_FALSE(GetTextExtentPoint32W(hDc, TEXT("abc"), -1, &size));
    EXPECT_FALSE(GetTextExtentPoint32W(nullptr, TEXT("abc"), 3, &size));
}

TEST_F(TextOutput, OutlinesHaveTheSystemsSizesBoxesAndSteps)
{
    const struct {
        Face face;
        WCHAR wcChar;
        const char* cOutline;
    } aRows[] = {
        {{SANS, 40}, 'A', "200 24x25@0,25 24,0"},
        {{SANS, 40}, 'g', "668 17x26@1,19 20,0"},
        {{SANS, 40}, ' ', "0 1x1@0,0 10,0"},
        {{SANS, 40, 450}, 'A', "200 35x35@-18,35 17,-17"},
        {{SANS, 40, 900}, 'A', "200 25x24@-25,24 0,-24"},
        {{SANS, 40, 1800}, 'g', "668 17x26@-18,7 -20,0"},
        {{SANS, 40, 2700}, 'g', "668 26x17@-7,-1 0,20"},
        {{SANS, 40, -450}, 'A', "200 35x35@0,18 17,16"},
        {{SANS, 40, 3600}, 'A', "200 24x25@0,25 24,0"},
        {{SANS, 40, 450, FW_BOLD, 1}, 'A', "200 36x36@-19,35 19,-19"},
        {{DEJAVU, 30, 0, FW_NORMAL, 0, 178}, 0x0628, "352 22x13@1,9 24,0"},
        {{SANS, 30, 0, FW_NORMAL, 0, 177}, 0x05D0, "368 14x14@2,14 17,0"},
        {{DEJAVU, 30}, 0x4E2D, "88 14x23@1,18 16,0"}, /* the box of a missing letter */
    };
    std::vector<unsigned char> native;
    for (const auto& row : aRows) {
        Use(row.face);
        EXPECT_EQ(Outline(row.wcChar, GGO_NATIVE, &native), row.cOutline)
            << Ascii(row.face.wcName) << " " << row.face.nAngle << " " << int{row.wcChar};
    }
    GLYPHMETRICS metrics;
    EXPECT_EQ(Outline(60000, GGO_NATIVE | GGO_GLYPH_INDEX, &native), "none");
    EXPECT_EQ(Outline('A', 7, &native), "none") << "a format that there is not";
    EXPECT_EQ(GetGlyphOutlineW(nullptr, 'A', GGO_NATIVE, &metrics, 0, nullptr, &IDENTITY), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineW(hDc, 'A', GGO_NATIVE, &metrics, 0, nullptr, nullptr), GDI_ERROR);
    EXPECT_NE(GetGlyphOutlineW(hDc, 'A', GGO_METRICS, &metrics, 0, nullptr, &IDENTITY), GDI_ERROR);
}

double Value(const FIXED& fixed)
{
    return fixed.value + fixed.fract / 65536.0;
}

/* Every outline is polygons of records that end where they say, within the box that is told; the real one is a pixel short at
   times. */
TEST_F(TextOutput, OutlinesAreWholePolygonsWithinTheirBoxes)
{
    int nSplines = 0, nLines = 0;
    for (const Face& face :
         {Face{SANS, 37}, {SERIF, 50, 300}, {DEJAVU, 25, 1234}, {DEJAVU, 90, 2000, FW_BOLD, 1}}) {
        Use(face);
        for (WCHAR wcChar = 0x21; wcChar < 0x17F; wcChar++) {
            std::vector<unsigned char> native;
            GLYPHMETRICS metrics;
            Outline(wcChar, GGO_NATIVE, &native);
            GetGlyphOutlineW(hDc, wcChar, GGO_METRICS, &metrics, 0, nullptr, &IDENTITY);
            const POINT corner = metrics.gmptGlyphOrigin;
            const auto inBox = [&](const POINTFX& point) {
                const double x = Value(point.x) - corner.x, y = corner.y - Value(point.y);
                return x >= -1 && x <= metrics.gmBlackBoxX + 1 && y >= -1 && y <= metrics.gmBlackBoxY + 1;
            };
            for (size_t nAt = 0; nAt < native.size();) {
                TTPOLYGONHEADER head;
                ASSERT_LE(nAt + sizeof head, native.size());
                std::memcpy(&head, native.data() + nAt, sizeof head);
                ASSERT_EQ(head.dwType, DWORD{TT_POLYGON_TYPE});
                ASSERT_TRUE(inBox(head.pfxStart)) << int{wcChar};
                const size_t nEnd = nAt + head.cb;
                ASSERT_LE(nEnd, native.size());
                nAt += sizeof head;
                WORD wBefore = 0;
                while (nAt < nEnd) {
                    WORD wType, nPoints;
                    std::memcpy(&wType, native.data() + nAt, 2);
                    std::memcpy(&nPoints, native.data() + nAt + 2, 2);
                    ASSERT_TRUE(wType == TT_PRIM_LINE || (wType == TT_PRIM_QSPLINE && nPoints >= 2));
                    ASSERT_FALSE(wType == TT_PRIM_LINE && wBefore == TT_PRIM_LINE) << "one record a run";
                    (wType == TT_PRIM_LINE ? nLines : nSplines)++;
                    wBefore = wType;
                    nAt += 4;
                    for (int i = 0; i < nPoints; i++, nAt += sizeof(POINTFX)) {
                        POINTFX point;
                        std::memcpy(&point, native.data() + nAt, sizeof point);
                        ASSERT_TRUE(inBox(point)) << int{wcChar};
                    }
                }
                ASSERT_EQ(nAt, nEnd);
            }
        }
    }
    EXPECT_GT(nLines, 1000);
    EXPECT_GT(nSplines, 1000);
}

TEST_F(TextOutput, InkFallsWhereAlignmentAndAngleSay)
{
    const struct {
        UINT uAlign;
        Face face;
        const char* cInk;
    } aRows[] = {
        {TA_LEFT, {SANS, 16}, "101,63..121,75 66"},
        {TA_CENTER, {SANS, 16}, "89,63..109,75 66"},
        {TA_BASELINE, {SANS, 16}, "101,50..121,62 66"},
        {TA_CENTER | TA_BASELINE, {SANS, 16}, "89,50..109,62 66"},
        {TA_CENTER | TA_BASELINE | TA_RTLREADING, {SANS, 16}, "89,50..109,62 66"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 300}, "86,48..110,64 71"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 450}, "86,47..109,66 67"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 900}, "90,48..102,70 66"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 1800}, "88,57..110,69 66"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 2700}, "97,49..109,71 66"},
        {TA_CENTER | TA_BASELINE, {SANS, 16, 3150}, "93,46..112,69 67"},
        {TA_CENTER | TA_BASELINE, {TEXT("DejaVu Serif"), 30, 450}, "69,33..117,77 330"},
    };
    UINT uBefore = TA_LEFT;
    for (const auto& row : aRows) {
        Use(row.face);
        Wipe(WHITE);
        EXPECT_EQ(SetTextAlign(hDc, row.uAlign), uBefore);
        uBefore = row.uAlign;
        Draw(TEXT("Hxg"));
        EXPECT_EQ(Ink(), row.cInk) << row.uAlign << " " << row.face.nAngle;
    }
    EXPECT_EQ(SetTextAlign(nullptr, 0), GDI_ERROR);
}

TEST_F(TextOutput, TextHasAColourAGroundAndABoundary)
{
    Use({SANS, 16});
    EXPECT_EQ(SetTextColor(hDc, 0x0000FF), 0u);
    Draw(TEXT("Hxg"), 90, 40);
    EXPECT_EQ(Ink(0x0000FF), "91,43..111,55 66");
    EXPECT_EQ(SetTextColor(hDc, 0), 0x0000FFu);
    const RECT rClip = {95, 50, 110, 70};
    Wipe(GREEN);
    Draw(TEXT("Hxg"), 90, 40, ETO_CLIPPED, &rClip);
    const std::string clipped = Ink();
    EXPECT_EQ(Ink(WHITE), "999,999..-1,-1 0");

    SetBkMode(hDc, OPAQUE);
    Draw(TEXT("Hxg"), 90, 40, ETO_CLIPPED, &rClip);
    EXPECT_EQ(Ink(), clipped);
    EXPECT_NE(Ink(WHITE).find("95,50..109,55"), std::string::npos) << Ink(WHITE);
    Wipe(GREEN);
    Draw(TEXT("Hxg"), 90, 60);
    EXPECT_EQ(Ink(WHITE), "90,60..114,75 334");
    EXPECT_EQ(Ink(), "91,63..111,75 66");
    EXPECT_FALSE(ExtTextOutW(nullptr, 0, 0, 0, nullptr, TEXT("A"), 1, nullptr));
    EXPECT_TRUE(ExtTextOutW(hDc, 0, 0, 0, nullptr, TEXT(""), 0, nullptr));
}

TEST_F(TextOutput, LinesAreSetIntoRectangles)
{
    const struct {
        UINT uFormat;
        const WCHAR* wcText;
        int nResult;
        const char* cInk;
    } aRows[] = {
        {DT_SINGLELINE | DT_CENTER | DT_VCENTER, TEXT("Hxg"), 55, "47,40..88,64 288"},
        {DT_SINGLELINE, TEXT("Hxg"), 30, "22,15..63,39 288"},
        {DT_SINGLELINE | DT_CENTER, TEXT("Hxg"), 30, "47,15..88,39 288"},
        {DT_SINGLELINE | DT_VCENTER, TEXT("Hxg"), 55, "22,40..63,64 288"},
        {DT_SINGLELINE | DT_CENTER | DT_VCENTER, TEXT("a&bc"), 55, "49,39..90,60 259"}, /* b is underlined */
        {DT_SINGLELINE | DT_CENTER | DT_VCENTER, TEXT(""), 30, "999,999..-1,-1 0"},
        {DT_SINGLELINE | DT_CENTER | DT_VCENTER, TEXT("Wide enough to be cut"), 55, "23,39..119,64 512"},
    };
    Use({SANS, 30});
    for (const auto& row : aRows) {
        RECT rect = {20, 10, 120, 90};
        Wipe(WHITE);
        EXPECT_EQ(DrawTextW(hDc, row.wcText, -1, &rect, row.uFormat), row.nResult) << Ascii(row.wcText);
        EXPECT_EQ(Ink(), row.cInk) << Ascii(row.wcText) << " " << row.uFormat;
    }
    RECT rect = {20, 10, 120, 90};
    EXPECT_EQ(DrawTextW(nullptr, TEXT("A"), 1, &rect, DT_SINGLELINE), 0);
}

TEST_F(TextOutput, TextOfBothDirectionsIsReorderedAndShaped)
{
    Use({DEJAVU, 20, 0, FW_NORMAL, 0, 178});
    const struct {
        UINT uAlign;
        WideString wcText;
        const char* cInk;
    } aRows[] = {{TA_LEFT, TEXT("\u05D0\u05D1(ab"), "21,43..69,57 181"},
                 {TA_RTLREADING, TEXT("\u05D0\u05D1(ab"), "21,43..67,57 181"},
                 {TA_LEFT, ARABIC + TEXT("\u0644\u0627 1"), "22,43..58,57 117"}};
    for (const auto& row : aRows) {
        Wipe(WHITE);
        SetTextAlign(hDc, row.uAlign);
        Draw(row.wcText, 20, 40);
        EXPECT_EQ(Ink(), row.cInk) << Ascii(row.wcText);
    }
}

struct Placed {
    DWORD dwSize;
    UINT nGlyphs;
    WideString wcChars, wcGlyphs;
};

Placed Place(HDC hDc, const WideString& wcText, DWORD dwFlags, UINT nRoom)
{
    Placed placed = {0, nRoom, WideString(wcText.size() + 1, 0), WideString(wcText.size() + 1, 0)};
    GCP_RESULTSW results = {};
    results.lStructSize = sizeof results;
    results.lpOutString = placed.wcChars.data();
    results.lpGlyphs = placed.wcGlyphs.data();
    results.nGlyphs = nRoom;
    placed.dwSize =
        GetCharacterPlacementW(hDc, wcText.c_str(), static_cast<int>(wcText.size()), 0, &results, dwFlags);
    placed.nGlyphs = results.nGlyphs;
    return placed;
}

TEST_F(TextOutput, PlacementTurnsHebrewAndKeepsToItsRoom)
{
    Use({DEJAVU, 30, 0, FW_NORMAL, 0, 177});
    Placed placed = Place(hDc, HEBREW, GCP_REORDER, 3);
    EXPECT_EQ(placed.dwSize, 30u << 16 | 43);
    EXPECT_EQ(placed.nGlyphs, 3u);
    EXPECT_EQ(Ascii(placed.wcChars.substr(0, 3)), "\\u05D2\\u05D1\\u05D0");
    EXPECT_EQ(Ascii(Place(hDc, TEXT("ab ") + HEBREW + TEXT(" 12"), GCP_REORDER, 9).wcChars.substr(0, 9)),
              "ab 12 \\u05D2\\u05D1\\u05D0");
    EXPECT_EQ(Ascii(Place(hDc, HEBREW, 0, 3).wcChars.substr(0, 3)), "\\u05D0\\u05D1\\u05D2");

    placed = Place(hDc, TEXT("abcdef"), 0, 4);
    EXPECT_EQ(placed.nGlyphs, 4u);
    EXPECT_EQ(Ascii(placed.wcChars.substr(0, 5)), "abcd\\u0000");
    EXPECT_EQ(placed.wcGlyphs[4], 0);
    std::vector<unsigned char> byIndex, byChar;
    EXPECT_EQ(Outline(placed.wcGlyphs[1], GGO_NATIVE | GGO_GLYPH_INDEX, &byIndex),
              Outline('b', GGO_NATIVE, &byChar));
    EXPECT_EQ(byIndex, byChar);
    EXPECT_EQ(Place(hDc, TEXT(""), GCP_REORDER, 0).dwSize, 0u);
    EXPECT_EQ(Place(nullptr, TEXT("abc"), 0, 3).dwSize, 0u);
}

/* Latin letters need no placement; a face with Arabic letters says that it has several forms of them. */
TEST_F(TextOutput, FontsTellWhatTheirLettersNeed)
{
    constexpr DWORD ALL = GCP_REORDER | GCP_GLYPHSHAPE | GCP_LIGATE | GCP_DIACRITIC;
    Use({SANS, 20});
    EXPECT_EQ(GetFontLanguageInfo(hDc) & ALL, 0u);
    Use({DEJAVU, 20});
    EXPECT_EQ(GetFontLanguageInfo(hDc) & ALL, GCP_GLYPHSHAPE);
    SetTextAlign(hDc, TA_RTLREADING);
    EXPECT_EQ(GetFontLanguageInfo(hDc) & GCP_REORDER, GCP_REORDER);
}

} // namespace
