/* Letters by FreeType. Sizes follow the rules of GDI: the cell's height is that of the OS/2 table's Windows metrics, and
   advances and boxes are rounded outwards to whole pixels, behind hinting and turning. */
#include "hosted/drawing/glyph_source.h"

#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <tuple>

#include FT_GLYPH_H
#include FT_OUTLINE_H
#include FT_TRIGONOMETRY_H
#include FT_TRUETYPE_TABLES_H

#include "platform/glyphs.h"

namespace {

constexpr int DEFAULT_CELL = 16, MOST_PPEM = 4096, MOST_CELL = 0x10000;
constexpr size_t MOST_FONTS = 32, MOST_KEPT = 256, MOST_KEPT_PIXELS = 0x10000;

struct FontKey {
    FontFile file;
    LONG nHeight;
    int nWidth, nAngle;
    bool operator<(const FontKey& other) const
    {
        return std::tie(file, nHeight, nWidth, nAngle) <
               std::tie(other.file, other.nHeight, other.nWidth, other.nAngle);
    }
};

struct GlyphCache {
    FT_Library library = nullptr;
    std::map<FontKey, GlyphFont> fonts;
    ~GlyphCache() { Clear(); }
    void Clear()
    {
        for (auto& [key, font] : fonts) {
            hb_font_destroy(font.pShaper);
            FT_Done_Face(font.face);
        }
        fonts.clear();
    }
};

GlyphCache& cache()
{
    static GlyphCache instance;
    return instance;
}

int Rounded(FT_Pos lPos)
{
    return static_cast<int>((lPos + 32) >> 6);
}

int Up(FT_Pos lPos)
{
    return static_cast<int>((lPos + 63) >> 6);
}

/* Of a cell's height: the nearest, or one less when the nearest makes the cell too high. lCell is the cell's height in
   the font's own units. */
int PixelsPerEm(LONG lHeight, i64 lCell, i64 lEm)
{
    i64 lPpem = -static_cast<i64>(lHeight);
    if (lHeight >= 0) {
        i64 lWanted = std::min(lHeight ? lHeight : DEFAULT_CELL, MOST_CELL);
        lPpem = (lWanted * lEm * 2 + lCell) / (2 * lCell);
        lPpem -= (lPpem * lCell * 2 + lEm) / (2 * lEm) > lWanted;
    }
    return static_cast<int>(std::clamp<i64>(lPpem, 1, MOST_PPEM));
}

void SetMatrices(const FontKey& key, int nUsualWidth, GlyphFont* pFont)
{
    constexpr FT_Fixed ONE = 0x10000;
    FT_Fixed lWidth = key.nWidth ? FT_DivFix(key.nWidth, nUsualWidth > 0 ? nUsualWidth : 1) : ONE;
    pFont->upright = {lWidth, key.file.bSlant ? ONE / 4 : 0, 0, ONE};
    pFont->bUprightPlain = lWidth == ONE && !key.file.bSlant;
    pFont->turned = pFont->upright;
    pFont->bTurned = key.nAngle != 0;
    pFont->dAngle = key.nAngle * 3.14159265358979323846 / 1800;
    if (pFont->bTurned) {
        FT_Vector unit;
        FT_Vector_Unit(&unit, static_cast<FT_Angle>(key.nAngle) * ONE / 10);
        FT_Matrix turn = {unit.x, -unit.y, unit.y, unit.x};
        FT_Matrix_Multiply(&turn, &pFont->turned);
    }
}

/* The font of an open face, which it then owns. */
bool SetUpFont(const FontKey& key, FT_Face face, GlyphFont* pFont)
{
    const auto* pOs2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (!pOs2) {
        return false;
    }
    int nCell = pOs2->usWinAscent + pOs2->usWinDescent;
    int nPpem = PixelsPerEm(key.nHeight, nCell ? nCell : face->units_per_EM, face->units_per_EM);
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(nPpem)) != 0) {
        return false;
    }
    const FT_Size_Metrics& metrics = face->size->metrics;
    pFont->face = face;
    pFont->nPpem = nPpem;
    pFont->nAscent = Rounded(FT_MulFix(pOs2->usWinAscent, metrics.y_scale));
    pFont->nDescent = Rounded(FT_MulFix(pOs2->usWinDescent, metrics.y_scale));
    pFont->nBolder = key.file.bBolder ? nPpem * 64 / 24 : 0;
    std::copy_n(key.file.aulCodePages, 2, pFont->aulCodePages);
    SetMatrices(key, Rounded(FT_MulFix(pOs2->xAvgCharWidth, metrics.x_scale)), pFont);
    pFont->pShaper = hb_ft_font_create_referenced(face);
    return true;
}

