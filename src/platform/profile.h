/* The locale's values in the section "intl" of the system's own profile. */
#ifndef TQUI_PLATFORM_PROFILE_H
#define TQUI_PLATFORM_PROFILE_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

PROFILE_CALLS(DECLARE_CALL)

#endif
#endif
