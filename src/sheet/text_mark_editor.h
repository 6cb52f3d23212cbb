/* The editor of a text watermark. */
#ifndef TQUI_SHEET_TEXT_MARK_EDITOR_H
#define TQUI_SHEET_TEXT_MARK_EDITOR_H

#include "sheet/mark_editor.h"

/* Shows the editor of a row of the session's watermarks, modal over hOwner. The spare row, which becomes a new one, has
   its first colour from here on. The unit that the user turned to stays in the record.
   pfnTrial   asked when the user confirms, on models for which files are built
   Result: 1 when the user confirmed, with the row written but not compared with what it was; 0 with the row as it
   was. */
int EditTextMark(HWND hOwner, UiSession* pSession, i32 nRow, TrialBuild pfnTrial);

#endif
