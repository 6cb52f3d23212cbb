/* Lists by their item data, texts and labels, places of controls and dialogs. */
#include "sheet/dialog_services.h"

#include "description/xpi_text.h"

namespace {

/* A list can hold no more rows than a 16-bit count; whatever a control says, no walk goes on for longer. */
constexpr LRESULT ROW_LIMIT = 0x7FFF;

/* The messages by which the two kinds of list are asked for the same things. */
struct ListMessages {
    UINT uCount, uGetSelection, uSetSelection, uGetData;
};
constexpr ListMessages comboMessages = {CB_GETCOUNT, CB_GETCURSEL, CB_SETCURSEL, CB_GETITEMDATA};
constexpr ListMessages listMessages = {LB_GETCOUNT, LB_GETCURSEL, LB_SETCURSEL, LB_GETITEMDATA};

i32 GetValue(HWND hDialog, int nControl, int* pbChosen, const ListMessages& messages)
{
    HWND hList = GetDlgItem(hDialog, nControl);
    LRESULT nRow = hList ? SendMessageW(hList, messages.uGetSelection, 0, 0) : -1;
    if (pbChosen) {
        *pbChosen = nRow >= 0;
    }
    if (!hList) {
        return 0;
    }
    return nRow < 0 ? -1
                    : static_cast<i32>(SendMessageW(hList, messages.uGetData, static_cast<WPARAM>(nRow), 0));
}

i32 SelectValue(HWND hDialog, int nControl, i32 lValue, const ListMessages& messages)
{
    HWND hList = GetDlgItem(hDialog, nControl);
    LRESULT nRows = hList ? SendMessageW(hList, messages.uCount, 0, 0) : 0;
    for (LRESULT nRow = 0; nRow < nRows && nRow < ROW_LIMIT; nRow++) {
        WPARAM uRow = static_cast<WPARAM>(nRow);
        if (static_cast<i32>(SendMessageW(hList, messages.uGetData, uRow, 0)) == lValue) {
            SendMessageW(hList, messages.uSetSelection, uRow, 0);
            return static_cast<i32>(nRow);
        }
    }
    if (nRows > 0) {
        SendMessageW(hList, messages.uSetSelection, 0, 0);
    }
    return -1;
}

struct LabelPass {
    HWND hDialog;
    const UiSession* pSession;
};

/* Only the dialog's own controls: what lies within a combo box has numbers of the system. */
BOOL CALLBACK LabelControl(HWND hControl, LPARAM lParam)
{
    const LabelPass* pPass = reinterpret_cast<const LabelPass*>(lParam);
    WCHAR wcText[TEXT_CHARS];
    int nControl = GetDlgCtrlID(hControl);
    if (nControl > 0 && nControl <= 0xFFFF && GetParent(hControl) == pPass->hDialog) {
        LoadUiText(pPass->pSession, nControl, wcText, TEXT_CHARS);
        if (wcText[0]) {
            SetWindowTextW(hControl, wcText);
        }
    }
    return 1;
}

LONG LimitCoordinate(i64 llValue)
{
    constexpr i64 FARTHEST = 0x7FFF; /* as far as windows go */
    return static_cast<LONG>(llValue < -FARTHEST ? -FARTHEST : llValue > FARTHEST ? FARTHEST : llValue);
}

struct Span {
    LONG lFrom, lTo;
};

/* The dialog's extent on one axis: nOffset from where the parent begins, or centred on it. */
Span PlaceSpan(Span parent, Span dialog, int nOffset, int nCentre)
{
    i64 llSize = static_cast<i64>(dialog.lTo) - dialog.lFrom;
    i64 llParentSize = static_cast<i64>(parent.lTo) - parent.lFrom;
    i64 llFrom = parent.lFrom + (nOffset == nCentre ? (llParentSize - llSize) / 2 : nOffset);
    return {LimitCoordinate(llFrom), LimitCoordinate(LimitCoordinate(llFrom) + llSize)};
}

} // namespace

i32 GetComboValue(HWND hDialog, int nControl, int* pbChosen)
{
    return GetValue(hDialog, nControl, pbChosen, comboMessages);
}

Selection ReadCombo(HWND hDialog, int nControl)
{
    Selection selection;
    selection.lValue = GetComboValue(hDialog, nControl, &selection.bChosen);
    return selection;
}

i32 GetListValue(HWND hDialog, int nControl, int* pbChosen)
{
    return GetValue(hDialog, nControl, pbChosen, listMessages);
}

i32 SelectComboValue(HWND hDialog, int nControl, i32 lValue)
{
    return SelectValue(hDialog, nControl, lValue, comboMessages);
}

i32 SelectListValue(HWND hDialog, int nControl, i32 lValue)
{
    return SelectValue(hDialog, nControl, lValue, listMessages);
}

void FillComboFromTable(HWND hDialog, const UiSession* pSession, int nControl, const ComboTableRow* pTable,
                        u32 ulFilter)
{
    HWND hCombo = GetDlgItem(hDialog, nControl);
    if (!hCombo) {
        return;
    }
    SendMessageW(hCombo, CB_RESETCONTENT, 0, 0);
    for (const ComboTableRow* pRow = pTable; pRow->usString; pRow++) {
        if (pRow->ulMask != ALL_ROWS && ulFilter != ALL_ROWS && !(pRow->ulMask & ulFilter)) {
            continue;
        }
        WCHAR wcText[TEXT_CHARS];
        LoadUiText(pSession, pRow->usString, wcText, TEXT_CHARS);
        LRESULT nRow = SendMessageW(hCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcText));
        if (nRow >= 0) {
            SendMessageW(hCombo, CB_SETITEMDATA, static_cast<WPARAM>(nRow),
                         static_cast<LPARAM>(pRow->ulValue));
        }
    }
}

