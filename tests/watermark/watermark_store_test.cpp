/* The list of watermarks: how a record finds its row, what becomes of rows and of their files. */
#include "watermark/watermark_store.h"

#include <cstring>

#include "support/record_changes.h"
#include "support/same_bytes.h"
#include "support/sample_machine.h"
#include "watermark/watermark_rows.h"

namespace {

WatermarkEntry TextEntry(const WCHAR* wcText, u32 ulColor = 255)
{
    WatermarkEntry row;
    ResetWatermarkEntry(&row);
    row.WMType = ENTRY_TEXT;
    CopyWide(row.WMString, 64, wcText);
    row.WMColor = ulColor;
    row.WMCharSet = 0xCC;
    return row;
}

WatermarkEntry ImageEntry(const WCHAR* tcImage)
{
    WatermarkEntry row = {};
    row.WMType = ENTRY_IMAGE;
    CopyWide(row.WMString, 64, u"Logo");
    CopyWide(row.WMImageName, 260, tcImage);
    row.WMScaleX = 50;
    row.WMScaleY = 75;
    row.WMPlacement = 3;
    return row;
}

/* The record of TextEntry's row. */
DriverDevmode TextRecord(const std::string& text, u32 ulColor = 255)
{
    DriverDevmode record =
        Changed(recordTemplate, "ulWMType=0x5 sWMCharSet=204 ulWMPtSize=72 ulWMAngle=450 wcWMString=" + text);
    SetRecordField(&record, "wcWMFace=Times New Roman");
    record.rPrivate.ulWMColor = ulColor;
    return record;
}

DriverDevmode FileRecord(const std::string& type, const std::string& name)
{
    return Changed(recordTemplate, "szlWMScale.cx=50 szlWMScale.cy=75 usWMPlacement=3 ulWMType=" + type +
                                       " wcWMOverlayName=" + name);
}

i32 Match(std::vector<WatermarkEntry> rows, const DriverDevmode& record)
{
    size_t nCount = rows.size();
    WatermarkEntry spare;
    ResetWatermarkEntry(&spare);
    rows.push_back(spare);
    const PrivateDevmode part = record.rPrivate;
    return MatchWatermark(rows.data(), static_cast<i32>(nCount), &part);
}

OwnedBlock<WatermarkEntry> List(const std::vector<WatermarkEntry>& rows)
{
    OwnedBlock<WatermarkEntry> pRows(
        static_cast<WatermarkEntry*>(AllocateRows(rows.size(), sizeof(WatermarkEntry))));
    std::memcpy(pRows.get(), rows.data(), rows.size() * sizeof(WatermarkEntry));
    return pRows;
}

bool IsDefault(const WatermarkEntry& row)
{
    WatermarkEntry spare;
    ResetWatermarkEntry(&spare);
    return SameBytes(row, spare);
}

std::string Names(const OwnedBlock<WatermarkEntry>& pRows, i32 nCount)
{
    std::string names;
    for (i32 i = 0; i < nCount; i++) {
        names += Narrow(pRows.get()[i].WMString) + " ";
    }
    return names;
}

class WatermarkStore : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        AddTestPrinter(DescriptionBuilder().Build());
    }
};

} // namespace

TEST_F(WatermarkStore, TheDefaultRow)
{
    WatermarkEntry row;
    std::memset(&row, 0xEE, sizeof row);
    ResetWatermarkEntry(&row);
    WatermarkEntry expected = {};
    CopyWide(expected.WMFace, 32, u"Times New Roman");
    expected.WMAngle = 450;
    expected.WMTransparency = 50;
    expected.WMSize = 72;
    expected.WMColor = 255;
    expected.bWMStale = 1;
    EXPECT_TRUE(SameBytes(row, expected));
}

