/* The watermarks page's window. The list is the printer's, not the document's: its rows stay in memory until the apply,
   and so do the built files of rows that are deleted, so that a sheet that is cancelled leaves all as it was. */
#include "sheet/watermarks_page.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/image_mark_editor.h"
#include "sheet/preview_panel.h"
#include "sheet/text_mark_editor.h"
#include "sheet/watermark_builder.h"
#include "sheet/watermark_choice.h"
#include "watermark/watermark_store.h"

namespace {

constexpr int anOfOne[] = {IDC_WATERMARKS_EDIT,       IDC_WATERMARKS_DELETE,     IDC_WATERMARKS_PAGES,
                           IDC_WATERMARKS_EVERY_PAGE, IDC_WATERMARKS_FIRST_PAGE, 0};
constexpr int anPages[] = {IDC_WATERMARKS_EVERY_PAGE, IDC_WATERMARKS_FIRST_PAGE, 0};
constexpr int anTransparency[] = {IDC_WATERMARKS_TRANSPARENCY_LABEL, IDC_WATERMARKS_TRANSPARENCY,
                                  IDC_WATERMARKS_TRANSPARENCY_SPIN, IDC_PERCENT, 0};

/* All that the page's controls say, for the check, the apply and the preview alike. */
WatermarksChoice ReadWatermarksChoice(HWND hPage)
{
    WatermarksChoice choice = {};
    choice.mark.lValue = GetListValue(hPage, IDC_WATERMARKS_LIST, &choice.mark.bChosen);
    choice.bFirstPage = IsChecked(hPage, IDC_WATERMARKS_FIRST_PAGE);
    choice.lTransparency =
        std::clamp(ReadNumber(hPage, IDC_WATERMARKS_TRANSPARENCY), i32{0}, TRANSPARENCY_MAX);
    return choice;
}

/* The row that is selected; null for none, and for a row that the list does not have. */
WatermarkEntry* ChosenMark(UiSession* pSession, const WatermarksChoice& choice)
{
    i32 nRow = ValueOr(choice.mark, NO_MARK);
    return pSession->pWatermarks && nRow >= 0 && nRow < pSession->sWatermarkCount
               ? pSession->pWatermarks.get() + nRow
               : nullptr;
}

i32 MatchedRow(const UiSession* pSession)
{
    return MatchWatermark(pSession->pWatermarks.get(), pSession->sWatermarkCount,
                          &pSession->pRecord->rPrivate);
}

void AddListRow(HWND hList, UINT uMessage, WPARAM uPlace, const WCHAR* wcText, i32 lValue)
{
    LRESULT nRow = SendMessageW(hList, uMessage, uPlace, reinterpret_cast<LPARAM>(wcText));
    if (nRow >= 0) {
        SendMessageW(hList, LB_SETITEMDATA, static_cast<WPARAM>(nRow), lValue);
    }
}

/* Shows the list as the session has it, with that row selected. */
void ShowMarks(HWND hPage, const UiSession* pSession, i32 nSelected)
{
    HWND hList = GetDlgItem(hPage, IDC_WATERMARKS_LIST);
    if (!hList) {
        return;
    }
    SendMessageW(hList, LB_RESETCONTENT, 0, 0);
    for (i32 i = 0; pSession->pWatermarks && i < pSession->sWatermarkCount; i++) {
        AddListRow(hList, LB_ADDSTRING, 0, pSession->pWatermarks.get()[i].WMString, i);
    }
    WCHAR wcNone[TEXT_CHARS];
    LoadUiText(pSession, IDS_NO_WATERMARK, wcNone, TEXT_CHARS);
    AddListRow(hList, LB_INSERTSTRING, 0, wcNone, NO_MARK);
    SelectListValue(hPage, IDC_WATERMARKS_LIST, nSelected);
}

/* What concerns one row can be used only while one is selected. */
void EnableForChoice(HWND hPage, UiSession* pSession)
{
    EnableControls(hPage, anOfOne, ChosenMark(pSession, ReadWatermarksChoice(hPage)) != nullptr);
}

void InitWatermarks(HWND hPage, UiSession* pSession)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    ShowMarks(hPage, pSession, MatchedRow(pSession));
    EnableForChoice(hPage, pSession);
    CheckRadio(hPage, anPages, part.sWMOnePage ? IDC_WATERMARKS_FIRST_PAGE : IDC_WATERMARKS_EVERY_PAGE);
    int bTransparent = PrintsMarkItself(pSession->pXpi.get());
    OfferControls(hPage, anTransparency, bTransparent);
    if (bTransparent) {
        ShowNumber(hPage, IDC_WATERMARKS_TRANSPARENCY, ShownTransparency(part));
    }
    SetFocus(GetDlgItem(hPage, IDC_WATERMARKS_LIST));
    pSession->sWatermarkSnapshotCount = pSession->sWatermarkCount;
}

