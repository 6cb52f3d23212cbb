#include "sheet/commit.h"

#include "description/printer_store.h"
#include "sheet/notices.h"

namespace {

constexpr u32 LAST_KNOWN_METHOD = 256; /* dmICMMethod: above it are methods of drivers, none of them ours */
constexpr UINT BROADCAST_MILLISECONDS = 500; /* for each window that does not answer */

int IsAnyDirty(const UiSession* pSession)
{
    for (u32 bDirty : pSession->bPageDirty) {
        if (bDirty) {
            return 1;
        }
    }
    return 0;
}

void TellAllWindows(const UiSession* pSession)
{
    DWORD_PTR dwIgnored;
    SendMessageTimeoutW(HWND_BROADCAST, WM_DEVMODECHANGE, 0,
                        reinterpret_cast<LPARAM>(pSession->wcPrinterName), SMTO_ABORTIFHUNG,
                        BROADCAST_MILLISECONDS, &dwIgnored);
}

} // namespace

int CommitPage(UiSession* pSession, int nSlot, HWND hOwner)
{
    pSession->bPageDirty[nSlot] = 0;
    if (IsAnyDirty(pSession)) {
        return 1;
    }
    /* A dialog has no page of its own: the Paper page speaks for it. What it edited is stored already. */
    int bPage = pSession->hPage[nSlot] != nullptr;
    int nSpeaker = bPage ? nSlot : SLOT_PAPER;
    if (CheckConstraints(hOwner, pSession)) {
        pSession->bStickyChange = 1;
        pSession->bPageDirty[nSlot] = bPage != 0;
        return 0;
    }
    if (pSession->pRecord->dmICMMethod > LAST_KNOWN_METHOD) {
        pSession->pRecord->dmICMMethod = 1;
    }
    if (pSession->bSettingsLoaded) {
        PrinterCall call(pSession->hPrinter);
        pSession->bSettingsLoaded = 0;
        SetProfileName(call, pSession->wcProfileFile);
        SetScreenName(call, pSession->wcScreenFile);
    }
    pSession->bStickyChange = 0;
    pSession->pfnComPropSheet(pSession->hComPropSheet, CPSFUNC_SET_RESULT,
                              reinterpret_cast<LPARAM>(pSession->hPage[nSpeaker]), CPSUI_OK);
    if (pSession->bDeviceSheet) {
        TellAllWindows(pSession);
    }
    pSession->rSnapshot = *pSession->pRecord;
    CopyWide(pSession->wcProfileFileSnapshot, PATH_CHARS, pSession->wcProfileFile);
    CopyWide(pSession->wcScreenFileSnapshot, PATH_CHARS, pSession->wcScreenFile);
    return 1;
}
