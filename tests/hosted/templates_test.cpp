/* The dialogs of the language libraries: what the pages rely on, and whether they can be read. */
#include <algorithm>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "built_library.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "hosted/dialog_template.h"
#include "hosted/machine.h"
#include "platform/glyphs.h"
#include "support/data_file.h"

namespace {

constexpr u16 ENGLISH = 0x0409;
constexpr u16 GERMAN = 0x0007;
constexpr u32 VISIBLE = 0x10000000, CHILD = 0x40000000, GROUP = 0x20000, TABSTOP = 0x10000;

using IdSet = std::set<u32>;

/* What tests/data/templates.txt says, by the numbers of its names. */
struct Contract {
    std::map<u32, std::set<std::string>> controls;
    std::map<std::string, IdSet> sets; /* pages, with preview, never shown, common to all with a preview */
    std::vector<std::pair<u32, std::vector<IdSet>>> either;
    std::map<u32, std::vector<u32>> label, shows; /* the string; first, last, first, last string */
};

Contract ReadContract()
{
    Contract contract;
    const std::map<std::string, long> ids = NamedIds();
    std::map<std::string, std::string> parts;
    const auto numbers = [&](const std::string& names) {
        std::vector<u32> all;
        for (const std::string& name : SplitTrimmed(names, ' ')) {
            EXPECT_TRUE(ids.count(name)) << name;
            all.push_back(static_cast<u32>(ids.count(name) ? ids.at(name) : 0));
        }
        return all;
    };
    const auto set = [&](const std::string& names) {
        const std::vector<u32> all = numbers(names);
        return IdSet(all.begin(), all.end());
    };
    for (const DataRow& row : ReadRows("templates.txt")) {
        if (row[0] == "part") {
            parts[row[1]] = row[2];
        } else if (row[0] == "controls") {
            for (const std::string& word : SplitTrimmed(row[2], ' ')) {
                const DataRow each = SplitTrimmed(parts.count(word) ? parts.at(word) : word, ' ');
                contract.controls[numbers(row[1])[0]].insert(each.begin(), each.end());
            }
        } else if (row[0] == "either") {
            auto& sets = contract.either.emplace_back(numbers(row[1])[0], std::vector<IdSet>()).second;
            std::transform(row.begin() + 2, row.end(), std::back_inserter(sets), set);
        } else if (row.size() > 2) {
            (row[0] == "label" ? contract.label : contract.shows)[numbers(row[1])[0]] = numbers(row[2]);
        } else {
            contract.sets[row[0]] = set(row[1]);
        }
    }
    for (const std::string& word : SplitTrimmed(parts.at("PREVIEW"), ' ')) {
        contract.sets["common"].insert(static_cast<u32>(std::stoul(word.substr(1))));
    }
    return contract;
}

const Contract& TheContract()
{
    static const Contract contract = ReadContract();
    return contract;
}

bool IsIn(const char* cSet, u32 ulId)
{
    return TheContract().sets.at(cSet).count(ulId) == 1;
}

struct Library {
    Bytes bytes;
    u16 usLanguage;

    std::u16string String(u16 usId) const
    {
        PeText text{};
        const bool bFound = FindPeString(bytes, usId, LanguageOrder(usLanguage), &text);
        return bFound ? TextAt(bytes, text) : std::u16string();
    }

    /* The label that the program loads for a control. */
    std::u16string Label(u32 ulId) const
    {
        const auto other = TheContract().label.find(ulId);
        return String(static_cast<u16>(other == TheContract().label.end() ? ulId : other->second[0]));
    }

