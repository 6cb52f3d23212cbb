/* Registry keys and values. */
#ifndef TQUI_PLATFORM_REGISTRY_H
#define TQUI_PLATFORM_REGISTRY_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

using HKEY = struct HKEY__*;
using PHKEY = HKEY*;
using REGSAM = DWORD;

#define HKEY_CLASSES_ROOT  (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000000)))
#define HKEY_CURRENT_USER  (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000001)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000002)))

constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
constexpr REGSAM KEY_SET_VALUE = 0x0002;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;

REGISTRY_CALLS(DECLARE_CALL)

#endif

/* Types of registry and printer data values; the spooler's subject uses them as well. */
#include "platform/value_types.h"

#endif
