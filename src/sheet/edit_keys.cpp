#include "sheet/edit_keys.h"

#include <algorithm>

#include "base/wide.h"
#include "description/control_ids.h"

namespace {

/* Paging through booklet groups goes by whole sheets of four pages. */
constexpr i32 BOOKLET_STEP = 4;

constexpr i32 FARTHEST_METRIC = 25000, FARTHEST_INCH = 25400; /* from the middle of the page */

enum NumberKind : u8 { WHOLE_NUMBER, PAPER_WIDTH, PAPER_LENGTH, POSITION };

struct SpinRow {
    u16 usSpin, usEdit;
    i32 lMin, lMax;
    NumberKind kind; /* of the others the limits are the model's or the unit's */
};
constexpr SpinRow aSpins[] = {
    {IDC_PAPER_COPIES_SPIN, IDC_PAPER_COPIES, 1, 99, WHOLE_NUMBER},
    {IDC_TEXT_MARK_SIZE_SPIN, IDC_TEXT_MARK_SIZE, 8, 300, WHOLE_NUMBER},
    {IDC_TEXT_MARK_ANGLE_SPIN, IDC_TEXT_MARK_ANGLE, 0, 359, WHOLE_NUMBER},
    {IDC_TEXT_MARK_DARKNESS_SPIN, IDC_TEXT_MARK_DARKNESS, 1, 100, WHOLE_NUMBER},
    {IDC_LAYOUT_BOOKLET_SPIN, IDC_LAYOUT_BOOKLET, 0, 32764, WHOLE_NUMBER},
    {IDC_IMAGE_MARK_SCALE_SPIN, IDC_IMAGE_MARK_SCALE, 25, 400, WHOLE_NUMBER},
    {IDC_WATERMARKS_TRANSPARENCY_SPIN, IDC_WATERMARKS_TRANSPARENCY, 0, 100, WHOLE_NUMBER},
    {IDC_QUALITY_CONTRAST_SPIN, IDC_QUALITY_CONTRAST, -50, 50, WHOLE_NUMBER},
    {IDC_QUALITY_BRIGHTNESS_SPIN, IDC_QUALITY_BRIGHTNESS, -50, 50, WHOLE_NUMBER},
    {IDC_SIZE_WIDTH_SPIN, IDC_SIZE_WIDTH, 0, 0, PAPER_WIDTH},
    {IDC_SIZE_LENGTH_SPIN, IDC_SIZE_LENGTH, 0, 0, PAPER_LENGTH},
    {IDC_MARK_X_SPIN, IDC_MARK_X, 0, 0, POSITION},
    {IDC_MARK_Y_SPIN, IDC_MARK_Y, 0, 0, POSITION},
    {},
};

struct KeyRow {
    u16 usEdit;
    NumberKind kind;
    NumberRange range;
};
constexpr KeyRow aKeyRanges[] = {
    {IDC_PAPER_COPIES, WHOLE_NUMBER, {1, 1, 99}},
    {IDC_SIZE_WIDTH, PAPER_WIDTH, {}},
    {IDC_SIZE_LENGTH, PAPER_LENGTH, {}},
    {IDC_PAPER_ZOOM, WHOLE_NUMBER, {25, 100, 400}},
    {IDC_TEXT_MARK_SIZE, WHOLE_NUMBER, {8, 72, 300}},
    {IDC_TEXT_MARK_ANGLE, WHOLE_NUMBER, {0, 45, 359}},
    {IDC_TEXT_MARK_DARKNESS, WHOLE_NUMBER, {0, 25, 100}},
    {IDC_MARK_X, POSITION, {}},
    {IDC_MARK_Y, POSITION, {}},
    {IDC_IMAGE_MARK_SCALE, WHOLE_NUMBER, {25, 100, 400}},
    {IDC_QUALITY_CONTRAST, WHOLE_NUMBER, {-50, 0, 50}},
    {IDC_QUALITY_BRIGHTNESS, WHOLE_NUMBER, {-50, 0, 50}},
    {},
};

/* The row of an edit control; null without. */
const KeyRow* FindKeyRow(int nControl)
{
    for (const KeyRow* pRow = aKeyRanges; pRow->usEdit; pRow++) {
        if (pRow->usEdit == nControl) {
            return pRow;
        }
    }
    return nullptr;
}

/* 1 when the key is one that steps this control. */
int PressKey(HWND hEdit, UiSession* pSession, int nKey)
{
    HWND hDialog = GetParent(hEdit);
    int nControl = GetDlgCtrlID(hEdit);
    const KeyRow* pRow = FindKeyRow(nControl);
    if (!pRow) {
        return 0;
    }
    if (pRow->kind == WHOLE_NUMBER) {
        i32 lOld = ReadNumber(hDialog, nControl);
        i32 lNew = lOld;
        int bOurs = PressNumberKey(nKey, pRow->range, &lNew);
        if (lNew != lOld) {
            ShowNumber(hDialog, nControl, lNew);
        }
        return bOurs;
    }
    NumberRange range;
    if (!MeasureRangeOf(pSession, nControl, &range)) {
        return 0;
    }
    RoundingMode mode = ROUND_NEAREST;
    i32 lOld = ReadMeasure(hDialog, pSession, nControl);
    i32 lNew = lOld;
    int bOurs = PressMeasureKey(nKey, range, IsMetric(pSession), &lNew, &mode);
    if (lNew != lOld) {
        ShowMeasure(hDialog, pSession, nControl, lNew, mode);
    }
    return bOurs;
}

/* The procedure of all numeric edit controls. The session stands in the control itself: its dialog is told of the end
   before its controls are. */
LRESULT CALLBACK NumericEditProc(HWND hEdit, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    UiSession* pSession = reinterpret_cast<UiSession*>(GetWindowLongPtrW(hEdit, GWLP_USERDATA));
    if (!pSession) {
        return 0;
    }
    WNDPROC pfnEdit = pSession->pfnEditProc;
    if (uMessage == WM_KEYDOWN && PressKey(hEdit, pSession, static_cast<int>(wParam & 0xFFFF))) {
        return 0;
    }
    if (uMessage == WM_DESTROY) {
        SetWindowLongPtrW(hEdit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnEdit));
        SetWindowLongPtrW(hEdit, GWLP_USERDATA, 0);
    }
    return CallWindowProcW(pfnEdit, hEdit, uMessage, wParam, lParam);
}

} // namespace