template <class Key, class Value> void Keep(std::map<Key, Value>* pKept, const Key& key, const Value& value)
{
    if (pKept->size() >= MOST_KEPT) {
        pKept->clear();
    }
    pKept->insert_or_assign(key, value);
}

/* Loads a glyph, hinted, as it stands upright; bolder if need be. */
bool Load(const GlyphFont& font, u32 ulGlyph, FT_Int32 nTarget)
{
    if (FT_Load_Glyph(font.face, ulGlyph, FT_LOAD_NO_BITMAP | nTarget) != 0 ||
        font.face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
        return false;
    }
    FT_GlyphSlot slot = font.face->glyph;
    if (font.nBolder && slot->outline.n_points) {
        FT_Outline_Embolden(&slot->outline, font.nBolder);
        slot->metrics.width += font.nBolder;
        slot->metrics.height += font.nBolder;
        slot->metrics.horiBearingY += font.nBolder;
    }
    return true;
}

GlyphBox BoxOf(const GlyphFont& font, bool bTurn)
{
    const FT_Glyph_Metrics& metrics = font.face->glyph->metrics;
    const FT_Matrix& matrix = bTurn ? font.turned : font.upright;
    FT_Vector step = {metrics.horiAdvance + font.nBolder, 0};
    FT_BBox box = {metrics.horiBearingX, metrics.horiBearingY - metrics.height,
                   metrics.horiBearingX + metrics.width, metrics.horiBearingY};
    if (!font.bUprightPlain || (bTurn && font.bTurned)) {
        FT_BBox around = {};
        for (int i = 0; i < 4; i++) {
            FT_Vector corner = {i & 1 ? box.xMax : box.xMin, i & 2 ? box.yMax : box.yMin};
            FT_Vector_Transform(&corner, &matrix);
            around.xMin = i && around.xMin < corner.x ? around.xMin : corner.x;
            around.xMax = i && around.xMax > corner.x ? around.xMax : corner.x;
            around.yMin = i && around.yMin < corner.y ? around.yMin : corner.y;
            around.yMax = i && around.yMax > corner.y ? around.yMax : corner.y;
        }
        box = around;
        FT_Vector_Transform(&step, &matrix);
    }
    GlyphBox result = {static_cast<int>(box.xMin >> 6), Up(box.yMax), Up(box.xMax),
                       static_cast<int>(box.yMin >> 6), Up(step.x),   -Up(step.y)};
    result.nRight += result.nRight == result.nLeft;
    result.nBottom -= result.nBottom == result.nTop;
    return result;
}

bool IsLinked(const GlyphFont& font, u32 ulGlyph)
{
    return ulGlyph & LINKED_GLYPH && font.pLinked;
}

const FT_Outline& TurnedOutline(const GlyphFont& font)
{
    FT_Outline_Transform(&font.face->glyph->outline, &font.turned);
    return font.face->glyph->outline;
}

/* ---- outlines in the form of GetGlyphOutlineW ---- */

void PutBytes(Bytes* pOut, const void* pBytes, size_t cb)
{
    const u8* pbBytes = static_cast<const u8*>(pBytes);
    pOut->insert(pOut->end(), pbBytes, pbBytes + cb);
}

/* 26.6 as 16.16, the fraction's bits repeated downwards. */
FIXED ToFixed(FT_Pos lPos)
{
    unsigned nFraction = lPos & 63;
    return {static_cast<WORD>(nFraction << 10 | nFraction << 4 | nFraction >> 2),
            static_cast<i16>(lPos >> 6)};
}

void PutPoint(Bytes* pOut, const FT_Vector& point)
{
    POINTFX fixed = {ToFixed(point.x), ToFixed(point.y)};
    PutBytes(pOut, &fixed, sizeof fixed);
}

