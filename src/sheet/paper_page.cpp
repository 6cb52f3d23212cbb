/* The Paper page's window. The zoom and the layout exclude each other: either page holds the other's controls. */
#include "sheet/paper_page.h"

#include <algorithm>

#include "description/control_ids.h"
#include "description/paper.h"
#include "description/string_ids.h"
#include "sheet/dialog_services.h"
#include "sheet/duplex_picture.h"
#include "sheet/edit_keys.h"
#include "sheet/medical_mode.h"
#include "sheet/model_texts.h"
#include "sheet/paper_choice.h"
#include "sheet/paper_lists.h"
#include "sheet/preview_panel.h"
#include "sheet/saved_papers_dialog.h"
#include "sheet/zoom_and_layout.h"

namespace {

constexpr int COPIES_DIGITS = 5, ZOOM_DIGITS = 3;
constexpr i32 NO_TARGET_ROW = -1;

constexpr int anMedia[] = {IDC_PAPER_MEDIA_LABEL, IDC_PAPER_MEDIA, 0};
constexpr int anOutput[] = {IDC_PAPER_OUTPUT_LABEL, IDC_PAPER_OUTPUT, 0};
constexpr int anSource[] = {IDC_PAPER_SOURCE_LABEL, IDC_PAPER_SOURCE, 0};
constexpr int anImageOption[] = {IDC_PAPER_IMAGE_OPTION, 0};
constexpr int anTarget[] = {IDC_PAPER_TARGET_LABEL, IDC_PAPER_TARGET, 0};
constexpr int anTargetChecks[] = {IDC_PAPER_FIT_TARGET, IDC_PAPER_CENTRE_TARGET, 0};
constexpr int anZoomIcon[] = {IDC_PAPER_ZOOM_ICON, 0};
constexpr int anLayoutIcon[] = {IDC_PAPER_LAYOUT_ICON, 0};

constexpr ComboTableRow aMedicalModes[] = {
    {ALL_ROWS, IDS_MEDICAL_OFF, 0, MEDICAL_OFF},
    {ALL_ROWS, IDS_MEDICAL_LANDSCAPE, 0, MEDICAL_A5_LANDSCAPE},
    {ALL_ROWS, IDS_MEDICAL_PORTRAIT, 0, MEDICAL_A5_PORTRAIT},
    {},
};

/* All that the page's controls say, for the check, the apply and the preview alike. */
PaperChoice ReadPaperChoice(HWND hPage)
{
    PaperChoice choice = {};
    choice.paper = ReadCombo(hPage, IDC_PAPER_SIZE);
    choice.media = ReadCombo(hPage, IDC_PAPER_MEDIA);
    choice.output = ReadCombo(hPage, IDC_PAPER_OUTPUT);
    choice.lCopies = ReadNumber(hPage, IDC_PAPER_COPIES);
    choice.lZoom = ReadNumber(hPage, IDC_PAPER_ZOOM);
    choice.bCollate = IsChecked(hPage, IDC_PAPER_COLLATE);
    choice.bReverse = IsChecked(hPage, IDC_PAPER_REVERSE);
    choice.bCentre = IsChecked(hPage, IDC_PAPER_CENTRE);
    choice.bImageOption = IsChecked(hPage, IDC_PAPER_IMAGE_OPTION);
    return choice;
}

ModelRowKind MediaRowOf(const UiSession* pSession, i32 nRow, ModelTextRow* pRow)
{
    const MediaRow* pMedia = Row(pSession->pXpi.get(), pSession->pXpi->pMediaTypes, nRow);
    *pRow = {pMedia->sNameId, nRow + 1};
    return pMedia->ulMask ? ROW_LISTED : ROW_END;
}

void FillMedia(HWND hPage, UiSession* pSession)
{
    SendDlgItemMessageW(hPage, IDC_PAPER_MEDIA, CB_RESETCONTENT, 0, 0);
    if (!pSession->pXpi->pMediaTypes) {
        OfferControls(hPage, anMedia, 0);
        return;
    }
    i32 nListed = AppendModelTexts(hPage, pSession, IDC_PAPER_MEDIA, MediaRowOf);
    ShowControls(hPage, anMedia, 1);
    EnableControls(hPage, anMedia, nListed > 0);
}

ModelRowKind OutputRowOf(const UiSession* pSession, i32 nRow, ModelTextRow* pRow)
{
    const OutputBinRow* pBin = Row(pSession->pXpi.get(), pSession->pXpi->pOutputBins, nRow);
    *pRow = {pBin->sNameId, pBin->usCmdId};
    return !pBin->ulMask                                      ? ROW_END
           : (pBin->ulMask & pSession->rDeviceInfo.ulOutputs) ? ROW_LISTED
                                                              : ROW_LEFT_OUT;
}

/* One bin leaves nothing to choose. */
void FillOutput(HWND hPage, UiSession* pSession)
{
    SendDlgItemMessageW(hPage, IDC_PAPER_OUTPUT, CB_RESETCONTENT, 0, 0);
    if (!pSession->pXpi->pOutputBins) {
        OfferControls(hPage, anOutput, 0);
        return;
    }
    i32 nListed = AppendModelTexts(hPage, pSession, IDC_PAPER_OUTPUT, OutputRowOf);
    ShowControls(hPage, anOutput, 1);
    EnableControls(hPage, anOutput, nListed >= 2);
}

void MoveZoomBar(HWND hPage, i32 lZoom)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_POS;
    info.nMin = ZOOM_MIN;
    info.nMax = ZOOM_MAX;
    info.nPos = std::clamp(lZoom, ZOOM_MIN, ZOOM_MAX);
    if (HWND hBar = GetDlgItem(hPage, IDC_PAPER_ZOOM_BAR)) {
        SetScrollInfo(hBar, SB_CTL, &info, 1);
    }
}

