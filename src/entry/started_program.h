/* Companion programs: started and forgotten. */
#ifndef TQUI_ENTRY_STARTED_PROGRAM_H
#define TQUI_ENTRY_STARTED_PROGRAM_H

#include "base/wide.h"
#include "description/driver_files.h"

/* Starts a program without a window. The command line is its path, in quotation marks only when it holds a blank. Only
   a whole path on a drive without ".." is started, since the system would search its folders for any other; and not
   one that the system's code page does not hold exactly, or that is too long. 1 when it was. */
int StartProgram(const WCHAR* tcPath);

/* Starts the font installer: the driver file of the value "FontInstaller", else "GLYF.EXE". */
void StartFontInstaller(PrinterCall& call);

#endif
