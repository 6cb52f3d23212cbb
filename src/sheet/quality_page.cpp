/* The Quality page's window. Below the first group lies one of several alternatives; what only image models have is
   hidden on all others. */
#include "sheet/quality_page.h"

#include <utility>

#include "base/arithmetic.h"
#include "base/file_name.h"
#include "description/control_ids.h"
#include "description/printer_store.h"
#include "description/string_ids.h"
#include "document/color_choices.h"
#include "sheet/color_files_dialog.h"
#include "sheet/color_options_dialog.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"
#include "sheet/model_texts.h"
#include "sheet/page_frame.h"
#include "sheet/preview_panel.h"
#include "sheet/quality_choice.h"

namespace {

constexpr int TONE_DIGITS = 4; /* with the sign */

constexpr int anColors[] = {IDC_QUALITY_COLOR, IDC_QUALITY_MONOCHROME, 0};
constexpr int anAdjustments[] = {IDC_QUALITY_ADJUSTMENT_ON, IDC_QUALITY_ADJUSTMENT_OFF, 0};
constexpr int anTones[] = {IDC_QUALITY_CONTRAST, IDC_QUALITY_BRIGHTNESS};

/* The alternatives. */
constexpr int anCorrection[] = {IDC_QUALITY_CORRECTION, 0};
constexpr int anLabel[] = {IDC_QUALITY_CORRECTION_LABEL, 0};
constexpr int anLabelAlone[] = {IDC_QUALITY_CORRECTION_LABEL_ALONE, 0};
constexpr int anOptions[] = {IDC_QUALITY_OPTIONS, 0};
constexpr int anIntent[] = {IDC_QUALITY_INTENT_LABEL, IDC_QUALITY_INTENT, 0};
constexpr int anTone[] = {IDC_QUALITY_TONE,
                          IDC_QUALITY_CONTRAST_LABEL,
                          IDC_QUALITY_CONTRAST,
                          IDC_QUALITY_CONTRAST_SPIN,
                          IDC_QUALITY_BRIGHTNESS_LABEL,
                          IDC_QUALITY_BRIGHTNESS,
                          IDC_QUALITY_BRIGHTNESS_SPIN,
                          0};

/* What image models have. */
constexpr int anImage[] = {IDC_QUALITY_ADJUSTMENT,     IDC_QUALITY_ADJUSTMENT_ON,
                           IDC_QUALITY_ADJUSTMENT_OFF, IDC_QUALITY_RESOLUTION_LABEL,
                           IDC_QUALITY_RESOLUTION,     IDC_QUALITY_BLACK_TEXT,
                           IDC_QUALITY_COLOR_FILES,    0};
constexpr int anScreening[] = {IDC_QUALITY_SCREENING_LABEL, IDC_QUALITY_SCREENING, 0};

constexpr ComboTableRow aIntents[] = {
    {1, IDS_INTENT_PERCEPTUAL, 0, 2},
    {2, IDS_INTENT_SATURATED, 0, 1},
    {4, IDS_INTENT_RELATIVE, 0, 3},
    {8, IDS_INTENT_ABSOLUTE, 0, 4},
    {},
};

int IsImageModel(const UiSession* pSession)
{
    return pSession->pXpi->usLanguage == KIND_IMAGE;
}

/* The row itself, for lists that show the rows of a table. */
Selection ReadRow(HWND hPage, int nControl)
{
    HWND hCombo = GetDlgItem(hPage, nControl);
    LRESULT nRow = hCombo ? SendMessageW(hCombo, CB_GETCURSEL, 0, 0) : -1;
    return {nRow >= 0, static_cast<i32>(nRow)};
}

/* Item data of the modes is their kind. A row that does not say its kind is none of the model's. */
Selection ReadMode(HWND hPage, const UiSession* pSession)
{
    Selection mode = ReadRow(hPage, IDC_QUALITY_CORRECTION);
    Selection kind = ReadCombo(hPage, IDC_QUALITY_CORRECTION);
    mode.bChosen =
        mode.bChosen && ColorModeKind(pSession->pXpi.get(), mode.lValue) == static_cast<u32>(kind.lValue);
    return mode;
}

Selection ReadTone(HWND hPage, int nControl)
{
    Selection tone;
    tone.lValue = LimitNumber(nControl, ReadNumber(hPage, nControl, &tone.bChosen));
    return tone;
}

/* All that the page's controls say, for the check, the apply and the preview alike. */
QualityChoice ReadQualityChoice(HWND hPage, const UiSession* pSession)
{
    QualityChoice choice = {};
    choice.bColor = IsChecked(hPage, IDC_QUALITY_COLOR);
    choice.mode = ReadMode(hPage, pSession);
    choice.intent = ReadCombo(hPage, IDC_QUALITY_INTENT);
    choice.bAdjustment = !IsChecked(hPage, IDC_QUALITY_ADJUSTMENT_OFF);
    choice.resolution = ReadRow(hPage, IDC_QUALITY_RESOLUTION);
    choice.screening = ReadRow(hPage, IDC_QUALITY_SCREENING);
    choice.bBlackText = IsChecked(hPage, IDC_QUALITY_BLACK_TEXT);
    choice.contrast = ReadTone(hPage, IDC_QUALITY_CONTRAST);
    choice.brightness = ReadTone(hPage, IDC_QUALITY_BRIGHTNESS);
    return choice;
}

void ShowColorGroup(HWND hPage, UiSession* pSession)
{
    Selection kind = ReadCombo(hPage, IDC_QUALITY_CORRECTION);
    const ColorGroup group =
        DescribeColorGroup(pSession->pXpi.get(), pSession->ulColorModeMask, pSession->pRecord->dmColor,
                           static_cast<u32>(ValueOr(kind, 0)));
    ShowControls(hPage, anTone, group.bTone);
    ShowControls(hPage, anLabel, group.bCorrection && group.bEditable);
    ShowControls(hPage, anLabelAlone, group.bCorrection && !group.bEditable);
    ShowControls(hPage, anCorrection, group.bCorrection);
    ShowControls(hPage, anOptions, group.bOptions);
    EnableControls(hPage, anOptions, group.bOptionsOffered);
    ShowControls(hPage, anIntent, group.bIntent);
}

/* Fills a list with the rows of a table and selects one of them; a number that is no row's selects none. */
void FillRows(HWND hPage, UiSession* pSession, int nControl, ModelRowSource pfnRow, i32 nRow)
{
    SendDlgItemMessageW(hPage, nControl, CB_RESETCONTENT, 0, 0);
    AppendModelTexts(hPage, pSession, nControl, pfnRow);
    SendDlgItemMessageW(hPage, nControl, CB_SETCURSEL, static_cast<WPARAM>(nRow), 0);
}

ModelRowKind ModeRowOf(const UiSession* pSession, i32 nRow, ModelTextRow* pRow)
{
    const ColorModeRow* pMode = Row(pSession->pXpi.get(), pSession->pXpi->pColorModes, nRow);
    i16 sNameId = 0;
    switch (pMode->ulKind) {
    case MODE_PRINTER: sNameId = -IDS_MODE_PRINTER; break;
    case MODE_SYSTEM: sNameId = -IDS_MODE_SYSTEM; break;
    case MODE_OWN: sNameId = -IDS_MODE_OWN; break;
    case MODE_FIXED: sNameId = pMode->sNameId ? pMode->sNameId : -IDS_MODE_FIXED; break;
    default: break;
    }
    *pRow = {sNameId, LowLong(pMode->ulKind)};
    return pMode->ulKind ? ROW_LISTED : ROW_END;
}

ModelRowKind ResolutionRowOf(const UiSession* pSession, i32 nRow, ModelTextRow* pRow)
{
    const ResolutionRow* pResolution = Row(pSession->pXpi.get(), pSession->pXpi->pResolutions, nRow);
    *pRow = {pResolution->sNameId, nRow};
    return pResolution->ulUsed ? ROW_LISTED : ROW_END;
}

ModelRowKind ScreenRowOf(const UiSession* pSession, i32 nRow, ModelTextRow* pRow)
{
    const ScreenRow* pScreen = Row(pSession->pXpi.get(), pSession->pXpi->pScreens, nRow);
    *pRow = {LowWord(pScreen->usNameId), nRow};
    return pScreen->usNameId ? ROW_LISTED : ROW_END;
}

i16 RecordTone(const UiSession* pSession, int nControl)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return nControl == IDC_QUALITY_CONTRAST ? part.sContrast : part.sBrightness;
}

