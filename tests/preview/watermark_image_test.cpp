/* Image watermarks without a device context: what of a bitmap file can be trusted, where an image lies in a cell, and the
   short form of its path. */
#include <cstring>

#include "base/short_path.h"
#include "preview/picture_cases.h"
#include "preview/watermark_image.h"
#include "support/data_file.h"
#include "support/sample_machine.h"
#include "support/sweep.h"

namespace {

TEST(WatermarkImage, ACopyIsCutInProportionAndEachStepSeesTheOneBefore)
{
    /* One axis; the other is a plain copy of 1 pixel. */
    for (const DataRow& row : ReadRows("preview_copies.txt")) {
        const auto n = ToNumbers<i64>(row[0]);
        const auto wanted = ToNumbers<i64>(row[1]);
        for (const bool bUpright : {false, true}) {
            StretchArea source = {n[0], 0, n[1], 1}, target = {n[2], 0, n[3], 1};
            RECT rClip = {0, 0, static_cast<LONG>(n[4]), 1};
            if (bUpright) {
                source = {0, n[0], 1, n[1]};
                target = {0, n[2], 1, n[3]};
                rClip = {0, 0, 1, static_cast<LONG>(n[4])};
            }
            ASSERT_EQ(ClipStretch(&source, &target, rClip), !wanted.empty()) << row[0];
            if (!wanted.empty()) {
                EXPECT_EQ((bUpright ? std::vector{source.y, source.cy, target.y, target.cy}
                                    : std::vector{source.x, source.cx, target.x, target.cx}),
                          wanted)
                    << row[0];
            }
        }
    }
}

TEST(WatermarkImage, SizeAndPlaceComeFromTheWidthOfTheCell)
{
    for (const DataRow& row : ReadRows("preview_image_places.txt")) {
        PictureCase sheet = CaseOf("", "resolution 0 " + row[0]);
        sheet.request.pWatermark = &sheet.watermark;
        const auto cell = ToNumbers<LONG>(row[1]), image = ToNumbers<LONG>(row[2]);
        StretchArea place;
        const int bPlaced = PlaceWatermarkImage(sheet.request, {cell[0], cell[1], cell[2], cell[3]}, image[0],
                                                image[1], &place);
        EXPECT_EQ((bPlaced ? std::vector{place.x, place.y, place.cx, place.cy} : std::vector<i64>()),
                  ToNumbers<i64>(row[3]))
            << row[0];
    }
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
    for (const DataRow& row : ReadRows("preview_bitmap_fields.txt")) {
        const auto field = ToNumbers<size_t>(row[0]);
        for (const size_t nColumn : {size_t{1}, size_t{2}}) {
            for (const u32 ulValue : ToNumbers<u32>(row[nColumn])) {
                Bytes file = good;
                std::memcpy(file.data() + field[0], &ulValue, field[1]);
                EXPECT_EQ(Accepts(file, &head) != 0, nColumn == 2) << "at " << field[0] << ": " << ulValue;
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
    EXPECT_EQ(Short(u"C:\\Images\\..\\D?ep\\L*.bmp"), "C:\\images\\..\\D?ep\\L*.bmp");
    for (const WideText wcSame :
         {u"Logo.bmp", u"", u"C:\\Images/Deep\\Other", u"\\\\SRV\\Share", u"\\\\SRV", u"C:\\\\X\\.\\Y\\"}) {
        EXPECT_EQ(Short(wcSame), Narrow(wcSame));
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
