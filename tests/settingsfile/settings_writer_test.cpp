/* Writing records and lists: the whole text, what comes back of it, and what is left when calls fail, the disk is
   full or the power goes. */
#include "settingsfile/settings_writer.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "description/custom_sizes.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "places.h"
#include "profile/section_file.h"
#include "settingsfile/settings_key_rows.h"
#include "settingsfile/settings_reader.h"
#include "support/power_cuts.h"
#include "support/record_changes.h"
#include "support/same_bytes.h"
#include "support/sample_machine.h"
#include "support/settings_text.h"
#include "support/sweep.h"
#include "watermark/watermark_rows.h"
#include "watermark/watermark_store.h"

namespace {

constexpr WCHAR SETTINGS_FILE[] = u"C:\\set\\a.ini";
constexpr int REGION_AT = 2980, REGION_END = 3716;

using KeyLines = std::vector<std::pair<std::string, std::string>>;

/* The lines of its one section. */
KeyLines Lines()
{
    KeyLines lines;
    std::istringstream text(Utf16FileText(SETTINGS_FILE));
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line) && line.size() > 1) {
        size_t nEquals = line.find('=');
        lines.emplace_back(line.substr(0, nEquals), line.substr(nEquals + 1, line.size() - nEquals - 2));
    }
    return lines;
}

size_t CountStem(const KeyLines& lines, const std::string& stem)
{
    return static_cast<size_t>(std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
        return line.first.rfind(stem, 0) == 0 && line.first.size() > stem.size();
    }));
}

void PutAt(DriverDevmode* pRecord, int nAt, const void* pBytes, size_t cb)
{
    std::memcpy(reinterpret_cast<u8*>(pRecord) + nAt, pBytes, cb);
}

/* A record whose numbers are their own offsets with all bits turned, so that the goldens can be read and signs and
   widths show; kinds 1 and 3 have a text watermark. */
DriverDevmode GoldenRecord(u16 usKind)
{
    static const u8 abStyles[] = {4,  2,  4,   0, 0,   7, 8, 0, 1,  1, 0xFF, 0xFF, 2,  0, 14, 0, 3,
                                  2,  3,  0,   4, 0,   5, 0, 6, 0,  7, 0,    31,   0,  6, 3,  1, 9,
                                  10, 0,  0,   0, 11,  0, 0, 0, 12, 0, 0,    0,    13, 0, 0,  0, 88,
                                  2,  50, 'A', 0, 'B', 0, 0, 0, 3,  2, 5,    0,    6,  0, 0,  0};
    DriverDevmode record = recordTemplate;
    const bool bText = usKind == 1 || usKind == 3;
    for (const KeyRow& row : KeyRows()) {
        for (int i = 0; i < row.Numbers() && !row.IsOfOtherWatermark(bText); i++) {
            const u32 ulValue = ~static_cast<u32>(row.At(i));
            const WideText wcText =
                Wide("t" + std::to_string(row.nAt)) + (row.nCount < 32 ? u"" : u" =;[x]\u20AC");
            if (row.cType == 't') {
                PutAt(&record, row.nAt, wcText.c_str(), (wcText.size() + 1) * sizeof(WCHAR));
            } else {
                PutAt(&record, row.At(i), &ulValue, static_cast<size_t>(row.Width()));
            }
        }
    }
    PutAt(&record, 2052, u"C:\\drv\\QA.XPI", 28);
    record.rPrivate.ulWMType = bText ? 0xABC1 : 4;
    record.rPrivate.ulColorMode = 42;
    record.rPrivate.sInsertPageOffset = usKind == 1 ? -940 : 940;
    if (usKind == 3) {
        PutAt(&record, REGION_AT, abStyles, sizeof abStyles);
    }
    return record;
}

class SettingsWriter : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        PutFile(u"C:\\set\\keep.txt", std::string_view("x"));
    }

    KeyLines Written(const DriverDevmode& record, u16 usKind)
    {
        EXPECT_EQ(WritePrinterSettings(SETTINGS_FILE, &record, usKind), 1);
        return Lines();
    }
};

/* The writers, each with a change of its own. */
struct Writer {
    const char* cName;
    std::function<int()> write;
};

