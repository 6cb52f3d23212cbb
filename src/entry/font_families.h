/* The font families of a device context: the scalable ones and the device's own. */
#ifndef TQUI_ENTRY_FONT_FAMILIES_H
#define TQUI_ENTRY_FONT_FAMILIES_H

#include "base/text_index.h"
#include "platform/gdi.h"

/* Kinds of a family, as the font page shows them. */
enum : u32 { FAMILY_TRUETYPE = 64018, FAMILY_DEVICE = 64062 };

constexpr i32 NO_FAMILY = -2; /* FindFamily found none */

struct FontFamilyList {
    i16 sCount, sCapacity;     /* families, and how many there is room for */
    OwnedBlock<WCHAR> pNames;  /* names, each ended by a NUL, one behind the other */
    OwnedBlock<u32> pKinds;    /* FAMILY_... of each */
    OwnedBlock<u16> pCharSets; /* lfCharSet of each */
    WCHAR* pNext;              /* end of the last name */
    TextIndex rIndex;          /* of the names */
};

/* Lists the families of the context in its order, a name once. Bitmap fonts are left out; families that turn up
   only while the list is filled are, too, once it is full.
   Result: 1, also for an empty list; 0 with an empty list when memory fails. */
int BuildFontFamilyList(HDC hDc, FontFamilyList* pList);

/* The character set of the family of exactly this name, or NO_FAMILY. */
i32 FindFamily(const FontFamilyList& list, const WCHAR* wcName);

#endif
