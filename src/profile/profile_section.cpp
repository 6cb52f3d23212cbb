/* Indexes sections. The index is a table of hashed names with steps to the next free slot. A slot holds where the
   key's line begins and, above that, bits of the hash, so that hardly any other line is looked at. */
#include "profile/profile_section.h"

#include <cstring>

#include "profile/profile_lines.h"

namespace {

constexpr u32 LINE_BITS = 22; /* a position in the longest text */
static_assert(PROFILE_BYTES_LIMIT <= 1u << LINE_BITS);
constexpr u32 LINE_MASK = (1u << LINE_BITS) - 1;
constexpr u32 FREE_SLOT = 0, USED_SLOT = 1u << 31;
constexpr u32 FEWEST_SLOTS = 64, MOST_SLOTS = 2 * SECTION_KEYS_LIMIT;
constexpr u32 CHARS_TO_A_SLOT = 8; /* so that honest lines fill half of the slots at most */
constexpr u32 MOST_STEPS = 256;
constexpr int DIGITS = 12;

/* The two parts of a name that is looked for. */
struct Name {
    Span stem;
    Span digits;
};

u32 HashOn(u32 ulHash, Span span)
{
    for (u32 i = 0; i < span.nLength; i++) {
        /* Letters of either case fall together, and so may few others: the names themselves are compared. */
        ulHash = (ulHash ^ (span.pText[i] & 0xFFDFu)) * 0x01000193;
    }
    return ulHash;
}

u32 HashOf(const Name& name)
{
    u32 ulHash = HashOn(HashOn(0x811C9DC5, name.stem), name.digits);
    ulHash = (ulHash ^ ulHash >> 15) * 0x2C1B3C6D;
    return ulHash ^ ulHash >> 13;
}

u32 SlotOf(u32 nLine, u32 ulHash)
{
    return nLine | (ulHash & ~LINE_MASK) | USED_SLOT;
}

/* The key of the line that begins at nLine; pValue as in SplitLine. */
Span KeyAt(const ProfileSection& section, u32 nLine, Span* pValue)
{
    Span key;
    SplitLine(TakeLine({section.pText, section.nLength}, &nLine), &key, pValue);
    return key;
}

int IsKey(Span key, const Name& name)
{
    return key.nLength == name.stem.nLength + name.digits.nLength &&
           IsSameName({key.pText, name.stem.nLength}, name.stem) &&
           IsSameName({key.pText + name.stem.nLength, name.digits.nLength}, name.digits);
}

/* The slot that holds the name or is free for it; null when too many steps lead to it. */
u32* FindSlot(const ProfileSection& section, const Name& name, Span* pValue)
{
    u32 ulHash = HashOf(name);
    for (u32 nStep = 0; nStep < MOST_STEPS; nStep++) {
        u32* pSlot = section.pSlots.get() + ((ulHash + nStep) & (section.nSlots - 1));
        if (*pSlot == FREE_SLOT) {
            return pSlot;
        }
        u32 nLine = *pSlot & LINE_MASK;
        if (*pSlot == SlotOf(nLine, ulHash) && IsKey(KeyAt(section, nLine, pValue), name)) {
            return pSlot;
        }
    }
    return nullptr;
}

int MakeSlots(ProfileSection* pSection, u32 nSlots)
{
    pSection->pSlots.reset(static_cast<u32*>(AllocateRows(nSlots, sizeof(u32))));
    pSection->nSlots = nSlots;
    pSection->bShort |= !pSection->pSlots;
    return !pSection->bShort;
}

/* Doubles the table. */
int Grow(ProfileSection* pSection)
{
    OwnedBlock<u32> pOld = std::move(pSection->pSlots);
    u32 nOld = pSection->nSlots;
    if (!MakeSlots(pSection, 2 * nOld)) {
        return 0;
    }
    for (u32 i = 0; i < nOld; i++) {
        u32 ulSlot = pOld.get()[i];
        Span value;
        if (ulSlot != FREE_SLOT) {
            u32* pSlot = FindSlot(*pSection, {KeyAt(*pSection, ulSlot & LINE_MASK, &value), {}}, &value);
            if (pSlot) {
                *pSlot = ulSlot;
            }
        }
    }
    return 1;
}

/* Puts the keys into the table, up to the next section. */
void Index(ProfileSection* pSection)
{
    Span text = {pSection->pText, pSection->nLength};
    u32 nNext = pSection->nBody;
    for (u32 nAt = nNext; nAt < text.nLength; nAt = nNext) {
        Span line = TakeLine(text, &nNext), key, value;
        if (IsRemark(line)) {
            continue;
        }
        if (IsHeader(line, &key)) {
            return;
        }
        SplitLine(line, &key, &value);
        Name name = {key, {}};
        u32* pSlot = FindSlot(*pSection, name, &value);
        if (!pSlot || (*pSlot == FREE_SLOT && pSection->nKeys == SECTION_KEYS_LIMIT)) {
            return;
        }
        if (*pSlot == FREE_SLOT) {
            *pSlot = SlotOf(nAt, HashOf(name));
            pSection->nKeys++;
            if (pSection->nKeys * 2 > pSection->nSlots && !Grow(pSection)) {
                return;
            }
        }
    }
}

/* The digits of a number, none of a negative one, at the end of wcDigits. */
Span DigitsOf(i32 nIndex, WCHAR (&wcDigits)[DIGITS])
{
    int nAt = DIGITS;
    for (u32 ulRest = nIndex < 0 ? 0 : static_cast<u32>(nIndex); nIndex >= 0; ulRest /= 10) {
        wcDigits[--nAt] = static_cast<WCHAR>('0' + ulRest % 10);
        if (ulRest < 10) {
            break;
        }
    }
    return {wcDigits + nAt, static_cast<u32>(DIGITS - nAt)};
}

} // namespace