    DialogTemplate Template(u16 usId) const
    {
        PePiece piece{};
        DialogTemplate read;
        EXPECT_TRUE(
            FindPeResource(bytes, PeName(PE_DIALOG), PeName(usId), LanguageOrder(usLanguage), &piece));
        EXPECT_TRUE(ReadDialogTemplate(std::span(bytes).subspan(piece.nOffset, piece.cbSize), &read)) << usId;
        return read;
    }
};

const std::vector<Library>& Libraries()
{
    static const std::vector<Library> list = {{BuiltLibrary("TXT.DLL"), ENGLISH},
                                              {BuiltLibrary("TXT.DLL"), GERMAN},
                                              {BuiltLibrary("ENUS.DLL"), ENGLISH}};
    return list;
}

/* Letter of the kind, or "?" when the style is not the one that the pages need. */
char Kind(const DialogItem& item)
{
    const u32 ulStyle = item.ulStyle;
    const auto is = [ulStyle](u32 ulMask, u32 ulValue) { return (ulStyle & ulMask) == ulValue; };
    switch (item.windowClass.usId) {
    case CLASS_BUTTON: {
        const std::map<u32, char> kinds = {{0, 'b'}, {1, 'd'}, {3, 'c'}, {7, 'g'}, {9, 'r'}};
        return kinds.count(ulStyle & 0xF) ? kinds.at(ulStyle & 0xF) : '?';
    }
    case CLASS_STATIC: {
        const std::map<u32, char> kinds = {{0, 't'}, {1, 't'}, {3, 'i'}, {7, 'f'}, {14, 'm'}};
        return kinds.count(ulStyle & 0x1F) ? kinds.at(ulStyle & 0x1F) : '?';
    }
    case CLASS_EDIT: return is(0x2004, 0) ? 'e' : '?';                      /* one line, any character */
    case CLASS_LISTBOX: return is(0x3 | 0x200000, 0x200001) ? 'l' : '?';    /* notify, unsorted, scrolls */
    case CLASS_COMBOBOX: return is(0x103 | 0x200000, 0x200003) ? 'o' : '?'; /* drop-down list, unsorted */
    case CLASS_SCROLLBAR: return is(0x1, 1) ? 'v' : 'h';
    default: return '?';
    }
}

/* The rectangle that is seen: a combo box is closed. */
DialogRect Seen(const DialogItem& item)
{
    DialogRect rect = item.rect;
    rect.cy = item.windowClass.usId == CLASS_COMBOBOX ? i16{14} : rect.cy;
    return rect;
}

int Right(const DialogRect& rect)
{
    return rect.x + rect.cx;
}

int Bottom(const DialogRect& rect)
{
    return rect.y + rect.cy;
}

bool Inside(const DialogRect& inner, const DialogRect& outer)
{
    return inner.x >= outer.x && inner.y >= outer.y && Right(inner) <= Right(outer) &&
           Bottom(inner) <= Bottom(outer);
}

bool Overlap(const DialogRect& a, const DialogRect& b)
{
    return a.x < Right(b) && b.x < Right(a) && a.y < Bottom(b) && b.y < Bottom(a);
}

bool Shown(u16 usTemplate, u32 ulId)
{
    return !IsIn("never shown", ulId) &&
           !(usTemplate == IDD_DEVICE_FONTS && (ulId == IDC_FONTS_RESIDENT || ulId == IDC_FONTS_BITMAPS));
}

/* 0 when one of the two takes the place of the other. */
bool SeenTogether(u16 usTemplate, u32 ulOne, u32 ulOther)
{
    if (!Shown(usTemplate, ulOne) || !Shown(usTemplate, ulOther)) {
        return false;
    }
    for (const auto& [ulTemplate, sets] : TheContract().either) {
        const auto holder = [&sets = sets](u32 ulId) {
            return std::find_if(sets.begin(), sets.end(),
                                [ulId](const IdSet& ids) { return ids.count(ulId) == 1; });
        };
        const auto one = holder(ulOne), other = holder(ulOther);
        if (ulTemplate == usTemplate && one != sets.end() && other != sets.end() && one != other) {
            return false;
        }
    }
    return true;
}

/* Calls check(template, its content) for each dialog of each library. */
template <class Check> void ForEachTemplate(Check check)
{
    for (const Library& library : Libraries()) {
        for (const auto& [ulId, controls] : TheContract().controls) {
            SCOPED_TRACE(testing::Message() << "template " << ulId << ", language " << library.usLanguage);
            check(library, static_cast<u16>(ulId), library.Template(static_cast<u16>(ulId)));
        }
    }
}

/* Widths of texts in dialog units of a font: its unit is a quarter of the mean width of the 52 letters. */
class TextMeasure {
  public:
    TextMeasure()
    {
        StartMachine();
        hDc = CreateCompatibleDC(nullptr);
        LOGFONTW font = {};
        font.lfHeight = -960;
        std::u16string_view(u"DejaVu Sans").copy(font.lfFaceName, LF_FACESIZE - 1);
        SelectObject(hDc, CreateFontIndirectW(&font));
        nUnit = Width(u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 52 / 4;
    }
    ~TextMeasure() { StopMachine(); }
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;

    double Width(const std::u16string& wcText) const
    {
        SIZE size = {};
        EXPECT_TRUE(GetTextExtentPoint32W(hDc, wcText.c_str(), static_cast<int>(wcText.size()), &size));
        return size.cx / nUnit;
    }

  private:
    HDC hDc;
    double nUnit = 1;
};

/* Room for text in a control: without the mark of a check box, the edges of a button or field, the arrow. */
int TextRoom(const DialogItem& item)
{
    switch (Kind(item)) {
    case 'r':
    case 'c':
    case 'g': return item.rect.cx - 12;
    case 'b':
    case 'd':
    case 'l': return item.rect.cx - 4;
    case 'o': return item.rect.cx - 16;
    default: return item.rect.cx;
    }
}

TEST(Templates, HaveTheControlsOfTheContract)
{
    ForEachTemplate([](const Library&, u16 usId, const DialogTemplate& read) {
        std::set<std::string> there;
        for (const DialogItem& item : read.items) {
            const bool bNotify = item.windowClass.usId == CLASS_STATIC && (item.ulStyle & 0x100);
            const std::string name = Kind(item) + std::to_string(item.ulId) +
                                     (item.ulStyle & VISIBLE ? "" : "-") + (bNotify ? "!" : "");
            EXPECT_TRUE(there.insert(name).second) << name << " twice";
            EXPECT_TRUE(item.ulStyle & CHILD) << name;
            EXPECT_TRUE(Kind(item) != 'l' || (usId != IDD_OPTIONS3 && usId != IDD_OPTIONS4) ||
                        (item.ulStyle & 0x80))
                << item.ulId << " knows no tab stops";
        }
        EXPECT_EQ(there, TheContract().controls.at(usId));
        EXPECT_TRUE(read.font.wcFace == u"MS Shell Dlg" && read.font.usPoints == 8);
        EXPECT_EQ((read.ulStyle & CHILD) != 0, IsIn("pages", usId)); /* pages are children */
    });
    std::map<u16, size_t> counts;
    for (const Library& library : {Libraries()[0], Libraries()[2]}) {
        for (const PeResource& resource : ListPeResources(library.bytes, 2000)) {
            if (resource.type == PeName(PE_DIALOG)) {
                counts[resource.usLanguage]++;
                EXPECT_EQ(TheContract().controls.count(resource.name.usId), 1u);
            }
        }
    }
    const size_t nEach = TheContract().controls.size();
    EXPECT_EQ(counts, (std::map<u16, size_t>{{GERMAN, nEach}, {ENGLISH, 2 * nEach}})) << "once a language";
}

TEST(Templates, BearTheTextsThatTheProgramLoads)
{
    ForEachTemplate([](const Library& library, u16 usId, const DialogTemplate& read) {
        for (const DialogItem& item : read.items) {
            const bool bLabel = std::string("bcdgrt").find(Kind(item)) != std::string::npos;
            EXPECT_EQ(Narrow(item.text.wcName), bLabel ? Narrow(library.Label(item.ulId)) : "") << item.ulId;
            EXPECT_EQ(item.text.usId, 0) << item.ulId << " names a picture, which the dialog would own";
        }
        EXPECT_EQ(read.wcTitle.empty(), IsIn("pages", usId));
    });
}

TEST(Templates, LieInTheirDialogsWithoutOverlap)
{
    ForEachTemplate([](const Library&, u16 usId, const DialogTemplate& read) {
        const DialogRect dialog{7, 7, static_cast<i16>(read.rect.cx - 14),
                                static_cast<i16>(read.rect.cy - 14)};
        for (size_t n = 0; n < read.items.size(); n++) {
            const DialogItem& item = read.items[n];
            EXPECT_TRUE(Inside(Seen(item), dialog)) << item.ulId << " reaches into the margin";
            EXPECT_TRUE(item.rect.cx > 0 && item.rect.cy > 0) << item.ulId;
            for (size_t k = n + 1; k < read.items.size(); k++) {
                const DialogItem& other = read.items[k];
                const bool bField = SeenTogether(usId, item.ulId, other.ulId) &&
                                    std::string("eov").find(Kind(other)) != std::string::npos;
                if (Kind(item) == 't' && !item.text.wcName.empty() && bField &&
                    item.rect.y < Bottom(Seen(other)) && other.rect.y < Bottom(item.rect)) {
                    EXPECT_EQ(item.rect.y, other.rect.y + 3)
                        << item.ulId << " is not level with " << other.ulId;
                }
                if (!SeenTogether(usId, item.ulId, other.ulId) || !Overlap(Seen(item), Seen(other))) {
                    continue;
                }
                /* A group box holds what it meets whole, clear of its title, and stands before it. */
                DialogRect room = item.rect;
                room.y = static_cast<i16>(room.y + 9);
                room.cy = static_cast<i16>(room.cy - 9);
                EXPECT_TRUE(Kind(item) == 'g' && Inside(Seen(other), room))
                    << item.ulId << " meets " << other.ulId;
            }
        }
    });
}

/* Without the right to write, the list of fonts grows by half and its four buttons go. */
TEST(Templates, LeaveTheFontListRoomToGrow)
{
    for (const u16 usId : {u16{IDD_FONTS}, u16{IDD_DEVICE_FONTS}}) {
        const DialogTemplate read = Libraries()[0].Template(usId);
        const auto list = std::find_if(read.items.begin(), read.items.end(),
                                       [](const DialogItem& i) { return i.ulId == IDC_FONTS_LIST; });
        ASSERT_NE(list, read.items.end());
        DialogRect wide = list->rect;
        wide.cx = static_cast<i16>(wide.cx * 3 / 2);
        EXPECT_LE(Right(wide), read.rect.cx - 7);
        for (const DialogItem& item : read.items) {
            EXPECT_TRUE(item.ulId == IDC_FONTS_LIST ||
                        (item.ulId >= IDC_FONTS_ADD && item.ulId <= IDC_FONTS_DEFAULTS) ||
                        !Shown(usId, item.ulId) || !Overlap(wide, Seen(item)))
                << item.ulId;
        }
    }
}

TEST(Templates, LookAlikeOnAllPages)
{
    const Library& library = Libraries()[0];
    std::map<u32, DialogRect> common;
    for (const u32 ulId : TheContract().sets.at("pages")) {
        const DialogTemplate read = library.Template(static_cast<u16>(ulId));
        EXPECT_EQ(read.rect, library.Template(IDD_LAYOUT).rect) << ulId;
        for (const DialogItem& item : read.items) {
            if (IsIn("with preview", ulId) ? IsIn("common", item.ulId) || item.ulId == IDC_UNIT
                                           : ulId == IDD_DEVICE_FONTS && IsIn("common", item.ulId)) {
                EXPECT_EQ(common.emplace(item.ulId, item.rect).first->second, item.rect)
                    << ulId << ": " << item.ulId;
            }
        }
    }
    EXPECT_EQ(common.size(), 14u);
    /* Both languages have one layout. */
    for (const auto& [ulId, controls] : TheContract().controls) {
        const u16 usId = static_cast<u16>(ulId);
        const DialogTemplate english = Libraries()[0].Template(usId), german = Libraries()[1].Template(usId);
        ASSERT_EQ(english.items.size(), german.items.size());
        for (size_t n = 0; n < english.items.size(); n++) {
            EXPECT_TRUE(english.items[n].ulId == german.items[n].ulId &&
                        english.items[n].rect == german.items[n].rect &&
                        english.items[n].ulStyle == german.items[n].ulStyle)
                << usId << ": " << english.items[n].ulId;
        }
    }
}

/* The keyboard goes through a dialog as the eye does, and arrow keys stay within a set of radio buttons. */
TEST(Templates, AreReadInTheOrderOfTheKeyboard)
{
    ForEachTemplate([](const Library&, u16 usId, const DialogTemplate& read) {
        const DialogItem* pLast = nullptr;
        bool bAmongRadios = false;
        for (const DialogItem& item : read.items) {
            const char cKind = Kind(item);
            const bool bFocus = std::string("bcdelo").find(cKind) != std::string::npos;
            if (item.ulStyle & GROUP) {
                bAmongRadios = cKind == 'r';
            }
            EXPECT_EQ(cKind == 'r', bAmongRadios && (bFocus || cKind == 'r')) << item.ulId;
            EXPECT_TRUE(!bFocus || (item.ulStyle & TABSTOP) || item.ulId == IDC_PAIR_NAME) << item.ulId;
            if ((!bFocus && cKind != 'r') || !Shown(usId, item.ulId)) {
                continue;
            }
            if (pLast && SeenTogether(usId, pLast->ulId, item.ulId)) {
                const DialogRect a = Seen(*pLast), b = Seen(item);
                const bool bSameRow = a.y < Bottom(b) && b.y < Bottom(a);
                /* Onward in the row; or below; or at the top of the next column. */
                EXPECT_TRUE(bSameRow ? b.x >= Right(a) : b.y >= Bottom(a) || b.x >= Right(a))
                    << pLast->ulId << " before " << item.ulId;
            }
            pLast = &item;
        }
    });
}

/* Each label in each language, and each row that the libraries give a list, with 5 percent to spare; English
   labels leave 40 percent for other languages, but for IDC_LAYOUT_PAGES_LABEL with its combo box beside it. */
TEST(Templates, GiveTheirTextsRoom)
{
    const TextMeasure measure;
    EXPECT_NEAR(measure.Width(u"nnnn"), 17, 2);
    int nMeasured = 0;
    ForEachTemplate([&](const Library& library, u16 usId, const DialogTemplate& read) {
        const auto fits = [&](const DialogItem& item, const std::u16string& wcText, double nSpare = 1.05) {
            const bool bLines = Kind(item) == 'c' && (item.ulStyle & 0x2000);
            const double nRoom = TextRoom(item) * (bLines ? 1.8 : 1.0);
            EXPECT_LE(measure.Width(wcText) * nSpare, nRoom) << item.ulId << ": " << Narrow(wcText);
            nMeasured += wcText.empty() ? 0 : 1;
        };
        for (const DialogItem& item : read.items) {
            if (!Shown(usId, item.ulId)) {
                continue;
            }
            fits(item, item.text.wcName,
                 library.usLanguage == ENGLISH && item.ulId != IDC_LAYOUT_PAGES_LABEL ? 1.4 : 1.05);
            if (item.ulId == IDC_PAIR_OK) {
                fits(item, library.String(IDC_OK));
            }
            if (library.Label(item.ulId) == library.String(IDS_UNIT_MM)) {
                fits(item, library.String(IDS_UNIT_INCH));
            }
            const auto shown = TheContract().shows.find(item.ulId);
            for (size_t n = 0; shown != TheContract().shows.end() && n < shown->second.size(); n += 2) {
                for (u32 ul = shown->second[n]; ul <= shown->second[n + 1]; ul++) {
                    fits(item, library.String(static_cast<u16>(ul)));
                }
            }
        }
        EXPECT_LE(measure.Width(read.wcTitle) * 1.15, read.rect.cx - 30)
            << usId; /* bold, beside the button */
    });
    EXPECT_GT(nMeasured, 700);
    for (const Library& library : Libraries()) {
        double nTabs = 0;
        for (const u16 usTitle : {u16{IDS_TITLE_LAYOUT}, u16{IDS_TITLE_PAPER}, u16{IDS_TITLE_QUALITY},
                                  u16{IDS_TITLE_FONTS}, u16{IDS_TITLE_WATERMARKS}}) {
            nTabs += measure.Width(library.String(usTitle)) + 12;
        }
        EXPECT_LE(nTabs * 1.05, 296); /* one row of tabs */
    }
}

/* Changed bytes are left to the fuzz target. */
TEST(DialogTemplateReader, RefusesWhatEndsTooEarly)
{
    const Library& library = Libraries()[1];
    PePiece piece{};
    ASSERT_TRUE(
        FindPeResource(library.bytes, PeName(PE_DIALOG), PeName(IDD_QUALITY), LanguageOrder(GERMAN), &piece));
    const auto pWhole = library.bytes.begin() + static_cast<std::ptrdiff_t>(piece.nOffset);
    for (size_t cb = 0; cb < piece.cbSize; cb++) {
        const Bytes cut(pWhole, pWhole + static_cast<std::ptrdiff_t>(cb)); /* a block of exactly this size */
        DialogTemplate read;
        read.wcTitle = u"untouched";
        ASSERT_FALSE(ReadDialogTemplate(cut, &read)) << cb;
        ASSERT_EQ(read.wcTitle, u"untouched");
    }
}

} // namespace
