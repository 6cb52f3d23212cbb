/* Watermarks built by a stand-in builder. What one build shows stands in a text file; here is what happens meanwhile, and
   what is left of many. */
#include "sheet/watermark_builder.h"

#include <random>

#include "standins/builder_standin.h"
#include "support/power_cuts.h"
#include "support/sheet_script.h"
#include "support/sweep.h"
#include "watermark/watermark_rows.h"
#include "watermark/watermark_store.h"

namespace {

class WatermarkBuilder : public SheetScript {
  protected:
    void Start(const std::string& sample)
    {
        Begin(sample, "ulResolution=300");
        tcFolder = Session()->wcUserFolder;
        SetTickCount(0x1A2B);
        commands.clear();
    }

    /* bMissing: it cannot be started. */
    void SetBuilder(const BuilderManners& manners, u32 ulDelay = 0, bool bMissing = false)
    {
        const auto run = [=, this](const std::string& line) {
            const WideText tcCommand = CommandFileOf(FromCodePage(line.data(), line.size()));
            commands.push_back(GetFile(tcCommand));
            RunBuilderStandin(tcCommand, manners);
        };
        SetProgram(tcBuilder, bMissing ? nullptr : std::function<void(const std::string&)>(run), ulDelay);
    }

    static WatermarkEntry Row(bool bImage)
    {
        WatermarkEntry row;
        ResetWatermarkEntry(&row);
        row.WMType = bImage ? ENTRY_IMAGE : ENTRY_TEXT;
        CopyWide(row.WMString, 64, u"Confidential\ndraft");
        row.WMCharSet = 204;
        row.WMBold = row.WMOutline = row.WMRTL = 1;
        if (bImage) {
            CopyWide(row.WMImageName, PATH_CHARS, u"C:\\logo.bmp");
            row.WMScaleX = 50;
            row.WMScaleY = 75;
        }
        return row;
    }

    WatermarkEntry& Put(i32 nRow, const WatermarkEntry& row)
    {
        return Session()->pWatermarks.get()[nRow] = row;
    }

    /* Files of the user's folder but for settings files and their copies. */
    std::string Left() const
    {
        std::set<std::string> left;
        std::string names;
        std::error_code gone;
        for (const auto& entry : std::filesystem::directory_iterator(HostPath(tcFolder), gone)) {
            const std::string name = entry.path().filename();
            if (name.find(".tqs") == name.npos) {
                left.insert(name);
            }
        }
        for (const std::string& name : left) {
            names += (names.empty() ? "" : ",") + name;
        }
        return names;
    }

    const WideText tcBuilder = u"C:\\Windows\\System32\\spool\\drivers\\x64\\3\\MRK.EXE";
    WideText tcFolder;
    std::vector<Bytes> commands; /* as the builder's runs found them */
};

using Facts = std::map<std::string, std::string>;

/* The lines of UTF-16 text as facts: "KEY=VALUE" by the key, others by their number. */
void AddLines(const std::string& name, const Bytes& bytes, Facts* pFacts)
{
    const size_t nMark = bytes.empty() ? 0 : 1;
    std::istringstream lines(
        Narrow({reinterpret_cast<const char16_t*>(bytes.data()) + nMark, bytes.size() / 2 - nMark}));
    int nLine = 0;
    for (std::string line; std::getline(lines, line); nLine++) {
        line.erase(line.find_last_not_of('\r') + 1);
        std::replace(line.begin(), line.end(), ' ', '_');
        const size_t nEquals = line.find('=');
        const std::string key = nEquals == line.npos ? std::to_string(nLine) : line.substr(0, nEquals);
        (*pFacts)[name + "." + key] = line.substr(nEquals + 1);
        (*pFacts)[name + ".keys"] += nEquals == line.npos ? "" : key + ",";
    }
}

} // namespace

