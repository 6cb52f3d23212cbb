/* The pages and their order. Each page's own file supplies its routines and its commands. */
#include "sheet/page_table.h"

#include "description/control_ids.h"
#include "description/string_ids.h"
#include "sheet/about.h"
#include "sheet/dialog_services.h"
#include "sheet/fonts_page.h"
#include "sheet/layout_page.h"
#include "sheet/paper_page.h"
#include "sheet/preview_panel.h"
#include "sheet/quality_page.h"
#include "sheet/watermarks_page.h"

namespace {

constexpr PageRoutines aboutPage = {.slot = SLOT_ABOUT, .nHelpKey = 0, .pfnInit = FillAbout};

} // namespace

/* Slot, tab title, template in a document's and in the printer's own sheet. */
const PageTableRow aPageTable[] = {
    {SLOT_LAYOUT, IDS_TITLE_LAYOUT, IDD_LAYOUT, 0, PageProc<layoutPage>, LayoutCommand},
    {SLOT_PAPER, IDS_TITLE_PAPER, IDD_PAPER, 0, PageProc<paperPage>, PaperCommand},
    {SLOT_QUALITY, IDS_TITLE_QUALITY, IDD_QUALITY, 0, PageProc<qualityPage>, QualityCommand},
    {SLOT_WATERMARKS, IDS_TITLE_WATERMARKS, IDD_WATERMARKS, 0, PageProc<watermarksPage>, WatermarksCommand},
    {SLOT_FONTS, IDS_TITLE_FONTS, IDD_FONTS, IDD_DEVICE_FONTS, PageProc<fontsPage>, FontsCommand},
    {0, 0, 0, 0, nullptr, nullptr},
};

const PageTableRow rAboutPage = {SLOT_ABOUT,     IDS_TITLE_ABOUT,     0,
                                 IDD_ABOUT_PAGE, PageProc<aboutPage>, nullptr};
