/* Takes the text of settings files apart. */
#include "profile/profile_lines.h"

#include <cstring>

namespace {

constexpr WCHAR HIGHEST_BLANK = ' ';

/* What counts as a blank around lines, names and values. */
int IsBlank(WCHAR wcChar)
{
    return wcChar <= HIGHEST_BLANK && (wcChar == ' ' || (wcChar >= 9 && wcChar <= 13) || wcChar == 0x1A);
}

/* The part in front of the first NUL, which ends a name or value but not its line. */
TextSpan CutAtNul(TextSpan span)
{
    u32 nAt = 0;
    while (nAt < span.nLength && span.pText[nAt]) {
        nAt++;
    }
    return {span.pText, nAt};
}

} // namespace

TextSpan TrimSpan(TextSpan span)
{
    while (span.nLength && IsBlank(span.pText[0])) {
        span.pText++;
        span.nLength--;
    }
    while (span.nLength && IsBlank(span.pText[span.nLength - 1])) {
        span.nLength--;
    }
    return span;
}

u32 FindLineEnd(TextSpan text, u32 nAt)
{
    const WCHAR* const pEnd = text.pText + text.nLength;
    const WCHAR* pTo = text.pText + nAt;
    while (pTo < pEnd && (*pTo > '\r' || (*pTo != '\r' && *pTo != '\n'))) {
        pTo++;
    }
    return static_cast<u32>(pTo - text.pText);
}

u32 FindNextLine(TextSpan text, u32 nLineEnd)
{
    if (nLineEnd == text.nLength) {
        return nLineEnd;
    }
    int bPair =
        text.pText[nLineEnd] == '\r' && nLineEnd + 1 < text.nLength && text.pText[nLineEnd + 1] == '\n';
    return nLineEnd + (bPair ? 2 : 1);
}

TextSpan TakeLine(TextSpan text, u32* pnAt)
{
    u32 nFrom = *pnAt, nEnd = FindLineEnd(text, nFrom);
    *pnAt = FindNextLine(text, nEnd);
    return TrimSpan({text.pText + nFrom, nEnd - nFrom});
}

int IsHeader(TextSpan line, TextSpan* pName)
{
    if (!line.nLength || line.pText[0] != '[') {
        return 0;
    }
    u32 nClose = line.nLength - 1;
    while (nClose && line.pText[nClose] != ']') {
        nClose--;
    }
    if (!nClose) {
        return 0;
    }
    *pName = CutAtNul(TrimSpan({line.pText + 1, nClose - 1}));
    return 1;
}

void SplitLine(TextSpan line, TextSpan* pKey, TextSpan* pValue)
{
    u32 nAt = 0;
    while (nAt < line.nLength && line.pText[nAt] != '=') {
        nAt++;
    }
    *pKey = CutAtNul(TrimSpan({line.pText, nAt}));
    *pValue = {nullptr, 0};
    if (nAt < line.nLength) {
        *pValue = CutAtNul(TrimSpan({line.pText + nAt + 1, line.nLength - nAt - 1}));
    }
}

TextSpan ValueAt(TextSpan text, u32 nAt)
{
    return CutAtNul(TrimSpan({text.pText + nAt, FindLineEnd(text, nAt) - nAt}));
}

u32 FindSectionBody(TextSpan text, TextSpan name, u32* pnHeader)
{
    u32 nNext = 0;
    for (u32 nAt = 0; nAt < text.nLength && name.nLength; nAt = nNext) {
        TextSpan found;
        if (IsHeader(TakeLine(text, &nNext), &found) && IsSameName(found, name)) {
            if (pnHeader) {
                *pnHeader = nAt;
            }
            return nNext;
        }
    }
    return name.nLength ? text.nLength : 0;
}

int AddListName(TextSpan name, WCHAR* wcOut, u32 cch, u32* pnUsed)
{
    if (u64{*pnUsed} + name.nLength + 1 + 2 > cch) {
        return 0;
    }
    std::memcpy(wcOut + *pnUsed, name.pText, name.nLength * sizeof(WCHAR));
    *pnUsed += name.nLength + 1;
    wcOut[*pnUsed - 1] = 0;
    return 1;
}