std::vector<Writer> Writers()
{
    static DriverDevmode record;
    static WatermarkEntry marks[2];
    static PaperSizeRow papers[3];
    record = GoldenRecord(3);
    for (WatermarkEntry& mark : marks) {
        ResetWatermarkEntry(&mark);
        mark.WMType = ENTRY_TEXT;
    }
    for (PaperSizeRow& paper : papers) {
        paper = {21000, 29700, 1, u"paper"};
    }
    return {
        {"settings", [] { return WritePrinterSettings(SETTINGS_FILE, &record, 3); }},
        {"papers", [] { return WriteCustomSizes(SETTINGS_FILE, papers, 3); }},
        {"watermarks", [] { return WriteWatermarks(SETTINGS_FILE, marks, 2); }},
        {"key", [] { return ReplaceKey(SETTINGS_FILE, u"Basalt", u"Profile", u"new.icm"); }},
    };
}

const char cOldFile[] =
    "; \xE4\r\n[Basalt]\r\nProfile=old.icm\r\nScreen=s\r\n[CustomSizes]\r\nNumCustomSizes=0\r\n"
    "[Watermarks]\r\nNumWatermarks=0\r\n[PrinterSettings]\r\nCopies=3\r\n[Other]\r\nx=1\r\n";

void PutOld(bool bThere)
{
    std::filesystem::remove_all(HostPath(u"C:\\set"));
    PutFile(u"C:\\set\\keep.txt", std::string_view("x"));
    if (bThere) {
        PutFile(SETTINGS_FILE, std::string_view(cOldFile));
    }
}

size_t FilesThere()
{
    std::filesystem::directory_iterator files(HostPath(u"C:\\set"));
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

} // namespace

/* What is written is held against a text. Read into a record in which each of its fields is another, it makes those
   that the kind reads what they were, and changes no other byte. */
TEST_F(SettingsWriter, WholeTextOfARecordOfEachKind)
{
    for (u16 usKind = 0; usKind < 5; usKind++) {
        const KeyLines lines = Written(GoldenRecord(usKind), usKind);
        std::string text;
        size_t nRow = 0;
        for (const auto& [key, value] : lines) {
            size_t nLine = key.size() + value.size() + 3;
            text += (text.empty() ? "" : nRow + nLine > 108 ? "\n" : "; ") + key + "=" + value;
            nRow = nRow + nLine > 108 ? nLine : nRow + nLine;
        }
        std::stringstream golden;
        golden << std::ifstream(TQUI_SOURCE_DIR "/tests/golden/settings/kind" + std::to_string(usKind) +
                                ".txt")
                      .rdbuf();
        EXPECT_EQ(text + "\n", golden.str()) << "kind " << usKind;

        const bool bText = usKind == 1 || usKind == 3;
        DriverDevmode expected = GoldenRecord(usKind), read = expected;
        const std::map<std::string, std::string> keys(lines.begin(), lines.end());
        for (const KeyRow& row : KeyRows()) {
            const bool bRead = row.read.find(static_cast<char>('0' + usKind)) != row.read.npos;
            const bool bThere = keys.count(row.key + (row.Numbers() > 1 ? "0" : ""));
            for (int i = 0; i < row.Numbers() && bThere && !row.IsOfOtherWatermark(bText); i++) {
                const size_t cb = static_cast<size_t>(row.cType == 't' ? 6 : row.Width());
                PutAt(&read, row.At(i), u"~~~", cb);
                PutAt(bRead ? &read : &expected, row.At(i), u"~~~", cb);
            }
        }
        /* Where the pages to insert are not read styles are, of which one kind has some here. */
        if (usKind >= 3) {
            std::memset(read.rPrivate.bExceptionRegion, 0, REGION_END - REGION_AT);
            std::memset(expected.rPrivate.bExceptionRegion, 0, usKind == 4 ? REGION_END - REGION_AT : 0);
        }
        read.rPrivate.ulWMType = WM_TEXT;
        expected.dmCollate = expected.rPrivate.sCollate; /* one key for both */
        expected.rPrivate.ulColorMode = 0;
        expected.rPrivate.sInsertPageOffset = 940;
        ASSERT_EQ(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &read, 0, usKind), 1);
        EXPECT_EQ(Changes(expected, read), "") << "kind " << usKind;
    }
}

