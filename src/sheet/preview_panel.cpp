#include "sheet/preview_panel.h"

#include "base/arithmetic.h"
#include "description/control_ids.h"
#include "preview/preview_tools.h"
#include "sheet/dialog_services.h"
#include "sheet/duplex_picture.h"
#include "sheet/edit_keys.h"

namespace {

/* Item data of the selected row, or what stands in for it. */
i32 ComboOr(HWND hPage, int nControl, i32 lOther)
{
    int bChosen;
    i32 lValue = GetComboValue(hPage, nControl, &bChosen);
    return bChosen ? lValue : lOther;
}

void ReadPaperPage(HWND hPage, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lPaper = GetComboValue(hPage, IDC_PAPER_SIZE, &bChosen);
    if (!bChosen) {
        return;
    }
    pChoice->usPaper = static_cast<u16>(LowWord(lPaper));
    i32 lCopies = ReadNumber(hPage, IDC_PAPER_COPIES);
    pChoice->lCopies = lCopies < 1 ? 1 : lCopies;
    pChoice->bCollate = IsChecked(hPage, IDC_PAPER_COLLATE);
    pChoice->bReverse = IsChecked(hPage, IDC_PAPER_REVERSE);
    pChoice->lZoom = ReadNumber(hPage, IDC_PAPER_ZOOM);
    if (pChoice->lZoom != 100) {
        pChoice->bScaled = 1;
        pChoice->bCentred = IsChecked(hPage, IDC_PAPER_CENTRE);
    }
}

void ReadLayoutType(HWND hPage, i32 lType, PreviewChoice* pChoice)
{
    pChoice->bBooklet = lType == LAYOUT_BOOKLET;
    pChoice->sPosterSize = 0;
    switch (lType) {
    case LAYOUT_POSTER:
        pChoice->sLayout = 1;
        pChoice->sPageOrder = 0;
        pChoice->sPosterSize = LowWord(ComboOr(hPage, IDC_LAYOUT_POSTER, 0));
        break;
    case LAYOUT_BOOKLET:
        pChoice->sLayout = LAYOUT_BOOKLET;
        pChoice->sPageOrder = static_cast<i16>(IsChecked(hPage, IDC_LAYOUT_BIND_RIGHT));
        break;
    default:
        pChoice->sLayout = LowWord(ComboOr(hPage, IDC_LAYOUT_PAGES, 1));
        pChoice->sPageOrder = LowWord(ComboOr(hPage, IDC_LAYOUT_ORDER, 0));
        break;
    }
}

void ReadLayoutPage(HWND hPage, const XpiModel* pModel, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lType = GetComboValue(hPage, IDC_LAYOUT_TYPE, &bChosen);
    if (!bChosen) {
        return;
    }
    ReadLayoutType(hPage, lType, pChoice);
    pChoice->usDuplex = !HasDuplexOption(pModel)                  ? 1
                        : IsChecked(hPage, IDC_LAYOUT_LONG_EDGE)  ? 2
                        : IsChecked(hPage, IDC_LAYOUT_SHORT_EDGE) ? 3
                                                                  : 1;
    pChoice->usOrientation = static_cast<u16>(IsChecked(hPage, IDC_LAYOUT_PORTRAIT));
    pChoice->bRotate180 = IsChecked(hPage, IDC_LAYOUT_ROTATE);
    pChoice->bBorders = IsChecked(hPage, IDC_LAYOUT_BORDERS);
}

void ReadWatermarkPage(HWND hPage, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lRow = GetListValue(hPage, IDC_WATERMARKS_LIST, &bChosen);
    if (bChosen) {
        pChoice->lWatermark = lRow;
        pChoice->bWMOnePage = IsChecked(hPage, IDC_WATERMARKS_FIRST_PAGE);
    }
}

void ReadQualityPage(HWND hPage, const UiSession* pSession, PreviewChoice* pChoice)
{
    int bColor = IsChecked(hPage, IDC_QUALITY_COLOR);
    if (bColor || IsChecked(hPage, IDC_QUALITY_MONOCHROME)) {
        pChoice->bColor = IsPreviewColor(*pSession->pRecord, bColor);
    }
    const XpiModel* pModel = pSession->pXpi.get();
    if (pModel->usLanguage == KIND_IMAGE) {
        LRESULT nRow = SendDlgItemMessageW(hPage, IDC_QUALITY_RESOLUTION, CB_GETCURSEL, 0, 0);
        u16 usResolution = GetDlgItem(hPage, IDC_QUALITY_RESOLUTION)
                               ? ResolutionOfRow(pModel, static_cast<i32>(nRow))
                               : u16{0};
        pChoice->usResolution = usResolution ? usResolution : pChoice->usResolution;
    }
}

void ShowSizeLine(HWND hPage, UiSession* pSession, const PreviewChoice& choice, const PreviewSizes& sizes)
{
    if (sizes.usShown != pSession->usPreviewPaper) {
        pSession->usPreviewPaper = sizes.usShown;
        pSession->bPreviewMetric = static_cast<u32>(sizes.bMetric);
    }
    int bMetric = pSession->bPreviewMetric != 0;
    WCHAR wcUnit[TEXT_CHARS], wcLine[TEXT_CHARS];
    LoadUiText(pSession, UnitString(bMetric), wcUnit, TEXT_CHARS);
    FormatSizeLine(sizes, choice, bMetric, wcUnit, pSession->rLanguage.wcDecimal, wcLine);
    SetDlgItemTextW(hPage, IDC_PREVIEW_SIZE, wcLine);
}

/* Controls without a line are emptied. */
void ShowStatusLines(HWND hPage, const UiSession* pSession, const PreviewChoice& choice)
{
    StatusLine aLines[STATUS_LINES];
    int nLines = ListStatusLines(choice, pSession->pXpi.get(), aLines);
    for (int i = 0; i < STATUS_LINES; i++) {
        WCHAR wcString[TEXT_CHARS], wcLine[TEXT_CHARS] = {};
        if (i < nLines) {
            LoadUiText(pSession, aLines[i].usString, wcString, TEXT_CHARS);
            FormatStatusLine(aLines[i], wcString, wcLine);
        }
        SetDlgItemTextW(hPage, IDC_PREVIEW_LINE1 + i, wcLine);
    }
}

} // namespace

