/* The pages of a document sheet, worked as their user does. What is clicked and what is then to be seen stands in text
   files; here are the sets of states that no file could list. */
#include <deque>
#include <random>
#include <set>

#include "description/control_ids.h"
#include "settings/checks.h"
#include "sheet/edit_keys.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

class PagesTest : public SheetScript {};

TEST_F(PagesTest, LayoutPageGoesByItsScript)
{
    Play("layout_page.txt");
}

TEST_F(PagesTest, PaperPageGoesByItsScript)
{
    Play("paper_page.txt");
}

TEST_F(PagesTest, QualityPageGoesByItsScript)
{
    Play("quality_page.txt");
}

class PageStates : public SheetScript {
  protected:
    std::string Values(std::initializer_list<const char*> names)
    {
        std::string values;
        for (const char* cName : names) {
            values += Seen(std::string(cName) + "=") + " ";
        }
        return values;
    }

    /* Starts from the record again, with the windows as they are. */
    void Rewind(const DriverDevmode& start)
    {
        record = start;
        Session()->rSnapshot = start;
        ReloadAll();
        std::fill(std::begin(Session()->bPageDirty), std::end(Session()->bPageDirty), 0u);
    }

    /* Something a user may do to any control of the page, but for what opens dialogs. */
    void DoAnything(HWND hPage, std::mt19937& random)
    {
        static const std::vector<WideText> texts = {u"",    u"-",   u"0",    u"7",
                                                    u"1e9", u"100", u"٣٤",   u"4000",
                                                    u"12",  u"99",  u" 50 ", WideText(200, u'9')};
        std::vector<int> controls;
        EnumChildWindows(
            hPage,
            [](HWND hControl, LPARAM lParam) -> BOOL {
                reinterpret_cast<std::vector<int>*>(lParam)->push_back(GetDlgCtrlID(hControl));
                return 1;
            },
            reinterpret_cast<LPARAM>(&controls));
        const int nControl = controls[random() % controls.size()];
        const HWND hControl = GetDlgItem(hPage, nControl);
        const WideText wcClass = HostedClassName(hControl);
        for (int nOther : {IDC_ABOUT, IDC_LOGO, IDC_PRESET_APPLY, IDC_PAPER_SAVED_SIZES}) {
            if (nControl == nOther) {
                return;
            }
        }
        if (wcClass == u"ComboBox") {
            const LRESULT nRows = SendMessageW(hControl, CB_GETCOUNT, 0, 0);
            PickRow(hPage, nControl, nRows > 0 ? static_cast<int>(random() % static_cast<u64>(nRows)) : 0);
        } else if (wcClass == u"Edit") {
            TypeText(hPage, nControl, texts[random() % texts.size()]);
        } else if (wcClass == u"ScrollBar") {
            SpinControl(hPage, nControl, static_cast<int>(random() % 9), static_cast<int>(random() % 500));
        } else {
            ClickControl(hPage, nControl);
        }
    }
};

/* Breadth first through all states that picking and scrolling reach: the zoom and the layout are never both in use and
   both open to the user, and whatever is applied holds a poster or several pages, not both. */
TEST_F(PageStates, ZoomAndLayoutExcludeEachOther)
{
    const std::vector<std::string> actions = {
        "pick LAYOUT_TYPE 0",  "pick LAYOUT_TYPE 1",   "pick LAYOUT_TYPE 99",   "pick LAYOUT_PAGES 1",
        "pick LAYOUT_PAGES 4", "pick LAYOUT_POSTER 3", "spin PAPER_ZOOM_BAR 3", "spin PAPER_ZOOM_BAR 6"};
    Begin("T440B", "sPosterGrowth=0 sScale=0 lPagesPerSheet=1");
    ShowSlot(SLOT_PAPER);
    const DriverDevmode start = record;
    const auto look = [&] {
        return Values({"LAYOUT_TYPE", "LAYOUT_PAGES", "LAYOUT_POSTER", "PAPER_ZOOM"}) +
               Seen("LAYOUT_GROUP+") + Seen("PAPER_ZOOM_LABEL+");
    };
    const auto replay = [&](const std::vector<size_t>& path) {
        Rewind(start);
        for (size_t nAction : path) {
            Do(actions[nAction]);
        }
    };
    std::set<std::string> seen;
    std::deque<std::vector<size_t>> open = {{}};
    while (!open.empty()) {
        const std::vector<size_t> path = open.front();
        open.pop_front();
        replay(path);
        if (!seen.insert(look()).second) {
            continue;
        }
        const bool bZoom = !SaysTheSame(Seen("PAPER_ZOOM=100"), "PAPER_ZOOM=100");
        const bool bLayout = !SaysTheSame(Seen("LAYOUT_TYPE=0"), "LAYOUT_TYPE=0") ||
                             !SaysTheSame(Seen("LAYOUT_PAGES=1"), "LAYOUT_PAGES=1");
        EXPECT_FALSE(bZoom && bLayout && Seen("LAYOUT_GROUP+").ends_with('+') &&
                     Seen("PAPER_ZOOM_LABEL+").ends_with('+'))
            << look();
        EXPECT_FALSE(bZoom && Seen("LAYOUT_TYPE+").ends_with('+')) << look();
        for (size_t nAction = 0; nAction < actions.size(); nAction++) {
            std::istringstream words(actions[nAction]);
            std::string verb, name;
            words >> verb >> name;
            if (Seen(name + "+").ends_with('+')) {
                open.push_back(path);
                open.back().push_back(nAction);
            }
        }
        Session()->bPageDirty[SLOT_LAYOUT] = Session()->bPageDirty[SLOT_PAPER] = 1;
        PressSheetOk(pSheet) ? Begin("T440B", "sPosterGrowth=0 sScale=0 lPagesPerSheet=1") : void();
        EXPECT_FALSE(record.rPrivate.sPosterGrowth && record.rPrivate.lPagesPerSheet > 1) << look();
    }
    EXPECT_GT(seen.size(), 8u);
}

