/* What a user does on a page or in a dialog of a sheet that is open, from the user's own thread: steps of a script in the
   words of the hosted tests' scripts (tests/support/sheet_script.h), on the real controls.

     page N            the N-th tab, from 0
     pick NAME N       the row of a list with that item data
     click NAME        a button, check box or radio button
     type NAME TEXT    an edit control's text
     keys NAME TEXT    a text by keys in the place of the control's, which gets the focus
     apply             the sheet's button
     spin NAME N       a movement of a spin button or scroll bar by its code
     help NAME         F1 on a control; "menu NAME" its context menu
     open NAME         a button that opens a dialog; what follows is done there
     end NAME          a button that ends a dialog; what follows is done below it; "end IDCANCEL" for the system's own */
#ifndef TQUI_TESTS_WINDOWS_PAGE_USER_H
#define TQUI_TESTS_WINDOWS_PAGE_USER_H

#include <string>

#include <windows.h>

/* Does steps separated by commas. Result: "" or the first step that could not be done, with the reason. */
std::string DoSteps(HWND hSheet, const std::string& steps);

/* The dialog that lies uppermost over the sheet, or the sheet itself. */
HWND UppermostWindow(HWND hSheet);

#endif
