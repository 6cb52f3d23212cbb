/* Finds and starts the font manager. */
#include "sheet/font_manager.h"

#include "base/started_program.h"
#include "description/driver_files.h"
#include "platform/window.h"

namespace {

const WCHAR* const tcUsualPath = TEXT("C:\\Program Files\\Zeph Corvantis Font Manager\\ZephFmgr.exe");

/* Path of the program, PATH_CHARS of room. */
void FindFontManager(const UiSession* pSession, WCHAR* tcOut)
{
    PrinterCall call(pSession->hPrinter);
    if (!FindDriverFile(call, TEXT("FontManager"), TEXT(""), tcOut)) {
        CopyWide(tcOut, PATH_CHARS, tcUsualPath);
    }
}

} // namespace

int HasFontManager(const UiSession* pSession)
{
    WCHAR tcPath[PATH_CHARS];
    FindFontManager(pSession, tcPath);
    return IsInItsFolder(tcPath);
}

int StartFontManager(const UiSession* pSession)
{
    WCHAR tcPath[PATH_CHARS];
    FindFontManager(pSession, tcPath);
    return StartInItsFolder(tcPath, SW_SHOWNORMAL);
}