/* Anything that a user may do, then Cancel or OK. What is left alone by Cancel is all but the fields that are written at
   once; what OK stores passes both checks, and a page that is filled from it shows it. */
TEST_F(PageStates, RandomEditsAreStoredOrLeaveNothing)
{
    static const std::set<std::string> atOnce = {"dmFields",           "sLayoutTypeShown", "sPosterGrowth",
                                                 "sFrontCover",        "sScale",           "sScaleTarget",
                                                 "ulLanguageFeatures", "tcOverlayDir",     "sColorRadio"};
    std::mt19937 random(1606);
    for (const char* cSample : {"K100", "T410A", "T440B", "QP5", "QPS", "IX300"}) {
        for (int nWalk = 0; nWalk < 12; nWalk++) {
            Begin(cSample, "");
            const DriverDevmode before = record;
            const bool bApply = nWalk % 3 != 0;
            for (int nStep = 0; nStep < 25; nStep++) {
                ShowSlot(std::array{SLOT_LAYOUT, SLOT_PAPER, SLOT_QUALITY}[random() % 3]);
                DoAnything(Page(static_cast<size_t>(ActiveSheetPage(pSheet))), random);
            }
            if (!bApply) {
                PressSheetCancel(pSheet);
                for (const FieldValue& field : DifferingFields(before, record)) {
                    EXPECT_TRUE(atOnce.contains(field.name)) << cSample << " " << field.name;
                }
                continue;
            }
            Session()->bPageDirty[SLOT_LAYOUT] = Session()->bPageDirty[SLOT_PAPER] = 1;
            Session()->bPageDirty[SLOT_QUALITY] = 1;
            const size_t nResults = SheetResults(pSheet).size();
            PressSheetApply(pSheet);
            DriverDevmode settled = record;
            PrinterCall call(hPrinter);
            EXPECT_TRUE(ValidatePublicPart(call, &settled, Session()->pXpi.get())) << cSample << " " << nWalk;
            /* A model may offer more colour modes than a record may have. */
            EXPECT_TRUE(ValidatePrivatePart(call, &settled.rPrivate, Session()->pXpi.get()) ||
                        record.rPrivate.sColorCorrection > 3)
                << cSample;
            if (SheetResults(pSheet).size() == nResults) {
                continue; /* a conflict of the model kept the sheet */
            }
            const auto shown =
                [&] { /* numbers by what their text counts as */
                      std::string numbers;
                      for (const char* cName : {"PAPER_COPIES", "QUALITY_CONTRAST", "QUALITY_BRIGHTNESS"}) {
                          numbers += std::to_string(ReadNumber(PageOf(cName), Id(cName))) + " ";
                      }
                      return numbers +
                             Values({"LAYOUT_TYPE", "LAYOUT_LANDSCAPE", "LAYOUT_ROTATE", "LAYOUT_BIND_RIGHT",
                                     "PAPER_SIZE", "PAPER_REVERSE", "PAPER_MEDIA", "PAPER_OUTPUT",
                                     "QUALITY_CORRECTION", "QUALITY_INTENT", "QUALITY_RESOLUTION",
                                     "QUALITY_SCREENING", "QUALITY_BLACK_TEXT"});
                };
            const std::string applied = shown();
            ReloadAll();
            EXPECT_EQ(shown(), applied) << cSample << " " << nWalk;
        }
    }
}

} // namespace
