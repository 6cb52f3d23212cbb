/* The language resource library: loaded as data, never run; and routines of the system's libraries. */
#ifndef TQUI_PLATFORM_RESOURCES_H
#define TQUI_PLATFORM_RESOURCES_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

constexpr DWORD LOAD_LIBRARY_AS_DATAFILE = 0x02;
constexpr DWORD LOAD_LIBRARY_AS_IMAGE_RESOURCE = 0x20;

constexpr DWORD LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR =
    0x100;                                            /* what it imports may lie beside it; full paths only */
constexpr DWORD LOAD_LIBRARY_SEARCH_SYSTEM32 = 0x800; /* to be run, from the system's own folder */

using FARPROC = std::intptr_t (*)();

RESOURCE_CALLS(DECLARE_CALL)

#endif
#endif