/* The scaling to a target paper is blocked by a zoom, or else by several pages on a sheet. */
void ShowTargetState(HWND hPage, const UiSession* pSession, i32 lZoom)
{
    if (lZoom != ZOOM_NONE) {
        EnableControls(hPage, anTarget, 0);
        EnableControls(hPage, anTargetChecks, 0);
        OfferControls(hPage, anZoomIcon, 1);
        return;
    }
    EnableControls(hPage, anTarget, 1);
    Selection target = ReadCombo(hPage, IDC_PAPER_TARGET);
    int bTarget = ValueOr(target, NO_TARGET_ROW) != NO_TARGET_ROW;
    int bBlocked = bTarget && NupActive(pSession);
    if (bBlocked) {
        SetChecked(hPage, IDC_PAPER_FIT_TARGET, 1);
        SetChecked(hPage, IDC_PAPER_CENTRE_TARGET, 1);
    }
    EnableControls(hPage, anTargetChecks, bTarget && !bBlocked);
    OfferControls(hPage, anLayoutIcon, bBlocked);
    OfferControls(hPage, anZoomIcon, 0);
}

void InitScaling(HWND hPage, UiSession* pSession)
{
    const ScalingState state =
        DescribeScaling(pSession->pRecord->rPrivate, NupActive(pSession), ScalingAllowed(pSession));
    SelectComboValue(hPage, IDC_PAPER_TARGET, state.lTarget);
    ShowNumber(hPage, IDC_PAPER_ZOOM, state.lZoom);
    ShowTargetState(hPage, pSession, state.lZoom);
    SetChecked(hPage, IDC_PAPER_FIT_TARGET, state.bFit);
    SetChecked(hPage, IDC_PAPER_CENTRE_TARGET, state.bCentreTarget);
    if (!state.bTargetSet) {
        EnableControls(hPage, anTargetChecks, 0);
    }
    OfferControls(hPage, anLayoutIcon, state.bBlockedByLayout);
    SetChecked(hPage, IDC_PAPER_CENTRE, state.bCentre);
    EnableScalingGroup(pSession, state.bZoomOffered);
    MoveZoomBar(hPage, state.lZoom);
}

