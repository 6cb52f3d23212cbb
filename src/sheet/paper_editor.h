/* The editor of one saved paper. */
#ifndef TQUI_SHEET_PAPER_EDITOR_H
#define TQUI_SHEET_PAPER_EDITOR_H

#include "sheet/session.h"

/* Shows the editor of a row of the session's papers, the spare one included, modal over hOwner. From here on the
   record's bMetric is the unit of that row, or the one that the user turned to.
   Result: 1 when the user confirmed and the row holds a name and a size within the model's limits; else 0 with the row
   as it was. The list is not compacted. */
int EditPaper(HWND hOwner, UiSession* pSession, i16 sRow);

#endif
