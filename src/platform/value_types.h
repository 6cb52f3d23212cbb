/* The types of registry values and of printer data, which share their numbers. */
#ifndef TQUI_PLATFORM_VALUE_TYPES_H
#define TQUI_PLATFORM_VALUE_TYPES_H

#include "platform/basic.h"

#ifndef _WIN32

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2; /* text with names of the environment's values between % */
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;

#endif
#endif
