#include "sheet/text_mark_editor.h"

#include <utility>

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/dialog_frame.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/notices.h"
#include "sheet/system_dialogs.h"
#include "sheet/watermark_choice.h"

namespace {

constexpr int TEXT_LIMIT = 63, NUMBER_LIMIT = 3; /* characters that can be typed */
constexpr int STRING_CHARS = sizeof WatermarkEntry::WMString / sizeof(WCHAR);
constexpr int FACE_CHARS = sizeof WatermarkEntry::WMFace / sizeof(WCHAR);
constexpr u32 FIRST_COLOR = 0x0000FF; /* of a new text */
constexpr i32 DEGREES_MAX = 359, TENTHS = 10;
constexpr int OUTLINE_MISSING = 1; /* a trial's result */

constexpr int anColor[] = {IDC_TEXT_MARK_COLOR, IDC_TEXT_MARK_COLOR_CHOOSE, 0};
constexpr int anDarkness[] = {IDC_TEXT_MARK_DARKNESS_LABEL, IDC_TEXT_MARK_DARKNESS,
                              IDC_TEXT_MARK_DARKNESS_SPIN, IDC_PERCENT, 0};

int IsColored(const UiSession* pSession)
{
    return IsColorModel(pSession->pXpi.get());
}

int IsRightToLeft(HWND hDialog)
{
    HWND hText = GetDlgItem(hDialog, IDC_TEXT_MARK_TEXT);
    return hText && (GetWindowLongPtrW(hText, GWL_EXSTYLE) & static_cast<LONG_PTR>(WS_EX_RTLREADING));
}

/* Gives the text's control the reading order of the row. */
void ShowReading(HWND hDialog, int bRightToLeft)
{
    HWND hText = GetDlgItem(hDialog, IDC_TEXT_MARK_TEXT);
    if (!hText) {
        return;
    }
    constexpr LONG_PTR READING = WS_EX_RTLREADING, RIGHT = ES_RIGHT;
    LONG_PTR lExtended = GetWindowLongPtrW(hText, GWL_EXSTYLE);
    LONG_PTR lStyle = GetWindowLongPtrW(hText, GWL_STYLE);
    SetWindowLongPtrW(hText, GWL_EXSTYLE, bRightToLeft ? lExtended | READING : lExtended & ~READING);
    SetWindowLongPtrW(hText, GWL_STYLE, bRightToLeft ? lStyle | RIGHT : lStyle & ~RIGHT);
}

/* The face that is chosen and its character set; without one the row's stay. */
void ReadFace(HWND hDialog, const UiSession* pSession, WatermarkEntry* pShown)
{
    WCHAR wcFace[TEXT_CHARS];
    UINT nGot = GetDlgItemTextW(hDialog, IDC_TEXT_MARK_FONT, wcFace, TEXT_CHARS);
    wcFace[nGot < TEXT_CHARS ? nGot : TEXT_CHARS - 1] = 0;
    i32 lCharSet = wcFace[0] ? FindFamily(pSession->rFontFamilies, wcFace) : NO_FAMILY;
    if (lCharSet != NO_FAMILY) {
        CopyWide(pShown->WMFace, FACE_CHARS, wcFace);
        pShown->WMCharSet = static_cast<u8>(lCharSet);
    } else if (const WatermarkEntry* pRow = EditedMark(pSession)) {
        CopyWide(pShown->WMFace, FACE_CHARS, pRow->WMFace);
        pShown->WMCharSet = pRow->WMCharSet;
    }
}

/* All that the controls say, for the trial, the row and the picture alike. */
void ReadTextMark(HWND hDialog, const UiSession* pSession, WatermarkEntry* pShown)
{
    *pShown = {};
    pShown->WMType = ENTRY_TEXT;
    ReadMarkText(hDialog, IDC_TEXT_MARK_TEXT, pShown->WMString, STRING_CHARS);
    pShown->WMRTL = IsRightToLeft(hDialog);
    ReadFace(hDialog, pSession, pShown);
    pShown->WMSize =
        static_cast<i16>(LimitNumber(IDC_TEXT_MARK_SIZE, ReadNumber(hDialog, IDC_TEXT_MARK_SIZE)));
    pShown->WMBold = static_cast<u32>(IsChecked(hDialog, IDC_TEXT_MARK_BOLD));
    pShown->WMItalic = static_cast<u32>(IsChecked(hDialog, IDC_TEXT_MARK_ITALIC));
    pShown->WMOutline = static_cast<u32>(IsChecked(hDialog, IDC_TEXT_MARK_OUTLINE));
    pShown->WMAngle = AngleOfDegrees(ReadNumber(hDialog, IDC_TEXT_MARK_ANGLE));
    pShown->WMColor = IsColored(pSession) ? pSession->ulWatermarkNext
                                          : ColorOfDarkness(ReadNumber(hDialog, IDC_TEXT_MARK_DARKNESS));
    ReadMarkPosition(hDialog, pSession, pShown);
}

/* A text of blanks alone prints nothing. */
int HasText(HWND hDialog)
{
    WCHAR wcText[STRING_CHARS];
    ReadMarkText(hDialog, IDC_TEXT_MARK_TEXT, wcText, STRING_CHARS);
    return wcText[0] != 0;
}

void FillFaces(HWND hDialog, const UiSession* pSession, const WCHAR* wcFace)
{
    const FontFamilyList& families = pSession->rFontFamilies;
    const WCHAR* wcName = families.pNames.get();
    HWND hFaces = GetDlgItem(hDialog, IDC_TEXT_MARK_FONT);
    for (i16 i = 0; hFaces && wcName && i < families.sCount; i++, wcName += WideLength(wcName) + 1) {
        if (families.pKinds.get()[i] == FAMILY_TRUETYPE) {
            SendMessageW(hFaces, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wcName));
        }
    }
    LRESULT nRow = hFaces ? SendMessageW(hFaces, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                         reinterpret_cast<LPARAM>(wcFace))
                          : CB_ERR;
    if (nRow >= 0) {
        SendMessageW(hFaces, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
    }
}

void InitTextMark(HWND hDialog, UiSession* pSession)
{
    WatermarkEntry* pRow = EditedMark(pSession);
    if (!pRow) {
        return;
    }
    int bColored = IsColored(pSession);
    if (IsNewMark(pSession)) {
        pRow->WMColor = bColored ? FIRST_COLOR : MARK_GREY;
    }
    pSession->ulWatermarkNext = pRow->WMColor;
    InitMarkEditor(hDialog, pSession, *pRow);
    SetLabel(hDialog, pSession, IDC_TEXT_MARK_COLOR_CHOOSE, IDS_CHOOSE);
    OfferControls(hDialog, anColor, bColored);
    OfferControls(hDialog, anDarkness, !bColored);
    FillFaces(hDialog, pSession, pRow->WMFace);
    for (int nControl : {IDC_TEXT_MARK_SIZE, IDC_TEXT_MARK_ANGLE, IDC_TEXT_MARK_DARKNESS}) {
        SendDlgItemMessageW(hDialog, nControl, EM_LIMITTEXT, NUMBER_LIMIT, 0);
        SubclassNumberEdit(hDialog, pSession, nControl);
    }
    SendDlgItemMessageW(hDialog, IDC_TEXT_MARK_TEXT, EM_LIMITTEXT, TEXT_LIMIT, 0);
    SetDlgItemTextW(hDialog, IDC_TEXT_MARK_TEXT, pRow->WMString);
    ShowReading(hDialog, pRow->WMRTL != 0);
    ShowNumber(hDialog, IDC_TEXT_MARK_SIZE, pRow->WMSize);
    SetChecked(hDialog, IDC_TEXT_MARK_BOLD, pRow->WMBold != 0);
    SetChecked(hDialog, IDC_TEXT_MARK_ITALIC, pRow->WMItalic != 0);
    SetChecked(hDialog, IDC_TEXT_MARK_OUTLINE, pRow->WMOutline != 0);
    ShowNumber(hDialog, IDC_TEXT_MARK_ANGLE, pRow->WMAngle / TENTHS);
    ShowNumber(hDialog, IDC_TEXT_MARK_DARKNESS, DarknessOfColor(pRow->WMColor));
    OfferMarkConfirm(hDialog, pSession, HasText(hDialog));
}

void PaintTextMark(HWND hDialog, UiSession* pSession)
{
    PAINTSTRUCT paint = {};
    RECT swatch;
    HDC hdc = BeginPaint(hDialog, &paint);
    if (hdc && EditedMark(pSession)) {
        if (IsColored(pSession) && ControlRect(hDialog, IDC_TEXT_MARK_COLOR_FRAME, &swatch)) {
            FillColorSwatch(pSession->rPreview, hdc, swatch, pSession->ulWatermarkNext);
        }
        WatermarkEntry shown;
        ReadTextMark(hDialog, pSession, &shown);
        PreviewRequest request = MarkRequest(pSession);
        request.pWatermark = &shown;
        DrawMark(hDialog, hdc, pSession, &request);
    }
    EndPaint(hDialog, &paint);
}

void ChooseMarkColor(HWND hDialog, UiSession* pSession)
{
    COLORREF color = pSession->ulWatermarkNext;
    if (PickColor(pSession, hDialog, &color)) {
        pSession->ulWatermarkNext = color;
        RepaintControl(hDialog, IDC_TEXT_MARK_COLOR_FRAME);
        RepaintControl(hDialog, IDC_MARK_PREVIEW);
    }
}

void MouseOverTextMark(HWND hDialog, UiSession* pSession, UINT uMessage, LPARAM lPoint)
{
    if (!IsColored(pSession)) {
        return;
    }
    int bOver = IsOverControl(hDialog, IDC_TEXT_MARK_COLOR_FRAME, lPoint);
    if (uMessage == WM_MOUSEMOVE) {
        ShowHandCursor(pSession, bOver);
    } else if (uMessage == WM_LBUTTONDOWN && bOver) {
        SetCursor(pSession->hCursorHand);
    } else if (uMessage == WM_LBUTTONUP && bOver) {
        ChooseMarkColor(hDialog, pSession);
    }
}

/* Builds the text for a trial. 1 when it can be built, or the user takes it as it comes. */
int PassesTrial(HWND hDialog, UiSession* pSession, const WatermarkEntry& shown)
{
    TrialBuild pfnTrial = CurrentMarkEdit(pSession)->pfnTrial;
    if (PrintsMarkItself(pSession->pXpi.get()) || !pfnTrial) {
        return 1;
    }
    WatermarkEntry trial = shown;
    trial.WMColor = MARK_GREY;
    int nResult = pfnTrial(pSession, hDialog, &trial);
    if (nResult != OUTLINE_MISSING || !shown.WMOutline) {
        return 1;
    }
    int bStays = ShowNotice(pSession, hDialog, NOTICE_OUTLINE) != 0;
    SetFocus(GetDlgItem(hDialog, IDC_TEXT_MARK_SIZE));
    return !bStays;
}

void ConfirmTextMark(HWND hDialog, UiSession* pSession)
{
    WatermarkEntry shown;
    if (!EditedMark(pSession) || !HasText(hDialog)) {
        return; /* the button cannot be pressed, but other programs send messages, too */
    }
    ReadTextMark(hDialog, pSession, &shown);
    if (!PassesTrial(hDialog, pSession, shown)) {
        return;
    }
    if (WatermarkEntry* pRow = EditedMark(pSession)) {
        StoreMark(shown, pSession->pXpi.get(), pRow);
        EndDialog(hDialog, DIALOG_OK);
    }
}

void TextMarkClicked(HWND hDialog, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_TEXT_MARK_OUTLINE:
        if (IsChecked(hDialog, nControl)) {
            ShowNumber(hDialog, IDC_TEXT_MARK_DARKNESS, DARKNESS_MAX);
        }
        [[fallthrough]];
    case IDC_TEXT_MARK_BOLD:
    case IDC_TEXT_MARK_ITALIC: RepaintControl(hDialog, IDC_MARK_PREVIEW); break;
    case IDC_TEXT_MARK_COLOR_CHOOSE: ChooseMarkColor(hDialog, pSession); break;
    case IDC_MARK_ADD:
    case IDC_MARK_CHANGE:
        if (nControl == MarkConfirmButton(pSession)) {
            ConfirmTextMark(hDialog, pSession);
        }
        break;
    default: break;
    }
}

