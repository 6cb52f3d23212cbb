/* The font files of this computer, and which of them a LOGFONT means. */
#ifndef TQUI_HOSTED_DRAWING_INSTALLED_FONTS_H
#define TQUI_HOSTED_DRAWING_INSTALLED_FONTS_H

#include <string>

#include "platform/gdi.h"

struct FontFile {
    std::string path;
    int nIndex;          /* of the face in the file */
    bool bBolder;        /* bold was asked for, and the family has no bold face */
    bool bSlant;         /* the same of italics */
    u32 aulCodePages[2]; /* of its OS/2 table */
    bool operator<(const FontFile& other) const;
};

/* Looks at the TrueType files below /usr/share/fonts, and at nothing of the user's configuration. A family that is not
   installed is served by one of like widths, else by the usual sans serif; so is a character set that the family's
   face does not claim, by the first face that does. False when the computer has no font at all. */
bool FindFontFile(const LOGFONTW& font, FontFile* pFile);

/* The face whose letters stand in for those that the font's own face lacks, in its weight and slant. False as above. */
bool FindLinkedFile(const LOGFONTW& font, FontFile* pFile);

/* Whether a face claims a character set, by the code pages of its OS/2 table. */
bool ClaimsCharSet(const u32 (&aulCodePages)[2], u8 bCharSet);

#endif
