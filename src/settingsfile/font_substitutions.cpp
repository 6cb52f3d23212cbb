/* Reads the section of the font substitutions. */
#include "settingsfile/font_substitutions.h"

#include "profile/profile_values.h"

namespace {

const WCHAR* const wcSection = TEXT("FontSubstitutions");

/* Reads one font's name to pAt, where there is room for nRoom characters. Result: characters with the NUL, 0
   when they do not fit. */
int ReadFont(const ProfileSection& section, const ProfileKey& key, WCHAR* pAt, int nRoom)
{
    WCHAR wcFont[TEXT_CHARS] = {};
    ReadProfileText(section, key, wcFont, TEXT_CHARS);
    return CopyWideWhole(pAt, nRoom, wcFont) ? WideLength(wcFont) + 1 : 0;
}

} // namespace

u16 ReadFontSubstitutions(const ProfileFile& file, OwnedBlock<WCHAR>* outBlock)
{
    outBlock->reset();
    ProfileSection section = OpenSection(file, wcSection);
    u16 cbTold = static_cast<u16>(ReadProfileInt(section, TEXT("FontSubSize"), -1));
    u16 nPairs = static_cast<u16>(ReadProfileInt(section, TEXT("NumFontSubs"), -1));
    if (cbTold == NO_FONT_SUBSTITUTIONS || nPairs == NO_FONT_SUBSTITUTIONS) {
        return NO_FONT_SUBSTITUTIONS;
    }
    OwnedBlock<WCHAR> pBlock(static_cast<WCHAR*>(AllocateRows(cbTold + 2u, sizeof(WCHAR))));
    if (!pBlock) {
        return NO_FONT_SUBSTITUTIONS;
    }
    int nUsed = 0;
    for (int i = 0; i < nPairs; i++) {
        int nSystem = ReadFont(section, {TEXT("FontSubSys"), i}, pBlock.get() + nUsed, cbTold - nUsed);
        if (nSystem < 2) {
            return NO_FONT_SUBSTITUTIONS; /* empty, or no room */
        }
        nUsed += nSystem;
        int nPrinter = ReadFont(section, {TEXT("FontSubPrt"), i}, pBlock.get() + nUsed, cbTold - nUsed);
        if (!nPrinter) {
            return NO_FONT_SUBSTITUTIONS;
        }
        nUsed += nPrinter;
    }
    *outBlock = std::move(pBlock);
    return cbTold;
}