TEST_F(WatermarkBuilder, BuildsByTheTable)
{
    for (const DataRow& data : ReadRows("watermark_builds.txt")) {
        SCOPED_TRACE(data[0]);
        Start(data[1]);
        BuilderManners manners;
        WatermarkEntry& row = Put(0, Row(data[2].starts_with("image")));
        Facts words, facts;
        std::istringstream list(data[2]);
        OwnedFile hForeign;
        for (std::string word; list >> word;) {
            const size_t nEquals = word.find('=');
            const std::string key = word.substr(0, nEquals), value = word.substr(nEquals + 1);
            words[key] = value;
            if (key == "put") {
                PutFile(tcFolder + u"\\" + Widen(value), std::string_view(words["content"]));
            } else if (key == "event") {
                hForeign.reset(CreateEventW(nullptr, 0, 0, Widen(value).c_str()));
            } else if (key == "listed") {
                WatermarkEntry other = Row(true);
                CopyWide(other.WMFileName, PATH_CHARS, Widen("C:\\x\\" + value).c_str());
                other.WMResolution = 1;
                other.WMWidth = other.WMHeight = 1;
                WriteWatermarks((tcFolder + u"\\other.tqs").c_str(), &other, 1);
            } else if (key == "folder") {
                CopyWide(Session()->wcUserFolder, PATH_CHARS, Widen(value).c_str());
            }
        }
        const auto number = [&](const char* cKey) { return std::atoi(words[cKey].c_str()); };
        manners = {static_cast<BuilderManners::Mode>(number("mode")), number("result"), number("font"),
                   Widen(words["nonsense"])};
        SetBuilder(manners, static_cast<u32>(number("delay")), words.count("missing"));
        row.WMColor =
            words.count("color") && !words["color"].empty() ? static_cast<u32>(number("color")) : row.WMColor;
        Session()->pXpi->usColorClass = words.count("class") ? 42 : Session()->pXpi->usColorClass;
        FailCall(CALL_MoveFileExW, static_cast<int>(words.count("refused")));
        const u32 ulBegun = MachineTicks();
        const int nResult = words.count("trial") ? TryWatermark(Session(), nullptr, &row)
                                                 : BuildWatermark(Session(), nullptr, 0);
        StopFaults();
        const auto name = [](const WCHAR* tcPath) { return Narrow(BehindLast(tcPath, '\\')); };
        facts = {{"result", std::to_string(nResult)},
                 {"size", std::to_string(row.WMWidth) + "x" + std::to_string(row.WMHeight)},
                 {"resolution", std::to_string(row.WMResolution)},
                 {"stale", std::to_string(row.bWMStale)},
                 {"file", name(row.WMFileName)},
                 {"color", name(row.WMColorFile)},
                 {"starts", std::to_string(commands.size())},
                 {"waited", std::to_string(MachineTicks() - ulBegun)},
                 {"left", Left()},
                 {"line", StartedPrograms().back()}};
        std::replace(facts["line"].begin(), facts["line"].end(), ' ', '_');
        std::replace(facts["line"].begin(), facts["line"].end(), '|', '/');
        AddLines("wm", GetFile(row.WMFileName), &facts);
        AddLines("cwm", GetFile(row.WMColorFile), &facts);
        for (size_t nRun = 0; nRun < commands.size(); nRun++) {
            AddLines("run" + std::to_string(nRun + 1), commands[nRun], &facts);
        }
        while (RunNextProgram(60000)) { /* one that nobody waited for */
        }
        facts["late"] = Left();
        std::istringstream wanted(data[3]);
        for (std::string token; wanted >> token;) {
            const std::string key = token.substr(0, token.find('='));
            EXPECT_EQ(key + "=" + facts[key], token);
        }
        std::filesystem::remove_all(HostPath(tcFolder));
    }
}

