/* The library's entry point. */
#include "entry/exports.h"
#include "entry/thread_store.h"
#include "platform/process.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID pProcessEnds)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH: OpenThreadStores(); return 1;
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
