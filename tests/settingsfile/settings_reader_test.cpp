/* Reading settings files into records: every key by itself, the rules between keys, styles, and files that no
   one should write. */
#include "settingsfile/settings_reader.h"

#include <cstring>

#include "hosted/standin.h"
#include "settingsfile/settings_key_rows.h"
#include "support/both_builds.h"
#include "support/same_bytes.h"
#include "support/sweep.h"

namespace {

constexpr WCHAR SETTINGS_FILE[] = u"C:\\set\\a.ini";

i32 NumberAt(const DriverDevmode& record, int nAt, int nWidth, bool bSigned = false)
{
    u32 ulBits = 0;
    std::memcpy(&ulBits, reinterpret_cast<const u8*>(&record) + nAt, static_cast<size_t>(nWidth));
    return bSigned && nWidth == 2 ? static_cast<i16>(ulBits) : static_cast<i32>(ulBits);
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
    for (const KeyRow& row : aKeyRows) {
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

    /* The styles of the record as bytes, in hexadecimal. */
    static std::string Region(const DriverDevmode& read, int nBytes)
    {
        std::string text;
        for (int i = 0; i < nBytes; i++) {
            char cByte[4];
            std::snprintf(cByte, sizeof cByte, "%02X", read.rPrivate.bExceptionRegion[i]);
            text += cByte;
        }
        return text;
    }

    DriverDevmode record = recordTemplate;
};

/* The lines of a file that names every key of the format, each with a value of its own. */
std::string EveryKey()
{
    std::string lines;
    int n = 0;
    for (const KeyRow& row : aKeyRows) {
        for (int i = 0; i < row.Numbers(); i++) {
            char cValue[32];
            n++;
            if (row.cType == 't') {
                std::snprintf(cValue, sizeof cValue, "t%d", n);
            } else if (row.form == KEY_HEX) {
                std::snprintf(cValue, sizeof cValue, "%08X", 0xABCD0000u + static_cast<unsigned>(n));
            } else {
                std::snprintf(cValue, sizeof cValue, "%d",
                              row.cType == 'b'   ? n % 200
                              : row.cType == 'u' ? 64000 + n
                                                 : -2000 - n);
            }
            lines += row.cKey + (row.Numbers() > 1 ? std::to_string(i) : "") + "=" + cValue + "\r\n";
        }
    }
    return lines;
}

/* What the first line with this key says. */
std::string ValueIn(const std::string& lines, const std::string& key)
{
    size_t nAt = ("\n" + lines).find("\n" + key + "=");
    size_t nFrom = nAt + key.size() + 1;
    return nAt == lines.npos ? "" : lines.substr(nFrom, lines.find('\r', nFrom) - nFrom);
}

} // namespace

TEST_F(SettingsReader, EachKeyReachesItsFieldAndNothingElse)
{
    const std::string lines = EveryKey();
    for (u16 usKind = 0; usKind <= 5; usKind++) {
        for (bool bText : {false, true}) {
            SCOPED_TRACE("kind " + std::to_string(usKind) + (bText ? ", text" : ""));
            DriverDevmode before = MarkedRecord(0xA5), read = before;
            ASSERT_EQ(Read(std::string("WMType=") + (bText ? "00000001\r\n" : "00000024\r\n") + lines, &read,
                           usKind),
                      1);
            DriverDevmode untouched = read;
            u8* pUntouched = reinterpret_cast<u8*>(&untouched);
            auto Restore = [&](int nAt, int nBytes) {
                std::memcpy(pUntouched + nAt, reinterpret_cast<u8*>(&before) + nAt,
                            static_cast<size_t>(nBytes));
            };
            for (const KeyRow& row : aKeyRows) {
                std::string key = row.cKey;
                bool bTextKey = row.nAt >= 426 && row.nAt < 636;
                bool bOther = key == "WMFileName" ? bText : bTextKey && !bText;
                if (bOther || !std::strchr(row.cRead, usKind == 5 ? '0' : '0' + usKind)) {
                    continue;
                }
                for (int i = 0; i < row.Numbers(); i++) {
                    std::string value = ValueIn(lines, key + (row.Numbers() > 1 ? std::to_string(i) : ""));
                    ASSERT_NE(value, "") << key;
                    if (row.cType == 't') {
                        EXPECT_EQ(TextAt(read, row.nAt, row.nCount), value) << key;
                        Restore(row.nAt, row.nCount * 2);
                        continue;
                    }
                    i32 lExpected =
                        static_cast<i32>(std::stoll(value, nullptr, row.form == KEY_HEX ? 16 : 10));
                    EXPECT_EQ(NumberAt(read, row.At(i), row.Width(), row.cType == 's'), lExpected)
                        << key << i;
                    Restore(row.At(i), row.Width());
                }
            }
            EXPECT_EQ(read.rPrivate.ulWMType, bText ? 1u : 0x24u);
            EXPECT_EQ(read.rPrivate.ulColorMode, 0u);
            before.rPrivate.ulWMType = read.rPrivate.ulWMType;
            before.rPrivate.ulColorMode = 0;
            for (int i = 0; i < int{RECORD_SIZE}; i++) {
                ASSERT_EQ(pUntouched[i], reinterpret_cast<u8*>(&before)[i]) << "byte " << i;
            }
        }
    }
}

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

TEST_F(SettingsReader, TheGuardKeyNamesTheDescription)
{
    const struct {
        WideText tcXpi;
        std::string guard;
        int nResult;
    } aCases[] = {
        {u"C:\\drv\\QA.XPI", "", 1},
        {u"C:\\drv\\QA.XPI", "XPI=QA.XPI\r\n", 1},
        {u"QA.XPI", "XPI=QA.XPI\r\n", 1},
        {u"C:\\drv\\QA.XPI", "XPI=qa.xpi\r\n", 0},
        {u"C:\\drv\\QA.XPI", "XPI=QB.XPI\r\n", 0},
        {u"C:\\drv\\QA.XPI", "XPI=QA.XP\r\n", 0},
        {u"C:\\drv\\QA.XPI", "XPI=C:\\drv\\QA.XPI\r\n", 0},
        {u"C:\\drv\\QA.XPI", "XPI=\r\n", 0},
        {u"C:\\drv\\" + WideText(27, u'N') + u".XPI", "", 1}, /* 31 characters */
        {u"C:\\drv\\" + WideText(28, u'N') + u".XPI", "", 0},
        {u"C:\\drv\\" + WideText(28, u'N') + u".XPI", "XPI=" + std::string(28, 'N') + ".XPI\r\n", 0},
        {u"C:\\drv\\", "", 1},
        {WideText(160, u'N').substr(0, 159), "", 0},
    };
    for (const auto& row : aCases) {
        DriverDevmode before = MarkedRecord(0x11);
        PutText(&before, 2052, row.tcXpi);
        DriverDevmode read = before;
        EXPECT_EQ(Read(row.guard + "Copies=7\r\nWMType=1\r\n", &read), row.nResult)
            << Narrow(row.tcXpi) << row.guard;
        EXPECT_EQ(read.dmCopies, row.nResult ? 7 : before.dmCopies);
        EXPECT_TRUE(row.nResult || SameBytes(read, before));
    }
    /* A name without its end is taken up to the field's. */
    DriverDevmode read = MarkedRecord(0x11);
    std::memset(read.rPrivate.tcXPIName, 'N', sizeof read.rPrivate.tcXPIName);
    EXPECT_EQ(Read("Copies=7\r\n", &read), 0);
}

TEST_F(SettingsReader, TheWatermarkTypeChoosesItsKeys)
{
    record.rPrivate.ulWMType = 36;
    record.rPrivate.ulWMAngle = 450;
    EXPECT_EQ(After("").rPrivate.ulWMType, 0u);
    EXPECT_EQ(After("WMType=6\r\nWMAngle=900\r\nWMPlacement=4\r\nWMFileName=a.wm\r\n").rPrivate.ulWMAngle,
              450u);
    EXPECT_EQ(After("WMType=5\r\nWMAngle=900\r\n").rPrivate.ulWMAngle, 900u);
    DriverDevmode read = After("WMType=15\r\nWMString=Draft\r\nWMFileName=a.wm\r\nWMPlacement=4\r\n");
    EXPECT_EQ(read.rPrivate.ulWMType, 21u);
    EXPECT_EQ(TextAt(read, 428, 64), "Draft");
    EXPECT_EQ(read.rPrivate.usWMPlacement, 4);
    /* The name of a file runs over both texts; a string is cut at its own field. */
    const std::string name = std::string(90, 'f') + ".wm";
    EXPECT_EQ(TextAt(After("WMType=24\r\nWMFileName=" + name + "\r\n"), 428, 96), name);
    EXPECT_EQ(TextAt(After("WMType=24\r\nWMFileName=" + name + "XYZ\r\n"), 428, 96), name + "XY");
    read = After("WMType=1\r\nWMString=" + name + "\r\nWMFace=" + name + "\r\n");
    EXPECT_EQ(TextAt(read, 428, 64), name.substr(0, 63));
    EXPECT_EQ(TextAt(read, 556, 32), name.substr(0, 31));
}

TEST_F(SettingsReader, MarginsAreNotForAReadOnlySession)
{
    record.rPrivate.ulLanguageFeatures = 0x00080002;
    record.rPrivate.sMarginTop = 5;
    const std::string lines =
        "Margins=2\r\nMarginLeft=1\r\nMarginTop=-2\r\nMarginRight=3\r\nMarginBottom=4\r\n"
        "LanguageFeatures=00080001\r\nCopies=3\r\n";
    DriverDevmode read = After(lines, 0, 1);
    EXPECT_EQ(read.rPrivate.sMargins, 0);
    EXPECT_EQ(read.rPrivate.sMarginLeft, 0);
    EXPECT_EQ(read.rPrivate.sMarginTop, 5);
    EXPECT_EQ(read.rPrivate.sMarginRight, 0);
    EXPECT_EQ(read.rPrivate.sMarginBottom, 0);
    EXPECT_EQ(read.rPrivate.ulLanguageFeatures, 0x00080003u);
    EXPECT_EQ(read.dmCopies, 3);
    read = After(lines, 0, 0);
    EXPECT_EQ(read.rPrivate.sMarginTop, -2);
    EXPECT_EQ(read.rPrivate.ulLanguageFeatures, 0x00080001u);
    record.rPrivate.ulLanguageFeatures = 0;
    EXPECT_EQ(After("LanguageFeatures=FFFFFFFF\r\n", 0, 1).rPrivate.ulLanguageFeatures, 0xFFFFFFFDu);
}

TEST_F(SettingsReader, TheInsertKeysAndTheirSign)
{
    for (i16 sBefore : {i16{-940}, i16{0}, i16{940}, i16{-32768}}) {
        for (const char* cLine : {"", "InsertPageOffset=-1\r\n", "InsertPageOffset=7\r\n"}) {
            record.rPrivate.sInsertPageOffset = sBefore;
            i16 sAfter = sBefore == -940 ? i16{940} : sBefore;
            EXPECT_EQ(After(cLine, 0).rPrivate.sInsertPageOffset, sAfter);
            EXPECT_EQ(After(cLine, 3).rPrivate.sInsertPageOffset, sBefore);
            EXPECT_EQ(After(cLine, 4).rPrivate.sInsertPageOffset, sBefore);
        }
    }
    record.rPrivate.sInsertPageList[8] = 5;
    DriverDevmode read = After("InsertPages=3\r\nInsertPages7=9\r\nInsertPages8=4\r\n");
    EXPECT_EQ(read.rPrivate.sInsertPages, 3);
    EXPECT_EQ(read.rPrivate.sInsertPageList[7], 9);
    EXPECT_EQ(read.rPrivate.sInsertPageList[8], 5);
    EXPECT_EQ(After("InsertPageBin=7\r\n", 4).rPrivate.sInsertPageBin, 1025);
}

TEST_F(SettingsReader, NumbersAndTextsAsPeopleWriteThem)
{
    const struct {
        const char* cLine;
        int nAt, nWidth;
        i32 lValue;
    } aCases[] = {
        {"Copies=12abc", 86, 2, 12},
        {"Copies= +7 ", 86, 2, 7},
        {"Copies=\"8\"", 86, 2, 8},
        {"Copies=", 86, 2, 1}, /* an empty number is none */
        {"Copies=x", 86, 2, 0},
        {"Copies=65539", 86, 2, 3},
        {"copies=4", 86, 2, 4},
        {"Copies=4\r\nCopies=5", 86, 2, 4},
        {";Copies=4", 86, 2, 1},
        {"Contrast=-10", 1814, 2, 0xFFF6},
        {"Contrast=", 1814, 2, 0},
        {"FrontPaperSize=65535", 652, 2, 0xFFFF},
        {"PJLValueIndex3=-1", 2770, 2, 0xFFFF},
        {"PJLValueIndex32=7", 2828, 2, 0},
        {"OutputQuality=257", 3728, 1, 1},
        {"Resolution=010", 380, 4, 10},
        {"Resolution=0x20", 380, 4, 0},
        {"Resolution=99999999999999999999", 380, 4, 0x7FFFFFFF},
        {"BindLong=-99999999999", 404, 4, static_cast<i32>(0x80000000)},
        {"BindLong=- 5", 404, 4, 0},
        {"ColorFormat=1000", 2692, 4, 0x1000},
        {"ColorFormat=0x1000", 2692, 4, 0},
        {"ColorFormat=fffffFFFF", 2692, 4, -1},
        {"ColorFormat=zz", 2692, 4, 0},
        {"ColorMode=42", 1720, 4, 0},
        {"ColorCorrection=3", 2930, 2, 0},
        {"Profile=2\r\n[Basalt]\r\nProfile=X", 2696, 2, 2},
        {"Poster=3", 1946, 2, 3},
        {"[Other]\r\nCopies=4", 86, 2, 1},
    };
    for (const auto& row : aCases) {
        EXPECT_EQ(NumberAt(After(std::string(row.cLine) + "\r\n"), row.nAt, row.nWidth), row.lValue)
            << row.cLine;
    }
    EXPECT_EQ(TextAt(After("DefaultFont=\" A \"\r\n"), 232, 32), " A ");
    EXPECT_EQ(TextAt(After("DefaultFont=\r\n"), 232, 32), "");
    EXPECT_EQ(TextAt(After("DefaultFont=" + std::string(500, 'w') + "\r\n"), 232, 32), std::string(31, 'w'));
    EXPECT_EQ(TextAt(After("OverlayFile=12345678.OVL5\r\n"), 1830, 13), "12345678.OVL");
    EXPECT_EQ(TextAt(After("DefaultFont=\xFC\r\n"), 232, 32), "\\u00FC");
    /* A text without a key stays byte for byte, its end that is missing included. */
    std::fill_n(reinterpret_cast<u8*>(&record) + 1830, 26, u8{'o'});
    PutText(&record, 232, u" \"quoted\"  ");
    EXPECT_EQ(NumberAt(After(""), 1830 + 24, 2), 0x6F6F);
    EXPECT_EQ(TextAt(After(""), 232, 32), " \"quoted\"  ");

    const WideText wcWide = u"\uFEFF[PrinterSettings]\r\nDefaultFont=\u0416\r\nCopies=9\r\n";
    std::string utf16(reinterpret_cast<const char*>(wcWide.data()), wcWide.size() * 2);
    PutFile(SETTINGS_FILE, std::string_view(utf16));
    DriverDevmode read = recordTemplate;
    EXPECT_EQ(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &read, 0, 0), 1);
    EXPECT_EQ(TextAt(read, 232, 32), "\\u0416");
    EXPECT_EQ(read.dmCopies, 9);
}