/* The list as it is stored has the last word, and is read only when nothing else differs: a keystroke does not cost a
   file. Without memory for it all stays as it was found last. */
int CheckWatermarks(HWND hPage, UiSession* pSession)
{
    if (pSession->sWatermarkSnapshotCount != pSession->sWatermarkCount ||
        WatermarksDiffer(ReadWatermarksChoice(hPage), MatchedRow(pSession), pSession->pXpi.get(),
                         *pSession->pRecord, pSession->rSnapshot)) {
        return 1;
    }
    PrinterCall call(pSession->hPrinter);
    OwnedBlock<WatermarkEntry> pStored;
    i32 nStored = GetSavedWatermarks(call, &pStored);
    if (!pStored || !pSession->pWatermarks) {
        return pSession->bPageDirty[SLOT_WATERMARKS] != 0;
    }
    return nStored != pSession->sWatermarkCount ||
           std::memcmp(pStored.get(), pSession->pWatermarks.get(),
                       static_cast<size_t>(nStored) * sizeof(WatermarkEntry)) != 0;
}

/* Deletes the built files of rows that are gone, and of rows that were changed since. */
void DropOldFiles(UiSession* pSession)
{
    u16 usLanguage = pSession->pXpi->usLanguage;
    for (i32 i = 0; i < pSession->sDeletedWatermarkCount; i++) {
        DeleteWatermarkFiles(pSession->pDeletedWatermarks.get() + i, usLanguage);
    }
    pSession->pDeletedWatermarks.reset();
    pSession->sDeletedWatermarkCount = 0;
    for (i32 i = 0; pSession->pWatermarks && i < pSession->sWatermarkCount; i++) {
        WatermarkEntry* pRow = pSession->pWatermarks.get() + i;
        if (pRow->bWMStale) {
            DeleteWatermarkFiles(pRow, usLanguage);
            pRow->bWMStale = 0;
        }
    }
}

int ApplyWatermarks(HWND hPage, UiSession* pSession)
{
    const WatermarksChoice choice = ReadWatermarksChoice(hPage);
    DropOldFiles(pSession);
    if (WatermarkEntry* pRow = ChosenMark(pSession, choice)) {
        /* What the builder says is not asked: the record takes the row as it stands behind the attempt. */
        if (!PrintsMarkItself(pSession->pXpi.get()) && !pRow->WMFileName[0]) {
            BuildWatermark(pSession, hPage, choice.mark.lValue);
        }
        StoreWatermark(choice, *pRow, pSession->pXpi.get(), pSession->pRecord);
    } else if (choice.mark.bChosen && choice.mark.lValue == NO_MARK) {
        ClearWatermark(&pSession->pRecord->rPrivate);
    }
    PrinterCall call(pSession->hPrinter);
    if (pSession->pWatermarks) {
        SetSavedWatermarks(call, pSession->pWatermarks.get(), pSession->sWatermarkCount);
    }
    pSession->sWatermarkSnapshotCount = pSession->sWatermarkCount;
    return 1;
}

void PreviewWatermarks(HWND hPage, const UiSession*, PreviewChoice* pShown)
{
    const WatermarksChoice choice = ReadWatermarksChoice(hPage);
    if (choice.mark.bChosen) {
        pShown->lWatermark = choice.mark.lValue;
        pShown->bWMOnePage = choice.bFirstPage;
    }
}

/* Keeps a row whose files go at the apply. 0 without memory. */
int RememberDeleted(UiSession* pSession, const WatermarkEntry& row)
{
    i32 nRows = pSession->sDeletedWatermarkCount;
    OwnedBlock<WatermarkEntry> pRows;
    if (nRows < LONGEST_WATERMARK_LIST) {
        pRows.reset(
            static_cast<WatermarkEntry*>(AllocateRows(static_cast<u64>(nRows) + 1, sizeof(WatermarkEntry))));
    }
    if (!pRows) {
        return 0;
    }
    if (nRows > 0) {
        std::memcpy(pRows.get(), pSession->pDeletedWatermarks.get(),
                    static_cast<size_t>(nRows) * sizeof(WatermarkEntry));
    }
    std::memcpy(pRows.get() + nRows, &row, sizeof row);
    pSession->pDeletedWatermarks = std::move(pRows);
    pSession->sDeletedWatermarkCount = static_cast<i16>(nRows + 1);
    return 1;
}