void PutCurve(Bytes* pOut, WORD wType, const std::vector<FT_Vector>& points)
{
    WORD aHead[] = {wType, static_cast<WORD>(points.size())};
    PutBytes(pOut, aHead, sizeof aHead);
    for (const FT_Vector& point : points) {
        PutPoint(pOut, point);
    }
}

/* One polygon: straight runs as one record each, a spline from one point on the curve to the next as one. The points
   begin behind the start; a spline that the contour ends in closes it, a straight line does not. */
void PutContour(Bytes* pOut, const FT_Vector* aPoints, const unsigned char* acTags, int nPoints)
{
    const auto isOn = [&](int i) { return FT_CURVE_TAG(acTags[i]) == FT_CURVE_TAG_ON; };
    FT_Vector start = aPoints[0];
    int nFrom = 1, nTo = nPoints;
    if (!isOn(0)) {
        nFrom = 0;
        start = aPoints[nPoints - 1];
        if (isOn(nPoints - 1)) {
            nTo--;
        } else {
            start = {(start.x + aPoints[0].x) / 2, (start.y + aPoints[0].y) / 2};
        }
    }
    size_t cbBefore = pOut->size();
    TTPOLYGONHEADER head = {0, TT_POLYGON_TYPE, {ToFixed(start.x), ToFixed(start.y)}};
    PutBytes(pOut, &head, sizeof head);
    for (int i = nFrom; i < nTo;) {
        std::vector<FT_Vector> run;
        bool bStraight = isOn(i);
        while (i < nTo && isOn(i) == bStraight) {
            run.push_back(aPoints[i++]);
        }
        if (!bStraight) {
            run.push_back(i < nTo ? aPoints[i++] : start);
        }
        PutCurve(pOut, bStraight ? TT_PRIM_LINE : TT_PRIM_QSPLINE, run);
    }
    DWORD cb = static_cast<DWORD>(pOut->size() - cbBefore);
    std::memcpy(pOut->data() + cbBefore, &cb, sizeof cb);
}

} // namespace

namespace {

FontKey KeyOf(const LOGFONTW& font, LONG lHeight)
{
    return {{},
            lHeight,
            static_cast<int>(std::min<i64>(std::llabs(font.lfWidth), MOST_PPEM)),
            (font.lfEscapement % 3600 + 3600) % 3600};
}

const GlyphFont* FindKept(const FontKey& key)
{
    auto place = cache().fonts.find(key);
    return place != cache().fonts.end() ? &place->second : nullptr;
}

/* Opens the face and keeps it. Null when that fails. */
const GlyphFont* MakeFont(const FontKey& key, const LOGFONTW& font)
{
    GlyphFont made = {};
    made.logFont = font;
    FT_Face face = nullptr;
    if ((!cache().library && FT_Init_FreeType(&cache().library) != 0) ||
        FT_New_Face(cache().library, key.file.path.c_str(), key.file.nIndex, &face) != 0) {
        return nullptr;
    }
    if (!SetUpFont(key, face, &made)) {
        FT_Done_Face(face);
        return nullptr;
    }
    return &cache().fonts.insert({key, made}).first->second;
}

/* As large as the font itself. It takes the place of no other font, since those of this call are in use. */
const GlyphFont* LinkedFont(const GlyphFont& font)
{
    FontKey key = KeyOf(font.logFont, -font.nPpem);
    if (!font.bLinkSought && FindLinkedFile(font.logFont, &key.file)) {
        const GlyphFont* pKept = FindKept(key);
        font.pLinked = pKept ? pKept : MakeFont(key, font.logFont);
    }
    font.bLinkSought = true;
    return font.pLinked;
}

} // namespace

const GlyphFont* FindGlyphFont(const LOGFONTW& font)
{
    FontKey key = KeyOf(font, font.lfHeight);
    if (!FindFontFile(font, &key.file)) {
        return nullptr;
    }
    if (const GlyphFont* pKept = FindKept(key)) {
        return pKept;
    }
    if (cache().fonts.size() >= MOST_FONTS) {
        cache().Clear();
    }
    return MakeFont(key, font);
}

void ResetGlyphs()
{
    cache().Clear();
    FT_Done_FreeType(cache().library);
    cache().library = nullptr;
}

