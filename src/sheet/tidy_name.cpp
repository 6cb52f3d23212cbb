#include "sheet/tidy_name.h"

#include "base/wide.h"

static int IsBlankOrControl(WCHAR wc)
{
    return wc <= ' ' || wc == 0x7F;
}

void TidyName(WCHAR* wcName)
{
    int nFrom = 0, nTo = WideLength(wcName);
    while (nFrom < nTo && IsBlankOrControl(wcName[nFrom])) {
        nFrom++;
    }
    while (nTo > nFrom && IsBlankOrControl(wcName[nTo - 1])) {
        nTo--;
    }
    for (int i = nFrom; i < nTo; i++) {
        wcName[i - nFrom] = IsBlankOrControl(wcName[i]) ? static_cast<WCHAR>(' ') : wcName[i];
    }
    wcName[nTo - nFrom] = 0;
}
