/* The conflict table: one rule in a model built here, one record, what hits and what misses. */
#include "sheet/conflicts.h"

#include "description/paper.h"
#include "support/sample_machine.h"

namespace {

ConstraintRow RuleFor(std::initializer_list<int> papers)
{
    ConstraintRow rule = {};
    rule.usUsed = 1;
    rule.sMessageId = 7;
    for (int nCode : papers) {
        rule.bPapers[nCode / 8] = static_cast<u8>(rule.bPapers[nCode / 8] | 0x80 >> nCode % 8);
    }
    return rule;
}

class ConflictsTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        record = recordTemplate;
        record.dmPaperSize = 9;
        record.dmDefaultSource = 1025;
        record.dmDuplex = 1;
        record.rPrivate.sMediaTypeIndex = 1;
        record.rPrivate.sScale = 0;
        record.rPrivate.sOutputPJLsid = 5;
    }

    /* Asks with these rules and the tables of every test: A4 and A5, bins 1025 (1) and 261 (2), outputs 5 (1) and
       6 (2), media 1 and 2, features of option 0x10 twice. */
    int Ask(const std::vector<ConstraintRow>& rules)
    {
        DescriptionBuilder builder;
        std::vector<ConstraintRow> rows = rules;
        rows.push_back({});
        builder.Table(offsetof(XpiModel, pConstraints), rows);
        builder.Table<PaperRow>(
            offsetof(XpiModel, pPaperTable),
            {{1, 9, 2100, 2970, 1, 0, 0, 0, {}}, {2, 11, 1480, 2100, 1, 0, 0, 0, {}}, {}});
        builder.Table<BinRow>(offsetof(XpiModel, pInputBins), {{1, 1025, 1}, {2, 261, 2}, {}});
        builder.Table<OutputBinRow>(offsetof(XpiModel, pOutputBins), {{1, 5, 1}, {2, 6, 2}, {}});
        builder.Table<MediaRow>(offsetof(XpiModel, pMediaTypes), {{1, 1, 0, {}, 1}, {2, 2, 0, {}, 2}, {}});
        builder.Table<FeatureRow>(offsetof(XpiModel, pPjlFeatures),
                                  {{1, 1, 0x10, 0, 0}, {1, 2, 0x10, 2, 0}, {1, 3, 0x40, 0, 0}, {}});
        builder.Table<FeatureValueRow>(offsetof(XpiModel, pPjlValues), {{1, 0}, {1, 8}, {1, 0}, {1, 9}, {}});
        if (hPrinter) {
            ClosePrinter(hPrinter);
            hPrinter = nullptr;
        }
        StopMachine();
        StartMachine();
        HANDLE hOf = AddTestPrinter(builder.Build());
        PrinterCall call(hOf);
        OwnedModel pModel = LoadPrinterModel(call);
        found = {SHEET_KINDS, -1, -1};
        return FindConflict(call, &record, &installed, pModel.get(), FIRST_SAVED_CODE + 2, &found);
    }
    int Ask(const ConstraintRow& rule) { return Ask(std::vector<ConstraintRow>{rule}); }

    DriverDevmode record;
    DeviceInfo installed = {3, 3, 0x11, 0};
    Conflict found = {};
};

TEST_F(ConflictsTest, PapersBinsAndMediaOfTheBody)
{
    EXPECT_TRUE(Ask(RuleFor({})));
    EXPECT_EQ(found.kind, SHEET_BODY);
    EXPECT_EQ(found.sMessageId, 7);
    EXPECT_TRUE(Ask(RuleFor({9})));
    EXPECT_FALSE(Ask(RuleFor({8, 10, 11, 118})));
    ConstraintRow rule = RuleFor({});
    rule.ulInputs = 2;
    EXPECT_FALSE(Ask(rule));
    record.dmDefaultSource = 261;
    EXPECT_TRUE(Ask(rule));
    record.dmDefaultSource = 2001;
    EXPECT_FALSE(Ask(rule)) << "a medium as source is no bin";
    rule = RuleFor({});
    rule.ulOutputs = 2;
    EXPECT_FALSE(Ask(rule));
    record.rPrivate.sOutputPJLsid = 6;
    EXPECT_TRUE(Ask(rule));
    rule = RuleFor({});
    rule.ulMedia = 2;
    EXPECT_FALSE(Ask(rule));
    record.rPrivate.sMediaTypeIndex = 2;
    EXPECT_TRUE(Ask(rule));
    for (i16 sBehind : {i16{-3}, i16{0}, i16{3}, i16{4}, i16{5}}) {
        record.rPrivate.sMediaTypeIndex = sBehind; /* what lies behind the table is another's */
        rule.ulMedia = 0xFFFFFFFF;
        EXPECT_FALSE(Ask(rule)) << sBehind;
    }
    record.dmPaperSize = -9;
    EXPECT_FALSE(Ask(RuleFor({0, 9})));
}

TEST_F(ConflictsTest, TheTargetIsThePaperThatComesOut)
{
    record.rPrivate.sScaleTarget = 11;
    for (u16 usScale : {u16{0}, u16{2}, u16{66}, u16{1024}}) {
        record.rPrivate.sScale = usScale;
        EXPECT_FALSE(Ask(RuleFor({11}))) << usScale;
    }
    for (u16 usScale : {u16{1}, u16{4}, u16{33}, u16{68}}) {
        record.rPrivate.sScale = usScale;
        EXPECT_TRUE(Ask(RuleFor({11}))) << usScale;
    }
}

