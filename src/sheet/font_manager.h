/* The font manager, a program of its own that the Fonts page starts. */
#ifndef TQUI_SHEET_FONT_MANAGER_H
#define TQUI_SHEET_FONT_MANAGER_H

#include "sheet/session.h"

/* 1 when the font manager can be opened for reading: the driver file of the value "FontManager", else the program in its
   usual folder. The current folder is as before. */
int HasFontManager(const UiSession* pSession);

/* Starts it with its own folder as the current one and its file name alone as the command line, and shows its window.
   Nobody waits for it, and the current folder is as before when this returns.
   Result: 1 when it was started. */
int StartFontManager(const UiSession* pSession);

#endif
