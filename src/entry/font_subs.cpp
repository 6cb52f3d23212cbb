/* Builds the list of font substitutions. */
#include "entry/font_subs.h"

#include "description/xpi_text.h"
#include "entry/font_families.h"
#include "settingsfile/font_substitutions.h"

namespace {

constexpr int FONT_CHARS = 64; /* a font's name of the model with its NUL */

struct ContextDeleter {
    using pointer = HDC;
    void operator()(HDC hDc) const { DeleteDC(hDc); }
};
using OwnedContext = std::unique_ptr<void, ContextDeleter>;

/* The list while it grows; without a buffer it only counts. */
struct PairList {
    WCHAR* pText;
    u32 cchUsed, cchRoom;
};

int HasScreenFont(const PairList& list, const WCHAR* wcScreen)
{
    for (u32 nAt = 0; nAt < list.cchUsed;) {
        if (SameWide(list.pText + nAt, wcScreen)) {
            return 1;
        }
        nAt += static_cast<u32>(WideLength(list.pText + nAt)) + 1;
        nAt += static_cast<u32>(WideLength(list.pText + nAt)) + 1;
    }
    return 0;
}

void AddPair(PairList* pList, const WCHAR* wcScreen, const WCHAR* wcDevice)
{
    u32 cchScreen = static_cast<u32>(WideLength(wcScreen)) + 1;
    u32 cchDevice = static_cast<u32>(WideLength(wcDevice)) + 1;
    if (pList->pText) {
        if (cchScreen + cchDevice > pList->cchRoom - pList->cchUsed || HasScreenFont(*pList, wcScreen)) {
            return;
        }
        CopyWide(pList->pText + pList->cchUsed, static_cast<int>(cchScreen), wcScreen);
        CopyWide(pList->pText + pList->cchUsed + cchScreen, static_cast<int>(cchDevice), wcDevice);
    }
    pList->cchUsed += cchScreen + cchDevice;
}

/* Takes the next text of the model's list; 0 at its end. */
int TakeFont(const XpiModel* pModel, const char** pcAt, WCHAR (&wcFont)[FONT_CHARS])
{
    const char* cText = BodyText(pModel, *pcAt);
    u32 cb = 0;
    while (cText[cb]) {
        cb++;
    }
    WidenText(cText, cb, wcFont, FONT_CHARS);
    *pcAt = cText + cb + 1;
    return cb != 0;
}

void AddPairs(PairList* pList, const XpiModel* pModel, const FontFamilyList& families)
{
    WCHAR wcScreen[FONT_CHARS], wcDevice[FONT_CHARS];
    const char* cAt = pModel->pFontSubs;
    while (TakeFont(pModel, &cAt, wcScreen)) {
        TakeFont(pModel, &cAt, wcDevice);
        if (FindFamily(families, wcScreen) == NO_FAMILY) {
            continue;
        }
        AddPair(pList, wcScreen, wcDevice);
        if (const WCHAR* wcScript = FindWide(wcScreen, TEXT(" ("))) {
            wcScreen[wcScript - wcScreen] = 0;
            AddPair(pList, wcScreen, wcDevice);
        }
    }
}

} // namespace

u32 BuildFontSubs(PrinterCall& call, const XpiModel* pModel, int bUseIni, OwnedBlock<WCHAR>* outBlock)
{
    outBlock->reset();
    if (bUseIni) {
        u16 cb = ReadFontSubstitutions(GetDriverIni(call), outBlock);
        if (cb != NO_FONT_SUBSTITUTIONS) {
            return cb;
        }
    }
    FontFamilyList families = {};
    OwnedContext hDc(pModel ? CreateDCW(TEXT("DISPLAY"), nullptr, nullptr, nullptr) : nullptr);
    if (!hDc || !BuildFontFamilyList(hDc.get(), &families)) {
        return 0;
    }
    hDc.reset();
    PairList counted = {};
    AddPairs(&counted, pModel, families);
    u32 cch = counted.cchUsed + 1;
    outBlock->reset(static_cast<WCHAR*>(AllocateRows(cch, sizeof(WCHAR))));
    if (!*outBlock) {
        return 0;
    }
    PairList filled = {outBlock->get(), 0, counted.cchUsed};
    AddPairs(&filled, pModel, families);
    return cch * static_cast<u32>(sizeof(WCHAR));
}