void InitNumbers(HWND hPage, UiSession* pSession)
{
    SendDlgItemMessageW(hPage, IDC_PAPER_COPIES, EM_LIMITTEXT, COPIES_DIGITS, 0);
    SendDlgItemMessageW(hPage, IDC_PAPER_ZOOM, EM_LIMITTEXT, ZOOM_DIGITS, 0);
    SubclassNumberEdit(hPage, pSession, IDC_PAPER_COPIES);
    SubclassNumberEdit(hPage, pSession, IDC_PAPER_ZOOM);
    for (int nIcon : {IDC_PAPER_ZOOM_ICON, IDC_PAPER_LAYOUT_ICON}) {
        SendDlgItemMessageW(hPage, nIcon, STM_SETICON, reinterpret_cast<WPARAM>(pSession->hIconInfo), 0);
    }
}

void InitPaper(HWND hPage, UiSession* pSession)
{
    const DriverDevmode& record = *pSession->pRecord;
    const XpiModel* pModel = pSession->pXpi.get();
    FillComboFromTable(hPage, pSession, IDC_PAPER_MEDICAL, aMedicalModes, ALL_ROWS);
    SelectComboValue(hPage, IDC_PAPER_MEDICAL, static_cast<i32>(ReadMedicalMode()));
    pSession->bPaperHasTarget = GetCompanionPaper(pModel, record.dmPaperSize) > 0;
    FillPaperCombo(hPage, pSession);
    EnableControl(hPage, IDC_PAPER_SAVED_SIZES,
                  pModel->sMaxCustomWidth >= 1 && pModel->sMaxCustomLength >= 1);
    InitNumbers(hPage, pSession);
    ShowControls(hPage, anImageOption, HasImageOption(pModel));
    SetChecked(hPage, IDC_PAPER_IMAGE_OPTION,
               (record.rPrivate.ulLanguageFeatures & FEATURE_IMAGE_OPTION) != 0);
    InitScaling(hPage, pSession);
    OfferControls(hPage, anSource, 0);
    FillMedia(hPage, pSession);
    FillOutput(hPage, pSession);
    SelectComboValue(hPage, IDC_PAPER_SIZE, record.dmPaperSize);
    ShowNumber(hPage, IDC_PAPER_COPIES, record.dmCopies);
    SetChecked(hPage, IDC_PAPER_COLLATE, record.dmCollate);
    SelectComboValue(hPage, IDC_PAPER_MEDIA, ShownMedia(record));
    SetChecked(hPage, IDC_PAPER_REVERSE, record.rPrivate.sReverseOrder);
    SelectComboValue(hPage, IDC_PAPER_OUTPUT, record.rPrivate.sOutputPJLsid);
}

int CheckPaper(HWND hPage, UiSession* pSession)
{
    return PaperDiffers(ReadPaperChoice(hPage), pSession->pXpi.get(), *pSession->pRecord,
                        pSession->rSnapshot);
}

void StoreMedicalMode(HWND hPage, UiSession*)
{
    Selection mode = ReadCombo(hPage, IDC_PAPER_MEDICAL);
    if (mode.bChosen) {
        WriteMedicalMode(static_cast<u32>(mode.lValue));
    }
}

int ApplyPaper(HWND hPage, UiSession* pSession)
{
    DriverDevmode* pRecord = pSession->pRecord;
    StorePaper(ReadPaperChoice(hPage), pSession->pXpi.get(), pRecord);
    PrinterCall call(pSession->hPrinter);
    i16 sWidth, sLength;
    GetPaperSize(call, pSession->pXpi.get(), pRecord->dmPaperSize, &sWidth, &sLength);
    pRecord->dmPaperWidth = sWidth;
    pRecord->dmPaperLength = sLength;
    /* What was typed beyond the limits is shown as it was stored. */
    ClampNumber(hPage, IDC_PAPER_COPIES);
    MoveZoomBar(hPage, ClampNumber(hPage, IDC_PAPER_ZOOM));
    return 1;
}

