/* Names of files and folders without a path: what may be taken from a stored value and put behind a folder. */
#ifndef TQUI_BASE_FILE_NAME_H
#define TQUI_BASE_FILE_NAME_H

#include "base/wide.h"

/* 1 for a name of nothing but dots and blanks, which names no file. */
int IsHollowName(const WCHAR* wcName);

/* 1 for a name that stays in the folder that it is put behind: not hollow, and without \, / and :. */
int IsPlainName(const WCHAR* wcName);

/* 1 when both names mean the same file or folder: case is ignored. Names of PATH_CHARS and more never do. */
int SameFileName(const WCHAR* wcOne, const WCHAR* wcOther);

/* Replaces what a file name may not hold: " by ', * : ? | by a blank, / \ by -, < > by ( ). */
void MakeFileName(WCHAR* wcName);

#endif
