/* Text watermarks of the picture, turned by their angle: letters drawn by the system in a turned font, or only their
   contours. A text is centred on the rectangle and moved by its position, to the right and upwards; at this point size
   and position of the entry are pixels. */
#ifndef TQUI_PREVIEW_OUTLINE_TEXT_H
#define TQUI_PREVIEW_OUTLINE_TEXT_H

#include "preview/preview_tools.h"

/* Both leave hdc as it was; a font that cannot be made draws nothing. */
void DrawOutlineText(HDC hdc, const WatermarkEntry& entry, const RECT& rCell); /* does not clip */
void DrawSolidText(PreviewTools& tools, HDC hdc, const WatermarkEntry& entry, const RECT& rCell);

/* Where the pen of an outline text starts, and the point that a text drawn by the system is aligned to; extent and cy are
   the unturned text's. */
POINT StartOfOutline(const WatermarkEntry& entry, SIZE extent, const RECT& rCell);
POINT StartOfSolid(const WatermarkEntry& entry, LONG cy, const RECT& rCell);

#endif
