/* The reader of resources in PE files: the built libraries against their sources, small files made byte by
   byte, and files that lie about themselves. */
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

#include <gtest/gtest.h>

#include "built_library.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "hosted/machine.h"
#include "hosted/pe_resources.h"
#include "hosted/standin.h"
#include "places.h"
#include "support/tiny_pe.h"

namespace {

namespace fs = std::filesystem;

using Strings = std::map<long, std::u16string>;

constexpr u16 ENGLISH = 0x0409;
constexpr u16 GERMAN = 0x0007; /* the neutral language: all German users */
constexpr u16 VERSION = 16;

fs::path Source(const std::string& name)
{
    return fs::path(TQUI_SOURCE_DIR "/package/resources") / name;
}

/* Numbers by the names that the headers of ids give them. */
std::map<std::string, long> NamedIds()
{
    std::map<std::string, long> ids;
    for (const char* cHeader : {"control_ids.h", "string_ids.h"}) {
        std::ifstream file(fs::path(TQUI_SOURCE_DIR "/src/description") / cHeader);
        for (std::string word; file >> word;) {
            if (word == "#define" && file >> word && file.peek() != '\n') {
                file >> ids[word];
            }
        }
    }
    return ids;
}

/* Strings of a resource source, read line by line: name, text in quotation marks. */
Strings SourceStrings(const std::string& name)
{
    const std::map<std::string, long> ids = NamedIds();
    std::ifstream file(Source(name));
    Strings strings;
    for (std::string line; std::getline(file, line);) {
        const size_t nName = line.find("ID"), nComma = line.find(','), nOpen = line.find('"'),
                     nClose = line.rfind('"');
        if (nName == 4 && nComma < nOpen && nOpen < nClose) {
            const std::string text = line.substr(nOpen + 1, nClose - nOpen - 1);
            const auto id = ids.find(line.substr(nName, nComma - nName));
            EXPECT_TRUE(id != ids.end() && strings.emplace(id->second, Widen(text)).second)
                << name << ": " << line;
        }
    }
    return strings;
}

/* The numbers of strings, in order, what follows without a gap drawn together: "1 3-5". */
std::string Ranges(const Strings& strings)
{
    std::string all;
    for (auto it = strings.begin(); it != strings.end(); ++it) {
        const long lFirst = it->first;
        long lLast = lFirst;
        for (auto next = std::next(it); next != strings.end() && next->first == lLast + 1; it = next++) {
            lLast++;
        }
        all += (all.empty() ? "" : " ") + std::to_string(lFirst) +
               (lLast > lFirst ? "-" + std::to_string(lLast) : "");
    }
    return all;
}

/* All strings that are not empty, in one language's order. */
Strings ReadStrings(std::span<const u8> file, const std::vector<u16>& aLanguages)
{
    Strings strings;
    for (int nId = 0; nId <= 0xFFFF; nId++) {
        PeText text{};
        if (FindPeString(file, static_cast<u16>(nId), aLanguages, &text) && text.cch > 0) {
            strings[nId] = TextAt(file, text);
        }
    }
    return strings;
}

/* The conversions of a format one behind the other, from each % to its letter. */
std::string Conversions(const std::u16string& wcText)
{
    std::string all;
    bool bInside = false;
    for (const char cChar : Narrow(wcText)) {
        bInside = bInside || cChar == '%';
        if (bInside) {
            all += cChar;
        }
        bInside = bInside && !std::isalpha(static_cast<unsigned char>(cChar));
    }
    return all;
}

/* Reads all there is to read. Every piece must lie inside the bytes, which are in a block of exactly their
   size so that a sanitizer sees one byte too many. */
void ReadHostile(std::span<const u8> bytes, int nLimit = 2000)
{
    const auto pCopy = std::make_unique<u8[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), pCopy.get());
    const std::span<const u8> file(pCopy.get(), bytes.size());

