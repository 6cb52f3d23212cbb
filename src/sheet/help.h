/* Help for pages and dialogs, from the driver's compiled help file. Without a help file or the system's help control
   everything here quietly does nothing. */
#ifndef TQUI_SHEET_HELP_H
#define TQUI_SHEET_HELP_H

#include "sheet/session.h"

/* Shows the topic of a page, by the page's key; a key without a topic does nothing. */
void ShowPageTopic(const UiSession* pSession, int nHelpKey);

/* WM_HELP and WM_CONTEXTMENU of a page or dialog: the topic of the control that they name or, for a click on the
   background, of the last one under the mouse; the logo leads to the web. Result: 1 when there was such a control. */
INT_PTR ShowContextHelp(HWND hDialog, UiSession* pSession, UINT uMessage, WPARAM wParam, LPARAM lParam);

/* Has the next call look for the help control anew, which a process otherwise does once. For tests. */
void ForgetHelpControl();

#endif
