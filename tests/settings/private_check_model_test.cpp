/* The private check and the model: without tables, with empty ones, without files, with more features than slots. */
#include "settings/check_support.h"

namespace {

/* A model without any table. Its resolution row is never there: one repair at each check. */
constexpr CheckRow aBareRows[] = {
    {"nothing", {}, MENDED, {}},
    {"resolution", {{2932, 2, 4}}, MENDED, {{2932, 2, 0}}},
    {"medium", {{1724, 2, 5}}, MENDED_TWICE, {{1724, 2, 1}}},
    {"the mended medium costs again", {{1724, 2, 1}}, MENDED_TWICE, {}},
    {"front cover of medium 0", {{648, 2, 1}}, MENDED, {}},
    {"output bin", {{2924, 2, 5}}, MENDED_TWICE, {{2924, 2, 0}}},
    {"colour mode", {{2930, 2, 1}}, MENDED_TWICE, {{2930, 2, 0}}},
    {"screen", {{2934, 2, 1}}, MENDED_TWICE, {{2934, 2, 0}}},
    {"text slot", {{2948, 2, 1}}, MENDED_TWICE, {{2948, 2, 0}}},
    {"font count", {{224, 4, 0x30000}}, MENDED, {}},
    {"colour slice", {{1856, 2, 1}}, MENDED_TWICE, {{1856, 2, 0}}},
    {"colour command", {{2702, 2, 0xE001}}, MENDED_TWICE, {{2702, 2, 0}}},
    {"typed slot", {{2764, 2, -1}}, MENDED, {}},
    {"paper of any size", {{388, 2, 1}, {390, 2, 9}, {392, 2, 32767}, {394, 2, 0}}, MENDED, {}},
};

} // namespace

class PrivateCheckOfModels : public PrivateCheckTest {};

TEST_F(PrivateCheckOfModels, ModelWithoutTables)
{
    DescriptionBuilder bare;
    bare.Set<i16>(120, 0);
    UseModel(bare);
    RunRows(aBareRows);
}

TEST_F(PrivateCheckOfModels, EmptyTablesCostARepairEachTime)
{
    DescriptionBuilder media = CheckModel();
    media.Table<MediaRow>(48, {{}});
    UseModel(media);
    Run({"medium", {}, MENDED, {}});
    DescriptionBuilder modes = CheckModel();
    modes.Table<ColorModeRow>(220, {{}});
    UseModel(modes);
    Run({"colour mode", {{2930, 2, 0}}, MENDED, {{2930, 2, 1}}});
    DescriptionBuilder screens = CheckModel();
    screens.Table<ScreenRow>(284, {{}});
    UseModel(screens);
    Run({"screen", {}, MENDED, {}});
    DescriptionBuilder values = CheckModel();
    values.Table<OptionValueRow>(260, {{}}); /* seven rows of options that have no value */
    UseModel(values);
    Run({"option values", {}, REFUSED, {}});
}

TEST_F(PrivateCheckOfModels, TheDescriptionsPathFollowsTheDriver)
{
    UseModel(CheckModel());
    const WideText tcNow = u"C:\\DRV\\QA.XPI";
    struct {
        WideText tcHeld;
        int nResult;
    } aRows[] = {{u"D:\\OLD\\QA.XPI", 1},   {u"\\QA.XPI", 1},        {u"C:\\DRV\\QA2.XPI", 0},
                 {u"c:\\drv\\qa.xpi", 0},   {u"QA.XPI", 0},          {u"", 0},
                 {u"C:\\DRV\\QA.XPI\\", 0}, {u"C:\\DRV\\QA.XPI.", 0}};
    for (const auto& row : aRows) {
        DriverDevmode record = good, expected = good;
        SetPath(&record, row.tcHeld);
        SetPath(&expected, row.nResult ? tcNow : row.tcHeld);
        EXPECT_EQ(CheckPrivate(&record, pModel.get()), row.nResult) << Narrow(row.tcHeld);
        EXPECT_EQ(FirstDifference(record, expected), -1) << Narrow(row.tcHeld);
    }
    /* What lay behind the old path goes with it. */
    DriverDevmode record = good;
    SetPath(&record, u"D:\\OLD\\QA.XPI" + WideText(1, 0) + WideText(120, u'x'));
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 1);
    EXPECT_EQ(FirstDifference(record, good), -1);
    /* The path is brought up to date before the overlay folder refuses. */
    DriverDevmode expected = good;
    Put(&expected, {2690, 2, 'X'});
    record = expected;
    SetPath(&record, u"D:\\OLD\\QA.XPI");
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(FirstDifference(record, expected), -1);
}