PreviewLists SessionPreviewLists(const UiSession* pSession)
{
    return {pSession->pXpi.get(),     pSession->pCustomPapers.get(), pSession->sCustomPaperCount,
            pSession->pForms.get(),   pSession->sFormCount,          pSession->pWatermarks.get(),
            pSession->sWatermarkCount};
}

PreviewChoice GatherPreviewChoice(const UiSession* pSession)
{
    PreviewChoice choice = ChoiceFromRecord(*pSession->pRecord, SessionPreviewLists(pSession));
    if (HWND hPage = pSession->hPageWnd[SLOT_PAPER]) {
        ReadPaperPage(hPage, &choice);
    }
    if (HWND hPage = pSession->hPageWnd[SLOT_LAYOUT]) {
        ReadLayoutPage(hPage, pSession->pXpi.get(), &choice);
    }
    if (HWND hPage = pSession->hPageWnd[SLOT_WATERMARKS]) {
        ReadWatermarkPage(hPage, &choice);
    }
    if (HWND hPage = pSession->hPageWnd[SLOT_QUALITY]) {
        ReadQualityPage(hPage, pSession, &choice);
    }
    return choice;
}

void UpdatePreview(HWND hPage, HDC hdc, UiSession* pSession, int bPaint)
{
    PreviewLists lists = SessionPreviewLists(pSession);
    PreviewChoice choice = GatherPreviewChoice(pSession);
    PreviewSizes sizes = FindPreviewSizes(lists, choice);
    ShowSizeLine(hPage, pSession, choice, sizes);
    ShowStatusLines(hPage, pSession, choice);
    if (!bPaint) {
        return;
    }
    PreviewRequest request;
    WatermarkEntry watermark;
    RECT rFrame;
    RequestFromChoice(choice, sizes, lists, &watermark, &request);
    if (ControlRect(hPage, request.sPreviewControl, &rFrame)) {
        ComposePreview(pSession->rPreview, pSession->rPreviewDevice, hdc, rFrame, &request);
    }
}

void PaintPreviewPage(HWND hPage, UiSession* pSession)
{
    PAINTSTRUCT paint = {};
    HDC hdc = BeginPaint(hPage, &paint);
    if (hdc && !pSession->bDeviceSheet) {
        UpdatePreview(hPage, hdc, pSession, 1);
    }
    EndPaint(hPage, &paint);
}

void PaintDuplexPage(HWND hPage, UiSession* pSession)
{
    if (!pSession->bDeviceSheet && HasDuplexOption(pSession->pXpi.get())) {
        ShowDuplexPicture(hPage, pSession);
    }
    PaintPreviewPage(hPage, pSession);
}

void FlipPreviewUnit(HWND hPage, UiSession* pSession)
{
    pSession->bPreviewMetric = !pSession->bPreviewMetric;
    RepaintControl(hPage, IDC_PREVIEW);
}

void PreviewCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    if (LOWORD(wParam) == IDC_UNIT) {
        FlipPreviewUnit(hPage, pSession);
    }
}
