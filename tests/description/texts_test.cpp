/* Display texts: where they are looked up, where they are cut, and that a list gives what single reads give. */
#include <random>

#include "description/language_dll.h"
#include "description/xpi_text.h"
#include "support/machine_script.h"

namespace {

class TextsTest : public MachineTest {
  protected:
    void TearDown() override
    {
        hLibrary.reset();
        file.hFile.reset();
        MachineTest::TearDown();
    }

    void Open(const Bytes& bytes)
    {
        PutFile(u"C:\\x.xpi", bytes);
        ASSERT_TRUE(OpenXpiPath(file, u"C:\\x.xpi"));
    }

    /* The library with English and German texts. */
    void OpenLibrary()
    {
        PrinterCall call(AddTestPrinter(DescriptionBuilder().Build()));
        hLibrary = OpenLanguageDll(call, nullptr);
        ASSERT_TRUE(hLibrary);
    }

    WideText Read(i32 nId, u16 usLanguage = 9, int cch = 64)
    {
        WideText wcRoom(static_cast<size_t>(cch) + 2, u'~');
        ReadXpiString(file, usLanguage, hLibrary.get(), nId, wcRoom.data() + 1, cch);
        EXPECT_EQ(wcRoom.front(), u'~');
        EXPECT_EQ(wcRoom.back(), u'~');
        size_t nEnd = wcRoom.find(u'\0', 1);
        EXPECT_NE(nEnd, WideText::npos) << "no NUL within the buffer";
        return wcRoom.substr(1, nEnd - 1);
    }

    XpiFile file = {};
    OwnedModule hLibrary;
};

/* Header and the three sections of the texts, each at a place of its own. */
struct TextSections {
    std::vector<u16> bases, offsets;
    Bytes texts;

    Bytes Build() const
    {
        Bytes bytes(64);
        Poke(&bytes, AT_STRING_BASE, u32{64});
        for (u16 usBase : bases) {
            Poke(&bytes, bytes.size(), usBase);
        }
        Poke(&bytes, AT_STRING_ID, static_cast<u32>(bytes.size()));
        for (u16 usOffset : offsets) {
            Poke(&bytes, bytes.size(), usOffset);
        }
        Poke(&bytes, AT_STRING_DATA, static_cast<u32>(bytes.size()));
        bytes.insert(bytes.end(), texts.begin(), texts.end());
        return bytes;
    }
};

/* What the format says of a text, for a code page whose characters are single bytes and keep their number. */
WideText PlainReading(const Bytes& bytes, u16 usLanguage, i32 nId, int cch)
{
    auto Word = [&bytes](u64 ullAt) -> i64 {
        return ullAt + 2 > bytes.size() ? -1 : Peek<u16>(bytes, ullAt);
    };
    i64 lBase = Word(Peek<u32>(bytes, AT_STRING_BASE) + 2 * u64{usLanguage});
    i64 lText = lBase < 0 ? -1 : Word(Peek<u32>(bytes, AT_STRING_ID) + 2 * static_cast<u64>(lBase + nId));
    WideText wcText;
    for (u64 ullAt = Peek<u32>(bytes, AT_STRING_DATA) + static_cast<u64>(lText);
         lText >= 0 && ullAt < bytes.size() && bytes[ullAt] && wcText.size() + 1 < static_cast<size_t>(cch);
         ullAt++) {
        wcText += static_cast<WCHAR>(bytes[ullAt]);
    }
    return wcText;
}

} // namespace

TEST_F(TextsTest, WithoutALibraryTheHostProgramIsNotAsked)
{
    Open(DescriptionBuilder().Build());
    ResetCallCounts();
    EXPECT_EQ(Read(-121), u"");
    EXPECT_EQ(Read(0), u"");
    i16 aIds[3] = {-121, 0, -1};
    WCHAR wcRows[12] = u"~~~~~~~~~~~";
    ReadXpiStrings(file, 9, nullptr, aIds, 3, wcRows, 4, 4);
    EXPECT_EQ(wcRows[0] + wcRows[4] + wcRows[8], 0);
    WCHAR wcMark = u'~';
    ReadXpiString(file, 9, nullptr, -121, &wcMark, 0);
    ReadXpiString(file, 9, nullptr, 1, &wcMark, 0);
    EXPECT_EQ(wcMark, u'~');
    EXPECT_EQ(CallCount(CALL_LoadStringW), 0);
    EXPECT_EQ(NeedsLanguageDll(aIds, 3), 1);
    EXPECT_EQ(NeedsLanguageDll(aIds + 1, 1), 0) << "id 0 has no text, so no library is opened for it";
}

TEST_F(TextsTest, LongTextsAreCutAtACharactersEnd)
{
    for (const DataRow& row : ReadRows("cut_texts.txt")) {
        SetCodePage(static_cast<UINT>(ToNumber(row[1])));
        DescriptionBuilder builder;
        builder.strings[9] = {FromHex<std::string>(row[2], 2), "behind"};
        Open(builder.Build());
        EXPECT_EQ(Narrow(Read(1, 9, static_cast<int>(ToNumber(row[3])))),
                  Narrow(FromHex<WideText>(row[4], 4)))
            << row[0];
    }
}

