/* Wide text: length, bounded copies, compare and search. */
#include "base/wide.h"

int WideLength(const WCHAR* wcText)
{
    int nLength = 0;
    while (wcText[nLength]) {
        nLength++;
    }
    return nLength;
}

int BoundedLength(const WCHAR* wcText, int cchMax)
{
    int nLength = 0;
    while (nLength < cchMax && wcText[nLength]) {
        nLength++;
    }
    return nLength;
}

int CopyWide(WCHAR* wcOut, int cchOut, const WCHAR* wcText)
{
    if (cchOut < 1) {
        return 0;
    }
    int nAt = 0;
    if (wcText) {
        while (nAt < cchOut - 1 && wcText[nAt]) {
            wcOut[nAt] = wcText[nAt];
            nAt++;
        }
    }
    int bCut = wcText && wcText[nAt];
    if (bCut && nAt > 0 && (wcOut[nAt - 1] & 0xFC00) == 0xD800) {
        nAt--; /* the first half of a pair never stands alone */
    }
    wcOut[nAt] = 0;
    return !bCut;
}

int CopyWideWhole(WCHAR* wcOut, int cchOut, const WCHAR* wcText)
{
    int bFitted = CopyWide(wcOut, cchOut, wcText);
    if (!bFitted && cchOut > 0) {
        wcOut[0] = 0;
    }
    return bFitted;
}

int AppendWideWhole(WCHAR* wcOut, int cchOut, const WCHAR* wcText)
{
    int nUsed = BoundedLength(wcOut, cchOut);
    if (nUsed < cchOut && CopyWide(wcOut + nUsed, cchOut - nUsed, wcText)) {
        return 1;
    }
    if (cchOut > 0) {
        wcOut[0] = 0;
    }
    return 0;
}

int SameWide(const WCHAR* wcOne, const WCHAR* wcOther)
{
    while (*wcOne && *wcOne == *wcOther) {
        wcOne++;
        wcOther++;
    }
    return *wcOne == *wcOther;
}

const WCHAR* FindWide(const WCHAR* wcText, const WCHAR* wcPiece)
{
    for (;; wcText++) {
        int nAt = 0;
        while (wcPiece[nAt] && wcText[nAt] == wcPiece[nAt]) {
            nAt++;
        }
        if (!wcPiece[nAt]) {
            return wcText;
        }
        if (!*wcText) {
            return nullptr;
        }
    }
}

const WCHAR* BehindLast(const WCHAR* wcText, WCHAR wcChar)
{
    const WCHAR* wcBehind = wcText;
    for (; *wcText; wcText++) {
        if (*wcText == wcChar) {
            wcBehind = wcText + 1;
        }
    }
    return wcBehind;
}