void ShowRecordTone(HWND hPage, const UiSession* pSession, int nControl)
{
    ShowNumber(hPage, nControl, LimitNumber(nControl, RecordTone(pSession, nControl)));
}

void InitCorrection(HWND hPage, UiSession* pSession)
{
    const DriverDevmode& record = *pSession->pRecord;
    SetLabel(hPage, pSession, IDC_QUALITY_CORRECTION_LABEL_ALONE, IDC_QUALITY_CORRECTION_LABEL);
    FillRows(hPage, pSession, IDC_QUALITY_CORRECTION, ModeRowOf, record.rPrivate.sColorCorrection);
    if (u32 ulMask = pSession->pXpi->ulIntentMask) {
        FillComboFromTable(hPage, pSession, IDC_QUALITY_INTENT, aIntents, ulMask);
        SelectComboValue(hPage, IDC_QUALITY_INTENT, LowLong(record.dmICMIntent));
    }
}

void InitImage(HWND hPage, UiSession* pSession)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    const XpiModel* pModel = pSession->pXpi.get();
    ShowControls(hPage, anImage, IsImageModel(pSession));
    ShowControls(hPage, anScreening, IsImageModel(pSession) && pModel->pScreens);
    CheckRadio(hPage, anAdjustments,
               part.sColorRadioSaved ? IDC_QUALITY_ADJUSTMENT_ON : IDC_QUALITY_ADJUSTMENT_OFF);
    if (!IsImageModel(pSession)) {
        return;
    }
    FillRows(hPage, pSession, IDC_QUALITY_RESOLUTION, ResolutionRowOf, part.sResolution);
    FillRows(hPage, pSession, IDC_QUALITY_SCREENING, ScreenRowOf, part.sScreening);
    SetChecked(hPage, IDC_QUALITY_BLACK_TEXT, part.sBlackText);
    for (int nControl : anTones) {
        SendDlgItemMessageW(hPage, nControl, EM_LIMITTEXT, TONE_DIGITS, 0);
        SubclassNumberEdit(hPage, pSession, nControl);
        ShowRecordTone(hPage, pSession, nControl);
    }
}

