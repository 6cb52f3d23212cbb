/* What the built language libraries hold, and the reader of resources in PE files on small files made byte by byte. */
#include <algorithm>
#include <map>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "built_library.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "hosted/pe_resources.h"
#include "hosted/standin.h"
#include "places.h"
#include "support/data_file.h"
#include "support/tiny_pe.h"

namespace {

using Strings = std::map<long, std::u16string>;

constexpr u16 ENGLISH = 0x0409;
constexpr u16 GERMAN = 0x0007; /* the neutral language: all German users */

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
    static const std::regex conversion("%[^A-Za-z%]*[A-Za-z]");
    const std::string text = Narrow(wcText);
    std::string all;
    for (std::sregex_iterator it(text.begin(), text.end(), conversion), end; it != end; ++it) {
        all += it->str();
    }
    return all;
}

/* ---- the built libraries ---- */

TEST(LanguageLibraries, SpeakOfTheSameThings)
{
    const Bytes all = BuiltLibrary("TXT.DLL"), only = BuiltLibrary("ENUS.DLL");
    EXPECT_TRUE(IsWholePeImage(all) && IsWholePeImage(only));
    const Strings english = ReadStrings(all, {ENGLISH}), german = ReadStrings(all, {GERMAN});
    EXPECT_EQ(ReadStrings(only, LanguageOrder(GERMAN)), english);
    /* Libraries of other languages are made elsewhere: the numbers stand, whatever the names are. */
    std::set<long> stand, there;
    for (const DataRow& row : ReadRows("string_numbers.txt")) {
        for (const std::string& range : SplitTrimmed(row[0], ' ')) {
            for (long n = std::stol(range); n <= std::stol(range.substr(range.find('-') + 1)); n++) {
                stand.insert(n);
            }
        }
    }
    for (const auto& [nId, wcText] : english) {
        SCOPED_TRACE(nId);
        there.insert(nId);
        const std::u16string wcOther = german.count(nId) ? german.at(nId) : u"";
        EXPECT_LT(wcText.size(), 128u);
        EXPECT_TRUE(!wcOther.empty() && wcOther.size() < 128u);
        const bool bFormat = (nId >= IDS_LEAST_WIDTH && nId <= IDS_LARGEST_LENGTH) ||
                             nId == IDS_STATUS_COPIES || nId == IDS_STATUS_COLLATED;
        if (nId != IDC_PERCENT) {
            EXPECT_EQ(Conversions(wcText), Conversions(wcOther));
            EXPECT_EQ(Conversions(wcText), !bFormat ? "" : nId > IDS_LARGEST_LENGTH ? "%d" : "%d%02d%d%d");
        }
    }
    EXPECT_EQ(there, stand);
    EXPECT_EQ(english.size(), german.size());
    for (const Strings& strings : {english, german}) {
        /* The editors tell the unit by its name; a file extension is not translated. */
        EXPECT_NE(strings.at(IDS_UNIT_INCH), strings.at(IDS_UNIT_MM));
        EXPECT_EQ(strings.at(IDS_SETTINGS_EXTENSION), u"TQS");
    }
}

/* ---- small files ---- */

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

/* The 32-bit form, which no built library has; names and numbers are no substitute for each other. */
TEST(PeResources, NamesAndNumbersInBothFormats)
{
    for (const bool bWide : {false, true}) {
        const TinyPe pe({{u"DATA", u"ONE", 0, {1}}, {u"DATA", u"TWO", 0, {2}}, {PE_BITMAP, 9, 0x000A, {5}}},
                        bWide);
        const auto found = [&](const PeName& type, const PeName& name) {
            PePiece piece{};
            return FindPeResource(pe.bytes, type, name, LanguageOrder(ENGLISH), &piece) && piece.cbSize > 0
                       ? pe.bytes[piece.nOffset]
                       : 0;
        };
        EXPECT_EQ(found(u"DATA", u"TWO"), 2);
        EXPECT_EQ(found(PE_BITMAP, 9), 5) << "the first language that there is";
        const u16 usNameOffset = static_cast<u16>(pe.bytes[RSRC + 16] | pe.bytes[RSRC + 17] << 8);
        EXPECT_EQ(found(u"DATA", u"TW") + found(u"DATA", 1) + found(u"DAT", u"ONE") + found(PE_BITMAP, 8) +
                      found(usNameOffset, u"ONE"),
                  0);
        EXPECT_EQ(ListPeResources(pe.bytes, 100).size(), 3u);
    }
}

/* Directories that lead back end the search; the fuzz target tries whatever else a file may hold. */
TEST(PeResources, DirectoriesThatLeadBackEnd)
{
    const TinyPe good({{PE_STRING, 1, ENGLISH, StringBlock({u"text"})}});
    for (const size_t nLevel : {size_t{0}, size_t{1}, size_t{2}}) {
        Bytes bytes = good.bytes;
        Put32(&bytes, RSRC + 16 + 24 * nLevel + 4, 0x80000000);
        PeText text{};
        EXPECT_FALSE(FindPeString(bytes, 0, LanguageOrder(ENGLISH), &text));
        EXPECT_TRUE(ListPeResources(bytes, 100).empty());
    }
}

TEST(PeResources, CutFilesGiveTheSameTextOrNone)
{
    const Bytes whole = BuiltLibrary("TXT.DLL");
    int nFound = 0;
    for (size_t cbKept = 0; cbKept < whole.size(); cbKept += cbKept < 0x800 ? 1 : 61) {
        const Bytes cut(whole.begin(),
                        whole.begin() + static_cast<long>(cbKept)); /* in a block of this size */
        for (const PeResource& resource : ListPeResources(cut, 2000)) {
            ASSERT_LE(resource.data.nOffset + resource.data.cbSize, cut.size());
        }
        ASSERT_FALSE(IsWholePeImage(cut)) << cbKept;
        PeText text{};
        if (FindPeString(cut, IDS_TITLE_QUALITY, LanguageOrder(GERMAN), &text)) {
            ASSERT_EQ(TextAt(cut, text), u"Qualit\u00E4t") << cbKept;
            nFound++;
        }
    }
    EXPECT_GT(nFound, 0);
}

} // namespace
