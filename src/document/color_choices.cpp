#include "document/color_choices.h"

#include <cstring>

#include "settings/counted_row.h"

namespace {

constexpr i32 COMMAND_ROWS = 16; /* of ColorCommand: one for every slot of the four tables */
static_assert(OBJECT_CLASSES * CHOICE_SLOTS <= COMMAND_ROWS &&
              COMMAND_ROWS * sizeof(ColorCommandRow) == sizeof(PrivateDevmode::ColorCommand));
constexpr u16 NO_PAIRS = 0xFFFF; /* general options have neither header nor body */

/* Where the record keeps what belongs to a class of objects, in the order of ColorObjects, which is that of every walk.
   In the record the choices of graphics lie before those of images. */
struct ObjectClass {
    u16 usFlag;    /* of sColorCmdLength */
    u16 usChoices; /* four i16 */
    u16 usHeader;  /* i16 offset, i16 length */
    u16 usBody;    /* the same */
};
#define AT(field) static_cast<u16>(offsetof(PrivateDevmode, field))
constexpr ObjectClass aClasses[OBJECT_CLASSES] = {
    {COMMAND_TEXT, AT(sTextOption), AT(sTextHdrOffset), AT(sTextOffset)},
    {COMMAND_IMAGE, AT(sImageOption), AT(sImageHdrOffset), AT(sImageOffset)},
    {COMMAND_GRAPHICS, AT(sGraphicsOption), AT(sGraphicsHdrOffset), AT(sGraphicsOffset)},
    {0, AT(sGeneralOption), NO_PAIRS, NO_PAIRS},
};
#undef AT

void StorePair(PrivateDevmode* pPrivate, u16 usAt, u16 usOffset, u16 usLength)
{
    u16 ausPair[2] = {usOffset, usLength};
    std::memcpy(reinterpret_cast<u8*>(pPrivate) + usAt, ausPair, sizeof ausPair);
}

/* All choices of a record lie in a row. */
constexpr size_t CHOICES_AT = offsetof(PrivateDevmode, sTextOption);
static_assert(offsetof(PrivateDevmode, sGeneralOption) + CHOICE_SLOTS * sizeof(i16) ==
              CHOICES_AT + sizeof ColorChoices::bBytes);

size_t ChoiceAt(int nClass, i32 nOption)
{
    return aClasses[nClass - OBJECTS_TEXT].usChoices + sizeof(i16) * static_cast<size_t>(nOption);
}

const ColorOptionRow* OptionTable(const XpiModel* pModel, int nClass)
{
    switch (nClass) {
    case OBJECTS_TEXT: return pModel->pTextOptions;
    case OBJECTS_IMAGE: return pModel->pImageOptions;
    case OBJECTS_GRAPHICS: return pModel->pGraphicsOptions;
    case OBJECTS_GENERAL: return pModel->pGeneralOptions;
    default: return nullptr;
    }
}

/* The first row of what a colour mode presets; -1 without. */
i32 FirstPreset(const XpiModel* pModel, i32 nMode)
{
    const ColorModeRow* pMode =
        pModel->pColorPresets ? CountedRow(pModel, pModel->pColorModes, nMode) : nullptr;
    return pMode ? pMode->sFirstPreset : -1;
}

} // namespace

const ColorOptionRow* FindColorOption(const XpiModel* pModel, int nClass, i32 nOption)
{
    return Row(pModel, OptionTable(pModel, nClass), nOption < CHOICE_SLOTS ? nOption : -1);
}

const OptionValueRow* FindOptionValue(const XpiModel* pModel, const ColorOptionRow* pOption, i32 nValue)
{
    return Row(pModel, pModel->pOptionValues, pOption->sFirstValue + nValue);
}

i16 GetColorChoice(const PrivateDevmode& part, int nClass, i32 nOption)
{
    i16 sValue;
    std::memcpy(&sValue, reinterpret_cast<const u8*>(&part) + ChoiceAt(nClass, nOption), sizeof sValue);
    return sValue;
}

void SetColorChoice(PrivateDevmode* pPart, int nClass, i32 nOption, i16 sValue)
{
    std::memcpy(reinterpret_cast<u8*>(pPart) + ChoiceAt(nClass, nOption), &sValue, sizeof sValue);
}

