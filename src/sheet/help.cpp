/* Finds the help control, and the control that help is asked for. */
#include "sheet/help.h"

#include <atomic>

#include "base/file_name.h"
#include "base/format.h"
#include "base/registry_text.h"
#include "base/system_library.h"
#include "description/control_ids.h"
#include "platform/help.h"
#include "sheet/help_topics.h"
#include "sheet/web_link.h"

namespace {

using HelpRoutine = decltype(&HtmlHelpW);

constexpr const WCHAR* wcControlKey = TEXT("CLSID\\{ADB880A6-D8FF-11CF-9377-00AA003B7A11}\\InprocServer32");
constexpr std::uintptr_t HELP_ORDINAL = 15; /* of HtmlHelpW in the help control */
constexpr int TOPIC_PATH_CHARS = PATH_CHARS + 64;

HWND WINAPI ShowNothing(HWND, LPCWSTR, UINT, DWORD_PTR)
{
    return nullptr;
}

/* Null until help is first asked for in this process, by whichever thread; ShowNothing when there is none. */
constinit std::atomic<HelpRoutine> fnHelp = nullptr;

/* The control by its registered path, which has to be a whole one on a drive: any other would be searched for. */
OwnedModule OpenRegisteredControl()
{
    WCHAR wcStored[PATH_CHARS + 1], tcPath[PATH_CHARS];
    switch (ReadDefaultText(HKEY_CLASSES_ROOT, wcControlKey, wcStored)) {
    case TEXT_STORED: CopyWideWhole(tcPath, PATH_CHARS, wcStored); break;
    case TEXT_TO_EXPAND: {
        DWORD cch = ExpandEnvironmentStringsW(wcStored, tcPath, PATH_CHARS);
        tcPath[cch && cch <= PATH_CHARS ? cch - 1 : 0] = 0;
        break;
    }
    default: return nullptr;
    }
    return OwnedModule(
        IsPlainPath(tcPath)
            ? LoadLibraryExW(tcPath, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32)
            : nullptr);
}

/* The control stays loaded, since its windows and threads outlive a call. */
HelpRoutine LoadHelp()
{
    OwnedModule hControl = OpenRegisteredControl();
    if (!hControl) {
        hControl = OpenSystemLibrary(TEXT("hhctrl.ocx"));
    }
    HelpRoutine fnFound = FindRoutine<HelpRoutine>(hControl, reinterpret_cast<const char*>(HELP_ORDINAL));
    if (!fnFound) {
        return ShowNothing;
    }
    hControl.release();
    return fnFound;
}

void ShowTopic(const UiSession* pSession, HWND hWindow, const WCHAR* wcTopic, UINT uCommand, DWORD_PTR ulData)
{
    WCHAR wcPath[TOPIC_PATH_CHARS];
    const WCHAR* tcFile = pSession->rLanguage.tcHelpFile;
    if (!tcFile[0] || !FormatWide(wcPath, TOPIC_PATH_CHARS, TEXT("%s::/%s"), tcFile, wcTopic)) {
        return;
    }
    HelpRoutine fnShow = fnHelp;
    if (!fnShow) {
        fnHelp = fnShow = LoadHelp();
    }
    fnShow(hWindow, wcPath, uCommand, ulData);
}

struct PointSearch {
    POINT point; /* on the screen */
    HWND hFound;
};

BOOL CALLBACK TestPoint(HWND hWindow, LPARAM lParam)
{
    PointSearch* pSearch = reinterpret_cast<PointSearch*>(lParam);
    RECT rect;
    if (GetWindowRect(hWindow, &rect) && pSearch->point.x >= rect.left && pSearch->point.x < rect.right &&
        pSearch->point.y >= rect.top && pSearch->point.y < rect.bottom) {
        pSearch->hFound = hWindow;
    }
    return 1;
}

/* Children that are not shown count, too: what is hidden at the moment has a topic. */
HWND ControlUnderMouse(HWND hDialog)
{
    PointSearch search = {};
    if (GetCursorPos(&search.point)) {
        EnumChildWindows(hDialog, TestPoint, reinterpret_cast<LPARAM>(&search));
    }
    return search.hFound;
}

/* Null when the message names no control. */
HWND AskedControl(HWND hDialog, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    if (uMessage == WM_HELP) {
        const HELPINFO* pInfo = reinterpret_cast<const HELPINFO*>(lParam);
        return pInfo && pInfo->iContextType == HELPINFO_WINDOW ? static_cast<HWND>(pInfo->hItemHandle)
                                                               : nullptr;
    }
    HWND hNamed = reinterpret_cast<HWND>(wParam);
    return hNamed != hDialog && GetDlgCtrlID(hNamed) >= 1 ? hNamed : ControlUnderMouse(hDialog);
}

} // namespace

void ShowPageTopic(const UiSession* pSession, int nHelpKey)
{
    if (const WCHAR* wcTopic = FindPageTopic(nHelpKey)) {
        ShowTopic(pSession, GetDesktopWindow(), wcTopic, HH_DISPLAY_TOPIC, 0);
    }
}

INT_PTR ShowContextHelp(HWND hDialog, UiSession* pSession, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    HWND hControl = AskedControl(hDialog, uMessage, wParam, lParam);
    if (!hControl) {
        return 0;
    }
    if (GetDlgCtrlID(hControl) == IDC_LOGO) {
        OpenWebPage(pSession);
    } else {
        ShowTopic(pSession, hControl, wcTopicTexts,
                  uMessage == WM_HELP ? HH_TP_HELP_WM_HELP : HH_TP_HELP_CONTEXTMENU,
                  reinterpret_cast<DWORD_PTR>(aHelpTopics));
    }
    return 1;
}

void ForgetHelpControl()
{
    fnHelp = nullptr;
}
