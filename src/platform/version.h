/* Version resources of files. */
#ifndef TQUI_PLATFORM_VERSION_H
#define TQUI_PLATFORM_VERSION_H

#include "platform/basic.h"

#ifdef _WIN32

#include <winver.h>

#else

#include "platform/calls.h"

using PUINT = UINT*;

VERSION_CALLS(DECLARE_CALL)

#endif
#endif
