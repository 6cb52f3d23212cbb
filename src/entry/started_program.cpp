/* Starts companion programs. */
#include "entry/started_program.h"

#include "base/file_name.h"
#include "platform/process.h"
#include "platform/text.h"

namespace {

constexpr int COMMAND_BYTES_MOST = 2 * PATH_CHARS + 3; /* two bytes a character, quotation marks, NUL */
constexpr UINT LAST_FAILURE = 31;                      /* of WinExec's results */

/* Narrow form of the path at cOut; 0 unless reading it back gives the same path. */
int NarrowExactly(const WCHAR* tcPath, char* cOut, int cbOut)
{
    WCHAR tcBack[PATH_CHARS];
    int cb = WideCharToMultiByte(CP_ACP, 0, tcPath, WideLength(tcPath), cOut, cbOut, nullptr, nullptr);
    if (cb < 1 || cb > cbOut) {
        return 0;
    }
    int cch = MultiByteToWideChar(CP_ACP, 0, cOut, cb, tcBack, PATH_CHARS - 1);
    tcBack[cch > 0 && cch < PATH_CHARS ? cch : 0] = 0;
    return SameWide(tcBack, tcPath) ? cb : 0;
}

} // namespace

int StartProgram(const WCHAR* tcPath)
{
    char cCommand[COMMAND_BYTES_MOST];
    int bQuoted = FindWide(tcPath, TEXT(" ")) != nullptr;
    char* cPath = cCommand + bQuoted;
    int cb = IsPlainPath(tcPath) ? NarrowExactly(tcPath, cPath, COMMAND_BYTES_MOST - 3) : 0;
    if (!cb) {
        return 0;
    }
    if (bQuoted) {
        cCommand[0] = '"';
        cPath[cb++] = '"';
    }
    cPath[cb] = 0;
    return WinExec(cCommand, SW_HIDE) > LAST_FAILURE;
}

void StartFontInstaller(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS];
    if (FindDriverFile(call, TEXT("FontInstaller"), TEXT("GLYF.EXE"), tcPath)) {
        StartProgram(tcPath);
    }
}
