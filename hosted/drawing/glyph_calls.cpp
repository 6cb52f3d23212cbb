/* Stand-ins for what a font can do with a script, for the placement of letters, and for their outlines. */
#include <algorithm>
#include <cstring>

#include "hosted/drawing/drawing_state.h"
#include "hosted/drawing/glyph_source.h"

namespace {

constexpr DWORD GCP_USEKERNING = 0x0008;
constexpr BYTE HEBREW_CHARSET = 177, ARABIC_CHARSET = 178;

struct Selected {
    DrawingContext* pContext = nullptr;
    const LOGFONTW* pLogFont = nullptr;
    const GlyphFont* pFont = nullptr; /* null: the context has no usable font */
};

Selected SelectedIn(HDC hDc)
{
    Selected selected;
    selected.pContext = FindContext(hDc);
    selected.pLogFont = selected.pContext ? FindFont(selected.pContext->hFont) : nullptr;
    selected.pFont = selected.pLogFont ? FindGlyphFont(*selected.pLogFont) : nullptr;
    if (!selected.pFont) {
        SetHostedError(selected.pContext ? ERROR_GEN_FAILURE : ERROR_INVALID_HANDLE);
    }
    return selected;
}

bool IsIdentity(const MAT2& matrix)
{
    constexpr MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    return std::memcmp(&matrix, &identity, sizeof matrix) == 0;
}

/* An outline that says more of itself than is there. */
void Exaggerate(Bytes* pNative)
{
    constexpr WORD usPoints = 0xFFFF;
    constexpr DWORD cbPolygon = 0xFFFFFFF0;
    if (pNative->size() >= sizeof(TTPOLYGONHEADER) + sizeof(TTPOLYCURVE)) {
        std::memcpy(pNative->data() + sizeof(TTPOLYGONHEADER) + offsetof(TTPOLYCURVE, cpfx), &usPoints,
                    sizeof usPoints);
        if (pNative->size() % 16) { /* of some glyphs */
            std::memcpy(pNative->data(), &cbPolygon, sizeof cbPolygon);
        }
    }
}

} // namespace

DWORD WINAPI GetFontLanguageInfo(HDC hDc)
{
    FAILS(GetFontLanguageInfo);
    Selected selected = SelectedIn(hDc);
    if (!selected.pFont) {
        return GCP_ERROR;
    }
    const GlyphFont& font = *selected.pFont;
    BYTE bCharSet = selected.pLogFont->lfCharSet;
    DWORD dwInfo = FT_HAS_KERNING(font.face) ? GCP_USEKERNING : 0;
    bool bHebrew = ClaimsCharSet(font.aulCodePages, HEBREW_CHARSET);
    bool bArabic = ClaimsCharSet(font.aulCodePages, ARABIC_CHARSET);
    bool bTurns = selected.pContext->uTextAlign & TA_RTLREADING;
    dwInfo |= bArabic ? GCP_GLYPHSHAPE : 0;
    dwInfo |= (bHebrew && (bTurns || bCharSet == HEBREW_CHARSET)) ||
                      (bArabic && (bTurns || bCharSet == ARABIC_CHARSET))
                  ? GCP_REORDER
                  : 0;
    dwInfo |= bArabic && bCharSet == ARABIC_CHARSET ? GCP_LIGATE : 0;
    return dwInfo;
}

