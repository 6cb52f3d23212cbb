/* The system's dialogs for a file and for a colour. Nothing is shown: what was asked is kept, and the answer is the one
   that a test has given before. */
#include "hosted/dialogs/window_state.h"
#include "hosted/user_input.h"

namespace {

struct Asked {
    std::vector<AskedFile> files;
    std::vector<AskedColor> colors;
    WideText tcAnswer;
    COLORREF answer = CLR_INVALID;
};

Asked& asked()
{
    static Asked instance;
    return instance;
}

WideText TextAt(LPCWSTR wcText)
{
    return wcText ? wcText : u"";
}

/* Pairs of texts up to two NULs in a row. */
WideText FilterAt(LPCWSTR wcFilter)
{
    WideText wcAll;
    for (; wcFilter && *wcFilter; wcFilter += WideText(wcFilter).size() + 1) {
        wcAll += WideText(wcFilter) + u'\0';
    }
    return wcAll.substr(0, wcAll.empty() ? 0 : wcAll.size() - 1);
}

bool CanAsk(DWORD cbStructure, size_t cbWanted, HWND hOwner)
{
    return cbStructure == cbWanted && (!hOwner || FindWindowState(hOwner));
}

} // namespace

BOOL WINAPI GetOpenFileNameW(LPOPENFILENAMEW pAsked)
{
    FAILS(GetOpenFileNameW);
    if (!pAsked || !CanAsk(pAsked->lStructSize, sizeof *pAsked, pAsked->hwndOwner) || !pAsked->lpstrFile) {
        return 0;
    }
    asked().files.push_back({pAsked->hwndOwner, FilterAt(pAsked->lpstrFilter), TextAt(pAsked->lpstrFile),
                             TextAt(pAsked->lpstrInitialDir), TextAt(pAsked->lpstrDefExt), pAsked->nMaxFile,
                             pAsked->Flags});
    const WideText& tcAnswer = asked().tcAnswer;
    if (tcAnswer.empty()) {
        return 0;
    }
    if (tcAnswer.size() >= pAsked->nMaxFile) {
        /* The room that it takes is all that the caller learns. */
        if (pAsked->nMaxFile) {
            pAsked->lpstrFile[0] = static_cast<WCHAR>(tcAnswer.size() + 1);
        }
        return 0;
    }
    tcAnswer.copy(pAsked->lpstrFile, tcAnswer.size());
    pAsked->lpstrFile[tcAnswer.size()] = 0;
    return 1;
}

BOOL WINAPI ChooseColorW(LPCHOOSECOLORW pAsked)
{
    FAILS(ChooseColorW);
    constexpr size_t CUSTOM_COLORS = 16;
    if (!pAsked || !CanAsk(pAsked->lStructSize, sizeof *pAsked, pAsked->hwndOwner) || !pAsked->lpCustColors) {
        return 0;
    }
    asked().colors.push_back({pAsked->hwndOwner,
                              pAsked->rgbResult,
                              {pAsked->lpCustColors, pAsked->lpCustColors + CUSTOM_COLORS},
                              pAsked->Flags});
    if (asked().answer == CLR_INVALID) {
        return 0;
    }
    pAsked->rgbResult = asked().answer;
    return 1;
}

const std::vector<AskedFile>& AskedFiles()
{
    return asked().files;
}

void AnswerFileDialog(std::u16string_view tcPath)
{
    asked().tcAnswer = tcPath;
}

const std::vector<AskedColor>& AskedColors()
{
    return asked().colors;
}

void AnswerColorDialog(COLORREF color)
{
    asked().answer = color;
}

void ResetCommonDialogs()
{
    asked() = Asked();
}