    const std::vector<PeResource> list = ListPeResources(file, nLimit);
    ASSERT_LE(list.size(), static_cast<size_t>(nLimit));
    for (const PeResource& resource : list) {
        ASSERT_LE(resource.data.nOffset, file.size());
        ASSERT_LE(resource.data.cbSize, file.size() - resource.data.nOffset);
    }
    for (const u16 usId : {u16{0}, u16{15}, u16{16}, u16{17}, u16{IDS_LETTER}, u16{IDS_TITLE_QUALITY},
                           u16{IDS_ORDER_UP_RIGHT}}) {
        PeText text{};
        if (FindPeString(file, usId, LanguageOrder(GERMAN), &text)) {
            ASSERT_LE(text.nOffset, file.size());
            ASSERT_LE(text.cch, (file.size() - text.nOffset) / 2);
        }
    }
    PePiece piece{};
    if (FindPeResource(file, PeName(PE_BITMAP), PeName(u"LOGOBITMAP"), LanguageOrder(0), &piece)) {
        ASSERT_LE(piece.nOffset, file.size());
        ASSERT_LE(piece.cbSize, file.size() - piece.nOffset);
    }
    IsWholePeImage(file);
}

/* ---- the built libraries ---- */

TEST(LanguageLibraries, HoldTheTextsOfTheirSources)
{
    const Strings english = SourceStrings("strings_en.rc"), german = SourceStrings("strings_de.rc");
    ASSERT_EQ(english.size(), 234u);
    const Bytes all = BuiltLibrary("TXT.DLL"), only = BuiltLibrary("ENUS.DLL");
    EXPECT_TRUE(IsWholePeImage(all) && IsWholePeImage(only));
    EXPECT_EQ(ReadStrings(all, {ENGLISH}), english);
    EXPECT_EQ(ReadStrings(all, {GERMAN}), german);
    EXPECT_EQ(ReadStrings(only, LanguageOrder(GERMAN)), english);
    /* Libraries of other languages are made elsewhere: the numbers stand, whatever the names are. */
    EXPECT_EQ(Ranges(english),
              "121 129 1002-1004 1008 1011-1012 1021 1030-1032 1040-1042 1062-1063 1090-1093 1097 1099 "
              "1101 1104-1106 1109-1110 1114-1115 1120-1122 1128 1132 1135-1136 1140-1144 1147-1149 "
              "1151-1152 1203-1209 1216-1222 1701-1703 1706-1708 1711-1715 1718-1721 1732 1738 1746 "
              "1748-1750 1752 1754-1756 1801-1811 1818-1819 1823 1825 1851-1856 1862-1865 1867 "
              "1869-1879 1882-1883 1891 1893-1895 1918-1919 1945-1946 1964 1966 1979 1983 1989 "
              "1997-2000 2201-2208 2224 2300 2310 2320-2321 2323 2326-2327 2330-2341 2370-2373 2420 "
              "2423-2429 2455-2456 2505-2526 2529-2532 2601-2614 2631 2752-2759");
}

TEST(LanguageLibraries, SpeakOfTheSameThings)
{
    const Strings english = SourceStrings("strings_en.rc"), german = SourceStrings("strings_de.rc");
    for (const auto& [nId, wcText] : english) {
        SCOPED_TRACE(nId);
        const auto other = german.find(nId);
        if (other == german.end()) {
            ADD_FAILURE() << "not in German";
            continue;
        }
        EXPECT_LT(wcText.size(), 128u);
        EXPECT_LT(other->second.size(), 128u);
        EXPECT_GT(other->second.size(), 0u);
        const bool bFormat = (nId >= IDS_LEAST_WIDTH && nId <= IDS_LARGEST_LENGTH) ||
                             nId == IDS_STATUS_COPIES || nId == IDS_STATUS_COLLATED;
        if (nId == IDC_PERCENT) {
            continue;
        }
        EXPECT_EQ(Conversions(wcText), Conversions(other->second));
        EXPECT_EQ(Conversions(wcText), !bFormat ? "" : nId > IDS_LARGEST_LENGTH ? "%d" : "%d%02d%d%d");
    }
    EXPECT_EQ(english.size(), german.size());
    for (const Strings& strings : {english, german}) {
        EXPECT_NE(strings.at(IDS_UNIT_INCH),
                  strings.at(IDS_UNIT_MM));                    /* the editors tell the unit by its name */
        EXPECT_EQ(strings.at(IDS_SETTINGS_EXTENSION), u"TQS"); /* a file extension is not translated */
    }
}