TEST_F(PrivateCheckOfModels, APathTooLongForTheRecordIsCutOnce)
{
    UseModel(CheckModel());
    WideText tcLong = u"C:\\" + WideText(170, u'D') + u"\\QA.XPI";
    PrinterSetup setup;
    setup.wcName = u"Test";
    setup.wcDriverName = u"Test Driver";
    setup.tcDriverPath = u"C:\\drv\\qrnd.dll";
    setup.atcDependentFiles = {tcLong};
    PutFile(tcLong, CheckModel().Build());
    AddPrinter(setup);
    OpenSample printer(u"Test");
    PrinterCall call(printer.hPrinter);
    DriverDevmode record = good;
    ASSERT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    EXPECT_EQ(Get(record, 2370, 2), 0u);
    EXPECT_EQ(Get(record, 2368, 2), u'D');
}

TEST_F(PrivateCheckOfModels, FontOffsetsWithoutAFontFile)
{
    UseModel(CheckModel(KIND_PCL5, CLASS_COLOR));
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.fdf"));
    Run({"no file has no end", {{228, 4, -1}, {368, 4, -1}}, KEPT, {}});
}

TEST_F(PrivateCheckOfModels, WithoutADescription)
{
    UseModel(CheckModel());
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    DriverDevmode record = good;
    SetPath(&record, u"D:\\OLD\\QA.XPI");
    Put(&record, {384, 2, 2});
    DriverDevmode before = record;
    EXPECT_EQ(CheckPrivate(&record, nullptr), 0);
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0) << "the colour data's size stands in the file alone";
    EXPECT_EQ(FirstDifference(record, before), -1);
}

TEST_F(PrivateCheckOfModels, FeaturesBeyondTheSlots)
{
    DescriptionBuilder b = CheckModel();
    std::vector<FeatureRow> rows(40, FeatureRow{1, 1, 0, 0, 0});
    rows.emplace_back();
    b.Table<FeatureRow>(188, rows);
    UseModel(b);
    Run({"typed text behind the last slot", {{2826, 2, 2}, {2828, 2, 0x7777}}, KEPT, {}});
    Run({"last slot", {{2826, 2, 3}}, MENDED, {{2826, 2, 0}}});

    UseModel(CheckModel().Set<u64>(196, 0)); /* no values at all: every feature is typed */
    Run({"typed", {}, KEPT, {}});
    Run({"listed", {{2768, 2, 0}}, MENDED, {{2768, 2, -1}}});
    b = CheckModel();
    b.Table<FeatureRow>(188, {{1, 1, 0, -1, 0}, {1, 1, 0, 32767, 0}, {}});
    UseModel(b);
    Run({"values before and behind the table", {{2764, 4, 0}}, MENDED_TWICE, {{2764, 4, 0xFFFFFFFF}}});
}

TEST_F(PrivateCheckOfModels, OptionSlotsByThemselves)
{
    UseModel(CheckModel());
    struct {
        const ColorOptionRow* pTable;
        std::array<i16, 4> before, after;
        int nRepairs;
    } aRows[] = {
        {pModel->pTextOptions, {5, 5, 5, 1}, {5, 5, 5, 1}, 0},
        {pModel->pTextOptions, {6, 5, -1, 1}, {0, 5, 0, 1}, 2},
        {pModel->pTextOptions, {6, 6, 6, 6}, {0, 0, 0, 6}, 3},
        {pModel->pGraphicsOptions, {0, 1, 0, 0}, {0, 1, 0, 0}, 0},
        {pModel->pGraphicsOptions, {0, 2, 1, 0}, {0, 0, 0, 0}, 2},
        {nullptr, {1, 0, 0, -1}, {0, 0, 0, 0}, 2},
    };
    for (const auto& row : aRows) {
        std::array<i16, 4> values = row.before;
        EXPECT_EQ(ValidateOptionSlots(pModel.get(), row.pTable, values.data()), row.nRepairs);
        EXPECT_EQ(values, row.after);
    }
}
