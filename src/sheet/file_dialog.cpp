#include "sheet/file_dialog.h"

#include <algorithm>
#include <cstring>

#include "base/system_library.h"
#include "description/string_ids.h"
#include "platform/common_dialogs.h"
#include "sheet/dialog_services.h"

namespace {

/* Rows of a name and its patterns, each text with its NUL. One NUL more ends them, so no text may be empty. */
struct FileFilter {
    WCHAR wcRows[4 * TEXT_CHARS + 1]; /* two rows */
    int cch;
};

void AddText(FileFilter* pFilter, const WCHAR* wcText)
{
    int cch = BoundedLength(wcText, TEXT_CHARS - 1);
    std::memcpy(pFilter->wcRows + pFilter->cch, wcText, static_cast<size_t>(cch) * sizeof(WCHAR));
    pFilter->cch += cch + 1;
}

void AddRow(FileFilter* pFilter, const WCHAR* wcName, const WCHAR* wcPatterns)
{
    AddText(pFilter, wcName[0] ? wcName : wcPatterns);
    AddText(pFilter, wcPatterns);
}

} // namespace

int AskFile(HWND hOwner, UiSession* pSession, const FileQuestion& question, WCHAR* tcPath)
{
    std::memset(tcPath, 0, PATH_CHARS * sizeof(WCHAR));
    if (!pSession->hCommonDialogs) {
        pSession->hCommonDialogs = OpenSystemLibrary(TEXT("comdlg32.dll"));
    }
    auto fnAsk = FindRoutine<decltype(&GetOpenFileNameW)>(pSession->hCommonDialogs, "GetOpenFileNameW");
    if (!fnAsk) {
        return 0;
    }
    WCHAR wcAll[TEXT_CHARS];
    FileFilter filter = {};
    LoadUiText(pSession, IDS_FILTER_ALL, wcAll, TEXT_CHARS);
    AddRow(&filter, question.wcName, question.wcPatterns);
    AddRow(&filter, wcAll, TEXT("*.*"));
    OPENFILENAMEW asked = {};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = hOwner;
    asked.lpstrFilter = filter.wcRows;
    asked.lpstrFile = tcPath;
    asked.nMaxFile = static_cast<DWORD>(std::min(question.cch, PATH_CHARS));
    asked.lpstrInitialDir = question.tcFolder;
    asked.lpstrDefExt = question.wcExtension;
    asked.Flags = OFN_NOCHANGEDIR;
    int bChosen = fnAsk(&asked) != 0;
    tcPath[bChosen ? PATH_CHARS - 1 : 0] = 0; /* the length of a path that did not fit stands there */
    return tcPath[0] != 0;
}
