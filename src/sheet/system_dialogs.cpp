#include "sheet/system_dialogs.h"

#include <cstring>

#include "base/system_library.h"
#include "description/string_ids.h"
#include "platform/common_dialogs.h"
#include "sheet/dialog_services.h"

namespace {

constexpr int PATTERN_CHARS = 64, CUSTOM_COLORS = 16;

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

/* The rows of a file dialog's list of kinds: a text and a pattern each. A second NUL ends them, so no text may be
   empty. */
struct FilterText {
    WCHAR wcText[2 * (TEXT_CHARS + PATTERN_CHARS) + 1];
    int cch;
};

void AddToFilter(FilterText* pFilter, const WCHAR* wcText)
{
    int cch = WideLength(wcText) + 1;
    std::memcpy(pFilter->wcText + pFilter->cch, wcText, static_cast<size_t>(cch) * sizeof(WCHAR));
    pFilter->cch += cch;
}

void AddFilterRow(const UiSession* pSession, int nText, const WCHAR* wcPattern, FilterText* pFilter)
{
    WCHAR wcText[TEXT_CHARS], wcKinds[PATTERN_CHARS];
    LoadUiText(pSession, nText, wcText, TEXT_CHARS);
    CopyWide(wcKinds, PATTERN_CHARS, wcPattern);
    AddToFilter(pFilter, wcText[0] ? wcText : wcKinds);
    AddToFilter(pFilter, wcKinds);
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

int PickFile(UiSession* pSession, HWND hOwner, int nText, const WCHAR* wcPattern, WCHAR* tcPath)
{
    std::memset(tcPath, 0, PATH_CHARS * sizeof(WCHAR));
    const auto fnOpen = FindDialog<decltype(&GetOpenFileNameW)>(pSession, "GetOpenFileNameW");
    if (!fnOpen) {
        return 0;
    }
    FilterText filter = {};
    AddFilterRow(pSession, nText, wcPattern, &filter);
    AddFilterRow(pSession, IDS_FILTER_ALL, TEXT("*.*"), &filter);
    OPENFILENAMEW asked = {};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = hOwner;
    asked.lpstrFilter = filter.wcText;
    asked.lpstrFile = tcPath;
    asked.nMaxFile = PATH_CHARS;
    asked.lpstrInitialDir = TEXT("My Documents");
    asked.lpstrDefExt = wcPattern;
    asked.Flags = OFN_NOCHANGEDIR;
    int bChosen = fnOpen(&asked) != 0;
    tcPath[bChosen ? PATH_CHARS - 1 : 0] = 0; /* a path that did not fit leaves its length there */
    return bChosen && tcPath[0];
}
