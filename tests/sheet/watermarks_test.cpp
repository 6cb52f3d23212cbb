/* The Watermarks page and its editors: what no script can list. Rows, files and settings file stay of one mind whatever
   the user does and whatever fails; the picture in an editor is that of the row which it stores. */
#include <ctime>
#include <random>

#include "description/control_ids.h"
#include "sheet/text_mark_editor.h"
#include "standins/builder_standin.h"
#include "support/bitmap_builder.h"
#include "support/same_bytes.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

class WatermarksTest : public SheetScript {
  protected:
    void Open(const char* cSample, const std::string& marks)
    {
        Begin(cSample, "ulWMType=0");
        DoAll({"marks " + marks, "page 7"});
    }
    void DoSteps(const std::string& steps) { DoAll(SplitTrimmed(steps, ',')); }

    /* "" when each row of the list can be seen and the spare one is free. */
    std::string BrokenRows() const
    {
        const WatermarkEntry* pRows = Session()->pWatermarks.get();
        std::string fault;
        for (i32 i = 0; i <= Session()->sWatermarkCount; i++) {
            const bool bRow = i < Session()->sWatermarkCount;
            fault +=
                (pRows[i].WMType != ENTRY_FREE) == bRow && (pRows[i].WMString[0] != 0) == bRow ? "" : "row; ";
        }
        return fault;
    }

    /* Built files that stored rows name, in the form of BuiltMarks. */
    std::string NamedFiles()
    {
        PrinterCall call(Session()->hPrinter);
        OwnedBlock<WatermarkEntry> pStored;
        std::set<std::string> names;
        for (i32 i = GetSavedWatermarks(call, &pStored) - 1; i >= 0; i--) {
            for (const WCHAR* tcName : {pStored.get()[i].WMFileName, pStored.get()[i].WMColorFile}) {
                names.insert(Narrow(LowerText(BehindLast(tcName, '\\'))));
            }
        }
        std::string all;
        for (const std::string& name : names) {
            all += name.empty() ? "" : (all.empty() ? "" : ",") + name.substr(7);
        }
        return all;
    }

    static int Trial(UiSession*, HWND, const WatermarkEntry* pTrial)
    {
        trials.push_back(*pTrial);
        return nTrialResult;
    }
    inline static std::vector<WatermarkEntry> trials;
    inline static int nTrialResult;
};

} // namespace

TEST_F(WatermarksTest, GoByTheirScript)
{
    Play("watermarks_page.txt");
}

/* Every confirm asks for a trial in grey, and only one that fails for its outline stops the user. */
TEST_F(WatermarksTest, AnOutlineThatCannotBeMadeIsTheUsersToDecide)
{
    const struct {
        const char *cSample, *cSteps;
        int nResult;
        u32 bStored, bOutline;
        size_t nTrials;
    } aCases[] = {
        {"T410A", "open MARK_CHANGE,see title:Outline_Not_Available,end OK", 1, 1, 1, 1},
        {"T410A", "open MARK_CHANGE,end CANCEL,see focus=TEXT_MARK_SIZE,end CANCEL", 1, 0, 0, 1},
        {"IX300", "open MARK_CHANGE,end escape,click TEXT_MARK_OUTLINE,end MARK_CHANGE", 1, 1, 0, 2},
        {"IX300", "end MARK_CHANGE", 2, 1, 1, 1},
        {"T440B", "end MARK_CHANGE", 1, 1, 1, 0},
    };
    for (const auto& row : aCases) {
        SCOPED_TRACE(std::string(row.cSample) + " " + row.cSteps);
        Open(row.cSample, "text");
        trials.clear();
        nTrialResult = row.nResult;
        Session()->sDialogArg = 7;
        const WatermarkEntry before = *Session()->pWatermarks;
        QueueStep("click TEXT_MARK_OUTLINE");
        for (const std::string& step : SplitTrimmed(row.cSteps, ',')) {
            QueueStep(step);
        }
        const HWND hPage = Session()->hPageWnd[SLOT_WATERMARKS];
        EXPECT_EQ(EditTextMark(hPage, Session(), 0, Trial), static_cast<int>(row.bStored));
        EXPECT_EQ(ModalStepsLeft(), 0u);
        EXPECT_EQ(Session()->sDialogArg, 7);
        EXPECT_EQ(Session()->pWatermarks->WMOutline, row.bOutline);
        EXPECT_EQ(SameBytes(before, *Session()->pWatermarks), !row.bStored);
        ASSERT_EQ(trials.size(), row.nTrials);
        for (const WatermarkEntry& trial : trials) {
            EXPECT_EQ(trial.WMColor, 0xC0C0C0u);
        }
        EXPECT_FALSE(EditTextMark(hPage, Session(), 2, Trial)) << "there is no such row";
        EXPECT_FALSE(EditTextMark(hPage, Session(), -1, Trial));
    }
}

