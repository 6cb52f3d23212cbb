/* The hosted drawing beyond what both builds state: objects in use, windows that are painted, and that
   no extent makes it run long or write outside its surface. */

#include <algorithm>
#include <ctime>

#include "support/dialog_user.h"
#include "support/picture.h"
#include "support/sample_machine.h"

namespace {

enum { INNER = 101, SHOWN = 102 };
constexpr COLORREF WHITE = 0xFFFFFF, FACE = 0xF5F5F5, RED = 0x0000FF, BLUE = 0xFF0000;

class HostedDrawing : public MachineTest {};

TEST_F(HostedDrawing, ObjectsInUseAreKept)
{
    {
        const Canvas canvas(8, 8, WHITE);
        EXPECT_EQ(CountLive().nContexts, 1);
        EXPECT_EQ(CountLive().nGdiObjects, 1);
        const HPEN hPen = CreatePen(PS_SOLID, 0, RED);
        const HGDIOBJ hOld = SelectObject(canvas.Dc(), hPen);
        EXPECT_FALSE(DeleteObject(hPen)) << "a pen that is still selected is a mistake, and leaks";
        EXPECT_EQ(CountLive().nGdiObjects, 2);
        SelectObject(canvas.Dc(), hOld);
        EXPECT_TRUE(DeleteObject(hPen));
        FailCall(CALL_DeleteDC, 1);
        const HDC hOther = CreateCompatibleDC(nullptr);
        EXPECT_FALSE(DeleteDC(hOther)) << "a release that fails still releases";
        EXPECT_EQ(StopFaults(), 1);
        EXPECT_EQ(CountLive().nContexts, 1);
        /* Ten times a hostile sheet: refused, not taken from the machine. */
        EXPECT_EQ(CreateCompatibleBitmap(canvas.Dc(), 327680, 327680), nullptr);
        EXPECT_EQ(CreateCompatibleBitmap(canvas.Dc(), -0x7FFFFFFF - 1, 0x7FFFFFFF), nullptr);
        EXPECT_FALSE(
            BitBlt(canvas.Dc(), 0, 0, 5, 5, canvas.Dc(), 1, 1, 0x00EE0086)); /* copies alone are drawn */
    }
    EXPECT_EQ(CountLive(), LiveCounts());
}

TEST_F(HostedDrawing, HostileExtentsEndSoon)
{
    const Canvas canvas(64, 64, WHITE);
    constexpr int aEdges[] = {-0x7FFFFFFF - 1, -0x7FFFFFF, -70000,    -1, 0, 1, 63, 64,
                              70000,           0x7FFFFFF,  0x7FFFFFFF};
    const std::clock_t begun = std::clock();
    const HDC hDc = canvas.Dc();
    LOGBRUSH brush = {BS_SOLID, RED, 0};
    const HPEN aPens[] = {CreatePen(PS_SOLID, 0, RED), CreatePen(PS_DOT, 0, RED),
                          ExtCreatePen(PS_GEOMETRIC | PS_ENDCAP_FLAT, 2, &brush, 0, nullptr),
                          ExtCreatePen(PS_GEOMETRIC | PS_ENDCAP_FLAT, 0xFFFFFFFF, &brush, 0, nullptr)};
    for (int a : aEdges) {
        for (int b : aEdges) {
            for (int c : aEdges) {
                for (HPEN hPen : aPens) {
                    SelectObject(hDc, hPen);
                    MoveToEx(hDc, a, b, nullptr);
                    LineTo(hDc, c, a);
                    Rectangle(hDc, a, b, c, b);
                    Rectangle(hDc, a, a, b, c);
                }
                Pie(hDc, a, b, c, a, b, c, a, c);
                const POINT aPoints[] = {{a, b}, {c, a}, {b, c}, {c, c}};
                PolyBezier(hDc, aPoints, 4);
                BitBlt(hDc, a, b, c, a, hDc, b, c, SRCCOPY);
                StretchBlt(hDc, a, b, c, a, hDc, c, b, b, c, SRCCOPY);
            }
        }
    }
    SelectObject(hDc, GetStockObject(BLACK_PEN));
    for (HPEN hPen : aPens) {
        EXPECT_TRUE(DeleteObject(hPen));
    }
    /* The narrowest ellipses end as well. */
    for (int nWidth = 1; nWidth < 12; nWidth++) {
        for (int nHeight = 1; nHeight < 12; nHeight++) {
            EXPECT_TRUE(Pie(hDc, 20, 20, 20 + nWidth, 20 + nHeight, 0, 0, 5, 64));
        }
    }
    EXPECT_LT(std::clock() - begun, 20 * CLOCKS_PER_SEC);
    /* A square of the surface's own size fills it from far away. */
    SelectObject(hDc, GetStockObject(BLACK_BRUSH));
    EXPECT_TRUE(Rectangle(hDc, -1000000, -1000000, 1000000, 1000000));
    EXPECT_EQ(canvas.Pixels().pixels, std::vector<COLORREF>(64 * 64, 0));
}

/* A dialog that paints a red square. */
INT_PTR CALLBACK PaintProc(HWND hDialog, UINT uMessage, WPARAM, LPARAM)
{
    if (uMessage != WM_PAINT) {
        return FALSE;
    }
    PAINTSTRUCT paint;
    const HDC hDc = BeginPaint(hDialog, &paint);
    FillBox(hDc, {10, 10, 20, 20}, RED);
    EXPECT_FALSE(DeleteDC(hDc)) << "that is EndPaint's";
    EndPaint(hDialog, &paint);
    return TRUE;
}

TEST_F(HostedDrawing, WindowsKeepWhatWasPainted)
{
    const DialogBuilder form(
        WS_POPUP | WS_CAPTION | WS_VISIBLE, 100, 60,
        {{INNER, u"Static", 0, 20, 20, 10, 10}, {SHOWN, u"Static", SS_BITMAP, 60, 20, 4, 4}});
    const HWND hDialog = CreateDialogIndirectParamW(nullptr, form.Data(), nullptr, PaintProc, 0);
    Picture picture;
    EXPECT_FALSE(WindowPicture(hDialog, &picture)) << "nothing painted yet";
    InvalidateRect(hDialog, nullptr, 1);
    PaintWindows(hDialog);
    ASSERT_TRUE(WindowPicture(hDialog, &picture));
    RECT client;
    GetClientRect(hDialog, &client);
    EXPECT_EQ(picture.nWidth, client.right);
    EXPECT_EQ(picture.nHeight, client.bottom);
    EXPECT_TRUE(picture.At(9, 9) == FACE && picture.At(20, 20) == FACE);
    EXPECT_TRUE(picture.At(10, 10) == RED && picture.At(19, 19) == RED);

    /* A control's own area: its own origin, and no pixel outside it or outside what is invalid. */
    const HWND hInner = GetDlgItem(hDialog, INNER);
    RECT inner, part = {0, 0, 5, 4};
    GetClientRect(hInner, &inner);
    PaintWindows(hDialog);
    InvalidateRect(hInner, &part, 0);
    PAINTSTRUCT paint;
    FillBox(BeginPaint(hInner, &paint), {-50, -50, 500, 500}, BLUE);
    EndPaint(hInner, &paint);
    POINT at = {0, 0};
    MapWindowPoints(hInner, hDialog, &at, 1);
    ASSERT_TRUE(WindowPicture(hDialog, &picture));
    EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), BLUE), 20);
    EXPECT_EQ(picture.At(at.x, at.y), BLUE);
    EXPECT_EQ(picture.At(at.x + 4, at.y + 3), BLUE);
    Picture own;
    ASSERT_TRUE(WindowPicture(hInner, &own));
    EXPECT_EQ(own.nWidth, inner.right);
    EXPECT_EQ(own.At(4, 3), BLUE);
    EXPECT_EQ(own.At(5, 3), FACE);

    /* A bitmap that a static control shows lies over it. */
    const HDC hScreen = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr);
    const HBITMAP hShown = CreateCompatibleBitmap(hScreen, 6, 5);
    SendDlgItemMessageW(hDialog, SHOWN, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hShown));
    ASSERT_TRUE(WindowPicture(hDialog, &picture));
    EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), 0u), 30);
    SendDlgItemMessageW(hDialog, SHOWN, STM_SETIMAGE, IMAGE_BITMAP, 0);
    EXPECT_TRUE(DeleteObject(hShown) && DeleteDC(hScreen));
    DestroyWindow(hDialog);
    EXPECT_FALSE(WindowPicture(hDialog, &picture));
    EXPECT_EQ(CountLive().nGdiObjects, 0);
    EXPECT_EQ(CountLive().nContexts, 0);
}

} // namespace
