/* Reads and writes the section of the saved papers. */
#include "settingsfile/custom_sizes.h"

#include <cstring>

#include "base/format.h"
#include "settingsfile/profile_values.h"
#include "settingsfile/section_file.h"

namespace {

constexpr int KEY_CHARS = 32;

const WCHAR* const wcSection = TEXT("CustomSizes");

const WCHAR* IndexedKey(WCHAR* wcKey, const WCHAR* wcStem, i32 nIndex)
{
    FormatWide(wcKey, KEY_CHARS, TEXT("%s%d"), wcStem, nIndex);
    return wcKey;
}

/* 1 when row nIndex of the file is whole. */
int ReadRow(const WCHAR* tcPath, i32 nIndex, PaperSizeRow* pRow)
{
    WCHAR wcKey[KEY_CHARS];
    ReadProfileText(wcSection, IndexedKey(wcKey, TEXT("CustomName"), nIndex), TEXT(""), pRow->wcName,
                    static_cast<int>(sizeof pRow->wcName / sizeof(WCHAR)), tcPath);
    if (!pRow->wcName[0]) {
        return 0;
    }
    i32 lWidth = ReadProfileLong(wcSection, IndexedKey(wcKey, TEXT("CustomWidth"), nIndex), -1, tcPath);
    i32 lLength = ReadProfileLong(wcSection, IndexedKey(wcKey, TEXT("CustomLength"), nIndex), -1, tcPath);
    i32 lMetric = ReadProfileInt(wcSection, IndexedKey(wcKey, TEXT("CustomMetric"), nIndex), -1, tcPath);
    pRow->ulWidth = static_cast<u32>(lWidth);
    pRow->ulLength = static_cast<u32>(lLength);
    pRow->ulMetric = static_cast<u32>(lMetric);
    return lWidth != -1 && lLength != -1 && lMetric != -1;
}

} // namespace

i32 ReadCustomSizes(const WCHAR* tcPath, const XpiModel* pModel, OwnedBlock<PaperSizeRow>* outRows)
{
    i32 nRows = ReadProfileInt(wcSection, TEXT("NumCustomSizes"), -1, tcPath);
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
        if (!ReadRow(tcPath, i, pRows + i)) {
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
