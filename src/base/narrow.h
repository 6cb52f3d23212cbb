/* Narrow text in the system's ANSI code page. */
#ifndef TQUI_BASE_NARROW_H
#define TQUI_BASE_NARROW_H

#include "base/owned.h"
#include "platform/basic.h"

/* The text converted, with its NUL, as a new block that the caller owns. What the code page lacks comes as
   its default character. Null when memory or the conversion fails. */
OwnedBlock<char> NarrowText(const WCHAR* wcText);

/* The same into cbOut bytes (1 and more), always ended by a NUL. A text that does not fit loses whole
   characters at its end. Result: 0 with an empty text when the conversion fails. */
int NarrowInto(const WCHAR* wcText, char* cOut, int cbOut);

#endif
