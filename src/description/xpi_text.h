/* Display texts: from the description file for ids from 1 up, from the language library for those below. */
#ifndef TQUI_DESCRIPTION_XPI_TEXT_H
#define TQUI_DESCRIPTION_XPI_TEXT_H

#include "description/xpi_file.h"

/* Text of one id into a buffer of cch characters, always ended by a NUL; "" when there is none. At most cch
   bytes of a text in the file are read, and a cut falls at a character's end.
   usLanguage    the row of the file's string base table: a primary language id, not held against a bound
   hLanguageDll  the language library; null leaves the texts of ids below 1 empty */
void ReadXpiString(XpiFile& file, u16 usLanguage, HMODULE hLanguageDll, i32 nId, WCHAR* wcOut, int cch);

/* The texts of nCount ids, each into its row: the first at wcOut, each next one cchStride characters on, cch
   characters of a row used. The file's sections are read once for all, so a long list costs as much as a few
   reads; each text is what ReadXpiString gives. */
void ReadXpiStrings(XpiFile& file, u16 usLanguage, HMODULE hLanguageDll, const i16* aIds, i32 nCount,
                    WCHAR* wcOut, int cchStride, int cch);

/* A text of the language library by its positive number; "" when it has none, or the module is null. */
void ReadLibraryString(HMODULE hLanguageDll, i32 nId, WCHAR* wcOut, int cch);

/* 1 when one of the ids asks for a text of the language library. */
int NeedsLanguageDll(const i16* aIds, i32 nCount);

/* Converts at most cchOut - 1 bytes of narrow text, up to its first NUL, from the ANSI code page into cchOut
   characters. A text that had to be cut (it has more bytes than that) loses a character that lost a part. The
   buffer is always ended by a NUL. */
void WidenText(const char* cText, u32 cbText, WCHAR* wcOut, int cchOut);

#endif
