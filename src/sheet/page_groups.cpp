/* Zoom and layout, which exclude each other across two pages. A page without a window has its values in the record. */
#include "sheet/dialog_services.h"

namespace {

constexpr int LAYOUT_TYPE = 1359, PAGES_PER_SHEET = 1306, ZOOM = 1506;

/* The first control of each tells the state of its group. */
constexpr int anLayoutGroup[] = {1148, 1997, LAYOUT_TYPE, 1998, PAGES_PER_SHEET, 1348};
constexpr int anScalingGroup[] = {1122, ZOOM, 1602, 1877, 1825};

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
        return GetComboValue(hPage, LAYOUT_TYPE, nullptr) == 0 &&
               GetComboValue(hPage, PAGES_PER_SHEET, nullptr) == 1;
    }
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return part.sLayoutType == 0 && part.lPagesPerSheet == 1;
}

int IsZoom100(const UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_PAPER]) {
        return ReadNumber(hPage, ZOOM) == 100;
    }
    const PrivateDevmode& part = pSession->pRecord->rPrivate;
    return part.sScaleTarget == 100 || part.sScale == 0;
}

int NupActive(const UiSession* pSession)
{
    if (HWND hPage = pSession->hPageWnd[SLOT_LAYOUT]) {
        return GetComboValue(hPage, PAGES_PER_SHEET, nullptr) > 1;
    }
    return pSession->pRecord->rPrivate.lPagesPerSheet > 1;
}
