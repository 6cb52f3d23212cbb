/* The Quality page beyond what its script says: what models and records may hold that no sample does, what becomes of a
   job by it, and failures. */
#include "sheet/quality_choice.h"

#include "description/control_ids.h"
#include "document/color_choices.h"
#include "standins/job_core.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

/* Kind of the model, kinds of its modes, has intents, dmColor, kind of the selected mode; then what is seen: the label
   that goes with an editable mode L or the other l, mode M, options O or disabled o, intent I, tone T. */
TEST(QualityGroup, IsOneOfItsAlternatives)
{
    static constexpr ColorModeRow modes = {};
    const struct {
        u16 usKind;
        u32 ulMask, ulIntents;
        u16 usColor;
        u32 ulKind;
        const char* cSeen;
    } aRows[] = {
        {0, 9, 15, 1, 1, "lM"},   {0, 9, 15, 2, 8, "lM"},  {0, 5, 0, 1, 1, "LMo"},   {0, 5, 0, 1, 4, "LMO"},
        {0, 8, 15, 2, 8, ""},     {0, 1, 15, 1, 1, ""},    {0, 2, 15, 1, 2, ""},     {0, 4, 0, 1, 4, "LMO"},
        {0, 15, 15, 1, 2, "LMI"}, {0, 15, 0, 1, 2, "LMo"}, {0, 15, 15, 1, 8, "LMO"}, {0, 10, 15, 1, 8, "LM"},
        {0, 10, 1, 1, 2, "LMI"},  {3, 15, 15, 1, 2, "T"},  {3, 0, 0, 0, 0, "T"},     {3, 15, 15, 2, 2, "LMI"},
        {3, 8, 0, 2, 8, ""},      {4, 5, 0, 1, 4, "LMO"},  {4, 6, 0, 0, 0, "LMO"},   {0, 0, 15, 2, 0, ""},
    };
    for (const auto& row : aRows) {
        XpiModel model = {};
        model.usLanguage = row.usKind;
        model.ulIntentMask = row.ulIntents;
        model.pColorModes = row.ulMask ? &modes : nullptr;
        const ColorGroup group = DescribeColorGroup(&model, row.ulMask, row.usColor, row.ulKind);
        std::string seen = group.bCorrection ? group.bEditable ? "LM" : "lM" : "";
        seen += group.bOptions ? group.bOptionsOffered ? "O" : "o" : "";
        seen += group.bIntent ? "I" : "";
        EXPECT_EQ(seen + (group.bTone ? "T" : ""), row.cSeen)
            << row.usKind << " " << row.ulMask << " " << row.usColor << " " << row.ulKind;
    }
}

/* The file that was built for the colours goes into the record, and nothing else of the watermark is touched. */
TEST(QualityWatermark, TakesTheFileOfItsColours)
{
    WatermarkEntry rows[2] = {};
    ResetWatermarkEntry(&rows[1]);
    rows[1].WMType = rows[0].WMType = ENTRY_TEXT;
    CopyWide(rows[1].WMString, 64, u"Draft");
    CopyWide(rows[1].WMFileName, PATH_CHARS, u"C:\\1.WM");
    CopyWide(rows[1].WMColorFile, PATH_CHARS, u"C:\\1.CWM");
    const auto nameOf = [&](u16 usKind, u32 ulColorMode, u32 ulType) {
        XpiModel model = {};
        model.usLanguage = usKind;
        DriverDevmode record = {};
        PrivateDevmode& part = record.rPrivate;
        part.ulWMType = ulType;
        part.ulColorMode = ulColorMode;
        CopyWide(reinterpret_cast<WCHAR*>(&part.wcWMOverlayName), 96, u"C:\\1.CWM");
        std::memset(&part.wcWMFace, 0x41, sizeof part.wcWMFace);
        StoreQuality({}, &model, rows, 2, &record);
        EXPECT_EQ(part.wcWMFace[0], 0x4141);
        WCHAR wcName[64];
        std::memcpy(wcName, part.wcWMString, sizeof wcName);
        return Narrow(wcName);
    };
    EXPECT_EQ(nameOf(0, 0, 36), "C:\\1.WM");
    EXPECT_EQ(nameOf(0, MODE_ALWAYS_COLOR, 36), "C:\\1.CWM");
    EXPECT_EQ(nameOf(3, MODE_ALWAYS_COLOR, 36), "C:\\1.WM");
    EXPECT_EQ(nameOf(0, 0, 0), "C:\\1.CWM") << "no watermark";
}

