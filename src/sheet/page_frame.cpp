/* The pages of a sheet: how they come to the host, and what every one of them does with its messages. */
#include "sheet/page_frame.h"

#include <utility>

#include "description/control_ids.h"
#include "sheet/about.h"
#include "sheet/commit.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/help.h"
#include "sheet/presets.h"
#include "sheet/preview_panel.h"
#include "sheet/web_link.h"
#include "sheet/zoom_and_layout.h"

namespace {

/* 1 when the model has what the page is about. */
int IsPageWanted(const UiSession* pSession, int nSlot)
{
    switch (nSlot) {
    case SLOT_WATERMARKS: return pSession->bFontFamilies != 0;
    case SLOT_FONTS: return pSession->bFontFamilies && pSession->pXpi->sResFontCount != 0;
    default: return 1;
    }
}

/* 1 when the host took the page. */
int AddPage(UiSession* pSession, const PageTableRow& row, u16 usTemplate)
{
    PROPSHEETPAGEW page = {};
    LoadUiText(pSession, row.sTitle, pSession->wcPageTitle[row.sSlot], TEXT_CHARS);
    page.dwSize = sizeof page;
    page.dwFlags = PSP_USETITLE;
    page.hInstance = static_cast<HINSTANCE>(pSession->hLanguageDll.get());
    page.pszTemplate = MAKEINTRESOURCEW(usTemplate);
    page.pszTitle = pSession->wcPageTitle[row.sSlot];
    page.pfnDlgProc = row.pfnDialogProc;
    page.lParam = reinterpret_cast<LPARAM>(pSession);
    LONG_PTR lHandle = pSession->pfnComPropSheet(pSession->hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW,
                                                 reinterpret_cast<LPARAM>(&page), 0);
    pSession->hPage[row.sSlot] = reinterpret_cast<HPROPSHEETPAGE>(lHandle);
    return lHandle != 0;
}

/* Adds the pages of the table and counts them. 0 when the host refused one. */
int AddTablePages(UiSession* pSession, const PageTableRow* pTable, int* pnAdded)
{
    *pnAdded = 0;
    for (const PageTableRow* pRow = pTable; pRow->sTitle; pRow++) {
        u16 usTemplate = pSession->bDeviceSheet ? pRow->sDevTemplate : pRow->sDocTemplate;
        if (!usTemplate) {
            continue;
        }
        pSession->pfnPageCommand[pRow->sSlot] = pRow->pfnCommand;
        if (!IsPageWanted(pSession, pRow->sSlot)) {
            continue;
        }
        if (!AddPage(pSession, *pRow, usTemplate)) {
            return 0;
        }
        ++*pnAdded;
    }
    return 1;
}

void MoveOverPage(HWND hPage, UiSession* pSession, LPARAM lPoint)
{
    ShowHandCursor(pSession,
                   IsOverControl(hPage, IDC_PREVIEW_SIZE, lPoint) || IsOverControl(hPage, IDC_LOGO, lPoint));
}

/* The size line turns between the units, the logo leads to the maker's page. */
void ReleaseOverPage(HWND hPage, UiSession* pSession, LPARAM lPoint)
{
    if (IsOverControl(hPage, IDC_PREVIEW_SIZE, lPoint)) {
        SetCursor(pSession->hCursorHand);
        FlipPreviewUnit(hPage, pSession);
    } else if (IsOverControl(hPage, IDC_LOGO, lPoint) && pSession->pXpi->sWebLinkCmdId) {
        OpenWebPage(pSession);
    }
}

INT_PTR InitPage(const PageRoutines& routines, HWND hPage, LPARAM lParam)
{
    InitPageCommon(hPage, reinterpret_cast<const PROPSHEETPAGEW*>(lParam), routines.slot);
    if (UiSession* pSession = SessionOf(hPage)) {
        pSession->apRoutines[routines.slot] = &routines;
        FillPage(routines, hPage, pSession);
    }
    return routines.slot == SLOT_ABOUT;
}

/* Writes the record from the controls. 0 when the page refuses. */
int WriteRecord(const PageRoutines& routines, HWND hPage, UiSession* pSession)
{
    u32 bFilling = std::exchange(pSession->bFilling, 1u);
    int bDone = !routines.pfnApply || routines.pfnApply(hPage, pSession);
    pSession->bFilling = bFilling;
    return bDone;
}

/* An earlier refusal must not answer for this apply, and whatever the page is sent later clears the answer again. So
   the answer is the last step. */
void ApplyPage(const PageRoutines& routines, HWND hPage, UiSession* pSession)
{
    if (routines.pfnApplyAlways) {
        routines.pfnApplyAlways(hPage, pSession);
    }
    LONG_PTR lAnswer = PSNRET_NOERROR;
    if (pSession->bPageDirty[routines.slot]) {
        if (!WriteRecord(routines, hPage, pSession) || !CommitPage(pSession, routines.slot, hPage)) {
            lAnswer = PSNRET_INVALID_NOCHANGEPAGE;
        }
        if (routines.pfnApplied) {
            routines.pfnApplied(hPage, pSession);
        }
    }
    SetWindowLongPtrW(hPage, DWLP_MSGRESULT, lAnswer);
}

INT_PTR Notified(const PageRoutines& routines, HWND hPage, UiSession* pSession, LPARAM lParam)
{
    const NMHDR* pNote = reinterpret_cast<const NMHDR*>(lParam);
    switch (pNote ? pNote->code : 0) {
    case PSN_APPLY: ApplyPage(routines, hPage, pSession); return 1;
    case PSN_HELP: ShowPageTopic(pSession, routines.nHelpKey); return 0;
    case PSN_SETACTIVE:
        RepaintControl(hPage, IDC_PREVIEW);
        if (routines.slot == SLOT_LAYOUT) {
            RepaintControl(hPage, IDC_LAYOUT_DUPLEX_PICTURE);
        }
        return 0;
    default: return 0;
    }
}

/* The check at the end of whatever the user did. A dialog that it opened may have outlived the page. */
void CheckPage(const PageRoutines& routines, HWND hPage)
{
    UiSession* pSession = SessionOf(hPage);
    if (pSession && !pSession->bFilling && routines.pfnDiffers) {
        TrackChange(hPage, pSession, routines.slot, routines.pfnDiffers(hPage, pSession));
    }
}

INT_PTR Commanded(const PageRoutines& routines, HWND hPage, WPARAM wParam, LPARAM lParam)
{
    if (DispatchPageCommand(hPage, wParam, lParam, routines.slot)) {
        CheckPage(routines, hPage);
    }
    return 0;
}

INT_PTR Scrolled(const PageRoutines& routines, HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam)
{
    if (routines.pfnScroll) {
        routines.pfnScroll(hPage, pSession, wParam, lParam);
        CheckPage(routines, hPage);
    }
    return 0;
}

/* A preset changes both pages that exclude each other, and the medical mode is none of its settings. */
void UsePreset(HWND hPage, UiSession* pSession, int nSlot)
{
    ApplyPreset(hPage, pSession, nSlot);
    EnableScalingGroup(pSession, ScalingAllowed(pSession));
    EnableLayoutGroup(pSession, IsZoom100(pSession));
    if (HWND hPaper = pSession->hPageWnd[SLOT_PAPER]) {
        SendDlgItemMessageW(hPaper, IDC_PAPER_MEDICAL, CB_SETCURSEL, 0, 0);
    }
    RepaintControl(hPage, IDC_PREVIEW);
}

/* The hot areas of every page; then what the page has besides. */
INT_PTR MouseOnPage(const PageRoutines& routines, HWND hPage, UiSession* pSession, UINT uMessage,
                    LPARAM lPoint)
{
    switch (uMessage) {
    case WM_MOUSEMOVE: MoveOverPage(hPage, pSession, lPoint); break;
    case WM_LBUTTONDOWN:
        if (IsOverControl(hPage, IDC_PREVIEW_SIZE, lPoint)) {
            SetCursor(pSession->hCursorHand);
        }
        break;
    case WM_LBUTTONUP: ReleaseOverPage(hPage, pSession, lPoint); break;
    default: break;
    }
    if (routines.pfnMouse) {
        routines.pfnMouse(hPage, pSession, uMessage, lPoint);
    }
    return 0;
}

} // namespace

