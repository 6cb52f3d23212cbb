/* Reads and writes the printer's stored values; names the user's folder. */
#include "description/printer_store.h"

#include <cstring>

#include "base/file_name.h"
#include "platform/process.h"
#include "profile/profile_values.h"
#include "profile/section_file.h"

namespace {

const WCHAR* const wcUserSection = TEXT("Basalt");

constexpr u32 VALUE_LIMIT = 1024 * 1024; /* bytes of a stored value; an honest one has a few hundred */

void ReadBasaltText(PrinterCall& call, const WCHAR* wcKey, WCHAR* wcOut, int cch)
{
    CopyWide(wcOut, cch, TEXT(""));
    ReadProfileText(OpenSection(GetUserSettings(call), wcUserSection), wcKey, wcOut, cch);
}

void WriteBasaltText(PrinterCall& call, const WCHAR* wcKey, const WCHAR* wcText)
{
    WCHAR tcPath[PATH_CHARS];
    if (GetUserSettingsPath(call, tcPath)) {
        ReplaceKey(tcPath, wcUserSection, wcKey, wcText);
        ForgetUserSettings(call);
    }
}

} // namespace

int StorePrinterValue(PrinterCall& call, const WCHAR* wcValue, u32 dwType, const void* pBytes, u32 cb)
{
    return SetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcValue), dwType,
                           static_cast<BYTE*>(const_cast<void*>(pBytes)), cb) == ERROR_SUCCESS;
}

int StorePrinterText(PrinterCall& call, const WCHAR* wcValue, const WCHAR* wcText)
{
    return StorePrinterValue(call, wcValue, REG_SZ, wcText,
                             static_cast<u32>(WideLength(wcText) + 1) * static_cast<u32>(sizeof(WCHAR)));
}

ValueState ReadPrinterBlock(PrinterCall& call, const WCHAR* wcValue, OwnedBlock<u8>* outBlock, u32* pcb)
{
    DWORD dwType, cbValue = 0, cbGot = 0;
    LPWSTR wcAsked = const_cast<LPWSTR>(wcValue);
    BYTE bSize;
    outBlock->reset();
    *pcb = 0;
    if (!IsOpen(call.hPrinter)) {
        return VALUE_UNREADABLE;
    }
    DWORD dwError = GetPrinterDataW(call.hPrinter, wcAsked, &dwType, &bSize, 0, &cbValue);
    if (dwError == ERROR_FILE_NOT_FOUND || (dwError == ERROR_SUCCESS && !cbValue)) {
        return VALUE_ABSENT;
    }
    if (dwError != ERROR_MORE_DATA || !cbValue || cbValue > VALUE_LIMIT) {
        return VALUE_UNREADABLE;
    }
    OwnedBlock<u8> pBlock(static_cast<u8*>(AllocateBlock(static_cast<u64>(cbValue) + 2 * sizeof(WCHAR) + 1)));
    if (!pBlock ||
        GetPrinterDataW(call.hPrinter, wcAsked, &dwType, pBlock.get(), cbValue, &cbGot) != ERROR_SUCCESS) {
        return VALUE_UNREADABLE;
    }
    u32 cb = cbGot < cbValue ? cbGot : cbValue;
    if (!cb) {
        return VALUE_ABSENT;
    }
    std::memset(pBlock.get() + cb, 0, cbValue - cb);
    *outBlock = std::move(pBlock);
    *pcb = cb;
    return VALUE_READ;
}

u32 GetPrinterMemory(PrinterCall& call)
{
    u32 ulMemory = 0;
    return ReadPrinterBytes(call, TEXT("Memory"), &ulMemory, sizeof ulMemory) == sizeof ulMemory ? ulMemory
                                                                                                 : 0;
}

void SetPrinterMemory(PrinterCall& call, u32 ulMemory)
{
    StorePrinterValue(call, TEXT("Memory"), REG_DWORD, &ulMemory, sizeof ulMemory);
}

u32 GetFontSubs(PrinterCall& call, OwnedBlock<u8>* outBlock)
{
    u32 cb;
    ReadPrinterBlock(call, TEXT("FontSubs"), outBlock, &cb);
    if (cb % sizeof(WCHAR)) {
        outBlock->get()[--cb] = 0;
    }
    if (!cb) {
        outBlock->reset();
    }
    return cb;
}

