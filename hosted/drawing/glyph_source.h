/* Letters by FreeType, as GDI measures and draws them: whole pixels, hinted, then turned. For the text stand-ins, which
   hold the machine's lock. */
#ifndef TQUI_HOSTED_DRAWING_GLYPH_SOURCE_H
#define TQUI_HOSTED_DRAWING_GLYPH_SOURCE_H

#include <map>
#include <utility>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "hosted/drawing/installed_fonts.h"
#include "hosted/machine.h"

struct hb_font_t;

/* A letter's place and size in pixels, y upwards; the box is not empty. */
struct GlyphBox {
    int nLeft, nTop, nRight, nBottom;
    int nStepX, nStepY; /* to the next letter; y downwards as the screen's */
};

struct GlyphPixels {
    GlyphBox box;
    int nAlong;            /* to the next letter, along the line; of letters without smoothing */
    std::vector<bool> ink; /* rows of the box from the top */
};

struct GlyphFont {
    FT_Face face;
    hb_font_t* pShaper;
    int nAscent, nDescent; /* pixels; the cell's height is their sum */
    int nBolder;           /* 26.6 to add to the stems */
    bool bUprightPlain, bTurned;
    FT_Matrix upright, turned; /* narrowed and slanted; the same, turned by the font's angle */
    double dAngle;             /* radians, counterclockwise */
    u32 aulCodePages[2];       /* OS/2 */
    LOGFONTW logFont;          /* what it was found by */
    int nPpem;                 /* pixels an em */
    mutable bool bLinkSought;
    mutable const GlyphFont*
        pLinked; /* has letters that the face lacks; null when there is none, or was no need */
    /* Letters that were drawn and measured before. */
    mutable std::map<u32, GlyphPixels> pixels;
    mutable std::map<std::pair<u32, bool>, GlyphBox> boxes;
};

/* The font of a LOGFONT at its size and angle; null when no font is installed. Good to the end of the call. */
const GlyphFont* FindGlyphFont(const LOGFONTW& font);
void ResetGlyphs();

/* Also of linked letters. All false when the font has no such glyph. nTurn: the font's angle, or upright. */
bool MeasureGlyph(const GlyphFont& font, u32 ulGlyph, bool bTurn, GlyphBox* pBox);
bool LoadGlyphPixels(const GlyphFont& font, u32 ulGlyph, GlyphPixels* pPixels);
/* The outline as GetGlyphOutlineW has it in GGO_NATIVE; no bytes for a blank. */
bool LoadGlyphOutline(const GlyphFont& font, u32 ulGlyph, Bytes* pNative);

/* Letters that the face lacks come from the linked one; 0: the box of a missing letter. */
constexpr u32 LINKED_GLYPH = 0x80000000;
u32 GlyphOf(const GlyphFont& font, WCHAR wcChar);
int TextWidth(const GlyphFont& font, std::u16string_view wcText);

/* Letters from left to right, their forms chosen by HarfBuzz and their order by FriBidi. */
struct PlacedText {
    std::vector<u32> glyphs;
    WideText wcChars; /* in the same order; as many as the text had */
};
PlacedText PlaceText(const GlyphFont& font, std::u16string_view wcText, DWORD dwFlags, bool bRightToLeft);

#endif