/* Kinds with the watermark that their golden does not have. */
TEST_F(SettingsWriter, NumberOfKeys)
{
    static const struct {
        u16 usKind;
        u32 ulType;
        size_t nKeys;
    } aCases[] = {{0, 1, 207}, {4, 1, 207}, {3, 0, 189}, {1, 4, 200}};
    for (const auto& one : aCases) {
        DriverDevmode record = recordTemplate;
        record.rPrivate.ulWMType = one.ulType;
        record.dmCollate = 1;
        const KeyLines lines = Written(record, one.usKind);
        const std::map<std::string, std::string> keys(lines.begin(), lines.end());
        EXPECT_EQ(lines.size(), one.nKeys) << "kind " << one.usKind;
        EXPECT_EQ(keys.size(), lines.size()) << "a key stands twice";
        EXPECT_EQ(keys.at("Collate"), "0") << "the private field's";
    }
}

TEST_F(SettingsWriter, StylesOfAnUncheckedRecordStayInTheRegion)
{
    for (unsigned nSeed = 0; nSeed < 400; nSeed++) {
        std::mt19937 random(nSeed);
        DriverDevmode record = recordTemplate;
        u8* pRegion = record.rPrivate.bExceptionRegion;
        std::generate(pRegion, pRegion + (REGION_END - REGION_AT),
                      [&random] { return static_cast<u8>(random()); });
        for (int i = 2; i < REGION_END - REGION_AT; i += 2) { /* small sizes, so that the walk goes far */
            pRegion[i + 1] = random() % 40 ? 0 : pRegion[i + 1];
        }
        std::map<std::string, std::string> keys;
        KeyLines lines = Written(record, 3);
        keys.insert(lines.begin(), lines.end());
        EXPECT_EQ(std::stoul(keys["StyleCount"]), CountStem(lines, "StyleType"));
        EXPECT_EQ(std::stoul(keys["BlockCount"]), CountStem(lines, "BlockPageCount"));
        EXPECT_LE(std::stoul(keys["StyleCount"]), pRegion[0]);
    }
    /* What is filled, bytes of the region, and how many keys of a stem are written. */
    for (const DataRow& row : ReadRows("style_regions.txt")) {
        DriverDevmode record = recordTemplate;
        u8* pRegion = record.rPrivate.bExceptionRegion;
        std::memset(pRegion, static_cast<int>(ToNumber(row[0])), REGION_END - REGION_AT);
        for (const std::string& poke : Words(row[1])) {
            int nAt = 0, nValue = 0;
            EXPECT_EQ(std::sscanf(poke.c_str(), "%d=%d", &nAt, &nValue), 2) << poke;
            pRegion[nAt] = static_cast<u8>(nValue);
        }
        const std::string stem = row[2].substr(0, row[2].find(' '));
        EXPECT_EQ(stem + " " + std::to_string(CountStem(Written(record, 3), stem)), row[2]) << row[1];
    }
}

TEST_F(SettingsWriter, TextsEndWithTheirFieldAndHoldNoLines)
{
    DriverDevmode record = recordTemplate;
    for (WCHAR& wcChar : record.rPrivate.wcOverlayFile) {
        wcChar = u'o';
    }
    const WCHAR wcFont[] = u"a\r\nScale=99\x01";
    PutAt(&record, 232, wcFont, sizeof wcFont);
    std::memset(record.rPrivate.tcXPIName, 'X', sizeof record.rPrivate.tcXPIName);
    std::map<std::string, std::string> keys;
    KeyLines lines = Written(record, 0);
    keys.insert(lines.begin(), lines.end());
    EXPECT_EQ(keys["OverlayFile"], std::string(13, 'o'));
    EXPECT_EQ(keys["DefaultFont"], "a  Scale=99 ");
    EXPECT_EQ(keys["XPI"].size(), Narrow(WideText(160, u'\u5858')).size())
        << "160 characters, without a folder";
}

