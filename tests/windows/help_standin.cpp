/* Stand-in for the system's help control: keeps what it was asked last. */
#include "help_standin.h"

static LastHelp last;

extern "C" HWND WINAPI HelpStandin(HWND hWindow, LPCWSTR wcPath, UINT uCommand, DWORD_PTR ulData)
{
    last = {uCommand, 0, {}};
    lstrcpynW(last.wcPath, wcPath, 300);
    const auto dwControl = static_cast<DWORD>(GetDlgCtrlID(hWindow));
    for (const auto* pRow = reinterpret_cast<const DWORD*>(ulData); pRow && pRow[0] && !last.dwTopic;
         pRow += 2) {
        last.dwTopic = pRow[0] == dwControl ? pRow[1] : 0;
    }
    return hWindow;
}

extern "C" const LastHelp* WINAPI GetLastHelp(void)
{
    return &last;
}
