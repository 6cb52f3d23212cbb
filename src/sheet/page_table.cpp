/* The pages and their order. A page without routines shows its template's controls with their texts; when a page gets
   its own file, that file supplies its row. */
#include "sheet/page_table.h"

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/about.h"
#include "sheet/dialog_services.h"
#include "sheet/fonts_page.h"
#include "sheet/layout_page.h"
#include "sheet/paper_page.h"
#include "sheet/preview_panel.h"

namespace {

void PreviewWatermarks(HWND hPage, const UiSession*, PreviewChoice* pChoice)
{
    int bChosen;
    i32 lRow = GetListValue(hPage, IDC_WATERMARKS_LIST, &bChosen);
    if (bChosen) {
        pChoice->lWatermark = lRow;
        pChoice->bWMOnePage = IsChecked(hPage, IDC_WATERMARKS_FIRST_PAGE);
    }
}

void PreviewQuality(HWND hPage, const UiSession* pSession, PreviewChoice* pChoice)
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

/* Two labels of the page say the same. */
void InitQuality(HWND hPage, UiSession* pSession)
{
    SetLabel(hPage, pSession, IDC_QUALITY_CORRECTION_LABEL_ALONE, IDC_QUALITY_CORRECTION_LABEL);
}

constexpr PageRoutines qualityPage = {.slot = SLOT_QUALITY,
                                      .nHelpKey = 400,
                                      .pfnInit = InitQuality,
                                      .pfnPaint = PaintPreviewPage,
                                      .pfnPreview = PreviewQuality};
constexpr PageRoutines watermarksPage = {
    .slot = SLOT_WATERMARKS, .nHelpKey = 500, .pfnPaint = PaintPreviewPage, .pfnPreview = PreviewWatermarks};
constexpr PageRoutines aboutPage = {.slot = SLOT_ABOUT, .nHelpKey = 0, .pfnInit = FillAbout};

} // namespace

/* Slot, tab title, template in a document's and in the printer's own sheet. */
const PageTableRow aPageTable[] = {
    {SLOT_LAYOUT, IDS_TITLE_LAYOUT, IDD_LAYOUT, 0, PageProc<layoutPage>, LayoutCommand},
    {SLOT_PAPER, IDS_TITLE_PAPER, IDD_PAPER, 0, PageProc<paperPage>, PaperCommand},
    {SLOT_QUALITY, IDS_TITLE_QUALITY, IDD_QUALITY, 0, PageProc<qualityPage>, PreviewCommand},
    {SLOT_WATERMARKS, IDS_TITLE_WATERMARKS, IDD_WATERMARKS, 0, PageProc<watermarksPage>, PreviewCommand},
    {SLOT_FONTS, IDS_TITLE_FONTS, IDD_FONTS, IDD_DEVICE_FONTS, PageProc<fontsPage>, FontsCommand},
    {0, 0, 0, 0, nullptr, nullptr},
};

const PageTableRow rAboutPage = {SLOT_ABOUT,     IDS_TITLE_ABOUT,     0,
                                 IDD_ABOUT_PAGE, PageProc<aboutPage>, nullptr};
