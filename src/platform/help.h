/* The system's help control, which shows topics of compiled help files. */
#ifndef TQUI_PLATFORM_HELP_H
#define TQUI_PLATFORM_HELP_H

#include "platform/window.h"

#ifdef _WIN32

#include <htmlhelp.h>

#else

#include "platform/calls.h"

constexpr UINT HH_DISPLAY_TOPIC = 0x00;
constexpr UINT HH_TP_HELP_CONTEXTMENU = 0x10; /* data: the map, which a pair of zeros ends */
constexpr UINT HH_TP_HELP_WM_HELP = 0x11;

HELP_CALLS(DECLARE_CALL)

#endif
#endif