TEST_F(WatermarkStore, ATextIsFoundByAllItsValues)
{
    const std::vector<WatermarkEntry> rows = {ImageEntry(u"C:\\w\\logo.bmp"), TextEntry(u"Draft", 1),
                                              TextEntry(u"Draft", 2), TextEntry(u"Draft", 2)};
    EXPECT_EQ(Match(rows, TextRecord("Draft", 1)), 1);
    EXPECT_EQ(Match(rows, TextRecord("Draft", 2)), 2);
    EXPECT_EQ(Match(rows, TextRecord("Draft", 3)), -1);
    EXPECT_EQ(Match(rows, TextRecord("draft", 1)), -1);
    EXPECT_EQ(Match({}, TextRecord("Draft", 1)), -1);
    EXPECT_EQ(MatchWatermark(nullptr, 0, &recordTemplate.rPrivate), -1);

    const DriverDevmode record = TextRecord("Draft", 1);
    for (const char* cChange :
         {"sWMCharSet=205", "ulWMPtSize=73", "ulWMPtSize=65608", "sWMBold=1", "sWMItalic=1", "ulWMAngle=451",
          "wcWMFace=X", "ulWMType=0x15" /* outline */}) {
        EXPECT_EQ(Match(rows, Changed(record, cChange)), -1) << cChange;
    }
    for (const char* cChange : {"sWMCharSet=460" /* the low byte counts */, "ulWMType=0x1"}) {
        EXPECT_EQ(Match(rows, Changed(record, cChange)), 1) << cChange;
    }
    std::vector<WatermarkEntry> outlined = rows;
    outlined[1].WMOutline = 1;
    EXPECT_EQ(Match(outlined, TextRecord("Draft", 1)), -1);

    /* Texts without an end are those of their field, and are no row's. */
    DriverDevmode full = TextRecord("Draft", 1);
    std::memset(full.rPrivate.wcWMOverlayName, 'w', sizeof full.rPrivate.wcWMOverlayName); /* both texts */
    EXPECT_EQ(Match(rows, full), -1);
}

TEST_F(WatermarkStore, AFileIsFoundByImageOrByBuiltName)
{
    WatermarkEntry built = TextEntry(u"Draft");
    CopyWide(built.WMFileName, 260, u"C:\\u\\1.WM");
    CopyWide(built.WMColorFile, 260, u"C:\\u\\1.CWM");
    const std::vector<WatermarkEntry> rows = {TextEntry(u"Other"), built, ImageEntry(u"C:\\w\\logo.bmp")};

    EXPECT_EQ(Match(rows, FileRecord("0x24", "C:\\u\\1.WM")), 1);
    EXPECT_EQ(Match(rows, FileRecord("0x24", "C:\\u\\1.CWM")), 1);
    EXPECT_EQ(Match(rows, FileRecord("0x0", "C:\\u\\1.WM")), 1) << "any type without bits 0 and 1";
    EXPECT_EQ(Match(rows, FileRecord("0x24", "C:\\u\\2.WM")), -1);
    EXPECT_EQ(Match(rows, FileRecord("0x24", "")), -1) << "though other rows have an empty name";
    EXPECT_EQ(Match(rows, FileRecord("0x24", "C:\\w\\logo.bmp")), -1);

    EXPECT_EQ(Match(rows, FileRecord("0x6", "C:\\w\\logo.bmp")), 2);
    EXPECT_EQ(Match(rows, FileRecord("0x6", "C:\\u\\1.WM")), -1);
    const DriverDevmode record = FileRecord("0x6", "C:\\w\\logo.bmp");
    for (const char* cChange : {"szlWMScale.cx=51", "szlWMScale.cy=76", "usWMPlacement=4"}) {
        EXPECT_EQ(Match(rows, Changed(record, cChange)), -1) << cChange;
    }
    DriverDevmode full = FileRecord("0x24", "");
    std::memset(full.rPrivate.wcWMOverlayName, 'w', sizeof full.rPrivate.wcWMOverlayName);
    EXPECT_EQ(Match(rows, full), -1);
    /* A free row ends the list. */
    std::vector<WatermarkEntry> cut = rows;
    cut[1].WMType = ENTRY_FREE;
    EXPECT_EQ(Match(cut, FileRecord("0x6", "C:\\w\\logo.bmp")), -1);
}

