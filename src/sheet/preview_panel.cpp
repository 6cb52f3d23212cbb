#include "sheet/preview_panel.h"

#include "base/arithmetic.h"
#include "preview/preview_tools.h"
#include "sheet/dialog_services.h"
#include "sheet/duplex_picture.h"

namespace {

/* The pages' controls that the preview reads. */
enum : int {
    RADIO_LONG_EDGE = 1206,
    RADIO_SHORT_EDGE = 1207,
    RADIO_PORTRAIT = 1221,
    RADIO_LANDSCAPE = 1222,
    COMBO_PAGES = 1306,
    COMBO_ORDER = 1323,
    COMBO_POSTER = 1348,
    COMBO_LAYOUT_TYPE = 1359,
    CHECK_ROTATE = 1802,
    CHECK_BORDERS = 1803,
    CHECK_BOOK_ORDER = 1819,

    COMBO_PAPER = 1301,
    EDIT_COPIES = 1501,
    EDIT_ZOOM = 1506,
    CHECK_COLLATE = 1801,
    CHECK_REVERSE = 1808,
    CHECK_CENTRED = 1825,

    RADIO_COLOR = 1208,
    RADIO_MONOCHROME = 1209,
    COMBO_RESOLUTION = 1304,

    RADIO_FIRST_PAGE = 1204,
    LIST_WATERMARKS = 1405
};

/* The panel. */
enum : int {
    CONTROL_PREVIEW = 1651,
    BUTTON_UNIT = 1746,
    CONTROL_SIZE_LINE = 1920,
    CONTROL_FIRST_LINE = 1925
};

int IsChecked(HWND hPage, int nControl)
{
    return IsDlgButtonChecked(hPage, nControl) == BST_CHECKED;
}

int HasDuplexOption(const XpiModel* pModel)
{
    return ((pModel->ulOptOptions | pModel->ulStdOptions | pModel->ulMoreOptions) & OPTION_DUPLEX) != 0;
}

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
    i32 lPaper = GetComboValue(hPage, COMBO_PAPER, &bChosen);
    if (!bChosen) {
        return;
    }
    pChoice->usPaper = static_cast<u16>(LowWord(lPaper));
    i32 lCopies = ReadNumber(hPage, EDIT_COPIES);
    pChoice->lCopies = lCopies < 1 ? 1 : lCopies;
    pChoice->bCollate = IsChecked(hPage, CHECK_COLLATE);
    pChoice->bReverse = IsChecked(hPage, CHECK_REVERSE);
    pChoice->lZoom = ReadNumber(hPage, EDIT_ZOOM);
    if (pChoice->lZoom != 100) {
        pChoice->bScaled = 1;
        pChoice->bCentred = IsChecked(hPage, CHECK_CENTRED);
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
        pChoice->sPosterSize = LowWord(ComboOr(hPage, COMBO_POSTER, 0));
        break;
    case LAYOUT_BOOKLET:
        pChoice->sLayout = LAYOUT_BOOKLET;
        pChoice->sPageOrder = static_cast<i16>(IsChecked(hPage, CHECK_BOOK_ORDER));
        break;
    default:
        pChoice->sLayout = LowWord(ComboOr(hPage, COMBO_PAGES, 1));
        pChoice->sPageOrder = LowWord(ComboOr(hPage, COMBO_ORDER, 0));
        break;
    }
}

void ReadLayoutPage(HWND hPage, const XpiModel* pModel, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lType = GetComboValue(hPage, COMBO_LAYOUT_TYPE, &bChosen);
    if (!bChosen) {
        return;
    }
    ReadLayoutType(hPage, lType, pChoice);
    pChoice->usDuplex = !HasDuplexOption(pModel)             ? 1
                        : IsChecked(hPage, RADIO_LONG_EDGE)  ? 2
                        : IsChecked(hPage, RADIO_SHORT_EDGE) ? 3
                                                             : 1;
    pChoice->usOrientation = static_cast<u16>(IsChecked(hPage, RADIO_PORTRAIT));
    pChoice->bRotate180 = IsChecked(hPage, CHECK_ROTATE);
    pChoice->bBorders = IsChecked(hPage, CHECK_BORDERS);
}

void ReadWatermarkPage(HWND hPage, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lRow = GetListValue(hPage, LIST_WATERMARKS, &bChosen);
    if (bChosen) {
        pChoice->lWatermark = lRow;
        pChoice->bWMOnePage = IsChecked(hPage, RADIO_FIRST_PAGE);
    }
}

void ReadQualityPage(HWND hPage, const UiSession* pSession, PreviewChoice* pChoice)
{
    int bColor = IsChecked(hPage, RADIO_COLOR);
    if (bColor || IsChecked(hPage, RADIO_MONOCHROME)) {
        pChoice->bColor = IsPreviewColor(*pSession->pRecord, bColor);
    }
    const XpiModel* pModel = pSession->pXpi.get();
    if (pModel->usLanguage == KIND_IMAGE) {
        LRESULT nRow = SendDlgItemMessageW(hPage, COMBO_RESOLUTION, CB_GETCURSEL, 0, 0);
        u16 usResolution =
            GetDlgItem(hPage, COMBO_RESOLUTION) ? ResolutionOfRow(pModel, static_cast<i32>(nRow)) : u16{0};
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
    SetDlgItemTextW(hPage, CONTROL_SIZE_LINE, wcLine);
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
        SetDlgItemTextW(hPage, CONTROL_FIRST_LINE + i, wcLine);
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
    RepaintControl(hPage, CONTROL_PREVIEW);
}

void PreviewCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM)
{
    if (LOWORD(wParam) == BUTTON_UNIT) {
        FlipPreviewUnit(hPage, pSession);
    }
}
