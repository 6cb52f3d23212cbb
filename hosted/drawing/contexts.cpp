/* Device contexts: of the display, in memory, of a window that is painted; what they hold and how they draw. */
#include <algorithm>
#include <unordered_map>
#include <utility>

#include "hosted/dialogs/window_state.h"
#include "hosted/drawing/drawing_state.h"

namespace {

struct Context {
    DrawingContext state{};
    bool bPaint = false; /* ended by EndPaint, counted nowhere */
};

struct Contexts {
    std::unordered_map<HDC, Context> all;
    std::unordered_map<HWND, Surface> windows; /* of windows of their own: their client areas */
    std::uintptr_t nLast = 0;
};

constexpr int LARGEST_WINDOW = 4096;
constexpr int LAST_MAP_MODE = 8;

Contexts& contexts()
{
    static Contexts instance;
    return instance;
}

RECT WholeSurface(const Surface& surface)
{
    return {0, 0, surface.nWidth, surface.nHeight};
}

HDC AddContext(HBITMAP hBitmap, bool bPaint)
{
    const auto hDc = reinterpret_cast<HDC>(++contexts().nLast * 0x10000 + 1);
    Context& context = contexts().all[hDc];
    context.bPaint = bPaint;
    DrawingContext& state = context.state;
    state.hPen = static_cast<HPEN>(StockObject(BLACK_PEN));
    state.hBrush = static_cast<HBRUSH>(StockObject(WHITE_BRUSH));
    state.hFont = static_cast<HFONT>(StockObject(SYSTEM_FONT));
    state.nBkMode = OPAQUE;
    state.nMapMode = MM_TEXT;
    state.backColor = 0xFFFFFF;
    state.hBitmap = hBitmap;
    state.pSurface = hBitmap ? FindBitmapSurface(hBitmap) : nullptr;
    if (state.pSurface) {
        state.clip = WholeSurface(*state.pSurface);
    }
    return hDc;
}

void DropContext(HDC hDc)
{
    const DrawingContext& state = contexts().all[hDc].state;
    for (HGDIOBJ hObject : {static_cast<HGDIOBJ>(state.hPen), static_cast<HGDIOBJ>(state.hBrush),
                            static_cast<HGDIOBJ>(state.hFont), static_cast<HGDIOBJ>(state.hBitmap)}) {
        HoldObject(hObject, -1);
    }
    contexts().all.erase(hDc);
}

RECT Intersect(const RECT& one, const RECT& other)
{
    return {std::max(one.left, other.left), std::max(one.top, other.top), std::min(one.right, other.right),
            std::min(one.bottom, other.bottom)};
}

/* The surface follows the size of its window; what was painted stays. */
Surface* SurfaceOf(const Window* pTop)
{
    const RECT client = ClientRect(pTop);
    if (client.right < 1 || client.bottom < 1 || client.right > LARGEST_WINDOW ||
        client.bottom > LARGEST_WINDOW) {
        return nullptr;
    }
    Surface& surface = contexts().windows[pTop->hWnd];
    if (surface.nWidth != client.right || surface.nHeight != client.bottom) {
        Surface larger;
        MakeSurface(client.right, client.bottom, false, &larger);
        std::fill(larger.pixels.begin(), larger.pixels.end(), SystemColor(COLOR_BTNFACE));
        const int nWidth = std::min(surface.nWidth, larger.nWidth);
        for (int y = 0; y < std::min(surface.nHeight, larger.nHeight); y++) {
            std::copy_n(surface.pixels.begin() + std::ptrdiff_t{y} * surface.nWidth, nWidth,
                        larger.pixels.begin() + std::ptrdiff_t{y} * larger.nWidth);
        }
        surface = std::move(larger);
    }
    return &surface;
}

/* Puts an object in its place and gives the one that was there. */
HGDIOBJ Exchange(DrawingContext& context, ObjectKind kind, HGDIOBJ hObject)
{
    switch (kind) {
    case OBJECT_PEN: return std::exchange(context.hPen, static_cast<HPEN>(hObject));
    case OBJECT_BRUSH: return std::exchange(context.hBrush, static_cast<HBRUSH>(hObject));
    case OBJECT_FONT: return std::exchange(context.hFont, static_cast<HFONT>(hObject));
    case OBJECT_BITMAP: return std::exchange(context.hBitmap, static_cast<HBITMAP>(hObject));
    default: return nullptr;
    }
}

} // namespace

