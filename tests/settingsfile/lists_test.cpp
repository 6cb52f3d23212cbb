/* The lists of settings files: watermarks and font substitutions. */
#include <cstring>
#include <ctime>

#include "hosted/standin.h"
#include "settingsfile/font_substitutions.h"
#include "settingsfile/settings_writer.h"
#include "support/both_builds.h"
#include "support/data_file.h"
#include "support/same_bytes.h"
#include "support/settings_text.h"
#include "support/sweep.h"
#include "watermark/watermark_rows.h"

namespace {

constexpr WCHAR LIST_FILE[] = u"C:\\set\\list.ini";

/* The lines of one row, as they are written. */
std::string TextRow(const std::string& i, const std::string& text = "Draft")
{
    return "WMType" + i + "=1\r\nWMString" + i + "=" + text + "\r\nWMAngle" + i + "=450\r\nWMCharSet" + i +
           "=204\r\nWMFace" + i + "=Arial\r\nWMBold" + i + "=1\r\nWMItalic" + i + "=0\r\nWMSize" + i +
           "=72\r\nWMColor" + i + "=00C0C0FF\r\nWMOutline" + i + "=1\r\n";
}

std::string ImageRow(const std::string& i)
{
    return "WMType" + i + "=2\r\nWMString" + i + "=Logo\r\nWMImageName" + i + "=C:\\w\\logo.bmp\r\n";
}

std::string Without(std::string lines, const std::string& key)
{
    size_t nFrom = ("\n" + lines).find("\n" + key + "=");
    EXPECT_NE(nFrom, std::string::npos) << key;
    return lines.erase(nFrom, lines.find("\r\n", nFrom) + 2 - nFrom);
}

class Lists : public BothBuilds {
  protected:
    std::vector<WatermarkEntry> Rows(const std::string& count, const std::string& lines)
    {
        PutFile(LIST_FILE,
                "[Watermarks]\r\n" + (count.empty() ? "" : "NumWatermarks=" + count + "\r\n") + lines);
        return ListOf(LIST_FILE);
    }

    static std::vector<WatermarkEntry> ListOf(const WCHAR* tcPath)
    {
        OwnedBlock<WatermarkEntry> pRows;
        i32 nRows = ReadWatermarks(OpenProfile(tcPath), &pRows);
        WatermarkEntry spare;
        ResetWatermarkEntry(&spare);
        EXPECT_TRUE(pRows && SameBytes(pRows.get()[nRows], spare)) << "spare row";
        std::vector<WatermarkEntry> rows;
        for (i32 i = 0; i < nRows; i++) {
            rows.push_back(pRows.get()[i]);
        }
        return rows;
    }

    /* Result of the substitutions, and the block's texts with | for each NUL. */
    std::pair<int, std::string> Fonts(const std::string& lines, size_t nChars = 0)
    {
        PutFile(LIST_FILE, "[FontSubstitutions]\r\n" + lines);
        OwnedBlock<WCHAR> pBlock;
        u16 cb = ReadFontSubstitutions(OpenProfile(LIST_FILE), &pBlock);
        std::string texts = pBlock ? "" : "null";
        for (size_t i = 0; pBlock && i < nChars; i++) {
            texts += pBlock.get()[i] ? static_cast<char>(pBlock.get()[i]) : '|';
        }
        return {cb, texts};
    }
};

} // namespace

