/* Colour choices: the options of the classes of objects and what is chosen of each, what a colour mode presets, and the
   printer commands that the choices come to. */
#ifndef TQUI_DOCUMENT_COLOR_CHOICES_H
#define TQUI_DOCUMENT_COLOR_CHOICES_H

#include "description/xpi_model.h"
#include "settings/driver_devmode.h"

/* Classes of objects that have options of their own, numbered as sTarget of the presets. */
enum ColorObjects : int { OBJECTS_TEXT = 1, OBJECTS_IMAGE, OBJECTS_GRAPHICS, OBJECTS_GENERAL };
constexpr int OBJECT_CLASSES = 4;
constexpr i32 CHOICE_SLOTS = 4; /* options of a class that the record has a choice for */

/* An option of a class by its row. usNameId is 0 behind the last one, and from CHOICE_SLOTS on. */
const ColorOptionRow* FindColorOption(const XpiModel* pModel, int nClass, i32 nOption);

/* A value of an option by its number; usNameId is 0 where the table has none. */
const OptionValueRow* FindOptionValue(const XpiModel* pModel, const ColorOptionRow* pOption, i32 nValue);

/* The value that the record chooses of an option, nOption below CHOICE_SLOTS. */
i16 GetColorChoice(const PrivateDevmode& part, int nClass, i32 nOption);
void SetColorChoice(PrivateDevmode* pPart, int nClass, i32 nOption, i16 sValue);

/* All choices of a record at once. */
struct ColorChoices {
    u8 bBytes[OBJECT_CLASSES * CHOICE_SLOTS * sizeof(i16)];
};
ColorChoices GetColorChoices(const PrivateDevmode& part);
void SetColorChoices(PrivateDevmode* pPart, const ColorChoices& choices);
int SameColorChoices(const PrivateDevmode& one, const PrivateDevmode& other);

/* ulKind of a row of the colour modes; 0 when the model has no such row. */
u32 ColorModeKind(const XpiModel* pModel, i32 nMode);

/* The value that a colour mode presets for an option; 0 for one that it presets nothing for. */
i16 PresetChoice(const XpiModel* pModel, i32 nMode, int nClass, i32 nOption);

/* Copies the option values that the chosen colour mode sets into the four choice arrays. Nothing without the
   tables, or for a mode that sets none. */
void ApplyColorPreset(PrivateDevmode* pPrivate, const XpiModel* pModel);

/* Works out the colour command fields from the four choice arrays; clears nothing first. */
void BuildColorCommands(PrivateDevmode* pPrivate, const XpiModel* pModel);

/* Clears the six pairs of offset and length and the count of the commands, whose rows stay. */
void ClearColorCommands(PrivateDevmode* pPrivate);

#endif
