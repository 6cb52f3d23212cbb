/* What the library relies on when it reads the language libraries: loading as data, LoadStringW's results and
   what it leaves in the buffer, the pick of the language. The libraries are the built TXT.DLL (English and
   German) and ENUS.DLL (English). */
#include <algorithm>

#include "platform/process.h"
#include "platform/resources.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

constexpr DWORD AS_DATA = LOAD_LIBRARY_AS_DATAFILE;
constexpr DWORD AS_IMAGE = LOAD_LIBRARY_AS_IMAGE_RESOURCE;
constexpr DWORD TO_BE_RUN = LOAD_LIBRARY_SEARCH_SYSTEM32;

constexpr WCHAR FILLER = 0x2588; /* in no text of the libraries */

struct Answer {
    int cch;
    WideString wcText; /* up to the NUL, or the whole buffer */
    bool bEnded, bBehindUntouched;
};

/* LoadStringW into a buffer of cchRoom characters that lies in a larger one full of FILLER. */
Answer AskString(HMODULE hModule, UINT uId, int cchRoom = 128)
{
    WideString wcBuffer(200, FILLER);
    const int cch = LoadStringW(hModule, uId, wcBuffer.data(), cchRoom);
    const auto pRoom = wcBuffer.begin() + cchRoom;
    const auto pNul = std::find(wcBuffer.begin(), pRoom, WCHAR{0});
    const auto pBehind = pNul == pRoom ? pRoom : pNul + 1;
    return {cch, WideString(wcBuffer.begin(), pNul), pNul != pRoom,
            std::all_of(pBehind, wcBuffer.end(), [](WCHAR wcChar) { return wcChar == FILLER; })};
}

class Resources : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcAll = BuiltFile("TXT.DLL");
        tcEnglish = BuiltFile("ENUS.DLL");
    }

    void TearDown() override
    {
        for (HMODULE hModule : aOpen) {
            EXPECT_TRUE(FreeLibrary(hModule));
        }
        BothBuilds::TearDown();
    }

    /* Loads for the length of the test. */
    HMODULE Open(const WideString& tcPath, DWORD dwFlags = AS_DATA | AS_IMAGE)
    {
        const HMODULE hModule = LoadLibraryExW(tcPath.c_str(), nullptr, dwFlags);
        EXPECT_TRUE(hModule) << Ascii(tcPath) << " error " << GetLastError();
        if (hModule) {
            aOpen.push_back(hModule);
        }
        return hModule;
    }

    WideString tcAll, tcEnglish;
    std::vector<HMODULE> aOpen;
};

/* The users that this build can be: every one hosted, the one whose session it is on Windows. */
std::vector<LANGID> Users()
{
#ifdef _WIN32
    return {GetUserDefaultLangID()};
#else
    return {0x0409, 0x0407, 0x0C07, 0x0809, 0x040C, 0x0411};
#endif
}

void BecomeUser(LANGID usLanguage)
{
#ifndef _WIN32
    SetUserLanguage(usLanguage);
#endif
    ASSERT_EQ(GetUserDefaultLangID(), usLanguage);
}

TEST_F(Resources, LoadAsDataOrAsImage)
{
    for (const DWORD dwFlags : {AS_DATA, AS_IMAGE, AS_DATA | AS_IMAGE}) {
        SCOPED_TRACE(dwFlags);
        for (const WideString& tcPath : {tcAll, tcEnglish}) {
            const Answer answer = AskString(Open(tcPath, dwFlags), 1702);
            EXPECT_EQ(answer.cch, 2);
            EXPECT_EQ(answer.wcText, TEXT("OK"));
        }
    }
}

TEST_F(Resources, UserReadsHisLanguageAndElseEnglish)
{
    const HMODULE hAll = Open(tcAll);
    const HMODULE hEnglish = Open(tcEnglish);
    for (const LANGID usUser : Users()) {
        SCOPED_TRACE(usUser);
        BecomeUser(usUser);
        /* The German texts are of the neutral language, so Austrian and Swiss users read them too. */
        const bool bGerman = (usUser & 0x3FF) == 0x07;
        EXPECT_EQ(AskString(hAll, 1004).wcText, bGerman ? TEXT("Qualit\u00E4t") : TEXT("Quality"));
        EXPECT_EQ(AskString(hAll, 1209).wcText, bGerman ? TEXT("Schwarzwei\u00DF") : TEXT("Monochrome"));
        EXPECT_EQ(AskString(hEnglish, 1004).wcText, TEXT("Quality"));
    }
}

