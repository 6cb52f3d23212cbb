/* From the outline of a letter to curves on the screen, in whole numbers. An outline is a row of polygons of lines and
   chains of quadratic curves in 16.16 numbers, y upwards, as the system's TrueType interface gives it. On the screen each
   contour is one chain of cubic curves: a start and three points for each piece. */
#ifndef TQUI_PREVIEW_GLYPH_OUTLINE_H
#define TQUI_PREVIEW_GLYPH_OUTLINE_H

#include "platform/glyphs.h"
#include "platform/types.h"

/* Sine and cosine of tenths of a degree, times 10000, from a table of whole degrees; angles outside 0 to 3600 are
   turned into that range. */
i32 SineTenths(i32 lAngle);
i32 CosineTenths(i32 lAngle);

/* The angle in 0 to 3599. */
i32 ReduceAngle(i32 lAngle);

/* Turns a point around the origin of a plane with y upwards; both co-ordinates cut. */
void RotatePoint(POINT point, POINT* pResult, i32 lAngle);

/* Whole pixels: a half goes up, also below zero. */
i32 RoundFixed(FIXED value);

/* Points of one contour, in the room that its maker gives. */
struct ContourPoints {
    POINT* pPoints;
    u32 nPoints, nRoom;
};

/* Append the points of one record of nPoints points, of which start is the one in front; each answers how many it
   wrote. What does not fit is left out, three by three. Lines: each as a cubic whose control points lie on it. Quadratics:
   the points are the controls of a chain with implied points between; the last two end it, and a single one adds
   nothing. */
u32 AppendLines(ContourPoints* pOut, POINTFX start, const POINTFX* pPoints, u32 nPoints);
u32 AppendQuadratics(ContourPoints* pOut, POINTFX start, const POINTFX* pPoints, u32 nPoints);

/* A line from the last point to the first, unless they are the same. */
u32 AppendClosingLine(ContourPoints* pOut);

/* Reads the next contour of an outline of cbOutline bytes, any bytes.
   pOffset   IO  where its polygon begins, 0 at first; behind it afterwards
   origin        of the outline, on the screen
   pOut      IO  room for cbOutline / 8 * 3 points is enough for a sound outline; the points on the screen
   Result: 0 at the outline's end and at a polygon that is none. */
int NextContour(const u8* pOutline, u32 cbOutline, u32* pOffset, POINT origin, ContourPoints* pOut);

/* Strokes an outline in the pen of hdc. Without memory for its points nothing is drawn. */
void DrawGlyphOutline(HDC hdc, const u8* pOutline, u32 cbOutline, POINT origin);

#endif