class QualityTest : public SheetScript {
  protected:
    /* A printer of this kind with the modes 4 and 8, six options a class, values and presets without an end, and names as
       long as they may be. */
    void OpenHostile(u16 usKind)
    {
        DescriptionBuilder builder;
        const i16 sName = builder.Text(std::string(2000, 'n'));
        builder.Set(offsetof(XpiModel, usLanguage), usKind);
        builder.Table(offsetof(XpiModel, pColorModes),
                      std::vector<ColorModeRow>{{4, 0, 0}, {8, sName, 0}, {8, 0, 30000}, {64, 0, -1}, {}});
        const auto usName = static_cast<u16>(sName);
        const std::vector<ColorOptionRow> options = {{usName, 0}, {usName, 32767}, {usName, -32768},
                                                     {0xFFFF, 1}, {usName, 0},     {usName, 0}};
        for (size_t nSlot : {offsetof(XpiModel, pTextOptions), offsetof(XpiModel, pImageOptions),
                             offsetof(XpiModel, pGraphicsOptions), offsetof(XpiModel, pGeneralOptions)}) {
            builder.Table(nSlot, options);
        }
        builder.Table(offsetof(XpiModel, pScreens), std::vector<ScreenRow>(300, {0xFFFE, 1, 0}));
        builder.Table(offsetof(XpiModel, pResolutions),
                      std::vector<ResolutionRow>(300, {1, -1, 0, -9, 0, 0, 0, 0}));
        builder.Table(offsetof(XpiModel, pColorPresets), std::vector<ColorPresetRow>(500, {1, 9, -32768}));
        builder.Table(offsetof(XpiModel, pOptionValues),
                      std::vector<OptionValueRow>(3000, {usName, 1, 2, 0, 0}));
        builder.Set(offsetof(XpiModel, ulIntentMask), u32{0xFFFFFFFF});
        AddTestPrinter(builder.Build());
        OpenDocument();
        ASSERT_NE(Session(), nullptr);
        record.dmColor = 2;
        record.rPrivate.sColorCorrection = 0;
        std::memset(&record.rPrivate.sTextOption, 0x7F, 32);
        ReloadAll();
    }
};

TEST_F(QualityTest, BearsWhatAModelMayHold)
{
    const std::string name(127, 'n');
    for (u16 usKind = KIND_PCL6; usKind <= KIND_IMAGE_SECOND; usKind++) {
        OpenHostile(usKind);
        ASSERT_TRUE(ShowSlot(SLOT_QUALITY));
        DoAll(SplitTrimmed(
            "row QUALITY_CORRECTION 3, open QUALITY_OPTIONS, row OPTIONS_TEXT_LIST 0, end OPTIONS_OK, "
            "row QUALITY_CORRECTION 1, open QUALITY_OPTIONS, end OPTIONS_OK, row QUALITY_CORRECTION 0, "
            "open QUALITY_OPTIONS, see OPTIONS_TEXT_LIST[3]:Default_ OPTIONS_TEXT_LIST[4]:, "
            "row OPTIONS_TEXT_VALUE 999, see OPTIONS_TEXT_LIST[0]:" +
                name + "_" + name +
                ", row OPTIONS_TEXT_LIST 2, row OPTIONS_TEXT_LIST 1, end OPTIONS_OK, apply, "
                "row QUALITY_CORRECTION 1, apply, row QUALITY_CORRECTION 2, apply",
            ','));
        Expect("sTextOption[0]=999 sColorCorrection=2 results=3");
        const HWND hPage = Session()->hPageWnd[SLOT_QUALITY];
        EXPECT_EQ(SendDlgItemMessageW(hPage, IDC_QUALITY_RESOLUTION, CB_GETCOUNT, 0, 0) >= 300,
                  usKind == KIND_IMAGE);
    }
}

/* What a job carries differs by the choices that were made on the page, and by nothing else. */
TEST_F(QualityTest, TheJobFollowsThePage)
{
    const JobExports exports = {GuiStartJob, GuiStartSheet, GuiEndJob};
    const auto differing = [&](const std::string& sample, const std::string& fields,
                               const std::string& steps) {
        Begin(sample, fields);
        DriverDevmode before = record;
        DoAll(SplitTrimmed(steps + ", apply", ','));
        DriverDevmode after = record;
        const std::string was = RunJob(exports, hPrinter, 1, &before).head.bytes;
        std::istringstream now(RunJob(exports, hPrinter, 1, &after).head.bytes);
        std::string lines;
        for (std::string line; std::getline(now, line, sample == "K100" ? '\0' : '\n');) {
            lines += was.find(line) == std::string::npos ? line.substr(0, line.find('\r')) + ";" : "";
        }
        return lines;
    };
    EXPECT_EQ(differing("T410A", "sColorCorrection=1", "click QUALITY_COLOR, row QUALITY_CORRECTION 3"),
              "@PJL SET RENDERMODE=COLOR;@PJL SET DATAMODE=COLOR;");
    EXPECT_EQ(differing("T410A", "sColorCorrection=1 dmColor=2", "row QUALITY_CORRECTION 2"), "");
    EXPECT_EQ(
        differing("K100",
                  "dmColor=2 sColorCorrection=1 sTextOption[0]=0 sImageOption[0]=0 sGraphicsOption[0]=0",
                  "page 6, open QUALITY_OPTIONS, row OPTIONS_IMAGE_VALUE 2, end OPTIONS_OK"),
        "intentImage=EXACT;");
    EXPECT_EQ(differing("K100", "dmColor=1 sContrast=0 sScreening=1",
                        "type QUALITY_CONTRAST -20, pick QUALITY_SCREENING 0"),
              "hts=FALSE;errDiff=TRUE;contrast=-20;");
}

