/* Reads display texts, in bulk where a list is wanted. */
#include "description/xpi_text.h"

#include <cstring>

#include "platform/resources.h"
#include "platform/text.h"

namespace {

/* Scratch that a short list needs is on the stack, else a block. */
template <u32 nBytes> struct Scratch {
    u8 abStack[nBytes];
    OwnedBlock<u8> pBlock;

    u8* Get(u32 cb)
    {
        if (cb <= nBytes) {
            return abStack;
        }
        pBlock.reset(static_cast<u8*>(AllocateBlock(cb)));
        return pBlock.get();
    }
};

struct IdRange {
    i32 nLow, nHigh; /* of the ids from 1 up; none when nHigh is 0 */
};

IdRange FindIdRange(const i16* aIds, i32 nCount)
{
    IdRange range = {0x7FFF, 0};
    for (i32 i = 0; i < nCount; i++) {
        if (aIds[i] >= 1) {
            range.nLow = aIds[i] < range.nLow ? aIds[i] : range.nLow;
            range.nHigh = aIds[i] > range.nHigh ? aIds[i] : range.nHigh;
        }
    }
    return range;
}

/* Widens the ASCII characters in front of the first NUL or other byte, at most nMost. Result: how many. */
u32 WidenAscii(const char* cText, u32 nMost, WCHAR* wcOut)
{
    u32 nAt = 0;
    for (; nMost - nAt >= 8; nAt += 8) { /* eight at a time while none is a NUL or has the high bit */
        u64 ullBytes;
        std::memcpy(&ullBytes, cText + nAt, sizeof ullBytes);
        if (((ullBytes - 0x0101010101010101) | ullBytes) & 0x8080808080808080) {
            break;
        }
        for (u32 i = 0; i < 8; i++) {
            wcOut[nAt + i] = static_cast<WCHAR>(cText[nAt + i]);
        }
    }
    while (nAt < nMost && static_cast<u8>(cText[nAt]) - 1u < 0x7F) {
        wcOut[nAt] = static_cast<WCHAR>(cText[nAt]);
        nAt++;
    }
    return nAt;
}

u16 OffsetAt(const u8* pRows, i32 nRow)
{
    u16 usOffset;
    std::memcpy(&usOffset, pRows + 2 * nRow, sizeof usOffset);
    return usOffset;
}

} // namespace

void ReadLibraryString(HMODULE hLanguageDll, i32 nId, WCHAR* wcOut, int cch)
{
    if (cch < 1) {
        return;
    }
    /* A null module would read the texts of the program that we are loaded into. */
    wcOut[0] = 0;
    int nLength = hLanguageDll ? LoadStringW(hLanguageDll, static_cast<UINT>(nId), wcOut, cch) : 0;
    wcOut[nLength <= 0 ? 0 : nLength < cch ? nLength : cch - 1] = 0;
}

int NeedsLanguageDll(const i16* aIds, i32 nCount)
{
    for (i32 i = 0; i < nCount; i++) {
        if (aIds[i] < 0) {
            return 1;
        }
    }
    return 0;
}

void WidenText(const char* cText, u32 cbText, WCHAR* wcOut, int cchOut)
{
    u32 nRoom = static_cast<u32>(cchOut) - 1;
    /* ASCII is itself in every code page; a text that holds more is the system's to convert. */
    u32 nLength = WidenAscii(cText, cbText < nRoom ? cbText : nRoom, wcOut);
    wcOut[nLength] = 0;
    if (nLength == cbText || nLength == nRoom || !cText[nLength]) {
        return;
    }
    wcOut[0] = 0;
    while (nLength < cbText && nLength < nRoom && cText[nLength]) {
        nLength++;
    }
    if (nLength < cbText && cText[nLength]) {
        /* Cut: drop what is left of a character of several bytes, which none of our code pages makes longer
           than four. What is wrong in the text's middle stays the system's to mark. */
        for (u32 nDrop = 0; nDrop < 4 && nDrop < nLength; nDrop++) {
            int nOut = MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, cText,
                                           static_cast<int>(nLength - nDrop), wcOut, static_cast<int>(nRoom));
            if (nOut > 0) {
                wcOut[static_cast<u32>(nOut) < nRoom ? static_cast<u32>(nOut) : nRoom] = 0;
                return;
            }
        }
    }
    int nOut =
        MultiByteToWideChar(CP_ACP, 0, cText, static_cast<int>(nLength), wcOut, static_cast<int>(nRoom));
    wcOut[nOut < 0 ? 0 : static_cast<u32>(nOut) < nRoom ? static_cast<u32>(nOut) : nRoom] = 0;
}

