/* Font substitutions: device fonts that stand for fonts of the screen. */
#ifndef TQUI_ENTRY_FONT_SUBS_H
#define TQUI_ENTRY_FONT_SUBS_H

#include "description/driver_files.h"

/* Builds the printer's list of substitutions as a multi-string: screen font, device font, screen font ..., an empty
   text at the end. With bUseIni a complete list in the driver's .INI file is taken as it stands; else the model's
   pairs whose screen font the display has. A pair of "Name (Script)" serves "Name" as well. The first pair of a
   screen font counts.
   outBlock   O   new zero-filled block, the caller's; null when the result is 0
   Result: bytes of the list. They are counted before doubles are dropped, so that zeros may follow the text. 0
   without a display, without a model, or when memory fails. */
u32 BuildFontSubs(PrinterCall& call, const XpiModel* pModel, int bUseIni, OwnedBlock<WCHAR>* outBlock);

#endif