/* What is to be seen while the user edits is what the row shows when it is opened again. */
TEST_F(WatermarksTest, TheEditorsPictureIsThatOfTheStoredRow)
{
    const struct {
        const char *cSample, *cRow, *cEdit;
    } aCases[] = {
        {"T410A", "text", "type TEXT_MARK_SIZE 120,type MARK_X 1"},
        {"T410A", "text", "color 0x00FF00,hit TEXT_MARK_COLOR_FRAME"},
        {"T410A", "arabic", "click TEXT_MARK_OUTLINE,type TEXT_MARK_ANGLE 300"},
        {"IX300", "text", "rtl TEXT_MARK_TEXT,type TEXT_MARK_TEXT a_(b)"},
        {"IX300", "text", "type TEXT_MARK_DARKNESS 90"},
        {"T440B", "text", "click UNIT,type MARK_Y -50"},
        {"IX300", "image", "type IMAGE_MARK_SCALE 350"},
        {"T440B", "image", "pick IMAGE_MARK_PLACEMENT 1"},
        {"T410A", "image", "type IMAGE_MARK_FILE C:\\none.bmp"},
    };
    PutFile(u"C:\\art\\logo.bmp", BitmapFile({1200, 800, 8}, [](int x, int) { return x / 5u; }));
    for (const auto& row : aCases) {
        pictures.clear();
        Open(row.cSample, row.cRow);
        DoSteps("open WATERMARKS_LIST 0,look," + std::string(row.cEdit) +
                ",look,end MARK_CHANGE,open WATERMARKS_LIST 0,look,end CANCEL");
        EXPECT_TRUE(pictures[0] != pictures[1]) << row.cSample << " does not show " << row.cEdit;
        EXPECT_TRUE(pictures[1] == pictures[2]) << row.cSample << " " << row.cEdit;
    }
}

/* Built files are those of the stored rows, at every apply and after every cancel. */
TEST_F(WatermarksTest, AThousandStepsLeaveNoOrphans)
{
    std::mt19937 random(17);
    Open("T410A", "text built picture");
    SetProgram(wcDriverFolder + WideText(u"MRK.EXE"), [](const std::string& line) {
        RunBuilderStandin(CommandFileOf(FromCodePage(line.data(), line.size())), {});
    });
    for (int nStep = 0; nStep < 1000; nStep++) {
        const i32 nRows = Session()->sWatermarkCount;
        const i32 nRow = static_cast<i32>(random() % static_cast<u32>(nRows + 1)) - 1;
        const bool bImage = nRow >= 0 && Session()->pWatermarks.get()[nRow].WMType == ENTRY_IMAGE;
        const std::string digit = std::to_string(8 + random() % 2);
        const auto apply = [&] {
            DoSteps("apply");
            EXPECT_EQ(NamedFiles(), BuiltMarks(Session())) << nStep;
        };
        Do("pick WATERMARKS_LIST " + std::to_string(nRow));
        switch (random() % 7) {
        case 0: DoSteps("open WATERMARKS_ADD,type TEXT_MARK_TEXT " + digit + ",end MARK_ADD"); break;
        case 1: DoSteps("open WATERMARKS_ADD,type TEXT_MARK_TEXT B,end CANCEL"); break;
        case 2:
        case 3:
            if (nRow >= 0) {
                DoSteps(std::string("open WATERMARKS_EDIT,type ") +
                        (bImage ? "IMAGE_MARK_SCALE " : "TEXT_MARK_SIZE ") + digit + ",end MARK_CHANGE");
            }
            break;
        case 4:
            if (nRow >= 0) {
                DoSteps("click WATERMARKS_DELETE");
            }
            break;
        case 5: apply(); break;
        default:
            if (random() % 8 == 0) {
                Begin("T410A", "");
                DoSteps("page 7");
                EXPECT_EQ(NamedFiles(), BuiltMarks(Session())) << nStep;
            }
            break;
        }
        ASSERT_EQ(BrokenRows(), "") << nStep;
    }
    EXPECT_EQ(ForcedCloses(), 0);
}

