/* The drivers whose printers make 33 pages a minute. */
#ifndef TQUI_ENTRY_FAST_DRIVERS_H
#define TQUI_ENTRY_FAST_DRIVERS_H

#include "base/wide.h"

/* 1 for a name of the list, case included. */
inline int IsFastDriver(const WCHAR* wcDriver)
{
    static constexpr const WCHAR* aDrivers[] = {TEXT("Halden T410A"), TEXT("Halden T420B"),
                                                TEXT("Halden T430A"), TEXT("Halden T440B"),
                                                TEXT("Ostra K100"),   TEXT("Ostra K200")};
    for (const WCHAR* wcFast : aDrivers) {
        if (SameWide(wcDriver, wcFast)) {
            return 1;
        }
    }
    return 0;
}

#endif
