/* The loaded body of a description file, its rows, and the sections beside texts: built byte by byte, whole
   and damaged. */
#include "description/driver_files.h"
#include "support/sample_machine.h"

namespace {

class ModelTest : public MachineTest {
  protected:
    void TearDown() override
    {
        pModel.reset();
        file.hFile.reset();
        MachineTest::TearDown();
    }

    /* Opens a description; what was loaded from the one before is let go. */
    void Open(const Bytes& bytes)
    {
        pModel.reset();
        PutFile(u"C:\\x.xpi", bytes);
        ASSERT_TRUE(OpenXpiPath(file, u"C:\\x.xpi"));
    }

    const XpiModel* Load(const Bytes& bytes)
    {
        Open(bytes);
        pModel = LoadXpiModel(file);
        EXPECT_TRUE(pModel);
        return pModel.get();
    }

    const u8* Body() const { return reinterpret_cast<const u8*>(pModel.get()); }

    /* What the loader made of the slot, as an offset into the body; -1 for an absent table. */
    i64 SlotOffset(size_t nSlot) const
    {
        const u8* pAt;
        std::memcpy(&pAt, Body() + nSlot, sizeof pAt);
        return pAt ? pAt - Body() : -1;
    }

    u16 WordAt(size_t nAt) const
    {
        u16 usWord;
        std::memcpy(&usWord, Body() + nAt, sizeof usWord);
        return usWord;
    }

    XpiFile file = {};
    OwnedModel pModel;
};

/* The body's pointers: every table and text, and nothing else. */
constexpr size_t aTableSlots[] = {
    8 /* papers */,         24 /* input bins */,   32 /* output bins */,  40 /* options */,
    48 /* media */,         96 /* memory */,       104 /* about texts */, 124 /* default font */,
    132 /* proportional */, 140 /* font pages */,  148 /* font pairs */,  158 /* constraints */,
    166 /* margins */,      174 /* resolutions */, 188 /* features */,    196 /* their values */,
    220 /* colour modes */, 228 /* text */,        236 /* image */,       244 /* graphics */,
    252 /* general */,      260 /* values */,      268 /* presets */,     284 /* screens */};

/* A file that is nothing but a header and a body of cb bytes at offset 0x40. */
Bytes BareBody(size_t cb, u8 bFill = 0)
{
    Bytes bytes(64);
    Poke(&bytes, AT_BODY, u32{64});
    Poke(&bytes, AT_STRING_BASE, static_cast<u32>(64 + cb));
    bytes.resize(64 + cb, bFill);
    return bytes;
}

DescriptionBuilder WithFonts(const std::vector<size_t>& sizes)
{
    DescriptionBuilder builder;
    u8 bFill = 0x41;
    for (size_t cb : sizes) {
        builder.fonts.emplace_back(cb, bFill++);
    }
    builder.Set<i16>(156, static_cast<i16>(sizes.size()));
    return builder;
}

/* A field of a row, whose address may be odd, as a value that an expectation can bind to. */
template <class Number> Number Value(Number number)
{
    return number;
}

const std::vector<size_t> SIX_FONTS = {20000, 12767, 1, 30000, 2767, 1};

} // namespace

TEST_F(ModelTest, BodySizeIsADifferenceOfLowHalves)
{
    /* 0x10200 - 0x40 is 66,000 bytes; the low halves give 448. */
    Bytes bytes(64 + 70000, 0xEE);
    Poke(&bytes, AT_BODY, u32{0x40});
    Poke(&bytes, AT_STRING_BASE, u32{0x10200});
    for (size_t nSlot : aTableSlots) {
        Poke(&bytes, 64 + nSlot, u64{0});
    }
    Poke(&bytes, 64 + 8, u64{440});
    Load(bytes);
    EXPECT_EQ(SlotOffset(8), 440);
    EXPECT_EQ(Body()[447], 0xEE);
    EXPECT_EQ(Body()[448], 0x00);
    EXPECT_LT(PeakBlockBytes(), 2048u) << "the block is as large as the body, not as the difference";

    /* Low halves that fall wrap as 16 bits: 0x0010 - 0x0040 is 65,488. */
    Poke(&bytes, AT_STRING_BASE, u32{0x10});
    Poke(&bytes, 64 + 8, u64{65480});
    Load(bytes);
    EXPECT_EQ(SlotOffset(8), 65480);
}