DrawingContext* FindContext(HDC hDc)
{
    const auto found = contexts().all.find(hDc);
    if (found == contexts().all.end()) {
        SetHostedError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return &found->second.state;
}

void ResetContexts()
{
    contexts() = Contexts();
    liveCounts.nContexts = 0;
}

HDC WINAPI CreateDCW(LPCWSTR wcDriver, LPCWSTR, LPCWSTR, const DEVMODEW*)
{
    FAILS(CreateDCW);
    if (!wcDriver || !SameName(wcDriver, u"DISPLAY")) {
        SetHostedError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    liveCounts.nContexts++;
    return AddContext(nullptr, false);
}

HDC WINAPI CreateCompatibleDC(HDC hDc)
{
    FAILS(CreateCompatibleDC);
    if (hDc && !FindContext(hDc)) {
        return nullptr;
    }
    liveCounts.nContexts++;
    return AddContext(DefaultBitmap(), false);
}

BOOL WINAPI DeleteDC(HDC hDc)
{
    std::lock_guard heldForCall(machineLock);
    const int bFails = CallFails(CALL_DeleteDC); /* a release that fails still releases */
    const auto found = contexts().all.find(hDc);
    if (found == contexts().all.end() || found->second.bPaint) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    DropContext(hDc);
    liveCounts.nContexts--;
    return !bFails;
}

HDC AddPaintContext(HWND hWnd, const RECT& rInvalid)
{
    const HDC hDc = AddContext(nullptr, true);
    DrawingContext& state = contexts().all[hDc].state;
    const Window* pWindow = FindWindowState(hWnd);
    const Window* pTop = FindWindowState(TopWindow(hWnd));
    state.pSurface = pWindow && pTop && IsShown(pWindow) ? SurfaceOf(pTop) : nullptr;
    if (!state.pSurface) {
        return hDc;
    }
    const POINT top = ClientOrigin(pTop), origin = ClientOrigin(pWindow);
    state.origin = {origin.x - top.x, origin.y - top.y};
    state.clip = rInvalid;
    state.clip.left += state.origin.x;
    state.clip.right += state.origin.x;
    state.clip.top += state.origin.y;
    state.clip.bottom += state.origin.y;
    /* A child shows no more of itself than the windows above it have room for. */
    for (const Window* pAt = pWindow; pAt; pAt = pAt == pTop ? nullptr : FindWindowState(pAt->hParent)) {
        const POINT at = ClientOrigin(pAt);
        const RECT client = ClientRect(pAt);
        state.clip = Intersect(state.clip, {at.x - top.x, at.y - top.y, at.x - top.x + client.right,
                                            at.y - top.y + client.bottom});
    }
    state.clip = Intersect(state.clip, WholeSurface(*state.pSurface));
    return hDc;
}

void DropPaintContext(HDC hDc)
{
    const auto found = contexts().all.find(hDc);
    if (found != contexts().all.end() && found->second.bPaint) {
        DropContext(hDc);
    }
}

void EraseContext(HDC hDc)
{
    const auto found = contexts().all.find(hDc);
    if (found != contexts().all.end()) {
        DrawingContext& state = found->second.state;
        FillBox(state, state.clip.left, state.clip.top, state.clip.right, state.clip.bottom,
                SystemColor(COLOR_BTNFACE));
    }
}

void DropWindowSurface(HWND hWnd)
{
    const auto found = contexts().windows.find(hWnd);
    if (found == contexts().windows.end()) {
        return;
    }
    for (auto& [hDc, context] : contexts().all) {
        if (context.state.pSurface == &found->second) {
            context.state.pSurface = nullptr; /* a paint that outlives its window draws nothing more */
        }
    }
    contexts().windows.erase(found);
}

const Surface* WindowSurface(HWND hTop)
{
    const auto found = contexts().windows.find(hTop);
    return found == contexts().windows.end() ? nullptr : &found->second;
}

HGDIOBJ WINAPI SelectObject(HDC hDc, HGDIOBJ hObject)
{
    FAILS(SelectObject);
    DrawingContext* pContext = FindContext(hDc);
    const ObjectKind kind = KindOfObject(hObject);
    if (!pContext || kind == OBJECT_NONE) {
        Refuse(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (kind == OBJECT_BITMAP && hObject != pContext->hBitmap &&
        (!pContext->hBitmap || IsSelected(hObject))) {
        return nullptr; /* into contexts in memory alone, and into one of them at a time */
    }
    const HGDIOBJ hOld = Exchange(*pContext, kind, hObject);
    HoldObject(hObject, 1);
    HoldObject(hOld, -1);
    if (kind == OBJECT_BITMAP) {
        pContext->pSurface = FindBitmapSurface(static_cast<HBITMAP>(hObject));
        pContext->clip = WholeSurface(*pContext->pSurface);
    }
    return hOld;
}

int WINAPI SetBkMode(HDC hDc, int nMode)
{
    FAILS(SetBkMode);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext || (nMode != TRANSPARENT && nMode != OPAQUE)) {
        return 0;
    }
    return std::exchange(pContext->nBkMode, nMode);
}

int WINAPI GetMapMode(HDC hDc)
{
    FAILS(GetMapMode);
    const DrawingContext* pContext = FindContext(hDc);
    return pContext ? pContext->nMapMode : 0;
}

int WINAPI SetMapMode(HDC hDc, int nMode)
{
    FAILS(SetMapMode);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext || nMode < MM_TEXT || nMode > LAST_MAP_MODE) {
        return 0;
    }
    return std::exchange(pContext->nMapMode, nMode);
}

BOOL WINAPI DPtoLP(HDC hDc, LPPOINT aPoints, int nPoints)
{
    FAILS(DPtoLP);
    const DrawingContext* pContext = FindContext(hDc);
    return pContext && pContext->nMapMode == MM_TEXT && (aPoints || nPoints == 0); /* they are the same */
}

BOOL WINAPI MoveToEx(HDC hDc, int x, int y, LPPOINT pOld)
{
    FAILS(MoveToEx);
    DrawingContext* pContext = FindContext(hDc);
    if (!pContext) {
        return 0;
    }
    if (pOld) {
        *pOld = pContext->position;
    }
    pContext->position = {x, y};
    return 1;
}
