/* The window procedures of list boxes and of combo boxes that drop down a list. Both keep rows in the order
   in which they were added; the messages of the two are the same under different numbers. */
#include "hosted/dialogs/window_state.h"

#include <algorithm>

#include "hosted/user_input.h"

namespace {

enum ListAction {
    LIST_NONE,
    LIST_ADD,
    LIST_INSERT,
    LIST_DELETE,
    LIST_RESET,
    LIST_COUNT,
    LIST_GET_SELECTION,
    LIST_SET_SELECTION,
    LIST_GET_TEXT,
    LIST_GET_LENGTH,
    LIST_GET_DATA,
    LIST_SET_DATA,
    LIST_FIND,
    LIST_FIND_EXACT,
    LIST_SELECT_TEXT
};

struct ListMessage {
    UINT uCombo, uList;
    ListAction action;
};
constexpr ListMessage aListMessages[] = {
    {CB_ADDSTRING, LB_ADDSTRING, LIST_ADD},
    {CB_INSERTSTRING, LB_INSERTSTRING, LIST_INSERT},
    {CB_DELETESTRING, LB_DELETESTRING, LIST_DELETE},
    {CB_RESETCONTENT, LB_RESETCONTENT, LIST_RESET},
    {CB_GETCOUNT, LB_GETCOUNT, LIST_COUNT},
    {CB_GETCURSEL, LB_GETCURSEL, LIST_GET_SELECTION},
    {CB_SETCURSEL, LB_SETCURSEL, LIST_SET_SELECTION},
    {CB_GETLBTEXT, LB_GETTEXT, LIST_GET_TEXT},
    {CB_GETLBTEXTLEN, LB_GETTEXTLEN, LIST_GET_LENGTH},
    {CB_GETITEMDATA, LB_GETITEMDATA, LIST_GET_DATA},
    {CB_SETITEMDATA, LB_SETITEMDATA, LIST_SET_DATA},
    {CB_FINDSTRING, LB_FINDSTRING, LIST_FIND},
    {CB_FINDSTRINGEXACT, LB_FINDSTRINGEXACT, LIST_FIND_EXACT},
    {CB_SELECTSTRING, LB_SELECTSTRING, LIST_SELECT_TEXT},
};

int CountRows(const Window* pWindow)
{
    return static_cast<int>(pWindow->rows.size());
}

/* Row of a message's parameter; null when there is none. */
ListRow* RowAt(Window* pWindow, WPARAM uRow)
{
    return uRow < pWindow->rows.size() ? &pWindow->rows[uRow] : nullptr;
}

/* From the row behind uAfter to the end and on from the start. */
int FindRow(const Window* pWindow, WPARAM uAfter, LPCWSTR wcText, bool bExact)
{
    if (!wcText) {
        return LB_ERR;
    }
    const std::u16string_view wcWanted(wcText);
    const size_t nRows = pWindow->rows.size();
    const size_t nFirst = uAfter < nRows ? uAfter + 1 : 0;
    for (size_t i = 0; i < nRows; i++) {
        const size_t nRow = (nFirst + i) % nRows;
        const std::u16string_view wcRow = pWindow->rows[nRow].wcText;
        if (SameName(bExact ? wcRow : wcRow.substr(0, wcWanted.size()), wcWanted)) {
            return static_cast<int>(nRow);
        }
    }
    return LB_ERR;
}

int RowsInView(const Window* pWindow)
{
    return std::max(1, (static_cast<int>(pWindow->rect.bottom - pWindow->rect.top) - 4) / LIST_ROW_HEIGHT);
}

void SetTop(Window* pWindow, int nRow)
{
    pWindow->nTop = std::clamp(nRow, 0, std::max(0, CountRows(pWindow) - RowsInView(pWindow)));
}

/* Result: the row, or an error when it is none; then nothing is selected. */
LRESULT SelectRow(Window* pWindow, i64 lRow)
{
    const bool bRow = lRow >= 0 && lRow < CountRows(pWindow);
    /* A list box keeps its selection when the row is none of its rows, unless that is asked for by -1. */
    if (bRow || lRow == -1 || pWindow->kind == KIND_COMBO) {
        pWindow->nSel = bRow ? static_cast<int>(lRow) : -1;
    }
    if (bRow && pWindow->kind == KIND_LIST) { /* brought into view */
        if (pWindow->nSel < pWindow->nTop) {
            SetTop(pWindow, pWindow->nSel);
        } else if (pWindow->nSel >= pWindow->nTop + RowsInView(pWindow)) {
            SetTop(pWindow, pWindow->nSel - RowsInView(pWindow) + 1);
        }
    }
    Invalidate(pWindow, nullptr, true);
    return bRow ? pWindow->nSel : LB_ERR;
}

LRESULT InsertRow(Window* pWindow, i64 lRow, LPCWSTR wcText)
{
    if (lRow == -1) {
        lRow = CountRows(pWindow);
    }
    if (lRow < 0 || lRow > CountRows(pWindow)) {
        return LB_ERR;
    }
    pWindow->rows.insert(pWindow->rows.begin() + lRow, ListRow{wcText ? wcText : u"", 0});
    if (pWindow->nSel >= lRow) {
        pWindow->nSel++;
    }
    Invalidate(pWindow, nullptr, true);
    return lRow;
}

LRESULT DeleteRow(Window* pWindow, WPARAM uRow)
{
    if (!RowAt(pWindow, uRow)) {
        return LB_ERR;
    }
    const int nRow = static_cast<int>(uRow);
    pWindow->rows.erase(pWindow->rows.begin() + nRow);
    if (pWindow->nSel >= nRow) {
        pWindow->nSel = pWindow->nSel == nRow ? -1 : pWindow->nSel - 1;
    }
    SetTop(pWindow, pWindow->nTop);
    Invalidate(pWindow, nullptr, true);
    return CountRows(pWindow);
}

LRESULT GetRowText(const ListRow* pRow, LPARAM lParam)
{
    if (!pRow || !lParam) {
        return LB_ERR;
    }
    const auto wcOut = reinterpret_cast<LPWSTR>(lParam); /* the caller has asked for the length */
    std::copy_n(pRow->wcText.c_str(), pRow->wcText.size() + 1, wcOut);
    return static_cast<LRESULT>(pRow->wcText.size());
}

LRESULT ListAct(Window* pWindow, ListAction action, WPARAM wParam, LPARAM lParam)
{
    ListRow* pRow = RowAt(pWindow, wParam);
    const auto wcText = reinterpret_cast<LPCWSTR>(lParam); /* in the actions that take a text */
    switch (action) {
    case LIST_ADD: return InsertRow(pWindow, -1, wcText);
    case LIST_INSERT: return InsertRow(pWindow, static_cast<i32>(wParam), wcText);
    case LIST_DELETE: return DeleteRow(pWindow, wParam);
    case LIST_RESET:
        pWindow->rows.clear();
        pWindow->nSel = -1;
        pWindow->nTop = 0;
        Invalidate(pWindow, nullptr, true);
        return 0;
    case LIST_COUNT: return CountRows(pWindow);
    case LIST_GET_SELECTION: return pWindow->nSel;
    case LIST_SET_SELECTION: return SelectRow(pWindow, static_cast<i32>(wParam));
    case LIST_GET_TEXT: return GetRowText(pRow, lParam);
    case LIST_GET_LENGTH: return pRow ? static_cast<LRESULT>(pRow->wcText.size()) : LB_ERR;
    case LIST_GET_DATA: return pRow ? pRow->lData : LB_ERR;
    case LIST_SET_DATA:
        if (pRow) {
            pRow->lData = lParam;
        }
        return pRow ? 1 : LB_ERR;
    case LIST_FIND: return FindRow(pWindow, wParam, wcText, false);
    case LIST_FIND_EXACT: return FindRow(pWindow, wParam, wcText, true);
    case LIST_SELECT_TEXT: {
        const int nRow = FindRow(pWindow, wParam, wcText, false);
        return nRow < 0 ? LB_ERR : SelectRow(pWindow, nRow);
    }
    case LIST_NONE: break;
    }
    return 0;
}

ListAction ActionOf(const Window* pWindow, UINT uMessage)
{
    for (const ListMessage& row : aListMessages) {
        if ((pWindow->kind == KIND_COMBO ? row.uCombo : row.uList) == uMessage) {
            return row.action;
        }
    }
    return LIST_NONE;
}

/* The row that a key leads to from the selected one. */
int RowByKey(const Window* pWindow, WPARAM uKey)
{
    const int nLast = CountRows(pWindow) - 1, nPage = std::max(1, RowsInView(pWindow) - 1);
    int nTo = pWindow->nSel;
    switch (uKey) {
    case VK_UP:
    case VK_LEFT: nTo = nTo - 1; break;
    case VK_DOWN:
    case VK_RIGHT: nTo = nTo + 1; break;
    case VK_PRIOR: nTo = nTo - nPage; break;
    case VK_NEXT: nTo = nTo + nPage; break;
    case VK_HOME: nTo = 0; break;
    case VK_END: nTo = nLast; break;
    default: return nTo;
    }
    return std::clamp(nTo, std::min(0, nLast), nLast);
}

void KeyToRow(Window* pWindow, WPARAM uKey)
{
    const int nTo = RowByKey(pWindow, uKey);
    if (nTo == pWindow->nSel || nTo < 0) {
        return;
    }
    SelectRow(pWindow, nTo);
    if (pWindow->kind == KIND_COMBO) {
        NotifyParent(pWindow->hWnd, CBN_SELENDOK);
        if (!pWindow->bGone) {
            NotifyParent(pWindow->hWnd, CBN_SELCHANGE);
        }
    } else if (pWindow->dwStyle & LBS_NOTIFY) {
        NotifyParent(pWindow->hWnd, LBN_SELCHANGE);
    }
}

LRESULT SetTabStops(Window* pWindow, WPARAM nStops, LPARAM lParam)
{
    if (!(pWindow->dwStyle & LBS_USETABSTOPS)) {
        return 0;
    }
    const auto pStops = reinterpret_cast<const int*>(lParam);
    pWindow->tabStops.assign(pStops, pStops + (pStops ? nStops : 0));
    return 1;
}

} // namespace