TEST_F(SettingsWriter, WholeTextOfLists)
{
    PaperSizeRow papers[2] = {{21000, 29700, 1, u"My A4"}, {0xFFFFFFFF, 1, 0, {}}};
    std::fill(std::begin(papers[1].wcName), std::end(papers[1].wcName), u'n');
    WatermarkEntry marks[3];
    ResetWatermarkEntry(&marks[0]);
    marks[0].WMType = ENTRY_TEXT;
    CopyWide(marks[0].WMString, 64, u"Draft");
    marks[0].WMRTL = marks[0].WMBold = marks[0].WMOutline = 1;
    marks[0].WMCharSet = 204;
    marks[0].WMAngle = 65000;
    marks[0].WMSize = 80;
    marks[0].WMColor = 0x00C0C0FF;
    marks[0].WMTransparency = 30;
    marks[0].WMPlacement = 4;
    marks[0].WMPositionX = -100;
    marks[0].WMPositionY = 200;
    CopyWide(marks[0].WMFileName, 260, u"C:\\a");
    marks[0].WMResolution = 600;
    marks[0].WMWidth = 5; /* no height: the file is forgotten */
    marks[1] = {};
    marks[1].WMType = ENTRY_IMAGE;
    CopyWide(marks[1].WMString, 64, u"Logo");
    CopyWide(marks[1].WMImageName, 260, u"C:\\i.bmp");
    marks[1].WMScaleX = 50;
    marks[1].WMPositionX = -1;
    CopyWide(marks[1].WMColorFile, 260, u"C:\\c");
    marks[1].WMResolution = 65535;
    marks[1].WMWidth = marks[1].WMHeight = 9;
    marks[2] = {};
    CopyWide(marks[2].WMString, 64, u"x");
    EXPECT_EQ(WriteCustomSizes(SETTINGS_FILE, papers, 2), 1);
    EXPECT_EQ(WriteWatermarks(SETTINGS_FILE, marks, 3), 1);
    std::string wanted;
    for (const DataRow& row : ReadRows("written_lists.txt")) {
        wanted += row[0] + "\r\n";
    }
    EXPECT_EQ(Utf16FileText(SETTINGS_FILE), wanted);
    EXPECT_EQ(WriteCustomSizes(SETTINGS_FILE, nullptr, -4), 1);
    EXPECT_EQ(Utf16FileText(SETTINGS_FILE).substr(0, 34), "[CustomSizes]\r\nNumCustomSizes=0\r\n[");
}

TEST_F(SettingsWriter, SettersWriteTheUsersFile)
{
    AddSample("K100");
    PaperSizeRow paper = {21000, 29700, 1, u"Mine"};
    WatermarkEntry mark = {};
    mark.WMType = ENTRY_IMAGE;
    CopyWide(mark.WMString, 64, u"Logo");
    CopyWide(mark.WMImageName, 260, u"C:\\i.bmp");
    auto SetAll = [&] {
        PrinterCall call(hPrinter);
        SetSavedPapers(call, &paper, 1);
        SetSavedWatermarks(call, &mark, 1);
        SetProfileName(call, u"one.icm");
        SetScreenName(call, u"two.scr");
        SetProfileName(call, u"three.icm");
    };
    SetAll(); /* no settings file is named */
    EXPECT_EQ(CallCount(CALL_WriteFile), 0);
    SetPrinterText(wcPrinter, u"Settings", u"K.INI");
    SetAll();
    PrinterCall call(hPrinter);
    WCHAR wcName[PATH_CHARS];
    OwnedBlock<PaperSizeRow> pPapers;
    OwnedBlock<WatermarkEntry> pMarks;
    ASSERT_EQ(GetSavedPapers(call, nullptr, &pPapers), 1);
    ASSERT_EQ(GetSavedWatermarks(call, &pMarks), 1);
    EXPECT_TRUE(SameBytes(*pPapers, paper));
    mark.WMAngle = 0;
    EXPECT_TRUE(SameBytes(*pMarks, mark));
    GetProfileName(call, wcName, PATH_CHARS);
    EXPECT_EQ(WideText(wcName), u"three.icm");
    GetScreenName(call, wcName, PATH_CHARS);
    EXPECT_EQ(WideText(wcName), u"two.scr");
}

