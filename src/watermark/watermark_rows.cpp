/* Reads and writes the section of the watermarks. */
#include "watermark/watermark_rows.h"

#include <cstring>

#include "base/format.h"
#include "profile/profile_values.h"
#include "profile/section_file.h"

namespace {

const WCHAR* const wcSection = TEXT("Watermarks");

constexpr u16 MISSING_WORD = 0xFFFF;
constexpr u32 MISSING_LONG = 0xFFFFFFFF;

struct RowSource {
    const ProfileSection& section;
    i32 nIndex;
};

u32 ReadInt(const RowSource& source, const WCHAR* wcStem, i32 lDefault)
{
    return static_cast<u32>(ReadProfileInt(source.section, {wcStem, source.nIndex}, lDefault));
}

u16 ReadWord(const RowSource& source, const WCHAR* wcStem, i32 lDefault)
{
    return static_cast<u16>(ReadInt(source, wcStem, lDefault));
}

i32 ReadLong(const RowSource& source, const WCHAR* wcStem, i32 lDefault)
{
    return ReadProfileLong(source.section, {wcStem, source.nIndex}, lDefault);
}

/* Reads a text into a field of zeros. Result: 1 when it is not empty. */
template <int cch> int ReadText(const RowSource& source, const WCHAR* wcStem, WCHAR (&wcField)[cch])
{
    return ReadProfileText(source.section, {wcStem, source.nIndex}, wcField, cch) && wcField[0];
}

/* The fields of a text watermark. Result: 1 when none of those that must be there is missing. */
int ReadTextFields(const RowSource& source, WatermarkEntry* pRow)
{
    int bFace = ReadText(source, TEXT("WMFace"), pRow->WMFace);
    pRow->WMAngle = ReadWord(source, TEXT("WMAngle"), -1);
    pRow->WMRTL = ReadInt(source, TEXT("WMRTL"), 0);
    pRow->WMCharSet = static_cast<u8>(ReadInt(source, TEXT("WMCharSet"), -1));
    pRow->WMBold = ReadInt(source, TEXT("WMBold"), -1);
    pRow->WMItalic = ReadInt(source, TEXT("WMItalic"), -1);
    u16 usSize = ReadWord(source, TEXT("WMSize"), -1);
    pRow->WMSize = static_cast<i16>(usSize);
    pRow->WMColor = ReadProfileHex(source.section, {TEXT("WMColor"), source.nIndex}, MISSING_LONG);
    pRow->WMOutline = ReadInt(source, TEXT("WMOutline"), -1);
    return bFace && pRow->WMAngle != MISSING_WORD && usSize != MISSING_WORD && pRow->WMBold != MISSING_LONG &&
           pRow->WMItalic != MISSING_LONG && pRow->WMColor != MISSING_LONG && pRow->WMOutline != MISSING_LONG;
}

void ReadBuiltFiles(const RowSource& source, WatermarkEntry* pRow)
{
    int bFile = ReadText(source, TEXT("WMFileName"), pRow->WMFileName);
    int bColorFile = ReadText(source, TEXT("WMColorFile"), pRow->WMColorFile);
    if (!bFile && !bColorFile) {
        return;
    }
    pRow->WMResolution = ReadWord(source, TEXT("WMResolution"), 0);
    pRow->WMWidth = ReadInt(source, TEXT("WMWidth"), 0);
    pRow->WMHeight = ReadInt(source, TEXT("WMHeight"), 0);
    if (!pRow->WMResolution || !pRow->WMWidth || !pRow->WMHeight) {
        std::memset(pRow->WMFileName, 0, sizeof pRow->WMFileName);
        std::memset(pRow->WMColorFile, 0, sizeof pRow->WMColorFile);
        pRow->WMResolution = 0;
        pRow->WMWidth = pRow->WMHeight = 0;
    }
}

/* Fills a row of zeros. Result: 1 when it is whole. */
int ReadRow(const RowSource& source, WatermarkEntry* pRow)
{
    if (!ReadText(source, TEXT("WMString"), pRow->WMString)) {
        return 0;
    }
    pRow->WMType = static_cast<u32>(ReadLong(source, TEXT("WMType"), ENTRY_TEXT));
    if (pRow->WMType == ENTRY_TEXT && !ReadTextFields(source, pRow)) {
        return 0;
    }
    if (pRow->WMType == ENTRY_IMAGE) {
        if (!ReadText(source, TEXT("WMImageName"), pRow->WMImageName)) {
            return 0;
        }
        pRow->WMScaleX = ReadInt(source, TEXT("WMScaleX"), 100);
        pRow->WMScaleY = ReadInt(source, TEXT("WMScaleY"), 100);
    }
    pRow->WMTransparency = ReadWord(source, TEXT("WMTransparency"), 50);
    pRow->WMPlacement = ReadWord(source, TEXT("WMPlacement"), 0);
    pRow->WMPositionX = ReadLong(source, TEXT("WMPositionX"), 0);
    pRow->WMPositionY = ReadLong(source, TEXT("WMPositionY"), 0);
    ReadBuiltFiles(source, pRow);
    return 1;
}

/* Rows that the section may hold: of its count only those whose text is there cost memory. */
i32 CountRows(const ProfileSection& section)
{
    i32 nTold = ReadProfileInt(section, TEXT("NumWatermarks"), -1), nRows = 0;
    nTold = nTold < WATERMARK_LIMIT ? nTold : WATERMARK_LIMIT;
    WCHAR wcFirst[2];
    while (nRows < nTold && ReadProfileText(section, {TEXT("WMString"), nRows}, wcFirst, 2) && wcFirst[0]) {
        nRows++;
    }
    return nRows;
}

/* The row that is being written. */
struct RowTarget {
    SectionLines* pLines;
    i32 nIndex;
};

void WriteNumber(const RowTarget& target, const WCHAR* wcStem, u32 ulValue)
{
    WCHAR wcKey[TEXT_CHARS];
    FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), wcStem, target.nIndex);
    WriteProfileLong(target.pLines, wcKey, static_cast<i32>(ulValue));
}

