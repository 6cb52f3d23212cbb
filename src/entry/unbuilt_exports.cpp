/* Exports that the spooler's interface wants by name and that answer failure until the sheets are there
   (CHANGES.md lists them). */
#include "entry/exports.h"

extern "C" {

LONG WINAPI DrvDevicePropertySheets(void*, LPARAM)
{
    return -1;
}
}
