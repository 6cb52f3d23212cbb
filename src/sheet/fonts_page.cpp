/* The Fonts page's window. What could not be read whole is not edited, and so never stored over what the printer has. */
#include "sheet/fonts_page.h"
#include "sheet/font_manager.h"

#include "description/control_ids.h"
#include "description/printer_store.h"
#include "entry/font_subs.h"
#include "platform/glyphs.h"
#include "sheet/dialog_services.h"
#include "sheet/font_manager.h"
#include "sheet/fonts_choice.h"
#include "sheet/pair_dialog.h"
#include "sheet/preview_panel.h"

namespace {

constexpr i16 TABLE_UNKNOWN = -1; /* sFontSubsSnapshotCount */
constexpr LONG ROW_MARGIN = 6;    /* pixels at the ends of a row's text */

constexpr int anChoices[] = {IDC_FONTS_RESIDENT, IDC_FONTS_BITMAPS, 0};
constexpr int anTable[] = {IDC_FONTS_LABEL, IDC_FONTS_LIST, 0};
constexpr int anButtons[] = {IDC_FONTS_ADD, IDC_FONTS_EDIT, IDC_FONTS_DELETE, IDC_FONTS_DEFAULTS, 0};
constexpr int anTableButtons[] = {IDC_FONTS_ADD, IDC_FONTS_DEFAULTS, 0};
constexpr int anRowButtons[] = {IDC_FONTS_EDIT, IDC_FONTS_DELETE, 0};
constexpr int anManager[] = {IDC_FONTS_MANAGER, 0};

HWND ListOf(HWND hPage)
{
    return GetDlgItem(hPage, IDC_FONTS_LIST);
}

i32 CountRows(HWND hPage)
{
    LRESULT nRows = SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_GETCOUNT, 0, 0);
    return nRows > 0 ? static_cast<i32>(nRows) : 0;
}

/* Row that is selected; -1 without one. */
i32 SelectedRow(HWND hPage)
{
    HWND hList = ListOf(hPage);
    return hList ? static_cast<i32>(SendMessageW(hList, LB_GETCURSEL, 0, 0)) : -1;
}

/* Text of a row; "" when there is none or it is longer than our rows are. */
void ReadRow(HWND hList, i32 nRow, WCHAR (&wcRow)[PAIR_CHARS])
{
    WPARAM uRow = static_cast<WPARAM>(nRow);
    wcRow[0] = 0;
    LRESULT cch = nRow >= 0 ? SendMessageW(hList, LB_GETTEXTLEN, uRow, 0) : -1;
    if (cch > 0 && cch < PAIR_CHARS) {
        SendMessageW(hList, LB_GETTEXT, uRow, reinterpret_cast<LPARAM>(wcRow));
        wcRow[cch] = 0;
    }
}

/* All rows of the list. 0 when memory fails. */
int ReadRows(HWND hPage, PairTexts* outRows)
{
    HWND hList = ListOf(hPage);
    i32 nRows = CountRows(hPage);
    u64 cchAll = 0;
    for (i32 i = 0; i < nRows && i < PAIR_ROWS_MOST; i++) {
        LRESULT cch = SendMessageW(hList, LB_GETTEXTLEN, static_cast<WPARAM>(i), 0);
        cchAll += cch > 0 && cch < PAIR_CHARS ? static_cast<u64>(cch) + 1 : 1;
    }
    if (!PreparePairTexts(outRows, static_cast<u32>(cchAll))) {
        return 0;
    }
    for (i32 i = 0; i < nRows && i < PAIR_ROWS_MOST; i++) {
        WCHAR wcRow[PAIR_CHARS];
        ReadRow(hList, i, wcRow);
        AppendPairText(outRows, wcRow, WideLength(wcRow));
    }
    return 1;
}

/* Measures rows in the font of the list. */
struct RowRuler {
    HDC hDc;
    HGDIOBJ hFontBefore;
};

RowRuler OpenRuler(HWND hList)
{
    RowRuler ruler = {CreateCompatibleDC(nullptr), nullptr};
    HGDIOBJ hFont = reinterpret_cast<HGDIOBJ>(SendMessageW(hList, WM_GETFONT, 0, 0));
    if (ruler.hDc && hFont) {
        ruler.hFontBefore = SelectObject(ruler.hDc, hFont);
    }
    return ruler;
}

void CloseRuler(const RowRuler& ruler)
{
    if (ruler.hDc) {
        if (ruler.hFontBefore) {
            SelectObject(ruler.hDc, ruler.hFontBefore);
        }
        DeleteDC(ruler.hDc);
    }
}