TEST_F(ModelTest, AllSlotsBecomePointersAndNothingElseChanges)
{
    Bytes bytes = BareBody(0x240, 0xA7);
    for (size_t nSlot : aTableSlots) {
        Poke(&bytes, 64 + nSlot, u64{0x200});
    }
    Load(bytes);
    Bytes after(Body(), Body() + 315);
    for (size_t nSlot : aTableSlots) {
        EXPECT_EQ(SlotOffset(nSlot), 0x200) << "slot " << nSlot;
        Poke(&after, nSlot, u64{0x200});
    }
    EXPECT_EQ(after, Bytes(bytes.begin() + 64, bytes.begin() + 64 + 315));
}

TEST_F(ModelTest, SlotsCountByAllEightBytesButLeadByTheLowFour)
{
    const std::pair<u64, i64> aCases[] = {
        {0, -1},                 /* absent */
        {0x0000000100000000, 0}, /* not zero, so it leads to the body's first byte */
        {0xDEADBEEF00000140, 0x140},
        {0x17F, 0x17F},
        {0x180, 0x180}, /* the body's size: from here on it is the tail */
        {0x181, 0x180},
        {0x80000010, 0x180},
        {0xFFFFFFFFFFFFFFFF, 0x180},
    };
    for (const auto& [ullSlot, lOffset] : aCases) {
        Bytes bytes = BareBody(0x180);
        Poke(&bytes, 64 + 284, ullSlot);
        Load(bytes);
        EXPECT_EQ(SlotOffset(284), lOffset) << std::hex << ullSlot;
    }
}

TEST_F(ModelTest, ShortBodiesAndFilesReadAsZeros)
{
    /* A body of 100 bytes: what it has counts, its pointers lead nowhere, the rest is zero. */
    Bytes bytes = BareBody(100);
    Poke(&bytes, 64 + 2, u16{3});
    Poke(&bytes, 64 + 8, u64{96});
    Poke(&bytes, 64 + 24, u64{200});
    Poke(&bytes, 64 + 92, i16{64});
    bytes.resize(64 + 400, 0xEE); /* what lies behind the body in the file is no part of it */
    const XpiModel* pLoaded = Load(bytes);
    EXPECT_EQ(pLoaded->usLanguage, 3);
    EXPECT_EQ(pLoaded->sStdMemory, 64);
    EXPECT_EQ(SlotOffset(8), 96);
    EXPECT_EQ(SlotOffset(24), 315);
    EXPECT_EQ(pLoaded->usColorClass, 0);
    EXPECT_EQ(SlotOffset(220), -1);
    EXPECT_EQ(pLoaded->bModelFlags, 0);

    /* A body that is announced longer than the file. */
    bytes = BareBody(448, 0x55);
    bytes.resize(64 + 4);
    pLoaded = Load(bytes);
    EXPECT_EQ(pLoaded->usLanguage, 0x5555);
    EXPECT_EQ(pLoaded->sLanguageLevel, 0);
    EXPECT_EQ(SlotOffset(8), -1);

    for (const Bytes& empty : {Bytes(), Bytes(64), BareBody(0)}) {
        Load(empty);
        EXPECT_EQ(Bytes(Body(), Body() + 315 + 128), Bytes(315 + 128));
    }
    bytes = BareBody(448, 0x55);
    Poke(&bytes, AT_BODY, u32{0xFFFFFF00});
    Poke(&bytes, AT_STRING_BASE, u32{0x100});
    EXPECT_EQ(Load(bytes)->usLanguage, 0);
}

