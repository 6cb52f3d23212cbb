/* Settings files in memory: text files of "[section]" and "key=value" lines, read whole in one go.

   What a file's bytes mean is what the system's own profile calls make of them. Text is UTF-16 of either order or
   UTF-8 behind a mark, else in the system's code page. Blanks around lines, names and values do not count, and
   names not in which case ASCII letters are; a line that begins with ";" is a comment. Of sections of one name the
   first counts, and of equal keys the first in it. */
#ifndef TQUI_PROFILE_PROFILE_FILE_H
#define TQUI_PROFILE_PROFILE_FILE_H

#include "base/owned.h"
#include "profile/profile_lines.h"

/* A file of more bytes reads as empty, and none is written. */
constexpr u32 PROFILE_BYTES_LIMIT = 0x400000;

enum ProfileState : int {
    PROFILE_ABSENT,     /* no file has this name; also a path without a folder */
    PROFILE_UNREADABLE, /* there is something, but no file on a disk that can be read, or it is too large */
    PROFILE_READ,
    PROFILE_NO_MEMORY
};

/* From {} on an absent file. In any state but PROFILE_READ it has no text. */
struct ProfileFile {
    OwnedBlock<WCHAR> pText; /* null: an empty one */
    u32 nLength;             /* characters */
    ProfileState state;
};

/* 1 when the path holds a folder. Without one no file is opened: a bare name would mean one of whatever folder is
   the current one. */
int HasFolder(const WCHAR* tcPath);

/* Opens, reads and closes the file. Others may read, write and replace it in the meantime. */
ProfileFile OpenProfile(const WCHAR* tcPath);

/* Reads the whole of an open file, from its start where it has just been opened. */
ProfileFile ReadProfile(HANDLE hFile);

/* The file's text. */
inline TextSpan TextOf(const ProfileFile& file)
{
    return {file.pText.get(), file.pText ? file.nLength : 0};
}

/* The names of all sections one behind the other, each ended by a NUL and the last by two, in cch characters, at
   least 2. Names that do not fit whole are left out with all behind them.
   Result: characters before the last NUL. */
u32 ListProfileSections(const ProfileFile& file, WCHAR* wcOut, u32 cch);

#endif
