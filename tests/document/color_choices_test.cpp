/* Presets of colour modes, and the commands that colour choices come to. */
#include <algorithm>

#include "description/driver_files.h"
#include "document/color_choices.h"
#include "support/sample_machine.h"

namespace {

/* Slots of the body, and where the record keeps choices, pairs and commands. */
enum : size_t {
    COLOR_MODES = 220,
    TEXT_TABLE = 228,
    IMAGE_TABLE = 236,
    GRAPHICS_TABLE = 244,
    GENERAL_TABLE = 252,
    OPTION_VALUES = 260,
    PRESETS = 268
};
constexpr size_t TEXT_AT = 2948, GRAPHICS_AT = 2956, IMAGE_AT = 2964, GENERAL_AT = 2972;

bool SameBytes(const DriverDevmode& one, const DriverDevmode& other)
{
    const u8* pOne = reinterpret_cast<const u8*>(&one);
    return std::equal(pOne, pOne + sizeof one, reinterpret_cast<const u8*>(&other));
}

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

    template <class Number> Number At(size_t nAt) const
    {
        Number number;
        std::memcpy(&number, reinterpret_cast<const u8*>(&record) + nAt, sizeof number);
        return number;
    }

    std::vector<int> Slots(size_t nAt) const
    {
        return {At<i16>(nAt), At<i16>(nAt + 2), At<i16>(nAt + 4), At<i16>(nAt + 6)};
    }

    /* Offset and length of a command row. */
    std::pair<int, int> Command(size_t nRow) const
    {
        return {At<i16>(2700 + 4 * nRow), At<u16>(2702 + 4 * nRow)};
    }

    DriverDevmode record;
};

using Four = std::vector<int>;

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

TEST_F(ColorChoicesTest, APresetFillsTheArraysThatItsRowsName)
{
    WithModel(WithPresets({{2, 1, -1}, {8, 1, 2}}), [this](const XpiModel* pModel) {
        ApplyColorPreset(&record.rPrivate, pModel);
        EXPECT_TRUE(SameBytes(record, recordTemplate)) << "mode 0 presets nothing";
        record.rPrivate.sColorCorrection = 1;
        ApplyColorPreset(&record.rPrivate, pModel);
    });
    EXPECT_EQ(Slots(TEXT_AT), (Four{1, 0, 0, 0})) << "from the mode's first row on, not from the table's";
    EXPECT_EQ(Slots(IMAGE_AT), (Four{2, 0, 0, 0}));
    EXPECT_EQ(Slots(GRAPHICS_AT), (Four{0, 3, 0, 0}));
    EXPECT_EQ(Slots(GENERAL_AT), (Four{0, 0, 4, -5})) << "what cannot be stored is passed over";
    for (size_t nAt : {TEXT_AT, IMAGE_AT, GRAPHICS_AT, GENERAL_AT}) {
        std::memset(reinterpret_cast<u8*>(&record) + nAt, 0, 8);
    }
    record.rPrivate.sColorCorrection = 0;
    EXPECT_TRUE(SameBytes(record, recordTemplate)) << "nothing else was written";
}

TEST_F(ColorChoicesTest, WithoutAModeOrATableNothingIsPreset)
{
    auto untouched = [this](const XpiModel* pModel) {
        DriverDevmode before = record;
        ApplyColorPreset(&record.rPrivate, pModel);
        return SameBytes(record, before);
    };
    EXPECT_TRUE(untouched(nullptr));
    WithModel(WithPresets({{8, 1, 2}}), [&](const XpiModel* pModel) {
        for (i16 sMode : {i16{1}, i16{2}, i16{-1}, i16{32767}, i16{-32768}}) {
            record.rPrivate.sColorCorrection = sMode;
            EXPECT_TRUE(untouched(pModel)) << sMode;
        }
        record.rPrivate.sColorCorrection = 0;
        EXPECT_FALSE(untouched(pModel));
    });
    for (size_t nSlot : {size_t{COLOR_MODES}, size_t{PRESETS}}) {
        WithModel(WithPresets({{8, 1, 2}}).Set<u64>(nSlot, 0),
                  [&](const XpiModel* pModel) { EXPECT_TRUE(untouched(pModel)) << nSlot; });
    }
    WithModel(WithPresets({{8, 1, 32767}}),
              [&](const XpiModel* pModel) { EXPECT_TRUE(untouched(pModel)) << "rows behind the body"; });
}

TEST_F(ColorChoicesTest, ChoicesBecomePairsAndCommandsAndClearNothing)
{
    WithModel(WithOptions(), [this](const XpiModel* pModel) {
        BuildColorCommands(&record.rPrivate, pModel);
        const Four header = {10, 5, 0, 0, 0, 0}, body = {100, 20, 0, 0, 0, 0};
        for (size_t i = 0; i < 6; i++) {
            EXPECT_EQ(At<i16>(1856 + 2 * i), header[i]) << i;
            EXPECT_EQ(At<i16>(1868 + 2 * i), body[i]) << i;
        }
        EXPECT_EQ(Command(0), std::pair(30, 0x4006));
        EXPECT_EQ(Command(1), std::pair(40, 0x2008));
        EXPECT_EQ(Command(2), std::pair(72, 0x2002));
        EXPECT_EQ(Command(3), std::pair(85, 5)) << "the second slice of a general value is not sent";
        EXPECT_EQ(Command(4), std::pair(0, 0));
        EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 4);

        record.rPrivate.sTextOption[0] = 1;
        BuildColorCommands(&record.rPrivate, pModel);
        EXPECT_EQ(At<i16>(1856), 10) << "a pair that no choice fills any more stays";
        EXPECT_EQ(At<i16>(1870), 20);
        EXPECT_EQ(Command(0), std::pair(0, 0x800A));
        EXPECT_EQ(Command(1), std::pair(30, 0x4006));
        EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 5);

        record.rPrivate.sGraphicsOption[0] = 1; /* both options of graphics now have two slices */
        record.rPrivate.sGraphicsOption[1] = 1;
        BuildColorCommands(&record.rPrivate, pModel);
        EXPECT_EQ(Four({At<i16>(1864), At<i16>(1866), At<i16>(1876), At<i16>(1878)}), (Four{77, 3, 300, 31}))
            << "the later option of a class decides";
        EXPECT_EQ(Command(2), std::pair(85, 5));
        EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 3);
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
    EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 16);
    for (size_t nRow = 0; nRow < 15; nRow++) {
        EXPECT_EQ(Command(nRow), std::pair(7, 0x1FFF | std::array{0x8000, 0x4000, 0x2000, 0}[nRow / 4]))
            << nRow;
    }
    EXPECT_EQ(Command(15), std::pair(0, 0));
    EXPECT_EQ(At<u32>(2764), 0u) << "nothing behind the last row";
    BuildColorCommands(&record.rPrivate, nullptr);
    EXPECT_EQ(record.rPrivate.sGenColorCmdCount, 0);
}