TEST(LanguageLibraries, HoldThePicturesAndTheVersion)
{
    const std::map<std::u16string, std::string> pictures = {{u"LOGOBITMAP", "logo.bmp"},
                                                            {u"DUPSIMPLE", "dupsimple.bmp"},
                                                            {u"DUPLONG", "duplong.bmp"},
                                                            {u"DUPSHORT", "dupshort.bmp"}};
    for (const char* cLibrary : {"TXT.DLL", "ENUS.DLL"}) {
        SCOPED_TRACE(cLibrary);
        const Bytes library = BuiltLibrary(cLibrary);
        for (const auto& [wcName, file] : pictures) {
            SCOPED_TRACE(file);
            PePiece piece{};
            ASSERT_TRUE(FindPeResource(library, PE_BITMAP, PeName(wcName), LanguageOrder(GERMAN), &piece));
            const Bytes picture = ReadDisk(Source(file)); /* its header of 14 bytes is not in the resource */
            const Bytes stored(library.begin() + static_cast<long>(piece.nOffset),
                               library.begin() + static_cast<long>(piece.nOffset + piece.cbSize));
            EXPECT_EQ(stored, Bytes(picture.begin() + 14, picture.end()));
            EXPECT_EQ(picture[28], 8);                               /* bits a pixel: a colour table ... */
            EXPECT_EQ(picture[picture[10] + picture[11] * 256u], 0); /* ... whose row 0 is the ground */
        }
        PePiece version{};
        ASSERT_TRUE(FindPeResource(library, PeName(VERSION), PeName(1), LanguageOrder(0), &version));
        /* signature, version of the layout, 10.51 */
        const Bytes numbers = {0xBD, 0x04, 0xEF, 0xFE, 0, 0, 1, 0, 51, 0, 10, 0};
        const auto end = library.begin() + static_cast<long>(version.nOffset + version.cbSize);
        EXPECT_NE(std::search(library.begin() + static_cast<long>(version.nOffset), end, numbers.begin(),
                              numbers.end()),
                  end);
    }
}

/* ---- small files ---- */

TEST(PeResources, NamesNumbersAndLanguagesInBothFormats)
{
    const std::vector<TinyResource> list = {{u"DATA", u"ONE", 0, {1}},
                                            {u"DATA", u"TWO", 0, {2, 2}},
                                            {PE_BITMAP, 7, 0x0407, {3}},
                                            {PE_BITMAP, 7, ENGLISH, {4}},
                                            {PE_BITMAP, 9, 0x000A, {5}}};
    for (const bool bWide : {false, true}) {
        SCOPED_TRACE(bWide);
        const TinyPe pe(list, bWide);
        const auto found = [&](const PeName& type, const PeName& name, u16 usUser) {
            PePiece piece{};
            return FindPeResource(pe.bytes, type, name, LanguageOrder(usUser), &piece) && piece.cbSize > 0
                       ? pe.bytes[piece.nOffset]
                       : 0;
        };
        EXPECT_EQ(found(u"DATA", u"ONE", ENGLISH), 1);
        EXPECT_EQ(found(u"DATA", u"TWO", ENGLISH), 2);
        EXPECT_EQ(found(u"DATA", u"TW", ENGLISH), 0);
        EXPECT_EQ(found(u"DATA", 1, ENGLISH), 0);
        const u16 usNameOffset = static_cast<u16>(pe.bytes[RSRC + 16] | pe.bytes[RSRC + 17] << 8);
        EXPECT_EQ(found(usNameOffset, u"ONE", ENGLISH), 0); /* where a name lies is no number */
        EXPECT_EQ(found(u"DAT", u"ONE", ENGLISH), 0);
        EXPECT_EQ(found(PE_BITMAP, 7, 0x0407), 3);
        EXPECT_EQ(found(PE_BITMAP, 7, 0x0C07), 4); /* another German: English */
        EXPECT_EQ(found(PE_BITMAP, 9, GERMAN), 5); /* neither: the first there is */
        EXPECT_EQ(found(PE_BITMAP, 9, 0x2C0A), 5);
        EXPECT_EQ(found(PE_BITMAP, 8, ENGLISH), 0);

        const std::vector<PeResource> all = ListPeResources(pe.bytes, 100);
        ASSERT_EQ(all.size(), list.size());
        for (size_t n = 0; n < list.size(); n++) {
            EXPECT_EQ(all[n].type, list[n].type);
            EXPECT_EQ(all[n].name, list[n].name);
            EXPECT_EQ(all[n].usLanguage, list[n].usLanguage);
            EXPECT_EQ(all[n].data.cbSize, list[n].data.size());
        }
    }
}

