/* The bytes are a settings file. What is listed in it is read; nothing may be read or written outside the buffers.
   Then a key and a section of it are written: they must be found, and everything else as it was. */
#include <algorithm>
#include <cstdlib>

#include "fuzz/require.h"
#include "platform/hosted/standin.h"
#include "platform/profile.h"
#include "settingsfile/section_file.h"

namespace {

constexpr char16_t FUZZ_FILE[] = u"C:\\fuzz\\f.ini";
constexpr DWORD LIST_CHARS = 300;
constexpr int NAME_LIMIT = 8; /* names of a list that are read and written */

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

bool IsOwn(const WideText& wcName, const WideText& wcCapitals)
{
    WideText wcFolded = wcName;
    for (WCHAR& wcChar : wcFolded) {
        wcChar = UpperChar(wcChar);
    }
    return wcFolded == wcCapitals;
}

/* Everything of the first sections and keys but one key, or a whole section. */
std::vector<WideText> Others(const WideText& wcSkippedKey)
{
    std::vector<WideText> values;
    for (const WideText& wcSection : ReadList(nullptr, LIST_CHARS)) {
        bool bOwn = IsOwn(wcSection, u"SECTION");
        if (bOwn && wcSkippedKey.empty()) {
            continue;
        }
        for (const WideText& wcKey : ReadList(wcSection.c_str(), LIST_CHARS)) {
            if (!bOwn || !IsOwn(wcKey, wcSkippedKey)) {
                values.push_back(Read(wcSection.c_str(), wcKey.c_str(), u"none", LIST_CHARS));
            }
        }
    }
    return values;
}

void WriteBoth()
{
    std::vector<WideText> before = Others(u"KEY");
    bool bForeign = false; /* letters whose capitals are ASCII */
    for (const WideText& wcSection : ReadList(nullptr, 4096)) {
        bForeign |= wcSection.find_first_of(u"\u017F\u0131") != wcSection.npos;
    }
    Require(ReplaceKey(FUZZ_FILE, u"Section", u"Key", u"-42"));
    Require(bForeign || GetPrivateProfileIntW(u"SECTION", u"KEY", 1, FUZZ_FILE) == static_cast<UINT>(-42));
    std::vector<WideText> after = Others(u"KEY");
    Require(std::equal(before.begin(), before.begin() + std::ptrdiff_t(std::min(before.size(), after.size())),
                       after.begin()));
    Bytes once = GetFile(FUZZ_FILE);
    Require(ReplaceKey(FUZZ_FILE, u"Section", u"Key", u"-42") && GetFile(FUZZ_FILE) == once);

    before = Others({});
    SectionLines lines = {};
    WriteProfileHex(&lines, u"Key", 0xABC);
    Require(ReplaceSection(FUZZ_FILE, u"Section", lines));
    Require(bForeign || Read(u"Section", u"Key", u"", LIST_CHARS) == u"00000ABC");
    after = Others({});
    Require(before == after);
    once = GetFile(FUZZ_FILE);
    Require(ReplaceSection(FUZZ_FILE, u"Section", lines) && GetFile(FUZZ_FILE) == once);
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
        }
    }
    WriteBoth();
    return 0;
}
