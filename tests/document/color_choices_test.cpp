/* Presets of colour modes, and the commands that colour choices come to. */
#include "description/driver_files.h"
#include "document/color_choices.h"
#include "support/record_changes.h"
#include "support/sample_machine.h"

namespace {

/* Slots of the body. */
enum : size_t {
    COLOR_MODES = 220,
    TEXT_TABLE = 228,
    IMAGE_TABLE = 236,
    GRAPHICS_TABLE = 244,
    GENERAL_TABLE = 252,
    OPTION_VALUES = 260,
    PRESETS = 268
};
class ColorChoicesTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        record = recordTemplate;
    }

    template <class Body> void WithModel(const DescriptionBuilder& builder, Body body)
    {
        AddTestPrinter(builder.Build());
        PrinterCall call(hPrinter);
        OwnedModel pModel = LoadPrinterModel(call);
        ASSERT_TRUE(pModel);
        body(pModel.get());
    }

    std::string FromTemplate() const { return Changes(recordTemplate, record); }

    DriverDevmode record;
};

DescriptionBuilder WithPresets(std::vector<ColorModeRow> modes)
{
    DescriptionBuilder builder;
    modes.push_back({});
    builder.Table<ColorModeRow>(COLOR_MODES, modes);
    builder.Table<ColorPresetRow>(PRESETS, {{1, 3, 11},
                                            {0, 0, 0},
                                            {1, 0, 1},
                                            {2, 0, 2},
                                            {3, 1, 3},
                                            {4, 2, 4},
                                            {1, 4, 90}, /* no such slot */
                                            {2, -1, 91},
                                            {5, 0, 92}, /* no such target */
                                            {-1, 0, 93},
                                            {4, 3, -5},
                                            {0, 0, 0},
                                            {4, 0, 94}});
    return builder;
}

/* Three text values, two for images, two options of graphics, one general option. */
DescriptionBuilder WithOptions()
{
    DescriptionBuilder builder;
    builder.Table<OptionValueRow>(OPTION_VALUES,
                                  {{1, 10, 5, 100, 20},
                                   {1, 0, 10, 7, 0}, /* offset without a length: no second slice */
                                   {0, 0, 0, 0, 0},
                                   {1, 30, 6, 0, 0},
                                   {0, 0, 0, 0, 0},
                                   {1, 40, 8, 0, 0},
                                   {1, 44, 9, 200, 21},
                                   {0, 0, 0, 0, 0},
                                   {1, 72, 2, 0, 0},
                                   {1, 77, 3, 300, 31},
                                   {0, 0, 0, 0, 0},
                                   {1, 85, 5, 90, 5}});
    builder.Table<ColorOptionRow>(TEXT_TABLE, {{1, 0}, {0, 0}});
    builder.Table<ColorOptionRow>(IMAGE_TABLE, {{1, 3}, {0, 0}});
    builder.Table<ColorOptionRow>(GRAPHICS_TABLE, {{1, 5}, {1, 8}, {0, 0}});
    builder.Table<ColorOptionRow>(GENERAL_TABLE, {{1, 11}, {0, 0}});
    return builder;
}

} // namespace

/* From the mode's first row on, not from the table's; what cannot be stored is passed over. */
TEST_F(ColorChoicesTest, APresetFillsTheArraysThatItsRowsName)
{
    WithModel(WithPresets({{2, 1, -1}, {8, 1, 2}}), [this](const XpiModel* pModel) {
        ApplyColorPreset(&record.rPrivate, pModel);
        EXPECT_EQ(FromTemplate(), "") << "mode 0 presets nothing";
        record.rPrivate.sColorCorrection = 1;
        ApplyColorPreset(&record.rPrivate, pModel);
    });
    EXPECT_EQ(FromTemplate(), "sColorCorrection=1 sTextOption[0]=1 sGraphicsOption[1]=3 sImageOption[0]=2 "
                              "sGeneralOption[2]=4 sGeneralOption[3]=-5");
}