void InitQuality(HWND hPage, UiSession* pSession)
{
    CheckRadio(hPage, anColors,
               pSession->pRecord->dmColor == COLOR_FULL ? IDC_QUALITY_COLOR : IDC_QUALITY_MONOCHROME);
    InitCorrection(hPage, pSession);
    InitImage(hPage, pSession);
    ShowColorGroup(hPage, pSession);
    /* A list that is not seen may not take keys. */
    HWND hCorrection = GetDlgItem(hPage, IDC_QUALITY_CORRECTION);
    if (hCorrection && (GetWindowLongPtrW(hCorrection, GWL_STYLE) & static_cast<LONG_PTR>(WS_VISIBLE))) {
        SetFocus(hCorrection);
    }
}

int AreFilesOther(const UiSession* pSession)
{
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return (part.sProfile == PROFILE_NAMED &&
            !SameFileName(pSession->wcProfileFile, pSession->wcProfileFileSnapshot)) ||
           (part.sScreen == SCREEN_NAMED &&
            !SameFileName(pSession->wcScreenFile, pSession->wcScreenFileSnapshot));
}

int CheckQuality(HWND hPage, UiSession* pSession)
{
    return QualityDiffers(ReadQualityChoice(hPage, pSession), pSession->pXpi.get(), *pSession->pRecord,
                          pSession->rSnapshot) ||
           (IsImageModel(pSession) && AreFilesOther(pSession));
}

int ApplyQuality(HWND hPage, UiSession* pSession)
{
    StoreQuality(ReadQualityChoice(hPage, pSession), pSession->pXpi.get(), pSession->pWatermarks.get(),
                 pSession->sWatermarkCount, pSession->pRecord);
    if (IsImageModel(pSession)) {
        PrinterCall call(pSession->hPrinter);
        SetScreenName(call, pSession->wcScreenFile);
        SetProfileName(call, pSession->wcProfileFile);
    }
    return 1;
}

