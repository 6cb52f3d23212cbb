/* The Windows types and constants that all subjects share. On Windows these are the system's own; hosted
   they are declared here with the system's widths and values. */
#ifndef TQUI_PLATFORM_BASIC_H
#define TQUI_PLATFORM_BASIC_H

#ifdef _WIN32

#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#else

#include "platform/types.h"

#define WINAPI
#define CALLBACK
#define APIENTRY
#define TEXT(literal)                              u##literal

using WCHAR = char16_t;
using CHAR = char;
using BYTE = u8;
using WORD = u16;
using BOOL = int;
using INT = int;
using UINT = unsigned int;
using LONG = i32;
using DWORD = u32;
using LSTATUS = LONG;
using HRESULT = LONG;
using LANGID = WORD;
using LCID = DWORD;
using LPARAM = std::intptr_t;
using WPARAM = std::uintptr_t;
using SIZE_T = std::size_t;
using LPVOID = void*;
using LPCVOID = const void*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using LPBOOL = BOOL*;
using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using HANDLE = void*;
using HWND = struct HWND__*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;

using LPSECURITY_ATTRIBUTES = struct SECURITY_ATTRIBUTES*;

union LARGE_INTEGER {
    i64 QuadPart;
};
using PLARGE_INTEGER = LARGE_INTEGER*;

struct POINT {
    LONG x, y;
};
struct SIZE {
    LONG cx, cy;
};
struct RECT {
    LONG left, top, right, bottom;
};
using SIZEL = SIZE;
using RECTL = RECT;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

/* Not a constant expression, as on Windows: a cast of an integer to a pointer. */
#define INVALID_HANDLE_VALUE                       (reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)))

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_NO_MORE_FILES = 18;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
constexpr DWORD ERROR_ENVVAR_NOT_FOUND = 203;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
constexpr DWORD ERROR_INVALID_PRINTER_NAME = 1801;
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

/* Declares one call of a list of calls.h. */
#define DECLARE_CALL(result, name, params, failed) result WINAPI name params;

#endif
#endif
