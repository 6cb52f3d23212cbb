/* The bytes are a settings file. What is listed in it is read; nothing may be read or written outside the buffers.
   Then a key and a section of it are written: they must be found, and everything else as it was. */
#include <algorithm>

#include "fuzz/require.h"
#include "hosted/standin.h"
#include "profile/profile_values.h"
#include "profile/section_file.h"

namespace {

constexpr char16_t FUZZ_FILE[] = u"C:\\fuzz\\f.ini";
constexpr int LIST_CHARS = 300;
constexpr int NAME_LIMIT = 8; /* names of a list that are read and written */

/* The file as it stands at one moment. */
struct Reader {
    ProfileFile file = OpenProfile(FUZZ_FILE);

    /* Reads into a block of just cchOut characters, so that the sanitizer sees the first one behind it. */
    WideText Read(LPCWSTR wcSection, LPCWSTR wcKey, int cchOut) const
    {
        std::vector<WCHAR> wcOut(static_cast<size_t>(cchOut), u'~');
        if (!ReadProfileText(OpenSection(file, wcSection), wcKey, wcOut.data(), cchOut)) {
            return u"none";
        }
        size_t cchText = WideText(wcOut.data(), wcOut.size()).find(u'\0');
        Require(cchText < wcOut.size());
        return {wcOut.data(), cchText};
    }

    /* The first names of the sections, or of a section's keys. */
    std::vector<WideText> List(LPCWSTR wcSection, u32 cchOut) const
    {
        std::vector<WCHAR> wcOut(cchOut, u'~');
        u32 cchList = wcSection ? ListProfileKeys(OpenSection(file, wcSection), wcOut.data(), cchOut)
                                : ListProfileSections(file, wcOut.data(), cchOut);
        Require(cchList <= cchOut - 2 && !wcOut[cchList] && !wcOut[cchList + 1]);
        std::vector<WideText> names;
        for (u32 nAt = 0; nAt < cchList && names.size() < NAME_LIMIT;) {
            names.emplace_back(wcOut.data() + nAt);
            nAt += static_cast<u32>(names.back().size()) + 1;
        }
        return names;
    }
};

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
    Reader reader;
    for (const WideText& wcSection : reader.List(nullptr, LIST_CHARS)) {
        bool bOwn = IsOwn(wcSection, u"SECTION");
        if (bOwn && wcSkippedKey.empty()) {
            continue;
        }
        for (const WideText& wcKey : reader.List(wcSection.c_str(), LIST_CHARS)) {
            if (!bOwn || !IsOwn(wcKey, wcSkippedKey)) {
                values.push_back(reader.Read(wcSection.c_str(), wcKey.c_str(), LIST_CHARS));
            }
        }
    }
    return values;
}

void WriteBoth()
{
    std::vector<WideText> before = Others(u"KEY");
    Require(ReplaceKey(FUZZ_FILE, u"Section", u"Key", u"-42"));
    Reader written;
    Require(ReadProfileInt(OpenSection(written.file, u"SECTION"), u"KEY", 1) == -42);
    std::vector<WideText> after = Others(u"KEY");
    Require(std::equal(before.begin(), before.begin() + std::ptrdiff_t(std::min(before.size(), after.size())),
                       after.begin()));
    Bytes once = GetFile(FUZZ_FILE);
    Require(ReplaceKey(FUZZ_FILE, u"Section", u"Key", u"-42") && GetFile(FUZZ_FILE) == once);

    before = Others({});
    SectionLines lines = {};
    WriteProfileHex(&lines, u"Key", 0xABC);
    Require(ReplaceSection(FUZZ_FILE, u"Section", lines));
    Require(Reader().Read(u"Section", u"Key", LIST_CHARS) == u"00000ABC");
    after = Others({});
    Require(before == after);
    once = GetFile(FUZZ_FILE);
    Require(ReplaceSection(FUZZ_FILE, u"Section", lines) && GetFile(FUZZ_FILE) == once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    StartOnce();
    u8 bKind = cb ? pBytes[cb - 1] : 0;
    SetCodePage(bKind % 3 == 0 ? 1252 : bKind % 3 == 1 ? 932 : 65001);
    PutFile(FUZZ_FILE, Bytes(pBytes, pBytes + cb));

    Reader reader;
    reader.List(nullptr, 2u + bKind % 8);
    for (const WideText& wcSection : reader.List(nullptr, LIST_CHARS)) {
        ProfileSection section = OpenSection(reader.file, wcSection.c_str());
        reader.List(wcSection.c_str(), 2u + bKind % 8);
        for (const WideText& wcKey : reader.List(wcSection.c_str(), LIST_CHARS)) {
            reader.Read(wcSection.c_str(), wcKey.c_str(), 1 + bKind % 8);
            ReadProfileInt(section, wcKey.c_str(), -1);
            ReadProfileLong(section, wcKey.c_str(), -1);
            ReadProfileHex(section, wcKey.c_str(), 1);
        }
    }
    WriteBoth();
    return 0;
}
