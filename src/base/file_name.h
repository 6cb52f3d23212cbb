/* Names and paths of files that come from outside: which may be put behind a folder, opened or started. */
#ifndef TQUI_BASE_FILE_NAME_H
#define TQUI_BASE_FILE_NAME_H

#include "base/wide.h"

/* 1 for a name of nothing but dots and blanks, which names no file. */
int IsHollowName(const WCHAR* wcName);

/* 1 for a name that stays in the folder that it is put behind: not hollow, and without \, / and :. */
int IsPlainName(const WCHAR* wcName);

/* 1 for a path that begins with a drive's letter, a colon and a backslash. */
int IsDrivePath(const WCHAR* tcPath);

/* 1 for a path on a drive without "..": it names one place, whatever the current folder is. */
int IsPlainPath(const WCHAR* tcPath);

/* 1 for a path that leads to a device, a pipe or past the system's reading of paths: \\.\, \\?\, \??\ and the
   shares of a server that hold no files. */
int IsDevicePath(const WCHAR* tcPath);

/* 1 when both names mean the same file or folder: case is ignored. Names of PATH_CHARS and more never do. */
int SameFileName(const WCHAR* wcOne, const WCHAR* wcOther);

/* Replaces what a file name may not hold: " by ', * : ? | by a blank, / \ by -, < > by ( ). */
void MakeFileName(WCHAR* wcName);

#endif
