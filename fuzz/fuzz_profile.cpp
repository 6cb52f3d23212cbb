/* The bytes are a settings file. What is listed in it is read, and written again; nothing may be read or
   written outside the buffers, and a key written must be found with its value. */
#include <algorithm>
#include <cstdlib>

#include "platform/hosted/machine.h"
#include "platform/profile.h"

namespace {

constexpr char16_t FUZZ_FILE[] = u"C:\\fuzz\\f.ini";
constexpr DWORD LIST_CHARS = 300;
constexpr int NAME_LIMIT = 8; /* names of a list that are read and written */

void Require(bool bTrue)
{
    if (!bTrue) {
        std::abort();
    }
}

/* Reads into a block of just cchOut characters, so that the sanitizer sees the first one behind it. */
WideText Read(LPCWSTR wcSection, LPCWSTR wcKey, LPCWSTR wcDefault, DWORD cchOut)
{
    std::vector<WCHAR> wcOut(cchOut, u'~');
    DWORD cchText = GetPrivateProfileStringW(wcSection, wcKey, wcDefault, wcOut.data(), cchOut, FUZZ_FILE);
    Require(cchOut == 0 ? cchText == 0 : cchText < cchOut && wcOut[cchText] == 0);
    return {wcOut.data(), cchText};
}

std::vector<WideText> ReadList(LPCWSTR wcSection, DWORD cchOut)
{
    std::vector<WideText> names;
    WideText wcList = Read(wcSection, nullptr, u"", cchOut);
    for (size_t nAt = 0; nAt < wcList.size() && names.size() < NAME_LIMIT;) {
        size_t nEnd = std::min(wcList.find(u'\0', nAt), wcList.size());
        names.push_back(wcList.substr(nAt, nEnd - nAt));
        nAt = nEnd + 1;
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    static bool bStarted = false;
    if (!bStarted) {
        StartMachine();
        bStarted = true;
    }
    u8 bKind = cb ? pBytes[cb - 1] : 0;
    SetCodePage(bKind % 3 == 0 ? 1252 : bKind % 3 == 1 ? 932 : 65001);
    PutFile(FUZZ_FILE, Bytes(pBytes, pBytes + cb));

    Read(nullptr, nullptr, u"", bKind % 8);
    for (const WideText& wcSection : ReadList(nullptr, LIST_CHARS)) {
        Read(wcSection.c_str(), nullptr, u"x", bKind % 8);
        for (const WideText& wcKey : ReadList(wcSection.c_str(), LIST_CHARS)) {
            Read(wcSection.c_str(), wcKey.c_str(), u"default ", bKind % 8);
            Read(wcSection.c_str(), wcKey.c_str(), nullptr, LIST_CHARS);
            GetPrivateProfileIntW(wcSection.c_str(), wcKey.c_str(), -1, FUZZ_FILE);
            LPCWSTR wcNew = bKind & 8 ? nullptr : u"7";
            WritePrivateProfileStringW(wcSection.c_str(), wcKey.c_str(), wcNew, FUZZ_FILE);
        }
        if (bKind & 16) {
            WritePrivateProfileStringW(wcSection.c_str(), nullptr, nullptr, FUZZ_FILE);
        }
    }
    Require(WritePrivateProfileStringW(u"Section", u"Key", u"-42", FUZZ_FILE));
    Require(GetPrivateProfileIntW(u"SECTION", u"KEY", 1, FUZZ_FILE) == static_cast<UINT>(-42));
    Bytes before = GetFile(FUZZ_FILE);
    Require(WritePrivateProfileStringW(u"Section", u"Key", u"43", FUZZ_FILE));
    Require(WritePrivateProfileStringW(u"Section", u"Key", u"-42", FUZZ_FILE));
    Require(GetFile(FUZZ_FILE) == before);
    return 0;
}
