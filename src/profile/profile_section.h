/* One section of a settings file with an index of its keys: each look-up costs the same, however long the section
   is. */
#ifndef TQUI_PROFILE_PROFILE_SECTION_H
#define TQUI_PROFILE_PROFILE_SECTION_H

#include "profile/profile_file.h"

/* Name of a key: a stem, and the number from 0 that stands behind it in lists. */
struct ProfileKey {
    const WCHAR* wcStem;
    i32 nIndex; /* negative: none */

    ProfileKey(const WCHAR* wcName, i32 nOf = -1) : wcStem(wcName), nIndex(nOf) {}
};

/* More keys of one section are not found, nor are those behind a key whose hash too many others share: both are
   made on purpose, and would make time and memory grow out of bounds. */
constexpr u32 SECTION_KEYS_LIMIT = 0x20000;

/* The file must outlive it. */
struct ProfileSection {
    const WCHAR* pText; /* the file's */
    u32 nLength;
    u32 nBody;              /* where the section's first line begins */
    OwnedBlock<u32> pSlots; /* null: no key */
    u32 nSlots;             /* a power of two */
    u32 nKeys;
    int bShort; /* memory did not suffice for file or index: no key is found */
};

/* Looks the section up; one that is not there has no keys. */
ProfileSection OpenSection(const ProfileFile& file, const WCHAR* wcSection);

/* Finds the value of a key, as it stands between the blanks; quotation marks belong to it. Its text is the file's.
   1 when the first key of that name has a "=" behind it, else 0 with both of the out values unchanged. */
int FindValue(const ProfileSection& section, const ProfileKey& key, const WCHAR** ppText, u32* pnLength);

/* The names of the section's keys, each that has a "=" behind it, as in ListProfileSections. A
   key without a name is left out. */
u32 ListProfileKeys(const ProfileSection& section, WCHAR* wcOut, u32 cch);

#endif
