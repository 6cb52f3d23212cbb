/* What only the hosted letters do: forms of Arabic letters, lies, and fonts that are given back. Sizes and ink are
   held against the real system by tests/conformance/text_output_test.cpp. */
#include <algorithm>
#include <memory>

#include "hosted/pictures.h"
#include "hosted/standin.h"
#include "support/both_builds.h"

namespace {

constexpr MAT2 IDENTITY = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};

class HostedGlyphs : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        hDc = CreateCompatibleDC(nullptr);
        LOGFONTW font = {};
        font.lfHeight = 30;
        font.lfCharSet = 178;
        std::u16string_view(u"DejaVu Sans").copy(font.lfFaceName, LF_FACESIZE - 1);
        hFont = CreateFontIndirectW(&font);
        hBefore = SelectObject(hDc, hFont);
    }
    void TearDown() override
    {
        TellLies(LIE_NONE);
        SelectObject(hDc, hBefore);
        DeleteObject(hFont);
        DeleteDC(hDc);
        BothBuilds::TearDown();
    }
    /* Glyphs of a text from left to right; none when the call fails. */
    WideText Glyphs(std::u16string_view wcText, DWORD dwFlags, DWORD dwSize = sizeof(GCP_RESULTSW))
    {
        WideText wcGlyphs(wcText.size(), 0);
        GCP_RESULTSW results = {};
        results.lStructSize = dwSize;
        results.lpGlyphs = wcGlyphs.data();
        results.nGlyphs = static_cast<UINT>(wcText.size());
        const bool bPlaced = GetCharacterPlacementW(hDc, wcText.data(), static_cast<int>(wcText.size()), 0,
                                                    &results, dwFlags) != 0;
        nTold = results.nGlyphs;
        wcGlyphs.resize(bPlaced ? std::min<size_t>(results.nGlyphs, wcGlyphs.size()) : 0);
        return wcGlyphs;
    }
    DWORD Outline(Bytes* pNative)
    {
        GLYPHMETRICS metrics;
        return GetGlyphOutlineW(hDc, u'g', GGO_NATIVE, &metrics, static_cast<DWORD>(pNative->size()),
                                pNative->data(), &IDENTITY);
    }

    HDC hDc = nullptr;
    HFONT hFont = nullptr;
    HGDIOBJ hBefore = nullptr;
    UINT nTold = 0;
};

constexpr DWORD ALL_FORMS = GCP_REORDER | GCP_GLYPHSHAPE | GCP_LIGATE;

TEST_F(HostedGlyphs, ArabicLettersTakeTheFormOfTheirPlace)
{
    EXPECT_EQ(GetFontLanguageInfo(hDc) & ALL_FORMS, ALL_FORMS);
    const WideText wcShaped = Glyphs(u"\u0628\u0628\u0628", ALL_FORMS);
    ASSERT_EQ(wcShaped.size(), 3u);
    EXPECT_NE(wcShaped[0], wcShaped[1]); /* final, medial, initial */
    EXPECT_NE(wcShaped[1], wcShaped[2]);
    EXPECT_NE(wcShaped[0], wcShaped[2]);
    EXPECT_EQ(Glyphs(u"\u0628\u0628\u0628", GCP_REORDER), WideText(3, Glyphs(u"\u0628", GCP_REORDER)[0]));
    EXPECT_EQ(Glyphs(u"\u0644\u0627", ALL_FORMS).size(), 1u) << "lam and alef are one letter";
    EXPECT_EQ(Glyphs(u"\u0644\u0627", GCP_REORDER | GCP_GLYPHSHAPE).size(), 2u);
    EXPECT_EQ(Glyphs(u"a\u0628\u062Cb", ALL_FORMS).substr(1, 2), Glyphs(u"\u0628\u062C", ALL_FORMS));
    EXPECT_EQ(Glyphs(u"abc", 0, sizeof(GCP_RESULTSW) - 4).size(), 0u) << "a structure of another size";
}

/* A user of a stand-in that lies must get what the lie says, and never more bytes than it gave room for. */
TEST_F(HostedGlyphs, OutlinesAndPlacementsLie)
{
    Bytes honest(Outline(std::make_unique<Bytes>().get()));
    ASSERT_EQ(Outline(&honest), honest.size());
    const auto lie = [&](LieKind kind) {
        Bytes got(honest.size(), 0xCC);
        TellLies(kind);
        const DWORD cb = Outline(&got);
        Glyphs(u"abcd", 0);
        TellLies(LIE_NONE);
        EXPECT_NE(cb == honest.size() && got == honest, kind != LIE_NONE) << kind;
        return cb;
    };
    EXPECT_EQ(lie(LIE_NONE), honest.size());
    EXPECT_EQ(nTold, 4u);
    EXPECT_EQ(lie(LIE_SHORT), honest.size() / 2);
    EXPECT_EQ(nTold, 2u);
    EXPECT_GT(lie(LIE_GROWS), honest.size());
    EXPECT_GT(nTold, 4u);
    lie(LIE_HUGE);
    EXPECT_EQ(nTold, 0xFFFFFFFFu);
}

/* Far more fonts than are kept open at once, of all sizes that a record can ask for; nothing is left over. */
TEST_F(HostedGlyphs, AnySizeAndAngleHasAFont)
{
    constexpr LONG aSizes[] = {0, 1, -1, 7, 300, 5000, 0x7FFFFFFF, -0x7FFFFFFF - 1};
    for (LONG lHeight : aSizes) {
        for (LONG lAngle : {3, 450, -0x7FFFFFFF - 1}) {
            LOGFONTW font = {};
            font.lfHeight = lHeight;
            font.lfWidth = lAngle == 3 ? lHeight : 0;
            font.lfEscapement = lAngle;
            std::fill_n(font.lfFaceName, LF_FACESIZE, u'F'); /* without an end */
            const HFONT hOdd = CreateFontIndirectW(&font);
            ASSERT_EQ(SelectObject(hDc, hOdd), hFont);
            SIZE size = {};
            EXPECT_TRUE(GetTextExtentPoint32W(hDc, u"Ag", 2, &size));
            EXPECT_TRUE(size.cx > 0 && size.cy > 0) << lHeight << " " << lAngle;
            EXPECT_TRUE(ExtTextOutW(hDc, 0, 0, 0, nullptr, u"i\u0628", 2, nullptr));
            Bytes native;
            EXPECT_NE(Outline(&native), GDI_ERROR);
            SelectObject(hDc, hFont);
            EXPECT_TRUE(DeleteObject(hOdd));
        }
    }
    EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr);
}

} // namespace
