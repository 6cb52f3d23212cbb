/* Drawing objects: pens, brushes, fonts and bitmaps, the system's own among them. An object that a context holds
   cannot be deleted. */
#include <algorithm>
#include <cstring>
#include <unordered_map>

#include "hosted/drawing/drawing_state.h"

namespace {

struct Object {
    ObjectKind kind = OBJECT_NONE;
    bool bSystem = false; /* counted nowhere, deleted never */
    int nHeld = 0;
    PenState pen{};
    BrushState brush{};
    LOGFONTW font{};
    Bitmap bitmap;
};

struct Objects {
    std::unordered_map<HGDIOBJ, Object> all;
    std::uintptr_t nLast = 0;
};

constexpr std::uintptr_t FIRST_OBJECT = 0x2000000, FIRST_STOCK = 0x1900000, FIRST_SYSTEM_BRUSH = 0x1A00000;
constexpr int DEFAULT_BITMAP = 100; /* behind the stock objects that can be asked for */
constexpr i64 MOST_PIXELS = i64{1} << 26;

/* By number, from the scroll bar on; light grey is the face of things. */
constexpr COLORREF aSystemColors[] = {0xFFFFFF, 0x956F25, 0xFA9632, 0x808080, 0xFFFFFF, 0xFFFFFF, 0x9E9E9E,
                                      0x000000, 0x000000, 0x000000, 0xFFFFFF, 0xFFFFFF, 0x808080, 0xFA9630,
                                      0xFFFFFF, 0xF5F5F5, 0xA6A6A6, 0xA6A6A6, 0x000000, 0xC8C8C8, 0xFFFFFF,
                                      0x6A6A6A, 0xE3E3E3, 0x000000, 0xFFFFFF, 0xFFFFFF, 0xE0E0E0, 0xFA9632,
                                      0x808080, 0xFA9630, 0xFFFFFF};

HGDIOBJ StockHandle(int nIndex)
{
    return reinterpret_cast<HGDIOBJ>(FIRST_STOCK + static_cast<std::uintptr_t>(nIndex) * 4);
}

void AddStock(Objects* pObjects)
{
    const auto add = [pObjects](int nIndex, ObjectKind kind) {
        Object& object = pObjects->all[StockHandle(nIndex)];
        object.kind = kind;
        object.bSystem = true;
        return &object;
    };
    constexpr COLORREF aBrushes[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000, 0x000000};
    for (int i = WHITE_BRUSH; i <= NULL_BRUSH; i++) {
        add(i, OBJECT_BRUSH)->brush = {i == NULL_BRUSH, aBrushes[i]};
    }
    add(WHITE_PEN, OBJECT_PEN)->pen = {PS_SOLID, 0, false, 0xFFFFFF};
    add(BLACK_PEN, OBJECT_PEN)->pen = {PS_SOLID, 0, false, 0x000000};
    add(NULL_PEN, OBJECT_PEN)->pen = {PS_NULL, 0, false, 0x000000};
    LOGFONTW& font = add(SYSTEM_FONT, OBJECT_FONT)->font;
    font.lfHeight = 16;
    font.lfWidth = 7;
    font.lfWeight = FW_BOLD;
    font.lfPitchAndFamily = 0x22; /* variable, without serifs */
    std::u16string_view(u"System").copy(font.lfFaceName, LF_FACESIZE - 1);
    MakeSurface(1, 1, true, &add(DEFAULT_BITMAP, OBJECT_BITMAP)->bitmap.surface);
    for (size_t i = 0; i < std::size(aSystemColors); i++) {
        Object& object = pObjects->all[reinterpret_cast<HGDIOBJ>(FIRST_SYSTEM_BRUSH + i * 4)];
        object.kind = OBJECT_BRUSH;
        object.bSystem = true;
        object.brush = {false, aSystemColors[i]};
    }
}

Objects& objects()
{
    static Objects instance;
    if (instance.all.empty()) {
        AddStock(&instance);
    }
    return instance;
}

Object* FindObject(HGDIOBJ hObject, ObjectKind kind)
{
    auto& all = objects().all;
    const auto found = all.find(hObject);
    return found != all.end() && (kind == OBJECT_NONE || found->second.kind == kind) ? &found->second
                                                                                     : nullptr;
}

HGDIOBJ AddObject(Object&& object)
{
    const auto hObject = reinterpret_cast<HGDIOBJ>(FIRST_OBJECT + ++objects().nLast * 4);
    objects().all.emplace(hObject, std::move(object));
    liveCounts.nGdiObjects++;
    return hObject;
}

/* Copies what the caller has room for; without a buffer the answer is the size. */
template <typename Structure> int GiveStructure(const Structure& structure, bool bWhole, int cb, LPVOID pOut)
{
    if (!pOut) {
        return static_cast<int>(sizeof structure);
    }
    const auto cbGiven = static_cast<size_t>(std::clamp<int>(cb, 0, static_cast<int>(sizeof structure)));
    if (cbGiven == 0 || (bWhole && cbGiven < sizeof structure)) {
        return 0;
    }
    std::memcpy(pOut, &structure, cbGiven);
    return static_cast<int>(cbGiven);
}

int GiveBitmap(const Surface& surface, int cb, LPVOID pOut)
{
    const int cbRow = surface.bMono ? (surface.nWidth + 15) / 16 * 2 : surface.nWidth * 4;
    BITMAP bitmap = {
        0, surface.nWidth, surface.nHeight, cbRow, 1, static_cast<WORD>(surface.bMono ? 1 : 32), nullptr};
    if (Lies(CALL_GetObjectW, LIE_HUGE)) {
        bitmap.bmWidth = bitmap.bmHeight = bitmap.bmWidthBytes = 0x7FFFFFFF;
    }
    return GiveStructure(bitmap, true, cb, pOut);
}

} // namespace

