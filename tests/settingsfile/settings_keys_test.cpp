/* The table of keys against the layout typed anew, and the record against what files carry of it. */
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "settingsfile/settings_key_rows.h"
#include "support/both_builds.h"

namespace {

std::string Kinds(u8 bSet)
{
    std::string kinds;
    for (u16 usKind = 0; usKind <= 4; usKind++) {
        if (bSet & KindOf(usKind)) {
            kinds += static_cast<char>('0' + usKind);
        }
    }
    return kinds;
}

std::vector<SettingKey> FileOrder()
{
    std::vector<SettingKey> keys;
    for (const KeyRows& run : aKeyRuns) {
        keys.insert(keys.end(), run.pKeys, run.pKeys + run.nKeys);
    }
    return keys;
}

/* Keys that a file of the kind gets: those of the table and those of code. */
int CountWritten(u16 usKind, bool bText)
{
    int nKeys = 3; /* XPI, WMType, ColorMode */
    for (int run = 0; run < RUN_COUNT; run++) {
        if (run == (bText ? RUN_FILE_WATERMARK : RUN_TEXT_WATERMARK) || (bText && run == RUN_PLACEMENT)) {
            continue;
        }
        for (int i = 0; i < aKeyRuns[run].nKeys; i++) {
            const SettingKey& key = aKeyRuns[run].pKeys[i];
            nKeys += !(key.bKindsWritten & KindOf(usKind)) ? 0 : key.form == KEY_TEXT ? 1 : key.bCount;
        }
    }
    return nKeys + (usKind == 3 ? 2 /* StyleCount, BlockCount */ : 1 /* InsertPageOffset */);
}

struct ByteRange {
    int nFrom, nEnd;
    const char* cWhat;
};

constexpr ByteRange aCarriedByCode[] = {
    {412, 416, "WMType"},
    {1720, 1724, "ColorMode, as 0"},
    {1886, 1888, "InsertPageOffset, as a sign"},
    {2980, 3716, "styles and blocks, of kinds 3 and 4"},
};

constexpr ByteRange aNotCarried[] = {
    {0, 64, "name of the printer"},
    {64, 76, "versions, sizes and DM_ flags"},
    {80, 86, "paper length, width and scale, which the paper code says"},
    {98, 100, "dmTTOption"},
    {102, 188, "form name to dmDisplayFrequency, kept empty"},
    {200, 220, "dither type to panning, kept 0"},
    {220, 224, "stamp"},
    {228, 232, "ulResFontOffset"},
    {368, 372, "ulHalftoneOffset"},
    {376, 380, "ulMemory"},
    {416, 424, "watermark position"},
    {638, 648, "a hole, and szlWMSize"},
    {684, 1720, "collate command, job comment, start and end commands"},
    {1726, 1740, "reserved"},
    {1742, 1756, "reserved"},
    {1758, 1772, "reserved"},
    {1774, 1788, "reserved"},
    {1798, 1802, "sOverlayDirOffset, sNoPJL"},
    {1804, 1806, "sNumColors"},
    {1880, 1882, "sDoNotReportFonts"},
    {1892, 1906, "reserved"},
    {1942, 1944, "sGenColorCmdOffset"},
    {1948, 1970, "binding mode, back offsets, poster counts and orientation, border length"},
    {1970, 2040, "reserved"},
    {2040, 2692, "OEM header, description file, overlay folder"},
    {2828, 2924, "typed option values"},
    {2930, 2932, "sColorCorrection"},
    {2936, 2948, "words for the rendering half"},
    {3716, 3718, "end of the exception region"},
    {3730, 3768, "reserved"},
    {3770, 4088, "colour dialog states, layout shown, reserved"},
};

} // namespace