TEST_F(QualityTest, PathsAreTakenWholeOrNotAtAll)
{
    Begin("K100", "sProfile=0");
    const std::string text(PATH_CHARS, 'x');
    DoAll({"page 6", "open QUALITY_COLOR_FILES", "pick FILES_PROFILE 2", "text FILES_PROFILE_NAME C:\\a.icm",
           "file C:\\" + text, "click FILES_PROFILE_BROWSE", "see FILES_PROFILE_NAME:C:\\a.icm",
           "end FILES_OK"});
    EXPECT_EQ(WideText(Session()->wcProfileFile), u"C:\\a.icm");
    DoAll({"open QUALITY_COLOR_FILES", "text FILES_PROFILE_NAME " + text, "end FILES_OK"});
    EXPECT_EQ(WideText(Session()->wcProfileFile), u"");
    Expect("sProfile=2 dirty6=1");
}

/* Every k-th failure of the calls that page and dialogs stand on: nothing is held, and a cancelled dialog leaves all
   choices as they were. Steps for a dialog that did not come up are not done later. */
TEST_F(QualityTest, FailuresLeaveTheChoicesAlone)
{
    AddSample("K100");
    int nTurn = 0;
    const auto press = [&](int nButton, std::vector<std::function<void(HWND)>> steps) {
        nTurn++;
        for (const auto& step : steps) {
            QueueModalStep(
                [&nTurn, nOwn = nTurn, step](HWND hDialog) { nOwn == nTurn ? step(hDialog) : void(); });
        }
        ClickControl(Session()->hPageWnd[SLOT_QUALITY], nButton);
    };
    const auto pick = [](int nList, int nRow) {
        return [=](HWND hDialog) { PickRow(hDialog, nList, nRow); };
    };
    const auto click = [](int nButton) { return [=](HWND hDialog) { ClickControl(hDialog, nButton); }; };
    const auto use = [&] {
        std::string fault;
        OpenDocument();
        if (Session()) {
            record.dmColor = 2;
            record.rPrivate.sColorCorrection = 1;
            const DriverDevmode before = record;
            ShowSlot(SLOT_QUALITY);
            press(IDC_QUALITY_OPTIONS,
                  {pick(IDC_OPTIONS_TEXT_VALUE, 1), pick(IDC_OPTIONS_GENERAL_VALUE, 1), click(IDC_CANCEL)});
            fault += SameColorChoices(record.rPrivate, before.rPrivate) ? "" : "choices changed; ";
            AnswerFileDialog(u"C:\\a.icm");
            press(IDC_QUALITY_COLOR_FILES,
                  {pick(IDC_FILES_PROFILE, 2), click(IDC_FILES_PROFILE_BROWSE), click(IDC_FILES_OK)});
            fault += record.rPrivate.sProfile % 2 ? "a profile that was not picked; " : "";
            Session()->bPageDirty[SLOT_QUALITY] = 1;
            PressSheetApply(pSheet);
        }
        Close();
        return fault;
    };
    use();
    EXPECT_EQ(record.rPrivate.sProfile, 2);
    const AskedFile asked = AskedFiles().back();
    EXPECT_EQ(asked.wcFilter,
              WideText(u"Zeph Tone Realms and ICC Profiles\0*.tr;*.icm;*.icc\0All files\0*.*", 64));
    EXPECT_EQ(asked.nRoom, 200u);
    EXPECT_EQ(asked.dwFlags, OFN_NOCHANGEDIR);
    EXPECT_EQ(asked.wcFile + asked.wcFolder + asked.wcExtension, u"C:\\*");
    for (CallId call : {CALL_DialogBoxParamW, CALL_GetDlgItemTextW, CALL_HeapAlloc, CALL_GetProcAddress,
                        CALL_GetOpenFileNameW, CALL_EndDialog, CALL_SetWindowLongPtrW, CALL_GetDlgItemInt}) {
        const FaultSweep sweep = SweepFaults(call, FAIL_ONCE, 400, use);
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GT(sweep.nFaults, 0) << CallName(call);
    }
}

} // namespace
