/* What the rendering half asks for around a job; answers failure until it is built. */
#include "entry/exports.h"

extern "C" {

DWORD WINAPI GuiStartJob(DriverDevmode*, void*, DWORD*, void*)
{
    return 0;
}

DWORD WINAPI GuiEndJob(DriverDevmode*, void*, DWORD*, void*)
{
    return 0;
}

DWORD WINAPI GuiStartSheet(DriverDevmode*, void*)
{
    return 0;
}
}
