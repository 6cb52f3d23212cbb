#include "sheet/paper_editor.h"

#include <utility>

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/notices.h"
#include "sheet/saved_papers.h"
#include "sheet/tidy_name.h"

namespace {

constexpr int NAME_LIMIT = 16, SIDE_LIMIT = 6; /* characters that can be typed */
constexpr int NAME_CHARS = static_cast<int>(sizeof PaperSizeRow::wcName / sizeof(WCHAR));
constexpr int EDITOR_TOP = 80; /* below the upper edge of the list dialog */

/* Not by sDialogArg: a notice takes the focus, and so sends the name's control a notification, while its own id stands
   there. */
PaperSizeRow* EditedRow(const UiSession* pSession)
{
    return static_cast<PaperSizeRow*>(pSession->pDialogData);
}

/* The button that confirms: a new paper is added, a named one changed. */
int ConfirmButton(const UiSession* pSession)
{
    return EditedRow(pSession)->wcName[0] ? IDC_SIZE_CHANGE : IDC_SIZE_ADD;
}

/* The name as it would be stored. */
void ReadName(HWND hDialog, WCHAR* wcName)
{
    UINT nGot = GetDlgItemTextW(hDialog, IDC_SIZE_NAME, wcName, NAME_CHARS);
    wcName[nGot < NAME_CHARS ? nGot : NAME_CHARS - 1] = 0;
    TidyName(wcName);
}

/* A paper without a name cannot be confirmed: Enter leaves the dialog then. */
void OfferConfirm(HWND hDialog, const UiSession* pSession)
{
    WCHAR wcName[NAME_CHARS];
    ReadName(hDialog, wcName);
    int nConfirm = ConfirmButton(pSession);
    if (wcName[0]) {
        EnableControl(hDialog, nConfirm, 1);
        MakeDefaultButton(hDialog, nConfirm, IDC_CANCEL);
    } else {
        MakeDefaultButton(hDialog, IDC_CANCEL, nConfirm);
        EnableControl(hDialog, nConfirm, 0);
    }
}

void ShowUnit(HWND hDialog, const UiSession* pSession)
{
    int nUnit = IsMetric(pSession) ? IDS_UNIT_MM : IDS_UNIT_INCH;
    SetLabel(hDialog, pSession, IDC_SIZE_WIDTH_UNIT, nUnit);
    SetLabel(hDialog, pSession, IDC_SIZE_LENGTH_UNIT, nUnit);
}

void InitEditor(HWND hDialog, UiSession* pSession)
{
    constexpr int anAdd[] = {IDC_SIZE_ADD, 0}, anChange[] = {IDC_SIZE_CHANGE, 0};
    const PaperSizeRow* pRow = EditedRow(pSession);
    int bNew = !pRow->wcName[0];
    SetTitle(hDialog, pSession, bNew ? IDS_TITLE_NEW_SIZE : IDS_TITLE_EDIT_SIZE);
    SetLabel(hDialog, pSession, IDC_SIZE_ADD, IDS_ADD);
    SetLabel(hDialog, pSession, IDC_SIZE_CHANGE, IDC_OK);
    OfferControls(hDialog, anAdd, bNew);
    OfferControls(hDialog, anChange, !bNew);
    SendDlgItemMessageW(hDialog, IDC_SIZE_NAME, EM_LIMITTEXT, NAME_LIMIT, 0);
    SetDlgItemTextW(hDialog, IDC_SIZE_NAME, pRow->wcName);
    pSession->pRecord->rPrivate.bMetric = pRow->ulMetric != 0;
    ShowUnit(hDialog, pSession);
    for (int nSide : {IDC_SIZE_WIDTH, IDC_SIZE_LENGTH}) {
        SendDlgItemMessageW(hDialog, nSide, EM_LIMITTEXT, SIDE_LIMIT, 0);
        SubclassNumberEdit(hDialog, pSession, nSide);
    }
    ShowMeasure(hDialog, pSession, IDC_SIZE_WIDTH, static_cast<i32>(pRow->ulWidth), ROUND_NEAREST);
    ShowMeasure(hDialog, pSession, IDC_SIZE_LENGTH, static_cast<i32>(pRow->ulLength), ROUND_NEAREST);
    OfferConfirm(hDialog, pSession);
    CentreDialog(hDialog, CENTRE_X, EDITOR_TOP);
}

/* Both sides are shown in the other unit; what lay beyond the limits is brought to them. */
void TurnUnit(HWND hDialog, UiSession* pSession)
{
    i32 lWidth = ReadMeasure(hDialog, pSession, IDC_SIZE_WIDTH);
    i32 lLength = ReadMeasure(hDialog, pSession, IDC_SIZE_LENGTH);
    pSession->pRecord->rPrivate.bMetric = !IsMetric(pSession);
    ShowUnit(hDialog, pSession);
    ShowLimitedMeasure(hDialog, pSession, IDC_SIZE_WIDTH, lWidth);
    ShowLimitedMeasure(hDialog, pSession, IDC_SIZE_LENGTH, lLength);
}

/* 1 when the side lies within the model's limits; else the limit is shown in its place. */
int TakeSide(HWND hDialog, const UiSession* pSession, int nControl, u32* pulSide)
{
    NumberRange range;
    i32 lSide = ReadMeasure(hDialog, pSession, nControl);
    if (!MeasureRangeOf(pSession, nControl, &range)) {
        return 0;
    }
    *pulSide = static_cast<u32>(lSide);
    if (lSide >= range.lMin && lSide <= range.lMax) {
        return 1;
    }
    ShowLimitedMeasure(hDialog, pSession, nControl, lSide);
    return 0;
}

void Confirm(HWND hDialog, UiSession* pSession)
{
    PaperSizeRow row = {};
    int bWidth = TakeSide(hDialog, pSession, IDC_SIZE_WIDTH, &row.ulWidth);
    int bLength = TakeSide(hDialog, pSession, IDC_SIZE_LENGTH, &row.ulLength);
    if (!bWidth || !bLength) {
        ShowNotice(pSession, hDialog, NOTICE_PAPER_SIZE);
        SetFocus(GetDlgItem(hDialog, bWidth ? IDC_SIZE_LENGTH : IDC_SIZE_WIDTH));
        return;
    }
    WCHAR wcName[NAME_CHARS];
    ReadName(hDialog, wcName);
    if (!wcName[0]) {
        return; /* the button cannot be pressed, but other programs send messages, too */
    }
    const PaperSizeRow* pFirst = pSession->pCustomPapers.get();
    if (IsPaperNameTaken(pFirst, static_cast<i32>(EditedRow(pSession) - pFirst), wcName)) {
        ShowNotice(pSession, hDialog, NOTICE_NAME);
        return;
    }
    CopyWide(row.wcName, NAME_CHARS, wcName); /* rows are compared whole, so nothing stands behind the name */
    row.ulMetric = static_cast<u32>(IsMetric(pSession));
    *EditedRow(pSession) = row;
    EndDialog(hDialog, DIALOG_OK);
}

void EditorCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int bClicked = HIWORD(wParam) == BN_CLICKED;
    switch (LOWORD(wParam)) {
    case IDC_SIZE_NAME: OfferConfirm(hDialog, pSession); break;
    case IDC_UNIT:
        if (bClicked) {
            TurnUnit(hDialog, pSession);
        }
        break;
    case IDC_SIZE_ADD:
    case IDC_SIZE_CHANGE:
        if (bClicked && LOWORD(wParam) == ConfirmButton(pSession)) {
            Confirm(hDialog, pSession);
        }
        break;
    default: break;
    }
}

/* The width's spin button keeps the focus, so that it can be pressed again by key. */
void EditorSpun(HWND hDialog, UiSession*, int nSpin)
{
    if (nSpin == IDC_SIZE_WIDTH_SPIN) {
        SetFocus(GetDlgItem(hDialog, nSpin));
    }
}

constexpr DialogRoutines paperEditor = {
    .nSlot = -1, .pfnInit = InitEditor, .pfnCommand = EditorCommand, .pfnSpun = EditorSpun};

} // namespace

int EditPaper(HWND hOwner, UiSession* pSession, i16 sRow)
{
    void* pBefore = std::exchange(pSession->pDialogData, pSession->pCustomPapers.get() + sRow);
    INT_PTR nEnd = RunDialog<paperEditor>(pSession, hOwner, IDD_SIZE, sRow);
    pSession->pDialogData = pBefore;
    return nEnd == DIALOG_OK;
}
