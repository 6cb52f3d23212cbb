/* Dialogs: made from templates, their procedure, their items by id, the modal ones and the steps that the
   tests take in them. */
#include "hosted/dialogs/window_state.h"

#include <algorithm>
#include <deque>

#include "hosted/user_input.h"

namespace {

constexpr DWORD ERROR_CONTROL_ID_NOT_FOUND = 1421;

std::deque<std::function<void(HWND)>> modalSteps;
int nForcedCloses = 0, nDialogsOpened = 0;

/* Each number is rounded on its own, halves away from 0. */
LONG RoundUnits(LONG lPixels, LONG lUnit)
{
    return (lPixels + (lPixels < 0 ? -lUnit / 2 : lUnit / 2)) / lUnit;
}

LONG UnitsX(LONG lUnits)
{
    return RoundUnits(lUnits * BASE_UNIT_X, 4);
}

LONG UnitsY(LONG lUnits)
{
    return RoundUnits(lUnits * BASE_UNIT_Y, 8);
}

struct ClassRow {
    u16 usNumber;
    const char16_t* wcName;
    WindowKind kind;
    WNDPROC pfnProc;
};
constexpr ClassRow aClasses[] = {
    {CLASS_BUTTON, u"Button", KIND_BUTTON, ButtonProc},
    {CLASS_EDIT, u"Edit", KIND_EDIT, EditProc},
    {CLASS_STATIC, u"Static", KIND_STATIC, StaticProc},
    {CLASS_LISTBOX, u"ListBox", KIND_LIST, ListBoxProc},
    {CLASS_SCROLLBAR, u"ScrollBar", KIND_SCROLL, ScrollBarProc},
    {CLASS_COMBOBOX, u"ComboBox", KIND_COMBO, ComboBoxProc},
};

const ClassRow* FindClass(const PeName& name)
{
    for (const ClassRow& row : aClasses) {
        if (name.wcName.empty() ? name.usId == row.usNumber : SameName(name.wcName, row.wcName)) {
            return &row;
        }
    }
    return nullptr;
}

/* False: its class is none of the six. */
bool MakeItem(HWND hDialog, const DialogItem& item)
{
    const ClassRow* pClass = FindClass(item.windowClass);
    Window* pDialog = FindWindowState(hDialog);
    if (!pClass || !pDialog) {
        return false;
    }
    const RECT rect = {UnitsX(item.rect.x), UnitsY(item.rect.y), UnitsX(item.rect.x) + UnitsX(item.rect.cx),
                       UnitsY(item.rect.y) +
                           (pClass->kind == KIND_COMBO ? COMBO_HEIGHT : UnitsY(item.rect.cy))};
    Window* pItem = MakeWindow(pClass->kind, pDialog, rect, item.ulStyle | WS_CHILD, item.ulExStyle,
                               static_cast<i32>(item.ulId), pClass->pfnProc);
    pItem->hInstance = pDialog->hInstance;
    pItem->wcText = item.text.wcName;
    return true;
}

/* The first control that may have the focus; null when there is none. */
HWND FirstTabStop(HWND hDialog)
{
    const Window* pDialog = FindWindowState(hDialog);
    for (HWND hItem : pDialog ? pDialog->children : std::vector<HWND>()) {
        const Window* pItem = FindWindowState(hItem);
        if ((pItem->dwStyle & (WS_TABSTOP | WS_VISIBLE | WS_DISABLED)) == (WS_TABSTOP | WS_VISIBLE)) {
            return hItem;
        }
    }
    return nullptr;
}

Window* FindItem(HWND hDialog, int nId)
{
    const Window* pDialog = FindWindowState(hDialog);
    for (HWND hItem : pDialog ? pDialog->children : std::vector<HWND>()) {
        Window* pItem = FindWindowState(hItem);
        if (pItem->lId == nId) {
            return pItem;
        }
    }
    if (pDialog) {
        SetHostedError(ERROR_CONTROL_ID_NOT_FOUND);
    }
    return nullptr;
}

LRESULT SendItem(HWND hDialog, int nId, UINT uMessage, WPARAM wParam = 0, LPARAM lParam = 0)
{
    const Window* pItem = FindItem(hDialog, nId);
    return pItem ? Send(pItem->hWnd, uMessage, wParam, lParam) : 0;
}

/* The look of a default button goes from the old one to the new one. */
void SetDefaultId(Window* pDialog, LONG_PTR lId)
{
    const HWND hDialog = pDialog->hWnd;
    for (HWND hItem : std::vector<HWND>(pDialog->children)) {
        const Window* pItem = FindWindowState(hItem);
        if (pItem && pItem->kind == KIND_BUTTON && ButtonKind(pItem) <= BS_DEFPUSHBUTTON) {
            const DWORD dwKind = pItem->lId == lId ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
            if (ButtonKind(pItem) != dwKind) {
                Send(hItem, BM_SETSTYLE, dwKind, 1);
            }
        }
    }
    if (Window* pAfter = FindWindowState(hDialog)) {
        pAfter->lDefaultId = lId;
    }
}

LRESULT GetDefaultId(const Window* pDialog)
{
    LONG_PTR lId = pDialog->lDefaultId;
    for (HWND hItem : pDialog->children) {
        const Window* pItem = FindWindowState(hItem);
        if (!lId && pItem->kind == KIND_BUTTON && ButtonKind(pItem) == BS_DEFPUSHBUTTON) {
            lId = pItem->lId;
        }
    }
    return lId ? static_cast<LRESULT>(MAKELONG(lId, DC_HASDEFID)) : 0;
}

/* What a dialog does that its procedure left to the system. */
LRESULT DefaultDialogProc(Window* pDialog, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    switch (uMessage) {
    case WM_CLOSE: {
        const Window* pCancel = FindItem(pDialog->hWnd, IDCANCEL);
        if (!pCancel || !(pCancel->dwStyle & WS_DISABLED)) {
            Send(pDialog->hWnd, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                 reinterpret_cast<LPARAM>(pCancel ? pCancel->hWnd : nullptr));
        }
        return 0;
    }
    case WM_SETFOCUS:
        if (const Window* pFocus = pDialog->hFocus ? FindWindowState(pDialog->hFocus) : nullptr;
            pFocus && (pFocus->dwStyle & WS_VISIBLE)) {
            MoveFocus(pFocus->hWnd);
        }
        return 0;
    case DM_SETDEFID: SetDefaultId(pDialog, static_cast<LONG_PTR>(LOWORD(wParam))); return 1;
    case DM_GETDEFID: return GetDefaultId(pDialog);
    default: return DefaultWindowProc(pDialog->hWnd, uMessage, wParam, lParam);
    }
}

/* Runs a modal dialog to its end and destroys it. */
INT_PTR RunModal(HWND hDialog)
{
    Window* pDialog = FindWindowState(hDialog);
    while (pDialog && !pDialog->bEnded && !modalSteps.empty()) {
        const auto step = std::move(modalSteps.front());
        modalSteps.pop_front();
        step(hDialog);
        pDialog = FindWindowState(hDialog);
    }
    if (pDialog && !pDialog->bEnded) { /* nobody is there to close it */
        Send(hDialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED));
        pDialog = FindWindowState(hDialog);
        if (pDialog && !pDialog->bEnded) {
            nForcedCloses++;
            pDialog->nResult = IDCANCEL;
        }
    }
    const INT_PTR nResult = pDialog ? pDialog->nResult : -1;
    DestroyTree(hDialog);
    return nResult;
}

