/* Judges names of files. */
#include "base/file_name.h"

#include "platform/text.h"

int IsHollowName(const WCHAR* wcName)
{
    while (*wcName == '.' || *wcName == ' ') {
        wcName++;
    }
    return *wcName == 0;
}

int IsPlainName(const WCHAR* wcName)
{
    if (IsHollowName(wcName)) {
        return 0;
    }
    for (; *wcName; wcName++) {
        if (*wcName == '\\' || *wcName == '/' || *wcName == ':') {
            return 0;
        }
    }
    return 1;
}

int SameFileName(const WCHAR* wcOne, const WCHAR* wcOther)
{
    WCHAR wcUpper[PATH_CHARS], wcOtherUpper[PATH_CHARS];
    if (!CopyWideWhole(wcUpper, PATH_CHARS, wcOne) || !CopyWideWhole(wcOtherUpper, PATH_CHARS, wcOther)) {
        return 0;
    }
    CharUpperBuffW(wcUpper, static_cast<DWORD>(WideLength(wcUpper)));
    CharUpperBuffW(wcOtherUpper, static_cast<DWORD>(WideLength(wcOtherUpper)));
    return SameWide(wcUpper, wcOtherUpper);
}

void MakeFileName(WCHAR* wcName)
{
    for (; *wcName; wcName++) {
        switch (*wcName) {
        case '"': *wcName = '\''; break;
        case '*':
        case ':':
        case '?':
        case '|': *wcName = ' '; break;
        case '/':
        case '\\': *wcName = '-'; break;
        case '<': *wcName = '('; break;
        case '>': *wcName = ')'; break;
        default: break;
        }
    }
}
