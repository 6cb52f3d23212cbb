/* Code pages, case and order of text. */
#ifndef TQUI_PLATFORM_TEXT_H
#define TQUI_PLATFORM_TEXT_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

constexpr UINT CP_ACP = 0;
constexpr UINT CP_UTF8 = 65001;
constexpr DWORD MB_ERR_INVALID_CHARS = 8;

TEXT_CALLS(DECLARE_CALL)

#endif
#endif
