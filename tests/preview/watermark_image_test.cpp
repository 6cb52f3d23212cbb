/* Image watermarks without a device context: what of a bitmap file can be trusted, where an image lies in a cell, and the
   short form of its path. */
#include <cstring>

#include "base/short_path.h"
#include "preview/watermark_image.h"
#include "support/bitmap_builder.h"
#include "support/sample_machine.h"
#include "support/sweep.h"

namespace {

bool operator==(const StretchArea& one, const StretchArea& other)
{
    return one.x == other.x && one.y == other.y && one.cx == other.cx && one.cy == other.cy;
}

/* One axis as x; the other is a plain copy of 1 pixel. */
struct Axis {
    i64 lSource, lSourceSize, lTarget, lTargetSize;
    LONG lHigh;
    int bLeft;
    i64 alCut[4];
};

TEST(WatermarkImage, ACopyIsCutInProportionAndEachStepSeesTheOneBefore)
{
    const Axis rows[] = {{0, 100, -10, 50, 100, 1, {20, 80, 0, 40}},
                         {0, 100, 80, 50, 100, 1, {0, 40, 80, 20}},
                         {0, 7, -3, 10, 5, 1, {2, 4, 0, 5}},
                         {0, 100, 10, 20, 100, 1, {0, 100, 10, 20}},
                         {0, 100, -50, 50, 100, 0, {}},
                         {0, 100, 100, 50, 100, 0, {}},
                         {0, 100, -900, 50, 100, 0, {}},
                         {0, 1, -9, 10, 100, 1, {0, 1, 0, 1}},
                         {0, 0, 0, 10, 100, 0, {}},
                         {0, 10, 0, 0, 100, 0, {}},
                         {0, 32767, -0x7FFFFFFF, 0x7FFFFFFF, 9, 0, {}}};
    for (const Axis& row : rows) {
        for (const bool bUpright : {false, true}) {
            StretchArea source = {row.lSource, 0, row.lSourceSize, 1};
            StretchArea target = {row.lTarget, 0, row.lTargetSize, 1};
            RECT rClip = {0, 0, row.lHigh, 1};
            if (bUpright) {
                source = {0, row.lSource, 1, row.lSourceSize};
                target = {0, row.lTarget, 1, row.lTargetSize};
                rClip = {0, 0, 1, row.lHigh};
            }
            ASSERT_EQ(ClipStretch(&source, &target, rClip), row.bLeft)
                << row.lTarget << " " << row.lTargetSize;
            if (row.bLeft) {
                EXPECT_EQ(bUpright ? source.y : source.x, row.alCut[0]);
                EXPECT_EQ(bUpright ? source.cy : source.cx, row.alCut[1]);
                EXPECT_EQ(bUpright ? target.y : target.x, row.alCut[2]);
                EXPECT_EQ(bUpright ? target.cy : target.cx, row.alCut[3]);
            }
        }
    }
}

PreviewRequest RequestOf(WatermarkEntry* pEntry, i32 lPageWidth = 21000)
{
    PreviewRequest request = {};
    pEntry->WMScaleX = pEntry->WMScaleY = 100;
    request.pWatermark = pEntry;
    request.lPageWidth = lPageWidth;
    request.lPageLength = 29700;
    return request;
}

TEST(WatermarkImage, SizeAndPlaceComeFromTheWidthOfTheCell)
{
    WatermarkEntry entry = {};
    PreviewRequest request = RequestOf(&entry);
    StretchArea place;
    const RECT rCell = {1, 1, 93, 133};
    entry.WMResolution = 600;
    ASSERT_TRUE(PlaceWatermarkImage(request, rCell, 600, 300, &place));
    EXPECT_TRUE((place == StretchArea{41, 64, 11, 5}));
    entry.WMScaleX = 150;
    entry.WMScaleY = 50;
    entry.WMPlacement = 9;
    entry.WMPositionX = 5;
    entry.WMPositionY = -4;
    ASSERT_TRUE(PlaceWatermarkImage(request, rCell, 600, 300, &place));
    EXPECT_TRUE((place == StretchArea{82, 135, 16, 2}));

    /* All places, of an image of 20 x 10 in a cell of 100 x 50 at 10,20. */
    const i64 aPlaces[][2] = {{50, 40}, {10, 20}, {50, 20}, {90, 40}, {50, 60}, {10, 40},
                              {10, 20}, {90, 20}, {10, 60}, {90, 60}, {50, 40}};
    entry = {};
    request = RequestOf(&entry, 2540);
    entry.WMResolution = 100;
    for (u16 n = 0; n < std::size(aPlaces); n++) { /* the last is none of the list */
        entry.WMPlacement = n;
        ASSERT_TRUE(PlaceWatermarkImage(request, {10, 20, 110, 70}, 20, 10, &place));
        EXPECT_TRUE((place == StretchArea{aPlaces[n][0], aPlaces[n][1], 20, 10})) << n;
    }
}

TEST(WatermarkImage, SizesTakeMoreThan32BitsOrAreNone)
{
    WatermarkEntry entry = {};
    PreviewRequest request = RequestOf(&entry);
    StretchArea place;
    const RECT rCell = {0, 0, 200, 280};
    request.sResolution = 300; /* of the job, for an entry without one */
    ASSERT_TRUE(PlaceWatermarkImage(request, rCell, 5000, 5000, &place));
    EXPECT_EQ(place.cx, 403);
    entry.WMScaleX = entry.WMScaleY = 0xFFFFFFFF;
    request.lPageWidth = 1;
    request.sResolution = 1;
    ASSERT_TRUE(PlaceWatermarkImage(request, rCell, 32767, 32767, &place));
    EXPECT_EQ(place.cx, 0x7FFFFFFF);

    entry.WMScaleX = entry.WMScaleY = 100;
    EXPECT_FALSE(PlaceWatermarkImage(RequestOf(&entry), rCell, 100, 100, &place)) << "no resolution at all";
    entry.WMResolution = 600;
    EXPECT_FALSE(PlaceWatermarkImage(RequestOf(&entry, 0), rCell, 100, 100, &place));
    EXPECT_FALSE(PlaceWatermarkImage(RequestOf(&entry, -21000), rCell, 100, 100, &place));
    EXPECT_FALSE(PlaceWatermarkImage(RequestOf(&entry), {0, 0, 46, 65}, 20, 20, &place)) << "below a pixel";
    EXPECT_FALSE(PlaceWatermarkImage(RequestOf(&entry), {46, 0, 0, 65}, 600, 600, &place));
}

TEST(WatermarkImage, TilesBeginLeftOfTheEdgeAsSteppingWouldFind)
{
    for (i64 lStep = 1; lStep < 8; lStep++) {
        for (i64 lAt = -30; lAt <= 30; lAt++) {
            i64 lStepped = lAt;
            while (lStepped > 5) {
                lStepped -= lStep;
            }
            while (lAt <= 5 && lStepped + lStep < 5) {
                lStepped += lStep;
            }
            ASSERT_EQ(FirstTile(lAt, lStep, 5), lStepped) << lAt << " by " << lStep;
        }
    }
}

/* ---- headers ---- */

int Accepts(const Bytes& file, BitmapHead* pHead)
{
    const i64 lSize = static_cast<i64>(file.size());
    const u32 ulRows = file.size() < FILE_HEADER_BYTES ? 0 : RowsOfBitmapFile(file.data(), lSize);
    if (!ulRows) {
        return 0;
    }
    const u32 cb = std::min(ulRows - FILE_HEADER_BYTES, HEAD_BYTES);
    const std::unique_ptr<u8[]> head(new u8[cb]); /* nothing behind it may be read */
    std::memcpy(head.get(), file.data() + FILE_HEADER_BYTES, cb);
    return ReadBitmapHead(head.get(), cb, ulRows, lSize, pHead);
}

TEST(WatermarkImage, RowsAreCountedInWholeBytesButReadInWholeWords)
{
    const struct {
        u16 usBits;
        i32 lWidth;
        u32 cbFileRow, cbRow;
    } rows[] = {{24, 5, 16, 16}, {1, 33, 4, 8}, {1, 7, 0, 4}, {4, 9, 4, 8},
                {8, 3, 4, 4},    {16, 3, 8, 8}, {32, 2, 8, 8}};
    for (const auto& row : rows) {
        BitmapHead head;
        ASSERT_TRUE(Accepts(BitmapFile({row.lWidth, 2, row.usBits}), &head)) << row.usBits;
        EXPECT_EQ(head.cbFileRow, row.cbFileRow) << row.usBits << " bits, " << row.lWidth;
        EXPECT_EQ(head.cbRow, row.cbRow) << row.usBits << " bits, " << row.lWidth;
    }
}

TEST(WatermarkImage, ColoursThatTheFileLacksAreBlack)
{
    BitmapHead head;
    Bytes file = BitmapFile({4, 4, 8, 2}); /* two colours of 256 */
    ASSERT_TRUE(Accepts(file, &head));
    EXPECT_EQ(head.rInfo.biClrUsed, 2u);
    Poke(&file, 14 + 32, u32{0}); /* that is all 256 of them */
    ASSERT_TRUE(Accepts(file, &head));
    EXPECT_EQ(head.rInfo.biClrUsed, 256u);
    EXPECT_EQ(head.aColors[1].rgbRed, BitmapColor(1).rgbRed);
    EXPECT_EQ(head.aColors[2].rgbRed, 0);
    Poke(&file, 14 + 32, u32{0xFFFFFFFF});
    ASSERT_TRUE(Accepts(file, &head));
    EXPECT_EQ(head.rInfo.biClrUsed, 256u);
    EXPECT_EQ(head.rInfo.biSizeImage, 16u);
}

TEST(WatermarkImage, AHeaderOutsideItsBoundsIsNone)
{
    BitmapHead head;
    const Bytes good = BitmapFile({4, 4, 24});
    ASSERT_TRUE(Accepts(good, &head));
    for (size_t cb = 0; cb < good.size(); cb++) {
        EXPECT_FALSE(Accepts(Bytes(good.begin(), good.begin() + static_cast<long>(cb)), &head)) << cb;
    }
    const struct {
        size_t nAt, cb;
        std::vector<u32> refused, accepted;
    } fields[] = {{0, 2, {0, 0x4D41, 0x4142, 0xFFFF}, {0x4D42}},
                  {10, 4, {0, 14, 53, 0x10001, 0xFFFFFFFF}, {54}},
                  {14, 4, {0, 12, 39, 41, 124, 0xFFFFFFFF}, {40}},
                  {18, 4, {0, 0x8000, 0x80000000, 0xFFFFFFFF, 0x7FFFFFFF, 5}, {1, 4}},
                  {22, 4, {0, 5, 0x8000, 0x80000000, 0xFFFFFFFC, 0x7FFFFFFF}, {1, 4}},
                  {26, 2, {0, 2, 0xFFFF}, {1}},
                  {28, 2, {0, 2, 15, 25, 32, 64, 0xFFFF}, {1, 4, 8, 16, 24}},
                  {30, 4, {1, 2, 3, 4, 0xFFFFFFFF}, {0}}};
    for (const auto& field : fields) {
        for (const bool bAccepted : {false, true}) {
            for (const u32 ulValue : bAccepted ? field.accepted : field.refused) {
                Bytes file = good;
                std::memcpy(file.data() + field.nAt, &ulValue, field.cb);
                EXPECT_EQ(Accepts(file, &head) != 0, bAccepted) << "at " << field.nAt << ": " << ulValue;
            }
        }
    }
    /* As many pixels as all are read of, and one row more. */
    Bytes wide = BitmapFile({0x4000, 1, 1});
    for (const i32 lRows : {0x4000, 0x4001}) {
        Poke(&wide, 22, lRows);
        EXPECT_EQ(ReadBitmapHead(wide.data() + 14, 48, 62, 0x10000000, &head), lRows == 0x4000);
    }
    /* Longer headers, and bit fields, which want all their masks. */
    EXPECT_TRUE(Accepts(BitmapFile({4, 4, 24, 0, 124}), &head));
    EXPECT_FALSE(Accepts(BitmapFile({4, 4, 24, 0, 128}), &head));
    for (const u16 usBits : {u16{16}, u16{32}}) {
        Bytes fields32 = BitmapFile({4, 4, usBits, 3});
        Poke(&fields32, 30, u32{3});
        EXPECT_TRUE(Accepts(fields32, &head)) << usBits;
        Poke(&fields32, 54 + 4, u32{0});
        EXPECT_FALSE(Accepts(fields32, &head)) << usBits;
    }
    Bytes bare = BitmapFile({4, 4, 32}); /* bit fields without their masks */
    Poke(&bare, 30, u32{3});
    EXPECT_FALSE(Accepts(bare, &head));
    EXPECT_FALSE(Accepts(BitmapFile({0x7FFF, 1, 24}), &head)) << "a row of more than 65,535 bytes";
}

/* ---- short paths ---- */

using ShortPath = MachineTest;

std::string Short(WideText wcPath, size_t cch = PATH_CHARS)
{
    wcPath.resize(std::max(cch, wcPath.size() + 1));
    ShortPathName(wcPath.data(), static_cast<int>(cch));
    return Narrow(wcPath.c_str());
}

TEST_F(ShortPath, ElementsTakeTheNameThatTheFileSystemTells)
{
    PutFile(u"C:\\Images\\Deep\\Logo.bmp", "x");
    PutFile(u"\\\\srv\\Share\\Logo.bmp", "x");
    EXPECT_EQ(Short(u"C:\\IMAGES\\Deep\\LOGO.BMP"), "C:\\images\\deep\\logo.bmp");
    EXPECT_EQ(Short(u"C:\\IMAGES\\Other.bmp"), "C:\\images\\Other.bmp");
    EXPECT_EQ(Short(u"\\\\SRV\\Share\\LOGO.bmp"), "\\\\SRV\\Share\\logo.bmp");
    for (const WideText wcSame :
         {u"Logo.bmp", u"", u"C:\\Images\\..\\D?ep\\L*.bmp", u"C:\\Images/Deep\\Other", u"\\\\SRV\\Share",
          u"\\\\SRV", u"C:\\\\X\\.\\Y\\"}) {
        WideText wcLow = wcSame;
        const size_t nAt = wcLow.find(u"C:\\Images\\");
        if (nAt == 0) {
            wcLow.replace(0, 9, u"C:\\images");
        }
        EXPECT_EQ(Short(wcSame), Narrow(wcLow));
    }
    EXPECT_EQ(CountLive().nSearches, 0);
}

TEST_F(ShortPath, ALongerFormThanThereIsRoomForChangesNothing)
{
    PutFile(u"C:\\Images\\Logo.bmp", "x");
    TellLies(LIE_UNTERMINATED, CALL_FindFirstFileW); /* a name of 260 characters */
    EXPECT_EQ(Short(u"C:\\Images\\Logo.bmp"), "C:\\Images\\Logo.bmp");
    TellLies(LIE_NONE);
    for (const FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
        const FaultSweep sweep = SweepFaults(ANY_CALL, mode, 20, [] {
            const std::string path = Short(u"C:\\Images\\LOGO.bmp");
            return SameName(Widen(path), u"C:\\Images\\Logo.bmp") ? "" : "made " + path;
        });
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GE(sweep.nFaults, 2);
    }
}

} // namespace
