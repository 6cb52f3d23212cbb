/* The lists of settings files: watermarks and font substitutions. */
#include <cstring>
#include <ctime>

#include "hosted/standin.h"
#include "settingsfile/font_substitutions.h"
#include "settingsfile/settings_writer.h"
#include "support/same_bytes.h"
#include "support/script.h"
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
}

class ListScripts : public Lists, public testing::WithParamInterface<Script> {
  protected:
    /* A text or an image row: text|image [without KEY]... [with LINE]... */
    static std::string Row(const Args& w, const std::string& i)
    {
        std::string lines = w[0] == "text" ? TextRow(i) : w[0] == "image" ? ImageRow(i) : "";
        for (size_t n = 1; n + 1 < w.size(); n += 2) {
            lines = w[n] == "with" ? lines + Unescaped(w[n + 1]) + "\r\n" : Without(lines, w[n + 1]);
        }
        return lines;
    }
    /* How many rows are read of three, the middle one of which is this. */
    size_t Kept(const Args& w) { return Rows("3", TextRow("0") + Row(w, "1") + TextRow("2")).size(); }
    std::string Values(const Args& w)
    {
        const std::vector<WatermarkEntry> rows = Rows("1", Row(w, "0"));
        std::string text = rows.size() == 1 ? "" : "none";
        for (const WatermarkEntry& row : rows) {
            for (int n : {int(row.WMType), int(row.WMCharSet), int(row.WMAngle), int(row.WMSize),
                          int(row.WMPlacement), int(row.WMTransparency)}) {
                text += std::to_string(n) + " ";
            }
        }
        return text;
    }
    std::string Built(const Args& w)
    {
        const std::string names = "WMFileName0=C:\\u\\1.WM\r\nWMColorFile0=C:\\u\\1.CWM\r\n",
                          numbers = "WMResolution0=600\r\nWMWidth0=1200\r\nWMHeight0=300\r\n";
        Args own = {"text", "with", names + numbers};
        own.insert(own.end(), w.begin(), w.end());
        const WatermarkEntry row = Rows("1", Row(own, "0")).at(0), unbuilt = Rows("1", TextRow("0")).at(0);
        return SameBytes(row, unbuilt) ? "unbuilt"
                                       : Ascii(row.WMFileName) + ";" + Ascii(row.WMColorFile) + ";" +
                                             std::to_string(row.WMHeight);
    }
    std::string Many(const std::string& count)
    {
        std::string many;
        for (int i = 0; i < 40; i++) {
            many += TextRow(std::to_string(i), "Row " + std::to_string(i));
        }
        const size_t cbBefore = PeakBlockBytes();
        const std::vector<WatermarkEntry> rows = Rows(count, many);
        EXPECT_LT(PeakBlockBytes() - cbBefore, 256u * 1024) << "a count costs what rows there are";
        return rows.empty() ? "none" : std::to_string(rows.size()) + " " + Ascii(rows.back().WMString);
    }
    /* Size and the block's texts, with a comma for each NUL. */
    std::string Fonts(const std::string& lines)
    {
        PutFile(LIST_FILE, "[FontSubstitutions]\r\n" + Unescaped(lines));
        OwnedBlock<WCHAR> pBlock;
        const u16 cb = ReadFontSubstitutions(OpenProfile(LIST_FILE), &pBlock);
        EXPECT_EQ(!pBlock, cb == NO_FONT_SUBSTITUTIONS);
        std::string texts = std::to_string(cb) + " ";
        for (int i = 0; pBlock && i < cb + 2; i++) {
            texts += pBlock.get()[i] ? static_cast<char>(pBlock.get()[i]) : ',';
        }
        return texts;
    }
};

SCRIPTED(ListScripts, AreReadAsWritten, "lists.txt")
{
    Play(GetParam(), {VERB("kept", Kept(w)), VERB("values", Values(w)), VERB("built", Built(w)),
                      VERB("many", Many(w[0])), VERB("fonts", Fonts(w[0]))});
}

TEST_F(Lists, OfNoFileAreEmpty)
{
    PutFile(u"C:\\Windows\\list.ini", "[Watermarks]\r\nNumWatermarks=1\r\n" + TextRow("0"));
    for (const WCHAR* tcNone : {u"C:\\set\\none.ini", u"list.ini", u""}) {
        EXPECT_EQ(ListOf(tcNone).size(), 0u);
    }
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