TEST_F(SettingsWriter, AFailureLeavesTheOldFileWhole)
{
    int nFaults = 0;
    for (const Writer& writer : Writers()) {
        for (bool bThere : {true, false}) {
            PutOld(bThere);
            const Bytes before = GetFile(SETTINGS_FILE);
            ASSERT_EQ(writer.write(), 1);
            const Bytes after = GetFile(SETTINGS_FILE);
            auto body = [&]() -> std::string {
                PutOld(bThere);
                int nResult = writer.write();
                int bClean = FilesThere() == (GetFile(SETTINGS_FILE).empty() ? 1u : 2u);
                if (GetFile(SETTINGS_FILE) != (nResult ? after : before)) {
                    return std::string(writer.cName) + ": the file does not go with result " +
                           std::to_string(nResult) + "; ";
                }
                return bClean || nResult == 0 ? "" : "the copy is left; ";
            };
            FaultSweep sweep = SweepFaultsBothWays(ANY_CALL, 200, body);
            EXPECT_EQ(sweep.fault, "");
            nFaults += sweep.nFaults;
            for (int kind = LIE_SHORT; kind < LIE_KIND_COUNT; kind++) {
                EXPECT_EQ(SweepLie(static_cast<LieKind>(kind), ANY_CALL, body), "");
            }
            for (i64 lRoom = 0; lRoom < static_cast<i64>(after.size()); lRoom += 97) {
                SetDiskRoom(lRoom);
                EXPECT_EQ(body(), "");
                EXPECT_EQ(FilesThere(), bThere ? 2u : 1u) << "the copy is left on a full disk";
                SetDiskRoom(-1);
            }
        }
    }
    EXPECT_GT(nFaults, 150);
}

TEST_F(SettingsWriter, LostPowerLeavesOldOrNew)
{
    size_t nCuts = 0;
    for (const Writer& writer : Writers()) {
        for (bool bThere : {true, false}) {
            PutOld(bThere);
            const Bytes before = GetFile(SETTINGS_FILE);
            Bytes after;
            PowerSweep sweep = SweepPowerCuts(
                SETTINGS_FILE, 100,
                [&] {
                    EXPECT_EQ(writer.write(), 1);
                    after = GetFile(SETTINGS_FILE);
                },
                [&] { return OldOrNew(GetFile(SETTINGS_FILE), before, after); });
            EXPECT_EQ(sweep.fault, "") << writer.cName;
            EXPECT_GT(sweep.nOld, 1u);
            EXPECT_GE(sweep.nNew, 1u);
            EXPECT_EQ(writer.write(), 1) << "whatever was left behind, the next writing goes on";
            EXPECT_EQ(GetFile(SETTINGS_FILE), after);
            nCuts += sweep.nCuts;
        }
    }
    EXPECT_GT(nCuts, 1000u);
}

/* The sweep must see what a careless writer leaves: one that does not flush, one that writes in place. */
TEST_F(SettingsWriter, LostPowerCatchesCarelessWriters)
{
    const Bytes after(600, 'n');
    auto Write = [&](const WCHAR* tcPath, DWORD dwDisposition, bool bFlush) {
        DWORD cbDone;
        HANDLE hFile = CreateFileW(tcPath, GENERIC_WRITE, 0, nullptr, dwDisposition, 0, nullptr);
        EXPECT_TRUE(WriteFile(hFile, after.data(), 600, &cbDone, nullptr));
        EXPECT_TRUE(!bFlush || FlushFileBuffers(hFile));
        CloseHandle(hFile);
    };
    auto Sweep = [&](const std::function<void()>& change) {
        PutOld(true);
        const Bytes before = GetFile(SETTINGS_FILE);
        return SweepPowerCuts(SETTINGS_FILE, 40, change,
                              [&] { return OldOrNew(GetFile(SETTINGS_FILE), before, after); });
    };
    auto Rename = [] { EXPECT_TRUE(MoveFileExW(u"C:\\set\\b", SETTINGS_FILE, MOVEFILE_REPLACE_EXISTING)); };
    EXPECT_GT(Sweep([&] {
                  Write(u"C:\\set\\b", CREATE_NEW, false);
                  Rename();
              }).nBad,
              5u);
    EXPECT_GT(Sweep([&] { Write(SETTINGS_FILE, CREATE_ALWAYS, true); }).nBad, 5u);
    EXPECT_GT(Sweep([&] {
                  EXPECT_TRUE(DeleteFileW(SETTINGS_FILE));
                  Write(u"C:\\set\\b", CREATE_NEW, true);
                  Rename();
              }).nBad,
              2u);
    EXPECT_EQ(Sweep([&] {
                  Write(u"C:\\set\\b", CREATE_NEW, true);
                  Rename();
              }).nBad,
              0u);
}
