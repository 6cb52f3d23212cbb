/* How the text of a settings file is read: by the library's own reader on both builds, and by the system's profile
   calls, which have to answer the same. Then the calls for the locale's values. */
#include <algorithm>
#include <random>

#include "platform/files.h"
#include "platform/profile.h"
#include "profile/profile_values.h"
#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/machine.h"
#endif

namespace {

constexpr WCHAR UNTOUCHED = 0xABCD;
constexpr int TEXT_ROOM = 200, LIST_ROOM = 2000;

class ProfileFiles : public BothBuilds {
  protected:
    void SetUp() override
    {
        BothBuilds::SetUp();
        tcFolder = TestFolder();
    }

    /* A file of its own for every text, so that nothing that the system kept can answer. */
    WideString Put(const std::string& text)
    {
        WideString tcPath = tcFolder + Wide("\\P" + std::to_string(++nFile) + ".ini");
        PutTestFile(tcPath, text);
        return tcPath;
    }

    WideString tcFolder;
    int nFile = 0;
};

/* A list of names, each ended by |; empty ones are left out. */
std::string List(const WCHAR* wcList, size_t cch)
{
    std::string list;
    for (size_t nAt = 0; nAt < cch;) {
        WideString wcName = wcList + nAt;
        list += wcName.empty() ? "" : Ascii(wcName) + "|";
        nAt += wcName.size() + 1;
    }
    return list;
}

/* The library's answers about one file. */
struct OwnReader {
    ProfileFile file;

    explicit OwnReader(const WideString& tcPath) : file(OpenProfile(tcPath.c_str())) {}

    std::string Text(const WideString& wcSection, const WideString& wcKey) const
    {
        WCHAR wcOut[TEXT_ROOM + 1];
        std::fill(std::begin(wcOut), std::end(wcOut), UNTOUCHED);
        int bFound = ReadProfileText(OpenSection(file, wcSection.c_str()), wcKey.c_str(), wcOut, TEXT_ROOM);
        EXPECT_EQ(wcOut[bFound ? TEXT_ROOM : 0], UNTOUCHED) << "written behind the buffer, or without a key";
        return bFound ? Ascii(wcOut) : "none";
    }

    INT Number(const WideString& wcSection, const WideString& wcKey) const
    {
        return ReadProfileInt(OpenSection(file, wcSection.c_str()), wcKey.c_str(), 77);
    }

    std::string Keys(const WideString& wcSection, u32 cch = LIST_ROOM) const
    {
        WCHAR wcOut[LIST_ROOM];
        return List(wcOut, ListProfileKeys(OpenSection(file, wcSection.c_str()), wcOut, cch));
    }

    std::string Sections(u32 cch = LIST_ROOM) const
    {
        WCHAR wcOut[LIST_ROOM];
        return List(wcOut, ListProfileSections(file, wcOut, cch));
    }
};

#ifdef _WIN32
/* The system's. */
struct SystemReader {
    WideString tcPath;

    explicit SystemReader(const WideString& tcOf) : tcPath(tcOf) {}

    std::string Text(const WideString& wcSection, const WideString& wcKey) const
    {
        WCHAR wcOut[TEXT_ROOM];
        GetPrivateProfileStringW(wcSection.c_str(), wcKey.c_str(), L"none", wcOut, TEXT_ROOM, tcPath.c_str());
        return Ascii(wcOut);
    }

    INT Number(const WideString& wcSection, const WideString& wcKey) const
    {
        return static_cast<INT>(GetPrivateProfileIntW(wcSection.c_str(), wcKey.c_str(), 77, tcPath.c_str()));
    }

    std::string Keys(const WideString& wcSection) const
    {
        WCHAR wcOut[LIST_ROOM];
        return List(wcOut, GetPrivateProfileStringW(wcSection.c_str(), nullptr, L"", wcOut, LIST_ROOM,
                                                    tcPath.c_str()));
    }

