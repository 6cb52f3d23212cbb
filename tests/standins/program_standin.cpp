/* Stand-in for the font installer GLYF.EXE.

   Not a product file: it does no work, ends with 0 and leaves its command line as UTF-8 in a file of its own
   name with ".started" behind (GLYF.EXE.started), which tells a test that and how it was started. An
   integrator puts the real programs in its place. */
#include <windows.h>

int main()
{
    WCHAR tcPath[MAX_PATH + 16];
    const DWORD cch = GetModuleFileNameW(nullptr, tcPath, MAX_PATH);
    if (cch == 0 || cch >= MAX_PATH) {
        return 1;
    }
    lstrcpyW(tcPath + cch, L".started");

    char cText[4096];
    const int nText =
        WideCharToMultiByte(CP_UTF8, 0, GetCommandLineW(), -1, cText, sizeof cText, nullptr, nullptr);
    if (nText == 0) {
        return 1;
    }
    const HANDLE hFile = CreateFileW(tcPath, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                     FILE_ATTRIBUTE_NORMAL, nullptr);
    if (hFile == INVALID_HANDLE_VALUE) {
        return 1;
    }
    DWORD dwWritten = 0;
    const BOOL bWritten = WriteFile(hFile, cText, static_cast<DWORD>(nText - 1), &dwWritten, nullptr);
    CloseHandle(hFile);
    return bWritten && dwWritten == static_cast<DWORD>(nText - 1) ? 0 : 1;
}
