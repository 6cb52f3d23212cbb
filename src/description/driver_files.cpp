/* Finds and opens the driver's companion files. */
#include "description/driver_files.h"

#include "platform/text.h"

namespace {

constexpr int WANTED_CHARS = 129; /* a wanted name: 128 characters and NUL */

/* Copies a list entry into tcOut in capitals; 1 when the wanted name occurs in it. An entry that does not fit
   never matches, since a cut path would name another file. */
int IsWanted(const WCHAR* tcEntry, const WCHAR* wcWanted, WCHAR* tcOut)
{
    if (!CopyWideWhole(tcOut, PATH_CHARS, tcEntry)) {
        return 0;
    }
    CharUpperBuffW(tcOut, static_cast<DWORD>(WideLength(tcOut)));
    return FindWide(tcOut, wcWanted) != nullptr;
}

} // namespace

int FindDriverFile(PrinterCall& call, const WCHAR* wcValue, const WCHAR* wcDefault, WCHAR* tcOut)
{
    WCHAR wcWanted[WANTED_CHARS];
    tcOut[0] = 0;
    if (wcValue[0]) {
        ReadPrinterText(call, wcValue, tcOut, PATH_CHARS, nullptr);
    }
    CopyWide(wcWanted, WANTED_CHARS, tcOut[0] ? tcOut : wcDefault);
    tcOut[0] = 0;
    const DRIVER_INFO_3W* pInfo = wcWanted[0] ? GetDriverInfo(call) : nullptr;
    if (!pInfo) {
        return 0;
    }
    CharUpperBuffW(wcWanted, static_cast<DWORD>(WideLength(wcWanted)));
    const WCHAR* tcEntry = DriverText(call, pInfo->pDependentFiles);
    while (*tcEntry) {
        if (IsWanted(tcEntry, wcWanted, tcOut)) {
            return 1;
        }
        tcEntry = DriverText(call, tcEntry + WideLength(tcEntry) + 1);
    }
    const WCHAR* const aSingle[] = {pInfo->pDataFile, pInfo->pHelpFile, pInfo->pConfigFile};
    for (const WCHAR* tcSingle : aSingle) {
        if (IsWanted(DriverText(call, tcSingle), wcWanted, tcOut)) {
            return 1;
        }
    }
    tcOut[0] = 0;
    return 0;
}

const ProfileFile& GetDriverIni(PrinterCall& call)
{
    if (call.iniState == NOT_ASKED) {
        WCHAR tcPath[PATH_CHARS];
        call.iniState = FindDriverFile(call, TEXT(""), TEXT(".INI"), tcPath) ? ANSWERED : NO_ANSWER;
        call.rIniFile = OpenProfile(tcPath);
    }
    return call.rIniFile;
}

const WCHAR* GetXpiPath(PrinterCall& call)
{
    if (call.pathState == NOT_ASKED) {
        int bFound = FindDriverFile(call, TEXT("XPI"), TEXT(".XPI"), call.tcXpiPath);
        call.pathState = bFound ? ANSWERED : NO_ANSWER;
    }
    return call.tcXpiPath;
}

XpiFile* OpenXpiFile(PrinterCall& call)
{
    if (call.xpiState == NOT_ASKED) {
        int bOpen = GetXpiPath(call)[0] && OpenXpiPath(call.rXpiFile, call.tcXpiPath);
        call.xpiState = bOpen ? ANSWERED : NO_ANSWER;
    }
    return call.xpiState == ANSWERED ? &call.rXpiFile : nullptr;
}

OwnedModel LoadPrinterModel(PrinterCall& call)
{
    XpiFile* pFile = OpenXpiFile(call);
    return pFile ? LoadXpiModel(*pFile) : nullptr;
}

int GetFontFilePath(PrinterCall& call, WCHAR* tcOut)
{
    const DRIVER_INFO_3W* pInfo = GetDriverInfo(call);
    CopyWideWhole(tcOut, PATH_CHARS, pInfo ? DriverText(call, pInfo->pDataFile) : TEXT(""));
    return tcOut[0] != 0;
}

u32 GetFontFileSize(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS];
    LARGE_INTEGER size;
    if (!GetFontFilePath(call, tcPath)) {
        return NO_FONT_FILE;
    }
    OwnedFile hFile(CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!IsOpen(hFile.get()) || !GetFileSizeEx(hFile.get(), &size) || size.QuadPart < 0 ||
        size.QuadPart >= NO_FONT_FILE) {
        return NO_FONT_FILE;
    }
    return static_cast<u32>(size.QuadPart);
}

OwnedFile OpenFontFile(PrinterCall& call, u32 dwAccess)
{
    WCHAR tcPath[PATH_CHARS];
    if (!GetFontFilePath(call, tcPath)) {
        return OwnedFile(INVALID_HANDLE_VALUE);
    }
    DWORD dwAttributes = GetFileAttributesW(tcPath);
    if (dwAttributes != INVALID_FILE_ATTRIBUTES && dwAttributes & FILE_ATTRIBUTE_READONLY) {
        SetFileAttributesW(tcPath, dwAttributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    }
    return OwnedFile(CreateFileW(tcPath, dwAccess, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

int GetRenderCorePath(PrinterCall& call, WCHAR* tcOut)
{
    if (FindDriverFile(call, TEXT("NTCoreName"), TEXT(""), tcOut) ||
        FindDriverFile(call, TEXT("XPSCoreName"), TEXT("CRE.DLL"), tcOut)) {
        return 1;
    }
    const DRIVER_INFO_3W* pInfo = GetDriverInfo(call);
    CopyWideWhole(tcOut, PATH_CHARS, pInfo ? DriverText(call, pInfo->pDriverPath) : TEXT(""));
    return tcOut[0] != 0;
}
