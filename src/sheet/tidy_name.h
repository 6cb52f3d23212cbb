/* Names that the user types and that settings files keep. */
#ifndef TQUI_SHEET_TIDY_NAME_H
#define TQUI_SHEET_TIDY_NAME_H

#include "platform/basic.h"

/* Makes a text what a settings file would give back: control characters become blanks, and those at both ends go. */
void TidyName(WCHAR* wcName);

#endif
