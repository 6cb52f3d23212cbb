#include "sheet/mark_editor.h"

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/preview_panel.h"
#include "sheet/tidy_name.h"
#include "sheet/watermark_choice.h"

namespace {

constexpr int POSITION_LIMIT = 8;                  /* characters that can be typed */
constexpr int EDITOR_TOP = 80, READ_ONLY_TOP = 60; /* below the upper edge of the sheet */
constexpr u16 PORTRAIT = 1, LANDSCAPE = 2;
constexpr int anPosition[] = {IDC_MARK_X, IDC_MARK_Y};

void ShowMarkUnit(HWND hDialog, const UiSession* pSession)
{
    int nUnit = IsMetric(pSession) ? IDS_UNIT_MM : IDS_UNIT_INCH;
    SetLabel(hDialog, pSession, IDC_MARK_X_UNIT, nUnit);
    SetLabel(hDialog, pSession, IDC_MARK_Y_UNIT, nUnit);
}

/* Both measures are shown in the other unit; what lay beyond its limits is brought to them. */
void TurnMarkUnit(HWND hDialog, UiSession* pSession)
{
    i32 lX = ReadMeasure(hDialog, pSession, IDC_MARK_X);
    i32 lY = ReadMeasure(hDialog, pSession, IDC_MARK_Y);
    pSession->pRecord->rPrivate.bMetric = !IsMetric(pSession);
    ShowMarkUnit(hDialog, pSession);
    ShowLimitedMeasure(hDialog, pSession, IDC_MARK_X, lX);
    ShowLimitedMeasure(hDialog, pSession, IDC_MARK_Y, lY);
}

void HoldPosition(HWND hDialog, const UiSession* pSession, int nControl)
{
    NumberRange range;
    i32 lValue = ReadMeasure(hDialog, pSession, nControl);
    if (MeasureRangeOf(pSession, nControl, &range) && (lValue < range.lMin || lValue > range.lMax)) {
        ShowLimitedMeasure(hDialog, pSession, nControl, lValue);
    }
}

} // namespace

WatermarkEntry* EditedMark(const UiSession* pSession)
{
    const MarkEdit* pEdit = CurrentMarkEdit(pSession);
    WatermarkEntry* pRows = pSession->pWatermarks.get();
    return pRows && pEdit && pEdit->nRow >= 0 && pEdit->nRow <= pSession->sWatermarkCount
               ? pRows + pEdit->nRow
               : nullptr;
}

int IsNewMark(const UiSession* pSession)
{
    const MarkEdit* pEdit = CurrentMarkEdit(pSession);
    return pEdit && pEdit->nRow == pSession->sWatermarkCount;
}

void InitMarkEditor(HWND hDialog, UiSession* pSession, const WatermarkEntry& row)
{
    constexpr int anAdd[] = {IDC_MARK_ADD, 0}, anChange[] = {IDC_MARK_CHANGE, 0};
    int bNew = IsNewMark(pSession);
    SetTitle(hDialog, pSession, bNew ? IDS_TITLE_NEW_MARK : IDS_TITLE_EDIT_MARK);
    SetLabel(hDialog, pSession, IDC_MARK_ADD, IDS_ADD);
    SetLabel(hDialog, pSession, IDC_MARK_CHANGE, IDC_OK);
    OfferControls(hDialog, anAdd, bNew);
    OfferControls(hDialog, anChange, !bNew);
    ShowMarkUnit(hDialog, pSession);
    for (int nControl : anPosition) {
        SendDlgItemMessageW(hDialog, nControl, EM_LIMITTEXT, POSITION_LIMIT, 0);
        SubclassNumberEdit(hDialog, pSession, nControl);
    }
    ShowMeasure(hDialog, pSession, IDC_MARK_X, row.WMPositionX, ROUND_NEAREST);
    ShowMeasure(hDialog, pSession, IDC_MARK_Y, row.WMPositionY, ROUND_NEAREST);
    CentreDialog(hDialog, CENTRE_X, pSession->bReadOnly ? READ_ONLY_TOP : EDITOR_TOP);
}

int MarkConfirmButton(const UiSession* pSession)
{
    return IsNewMark(pSession) ? IDC_MARK_ADD : IDC_MARK_CHANGE;
}

void OfferMarkConfirm(HWND hDialog, const UiSession* pSession, int bComplete)
{
    int nConfirm = MarkConfirmButton(pSession);
    if (bComplete) {
        EnableControl(hDialog, nConfirm, 1);
        MakeDefaultButton(hDialog, nConfirm, IDC_CANCEL);
    } else {
        MakeDefaultButton(hDialog, IDC_CANCEL, nConfirm);
        EnableControl(hDialog, nConfirm, 0);
    }
}

int MarkEditorCommand(HWND hDialog, UiSession* pSession, int nControl, int nCode)
{
    switch (nControl) {
    case IDC_MARK_X:
    case IDC_MARK_Y:
        if (nCode == EN_CHANGE) {
            HoldPosition(hDialog, pSession, nControl);
            RepaintControl(hDialog, IDC_MARK_PREVIEW);
        }
        return 1;
    case IDC_UNIT:
        if (nCode == BN_CLICKED) {
            TurnMarkUnit(hDialog, pSession);
            RepaintControl(hDialog, IDC_MARK_PREVIEW);
        }
        return 1;
    default: return 0;
    }
}

void CapNumber(HWND hDialog, int nControl, i32 lMax)
{
    if (ReadNumber(hDialog, nControl) > lMax) {
        ShowNumber(hDialog, nControl, lMax);
    }
}

void ReadMarkText(HWND hDialog, int nControl, WCHAR* wcOut, int cch)
{
    WCHAR wcText[PATH_CHARS];
    UINT nGot = GetDlgItemTextW(hDialog, nControl, wcText, PATH_CHARS);
    wcText[nGot < PATH_CHARS ? nGot : PATH_CHARS - 1] = 0;
    TidyName(wcText);
    CopyWide(wcOut, cch, wcText);
}

void ReadMarkPosition(HWND hDialog, const UiSession* pSession, WatermarkEntry* pShown)
{
    pShown->WMPositionX = ReadMeasure(hDialog, pSession, IDC_MARK_X);
    pShown->WMPositionY = ReadMeasure(hDialog, pSession, IDC_MARK_Y);
}

PreviewRequest MarkRequest(const UiSession* pSession)
{
    const PreviewChoice choice = GatherPreviewChoice(pSession);
    const PreviewPaper paper = FindPreviewPaper(SessionPreviewLists(pSession), choice.usPaper);
    PreviewRequest request = {};
    request.lPageWidth = paper.lWidth;
    request.lPageLength = paper.lLength;
    request.bEnvelope = paper.bEnvelope;
    request.sOrientation = choice.usOrientation == PORTRAIT ? PORTRAIT : LANDSCAPE;
    request.sResolution = choice.usResolution;
    request.sPreviewControl = IDC_MARK_PREVIEW;
    request.bCenterInFrame = 1;
    request.bColor = IsColorModel(pSession->pXpi.get());
    return request;
}

void DrawMark(HWND hDialog, HDC hdc, UiSession* pSession, PreviewRequest* pRequest)
{
    RECT rFrame;
    if (ControlRect(hDialog, pRequest->sPreviewControl, &rFrame)) {
        ComposePreview(pSession->rPreview, pSession->rPreviewDevice, hdc, rFrame, pRequest);
    }
}
