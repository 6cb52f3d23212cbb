/* Section "PrinterDriver" of the driver's .INI file: values that every printer of the driver gets. */
#ifndef TQUI_ENTRY_PRINTER_DRIVER_SECTION_H
#define TQUI_ENTRY_PRINTER_DRIVER_SECTION_H

#include "description/printer_call.h"

/* Stores each key of the section that has a text, at most 127 characters of it, as a text value of the printer.
   Result: 1 when "SPLUserModePrinterDriver" was among them. */
int CopyPrinterDriverSection(PrinterCall& call);

#endif