TEST_F(SettingsReader, StylesAndBlocksByType)
{
    const std::string styles =
        "StyleCount=3\r\nBlockCount=2\r\n"
        "StyleType0=1\r\nStyleUsage0=9\r\nStyleBin0=-2\r\nStyleMediaIndex0=3\r\nStylePaperSize0=77\r\n"
        "StyleType1=2\r\nStyleUsage1=1\r\nStyleBin1=258\r\nStyleMediaIndex1=4\r\nStylePaperSize1=9\r\n"
        "StylePaperLength1=2970\r\nStylePaperWidth1=2100\r\n"
        "StyleType2=6\r\nStyleUsage2=2\r\nStyleWMOver2=1\r\nStyleWMPlacement2=5\r\nStyleWMPositionX2=-1\r\n"
        "StyleWMPositionY2=258\r\nStyleWMWidth2=3\r\nStyleWMLength2=4\r\nStyleWMResolution2=600\r\n"
        "StyleWMAlpha2=50\r\nStyleWMFileName2=AB\r\n"
        "BlockStyleIndex0=2\r\nBlockPageCount0=0\r\n"
        "BlockStyleIndex1=1\r\nBlockPageCount1=2\r\nBlockPage1-0=513\r\nBlockPage1-1=65535\r\n";
    const std::string expected = "0302"
                                 "08000109FEFF0300"
                                 "0E000201020104000900"
                                 "9A0B3408"
                                 "1F0006020105FFFFFFFF02010000030000000400000058023241004200"
                                 "0000"
                                 "0200"
                                 "01020102FFFF";
    for (u16 usKind : {u16{3}, u16{4}}) {
        EXPECT_EQ(Region(After(styles, usKind), static_cast<int>(expected.size() / 2)), expected);
    }
    /* Other kinds have a list of pages there. */
    EXPECT_EQ(Region(After(styles, 2), 2), "0000");

    const struct {
        const char* cType;
        int nSize3, nSize4;
    } aSizes[] = {{"0", 4, 4},   {"1", 8, 8}, {"2", 14, 14}, {"3", 14, 14}, {"4", 4, 4}, {"5", 4, 40},
                  {"6", 31, 31}, {"7", 4, 4}, {"255", 4, 4}, {"257", 8, 8}, {"-1", 4, 4}};
    for (const auto& row : aSizes) {
        std::string lines = std::string("StyleCount=1\r\nStyleType0=") + row.cType +
                            "\r\nStyleOverlayFile0=over.prn\r\nStyleWMFileName0=AB\r\n";
        EXPECT_EQ(NumberAt(After(lines, 3), 2982, 2), row.nSize3) << row.cType;
        EXPECT_EQ(NumberAt(After(lines, 4), 2982, 2), row.nSize4) << row.cType;
    }
    DriverDevmode read = After("StyleCount=2\r\nStyleType0=5\r\nStyleOverlayUnder0=1\r\nStyleOverlayFile0=" +
                                   std::string(60, 'o') + "\r\nStyleType1=1\r\nStyleBin1=7\r\n",
                               4);
    EXPECT_EQ(NumberAt(read, 2982, 2), 56);
    EXPECT_EQ(NumberAt(read, 2986, 1), 1);
    EXPECT_EQ(TextAt(read, 2988, 25), std::string(24, 'o'));
    EXPECT_EQ(NumberAt(read, 2982 + 56, 2), 8);
    EXPECT_EQ(NumberAt(read, 2982 + 56 + 4, 2), 7);
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
    auto Guarded = [this](const std::string& lines, u16 usKind) {
        DriverDevmode before = recordTemplate;
        std::memset(reinterpret_cast<u8*>(&before) + 3716, 0x77, sizeof before - 3716);
        DriverDevmode read = before;
        EXPECT_EQ(Read(lines, &read, usKind), 1);
        /* The keys behind the region are not in these files. */
        EXPECT_EQ(std::memcmp(reinterpret_cast<u8*>(&before) + 3716, reinterpret_cast<u8*>(&read) + 3716,
                              sizeof before - 3716),
                  0);
        return std::pair<int, int>(read.rPrivate.bStyleCount, read.rPrivate.bBlockCount);
    };
    using Counts = std::pair<int, int>;
    for (u16 usKind : {u16{3}, u16{4}}) {
        EXPECT_EQ(Guarded("StyleCount=200\r\nBlockCount=200\r\n", usKind),
                  Counts(183, 1)); /* 4 bytes a style, 2 left */
        EXPECT_EQ(Guarded("StyleCount=255\r\nBlockCount=255\r\n", usKind), Counts(183, 1));
        EXPECT_EQ(Guarded("StyleCount=-1\r\n", usKind), Counts(183, 0));
        EXPECT_EQ(Guarded("StyleCount=256\r\n", usKind), Counts(0, 0));
    }
    /* 182 styles end at 3710; the name of the next would begin behind the region. */
    for (const char* cName : {"", "StyleWMFileName182=n\r\n", "StyleOverlayFile182=n\r\n"}) {
        EXPECT_EQ(Guarded(std::string("StyleCount=183\r\nStyleType182=6\r\n") + cName, 3), Counts(182, 0));
        EXPECT_EQ(Guarded(std::string("StyleCount=183\r\nStyleType182=5\r\n") + cName, 4), Counts(182, 0));
    }
    /* 734 bytes: two styles of 259 and 80 characters end just there; with one more the second is not read. */
    auto Two = [](int nLong, int nShort) {
        return "StyleCount=3\r\nStyleType0=6\r\nStyleWMFileName0=" +
               std::string(static_cast<size_t>(nLong), 'a') +
               "\r\nStyleType1=6\r\nStyleWMFileName1=" + std::string(static_cast<size_t>(nShort), 'b') +
               "\r\nStyleType2=0\r\n";
    };
    EXPECT_EQ(27 + 2 * 259 + 27 + 2 * 81, 734);
    EXPECT_EQ(Guarded(Two(259, 81), 3), Counts(2, 0));
    EXPECT_EQ(Guarded(Two(259, 82), 3), Counts(1, 0));
    EXPECT_EQ(Guarded(Two(400, 81), 3), Counts(2, 0)); /* the longest name is 259 */
    /* A block of 366 pages would fill all; 255 is the most that can be told. */
    EXPECT_EQ(Guarded("BlockCount=2\r\nBlockPageCount0=255\r\nBlockPageCount1=110\r\n", 3), Counts(0, 2));
    EXPECT_EQ(Guarded("BlockCount=2\r\nBlockPageCount0=255\r\nBlockPageCount1=111\r\n", 3), Counts(0, 1));
    EXPECT_EQ(
        Guarded("BlockCount=3\r\nBlockPageCount0=255\r\nBlockPageCount1=111\r\nBlockPageCount2=0\r\n", 3),
        Counts(0, 1));
}

