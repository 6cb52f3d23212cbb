/* Reads single values of settings files. */
#include "profile/profile_values.h"

#include <cstring>

#include "profile/profile_lines.h"

namespace {

constexpr u32 INT_CHARS = 29;

/* The value without its quotation marks; pText null when the key is missing. */
TextSpan ReadValue(const ProfileSection& section, const ProfileKey& key)
{
    TextSpan value = {nullptr, 0};
    if (!FindValue(section, key, &value.pText, &value.nLength) || value.nLength < 2) {
        return value;
    }
    WCHAR wcFirst = value.pText[0];
    if ((wcFirst == '"' || wcFirst == '\'') && value.pText[value.nLength - 1] == wcFirst) {
        return {value.pText + 1, value.nLength - 2};
    }
    return value;
}

WCHAR First(TextSpan span)
{
    return span.nLength ? span.pText[0] : 0;
}

void Skip(TextSpan* pSpan, u32 nChars)
{
    pSpan->pText += nChars;
    pSpan->nLength -= nChars;
}

/* Skips a sign. 1 for a minus. */
int TakeSign(TextSpan* pSpan)
{
    WCHAR wcFirst = First(*pSpan);
    if (wcFirst == '-' || wcFirst == '+') {
        Skip(pSpan, 1);
    }
    return wcFirst == '-';
}

void SkipBlanks(TextSpan* pSpan, WCHAR wcHighest)
{
    while (pSpan->nLength && First(*pSpan) <= wcHighest) {
        Skip(pSpan, 1);
    }
}

/* The digit's number, or one that no base has. */
u32 DigitOf(WCHAR wcDigit)
{
    if (wcDigit >= '0' && wcDigit <= '9') {
        return static_cast<u32>(wcDigit - '0');
    }
    WCHAR wcSmall = static_cast<WCHAR>(wcDigit | 0x20);
    return wcSmall >= 'a' && wcSmall <= 'f' ? static_cast<u32>(wcSmall - 'a' + 10) : 16;
}

/* Skips "0x", "0o" or "0b". Result: the base that it tells, 10 without one. */
u32 TakeBase(TextSpan* pSpan)
{
    u32 ulBase = 10;
    if (pSpan->nLength >= 2 && pSpan->pText[0] == '0') {
        WCHAR wcLetter = pSpan->pText[1];
        ulBase = wcLetter == 'x' ? 16 : wcLetter == 'o' ? 8 : wcLetter == 'b' ? 2 : 10;
    }
    if (ulBase != 10) {
        Skip(pSpan, 2);
    }
    return ulBase;
}

/* Digits up to the first that is none; what is beyond the limit stays at it. */
u32 ParseDigits(TextSpan digits, u32 ulBase, u32 ulLimit)
{
    u64 ullValue = 0;
    for (; First(digits) && DigitOf(First(digits)) < ulBase; Skip(&digits, 1)) {
        ullValue = ullValue * ulBase + DigitOf(First(digits));
        ullValue = ullValue > ulLimit ? ulLimit : ullValue;
    }
    return static_cast<u32>(ullValue);
}

} // namespace

i32 ReadProfileInt(const ProfileSection& section, const ProfileKey& key, i32 lDefault)
{
    TextSpan value = ReadValue(section, key);
    if (!value.nLength) {
        return lDefault;
    }
    value.nLength = value.nLength < INT_CHARS ? value.nLength : INT_CHARS;
    SkipBlanks(&value, ' ');
    int bNegative = TakeSign(&value);
    u32 ulBase = TakeBase(&value), ulValue = 0;
    for (; value.nLength && DigitOf(First(value)) < ulBase; Skip(&value, 1)) {
        ulValue = ulValue * ulBase + DigitOf(First(value));
    }
    return static_cast<i32>(bNegative ? 0 - ulValue : ulValue);
}

i32 ReadProfileLong(const ProfileSection& section, const ProfileKey& key, i32 lDefault)
{
    TextSpan value = ReadValue(section, key);
    if (!value.pText) {
        return lDefault;
    }
    value = TrimSpan(value);
    int bNegative = TakeSign(&value);
    u32 ulValue = ParseDigits(value, 10, bNegative ? 0x80000000 : 0x7FFFFFFF);
    return static_cast<i32>(bNegative ? 0 - ulValue : ulValue);
}

u32 ReadProfileHex(const ProfileSection& section, const ProfileKey& key, u32 ulDefault)
{
    TextSpan value = ReadValue(section, key);
    return value.pText ? ParseDigits(TrimSpan(value), 16, 0xFFFFFFFF) : ulDefault;
}

int ReadProfileText(const ProfileSection& section, const ProfileKey& key, WCHAR* wcOut, int cch)
{
    TextSpan value = ReadValue(section, key);
    if (!value.pText || cch < 1) {
        return 0;
    }
    u32 nRoom = static_cast<u32>(cch) - 1;
    u32 nCopied = value.nLength < nRoom ? value.nLength : nRoom;
    std::memcpy(wcOut, value.pText, nCopied * sizeof(WCHAR));
    wcOut[nCopied] = 0;
    return 1;
}