/* While the builder works the page is painted and the cursor says so; nothing that waits in the queue runs. */
TEST_F(WatermarkBuilder, PaintsWhileItWaits)
{
    Start("QP5");
    ASSERT_TRUE(ShowSlot(SLOT_WATERMARKS));
    const HWND hPage = Session()->hPageWnd[SLOT_WATERMARKS];
    const HCURSOR hBefore = SetCursor(LoadCursorW(nullptr, IDC_ARROW)), hArrow = GetCursor();
    RECT invalid;
    int nPainted = 0;
    SetProgram(
        tcBuilder,
        [&](const std::string&) {
            nPainted += !GetInvalidRect(hPage, &invalid) && GetCursor() == LoadCursorW(nullptr, IDC_WAIT);
        },
        51);
    Put(0, Row(false));
    InvalidateRect(hPage, nullptr, 0);
    BuildWatermark(Session(), hPage, 0);
    EXPECT_EQ(nPainted, 1);
    EXPECT_EQ(SetCursor(hBefore), hArrow);
    EXPECT_EQ(BuildWatermark(Session(), hPage, Session()->sWatermarkCount + 1), 0);
    EXPECT_EQ(BuildWatermark(Session(), hPage, -1), 0);
}

/* Builds and trials by builders of all manners, with calls that fail, leave no file but those that the rows name, once a
   build has gone well again. */
TEST_F(WatermarkBuilder, NoFileIsForgotten)
{
    constexpr int STEPS = 1000, ROWS = 4;
    Start("T410A");
    std::mt19937 random(19);
    Session()->pWatermarks.reset(
        static_cast<WatermarkEntry*>(AllocateRows(ROWS + 1, sizeof(WatermarkEntry))));
    Session()->sWatermarkCount = ROWS;
    const char16_t* const aNonsense[] = {u"", u"0", u"abc", u"-1", u"99999999999"};
    const u32 aDelays[] = {0, 0, 40, 9990, 15000};
    int nFailed = 0;
    for (int nStep = 0; nStep < STEPS; nStep++) {
        SetBuilder({static_cast<BuilderManners::Mode>(random() % BuilderManners::MODE_COUNT),
                    static_cast<int>(random() % 3), static_cast<int>(random() % 2), aNonsense[random() % 5]},
                   aDelays[random() % 5], random() % 16 == 0);
        WatermarkEntry& row = Session()->pWatermarks.get()[random() % ROWS];
        DeleteWatermarkFiles(&row, 0);
        row = Row(random() % 2);
        EXPECT_EQ(HoldsNothing([&] {
                      FailCall(ANY_CALL, static_cast<int>(random() % 400),
                               random() % 2 ? FAIL_ONCE : FAIL_FROM_THERE);
                      if (random() % 3) {
                          BuildWatermark(Session(), nullptr,
                                         static_cast<i32>(&row - Session()->pWatermarks.get()));
                      } else {
                          TryWatermark(Session(), nullptr, &row);
                      }
                      nFailed += StopFaults() > 0;
                      return "";
                  }),
                  "");
    }
    EXPECT_GT(nFailed, STEPS / 4);
    while (RunNextProgram(60000)) { /* those that nobody waited for */
    }
    SetBuilder({});
    const WatermarkEntry row = Row(false);
    EXPECT_EQ(TryWatermark(Session(), nullptr, &row), 0);
    for (i32 nRow = 0; nRow < ROWS; nRow++) {
        DeleteWatermarkFiles(Session()->pWatermarks.get() + nRow, 0);
    }
    EXPECT_EQ(Left(), "");
}

/* Wherever the power goes, the next build finds what the cut one left; only behind the end of a build nobody can. */
TEST_F(WatermarkBuilder, LostPowerLeavesNoFile)
{
    Start("T410A");
    SetBuilder({});
    const WatermarkEntry row = Row(false);
    const auto build = [&] {
        Put(0, row);
        EXPECT_EQ(BuildWatermark(Session(), nullptr, 0), 0);
    };
    size_t nWhole = 0;
    const PowerSweep sweep = SweepPowerCuts(tcFolder + u"\\00001A2B.INI", 12, build, [&]() -> std::string {
        const bool bBuilding = HasFile(tcFolder + u"\\00001A2B.INI");
        Put(0, row);
        SetTickCount(0x2000);
        TryWatermark(Session(), nullptr, &row);
        nWhole += !bBuilding && Left() == "00001a2b.cwm,00001a2b.wm";
        return Left().empty() || !bBuilding ? "" : Left();
    });
    EXPECT_EQ(sweep.fault, "");
    EXPECT_GT(sweep.nCuts, 100u);
    EXPECT_GT(nWhole, 0u);
}