/* Opening, editing, applying and closing, while calls fail: nothing is held, and every row can be seen. */
TEST_F(WatermarksTest, SurviveFailures)
{
    Open("T410A", "text picture");
    AnswerFileDialog(u"C:\\art\\new.bmp");
    AnswerColorDialog(0x123456);
    int nWork = 0;
    const auto use = [&](HWND hPage, int nButton, std::vector<std::pair<int, WideText>> things) {
        for (const auto& [nControl, wcText] : things) {
            QueueModalStep([&nWork, nOwn = nWork, nControl, wcText](HWND hDialog) {
                if (nOwn == nWork) {
                    wcText.empty() ? ClickControl(hDialog, nControl) : TypeText(hDialog, nControl, wcText);
                }
            });
        }
        ClickControl(hPage, nButton);
        nWork++;
    };
    DriverDevmode in = Defaults();
    const auto work = [&]() -> std::string {
        OpenDocument(&in);
        std::string fault;
        if (SheetInfo(pSheet).UserData && ShowSheetPage(pSheet, 3) && Session()->hPageWnd[SLOT_WATERMARKS]) {
            const HWND hPage = Session()->hPageWnd[SLOT_WATERMARKS];
            use(hPage, IDC_WATERMARKS_ADD,
                {{IDC_TEXT_MARK_TEXT, u"A"}, {IDC_TEXT_MARK_OUTLINE, u""}, {IDC_MARK_ADD, u""}});
            PickRow(hPage, IDC_WATERMARKS_LIST, 1);
            use(hPage, IDC_WATERMARKS_EDIT,
                {{IDC_TEXT_MARK_COLOR_CHOOSE, u""}, {IDC_UNIT, u""}, {IDC_MARK_CHANGE, u""}});
            PickRow(hPage, IDC_WATERMARKS_LIST, 2);
            use(hPage, IDC_WATERMARKS_EDIT,
                {{IDC_IMAGE_MARK_BROWSE, u""}, {IDC_IMAGE_MARK_SCALE, u"90"}, {IDC_MARK_CHANGE, u""}});
            PickRow(hPage, IDC_WATERMARKS_LIST, 3);
            ClickControl(hPage, IDC_WATERMARKS_DELETE);
            PressSheetApply(pSheet);
            fault = Session()->pWatermarks ? BrokenRows() : "";
        }
        Close();
        return fault;
    };
    EXPECT_EQ(work(), "");
    const AskedFile& file = AskedFiles().at(0);
    EXPECT_EQ(file.wcFilter, WideText(u"Image files\0*.BMP\0All files\0*.*", 31));
    EXPECT_TRUE(file.hOwner && file.wcFile.empty() && file.wcFolder == u"My Documents");
    EXPECT_EQ(file.wcExtension, u"*.BMP");
    EXPECT_EQ(file.nRoom, DWORD{PATH_CHARS});
    EXPECT_EQ(file.dwFlags, OFN_NOCHANGEDIR);
    const AskedColor& color = AskedColors().at(0);
    EXPECT_TRUE(color.hOwner && color.color == 0xFF &&
                color.dwFlags == (CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR));
    EXPECT_TRUE(color.custom[0] == 0x0000FF && color.custom[5] == 0x00C000 && color.custom[15] == 0xC0C0C0);
    int nFaults = 0;
    for (CallId call : {CALL_HeapAlloc, CALL_CreateFileW, CALL_MoveFileExW, CALL_DialogBoxParamW,
                        CALL_LoadLibraryExW, CALL_GetProcAddress}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, 2000, work);
        EXPECT_EQ(sweep.fault, "");
        nFaults += sweep.nFaults;
    }
    EXPECT_GT(nFaults, 60);
    EXPECT_EQ(ForcedCloses(), 0);
}

TEST_F(WatermarksTest, ALongListShowsAtOnce)
{
    std::string names;
    for (int i = 0; i < 1000; i++) {
        names += " text";
    }
    Open("T410A", names);
    const auto seconds = [&](const char* cStep) {
        const std::clock_t begun = std::clock();
        Do(cStep);
        return static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC;
    };
    EXPECT_LT(seconds("reload"), 0.06);
    EXPECT_LT(seconds("click UNIT"), 0.06);
    EXPECT_EQ(Seen("dirty7=0"), "dirty7=0");
}