void LoadUiText(const UiSession* pSession, int nString, WCHAR* wcOut, int cch)
{
    ReadLibraryString(static_cast<HMODULE>(pSession->hLanguageDll.get()), nString, wcOut, cch);
}

void SetLabel(HWND hDialog, const UiSession* pSession, int nControl, int nString)
{
    WCHAR wcText[TEXT_CHARS];
    LoadUiText(pSession, nString, wcText, TEXT_CHARS);
    if (wcText[0]) {
        SetDlgItemTextW(hDialog, nControl, wcText);
    }
}

void LabelControls(HWND hDialog, const UiSession* pSession)
{
    LabelPass pass = {hDialog, pSession};
    EnumChildWindows(hDialog, LabelControl, reinterpret_cast<LPARAM>(&pass));
}

void ShowControls(HWND hDialog, const int* pnControls, int bShow)
{
    for (; *pnControls; pnControls++) {
        if (HWND hControl = GetDlgItem(hDialog, *pnControls)) {
            ShowWindow(hControl, bShow ? SW_SHOW : SW_HIDE);
        }
    }
}

void EnableControls(HWND hDialog, const int* pnControls, int bEnable)
{
    for (; *pnControls; pnControls++) {
        EnableControl(hDialog, *pnControls, bEnable);
    }
}

void OfferControls(HWND hDialog, const int* pnControls, int bOffer)
{
    EnableControls(hDialog, pnControls, bOffer);
    ShowControls(hDialog, pnControls, bOffer);
}

void EnableControl(HWND hDialog, int nControl, int bEnable)
{
    if (HWND hControl = GetDlgItem(hDialog, nControl)) {
        EnableWindow(hControl, bEnable != 0);
    }
}

int IsChecked(HWND hDialog, int nControl)
{
    return IsDlgButtonChecked(hDialog, nControl) == BST_CHECKED;
}

void SetChecked(HWND hDialog, int nControl, int bCheck)
{
    CheckDlgButton(hDialog, nControl, bCheck ? BST_CHECKED : BST_UNCHECKED);
}

void CheckRadio(HWND hDialog, const int* pnRadios, int nRadio)
{
    for (; *pnRadios; pnRadios++) {
        SetChecked(hDialog, *pnRadios, *pnRadios == nRadio);
    }
}

void MakeDefaultButton(HWND hDialog, int nButton, int nOther)
{
    SendDlgItemMessageW(hDialog, nOther, BM_SETSTYLE, BS_PUSHBUTTON, 1);
    SendDlgItemMessageW(hDialog, nButton, BM_SETSTYLE, BS_DEFPUSHBUTTON, 1);
    SendMessageW(hDialog, DM_SETDEFID, static_cast<WPARAM>(nButton), 0);
}

int IsOverControl(HWND hDialog, int nControl, LPARAM lPoint)
{
    RECT area;
    LONG x = static_cast<i16>(LOWORD(lPoint)), y = static_cast<i16>(HIWORD(lPoint));
    return ControlRect(hDialog, nControl, &area) && x >= area.left && x <= area.right && y >= area.top &&
           y <= area.bottom;
}

void ShowHandCursor(UiSession* pSession, int bOver)
{
    HCURSOR hNow = GetCursor();
    if (bOver && hNow != pSession->hCursorHand) {
        pSession->hCursorSaved = hNow;
        SetCursor(pSession->hCursorHand);
    } else if (!bOver && hNow == pSession->hCursorHand) {
        SetCursor(pSession->hCursorSaved);
    }
}

int ControlRect(HWND hDialog, int nControl, RECT* pRect)
{
    HWND hControl = GetDlgItem(hDialog, nControl);
    RECT rect;
    if (!hControl || !GetWindowRect(hControl, &rect)) {
        return 0;
    }
    POINT corners[2] = {{rect.left, rect.top}, {rect.right, rect.bottom}};
    MapWindowPoints(nullptr, hDialog, corners, 2);
    *pRect = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
    return 1;
}

void RepaintControl(HWND hDialog, int nControl)
{
    RECT rect;
    if (ControlRect(hDialog, nControl, &rect)) {
        InvalidateRect(hDialog, &rect, 0);
        UpdateWindow(hDialog);
    }
}

void CentreDialog(HWND hDialog, int nX, int nY)
{
    WINDOWPLACEMENT parent = {}, dialog = {};
    parent.length = sizeof parent;
    dialog.length = sizeof dialog;
    HWND hParent = GetParent(hDialog);
    if (!hParent || !GetWindowPlacement(hParent, &parent) || !GetWindowPlacement(hDialog, &dialog)) {
        return;
    }
    const RECT& around = parent.rcNormalPosition;
    RECT& rect = dialog.rcNormalPosition;
    Span across = PlaceSpan({around.left, around.right}, {rect.left, rect.right}, nX, CENTRE_X);
    Span down = PlaceSpan({around.top, around.bottom}, {rect.top, rect.bottom}, nY, CENTRE_Y);
    rect = {across.lFrom, down.lFrom, across.lTo, down.lTo};
    /* A dialog that is still being made is not shown by this. */
    if (!(GetWindowLongPtrW(hDialog, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE))) {
        dialog.showCmd = SW_HIDE;
    }
    SetWindowPlacement(hDialog, &dialog);
}
