/* What builds of watermarks leave when they are cut short: by lost power, a host that ends, a builder that was not there,
   or one that reports when nobody waits any more. */
#ifndef TQUI_WATERMARK_BUILD_LEFTOVERS_H
#define TQUI_WATERMARK_BUILD_LEFTOVERS_H

#include "watermark/watermark_entry.h"

constexpr const WCHAR* COMMAND_SECTION = TEXT("MAKEWM");

/* Path of a build's file: folder, "%08lX" of the stem, extension. 0 and "" when it is too long. */
int BuildPath(const WCHAR* wcFolder, u32 ulStem, const WCHAR* wcExtension, WCHAR (&tcOut)[PATH_CHARS]);

/* Deletes the command files in the user's folder that no build waits on any more, and with them the built files of the
   same stem that no list names: neither the nRows rows at pRows nor a settings file of the folder, whichever printer's it
   is. Files of other stems stay. What cannot be judged or deleted stays until the next time. */
void DropBuildLeftovers(const WCHAR* wcUserFolder, const WatermarkEntry* pRows, i32 nRows);

#endif
