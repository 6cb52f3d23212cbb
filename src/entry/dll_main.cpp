/* The library's entry point. */
#include "entry/exports.h"
#include "entry/thread_store.h"
#include "platform/process.h"
#include "platform/stack_guard.h"

extern "C" UNGUARDED BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID pProcessEnds)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH:
        SetStackGuard();
        OpenThreadStores();
        return 1;
    case DLL_PROCESS_DETACH:
        if (!pProcessEnds) { /* else everything goes, and other threads were stopped wherever they were */
            CloseThreadStores();
        }
        return 1;
    case DLL_THREAD_ATTACH:
    case DLL_THREAD_DETACH: return 1;
    default: return 0;
    }
}