TEST_F(ModelTest, NoModelWithoutAFileMemoryOrAReadableBody)
{
    XpiFile closed = {};
    EXPECT_FALSE(LoadXpiModel(closed));
    EXPECT_FALSE(OpenXpiPath(closed, u"C:\\missing.xpi"));
    EXPECT_FALSE(LoadXpiModel(closed));

    DescriptionBuilder builder = WithFonts({10, 20});
    builder.Table<u16>(140, {0, 0, 0});
    for (CallId call : {CALL_HeapAlloc, CALL_ReadFile, CALL_SetFilePointerEx}) {
        int nFailing =
            call == CALL_HeapAlloc ? 1 : 2; /* the first read is the header's, and that one may fail */
        for (int nTh = nFailing;; nTh++) {
            Open(builder.Build());
            FailCall(call, nTh);
            pModel = LoadXpiModel(file);
            if (!StopFaults()) {
                EXPECT_GE(nTh, call == CALL_HeapAlloc ? 2 : 4) << "body and font offsets are read";
                break;
            }
            EXPECT_FALSE(pModel) << CallName(call) << " " << nTh;
        }
    }
}

TEST_F(ModelTest, RowsOutsideTheBlockAreTheSharedRowOfZeros)
{
    DescriptionBuilder builder;
    builder.Table<MemoryRow>(104, {{7, 7}}); /* what an index below 0 would find */
    u32 ulTable = builder.Table<MemoryRow>(96, {{8, 60}, {96, 90}, {0, 0}});
    const XpiModel* pLoaded = Load(builder.Build());
    const MemoryRow* pTable = pLoaded->pMemoryTable;
    EXPECT_EQ(Value(Row(pLoaded, pTable, 1)->usValue), 90);

    const void* pZeros = RowAt(nullptr, nullptr, 0, sizeof(MemoryRow));
    EXPECT_EQ(Bytes(static_cast<const u8*>(pZeros), static_cast<const u8*>(pZeros) + 64), Bytes(64));
    auto IsZeros = [&](const MemoryRow* pAt, i32 nIndex) {
        return RowAt(pLoaded, pAt, nIndex, sizeof(MemoryRow)) == pZeros;
    };
    for (i32 nIndex : {-1, -2, INT32_MIN, INT32_MAX, 3 + 32, 1000}) {
        EXPECT_TRUE(IsZeros(pTable, nIndex)) << nIndex;
    }
    EXPECT_FALSE(IsZeros(pTable, 3 + 31)) << "the last row of the tail";
    MemoryRow elsewhere[2] = {{1, 2}, {3, 4}};
    EXPECT_TRUE(IsZeros(nullptr, 0) && IsZeros(elsewhere, 0));
    i64 lEnd = ulTable + 12 + 128;
    for (i64 lOff : {i64{-1}, i64{-8}, lEnd, lEnd - 3, lEnd + 1, i64{1} << 40, -(i64{1} << 40)}) {
        const MemoryRow* pAt;
        u64 ullAt = reinterpret_cast<std::uintptr_t>(Body()) + static_cast<u64>(lOff);
        std::memcpy(&pAt, &ullAt, sizeof ullAt);
        EXPECT_TRUE(IsZeros(pAt, 0)) << lOff;
    }
    EXPECT_STREQ(BodyText(pLoaded, reinterpret_cast<const char*>(elsewhere)), "");
    EXPECT_STREQ(BodyText(pLoaded, nullptr), "");
}

TEST_F(ModelTest, FontPagesHoldTheStartsOfTheChunksThatEnded)
{
    auto Pages = [this](DescriptionBuilder builder, u16 usFill) {
        const u32 ulPages = builder.Table<u16>(140, {usFill, usFill, usFill, usFill});
        Load(builder.Build());
        return std::vector<u16>{WordAt(ulPages), WordAt(ulPages + 2), WordAt(ulPages + 4),
                                WordAt(ulPages + 6)};
    };
    EXPECT_EQ(Pages(WithFonts(SIX_FONTS), 0xEEEE), (std::vector<u16>{1, 3, 5, 0xEEEE}));
    /* More fonts than are read at one go: 255 * 128 is 32640. */
    for (size_t nFonts : std::initializer_list<size_t>{254, 255, 256, 257, 511, 600}) {
        EXPECT_EQ(
            Pages(WithFonts(std::vector<size_t>(nFonts, 128)), 0),
            (std::vector<u16>{1, nFonts > 255 ? u16{256} : u16{0}, nFonts > 510 ? u16{511} : u16{0}, 0}))
            << nFonts;
    }
    for (i16 sCount : std::initializer_list<i16>{0, -1, -32768}) {
        EXPECT_EQ(Pages(WithFonts({}).Set<i16>(156, sCount), 0xEEEE),
                  (std::vector<u16>{1, 0xEEEE, 0xEEEE, 0xEEEE}))
            << sCount;
    }
}

