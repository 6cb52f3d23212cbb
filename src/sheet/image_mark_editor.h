/* The editor of an image watermark. */
#ifndef TQUI_SHEET_IMAGE_MARK_EDITOR_H
#define TQUI_SHEET_IMAGE_MARK_EDITOR_H

#include "sheet/mark_editor.h"

/* Shows the editor of a row of the session's watermarks, modal over hOwner. The spare row, which becomes a new one, is
   an image without a file from here on, of ENTRY_FREE still. The unit that the user turned to stays in the record.
   Result: 1 when the user confirmed, with the row written anew, so that it has no built files; 0 with the row as it
   was. */
int EditImageMark(HWND hOwner, UiSession* pSession, i32 nRow);

#endif
