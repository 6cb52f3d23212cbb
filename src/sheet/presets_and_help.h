/* What belongs to every page and is not built yet: presets, help, web page. Each is called where it will act
   and does nothing now. */
#ifndef TQUI_SHEET_PRESETS_AND_HELP_H
#define TQUI_SHEET_PRESETS_AND_HELP_H

#include "sheet/session.h"

/* Start of a page in a document sheet: the list of presets. */
void InitPresets(HWND hPage, UiSession* pSession);

/* The button IDC_PRESET_APPLY. */
void ApplyPreset(HWND hPage, UiSession* pSession);

/* The sheet's Help button, by the key of the page. */
void ShowPageTopic(HWND hPage, UiSession* pSession, int nHelpKey);

/* WM_HELP and WM_CONTEXTMENU. Result: 1 when help was shown. */
INT_PTR ShowContextHelp(HWND hPage, UiSession* pSession, UINT uMessage, WPARAM wParam, LPARAM lParam);

/* A click on the logo, of a model with an address. */
void OpenWebPage(UiSession* pSession);

#endif
