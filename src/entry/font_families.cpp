/* Lists the font families of a device context in two rounds: the first counts, the second stores. */
#include "entry/font_families.h"

#include "base/wide.h"

namespace {

constexpr i16 FAMILY_LIMIT = 0x7FFF;

int IsTaken(DWORD dwType)
{
    return (dwType & (TRUETYPE_FONTTYPE | DEVICE_FONTTYPE)) != 0;
}

FontFamilyList* ListOf(LPARAM lParam)
{
    return reinterpret_cast<FontFamilyList*>(lParam);
}

int CALLBACK CountFamily(const LOGFONTW*, const TEXTMETRICW*, DWORD dwType, LPARAM lParam)
{
    FontFamilyList* pList = ListOf(lParam);
    if (IsTaken(dwType)) {
        pList->sCapacity++;
    }
    return pList->sCapacity < FAMILY_LIMIT;
}

int CALLBACK StoreFamily(const LOGFONTW* pFont, const TEXTMETRICW*, DWORD dwType, LPARAM lParam)
{
    FontFamilyList* pList = ListOf(lParam);
    WCHAR wcName[LF_FACESIZE];
    int cch = BoundedLength(pFont->lfFaceName, LF_FACESIZE - 1);
    for (int i = 0; i < cch; i++) {
        wcName[i] = pFont->lfFaceName[i];
    }
    wcName[cch] = 0;
    if (!IsTaken(dwType) || FindFamily(*pList, wcName) != NO_FAMILY) {
        return 1;
    }
    if (pList->sCount == pList->sCapacity) {
        return 0;
    }
    CopyWide(pList->pNext, LF_FACESIZE, wcName);
    AddIndexedText(&pList->rIndex, pList->pNext, pList->sCount);
    pList->pNext += cch + 1;
    pList->pKinds.get()[pList->sCount] = dwType & TRUETYPE_FONTTYPE ? FAMILY_TRUETYPE : FAMILY_DEVICE;
    pList->pCharSets.get()[pList->sCount] = pFont->lfCharSet;
    pList->sCount++;
    return 1;
}

} // namespace

int BuildFontFamilyList(HDC hDc, FontFamilyList* pList)
{
    *pList = {};
    EnumFontFamiliesW(hDc, nullptr, CountFamily, reinterpret_cast<LPARAM>(pList));
    if (!pList->sCapacity) {
        return 1;
    }
    u64 nRoom = static_cast<u64>(pList->sCapacity);
    pList->pNames.reset(static_cast<WCHAR*>(AllocateRows(nRoom, LF_FACESIZE * sizeof(WCHAR))));
    pList->pKinds.reset(static_cast<u32*>(AllocateRows(nRoom, sizeof(u32))));
    pList->pCharSets.reset(static_cast<u16*>(AllocateRows(nRoom, sizeof(u16))));
    if (!PrepareTextIndex(&pList->rIndex, static_cast<u32>(nRoom)) || !pList->pNames || !pList->pKinds ||
        !pList->pCharSets) {
        *pList = {};
        return 0;
    }
    pList->pNext = pList->pNames.get();
    EnumFontFamiliesW(hDc, nullptr, StoreFamily, reinterpret_cast<LPARAM>(pList));
    return 1;
}

i32 FindFamily(const FontFamilyList& list, const WCHAR* wcName)
{
    i32 lFamily = FindIndexedText(list.rIndex, wcName);
    return lFamily == NOT_INDEXED ? NO_FAMILY : list.pCharSets.get()[lFamily];
}
