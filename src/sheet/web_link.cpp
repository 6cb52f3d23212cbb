/* Puts the browser's command line together. The address is the description's, so nothing in it may begin another argument
   or another kind of link than one to the web. */
#include "sheet/web_link.h"

#include "base/format.h"
#include "base/registry_text.h"
#include "description/xpi_file.h"
#include "platform/text.h"

namespace {

constexpr int ADDRESS_CHARS = 256; /* with the NUL */
constexpr int LINE_CHARS = PATH_CHARS + 1;
constexpr int LINE_BYTES = 2 * LINE_CHARS; /* two bytes a character */

/* The user's choice, the machine's, and what both together say. The first key that is there decides. */
int ReadBrowserCommand(WCHAR* wcOut)
{
    static constexpr const WCHAR* wcClass = TEXT("SOFTWARE\\Classes\\http\\shell\\open\\command");
    RegistryText text = ReadDefaultText(HKEY_CURRENT_USER, wcClass, wcOut);
    if (text == KEY_ABSENT) {
        text = ReadDefaultText(HKEY_LOCAL_MACHINE, wcClass, wcOut);
    }
    if (text == KEY_ABSENT) {
        text = ReadDefaultText(HKEY_CLASSES_ROOT, TEXT("http\\shell\\open\\command"), wcOut);
    }
    return text != KEY_ABSENT && text != TEXT_ABSENT;
}

/* 1 when the text begins with the scheme, in any case, and goes on behind it. */
int BeginsWith(const char* cText, const char* cScheme)
{
    while (*cScheme && (*cText | 0x20) == (*cScheme | 0x20)) {
        cText++;
        cScheme++;
    }
    return !*cScheme && *cText;
}

int IsWebAddress(const char* cText)
{
    for (const char* c = cText; *c; c++) {
        if (*c <= ' ' || *c > '~' || *c == '"' || *c == '<' || *c == '>') {
            return 0;
        }
    }
    return BeginsWith(cText, "http://") || BeginsWith(cText, "https://");
}

/* The address goes where the command has %1, else behind it, in the quotation marks that are there or in its own. */
int MakeLine(WCHAR* wcCommand, const WCHAR* wcAddress, WCHAR* wcOut)
{
    WCHAR* wcPlace =
        wcCommand + (FindWide(wcCommand, TEXT("%1")) ? FindWide(wcCommand, TEXT("%1")) - wcCommand
                                                     : WideLength(wcCommand));
    if (!*wcPlace) {
        return FormatWide(wcOut, LINE_CHARS, TEXT("%s \"%s\""), static_cast<const WCHAR*>(wcCommand),
                          wcAddress);
    }
    const WCHAR* wcBehind = wcPlace + 2;
    const WCHAR* wcFormat = *wcBehind == '"' ? TEXT("%s%s%s") : TEXT("%s \"%s\" %s");
    *wcPlace = 0;
    return FormatWide(wcOut, LINE_CHARS, wcFormat, static_cast<const WCHAR*>(wcCommand), wcAddress, wcBehind);
}

/* A line that the system's code page does not hold exactly is not started, since it would name another program. */
void StartLine(const WCHAR* wcLine)
{
    char cLine[LINE_BYTES];
    WCHAR wcBack[LINE_CHARS];
    int cb =
        WideCharToMultiByte(CP_ACP, 0, wcLine, WideLength(wcLine), cLine, LINE_BYTES - 1, nullptr, nullptr);
    if (cb < 1 || cb >= LINE_BYTES) {
        return;
    }
    cLine[cb] = 0;
    int cch = MultiByteToWideChar(CP_ACP, 0, cLine, cb, wcBack, LINE_CHARS - 1);
    wcBack[cch > 0 && cch < LINE_CHARS ? cch : 0] = 0;
    if (SameWide(wcBack, wcLine)) {
        WinExec(cLine, SW_SHOWNORMAL);
    }
}

} // namespace

void OpenWebPage(UiSession* pSession)
{
    const XpiModel* pModel = pSession->pXpi.get();
    WCHAR wcCommand[PATH_CHARS + 1], wcAddress[ADDRESS_CHARS], wcLine[LINE_CHARS];
    char cAddress[ADDRESS_CHARS];
    if (!pModel || !pModel->sWebLinkCmdId || !ReadBrowserCommand(wcCommand)) {
        return;
    }
    ReadXpiCommand(pSession->rXpiFile, pModel->sWebLinkCmdId, cAddress, ADDRESS_CHARS);
    if (!IsWebAddress(cAddress)) {
        return;
    }
    for (int i = 0; i == 0 || cAddress[i - 1]; i++) {
        wcAddress[i] = static_cast<WCHAR>(cAddress[i]);
    }
    if (MakeLine(wcCommand, wcAddress, wcLine)) {
        StartLine(wcLine);
    }
}
