/* Changing settings files without ever losing one. A section, or one key, is changed in a copy beside the file;
   the copy is flushed and replaces the file in one rename. Whatever fails before the rename, memory included,
   leaves the old file whole.

   What is written is UTF-16, little-endian with its mark, whatever the file was before: without a mark it was in
   the system's code page. All lines but those that change stay as they are; so do the comments and blank lines
   at the end of a section that is replaced. Of sections with one name the first is meant, as in reading.

   The copy's name is the file's with ".~0" to ".~7" behind it: the first that nothing bears, which is created
   new, so that nothing that lies there is ever written to. Eight copies that were left behind by lost power are
   deleted before a ninth would be needed. */
#ifndef TQUI_PROFILE_SECTION_FILE_H
#define TQUI_PROFILE_SECTION_FILE_H

#include "profile/profile_file.h"

/* The lines of a section that is being built, from {} on. Without memory a line sets bShort and is not added;
   such a section is never written. */
struct SectionLines {
    OwnedBlock<WCHAR> pText;
    u32 nLength, nRoom; /* characters */
    int bShort;
};

/* Add "key=value". Decimal: a number of up to 16 bits. Long: of 32 bits, with a sign. Hex: 8 digits, capitals.
   Text: up to its NUL or cchMax characters; control characters become blanks. A text that stands in quotation marks
   gets another pair, since readers take one away. */
void WriteProfileDecimal(SectionLines* pLines, const WCHAR* wcKey, i32 lValue);
void WriteProfileLong(SectionLines* pLines, const WCHAR* wcKey, i32 lValue);
void WriteProfileHex(SectionLines* pLines, const WCHAR* wcKey, u32 ulValue);
void WriteProfileText(SectionLines* pLines, const WCHAR* wcKey, const WCHAR* wcText, int cchMax);

/* Makes the section hold these lines and no others, in the place that it had, or at the end; a missing file is
   made, a missing folder is not. Refused, with nothing changed: a path that is null, empty, without a folder or
   beyond 256 characters; a file that is read-only, a link, a folder, or held by another process for more than a fifth
   of a second; one that has, or would get, more than PROFILE_BYTES_LIMIT bytes, since it would read as empty.
   Result: 1 when the file holds the section now, else 0. */
int ReplaceSection(const WCHAR* tcPath, const WCHAR* wcSection, const SectionLines& lines);

/* The same for one key, whose section keeps its other lines. */
int ReplaceKey(const WCHAR* tcPath, const WCHAR* wcSection, const WCHAR* wcKey, const WCHAR* wcText);

#endif
