/* The property sheet host: its frame is a window with the pages as children, its buttons are functions. */
#include "hosted/sheet_host.h"

#include <memory>

#include "hosted/dialogs/window_state.h"

struct Page {
    PROPSHEETPAGEW setup;
    WideText wcTitle;
    HWND hWnd = nullptr;
    bool bChanged = false;
};

struct Sheet {
    SheetStart start{};
    PROPSHEETUI_INFO info{};
    LONG lStartResult = 0;
    HWND hFrame = nullptr;
    std::vector<std::unique_ptr<Page>> pages; /* the address of setup is handed out */
    std::vector<SheetResult> results;
    int nActive = -1, nAddCalls = 0;
};

namespace {

constexpr int FRAME_WIDTH = 420, FRAME_HEIGHT = 480;

std::vector<Sheet*> openSheets;

Sheet* SheetOf(HANDLE hComPropSheet)
{
    for (Sheet* pSheet : openSheets) {
        if (pSheet == hComPropSheet) {
            return pSheet;
        }
    }
    return nullptr;
}

LONG_PTR AddPage(Sheet* pSheet, const PROPSHEETPAGEW* pSetup)
{
    if (++pSheet->nAddCalls == pSheet->start.nRefusedPage || !pSetup ||
        pSetup->dwSize < sizeof(PROPSHEETPAGEW) - 24 || !pSetup->pfnDlgProc) {
        return 0;
    }
    auto page = std::make_unique<Page>();
    page->setup = *pSetup;
    if ((pSetup->dwFlags & PSP_USETITLE) && pSetup->pszTitle && !IS_INTRESOURCE(pSetup->pszTitle)) {
        page->wcTitle = pSetup->pszTitle;
    }
    pSheet->pages.push_back(std::move(page));
    return reinterpret_cast<LONG_PTR>(pSheet->pages.back().get());
}

/* What the driver may call. Functions that no driver of ours needs are refused. */
LONG_PTR CALLBACK ComPropSheet(HANDLE hComPropSheet, UINT uFunction, LPARAM lParam1, LPARAM lParam2)
{
    Sheet* pSheet = SheetOf(hComPropSheet);
    if (!pSheet) {
        return 0;
    }
    if (uFunction == CPSFUNC_ADD_PROPSHEETPAGEW) {
        return AddPage(pSheet, reinterpret_cast<const PROPSHEETPAGEW*>(lParam1));
    }
    if (uFunction == CPSFUNC_SET_RESULT) {
        pSheet->results.push_back({reinterpret_cast<HANDLE>(lParam1), lParam2});
        return 1;
    }
    return 0;
}

bool AcceptSheet(Sheet* pSheet);

LRESULT CALLBACK FrameProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    if (uMessage == PSM_CHANGED || uMessage == PSM_UNCHANGED) {
        for (Sheet* pSheet : openSheets) {
            for (const auto& page : pSheet->pages) {
                if (pSheet->hFrame == hWnd && page->hWnd && page->hWnd == reinterpret_cast<HWND>(wParam)) {
                    page->bChanged = uMessage == PSM_CHANGED;
                }
            }
        }
        return 1;
    }
    if (uMessage == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        for (Sheet* pSheet : openSheets) {
            if (pSheet->hFrame == hWnd) { /* the keys: the focus stays where it is */
                LOWORD(wParam) == IDOK ? AcceptSheet(pSheet) : PressSheetCancel(pSheet);
                return 1;
            }
        }
    }
    return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
}

LRESULT Notify(Sheet* pSheet, HWND hPage, UINT uCode, LPARAM lParam = 0)
{
    PSHNOTIFY notify{};
    notify.hdr.hwndFrom = pSheet->hFrame;
    notify.hdr.code = uCode;
    notify.lParam = lParam;
    return Send(hPage, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notify));
}

HWND ActiveWindow(const Sheet* pSheet)
{
    return pSheet->nActive < 0 ? nullptr : pSheet->pages[static_cast<size_t>(pSheet->nActive)]->hWnd;
}

