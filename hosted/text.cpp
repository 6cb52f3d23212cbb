/* Stand-ins for code pages and case. Code page 1252 in full, 65001 (UTF-8), and of 932 the part that tests
   of two-byte text need: ASCII, half-width katakana and hiragana. */
#include "hosted/best_fit.h"
#include "hosted/standin.h"

namespace {

UINT uMachineCodePage = 1252;

/* 0x80 to 0x9F of code page 1252; the five free bytes map to themselves. */
constexpr WCHAR awcUpperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsLead932(u8 bByte)
{
    return (bByte >= 0x81 && bByte <= 0x9F) || (bByte >= 0xE0 && bByte <= 0xFC);
}

/* Reads one character. Result: bytes taken; *pbBad for a sequence that stands for none. */
size_t TakeCharacter(UINT uPage, const u8* pBytes, size_t cb, u32* pulCode, bool* pbBad)
{
    u8 bFirst = pBytes[0];
    if (uPage == 65001 && bFirst >= 0x80) {
        int nMore = bFirst >= 0xC2 && bFirst < 0xE0   ? 1
                    : bFirst >= 0xE0 && bFirst < 0xF0 ? 2
                    : bFirst >= 0xF0 && bFirst < 0xF5 ? 3
                                                      : 0;
        u32 ulCode = nMore == 1 ? bFirst & 0x1Fu : nMore == 2 ? bFirst & 0x0Fu : bFirst & 0x07u;
        for (int i = 1; i <= nMore; i++) {
            if (static_cast<size_t>(i) >= cb || (pBytes[i] & 0xC0) != 0x80) {
                nMore = 0;
                break;
            }
            ulCode = ulCode << 6 | (pBytes[i] & 0x3F);
        }
        bool bShort =
            (nMore == 2 && ulCode < 0x800) || (nMore == 3 && (ulCode < 0x10000 || ulCode > 0x10FFFF));
        *pbBad = nMore == 0 || bShort || (ulCode >= 0xD800 && ulCode < 0xE000);
        *pulCode = *pbBad ? 0xFFFD : ulCode;
        return *pbBad ? 1 : static_cast<size_t>(nMore) + 1;
    }
    *pbBad = false;
    if (uPage == 932 && bFirst >= 0x80) {
        if (bFirst >= 0xA1 && bFirst <= 0xDF) {
            *pulCode = 0xFF61u + bFirst - 0xA1u;
            return 1;
        }
        if (bFirst == 0x82 && cb > 1 && pBytes[1] >= 0x9F && pBytes[1] <= 0xF1) {
            *pulCode = 0x3041u + pBytes[1] - 0x9Fu;
            return 2;
        }
        *pbBad = true;
        *pulCode = 0x30FB;
        return IsLead932(bFirst) && cb > 1 && pBytes[1] ? 2 : 1;
    }
    *pulCode = uPage == 1252 && bFirst >= 0x80 && bFirst < 0xA0 ? awcUpperControls[bFirst - 0x80] : bFirst;
    return 1;
}

void PutCode(WideText* pText, u32 ulCode)
{
    if (ulCode > 0xFFFF) {
        pText->push_back(static_cast<WCHAR>(0xD7C0 + (ulCode >> 10)));
        pText->push_back(static_cast<WCHAR>(0xDC00 + (ulCode & 0x3FF)));
    } else {
        pText->push_back(static_cast<WCHAR>(ulCode));
    }
}

void PutUtf8(std::string* pText, u32 ulCode)
{
    if (ulCode < 0x80) {
        pText->push_back(static_cast<char>(ulCode));
    } else if (ulCode < 0x800) {
        pText->push_back(static_cast<char>(0xC0 | ulCode >> 6));
        pText->push_back(static_cast<char>(0x80 | (ulCode & 0x3F)));
    } else if (ulCode < 0x10000) {
        pText->push_back(static_cast<char>(0xE0 | ulCode >> 12));
        pText->push_back(static_cast<char>(0x80 | (ulCode >> 6 & 0x3F)));
        pText->push_back(static_cast<char>(0x80 | (ulCode & 0x3F)));
    } else {
        pText->push_back(static_cast<char>(0xF0 | ulCode >> 18));
        pText->push_back(static_cast<char>(0x80 | (ulCode >> 12 & 0x3F)));
        pText->push_back(static_cast<char>(0x80 | (ulCode >> 6 & 0x3F)));
        pText->push_back(static_cast<char>(0x80 | (ulCode & 0x3F)));
    }
}

/* Takes one code point; a lone half of a pair passes as itself. */
u32 NextCode(std::u16string_view wcText, size_t* pAt)
{
    u32 ulCode = wcText[(*pAt)++];
    if ((ulCode & 0xFC00) == 0xD800 && *pAt < wcText.size() && (wcText[*pAt] & 0xFC00) == 0xDC00) {
        ulCode = 0x10000 + ((ulCode & 0x3FF) << 10) + (wcText[(*pAt)++] & 0x3FFu);
    }
    return ulCode;
}

/* The nearest byte that code page 1252 has for a character that it does not hold. */
char BestFit(u32 ulCode)
{
    if (ulCode >= 0xFF01 && ulCode <= 0xFF5E) {
        return static_cast<char>(ulCode - 0xFF01 + '!');
    }
    size_t nAt = ulCode <= 0xFFFF ? wcBestFitFrom.find(static_cast<char16_t>(ulCode)) : wcBestFitFrom.npos;
    return nAt == wcBestFitFrom.npos ? '?' : cBestFitTo[nAt];
}

} // namespace