TEST(PeResources, LanguagesInOrder)
{
    /* Of the languages that are there, the user's is first, then his primary one, then English; the neutral
       one goes before all. */
    const auto picked = [](const std::vector<u16>& aThere, u16 usUser) {
        std::vector<TinyResource> list;
        for (const u16 usLanguage : aThere) {
            list.push_back({PE_STRING, 1, usLanguage, StringBlock({std::u16string(1, usLanguage + 1)})});
        }
        const Bytes bytes = TinyPe(list).bytes;
        PeText text{};
        EXPECT_TRUE(FindPeString(bytes, 0, LanguageOrder(usUser), &text));
        return TextAt(bytes, text).at(0) - 1;
    };
    EXPECT_EQ(picked({0x0007, 0x0407, 0x0409, 0x0C07}, 0x0C07), 0x0C07);
    EXPECT_EQ(picked({0x0007, 0x0407, 0x0409}, 0x0C07), 0x0007);
    EXPECT_EQ(picked({0x0407, 0x0409}, 0x0C07), 0x0409);
    EXPECT_EQ(picked({0x0407, 0x040C}, 0x0411), 0x0407);
    EXPECT_EQ(picked({0x0000, 0x0407, 0x0409}, 0x0407), 0x0000);
}

TEST(PeResources, StringsEndWithTheirBlock)
{
    Bytes block = StringBlock({u"first", u"", u"last"});
    const auto find = [&](u16 usId) {
        const TinyPe pe({{PE_STRING, 2, ENGLISH, block}, {u"BEHIND", 1, 0, Bytes(600, 'x')}});
        PeText text{};
        const int nFound = FindPeString(pe.bytes, usId, LanguageOrder(ENGLISH), &text);
        return nFound ? Narrow(TextAt(pe.bytes, text)) : "none";
    };
    EXPECT_EQ(find(16), "first");
    EXPECT_EQ(find(17), "");
    EXPECT_EQ(find(18), "last");
    EXPECT_EQ(find(19), "none"); /* behind the end of a block that was cut */
    EXPECT_EQ(find(15), "none");
    block.pop_back();
    EXPECT_EQ(find(18), "none");
    Put16(&block, 0, 0xFFFF);
    EXPECT_EQ(find(16), "none");
    EXPECT_EQ(find(18), "none");
}

TEST(PeResources, DirectoriesThatLeadBackEnd)
{
    const std::vector<TinyResource> list = {{PE_STRING, 1, ENGLISH, StringBlock({u"text"})}};
    const size_t nType = RSRC + 16, nName = nType + 24, nLanguage = nName + 24;
    for (const size_t nEntry : {nType, nName, nLanguage}) {
        SCOPED_TRACE(nEntry);
        TinyPe pe(list);
        ASSERT_EQ(ListPeResources(pe.bytes, 100).size(), 1u);
        Put32(&pe.bytes, nEntry + 4, 0x80000000);
        PeText text{};
        EXPECT_FALSE(FindPeString(pe.bytes, 0, LanguageOrder(ENGLISH), &text));
        EXPECT_TRUE(ListPeResources(pe.bytes, 100).empty());
    }
    /* All entries of three wide levels are one directory: the limit ends it. */
    TinyPe pe(list);
    const u32 ulWide = pe.Size();
    pe.bytes.resize(pe.bytes.size() + 16 + 8 * 60000);
    Put16(&pe.bytes, RSRC + ulWide + 14, 60000);
    for (size_t n = 0; n < 60000; n++) {
        Put32(&pe.bytes, RSRC + ulWide + 16 + 8 * n, PE_STRING);
        Put32(&pe.bytes, RSRC + ulWide + 20 + 8 * n, 0x80000000 | ulWide);
    }
    Put32(&pe.bytes, pe.nSection + 16, pe.Size());
    Put32(&pe.bytes, nType + 4, 0x80000000 | ulWide);
    ReadHostile(pe.bytes, 200000);
}

