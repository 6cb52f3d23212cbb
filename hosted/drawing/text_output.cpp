/* Stand-ins that draw and measure text: letters of one colour, without smoothing. */
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "hosted/drawing/drawing_state.h"
#include "hosted/drawing/glyph_source.h"

namespace {

/* Co-ordinates that the system draws in have 28 bits; texts are as long as it takes them. */
constexpr int MOST_COORDINATE = 0x7FFFFFF, MOST_STEP = 0x3FFF;
constexpr UINT MOST_TEXT = 0x2000;
constexpr UINT TA_RIGHT = 2, TA_BOTTOM = 8;
constexpr UINT DT_RIGHT = 2, DT_BOTTOM = 8, DT_NOCLIP = 0x100, DT_CALCRECT = 0x400, DT_NOPREFIX = 0x800;

/* The context's font at its size; null when there is none, with the error set. */
const GlyphFont* SelectedFont(const DrawingContext* pContext)
{
    const LOGFONTW* pFont = pContext ? FindFont(pContext->hFont) : nullptr;
    const GlyphFont* pGlyphs = pFont ? FindGlyphFont(*pFont) : nullptr;
    if (!pGlyphs) {
        SetHostedError(pContext ? ERROR_GEN_FAILURE : ERROR_INVALID_HANDLE);
    }
    return pGlyphs;
}

bool Drawable(int x, int y)
{
    return std::abs(i64{x}) <= MOST_COORDINATE && std::abs(i64{y}) <= MOST_COORDINATE;
}

bool IsPlain(std::u16string_view wcText)
{
    return std::all_of(wcText.begin(), wcText.end(), [](WCHAR wcChar) { return wcChar < 0x0300; });
}

/* The ground of a text whose base line begins at (x, y): upright, however the text is turned. */
void FillGround(DrawingContext& context, const GlyphFont& font, int x, int y, int nAcross, const RECT* pClip)
{
    RECT ground = {x, y - font.nAscent, x + nAcross, y + font.nDescent};
    if (pClip) {
        ground = {std::max(ground.left, pClip->left), std::max(ground.top, pClip->top),
                  std::min(ground.right, pClip->right), std::min(ground.bottom, pClip->bottom)};
    }
    FillBox(context, i64{ground.left} + context.origin.x, i64{ground.top} + context.origin.y,
            i64{ground.right} + context.origin.x, i64{ground.bottom} + context.origin.y, context.backColor);
}

/* Upright letters follow one another by their own steps; in a turned line each is set where those before it end, by the
   steps of the measured text. */
void DrawGlyphs(DrawingContext& context, const GlyphFont& font, const std::vector<u32>& glyphs, int x, int y,
                const INT* aDx, const RECT* pClip)
{
    double dCos = std::cos(font.dAngle), dSin = std::sin(font.dAngle);
    int nAlong = 0;
    for (size_t i = 0; i < glyphs.size(); i++) {
        GlyphPixels pixels;
        GlyphBox measured;
        if (!LoadGlyphPixels(font, glyphs[i], &pixels) || !MeasureGlyph(font, glyphs[i], false, &measured)) {
            continue;
        }
        int nLeft = x + static_cast<int>(dCos * nAlong) + pixels.box.nLeft;
        int nTop = y + static_cast<int>(-dSin * nAlong) - pixels.box.nTop;
        int nWidth = pixels.box.nRight - pixels.box.nLeft;
        for (size_t j = 0; j < pixels.ink.size(); j++) {
            if (pixels.ink[j]) {
                PutPixel(context, nLeft + static_cast<int>(j) % nWidth, nTop + static_cast<int>(j) / nWidth,
                         context.textColor, pClip);
            }
        }
        nAlong += aDx            ? std::clamp(aDx[i], -MOST_STEP, MOST_STEP)
                  : font.bTurned ? measured.nStepX
                                 : pixels.box.nStepX;
    }
}

/* Draws a text at the place that the context's alignment says. */
void DrawAligned(DrawingContext& context, const GlyphFont& font, int x, int y, std::u16string_view wcText,
                 const INT* aDx, const RECT* pClip)
{
    double dCos = std::cos(font.dAngle), dSin = std::sin(font.dAngle);
    int nWidth = aDx ? 0 : TextWidth(font, wcText);
    for (size_t i = 0; aDx && i < wcText.size(); i++) {
        nWidth += std::clamp(aDx[i], -MOST_STEP, MOST_STEP);
    }
    UINT uAcross = context.uTextAlign & TA_CENTER, uDown = context.uTextAlign & TA_BASELINE;
    if (uAcross) {
        int nParts = uAcross == TA_RIGHT ? 1 : 2;
        x -= static_cast<int>(nWidth * dCos) / nParts;
        y += static_cast<int>(nWidth * dSin) / nParts;
    }
    if (uDown != TA_BASELINE) {
        int nDown = uDown == TA_BOTTOM ? -font.nDescent : font.nAscent;
        x = static_cast<int>(x + nDown * dSin);
        y = static_cast<int>(y + nDown * dCos);
    }
    if (context.nBkMode == OPAQUE) {
        FillGround(context, font, x, y, static_cast<int>(nWidth * dCos), pClip);
    }
    std::vector<u32> glyphs;
    if (IsPlain(wcText)) {
        for (WCHAR wcChar : wcText) {
            glyphs.push_back(GlyphOf(font, wcChar));
        }
    } else {
        glyphs = PlaceText(font, wcText, GCP_REORDER | GCP_GLYPHSHAPE | GCP_LIGATE,
                           context.uTextAlign & TA_RTLREADING)
                     .glyphs;
        aDx = glyphs.size() == wcText.size() ? aDx : nullptr;
    }
    DrawGlyphs(context, font, glyphs, x, y, aDx, pClip);
}

BOOL TextExtent(CallId call, HDC hDc, LPCWSTR wcText, int nLength, SIZE* pSize)
{
    const GlyphFont* pFont = SelectedFont(FindContext(hDc));
    if (!pFont || !pSize || nLength < 0 || (!wcText && nLength)) {
        return pFont ? Refuse(ERROR_INVALID_PARAMETER) : 0;
    }
    *pSize = {0, 0};
    if (nLength) {
        *pSize = {TextWidth(*pFont, {wcText, static_cast<size_t>(nLength)}),
                  pFont->nAscent + pFont->nDescent};
    }
    if (Lies(call, LIE_HUGE)) {
        *pSize = {0x7FFFFFF0, 0x7FFFFFF0};
    }
    return 1;
}

/* One line of DrawTextW: what is drawn, and where in it the underlined character stands. */
struct Line {
    WideText wcText;
    size_t nUnderlined;
};

Line WithoutPrefix(std::u16string_view wcText, UINT uFormat)
{
    Line line = {{}, wcText.npos};
    for (size_t i = 0; i < wcText.size(); i++) {
        if (wcText[i] == u'&' && !(uFormat & DT_NOPREFIX)) {
            if (++i == wcText.size()) {
                break;
            }
            line.nUnderlined = wcText[i] == u'&' ? line.nUnderlined : line.wcText.size();
        }
        line.wcText.push_back(wcText[i]);
    }
    return line;
}

void DrawTextLine(DrawingContext& context, const GlyphFont& font, const Line& line, int x, int y,
                  const RECT* pClip)
{
    DrawAligned(context, font, x, y, line.wcText, nullptr, pClip);
    if (line.nUnderlined < line.wcText.size()) {
        std::u16string_view wcText = line.wcText;
        int nFrom = x + TextWidth(font, wcText.substr(0, line.nUnderlined));
        int nTo = nFrom + TextWidth(font, wcText.substr(line.nUnderlined, 1)) - 1;
        for (int i = nFrom; i < nTo; i++) {
            PutPixel(context, i, y + font.nAscent + 1, context.textColor, pClip);
        }
    }
}

} // namespace