int BuildSheetPages(UiSession* pSession, PROPSHEETUI_INFO* pInfo, const PageTableRow* pTable,
                    const PageTableRow& lonePage)
{
    pSession->bSheetBuilt = 1;
    pSession->hComPropSheet = pInfo->hComPropSheet;
    pSession->pfnComPropSheet = pInfo->pfnComPropSheet;
    pInfo->UserData = reinterpret_cast<ULONG_PTR>(pSession);
    pInfo->Result = 1;
    int nAdded;
    if (!pSession->pfnComPropSheet || !AddTablePages(pSession, pTable, &nAdded) ||
        (!nAdded && !AddPage(pSession, lonePage, lonePage.sDevTemplate))) {
        pInfo->Result = 0;
        return 0;
    }
    return 1;
}

void InitPageCommon(HWND hPage, const PROPSHEETPAGEW* pPage, int nSlot)
{
    UiSession* pSession = pPage ? reinterpret_cast<UiSession*>(pPage->lParam) : nullptr;
    if (!pSession) {
        return;
    }
    SetWindowLongPtrW(hPage, DWLP_USER, pPage->lParam);
    pSession->hPageWnd[nSlot] = hPage;
    LabelControls(hPage, pSession);
    if (!pSession->bDeviceSheet) {
        InitPresets(hPage, pSession);
    }
    ShowLogo(hPage, pSession);
}

