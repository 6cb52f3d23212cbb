/* The ways in which settings files hold a value: int, long, hex, text. A pair of equal quotation marks round a value
   is no part of it. */
#ifndef TQUI_PROFILE_PROFILE_VALUES_H
#define TQUI_PROFILE_PROFILE_VALUES_H

#include "profile/profile_section.h"

/* int: blanks, one sign, digits, wrapped to 32 bits; "0x", "0o" and "0b" in front of the digits change their base. What
   follows the last digit does not count, nor does what follows the first 29 characters. A missing key and an empty
   value give the default. */
i32 ReadProfileInt(const ProfileSection& section, const ProfileKey& key, i32 lDefault);

/* long: a signed decimal number; more digits than 32 bits hold stop at the limits. Only a missing key gives the
   default: a value without digits is 0. */
i32 ReadProfileLong(const ProfileSection& section, const ProfileKey& key, i32 lDefault);

/* hex: an unsigned hexadecimal number without a prefix; stops at 0xFFFFFFFF. Default as for long. */
u32 ReadProfileHex(const ProfileSection& section, const ProfileKey& key, u32 ulDefault);

/* text into cch characters, cut to fit and always ended by a NUL. 1; 0 for a missing key, or a cch below 1: the
   characters are as they were. */
int ReadProfileText(const ProfileSection& section, const ProfileKey& key, WCHAR* wcOut, int cch);

#endif