HFONT WINAPI CreateFontIndirectW(const LOGFONTW* pFont)
{
    FAILS(CreateFontIndirectW);
    return pFont ? AddFont(*pFont) : nullptr;
}

UINT WINAPI SetTextAlign(HDC hDc, UINT uAlign)
{
    FAILS(SetTextAlign);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext) {
        SetHostedError(ERROR_INVALID_HANDLE);
        return GDI_ERROR;
    }
    return std::exchange(pContext->uTextAlign, uAlign);
}

COLORREF WINAPI SetTextColor(HDC hDc, COLORREF color)
{
    FAILS(SetTextColor);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext) {
        SetHostedError(ERROR_INVALID_HANDLE);
        return CLR_INVALID;
    }
    return std::exchange(pContext->textColor, color);
}

BOOL WINAPI GetTextExtentPoint32W(HDC hDc, LPCWSTR wcText, int nLength, SIZE* pSize)
{
    FAILS(GetTextExtentPoint32W);
    return TextExtent(CALL_GetTextExtentPoint32W, hDc, wcText, nLength, pSize);
}

BOOL WINAPI GetTextExtentPointW(HDC hDc, LPCWSTR wcText, int nLength, SIZE* pSize)
{
    FAILS(GetTextExtentPointW);
    return TextExtent(CALL_GetTextExtentPointW, hDc, wcText, nLength, pSize);
}