INT_PTR OpenModal(HINSTANCE hInstance, std::span<const u8> bytes, HWND hParent, DLGPROC pfnDialog,
                  LPARAM lParam)
{
    if (hParent && !FindWindowState(hParent)) {
        return 0;
    }
    const HWND hOwner = hParent ? TopWindow(hParent) : nullptr;
    const HWND hFocusBefore = FocusWindow();
    Window* pOwner = hOwner ? FindWindowState(hOwner) : nullptr;
    const bool bDisabled = pOwner && !(pOwner->dwStyle & WS_DISABLED);
    if (bDisabled) {
        EnableState(pOwner, false);
    }
    INT_PTR nResult = -1;
    if (const HWND hDialog = MakeDialog(hInstance, bytes, hOwner, pfnDialog, lParam, MODE_MODAL)) {
        nDialogsOpened++;
        nResult = RunModal(hDialog);
    }
    pOwner = hOwner ? FindWindowState(hOwner) : nullptr;
    if (pOwner && bDisabled) {
        EnableState(pOwner, true);
    }
    if (hFocusBefore && IsWindow(hFocusBefore)) {
        MoveFocus(hFocusBefore);
    }
    return nResult;
}

} // namespace

HWND MakeDialog(HINSTANCE hInstance, std::span<const u8> bytes, HWND hParent, DLGPROC pfnDialog,
                LPARAM lParam, DialogMode mode)
{
    const KeepRecords keep;
    DialogTemplate form;
    if (!pfnDialog || !ReadDialogTemplate(bytes, &form)) {
        SetHostedError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    DWORD dwStyle = form.ulStyle;
    if (mode == MODE_PAGE) {
        dwStyle |= DS_CONTROL;
        dwStyle &= ~WS_DISABLED;
    }
    if (dwStyle & DS_CONTROL) {
        dwStyle = (dwStyle & ~(WS_CAPTION | WS_SYSMENU | WS_POPUP)) | WS_CHILD;
    }
    const bool bShow = mode != MODE_PAGE && ((dwStyle & WS_VISIBLE) != 0 || mode == MODE_MODAL);
    LONG lWidth = UnitsX(form.rect.cx), lHeight = UnitsY(form.rect.cy);
    LONG lX = UnitsX(form.rect.x), lY = UnitsY(form.rect.y);
    if ((dwStyle & WS_CAPTION) == WS_CAPTION) {
        lWidth += 2 * FRAME_SIDE;
        lHeight += FRAME_CAPTION + FRAME_SIDE;
    }
    Window* pParent = hParent ? FindWindowState(hParent) : nullptr;
    if (pParent && !(dwStyle & WS_CHILD)) { /* places on the screen count from the owner's client area */
        const POINT origin = ClientOrigin(pParent);
        lX += origin.x;
        lY += origin.y;
    }
    Window* pDialog = MakeWindow(KIND_DIALOG, pParent, {lX, lY, lX + lWidth, lY + lHeight},
                                 dwStyle & ~WS_VISIBLE, form.ulExStyle, 0, DialogWindowProc);
    const HWND hDialog = pDialog->hWnd;
    pDialog->hInstance = hInstance;
    pDialog->wcText = form.wcTitle;
    for (const DialogItem& item : form.items) {
        if (!MakeItem(hDialog, item)) {
            DestroyTree(hDialog);
            return nullptr;
        }
    }
    pDialog->pfnDialog = pfnDialog;
    Send(hDialog, WM_SETFONT, 1);
    const HWND hFirst = FirstTabStop(hDialog);
    const bool bWantsFocus = Send(hDialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(hFirst), lParam) != 0;
    pDialog = FindWindowState(hDialog);
    if (!pDialog) {
        return nullptr;
    }
    if (pDialog->bEnded) {
        return hDialog;
    }
    if (bWantsFocus && !(dwStyle & DS_CONTROL)) {
        FocusFirst(hDialog);
    }
    if (bShow && !pDialog->bGone) {
        ShowState(pDialog, true);
    }
    return pDialog->bGone ? nullptr : hDialog;
}

void FocusFirst(HWND hDialog)
{
    if (const HWND hFirst = FirstTabStop(hDialog)) {
        MoveFocus(hFirst);
    }
}

HWND NextTabStop(HWND hDialog, HWND hFrom, bool bBack)
{
    const Window* pDialog = FindWindowState(hDialog);
    std::vector<HWND> items = pDialog ? pDialog->children : std::vector<HWND>();
    if (bBack) {
        std::reverse(items.begin(), items.end());
    }
    const auto from = std::find(items.begin(), items.end(), hFrom);
    if (from != items.end()) {
        std::rotate(items.begin(), from + 1, items.end());
    }
    for (HWND hItem : items) {
        const Window* pItem = FindWindowState(hItem);
        if ((pItem->dwStyle & (WS_TABSTOP | WS_VISIBLE | WS_DISABLED)) == (WS_TABSTOP | WS_VISIBLE)) {
            return hItem;
        }
    }
    return hFrom;
}

std::vector<HWND> GroupBehind(HWND hControl)
{
    const Window* pControl = FindWindowState(hControl);
    const Window* pDialog = pControl ? FindWindowState(pControl->hParent) : nullptr;
    const std::vector<HWND> items = pDialog ? pDialog->children : std::vector<HWND>();
    const auto from = std::find(items.begin(), items.end(), hControl);
    if (from == items.end()) {
        return {};
    }
    const auto startsGroup = [](HWND hItem) { return (FindWindowState(hItem)->dwStyle & WS_GROUP) != 0; };
    auto first = from;
    while (first != items.begin() && !startsGroup(*first)) {
        --first;
    }
    std::vector<HWND> group(from + 1, std::find_if(from + 1, items.end(), startsGroup));
    group.insert(group.end(), first, from);
    std::erase_if(group, [](HWND hItem) {
        return (FindWindowState(hItem)->dwStyle & (WS_VISIBLE | WS_DISABLED)) != WS_VISIBLE;
    });
    return group;
}

/* Answers that a dialog procedure gives by itself; for all others it says whether it has treated the message,
   and DWLP_MSGRESULT is the answer. */
static bool AnswersItself(UINT uMessage)
{
    constexpr UINT WM_COMPAREITEM = 0x39, WM_VKEYTOITEM = 0x2E, WM_CHARTOITEM = 0x2F, WM_QUERYDRAGICON = 0x37;
    constexpr UINT WM_CTLCOLORMSGBOX = 0x132, WM_CTLCOLORSTATIC = 0x138;
    return uMessage == WM_INITDIALOG || uMessage == WM_COMPAREITEM || uMessage == WM_VKEYTOITEM ||
           uMessage == WM_CHARTOITEM || uMessage == WM_QUERYDRAGICON ||
           (uMessage >= WM_CTLCOLORMSGBOX && uMessage <= WM_CTLCOLORSTATIC);
}

LRESULT CALLBACK DialogWindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pDialog = FindWindowState(hWnd);
    if (!pDialog) {
        return 0;
    }
    pDialog->lMsgResult = 0;
    INT_PTR nTreated = 0;
    if (const DLGPROC pfnDialog = pDialog->pfnDialog) {
        nTreated = pfnDialog(hWnd, uMessage, wParam, lParam);
        if (pDialog->bGone) {
            return nTreated;
        }
    }
    if (AnswersItself(uMessage)) {
        return nTreated;
    }
    return nTreated ? pDialog->lMsgResult : DefaultDialogProc(pDialog, uMessage, wParam, lParam);
}

