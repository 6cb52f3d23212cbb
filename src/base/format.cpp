/* The formatter: one pass that checks the format against its arguments, one that writes. */
#include "base/format.h"

namespace {

constexpr int WIDTH_LIMIT = 20;

struct Conversion {
    int nLength; /* characters of the conversion, the % included; 0: none of ours */
    char cType;  /* d u x X s % */
    int nWidth;
    int bZeros;
};

template <class Char> Conversion ReadConversion(const Char* pFormat)
{
    Conversion conversion = {};
    int nAt = 1;
    if (pFormat[nAt] == '0') {
        conversion.bZeros = 1;
        nAt++;
    }
    while (pFormat[nAt] >= '0' && pFormat[nAt] <= '9' && conversion.nWidth <= WIDTH_LIMIT) {
        conversion.nWidth = conversion.nWidth * 10 + (pFormat[nAt] - '0');
        nAt++;
    }
    int bLong = pFormat[nAt] == 'l';
    nAt += bLong;
    Char type = pFormat[nAt];
    int bNumber = type == 'd' || type == 'u' || type == 'x' || type == 'X';
    int bPlain = (type == 's' || type == '%') && nAt == 1;
    if ((bNumber || bPlain) && conversion.nWidth <= WIDTH_LIMIT) {
        conversion.nLength = nAt + 1;
        conversion.cType = static_cast<char>(type);
    }
    return conversion;
}

/* 1 when every conversion is one of ours and meets an argument of its type. */
template <class Char> int IsServedBy(const Char* pFormat, const FormatArgument<Char>* pArguments, int nCount)
{
    int nUsed = 0;
    while (*pFormat) {
        if (*pFormat != '%') {
            pFormat++;
            continue;
        }
        Conversion conversion = ReadConversion(pFormat);
        if (!conversion.nLength) {
            return 0;
        }
        pFormat += conversion.nLength;
        if (conversion.cType == '%') {
            continue;
        }
        if (nUsed == nCount) {
            return 0;
        }
        int bText = pArguments[nUsed].kind == FormatArgument<Char>::TEXT_ARGUMENT;
        if (bText != (conversion.cType == 's')) {
            return 0;
        }
        nUsed++;
    }
    return 1;
}

template <class Char> struct Output {
    Char* pOut;
    int cchOut;
    int nAt;
    int bCut;
};

template <class Char> void Put(Output<Char>* pOutput, Char character)
{
    if (pOutput->nAt < pOutput->cchOut - 1) {
        pOutput->pOut[pOutput->nAt++] = character;
    } else {
        pOutput->bCut = 1;
    }
}

template <class Char> void PutNumber(Output<Char>* pOutput, const Conversion& conversion, i64 lNumber)
{
    const char* cDigits = conversion.cType == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    int bSigned = conversion.cType == 'd';
    u32 ulBits = static_cast<u32>(static_cast<u64>(lNumber)); /* numbers are 32 bits wide, as in the fields */
    int bNegative = bSigned && (ulBits & 0x80000000);
    u32 ulRest = bNegative ? 0 - ulBits : ulBits;
    u32 ulBase = conversion.cType == 'x' || conversion.cType == 'X' ? 16 : 10;
    char aDigits[10];
    int nDigits = 0;
    do {
        aDigits[nDigits++] = cDigits[ulRest % ulBase];
        ulRest /= ulBase;
    } while (ulRest);
    int nFill = conversion.nWidth - nDigits - bNegative;
    for (int i = 0; !conversion.bZeros && i < nFill; i++) {
        Put(pOutput, static_cast<Char>(' '));
    }
    if (bNegative) {
        Put(pOutput, static_cast<Char>('-'));
    }
    for (int i = 0; conversion.bZeros && i < nFill; i++) {
        Put(pOutput, static_cast<Char>('0'));
    }
    while (nDigits) {
        Put(pOutput, static_cast<Char>(aDigits[--nDigits]));
    }
}

template <class Char>
int FormatList(Char* pOut, int cchOut, const Char* pFormat, const FormatArgument<Char>* pArguments,
               int nCount)
{
    if (cchOut < 1) {
        return 0;
    }
    Output<Char> output = {pOut, cchOut, 0, 0};
    int bServed = IsServedBy(pFormat, pArguments, nCount);
    int nUsed = 0;
    while (*pFormat) {
        if (*pFormat != '%' || !bServed) {
            Put(&output, *pFormat++);
            continue;
        }
        Conversion conversion = ReadConversion(pFormat);
        pFormat += conversion.nLength;
        if (conversion.cType == '%') {
            Put(&output, static_cast<Char>('%'));
        } else if (conversion.cType == 's') {
            const Char* pText = pArguments[nUsed++].pText;
            while (pText && *pText) {
                Put(&output, *pText++);
            }
        } else {
            PutNumber(&output, conversion, pArguments[nUsed++].lNumber);
        }
    }
    if (sizeof(Char) == sizeof(WCHAR) && output.bCut && output.nAt > 0 &&
        (pOut[output.nAt - 1] & 0xFC00) == 0xD800) {
        output.nAt--; /* the first half of a pair never stands alone */
    }
    pOut[output.nAt] = 0;
    return !output.bCut;
}

} // namespace

int FormatWideList(WCHAR* wcOut, int cchOut, const WCHAR* wcFormat, const WideArgument* pArguments,
                   int nCount)
{
    return FormatList(wcOut, cchOut, wcFormat, pArguments, nCount);
}

int FormatNarrowList(char* cOut, int cchOut, const char* cFormat, const NarrowArgument* pArguments,
                     int nCount)
{
    return FormatList(cOut, cchOut, cFormat, pArguments, nCount);
}