TEST_F(Resources, TextIsCutToTheRoomAndEnded)
{
    const HMODULE hModule = Open(tcEnglish); /* 1002 is "Layout" */
    const struct {
        int cchRoom, cch;
        WideString wcText;
    } aRows[] = {{128, 6, TEXT("Layout")}, {7, 6, TEXT("Layout")}, {6, 5, TEXT("Layou")}, {2, 1, TEXT("L")}};
    for (const auto& row : aRows) {
        SCOPED_TRACE(row.cchRoom);
        const Answer answer = AskString(hModule, 1002, row.cchRoom);
        EXPECT_EQ(answer.cch, row.cch);
        EXPECT_EQ(answer.wcText, row.wcText);
        EXPECT_TRUE(answer.bEnded);
        EXPECT_TRUE(answer.bBehindUntouched);
    }
    /* A single character may or may not become the NUL. */
    EXPECT_EQ(AskString(hModule, 1002, 1).cch, 0);
    EXPECT_TRUE(AskString(hModule, 1002, 1).bBehindUntouched);
    EXPECT_EQ(AskString(hModule, 2759).cch, 67);
    EXPECT_EQ(LoadStringW(hModule, 1002, nullptr, 10), 0);
}

TEST_F(Resources, NoRoomGivesTheTextsAddress)
{
    const WCHAR* pText = nullptr;
    const int cch = LoadStringW(Open(tcEnglish), 1003, reinterpret_cast<LPWSTR>(&pText), 0);
    ASSERT_EQ(cch, 5);
    EXPECT_EQ(WideString(pText, 5), TEXT("Paper"));
}

TEST_F(Resources, IdsAtTheBordersOfTheirBlocks)
{
    const HMODULE hModule = Open(tcEnglish);
    EXPECT_EQ(AskString(hModule, 2320).wcText, TEXT("1 page"));
    EXPECT_EQ(AskString(hModule, 2335).wcText, TEXT("Up, then to the right"));
    EXPECT_EQ(AskString(hModule, 2336).wcText, TEXT("Down, then to the left"));
    EXPECT_EQ(AskString(hModule, 0x10000 + 1002).wcText, TEXT("Layout")); /* the low 16 bits count */
}

TEST_F(Resources, MissingStringMayLeaveTheBufferAsItWas)
{
    const HMODULE hModule = Open(tcEnglish);
    for (const UINT uId : {120u, 122u, 1001u, 1005u, 2322u}) { /* left out of a block that is there */
        SCOPED_TRACE(uId);
        const Answer answer = AskString(hModule, uId);
        EXPECT_EQ(answer.cch, 0);
        EXPECT_EQ(answer.wcText, TEXT(""));
        EXPECT_TRUE(answer.bEnded);
        EXPECT_TRUE(answer.bBehindUntouched);
    }
    for (const UINT uId : {0u, 1u, 111u, 9999u, 65535u, 0xFFFFFFFFu}) { /* no such block */
        SCOPED_TRACE(uId);
        const Answer answer = AskString(hModule, uId);
        EXPECT_EQ(answer.cch, 0);
        EXPECT_FALSE(answer.bEnded);
        EXPECT_TRUE(answer.bBehindUntouched);
    }
}

TEST_F(Resources, NullModuleIsTheHostProgram)
{
    EXPECT_EQ(AskString(nullptr, 1002).cch, 0);
}

TEST_F(Resources, FilesThatAreNoLibraryAreRefused)
{
    const WideString tcFolder = TestFolder();
    const std::vector<unsigned char> whole = ReadTestFile(tcAll);
    ASSERT_GT(whole.size(), 4096u);
    const auto start = [&whole](size_t cb) {
        return std::vector<unsigned char>(whole.data(), whole.data() + cb);
    };
    PutTestFile(tcFolder + TEXT("\\TEXT.DLL"), std::string("TQUI\r\n[Strings]\r\n1002=Layout\r\n"));
    PutTestFile(tcFolder + TEXT("\\EMPTY.DLL"), std::string());
    PutTestFile(tcFolder + TEXT("\\HALF.DLL"), start(whole.size() / 2));
    PutTestFile(tcFolder + TEXT("\\HEAD.DLL"), start(64));
    const struct {
        const WCHAR* tcName;
        DWORD dwFlags, dwError;
    } aRows[] = {
        {TEXT("\\NONE.DLL"), AS_DATA | AS_IMAGE, ERROR_FILE_NOT_FOUND},
        {TEXT("\\NONE.DLL"), AS_DATA, ERROR_FILE_NOT_FOUND},
        {TEXT("\\NOWHERE\\NONE.DLL"), AS_DATA | AS_IMAGE, ERROR_FILE_NOT_FOUND},
        {TEXT("\\TEXT.DLL"), AS_DATA | AS_IMAGE, ERROR_BAD_EXE_FORMAT},
        {TEXT("\\TEXT.DLL"), AS_DATA, ERROR_BAD_EXE_FORMAT},
        {TEXT("\\EMPTY.DLL"), AS_DATA | AS_IMAGE, ERROR_BAD_EXE_FORMAT},
        {TEXT("\\HEAD.DLL"), AS_DATA, ERROR_BAD_EXE_FORMAT},
        {TEXT("\\HALF.DLL"), AS_DATA | AS_IMAGE, ERROR_BAD_EXE_FORMAT}, /* an image needs all its sections */
    };
    for (const auto& row : aRows) {
        SCOPED_TRACE(Ascii(row.tcName));
        EXPECT_FALSE(LoadLibraryExW((tcFolder + row.tcName).c_str(), nullptr, row.dwFlags));
        EXPECT_EQ(GetLastError(), row.dwError);
    }
    EXPECT_FALSE(LoadLibraryExW(TEXT("TXT.DLL"), nullptr, AS_DATA | AS_IMAGE)); /* no folder, not found */
    EXPECT_FALSE(LoadLibraryExW(TEXT(""), nullptr, AS_DATA | AS_IMAGE));
}

