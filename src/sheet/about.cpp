/* The About box: what the model says of itself, and the version of the rendering half. */
#include "sheet/about.h"

#include <cstring>
#include <utility>

#include "base/format.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "description/xpi_text.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/version_text.h"

namespace {

constexpr i32 TEXTS_ABOVE = 3; /* texts of the model above the version, at most */

/* Number of the model's text nRow; 0 for none. */
i16 AboutText(const UiSession* pSession, i32 nRow)
{
    const XpiModel* pModel = pSession->pXpi.get();
    if (!pModel || !pModel->pAboutStrings) {
        return 0;
    }
    i16 sId;
    std::memcpy(&sId, RowAt(pModel, pModel->pAboutStrings, nRow, sizeof sId), sizeof sId);
    return sId;
}

void ShowModelText(HWND hDialog, UiSession* pSession, int nControl, i16 sId)
{
    WCHAR wcText[TEXT_CHARS];
    ReadXpiString(pSession->rXpiFile, pSession->rLanguage.usPrimary,
                  static_cast<HMODULE>(pSession->hLanguageDll.get()), sId, wcText, TEXT_CHARS);
    SetDlgItemTextW(hDialog, nControl, wcText);
}

/* The logo is the box's own, since the pages' goes with the last of them. */
void InitAbout(HWND hDialog, UiSession* pSession)
{
    SetTitle(hDialog, pSession, IDS_TITLE_ABOUT);
    if (pSession->pDialogData) {
        SendDlgItemMessageW(hDialog, IDC_LOGO, STM_SETIMAGE, IMAGE_BITMAP,
                            reinterpret_cast<LPARAM>(pSession->pDialogData));
    }
    FillAbout(hDialog, pSession);
}

void AboutCommand(HWND hDialog, UiSession*, WPARAM wParam, LPARAM)
{
    if (LOWORD(wParam) == IDC_NOTICE_OK) {
        EndDialog(hDialog, DIALOG_OK);
    }
}

constexpr DialogRoutines aboutBox = {-1, InitAbout, AboutCommand};

} // namespace

void FillAbout(HWND hDialog, UiSession* pSession)
{
    i32 nTexts = 0;
    for (i16 sId; nTexts < TEXTS_ABOVE && (sId = AboutText(pSession, nTexts)) != 0; nTexts++) {
        ShowModelText(hDialog, pSession, IDC_ABOUT_LINE1 + nTexts, sId);
    }
    WCHAR tcCore[PATH_CHARS], wcVersion[VERSION_CHARS];
    PrinterCall call(pSession->hPrinter);
    if (GetRenderCorePath(call, tcCore) && ReadVersionText(tcCore, wcVersion)) {
        int nLine = IDC_ABOUT_LINE1 + nTexts;
        ShowModelText(hDialog, pSession, nLine, AboutText(pSession, nTexts));
        if (wcVersion[0]) {
            WCHAR wcName[TEXT_CHARS], wcLine[TEXT_CHARS + VERSION_CHARS];
            LoadUiText(pSession, IDS_VERSION, wcName, TEXT_CHARS);
            FormatWide(wcLine, TEXT_CHARS + VERSION_CHARS, TEXT("%s %s"), static_cast<const WCHAR*>(wcName),
                       static_cast<const WCHAR*>(wcVersion));
            SetDlgItemTextW(hDialog, nLine + 1, wcLine);
        }
        ShowModelText(hDialog, pSession, nLine + 2, AboutText(pSession, nTexts + 2));
    }
    CentreDialog(hDialog, CENTRE_X, DIALOG_TOP);
}

void ShowAbout(UiSession* pSession, HWND hOwner)
{
    HINSTANCE hLibrary = static_cast<HINSTANCE>(pSession->hLanguageDll.get());
    if (!hLibrary) {
        return;
    }
    HANDLE hLogo =
        LoadImageW(hLibrary, TEXT("LOGOBITMAP"), IMAGE_BITMAP, 0, 0, LR_LOADMAP3DCOLORS | LR_LOADTRANSPARENT);
    void* pBefore = std::exchange(pSession->pDialogData, hLogo);
    RunDialog<aboutBox>(pSession, hOwner, IDD_ABOUT, 0);
    pSession->pDialogData = pBefore;
    if (hLogo) {
        DeleteObject(static_cast<HBITMAP>(hLogo));
    }
}
