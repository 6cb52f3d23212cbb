/* Wide text: 16-bit characters on both builds. The C library's wide functions are used nowhere, since
   their character is 32 bits wide outside Windows. */
#ifndef TQUI_BASE_WIDE_H
#define TQUI_BASE_WIDE_H

#include "platform/basic.h"
#include "platform/types.h"

/* Room for a path with its terminator, and for a text of the language library with its terminator. */
constexpr int PATH_CHARS = 260;
constexpr int TEXT_CHARS = 128;

/* Characters before the NUL. */
int WideLength(const WCHAR* wcText);

/* Characters before the NUL, at most cchMax: for text that may lack its terminator. */
int BoundedLength(const WCHAR* wcText, int cchMax);

/* Copies text into a buffer of cchOut characters, always ended by a NUL. A null text counts as empty.
   Result: 1 if all fitted; 0 if it was cut (display text may be used so; a path may not). cchOut below 1
   writes nothing and gives 0. */
int CopyWide(WCHAR* wcOut, int cchOut, const WCHAR* wcText);

/* The same, but what does not fit leaves the buffer empty: for paths and names of files. */
int CopyWideWhole(WCHAR* wcOut, int cchOut, const WCHAR* wcText);

/* Appends under the same two rules. On 0 AppendWideWhole leaves the buffer empty. */
int AppendWideWhole(WCHAR* wcOut, int cchOut, const WCHAR* wcText);

/* 1 when both texts are the same, case included. */
int SameWide(const WCHAR* wcOne, const WCHAR* wcOther);

/* First occurrence of wcPiece in wcText, or null. An empty piece is found at the start. */
const WCHAR* FindWide(const WCHAR* wcText, const WCHAR* wcPiece);

/* Text behind the last occurrence of the character, or the whole text. */
const WCHAR* BehindLast(const WCHAR* wcText, WCHAR wcChar);

#endif
