/* Reads single values of settings files. */
#include "settingsfile/profile_values.h"

#include "base/format.h"
#include "base/owned.h"
#include "platform/profile.h"

int HasFolder(const WCHAR* tcPath)
{
    return FindWide(tcPath, TEXT("\\")) != nullptr;
}

i32 ParseLong(const WCHAR* wcText)
{
    while (*wcText == ' ' || *wcText == '\t') {
        wcText++;
    }
    int bNegative = *wcText == '-';
    if (*wcText == '-' || *wcText == '+') {
        wcText++;
    }
    i64 lLimit = bNegative ? 0x80000000 : 0x7FFFFFFF;
    i64 lValue = 0;
    for (; *wcText >= '0' && *wcText <= '9'; wcText++) {
        lValue = lValue * 10 + (*wcText - '0');
        lValue = lValue > lLimit ? lLimit : lValue;
    }
    return static_cast<i32>(bNegative ? -lValue : lValue);
}

u32 ParseHex(const WCHAR* wcText)
{
    while (*wcText == ' ' || *wcText == '\t') {
        wcText++;
    }
    u64 ullValue = 0;
    for (;; wcText++) {
        WCHAR wcDigit = *wcText;
        u64 ullDigit;
        if (wcDigit >= '0' && wcDigit <= '9') {
            ullDigit = static_cast<u64>(wcDigit - '0');
        } else if ((wcDigit | 0x20) >= 'a' && (wcDigit | 0x20) <= 'f') {
            ullDigit = static_cast<u64>(wcDigit | 0x20) - 'a' + 10;
        } else {
            return static_cast<u32>(ullValue);
        }
        ullValue = ullValue * 16 + ullDigit;
        ullValue = ullValue > 0xFFFFFFFF ? 0xFFFFFFFF : ullValue;
    }
}

i32 ReadProfileInt(const WCHAR* wcSection, const WCHAR* wcKey, i32 lDefault, const WCHAR* tcPath)
{
    return HasFolder(tcPath) ? static_cast<i32>(GetPrivateProfileIntW(wcSection, wcKey, lDefault, tcPath))
                             : lDefault;
}

void ReadProfileText(const WCHAR* wcSection, const WCHAR* wcKey, const WCHAR* wcDefault, WCHAR* wcOut,
                     int cch, const WCHAR* tcPath)
{
    if (cch < 1) {
        return;
    }
    if (!HasFolder(tcPath)) {
        if (wcDefault != wcOut) {
            CopyWide(wcOut, cch, wcDefault);
        }
        return;
    }
    /* The default may be the target's own text, which the call would overwrite while it reads. */
    WCHAR wcCopy[PATH_CHARS];
    CopyWide(wcCopy, PATH_CHARS, wcDefault);
    DWORD nGot = GetPrivateProfileStringW(wcSection, wcKey, wcCopy, wcOut, static_cast<DWORD>(cch), tcPath);
    wcOut[nGot < static_cast<DWORD>(cch) ? nGot : static_cast<DWORD>(cch) - 1] = 0;
}

i32 ReadProfileLong(const WCHAR* wcSection, const WCHAR* wcKey, i32 lDefault, const WCHAR* tcPath)
{
    WCHAR wcText[TEXT_CHARS];
    FormatWide(wcText, TEXT_CHARS, TEXT("%d"), lDefault);
    ReadProfileText(wcSection, wcKey, wcText, wcText, TEXT_CHARS, tcPath);
    return ParseLong(wcText);
}

u32 ReadProfileHex(const WCHAR* wcSection, const WCHAR* wcKey, u32 ulDefault, const WCHAR* tcPath)
{
    WCHAR wcText[TEXT_CHARS];
    FormatWide(wcText, TEXT_CHARS, TEXT("%08lX"), ulDefault);
    ReadProfileText(wcSection, wcKey, wcText, wcText, TEXT_CHARS, tcPath);
    return ParseHex(wcText);
}