void PreviewQuality(HWND hPage, const UiSession* pSession, PreviewChoice* pShown)
{
    const QualityChoice choice = ReadQualityChoice(hPage, pSession);
    pShown->bColor = IsPreviewColor(*pSession->pRecord, choice.bColor);
    if (IsImageModel(pSession) && choice.resolution.bChosen) {
        u16 usResolution = ResolutionOfRow(pSession->pXpi.get(), choice.resolution.lValue);
        pShown->usResolution = usResolution ? usResolution : pShown->usResolution;
    }
}

/* 1 while the user is about to type a number: nothing yet, or a sign. An edit control that tells that the focus leaves it
   has it no more. */
int IsNumberBegun(HWND hPage, int nControl)
{
    WCHAR wcText[TONE_DIGITS + 1] = {};
    GetDlgItemTextW(hPage, nControl, wcText, TONE_DIGITS + 1);
    return GetFocus() == GetDlgItem(hPage, nControl) &&
           (!wcText[0] || ((wcText[0] == '-' || wcText[0] == '+') && !wcText[1]));
}

/* Brings the number within its limits; what is no number gives way to the record's value, unless it is begun. What is
   written here is not looked at again. */
void SettleTone(HWND hPage, UiSession* pSession, int nControl)
{
    int bNumber;
    u32 bFilling = std::exchange(pSession->bFilling, 1u);
    ReadNumber(hPage, nControl, &bNumber);
    if (bNumber) {
        ClampNumber(hPage, nControl);
    } else if (!IsNumberBegun(hPage, nControl)) {
        ShowRecordTone(hPage, pSession, nControl);
    }
    pSession->bFilling = bFilling;
}

void ButtonClicked(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_QUALITY_COLOR:
    case IDC_QUALITY_MONOCHROME: RepaintControl(hPage, IDC_PREVIEW); break;
    case IDC_QUALITY_ADJUSTMENT_ON: pSession->pRecord->rPrivate.sColorRadio = 1; break;
    case IDC_QUALITY_ADJUSTMENT_OFF: pSession->pRecord->rPrivate.sColorRadio = 0; break;
    case IDC_QUALITY_OPTIONS: {
        Selection mode = ReadMode(hPage, pSession);
        if (mode.bChosen) {
            EditColorOptions(hPage, pSession, mode.lValue);
        }
        break;
    }
    case IDC_QUALITY_COLOR_FILES:
        if (IsImageModel(pSession)) {
            EditColorFiles(hPage, pSession);
        }
        break;
    case IDC_UNIT: FlipPreviewUnit(hPage, pSession); break;
    default: break;
    }
}

/* The logo leads to the colour files, too. The dialog may outlive the page. */
void MouseOnQuality(HWND hPage, UiSession* pSession, UINT uMessage, LPARAM lPoint)
{
    if (uMessage != WM_RBUTTONDBLCLK || !IsImageModel(pSession) || !IsOverControl(hPage, IDC_LOGO, lPoint)) {
        return;
    }
    EditColorFiles(hPage, pSession);
    if (SessionOf(hPage)) {
        TrackChange(hPage, pSession, SLOT_QUALITY, CheckQuality(hPage, pSession));
    }
}

} // namespace

constinit const PageRoutines qualityPage = {
    .slot = SLOT_QUALITY,
    .nHelpKey = 400,
    .pfnInit = InitQuality,
    .pfnDiffers = CheckQuality,
    .pfnApply = ApplyQuality,
    .pfnApplied = ShowColorGroup, /* by the colour that the record has now */
    .pfnPaint = PaintPreviewPage,
    .pfnMouse = MouseOnQuality,
    .pfnPreview = PreviewQuality,
};

void QualityCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam), nCode = HIWORD(wParam);
    int bTone = nControl == IDC_QUALITY_CONTRAST || nControl == IDC_QUALITY_BRIGHTNESS;
    if (bTone && (nCode == EN_CHANGE || nCode == EN_KILLFOCUS)) {
        SettleTone(hPage, pSession, nControl);
    } else if (nCode == CBN_SELCHANGE && nControl == IDC_QUALITY_CORRECTION) {
        ShowColorGroup(hPage, pSession);
    } else if (nCode == CBN_SELCHANGE && nControl == IDC_QUALITY_RESOLUTION) {
        RepaintControl(hPage, IDC_PREVIEW);
    } else if (nCode == BN_CLICKED) {
        ButtonClicked(hPage, pSession, nControl);
    }
}