void TextMarkTyped(HWND hDialog, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_TEXT_MARK_TEXT: OfferMarkConfirm(hDialog, pSession, HasText(hDialog)); break;
    case IDC_TEXT_MARK_SIZE: ClampNumber(hDialog, nControl); break;
    case IDC_TEXT_MARK_ANGLE: CapNumber(hDialog, nControl, DEGREES_MAX); break;
    case IDC_TEXT_MARK_DARKNESS:
        CapNumber(hDialog, nControl, DARKNESS_MAX);
        if (ReadNumber(hDialog, nControl) < DARKNESS_MIN) {
            ShowNumber(hDialog, nControl, DARKNESS_MIN);
        }
        break;
    default: return;
    }
    RepaintControl(hDialog, IDC_MARK_PREVIEW);
}

void TextMarkCommand(HWND hDialog, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    if (MarkEditorCommand(hDialog, pSession, nControl, nCode)) {
        return;
    }
    switch (nCode) {
    case BN_CLICKED: TextMarkClicked(hDialog, pSession, nControl); break;
    case EN_CHANGE: TextMarkTyped(hDialog, pSession, nControl); break;
    case CBN_SELCHANGE:
        if (nControl == IDC_TEXT_MARK_FONT) {
            RepaintControl(hDialog, IDC_MARK_PREVIEW);
        }
        break;
    case EN_ALIGN_LTR_EC:
    case EN_ALIGN_RTL_EC: RepaintControl(hDialog, IDC_MARK_PREVIEW); break;
    default: break;
    }
}

constexpr DialogRoutines textMarkEditor = {.nSlot = -1,
                                           .pfnInit = InitTextMark,
                                           .pfnCommand = TextMarkCommand,
                                           .pfnPaint = PaintTextMark,
                                           .pfnMouse = MouseOverTextMark};

} // namespace

int EditTextMark(HWND hOwner, UiSession* pSession, i32 nRow, TrialBuild pfnTrial)
{
    MarkEdit edit = {nRow, pfnTrial};
    void* pBefore = std::exchange(pSession->pDialogData, &edit);
    INT_PTR nEnd = EditedMark(pSession)
                       ? RunDialog<textMarkEditor>(pSession, hOwner, IDD_TEXT_MARK, static_cast<i16>(nRow))
                       : DIALOG_CANCEL;
    pSession->pDialogData = pBefore;
    return nEnd == DIALOG_OK;
}
