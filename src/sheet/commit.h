/* The commit: pages write the record one by one, the last one with edits hands it to the host. */
#ifndef TQUI_SHEET_COMMIT_H
#define TQUI_SHEET_COMMIT_H

#include "sheet/session.h"

/* Last step of a page's apply, or of a dialog that has a slot of its own: the last one with edits tests the conflicts
   and gives the settings to the host. A conflict keeps the sheet on the page, and the page's edits count as not
   applied; a dialog's are. */
void CommitPage(UiSession* pSession, int nSlot);

#endif
