/* Puts command lines together and starts them. */
#include "base/started_program.h"

#include "base/file_name.h"
#include "base/format.h"
#include "base/owned.h"
#include "base/wide.h"
#include "platform/text.h"

namespace {

constexpr int LINE_CHARS = 2 * PATH_CHARS + 4;  /* program, quotation marks, blank, arguments */
constexpr int LINE_BYTES_MOST = 2 * LINE_CHARS; /* two bytes a character */
constexpr UINT LAST_FAILURE = 31;               /* of WinExec's results */

/* Narrow form of the line at cOut, with its NUL. 0 unless it fits and reading it back gives the same line. */
int NarrowExactly(const WCHAR* wcLine, char* cOut, int cbOut)
{
    WCHAR wcBack[LINE_CHARS];
    int cb = WideCharToMultiByte(CP_ACP, 0, wcLine, WideLength(wcLine), cOut, cbOut - 1, nullptr, nullptr);
    if (cb < 1 || cb >= cbOut) {
        return 0;
    }
    cOut[cb] = 0;
    int cch = MultiByteToWideChar(CP_ACP, 0, cOut, cb, wcBack, LINE_CHARS - 1);
    wcBack[cch > 0 && cch < LINE_CHARS ? cch : 0] = 0;
    return SameWide(wcBack, wcLine);
}

int Execute(const WCHAR* tcProgram, const WCHAR* wcArguments, UINT uShow)
{
    WCHAR wcLine[LINE_CHARS];
    char cLine[LINE_BYTES_MOST];
    const WCHAR* wcQuote = FindWide(tcProgram, TEXT(" ")) ? TEXT("\"") : TEXT("");
    const WCHAR* wcBehind = wcArguments ? TEXT(" ") : TEXT("");
    if (FindWide(tcProgram, TEXT("\"")) ||
        !FormatWide(wcLine, LINE_CHARS, TEXT("%s%s%s%s%s"), wcQuote, tcProgram, wcQuote, wcBehind,
                    wcArguments ? wcArguments : TEXT(""))) {
        return 0;
    }
    return NarrowExactly(wcLine, cLine, wcArguments ? COMMAND_LINE_BYTES + 1 : LINE_BYTES_MOST) &&
           WinExec(cLine, uShow) > LAST_FAILURE;
}

/* Makes a path's folder the current one until the end of its block. */
struct CurrentFolder {
    WCHAR tcBefore[PATH_CHARS];
    int bChanged;

    explicit CurrentFolder(const WCHAR* tcPath) : tcBefore{}, bChanged(0)
    {
        WCHAR tcFolder[PATH_CHARS];
        DWORD cch = GetCurrentDirectoryW(PATH_CHARS, tcBefore);
        if (!IsPlainPath(tcPath) || !cch || cch >= PATH_CHARS ||
            !CopyWideWhole(tcFolder, PATH_CHARS, tcPath)) {
            return;
        }
        tcBefore[cch] = 0;
        tcFolder[BehindLast(tcFolder, '\\') - tcFolder] =
            0; /* a drive's root keeps its backslash, as it must */
        bChanged = SetCurrentDirectoryW(tcFolder) != 0;
    }
    ~CurrentFolder()
    {
        if (bChanged) {
            SetCurrentDirectoryW(tcBefore);
        }
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
};

} // namespace

int StartProgram(const WCHAR* tcPath, const WCHAR* wcArguments, UINT uShow)
{
    return IsPlainPath(tcPath) && Execute(tcPath, wcArguments, uShow);
}

int StartInItsFolder(const WCHAR* tcPath, UINT uShow)
{
    CurrentFolder folder(tcPath);
    return folder.bChanged && Execute(BehindLast(tcPath, '\\'), nullptr, uShow);
}

int IsInItsFolder(const WCHAR* tcPath)
{
    CurrentFolder folder(tcPath);
    OwnedFile hFile(folder.bChanged ? CreateFileW(BehindLast(tcPath, '\\'), GENERIC_READ,
                                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)
                                    : INVALID_HANDLE_VALUE);
    return IsOpen(hFile.get());
}
