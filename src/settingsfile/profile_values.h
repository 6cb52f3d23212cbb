/* The ways in which settings files hold a value: int, long, hex, text. Everything goes through the profile
   functions, whose rules of case, blanks and quotation marks are the format; a missing key gives the default.
   Nothing is read unless the path names a folder: the profile functions would take a bare name for a file of
   the system's own folder. */
#ifndef TQUI_SETTINGSFILE_PROFILE_VALUES_H
#define TQUI_SETTINGSFILE_PROFILE_VALUES_H

#include "base/wide.h"

/* int: blanks, one sign, decimal digits, wrapped to 32 bits; what follows the digits does not count. */
i32 ReadProfileInt(const WCHAR* wcSection, const WCHAR* wcKey, i32 lDefault, const WCHAR* tcPath);

/* long: a signed decimal number; more digits than 32 bits hold stop at the limits. */
i32 ReadProfileLong(const WCHAR* wcSection, const WCHAR* wcKey, i32 lDefault, const WCHAR* tcPath);

/* hex: an unsigned hexadecimal number without a prefix; stops at 0xFFFFFFFF. */
u32 ReadProfileHex(const WCHAR* wcSection, const WCHAR* wcKey, u32 ulDefault, const WCHAR* tcPath);

/* text into cch characters, cut to fit and always ended by a NUL. wcDefault may lie in wcOut. */
void ReadProfileText(const WCHAR* wcSection, const WCHAR* wcKey, const WCHAR* wcDefault, WCHAR* wcOut,
                     int cch, const WCHAR* tcPath);

/* 1 when the path holds a folder. */
int HasFolder(const WCHAR* tcPath);

/* The two readings of a number's text, for values that are already in hand. */
i32 ParseLong(const WCHAR* wcText);
u32 ParseHex(const WCHAR* wcText);

#endif