/* Lets the list be scrolled to the end of its longest row; lWidth is the width so far and then that of this row if it is
   longer. */
void Widen(const RowRuler& ruler, const WCHAR* wcRow, LONG* plWidth)
{
    SIZE size;
    if (ruler.hDc && GetTextExtentPoint32W(ruler.hDc, wcRow, WideLength(wcRow), &size) &&
        size.cx + ROW_MARGIN > *plWidth) {
        *plWidth = size.cx + ROW_MARGIN;
    }
}

void SetRowWidth(HWND hList, LONG lWidth)
{
    SendMessageW(hList, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(lWidth), 0);
}

/* Puts a row in front of row nRow, or at the end with -1. Result: its number; below 0 when there is no more room. */
LRESULT InsertRow(HWND hPage, i32 nRow, const WCHAR* wcRow)
{
    HWND hList = ListOf(hPage);
    if (!hList || CountRows(hPage) >= PAIR_ROWS_MOST) {
        return LB_ERR;
    }
    LONG lWidth = static_cast<LONG>(SendMessageW(hList, LB_GETHORIZONTALEXTENT, 0, 0));
    const RowRuler ruler = OpenRuler(hList);
    Widen(ruler, wcRow, &lWidth);
    CloseRuler(ruler);
    SetRowWidth(hList, lWidth);
    return SendMessageW(hList, LB_INSERTSTRING, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(wcRow));
}

/* Fills the list anew. 0 when it did not take them all. */
int ShowRows(HWND hPage, const PairTexts& rows)
{
    HWND hList = ListOf(hPage);
    const RowRuler ruler = OpenRuler(hList);
    const WCHAR* wcRow = rows.pTexts.get();
    LONG lWidth = 0;
    int bAll = 1;
    SendMessageW(hList, LB_RESETCONTENT, 0, 0);
    for (i32 i = 0; i < rows.nTexts; i++) {
        bAll &= SendMessageW(hList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcRow)) == i;
        Widen(ruler, wcRow, &lWidth);
        wcRow += WideLength(wcRow) + 1;
    }
    CloseRuler(ruler);
    SetRowWidth(hList, lWidth);
    return bAll;
}

/* Shows what is stored in a multi-string of cch characters. 0 when that could not be done: the list is as before, or it lacks
   rows, and then nothing is known of the table. */
int FillTable(HWND hPage, UiSession* pSession, const WCHAR* wcPairs, u32 cch)
{
    ResidentFontList fonts;
    PairTexts rows;
    if (!ReadResidentFonts(pSession->rXpiFile, pSession->pXpi.get(), &fonts) ||
        !RowsOfPairs(wcPairs, cch, pSession->rFontFamilies, fonts, &rows)) {
        return 0;
    }
    if (!ShowRows(hPage, rows)) {
        pSession->sFontSubsSnapshotCount = TABLE_UNKNOWN;
        return 0;
    }
    return 1;
}

/* Keeps the rows as those that are stored; without memory nothing is known of them. */
void KeepSnapshot(HWND hPage, UiSession* pSession)
{
    PairTexts rows;
    pSession->pFontSubsSnapshot.reset();
    pSession->sFontSubsSnapshotCount = TABLE_UNKNOWN;
    if (ReadRows(hPage, &rows)) {
        pSession->pFontSubsSnapshot = std::move(rows.pTexts);
        pSession->sFontSubsSnapshotCount = static_cast<i16>(rows.nTexts);
    }
}

int IsTableEditable(const UiSession* pSession)
{
    return !pSession->bReadOnly && pSession->sFontSubsSnapshotCount != TABLE_UNKNOWN;
}

/* 1 when the list shows other rows than are stored. */
int TableDiffers(HWND hPage, const UiSession* pSession)
{
    if (!IsTableEditable(pSession)) {
        return 0;
    }
    i32 nRows = CountRows(hPage);
    if (nRows != pSession->sFontSubsSnapshotCount) {
        return 1;
    }
    HWND hList = ListOf(hPage);
    const WCHAR* wcStored = pSession->pFontSubsSnapshot.get();
    for (i32 i = 0; i < nRows; i++) {
        WCHAR wcRow[PAIR_CHARS];
        ReadRow(hList, i, wcRow);
        if (!SameWide(wcRow, wcStored)) {
            return 1;
        }
        wcStored += WideLength(wcStored) + 1;
    }
    return 0;
}

