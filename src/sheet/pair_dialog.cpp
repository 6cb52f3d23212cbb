#include "sheet/pair_dialog.h"

#include <utility>

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"

namespace {

constexpr int PAIR_TOP = 80;        /* below the upper edge of the page */
constexpr i32 NO_PRINTER_FONT = -1; /* item data of the row that says that there is none */

int IsNewPair(const UiSession* pSession)
{
    return pSession->sDialogArg == NEW_PAIR;
}

WCHAR (&PairOf(const UiSession* pSession))[PAIR_CHARS]
{
    return *static_cast<WCHAR(*)[PAIR_CHARS]>(pSession->pDialogData);
}

LRESULT AddComboText(HWND hCombo, const WCHAR* wcText, i32 lValue)
{
    LRESULT nRow = SendMessageW(hCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcText));
    if (nRow >= 0) {
        SendMessageW(hCombo, CB_SETITEMDATA, static_cast<WPARAM>(nRow), lValue);
    }
    return nRow;
}

/* Text of a row of a combo box; 0 with an empty text when there is none or it is too long. */
int ComboText(HWND hCombo, LRESULT nRow, WCHAR (&wcText)[PAIR_CHARS])
{
    wcText[0] = 0;
    LRESULT cch = nRow >= 0 ? SendMessageW(hCombo, CB_GETLBTEXTLEN, static_cast<WPARAM>(nRow), 0) : -1;
    if (cch < 1 || cch >= PAIR_CHARS) {
        return 0;
    }
    SendMessageW(hCombo, CB_GETLBTEXT, static_cast<WPARAM>(nRow), reinterpret_cast<LPARAM>(wcText));
    wcText[cch] = 0;
    return wcText[0] != 0;
}

int SelectedText(HWND hDialog, int nControl, WCHAR (&wcText)[PAIR_CHARS])
{
    HWND hCombo = GetDlgItem(hDialog, nControl);
    return ComboText(hCombo, hCombo ? SendMessageW(hCombo, CB_GETCURSEL, 0, 0) : -1, wcText);
}

/* The family that the pair is about. */
int PairFamily(HWND hDialog, const UiSession* pSession, WCHAR (&wcFamily)[PAIR_CHARS])
{
    if (IsNewPair(pSession)) {
        return SelectedText(hDialog, IDC_PAIR_SYSTEM, wcFamily);
    }
    CopyWide(wcFamily, PAIR_CHARS, PairOf(pSession));
    if (const WCHAR* wcEnd = FindPairArrow(wcFamily)) {
        wcFamily[wcEnd - wcFamily] = 0;
    }
    return wcFamily[0] != 0;
}

void FillFamilies(HWND hDialog, const UiSession* pSession)
{
    HWND hCombo = GetDlgItem(hDialog, IDC_PAIR_SYSTEM);
    const WCHAR* wcName = pSession->rFontFamilies.pNames.get();
    SendMessageW(hCombo, CB_RESETCONTENT, 0, 0);
    for (i32 i = 0; i < pSession->rFontFamilies.sCount; i++) {
        AddComboText(hCombo, wcName, i);
        wcName += WideLength(wcName) + 1;
    }
    SendMessageW(hCombo, CB_SETCURSEL, 0, 0);
}

/* The printer's fonts of a character set, each name once. Result: how many. */
i32 FillPrinterFonts(HWND hCombo, UiSession* pSession, i32 lCharSet)
{
    ResidentFontList fonts;
    TextIndex listed;
    i32 nListed = 0;
    if (!ReadResidentFonts(pSession->rXpiFile, pSession->pXpi.get(), &fonts) ||
        !PrepareTextIndex(&listed, static_cast<u32>(fonts.nFonts))) {
        return 0;
    }
    for (i32 i = 0; i < fonts.nFonts; i++) {
        const ResidentFont& font = fonts.pFonts.get()[i];
        if (font.bCharSet == lCharSet && AddIndexedText(&listed, font.wcName, i)) {
            nListed += AddComboText(hCombo, font.wcName, i) >= 0;
        }
    }
    return nListed;
}

