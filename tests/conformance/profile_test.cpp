/* How the text of a settings file is read: by the library's own reader on both builds, and by the system's profile
   calls, which have to answer the same. Then the calls for the locale's values. */
#include <algorithm>
#include <random>

#include "platform/files.h"
#include "platform/profile.h"
#include "profile/profile_values.h"
#include "support/script.h"

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

/* A list of names, each ended by a comma; empty ones are left out. */
std::string List(const WCHAR* wcList, size_t cch)
{
    std::string list;
    for (size_t nAt = 0; nAt < cch;) {
        WideString wcName = wcList + nAt;
        list += wcName.empty() ? "" : Ascii(wcName) + ",";
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

/* The bytes that a word of a script stands for, with \r, \n, \t and \xHH in it. */
std::string Bytes(const std::string& word)
{
    std::string bytes;
    for (size_t i = 0; i < word.size(); i++) {
        const char cNext = word[i] == '\\' && i + 1 < word.size() ? word[i + 1] : 0;
        const size_t nPlain = std::string("rnt").find(cNext);
        if (cNext == 'x') {
            bytes += static_cast<char>(std::stoi(word.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else if (cNext && nPlain != std::string::npos) {
            bytes += "\r\n\t"[nPlain];
            i++;
        } else {
            bytes += word[i];
        }
    }
    return bytes;
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

class ProfileScripts : public ProfileFiles, public testing::WithParamInterface<Script> {
  protected:
    /* What both readers answer about the file that the script has put together. */
    template <class Question> std::string AskBoth(Question question)
    {
        const WideString tcPath = Put(text_);
        const std::string own = question(OwnReader(tcPath));
        EXPECT_EQ(own, question(SystemReader(tcPath)));
        return own;
    }
    std::string Read(const Args& w)
    {
        std::string text = AskBoth([&](const auto& reader) { return reader.Text(Wide(w[0]), Wide(w[1])); });
        for (char* pEnd : {&text.front(), &text.back()}) {
            *pEnd = *pEnd == ' ' ? '_' : *pEnd;
        }
        return text;
    }
    std::string Number(const Args& w)
    {
        return AskBoth(
            [&](const auto& reader) { return std::to_string(reader.Number(Wide(w[0]), Wide(w[1]))); });
    }
    std::string text_;
};

TEST_P(ProfileScripts, AreReadAsWritten)
{
    const auto number = [](const std::string& word) { return static_cast<u32>(ToNumber(word)); };
    const Verbs verbs = {
        DEED("file", text_ = Bytes(w[0])),
        DEED("wide-file", text_ = Utf16(Bytes(w[0]))),
        DEED("line", text_ += Bytes(w[0])),
        VERB("read", Read(w)),
        VERB("number", Number(w)),
        VERB("number-of", (text_ = "[s]\r\nk=" + Bytes(w[0]) + "\r\n", Number({"S", "K"}))),
        VERB("sections", AskBoth([](const auto& reader) { return reader.Sections(); })),
        VERB("keys", AskBoth([&](const auto& reader) { return reader.Keys(Wide(w[0])); })),
        VERB("cut-sections", OwnReader(Put(text_)).Sections(number(w[0]))),
        VERB("cut-keys", OwnReader(Put(text_)).Keys(Wide(w[0]), number(w[1]))),
#ifndef _WIN32
        DEED("code-page", SetCodePage(static_cast<UINT>(number(w[0])))),
#endif
    };
    Play(GetParam(), verbs);
}

INSTANTIATE_TEST_SUITE_P(, ProfileScripts, testing::ValuesIn(ReadScripts("conformance_profile.txt")),
                         ScriptName);

TEST_F(ProfileFiles, FilesThatAnotherHoldsAloneAreAsIfEmpty)
{
    const WideString tcHeld = Put("[a]\r\nx=1\r\n");
    const HANDLE hFile = CreateFileW(tcHeld.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(OwnReader(tcHeld).Text(TEXT("a"), TEXT("x")), "none");
    EXPECT_EQ(SystemReader(tcHeld).Text(TEXT("a"), TEXT("x")), "none");
    CloseHandle(hFile);
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

TEST_F(ProfileFiles, RandomFilesAreReadAsTheSystemReadsThem)
{
    int nFound = 0;
    for (unsigned i = 0; i < 5000; i++) {
        std::string text = RandomFile(i + 1).Text();
        WideString tcPath = Put(text);
        OwnReader own(tcPath);
        SystemReader system(tcPath);
        SCOPED_TRACE(std::to_string(i) + ": " + Ascii(Wide(text)));
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

} // namespace