TEST_F(ModelTest, FontPagesNeverTouchTheFixedPartOrTheTail)
{
    DescriptionBuilder builder = WithFonts(SIX_FONTS);
    builder.Set<u32>(311, 0xA5A5A5A5);
    builder.body.resize(320, 0xA5);
    const std::tuple<u64, size_t, Bytes> aCases[] = {
        {311, 311, {0xA5, 0xA5, 0xA5, 0xA5, 5, 0, 0xA5, 0xA5, 0xA5}}, /* two entries lie in the fixed part */
        {314, 312, {0xA5, 0xA5, 0xA5, 0xA5, 3, 0, 5, 0}},             /* entry 0 would share a byte with it */
        {317, 315, {0xA5, 0xA5, 1, 0, 0xA5, 0, 0, 0, 0, 0}},          /* entry 1 would leave the body */
    };
    for (const auto& [ullSlot, nFrom, bytes] : aCases) {
        builder.Set<u64>(140, ullSlot);
        Load(builder.Build());
        EXPECT_EQ(Bytes(Body() + nFrom, Body() + nFrom + bytes.size()), bytes) << ullSlot;
    }
    for (u64 ullSlot :
         {u64{0x100000000}, u64{4}, u64{320}, u64{0xFFFFFFF0}}) { /* body's start, within, tail */
        builder.Set<u64>(140, ullSlot);
        builder.Set<u16>(2, 3);
        Load(builder.Build());
        EXPECT_EQ(pModel->usLanguage, 3);
        EXPECT_EQ(Bytes(Body() + 320, Body() + 320 + 128), Bytes(128)) << "the tail stays zero";
    }
}

TEST_F(ModelTest, FontChunksAndSizes)
{
    DescriptionBuilder builder = WithFonts(SIX_FONTS);
    Load(builder.Build());
    constexpr u32 aExpected[] = {32767, 12768, 30001, 32767, 2768, 1, 0};
    for (i32 nFirst = 1; nFirst <= 7; nFirst++) {
        u32 cb = aExpected[nFirst - 1];
        EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, nFirst), cb) << nFirst;
        Bytes buffer(32767, 0xEE);
        EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), buffer.data(), nFirst), cb) << nFirst;
        Bytes expected;
        for (size_t nFont = static_cast<size_t>(nFirst) - 1; expected.size() < cb; nFont++) {
            expected.insert(expected.end(), builder.fonts[nFont].begin(), builder.fonts[nFont].end());
        }
        expected.resize(32767, 0xEE);
        EXPECT_EQ(buffer, expected) << nFirst;
    }
    for (i32 nFirst : {0, -1, 8, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, nFirst), 0u) << nFirst;
    }
    EXPECT_EQ(GetXpiFontDataSize(file, pModel.get()), 65536u);

    Load(WithFonts({40000, 5}).Build());
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, 1), 0u) << "a single font over the limit";
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, 2), 5u);

    builder = WithFonts(std::vector<size_t>(200, 100)); /* more rows than are held at once */
    builder.fonts[130].assign(101, 0x7A);
    Load(builder.Build());
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, 1), 20001u);
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, 130), 7101u);
    Bytes last(101);
    Load(WithFonts({3, 101}).Build());
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), last.data(), 2), 101u);
    EXPECT_EQ(last, Bytes(101, 0x42));
}

