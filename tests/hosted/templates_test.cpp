/* The dialogs of the language libraries: what the pages rely on, and whether they can be read. */
#include <algorithm>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include "built_library.h"
#include "description/control_ids.h"
#include "description/string_ids.h"
#include "hosted/dialog_template.h"

namespace {

using Ids = std::vector<u32>;

constexpr u16 ENGLISH = 0x0409;
constexpr u16 GERMAN = 0x0007;
constexpr u32 VISIBLE = 0x10000000, CHILD = 0x40000000, GROUP = 0x20000, TABSTOP = 0x10000;

/* A letter for the kind, the id, "-" when not visible, "!" when a static notifies. b button, c check box,
   d default button, e edit, f frame, g group box, h and v scroll bars, i icon, l list box, m picture, o combo
   box, r radio button, t text. */
const std::string PREVIEW =
    "b1701 b1720 f1651- g1120 m1692 o1349- t1144- t1920 t1925 t1926 t1927 t1928 t1929 ";
const std::string POSITION =
    "b1703 b1722 b1723 b1746 e1511 e1512 f1684- g1106 t1875 t1876 t1980 t1981 v1624 v1625 ";
const std::string THREE =
    "b1703 d1724 g1140 g1141 g1142 l1410 l1411 l1412 o1326 o1327 o1328 t1950 t1951 t1952 ";
const std::string NOTICE = "i1652 t1916- t1921 t1922 t1923 t1924 ";
const std::string ABOUT = "t1896 t1897 t1898 t1899 t1900 t1901 ";
const std::string FONTS = "b1712 b1713 b1714 b1715 b1750 l1404 t1862 ";

const std::map<u16, std::string> contract = {
    {IDD_LAYOUT,
     PREVIEW + "b1746 c1802 c1803 c1819 e1513- g1101 g1109 g1148 m1653 o1306 o1323 o1348- o1359 r1205 r1206 "
               "r1207 r1221 r1222 t1110 t1852- t1919 t1989- t1997 t1998 v1606-"},
    {IDD_PAPER,
     PREVIEW +
         "b1746 b1756 c1801 c1808 c1811 c1818- c1823- c1825 e1501 e1506 g1149 h1602 i1661- i1686- o1301 "
         "o1302- o1303 o1305- o1344 o1400 t1121- t1122 t1851 t1853 t1854- t1855 t1877 t1891 t1999 v1601"},
    {IDD_QUALITY,
     PREVIEW +
         "b1711- b1738 b1746 c1809 e1530- e1531- g1114 g1128- g1151 o1304 o1316- o1331- o1342 r1208 r1209 "
         "r1216 r1217 t1132- t1863 t1892- t1945- t1946- t1964- t1983 v1612- v1613-"},
    {IDD_FILES,
     "b1703 b1748 b1749 d1740 e1538 e1539 g1152 o1333 o1334 o1335 r1218 r1219 r1220 t1135 t1136 t1966"},
    {IDD_SIZES, "b1703 b1706 b1707 b1708 d1702 l1403 t1856"},
    {IDD_SIZE, "b1703 b1709 b1710 b1746 e1503 e1504 e1505 g1104 t1864 t1865 t1866 t1867 t1868 v1622 v1623"},
    {IDD_FONTS, PREVIEW + FONTS + "c1807 c1810"},
    {IDD_DEVICE_FONTS, FONTS + "b1701 c1807- c1810- m1692"},
    {IDD_PAIR, "b1703 d1717 e1518 o1319 o1320 t1880 t1881 t1882 t1883"},
    {IDD_WATERMARKS,
     PREVIEW + "b1718 b1719 b1721 b1746 e1520 g1105 l1405 r1203 r1204 t1869 t1877 t1895 v1608"},
    {IDD_TEXT_MARK,
     POSITION + "b1725 c1804 c1805 c1806 e1507 e1508 e1509 e1510 f1654- g1115 o1317 t1870 t1871 t1872 t1873 "
                "t1874 t1877 t1979 v1603 v1604 v1605"},
    {IDD_IMAGE_MARK, POSITION + "b1754 e1514 e1515 e1516 o1357 t1147 t1878 t1893 t1894 v1607"},
    {IDD_OPTIONS3, THREE},
    {IDD_OPTIONS4, THREE + "g1143 l1413 o1329 t1953"},
    {IDD_NOTICE, NOTICE + "d1732"},
    {IDD_QUESTION, NOTICE + "b1703 d1702"},
    {IDD_ABOUT_PAGE, ABOUT + "m1692"},
    {IDD_ABOUT, ABOUT + "d1732 m1692!"},
};

const std::set<u16> pages = {IDD_LAYOUT,       IDD_PAPER,      IDD_QUALITY,   IDD_FONTS,
                             IDD_DEVICE_FONTS, IDD_WATERMARKS, IDD_ABOUT_PAGE};
const std::set<u16> withPreview = {IDD_LAYOUT, IDD_PAPER, IDD_QUALITY, IDD_FONTS, IDD_WATERMARKS};

/* Controls that take the place of each other: of two sets in a list at most one is to be seen. */
const std::map<u16, std::vector<std::vector<Ids>>> alternatives = {
    {IDD_LAYOUT,
     {{{IDC_LAYOUT_PAGES_LABEL, IDC_LAYOUT_PAGES, IDC_LAYOUT_BORDERS, IDC_LAYOUT_ORDER_LABEL,
        IDC_LAYOUT_ORDER},
       {IDC_LAYOUT_POSTER_LABEL, IDC_LAYOUT_POSTER},
       {IDC_LAYOUT_BIND_RIGHT}}}},
    {IDD_QUALITY,
     {{{IDC_QUALITY_CORRECTION_LABEL, IDC_QUALITY_CORRECTION_LABEL_ALONE, IDC_QUALITY_CORRECTION,
        IDC_QUALITY_OPTIONS, IDC_QUALITY_INTENT_LABEL, IDC_QUALITY_INTENT},
       {IDC_QUALITY_TONE, IDC_QUALITY_CONTRAST_LABEL, IDC_QUALITY_CONTRAST, IDC_QUALITY_CONTRAST_SPIN,
        IDC_QUALITY_BRIGHTNESS_LABEL, IDC_QUALITY_BRIGHTNESS, IDC_QUALITY_BRIGHTNESS_SPIN}},
      {{IDC_QUALITY_CORRECTION_LABEL}, {IDC_QUALITY_CORRECTION_LABEL_ALONE}},
      {{IDC_QUALITY_OPTIONS}, {IDC_QUALITY_INTENT_LABEL, IDC_QUALITY_INTENT}}}},
    {IDD_SIZE, {{{IDC_SIZE_CHANGE}, {IDC_SIZE_ADD}}}},
    {IDD_PAIR, {{{IDC_PAIR_SYSTEM_LABEL, IDC_PAIR_SYSTEM}, {IDC_PAIR_NAME_LABEL, IDC_PAIR_NAME}}}},
    {IDD_TEXT_MARK,
     {{{IDC_MARK_ADD}, {IDC_MARK_CHANGE}},
      {{IDC_TEXT_MARK_DARKNESS_LABEL, IDC_TEXT_MARK_DARKNESS, IDC_TEXT_MARK_DARKNESS_SPIN, IDC_PERCENT},
       {IDC_TEXT_MARK_COLOR, IDC_TEXT_MARK_COLOR_FRAME, IDC_TEXT_MARK_COLOR_CHOOSE}}}},
    {IDD_IMAGE_MARK, {{{IDC_MARK_ADD}, {IDC_MARK_CHANGE}}}},
    {IDD_NOTICE,
     {{{IDC_NOTICE_LINE1, IDC_NOTICE_LINE2, IDC_NOTICE_LINE3, IDC_NOTICE_LINE4}, {IDC_NOTICE_TEXT}}}},
    {IDD_QUESTION,
     {{{IDC_NOTICE_LINE1, IDC_NOTICE_LINE2, IDC_NOTICE_LINE3, IDC_NOTICE_LINE4}, {IDC_NOTICE_TEXT}}}},
};

/* What the program never shows, on any page. Two choices are not shown on the page IDD_DEVICE_FONTS. */
const std::set<u32> neverShown = {IDC_PRESET_LABEL,         IDC_PRESET,
                                  IDC_LAYOUT_BOOKLET_LABEL, IDC_LAYOUT_BOOKLET,
                                  IDC_LAYOUT_BOOKLET_SPIN,  IDC_PAPER_SOURCE_LABEL,
                                  IDC_PAPER_SOURCE,         IDC_PAPER_TARGET_LABEL,
                                  IDC_PAPER_TARGET,         IDC_PAPER_FIT_TARGET,
                                  IDC_PAPER_CENTRE_TARGET};

/* Labels whose string has another number than they do; IDC_PAIR_OK also takes IDC_OK. */
const std::map<u32, u16> otherStrings = {{IDC_QUALITY_CORRECTION_LABEL_ALONE, IDC_QUALITY_CORRECTION_LABEL},
                                         {IDC_SIZE_CHANGE, IDC_OK},
                                         {IDC_MARK_CHANGE, IDC_OK},
                                         {IDC_OPTIONS_OK, IDC_OK},
                                         {IDC_FILES_OK, IDC_OK},
                                         {IDC_SIZE_ADD, IDS_ADD},
                                         {IDC_MARK_ADD, IDS_ADD},
                                         {IDC_PAIR_OK, IDS_ADD},
                                         {IDC_TEXT_MARK_COLOR_CHOOSE, IDS_CHOOSE},
                                         {IDC_PAIR_NAME_LABEL, IDS_SYSTEM_FONT},
                                         {IDC_PAIR_SYSTEM_LABEL, IDS_SYSTEM_FONT},
                                         {IDC_SIZE_WIDTH_UNIT, IDS_UNIT_MM},
                                         {IDC_SIZE_LENGTH_UNIT, IDS_UNIT_MM},
                                         {IDC_MARK_X_UNIT, IDS_UNIT_MM},
                                         {IDC_MARK_Y_UNIT, IDS_UNIT_MM}};

/* Strings that lists and lines show, first and last. */
const std::map<u32, std::vector<std::pair<u16, u16>>> shownStrings = {
    {IDC_LAYOUT_TYPE, {{IDS_LAYOUT_PAGES, IDS_LAYOUT_BOOKLET}}},
    {IDC_LAYOUT_PAGES, {{IDS_PAGES_1, IDS_PAGES_16}}},
    {IDC_LAYOUT_ORDER, {{IDS_ORDER_RIGHT_DOWN, IDS_ORDER_BOTTOM_TO_TOP}}},
    {IDC_LAYOUT_POSTER, {{IDS_POSTER_OFF, IDS_POSTER_4}}},
    {IDC_PAPER_MEDICAL, {{IDS_MEDICAL_OFF, IDS_MEDICAL_LANDSCAPE}}},
    {IDC_QUALITY_CORRECTION, {{IDS_MODE_SYSTEM, IDS_MODE_FIXED}}},
    {IDC_QUALITY_INTENT, {{IDS_INTENT_PERCEPTUAL, IDS_INTENT_ABSOLUTE}}},
    {IDC_IMAGE_MARK_PLACEMENT, {{IDS_PLACE_CENTRE, IDS_PLACE_BOTTOM_RIGHT}}},
    {IDC_FILES_PROFILE, {{IDS_PROFILE_BUILT_IN, IDS_PROFILE_FILE}}},
    {IDC_FILES_SCREEN, {{IDS_SCREEN_BUILT_IN, IDS_SCREEN_FILE}}},
    {IDC_PAIR_PRINTER, {{IDS_NO_PRINTER_FONT, IDS_NO_PRINTER_FONT}}},
    {IDC_OPTIONS_TEXT_VALUE, {{IDS_OPTION_DEFAULT, IDS_OPTION_DEFAULT}}},
    {IDC_WATERMARKS_LIST, {{IDS_NO_WATERMARK, IDS_NO_WATERMARK}}},
    {IDC_PREVIEW_LINE1, {{IDS_STATUS_COPIES, IDS_STATUS_BACK_COVER_EMPTY}}},
    {IDC_PREVIEW_LINE5, {{IDS_STATUS_COPIES, IDS_STATUS_BACK_COVER_EMPTY}}},
    {IDC_NOTICE_LINE1,
     {{IDS_OUTLINE_LINE1, IDS_LARGEST_LENGTH}, {IDS_NOT_PRINTED_LINE1, IDS_NOT_PRINTED_LINE4}}},
    {IDC_NOTICE_LINE4,
     {{IDS_OUTLINE_LINE1, IDS_LARGEST_LENGTH}, {IDS_NOT_PRINTED_LINE1, IDS_NOT_PRINTED_LINE4}}}};

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
        const auto other = otherStrings.find(ulId);
        return String(other == otherStrings.end() ? static_cast<u16>(ulId) : other->second);
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
    return !neverShown.count(ulId) &&
           !(usTemplate == IDD_DEVICE_FONTS && (ulId == IDC_FONTS_RESIDENT || ulId == IDC_FONTS_BITMAPS));
}

