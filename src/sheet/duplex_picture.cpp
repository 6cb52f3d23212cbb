/* Loads and shows the duplex pictures. */
#include "sheet/duplex_picture.h"

#include "description/control_ids.h"

namespace {

constexpr const WCHAR* awcPictures[DUPLEX_PICTURES] = {TEXT("DUPLONG"), TEXT("DUPSHORT"), TEXT("DUPSIMPLE")};

int CheckedPicture(HWND hPage)
{
    return IsDlgButtonChecked(hPage, IDC_LAYOUT_LONG_EDGE)    ? 0
           : IsDlgButtonChecked(hPage, IDC_LAYOUT_SHORT_EDGE) ? 1
                                                              : 2;
}

} // namespace

void ShowDuplexPicture(HWND hPage, UiSession* pSession)
{
    HWND hControl = GetDlgItem(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
    if (!hControl || !pSession->hLanguageDll) {
        return;
    }
    int nPicture = CheckedPicture(hPage);
    HBITMAP& hBitmap = pSession->ahDuplexPicture[nPicture];
    if (!hBitmap) {
        hBitmap = static_cast<HBITMAP>(LoadImageW(static_cast<HINSTANCE>(pSession->hLanguageDll.get()),
                                                  awcPictures[nPicture], IMAGE_BITMAP, 0, 0,
                                                  LR_LOADTRANSPARENT | LR_LOADMAP3DCOLORS));
    }
    /* A control that is given its picture once more is painted once more, and so may be the page around it. */
    auto lBitmap = reinterpret_cast<LPARAM>(hBitmap);
    if (hBitmap && SendMessageW(hControl, STM_GETIMAGE, IMAGE_BITMAP, 0) != lBitmap) {
        SendMessageW(hControl, STM_SETIMAGE, IMAGE_BITMAP, lBitmap);
    }
}

void DropDuplexPictures(UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_LAYOUT]) {
        SendDlgItemMessageW(hPage, IDC_LAYOUT_DUPLEX_PICTURE, STM_SETIMAGE, IMAGE_BITMAP, 0);
    }
    DeleteDuplexPictures(pSession);
}