void ResetDrawingObjects()
{
    objects() = Objects();
    liveCounts.nGdiObjects = 0;
}

bool MakeSurface(i64 lWidth, i64 lHeight, bool bMono, Surface* pSurface)
{
    if (lWidth < 1 || lHeight < 1 || lWidth > MOST_PIXELS || lHeight > MOST_PIXELS / lWidth) {
        SetHostedError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    *pSurface = {static_cast<int>(lWidth), static_cast<int>(lHeight), bMono, {}};
    pSurface->pixels.resize(static_cast<size_t>(lWidth * lHeight));
    return true;
}

const PenState* FindPen(HPEN hPen)
{
    const Object* pObject = FindObject(hPen, OBJECT_PEN);
    return pObject ? &pObject->pen : nullptr;
}

const BrushState* FindBrush(HBRUSH hBrush)
{
    const Object* pObject = FindObject(hBrush, OBJECT_BRUSH);
    return pObject ? &pObject->brush : nullptr;
}

const LOGFONTW* FindFont(HFONT hFont)
{
    const Object* pObject = FindObject(hFont, OBJECT_FONT);
    return pObject ? &pObject->font : nullptr;
}

Bitmap* FindBitmap(HBITMAP hBitmap)
{
    Object* pObject = FindObject(hBitmap, OBJECT_BITMAP);
    return pObject ? &pObject->bitmap : nullptr;
}

Surface* FindBitmapSurface(HBITMAP hBitmap)
{
    Bitmap* pBitmap = FindBitmap(hBitmap);
    return pBitmap ? &pBitmap->surface : nullptr;
}

HFONT AddFont(const LOGFONTW& font)
{
    Object object;
    object.kind = OBJECT_FONT;
    object.font = font;
    return static_cast<HFONT>(AddObject(std::move(object)));
}

HBITMAP AddBitmap(Bitmap&& bitmap)
{
    Object object;
    object.kind = OBJECT_BITMAP;
    object.bitmap = std::move(bitmap);
    return static_cast<HBITMAP>(AddObject(std::move(object)));
}

HBITMAP DefaultBitmap()
{
    return static_cast<HBITMAP>(StockHandle(DEFAULT_BITMAP));
}

HGDIOBJ StockObject(int nIndex)
{
    return nIndex >= 0 && nIndex < DEFAULT_BITMAP && FindObject(StockHandle(nIndex), OBJECT_NONE)
               ? StockHandle(nIndex)
               : nullptr;
}

ObjectKind KindOfObject(HGDIOBJ hObject)
{
    const Object* pObject = FindObject(hObject, OBJECT_NONE);
    return pObject ? pObject->kind : OBJECT_NONE;
}

bool IsSelected(HGDIOBJ hObject)
{
    const Object* pObject = FindObject(hObject, OBJECT_NONE);
    return pObject && pObject->nHeld > 0;
}

void HoldObject(HGDIOBJ hObject, int nMore)
{
    Object* pObject = FindObject(hObject, OBJECT_NONE);
    if (pObject && !pObject->bSystem) {
        pObject->nHeld += nMore;
    }
}

COLORREF SystemColor(int nIndex)
{
    return nIndex >= 0 && nIndex < static_cast<int>(std::size(aSystemColors)) ? aSystemColors[nIndex] : 0;
}

BOOL WINAPI DeleteObject(HGDIOBJ hObject)
{
    std::lock_guard heldForCall(machineLock);
    const int bFails = CallFails(CALL_DeleteObject); /* a release that fails still releases */
    const Object* pObject = FindObject(hObject, OBJECT_NONE);
    if (!pObject || pObject->nHeld > 0) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    if (!pObject->bSystem) {
        objects().all.erase(hObject);
        liveCounts.nGdiObjects--;
    }
    return !bFails;
}

int WINAPI GetObjectW(HANDLE hObject, int cb, LPVOID pOut)
{
    FAILS(GetObjectW);
    const Object* pObject = FindObject(hObject, OBJECT_NONE);
    if (!pObject) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    switch (pObject->kind) {
    case OBJECT_BITMAP: return GiveBitmap(pObject->bitmap.surface, cb, pOut);
    case OBJECT_FONT: {
        LOGFONTW font = pObject->font;
        if (Lies(CALL_GetObjectW, LIE_UNTERMINATED)) {
            std::fill_n(font.lfFaceName, LF_FACESIZE, u'F');
        }
        return GiveStructure(font, false, cb, pOut);
    }
    case OBJECT_BRUSH:
        return GiveStructure(LOGBRUSH{pObject->brush.bNull ? 1u : BS_SOLID, pObject->brush.color, 0}, true,
                             cb, pOut);
    default: return 0; /* nobody asks for a pen */
    }
}

HGDIOBJ WINAPI GetStockObject(int nIndex)
{
    FAILS(GetStockObject);
    return StockObject(nIndex);
}

DWORD WINAPI GetSysColor(int nIndex)
{
    FAILS(GetSysColor);
    return SystemColor(nIndex);
}

HBRUSH WINAPI GetSysColorBrush(int nIndex)
{
    FAILS(GetSysColorBrush);
    const auto hBrush =
        reinterpret_cast<HGDIOBJ>(FIRST_SYSTEM_BRUSH + static_cast<std::uintptr_t>(std::max(nIndex, -1)) * 4);
    return FindObject(hBrush, OBJECT_BRUSH) ? static_cast<HBRUSH>(hBrush) : nullptr;
}

HPEN WINAPI CreatePen(int nStyle, int nWidth, COLORREF color)
{
    FAILS(CreatePen);
    Object object;
    object.kind = OBJECT_PEN;
    const i64 lWidth = nWidth < 0 ? -i64{nWidth} : nWidth;
    object.pen = {nStyle, static_cast<int>(std::min<i64>(lWidth, 0x7FFF)), lWidth > 1, color & 0xFFFFFF};
    if (object.pen.bGeometric && nStyle != PS_NULL) {
        object.pen.nStyle = PS_SOLID; /* patterns are for lines of one pixel */
    }
    if (nStyle < PS_SOLID || nStyle > PS_NULL) {
        object.pen.nStyle = PS_SOLID;
    }
    return static_cast<HPEN>(AddObject(std::move(object)));
}

HPEN WINAPI ExtCreatePen(DWORD dwStyle, DWORD dwWidth, const LOGBRUSH* pBrush, DWORD nStyles, const DWORD*)
{
    FAILS(ExtCreatePen);
    const DWORD dwKind = dwStyle & 0xF0000, dwLine = dwStyle & 0xF;
    if (!pBrush || pBrush->lbStyle != BS_SOLID || nStyles != 0 || dwLine != static_cast<DWORD>(PS_SOLID) ||
        (dwKind == PS_COSMETIC ? dwWidth != 1 : dwKind != PS_GEOMETRIC)) {
        SetHostedError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Object object;
    object.kind = OBJECT_PEN;
    object.pen = {PS_SOLID, static_cast<int>(std::min<DWORD>(dwWidth, 0x7FFF)),
                  dwKind == PS_GEOMETRIC && dwWidth > 1, pBrush->lbColor & 0xFFFFFF};
    return static_cast<HPEN>(AddObject(std::move(object)));
}

HBRUSH WINAPI CreateSolidBrush(COLORREF color)
{
    FAILS(CreateSolidBrush);
    Object object;
    object.kind = OBJECT_BRUSH;
    object.brush = {false, color & 0xFFFFFF};
    return static_cast<HBRUSH>(AddObject(std::move(object)));
}
