/* Letters: how large they are, what their outlines are made of, where their ink falls, on both builds. The answers in
   tests/data/conformance_letters.txt are what the real system gives for fonts that both builds have; smoothing is off, so
   that ink is ink. */
#include <algorithm>
#include <cstring>
#include <memory>

#include "support/picture.h"
#include "support/script.h"

#include "platform/glyphs.h"

namespace {

constexpr BYTE WITHOUT_SMOOTHING = 3;
constexpr MAT2 IDENTITY = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
constexpr COLORREF WHITE = 0xFFFFFF, GREEN = 0x80FF80;

struct Face {
    WideString wcName;
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
        face.wcName.copy(font.lfFaceName, LF_FACESIZE - 1);
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

const WideString SANS = TEXT("Liberation Sans"), DEJAVU = TEXT("DejaVu Sans");

/* Places a text with room for so many characters: "widthxheight count characters". */
std::string Place(HDC hDc, const WideString& wcText, DWORD dwFlags, UINT nRoom, WideString* pGlyphs)
{
    WideString wcChars(wcText.size() + 1, 0);
    pGlyphs->assign(wcText.size() + 1, 0);
    GCP_RESULTSW results = {};
    results.lStructSize = sizeof results;
    results.lpOutString = wcChars.data();
    results.lpGlyphs = pGlyphs->data();
    results.nGlyphs = nRoom;
    const DWORD dwSize =
        GetCharacterPlacementW(hDc, wcText.c_str(), static_cast<int>(wcText.size()), 0, &results, dwFlags);
    EXPECT_TRUE(wcChars[nRoom] == 0 && (*pGlyphs)[nRoom] == 0) << "written behind the room";
    return std::to_string(dwSize & 0xFFFF) + "x" + std::to_string(dwSize >> 16) + " " +
           std::to_string(results.nGlyphs) + " " + Ascii(wcChars.c_str());
}

class LetterScripts : public TextOutput, public testing::WithParamInterface<Script> {
  protected:
    /* FACE HEIGHT [angle N] [bold-italic] [set N] */
    void Font(const Args& words)
    {
        Face face = {WideWord(words[0]), static_cast<int>(ToNumber(words[1]))};
        for (size_t i = 2; i < words.size(); i++) {
            face.nAngle = words[i] == "angle" ? static_cast<int>(ToNumber(words[i + 1])) : face.nAngle;
            face.bCharSet = words[i] == "set" ? static_cast<BYTE>(ToNumber(words[i + 1])) : face.bCharSet;
            if (words[i] == "bold-italic") {
                face.nWeight = FW_BOLD;
                face.bItalic = 1;
            }
        }
        Use(face);
    }
    void Align(const Args& words)
    {
        const std::map<std::string, UINT> aligns = {
            {"left", TA_LEFT}, {"center", TA_CENTER}, {"baseline", TA_BASELINE}, {"rtl", TA_RTLREADING}};
        UINT uAlign = 0;
        for (const std::string& word : words) {
            uAlign |= aligns.at(word);
        }
        EXPECT_EQ(SetTextAlign(hDc, uAlign), std::exchange(uBefore_, uAlign));
    }
    std::string InkOf(const Args& words)
    {
        Wipe(WHITE);
        Draw(WideWord(words[0]), words.size() > 1 ? static_cast<int>(ToNumber(words[1])) : 100,
             words.size() > 2 ? static_cast<int>(ToNumber(words[2])) : 60);
        return Ink();
    }
    /* Of the text in the rectangle: the result and the ink. */
    std::string Set(const Args& words)
    {
        RECT rect = {20, 10, 120, 90};
        const UINT uFormat = (words[1].find('c') != std::string::npos ? DT_CENTER : 0) |
                             (words[1].find('v') != std::string::npos ? DT_VCENTER : 0);
        Wipe(WHITE);
        const int nResult = DrawTextW(hDc, WideWord(words[0]).c_str(), -1, &rect, DT_SINGLELINE | uFormat);
        return std::to_string(nResult) + ": " + Ink();
    }
    UINT uBefore_ = TA_LEFT;
    std::vector<unsigned char> native_;
    WideString glyphs_;
};

TEST_P(LetterScripts, AreTheSystems)
{
    const Verbs verbs = {
        DEED("font", Font(w)),
        VERB("extent", Extent(WideWord(w[0]))),
        VERB("outline", Outline(WideWord(w[0])[0], GGO_NATIVE, &native_)),
        DEED("align", Align(w)),
        VERB("ink", InkOf(w)),
        VERB("set", Set(w)),
        VERB("place", Place(hDc, WideWord(w[0]), 0, static_cast<UINT>(ToNumber(w[1])), &glyphs_)),
        VERB("reorder", Place(hDc, WideWord(w[0]), GCP_REORDER, static_cast<UINT>(ToNumber(w[1])), &glyphs_)),
    };
    Play(GetParam(), verbs);
}

INSTANTIATE_TEST_SUITE_P(, LetterScripts, testing::ValuesIn(ReadScripts("conformance_letters.txt")),
                         ScriptName);

TEST_F(TextOutput, CallsWithoutAContextOrAGlyphFail)
{
    SIZE size;
    EXPECT_FALSE(GetTextExtentPoint32W(hDc, TEXT("abc"), -1, &size));
    EXPECT_FALSE(GetTextExtentPoint32W(nullptr, TEXT("abc"), 3, &size));
    Use({SANS, 40});
    std::vector<unsigned char> native;
    GLYPHMETRICS metrics;
    EXPECT_EQ(Outline(60000, GGO_NATIVE | GGO_GLYPH_INDEX, &native), "none");
    EXPECT_EQ(Outline('A', 7, &native), "none") << "a format that there is not";
    EXPECT_EQ(GetGlyphOutlineW(nullptr, 'A', GGO_NATIVE, &metrics, 0, nullptr, &IDENTITY), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineW(hDc, 'A', GGO_NATIVE, &metrics, 0, nullptr, nullptr), GDI_ERROR);
    EXPECT_EQ(SetTextAlign(nullptr, 0), GDI_ERROR);
    RECT rect = {20, 10, 120, 90};
    EXPECT_EQ(DrawTextW(nullptr, TEXT("A"), 1, &rect, DT_SINGLELINE), 0);
    EXPECT_FALSE(ExtTextOutW(nullptr, 0, 0, 0, nullptr, TEXT("A"), 1, nullptr));
    EXPECT_TRUE(ExtTextOutW(hDc, 0, 0, 0, nullptr, TEXT(""), 0, nullptr));
}

/* Every outline is polygons of records that end where they say, within the box that is told; the real one is a pixel
   short at times. */
TEST_F(TextOutput, OutlinesAreWholePolygonsWithinTheirBoxes)
{
    const auto value = [](const FIXED& fixed) { return fixed.value + fixed.fract / 65536.0; };
    int nSplines = 0, nLines = 0;
    for (const Face& face : {Face{SANS, 37}, {DEJAVU, 25, 1234}, {DEJAVU, 90, 2000, FW_BOLD, 1}}) {
        Use(face);
        for (WCHAR wcChar = 0x21; wcChar < 0x17F; wcChar++) {
            std::vector<unsigned char> native;
            GLYPHMETRICS metrics;
            Outline(wcChar, GGO_NATIVE, &native);
            GetGlyphOutlineW(hDc, wcChar, GGO_METRICS, &metrics, 0, nullptr, &IDENTITY);
            const POINT corner = metrics.gmptGlyphOrigin;
            size_t nAt = 0;
            const auto take = [&](auto* pValue) {
                ASSERT_LE(nAt + sizeof *pValue, native.size());
                std::memcpy(pValue, native.data() + nAt, sizeof *pValue);
                nAt += sizeof *pValue;
            };
            const auto expectInBox = [&](const POINTFX& point) {
                const double x = value(point.x) - corner.x, y = corner.y - value(point.y);
                EXPECT_TRUE(x >= -1 && x <= metrics.gmBlackBoxX + 1 && y >= -1 &&
                            y <= metrics.gmBlackBoxY + 1)
                    << int{wcChar};
            };
            while (nAt < native.size() && !HasFatalFailure()) {
                TTPOLYGONHEADER head = {};
                const size_t nStart = nAt;
                take(&head);
                ASSERT_EQ(head.dwType, DWORD{TT_POLYGON_TYPE});
                expectInBox(head.pfxStart);
                for (WORD wBefore = 0; nAt < nStart + head.cb && !HasFatalFailure();) {
                    WORD wType = 0, nPoints = 0;
                    POINTFX point;
                    take(&wType);
                    take(&nPoints);
                    ASSERT_TRUE(wType == TT_PRIM_LINE || (wType == TT_PRIM_QSPLINE && nPoints >= 2));
                    ASSERT_FALSE(wType == TT_PRIM_LINE && wBefore == TT_PRIM_LINE) << "one record a run";
                    (wType == TT_PRIM_LINE ? nLines : nSplines)++;
                    wBefore = wType;
                    for (int i = 0; i < nPoints; i++) {
                        take(&point);
                        expectInBox(point);
                    }
                }
                ASSERT_EQ(nAt, nStart + head.cb);
            }
        }
    }
    EXPECT_GT(nLines, 1000);
    EXPECT_GT(nSplines, 1000);
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
}

TEST_F(TextOutput, PlacementGivesTheGlyphsOfItsCharacters)
{
    Use({DEJAVU, 30});
    WideString wcGlyphs;
    EXPECT_EQ(Place(hDc, TEXT("abc"), 0, 3, &wcGlyphs), "47x30 3 abc");
    std::vector<unsigned char> byIndex, byChar;
    EXPECT_EQ(Outline(wcGlyphs[1], GGO_NATIVE | GGO_GLYPH_INDEX, &byIndex),
              Outline('b', GGO_NATIVE, &byChar));
    EXPECT_EQ(byIndex, byChar);
    EXPECT_EQ(Place(nullptr, TEXT("abc"), 0, 3, &wcGlyphs).substr(0, 4), "0x0 ");
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
