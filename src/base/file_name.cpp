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

int IsDrivePath(const WCHAR* tcPath)
{
    WCHAR wcDrive = static_cast<WCHAR>(tcPath[0] | 0x20);
    return wcDrive >= 'a' && wcDrive <= 'z' && tcPath[1] == ':' && tcPath[2] == '\\';
}

int IsPlainPath(const WCHAR* tcPath)
{
    return IsDrivePath(tcPath) && !FindWide(tcPath, TEXT(".."));
}

namespace {

int IsSlash(WCHAR wcChar)
{
    return wcChar == '\\' || wcChar == '/';
}

const WCHAR* SkipSlashes(const WCHAR* tcAt)
{
    while (IsSlash(*tcAt)) {
        tcAt++;
    }
    return tcAt;
}

} // namespace

int IsDevicePath(const WCHAR* tcPath)
{
    static const WCHAR* const aShares[] = {TEXT("pipe"), TEXT("mailslot"), TEXT("ipc$")};
    constexpr int SHARE_CHARS = 16;
    if (!IsSlash(tcPath[0]) || !tcPath[1]) {
        return 0;
    }
    if (tcPath[1] == '?') {
        return 1;
    }
    const WCHAR* tcAt = SkipSlashes(tcPath);
    if (tcAt - tcPath < 2) {
        return 0; /* below the root of the current drive */
    }
    if (*tcAt == '.' || *tcAt == '?') {
        return 1;
    }
    while (*tcAt && !IsSlash(*tcAt)) {
        tcAt++;
    }
    tcAt = SkipSlashes(tcAt);
    WCHAR wcShare[SHARE_CHARS] = {};
    int nShare = 0;
    for (; nShare < SHARE_CHARS - 1 && tcAt[nShare] && !IsSlash(tcAt[nShare]); nShare++) {
        wcShare[nShare] = tcAt[nShare];
    }
    while (nShare > 0 && (wcShare[nShare - 1] == '.' || wcShare[nShare - 1] == ' ')) {
        wcShare[--nShare] = 0;
    }
    for (const WCHAR* wcDevice : aShares) {
        if (SameFileName(wcShare, wcDevice)) {
            return 1;
        }
    }
    return 0;
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
