/* The version text that a file tells of itself in its version resource. */
#ifndef TQUI_SHEET_VERSION_TEXT_H
#define TQUI_SHEET_VERSION_TEXT_H

#include "platform/basic.h"

/* Longest version text that is shown. */
constexpr int VERSION_CHARS = 81;

/* Reads the text "FileVersion" in the first language of the file's translations, else in US English.
   wcVersion   O   VERSION_CHARS of room, cut to them; "" when there is no such text
   Result: 1 when the file has a version resource that names a language; 0 without one. */
int ReadVersionText(const WCHAR* tcPath, WCHAR* wcVersion);

#endif
