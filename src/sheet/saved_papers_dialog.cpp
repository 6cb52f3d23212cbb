#include "sheet/saved_papers_dialog.h"

#include "description/control_ids.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "sheet/commit.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/page_frame.h"
#include "sheet/paper_editor.h"
#include "sheet/paper_lists.h"
#include "sheet/saved_papers.h"

namespace {

SavedPapers PapersOf(UiSession* pSession)
{
    return {&pSession->pCustomPapers, &pSession->sCustomPaperCount};
}

/* Without papers there is nothing to edit or to delete. */
void UpdatePaperButtons(HWND hDialog, const UiSession* pSession)
{
    constexpr int anOfOne[] = {IDC_SIZES_EDIT, IDC_SIZES_DELETE, 0};
    EnableControls(hDialog, anOfOne, pSession->sCustomPaperCount > 0);
    EnableControl(hDialog, IDC_SIZES_NEW, !IsListFull(pSession->sCustomPaperCount));
}

/* Shows the papers as the session has them now, here and on the Paper page. */
void ShowPapers(HWND hDialog, UiSession* pSession, i32 nSelected)
{
    SendDlgItemMessageW(hDialog, IDC_SIZES_LIST, LB_RESETCONTENT, 0, 0);
    FillPaperList(hDialog, pSession, IDC_SIZES_LIST, 1);
    UpdatePaperButtons(hDialog, pSession);
    SendDlgItemMessageW(hDialog, IDC_SIZES_LIST, LB_SETCURSEL, static_cast<WPARAM>(nSelected), 0);
}

void PapersChanged(HWND hDialog, UiSession* pSession, i32 nSelected)
{
    ShowPapers(hDialog, pSession, nSelected);
    RefreshPaperCombos(pSession);
    RepaintControl(pSession->hPageWnd[SLOT_PAPER], IDC_PREVIEW);
}

/* Row of the session's papers that is selected; -1 without one. */
i32 SelectedRow(HWND hDialog, const UiSession* pSession)
{
    int bChosen;
    i32 nRow = GetListValue(hDialog, IDC_SIZES_LIST, &bChosen) - FIRST_SAVED_CODE;
    return bChosen && nRow >= 0 && nRow < pSession->sCustomPaperCount ? nRow : -1;
}

void OpenPaperEditor(HWND hDialog, UiSession* pSession, i32 nRow)
{
    if (nRow < 0 || !EditPaper(hDialog, pSession, static_cast<i16>(nRow))) {
        return;
    }
    CompactPapers(PapersOf(pSession), pSession->pXpi.get());
    PapersChanged(hDialog, pSession, nRow);
}

void DeletePaper(HWND hDialog, UiSession* pSession)
{
    i32 nRow = SelectedRow(hDialog, pSession);
    if (nRow >= 0) {
        pSession->pCustomPapers.get()[nRow].wcName[0] = 0;
        CompactPapers(PapersOf(pSession), pSession->pXpi.get());
        PapersChanged(hDialog, pSession, 0);
    }
}

/* Holds the papers against the stored ones and tells the sheet in the Paper page's name. Without memory for the stored
   ones all stays as it was found last. */
void CheckPapers(UiSession* pSession)
{
    PrinterCall call(pSession->hPrinter);
    OwnedBlock<PaperSizeRow> pStored;
    i32 nStored = GetSavedPapers(call, nullptr, &pStored);
    if (pStored) {
        TrackChange(
            pSession->hPageWnd[SLOT_PAPER], pSession, SLOT_CUSTOM_PAPERS,
            !SamePapers(pSession->pCustomPapers.get(), pSession->sCustomPaperCount, pStored.get(), nStored));
    }
}

/* Papers that were edited before and not stored count as edits from the start. */
void InitPapers(HWND hDialog, UiSession* pSession)
{
    SetTitle(hDialog, pSession, IDS_TITLE_SIZES);
    ShowPapers(hDialog, pSession, 0);
    CheckPapers(pSession);
}

void EndWithOk(HWND hDialog, UiSession* pSession)
{
    if (pSession->bPageDirty[SLOT_CUSTOM_PAPERS]) {
        PrinterCall call(pSession->hPrinter);
        StorePapers(call, pSession->pXpi.get(), pSession->pCustomPapers.get(), pSession->sCustomPaperCount);
        CommitPage(pSession, SLOT_CUSTOM_PAPERS, hDialog);
    }
    EndDialog(hDialog, DIALOG_OK);
}

void PapersCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int bClicked = HIWORD(wParam) == BN_CLICKED;
    switch (LOWORD(wParam)) {
    case IDC_SIZES_NEW:
        if (bClicked && !IsListFull(pSession->sCustomPaperCount)) {
            OpenPaperEditor(hDialog, pSession, pSession->sCustomPaperCount);
        }
        break;
    case IDC_SIZES_EDIT:
        if (bClicked) {
            OpenPaperEditor(hDialog, pSession, SelectedRow(hDialog, pSession));
        }
        break;
    case IDC_SIZES_LIST:
        if (HIWORD(wParam) == LBN_DBLCLK) {
            OpenPaperEditor(hDialog, pSession, SelectedRow(hDialog, pSession));
        }
        break;
    case IDC_SIZES_DELETE:
        if (bClicked) {
            DeletePaper(hDialog, pSession);
        }
        break;
    case IDC_OK:
        if (bClicked) {
            EndWithOk(hDialog, pSession);
            return; /* what is stored is no edit any more */
        }
        break;
    default: break;
    }
    CheckPapers(pSession);
}

constexpr DialogRoutines savedPapersDialog = {
    .nSlot = SLOT_CUSTOM_PAPERS, .pfnInit = InitPapers, .pfnCommand = PapersCommand};

} // namespace

void ShowSavedPapers(HWND hOwner, UiSession* pSession)
{
    RunDialog<savedPapersDialog>(pSession, hOwner, IDD_SIZES, 0);
    /* Edits that were not stored wait for the next OK here; they hold up no commit of the pages. */
    pSession->bPageDirty[SLOT_CUSTOM_PAPERS] = 0;
}
