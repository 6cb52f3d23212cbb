#include "sheet/preview_panel.h"

#include "description/control_ids.h"
#include "preview/preview_tools.h"
#include "sheet/dialog_services.h"
#include "sheet/duplex_picture.h"
#include "sheet/page_windows.h"

namespace {

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
    for (int nSlot = 0; nSlot < SLOT_COUNT; nSlot++) {
        const PageRoutines* pRoutines = pSession->apRoutines[nSlot];
        if (pSession->hPageWnd[nSlot] && pRoutines && pRoutines->pfnPreview) {
            pRoutines->pfnPreview(pSession->hPageWnd[nSlot], pSession, &choice);
        }
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
