/* Reads and writes the section of the saved papers. */
#include "description/custom_sizes.h"

#include <cstring>

#include "base/format.h"
#include "profile/profile_values.h"
#include "profile/section_file.h"

namespace {

constexpr int KEY_CHARS = 32;

const WCHAR* const wcSection = TEXT("CustomSizes");

const WCHAR* IndexedKey(WCHAR* wcKey, const WCHAR* wcStem, i32 nIndex)
{
    FormatWide(wcKey, KEY_CHARS, TEXT("%s%d"), wcStem, nIndex);
    return wcKey;
}

/* 1 when row nIndex of the section is whole. */
int ReadRow(const ProfileSection& section, i32 nIndex, PaperSizeRow* pRow)
{
    ReadProfileText(section, {TEXT("CustomName"), nIndex}, pRow->wcName,
                    static_cast<int>(sizeof pRow->wcName / sizeof(WCHAR)));
    if (!pRow->wcName[0]) {
        return 0;
    }
    i32 lWidth = ReadProfileLong(section, {TEXT("CustomWidth"), nIndex}, -1);
    i32 lLength = ReadProfileLong(section, {TEXT("CustomLength"), nIndex}, -1);
    i32 lMetric = ReadProfileInt(section, {TEXT("CustomMetric"), nIndex}, -1);
    pRow->ulWidth = static_cast<u32>(lWidth);
    pRow->ulLength = static_cast<u32>(lLength);
    pRow->ulMetric = static_cast<u32>(lMetric);
    return lWidth != -1 && lLength != -1 && lMetric != -1;
}

} // namespace

i32 ReadCustomSizes(const ProfileFile& file, const XpiModel* pModel, OwnedBlock<PaperSizeRow>* outRows)
{
    outRows->reset();
    ProfileSection section = OpenSection(file, wcSection);
    if (section.bShort) {
        return 0;
    }
    i32 nRows = ReadProfileInt(section, TEXT("NumCustomSizes"), -1);
    if (nRows < 0) {
        nRows = 0;
    } else if (nRows > LIST_LIMIT) {
        nRows = LIST_LIMIT;
    }
    outRows->reset(
        static_cast<PaperSizeRow*>(AllocateRows(static_cast<u64>(nRows) + 1, sizeof(PaperSizeRow))));
    PaperSizeRow* pRows = outRows->get();
    if (!pRows) {
        return 0;
    }
    for (i32 i = 0; i < nRows; i++) {
        if (!ReadRow(section, i, pRows + i)) {
            std::memset(pRows, 0, static_cast<size_t>(nRows + 1) * sizeof(PaperSizeRow));
            nRows = 0;
        }
    }
    if (pModel) {
        NewPaperRow(pRows + nRows, pModel);
    }
    return nRows;
}

int WriteCustomSizes(const WCHAR* tcPath, const PaperSizeRow* pRows, i32 nCount)
{
    SectionLines lines = {};
    WCHAR wcKey[KEY_CHARS];
    nCount = nCount > 0 ? nCount : 0;
    WriteProfileDecimal(&lines, TEXT("NumCustomSizes"), nCount);
    for (i32 i = 0; i < nCount && !lines.bShort; i++) {
        const PaperSizeRow& row = pRows[i];
        WriteProfileText(&lines, IndexedKey(wcKey, TEXT("CustomName"), i), row.wcName,
                         static_cast<int>(sizeof row.wcName / sizeof(WCHAR)));
        WriteProfileLong(&lines, IndexedKey(wcKey, TEXT("CustomWidth"), i), static_cast<i32>(row.ulWidth));
        WriteProfileLong(&lines, IndexedKey(wcKey, TEXT("CustomLength"), i), static_cast<i32>(row.ulLength));
        WriteProfileLong(&lines, IndexedKey(wcKey, TEXT("CustomMetric"), i), static_cast<i32>(row.ulMetric));
    }
    return ReplaceSection(tcPath, wcSection, lines);
}
