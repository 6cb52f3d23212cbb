/* Paths in the short form that the file system keeps beside long names. */
#ifndef TQUI_BASE_SHORT_PATH_H
#define TQUI_BASE_SHORT_PATH_H

#include "platform/basic.h"

/* Rewrites a path, in place, to the short form of each element: the alternate name that the file system tells, else its
   name as the file system spells it. An element that is not there stays as it stands, and so do names with wildcards,
   "." and "..", which would be found as something else, a drive and the "\\server\share" of a share. A path without
   a backslash is left alone.
   wcPath    IO  ended by a NUL
   cchPath   I   its room in characters; a short form that does not fit into it, or into PATH_CHARS, changes nothing */
void ShortPathName(WCHAR* wcPath, int cchPath);

#endif
