/* Section "CustomSizes" of a settings file: the list of saved papers.

     NumCustomSizes   int    rows; missing: none
     CustomName0 ...  text   at most 63 characters
     CustomWidth0     long   hundredths of a millimetre
     CustomLength0    long   hundredths of a millimetre
     CustomMetric0    int    1: a metric size */
#ifndef TQUI_DESCRIPTION_CUSTOM_SIZES_H
#define TQUI_DESCRIPTION_CUSTOM_SIZES_H

#include "description/paper_row.h"
#include "profile/profile_file.h"

/* More rows than this are not read: no list of a user comes near. */
constexpr i32 LIST_LIMIT = 4096;

/* Reads the saved papers of a settings file. The list is all or nothing: a row with an empty name or a
   missing number leaves none.
   pModel    its NewPaperRow fills the spare row behind the last one; null leaves the spare row zero
   outRows   O   new array of result + 1 rows, the caller's; null only when memory fails,
                 that for the file included
   Result: row count, 0 also without a file or without memory. */
i32 ReadCustomSizes(const ProfileFile& file, const XpiModel* pModel, OwnedBlock<PaperSizeRow>* outRows);

/* Replaces the section by nCount rows; below 1 leaves NumCustomSizes=0. pRows may then be null.
   Result: 1; 0 when the file could not be changed or memory failed: it then holds what it held. */
int WriteCustomSizes(const WCHAR* tcPath, const PaperSizeRow* pRows, i32 nCount);

#endif