TEST_F(Lists, WatermarkRowsAreWhatTheFileSays)
{
    /* What the writer writes, which is held by itself, comes back of it. */
    std::string golden;
    for (const DataRow& row : ReadRows("written_lists.txt")) {
        golden += golden.empty() && row[0] != "[Watermarks]" ? "" : row[0] + "\r\n";
    }
    PutFile(LIST_FILE, std::string_view(golden));
    std::vector<WatermarkEntry> rows = ListOf(LIST_FILE);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(WriteWatermarks(u"C:\\set\\again.ini", rows.data(), 3), 1);
    EXPECT_EQ(Utf16FileText(u"C:\\set\\again.ini"), golden);

    /* Keys of the other type, and what is the library's own, are not read. */
    rows = Rows("2", TextRow("0") + "WMImageName0=no\r\nWMScaleX0=9\r\nbWMStale0=1\r\n" + ImageRow("1") +
                         "WMAngle1=900\r\nWMFace1=Arial\r\nWMPositionX1=99999999999\r\n");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_TRUE(SameBytes(rows[0], Rows("1", TextRow("0")).at(0)));
    WatermarkEntry image = {};
    image.WMType = 2;
    CopyWide(image.WMString, 64, u"Logo");
    CopyWide(image.WMImageName, 260, u"C:\\w\\logo.bmp");
    image.WMScaleX = image.WMScaleY = 100;
    image.WMTransparency = 50;
    image.WMPositionX = 0x7FFFFFFF;
    EXPECT_TRUE(SameBytes(rows[1], image));

    /* What no row says. */
    rows = Rows("1", Without(Without(TextRow("0"), "WMType0"), "WMCharSet0"));
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].WMType, 1u);
    EXPECT_EQ(rows[0].WMCharSet, 255);
    /* Out of range stays, wider than the field is cut. */
    rows = Rows("1", Without(Without(TextRow("0"), "WMAngle0"), "WMSize0") +
                         "WMAngle0=65000\r\nWMSize0=-2\r\nWMPlacement0=65546\r\nWMTransparency0=-1\r\n");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].WMAngle, 65000);
    EXPECT_EQ(rows[0].WMSize, -2);
    EXPECT_EQ(rows[0].WMPlacement, 10);
    EXPECT_EQ(rows[0].WMTransparency, 65535);
}

TEST_F(Lists, TheFirstBrokenRowEndsTheWatermarks)
{
    /* The middle one of three rows, the others whole. */
    auto Kept = [this](const std::string& middle) {
        return Rows("3", TextRow("0").append(middle).append(TextRow("2"))).size();
    };
    EXPECT_EQ(Kept(TextRow("1")), 3u);
    for (const char* cKey :
         {"WMString1", "WMFace1", "WMBold1", "WMItalic1", "WMSize1", "WMAngle1", "WMColor1", "WMOutline1"}) {
        std::string broken = Without(TextRow("1"), cKey);
        EXPECT_EQ(Kept(broken), 1u) << cKey;
        EXPECT_EQ(Kept(broken.append(cKey).append("=\r\n")), cKey == std::string("WMColor1") ? 3u : 1u)
            << cKey << ", empty";
    }
    for (const char* cLine : {"WMAngle1=-1", "WMAngle1=65535", "WMSize1=65535", "WMSize1=-1", "WMBold1=-1",
                              "WMItalic1=4294967295", "WMColor1=FFFFFFFF", "WMOutline1=-1"}) {
        std::string key(cLine, std::strchr(cLine, '='));
        EXPECT_EQ(Kept(Without(TextRow("1"), key).append(cLine).append("\r\n")), 1u) << cLine;
    }
    EXPECT_EQ(Kept(ImageRow("1")), 3u);
    EXPECT_EQ(Kept(Without(ImageRow("1"), "WMImageName1")), 1u);
    /* A type that no one knows needs a name only. */
    EXPECT_EQ(Kept("WMType1=7\r\nWMString1=x\r\n"), 3u);
}

TEST_F(Lists, TheCountOfWatermarks)
{
    std::string many;
    for (int i = 0; i < 40; i++) {
        many += TextRow(std::to_string(i), "Row " + std::to_string(i));
    }
    for (const char* cCount : {"", "0", "-1", "-2147483648", "x"}) {
        EXPECT_EQ(Rows(cCount, many).size(), 0u) << cCount;
    }
    for (int nCount : {1, 15, 16, 17, 32, 33, 40}) {
        std::vector<WatermarkEntry> rows = Rows(std::to_string(nCount), many);
        ASSERT_EQ(rows.size(), static_cast<size_t>(nCount));
        EXPECT_EQ(Ascii(rows.back().WMString), "Row " + std::to_string(nCount - 1));
    }
    /* A count costs what rows there are. */
    size_t cbBefore = PeakBlockBytes();
    EXPECT_EQ(Rows("2147483647", many).size(), 40u);
    EXPECT_LT(PeakBlockBytes() - cbBefore, 256u * 1024);
    EXPECT_EQ(ListOf(u"C:\\set\\none.ini").size(), 0u);
    PutFile(u"C:\\Windows\\list.ini", "[Watermarks]\r\nNumWatermarks=1\r\n" + TextRow("0"));
    EXPECT_EQ(ListOf(u"list.ini").size(), 0u);
    EXPECT_EQ(ListOf(u"").size(), 0u);
}

