/* Stores by thread, in a slot of the system's that tells of threads that end. */
#include "entry/thread_store.h"

#include "base/owned.h"

namespace {

DWORD dwSlot = FLS_OUT_OF_INDEXES;

void WINAPI FreeStore(void* pStore)
{
    FreeBlock(pStore);
}

} // namespace

void OpenThreadStores()
{
    dwSlot = FlsAlloc(FreeStore);
}

void CloseThreadStores()
{
    if (dwSlot != FLS_OUT_OF_INDEXES) {
        FlsFree(dwSlot);
        dwSlot = FLS_OUT_OF_INDEXES;
    }
}

ThreadStore* GetThreadStore()
{
    if (dwSlot == FLS_OUT_OF_INDEXES) {
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    ThreadStore* pStore = static_cast<ThreadStore*>(FlsGetValue(dwSlot));
    if (!pStore && GetLastError() == ERROR_SUCCESS) { /* not a store that cannot be reached */
        OwnedBlock<ThreadStore> pNew(static_cast<ThreadStore*>(AllocateBlock(sizeof(ThreadStore))));
        if (pNew && FlsSetValue(dwSlot, pNew.get())) {
            pStore = pNew.release();
        }
    }
    return pStore;
}