TEST_F(ConflictsTest, SizesCountForUserPapersOnly)
{
    ConstraintRow rule = RuleFor({0});
    rule.sMinWidth = 1000, rule.sMaxWidth = 2000, rule.sMinLength = 1, rule.sMaxLength = 3000;
    EXPECT_FALSE(Ask(rule));
    record.dmPaperSize = 256;
    record.dmPaperLength = 2100;
    for (auto [sWidth, bHit] :
         {std::pair<i16, bool>{999, false}, {1000, true}, {1480, true}, {2000, true}, {2500, false}}) {
        record.dmPaperWidth = sWidth;
        EXPECT_EQ(Ask(rule), bHit) << sWidth;
    }
    ConstraintRow exact = RuleFor({0});
    exact.sMinWidth = exact.sMaxWidth = 2100, exact.sMinLength = exact.sMaxLength = 2970;
    record.dmPaperSize = 450; /* beyond the saved papers and forms: the default paper's size */
    PrinterCall none(nullptr);
    i16 sWidth, sLength;
    GetPaperSize(none, nullptr, 450, &sWidth, &sLength);
    exact.sMinWidth = exact.sMaxWidth = sWidth, exact.sMinLength = exact.sMaxLength = sLength;
    EXPECT_TRUE(Ask(exact));
    exact.sMaxWidth = static_cast<i16>(sWidth + 1);
    EXPECT_FALSE(Ask(exact)) << "a range is too wide for a paper that nobody knows";
}

TEST_F(ConflictsTest, DuplexWantsTheUnitAndTwoSides)
{
    ConstraintRow rule = RuleFor({});
    rule.ulOptions = 1;
    EXPECT_FALSE(Ask(rule));
    record.dmDuplex = 3;
    EXPECT_TRUE(Ask(rule));
    installed.ulOptions = 0x10;
    EXPECT_FALSE(Ask(rule));
}

TEST_F(ConflictsTest, EveryFeatureOfAnOptionMustBeOn)
{
    ConstraintRow rule = RuleFor({});
    rule.ulOptions = 0x10;
    record.rPrivate.sPJLValueIndex[0] = 1;
    record.rPrivate.sPJLValueIndex[1] = 0;
    EXPECT_FALSE(Ask(rule));
    record.rPrivate.sPJLValueIndex[1] = 1;
    EXPECT_TRUE(Ask(rule));
    record.rPrivate.sPJLValueIndex[1] = -1;
    EXPECT_FALSE(Ask(rule)) << "an empty typed value is off";
    record.rPrivate.cPJLUserValue[0][0] = '4';
    EXPECT_TRUE(Ask(rule));
    record.rPrivate.cPJLUserValue[0][1] = '\n';
    EXPECT_FALSE(Ask(rule)) << "a value that no job carries is off";
    record.rPrivate.sPJLValueIndex[1] = -32768;
    EXPECT_FALSE(Ask(rule));
    installed.ulOptions = 0x20;
    rule.ulOptions = 0x20;
    EXPECT_TRUE(Ask(rule)) << "no feature speaks of the option";
    rule.ulOptions = 0x40;
    EXPECT_FALSE(Ask(rule)) << "an option that is not installed";
}

TEST_F(ConflictsTest, EverySheetOfTheJobIsTested)
{
    PrivateDevmode& part = record.rPrivate;
    part.sFrontPaperSize = 11, part.sBackPaperSize = 0xFFFF, part.sBackBin = 261, part.sFrontBin = 1025;
    ConstraintRow a5 = RuleFor({11}), tray = RuleFor({});
    tray.ulInputs = 2;
    EXPECT_FALSE(Ask({a5, tray}));
    part.sBackCover = 1;
    EXPECT_TRUE(Ask({a5, tray}));
    EXPECT_EQ(found.kind, SHEET_BACK_COVER);
    EXPECT_EQ(found.nRule, 1);
    part.sFrontCover = 1;
    EXPECT_TRUE(Ask({a5, tray}));
    EXPECT_EQ(found.kind, SHEET_FRONT_COVER) << "sheets go before rules";
    EXPECT_EQ(found.nRule, 0);

    ConstraintRow twoSided = RuleFor({11});
    twoSided.ulOptions = 1;
    record.dmDuplex = 2;
    part.sFrontDuplex = 0;
    EXPECT_FALSE(Ask(twoSided)) << "the cover has one side";
    part.sFrontDuplex = 1;
    EXPECT_TRUE(Ask(twoSided));
    part.sFrontCover = part.sBackCover = part.sFrontDuplex = part.sBackDuplex = 0;
    part.sSeparatorPaper = 11, part.sSeparators = 1;
    EXPECT_TRUE(Ask(twoSided)) << "separators are printed as the job is";
    part.sSeparators = 0;
    part.sInsertPaper = 11;
    for (auto [usInsert, bHit] : {std::pair<u16, bool>{1, false}, {3, true}, {4, false}, {5, true}}) {
        part.sInsertPages = usInsert;
        EXPECT_EQ(Ask(twoSided), bHit) << usInsert;
    }
}

} // namespace