i32 ReadMeasure(HWND hDialog, const UiSession* pSession, int nControl)
{
    WCHAR wcText[TEXT_CHARS];
    UINT nGot = GetDlgItemTextW(hDialog, nControl, wcText, TEXT_CHARS);
    wcText[nGot < TEXT_CHARS ? nGot : TEXT_CHARS - 1] = 0;
    return MeasureOfText(wcText, pSession->rLanguage.wcDecimal, IsMetric(pSession));
}

void ShowMeasure(HWND hDialog, const UiSession* pSession, int nControl, i32 lValue, RoundingMode mode)
{
    WCHAR wcText[TEXT_CHARS];
    FormatMeasure(lValue, IsMetric(pSession), mode, pSession->rLanguage.wcDecimal, wcText, TEXT_CHARS);
    SetDlgItemTextW(hDialog, nControl, wcText);
}

int MeasureRangeOf(const UiSession* pSession, int nControl, NumberRange* pRange)
{
    const KeyRow* pRow = FindKeyRow(nControl);
    int bMetric = IsMetric(pSession);
    if (pRow && pRow->kind == POSITION) {
        i32 lFarthest = bMetric ? FARTHEST_METRIC : FARTHEST_INCH;
        *pRange = {-lFarthest, 0, lFarthest};
        return 1;
    }
    const XpiModel* pModel = pSession->pXpi.get();
    if (!pRow || pRow->kind == WHOLE_NUMBER || !pModel) {
        return 0;
    }
    *pRange = pRow->kind == PAPER_WIDTH
                  ? PaperSideRange(pModel->sMinCustomWidth, pModel->sMaxCustomWidth, bMetric)
                  : PaperSideRange(pModel->sMinCustomLength, pModel->sMaxCustomLength, bMetric);
    return 1;
}

void ShowLimitedMeasure(HWND hDialog, const UiSession* pSession, int nControl, i32 lValue)
{
    NumberRange range;
    RoundingMode mode = ROUND_NEAREST;
    if (MeasureRangeOf(pSession, nControl, &range)) {
        if (lValue >= range.lMax) {
            lValue = range.lMax;
            mode = ROUND_DOWN;
        } else if (lValue <= range.lMin) {
            lValue = range.lMin;
            mode = ROUND_UP;
        }
    }
    ShowMeasure(hDialog, pSession, nControl, lValue, mode);
}

