/* Stand-ins for memory, errors, names, environment and the user's language; starts and stops the machine. */
#include <cstdlib>
#include <cstring>
#include <map>
#include <unordered_map>
#include <utility>

#include <unistd.h>

#include "hosted/drawing/drawing_state.h"
#include "hosted/standin.h"

std::filesystem::path machineRoot;
static bool bKeepRoot = false; /* the folder was there before the machine and stays behind it */

namespace {

struct Process {
    std::vector<std::string> traces;
    u16 usLangId = 0x0409;
    WideText wcComputer = u"WORKPC";
    int nMajor = 10, nMinor = 0;
    std::map<WideText, WideText> environment; /* names in capitals */
    std::map<WideText, WideText> locale;      /* keys in small letters */
    std::unordered_map<void*, size_t> blocks;
    size_t cbHeld = 0, cbPeak = 0;
};

thread_local DWORD dwLastError = 0;

Process& process()
{
    static Process instance;
    return instance;
}

WideText UpperText(std::u16string_view wcText)
{
    WideText wcUpper(wcText);
    for (char16_t& character : wcUpper) {
        character = UpperChar(character);
    }
    return wcUpper;
}

} // namespace

u16 HostedUserLanguage()
{
    return process().usLangId;
}

void StartMachine()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "tqui-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        std::abort(); /* no test can run without a place for its files */
    }
    StartMachineIn(pattern);
    bKeepRoot = false;
}

void StartMachineIn(const std::filesystem::path& root)
{
    StopMachine();
    machineRoot = root;
    bKeepRoot = true;
    SetLocaleValue(u"iMeasure", u"1");
    SetLocaleValue(u"sDecimal", u".");
    SetEnvironmentValue(u"USERPROFILE", u"C:\\Users\\worker");
    std::filesystem::create_directories(HostPath(u"C:\\Users\\worker"));
}

void StopMachine()
{
    if (machineRoot.empty()) {
        return;
    }
    StopFaults();
    RefuseCalls({});
    TellLies(LIE_NONE);
    ResetWindows();
    ResetThreads();
    ResetResources();
    ResetSystemRoutines();
    DropSemaphores();
    DropEvents();
    ResetCurrentFolder();
    ResetSpooler();
    ResetRegistry();
    ResetFolders();
    ResetFiles();
    ResetPrograms();
    ResetFonts();
    ResetContexts();
    ResetDrawingObjects();
    ResetPowerCuts();
    SetDiskRoom(-1);
    ResetProcess();
    SetCodePage(1252);
    ResetCallCounts();
    std::error_code ignored;
    if (!bKeepRoot) {
        std::filesystem::remove_all(machineRoot, ignored);
    }
    machineRoot.clear();
}

void ResetProcess()
{
    for (const auto& block : process().blocks) {
        std::free(block.first);
    }
    process() = Process();
    dwLastError = 0;
    liveCounts.nBlocks = 0;
}

void SetUserLanguage(u16 usLangId)
{
    process().usLangId = usLangId;
}

void SetLocaleValue(std::u16string_view wcKey, std::u16string_view wcText)
{
    if (wcText.empty()) {
        process().locale.erase(LowerText(wcKey));
    } else {
        process().locale[LowerText(wcKey)] = wcText;
    }
}

bool GetLocaleValue(std::u16string_view wcKey, WideText* pText)
{
    auto found = process().locale.find(LowerText(wcKey));
    if (found == process().locale.end()) {
        return false;
    }
    *pText = found->second;
    return true;
}

void SetComputerName(std::u16string_view wcName)
{
    process().wcComputer = wcName;
}

void SetEnvironmentValue(std::u16string_view wcName, std::u16string_view wcText)
{
    if (wcText.empty()) {
        process().environment.erase(UpperText(wcName));
    } else {
        process().environment[UpperText(wcName)] = wcText;
    }
}

void SetSystemVersion(int nMajor, int nMinor)
{
    process().nMajor = nMajor;
    process().nMinor = nMinor;
}

void SetHostedError(DWORD dwError)
{
    dwLastError = dwError;
}

BOOL Refuse(DWORD dwError)
{
    dwLastError = dwError;
    return 0;
}

std::vector<std::string> TakeTraces()
{
    return std::exchange(process().traces, {});
}

size_t PeakBlockBytes()
{
    return process().cbPeak;
}

void ResetPeak()
{
    process().cbPeak = process().cbHeld;
}

HANDLE WINAPI GetProcessHeap(void)
{
    FAILS(GetProcessHeap);
    return &process();
}

LPVOID WINAPI HeapAlloc(HANDLE hHeap, DWORD dwFlags, SIZE_T cbSize)
{
    FAILS(HeapAlloc);
    if (hHeap != &process()) {
        return nullptr;
    }
    /* Blocks that were not asked for zeroed hold what a used heap holds. */
    void* pBlock =
        dwFlags & HEAP_ZERO_MEMORY ? std::calloc(1, cbSize ? cbSize : 1) : std::malloc(cbSize ? cbSize : 1);
    if (!pBlock) {
        return nullptr;
    }
    if (!(dwFlags & HEAP_ZERO_MEMORY)) {
        std::memset(pBlock, 0xCD, cbSize);
    }
    process().blocks[pBlock] = cbSize;
    process().cbHeld += cbSize;
    process().cbPeak = process().cbHeld > process().cbPeak ? process().cbHeld : process().cbPeak;
    liveCounts.nBlocks++;
    return pBlock;
}