int DispatchPageCommand(HWND hPage, WPARAM wParam, LPARAM lParam, int nSlot)
{
    UiSession* pSession = SessionOf(hPage);
    if (!pSession || pSession->bFilling) {
        return 0;
    }
    int bClicked = HIWORD(wParam) == BN_CLICKED;
    switch (LOWORD(wParam)) {
    case IDC_LOGO:
        if (bClicked && pSession->pXpi->sWebLinkCmdId) {
            OpenWebPage(pSession);
        }
        return 0;
    case IDC_ABOUT:
        if (bClicked) {
            ShowAbout(pSession, hPage);
        }
        return 0;
    case IDC_PRESET_APPLY:
        if (bClicked) {
            UsePreset(hPage, pSession, nSlot);
        }
        return 0;
    default:
        if (!pSession->pfnPageCommand[nSlot]) {
            return 0;
        }
        pSession->pfnPageCommand[nSlot](hPage, pSession, wParam, lParam);
        return 1;
    }
}

void TrackChange(HWND hPage, UiSession* pSession, int nSlot, int bDiffers)
{
    int bHeld = pSession->bSettingsLoaded || pSession->bStickyChange;
    SendMessageW(GetParent(hPage), bDiffers || bHeld ? PSM_CHANGED : PSM_UNCHANGED,
                 reinterpret_cast<WPARAM>(hPage), 0);
    if (bDiffers) {
        pSession->bPageDirty[nSlot] = 1;
    } else if (!bHeld) {
        pSession->bPageDirty[nSlot] = 0;
    }
}

INT_PTR HandlePageMessage(const PageRoutines& routines, HWND hPage, UINT uMessage, WPARAM wParam,
                          LPARAM lParam)
{
    if (uMessage == WM_INITDIALOG) {
        return InitPage(routines, hPage, lParam);
    }
    UiSession* pSession = SessionOf(hPage);
    if (!pSession) {
        return 0;
    }
    switch (uMessage) {
    case WM_DESTROY: PageDestroyed(hPage, routines.slot); return 0;
    case WM_PAINT:
        if (!routines.pfnPaint) {
            return 0;
        }
        routines.pfnPaint(hPage, pSession);
        return 1;
    case WM_NOTIFY: return Notified(routines, hPage, pSession, lParam);
    case WM_HELP:
    case WM_CONTEXTMENU: return ShowContextHelp(hPage, pSession, uMessage, wParam, lParam);
    case WM_COMMAND: return Commanded(routines, hPage, wParam, lParam);
    case WM_VSCROLL: HandleSpin(hPage, pSession, wParam, lParam); return 0;
    case WM_HSCROLL: return Scrolled(routines, hPage, pSession, wParam, lParam);
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONDBLCLK: return MouseOnPage(routines, hPage, pSession, uMessage, lParam);
    default: return 0;
    }
}
