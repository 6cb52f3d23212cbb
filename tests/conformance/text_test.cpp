/* What the library relies on of code pages and case, on both builds. */
#include "support/both_builds.h"

#include "platform/text.h"

namespace {

using TextConformance = BothBuilds;

WideString Upper(WideString wcText)
{
    EXPECT_EQ(CharUpperBuffW(wcText.data(), static_cast<DWORD>(wcText.size())), wcText.size());
    return wcText;
}

WideString Convert(const std::string& text, DWORD dwFlags, int cch)
{
    WideString wcOut(static_cast<size_t>(cch), TEXT('#'));
    int nOut =
        MultiByteToWideChar(CP_ACP, dwFlags, text.data(), static_cast<int>(text.size()), wcOut.data(), cch);
    return nOut > 0 ? wcOut.substr(0, static_cast<size_t>(nOut)) : WideString(TEXT("(failed)"));
}

} // namespace

TEST_F(TextConformance, CapitalsOfPathsInAllScriptsThatAPrinterMeets)
{
    for (const auto& [wcText, wcCapitals] :
         {std::pair(TEXT("c:\\Drv\\qa-1_{}~.xpi"), TEXT("C:\\DRV\\QA-1_{}~.XPI")),
          {TEXT("\u00E4\u00F6\u00FC\u00DF\u00F7\u00FF\u00E9"),
           TEXT("\u00C4\u00D6\u00DC\u00DF\u00F7\u0178\u00C9")},
          {TEXT("\u0101\u0142\u0148\u0161\u017E\u0151\u0133"),
           TEXT("\u0100\u0141\u0147\u0160\u017D\u0150\u0132")},
          {TEXT("\u03B1\u03C9\u03AC\u03CC\u03CE\u03C3"), TEXT("\u0391\u03A9\u0386\u038C\u038F\u03A3")},
          {TEXT("\u0430\u044F\u0451\u0457\u0491"), TEXT("\u0410\u042F\u0401\u0407\u0490")},
          {TEXT("\u3042\u4E2D\uFF11\U0001F600"), TEXT("\u3042\u4E2D\uFF11\U0001F600")}}) { /* no case */
        EXPECT_EQ(Upper(wcText), wcCapitals);
    }
}

TEST_F(TextConformance, AnsiTextBecomesWide)
{
    EXPECT_EQ(Convert("Gr\xF6\xDF \x80", 0, 16), TEXT("Gr\u00F6\u00DF \u20AC"));
    EXPECT_EQ(Convert("abc", 0, 3), TEXT("abc")); /* no NUL is added */
    EXPECT_EQ(Convert("abcd", 0, 3), TEXT("(failed)"));
    EXPECT_EQ(Convert("abc", MB_ERR_INVALID_CHARS, 8), TEXT("abc"));
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcd", 4, nullptr, 0), 4); /* measures */
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcd", 0, nullptr, 0), 0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abcd", -1, nullptr, 0), 5);
}

TEST_F(TextConformance, NamesAreTheSameOrNot)
{
    EXPECT_EQ(lstrcmpW(TEXT("Draft 1"), TEXT("Draft 1")), 0);
    EXPECT_NE(lstrcmpW(TEXT("Draft"), TEXT("draft")), 0);
    EXPECT_NE(lstrcmpW(TEXT("Draft"), TEXT("Draft ")), 0);
    EXPECT_NE(lstrcmpW(TEXT("a"), TEXT("\u00E4")), 0);
}

/* Wide text in the code page: measured first, then converted; a buffer that is too small is a failure, and no
   NUL is added that was not counted. */
TEST_F(TextConformance, WideTextBecomesAnsi)
{
    const auto convert = [](const WideString& wcText, int nChars, int cb) {
        std::string out(64, '#');
        int nOut = WideCharToMultiByte(CP_ACP, 0, wcText.c_str(), nChars, cb ? out.data() : nullptr, cb,
                                       nullptr, nullptr);
        return std::to_string(nOut) + (cb && nOut ? " " + out.substr(0, static_cast<size_t>(nOut) + 1) : "");
    };
    EXPECT_EQ(convert(TEXT("Gr\u00F6\u00DFe \u20AC"), 7, 0), "7");
    EXPECT_EQ(convert(TEXT("Gr\u00F6\u00DF \u20AC"), 6, 64), "6 Gr\xF6\xDF \x80#");
    EXPECT_EQ(convert(TEXT("abc"), -1, 0), "4");
    EXPECT_EQ(convert(TEXT("abc"), 3, 3), "3 abc#");
    EXPECT_EQ(convert(TEXT("abc"), 3, 2), "0");
    EXPECT_EQ(convert(TEXT("abc"), 0, 64), "0");
    EXPECT_EQ(convert(TEXT("a\u4E2Dx"), 3, 64), "3 a?x#");             /* not in the code page */
    EXPECT_EQ(convert(TEXT("\uFF02\u2216\u0101"), 3, 64), "3 \"\\a#"); /* the nearest that it holds */
}

/* Every character of 16 bits becomes what the system makes of it: a sum over all of them. */
TEST_F(TextConformance, EveryCharacterBecomesTheSameByte)
{
    unsigned ulSum = 0;
    for (unsigned c = 1; c < 0xE000; c++) {
        const WCHAR wcOne = static_cast<WCHAR>(c < 0xD800 ? c : c + 0x2000);
        char cOut[4] = "";
        ASSERT_EQ(WideCharToMultiByte(CP_ACP, 0, &wcOne, 1, cOut, 4, nullptr, nullptr), 1) << c;
        ulSum = ulSum * 31 + static_cast<unsigned char>(cOut[0]);
    }
    EXPECT_EQ(ulSum, 0x7B3D3F36u);
}
