/* Language resource libraries: real PE files of the machine, read as data. A module is its file's bytes; each
   load makes one of its own and needs one FreeLibrary, as data files do. Handles are numbers that are never
   given twice, so that a second FreeLibrary or a late LoadStringW is noticed. */
#include <algorithm>
#include <cstring>
#include <map>

#include "hosted/pe_resources.h"
#include "hosted/standin.h"

namespace {

std::map<HMODULE, Bytes> loadedModules;
std::uintptr_t nLastModule = 0;

/* With drive or server: nothing is searched for. */
bool IsFullPath(std::u16string_view tcPath)
{
    return (tcPath.size() > 3 && tcPath[1] == u':' && tcPath[2] == u'\\') || tcPath.starts_with(u"\\\\");
}

HMODULE KeepModule(Bytes bytes)
{
    /* Data files bear a mark in the low bits, so that nobody takes the handle for an address. */
    const auto hModule = reinterpret_cast<HMODULE>(++nLastModule * 0x10000 + 2);
    loadedModules.emplace(hModule, std::move(bytes));
    liveCounts.nModules++;
    return hModule;
}

/* What a false answer makes of a text of cch characters that is already in the buffer of cchRoom. */
int FalseLength(LPWSTR wcOut, int cchRoom, int cch)
{
    if (Lies(CALL_LoadStringW, LIE_SHORT)) {
        wcOut[cch / 2] = 0;
        return cch / 2;
    }
    if (Lies(CALL_LoadStringW, LIE_UNTERMINATED)) {
        std::fill(wcOut + cch, wcOut + cchRoom, u'#');
        return cchRoom;
    }
    if (Lies(CALL_LoadStringW, LIE_HUGE)) {
        return 0x7FFFFFF0;
    }
    return cch;
}

} // namespace

HMODULE WINAPI LoadLibraryExW(LPCWSTR tcPath, HANDLE hFile, DWORD dwFlags)
{
    FAILS(LoadLibraryExW);
    if (dwFlags == LOAD_LIBRARY_SEARCH_SYSTEM32 && tcPath && !hFile) {
        return LoadSystemLibrary(tcPath);
    }
    if (dwFlags == (LOAD_LIBRARY_SEARCH_SYSTEM32 | LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR) && tcPath && !hFile) {
        if (IsFullPath(tcPath)) {
            return LoadSystemLibrary(tcPath);
        }
        SetHostedError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const DWORD dwData = LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;
    if (!tcPath || *tcPath == 0 || hFile || (dwFlags & dwData) == 0 || (dwFlags & ~dwData) != 0) {
        SetHostedError(ERROR_INVALID_PARAMETER); /* code of a library cannot be run here */
        return nullptr;
    }
    Bytes bytes;
    if (!IsFullPath(tcPath) || !ReadHostFile(tcPath, &bytes)) {
        SetHostedError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    const bool bImage = (dwFlags & LOAD_LIBRARY_AS_IMAGE_RESOURCE) != 0;
    if (!(bImage ? IsWholePeImage(bytes) : IsPeFile(bytes))) {
        SetHostedError(ERROR_BAD_EXE_FORMAT);
        return nullptr;
    }
    return KeepModule(std::move(bytes));
}

BOOL WINAPI FreeLibrary(HMODULE hModule)
{
    std::lock_guard held(machineLock);
    const int bFails = CallFails(CALL_FreeLibrary); /* a release that fails still releases */
    if (FreeSystemLibrary(hModule)) {
        return !bFails;
    }
    if (loadedModules.erase(hModule) == 0) {
        return Refuse(ERROR_BAD_EXE_FORMAT);
    }
    liveCounts.nModules--;
    return !bFails;
}

int WINAPI LoadStringW(HINSTANCE hModule, UINT uId, LPWSTR wcOut, int cchRoom)
{
    FAILS(LoadStringW);
    /* The host program, which a null module means, has no strings. */
    const auto module = loadedModules.find(hModule);
    PeText text{};
    if (!wcOut || cchRoom < 0 || module == loadedModules.end() ||
        !FindPeString(module->second, static_cast<u16>(uId), LanguageOrder(HostedUserLanguage()), &text)) {
        return Refuse(ERROR_RESOURCE_NAME_NOT_FOUND); /* the buffer stays as it was */
    }
    const u8* pText = module->second.data() + text.nOffset;
    if (cchRoom == 0) { /* the buffer takes the text's address, and the text has no NUL */
        std::memcpy(static_cast<void*>(wcOut), &pText, sizeof pText);
        return text.cch;
    }
    if (cchRoom == 1) { /* nothing is written, not even the NUL */
        return 0;
    }
    const int cch = std::min<int>(cchRoom - 1, text.cch);
    std::memcpy(wcOut, pText, static_cast<size_t>(cch) * sizeof(WCHAR));
    wcOut[cch] = 0;
    return FalseLength(wcOut, cchRoom, cch);
}

bool FindModuleResource(HMODULE hModule, u16 usType, LPCWSTR wcName, Bytes* pBytes)
{
    const auto module = loadedModules.find(hModule);
    PePiece piece{};
    if (module == loadedModules.end() || !wcName) {
        return false;
    }
    PeName name(static_cast<u16>(reinterpret_cast<std::uintptr_t>(wcName)));
    if (!IS_INTRESOURCE(wcName)) {
        WideText wcUpper(wcName); /* as resource compilers store names */
        std::transform(wcUpper.begin(), wcUpper.end(), wcUpper.begin(), UpperChar);
        name = PeName(std::u16string_view(wcUpper));
    }
    if (!FindPeResource(module->second, PeName(usType), name, LanguageOrder(HostedUserLanguage()), &piece)) {
        return false;
    }
    const auto pFirst = module->second.begin() + static_cast<std::ptrdiff_t>(piece.nOffset);
    pBytes->assign(pFirst, pFirst + static_cast<std::ptrdiff_t>(piece.cbSize));
    return true;
}

void ResetResources()
{
    liveCounts.nModules -= static_cast<int>(loadedModules.size());
    loadedModules.clear();
}