TEST_F(SettingsReader, FailingCallsLeaveTheRecordWholeOrAlone)
{
    const std::string lines =
        "XPI=QA.XPI\r\nWMType=00000001\r\nStyleCount=2\r\nBlockCount=1\r\nStyleType0=6\r\n"
        "StyleWMFileName0=name\r\nStyleType1=2\r\nBlockPageCount0=3\r\n" +
        EveryKey();
    PutFile(SETTINGS_FILE, "[PrinterSettings]\r\n" + lines);
    for (u16 usKind : {u16{0}, u16{3}}) {
        DriverDevmode before = MarkedRecord(0x22);
        DriverDevmode good = before;
        ASSERT_EQ(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &good, 0, usKind), 1);
        DriverDevmode bare = before;
        ASSERT_EQ(ReadPrinterSettings({}, &bare, 0, usKind), 1);
        for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
            FaultSweep sweep = SweepFaults(ANY_CALL, mode, 2000, [&]() -> std::string {
                DriverDevmode read = before;
                int nResult = ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &read, 0, usKind);
                return !nResult ? SameBytes(read, before) ? "" : "refused and touched"
                       : SameBytes(read, good) || SameBytes(read, bare) ? ""
                                                                        : "half a file";
            });
            EXPECT_EQ(sweep.fault, "");
            EXPECT_GE(sweep.nFaults, 6); /* open, type, size, read and the blocks */
        }
    }
}