void SetFontSubs(PrinterCall& call, const void* pBlock, u32 cb)
{
    StorePrinterValue(call, TEXT("FontSubs"), REG_MULTI_SZ, pBlock, cb);
}

int GetSettingsFileName(PrinterCall& call, WCHAR* wcOut, int cch)
{
    int bRead = ReadPrinterText(call, TEXT("Settings"), wcOut, cch, nullptr);
    if (!bRead || !IsPlainName(wcOut)) {
        wcOut[0] = 0;
        return 0;
    }
    return 1;
}

void SetSettingsFileName(PrinterCall& call, const WCHAR* wcName)
{
    StorePrinterText(call, TEXT("Settings"), wcName);
    ForgetUserSettings(call);
}

int GetDriverName(PrinterCall& call, WCHAR* wcOut)
{
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    CopyWide(wcOut, PATH_CHARS, pInfo ? PrinterText(call, pInfo->pDriverName) : TEXT(""));
    return wcOut[0] != 0;
}

int GetDriverFolderName(PrinterCall& call, WCHAR* wcOut)
{
    GetDriverName(call, wcOut);
    MakeFileName(wcOut);
    if (IsHollowName(wcOut)) {
        wcOut[0] = 0;
    }
    return wcOut[0] != 0;
}

int GetUserFolder(PrinterCall& call, WCHAR* tcOut)
{
    WCHAR wcDriver[PATH_CHARS];
    tcOut[0] = 0;
    int bNamed = GetDriverFolderName(call, wcDriver);
    DWORD nProfile = GetEnvironmentVariableW(TEXT("USERPROFILE"), tcOut, PATH_CHARS);
    if (!bNamed || nProfile == 0 || nProfile >= PATH_CHARS) {
        tcOut[0] = 0;
        return 0;
    }
    tcOut[nProfile] = 0;
    const WCHAR* const aSteps[] = {wcProfileFolder, wcMakerFolder, TEXT("\\"), wcDriver};
    int anEnds[4];
    for (int i = 0; i < 4; i++) {
        if (!AppendWideWhole(tcOut, PATH_CHARS, aSteps[i])) {
            return 0;
        }
        anEnds[i] = WideLength(tcOut);
    }
    if (GetFileAttributesW(tcOut) == INVALID_FILE_ATTRIBUTES) {
        for (int nEnd : {anEnds[0], anEnds[1], anEnds[3]}) {
            WCHAR wcKept = tcOut[nEnd];
            tcOut[nEnd] = 0;
            CreateDirectoryW(tcOut, nullptr);
            tcOut[nEnd] = wcKept;
        }
    }
    return 1;
}

int GetUserSettingsPath(PrinterCall& call, WCHAR* tcOut)
{
    WCHAR wcName[PATH_CHARS];
    tcOut[0] = 0;
    return GetSettingsFileName(call, wcName, PATH_CHARS) && GetUserFolder(call, tcOut) &&
           AppendWideWhole(tcOut, PATH_CHARS, TEXT("\\")) && AppendWideWhole(tcOut, PATH_CHARS, wcName);
}

const ProfileFile& GetUserSettings(PrinterCall& call)
{
    if (call.userState == NOT_ASKED) {
        WCHAR tcPath[PATH_CHARS];
        call.userState = GetUserSettingsPath(call, tcPath) ? ANSWERED : NO_ANSWER;
        call.rUserFile = OpenProfile(tcPath);
    }
    return call.rUserFile;
}

void ForgetUserSettings(PrinterCall& call)
{
    call.userState = NOT_ASKED;
    call.rUserFile = {};
}

void GetProfileName(PrinterCall& call, WCHAR* wcOut, int cch)
{
    ReadBasaltText(call, TEXT("Profile"), wcOut, cch);
}

void GetScreenName(PrinterCall& call, WCHAR* wcOut, int cch)
{
    ReadBasaltText(call, TEXT("Screen"), wcOut, cch);
}

void SetProfileName(PrinterCall& call, const WCHAR* wcName)
{
    WriteBasaltText(call, TEXT("Profile"), wcName);
}

void SetScreenName(PrinterCall& call, const WCHAR* wcName)
{
    WriteBasaltText(call, TEXT("Screen"), wcName);
}
