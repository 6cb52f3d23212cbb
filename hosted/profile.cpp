/* Stand-ins for the calls that read the system's own profile: the locale's values in "intl", nothing else. */
#include <algorithm>

#include "hosted/standin.h"

namespace {

constexpr DWORD INT_CHARS = 30; /* room for a number's text, NUL included; the rest is not looked at */

bool IsBlank(char16_t character)
{
    return character == u' ' || (character >= 9 && character <= 13) || character == 0x1A;
}

std::u16string_view TrimStart(std::u16string_view wcText)
{
    size_t nStart = 0;
    while (nStart < wcText.size() && IsBlank(wcText[nStart])) {
        nStart++;
    }
    return wcText.substr(nStart);
}

std::u16string_view Trim(std::u16string_view wcText)
{
    wcText = TrimStart(wcText);
    while (!wcText.empty() && IsBlank(wcText.back())) {
        wcText.remove_suffix(1);
    }
    return wcText;
}

WideText Fold(std::u16string_view wcName)
{
    WideText wcFolded(Trim(wcName));
    std::transform(wcFolded.begin(), wcFolded.end(), wcFolded.begin(), UpperChar);
    return wcFolded;
}

/* Copies a text cut to the buffer. Result: characters without the NUL. */
DWORD CopyText(std::u16string_view wcText, LPWSTR wcOut, DWORD cchOut)
{
    size_t cch = std::min<size_t>(wcText.size(), cchOut - 1);
    std::copy_n(wcText.data(), cch, wcOut);
    wcOut[cch] = u'\0';
    return static_cast<DWORD>(cch);
}

/* The same without the pair of quotation marks round the text. */
DWORD CopyValue(std::u16string_view wcText, LPWSTR wcOut, DWORD cchOut)
{
    if (wcText.size() >= 2 && wcText.front() == wcText.back() && (wcText[0] == u'"' || wcText[0] == u'\'')) {
        wcText = wcText.substr(1, wcText.size() - 2);
    }
    return CopyText(wcText, wcOut, cchOut);
}

std::u16string_view DefaultText(LPCWSTR wcDefault)
{
    std::u16string_view wcText = wcDefault ? wcDefault : u"";
    while (wcText.size() > 1 && wcText.back() == u' ') {
        wcText.remove_suffix(1);
    }
    return wcText;
}

/* The locale's numbers are decimal and have no sign. */
UINT ParseInt(const WCHAR* wcText)
{
    UINT uValue = 0;
    for (; *wcText >= u'0' && *wcText <= u'9'; wcText++) {
        uValue = uValue * 10 + static_cast<UINT>(*wcText - u'0');
    }
    return uValue;
}

DWORD LieAboutText(CallId call, LPWSTR wcOut, DWORD cchOut, DWORD cchText)
{
    if (Lies(call, LIE_UNTERMINATED)) {
        std::fill(wcOut + cchText, wcOut + cchOut, u'x');
        return cchOut;
    }
    return Lies(call, LIE_HUGE) ? 0xFFFFFFF0 : cchText;
}

/* The profile of the system itself: the locale's values in "intl", nothing in other sections. */
DWORD ReadLocale(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut, DWORD cchOut)
{
    WideText wcValue;
    bool bIntl = wcSection && wcKey && Fold(wcSection) == u"INTL";
    bool bFound = bIntl && GetLocaleValue(Trim(wcKey), &wcValue);
    return CopyValue(bFound ? wcValue : DefaultText(wcDefault), wcOut, cchOut);
}

} // namespace

DWORD WINAPI GetProfileStringW(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, LPWSTR wcOut,
                               DWORD cchOut)
{
    FAILS(GetProfileStringW);
    if (!wcOut || !cchOut) {
        return 0;
    }
    DWORD cchText = ReadLocale(wcSection, wcKey, wcDefault, wcOut, cchOut);
    return LieAboutText(CALL_GetProfileStringW, wcOut, cchOut, cchText);
}

UINT WINAPI GetProfileIntW(LPCWSTR wcSection, LPCWSTR wcKey, INT nDefault)
{
    FAILS(GetProfileIntW);
    WCHAR wcNumber[INT_CHARS];
    return ReadLocale(wcSection, wcKey, u"", wcNumber, INT_CHARS) ? ParseInt(wcNumber)
                                                                  : static_cast<UINT>(nDefault);
}
