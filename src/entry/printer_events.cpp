/* What the spooler tells of a printer that comes or goes; answers failure until it is built. */
#include "entry/exports.h"

extern "C" {

BOOL WINAPI DrvPrinterEvent(LPWSTR, int, DWORD, LPARAM)
{
    return 0;
}
}