TEST(PeResources, CutFilesGiveTheSameTextOrNone)
{
    const Strings texts = {{0, u"text"},
                           {IDS_LETTER, u"Letter"},
                           {IDS_TITLE_QUALITY, u"Qualit\u00E4t"},
                           {IDS_PRESET_FACTORY, u"Werkseinstellungen"}};
    const TinyPe tiny({{PE_STRING, 1, 0, StringBlock({u"text"})}});
    for (const Bytes& whole : {BuiltLibrary("TXT.DLL"), tiny.bytes}) {
        int nFound = 0;
        for (size_t cbKept = 0; cbKept < whole.size(); cbKept += cbKept < 0x1800 ? 1 : 61) {
            const std::span<const u8> cut(whole.data(), cbKept);
            ReadHostile(cut);
            ASSERT_FALSE(IsWholePeImage(cut)) << cbKept;
            for (const auto& [nId, wcText] : texts) {
                PeText text{};
                if (FindPeString(cut, static_cast<u16>(nId), LanguageOrder(GERMAN), &text)) {
                    ASSERT_EQ(TextAt(cut, text), wcText) << cbKept;
                    nFound++;
                }
            }
            if (HasFatalFailure()) {
                FAIL() << cbKept << " bytes kept";
            }
        }
        EXPECT_TRUE(nFound > 0 || whole.size() < 0x1000);
    }
}

TEST(PeResources, EveryFieldAtItsBounds)
{
    const Bytes good = TinyPe({{u"DATA", u"ONE", 0, {1, 2, 3}},
                               {PE_BITMAP, u"LOGOBITMAP", 0, {4}},
                               {PE_STRING, 1, ENGLISH, StringBlock({u"zero", u"one"})},
                               {PE_STRING, 2, GERMAN, StringBlock({u"sixteen", u"", u"eighteen"})}})
                           .bytes;
    const u32 cb = static_cast<u32>(good.size());
    for (size_t nOffset = 0; nOffset + 4 <= good.size(); nOffset++) {
        for (const u32 ulValue : {0u, 1u, 0x7Fu, 0xFFFFu, cb - 1, cb, cb + 1, 0x7FFFFFFFu, 0x80000000u,
                                  0x80000010u, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
            Bytes bytes = good;
            Put32(&bytes, nOffset, ulValue);
            ReadHostile(bytes);
            bytes = good;
            Put16(&bytes, nOffset, ulValue & 0xFFFF);
            ReadHostile(bytes);
            if (HasFatalFailure()) {
                FAIL() << "offset " << nOffset << " value " << ulValue;
            }
        }
    }
}

/* The stand-in's lies, which the sweeps build on, are told where they are asked for and nowhere else. */
TEST(ResourceLies, LoadStringLiesAboutItsLength)
{
    StartMachine();
    PutFile(u"C:\\TXT.DLL", BuiltLibrary("TXT.DLL"));
    const HMODULE hModule = LoadLibraryExW(u"C:\\TXT.DLL", nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(hModule);
    EXPECT_EQ(CountLive().nModules, 1);
    const auto ask = [hModule](LieKind kind) {
        WCHAR wcText[12] = {};
        TellLies(kind, CALL_LoadStringW);
        const int cch = LoadStringW(hModule, IDS_TITLE_LAYOUT, wcText, 10);
        TellLies(LIE_NONE);
        EXPECT_EQ(wcText[10], 0); /* no lie goes beyond the room */
        return std::pair(cch, std::u16string(wcText));
    };
    EXPECT_EQ(ask(LIE_NONE), std::pair(6, std::u16string(u"Layout")));
    EXPECT_EQ(ask(LIE_SHORT), std::pair(3, std::u16string(u"Lay")));
    EXPECT_EQ(ask(LIE_UNTERMINATED), std::pair(10, std::u16string(u"Layout####")));
    EXPECT_GT(ask(LIE_HUGE).first, 0x7FFF0000);

    EXPECT_FALSE(LoadLibraryExW(u"C:\\TXT.DLL", nullptr, 0)); /* its code is never run */
    StopMachine();
    EXPECT_EQ(CountLive().nModules, 0); /* what a test leaves is taken away */
}

} // namespace