/* ---- modal dialogs ---- */

/* Enough for any template in memory: the reader looks at no byte behind the last item. */
constexpr size_t TEMPLATE_LIMIT = 0x10000;

HWND WINAPI CreateDialogIndirectParamW(HINSTANCE hInstance, const void* pTemplate, HWND hParent,
                                       DLGPROC pfnDialog, LPARAM lParam)
{
    return MakeDialog(hInstance, {static_cast<const u8*>(pTemplate), TEMPLATE_LIMIT}, hParent, pfnDialog,
                      lParam, MODE_MODELESS);
}

INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance, const void* pTemplate, HWND hParent,
                                       DLGPROC pfnDialog, LPARAM lParam)
{
    return OpenModal(hInstance, {static_cast<const u8*>(pTemplate), TEMPLATE_LIMIT}, hParent, pfnDialog,
                     lParam);
}

INT_PTR WINAPI DialogBoxParamW(HINSTANCE hInstance, LPCWSTR wcName, HWND hParent, DLGPROC pfnDialog,
                               LPARAM lParam)
{
    FAILS(DialogBoxParamW);
    Bytes bytes;
    if (!FindModuleResource(hInstance, PE_DIALOG, wcName, &bytes)) {
        return -1;
    }
    return OpenModal(hInstance, bytes, hParent, pfnDialog, lParam);
}

