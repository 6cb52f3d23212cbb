/* The language resource library, loaded as data and never run, and calls that are looked up as the program runs. */
#ifndef TQUI_PLATFORM_RESOURCES_H
#define TQUI_PLATFORM_RESOURCES_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

constexpr DWORD LOAD_LIBRARY_AS_DATAFILE = 0x02;
constexpr DWORD LOAD_LIBRARY_AS_IMAGE_RESOURCE = 0x20;

constexpr DWORD LOAD_LIBRARY_SEARCH_SYSTEM32 = 0x800;

using FARPROC = std::intptr_t(WINAPI*)();

RESOURCE_CALLS(DECLARE_CALL)

#endif
#endif
