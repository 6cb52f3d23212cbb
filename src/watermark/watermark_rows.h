/* Section "Watermarks" of a settings file: the user's list. "NumWatermarks" tells the rows, every other key has
   the index of its row behind it and bears the name of the row's field; bWMStale is not stored.

     WMType          long   1 by default
     WMString        text   must be there
     WMTransparency  int    50                  WMPlacement   int    0
     WMPositionX     long   0                   WMPositionY   long   0
     on type 1, all of which but two must be there:
     WMAngle         int                        WMBold        int
     WMItalic        int                        WMSize        int
     WMColor         hex                        WMOutline     int
     WMFace          text                       WMCharSet     int    255       WMRTL    int    0
     on type 2:
     WMImageName     text   must be there       WMScaleX      int    100       WMScaleY int    100
     when there are built files:
     WMFileName      text                       WMColorFile   text
     WMResolution    int    none of the three   WMWidth       int              WMHeight int
                            may be 0 */
#ifndef TQUI_WATERMARK_WATERMARK_ROWS_H
#define TQUI_WATERMARK_WATERMARK_ROWS_H

#include "profile/profile_file.h"
#include "watermark/watermark_entry.h"

/* More rows than this are not read. */
constexpr i32 WATERMARK_LIMIT = 4096;

/* Reads the list. The first row that lacks something it must have ends it: the rows in front of it are the
   result. Numbers are not checked but brought to their fields; what a file says of built files is dropped when
   one of their three numbers is 0.
   outRows   O   new array of result + 1 rows or more, the caller's, a default row behind the last; null only
                 when memory fails
   Result: row count, 0 also without a file, and without memory for the rows or for the file. */
i32 ReadWatermarks(const ProfileFile& file, OwnedBlock<WatermarkEntry>* outRows);

/* Replaces the section by nCount rows; below 1 leaves NumWatermarks=0. pRows may then be null. What a row says
   of built files is only written when it names one and none of their three numbers is 0.
   Result: 1; 0 when the file could not be changed or memory failed: it then holds what it held. */
int WriteWatermarks(const WCHAR* tcPath, const WatermarkEntry* pRows, i32 nCount);

#endif
