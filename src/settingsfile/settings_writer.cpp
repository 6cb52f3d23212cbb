/* Writes the section "PrinterSettings": the guard key, the runs of the table, and the keys between them. */
#include "settingsfile/settings_writer.h"

#include <cstring>

#include "base/format.h"
#include "profile/section_file.h"
#include "settingsfile/settings_keys.h"

namespace {

constexpr int LONGEST_TEXT = 96; /* characters of the widest text field */
constexpr int STYLE_NAME_LIMIT = PATH_CHARS - 1;

void WriteNumber(SectionLines* pLines, const WCHAR* wcKey, KeyForm form, i32 lValue)
{
    switch (form) {
    case KEY_LONG: WriteProfileLong(pLines, wcKey, lValue); break;
    case KEY_HEX: WriteProfileHex(pLines, wcKey, static_cast<u32>(lValue)); break;
    default: WriteProfileDecimal(pLines, wcKey, lValue); break;
    }
}

void WriteIndexed(SectionLines* pLines, const WCHAR* wcStem, int nIndex, KeyForm form, i32 lValue)
{
    WCHAR wcKey[TEXT_CHARS];
    FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), wcStem, nIndex);
    WriteNumber(pLines, wcKey, form, lValue);
}

/* "Collate" stands in the table for two fields. The file has it once, where the first of them stands, and it
   holds the second. */
constexpr u16 FIRST_COLLATE_AT = offsetof(DriverDevmode, dmCollate);
constexpr u16 SECOND_COLLATE_AT = offsetof(DriverDevmode, rPrivate) + offsetof(PrivateDevmode, sCollate);

void WriteText(SectionLines* pLines, const DriverDevmode* pRecord, const SettingKey& key)
{
    WCHAR wcText[LONGEST_TEXT]; /* the field lies at no address in particular */
    std::memcpy(wcText, reinterpret_cast<const u8*>(pRecord) + key.usOffset,
                size_t{key.bCount} * sizeof(WCHAR));
    WriteProfileText(pLines, key.wcKey, wcText, key.bCount);
}

void WriteRun(SectionLines* pLines, const DriverDevmode* pRecord, u16 usLanguage, KeyRun run)
{
    for (int nKey = 0; nKey < aKeyRuns[run].nKeys; nKey++) {
        const SettingKey& key = aKeyRuns[run].pKeys[nKey];
        if (!(key.bKindsWritten & KindOf(usLanguage)) || key.usOffset == SECOND_COLLATE_AT) {
            continue;
        }
        if (key.usOffset == FIRST_COLLATE_AT) {
            WriteProfileDecimal(pLines, key.wcKey, pRecord->rPrivate.sCollate);
        } else if (key.form == KEY_TEXT) {
            WriteText(pLines, pRecord, key);
        } else if (key.bCount == 1) {
            WriteNumber(pLines, key.wcKey, key.form, GetKeyNumber(pRecord, key, 0));
        } else {
            for (int i = 0; i < key.bCount; i++) {
                WriteIndexed(pLines, key.wcKey, i, key.form, GetKeyNumber(pRecord, key, i));
            }
        }
    }
}

/* The stems of a run of one count, in turn. */
void WriteInTurn(SectionLines* pLines, const DriverDevmode* pRecord, KeyRun run)
{
    const KeyRows& rows = aKeyRuns[run];
    for (int i = 0; i < rows.pKeys[0].bCount; i++) {
        for (int nKey = 0; nKey < rows.nKeys; nKey++) {
            const SettingKey& key = rows.pKeys[nKey];
            WriteIndexed(pLines, key.wcKey, i, key.form, GetKeyNumber(pRecord, key, i));
        }
    }
}

/* Name of the style at pStyle into PATH_CHARS characters, as far as the style and the region reach. */
void CopyStyleName(const u8* pStyle, int cbStyle, int nNameAt, int nLeft, WCHAR* wcOut)
{
    int nEnd = cbStyle > nNameAt ? cbStyle : nLeft;
    int nChars = (nEnd - nNameAt) / static_cast<int>(sizeof(WCHAR));
    nChars = nChars < STYLE_NAME_LIMIT ? nChars : STYLE_NAME_LIMIT;
    std::memcpy(wcOut, pStyle + nNameAt, static_cast<size_t>(nChars) * sizeof(WCHAR));
    wcOut[nChars] = 0;
}

/* Writes style nIndex at nAt of the region. Result: the bytes to step on; -1 when it does not lie in the region
   whole, with nothing written. A null pLines only measures. */
int WriteStyle(SectionLines* pLines, const u8* pRegion, int nIndex, int nAt, u16 usLanguage)
{
    int nLeft = STYLES_END - nAt;
    if (nLeft < STYLE_BODY_AT) {
        return -1;
    }
    const u8* pStyle = pRegion + nAt;
    int cbStyle = LoadNumber(pStyle, 2, 0);
    u8 bType = pStyle[2];
    const WCHAR* wcStem;
    int nNameAt = StyleNameAt(bType, usLanguage, &wcStem);
    if (cbStyle > nLeft || StyleSize(bType, usLanguage, 0) > nLeft) {
        return -1;
    }
    if (!pLines) {
        return cbStyle;
    }
    WriteIndexed(pLines, TEXT("StyleType"), nIndex, KEY_INT, bType);
    WriteIndexed(pLines, TEXT("StyleUsage"), nIndex, KEY_INT, pStyle[3]);
    for (const StyleKey& key : aStyleKeys) {
        if (bType < 8 && key.bTypes & 1 << bType && key.bKindsWritten & KindOf(usLanguage)) {
            WriteIndexed(pLines, key.wcStem, nIndex, key.form,
                         LoadNumber(pStyle + key.bOffset, key.bWidth, key.bSigned));
        }
    }
    if (nNameAt) {
        WCHAR wcKey[TEXT_CHARS], wcName[PATH_CHARS];
        CopyStyleName(pStyle, cbStyle, nNameAt, nLeft, wcName);
        FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), wcStem, nIndex);
        WriteProfileText(pLines, wcKey, wcName, PATH_CHARS);
    }
    return cbStyle;
}