TEST(SettingsKeys, TheTableIsTheListOfTheFormat)
{
    std::vector<SettingKey> keys = FileOrder();
    ASSERT_EQ(keys.size(), std::size(aKeyRows));
    for (size_t i = 0; i < keys.size(); i++) {
        const SettingKey& key = keys[i];
        const KeyRow& row = aKeyRows[i];
        SCOPED_TRACE(row.cKey + std::string(" ") + std::to_string(row.nAt));
        EXPECT_EQ(Ascii(key.wcKey), row.cKey);
        EXPECT_EQ(key.usOffset, row.nAt);
        EXPECT_EQ(key.bWidth, row.Width());
        EXPECT_EQ(key.bCount, row.nCount);
        EXPECT_EQ(key.form, row.form);
        EXPECT_EQ(Kinds(key.bKindsRead), row.cRead);
        EXPECT_EQ(Kinds(key.bKindsWritten), row.cWritten);
        EXPECT_TRUE(row.nCount == 1 || row.At(1) == key.usOffset + key.bStride);
        EXPECT_TRUE(key.bWidth != 2 || key.bSigned == (row.cType == 's'));
        EXPECT_EQ(key.form == KEY_TEXT, row.cType == 't');
    }
    for (const KeyRows& run : aKeyRuns) {
        EXPECT_GT(run.nKeys, 0);
    }
    EXPECT_EQ(aKeyRuns[RUN_COLOR_COMMANDS].nKeys, 2); /* written in turn */
    EXPECT_EQ(aKeyRuns[RUN_COLOR_COMMANDS].pKeys[0].bCount, aKeyRuns[RUN_COLOR_COMMANDS].pKeys[1].bCount);
    /* "Collate" stands twice. */
    EXPECT_EQ(CountWritten(0, false), 201);
    EXPECT_EQ(CountWritten(4, false), 201);
    EXPECT_EQ(CountWritten(0, true), 208);
    EXPECT_EQ(CountWritten(3, false), 190);
    EXPECT_EQ(CountWritten(3, true), 196);
}

TEST(SettingsKeys, EveryByteIsCarriedOrListed)
{
    std::vector<std::string> carriers(sizeof(DriverDevmode));
    auto Mark = [&](int nFrom, int nEnd, const std::string& what) {
        for (int i = nFrom; i < nEnd; i++) {
            carriers[static_cast<size_t>(i)] += what + "; ";
        }
    };
    for (const SettingKey& key : FileOrder()) {
        for (int i = 0; i < key.bCount; i++) {
            int nAt = key.usOffset + i * key.bStride;
            Mark(nAt, nAt + key.bWidth, Ascii(key.wcKey));
        }
    }
    for (const ByteRange& range : aCarriedByCode) {
        Mark(range.nFrom, range.nEnd, range.cWhat);
    }
    for (const ByteRange& range : aNotCarried) {
        ASSERT_LT(range.nFrom, range.nEnd);
        for (int i = range.nFrom; i < range.nEnd; i++) {
            EXPECT_EQ(carriers[static_cast<size_t>(i)], "") << i << ", " << range.cWhat;
        }
        Mark(range.nFrom, range.nEnd, range.cWhat);
    }
    for (size_t i = 0; i < carriers.size(); i++) {
        EXPECT_NE(carriers[i], "") << "byte " << i;
    }
}

TEST(SettingsKeys, StyleFieldsFillTheirBodies)
{
    const WCHAR* wcStem;
    for (u16 usKind : {u16{3}, u16{4}}) {
        for (int nType = 0; nType < 256; nType++) {
            u8 bType = static_cast<u8>(nType);
            int nNameAt = StyleNameAt(bType, usKind, &wcStem);
            int cbStyle = StyleSize(bType, usKind, 0);
            int anCarried[64] = {};
            ASSERT_LT(cbStyle, 64);
            for (const StyleKey& key : aStyleKeys) {
                for (int i = 0; nType < 8 && key.bTypes >> nType & 1 && key.bKindsRead & KindOf(usKind) &&
                                i < key.bWidth;
                     i++) {
                    ASSERT_LT(key.bOffset + i, cbStyle) << Ascii(key.wcStem);
                    anCarried[key.bOffset + i]++;
                }
            }
            for (int i = STYLE_BODY_AT; i < (nNameAt ? nNameAt : cbStyle); i++) {
                bool bHole = nType == 5 && i == 5;
                EXPECT_EQ(anCarried[i], bHole ? 0 : 1) << "type " << nType << " +" << i;
            }
        }
    }
    /* The longest overlay name ends inside its style. */
    EXPECT_LE(StyleNameAt(5, 4, &wcStem) + 2 * (OVERLAY_NAME_CHARS + 1), StyleSize(5, 4, OVERLAY_NAME_CHARS));
    EXPECT_GT(StyleNameAt(5, 4, &wcStem) + 2 * (OVERLAY_NAME_CHARS + 2),
              StyleSize(5, 4, OVERLAY_NAME_CHARS + 1));
}