void PreviewPaperPage(HWND hPage, const UiSession*, PreviewChoice* pShown)
{
    const PaperChoice choice = ReadPaperChoice(hPage);
    if (!choice.paper.bChosen) {
        return;
    }
    pShown->usPaper = static_cast<u16>(choice.paper.lValue);
    pShown->lCopies = std::max(choice.lCopies, COPIES_MIN);
    pShown->bCollate = choice.bCollate;
    pShown->bReverse = choice.bReverse;
    pShown->lZoom = choice.lZoom;
    if (choice.lZoom != ZOOM_NONE) {
        pShown->bScaled = 1;
        pShown->bCentred = choice.bCentre;
    }
}

void OfferNoTarget(HWND hPage, const UiSession* pSession)
{
    HWND hList = GetDlgItem(hPage, IDC_PAPER_TARGET);
    if (!hList) {
        return;
    }
    if (SendMessageW(hList, CB_GETITEMDATA, 0, 0) != NO_TARGET_ROW ||
        SendMessageW(hList, CB_GETCOUNT, 0, 0) < 1) {
        WCHAR wcText[TEXT_CHARS];
        LoadUiText(pSession, IDS_NO_TARGET, wcText, TEXT_CHARS);
        if (SendMessageW(hList, CB_INSERTSTRING, 0, reinterpret_cast<LPARAM>(wcText)) == 0) {
            SendMessageW(hList, CB_SETITEMDATA, 0, NO_TARGET_ROW);
        }
    }
    SendMessageW(hList, CB_SETCURSEL, 0, 0);
}

void ChangePaper(HWND hPage, UiSession* pSession)
{
    i16 sPaper = static_cast<i16>(GetComboValue(hPage, IDC_PAPER_SIZE, nullptr));
    i16 sCompanion = GetCompanionPaper(pSession->pXpi.get(), sPaper);
    if (sCompanion > 0) {
        pSession->bPaperHasTarget = 1;
        SelectComboValue(hPage, IDC_PAPER_TARGET, sCompanion);
        ShowNumber(hPage, IDC_PAPER_ZOOM, ZOOM_NONE);
        SetChecked(hPage, IDC_PAPER_CENTRE_TARGET, 1);
        SetChecked(hPage, IDC_PAPER_FIT_TARGET, 1);
        pSession->bPageDirty[SLOT_PAPER] = 1;
    } else if (pSession->bPaperHasTarget) {
        pSession->bPaperHasTarget = 0;
        OfferNoTarget(hPage, pSession);
        pSession->bPageDirty[SLOT_PAPER] = 1;
    }
    RepaintControl(hPage, IDC_PREVIEW);
}

void ZoomEdited(HWND hPage, UiSession* pSession)
{
    i32 lZoom = ReadNumber(hPage, IDC_PAPER_ZOOM);
    if (lZoom > ZOOM_MAX) {
        lZoom = ZOOM_MAX;
        ShowNumber(hPage, IDC_PAPER_ZOOM, lZoom);
    }
    ShowTargetState(hPage, pSession, lZoom);
    MoveZoomBar(hPage, lZoom);
    if (!NupActive(pSession)) {
        RepaintControl(hPage, IDC_PREVIEW);
    }
}

void ZoomLeft(HWND hPage, UiSession* pSession)
{
    StoreZoom(ClampNumber(hPage, IDC_PAPER_ZOOM), pSession->pRecord);
    RepaintControl(hPage, IDC_PREVIEW);
}

/* The bar's thumb is asked for by the control: a message holds 16 bits of it. */
i32 ThumbPosition(HWND hPage, UINT uPart, i32 lOld)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = uPart;
    HWND hBar = GetDlgItem(hPage, IDC_PAPER_ZOOM_BAR);
    if (!hBar || !GetScrollInfo(hBar, SB_CTL, &info)) {
        return lOld;
    }
    return uPart == SIF_POS ? info.nPos : info.nTrackPos;
}

