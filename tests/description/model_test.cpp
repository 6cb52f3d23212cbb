/* The loaded body of a description file, its rows, and the sections beside texts: built byte by byte, whole
   and damaged. */
#include "description/driver_files.h"
#include "support/machine_script.h"

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

TEST_F(ModelTest, NoModelWithoutAFileMemoryOrAReadableBody)
{
    XpiFile closed = {};
    EXPECT_FALSE(LoadXpiModel(closed));
    EXPECT_FALSE(OpenXpiPath(closed, u"C:\\missing.xpi"));
    EXPECT_FALSE(LoadXpiModel(closed));
    EXPECT_EQ(LookupXpiMemory(nullptr, 8), 0);
    EXPECT_EQ(GetXpiHalftoneBytes(nullptr), 0u);
    EXPECT_EQ(ReadXpiFontChunk(closed, nullptr, nullptr, 1), 0u);
    EXPECT_EQ(GetXpiFontDataSize(closed, nullptr), 0u);

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

namespace {

class ModelScripts : public Scripted<ModelTest> {
  protected:
    /* A number; a field of the header by its name; "@NAME+N" what stands in that field, and N more. */
    u64 At(const std::string& word) const
    {
        static const std::map<std::string, size_t> fields = {
            {"body", AT_BODY},
            {"string-base", AT_STRING_BASE},
            {"command-data", AT_COMMAND_DATA},
            {"font-table", AT_FONT_TABLE},
            {"font-data", AT_FONT_DATA},
            {"bitmap-data", AT_BITMAP_DATA},
            {"color-data", AT_COLOR_DATA},
            {"color-size", AT_COLOR_SIZE},
        };
        if (word[0] == '@') {
            const size_t nSign = word.find_first_of("+", 1);
            const u64 ullMore = nSign == word.npos ? 0 : static_cast<u64>(ToNumber(word.substr(nSign + 1)));
            return Peek<u32>(bytes_, fields.at(word.substr(1, nSign - 1))) + ullMore;
        }
        const auto field = fields.find(word);
        return field == fields.end() ? static_cast<u64>(ToNumber(word)) : field->second;
    }
    /* AT WIDTH VALUE */
    void Change(Bytes* pBytes, const Args& w)
    {
        const u64 ullValue = At(w[2]);
        for (u64 i = 0; i < At(w[1]); i++) {
            Poke(pBytes, At(w[0]) + i, static_cast<u8>(ullValue >> 8 * i));
        }
    }
    void Words16(const Args& w)
    {
        std::vector<u16> words;
        for (size_t n = 1; n < w.size(); n++) {
            words.push_back(static_cast<u16>(At(w[n])));
        }
        builder_.Table(At(w[0]), words);
    }
    std::string Pages(u16 usFill)
    {
        const u32 ulPages = builder_.Table<u16>(140, {usFill, usFill, usFill, usFill});
        Load(builder_.Build());
        std::string pages;
        for (u32 i = 0; i < 8; i += 2) {
            pages += std::to_string(WordAt(ulPages + i)) + " ";
        }
        return pages;
    }
    /* The size; when it is read the first and the last byte as well. */
    std::string Chunk(i32 nFirst, bool bRead)
    {
        Bytes room(32767);
        const u32 cb = ReadXpiFontChunk(file, pModel.get(), bRead ? room.data() : nullptr, nFirst);
        return std::to_string(cb) +
               (bRead && cb ? " " + std::to_string(room[0]) + " " + std::to_string(room[cb - 1]) : "");
    }
    u64 Halftone(const Args& w)
    {
        std::vector<ResolutionRow> rows;
        for (const std::string& word : w) {
            rows.push_back({1, 300, 0, 0, 300, 300, static_cast<i16>(ToNumber(word)), 1});
        }
        rows.push_back({});
        rows.push_back({1, 300, 0, 0, 300, 300, 1024, 1}); /* behind the closing row */
        DescriptionBuilder builder;
        builder.Table(174, rows);
        return GetXpiHalftoneBytes(Load(builder.Build()));
    }
    /* ID [ROOM]: by one of the two readers. */
    std::string Command(int (*read)(XpiFile&, u16, char*, int), const Args& w)
    {
        char cText[2001];
        std::memset(cText, '~', sizeof cText);
        const int cb = w.size() > 1 ? Int(w, 1) : 2000;
        const int nRead = read(file, static_cast<u16>(At(w[0])), cText, cb);
        EXPECT_EQ(cText[cb], '~');
        const std::string text = cb ? cText : "";
        EXPECT_EQ(nRead, static_cast<int>(text.size()));
        return text;
    }
    void AddBitmap(u32 cbTold, size_t cb)
    {
        Bytes bitmap(cb, 0x77);
        bitmap[0] = 'B';
        bitmap[1] = 'M';
        Poke(&bitmap, 2, cbTold);
        builder_.bitmaps.push_back(bitmap);
    }
    std::string Bitmap(u16 usId)
    {
        u32 cb = 99;
        ResetCallCounts();
        const OwnedBlock<u8> pBitmap = ReadXpiBitmap(file, usId, &cb);
        EXPECT_EQ(pBitmap != nullptr, cb > 0);
        if (pBitmap && usId < builder_.bitmaps.size()) { /* the size that is told may be another */
            const Bytes& own = builder_.bitmaps[usId];
            EXPECT_TRUE(std::equal(pBitmap.get() + 6, pBitmap.get() + std::min<size_t>(cb, own.size()),
                                   own.begin() + 6));
        }
        return pBitmap ? std::to_string(cb) : CallCount(CALL_HeapAlloc) ? "none for want of bytes" : "none";
    }
    /* The length without a room, and the bytes of a room of 16. */
    std::string Color()
    {
        u8 aRoom[16];
        std::memset(aRoom, 0xEE, sizeof aRoom);
        const u32 cb = ReadXpiColorData(file, nullptr);
        std::string text = std::to_string(cb);
        if (const u32 cbRead = ReadXpiColorData(file, aRoom); cbRead != cb) {
            return text + " but " + std::to_string(cbRead);
        }
        for (u8 bByte : aRoom) {
            text += " " + std::to_string(bByte);
        }
        return text.substr(0, text.find(" 238"));
    }

    Bytes bytes_;
    DescriptionBuilder builder_;
};

SCRIPTED(ModelScripts, AreLoadedAsWritten, "models.txt")
{
    const auto sizes = [](const Args& w) {
        std::vector<size_t> all;
        for (const std::string& word : w) {
            all.push_back(static_cast<size_t>(ToNumber(word)));
        }
        return all;
    };
    const auto at = [&](const Args& w, size_t n = 0) { return At(w.at(n)); };
    PlayBy({
        DEED("bare", bytes_ = BareBody(at(w), w.size() > 1 ? static_cast<u8>(at(w, 1)) : u8{0})),
        DEED("poke", Change(&bytes_, w)),
        DEED("resize", bytes_.resize(at(w), w.size() > 1 ? static_cast<u8>(at(w, 1)) : u8{0})),
        DEED("new", builder_ = DescriptionBuilder()),
        DEED("fonts", builder_ = WithFonts(sizes(w))),
        DEED("set", Change(&builder_.body, w)),
        DEED("words", Words16(w)),
        DEED("command", builder_.Command(w[0])),
        DEED("grow-body", builder_.body.resize(at(w), static_cast<u8>(at(w, 1)))),
        DEED("build", bytes_ = builder_.Build()),
        DEED("load", Load(bytes_)),
        VERB("slot", SlotOffset(at(w))),
        VERB("word", WordAt(at(w))),
        VERB("byte", Body()[at(w)]),
        VERB("zeros", std::count(Body() + at(w), Body() + at(w, 1), 0) ==
                          static_cast<std::ptrdiff_t>(at(w, 1) - at(w))),
        VERB("peak-below", PeakBlockBytes() < at(w)),
        VERB("pages", Pages(static_cast<u16>(at(w)))),
        VERB("chunk", Chunk(Int(w, 0), false)),
        VERB("read-chunk", Chunk(Int(w, 0), true)),
        VERB("font-bytes", GetXpiFontDataSize(file, pModel.get())),
        VERB("memory", LookupXpiMemory(Load(builder_.Build()), static_cast<u16>(at(w)))),
        VERB("halftone", Halftone(w)),
        DEED("open-command", builder_.commands.emplace_back(w[0].begin(), w[0].end())),
        DEED("open", Open(bytes_)),
        VERB("read-command", Command(ReadXpiCommand, w)),
        VERB("read-short-command", Command(ReadXpiShortCommand, w)),
        DEED("bitmap", AddBitmap(static_cast<u32>(at(w)), at(w, 1))),
        VERB("read-bitmap", Bitmap(static_cast<u16>(at(w)))),
        DEED("color", builder_.colorData = FromHex<Bytes>(w[0])),
        VERB("read-color", Color()),
    });
}

} // namespace
