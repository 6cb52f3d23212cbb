/* The commit: pages write the record one by one, the last one with edits hands it to the host. */
#ifndef TQUI_SHEET_COMMIT_H
#define TQUI_SHEET_COMMIT_H

#include "sheet/session.h"

/* Last step of a page's apply, or of a dialog that has a slot of its own: the last one with edits tests the conflicts
   and gives the settings to the host. hOwner is the window that a conflict's notice lies over.
   Result: 1 when the settings were given or wait for another page's edits. 0 for a conflict: a page's edits count as
   not applied then, and the caller refuses the host's apply as its last step; a dialog's edits are stored already. */
int CommitPage(UiSession* pSession, int nSlot, HWND hOwner);

#endif