TEST_F(WatermarkStore, CompactingDropsFreeRowsAndTakesTheSpareOne)
{
    WatermarkEntry freed = TextEntry(u"A"), spare;
    freed.WMType = ENTRY_FREE;
    ResetWatermarkEntry(&spare);

    OwnedBlock<WatermarkEntry> pRows = List({freed, TextEntry(u"B"), TextEntry(u"C"), TextEntry(u"D")});
    EXPECT_EQ(CompactWatermarks(&pRows, 3), 3);
    EXPECT_EQ(Names(pRows, 3), "B C D ");
    EXPECT_TRUE(IsDefault(pRows.get()[3]));
    WatermarkEntry before = TextEntry(u"B");
    EXPECT_TRUE(SameBytes(pRows.get()[0], before));

    pRows = List({TextEntry(u"A"), freed, TextEntry(u"C"), spare});
    EXPECT_EQ(CompactWatermarks(&pRows, 3), 2);
    EXPECT_EQ(Names(pRows, 2), "A C ");
    EXPECT_TRUE(IsDefault(pRows.get()[2]));
    EXPECT_EQ(CompactWatermarks(&pRows, 2), 2);
    pRows = List({freed, spare});
    EXPECT_EQ(CompactWatermarks(&pRows, 1), 0);
    EXPECT_TRUE(IsDefault(pRows.get()[0]));

    /* Without memory nothing is added. */
    pRows = List({TextEntry(u"A"), TextEntry(u"B")});
    FailCall(CALL_HeapAlloc, 1);
    EXPECT_EQ(CompactWatermarks(&pRows, 1), -1);
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_EQ(Names(pRows, 1), "A ");
    EXPECT_TRUE(IsDefault(pRows.get()[1]));

    /* The count of a list stays within 16 bits. */
    std::vector<WatermarkEntry> most(LONGEST_WATERMARK_LIST + 1, TextEntry(u"x"));
    pRows = List(most);
    EXPECT_EQ(CompactWatermarks(&pRows, LONGEST_WATERMARK_LIST), -1);
    EXPECT_EQ(CompactWatermarks(&pRows, LONGEST_WATERMARK_LIST), LONGEST_WATERMARK_LIST);
}

TEST_F(WatermarkStore, DeletingFilesForgetsThem)
{
    auto Built = [](const WCHAR* tcFile, const WCHAR* tcColorFile) {
        WatermarkEntry row = TextEntry(u"Draft");
        CopyWide(row.WMFileName, 260, tcFile);
        CopyWide(row.WMColorFile, 260, tcColorFile);
        row.WMWidth = 7;
        return row;
    };
    for (const WCHAR* tcFile : {u"C:\\u\\1.WM", u"C:\\u\\1.CWM", u"C:\\u\\other.txt", u"C:\\u\\kept.WM"}) {
        PutFile(tcFile, "x");
    }
    SetReadOnly(u"C:\\u\\kept.WM", true);
    WatermarkEntry row = Built(u"C:\\u\\1.WM", u"C:\\u\\1.CWM"), gone = TextEntry(u"Draft");
    gone.WMWidth = 7;
    DeleteWatermarkFiles(&row, 0);
    EXPECT_FALSE(HasFile(u"C:\\u\\1.WM") || HasFile(u"C:\\u\\1.CWM"));
    EXPECT_TRUE(HasFile(u"C:\\u\\other.txt"));
    EXPECT_TRUE(SameBytes(row, gone)) << "names of zeros, nothing else";

    row = Built(u"C:\\u\\kept.WM", u"C:\\u\\none.CWM");
    DeleteWatermarkFiles(&row, 3);
    EXPECT_TRUE(HasFile(u"C:\\u\\kept.WM"));
    EXPECT_TRUE(SameBytes(row, gone));

    /* On kind 4 the name is the row's own. */
    PutFile(u"C:\\u\\1.WM", "x");
    row = Built(u"C:\\u\\1.WM", u"");
    WatermarkEntry before = row;
    DeleteWatermarkFiles(&row, 4);
    EXPECT_TRUE(HasFile(u"C:\\u\\1.WM"));
    EXPECT_TRUE(SameBytes(row, before));

    ResetCallCounts();
    row = TextEntry(u"Draft");
    DeleteWatermarkFiles(&row, 0);
    EXPECT_EQ(CallCount(CALL_DeleteFileW), 0);
}

TEST_F(WatermarkStore, TheListLiesInTheUsersFile)
{
    auto Saved = [this] {
        PrinterCall call(hPrinter);
        OwnedBlock<WatermarkEntry> pRows;
        i32 nRows = GetSavedWatermarks(call, &pRows);
        return pRows && IsDefault(pRows.get()[nRows]) ? Names(pRows, nRows) : "no spare row";
    };
    const std::string list =
        "[Watermarks]\r\nNumWatermarks=1\r\nWMType0=2\r\nWMString0=Logo\r\nWMImageName0=C:\\w\\a.bmp\r\n";
    PutFile(u"C:\\drv\\qa.ini", std::string_view(list));
    EXPECT_EQ(Saved(), "") << "no file is named";
    SetPrinterText(wcPrinter, u"Settings", u"mine.ini");
    EXPECT_EQ(Saved(), "") << "named, but not there";
    PutFile(u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\Test Driver\\mine.ini",
            std::string_view(list));
    EXPECT_EQ(Saved(), "Logo ");
    SetPrinterText(wcPrinter, u"Settings", u"..\\Test Driver\\mine.ini");
    EXPECT_EQ(Saved(), "");
}