bool MeasureGlyph(const GlyphFont& font, u32 ulGlyph, bool bTurn, GlyphBox* pBox)
{
    if (IsLinked(font, ulGlyph)) {
        return MeasureGlyph(*font.pLinked, ulGlyph & ~LINKED_GLYPH, bTurn, pBox);
    }
    const std::pair<u32, bool> key = {ulGlyph, bTurn};
    if (const auto kept = font.boxes.find(key); kept != font.boxes.end()) {
        *pBox = kept->second;
        return true;
    }
    if (!Load(font, ulGlyph, FT_LOAD_TARGET_NORMAL)) {
        return false;
    }
    *pBox = BoxOf(font, bTurn);
    Keep(&font.boxes, key, *pBox);
    return true;
}

bool LoadGlyphPixels(const GlyphFont& font, u32 ulGlyph, GlyphPixels* pPixels)
{
    if (IsLinked(font, ulGlyph)) {
        return LoadGlyphPixels(*font.pLinked, ulGlyph & ~LINKED_GLYPH, pPixels);
    }
    if (const auto kept = font.pixels.find(ulGlyph); kept != font.pixels.end()) {
        *pPixels = kept->second;
        return true;
    }
    if (!Load(font, ulGlyph, FT_LOAD_TARGET_MONO)) {
        return false;
    }
    GlyphBox box = BoxOf(font, true);
    int nWidth = box.nRight - box.nLeft, nRows = box.nTop - box.nBottom;
    pPixels->box = box;
    pPixels->ink.assign(static_cast<size_t>(nWidth) * static_cast<size_t>(nRows), false);
    FT_Outline outline = TurnedOutline(font);
    FT_Outline_Translate(&outline, -box.nLeft * 64, -box.nBottom * 64);
    FT_Bitmap bitmap = {};
    bitmap.width = static_cast<unsigned>(nWidth);
    bitmap.rows = static_cast<unsigned>(nRows);
    bitmap.pitch = (nWidth + 7) / 8;
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    Bytes rows(static_cast<size_t>(bitmap.pitch) * bitmap.rows);
    bitmap.buffer = rows.data();
    if (outline.n_points && FT_Outline_Get_Bitmap(cache().library, &outline, &bitmap) != 0) {
        return false;
    }
    for (size_t i = 0; i < pPixels->ink.size(); i++) {
        size_t nRow = i / bitmap.width, nColumn = i % bitmap.width;
        pPixels->ink[i] =
            rows[nRow * static_cast<size_t>(bitmap.pitch) + nColumn / 8] >> (7 - nColumn % 8) & 1;
    }
    if (pPixels->ink.size() <= MOST_KEPT_PIXELS) {
        Keep(&font.pixels, ulGlyph, *pPixels);
    }
    return true;
}

bool LoadGlyphOutline(const GlyphFont& font, u32 ulGlyph, Bytes* pNative)
{
    if (IsLinked(font, ulGlyph)) {
        return LoadGlyphOutline(*font.pLinked, ulGlyph & ~LINKED_GLYPH, pNative);
    }
    pNative->clear();
    if (!Load(font, ulGlyph, FT_LOAD_TARGET_NORMAL)) {
        return false;
    }
    const FT_Outline& outline = TurnedOutline(font);
    for (int i = 0, nFirst = 0; i < outline.n_contours; i++) {
        int nLast = outline.contours[i];
        if (nLast >= nFirst) {
            PutContour(pNative, outline.points + nFirst,
                       reinterpret_cast<const unsigned char*>(outline.tags) + nFirst, nLast - nFirst + 1);
        }
        nFirst = nLast + 1;
    }
    return true;
}

u32 GlyphOf(const GlyphFont& font, WCHAR wcChar)
{
    u32 ulGlyph = FT_Get_Char_Index(font.face, wcChar);
    if (ulGlyph) {
        return ulGlyph;
    }
    const GlyphFont* pLinked = LinkedFont(font);
    ulGlyph = pLinked ? FT_Get_Char_Index(pLinked->face, wcChar) : 0;
    return ulGlyph ? ulGlyph | LINKED_GLYPH : 0;
}

int TextWidth(const GlyphFont& font, std::u16string_view wcText)
{
    i64 lWidth = 0;
    for (WCHAR wcChar : wcText) {
        GlyphBox box;
        lWidth += MeasureGlyph(font, GlyphOf(font, wcChar), false, &box) ? box.nStepX : 0;
    }
    return static_cast<int>(std::min<i64>(lWidth, 0x7FFFFFFF));
}