/* Makes the list anew without its free rows. 0 without memory: the list is as it was then. */
int CompactList(UiSession* pSession)
{
    i32 nRows = CompactWatermarks(&pSession->pWatermarks, pSession->sWatermarkCount);
    if (nRows >= 0) {
        pSession->sWatermarkCount = static_cast<u16>(nRows);
    }
    return nRows >= 0;
}

/* The list changed under the page. */
void MarksChanged(HWND hPage, UiSession* pSession, i32 nSelected)
{
    ShowMarks(hPage, pSession, nSelected);
    EnableForChoice(hPage, pSession);
    SetFocus(GetDlgItem(hPage, IDC_WATERMARKS_LIST));
    RepaintControl(hPage, IDC_PREVIEW);
}

/* An image that was confirmed names its built files no more; they go at the apply all the same. */
void KeepTrackOfFiles(UiSession* pSession, const WatermarkEntry& before, WatermarkEntry* pRow)
{
    int bLost =
        (before.WMFileName[0] && !pRow->WMFileName[0]) || (before.WMColorFile[0] && !pRow->WMColorFile[0]);
    if (bLost && !PrintsMarkItself(pSession->pXpi.get()) && !RememberDeleted(pSession, before)) {
        std::memcpy(pRow->WMFileName, before.WMFileName, sizeof pRow->WMFileName);
        std::memcpy(pRow->WMColorFile, before.WMColorFile, sizeof pRow->WMColorFile);
    }
}

void EditMark(HWND hPage, UiSession* pSession, i32 nRow)
{
    if (!pSession->pWatermarks || nRow < 0 || nRow > pSession->sWatermarkCount) {
        return;
    }
    const WatermarkEntry before = pSession->pWatermarks.get()[nRow];
    int bConfirmed = before.WMType == ENTRY_IMAGE ? EditImageMark(hPage, pSession, nRow)
                                                  : EditTextMark(hPage, pSession, nRow, TryWatermark);
    if (!bConfirmed) {
        return;
    }
    WatermarkEntry* pRow = pSession->pWatermarks.get() + nRow;
    if (std::memcmp(pRow, &before, sizeof before) != 0) {
        KeepTrackOfFiles(pSession, before, pRow);
        pRow->bWMStale = 1;
    }
    CompactList(pSession);
    MarksChanged(hPage, pSession, nRow);
}

void DeleteMark(HWND hPage, UiSession* pSession)
{
    WatermarkEntry* pRow = ChosenMark(pSession, ReadWatermarksChoice(hPage));
    if (!pRow || !RememberDeleted(pSession, *pRow)) {
        return;
    }
    u32 ulType = std::exchange(pRow->WMType, static_cast<u32>(ENTRY_FREE));
    if (!CompactList(pSession)) {
        pRow->WMType = ulType;
        pSession->sDeletedWatermarkCount--;
        return;
    }
    MarksChanged(hPage, pSession, NO_MARK);
}

void EditChosenMark(HWND hPage, UiSession* pSession)
{
    const WatermarksChoice choice = ReadWatermarksChoice(hPage);
    if (ChosenMark(pSession, choice)) {
        EditMark(hPage, pSession, choice.mark.lValue);
    }
}

void ButtonClicked(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_WATERMARKS_ADD: EditMark(hPage, pSession, pSession->sWatermarkCount); break;
    case IDC_WATERMARKS_EDIT: EditChosenMark(hPage, pSession); break;
    case IDC_WATERMARKS_DELETE: DeleteMark(hPage, pSession); break;
    case IDC_WATERMARKS_EVERY_PAGE:
    case IDC_WATERMARKS_FIRST_PAGE: RepaintControl(hPage, IDC_PREVIEW); break;
    case IDC_UNIT: FlipPreviewUnit(hPage, pSession); break;
    default: break;
    }
}

} // namespace

constinit const PageRoutines watermarksPage = {
    .slot = SLOT_WATERMARKS,
    .nHelpKey = 500,
    .pfnInit = InitWatermarks,
    .pfnDiffers = CheckWatermarks,
    .pfnApply = ApplyWatermarks,
    .pfnPaint = PaintPreviewPage,
    .pfnPreview = PreviewWatermarks,
};

void WatermarksCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (nControl == IDC_WATERMARKS_LIST) {
        if (nCode == LBN_DBLCLK) {
            EditChosenMark(hPage, pSession);
        } else if (nCode == LBN_SELCHANGE) {
            EnableForChoice(hPage, pSession);
            RepaintControl(hPage, IDC_PREVIEW);
        }
    } else if (nControl == IDC_WATERMARKS_TRANSPARENCY) {
        if (nCode == EN_CHANGE) {
            CapNumber(hPage, nControl, TRANSPARENCY_MAX);
        }
    } else if (nCode == BN_CLICKED) {
        ButtonClicked(hPage, pSession, nControl);
    }
}
