/* What the library relies on in the profile calls: which value a file's text gives, and what is cut where. */
#include <algorithm>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/profile.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "platform/hosted/machine.h"
#endif

namespace {

constexpr WCHAR UNTOUCHED = 0xABCD;

class ProfileFiles : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
    }

    /* A file of its own for every text, so that nothing that was kept can answer. */
    WideString Put(const std::string& text)
    {
        WideString tcPath = tcFolder + Wide("\\P" + std::to_string(++nFile) + ".ini");
        PutTestFile(tcPath, text);
        return tcPath;
    }

    WideString tcFolder;
    int nFile = 0;
};

const WCHAR* OrNull(const WideString& wcText)
{
    return wcText == TEXT("(null)") ? nullptr : wcText.c_str();
}

/* Reads into a buffer of cchOut characters. Result: what the buffer then holds up to its first NUL, or, for
   lists, up to two of them, with NULs shown as '|'. "(null)" stands for a null section or key. */
std::string Read(const WideString& tcPath, const std::string& section, const std::string& key,
                 const std::string& standBy = "none", DWORD cchOut = 200)
{
    WCHAR wcOut[256];
    std::fill(std::begin(wcOut), std::end(wcOut), UNTOUCHED);
    bool bList = section == "(null)" || key == "(null)";
    WideString wcSection = Wide(section), wcKey = Wide(key), wcStandBy = Wide(standBy);
    DWORD cchText = GetPrivateProfileStringW(OrNull(wcSection), OrNull(wcKey), OrNull(wcStandBy), wcOut,
                                             cchOut, tcPath.c_str());
    EXPECT_LT(cchText, cchOut ? cchOut : 1);
    EXPECT_TRUE(cchOut == 0 || wcOut[cchText] == 0);
    EXPECT_TRUE(!bList || cchText == 0 || wcOut[cchText - 1] == 0 || wcOut[cchText + 1] == 0);
    EXPECT_EQ(wcOut[cchOut], UNTOUCHED) << "written behind the buffer";
    WideString wcText(wcOut, cchText);
    EXPECT_TRUE(bList || wcText.find(WCHAR(0)) == WideString::npos);
    std::replace(wcText.begin(), wcText.end(), WCHAR(0), WCHAR('|'));
    return Ascii(wcText);
}