void SetCodePage(UINT uCodePage)
{
    uMachineCodePage = uCodePage;
}

int WINAPI MultiByteToWideChar(UINT uCodePage, DWORD dwFlags, LPCSTR cText, int cbText, LPWSTR wcOut,
                               int cchOut)
{
    FAILS(MultiByteToWideChar);
    UINT uPage = uCodePage == CP_ACP ? uMachineCodePage : uCodePage;
    if ((uCodePage != CP_ACP && uCodePage != CP_UTF8) || !cText || cbText == 0 || cbText < -1 || cchOut < 0) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    size_t cb = cbText < 0 ? std::char_traits<char>::length(cText) + 1 : static_cast<size_t>(cbText);
    const u8* pBytes = reinterpret_cast<const u8*>(cText);
    int nOut = 0;
    for (size_t nAt = 0; nAt < cb;) {
        u32 ulCode;
        bool bBad;
        nAt += TakeCharacter(uPage, pBytes + nAt, cb - nAt, &ulCode, &bBad);
        if (bBad && dwFlags & MB_ERR_INVALID_CHARS) {
            return Refuse(ERROR_NO_UNICODE_TRANSLATION);
        }
        int nUnits = ulCode > 0xFFFF ? 2 : 1;
        if (cchOut) {
            if (nOut + nUnits > cchOut) {
                return Refuse(ERROR_INSUFFICIENT_BUFFER);
            }
            if (nUnits == 2) {
                wcOut[nOut] = static_cast<WCHAR>(0xD7C0 + (ulCode >> 10));
                wcOut[nOut + 1] = static_cast<WCHAR>(0xDC00 + (ulCode & 0x3FF));
            } else {
                wcOut[nOut] = static_cast<WCHAR>(ulCode);
            }
        }
        nOut += nUnits;
    }
    return Lies(CALL_MultiByteToWideChar, LIE_HUGE) ? 0x7FFFFFFF : nOut;
}

int WINAPI WideCharToMultiByte(UINT uCodePage, DWORD dwFlags, LPCWSTR wcText, int cchText, LPSTR cOut,
                               int cbOut, LPCSTR cDefault, LPBOOL pbDefaulted)
{
    FAILS(WideCharToMultiByte);
    if (uCodePage != CP_ACP || dwFlags || cDefault || pbDefaulted || !wcText || cchText == 0 ||
        cchText < -1 || cbOut < 0 || (cbOut && !cOut)) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    size_t cch = cchText < 0 ? std::char_traits<WCHAR>::length(wcText) + 1 : static_cast<size_t>(cchText);
    std::string text = ToCodePage({wcText, cch});
    if (Lies(CALL_WideCharToMultiByte, LIE_HUGE) && !cbOut) {
        return 0x7FFFFFFF;
    }
    if (Lies(CALL_WideCharToMultiByte, LIE_SHORT) && !cbOut) {
        return static_cast<int>(text.size() / 2);
    }
    if (cbOut) {
        if (text.size() > static_cast<size_t>(cbOut)) {
            return Refuse(ERROR_INSUFFICIENT_BUFFER);
        }
        text.copy(cOut, text.size());
    }
    return static_cast<int>(text.size());
}

/* Capitals of the scripts that paths and names of a printer can meet: Latin, Greek, Cyrillic, Armenian. */
WCHAR UpperChar(WCHAR wcChar)
{
    unsigned c = wcChar;
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7) || (c >= 0x3B1 && c <= 0x3C1) ||
        (c >= 0x3C3 && c <= 0x3CB) || (c >= 0x430 && c <= 0x44F)) {
        return static_cast<WCHAR>(c - 32);
    }
    if (c < 0x80) {
        return wcChar;
    }
    if (c == 0xB5 || c == 0x3C2) {
        return c == 0xB5 ? u'\u039C' : u'\u03A3';
    }
    if (c == 0xFF) {
        return u'\u0178';
    }
    bool bOddIsSmall = (c >= 0x100 && c <= 0x137 && c != 0x131 && c != 0x130) || (c >= 0x14A && c <= 0x177) ||
                       (c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) ||
                       (c >= 0x4D0 && c <= 0x52F) || (c >= 0x1E00 && c <= 0x1E95) ||
                       (c >= 0x1EA0 && c <= 0x1EFF);
    bool bEvenIsSmall =
        (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E) || (c >= 0x4C1 && c <= 0x4CE);
    if ((bOddIsSmall && c % 2 == 1) || (bEvenIsSmall && c % 2 == 0)) {
        return static_cast<WCHAR>(c - 1);
    }
    if (c == 0x131) {
        return u'I';
    }
    if (c == 0x17F) {
        return u'S';
    }
    if (c >= 0x450 && c <= 0x45F) {
        return static_cast<WCHAR>(c - 80);
    }
    if (c >= 0x561 && c <= 0x586) {
        return static_cast<WCHAR>(c - 48);
    }
    switch (c) {
    case 0x3AC: return 0x386;
    case 0x3AD:
    case 0x3AE:
    case 0x3AF: return static_cast<WCHAR>(c - 37);
    case 0x3CC: return 0x38C;
    case 0x3CD:
    case 0x3CE: return static_cast<WCHAR>(c - 63);
    case 0x4CF: return 0x4C0;
    default: return wcChar;
    }
}