/* Makes the page's window at its first showing. */
bool MakePageWindow(Sheet* pSheet, Page* pPage)
{
    if (pPage->hWnd) {
        return true;
    }
    Bytes bytes;
    std::span<const u8> form;
    if (pPage->setup.dwFlags & PSP_DLGINDIRECT) {
        form = {static_cast<const u8*>(pPage->setup.pResource), 0x10000};
    } else if (FindModuleResource(pPage->setup.hInstance, PE_DIALOG, pPage->setup.pszTemplate, &bytes)) {
        form = bytes;
    }
    /* A page is a child of the frame, whatever its template says. */
    pPage->hWnd = MakeDialog(pPage->setup.hInstance, form, pSheet->hFrame, pPage->setup.pfnDlgProc,
                             reinterpret_cast<LPARAM>(&pPage->setup), MODE_PAGE);
    return pPage->hWnd != nullptr;
}

void ShowPageWindow(HWND hWnd, bool bShow)
{
    if (Window* pWindow = hWnd ? FindWindowState(hWnd) : nullptr) {
        ShowState(pWindow, bShow);
    }
}

/* A page may refuse to become the active one; the next takes its place then, as with a page that cannot be
   made. */
bool Activate(Sheet* pSheet, size_t nPage)
{
    for (; nPage < pSheet->pages.size(); nPage++) {
        Page* pPage = pSheet->pages[nPage].get();
        if (!MakePageWindow(pSheet, pPage) || Notify(pSheet, pPage->hWnd, PSN_SETACTIVE) != 0) {
            continue;
        }
        if (pSheet->nActive != static_cast<int>(nPage)) {
            ShowPageWindow(ActiveWindow(pSheet), false);
        }
        pSheet->nActive = static_cast<int>(nPage);
        ShowPageWindow(pPage->hWnd, true);
        FocusFirst(pPage->hWnd);
        return true;
    }
    return false;
}

bool ActiveLetsGo(Sheet* pSheet)
{
    const HWND hActive = ActiveWindow(pSheet);
    return !hActive || Notify(pSheet, hActive, PSN_KILLACTIVE) == 0;
}

/* bClosing: for OK, which is not followed by a new PSN_SETACTIVE. */
bool ApplyAll(Sheet* pSheet, bool bClosing)
{
    if (!ActiveLetsGo(pSheet)) {
        return false;
    }
    for (size_t i = 0; i < pSheet->pages.size(); i++) {
        const HWND hPage = pSheet->pages[i]->hWnd;
        const LRESULT lAnswer = hPage ? Notify(pSheet, hPage, PSN_APPLY, bClosing) : PSNRET_NOERROR;
        if (lAnswer == PSNRET_INVALID) {
            Activate(pSheet, i);
        }
        if (lAnswer == PSNRET_INVALID || lAnswer == PSNRET_INVALID_NOCHANGEPAGE) {
            return false;
        }
    }
    for (const auto& page : pSheet->pages) {
        page->bChanged = false;
    }
    if (!bClosing && ActiveWindow(pSheet)) {
        Notify(pSheet, ActiveWindow(pSheet), PSN_SETACTIVE);
    }
    return true;
}

void CloseWindows(Sheet* pSheet)
{
    if (pSheet->hFrame) {
        DestroyTree(pSheet->hFrame);
    }
    pSheet->hFrame = nullptr;
    pSheet->nActive = -1;
    for (const auto& page : pSheet->pages) {
        page->hWnd = nullptr;
    }
}

bool AcceptSheet(Sheet* pSheet)
{
    if (!pSheet->hFrame || !ApplyAll(pSheet, true)) {
        return false;
    }
    CloseWindows(pSheet);
    return true;
}

/* A click on a button of the frame takes the focus from the page first. */
void FocusFrame(const Sheet* pSheet)
{
    if (pSheet->hFrame) {
        MoveFocus(pSheet->hFrame);
    }
}

} // namespace