template <int cch> void WriteText(const RowTarget& target, const WCHAR* wcStem, const WCHAR (&wcField)[cch])
{
    WCHAR wcKey[TEXT_CHARS];
    FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), wcStem, target.nIndex);
    WriteProfileText(target.pLines, wcKey, wcField, cch);
}

void WriteTextFields(const RowTarget& target, const WatermarkEntry& row)
{
    if (row.WMRTL) {
        WriteNumber(target, TEXT("WMRTL"), row.WMRTL);
    }
    WriteNumber(target, TEXT("WMCharSet"), row.WMCharSet);
    WriteText(target, TEXT("WMFace"), row.WMFace);
    WriteNumber(target, TEXT("WMBold"), row.WMBold);
    WriteNumber(target, TEXT("WMItalic"), row.WMItalic);
    WriteNumber(target, TEXT("WMSize"), static_cast<u32>(row.WMSize));
    WCHAR wcKey[TEXT_CHARS];
    FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), TEXT("WMColor"), target.nIndex);
    WriteProfileHex(target.pLines, wcKey, row.WMColor);
    WriteNumber(target, TEXT("WMOutline"), row.WMOutline);
}

void WriteBuiltFiles(const RowTarget& target, const WatermarkEntry& row)
{
    int bNamed = row.WMFileName[0] || row.WMColorFile[0];
    if (!bNamed || !row.WMResolution || !row.WMWidth || !row.WMHeight) {
        return;
    }
    if (row.WMFileName[0]) {
        WriteText(target, TEXT("WMFileName"), row.WMFileName);
    }
    if (row.WMColorFile[0]) {
        WriteText(target, TEXT("WMColorFile"), row.WMColorFile);
    }
    WriteNumber(target, TEXT("WMResolution"), row.WMResolution);
    WriteNumber(target, TEXT("WMWidth"), row.WMWidth);
    WriteNumber(target, TEXT("WMHeight"), row.WMHeight);
}

void WriteRow(const RowTarget& target, const WatermarkEntry& row)
{
    WriteNumber(target, TEXT("WMType"), row.WMType);
    WriteText(target, TEXT("WMString"), row.WMString);
    WriteNumber(target, TEXT("WMAngle"), row.WMAngle);
    if (row.WMType == ENTRY_TEXT) {
        WriteTextFields(target, row);
    }
    if (row.WMType == ENTRY_IMAGE) {
        WriteText(target, TEXT("WMImageName"), row.WMImageName);
        WriteNumber(target, TEXT("WMScaleX"), row.WMScaleX);
        WriteNumber(target, TEXT("WMScaleY"), row.WMScaleY);
    }
    WriteNumber(target, TEXT("WMTransparency"), row.WMTransparency);
    WriteNumber(target, TEXT("WMPlacement"), row.WMPlacement);
    WriteNumber(target, TEXT("WMPositionX"), static_cast<u32>(row.WMPositionX));
    WriteNumber(target, TEXT("WMPositionY"), static_cast<u32>(row.WMPositionY));
    WriteBuiltFiles(target, row);
}

} // namespace

int WriteWatermarks(const WCHAR* tcPath, const WatermarkEntry* pRows, i32 nCount)
{
    SectionLines lines = {};
    nCount = nCount > 0 ? nCount : 0;
    WriteProfileDecimal(&lines, TEXT("NumWatermarks"), nCount);
    for (i32 i = 0; i < nCount && !lines.bShort; i++) {
        WriteRow({&lines, i}, pRows[i]);
    }
    return ReplaceSection(tcPath, wcSection, lines);
}

i32 ReadWatermarks(const ProfileFile& file, OwnedBlock<WatermarkEntry>* outRows)
{
    outRows->reset();
    ProfileSection section = OpenSection(file, wcSection);
    if (section.bShort) {
        return 0;
    }
    i32 nRows = CountRows(section), nKept = 0;
    outRows->reset(
        static_cast<WatermarkEntry*>(AllocateRows(static_cast<u64>(nRows) + 1, sizeof(WatermarkEntry))));
    WatermarkEntry* pRows = outRows->get();
    if (!pRows) {
        return 0;
    }
    while (nKept < nRows && ReadRow({section, nKept}, pRows + nKept)) {
        nKept++;
    }
    ResetWatermarkEntry(pRows + nKept);
    return nKept;
}
