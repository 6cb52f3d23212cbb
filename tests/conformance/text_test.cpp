/* What the library relies on of code pages and case, on both builds. */
#include "support/script.h"

#include "platform/text.h"

namespace {

using TextConformance = BothBuilds;

class TextScripts : public BothBuilds, public testing::WithParamInterface<Script> {};

std::string Upper(WideString wcText)
{
    EXPECT_EQ(CharUpperBuffW(wcText.data(), static_cast<DWORD>(wcText.size())), wcText.size());
    return Ascii(wcText);
}

/* Text of the code page, whether invalid characters are errors, room in characters (0 measures). */
std::string ToWide(const std::string& text, DWORD dwFlags, int nBytes, int cch)
{
    WideString wcOut(static_cast<size_t>(cch), TEXT('#'));
    const int nOut =
        MultiByteToWideChar(CP_ACP, dwFlags, text.data(), nBytes, cch ? wcOut.data() : nullptr, cch);
    return std::to_string(nOut) + (nOut > 0 ? " " + Ascii(wcOut.substr(0, static_cast<size_t>(nOut))) : "");
}

/* The bytes in hexadecimal and one behind them, none when it measures. */
std::string ToAnsi(const WideString& wcText, int nChars, int cb)
{
    std::string out(64, '#'), text;
    const int nOut = WideCharToMultiByte(CP_ACP, 0, wcText.c_str(), nChars, cb ? out.data() : nullptr, cb,
                                         nullptr, nullptr);
    for (int i = 0; cb && nOut && i <= nOut; i++) {
        const auto uByte = static_cast<unsigned char>(out[static_cast<size_t>(i)]);
        text += uByte < 0x7F ? std::string(1, static_cast<char>(uByte)) : "x" + std::to_string(uByte);
    }
    return std::to_string(nOut) + " " + text;
}

SCRIPTED(TextScripts, AreConvertedAsWritten, "conformance_text.txt")
{
    const auto number = [](const Args& w, size_t n) { return static_cast<int>(ToNumber(w[n])); };
    Play(GetParam(), {VERB("upper", Upper(WideWord(w[0]))),
                      VERB("wide", ToWide(FromHex<std::string>(w[0]), 0, number(w, 1), number(w, 2))),
                      VERB("wide-valid", ToWide(FromHex<std::string>(w[0]), MB_ERR_INVALID_CHARS,
                                                number(w, 1), number(w, 2))),
                      VERB("ansi", ToAnsi(WideWord(w[0]), number(w, 1), number(w, 2))),
                      VERB("same", lstrcmpW(WideWord(w[0]).c_str(), WideWord(w[1]).c_str()) == 0)});
}

} // namespace

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
