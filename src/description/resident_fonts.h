/* The printer's own fonts, as the Fonts page lists them. The bytes of a font in the description file begin with
     0    32   name in the system's ANSI code page, zeros behind it
     32    1   character set */
#ifndef TQUI_DESCRIPTION_RESIDENT_FONTS_H
#define TQUI_DESCRIPTION_RESIDENT_FONTS_H

#include "description/xpi_file.h"

constexpr int RESIDENT_NAME_BYTES = 32;

struct ResidentFont {
    WCHAR wcName[RESIDENT_NAME_BYTES + 1];
    u8 bCharSet;
    u8 bRepeatsName; /* the font before it in the file has the same name */
};

struct ResidentFontList {
    OwnedBlock<ResidentFont> pFonts;
    i32 nFonts;
};

/* Reads the fonts that have a name, in the order of the file. A font that is too short for a name and a character set, too
   long for a chunk, or beyond the end of the file has none.
   Result: 1, also for an empty list; 0 with an empty list when memory or a read fails. */
int ReadResidentFonts(XpiFile& file, const XpiModel* pModel, ResidentFontList* outList);

#endif