TEST_F(ModelTest, FontsThatLeadOutOfTheFileHaveNoSize)
{
    DescriptionBuilder builder = WithFonts({10, 20});
    Bytes whole = builder.Build();
    size_t nTable = Peek<u32>(whole, AT_FONT_TABLE);

    u8 aRoom[40];
    /* An offset that leads out, a table that falls, a section at whose offset 32 bits would wrap. */
    for (const auto& [nAt, ulValue] :
         {std::pair<size_t, u32>{nTable + 8, 0x7FFFFFFF}, {nTable, 31}, {AT_FONT_DATA, 0xFFFFFFF8}}) {
        Bytes bytes = whole;
        Poke(&bytes, nAt, ulValue);
        Load(bytes);
        EXPECT_EQ(GetXpiFontDataSize(file, pModel.get()), 0u) << nAt;
        EXPECT_EQ(nAt == nTable + 8 ? 0u : ReadXpiFontChunk(file, pModel.get(), aRoom, 1), 0u) << nAt;
    }
    whole.resize(Peek<u32>(whole, AT_FONT_DATA) + 29); /* a byte is missing */
    Load(whole);
    EXPECT_EQ(GetXpiFontDataSize(file, pModel.get()), 0u);
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), nullptr, 1), 30u);
    EXPECT_EQ(ReadXpiFontChunk(file, pModel.get(), aRoom, 1), 0u);
    EXPECT_EQ(ReadXpiFontChunk(file, nullptr, aRoom, 1), 0u);
    EXPECT_EQ(GetXpiFontDataSize(file, nullptr), 0u);
}

TEST_F(ModelTest, MemoryIsLookedUpWithTheFirstRowInReserve)
{
    const std::vector<MemoryRow> two = {{8, 60}, {96, 90}, {0, 77}};
    const std::tuple<std::vector<MemoryRow>, u16, u16> aCases[] = {
        {two, 96, 90}, {two, 8, 60},        {two, 16, 60},
        {two, 0, 60},  {{{0, 77}}, 96, 77}, {{{448, 40000}, {0, 0}}, 448, 40000}};
    for (const auto& [rows, usKey, usValue] : aCases) {
        DescriptionBuilder builder;
        builder.Table(96, rows);
        EXPECT_EQ(LookupXpiMemory(Load(builder.Build()), usKey), usValue) << usKey;
    }
    EXPECT_EQ(LookupXpiMemory(Load(DescriptionBuilder().Build()), 8), 0);
    EXPECT_EQ(LookupXpiMemory(nullptr, 8), 0);
}

TEST_F(ModelTest, HalftoneBytesAreSquaresOfSaneDimensions)
{
    auto Told = [this](const std::vector<i16>& dimensions) {
        std::vector<ResolutionRow> rows;
        for (i16 sDim : dimensions) {
            rows.push_back({1, 300, 0, 0, 300, 300, sDim, 1});
        }
        rows.push_back({});
        rows.push_back({1, 300, 0, 0, 300, 300, 1024, 1}); /* behind the closing row */
        DescriptionBuilder builder;
        builder.Table(174, rows);
        return GetXpiHalftoneBytes(Load(builder.Build()));
    };
    EXPECT_EQ(Told({8, 16}), 10240u);
    EXPECT_EQ(Told({-8, 0, 1, 1024, 1025, 32767, -32768}), 32u + 32u * 1024 * 1024);
    EXPECT_EQ(Told(std::vector<i16>(200, 1024)), 200 * (u64{32} << 20)) << "more than 32 bits hold";
    EXPECT_EQ(GetXpiHalftoneBytes(nullptr), 0u);
}

TEST_F(ModelTest, ValueRowsAreWiderOnTheFirstImageKindOnly)
{
    DescriptionBuilder builder;
    builder.Table<u16>(196, {101, 102, 103, 104, 105, 106, 0, 0, 0});
    for (u16 usKind : std::initializer_list<u16>{0, 1, 2, 3, 4, 5}) {
        const XpiModel* pLoaded = Load(builder.Set<u16>(2, usKind).Build());
        EXPECT_EQ(Value(PjlValueRow(pLoaded, 1)->usNameId), usKind == 3 ? 104 : 103) << usKind;
        EXPECT_EQ(Value(PjlValueRow(pLoaded, 1)->usCmdId), usKind == 3 ? 105 : 104) << usKind;
    }
    EXPECT_EQ(Value(PjlValueRow(pModel.get(), -1)->usNameId), 0);
    EXPECT_EQ(Value(PjlValueRow(pModel.get(), 0x7FFFFFFF)->usNameId), 0);
    EXPECT_EQ(Value(PjlValueRow(nullptr, 0)->usNameId), 0);
}

