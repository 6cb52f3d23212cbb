/* Image watermarks of the picture: a bitmap file, read once a paint. Here is what can be worked out
   without a device context: whether the file's header can be trusted, and where the image lies in a cell. */
#ifndef TQUI_PREVIEW_WATERMARK_IMAGE_H
#define TQUI_PREVIEW_WATERMARK_IMAGE_H

#include "platform/drawing.h"
#include "preview/preview_request.h"

/* A bitmap file begins with a BITMAPFILEHEADER; up to its bfOffBits follow the header, the masks of bit fields and the
   colours; from there on the rows, the lowest first. Nothing behind these counts is read of header and colours. */
constexpr u32 FILE_HEADER_BYTES = 14, INFO_BYTES = 40, LONGEST_INFO = 124, COLOR_COUNT = 256;
constexpr u32 HEAD_BYTES = LONGEST_INFO + 4 * COLOR_COUNT;

/* What lies beyond shows nothing, so that no file holds up the sheet or eats the memory: A3 of 24 bits and 600 dots per
   inch has 209 MB, A4 in black and white of 1200 dots per inch 140 million pixels. */
constexpr i64 LARGEST_IMAGE_FILE = 0x10000000, MOST_IMAGE_PIXELS = 0x10000000;

/* The header in its plain form, with everything that the system takes on trust brought in order. */
struct BitmapHead {
    BITMAPINFOHEADER rInfo;       /* biSize 40; biClrUsed within the table; biSizeImage that of the rows */
    RGBQUAD aColors[COLOR_COUNT]; /* or the three masks; colours that the file lacks are black */
    u32 cbFileRow;                /* bytes of a row in the file */
    u32 cbRow;                    /* and as the system reads it: at least as many */
};
static_assert(offsetof(BitmapHead, aColors) == offsetof(BITMAPINFO, bmiColors));

/* Offset of the rows, or 0 when the 14 bytes do not begin a bitmap file of lFileSize bytes that could be read. */
u32 RowsOfBitmapFile(const u8* pFileHeader, i64 lFileSize);

/* Reads what follows the file header.
   pBytes    I   cbBytes of it, at most HEAD_BYTES, all in front of the rows
   ulRows    I   offset of the rows
   Result: 1 for rows without compression from the bottom up, of 1 to 32767 pixels and at most 65,535 bytes, that all
   lie in the file. */
int ReadBitmapHead(const u8* pBytes, u32 cbBytes, u32 ulRows, i64 lFileSize, BitmapHead* pHead);

/* One side of a stretching copy. 64 bits, since an image may be far larger than its cell. */
struct StretchArea {
    i64 x, y, cx, cy;
};

/* Cuts a copy down to a clip rectangle, both sides in place and in proportion. Result: 0 when nothing is left. */
int ClipStretch(StretchArea* pSource, StretchArea* pTarget, const RECT& rClip);

/* Size and place of an image of cxImage * cyImage pixels by the request's watermark, whose position is pixels by now;
   for a tiled one the place of the first tile. Result: 0 when it has no size, as without a resolution. */
int PlaceWatermarkImage(const PreviewRequest& request, const RECT& rCell, i32 cxImage, i32 cyImage,
                        StretchArea* pTarget);

/* Placement of the entry, 0 to 9. */
constexpr u16 PLACEMENT_TILED = 1;
u16 PlacementOf(const WatermarkEntry& entry);

/* Where tiles of lStep begin that have one at lAt, so that they cover everything from lEdge on. */
i64 FirstTile(i64 lAt, i64 lStep, i64 lEdge);

#endif