ColorChoices GetColorChoices(const PrivateDevmode& part)
{
    ColorChoices choices;
    std::memcpy(choices.bBytes, reinterpret_cast<const u8*>(&part) + CHOICES_AT, sizeof choices.bBytes);
    return choices;
}

void SetColorChoices(PrivateDevmode* pPart, const ColorChoices& choices)
{
    std::memcpy(reinterpret_cast<u8*>(pPart) + CHOICES_AT, choices.bBytes, sizeof choices.bBytes);
}

int SameColorChoices(const PrivateDevmode& one, const PrivateDevmode& other)
{
    return std::memcmp(reinterpret_cast<const u8*>(&one) + CHOICES_AT,
                       reinterpret_cast<const u8*>(&other) + CHOICES_AT, sizeof ColorChoices::bBytes) == 0;
}

u32 ColorModeKind(const XpiModel* pModel, i32 nMode)
{
    const ColorModeRow* pMode = CountedRow(pModel, pModel->pColorModes, nMode);
    return pMode ? pMode->ulKind : 0;
}

i16 PresetChoice(const XpiModel* pModel, i32 nMode, int nClass, i32 nOption)
{
    for (i32 i = FirstPreset(pModel, nMode); i >= 0; i++) {
        const ColorPresetRow* pRow = Row(pModel, pModel->pColorPresets, i);
        if (!pRow->sTarget) {
            break;
        }
        if (pRow->sTarget == nClass && pRow->sSlot == nOption) {
            return pRow->sValue;
        }
    }
    return 0;
}

void ApplyColorPreset(PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    for (i32 i = pModel ? FirstPreset(pModel, pPrivate->sColorCorrection) : -1; i >= 0; i++) {
        const ColorPresetRow* pRow = Row(pModel, pModel->pColorPresets, i);
        if (!pRow->sTarget) {
            return;
        }
        if (pRow->sTarget >= OBJECTS_TEXT && pRow->sTarget <= OBJECTS_GENERAL && pRow->sSlot >= 0 &&
            pRow->sSlot < CHOICE_SLOTS) {
            SetColorChoice(pPrivate, pRow->sTarget, pRow->sSlot, pRow->sValue);
        }
    }
}

void BuildColorCommands(PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    i32 nCommands = 0;
    for (int nClass = OBJECTS_TEXT; pModel && nClass <= OBJECTS_GENERAL; nClass++) {
        const ObjectClass& kind = aClasses[nClass - OBJECTS_TEXT];
        for (i32 i = 0; i < CHOICE_SLOTS; i++) {
            const ColorOptionRow* pOption = FindColorOption(pModel, nClass, i);
            if (!pOption->usNameId) {
                break;
            }
            const OptionValueRow* pValue =
                FindOptionValue(pModel, pOption, GetColorChoice(*pPrivate, nClass, i));
            if (pValue->usLength2 && kind.usHeader != NO_PAIRS) {
                StorePair(pPrivate, kind.usHeader, pValue->usOffset, pValue->usLength);
                StorePair(pPrivate, kind.usBody, pValue->usOffset2, pValue->usLength2);
            } else {
                pPrivate->ColorCommand[nCommands].sColorCmdOffset = static_cast<i16>(pValue->usOffset);
                pPrivate->ColorCommand[nCommands].sColorCmdLength =
                    static_cast<u16>(pValue->usLength | kind.usFlag);
                nCommands++;
            }
        }
    }
    pPrivate->sGenColorCmdCount = static_cast<i16>(nCommands);
}

void ClearColorCommands(PrivateDevmode* pPrivate)
{
    constexpr size_t FIRST = offsetof(PrivateDevmode, sTextHdrOffset);
    constexpr size_t END = offsetof(PrivateDevmode, sGraphicsLength) + sizeof pPrivate->sGraphicsLength;
    static_assert(END - FIRST == 6 * 2 * sizeof(i16));
    std::memset(reinterpret_cast<u8*>(pPrivate) + FIRST, 0, END - FIRST);
    pPrivate->sGenColorCmdCount = 0;
}
