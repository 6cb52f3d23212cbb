#include "sheet/system_dialogs.h"

#include <algorithm>
#include <cstring>

#include "base/system_library.h"
#include "description/string_ids.h"
#include "platform/common_dialogs.h"
#include "sheet/dialog_services.h"

namespace {

constexpr int CUSTOM_COLORS = 16;

constexpr COLORREF aCustomColors[CUSTOM_COLORS] = {
    0x0000FF, 0x0000C0, 0x000080, 0x000040, 0x008000, 0x00C000, 0x008000, 0x004000,
    0xFF0000, 0xC00000, 0x800000, 0x400000, 0x000000, 0x404040, 0x808080, 0xC0C0C0,
};

template <class Routine> Routine FindDialog(UiSession* pSession, const char* cName)
{
    if (!pSession->hCommonDialogs) {
        pSession->hCommonDialogs = OpenSystemLibrary(TEXT("comdlg32.dll"));
    }
    return FindRoutine<Routine>(pSession->hCommonDialogs, cName);
}

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

int PickColor(UiSession* pSession, HWND hOwner, COLORREF* pColor)
{
    const auto fnChoose = FindDialog<decltype(&ChooseColorW)>(pSession, "ChooseColorW");
    if (!fnChoose) {
        return 0;
    }
    COLORREF aCustom[CUSTOM_COLORS];
    std::memcpy(aCustom, aCustomColors, sizeof aCustom); /* the user can change them in the dialog */
    CHOOSECOLORW asked = {};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = hOwner;
    asked.rgbResult = *pColor;
    asked.lpCustColors = aCustom;
    asked.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
    if (!fnChoose(&asked)) {
        return 0;
    }
    *pColor = asked.rgbResult;
    return 1;
}

int AskFile(HWND hOwner, UiSession* pSession, const FileQuestion& question, WCHAR* tcPath)
{
    std::memset(tcPath, 0, PATH_CHARS * sizeof(WCHAR));
    const auto fnAsk = FindDialog<decltype(&GetOpenFileNameW)>(pSession, "GetOpenFileNameW");
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
