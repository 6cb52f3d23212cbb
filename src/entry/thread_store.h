/* What the library keeps for each thread that calls it: made when it is first asked for, freed when the thread ends
   or the library is unloaded. */
#ifndef TQUI_ENTRY_THREAD_STORE_H
#define TQUI_ENTRY_THREAD_STORE_H

#include "settings/driver_devmode.h"

struct ThreadStore {
    DriverDevmode rMerged;  /* GDI holds a pointer to it until the thread's next document event */
    DriverDevmode rScratch; /* while that one is repaired */
    int bForwarding;        /* 1 inside a call that was handed on to the spooler */
};

/* Begin and end with the library itself. The end frees the store of every thread. */
void OpenThreadStores();
void CloseThreadStores();

/* This thread's; null when memory is short. */
ThreadStore* GetThreadStore();

#endif
