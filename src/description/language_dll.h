/* The language resource library: all dialogs, texts and pictures. */
#ifndef TQUI_DESCRIPTION_LANGUAGE_DLL_H
#define TQUI_DESCRIPTION_LANGUAGE_DLL_H

#include "base/owned.h"
#include "description/driver_files.h"

/* What a sheet keeps of the language that was found. */
struct LanguageChoice {
    u16 usPrimary;                /* primary language id for ReadXpiString: 9 on the library of last resort */
    u16 usSub;                    /* sublanguage id */
    WCHAR tcHelpFile[PATH_CHARS]; /* "" when the driver has none */
    WCHAR wcDecimal[4];           /* decimal separator, never empty */
};

/* Loads the language library as data, so that none of its code runs: the driver file whose name holds
   "txt.dll", else the one of US English by its code (value "ENUS", default "ENUS.DLL").
   pChoice   O   what a sheet keeps; may be null
   The caller frees the module; null when there is none. */
OwnedModule OpenLanguageDll(PrinterCall& call, LanguageChoice* pChoice);

/* Primary language id of the user: the low 10 bits of the language id. */
u16 GetUserLanguage();

/* Code of a language, of up to four letters; "" for one beyond the table. Sublanguages count from 1 (from 0
   for the neutral language). */
struct LanguageCode {
    WCHAR wcText[5];
};
LanguageCode GetLanguageCode(u16 usPrimary, u16 usSub);

#endif
