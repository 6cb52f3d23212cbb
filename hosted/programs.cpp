/* Stand-ins for starting programs, for the help control, which only notes what it was asked, for the clock, and for the
   user's locale. */
#include <algorithm>
#include <map>

#include "hosted/standin.h"

namespace {

struct Program {
    std::function<void(const std::string&)> routine;
    u32 ulDelay;
};

struct DueProgram {
    u32 ulLeft; /* milliseconds from now on */
    std::function<void(const std::string&)> routine;
    std::string command;
};

struct Programs {
    std::vector<std::string> started;
    std::map<WideText, Program> programs; /* by path in one form */
    std::vector<DueProgram> due;          /* in the order of their starts */
    std::vector<AskedHelp> asked;
    u32 ulTicks = 0x00ABCDEF;
};

Programs& programs()
{
    static Programs instance;
    return instance;
}

/* The program of a command line: what stands in quotation marks, else what stands in front of the first blank. */
WideText ProgramOf(std::string_view command)
{
    const bool bQuoted = command.starts_with('"');
    command.remove_prefix(bQuoted);
    command = command.substr(0, command.find(bQuoted ? '"' : ' '));
    return LowerText(BelowCurrentFolder(FromCodePage(command.data(), command.size())));
}

void MoveClock(u32 ulBy)
{
    programs().ulTicks += ulBy;
    for (DueProgram& due : programs().due) {
        due.ulLeft -= std::min(due.ulLeft, ulBy);
    }
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

void SetProgram(std::u16string_view tcPath, std::function<void(const std::string&)> routine, u32 ulDelay)
{
    programs().programs[LowerText(tcPath)] = {std::move(routine), ulDelay};
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

u32 MachineTicks()
{
    return programs().ulTicks;
}

bool RunNextProgram(u32 ulMost)
{
    std::vector<DueProgram>& due = programs().due;
    const auto next =
        std::min_element(due.begin(), due.end(), [](const DueProgram& one, const DueProgram& other) {
            return one.ulLeft < other.ulLeft;
        });
    if (next == due.end() || next->ulLeft > ulMost) {
        MoveClock(ulMost);
        return false;
    }
    const DueProgram program = std::move(*next);
    due.erase(next);
    MoveClock(program.ulLeft);
    program.routine(program.command);
    return true;
}

UINT WINAPI WinExec(LPCSTR cCommand, UINT uShow)
{
    FAILS(WinExec);
    constexpr UINT STARTED = 33; /* what is above 31 is success */
    const auto found = programs().programs.find(ProgramOf(cCommand));
    if (found != programs().programs.end() && !found->second.routine) {
        return ERROR_FILE_NOT_FOUND;
    }
    programs().started.push_back(std::string(cCommand) + (uShow == SW_HIDE ? "|hidden" : "") +
                                 CurrentFolderNote());
    if (found != programs().programs.end()) {
        const Program program = found->second;
        if (program.ulDelay) {
            programs().due.push_back({program.ulDelay, program.routine, cCommand});
        } else {
            program.routine(cCommand);
        }
    }
    return STARTED;
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
