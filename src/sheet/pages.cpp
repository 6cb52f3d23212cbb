/* The pages and their order. A page without routines shows its template's controls with their texts; a unit of its own
   takes its row. */
#include "sheet/pages.h"

#include "sheet/dialog_services.h"
#include "sheet/notices.h"
#include "sheet/preview_panel.h"

namespace {

/* Two labels of the page say the same. */
void InitQuality(HWND hPage, UiSession* pSession)
{
    SetLabel(hPage, pSession, 1892, 1132);
}

constexpr PageRoutines layoutPage = {SLOT_LAYOUT, 50, nullptr, nullptr, nullptr, PaintDuplexPage, nullptr};
constexpr PageRoutines paperPage = {SLOT_PAPER, 100, nullptr, nullptr, nullptr, PaintDuplexPage, nullptr};
constexpr PageRoutines qualityPage = {SLOT_QUALITY,     400,    InitQuality, nullptr, nullptr,
                                      PaintPreviewPage, nullptr};
constexpr PageRoutines watermarksPage = {SLOT_WATERMARKS,  500,    nullptr, nullptr, nullptr,
                                         PaintPreviewPage, nullptr};
constexpr PageRoutines fontsPage = {SLOT_FONTS, 600, nullptr, nullptr, nullptr, PaintPreviewPage, nullptr};

} // namespace

/* Slot, tab title, template in a document's and in the printer's own sheet. */
const PageTableRow aPageTable[] = {
    {SLOT_LAYOUT, 1002, 1002, 0, PageProc<layoutPage>, PreviewCommand},
    {SLOT_PAPER, 1003, 1003, 0, PageProc<paperPage>, PreviewCommand},
    {SLOT_QUALITY, 1004, 1004, 0, PageProc<qualityPage>, PreviewCommand},
    {SLOT_WATERMARKS, 1040, 1040, 0, PageProc<watermarksPage>, PreviewCommand},
    {SLOT_FONTS, 1030, 1030, 1031, PageProc<fontsPage>, PreviewCommand},
    {0, 0, 0, 0, nullptr, nullptr},
};

const PageTableRow rAboutPage = {SLOT_ABOUT, 1099, 0, 1098, AboutPageProc, nullptr};
