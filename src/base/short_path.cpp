/* Looks up each element of a path. */
#include "base/short_path.h"

#include "base/wide.h"
#include "platform/files.h"

namespace {

constexpr WCHAR WC_SEPARATOR = '\\';
constexpr int SHARE_SEPARATORS = 4; /* behind them begins what is looked up in "\\server\share\..." */

/* Length of what is copied without a look: up to the first backslash, of a share up to the one behind its name. */
int HeadLength(const WCHAR* wcPath)
{
    int nLeft = wcPath[0] == WC_SEPARATOR && wcPath[1] == WC_SEPARATOR ? SHARE_SEPARATORS : 1;
    int nAt = 0;
    while (wcPath[nAt] && (wcPath[nAt] != WC_SEPARATOR || --nLeft > 0)) {
        nAt++;
    }
    return nAt;
}

/* 1 when a search for the element finds the element and nothing else. */
int IsSearchable(const WCHAR* wcElement)
{
    if (SameWide(wcElement, TEXT("")) || SameWide(wcElement, TEXT(".")) || SameWide(wcElement, TEXT(".."))) {
        return 0;
    }
    for (; *wcElement; wcElement++) {
        switch (*wcElement) {
        case '*':
        case '?':
        case '<':
        case '>':
        case '"':
        case '/': return 0;
        default: break;
        }
    }
    return 1;
}

/* Appends the short form of the last element of a path. 0 when it does not fit. */
int AppendElement(WCHAR* wcOut, int cchOut, const WCHAR* wcPath, const WCHAR* wcElement)
{
    WIN32_FIND_DATAW found = {};
    const WCHAR* wcName = wcElement;
    HANDLE hSearch = IsSearchable(wcElement) ? FindFirstFileW(wcPath, &found) : INVALID_HANDLE_VALUE;
    if (hSearch != INVALID_HANDLE_VALUE) {
        FindClose(hSearch);
        found.cFileName[sizeof found.cFileName / sizeof(WCHAR) - 1] = 0;
        found.cAlternateFileName[sizeof found.cAlternateFileName / sizeof(WCHAR) - 1] = 0;
        wcName = found.cAlternateFileName[0] ? found.cAlternateFileName : found.cFileName;
    }
    return AppendWideWhole(wcOut, cchOut, TEXT("\\")) && AppendWideWhole(wcOut, cchOut, wcName);
}

/* The text up to nEnd by a NUL there, and the character that stood in its place. */
WCHAR EndAt(WCHAR* wcText, int nEnd)
{
    WCHAR wcKept = wcText[nEnd];
    wcText[nEnd] = 0;
    return wcKept;
}

} // namespace

void ShortPathName(WCHAR* wcPath, int cchPath)
{
    WCHAR wcShort[PATH_CHARS];
    int cchShort = cchPath < PATH_CHARS ? cchPath : PATH_CHARS;
    int nStart = HeadLength(wcPath);
    WCHAR wcKept = EndAt(wcPath, nStart);
    int bFits = CopyWideWhole(wcShort, cchShort, wcPath);
    wcPath[nStart] = wcKept;
    while (bFits && wcPath[nStart]) {
        int nEnd = nStart + 1;
        while (wcPath[nEnd] && wcPath[nEnd] != WC_SEPARATOR) {
            nEnd++;
        }
        wcKept = EndAt(wcPath, nEnd);
        bFits = AppendElement(wcShort, cchShort, wcPath, wcPath + nStart + 1);
        wcPath[nEnd] = wcKept;
        nStart = nEnd;
    }
    if (bFits) {
        CopyWide(wcPath, cchPath, wcShort);
    }
}
