/* Section "FontSubstitutions" of the driver's .INI file: screen fonts and the device fonts that stand for them.

     FontSubSize      int    bytes of the multi-string that the pairs make
     NumFontSubs      int    pairs
     FontSubSys0 ...  text   screen font, at most 127 characters; must be there
     FontSubPrt0 ...  text   device font */
#ifndef TQUI_SETTINGSFILE_FONT_SUBSTITUTIONS_H
#define TQUI_SETTINGSFILE_FONT_SUBSTITUTIONS_H

#include "profile/profile_file.h"

/* Result of a file without substitutions. */
constexpr u16 NO_FONT_SUBSTITUTIONS = 65535;

/* Reads the pairs as a multi-string: screen font, device font, screen font ..., each ended by a NUL.
   outBlock   O   new zero-filled block, the caller's, of twice as many bytes as the result and two NULs more
   Result: FontSubSize as the file has it, whatever the texts need. NO_FONT_SUBSTITUTIONS with *outBlock null
   when a number is missing, a screen font is empty, the texts do not fit the block, or memory is short. */
u16 ReadFontSubstitutions(const ProfileFile& file, OwnedBlock<WCHAR>* outBlock);

#endif
