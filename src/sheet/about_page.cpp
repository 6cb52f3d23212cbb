/* The About page: the only page of a device sheet that has no other. */
#include "sheet/about.h"
#include "sheet/notices.h"
#include "sheet/page.h"

INT_PTR CALLBACK AboutPageProc(HWND hPage, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    static constexpr PageRoutines aboutPage = {SLOT_ABOUT, 0, FillAbout, nullptr, nullptr, nullptr, nullptr};
    return HandlePageMessage(aboutPage, hPage, uMessage, wParam, lParam);
}