TEST_F(ColorChoicesTest, WithoutAModeOrATableNothingIsPreset)
{
    auto preset = [this](const XpiModel* pModel) {
        const DriverDevmode before = record;
        ApplyColorPreset(&record.rPrivate, pModel);
        return Changes(before, record);
    };
    EXPECT_EQ(preset(nullptr), "");
    WithModel(WithPresets({{8, 1, 2}}), [&](const XpiModel* pModel) {
        for (i16 sMode : {i16{1}, i16{2}, i16{-1}, i16{32767}, i16{-32768}}) {
            record.rPrivate.sColorCorrection = sMode;
            EXPECT_EQ(preset(pModel), "") << sMode;
        }
        record.rPrivate.sColorCorrection = 0;
    });
    for (size_t nSlot : {size_t{COLOR_MODES}, size_t{PRESETS}}) {
        WithModel(WithPresets({{8, 1, 2}}).Set<u64>(nSlot, 0),
                  [&](const XpiModel* pModel) { EXPECT_EQ(preset(pModel), "") << nSlot; });
    }
    WithModel(WithPresets({{8, 1, 32767}}),
              [&](const XpiModel* pModel) { EXPECT_EQ(preset(pModel), "") << "rows behind the body"; });
}

/* Offset and length of commands, as they come to stand in the record. */
std::string Commands(const std::vector<std::pair<int, int>>& rows)
{
    std::string text;
    for (size_t i = 0; i < rows.size(); i++) {
        const std::string row = " ColorCommand[" + std::to_string(i) + "].sColorCmd";
        text += rows[i].first ? row + "Offset=" + std::to_string(rows[i].first) : "";
        char cLength[8];
        std::snprintf(cLength, sizeof cLength, "0x%04X", static_cast<unsigned>(rows[i].second));
        text += row + "Length=" + cLength;
    }
    return text;
}

TEST_F(ColorChoicesTest, ChoicesBecomePairsAndCommandsAndClearNothing)
{
    WithModel(WithOptions(), [this](const XpiModel* pModel) {
        const std::string text = "sTextHdrOffset=10 sTextHdrLength=5",
                          body = " sTextOffset=100 sTextLength=20";
        BuildColorCommands(&record.rPrivate, pModel);
        EXPECT_EQ(FromTemplate(), text + body + " sGenColorCmdCount=4" +
                                      Commands({{30, 0x4006}, {40, 0x2008}, {72, 0x2002}, {85, 5}}))
            << "the second slice of a general value is not sent";

        record.rPrivate.sTextOption[0] = 1;
        BuildColorCommands(&record.rPrivate, pModel);
        EXPECT_EQ(FromTemplate(),
                  text + body + " sGenColorCmdCount=5" +
                      Commands({{0, 0x800A}, {30, 0x4006}, {40, 0x2008}, {72, 0x2002}, {85, 5}}) +
                      " sTextOption[0]=1")
            << "a pair that no choice fills any more stays";

        record.rPrivate.sGraphicsOption[0] = 1; /* both options of graphics now have two slices */
        record.rPrivate.sGraphicsOption[1] = 1;
        BuildColorCommands(&record.rPrivate, pModel);
        EXPECT_EQ(FromTemplate(), text + " sGraphicsHdrOffset=77 sGraphicsHdrLength=3" + body +
                                      " sGraphicsOffset=300 sGraphicsLength=31 sGenColorCmdCount=3" +
                                      Commands({{0, 0x800A}, {30, 0x4006}, {85, 5}, {72, 0x2002}, {85, 5}}) +
                                      " sTextOption[0]=1 sGraphicsOption[0]=1 sGraphicsOption[1]=1")
            << "the later option of a class decides; rows behind the last stay";
    });
}

TEST_F(ColorChoicesTest, FourOptionsAClassAndNoMore)
{
    DescriptionBuilder builder;
    builder.Table<OptionValueRow>(OPTION_VALUES, {{1, 7, 0x1FFF, 0, 0}});
    for (size_t nSlot : {TEXT_TABLE, IMAGE_TABLE, GRAPHICS_TABLE, GENERAL_TABLE}) {
        builder.Table<ColorOptionRow>(nSlot, std::vector<ColorOptionRow>(6, {1, 0}));
    }
    WithModel(builder, [this](const XpiModel* pModel) {
        record.rPrivate.sGeneralOption[3] = -32768; /* a value that no table has: an empty command */
        BuildColorCommands(&record.rPrivate, pModel);
    });
    std::vector<std::pair<int, int>> commands;
    for (size_t nRow = 0; nRow < 15; nRow++) {
        commands.emplace_back(7, 0x1FFF | std::array{0x8000, 0x4000, 0x2000, 0}[nRow / 4]);
    }
    EXPECT_EQ(FromTemplate(), "sGenColorCmdCount=16" + Commands(commands) + " sGeneralOption[3]=-32768");
    BuildColorCommands(&record.rPrivate, nullptr);
    EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 0);
}
