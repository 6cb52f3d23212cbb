/* Builds watermarks for a sheet.

   While the builder runs, the thread waits in slices, and between two of them the windows are told to paint what has been
   uncovered: UpdateWindow hands WM_PAINT to a window of this thread straight away, as a call. Nothing is taken from the
   message queue, so keys, clicks, notifications and what other threads have sent stay there until the build is over, and
   no command, check or apply of a page can run in the middle of the one that builds. */
#include "sheet/watermark_builder.h"

#include <cstring>

#include "document/defaults.h"
#include "watermark/watermark_build.h"

namespace {

constexpr int PARENTS_MOST = 16;

/* The top-level window that a window lies in; null for none. */
HWND TopLevelOf(HWND hWindow)
{
    for (int n = 0; hWindow && n < PARENTS_MOST && GetWindowLongPtrW(hWindow, GWL_STYLE) & WS_CHILD; n++) {
        hWindow = GetParent(hWindow);
    }
    return hWindow;
}

/* The sheet and, where an editor builds, its dialog. */
struct Painted {
    HWND hDialog, hSheet;
};

void PaintWhileWaiting(void* pContext)
{
    const Painted* pPainted = static_cast<const Painted*>(pContext);
    for (HWND hWindow : {pPainted->hDialog, pPainted->hSheet}) {
        if (hWindow) {
            UpdateWindow(hWindow);
        }
    }
}

/* The wait cursor until the end of its block. */
struct WaitCursor {
    HCURSOR hWait = LoadCursorW(nullptr, IDC_WAIT);
    HCURSOR hBefore = hWait ? SetCursor(hWait) : nullptr;
    WaitCursor() = default;
    ~WaitCursor()
    {
        if (hWait) {
            SetCursor(hBefore);
        }
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

/* The printer's own default, not the document's; the session's record has to do when it cannot be had. */
u16 DefaultResolution(PrinterCall& call, const UiSession* pSession)
{
    OwnedBlock<DriverDevmode> pDefaults(static_cast<DriverDevmode*>(AllocateBlock(sizeof(DriverDevmode))));
    int bFound =
        pDefaults && FindPrinterDefaults(call, pDefaults.get(), pSession->pXpi.get()) != DEFAULT_NONE;
    return static_cast<u16>((bFound ? pDefaults.get() : pSession->pRecord)->rPrivate.ulResolution);
}

int Build(UiSession* pSession, HWND hWindow, WatermarkEntry* pRow, int bTrial)
{
    const XpiModel* pModel = pSession->pXpi.get();
    if (pModel->usLanguage == 4) {
        return 0;
    }
    WaitCursor cursor;
    PrinterCall call(pSession->hPrinter);
    Painted painted = {TopLevelOf(hWindow), TopLevelOf(pSession->hPageWnd[SLOT_WATERMARKS])};
    const WatermarkBuild build = {.wcPrinterName = pSession->wcPrinterName,
                                  .wcUserFolder = pSession->wcUserFolder,
                                  .usResolution = DefaultResolution(call, pSession),
                                  .usLanguage = pModel->usLanguage,
                                  .usColorClass = pModel->usColorClass,
                                  .bTrial = bTrial,
                                  .pRows = pSession->pWatermarks.get(),
                                  .nRows = pSession->pWatermarks ? pSession->sWatermarkCount : 0,
                                  .pfnWaiting = PaintWhileWaiting,
                                  .pContext = &painted};
    return RunWatermarkBuild(call, build, pRow);
}

} // namespace

int BuildWatermark(UiSession* pSession, HWND hPage, i32 nRow)
{
    if (!pSession->pWatermarks || nRow < 0 || nRow > pSession->sWatermarkCount) {
        return 0;
    }
    return Build(pSession, hPage, pSession->pWatermarks.get() + nRow, 0);
}

int TryWatermark(UiSession* pSession, HWND hDialog, const WatermarkEntry* pRow)
{
    WatermarkEntry trial;
    std::memcpy(&trial, pRow, sizeof trial);
    return Build(pSession, hDialog, &trial, 1);
}