LRESULT CALLBACK ListBoxProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    if (const ListAction action = ActionOf(pWindow, uMessage)) {
        return ListAct(pWindow, action, wParam, lParam);
    }
    switch (uMessage) {
    case LB_GETSEL:
        return RowAt(pWindow, wParam) ? static_cast<LRESULT>(static_cast<int>(wParam) == pWindow->nSel)
                                      : LB_ERR;
    case LB_GETTOPINDEX: return pWindow->nTop;
    case LB_SETTOPINDEX:
        if (!RowAt(pWindow, wParam)) {
            return LB_ERR;
        }
        SetTop(pWindow, static_cast<int>(wParam));
        return 0;
    case LB_SETTABSTOPS: return SetTabStops(pWindow, wParam, lParam);
    case LB_SETHORIZONTALEXTENT: pWindow->nExtent = static_cast<int>(wParam); return 0;
    case LB_GETHORIZONTALEXTENT: return pWindow->nExtent;
    case WM_KEYDOWN: KeyToRow(pWindow, wParam); return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        if (pWindow->dwStyle & LBS_NOTIFY) {
            NotifyParent(hWnd, uMessage == WM_SETFOCUS ? LBN_SETFOCUS : LBN_KILLFOCUS);
        }
        return 0;
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}

LRESULT CALLBACK ComboBoxProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    Window* pWindow = FindWindowState(hWnd);
    if (!pWindow) {
        return 0;
    }
    if (const ListAction action = ActionOf(pWindow, uMessage)) {
        return ListAct(pWindow, action, wParam, lParam);
    }
    switch (uMessage) {
    case WM_SETTEXT: return CB_ERR; /* without an edit line the text is that of the selection */
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
        pWindow->wcText =
            pWindow->nSel < 0 ? WideText() : pWindow->rows[static_cast<size_t>(pWindow->nSel)].wcText;
        return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    case WM_KEYDOWN: KeyToRow(pWindow, wParam); return 0;
    case WM_SETFOCUS: NotifyParent(hWnd, CBN_SETFOCUS); return 0;
    case WM_KILLFOCUS: NotifyParent(hWnd, CBN_KILLFOCUS); return 0;
    default: return DefaultWindowProc(hWnd, uMessage, wParam, lParam);
    }
}
