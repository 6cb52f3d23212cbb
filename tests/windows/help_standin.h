/* What the stand-in of the help control, HELP.OCX beside the test program, was asked last. */
#ifndef TQUI_TESTS_WINDOWS_HELP_STANDIN_H
#define TQUI_TESTS_WINDOWS_HELP_STANDIN_H

#include <windows.h>

struct LastHelp {
    UINT uCommand;
    DWORD dwTopic; /* of the window's control in the map; 0: none */
    WCHAR wcPath[300];
};
using LastHelpRoutine = const LastHelp*(WINAPI*)(void); /* exported as GetLastHelp */

#endif
