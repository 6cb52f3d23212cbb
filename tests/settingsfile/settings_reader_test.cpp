/* Reading settings files into records: the rules of and between keys, styles, and files that no one should write.
   That each key reaches its field is held where records are written (SettingsWriter.WholeTextOfARecordOfEachKind). */
#include "settingsfile/settings_reader.h"

#include <cstring>

#include "hosted/standin.h"
#include "settingsfile/settings_key_rows.h"
#include "support/both_builds.h"
#include "support/record_changes.h"
#include "support/same_bytes.h"
#include "support/sweep.h"

namespace {

constexpr WCHAR SETTINGS_FILE[] = u"C:\\set\\a.ini";

i32 NumberAt(const DriverDevmode& record, int nAt, int nWidth)
{
    u32 ulBits = 0;
    std::memcpy(&ulBits, reinterpret_cast<const u8*>(&record) + nAt, static_cast<size_t>(nWidth));
    return static_cast<i32>(ulBits);
}

std::string TextAt(const DriverDevmode& record, int nAt, int nChars)
{
    std::vector<WCHAR> wcText(static_cast<size_t>(nChars) + 1);
    std::memcpy(wcText.data(), reinterpret_cast<const u8*>(&record) + nAt, static_cast<size_t>(nChars) * 2);
    return Ascii(wcText.data());
}

void PutText(DriverDevmode* pRecord, int nAt, const WideText& wcText)
{
    std::memcpy(reinterpret_cast<u8*>(pRecord) + nAt, wcText.c_str(), (wcText.size() + 1) * sizeof(WCHAR));
}

/* A record in which a field that changes shows, with texts that end. */
DriverDevmode MarkedRecord(u8 bFill)
{
    DriverDevmode record;
    std::memset(&record, bFill, sizeof record);
    for (const KeyRow& row : KeyRows()) {
        if (row.cType == 't') {
            PutText(&record, row.nAt, u"old");
        }
    }
    PutText(&record, 2052, u"C:\\drv\\QA.XPI");
    std::memset(record.rPrivate.bExceptionRegion, 0, 2);
    record.rPrivate.sExceptionInfoOffset = 940;
    return record;
}

class SettingsReader : public BothBuilds {
  protected:
    /* Reads a section with these lines. Result: what the reader gave. */
    int Read(const std::string& lines, DriverDevmode* pRecord, u16 usKind = 0, int bReadOnly = 0)
    {
        PutFile(SETTINGS_FILE, "[PrinterSettings]\r\n" + lines);
        return ReadPrinterSettings(OpenProfile(SETTINGS_FILE), pRecord, bReadOnly, usKind);
    }

    DriverDevmode After(const std::string& lines, u16 usKind = 0, int bReadOnly = 0)
    {
        DriverDevmode read = record;
        EXPECT_EQ(Read(lines, &read, usKind, bReadOnly), 1) << lines;
        return read;
    }

    DriverDevmode record = recordTemplate;
};

} // namespace

TEST_F(SettingsReader, WhatAFileDoesNotNameStays)
{
    /* 0x81: every number is negative or large, so that the way through a default's text shows. */
    for (u8 bFill : {u8{0x81}, u8{0x00}, u8{0x7F}, u8{0xFF}}) {
        for (u16 usKind = 0; usKind <= 4; usKind++) {
            DriverDevmode before = MarkedRecord(bFill);
            DriverDevmode expected = before;
            expected.rPrivate.ulWMType = 0;
            expected.rPrivate.ulColorMode = 0;
            DriverDevmode read = before;
            ASSERT_EQ(Read("", &read, usKind), 1);
            EXPECT_TRUE(SameBytes(read, expected)) << "empty section, kind " << usKind;
            read = before;
            ASSERT_EQ(ReadPrinterSettings(OpenProfile(u"C:\\none\\b.ini"), &read, 0, usKind), 1);
            EXPECT_TRUE(SameBytes(read, expected)) << "no file, kind " << usKind;
            read = before;
            PutFile(u"C:\\Windows\\a.ini", "[PrinterSettings]\r\nCopies=7\r\n");
            ASSERT_EQ(ReadPrinterSettings(OpenProfile(u"a.ini"), &read, 0, usKind), 1);
            EXPECT_TRUE(SameBytes(read, expected)) << "bare name, kind " << usKind;
        }
    }
}

TEST_F(SettingsReader, LinesAndWhatTheyChange)
{
    for (const DataRow& row : ReadRows("settings_lines.txt")) {
        ASSERT_EQ(row.size(), 4u) << row[0];
        record = Changed(recordTemplate, row[0]);
        const std::string lines = Unescaped(row[2]) + "\r\n";
        const int bReadOnly = row[1].find(" read-only") != row[1].npos;
        DriverDevmode read = record;
        const int nResult = Read(lines, &read, static_cast<u16>(row[1][0] - '0'), bReadOnly);
        EXPECT_EQ(nResult                   ? Changes(record, read)
                  : SameBytes(read, record) ? "refused"
                                            : "touched",
                  row[3])
            << row[0] << row[2];
    }
    /* A name without its end is taken up to the field's. */
    std::memset(record.rPrivate.tcXPIName, 'N', sizeof record.rPrivate.tcXPIName);
    EXPECT_EQ(Read("Copies=7\r\n", &record), 0);
}