Sheet* OpenSheet(const SheetStart& start)
{
    auto* pSheet = new Sheet;
    openSheets.push_back(pSheet);
    pSheet->start = start;
    pSheet->info.cbSize = sizeof pSheet->info;
    pSheet->info.Version = PROPSHEETUI_INFO_VERSION;
    pSheet->info.hComPropSheet = pSheet;
    pSheet->info.pfnComPropSheet = ComPropSheet;
    pSheet->info.lParamInit = start.lParamInit;
    pSheet->lStartResult = AskSheetEntry(pSheet, PROPSHEETUI_REASON_INIT);
    if (pSheet->lStartResult > 0 && pSheet->info.Result != 0 && !pSheet->pages.empty()) {
        pSheet->hFrame = MakeWindow(KIND_FRAME, nullptr, {100, 100, 100 + FRAME_WIDTH, 100 + FRAME_HEIGHT},
                                    WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 0, 0, FrameProc)
                             ->hWnd;
        if (!Activate(pSheet, 0)) {
            CloseWindows(pSheet);
        }
    }
    return pSheet;
}

LONG AskSheetEntry(Sheet* pSheet, WORD wReason)
{
    pSheet->info.Reason = wReason;
    LPARAM lParam = pSheet->start.lParamInit;
    if (wReason == PROPSHEETUI_REASON_DESTROY) { /* whether something was applied */
        lParam = !pSheet->results.empty();
    }
    return pSheet->start.pfnEntry(&pSheet->info, lParam);
}

LONG_PTR EndSheet(Sheet* pSheet)
{
    CloseWindows(pSheet);
    AskSheetEntry(pSheet, PROPSHEETUI_REASON_DESTROY);
    const LONG_PTR lResult = pSheet->results.empty() ? CPSUI_CANCEL : pSheet->results.back().lResult;
    std::erase(openSheets, pSheet);
    delete pSheet;
    return lResult;
}

LONG SheetStartResult(const Sheet* pSheet)
{
    return pSheet->lStartResult;
}

const PROPSHEETUI_INFO& SheetInfo(const Sheet* pSheet)
{
    return pSheet->info;
}

bool IsSheetOpen(const Sheet* pSheet)
{
    return pSheet->hFrame != nullptr;
}

HWND SheetWindow(const Sheet* pSheet)
{
    return pSheet->hFrame;
}

const std::vector<SheetResult>& SheetResults(const Sheet* pSheet)
{
    return pSheet->results;
}

size_t SheetPageCount(const Sheet* pSheet)
{
    return pSheet->pages.size();
}

int SheetAddCalls(const Sheet* pSheet)
{
    return pSheet->nAddCalls;
}

HANDLE SheetPageHandle(const Sheet* pSheet, size_t nPage)
{
    return nPage < pSheet->pages.size() ? pSheet->pages[nPage].get() : nullptr;
}

HWND SheetPageWindow(const Sheet* pSheet, size_t nPage)
{
    return nPage < pSheet->pages.size() ? pSheet->pages[nPage]->hWnd : nullptr;
}

WideText SheetPageTitle(const Sheet* pSheet, size_t nPage)
{
    return nPage < pSheet->pages.size() ? pSheet->pages[nPage]->wcTitle : WideText();
}

int ActiveSheetPage(const Sheet* pSheet)
{
    return pSheet->nActive;
}

bool ShowSheetPage(Sheet* pSheet, size_t nPage)
{
    if (!pSheet->hFrame || nPage >= pSheet->pages.size()) {
        return false;
    }
    return static_cast<int>(nPage) == pSheet->nActive || (ActiveLetsGo(pSheet) && Activate(pSheet, nPage));
}

bool CanApplySheet(const Sheet* pSheet)
{
    for (const auto& page : pSheet->pages) {
        if (pSheet->hFrame && page->bChanged) {
            return true;
        }
    }
    return false;
}

bool PressSheetApply(Sheet* pSheet)
{
    if (!CanApplySheet(pSheet)) {
        return false;
    }
    FocusFrame(pSheet);
    return ApplyAll(pSheet, false);
}

bool PressSheetOk(Sheet* pSheet)
{
    FocusFrame(pSheet);
    return AcceptSheet(pSheet);
}

bool PressSheetCancel(Sheet* pSheet)
{
    const HWND hActive = ActiveWindow(pSheet);
    if (!pSheet->hFrame || (hActive && Notify(pSheet, hActive, PSN_QUERYCANCEL) != 0)) {
        return false;
    }
    for (const auto& page : pSheet->pages) {
        if (page->hWnd) {
            Notify(pSheet, page->hWnd, PSN_RESET);
        }
    }
    CloseWindows(pSheet);
    return true;
}