TEST_F(Lists, TheLongestFilesTakeBoundedTimeAndMemory)
{
    /* More rows than are read, in as large a file as is read. */
    std::string lines = "[Watermarks]\r\nNumWatermarks=5000\r\n";
    for (int i = 0; i < WATERMARK_LIMIT + 2; i++) {
        lines += TextRow(std::to_string(i));
    }
    lines += ";" + std::string(PROFILE_BYTES_LIMIT - lines.size() - 1, 'x');
    /* Keys that all have one hash, as many as fit. */
    std::string alike = "[Watermarks]\r\nNumWatermarks=1\r\nWMString0=x\r\nWMType0=7\r\n";
    for (u32 i = 0; alike.size() < PROFILE_BYTES_LIMIT - 30; i++) {
        for (int n = 0; n < 18; n++) {
            alike += i >> n & 1 ? '@' : '`';
        }
        alike += "=\r\n";
    }
    for (const auto& [text, nRows] : {std::pair(&lines, WATERMARK_LIMIT), std::pair(&alike, 1)}) {
        PutFile(LIST_FILE, std::string_view(*text));
        size_t cbBefore = PeakBlockBytes();
        const clock_t begun = std::clock(); /* of the process: another's load does not count */
        EXPECT_EQ(ListOf(LIST_FILE).size(), static_cast<size_t>(nRows));
        EXPECT_LT(std::clock() - begun, 4 * CLOCKS_PER_SEC) << "minutes when each key is looked for in all";
        EXPECT_LT(PeakBlockBytes() - cbBefore, CALL_BLOCK_BYTES);
    }
    PutFile(LIST_FILE, lines + "x");
    EXPECT_EQ(ListOf(LIST_FILE).size(), 0u) << "a byte too many";
}

TEST_F(Lists, BuiltFilesNeedTheirNumbers)
{
    const std::string names = "WMFileName0=C:\\u\\1.WM\r\nWMColorFile0=C:\\u\\1.CWM\r\n";
    const std::string numbers = "WMResolution0=600\r\nWMWidth0=1200\r\nWMHeight0=300\r\n";
    const WatermarkEntry unbuilt = Rows("1", TextRow("0")).at(0);
    for (const char* cKey : {"WMResolution0", "WMWidth0", "WMHeight0"}) {
        for (std::string value : {"", "=0\r\n", "=x\r\n"}) {
            std::string lines =
                TextRow("0") + names + Without(numbers, cKey) + (value.empty() ? "" : cKey + value);
            std::vector<WatermarkEntry> rows = Rows("1", lines);
            ASSERT_EQ(rows.size(), 1u);
            EXPECT_TRUE(SameBytes(rows[0], unbuilt)) << cKey << value;
        }
    }
    EXPECT_EQ(Rows("1", TextRow("0") + names + Without(numbers, "WMResolution0") + "WMResolution0=65536\r\n")
                  .at(0)
                  .WMFileName[0],
              0);
    EXPECT_TRUE(SameBytes(Rows("1", TextRow("0") + numbers).at(0), unbuilt)) << "numbers without a file";
    WatermarkEntry one = Rows("1", TextRow("0") + Without(names, "WMFileName0") + numbers).at(0);
    EXPECT_EQ(one.WMFileName[0], 0);
    EXPECT_EQ(Ascii(one.WMColorFile), "C:\\u\\1.CWM");
    EXPECT_EQ(one.WMHeight, 300u);
    /* A longer path is cut as the profile calls cut it. */
    EXPECT_EQ(
        WideLength(Rows("1", TextRow("0") + "WMFileName0=C:\\" + std::string(400, 'p') + "\r\n" + numbers)
                       .at(0)
                       .WMFileName),
        259);
}