BOOL WINAPI ExtTextOutW(HDC hDc, int x, int y, UINT uOptions, const RECT* pRect, LPCWSTR wcText, UINT uLength,
                        const INT* aDx)
{
    FAILS(ExtTextOutW);
    DrawingContext* pContext = FindContext(hDc);
    const GlyphFont* pFont = SelectedFont(pContext);
    if (!pFont || (!wcText && uLength) || uLength > MOST_TEXT || !Drawable(x, y)) {
        return pFont ? Refuse(ERROR_INVALID_PARAMETER) : 0;
    }
    if (uLength) {
        DrawAligned(*pContext, *pFont, x, y, {wcText, uLength}, aDx,
                    uOptions & ETO_CLIPPED ? pRect : nullptr);
    }
    return 1;
}

int WINAPI DrawTextW(HDC hDc, LPCWSTR wcText, int nLength, LPRECT pRect, UINT uFormat)
{
    FAILS(DrawTextW);
    DrawingContext* pContext = FindContext(hDc);
    const GlyphFont* pFont = SelectedFont(pContext);
    if (!pFont || !wcText || !pRect || nLength < -1 || !Drawable(pRect->left, pRect->top) ||
        !Drawable(pRect->right, pRect->bottom)) {
        return 0;
    }
    std::u16string_view wcRest =
        nLength < 0 ? std::u16string_view(wcText) : std::u16string_view(wcText, static_cast<size_t>(nLength));
    if (nLength < 0 && wcRest.empty()) {
        return pFont->nAscent + pFont->nDescent; /* only a length of 0 is set into the rectangle */
    }
    wcRest = wcRest.substr(0, MOST_TEXT);
    const RECT rect = *pRect;
    RECT rDrawn = {rect.left, rect.top, rect.left, rect.top};
    int nHeight = pFont->nAscent + pFont->nDescent, y = rect.top;
    do {
        size_t nEnd = uFormat & DT_SINGLELINE ? wcRest.npos : wcRest.find(u'\n');
        Line line = WithoutPrefix(wcRest.substr(0, nEnd), uFormat);
        if (nEnd != wcRest.npos && !line.wcText.empty() && line.wcText.back() == u'\r') {
            line.wcText.pop_back();
        }
        int nWidth = TextWidth(*pFont, line.wcText), x = rect.left, nRoom = rect.right - rect.left;
        if (uFormat & DT_SINGLELINE && uFormat & (DT_VCENTER | DT_BOTTOM)) {
            int nFree = rect.bottom - rect.top - (line.wcText.empty() ? 0 : nHeight);
            y += uFormat & DT_BOTTOM ? nFree : nFree / 2;
        }
        x += uFormat & DT_CENTER ? (nRoom - nWidth) / 2 : uFormat & DT_RIGHT ? nRoom - nWidth : 0;
        if (!(uFormat & DT_CALCRECT) && !line.wcText.empty()) {
            DrawTextLine(*pContext, *pFont, line, x, y, uFormat & DT_NOCLIP ? nullptr : &rect);
        }
        y += nHeight;
        rDrawn.right = std::max(rDrawn.right, rDrawn.left + nWidth);
        wcRest.remove_prefix(nEnd == wcRest.npos ? wcRest.size() : nEnd + 1);
    } while (!wcRest.empty());
    if (uFormat & DT_CALCRECT) {
        *pRect = {rDrawn.left, rDrawn.top, rDrawn.right, y};
    }
    return y - rect.top;
}