TEST_F(ModelTest, CommandsComeWholeOrNotAtAll)
{
    DescriptionBuilder builder;
    u16 usShort = builder.Command("@PJL SET RESOLUTION=600\r\n"), usNone = builder.Command("");
    u16 us127 = builder.Command(std::string(127, 'a')), us128 = builder.Command(std::string(128, 'b'));
    u16 us1023 = builder.Command(std::string(1023, 'c')), us1024 = builder.Command(std::string(1024, 'd'));
    builder.commands.push_back({'A', 'B', 'C'}); /* no NUL: the font section is its end */
    u16 usOpen = static_cast<u16>(builder.commands.size() - 1);
    Open(builder.Build());

    const std::string resolution = "@PJL SET RESOLUTION=600\r\n";
    const std::tuple<u16, std::string, std::string> aCases[] = {
        /* by the two readers */
        {usShort, resolution, resolution},
        {usNone, "", ""},
        {0, "", ""},
        {usOpen, "ABC", "ABC"},
        {us127, std::string(127, 'a'), std::string(127, 'a')},
        {us128, std::string(128, 'b'), ""},
        {us1023, std::string(1023, 'c'), ""},
        {us1024, "", ""}};
    for (const auto& [usId, full, brief] : aCases) {
        char cText[2000];
        std::memset(cText, '~', sizeof cText);
        EXPECT_EQ(ReadXpiCommand(file, usId, cText, sizeof cText), static_cast<int>(full.size())) << usId;
        EXPECT_EQ(cText, full);
        EXPECT_EQ(ReadXpiShortCommand(file, usId, cText, sizeof cText), static_cast<int>(brief.size()));
        EXPECT_EQ(cText, brief);
    }

    /* Fields of 12 bytes and fewer: half a command is worse than none. */
    char cField[4] = {'~', '~', '~', '~'};
    EXPECT_EQ(ReadXpiCommand(file, usOpen, cField, 4), 3);
    EXPECT_STREQ(cField, "ABC");
    EXPECT_EQ(ReadXpiCommand(file, usOpen, cField, 3), 0);
    EXPECT_STREQ(cField, "");
    cField[0] = '~';
    EXPECT_EQ(ReadXpiCommand(file, usOpen, cField, 0), 0);
    EXPECT_EQ(cField[0], '~');

    FailCall(CALL_ReadFile, 2, FAIL_FROM_THERE);
    char cText[200] = "~";
    EXPECT_EQ(ReadXpiCommand(file, usShort, cText, sizeof cText), 0);
    EXPECT_STREQ(cText, "");
    EXPECT_GT(StopFaults(), 0);
}

TEST_F(ModelTest, CommandsNeverReachTheFontSection)
{
    DescriptionBuilder builder;
    u16 usId = builder.Command("ABCDEF");
    Bytes whole = builder.Build();
    u32 ulAt = Peek<u32>(whole, AT_COMMAND_DATA) + 1; /* behind command 0 */
    char cText[64];
    for (const auto& [ulFontData, cExpected] : {std::pair<u32, const char*>{ulAt + 7, "ABCDEF"},
                                                {ulAt + 6, "ABCDEF"},
                                                {ulAt + 3, "ABC"},
                                                {ulAt, ""},
                                                {ulAt - 1, ""},
                                                {0, ""},
                                                {0xFFFFFFFF, "ABCDEF"}}) {
        Bytes bytes = whole;
        Poke(&bytes, AT_FONT_DATA, ulFontData);
        Open(bytes);
        ReadXpiCommand(file, usId, cText, sizeof cText);
        EXPECT_STREQ(cText, cExpected) << ulFontData - ulAt;
    }
    /* Ids beyond the table read what lies behind it in the file, or nothing: never a fault. */
    Open(whole);
    ReadXpiCommand(file, 0xFFFF, cText, sizeof cText);
    EXPECT_STREQ(cText, "");
}