BOOL WINAPI EndDialog(HWND hDialog, INT_PTR nResult)
{
    const int bFails = CallFails(CALL_EndDialog); /* a release that fails still releases */
    Window* pDialog = FindWindowState(hDialog);
    if (!pDialog || pDialog->kind != KIND_DIALOG) {
        return 0;
    }
    pDialog->bEnded = true;
    pDialog->nResult = nResult;
    ShowState(pDialog, false);
    return !bFails;
}

void QueueModalStep(std::function<void(HWND hDialog)> step)
{
    modalSteps.push_back(std::move(step));
}

size_t ModalStepsLeft()
{
    return modalSteps.size();
}

int ForcedCloses()
{
    return nForcedCloses;
}

int DialogsOpened()
{
    return nDialogsOpened;
}

void ResetDialogs()
{
    modalSteps.clear();
    nForcedCloses = nDialogsOpened = 0;
}

WideText HostedClassName(HWND hWnd)
{
    const Window* pWindow = FindWindowState(hWnd);
    for (const ClassRow& row : aClasses) {
        if (pWindow && pWindow->kind == row.kind) {
            return row.wcName;
        }
    }
    return {};
}

BOOL WINAPI MapDialogRect(HWND, RECT* pRect)
{
    *pRect = {UnitsX(pRect->left), UnitsY(pRect->top), UnitsX(pRect->right), UnitsY(pRect->bottom)};
    return 1;
}

/* ---- items by their ids ---- */

