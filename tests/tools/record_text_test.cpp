/* Settings records as text: the table of fields, the way there and back, and what is refused. */
#include <cstring>

#include <gtest/gtest.h>

#include "support/data_file.h"
#include "support/same_bytes.h"
#include "tools/tq/record_text.h"

namespace {

/* The message that carrying out an assignment ends with; the record stays as it was. */
std::string Refusal(const std::string& assignment)
{
    DriverDevmode record = recordTemplate;
    try {
        SetRecordField(&record, assignment);
        return "";
    } catch (const RecordTextError& error) {
        EXPECT_TRUE(SameBytes(record, recordTemplate)) << assignment;
        return error.what();
    }
}

std::string TextRefusal(const std::string& text)
{
    try {
        RecordFromText(text);
        return "";
    } catch (const RecordTextError& error) {
        return error.what();
    }
}

} // namespace

TEST(RecordText, EveryByteBelongsToOneField)
{
    unsigned nAt = 0;
    for (const FieldValue& field : RecordFields(recordTemplate)) {
        EXPECT_EQ(field.nOffset, nAt) << field.name;
        nAt = field.nOffset + field.nBytes;
    }
    EXPECT_EQ(nAt, 4088u);
}

TEST(RecordText, AnyBytesComeBackTheSame)
{
    EXPECT_EQ(RecordText(recordTemplate), "");
    EXPECT_TRUE(SameBytes(RecordFromText(""), recordTemplate));
    DriverDevmode record;
    u8* pBytes = reinterpret_cast<u8*>(&record);
    u32 ulSeed = 1;
    for (int nRound = 0; nRound < 16; nRound++) {
        for (size_t n = 0; n < sizeof record; n++) {
            ulSeed = ulSeed * 1664525 + 1013904223;
            /* Zeros too, so that texts and bytes have ends and zeros in their middle. */
            pBytes[n] = ulSeed >> 31 ? static_cast<u8>(ulSeed >> 16) : static_cast<u8>(0);
        }
        EXPECT_TRUE(SameBytes(RecordFromText(RecordText(record)), record)) << RecordText(record);
    }
    std::memset(&record, 0xFF, sizeof record);
    EXPECT_TRUE(SameBytes(RecordFromText(RecordText(record)), record));
}

TEST(RecordText, ValuesAreWrittenByTheirKind)
{
    DriverDevmode record = recordTemplate;
    auto set = [&record](const char* cAssignment, const char* cName, const char* cValue) {
        SetRecordField(&record, cAssignment);
        EXPECT_EQ(FieldOf(record, cName).value, cValue) << cAssignment;
    };
    set("dmPaperSize=0x9C40", "dmPaperSize", "-25536");
    set("sFrontPaperSize=65535", "sFrontPaperSize", "65535");
    set("lBindLongBack=-2147483648", "lBindLongBack", "-2147483648");
    set("dmFields=1", "dmFields", "0x00000001");
    set("cJobComment=plain \\ text", "cJobComment", "\"plain \\\\ text\"");
    set("cJobComment=\"a\\r\\n\\t\\\"\\\\\\x00\\xFFz\"", "cJobComment", "\"a\\r\\n\\t\\\"\\\\\\x00\\xFFz\"");
    set("wcOverlayFile=\"\\u00FCber\\u20AC\"", "wcOverlayFile", "\"\\u00FCber\\u20AC\"");
    set("cPJLUserValue[7]=1234", "cOCMUserValue[7]", "\"1234\"");
    set("wcWMOverlayName=F", "wcWMString", "\"F\"");
    set("sInsertPageOffset=-940", "sExceptionInfoOffset", "-940");
    set("bBlockCount=3", "bExceptionRegion", "0003");
    set("sInsertPageList[1]=258", "bExceptionRegion", "00030201");
    set("ColorCommand[15].sColorCmdLength=0x4006", "ColorCommand[15].sColorCmdLength", "0x4006");
    EXPECT_EQ(FieldOf(record, "ColorCommand[15].sColorCmdLength").nOffset, 2762u);
    EXPECT_EQ(FieldOf(record, "sGeneralOption[3]").nOffset, 2978u);
    record = recordTemplate;
    record.dmCopies = 3;
    record.rPrivate.sContrast = -7;
    EXPECT_EQ(RecordText(record), "dmCopies                           86  3\n"
                                  "sContrast                        1814  -7\n");
}

TEST(RecordText, WhatAFieldCannotHoldIsRefusedByItsName)
{
    for (const DataRow& row : ReadRows("record_refusals.txt")) {
        EXPECT_EQ(Refusal(row[0]).find(row[0].substr(0, row[0].find('='))), 0u) << row[0];
    }
    for (const char* cNone : {"dmNone=1", "sTextOption=1", "sTextOption[4]=1", "=1", "dmcopies=1"}) {
        EXPECT_NE(Refusal(cNone).find("no such field"), std::string::npos) << cNone;
    }
    EXPECT_NE(Refusal("dmCopies").find("field=value"), std::string::npos);
    EXPECT_NE(TextRefusal("dmCopies 86 1\ndmCopies 86 2\n").find("named twice"), std::string::npos);
    EXPECT_NE(TextRefusal("dmCopies 88 1\n").find("lies at 86"), std::string::npos);
    EXPECT_NE(TextRefusal("# good\ndmCopies\n").find("line 2"), std::string::npos);
    EXPECT_NE(TextRefusal("dmCopies 86\n").find("line 1"), std::string::npos);
}
