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

constexpr u32 HASH_START = 0;

/* The two parts of a name that is looked for, and the hash of both. */
struct Name {
    TextSpan stem;
    TextSpan digits;
    u32 ulHash;
};

/* Letters of either case fall together, and so may few other characters: the names themselves are compared. Four
   digits behind one stem never do. */
inline u32 HashOn(u32 ulHash, WCHAR wcChar)
{
    return (ulHash << 7 | ulHash >> 25) ^ (wcChar & 0xFFDFu);
}

u32 HashOn(u32 ulHash, TextSpan span)
{
    for (u32 i = 0; i < span.nLength; i++) {
        ulHash = HashOn(ulHash, span.pText[i]);
    }
    return ulHash;
}

u32 EndHash(u32 ulHash)
{
    ulHash *= 0x9E3779B1;
    return ulHash ^ ulHash >> 15;
}

Name NameOf(TextSpan stem, TextSpan digits)
{
    return {stem, digits, EndHash(HashOn(HashOn(HASH_START, stem), digits))};
}

u32 SlotOf(u32 nLine, u32 ulHash)
{
    return nLine | (ulHash & ~LINE_MASK) | USED_SLOT;
}

TextSpan TextOf(const ProfileSection& section)
{
    return {section.pText, section.nLength};
}

int IsSame(const WCHAR* pText, const Name& name)
{
    return IsSameName({pText, name.stem.nLength}, name.stem) &&
           IsSameName({pText + name.stem.nLength, name.digits.nLength}, name.digits);
}

/* 1 when the line at nLine has the key, with its value as in SplitLine. */
int IsKeyAt(const ProfileSection& section, u32 nLine, const Name& name, TextSpan* pValue)
{
    TextSpan text = TextOf(section), key;
    u32 nName = name.stem.nLength + name.digits.nLength;
    if (nName < text.nLength - nLine && text.pText[nLine + nName] == '=' &&
        IsSame(text.pText + nLine, name)) {
        *pValue = ValueAt(text, nLine + nName + 1);
        return 1;
    }
    SplitLine(TakeLine(text, &nLine), &key, pValue);
    return key.nLength == nName && IsSame(key.pText, name);
}

/* The slot that holds the name or is free for it; null when too many steps lead to it. */
u32* FindSlot(const ProfileSection& section, const Name& name, TextSpan* pValue)
{
    for (u32 nStep = 0; nStep < MOST_STEPS; nStep++) {
        u32* pSlot = section.pSlots.get() + ((name.ulHash + nStep) & (section.nSlots - 1));
        if (*pSlot == FREE_SLOT) {
            return pSlot;
        }
        u32 nLine = *pSlot & LINE_MASK;
        if (*pSlot == SlotOf(nLine, name.ulHash) && IsKeyAt(section, nLine, name, pValue)) {
            return pSlot;
        }
    }
    return nullptr;
}

/* What the line at *pnAt has for the index, with *pnAt moved to the next line. */
enum LineKind : int { LINE_OF_KEY, LINE_OF_NONE, LINE_OF_NEXT_SECTION };

LineKind TakeKey(TextSpan text, u32* pnAt, Name* pName)
{
    /* Nearly all lines are "key=value" with nothing in front of the "=" that would need a second look. */
    u32 nFrom = *pnAt, n = nFrom, ulHash = HASH_START;
    for (; n < text.nLength && text.pText[n] > ' ' && text.pText[n] != '='; n++) {
        ulHash = HashOn(ulHash, text.pText[n]);
    }
    WCHAR wcFirst = text.pText[nFrom];
    if (n < text.nLength && text.pText[n] == '=' && wcFirst != ';' && wcFirst != '[') {
        *pName = {{text.pText + nFrom, n - nFrom}, {}, EndHash(ulHash)};
        *pnAt = FindNextLine(text, FindLineEnd(text, n));
        return LINE_OF_KEY;
    }
    TextSpan line = TakeLine(text, pnAt), key, value;
    if (IsRemark(line)) {
        return LINE_OF_NONE;
    }
    if (IsHeader(line, &key)) {
        return LINE_OF_NEXT_SECTION;
    }
    SplitLine(line, &key, &value);
    *pName = NameOf(key, {});
    return LINE_OF_KEY;
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
        u32 ulSlot = pOld.get()[i], nLine = ulSlot & LINE_MASK;
        Name name;
        TextSpan value;
        if (ulSlot != FREE_SLOT && TakeKey(TextOf(*pSection), &nLine, &name) == LINE_OF_KEY) {
            u32* pSlot = FindSlot(*pSection, name, &value);
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
    TextSpan text = TextOf(*pSection), value;
    Name name;
    u32 nNext = pSection->nBody;
    for (u32 nAt = nNext; nAt < text.nLength; nAt = nNext) {
        LineKind kind = TakeKey(text, &nNext, &name);
        if (kind == LINE_OF_NEXT_SECTION) {
            return;
        }
        if (kind == LINE_OF_NONE) {
            continue;
        }
        u32* pSlot = FindSlot(*pSection, name, &value);
        if (!pSlot || (*pSlot == FREE_SLOT && pSection->nKeys == SECTION_KEYS_LIMIT)) {
            return;
        }
        if (*pSlot == FREE_SLOT) {
            *pSlot = SlotOf(nAt, name.ulHash);
            pSection->nKeys++;
            if (pSection->nKeys * 2 > pSection->nSlots && !Grow(pSection)) {
                return;
            }
        }
    }
}

/* The digits of a number, none of a negative one, at the end of wcDigits. */
TextSpan DigitsOf(i32 nIndex, WCHAR (&wcDigits)[DIGITS])
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

/* The name that is asked for, its number in wcDigits. 0 for one that no key can have. */
int TakeName(const ProfileKey& key, WCHAR (&wcDigits)[DIGITS], Name* pName)
{
    TextSpan digits = DigitsOf(key.nIndex, wcDigits);
    u32 n = 0, ulHash = HASH_START;
    for (; key.wcStem[n] > ' ' && key.wcStem[n] != '='; n++) {
        ulHash = HashOn(ulHash, key.wcStem[n]);
    }
    if (!key.wcStem[n]) {
        *pName = {{key.wcStem, n}, digits, EndHash(HashOn(ulHash, digits))};
        return 1;
    }
    *pName = NameOf(TrimSpan(SpanOf(key.wcStem)), digits);
    return !FindWide(key.wcStem, TEXT("="));
}

} // namespace

ProfileSection OpenSection(const ProfileFile& file, const WCHAR* wcSection)
{
    TextSpan text = TextOf(file);
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
    TextSpan value = {nullptr, 0};
    Name name;
    if (!section.pSlots || !TakeName(key, wcDigits, &name)) {
        return 0;
    }
    u32* pSlot = FindSlot(section, name, &value);
    if (!pSlot || *pSlot == FREE_SLOT || !value.pText) {
        return 0;
    }
    *ppText = value.pText;
    *pnLength = value.nLength;
    return 1;
}

u32 ListProfileKeys(const ProfileSection& section, WCHAR* wcOut, u32 cch)
{
    TextSpan text = TextOf(section), key, value;
    u32 nUsed = 0;
    for (u32 nAt = section.nBody; nAt < text.nLength;) {
        TextSpan line = TakeLine(text, &nAt);
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