/* The same for block nIndex. */
int WriteBlock(SectionLines* pLines, const u8* pRegion, int nIndex, int nAt, u16)
{
    constexpr int PAGE_BYTES = 2;
    int nLeft = STYLES_END - nAt;
    if (nLeft < BLOCK_BODY_AT) {
        return -1;
    }
    const u8* pBlock = pRegion + nAt;
    int nPages = pBlock[1];
    int cbBlock = BLOCK_BODY_AT + nPages * PAGE_BYTES;
    if (cbBlock > nLeft) {
        return -1;
    }
    if (!pLines) {
        return cbBlock;
    }
    WriteIndexed(pLines, TEXT("BlockStyleIndex"), nIndex, KEY_INT, pBlock[0]);
    WriteIndexed(pLines, TEXT("BlockPageCount"), nIndex, KEY_INT, nPages);
    for (int nPage = 0; nPage < nPages; nPage++) {
        WCHAR wcKey[TEXT_CHARS];
        FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d-%d"), TEXT("BlockPage"), nIndex, nPage);
        WriteProfileDecimal(pLines, wcKey, LoadNumber(pBlock + BLOCK_BODY_AT + nPage * PAGE_BYTES, 2, 0));
    }
    return cbBlock;
}

using RegionWriter = int (*)(SectionLines* pLines, const u8* pRegion, int nIndex, int nAt, u16 usLanguage);

/* Walks nCount records from *pnAt on and moves *pnAt behind them. Result: records that lie in the region. */
int WriteList(SectionLines* pLines, RegionWriter fnWrite, const u8* pRegion, int nCount, int* pnAt,
              u16 usLanguage)
{
    for (int i = 0; i < nCount; i++) {
        int cb = fnWrite(pLines, pRegion, i, *pnAt, usLanguage);
        if (cb < 0) {
            return i;
        }
        *pnAt += cb;
    }
    return nCount;
}

void WriteStyles(SectionLines* pLines, const DriverDevmode* pRecord, u16 usLanguage)
{
    u8 abRegion[STYLES_END];
    std::memcpy(abRegion, pRecord->rPrivate.bExceptionRegion, STYLES_END);
    int nAt = STYLES_AT;
    int nStyles = WriteList(nullptr, WriteStyle, abRegion, abRegion[0], &nAt, usLanguage);
    int nBlocks = WriteList(nullptr, WriteBlock, abRegion, abRegion[1], &nAt, usLanguage);
    WriteProfileDecimal(pLines, TEXT("StyleCount"), nStyles);
    WriteProfileDecimal(pLines, TEXT("BlockCount"), nBlocks);
    nAt = STYLES_AT;
    WriteList(pLines, WriteStyle, abRegion, nStyles, &nAt, usLanguage);
    WriteList(pLines, WriteBlock, abRegion, nBlocks, &nAt, usLanguage);
}

void WriteGuard(SectionLines* pLines, const DriverDevmode* pRecord)
{
    WCHAR tcXpiName[sizeof pRecord->rPrivate.tcXPIName / sizeof(WCHAR) + 1] = {};
    std::memcpy(tcXpiName, pRecord->rPrivate.tcXPIName, sizeof pRecord->rPrivate.tcXPIName);
    WriteProfileText(pLines, TEXT("XPI"), BehindLast(tcXpiName, '\\'), PATH_CHARS);
}

} // namespace

int WritePrinterSettings(const WCHAR* tcPath, const DriverDevmode* pRecord, u16 usLanguage)
{
    SectionLines lines = {};
    auto Write = [&](KeyRun run) { WriteRun(&lines, pRecord, usLanguage, run); };
    const PrivateDevmode* pPrivate = &pRecord->rPrivate;
    int bText = (pPrivate->ulWMType & WM_TEXT) != 0;
    int bStyles = KindOf(usLanguage) == ON_3;

    WriteGuard(&lines, pRecord);
    Write(RUN_PAGE);
    WriteProfileHex(&lines, TEXT("WMType"), pPrivate->ulWMType);
    Write(RUN_WATERMARK);
    if (bText) {
        Write(RUN_TEXT_WATERMARK);
    } else {
        Write(RUN_PLACEMENT);
        Write(RUN_FILE_WATERMARK);
    }
    Write(RUN_COVERS);
    Write(RUN_MARGIN_MODE);
    WriteProfileDecimal(&lines, TEXT("ColorMode"), 0);
    Write(RUN_MEDIA);
    Write(RUN_MARGINS);
    Write(RUN_OUTPUT);
    if (!bStyles) {
        WriteProfileDecimal(&lines, TEXT("InsertPageOffset"), pPrivate->sInsertPageOffset < 0 ? -1 : 1);
    }
    Write(RUN_INSERT);
    WriteInTurn(&lines, pRecord, RUN_COLOR_COMMANDS);
    Write(RUN_CHOICES);
    if (bStyles) {
        WriteStyles(&lines, pRecord, usLanguage);
    }
    Write(RUN_TAIL);
    return ReplaceSection(tcPath, SETTINGS_SECTION, lines);
}
