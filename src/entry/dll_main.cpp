/* The library's entry point. */
#include "entry/exports.h"
#include "platform/process.h"

namespace {
HINSTANCE hOwnModule;
}

HINSTANCE GetOwnModule()
{
    return hOwnModule;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE hModule, DWORD dwReason, LPVOID)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH: hOwnModule = hModule; return 1;
    case DLL_PROCESS_DETACH:
    case DLL_THREAD_ATTACH:
    case DLL_THREAD_DETACH: return 1;
    default: return 0;
    }
}
