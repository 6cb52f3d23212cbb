/* What every reader of a record that the library gave relies on, whatever failed while it was made. */
#ifndef TQUI_TESTS_WELL_FORMED_H
#define TQUI_TESTS_WELL_FORMED_H

#include <algorithm>

#include "settings/driver_devmode.h"

/* Byte for byte, gaps and unions included. */
template <class Part> bool HasSameBytes(const Part& one, const Part& other)
{
    const u8* pOne = reinterpret_cast<const u8*>(&one);
    return std::equal(pOne, pOne + sizeof one, reinterpret_cast<const u8*>(&other));
}

inline bool IsWellFormed(const DriverDevmode& record)
{
    const PrivateDevmode part = record.rPrivate;
    return record.dmSize == 220 && record.dmDriverExtra == 3868 && part.ulVersion == 0xCACA0001 &&
           part.sOverlayDirOffset == 332 && part.sGenColorCmdOffset == 660 && part.tcXPIName[159] == 0 &&
           part.tcOverlayDir[159] == 0 && part.cStartJobPJL[639] == 0 && part.cEndJobPJL[255] == 0 &&
           part.cCollatePJL[11] == 0 && part.cJobComment[127] == 0;
}

#endif
