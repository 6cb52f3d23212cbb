#include "sheet/zoom_and_layout.h"

#include "description/control_ids.h"
#include "sheet/dialog_services.h"
#include "sheet/edit_keys.h"

namespace {

/* The first control of each tells the state of its group. */
constexpr int anLayoutGroup[] = {IDC_LAYOUT_GROUP,       IDC_LAYOUT_TYPE_LABEL, IDC_LAYOUT_TYPE,
                                 IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES,      IDC_LAYOUT_POSTER};
constexpr int anScalingGroup[] = {IDC_PAPER_ZOOM_LABEL, IDC_PAPER_ZOOM, IDC_PAPER_ZOOM_BAR, IDC_PERCENT,
                                  IDC_PAPER_CENTRE};

template <size_t n> void EnableGroup(HWND hPage, const int (&anControls)[n], int bEnable)
{
    bEnable = bEnable != 0;
    if (!hPage || (IsWindowEnabled(GetDlgItem(hPage, anControls[0])) != 0) == bEnable) {
        return;
    }
    for (int nControl : anControls) {
        if (HWND hControl = GetDlgItem(hPage, nControl)) {
            EnableWindow(hControl, bEnable);
        }
    }
}

} // namespace

void EnableLayoutGroup(UiSession* pSession, int bEnable)
{
    EnableGroup(pSession->hPageWnd[SLOT_LAYOUT], anLayoutGroup, bEnable);
}

void EnableScalingGroup(UiSession* pSession, int bEnable)
{
    EnableGroup(pSession->hPageWnd[SLOT_PAPER], anScalingGroup, bEnable);
}

int ScalingAllowed(const UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_LAYOUT]) {
        return GetComboValue(hPage, IDC_LAYOUT_TYPE, nullptr) == 0 &&
               GetComboValue(hPage, IDC_LAYOUT_PAGES, nullptr) == 1;
    }
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return part.sLayoutType == 0 && part.lPagesPerSheet == 1;
}

int IsZoom100(const UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_PAPER]) {
        return ReadNumber(hPage, IDC_PAPER_ZOOM) == 100;
    }
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return part.sScaleTarget == 100 || part.sScale == 0;
}

int NupActive(const UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_LAYOUT]) {
        return GetComboValue(hPage, IDC_LAYOUT_PAGES, nullptr) > 1;
    }
    return pSession->pRecord->rPrivate.lPagesPerSheet > 1;
}