ProfileSection OpenSection(const ProfileFile& file, const WCHAR* wcSection)
{
    Span text = TextOf(file);
    ProfileSection section = {};
    section.pText = text.pText;
    section.nLength = text.nLength;
    section.nBody = FindSectionBody(text, TrimSpan(SpanOf(wcSection)), nullptr);
    section.bShort = file.state == PROFILE_NO_MEMORY;
    u32 nWanted = (text.nLength - section.nBody) / CHARS_TO_A_SLOT, nSlots = FEWEST_SLOTS;
    while (nSlots < nWanted && nSlots < MOST_SLOTS) {
        nSlots *= 2;
    }
    if (section.nBody < text.nLength && MakeSlots(&section, nSlots)) {
        Index(&section);
    }
    if (section.bShort) {
        section.pSlots.reset();
    }
    return section;
}

int FindValue(const ProfileSection& section, const ProfileKey& key, const WCHAR** ppText, u32* pnLength)
{
    WCHAR wcDigits[DIGITS];
    Span value = {nullptr, 0};
    if (!section.pSlots) {
        return 0;
    }
    u32* pSlot = FindSlot(section, {TrimSpan(SpanOf(key.wcStem)), DigitsOf(key.nIndex, wcDigits)}, &value);
    if (!pSlot || *pSlot == FREE_SLOT || !value.pText) {
        return 0;
    }
    *ppText = value.pText;
    *pnLength = value.nLength;
    return 1;
}

u32 ListProfileKeys(const ProfileSection& section, WCHAR* wcOut, u32 cch)
{
    Span text = {section.pText, section.nLength}, key, value;
    u32 nUsed = 0;
    for (u32 nAt = section.nBody; nAt < text.nLength;) {
        Span line = TakeLine(text, &nAt);
        if (IsRemark(line)) {
            continue;
        }
        if (IsHeader(line, &key)) {
            break;
        }
        SplitLine(line, &key, &value);
        if (value.pText && key.nLength && !AddListName(key, wcOut, cch, &nUsed)) {
            break;
        }
    }
    wcOut[nUsed] = wcOut[nUsed + 1] = 0;
    return nUsed;
}