void ScrollZoom(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam)
{
    if (reinterpret_cast<HWND>(lParam) != GetDlgItem(hPage, IDC_PAPER_ZOOM_BAR)) {
        return;
    }
    i32 lOld = std::clamp(ReadNumber(hPage, IDC_PAPER_ZOOM), i32{0}, 2 * ZOOM_MAX);
    i32 lZoom = lOld;
    switch (LOWORD(wParam)) {
    case SB_LINELEFT: lZoom -= 1; break;
    case SB_LINERIGHT: lZoom += 1; break;
    case SB_PAGELEFT: lZoom -= 10; break;
    case SB_PAGERIGHT: lZoom += 10; break;
    case SB_THUMBPOSITION: lZoom = ThumbPosition(hPage, SIF_POS, lOld); break;
    case SB_THUMBTRACK: lZoom = ThumbPosition(hPage, SIF_TRACKPOS, lOld); break;
    case SB_LEFT: lZoom = ZOOM_NONE; break;
    case SB_RIGHT: lZoom = ZOOM_MAX; break;
    default: break;
    }
    lZoom = std::clamp(lZoom, ZOOM_MIN, ZOOM_MAX);
    ShowNumber(hPage, IDC_PAPER_ZOOM, lZoom);
    EnableLayoutGroup(pSession, lZoom == ZOOM_NONE);
}

void WarnOfMedicalMode(HWND hPage, const UiSession* pSession)
{
    if (GetComboValue(hPage, IDC_PAPER_MEDICAL, nullptr) == MEDICAL_OFF) {
        return;
    }
    WCHAR wcText[TEXT_CHARS], wcTitle[TEXT_CHARS];
    LoadUiText(pSession, IDS_MEDICAL_TEXT, wcText, TEXT_CHARS);
    LoadUiText(pSession, IDS_MEDICAL_TITLE, wcTitle, TEXT_CHARS);
    MessageBoxW(hPage, wcText, wcTitle, MB_ICONASTERISK);
}

void EditChanged(HWND hPage, UiSession* pSession, int nControl)
{
    if (nControl == IDC_PAPER_ZOOM) {
        ZoomEdited(hPage, pSession);
    } else if (nControl == IDC_PAPER_COPIES) {
        ClampNumber(hPage, nControl);
        UpdatePreview(hPage, nullptr, pSession, 0);
    }
}

void ButtonClicked(HWND hPage, UiSession* pSession, int nControl)
{
    switch (nControl) {
    case IDC_PAPER_SAVED_SIZES: ShowSavedPapers(hPage, pSession); break;
    case IDC_PAPER_COLLATE:
    case IDC_PAPER_REVERSE: UpdatePreview(hPage, nullptr, pSession, 0); break;
    case IDC_PAPER_IMAGE_OPTION: {
        PrivateDevmode* pPart = &pSession->pRecord->rPrivate;
        pPart->ulLanguageFeatures = (pPart->ulLanguageFeatures & ~FEATURE_IMAGE_OPTION) |
                                    (IsChecked(hPage, nControl) ? FEATURE_IMAGE_OPTION : 0);
        break;
    }
    case IDC_PAPER_CENTRE: RepaintControl(hPage, IDC_PREVIEW); break;
    case IDC_UNIT: FlipPreviewUnit(hPage, pSession); break;
    default: break;
    }
}

} // namespace

constinit const PageRoutines paperPage = {
    .slot = SLOT_PAPER,
    .nHelpKey = 100,
    .pfnInit = InitPaper,
    .pfnDiffers = CheckPaper,
    .pfnApply = ApplyPaper,
    .pfnApplyAlways = StoreMedicalMode,
    .pfnPaint = PaintDuplexPage,
    .pfnScroll = ScrollZoom,
    .pfnPreview = PreviewPaperPage,
};

void PaperCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    int nControl = LOWORD(wParam);
    switch (HIWORD(wParam)) {
    case BN_CLICKED: ButtonClicked(hPage, pSession, nControl); break;
    case EN_CHANGE: EditChanged(hPage, pSession, nControl); break;
    case EN_KILLFOCUS:
        if (nControl == IDC_PAPER_ZOOM) {
            ZoomLeft(hPage, pSession);
        }
        break;
    case CBN_SELCHANGE:
        if (nControl == IDC_PAPER_SIZE) {
            ChangePaper(hPage, pSession);
        } else if (nControl == IDC_PAPER_MEDICAL) {
            WarnOfMedicalMode(hPage, pSession);
        }
        break;
    default: break;
    }
}
