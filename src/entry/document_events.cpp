/* The hook around device contexts and documents; answers failure until it is built. */
#include "entry/exports.h"

extern "C" {

int WINAPI DrvDocumentEvent(HANDLE, void*, int, u32, void*, u32, void*)
{
    return -1;
}
}