HWND WINAPI GetDlgItem(HWND hDialog, int nId)
{
    FAILS(GetDlgItem);
    const Window* pItem = FindItem(hDialog, nId);
    return pItem ? pItem->hWnd : nullptr;
}

LRESULT WINAPI SendDlgItemMessageW(HWND hDialog, int nId, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    FAILS(SendDlgItemMessageW);
    return SendItem(hDialog, nId, uMessage, wParam, lParam);
}

BOOL WINAPI SetDlgItemTextW(HWND hDialog, int nId, LPCWSTR wcText)
{
    FAILS(SetDlgItemTextW);
    return SendItem(hDialog, nId, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wcText)) != 0;
}

UINT WINAPI GetDlgItemTextW(HWND hDialog, int nId, LPWSTR wcText, int cchText)
{
    FAILS(GetDlgItemTextW);
    if (!wcText || cchText <= 0) {
        return 0;
    }
    *wcText = 0;
    if (!FindItem(hDialog, nId)) {
        return 0;
    }
    if (Lies(CALL_GetDlgItemTextW, LIE_UNTERMINATED)) {
        std::fill_n(wcText, cchText, u'9');
        return static_cast<UINT>(cchText);
    }
    return static_cast<UINT>(
        SendItem(hDialog, nId, WM_GETTEXT, static_cast<WPARAM>(cchText), reinterpret_cast<LPARAM>(wcText)));
}

BOOL WINAPI SetDlgItemInt(HWND hDialog, int nId, UINT uValue, BOOL bSigned)
{
    FAILS(SetDlgItemInt);
    const std::string text = bSigned ? std::to_string(static_cast<i32>(uValue)) : std::to_string(uValue);
    return SendItem(hDialog, nId, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Widen(text).c_str())) != 0;
}

UINT WINAPI GetDlgItemInt(HWND hDialog, int nId, BOOL* pbDone, BOOL bSigned)
{
    if (pbDone) {
        *pbDone = 0;
    }
    FAILS(GetDlgItemInt);
    if (Lies(CALL_GetDlgItemInt, LIE_HUGE)) {
        return 0x80000000;
    }
    WCHAR wcText[256] = u"";
    SendItem(hDialog, nId, WM_GETTEXT, std::size(wcText), reinterpret_cast<LPARAM>(wcText));
    const WCHAR* pAt = wcText;
    while (*pAt == u' ' || (*pAt >= u'\t' && *pAt <= u'\r')) {
        pAt++;
    }
    const bool bMinus = *pAt == u'-';
    if (*pAt == u'-' || *pAt == u'+') {
        pAt++;
    }
    const WCHAR* pDigits = pAt;
    i64 lValue = 0;
    for (; *pAt >= u'0' && *pAt <= u'9'; pAt++) { /* what follows the digits is left alone */
        lValue = std::min<i64>(lValue * 10 + (*pAt - u'0'), i64{1} << 40);
    }
    const i64 lSigned = bMinus ? -lValue : lValue;
    if (pAt == pDigits || (bSigned ? lSigned != static_cast<i32>(lSigned) : lValue > 0xFFFFFFFF)) {
        return 0;
    }
    if (pbDone) {
        *pbDone = 1;
    }
    return static_cast<UINT>(lSigned);
}

BOOL WINAPI CheckDlgButton(HWND hDialog, int nId, UINT uCheck)
{
    FAILS(CheckDlgButton);
    const Window* pItem = FindItem(hDialog, nId);
    if (!pItem) {
        return 0;
    }
    Send(pItem->hWnd, BM_SETCHECK, uCheck);
    return 1;
}

UINT WINAPI IsDlgButtonChecked(HWND hDialog, int nId)
{
    FAILS(IsDlgButtonChecked);
    return static_cast<UINT>(SendItem(hDialog, nId, BM_GETCHECK));
}

BOOL WINAPI CheckRadioButton(HWND hDialog, int nFirst, int nLast, int nCheck)
{
    FAILS(CheckRadioButton);
    const Window* pDialog = FindWindowState(hDialog);
    if (!pDialog) {
        return 0;
    }
    for (HWND hItem : std::vector<HWND>(pDialog->children)) {
        const Window* pItem = FindWindowState(hItem);
        if (pItem && IsRadio(pItem) && pItem->lId >= std::min(nFirst, nLast) &&
            pItem->lId <= std::max(nFirst, nLast)) {
            Send(hItem, BM_SETCHECK, pItem->lId == nCheck ? BST_CHECKED : BST_UNCHECKED);
        }
    }
    return 1;
}