TEST_F(Resources, EachLoadIsFreedOnce)
{
    const HMODULE hFirst = LoadLibraryExW(tcAll.c_str(), nullptr, AS_DATA | AS_IMAGE);
    const HMODULE hSecond = Open(tcAll);
    ASSERT_TRUE(hFirst);
    EXPECT_TRUE(FreeLibrary(hFirst));
    EXPECT_EQ(AskString(hSecond, 1702).wcText, TEXT("OK"));
    EXPECT_FALSE(FreeLibrary(nullptr));
    if (hFirst != hSecond) {
        EXPECT_FALSE(FreeLibrary(hFirst));
    }
}

TEST_F(Resources, SystemLibrariesAreLoadedByTheirFullPathToBeRun)
{
    WideString tcSystem(300, FILLER), tcShort(300, FILLER);
    const UINT cch = GetSystemDirectoryW(tcSystem.data(), 300);
    ASSERT_GT(cch, 3u);
    ASSERT_LT(cch, 260u);
    EXPECT_EQ(tcSystem[cch], 0);
    EXPECT_EQ(GetSystemDirectoryW(tcShort.data(), cch), cch + 1) << "what is needed";
    EXPECT_EQ(tcShort[cch], FILLER);
    tcSystem.resize(cch);
    const HMODULE hVersion = LoadLibraryExW((tcSystem + TEXT("\\version.dll")).c_str(), nullptr, TO_BE_RUN);
    ASSERT_TRUE(hVersion);
    EXPECT_TRUE(GetProcAddress(hVersion, "VerQueryValueW"));
    EXPECT_FALSE(GetProcAddress(hVersion, "VerQueryValue"));
    EXPECT_TRUE(FreeLibrary(hVersion));
    EXPECT_FALSE(LoadLibraryExW((tcSystem + TEXT("\\tqnone.dll")).c_str(), nullptr, TO_BE_RUN));
    const WideString tcPlanted = TestFolder() + TEXT("\\version.dll");
    PutTestFile(tcPlanted, std::string("no library"));
    EXPECT_FALSE(LoadLibraryExW(tcPlanted.c_str(), nullptr, TO_BE_RUN));
    const DWORD dwBeside = LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
    const HMODULE hBeside = LoadLibraryExW((tcSystem + TEXT("\\version.dll")).c_str(), nullptr, dwBeside);
    EXPECT_TRUE(hBeside);
    EXPECT_TRUE(FreeLibrary(hBeside));
    EXPECT_FALSE(LoadLibraryExW((TestFolder() + TEXT("\\tqnone.dll")).c_str(), nullptr, dwBeside));
}

TEST_F(Resources, NamesOfTheEnvironmentAreExpanded)
{
    WCHAR wcProfile[260], wcOut[300];
    ASSERT_NE(GetEnvironmentVariableW(TEXT("USERPROFILE"), wcProfile, 260), 0u);
    const WideString wcWanted = WideString(wcProfile) + TEXT("\\%tq none%100%");
    const WCHAR* wcText = TEXT("%userprofile%\\%tq none%100%");
    const auto cchNeeded = static_cast<DWORD>(wcWanted.size() + 1);
    EXPECT_EQ(ExpandEnvironmentStringsW(wcText, wcOut, 300), cchNeeded);
    EXPECT_EQ(wcWanted, wcOut);
    EXPECT_GE(ExpandEnvironmentStringsW(wcText, wcOut, cchNeeded - 1), cchNeeded);
}

} // namespace