DWORD WINAPI CharUpperBuffW(LPWSTR wcText, DWORD cchText)
{
    FAILS(CharUpperBuffW);
    for (DWORD i = 0; i < cchText; i++) {
        wcText[i] = UpperChar(wcText[i]);
    }
    return cchText;
}

int WINAPI lstrcmpW(LPCWSTR wcOne, LPCWSTR wcOther)
{
    FAILS(lstrcmpW);
    if (!wcOne || !wcOther) {
        return (wcOne != nullptr) - (wcOther != nullptr);
    }
    /* By letters first, small before capital where only case differs. The locale's finer rules, and the
       characters that it does not see at all, are not kept here. */
    int nCase = 0;
    for (; *wcOne && *wcOther; wcOne++, wcOther++) {
        WCHAR wcUpper = UpperChar(*wcOne), wcOtherUpper = UpperChar(*wcOther);
        if (wcUpper != wcOtherUpper) {
            return wcUpper < wcOtherUpper ? -1 : 1;
        }
        if (!nCase && *wcOne != *wcOther) {
            nCase = *wcOne == wcUpper ? 1 : -1;
        }
    }
    return *wcOne ? 1 : *wcOther ? -1 : nCase;
}

WideText LowerText(std::u16string_view wcText)
{
    WideText wcLower(wcText);
    for (char16_t& character : wcLower) {
        character = UpperChar(character);
        character =
            character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + 32) : character;
    }
    return wcLower;
}

bool SameName(std::u16string_view wcOne, std::u16string_view wcOther)
{
    if (wcOne.size() != wcOther.size()) {
        return false;
    }
    for (size_t i = 0; i < wcOne.size(); i++) {
        if (wcOne[i] != wcOther[i] && UpperChar(wcOne[i]) != UpperChar(wcOther[i])) {
            return false;
        }
    }
    return true;
}

std::string Narrow(std::u16string_view wcText)
{
    std::string text;
    for (size_t nAt = 0; nAt < wcText.size();) {
        PutUtf8(&text, NextCode(wcText, &nAt));
    }
    return text;
}

WideText Widen(std::string_view text)
{
    UINT uKept = uMachineCodePage;
    uMachineCodePage = 65001;
    WideText wcText = FromCodePage(text.data(), text.size());
    uMachineCodePage = uKept;
    return wcText;
}

WideText FromCodePage(const char* cText, size_t cb)
{
    WideText wcText;
    for (size_t nAt = 0; nAt < cb;) {
        u32 ulCode;
        bool bBad;
        nAt += TakeCharacter(uMachineCodePage, reinterpret_cast<const u8*>(cText) + nAt, cb - nAt, &ulCode,
                             &bBad);
        PutCode(&wcText, ulCode);
    }
    return wcText;
}

std::string ToCodePage(std::u16string_view wcText)
{
    std::string text;
    for (size_t nAt = 0; nAt < wcText.size();) {
        u32 ulCode = NextCode(wcText, &nAt);
        if (uMachineCodePage == 65001) {
            PutUtf8(&text, ulCode);
            continue;
        }
        char cFound = ulCode < 0x80              ? static_cast<char>(ulCode)
                      : uMachineCodePage == 1252 ? BestFit(ulCode)
                                                 : '?';
        for (int i = 0x80; uMachineCodePage == 1252 && ulCode >= 0x80 && i < 0x100; i++) {
            if ((i < 0xA0 ? awcUpperControls[i - 0x80] : static_cast<unsigned>(i)) == ulCode) {
                cFound = static_cast<char>(i);
            }
        }
        if (uMachineCodePage == 932 && ulCode >= 0xFF61 && ulCode <= 0xFF9F) {
            cFound = static_cast<char>(ulCode - 0xFF61 + 0xA1);
        }
        if (uMachineCodePage == 932 && ulCode >= 0x3041 && ulCode <= 0x3093) {
            text.push_back(static_cast<char>(0x82));
            cFound = static_cast<char>(ulCode - 0x3041 + 0x9F);
        }
        text.push_back(cFound);
    }
    return text;
}