/* Selects the row of exactly this text. 1 when there is one. */
int SelectFont(HWND hCombo, const WCHAR* wcFont)
{
    WCHAR wcRow[PAIR_CHARS];
    LRESULT nRows = SendMessageW(hCombo, CB_GETCOUNT, 0, 0);
    for (LRESULT nRow = 0; nRow < nRows; nRow++) {
        if (ComboText(hCombo, nRow, wcRow) && SameWide(wcRow, wcFont)) {
            SendMessageW(hCombo, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
            return 1;
        }
    }
    return 0;
}

/* Without a font that is chosen there is nothing to confirm: Enter leaves the dialog then. */
void OfferConfirm(HWND hDialog)
{
    int bChosen;
    i32 lFont = GetComboValue(hDialog, IDC_PAIR_PRINTER, &bChosen);
    if (bChosen && lFont != NO_PRINTER_FONT) {
        EnableControl(hDialog, IDC_PAIR_OK, 1);
        MakeDefaultButton(hDialog, IDC_PAIR_OK, IDC_CANCEL);
    } else {
        MakeDefaultButton(hDialog, IDC_CANCEL, IDC_PAIR_OK);
        EnableControl(hDialog, IDC_PAIR_OK, 0);
    }
}

/* Lists the fonts that may stand for the family. What is no family of this system keeps its name as the only choice. */
void ShowPartners(HWND hDialog, UiSession* pSession)
{
    WCHAR wcFamily[PAIR_CHARS], wcNone[TEXT_CHARS];
    HWND hCombo = GetDlgItem(hDialog, IDC_PAIR_PRINTER);
    SendMessageW(hCombo, CB_RESETCONTENT, 0, 0);
    int bNamed = PairFamily(hDialog, pSession, wcFamily);
    i32 lCharSet = FindFamily(pSession->rFontFamilies, wcFamily);
    if (bNamed && lCharSet == NO_FAMILY) {
        AddComboText(hCombo, wcFamily, 0);
    } else if (!bNamed || !FillPrinterFonts(hCombo, pSession, lCharSet)) {
        LoadUiText(pSession, IDS_NO_PRINTER_FONT, wcNone, TEXT_CHARS);
        AddComboText(hCombo, wcNone, NO_PRINTER_FONT);
    }
    if (!SelectFont(hCombo, wcFamily)) {
        SendMessageW(hCombo, CB_SETCURSEL, 0, 0);
    }
}

/* Shows the row's own font, or none when the list lacks it: the user then sees that it has to be chosen. */
void ShowPair(HWND hDialog, const UiSession* pSession)
{
    WCHAR wcFamily[PAIR_CHARS];
    HWND hCombo = GetDlgItem(hDialog, IDC_PAIR_PRINTER);
    const WCHAR* wcEnd = FindPairArrow(PairOf(pSession));
    PairFamily(hDialog, pSession, wcFamily);
    SetDlgItemTextW(hDialog, IDC_PAIR_NAME, wcFamily);
    if (GetComboValue(hDialog, IDC_PAIR_PRINTER, nullptr) != NO_PRINTER_FONT &&
        !(wcEnd && SelectFont(hCombo, wcEnd + PAIR_ARROW_CHARS))) {
        SendMessageW(hCombo, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    }
}

void InitPair(HWND hDialog, UiSession* pSession)
{
    constexpr int anNew[] = {IDC_PAIR_SYSTEM_LABEL, IDC_PAIR_SYSTEM, 0};
    constexpr int anEdit[] = {IDC_PAIR_NAME_LABEL, IDC_PAIR_NAME, 0};
    int bNew = IsNewPair(pSession);
    SetTitle(hDialog, pSession, bNew ? IDS_TITLE_ADD_PAIR : IDS_TITLE_EDIT_PAIR);
    SetLabel(hDialog, pSession, bNew ? IDC_PAIR_SYSTEM_LABEL : IDC_PAIR_NAME_LABEL, IDS_SYSTEM_FONT);
    SetLabel(hDialog, pSession, IDC_PAIR_OK, bNew ? IDS_ADD : IDC_OK);
    ShowControls(hDialog, anNew, bNew);
    ShowControls(hDialog, anEdit, !bNew);
    if (bNew) {
        FillFamilies(hDialog, pSession);
    }
    ShowPartners(hDialog, pSession);
    if (bNew) {
        SendDlgItemMessageW(hDialog, IDC_PAIR_PRINTER, CB_SETCURSEL, 0, 0);
    } else {
        ShowPair(hDialog, pSession);
    }
    OfferConfirm(hDialog);
    CentreDialog(hDialog, CENTRE_X, PAIR_TOP);
}

/* A pair that would make a row too long is not taken. */
void Confirm(HWND hDialog, UiSession* pSession)
{
    WCHAR wcFamily[PAIR_CHARS], wcFont[PAIR_CHARS], wcPair[PAIR_CHARS];
    if (GetComboValue(hDialog, IDC_PAIR_PRINTER, nullptr) != NO_PRINTER_FONT &&
        PairFamily(hDialog, pSession, wcFamily) && SelectedText(hDialog, IDC_PAIR_PRINTER, wcFont) &&
        JoinPair(wcPair, wcFamily, wcFont)) {
        CopyWide(PairOf(pSession), PAIR_CHARS, wcPair);
        EndDialog(hDialog, DIALOG_OK);
    }
}

void PairCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nCode = HIWORD(wParam);
    switch (LOWORD(wParam)) {
    case IDC_PAIR_SYSTEM:
        if (nCode == CBN_SELCHANGE) {
            ShowPartners(hDialog, pSession);
            OfferConfirm(hDialog);
        }
        break;
    case IDC_PAIR_PRINTER:
        if (nCode == CBN_SELCHANGE) {
            OfferConfirm(hDialog);
        }
        break;
    case IDC_PAIR_NAME:
        if (nCode != EN_KILLFOCUS) { /* the focus may go where it likes, but not in here */
            SetFocus(GetDlgItem(hDialog, IDC_PAIR_PRINTER));
        }
        break;
    case IDC_PAIR_OK:
        if (nCode == BN_CLICKED) {
            Confirm(hDialog, pSession);
        }
        break;
    default: break;
    }
}

constexpr DialogRoutines pairDialog = {.nSlot = -1, .pfnInit = InitPair, .pfnCommand = PairCommand};

} // namespace

int EditPair(HWND hOwner, UiSession* pSession, i32 nRow, WCHAR (&wcPair)[PAIR_CHARS])
{
    WCHAR wcEdited[PAIR_CHARS] = {};
    if (nRow != NEW_PAIR) {
        CopyWide(wcEdited, PAIR_CHARS, wcPair);
    }
    void* pBefore = std::exchange(pSession->pDialogData, static_cast<void*>(&wcEdited));
    INT_PTR nEnd = RunDialog<pairDialog>(pSession, hOwner, IDD_PAIR, static_cast<i16>(nRow));
    pSession->pDialogData = pBefore;
    if (nEnd != DIALOG_OK) {
        return 0;
    }
    CopyWide(wcPair, PAIR_CHARS, wcEdited);
    return 1;
}