/* Without memory the printer keeps the table that it has. */
void StoreTable(HWND hPage, UiSession* pSession)
{
    ResidentFontList fonts;
    PairTexts rows;
    OwnedBlock<u8> pBlock;
    u32 cb;
    if (ReadRows(hPage, &rows) && ReadResidentFonts(pSession->rXpiFile, pSession->pXpi.get(), &fonts) &&
        PairsOfRows(rows, pSession->rFontFamilies, fonts, &pBlock, &cb)) {
        PrinterCall call(pSession->hPrinter);
        SetFontSubs(call, pBlock.get(), cb);
        pSession->pFontSubs = std::move(pBlock);
        pSession->ulFontSubsBytes = cb;
        KeepSnapshot(hPage, pSession);
    }
}

FontsChoice ReadFontsChoice(HWND hPage)
{
    return {IsChecked(hPage, IDC_FONTS_RESIDENT), IsChecked(hPage, IDC_FONTS_BITMAPS)};
}

/* The table speaks of the printer's own fonts: a document that does without them has it grey. */
int IsTableInUse(HWND hPage, const UiSession* pSession)
{
    return pSession->bDeviceSheet || IsChecked(hPage, IDC_FONTS_RESIDENT);
}

void OfferRowButtons(HWND hPage, const UiSession* pSession)
{
    EnableControls(hPage, anRowButtons, IsTableEditable(pSession) && SelectedRow(hPage) >= 0);
}

void OfferTable(HWND hPage, const UiSession* pSession)
{
    int bUse = IsTableInUse(hPage, pSession);
    EnableControls(hPage, anTable, bUse);
    EnableControls(hPage, anTableButtons, bUse && IsTableEditable(pSession));
    OfferRowButtons(hPage, pSession);
}

void SelectRow(HWND hPage, const UiSession* pSession, i32 nRow)
{
    SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
    OfferRowButtons(hPage, pSession);
}

/* The list takes half its width more where the buttons were, once. */
void GiveButtonsRoom(HWND hPage)
{
    HWND hList = ListOf(hPage);
    RECT rect;
    if (IsWindowEnabled(GetDlgItem(hPage, IDC_FONTS_ADD)) && ControlRect(hPage, IDC_FONTS_LIST, &rect)) {
        MoveWindow(hList, rect.left, rect.top, (rect.right - rect.left) * 3 / 2, rect.bottom - rect.top, 1);
    }
    OfferControls(hPage, anButtons, 0);
}

void InitFonts(HWND hPage, UiSession* pSession)
{
    const PrivateDevmode& settings = pSession->pRecord->rPrivate;
    ShowControls(hPage, anChoices, !pSession->bDeviceSheet);
    SetChecked(hPage, IDC_FONTS_BITMAPS, settings.sBitmapFonts != 0);
    SetChecked(hPage, IDC_FONTS_RESIDENT, settings.ulNumResFonts != 0);
    if (pSession->bReadOnly) {
        GiveButtonsRoom(hPage);
    }
    OfferControls(hPage, anManager, HasFontManager(pSession));
    const WCHAR* wcPairs = reinterpret_cast<const WCHAR*>(pSession->pFontSubs.get());
    if (FillTable(hPage, pSession, wcPairs, pSession->ulFontSubsBytes / 2 + 2)) {
        KeepSnapshot(hPage, pSession);
    } else {
        pSession->sFontSubsSnapshotCount = TABLE_UNKNOWN;
    }
    SelectRow(hPage, pSession, -1);
    OfferTable(hPage, pSession);
}

int CheckFonts(HWND hPage, UiSession* pSession)
{
    return (!pSession->bDeviceSheet &&
            FontsDiffer(ReadFontsChoice(hPage), pSession->pXpi.get(), pSession->pRecord->rPrivate)) ||
           TableDiffers(hPage, pSession);
}

int ApplyFonts(HWND hPage, UiSession* pSession)
{
    if (!pSession->bDeviceSheet) {
        StoreFonts(ReadFontsChoice(hPage), pSession->pXpi.get(), &pSession->pRecord->rPrivate);
    }
    if (IsTableEditable(pSession)) {
        StoreTable(hPage, pSession);
        OfferTable(hPage, pSession);
    }
    return 1;
}

/* ---- commands ---- */

i32 FindFamilyRow(HWND hPage, const WCHAR* wcFamily)
{
    HWND hList = ListOf(hPage);
    i32 nRows = CountRows(hPage);
    for (i32 i = 0; i < nRows; i++) {
        WCHAR wcRow[PAIR_CHARS];
        ReadRow(hList, i, wcRow);
        if (IsPairOf(wcRow, wcFamily)) {
            return i;
        }
    }
    return -1;
}