BOOL WINAPI HeapFree(HANDLE hHeap, DWORD, LPVOID pBlock)
{
    std::lock_guard held(machineLock);
    int bFails = CallFails(CALL_HeapFree);
    auto found = process().blocks.find(pBlock);
    if (hHeap != &process() || found == process().blocks.end()) {
        std::abort(); /* a block that is not ours, or freed twice: never the caller's right */
    }
    process().cbHeld -= found->second;
    process().blocks.erase(found);
    std::free(pBlock);
    liveCounts.nBlocks--;
    return !bFails;
}

DWORD WINAPI GetLastError(void)
{
    FAILS(GetLastError);
    return dwLastError;
}

void WINAPI Sleep(DWORD)
{
    FAILS(Sleep); /* counted only: nobody else runs on this machine */
}

DWORD WINAPI GetVersion(void)
{
    FAILS(GetVersion);
    return static_cast<DWORD>(process().nMajor | process().nMinor << 8);
}

void WINAPI SetLastError(DWORD dwError)
{
    std::lock_guard held(machineLock);
    CallFails(CALL_SetLastError);
    dwLastError = dwError;
}

void WINAPI OutputDebugStringA(LPCSTR cText)
{
    std::lock_guard held(machineLock);
    CallFails(CALL_OutputDebugStringA);
    process().traces.push_back(cText);
}

BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW pVersion)
{
    FAILS(GetVersionExW);
    if (pVersion->dwOSVersionInfoSize < sizeof *pVersion) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    *pVersion = {};
    pVersion->dwOSVersionInfoSize = sizeof *pVersion;
    pVersion->dwMajorVersion = static_cast<DWORD>(process().nMajor);
    pVersion->dwMinorVersion = static_cast<DWORD>(process().nMinor);
    pVersion->dwPlatformId = 2;
    return 1;
}

BOOL WINAPI GetComputerNameW(LPWSTR wcName, LPDWORD pcchName)
{
    FAILS(GetComputerNameW);
    const WideText& wcComputer = process().wcComputer;
    if (wcComputer.empty()) {
        return Refuse(ERROR_GEN_FAILURE);
    }
    if (*pcchName < wcComputer.size() + 1) {
        *pcchName = static_cast<DWORD>(wcComputer.size() + 1);
        return Refuse(111 /* ERROR_BUFFER_OVERFLOW */);
    }
    std::memcpy(wcName, wcComputer.c_str(), (wcComputer.size() + 1) * sizeof(WCHAR));
    if (Lies(CALL_GetComputerNameW, LIE_UNTERMINATED)) {
        std::fill_n(wcName, *pcchName, u'N');
        return 1;
    }
    *pcchName = static_cast<DWORD>(wcComputer.size());
    return 1;
}

DWORD WINAPI GetEnvironmentVariableW(LPCWSTR wcName, LPWSTR wcText, DWORD cchText)
{
    FAILS(GetEnvironmentVariableW);
    auto found = process().environment.find(UpperText(wcName));
    if (found == process().environment.end()) {
        Refuse(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    DWORD cchFound = static_cast<DWORD>(found->second.size());
    if (Lies(CALL_GetEnvironmentVariableW, LIE_UNTERMINATED)) {
        std::fill_n(wcText, cchText, u'E');
        return cchText ? cchText - 1 : 0;
    }
    if (Lies(CALL_GetEnvironmentVariableW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    if (cchFound >= cchText) {
        return cchFound + 1; /* what is needed; the buffer's content is not defined */
    }
    std::memcpy(wcText, found->second.c_str(), (cchFound + 1) * sizeof(WCHAR));
    return cchFound;
}

/* Names that mean nothing stay as they are, with their % signs. */
DWORD WINAPI ExpandEnvironmentStringsW(LPCWSTR wcText, LPWSTR wcOut, DWORD cchOut)
{
    FAILS(ExpandEnvironmentStringsW);
    if (Lies(CALL_ExpandEnvironmentStringsW, LIE_UNTERMINATED)) {
        std::fill_n(wcOut, cchOut, u'X');
        return cchOut;
    }
    if (Lies(CALL_ExpandEnvironmentStringsW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    WideText wcRest = wcText, wcExpanded;
    for (size_t nSign; (nSign = wcRest.find(u'%')) != wcRest.npos;) {
        const size_t nEnd = wcRest.find(u'%', nSign + 1);
        const auto found =
            nEnd == wcRest.npos
                ? process().environment.end()
                : process().environment.find(UpperText(wcRest.substr(nSign + 1, nEnd - nSign - 1)));
        const bool bKnown = found != process().environment.end();
        wcExpanded += wcRest.substr(0, nSign) + (bKnown ? found->second : wcRest.substr(nSign, nEnd - nSign));
        wcRest.erase(0, bKnown ? nEnd + 1 : nEnd);
    }
    wcExpanded += wcRest;
    if (wcExpanded.size() < cchOut) {
        wcExpanded.copy(wcOut, wcExpanded.size());
        wcOut[wcExpanded.size()] = 0;
    }
    return static_cast<DWORD>(wcExpanded.size()) + 1;
}

UINT WINAPI GetSystemDirectoryW(LPWSTR tcFolder, UINT cchFolder)
{
    FAILS(GetSystemDirectoryW);
    if (Lies(CALL_GetSystemDirectoryW, LIE_UNTERMINATED)) {
        std::fill_n(tcFolder, cchFolder, u'S');
        return cchFolder ? cchFolder - 1 : 0;
    }
    if (Lies(CALL_GetSystemDirectoryW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    const UINT cchFound = static_cast<UINT>(tcSystemFolder.size());
    if (cchFound >= cchFolder) {
        return cchFound + 1; /* what is needed */
    }
    std::memcpy(tcFolder, tcSystemFolder.c_str(), (cchFound + 1) * sizeof(WCHAR));
    return cchFound;
}

LANGID WINAPI GetUserDefaultLangID(void)
{
    FAILS(GetUserDefaultLangID);
    return process().usLangId;
}
