/* Lists whose rows are texts of the model: papers, media, bins, resolutions and the like. */
#ifndef TQUI_SHEET_MODEL_TEXTS_H
#define TQUI_SHEET_MODEL_TEXTS_H

#include "sheet/session.h"

struct ModelTextRow {
    i16 sNameId; /* text of the description, or of the language library below 1 */
    i32 lValue;  /* item data */
};

enum ModelRowKind : int { ROW_END, ROW_LEFT_OUT, ROW_LISTED };
using ModelRowSource = ModelRowKind (*)(const UiSession* pSession, i32 nRow, ModelTextRow* pRow);

/* Appends rows to a combo box; pfnRow is asked for them from row 0 on. Texts are read many at a time.
   Result: number of rows appended; fewer than there are when memory fails. */
i32 AppendModelTexts(HWND hDialog, UiSession* pSession, int nControl, ModelRowSource pfnRow);

#endif