TEST_F(TextsTest, AListReadsWhatSingleReadsGive)
{
    OpenLibrary();
    std::mt19937 random(20240115);
    auto Below = [&random](u32 ulLimit) { return static_cast<u32>(random() % ulLimit); };
    int nTexts = 0;
    for (int nTrial = 0; nTrial < 300; nTrial++) {
        TextSections sections;
        for (u32 i = 0, n = Below(12); i < n; i++) {
            sections.bases.push_back(static_cast<u16>(Below(30)));
        }
        u32 cbTexts = 1 + Below(nTrial % 3 ? 300 : 5000);
        for (u32 i = 0, n = Below(80); i < n; i++) {
            sections.offsets.push_back(static_cast<u16>(Below(cbTexts + 5)));
        }
        for (u32 i = 0; i < cbTexts; i++) {
            u32 ulByte = Below(200); /* no control codes, and only bytes that keep their number in 1252 */
            sections.texts.push_back(static_cast<u8>(ulByte < 20    ? 0
                                                     : ulByte < 110 ? 0x20 + ulByte - 20
                                                                    : 0xA0 + ulByte - 110));
        }
        Bytes bytes = sections.Build();
        if (Below(3) == 0) {
            bytes.resize(64 + Below(static_cast<u32>(bytes.size() - 63)));
        }
        Open(bytes);

        std::vector<i16> ids;
        for (u32 i = 0, n = Below(60); i < n; i++) {
            ids.push_back(Below(8) ? static_cast<i16>(1 + Below(40))
                                   : static_cast<i16>(-121 * static_cast<int>(Below(2))));
        }
        u16 usLanguage = static_cast<u16>(Below(14));
        int cch = 2 + static_cast<int>(Below(70)), cchStride = cch + static_cast<int>(Below(5));
        i32 nIds = static_cast<i32>(ids.size());
        WideText wcRows(ids.size() * static_cast<size_t>(cchStride) + 1, u'~');
        ReadXpiStrings(file, usLanguage, hLibrary.get(), ids.data(), nIds, wcRows.data(), cchStride, cch);
        ASSERT_EQ(wcRows.back(), u'~');
        for (size_t i = 0; i < ids.size(); i++) {
            WideText wcRow(wcRows, i * static_cast<size_t>(cchStride), static_cast<size_t>(cchStride));
            ASSERT_EQ(wcRow.find(u'~', static_cast<size_t>(cch)),
                      cch < cchStride ? static_cast<size_t>(cch) : WideText::npos)
                << "written behind the row's characters";
            size_t nEnd = wcRow.find(u'\0');
            ASSERT_LT(nEnd, static_cast<size_t>(cch));
            wcRow.resize(nEnd);
            ASSERT_EQ(wcRow, Read(ids[i], usLanguage, cch)) << "trial " << nTrial << " id " << ids[i];
            if (ids[i] > 0) {
                ASSERT_EQ(wcRow, PlainReading(bytes, usLanguage, ids[i], cch))
                    << "trial " << nTrial << " id " << ids[i];
                nTexts += !wcRow.empty();
            }
        }
    }
    EXPECT_GT(nTexts, 500) << "most trials read nothing, so little was compared";
}

TEST_F(TextsTest, AListCostsFewReadsAndAFailedOneLeavesEmptyRows)
{
    DescriptionBuilder builder;
    std::vector<i16> ids;
    ids.reserve(40);
    for (int i = 0; i < 40; i++) {
        ids.push_back(builder.Text("Paper of a somewhat longer name, number " + std::to_string(i)));
    }
    std::vector<WCHAR> rows(40 * 64, u'~');
    for (CallId call : {CALL_ReadFile, CALL_SetFilePointerEx, CALL_HeapAlloc}) {
        int nFailed = 1;
        for (int nTh = 1; nFailed; nTh++) {
            Open(builder.Build());
            std::fill(rows.begin(), rows.end(), u'~');
            ResetCallCounts();
            FailCall(call, nTh);
            ReadXpiStrings(file, 9, nullptr, ids.data(), 40, rows.data(), 64, 64);
            nFailed = StopFaults();
            EXPECT_LE(CallCount(CALL_ReadFile), 4) << "header, base, offsets, bytes";
            for (size_t i = 0; i < 40; i++) {
                WideText wcRow(rows.data() + i * 64);
                EXPECT_EQ(wcRow.empty(), nFailed != 0) << CallName(call) << " " << nTh;
            }
            ASSERT_LT(nTh, 10);
        }
    }
    EXPECT_EQ(WideText(rows.data() + 39 * 64), u"Paper of a somewhat longer name, number 39");
}

namespace {

class TextScripts : public Scripted<TextsTest> {
  protected:
    void Build(const Args& w)
    {
        DescriptionBuilder builder;
        builder.strings[9] = w;
        Open(builder.Build());
    }
    /* Two languages, whose texts begin at row 0 and at the last that there can be. */
    void BuildSections(const Args& w)
    {
        TextSections sections;
        sections.bases = {0, 0xFFFF};
        sections.offsets = {0, 0};
        sections.texts = {'a', 0};
        Bytes bytes = sections.Build();
        if (w.size() == 2) {
            Poke(&bytes, static_cast<size_t>(ToNumber(w[0])), static_cast<u32>(ToNumber(w[1])));
        }
        Open(bytes);
    }
    std::string ReadOne(const Args& w)
    {
        return Narrow(Read(static_cast<i16>(ToNumber(w[0])),
                           static_cast<u16>(w.size() > 1 ? ToNumber(w[1]) : 9),
                           w.size() > 2 ? Int(w, 2) : 64));
    }
};

SCRIPTED(TextScripts, AreReadAsWritten, "texts.txt")
{
    PlayBy({DEED("library", OpenLibrary()), DEED("texts", Build(w)), DEED("sections", BuildSections(w)),
            DEED("bare", Open(Bytes(static_cast<size_t>(ToNumber(w[0]))))), VERB("read", ReadOne(w)),
            VERB("fits", Read(Int(w, 0), 9, 16).size() < 16)});
}

} // namespace
