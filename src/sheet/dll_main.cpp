/* The library's entry point. It stands on the top floor, since it hands down what lower floors call. */
#include "entry/exports.h"
#include "entry/notice.h"
#include "entry/thread_store.h"
#include "platform/process.h"
#include "platform/stack_guard.h"
#include "sheet/notices.h"

extern "C" UNGUARDED BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID pProcessEnds)
{
    switch (dwReason) {
    case DLL_PROCESS_ATTACH:
        SetStackGuard();
        OpenThreadStores();
        SetJobNotice(ShowJobNotice);
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
