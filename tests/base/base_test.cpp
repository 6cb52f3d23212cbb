/* Text, formats and numbers: what fits, what is cut, and where the limits of the widths lie. */
#include <algorithm>
#include <array>
#include <climits>

#include "base/arithmetic.h"
#include "base/file_name.h"
#include "base/format.h"
#include "base/narrow.h"
#include "base/owned.h"
#include "base/wide.h"
#include "hosted/standin.h"
#include "support/both_builds.h"

namespace {

/* Formats into a buffer of cch characters that stands between marks; the text and whether it was whole. */
struct Formatted {
    std::string text;
    int bWhole;
    bool operator==(const Formatted&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Formatted& formatted)
{
    return out << '"' << formatted.text << "\" whole " << formatted.bWhole;
}

template <class... Arguments> Formatted WideOf(int cch, const WCHAR* wcFormat, Arguments... arguments)
{
    WideString wcRoom(static_cast<size_t>(cch) + 2, u'~');
    int bWhole = FormatWide(wcRoom.data() + 1, cch, wcFormat, arguments...);
    EXPECT_EQ(wcRoom.front(), u'~');
    EXPECT_EQ(wcRoom.back(), u'~');
    size_t nEnd = wcRoom.find(u'\0', 1);
    EXPECT_NE(nEnd, WideString::npos) << "no NUL within the buffer";
    return {Ascii(wcRoom.substr(1, nEnd - 1)), bWhole};
}

template <class... Arguments> Formatted NarrowOf(int cch, const char* cFormat, Arguments... arguments)
{
    std::string room(static_cast<size_t>(cch) + 2, '~');
    int bWhole = FormatNarrow(room.data() + 1, cch, cFormat, arguments...);
    EXPECT_EQ(room.front(), '~');
    EXPECT_EQ(room.back(), '~');
    size_t nEnd = room.find('\0', 1);
    EXPECT_NE(nEnd, std::string::npos) << "no NUL within the buffer";
    return {room.substr(1, nEnd - 1), bWhole};
}

} // namespace

TEST(Format, WritesNumbersAndTextsOfBothWidths)
{
    EXPECT_EQ(WideOf(32, u"%s%d-%d", u"BlockPage", 3, 10), (Formatted{"BlockPage3-10", 1}));
    EXPECT_EQ(NarrowOf(64, "@PJL SET %s=%s\r\n", "OUTBIN", "UPPER"),
              (Formatted{"@PJL SET OUTBIN=UPPER\r\n", 1}));
    EXPECT_EQ(WideOf(32, u"%08lX|%x|%04u|%3d|%02d", 0x80100u, 0xabcu, 7u, 5, -3),
              (Formatted{"00080100|abc|0007|  5|-3", 1}));
    EXPECT_EQ(NarrowOf(32, "%06d|%6d|%1d", -42, -42, 123), (Formatted{"-00042|   -42|123", 1}));
    EXPECT_EQ(NarrowOf(32, "100%% of %s", "it"), (Formatted{"100% of it", 1}));
    EXPECT_EQ(WideOf(16, u"[%s]", static_cast<const WCHAR*>(nullptr)), (Formatted{"[]", 1}));
    EXPECT_EQ(WideOf(16, u"plain", 7), (Formatted{"plain", 1})) << "an argument too many does no harm";
    EXPECT_EQ(WideOf(16, u""), (Formatted{"", 1}));
}

TEST(Format, NumbersAre32BitsWideAtTheirLimits)
{
    EXPECT_EQ(NarrowOf(64, "%d %d", INT_MAX, INT_MIN), (Formatted{"2147483647 -2147483648", 1}));
    EXPECT_EQ(NarrowOf(64, "%u %u %lu", UINT_MAX, -1, 0xFFFFFFFFul),
              (Formatted{"4294967295 4294967295 4294967295", 1}));
    EXPECT_EQ(NarrowOf(64, "%d %X", 0xFFFFFFFFu, -1), (Formatted{"-1 FFFFFFFF", 1}));
    EXPECT_EQ(NarrowOf(64, "%020d", INT_MIN), (Formatted{"-0000000002147483648", 1}));
    EXPECT_EQ(NarrowOf(64, "%d%x%u", 0, 0, 0u), (Formatted{"000", 1}));
}

TEST(Format, WhatItCannotServeIsCopiedAsItStands)
{
    /* Formats come from the language library too, so a wrong one must not read a number as a pointer. */
    for (const char* cFormat :
         {"%s",  "%c",   "%f",  "%p", "%n", "%ls",     "%5s",   "%-5d",          "%+d", "%.2d",
          "%*d", "%lld", "%hd", "%i", "%",  "50% off", "%021d", "%99999999999d", "%0",  "%l"}) {
        EXPECT_EQ(NarrowOf(64, cFormat, 7), (Formatted{cFormat, 1})) << cFormat;
    }
    EXPECT_EQ(NarrowOf(64, "%d", "text"), (Formatted{"%d", 1}));
    EXPECT_EQ(NarrowOf(64, "%d of %d", 1), (Formatted{"%d of %d", 1}))
        << "none is replaced when one is missing";
    EXPECT_EQ(WideOf(64, u"%s wants %d", 1, u"x"), (Formatted{"%s wants %d", 1}));
    EXPECT_EQ(WideOf(5, u"%s%q", u"abc"), (Formatted{"%s%q", 1}));
    EXPECT_EQ(WideOf(4, u"%s%q", u"abc"), (Formatted{"%s%", 0}));
}

TEST(Format, CutsAtTheBuffersEndAndSaysSo)
{
    EXPECT_EQ(WideOf(5, u"%s", u"abcd"), (Formatted{"abcd", 1}));
    EXPECT_EQ(WideOf(4, u"%s", u"abcd"), (Formatted{"abc", 0}));
    EXPECT_EQ(NarrowOf(5, "n=%d", 123456), (Formatted{"n=12", 0}));
    EXPECT_EQ(NarrowOf(1, "x"), (Formatted{"", 0}));
    EXPECT_EQ(NarrowOf(4, "%20d", 1), (Formatted{"   ", 0}));
    EXPECT_EQ(WideOf(4, u"ab%s", u"\xD83D\xDE00"), (Formatted{"ab", 0})) << "half of a pair stays out";
    EXPECT_EQ(WideOf(5, u"ab%s", u"\xD83D\xDE00"), (Formatted{"ab\\uD83D\\uDE00", 1}));

    char cUntouched = '~';
    EXPECT_EQ(FormatNarrow(&cUntouched, 0, "x"), 0);
    EXPECT_EQ(FormatNarrow(&cUntouched, -1, "x"), 0);
    EXPECT_EQ(cUntouched, '~');
}

TEST(Wide, CopiesCutOrGiveUp)
{
    /* A text, the room, what CopyWide leaves of it, and whether that is the whole. */
    const std::tuple<const WCHAR*, int, const char*, int> aCases[] = {
        {u"abc", 4, "abc", 1},
        {u"abc", 3, "ab", 0},
        {u"abc", 1, "", 0},
        {u"", 1, "", 1},
        {nullptr, 4, "", 1},
        {u"a\xD83D\xDE00", 3, "a", 0}, /* a pair is not torn */
        {u"a\xD83D\xDE00", 4, "a\\uD83D\\uDE00", 1},
        {u"a\xD83D", 3, "a\\uD83D", 1}, /* a half that was there already is not ours to mend */
    };
    for (const auto& [wcText, cch, cCut, bWhole] : aCases) {
        std::array<WCHAR, 8> wcRoom;
        wcRoom.fill(u'~');
        EXPECT_EQ(CopyWide(wcRoom.data(), cch, wcText), bWhole) << cCut;
        EXPECT_EQ(Ascii(wcRoom.data()), cCut);
        EXPECT_EQ(wcRoom[static_cast<size_t>(cch)], u'~');
        wcRoom.fill(u'~');
        EXPECT_EQ(CopyWideWhole(wcRoom.data(), cch, wcText), bWhole) << cCut;
        EXPECT_EQ(Ascii(wcRoom.data()), bWhole ? cCut : "");
    }
    WCHAR wcMark = u'~';
    EXPECT_EQ(
        CopyWide(&wcMark, 0, u"a") + CopyWideWhole(&wcMark, -1, u"a") + AppendWideWhole(&wcMark, 0, u"a"), 0);
    EXPECT_EQ(wcMark, u'~');
}

TEST(Wide, AppendsWholeOrEmpties)
{
    std::array<WCHAR, 6> wcRoom = {u'a', u'b'};
    EXPECT_EQ(AppendWideWhole(wcRoom.data(), 5, u"cd"), 1);
    EXPECT_EQ(Ascii(wcRoom.data()), "abcd");
    EXPECT_EQ(AppendWideWhole(wcRoom.data(), 5, u""), 1);
    EXPECT_EQ(AppendWideWhole(wcRoom.data(), 5, u"e"), 0);
    EXPECT_EQ(Ascii(wcRoom.data()), "");

    wcRoom.fill(u'x'); /* no NUL in the room that is told */
    EXPECT_EQ(AppendWideWhole(wcRoom.data(), 5, u"e"), 0);
    EXPECT_EQ(wcRoom[0], 0);
    EXPECT_EQ(wcRoom[5], u'x');
}

TEST(Wide, ComparesAndSearches)
{
    EXPECT_EQ(SameWide(u"Halden T410A", u"Halden T410A"), 1);
    EXPECT_EQ(SameWide(u"halden T410A", u"Halden T410A"), 0);
    EXPECT_EQ(SameWide(u"Halden", u"Halden T410A"), 0);
    EXPECT_EQ(SameWide(u"Halden T410A", u"Halden"), 0);
    EXPECT_EQ(SameWide(u"", u""), 1);

    const WCHAR* wcText = u"aab.XPI";
    EXPECT_EQ(FindWide(wcText, u"ab"), wcText + 1)
        << "a search that restarts behind a half match misses this";
    EXPECT_EQ(FindWide(wcText, u".XPI"), wcText + 3);
    EXPECT_EQ(FindWide(wcText, u".XPIX"), nullptr);
    EXPECT_EQ(FindWide(wcText, u""), wcText);
    EXPECT_EQ(FindWide(u"", u"a"), nullptr);

    EXPECT_EQ(Ascii(BehindLast(u"\\\\S\\P", u'\\')), "P");
    EXPECT_EQ(Ascii(BehindLast(u"P", u'\\')), "P");
    EXPECT_EQ(Ascii(BehindLast(u"P\\", u'\\')), "");
    const WCHAR awcOpen[3] = {u'a', u'b', u'c'};
    EXPECT_EQ(BoundedLength(awcOpen, 3), 3);
    EXPECT_EQ(BoundedLength(u"ab", 9), 2);
}

TEST(Arithmetic, ProductsAreWideAndQuotientsTruncate)
{
    EXPECT_EQ(MulDivTrunc(7, 3, 2), 10);
    EXPECT_EQ(MulDivTrunc(-7, 3, 2), -10) << "toward zero, not down";
    EXPECT_EQ(MulDivTrunc(7, -3, -2), 10);
    EXPECT_EQ(MulDivTrunc(1, 1, 0), 0);
    EXPECT_EQ(MulDivTrunc(INT_MAX, INT_MAX, INT_MAX), INT_MAX);
    EXPECT_EQ(MulDivTrunc(INT_MIN, INT_MIN, -1), -4611686018427387904LL);
    EXPECT_EQ(MulDivTrunc(32767, 25400, 600), 1387136);

    EXPECT_EQ(LowWord(1387136), 10880); /* 0x152A80 */
    EXPECT_EQ(LowWord(32768), -32768);
    EXPECT_EQ(LowWord(-32769), 32767);
    EXPECT_EQ(LowWord(0x7FFFFFFFFFFF8000), -32768);
    EXPECT_EQ(LowLong(0x180000000), INT_MIN);
    EXPECT_EQ(LowLong(-0x80000001LL), INT_MAX);
    EXPECT_EQ(AbsoluteCode(-32768), 32768);
    EXPECT_EQ(AbsoluteCode(32767), 32767);
    EXPECT_EQ(AbsoluteCode(-9), 9);
}

TEST(Arithmetic, BitSetsHaveTheHighBitFirst)
{
    for (const auto& [nSet, nByte, bMask] : {std::tuple<int, size_t, u8>{0, 0, 0x80},
                                             {7, 0, 0x01},
                                             {9, 1, 0x40},
                                             {118, 14, 0x02},
                                             {255, 31, 0x01}}) {
        u8 aBits[32] = {};
        aBits[nByte] = bMask;
        for (int nCode = -9; nCode < 300; nCode++) {
            EXPECT_EQ(IsBitSet(aBits, 256, nCode), nCode == nSet) << nSet << " asked for " << nCode;
        }
    }
}

class Blocks : public BothBuilds {};

TEST_F(Blocks, AreZeroedAndBounded)
{
    OwnedBlock<u8> pBlock(static_cast<u8*>(AllocateBlock(100)));
    ASSERT_TRUE(pBlock);
    EXPECT_EQ(std::count(pBlock.get(), pBlock.get() + 100, 0), 100);
    EXPECT_EQ(CountLive().nBlocks, 1);

    /* Nothing of a hostile size reaches the heap, whose own product might wrap. */
    ResetCallCounts();
    EXPECT_EQ(AllocateBlock(0), nullptr);
    EXPECT_EQ(AllocateBlock(0x10000001), nullptr);
    EXPECT_EQ(AllocateBlock(~u64{0}), nullptr);
    EXPECT_EQ(AllocateRows(0x100000000, 0x100000001),
              nullptr);                                      /* the product's low 64 bits are 0x100000000 */
    EXPECT_EQ(AllocateRows((u64{1} << 61) + 2, 8), nullptr); /* and here they are 16 */
    EXPECT_EQ(AllocateRows(5, 0), nullptr);
    EXPECT_EQ(AllocateRows(0, 5), nullptr);
    EXPECT_EQ(CallCount(CALL_HeapAlloc), 0);

    FailCall(CALL_HeapAlloc, 1, FAIL_FROM_THERE);
    EXPECT_EQ(AllocateRows(3, 5), nullptr);
    EXPECT_EQ(AllocateBlock(0x10000000), nullptr);
    EXPECT_EQ(StopFaults(), 2) << "the largest block that is asked for";
    FreeBlock(nullptr);
    EXPECT_EQ(CallCount(CALL_HeapFree), 0);
}

TEST_F(Blocks, TwoValuesSayThatNothingIsOpen)
{
    EXPECT_EQ(IsOpen(nullptr), 0);
    EXPECT_EQ(IsOpen(INVALID_HANDLE_VALUE), 0);
    PutFile(u"C:\\a.bin", "x");
    OwnedFile hFile(
        CreateFileW(u"C:\\a.bin", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(IsOpen(hFile.get()), 1);
    EXPECT_EQ(CountLive().nFiles, 1);
    hFile.reset(INVALID_HANDLE_VALUE);
    EXPECT_EQ(CountLive().nFiles, 0);
    hFile.reset();
    EXPECT_EQ(CallCount(CALL_CloseHandle), 1) << "the invalid handle was closed";
}

TEST_F(Blocks, ATextThatDoesNotConvertIsNotTakenInPart)
{
    char cText[8] = "~~~~~~~";
    EXPECT_EQ(NarrowInto(u"abc", cText, 8), 1);
    EXPECT_STREQ(cText, "abc");
    FailCall(CALL_WideCharToMultiByte, 1); /* the first of the calls that measure; those behind it succeed */
    EXPECT_EQ(NarrowInto(u"abc", cText, 8), 0);
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_STREQ(cText, "");
}

TEST(FileNames, DevicesAndPipesAreToldFromFolders)
{
    for (const WCHAR* tcDevice :
         {u"\\\\.\\COM1", u"\\\\?\\C:\\x", u"//?/C:/x", u"\\??\\C:\\x", u"\\\\\\.\\x", u"\\\\server\\PIPE",
          u"\\\\server\\pipe\\x", u"//server/Pipe. /x", u"\\\\server\\\\pipe\\x", u"\\\\server\\mailslot\\x",
          u"\\\\server\\IPC$\\x", u"\\\\.server\\share"}) {
        EXPECT_TRUE(IsDevicePath(tcDevice)) << Ascii(tcDevice);
    }
    for (const WCHAR* tcPath : {u"", u"\\", u"\\pipe", u"C:\\pipe\\x", u"pipe\\x", u"\\\\server\\share\\pipe",
                                u"\\\\server\\pipes", u"\\\\pipe\\x", u"\\\\server"}) {
        EXPECT_FALSE(IsDevicePath(tcPath)) << Ascii(tcPath);
    }
}
