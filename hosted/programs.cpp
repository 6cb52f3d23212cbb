/* Stand-ins for starting programs, which are only noted, for the clock, and for the user's locale. */
#include "hosted/standin.h"

namespace {

struct Programs {
    std::vector<std::string> started;
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
