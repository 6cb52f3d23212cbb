#include "document/color_choices.h"

#include <cstring>

#include "settings/counted_row.h"

namespace {

constexpr i32 CHOICE_SLOTS = 4;  /* of each of the four arrays */
constexpr i32 COMMAND_ROWS = 16; /* of ColorCommand: one for every slot of the four tables */
static_assert(4 * CHOICE_SLOTS <= COMMAND_ROWS &&
              COMMAND_ROWS * sizeof(ColorCommandRow) == sizeof(PrivateDevmode::ColorCommand));
constexpr u16 NO_PAIRS = 0xFFFF; /* general options have neither header nor body */

/* Where the record keeps what belongs to a class of objects, in the order of every walk and of sTarget: text,
   image, graphics, general. In the record the choices of graphics lie before those of images. */
struct ObjectClass {
    u16 usFlag;    /* of sColorCmdLength */
    u16 usChoices; /* four i16 */
    u16 usHeader;  /* i16 offset, i16 length */
    u16 usBody;    /* the same */
};
#define AT(field) static_cast<u16>(offsetof(PrivateDevmode, field))
constexpr ObjectClass aClasses[4] = {
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

} // namespace

void ApplyColorPreset(PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    if (!pModel || !pModel->pColorModes || !pModel->pColorPresets) {
        return;
    }
    const ColorModeRow* pMode = CountedRow(pModel, pModel->pColorModes, pPrivate->sColorCorrection);
    if (!pMode || pMode->sFirstPreset < 0) {
        return;
    }
    for (i32 i = pMode->sFirstPreset;; i++) {
        const ColorPresetRow* pRow = Row(pModel, pModel->pColorPresets, i);
        if (!pRow->sTarget) {
            return;
        }
        if (pRow->sTarget < 1 || pRow->sTarget > 4 || pRow->sSlot < 0 || pRow->sSlot >= CHOICE_SLOTS) {
            continue;
        }
        i16 sValue = pRow->sValue;
        std::memcpy(reinterpret_cast<u8*>(pPrivate) + aClasses[pRow->sTarget - 1].usChoices +
                        sizeof sValue * static_cast<u32>(pRow->sSlot),
                    &sValue, sizeof sValue);
    }
}

void BuildColorCommands(PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    i32 nCommands = 0;
    if (!pModel) {
        pPrivate->sGenColorCmdCount = 0;
        return;
    }
    const ColorOptionRow* const apTables[4] = {pModel->pTextOptions, pModel->pImageOptions,
                                               pModel->pGraphicsOptions, pModel->pGeneralOptions};
    for (i32 nClass = 0; nClass < 4; nClass++) {
        const ObjectClass& kind = aClasses[nClass];
        i16 asChoices[CHOICE_SLOTS];
        std::memcpy(asChoices, reinterpret_cast<u8*>(pPrivate) + kind.usChoices, sizeof asChoices);
        for (i32 i = 0; i < CHOICE_SLOTS; i++) {
            const ColorOptionRow* pOption = Row(pModel, apTables[nClass], i);
            if (!pOption->usNameId) {
                break;
            }
            const OptionValueRow* pValue =
                Row(pModel, pModel->pOptionValues, pOption->sFirstValue + asChoices[i]);
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
