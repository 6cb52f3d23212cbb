/* Reads the section of the font substitutions. */
#include "settingsfile/font_substitutions.h"

#include "base/format.h"
#include "settingsfile/profile_values.h"

namespace {

const WCHAR* const wcSection = TEXT("FontSubstitutions");

/* Reads one font's name to pAt, where there is room for nRoom characters. Result: characters with the NUL, 0
   when they do not fit. */
int ReadFont(const WCHAR* tcPath, const WCHAR* wcStem, int nIndex, WCHAR* pAt, int nRoom)
{
    WCHAR wcKey[TEXT_CHARS];
    WCHAR wcFont[TEXT_CHARS];
    FormatWide(wcKey, TEXT_CHARS, TEXT("%s%d"), wcStem, nIndex);
    ReadProfileText(wcSection, wcKey, TEXT(""), wcFont, TEXT_CHARS, tcPath);
    return CopyWideWhole(pAt, nRoom, wcFont) ? WideLength(wcFont) + 1 : 0;
}

} // namespace

u16 ReadFontSubstitutions(const WCHAR* tcPath, OwnedBlock<WCHAR>* outBlock)
{
    outBlock->reset();
    u16 cbTold = static_cast<u16>(ReadProfileInt(wcSection, TEXT("FontSubSize"), -1, tcPath));
    u16 nPairs = static_cast<u16>(ReadProfileInt(wcSection, TEXT("NumFontSubs"), -1, tcPath));
    if (cbTold == NO_FONT_SUBSTITUTIONS || nPairs == NO_FONT_SUBSTITUTIONS) {
        return NO_FONT_SUBSTITUTIONS;
    }
    OwnedBlock<WCHAR> pBlock(static_cast<WCHAR*>(AllocateRows(cbTold + 2u, sizeof(WCHAR))));
    if (!pBlock) {
        return NO_FONT_SUBSTITUTIONS;
    }
    int nUsed = 0;
    for (int i = 0; i < nPairs; i++) {
        int nSystem = ReadFont(tcPath, TEXT("FontSubSys"), i, pBlock.get() + nUsed, cbTold - nUsed);
        if (nSystem < 2) {
            return NO_FONT_SUBSTITUTIONS; /* empty, or no room */
        }
        nUsed += nSystem;
        int nPrinter = ReadFont(tcPath, TEXT("FontSubPrt"), i, pBlock.get() + nUsed, cbTold - nUsed);
        if (!nPrinter) {
            return NO_FONT_SUBSTITUTIONS;
        }
        nUsed += nPrinter;
    }
    *outBlock = std::move(pBlock);
    return cbTold;
}