/* ASCII text as the bytes of a file in UTF-16LE with its mark. */
std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (char character : text) {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

TEST_F(ProfileFiles, ValuesByLinesOfAFile)
{
    WideString tcPath = Put("k=before\r\n"
                            "; comment\r\n"
                            "[ Sec ]\r\n"
                            "key = value \r\n"
                            "KEY=second\r\n"
                            ";skipped=1\r\n"
                            "#hash=2\r\n"
                            "flag\r\n"
                            "empty=\r\n"
                            "two words\t=\t x \t y \t\r\n"
                            "eq=a=b\r\n"
                            "semi=a;b # c\r\n"
                            "q1= \"kept \" \r\n"
                            "q2=' single'\r\n"
                            "q3=\"half\r\n"
                            "q4=\"a\"b\"\r\n"
                            "q5=\"\"\r\n"
                            "q6=\"\r\n"
                            "q7=\"mixed'\r\n"
                            "q8=\"\"twice\"\"\r\n"
                            "k[1]=z\r\n"
                            "[sec2]\n"
                            "a=1\n"
                            "\n"
                            "b=2\r"
                            "c=3\r\n"
                            "[SEC]\r\n"
                            "late=1\r\n"
                            "[open\r\n"
                            "o=1\r\n"
                            "  [ in ] dented\r\n"
                            "  i  = 1\r\n"
                            "[x]y]\r\n"
                            "end=last");
    static const struct {
        const char *cSection, *cKey, *cValue;
    } aCases[] = {
        {"Sec", "key", "value"},
        {"sec", "KEY", "value"},
        {" SEC ", " key ", "value"},
        {"Sec", "skipped", "none"},
        {"Sec", "#hash", "2"},
        {"Sec", "flag", "none"},
        {"Sec", "empty", ""},
        {"Sec", "two words", "x \\u0009 y"},
        {"Sec", "eq", "a=b"},
        {"Sec", "semi", "a;b # c"},
        {"Sec", "q1", "kept "},
        {"Sec", "q2", " single"},
        {"Sec", "q3", "\"half"},
        {"Sec", "q4", "a\"b"},
        {"Sec", "q5", ""},
        {"Sec", "q6", "\""},
        {"Sec", "q7", "\"mixed'"},
        {"Sec", "q8", "\"twice\""},
        {"Sec", "k[1]", "z"},
        {"Sec", "late", "none"}, /* the first of two sections of one name is the one */
        {"Sec", "a", "none"},
        {"sec2", "a", "1"},
        {"sec2", "b", "2"},
        {"sec2", "c", "3"},
        {"sec2", "k", "none"},
        {"open", "o", "none"},
        {"in", "i", "1"},
        {"x]y", "end", "last"},
        {"none", "key", "none"},
    };
    for (const auto& one : aCases) {
        EXPECT_EQ(Read(tcPath, one.cSection, one.cKey), one.cValue) << one.cSection << " / " << one.cKey;
    }
}

TEST_F(ProfileFiles, DefaultsLoseTrailingBlanksAndQuotes)
{
    const WideString aPaths[] = {Put("[s]\r\nother=1\r\n"), tcFolder + TEXT("\\missing.ini"),
                                 tcFolder + TEXT("\\missing\\f.ini"), tcFolder};
    for (const WideString& tcPath : aPaths) {
        /* Quotes go as those of a value do, but from a file that cannot be opened the default comes back
           with them. */
        bool bOpened = tcPath == aPaths[0] || tcPath == aPaths[1];
        EXPECT_EQ(Read(tcPath, "t", "k", "\"q\""), bOpened ? "q" : "\"q\"");
        EXPECT_EQ(Read(tcPath, "s", "k", "  a  b  "), "  a  b");
        EXPECT_EQ(Read(tcPath, "s", "k", "(null)"), "");
        EXPECT_EQ(Read(tcPath, "s", "k", ""), "");
        EXPECT_EQ(static_cast<INT>(GetPrivateProfileIntW(TEXT("s"), TEXT("k"), -5, tcPath.c_str())), -5);
    }
    /* A bare name is a file of the system's folder, an empty path none at all. */
    PutTestFile(tcFolder + TEXT("\\tqui-bare.ini"), "[s]\r\nk=found\r\n");
    EXPECT_EQ(Read(TEXT("tqui-bare.ini"), "s", "k"), "none");
    EXPECT_EQ(Read(TEXT(""), "s", "k"), "none");
    EXPECT_EQ(Read(tcFolder + TEXT("\\TQUI-BARE.INI"), "s", "k"), "found");
}

TEST_F(ProfileFiles, TextsAreCutToTheBuffer)
{
    WideString tcPath = Put("[s]\r\nk=abcd\r\nq=\"abcd\"\r\n");
    for (DWORD cchOut = 0; cchOut < 8; cchOut++) {
        size_t cchFits = std::min<size_t>(4, cchOut ? cchOut - 1 : 0);
        EXPECT_EQ(Read(tcPath, "s", "k", "", cchOut), std::string("abcd").substr(0, cchFits)) << cchOut;
        EXPECT_EQ(Read(tcPath, "s", "x", "wxyz  ", cchOut), std::string("wxyz").substr(0, cchFits)) << cchOut;
#ifdef _WIN32
        /* Wine drops the last character of a quoted text that fills the buffer to its end; it fits by the
           documented rule, in which only the NUL takes from the room. */
        cchFits -= cchOut == 5;
#endif
        EXPECT_EQ(Read(tcPath, "s", "q", "", cchOut), std::string("abcd").substr(0, cchFits)) << cchOut;
    }
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("s"), TEXT("k"), TEXT(""), nullptr, 20, tcPath.c_str()), 0u);

    std::string value(70000, 'v');
    std::vector<WCHAR> aLarge(80000, UNTOUCHED);
    tcPath = Put("[s]\r\nk=" + value + "\r\nl=2\r\n");
    DWORD cchOut = static_cast<DWORD>(aLarge.size());
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("s"), TEXT("k"), TEXT(""), aLarge.data(), cchOut, tcPath.c_str()),
              70000u);
    EXPECT_EQ(aLarge[69999], WCHAR('v'));
    EXPECT_EQ(aLarge[70000], WCHAR(0));
    EXPECT_EQ(Read(tcPath, "s", "l"), "2");
}

