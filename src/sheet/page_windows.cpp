#include "sheet/page_windows.h"

#include <utility>

#include "description/control_ids.h"

namespace {

/* The logo goes with the last page, and no control holds it then. */
void ReleaseLogo(HWND hPage, UiSession* pSession)
{
    if (!pSession->hLogoBitmap) {
        return;
    }
    SendDlgItemMessageW(hPage, IDC_LOGO, STM_SETIMAGE, IMAGE_BITMAP, 0);
    for (HWND hOther : pSession->hPageWnd) {
        if (hOther) {
            return;
        }
    }
    DeleteObject(pSession->hLogoBitmap);
    pSession->hLogoBitmap = nullptr;
}

} // namespace

void FillPage(const PageRoutines& routines, HWND hPage, UiSession* pSession)
{
    if (routines.pfnInit) {
        u32 bFilling = std::exchange(pSession->bFilling, 1u);
        routines.pfnInit(hPage, pSession);
        pSession->bFilling = bFilling;
    }
}

void ReloadPage(UiSession* pSession, int nSlot)
{
    HWND hPage = pSession->hPageWnd[nSlot];
    if (!hPage || !pSession->apRoutines[nSlot]) {
        return;
    }
    HWND hFocus = GetFocus();
    FillPage(*pSession->apRoutines[nSlot], hPage, pSession);
    if (hFocus && GetFocus() != hFocus) {
        SetFocus(hFocus);
    }
}

void ShowLogo(HWND hPage, UiSession* pSession)
{
    if (!pSession->hLogoBitmap) {
        pSession->hLogoBitmap = static_cast<HBITMAP>(
            LoadImageW(static_cast<HINSTANCE>(pSession->hLanguageDll.get()), TEXT("LOGOBITMAP"), IMAGE_BITMAP,
                       0, 0, LR_LOADMAP3DCOLORS | LR_LOADTRANSPARENT));
    }
    if (pSession->hLogoBitmap) {
        SendDlgItemMessageW(hPage, IDC_LOGO, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(pSession->hLogoBitmap));
    }
}

void PageDestroyed(HWND hDialog, int nSlot)
{
    UiSession* pSession = SessionOf(hDialog);
    if (!pSession || nSlot < 0 || nSlot >= SLOT_COUNT) {
        return;
    }
    SetWindowLongPtrW(hDialog, DWLP_USER, 0);
    pSession->hPageWnd[nSlot] = nullptr;
    pSession->apRoutines[nSlot] = nullptr;
    if (nSlot == SLOT_WATERMARKS) {
        pSession->pDeletedWatermarks.reset();
        pSession->sDeletedWatermarkCount = 0;
    } else if (nSlot == SLOT_FONTS) {
        pSession->pFontSubsSnapshot.reset();
        pSession->sFontSubsSnapshotCount = 0;
    }
    ReleaseLogo(hDialog, pSession);
}