void ReadXpiStrings(XpiFile& file, u16 usLanguage, HMODULE hLanguageDll, const i16* aIds, i32 nCount,
                    WCHAR* wcOut, int cchStride, int cch)
{
    if (cch < 1) {
        return;
    }
    for (i32 i = 0; i < nCount; i++) {
        WCHAR* wcRow = wcOut + static_cast<std::ptrdiff_t>(i) * cchStride;
        wcRow[0] = 0;
        if (aIds[i] < 1) {
            ReadLibraryString(hLanguageDll, -aIds[i], wcRow, cch);
        }
    }
    IdRange range = FindIdRange(aIds, nCount);
    if (!range.nHigh) {
        return;
    }

    const XpiHeader* pHeader = ReadXpiHeader(file);
    u16 usBase;
    u32 cbGot;
    if (!ReadXpiBytes(file, pHeader->dwStringBaseOffset + 2 * static_cast<u64>(usLanguage), &usBase,
                      sizeof usBase, &cbGot) ||
        cbGot < sizeof usBase) {
        return;
    }
    Scratch<256> rowScratch;
    u32 cbRows = 2 * static_cast<u32>(range.nHigh - range.nLow + 1);
    u8* pRows = rowScratch.Get(cbRows);
    u64 ullRow = static_cast<u64>(usBase) + static_cast<u64>(range.nLow);
    if (!pRows || !ReadXpiBytes(file, pHeader->dwStringIdOffset + 2 * ullRow, pRows, cbRows, &cbGot)) {
        return;
    }
    i32 nRows = static_cast<i32>(cbGot / 2);

    u32 ulLow = 0xFFFF, ulHigh = 0;
    for (i32 i = 0; i < nCount; i++) {
        if (aIds[i] >= 1 && aIds[i] - range.nLow < nRows) {
            u16 usOffset = OffsetAt(pRows, aIds[i] - range.nLow);
            ulLow = usOffset < ulLow ? usOffset : ulLow;
            ulHigh = usOffset > ulHigh ? usOffset : ulHigh;
        }
    }
    if (ulHigh < ulLow) {
        return;
    }
    Scratch<2048> textScratch;
    u32 cbText = ulHigh - ulLow + static_cast<u32>(cch);
    char* cTexts = reinterpret_cast<char*>(textScratch.Get(cbText));
    if (!cTexts ||
        !ReadXpiBytes(file, static_cast<u64>(pHeader->dwStringDataOffset) + ulLow, cTexts, cbText, &cbGot)) {
        return;
    }
    for (i32 i = 0; i < nCount; i++) {
        if (aIds[i] < 1 || aIds[i] - range.nLow >= nRows) {
            continue;
        }
        u32 ulAt = OffsetAt(pRows, aIds[i] - range.nLow) - ulLow;
        if (ulAt < cbGot) {
            u32 cbLeft = cbGot - ulAt;
            u32 cbOwn = cbLeft < static_cast<u32>(cch) ? cbLeft : static_cast<u32>(cch);
            WidenText(cTexts + ulAt, cbOwn, wcOut + static_cast<std::ptrdiff_t>(i) * cchStride, cch);
        }
    }
}

void ReadXpiString(XpiFile& file, u16 usLanguage, HMODULE hLanguageDll, i32 nId, WCHAR* wcOut, int cch)
{
    if (nId < 1) {
        ReadLibraryString(hLanguageDll, -nId, wcOut, cch);
        return;
    }
    i16 sId = static_cast<i16>(nId);
    ReadXpiStrings(file, usLanguage, hLanguageDll, &sId, 1, wcOut, cch, cch);
}