TEST_F(Lists, FontSubstitutionsBecomeAMultiString)
{
    const std::string two =
        "FontSubSys0=Arial\r\nFontSubPrt0=Univers\r\nFontSubSys1=Times\r\nFontSubPrt1=CG Times\r\n";
    const std::string texts = "Arial|Univers|Times|CG Times|";
    /* Size and count; 65535 for neither block nor texts. Twice the size in bytes: 29 characters are needed. */
    const std::tuple<const char*, const char*, int, std::string> aCases[] = {
        {"60", "2", 60, texts + std::string(33, '|')},
        {"40", "0", 40, std::string(42, '|')},
        {"0", "0", 0, "||"},
        {"29", "2", 29, texts + "||"},
        {"28", "2", 65535, ""},
        {"6", "1", 65535, ""},
        {"0", "1", 65535, ""},
        {nullptr, nullptr, 65535, ""},
        {"40", nullptr, 65535, ""},
        {nullptr, "1", 65535, ""},
        {"-1", "0", 65535, ""},
        {"65535", "0", 65535, ""},
        {"40", "65535", 65535, ""},
        {"40", "-1", 65535, ""},
        {"40", "3", 65535, ""},
    };
    for (const auto& [cSize, cCount, cb, block] : aCases) {
        const std::string lines = (cSize ? std::string("FontSubSize=") + cSize + "\r\n" : "") +
                                  (cCount ? std::string("NumFontSubs=") + cCount + "\r\n" : "") + two;
        EXPECT_EQ(Fonts(lines, block.size()), std::pair(cb, cb == 65535 ? "null" : block)) << lines;
    }
    const std::string one = "FontSubSize=300\r\nNumFontSubs=1\r\nFontSub";
    EXPECT_EQ(Fonts(one + "Sys0=A\r\n", 4), std::pair(300, std::string("A|||"))) << "no device font";
    EXPECT_EQ(Fonts(one + "Prt0=x\r\n"), std::pair(65535, std::string("null")));
    EXPECT_EQ(Fonts(one + "Sys0=" + std::string(200, 'f') + "\r\n", 129),
              std::pair(300, std::string(127, 'f') + "||"));
}

TEST_F(Lists, FailingCallsLeaveNothingBehind)
{
    std::string lines =
        "[FontSubstitutions]\r\nFontSubSize=60\r\nNumFontSubs=1\r\nFontSubSys0=Arial\r\nFontSubPrt0=Univers\r\n"
        "[Watermarks]\r\nNumWatermarks=18\r\n";
    for (int i = 0; i < 18; i++) {
        lines += i % 2 ? ImageRow(std::to_string(i)) : TextRow(std::to_string(i));
    }
    PutFile(LIST_FILE, std::string_view(lines));
    for (CallId call : {ANY_CALL, CALL_HeapAlloc}) {
        FaultSweep sweep = SweepFaultsBothWays(call, 2000, [call]() -> std::string {
            OwnedBlock<WatermarkEntry> pRows;
            OwnedBlock<WCHAR> pFonts;
            i32 nRows = ReadWatermarks(OpenProfile(LIST_FILE), &pRows);
            u16 cbFonts = ReadFontSubstitutions(OpenProfile(LIST_FILE), &pFonts);
            bool bSpare = !pRows || (pRows.get()[nRows].WMType == 0 && pRows.get()[nRows].WMAngle == 450);
            return std::string(!pRows && nRows ? "rows without an array; " : "") +
                   (call == CALL_HeapAlloc && nRows != 0 && nRows != 18 ? "part of a list; " : "") +
                   (bSpare ? "" : "no spare row; ") +
                   (!pFonts != (cbFonts == 65535) ? "fonts without a block; " : "");
        });
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GE(sweep.nFaults, 6); /* both arrays and the block */
    }
}
