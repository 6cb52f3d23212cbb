/* A row of the user's list of watermarks. Rows are compared byte for byte: a row is zeroed before it is filled,
   what lies behind a text's end stays zero, and a change of type zeroes the union. The gaps are named, so that
   the row has no other bytes than its fields. */
#ifndef TQUI_WATERMARK_WATERMARK_ENTRY_H
#define TQUI_WATERMARK_WATERMARK_ENTRY_H

#include "base/wide.h"

/* WMType of a row. */
enum : u32 { ENTRY_FREE = 0, ENTRY_TEXT = 1, ENTRY_IMAGE = 2 };

struct WatermarkEntry {
    u32 WMType;         /* ENTRY_FREE marks a free row and ends a list */
    WCHAR WMString[64]; /* name in the list, and the text of a text watermark */
    union {
        struct { /* text */
            WCHAR WMFace[32];
            u8 WMCharSet; /* of the face */
            u8 bReserved197[3];
            u32 WMBold;   /* 0 or 1 */
            u32 WMItalic; /* 0 or 1 */
            i16 WMSize;   /* points, 8 to 300 */
            u16 usReserved210;
            u32 WMOutline; /* 1: only the outline of the letters */
            u32 WMColor;   /* COLORREF, 0x00BBGGRR */
            u32 WMRTL;     /* 1: right-to-left reading */
        };
        WCHAR WMImageName[PATH_CHARS]; /* image: path of its file */
    };
    u32 WMScaleX, WMScaleY; /* image: percent, 25 to 400 */
    u16 WMAngle;            /* tenths of a degree, 0 to 3590; 0 on an image */
    u16 WMTransparency;     /* percent */
    u16 WMPlacement;        /* 0 to 9 */
    u16 usReserved666;
    i32 WMPositionX, WMPositionY; /* from the placement; positive to the right and upwards */
    u16 WMResolution;             /* dots per inch of the built files; 0: none built */
    u16 usReserved678;
    u32 WMWidth, WMHeight;         /* of the built files, as the builder tells them */
    WCHAR WMFileName[PATH_CHARS];  /* built monochrome file; on kind 4 the name of the row, no path */
    WCHAR WMColorFile[PATH_CHARS]; /* built colour file */
    u32 bWMStale;                  /* 1: the built files no longer match the row; never stored */
};
static_assert(sizeof(WatermarkEntry) == 1732 && offsetof(WatermarkEntry, WMRTL) == 220 &&
              offsetof(WatermarkEntry, WMScaleX) == 652 && offsetof(WatermarkEntry, WMPositionX) == 668 &&
              offsetof(WatermarkEntry, WMFileName) == 688);

/* Makes the default row, as it stands behind every list: all zero but face "Times New Roman", angle 450,
   transparency 50, size 72, colour 255, stale. Its type is ENTRY_FREE. */
void ResetWatermarkEntry(WatermarkEntry* pRow);

#endif