bool Holds(const Ids& ids, u32 ulId)
{
    return std::find(ids.begin(), ids.end(), ulId) != ids.end();
}

/* 0 when one of the two takes the place of the other. */
bool SeenTogether(u16 usTemplate, u32 ulOne, u32 ulOther)
{
    const auto lists = alternatives.find(usTemplate);
    if (!Shown(usTemplate, ulOne) || !Shown(usTemplate, ulOther)) {
        return false;
    }
    for (size_t n = 0; lists != alternatives.end() && n < lists->second.size(); n++) {
        for (const Ids& ids : lists->second[n]) {
            for (const Ids& others : lists->second[n]) {
                if (&ids != &others && Holds(ids, ulOne) && Holds(others, ulOther)) {
                    return false;
                }
            }
        }
    }
    return true;
}

/* Calls check(template, its content) for each dialog of each library. */
template <class Check> void ForEachTemplate(Check check)
{
    for (const Library& library : Libraries()) {
        for (const auto& [usId, list] : contract) {
            SCOPED_TRACE(testing::Message() << "template " << usId << ", language " << library.usLanguage);
            check(library, usId, library.Template(usId));
        }
    }
}

/* Widths of texts in dialog units of a font: its unit is a quarter of the mean width of the 52 letters. */
class TextMeasure {
  public:
    explicit TextMeasure(const char* cFont)
    {
        FT_Init_FreeType(&library);
        EXPECT_EQ(FT_New_Face(library, cFont, 0, &face), 0) << cFont;
        EXPECT_EQ(FT_Set_Char_Size(face, 0, 8 * 64, 960, 960), 0);
        nUnit = Sum(u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 52 / 4;
    }
    ~TextMeasure()
    {
        FT_Done_Face(face);
        FT_Done_FreeType(library);
    }
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;

    double Width(const std::u16string& wcText) { return Sum(wcText) / nUnit; }

  private:
    double Sum(const std::u16string& wcText)
    {
        double nSum = 0;
        for (const char16_t wcChar : wcText) {
            EXPECT_EQ(FT_Load_Char(face, wcChar, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP), 0);
            nSum += static_cast<double>(face->glyph->advance.x);
        }
        return nSum;
    }

    FT_Library library{};
    FT_Face face{};
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
    const DialogTemplate layout = Libraries()[0].Template(IDD_LAYOUT);
    EXPECT_EQ(std::count_if(layout.items.begin(), layout.items.end(),
                            [](const DialogItem& item) { return item.windowClass.usId == CLASS_COMBOBOX; }),
              5); /* the reader reads: what follows compares with what it gave */
    ForEachTemplate([](const Library&, u16 usId, const DialogTemplate& read) {
        std::set<std::string> there, wanted;
        for (const DialogItem& item : read.items) {
            const bool bNotify = item.windowClass.usId == CLASS_STATIC && (item.ulStyle & 0x100);
            const std::string name = Kind(item) + std::to_string(item.ulId) +
                                     (item.ulStyle & VISIBLE ? "" : "-") + (bNotify ? "!" : "");
            EXPECT_TRUE(there.insert(name).second) << name << " twice";
            EXPECT_TRUE(item.ulStyle & CHILD) << name;
        }
        std::istringstream words(contract.at(usId));
        for (std::string word; words >> word;) {
            wanted.insert(word);
        }
        EXPECT_EQ(there, wanted);
        EXPECT_TRUE(read.font.wcFace == u"MS Shell Dlg" && read.font.usPoints == 8);
        EXPECT_EQ((read.ulStyle & CHILD) != 0, pages.count(usId) == 1); /* pages are children */
    });
    for (const u16 usId : {u16{IDD_OPTIONS3}, u16{IDD_OPTIONS4}}) {
        for (const DialogItem& item : Libraries()[0].Template(usId).items) {
            EXPECT_TRUE(Kind(item) != 'l' || (item.ulStyle & 0x80)) << item.ulId << " knows no tab stops";
        }
    }
}

TEST(Templates, AreThereOnceForEachLanguage)
{
    std::map<u16, size_t> counts;
    for (const Library& library : {Libraries()[0], Libraries()[2]}) {
        for (const PeResource& resource : ListPeResources(library.bytes, 2000)) {
            if (resource.type == PeName(PE_DIALOG)) {
                counts[resource.usLanguage]++;
                EXPECT_EQ(contract.count(resource.name.usId), 1u);
            }
        }
    }
    EXPECT_EQ(counts, (std::map<u16, size_t>{{GERMAN, contract.size()}, {ENGLISH, 2 * contract.size()}}));
}

TEST(Templates, BearTheTextsThatTheProgramLoads)
{
    ForEachTemplate([](const Library& library, u16 usId, const DialogTemplate& read) {
        for (const DialogItem& item : read.items) {
            const bool bLabel = std::string("bcdgrt").find(Kind(item)) != std::string::npos;
            EXPECT_EQ(Narrow(item.text.wcName), bLabel ? Narrow(library.Label(item.ulId)) : "") << item.ulId;
            EXPECT_EQ(item.text.usId, 0) << item.ulId << " names a picture, which the dialog would own";
        }
        EXPECT_EQ(read.wcTitle.empty(), pages.count(usId) == 1);
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
    for (const u16 usId : pages) {
        const DialogTemplate read = library.Template(usId);
        EXPECT_EQ(read.rect, library.Template(IDD_LAYOUT).rect) << usId;
        for (const DialogItem& item : read.items) {
            const bool bCommon =
                PREVIEW.find(std::to_string(item.ulId)) != std::string::npos || item.ulId == IDC_UNIT;
            if (bCommon && (withPreview.count(usId) || (usId == IDD_DEVICE_FONTS && item.ulId != IDC_UNIT))) {
                EXPECT_EQ(common.emplace(item.ulId, item.rect).first->second, item.rect)
                    << usId << ": " << item.ulId;
            }
        }
    }
    EXPECT_EQ(common.size(), 14u);
    /* Both languages have one layout. */
    for (const auto& [usId, list] : contract) {
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
    TextMeasure measure("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
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
            if (otherStrings.count(item.ulId) && otherStrings.at(item.ulId) == IDS_UNIT_MM) {
                fits(item, library.String(IDS_UNIT_INCH));
            }
            const auto shown = shownStrings.find(item.ulId);
            for (size_t n = 0; shown != shownStrings.end() && n < shown->second.size(); n++) {
                for (u16 us = shown->second[n].first; us <= shown->second[n].second; us++) {
                    fits(item, library.String(us));
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

TEST(DialogTemplateReader, RefusesWhatEndsTooEarly)
{
    for (const u16 usId : {u16{IDD_QUALITY}, u16{IDD_NOTICE}}) {
        PePiece piece{};
        const Library& library = Libraries()[1];
        ASSERT_TRUE(
            FindPeResource(library.bytes, PeName(PE_DIALOG), PeName(usId), LanguageOrder(GERMAN), &piece));
        const auto pWhole = library.bytes.begin() + static_cast<std::ptrdiff_t>(piece.nOffset);
        const DialogTemplate good = library.Template(usId);
        for (size_t cb = 0; cb < piece.cbSize; cb++) {
            const Bytes cut(pWhole,
                            pWhole + static_cast<std::ptrdiff_t>(cb)); /* a block of exactly this size */
            DialogTemplate read;
            read.wcTitle = u"untouched";
            ASSERT_FALSE(ReadDialogTemplate(cut, &read)) << cb;
            ASSERT_EQ(read.wcTitle, u"untouched");
        }
        for (size_t n = 0; n + 1 < piece.cbSize; n++) {
            for (const u8 bValue : {u8{0}, u8{0x7F}, u8{0xFF}}) {
                Bytes poked(pWhole, pWhole + static_cast<std::ptrdiff_t>(piece.cbSize));
                poked[n] = poked[n + 1] = bValue;
                DialogTemplate read;
                if (ReadDialogTemplate(poked, &read)) {
                    ASSERT_LE(read.items.size(), piece.cbSize / 30);
                }
            }
        }
        ASSERT_FALSE(good.items.empty());
    }
}

} // namespace