TEST_F(SettingsReader, TextsOfFieldsAndOfFiles)
{
    /* The name of a file runs over both texts; a string is cut at its own field. */
    const std::string name = std::string(90, 'f') + ".wm";
    EXPECT_EQ(TextAt(After("WMType=24\r\nWMFileName=" + name + "XYZ\r\n"), 428, 96), name + "XY");
    DriverDevmode read = After("WMType=1\r\nWMString=" + name + "\r\nWMFace=" + name + "\r\n");
    EXPECT_EQ(TextAt(read, 428, 64), name.substr(0, 63));
    EXPECT_EQ(TextAt(read, 556, 32), name.substr(0, 31));
    /* A text without a key stays byte for byte, its end that is missing included. */
    std::fill_n(reinterpret_cast<u8*>(&record) + 1830, 26, u8{'o'});
    PutText(&record, 232, u" \"quoted\"  ");
    EXPECT_EQ(NumberAt(After(""), 1830 + 24, 2), 0x6F6F);
    EXPECT_EQ(TextAt(After(""), 232, 32), " \"quoted\"  ");
    /* Files in the code page and in UTF-16. */
    EXPECT_EQ(TextAt(After("DefaultFont=\xFC\r\n"), 232, 32), "\\u00FC");
    const WideText wcWide = u"\uFEFF[PrinterSettings]\r\nDefaultFont=\u0416\r\nCopies=9\r\n";
    PutFile(SETTINGS_FILE, std::string_view(reinterpret_cast<const char*>(wcWide.data()), wcWide.size() * 2));
    read = recordTemplate;
    EXPECT_EQ(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &read, 0, 0), 1);
    EXPECT_EQ(TextAt(read, 232, 32), "\\u0416");
    EXPECT_EQ(read.dmCopies, 9);
}

TEST_F(SettingsReader, StylesThatStandInTheRecordAreTheDefaults)
{
    record = After(
        "StyleCount=2\r\nBlockCount=1\r\nStyleType0=6\r\nStyleWMPositionX0=-7\r\nStyleWMFileName0=name\r\n"
        "StyleType1=1\r\nStyleBin1=5\r\nBlockPageCount0=1\r\nBlockPage0-0=12\r\n",
        3);
    DriverDevmode again = After("", 3);
    EXPECT_TRUE(SameBytes(again, record));
    again = After("StyleBin1=6\r\n", 3);
    EXPECT_EQ(NumberAt(again, 2982 + 35 + 4, 2), 6);
    record = again;
    EXPECT_EQ(NumberAt(After("StyleCount=0\r\nBlockCount=0\r\n", 3), 2980, 2), 0);
}

TEST_F(SettingsReader, NoStyleReachesBeyondTheRegion)
{
    for (const DataRow& row : ReadRows("settings_styles.txt")) {
        DriverDevmode before = recordTemplate;
        std::memset(reinterpret_cast<u8*>(&before) + 3716, 0x77, sizeof before - 3716);
        DriverDevmode read = before;
        EXPECT_EQ(Read(Unescaped(row[1]), &read, static_cast<u16>(ToNumber(row[0]))), 1);
        /* The keys behind the region are not in these files. */
        EXPECT_EQ(std::memcmp(reinterpret_cast<u8*>(&before) + 3716, reinterpret_cast<u8*>(&read) + 3716,
                              sizeof before - 3716),
                  0);
        EXPECT_EQ(std::to_string(read.rPrivate.bStyleCount) + " " + std::to_string(read.rPrivate.bBlockCount),
                  row[2])
            << row[1];
    }
}

TEST_F(SettingsReader, FailingCallsLeaveTheRecordWholeOrAlone)
{
    const std::string lines =
        "XPI=QA.XPI\r\nWMType=00000001\r\nStyleCount=2\r\nBlockCount=1\r\nStyleType0=6\r\n"
        "StyleWMFileName0=name\r\nStyleType1=2\r\nBlockPageCount0=3\r\n"
        "Copies=3\r\nDefaultFont=font\r\nColorFormat=12\r\nPJLValueIndex31=4\r\nLayoutType=9\r\n";
    PutFile(SETTINGS_FILE, "[PrinterSettings]\r\n" + lines);
    for (u16 usKind : {u16{0}, u16{3}}) {
        const DriverDevmode before = MarkedRecord(0x22);
        DriverDevmode good = before, bare = before;
        ASSERT_EQ(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &good, 0, usKind), 1);
        ASSERT_EQ(ReadPrinterSettings({}, &bare, 0, usKind), 1);
        FaultSweep sweep = SweepFaultsBothWays(ANY_CALL, 2000, [&]() -> std::string {
            DriverDevmode read = before;
            const int nResult = ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &read, 0, usKind);
            const bool bWhole =
                nResult ? SameBytes(read, good) || SameBytes(read, bare) : SameBytes(read, before);
            return bWhole ? "" : nResult ? "half a file" : "refused and touched";
        });
        EXPECT_EQ(sweep.fault, "");
        EXPECT_GE(sweep.nFaults, 12); /* open, type, size, read and the blocks */
    }
}
