/* The dialog of the user's own paper sizes. */
#ifndef TQUI_SHEET_SAVED_PAPERS_DIALOG_H
#define TQUI_SHEET_SAVED_PAPERS_DIALOG_H

#include "sheet/session.h"

/* Shows the list of the saved papers, modal over hOwner. Edits change the session's papers and the Paper page's lists at
   once; only OK stores them. Other ways out leave the edits in the session, where the next OK finds them. */
void ShowSavedPapers(HWND hOwner, UiSession* pSession);

#endif
