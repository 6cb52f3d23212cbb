/* Colour choices: what a colour mode presets, and the printer commands that the choices come to. */
#ifndef TQUI_DOCUMENT_COLOR_CHOICES_H
#define TQUI_DOCUMENT_COLOR_CHOICES_H

#include "description/xpi_model.h"
#include "settings/driver_devmode.h"

/* Copies the option values that the chosen colour mode sets into the four choice arrays. Nothing without the
   tables, or for a mode that sets none. */
void ApplyColorPreset(PrivateDevmode* pPrivate, const XpiModel* pModel);

/* Works out the colour command fields from the four choice arrays; clears nothing first. */
void BuildColorCommands(PrivateDevmode* pPrivate, const XpiModel* pModel);

#endif
