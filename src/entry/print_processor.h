/* The print processor of the image printers. */
#ifndef TQUI_ENTRY_PRINT_PROCESSOR_H
#define TQUI_ENTRY_PRINT_PROCESSOR_H

#include "description/printer_call.h"

/* Makes the driver's print processor the printer's: the driver file of the value "PrintProcessor", else "JOB.DLL",
   under its file name without the last extension. It is added to the system's processors unless it is one, and the
   printer is written only when it has another. Nothing tells of the outcome. */
void RegisterPrintProcessor(PrinterCall& call);

#endif