/* A family has one row: a new pair takes the place of the one before. */
void AddRow(HWND hPage, UiSession* pSession)
{
    i32 nBefore = SelectedRow(hPage);
    WCHAR wcRow[PAIR_CHARS], wcFamily[PAIR_CHARS];
    const WCHAR* wcEnd = nullptr;
    if (EditPair(hPage, pSession, NEW_PAIR, wcRow)) {
        wcEnd = FindPairArrow(wcRow);
    }
    if (!wcEnd) {
        SelectRow(hPage, pSession, nBefore);
        return;
    }
    CopyWide(wcFamily, static_cast<int>(wcEnd - wcRow) + 1, wcRow);
    i32 nOld = FindFamilyRow(hPage, wcFamily);
    LRESULT nNew = InsertRow(hPage, nOld, wcRow);
    if (nNew >= 0 && nOld >= 0) {
        SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_DELETESTRING, static_cast<WPARAM>(nNew) + 1, 0);
    }
    SelectRow(hPage, pSession, nNew >= 0 ? static_cast<i32>(nNew) : nBefore);
    SetFocus(ListOf(hPage));
}

/* What was edited goes to the end. */
void EditRow(HWND hPage, UiSession* pSession)
{
    i32 nRow = SelectedRow(hPage);
    WCHAR wcRow[PAIR_CHARS];
    ReadRow(ListOf(hPage), nRow, wcRow);
    if (!FindPairArrow(wcRow)) {
        return;
    }
    if (EditPair(hPage, pSession, nRow, wcRow) && InsertRow(hPage, -1, wcRow) >= 0) {
        SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_DELETESTRING, static_cast<WPARAM>(nRow), 0);
    }
    SelectRow(hPage, pSession, nRow);
    SetFocus(ListOf(hPage));
}

void DeleteRow(HWND hPage, UiSession* pSession)
{
    i32 nRow = SelectedRow(hPage);
    if (nRow >= 0) {
        SetFocus(ListOf(hPage)); /* first, since the button may be disabled now */
        SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_DELETESTRING, static_cast<WPARAM>(nRow), 0);
        SelectRow(hPage, pSession, 0);
    }
}

void ShowDefaults(HWND hPage, UiSession* pSession)
{
    PrinterCall call(pSession->hPrinter);
    OwnedBlock<WCHAR> pPairs;
    u32 cb = BuildFontSubs(call, pSession->pXpi.get(), 1, &pPairs);
    if (pPairs) {
        SetFocus(ListOf(hPage)); /* first, since the button may be disabled now */
        FillTable(hPage, pSession, pPairs.get(), cb / static_cast<u32>(sizeof(WCHAR)));
        SelectRow(hPage, pSession, 0);
        OfferTable(hPage, pSession);
    }
}

void TurnResidentFonts(HWND hPage, UiSession* pSession)
{
    if (!IsTableInUse(hPage, pSession)) {
        SendDlgItemMessageW(hPage, IDC_FONTS_LIST, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    }
    OfferTable(hPage, pSession);
}

void ListNotified(HWND hPage, UiSession* pSession, int nCode)
{
    if (nCode == LBN_SELCHANGE) {
        OfferRowButtons(hPage, pSession);
    } else if (nCode == LBN_DBLCLK) {
        EditRow(hPage, pSession);
    }
}

void TableCommand(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_FONTS_ADD: AddRow(hPage, pSession); break;
    case IDC_FONTS_EDIT: EditRow(hPage, pSession); break;
    case IDC_FONTS_DELETE: DeleteRow(hPage, pSession); break;
    case IDC_FONTS_DEFAULTS: ShowDefaults(hPage, pSession); break;
    default: break;
    }
}

} // namespace

constinit const PageRoutines fontsPage = {.slot = SLOT_FONTS,
                                          .nHelpKey = 600,
                                          .pfnInit = InitFonts,
                                          .pfnDiffers = CheckFonts,
                                          .pfnApply = ApplyFonts,
                                          .pfnPaint = PaintPreviewPage};

void FontsCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    switch (nControl) {
    case IDC_FONTS_LIST:
        if (IsTableEditable(pSession)) {
            ListNotified(hPage, pSession, nCode);
        }
        return;
    case IDC_FONTS_ADD:
    case IDC_FONTS_EDIT:
    case IDC_FONTS_DELETE:
    case IDC_FONTS_DEFAULTS:
        if (nCode == BN_CLICKED && IsTableEditable(pSession) && IsTableInUse(hPage, pSession)) {
            TableCommand(hPage, pSession, nControl);
        }
        return;
    case IDC_FONTS_MANAGER:
        if (nCode == BN_CLICKED) {
            StartFontManager(pSession);
        }
        return;
    case IDC_FONTS_RESIDENT:
        if (nCode == BN_CLICKED) {
            TurnResidentFonts(hPage, pSession);
        }
        return;
    default: return;
    }
}
