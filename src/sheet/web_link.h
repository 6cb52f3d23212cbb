/* The model's page on the web, which the logo leads to. */
#ifndef TQUI_SHEET_WEB_LINK_H
#define TQUI_SHEET_WEB_LINK_H

#include "sheet/session.h"

/* Shows the page in the user's browser, by the command that is registered for web addresses. Nothing happens for a model
   without an address or with a text that is none, and without a browser. */
void OpenWebPage(UiSession* pSession);

#endif
