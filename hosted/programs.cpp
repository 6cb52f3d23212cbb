/* Stand-ins for starting programs and for the help control, which only note what was asked, for the clock, and for the
   user's locale. */
#include "hosted/standin.h"

namespace {

struct Programs {
    std::vector<std::string> started;
    std::vector<AskedHelp> asked;
    u32 ulTicks = 0x00ABCDEF;
};

Programs& programs()
{
    static Programs instance;
    return instance;
}

} // namespace

void ResetPrograms()
{
    programs() = Programs();
}

const std::vector<std::string>& StartedPrograms()
{
    return programs().started;
}

const std::vector<AskedHelp>& AskedHelps()
{
    return programs().asked;
}

void SetHelpControl(std::u16string_view tcPath)
{
    SetSystemRoutine(tcPath, "#15", reinterpret_cast<void*>(&HtmlHelpW));
}

/* The topic of a control is looked up as the control does it: the first row of its number. */
HWND WINAPI HtmlHelpW(HWND hWindow, LPCWSTR wcPath, UINT uCommand, DWORD_PTR ulData)
{
    FAILS(HtmlHelpW);
    DWORD dwTopic = 0;
    if (uCommand == HH_TP_HELP_WM_HELP || uCommand == HH_TP_HELP_CONTEXTMENU) {
        const auto nControl = static_cast<DWORD>(GetDlgCtrlID(hWindow));
        for (const auto* pRow = reinterpret_cast<const DWORD*>(ulData); pRow[0] && !dwTopic; pRow += 2) {
            dwTopic = pRow[0] == nControl ? pRow[1] : 0;
        }
    }
    programs().asked.push_back({hWindow, wcPath, uCommand, dwTopic});
    return hWindow;
}

void SetTickCount(u32 ulTicks)
{
    programs().ulTicks = ulTicks;
}

UINT WINAPI WinExec(LPCSTR cCommand, UINT uShow)
{
    FAILS(WinExec);
    programs().started.push_back(std::string(cCommand) + (uShow == SW_HIDE ? "|hidden" : ""));
    return 33; /* what is above 31 is success */
}

DWORD WINAPI GetTickCount(void)
{
    FAILS(GetTickCount);
    return programs().ulTicks;
}

LCID WINAPI GetUserDefaultLCID(void)
{
    FAILS(GetUserDefaultLCID);
    return HostedUserLanguage();
}