    std::string Sections() const
    {
        WCHAR wcOut[LIST_ROOM];
        return List(wcOut, GetPrivateProfileStringW(nullptr, nullptr, L"", wcOut, LIST_ROOM, tcPath.c_str()));
    }
};
#else
using SystemReader = OwnReader;
#endif

std::string Read(const WideString& tcPath, const std::string& section, const std::string& key)
{
    std::string own = OwnReader(tcPath).Text(Wide(section), Wide(key));
    EXPECT_EQ(own, SystemReader(tcPath).Text(Wide(section), Wide(key))) << section << " / " << key;
    return own;
}

INT Number(const WideString& tcPath, const std::string& section, const std::string& key)
{
    INT nOwn = OwnReader(tcPath).Number(Wide(section), Wide(key));
    EXPECT_EQ(nOwn, SystemReader(tcPath).Number(Wide(section), Wide(key))) << section << " / " << key;
    return nOwn;
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

TEST_F(ProfileFiles, TextsAreCutToTheBuffer)
{
    ProfileFile file =
        OpenProfile(Put("[s]\r\nk=abcd\r\nq=\"abcd\"\r\nl=" + std::string(70000, 'v')).c_str());
    ProfileSection section = OpenSection(file, TEXT("s"));
    for (int cch = 1; cch < 8; cch++) {
        for (const WCHAR* wcKey : {TEXT("k"), TEXT("q"), TEXT("l")}) {
            WCHAR wcOut[9];
            std::fill(std::begin(wcOut), std::end(wcOut), UNTOUCHED);
            EXPECT_EQ(ReadProfileText(section, wcKey, wcOut, cch), 1);
            size_t nFits = std::min<size_t>(static_cast<size_t>(cch) - 1, wcKey[0] == 'l' ? 8 : 4);
            EXPECT_EQ(Ascii(wcOut), std::string(wcKey[0] == 'l' ? "vvvvvvvv" : "abcd").substr(0, nFits));
            EXPECT_EQ(wcOut[cch], UNTOUCHED);
        }
    }
}

TEST_F(ProfileFiles, ListsOfKeysAndSections)
{
    WideString tcPath = Put("[ab]\r\nx=1\r\nflag\r\n;c=1\r\n Long key = 2\r\nX=3\r\n"
                            "[CD]\r\n[]\r\ny=1\r\n[Ab]\r\nz=1\r\n");
    for (const auto& [list, expected] : {std::pair{OwnReader(tcPath).Sections(), "ab|CD|Ab|"},
                                         {SystemReader(tcPath).Sections(), "ab|CD|Ab|"},
                                         {OwnReader(tcPath).Keys(TEXT("AB")), "x|Long key|X|"},
                                         {SystemReader(tcPath).Keys(TEXT("AB")), "x|Long key|X|"},
                                         {OwnReader(tcPath).Keys(TEXT("cd")), ""},
                                         {OwnReader(tcPath).Keys(TEXT("none")), ""}}) {
        EXPECT_EQ(list, expected);
    }
    /* A name that does not fit whole ends the list. */
    OwnReader cut(Put("[ab]\r\n[cd]\r\n[keys]\r\nkl=1\r\nmn=2\r\nop=3\r\n"));
    static const char* const aLists[] = {"",       "",       "kl|",    "kl|",      "kl|",
                                         "kl|mn|", "kl|mn|", "kl|mn|", "kl|mn|op|"};
    for (u32 i = 0; i < std::size(aLists); i++) {
        EXPECT_EQ(cut.Keys(TEXT("keys"), i + 3), aLists[i]) << i + 3;
    }
    EXPECT_EQ(cut.Sections(7), "ab|");
    EXPECT_EQ(cut.Sections(8), "ab|cd|");
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
        EXPECT_EQ(Number(tcPath, "S", "K"), one.nNumber) << one.cValue;
    }
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

TEST_F(ProfileFiles, FilesThatAnotherHoldsAloneAreAsIfEmpty)
{
    WideString tcHeld = Put("[a]\r\nx=1\r\n");
    HANDLE hFile = CreateFileW(tcHeld.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(Read(tcHeld, "a", "x"), "none");
    CloseHandle(hFile);
    EXPECT_EQ(Read(tcHeld, "a", "x"), "1");
}

/* A file put together of what the format knows, with odd bytes in between. The same on every build. */
class RandomFile {
  public:
    explicit RandomFile(unsigned seed) : source(seed) {}

    std::string Text()
    {
        static const char* const aPieces[] = {
            "[",          "]",           "=",      "=",        ";",       "\r\n", "\r\n", "\n",  "\r",  " ",
            "\t",         "\x1A",        "\"",     "'",        "a",       "B",    "b",    "key", "Sec", "k 1",
            "[sec]\r\n",  "[b]\n",       "\nkey=", "\r\na = ", "\nK 1 =", "0x1F", "-5",   "+7",  "0b1", "0o9",
            "4294967297", "99999999999", "12ab",   "\"v\"",    "'w'",     "\x7F", "\x01", "\v",  "\f"};
        int nEncoding = static_cast<int>(Pick(6)), nPieces = static_cast<int>(Pick(60));
        bWide = nEncoding == 1 || nEncoding == 2;
        bBig = nEncoding == 2;
        bytes = nEncoding == 1   ? "\xFF\xFE"
                : nEncoding == 2 ? "\xFE\xFF"
                : nEncoding == 3 ? "\xEF\xBB\xBF"
                                 : "";
        for (const char* cAt = Pick(3) ? "[sec]\n" : ""; *cAt; cAt++) {
            Add(static_cast<unsigned char>(*cAt));
        }
        for (int i = 0; i < nPieces; i++) {
            unsigned nKind = Pick(16);
            if (nKind == 0) {
                static const unsigned aUnits[] = {0,      0x17F, 0x131,  0x212A, 0xD800,
                                                  0xFEFF, 0xA0,  0x3000, 0x2028, 0x85};
                Add(bWide ? aUnits[Pick(10)] : Pick(256));
                continue;
            }
            for (const char* cAt = aPieces[Pick(std::size(aPieces))]; *cAt; cAt++) {
                Add(static_cast<unsigned char>(*cAt));
            }
        }
        return bytes;
    }

  private:
    unsigned Pick(size_t nOf) { return static_cast<unsigned>(source() % nOf); }

    void Add(unsigned uUnit)
    {
        if (bWide) {
            char cLow = static_cast<char>(uUnit & 0xFF), cHigh = static_cast<char>(uUnit >> 8);
            bytes.push_back(bBig ? cHigh : cLow);
            bytes.push_back(bBig ? cLow : cHigh);
        } else {
            bytes.push_back(static_cast<char>(uUnit));
        }
    }

    std::minstd_rand source;
    std::string bytes;
    bool bWide = false, bBig = false;
};

std::string Shown(const std::string& bytes)
{
    std::string shown;
    char cCode[8];
    for (char c : bytes) {
        std::snprintf(cCode, sizeof cCode, "\\x%02X", static_cast<unsigned char>(c));
        shown += c >= ' ' && c <= '~' ? std::string(1, c) : cCode;
    }
    return shown;
}

TEST_F(ProfileFiles, RandomFilesAreReadAsTheSystemReadsThem)
{
    int nFound = 0;
    for (unsigned i = 0; i < 5000; i++) {
        std::string text = RandomFile(i + 1).Text();
        WideString tcPath = Put(text);
        OwnReader own(tcPath);
        SystemReader system(tcPath);
        SCOPED_TRACE(std::to_string(i) + ": " + Shown(text));
        ASSERT_EQ(own.Sections(), system.Sections());
        for (const char* cSection : {"sec", "B"}) {
            WideString wcSection = Wide(cSection);
            /* Where the first key has no name the system lists none. */
            if (own.Text(wcSection, WideString()) == "none") {
                ASSERT_EQ(own.Keys(wcSection), system.Keys(wcSection)) << cSection;
            }
            for (const char* cKey : {"a", "KEY", "k 1"}) {
                WideString wcKey = Wide(cKey);
                ASSERT_EQ(own.Text(wcSection, wcKey), system.Text(wcSection, wcKey))
                    << cSection << " / " << cKey;
                ASSERT_EQ(own.Number(wcSection, wcKey), system.Number(wcSection, wcKey))
                    << cSection << " / " << cKey;
                nFound += own.Text(wcSection, wcKey) != "none";
            }
        }
        DeleteFileW(tcPath.c_str());
    }
    EXPECT_GT(nFound, 2000) << "the files hold hardly any of the keys";
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

TEST_F(ProfileFiles, HostedLocaleAndCodePage)
{
    SetLocaleValue(u"iMeasure", u"0");
    EXPECT_EQ(GetProfileIntW(u"intl", u"imeasure", 7), 0u);
    WideString tcPath = Put("[s]\r\nk=\x82\xA0\r\n");
    EXPECT_EQ(Read(tcPath, "s", "k"), "\\u201A\\u00A0");
    SetCodePage(932);
    EXPECT_EQ(Read(tcPath, "s", "k"), "\\u3042") << "another code page, the same file";
    SetCodePage(1252);
}

#endif

} // namespace