TEST_F(ProfileFiles, ListsOfKeysAndSections)
{
    WideString tcPath = Put("[ab]\r\nx=1\r\nflag\r\n;c=1\r\n Long key = 2\r\nX=3\r\n"
                            "[CD]\r\n[]\r\ny=1\r\n[Ab]\r\nz=1\r\n");
    EXPECT_EQ(Read(tcPath, "(null)", "(null)"), "ab|CD|Ab|");
    EXPECT_EQ(Read(tcPath, "(null)", "x"), "ab|CD|Ab|");
    EXPECT_EQ(Read(tcPath, "AB", "(null)"), "x|Long key|X|");
    EXPECT_EQ(Read(tcPath, "cd", "(null)", ""), "");
    EXPECT_EQ(Read(tcPath, "none", "(null)", ""), "");
    EXPECT_EQ(Read(Put(""), "(null)", "(null)", "default"), "");
    EXPECT_EQ(Read(tcFolder + TEXT("\\missing.ini"), "(null)", "(null)", "default"), "");

    /* From the first size at which list and closing NUL do not leave one character free, two less than the
       size are said, and two NULs end what was copied. */
    tcPath = Put("[ab]\r\n[cd]\r\n[ef]\r\n[keys]\r\nkl=1\r\nmn=2\r\nop=3\r\n");
    static const char* const aLists[] = {"",         "",          "",         "k",      "kl",
                                         "kl|",      "kl|m",      "kl|mn",    "kl|mn|", "kl|mn|o",
                                         "kl|mn|op", "kl|mn|op|", "kl|mn|op|"};
    for (DWORD cchOut = 0; cchOut < std::size(aLists); cchOut++) {
        EXPECT_EQ(Read(tcPath, "keys", "(null)", "", cchOut), aLists[cchOut]) << cchOut;
    }
    EXPECT_EQ(Read(tcPath, "(null)", "(null)", "", 7), "ab|cd");
    EXPECT_EQ(Read(tcPath, "(null)", "(null)", "", 8), "ab|cd|");
}

TEST_F(ProfileFiles, NumbersAreReadToTheirLastDigit)
{
    static const struct {
        const char* cValue;
        INT nNumber;
    } aCases[] = {
        {"12", 12},
        {"12abc", 12},
        {"-1", -1},
        {" \t 5 ", 5},
        {"+7", 7},
        {"-0", 0},
        {"--3", 0},
        {"- 4", 0},
        {"abc", 0},
        {"007", 7},
        {"1.5", 1},
        {"1e3", 1},
        {"\"12\"", 12},
        {"\" 12\"", 12},
        {"'8'", 8},
        {"12 34", 12},
        {"4294967295", -1},
        {"4294967296", 0},
        {"2147483648", INT(0x80000000)},
        {"99999999999", 1215752191},
        {"-2147483648", INT(0x80000000)},
        {"-99999999999", -1215752191},
        {"0x10", 16},
        {"0X10", 0},
        {"0xfG", 15},
        {"-0x10", -16},
        {"0b11", 3},
        {"0o17", 15},
        {"0x", 0},
        {"", 77}, /* a key without a value is none for numbers */
    };
    for (const auto& one : aCases) {
        WideString tcPath = Put(std::string("[s]\r\nk=") + one.cValue + "\r\n");
        UINT uNumber = GetPrivateProfileIntW(TEXT("S"), TEXT("K"), 77, tcPath.c_str());
        EXPECT_EQ(static_cast<INT>(uNumber), one.nNumber) << one.cValue;
    }
    WideString tcPath = Put("[s]\r\nk=" + std::string(40000, '1') + "\r\nl=4\r\n");
    GetPrivateProfileIntW(TEXT("s"), TEXT("k"), 0, tcPath.c_str());
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("s"), TEXT("l"), 0, tcPath.c_str()), 4u);
}

TEST_F(ProfileFiles, Encodings)
{
    EXPECT_EQ(Read(Put("[s]\r\nk=\xE4\x80\xA0\r\n"), "s", "k"), "\\u00E4\\u20AC\\u00A0");
    EXPECT_EQ(Read(Put(Utf16("[s]\r\nk=v\r\n")), "s", "k"), "v");
    EXPECT_EQ(Read(Put(Utf16("[s]\r\nk=") + "\x2D\x4E\xE4" + std::string(1, '\0') + "\r"), "s", "k"),
              "\\u4E2D\\u00E4"); /* a lone byte at the end is none of the text */
    EXPECT_EQ(Read(Put("\xEF\xBB\xBF[s]\r\nk=\xC3\xA4\r\n"), "s", "k"), "\\u00E4");
    EXPECT_EQ(Read(Put("[s]\r\nk=\xC3\xA4\r\n"), "s", "k"), "\\u00C3\\u00A4");
    EXPECT_EQ(Read(Put(std::string("\xFE\xFF\0[\0s\0]\0\n\0k\0=\x4E\x2D", 16)), "s", "k"), "\\u4E2D");
    EXPECT_EQ(Read(Put(std::string("[s]\r\nk=a\0b\r\nl=2\r\n", 17)), "s", "k"), "a");
    EXPECT_EQ(Read(Put(std::string("[s]\r\nk=a\0b\r\nl=2\r\n", 17)), "s", "l"), "2");
    for (const char* cMarkOnly : {"\xFF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF", "\xEF\xBB"}) {
        EXPECT_EQ(Read(Put(cMarkOnly), "s", "k"), "none");
    }
}

