/* Reads the styles and blocks of the exception region. The region is worked on in a copy; every record of it is
   measured before the first of its bytes is written. */
#include <cstring>

#include "base/format.h"
#include "profile/profile_values.h"
#include "settingsfile/settings_keys.h"

namespace {

/* The region up to STYLES_END, and the section that fills it. */
struct StyleReader {
    const ProfileSection& section;
    u16 usLanguage;
    u8 abRegion[STYLES_END];
};

i32 ReadIndexed(const StyleReader& reader, const WCHAR* wcStem, int nIndex, KeyForm form, i32 lDefault)
{
    ProfileKey key(wcStem, nIndex);
    return form == KEY_LONG ? ReadProfileLong(reader.section, key, lDefault)
                            : ReadProfileInt(reader.section, key, lDefault);
}

/* One of the two bytes that open a style's or a block's body. */
u8 ReadByte(const StyleReader& reader, const WCHAR* wcStem, int nIndex, int nAt)
{
    return static_cast<u8>(ReadIndexed(reader, wcStem, nIndex, KEY_INT, reader.abRegion[nAt]));
}

/* Reads the name of a style into PATH_CHARS characters; its default is what stands at nAt of the region now.
   Result: its length, at most nLimit. */
int ReadName(const StyleReader& reader, const WCHAR* wcStem, int nIndex, int nAt, int nLimit, WCHAR* wcOut)
{
    nAt = nAt < STYLES_END ? nAt : STYLES_END;
    int nThere = (STYLES_END - nAt) / static_cast<int>(sizeof(WCHAR));
    nThere = nThere < PATH_CHARS ? nThere : PATH_CHARS - 1;
    std::memcpy(wcOut, reader.abRegion + nAt, static_cast<size_t>(nThere) * sizeof(WCHAR));
    wcOut[nThere] = 0;
    ReadProfileText(reader.section, {wcStem, nIndex}, wcOut, PATH_CHARS);
    int nChars = WideLength(wcOut);
    nChars = nChars < nLimit ? nChars : nLimit;
    wcOut[nChars] = 0;
    return nChars;
}

/* Reads style nIndex to nAt of the region. Result: its size; 0 when it does not fit, with nothing written. */
int ReadStyle(StyleReader* pReader, int nIndex, int nAt)
{
    if (nAt + STYLE_BODY_AT > STYLES_END) {
        return 0;
    }
    u8 bType = ReadByte(*pReader, TEXT("StyleType"), nIndex, nAt + 2);
    u8 bUsage = ReadByte(*pReader, TEXT("StyleUsage"), nIndex, nAt + 3);
    WCHAR wcName[PATH_CHARS];
    const WCHAR* wcStem;
    int nNameAt = StyleNameAt(bType, pReader->usLanguage, &wcStem);
    int nChars = 0;
    if (nNameAt) {
        int nLimit = bType == 5 ? OVERLAY_NAME_CHARS : PATH_CHARS - 1;
        nChars = ReadName(*pReader, wcStem, nIndex, nAt + nNameAt, nLimit, wcName);
    }
    int cbStyle = StyleSize(bType, pReader->usLanguage, nChars);
    if (nAt + cbStyle > STYLES_END) {
        return 0;
    }
    u8* pStyle = pReader->abRegion + nAt;
    StoreNumber(pStyle, 2, cbStyle);
    pStyle[2] = bType;
    pStyle[3] = bUsage;
    for (const StyleKey& key : aStyleKeys) {
        if (bType < 8 && key.bTypes & 1 << bType && key.bKindsRead & KindOf(pReader->usLanguage)) {
            i32 lDefault = LoadNumber(pStyle + key.bOffset, key.bWidth, key.bSigned);
            StoreNumber(pStyle + key.bOffset, key.bWidth,
                        ReadIndexed(*pReader, key.wcStem, nIndex, key.form, lDefault));
        }
    }
    if (nNameAt) {
        std::memcpy(pStyle + nNameAt, wcName, static_cast<size_t>(nChars + 1) * sizeof(WCHAR));
    }
    return cbStyle;
}

/* The same for block nIndex. */
int ReadBlock(StyleReader* pReader, int nIndex, int nAt)
{
    if (nAt + BLOCK_BODY_AT > STYLES_END) {
        return 0;
    }
    u8 bStyle = ReadByte(*pReader, TEXT("BlockStyleIndex"), nIndex, nAt);
    u8 nPages = ReadByte(*pReader, TEXT("BlockPageCount"), nIndex, nAt + 1);
    int cbBlock = BLOCK_BODY_AT + nPages * static_cast<int>(sizeof(u16));
    if (nAt + cbBlock > STYLES_END) {
        return 0;
    }
    u8* pBlock = pReader->abRegion + nAt;
    pBlock[0] = bStyle;
    pBlock[1] = nPages;
    for (int nPage = 0; nPage < nPages; nPage++) {
        WCHAR wcKey[TEXT_CHARS];
        u8* pPage = pBlock + BLOCK_BODY_AT + nPage * static_cast<int>(sizeof(u16));
        FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d-%d"), TEXT("BlockPage"), nIndex, nPage);
        StoreNumber(pPage, 2, ReadProfileInt(pReader->section, wcKey, LoadNumber(pPage, 2, 0)));
    }
    return cbBlock;
}

/* Reads up to nCount records from *pnAt on and moves *pnAt behind them. Result: records read. */
u8 ReadList(StyleReader* pReader, int (*fnRead)(StyleReader*, int, int), int nCount, int* pnAt)
{
    int nRead = 0;
    for (; nRead < nCount; nRead++) {
        int cb = fnRead(pReader, nRead, *pnAt);
        if (!cb) {
            break;
        }
        *pnAt += cb;
    }
    return static_cast<u8>(nRead);
}

} // namespace

void ReadStyles(const ProfileSection& section, DriverDevmode* pRecord, u16 usLanguage)
{
    StyleReader reader = {section, usLanguage, {}};
    std::memcpy(reader.abRegion, pRecord->rPrivate.bExceptionRegion, STYLES_END);
    u8 nStyles = static_cast<u8>(ReadProfileInt(section, TEXT("StyleCount"), pRecord->rPrivate.bStyleCount));
    u8 nBlocks = static_cast<u8>(ReadProfileInt(section, TEXT("BlockCount"), pRecord->rPrivate.bBlockCount));
    int nAt = STYLES_AT;
    reader.abRegion[0] = ReadList(&reader, ReadStyle, nStyles, &nAt);
    reader.abRegion[1] = ReadList(&reader, ReadBlock, nBlocks, &nAt);
    std::memcpy(pRecord->rPrivate.bExceptionRegion, reader.abRegion, STYLES_END);
}
