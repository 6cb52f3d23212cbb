/* Memory, errors, system version, names and environment of this process, language of the user. */
#ifndef TQUI_PLATFORM_PROCESS_H
#define TQUI_PLATFORM_PROCESS_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

constexpr DWORD HEAP_ZERO_MEMORY = 8;
constexpr DWORD MAX_COMPUTERNAME_LENGTH = 15;
constexpr UINT SW_HIDE = 0;
/* Reasons of a library's entry point. */
constexpr DWORD DLL_PROCESS_DETACH = 0;
constexpr DWORD DLL_PROCESS_ATTACH = 1;
constexpr DWORD DLL_THREAD_ATTACH = 2;
constexpr DWORD DLL_THREAD_DETACH = 3;

/* Values by thread; the callback is told of a thread's value when the thread ends, and of all at the end of the
   slot. */
using PFLS_CALLBACK_FUNCTION = void(WINAPI*)(LPVOID);
constexpr DWORD FLS_OUT_OF_INDEXES = 0xFFFFFFFF;

constexpr DWORD SEMAPHORE_ALL_ACCESS = 0x1F0003;
constexpr DWORD SYNCHRONIZE = 0x00100000;
constexpr DWORD WAIT_OBJECT_0 = 0, WAIT_TIMEOUT = 258, WAIT_FAILED = 0xFFFFFFFF;

struct OSVERSIONINFOW {
    DWORD dwOSVersionInfoSize; /* set by the caller */
    DWORD dwMajorVersion, dwMinorVersion, dwBuildNumber, dwPlatformId;
    WCHAR szCSDVersion[128];
};
using LPOSVERSIONINFOW = OSVERSIONINFOW*;
static_assert(sizeof(OSVERSIONINFOW) == 276);

PROCESS_CALLS(DECLARE_CALL)

#endif
#endif