TEST_F(ProfileFiles, ChangesAreSeenAtOnce)
{
    WideString tcPath = Put("[s]\r\nk=000\r\n");
    for (int i = 100; i < 200; i++) {
        std::string number = std::to_string(i); /* the file keeps its size */
        PutTestFile(tcPath, "[s]\r\nk=" + number + "\r\n");
        ASSERT_EQ(Read(tcPath, "s", "k"), number);
        /* A new file under the old name, as our own writing leaves it. */
        std::string next = std::to_string(i + 100);
        WideString tcNew = tcFolder + TEXT("\\new");
        PutTestFile(tcNew, Utf16("[s]\r\nk=" + next + "\r\n"));
        ASSERT_TRUE(MoveFileExW(tcNew.c_str(), tcPath.c_str(), MOVEFILE_REPLACE_EXISTING));
        ASSERT_EQ(Read(tcPath, "s", "k"), next);
    }
}

TEST_F(ProfileFiles, FilesThatAnotherHoldsAloneAreAsIfEmpty)
{
    WideString tcHeld = Put("[a]\r\nx=1\r\n");
    HANDLE hFile = CreateFileW(tcHeld.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(Read(tcHeld, "a", "x"), "none");
    CloseHandle(hFile);
    EXPECT_EQ(Read(tcHeld, "a", "x"), "1");
}

TEST_F(ProfileFiles, ValuesOfTheLocale)
{
    WCHAR wcText[8] = {};
    EXPECT_EQ(GetProfileStringW(TEXT("Intl"), TEXT("IMEASURE"), TEXT("?"), wcText, 8), 1u);
    EXPECT_TRUE(wcText[0] == '0' || wcText[0] == '1');
    EXPECT_EQ(GetProfileIntW(TEXT("intl"), TEXT("iMeasure"), 7), static_cast<UINT>(wcText[0] - '0'));
    EXPECT_EQ(GetProfileStringW(TEXT("intl"), TEXT("sDecimal"), TEXT(""), wcText, 8), 1u);
    EXPECT_EQ(GetProfileStringW(TEXT("intl"), TEXT("none"), TEXT("stand by "), wcText, 8), 7u);
    EXPECT_EQ(Ascii(wcText), "stand b");
    EXPECT_EQ(static_cast<INT>(GetProfileIntW(TEXT("intl"), TEXT("none"), -7)), -7);
    EXPECT_EQ(static_cast<INT>(GetProfileIntW(TEXT("tqui none"), TEXT("iMeasure"), -7)), -7);
}

#ifndef _WIN32

TEST_F(ProfileFiles, HostedLocaleCodePageAndFaults)
{
    SetLocaleValue(u"iMeasure", u"0");
    EXPECT_EQ(GetProfileIntW(u"intl", u"imeasure", 7), 0u);
    WideString tcPath = Put("[s]\r\nk=\x82\xA0\r\n");
    EXPECT_EQ(Read(tcPath, "s", "k"), "\\u201A\\u00A0");
    SetCodePage(932);
    EXPECT_EQ(Read(tcPath, "s", "k"), "\\u3042") << "another code page, the same file";
    SetCodePage(1252);

    tcPath = Put("[s]\r\nk=5\r\n");
    FailCall(CALL_GetPrivateProfileIntW, 1);
    EXPECT_EQ(GetPrivateProfileIntW(u"s", u"k", 7, tcPath.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileIntW(u"s", u"k", 7, tcPath.c_str()), 5u);
    EXPECT_EQ(StopFaults(), 1);

    WCHAR wcText[5] = {0, 0, 0, 0, UNTOUCHED};
    TellLies(LIE_UNTERMINATED);
    GetPrivateProfileStringW(u"s", u"k", u"", wcText, 4, tcPath.c_str());
    EXPECT_EQ(std::count(wcText, wcText + 4, u'\0'), 0);
    EXPECT_EQ(wcText[4], UNTOUCHED);
    TellLies(LIE_HUGE);
    EXPECT_GT(GetPrivateProfileStringW(u"s", u"k", u"", wcText, 4, tcPath.c_str()), 4u);
}

#endif

} // namespace