TEST_F(ModelTest, BitmapsComeWholeOrNotAtAll)
{
    DescriptionBuilder builder;
    auto Bitmap = [](u32 cbTold, size_t cb) {
        Bytes bitmap(cb, 0x77);
        bitmap[0] = 'B';
        bitmap[1] = 'M';
        Poke(&bitmap, 2, cbTold);
        return bitmap;
    };
    builder.bitmaps = {Bitmap(70, 70), Bitmap(14, 14), Bitmap(13, 14), Bitmap(61, 60),
                       Bitmap(0xFFFFFFFF, 14)};
    Bytes whole = builder.Build();
    Poke(&whole, AT_COLOR_DATA, u32{0});
    whole.resize(Peek<u32>(whole, AT_BITMAP_DATA) + 70 + 14 + 14 + 60 + 14);
    Open(whole);
    u32 cb = 99;
    OwnedBlock<u8> pFirst = ReadXpiBitmap(file, 0, &cb);
    ASSERT_TRUE(pFirst);
    EXPECT_EQ(Bytes(pFirst.get(), pFirst.get() + cb), builder.bitmaps[0]);
    OwnedBlock<u8> pSmallest = ReadXpiBitmap(file, 1, &cb);
    ASSERT_TRUE(pSmallest);
    EXPECT_EQ(cb, 14u);

    ResetCallCounts();
    for (u16 usId : std::initializer_list<u16>{2, 4, 0xFFFF}) {
        cb = 99;
        EXPECT_FALSE(ReadXpiBitmap(file, usId, &cb)) << usId;
        EXPECT_EQ(cb, 0u);
    }
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 0) << "a size that the file cannot hold is not allocated";
    EXPECT_TRUE(ReadXpiBitmap(file, 3, &cb)) << "61 bytes told where 60 lie reads on into the next bitmap";
    whole.resize(whole.size() - 14);
    Open(whole);
    ResetCallCounts();
    EXPECT_FALSE(ReadXpiBitmap(file, 3, &cb)) << "but not beyond the end";
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 0);
    Poke(&whole, whole.size() - 60 + 2, u32{60});
    Open(whole);
    EXPECT_TRUE(ReadXpiBitmap(file, 3, &cb)) << "and up to it";

    Open(whole);
    for (int nTh = 2; nTh <= 4; nTh++) { /* the header was read for the file; offset, BMP header, whole */
        Open(whole);
        FailCall(CALL_ReadFile, nTh);
        EXPECT_FALSE(ReadXpiBitmap(file, 0, &cb)) << nTh;
        EXPECT_EQ(StopFaults(), 1);
    }
}

TEST_F(ModelTest, ColorDataIsAsLongAsTheLowHalfSays)
{
    DescriptionBuilder builder;
    builder.colorData = {1, 2, 3, 4, 5, 6, 7, 8};
    Bytes whole = builder.Build();
    u8 aRoom[16];
    for (const auto& [cbTold, cb] : {std::pair<u32, u32>{8, 8}, {0, 0}, {0x10005, 5}, {0x10000, 0}}) {
        Bytes bytes = whole;
        Poke(&bytes, AT_COLOR_SIZE, cbTold);
        Open(bytes);
        EXPECT_EQ(ReadXpiColorData(file, nullptr), cb);
        std::memset(aRoom, 0xEE, sizeof aRoom);
        EXPECT_EQ(ReadXpiColorData(file, aRoom), cb);
        Bytes expected(builder.colorData.begin(), builder.colorData.begin() + static_cast<i64>(cb));
        expected.resize(sizeof aRoom, 0xEE);
        EXPECT_EQ(Bytes(aRoom, aRoom + 16), expected) << cbTold;
    }
    Poke(&whole, AT_COLOR_SIZE, u32{12}); /* four more than the file has */
    Open(whole);
    std::memset(aRoom, 0xEE, sizeof aRoom);
    EXPECT_EQ(ReadXpiColorData(file, aRoom), 12u);
    EXPECT_EQ(Bytes(aRoom, aRoom + 16), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0xEE, 0xEE, 0xEE, 0xEE}));
    FailCall(CALL_ReadFile, 1);
    EXPECT_EQ(ReadXpiColorData(file, aRoom), 0u);
    EXPECT_EQ(StopFaults(), 1);
}