i32 ReadNumber(HWND hDialog, int nControl, int* pbNumber)
{
    BOOL bNumber = 0;
    i32 lValue = static_cast<i32>(GetDlgItemInt(hDialog, nControl, &bNumber, 1));
    if (pbNumber) {
        *pbNumber = bNumber != 0;
    }
    return lValue;
}

void ShowNumber(HWND hDialog, int nControl, i32 lValue)
{
    SetDlgItemInt(hDialog, nControl, static_cast<UINT>(lValue), 1);
}

i32 LimitNumber(int nControl, i32 lValue)
{
    const KeyRow* pRow = FindKeyRow(nControl);
    if (!pRow || pRow->kind != WHOLE_NUMBER) {
        return lValue;
    }
    return std::clamp(lValue, pRow->range.lMin, pRow->range.lMax);
}

i32 ClampNumber(HWND hDialog, int nControl)
{
    i32 lValue = ReadNumber(hDialog, nControl);
    i32 lWithin = LimitNumber(nControl, lValue);
    if (lWithin != lValue) {
        ShowNumber(hDialog, nControl, lWithin);
        SendDlgItemMessageW(hDialog, nControl, EM_SETSEL, 0, -1); /* what is typed next takes its place */
    }
    return lWithin;
}

void StepMeasureEdit(HWND hDialog, const UiSession* pSession, int nCode, int nControl, i32 lMin, i32 lMax)
{
    RoundingMode mode;
    i32 lValue = ReadMeasure(hDialog, pSession, nControl);
    lValue = StepMeasure(lValue, nCode, lMin, lMax, IsMetric(pSession), &mode);
    ShowMeasure(hDialog, pSession, nControl, lValue, mode);
}

void SpinEdit(HWND hDialog, int nCode, int nControl, i32 lMin, i32 lMax)
{
    i32 lStep = nControl == IDC_LAYOUT_BOOKLET ? BOOKLET_STEP : 1;
    ShowNumber(hDialog, nControl, StepNumber(ReadNumber(hDialog, nControl), nCode, lStep, lMin, lMax));
}

int HandleSpin(HWND hDialog, const UiSession* pSession, WPARAM wParam, LPARAM lParam)
{
    int nSpin = GetDlgCtrlID(reinterpret_cast<HWND>(lParam));
    int nCode = LOWORD(wParam);
    for (const SpinRow* pRow = aSpins; pRow->usSpin; pRow++) {
        if (pRow->usSpin != nSpin) {
            continue;
        }
        NumberRange range;
        if (pRow->kind == WHOLE_NUMBER) {
            SpinEdit(hDialog, nCode, pRow->usEdit, pRow->lMin, pRow->lMax);
        } else if (MeasureRangeOf(pSession, pRow->usEdit, &range)) {
            StepMeasureEdit(hDialog, pSession, nCode, pRow->usEdit, range.lMin, range.lMax);
        } else {
            return 0;
        }
        return pRow->usEdit;
    }
    return 0;
}

void SubclassNumberEdit(HWND hDialog, UiSession* pSession, int nControl)
{
    HWND hEdit = GetDlgItem(hDialog, nControl);
    LONG_PTR lOwn = reinterpret_cast<LONG_PTR>(&NumericEditProc);
    LONG_PTR lBefore = hEdit ? GetWindowLongPtrW(hEdit, GWLP_WNDPROC) : 0;
    if (!lBefore || lBefore == lOwn) {
        return; /* not there, or a page that fills its controls once more */
    }
    LONG_PTR lSession = reinterpret_cast<LONG_PTR>(pSession);
    SetWindowLongPtrW(hEdit, GWLP_USERDATA, lSession);
    if (GetWindowLongPtrW(hEdit, GWLP_USERDATA) != lSession) {
        return;
    }
    if (!pSession->pfnEditProc) {
        pSession->pfnEditProc = reinterpret_cast<WNDPROC>(lBefore);
    }
    SetWindowLongPtrW(hEdit, GWLP_WNDPROC, lOwn);
}
