/* What every reader of a record that the library gave relies on, whatever failed while it was made. */
#ifndef TQUI_TESTS_WELL_FORMED_H
#define TQUI_TESTS_WELL_FORMED_H

#include "settings/driver_devmode.h"
#include "support/same_bytes.h"

inline bool IsWellFormed(const DriverDevmode& record)
{
    const PrivateDevmode part = record.rPrivate;
    return record.dmSize == 220 && record.dmDriverExtra == 3868 && part.ulVersion == 0xCACA0001 &&
           part.sOverlayDirOffset == 332 && part.sGenColorCmdOffset == 660 && part.tcXPIName[159] == 0 &&
           part.tcOverlayDir[159] == 0 && part.cStartJobPJL[639] == 0 && part.cEndJobPJL[255] == 0 &&
           part.cCollatePJL[11] == 0 && part.cJobComment[127] == 0;
}

#endif