DWORD WINAPI GetCharacterPlacementW(HDC hDc, LPCWSTR wcText, int nLength, int nMaxExtent,
                                    GCP_RESULTSW* pResults, DWORD dwFlags)
{
    FAILS(GetCharacterPlacementW);
    Selected selected = SelectedIn(hDc);
    if (!selected.pFont || !wcText || nLength <= 0 || nMaxExtent < 0 || !pResults ||
        pResults->lStructSize != sizeof *pResults) {
        return selected.pFont ? static_cast<DWORD>(Refuse(ERROR_INVALID_PARAMETER)) : 0;
    }
    std::u16string_view wcWhole(wcText, static_cast<size_t>(nLength));
    PlacedText placed =
        PlaceText(*selected.pFont, wcWhole, dwFlags, selected.pContext->uTextAlign & TA_RTLREADING);
    size_t nRoom = pResults->nGlyphs;
    size_t nGlyphs = std::min(placed.glyphs.size(), nRoom), nChars = std::min(placed.wcChars.size(), nRoom);
    if (Lies(CALL_GetCharacterPlacementW, LIE_SHORT)) {
        nGlyphs /= 2;
        nChars /= 2;
    }
    for (size_t i = 0; pResults->lpGlyphs && i < nGlyphs; i++) {
        const u32 ulGlyph = placed.glyphs[i]; /* numbers are those of the font's own face */
        pResults->lpGlyphs[i] = ulGlyph & LINKED_GLYPH ? u'\0' : static_cast<WCHAR>(ulGlyph);
    }
    if (pResults->lpOutString) {
        placed.wcChars.copy(pResults->lpOutString, nChars);
    }
    pResults->nGlyphs = static_cast<UINT>(nGlyphs);
    pResults->nMaxFit = nLength;
    if (Lies(CALL_GetCharacterPlacementW, LIE_GROWS)) {
        pResults->nGlyphs += 7;
    } else if (Lies(CALL_GetCharacterPlacementW, LIE_HUGE)) {
        pResults->nGlyphs = 0xFFFFFFFF;
    }
    DWORD dwWidth = static_cast<WORD>(TextWidth(*selected.pFont, wcWhole));
    return dwWidth | static_cast<DWORD>(selected.pFont->nAscent + selected.pFont->nDescent) << 16;
}

DWORD WINAPI GetGlyphOutlineW(HDC hDc, UINT uChar, UINT uFormat, GLYPHMETRICS* pMetrics, DWORD cbBuffer,
                              LPVOID pBuffer, const MAT2* pMatrix)
{
    FAILS(GetGlyphOutlineW);
    Selected selected = SelectedIn(hDc);
    UINT uKind = uFormat & ~GGO_GLYPH_INDEX;
    if (!selected.pFont || !pMetrics || !pMatrix || !IsIdentity(*pMatrix) ||
        (uKind != GGO_METRICS && uKind != GGO_NATIVE)) {
        return GDI_ERROR;
    }
    const GlyphFont& font = *selected.pFont;
    u32 ulGlyph = uFormat & GGO_GLYPH_INDEX ? uChar & 0xFFFF : GlyphOf(font, static_cast<WCHAR>(uChar));
    GlyphBox box;
    Bytes native;
    if (!MeasureGlyph(font, ulGlyph, true, &box) ||
        (uKind == GGO_NATIVE && !LoadGlyphOutline(font, ulGlyph, &native))) {
        return GDI_ERROR;
    }
    *pMetrics = {static_cast<UINT>(box.nRight - box.nLeft),
                 static_cast<UINT>(box.nTop - box.nBottom),
                 {box.nLeft, box.nTop},
                 static_cast<i16>(box.nStepX),
                 static_cast<i16>(box.nStepY)};
    if (Lies(CALL_GetGlyphOutlineW, LIE_HUGE)) {
        pMetrics->gmCellIncX = 0x7FFF;
        pMetrics->gmCellIncY = -0x8000;
        Exaggerate(&native);
    }
    if (uKind == GGO_METRICS) {
        return 1;
    }
    auto cbNative = static_cast<DWORD>(native.size());
    if (!pBuffer || !cbBuffer) {
        return Lies(CALL_GetGlyphOutlineW, LIE_HUGE) && uChar % 4 == 3 ? 0x7FFFFFF0 : cbNative;
    }
    if (cbBuffer < cbNative) {
        return GDI_ERROR;
    }
    if (Lies(CALL_GetGlyphOutlineW, LIE_SHORT)) {
        cbNative /= 2;
    }
    std::memcpy(pBuffer, native.data(), cbNative);
    return Lies(CALL_GetGlyphOutlineW, LIE_GROWS) ? cbNative + 24 : cbNative;
}
