/* The list of presets and the button that applies the chosen one. The list is filled on every page and never shown, so the
   button applies its first row unless a preset has chosen another. */
#ifndef TQUI_SHEET_PRESETS_H
#define TQUI_SHEET_PRESETS_H

#include "sheet/session.h"

/* Start of a page in a document sheet: fills the list, chooses what the Layout page has chosen, and hides it. */
void InitPresets(HWND hPage, UiSession* pSession);

/* The button: replaces the record's settings by those of the chosen preset and fills the open pages again, which all
   count as edited then. A file that cannot be read, or that is for another model, changes nothing. */
void ApplyPreset(HWND hPage, UiSession* pSession, int nSlot);

#endif
