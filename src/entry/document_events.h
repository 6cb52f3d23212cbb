/* What GDI hands out for a device context, and what the port monitor is told. */
#ifndef TQUI_ENTRY_DOCUMENT_EVENTS_H
#define TQUI_ENTRY_DOCUMENT_EVENTS_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Settles a record that an application handed to GDI. Its public part is repaired in place, or replaced with the
   rest by the printer's default; a bad private part is replaced alone; the paper's sizes follow its code.
   pRecord   the caller's; may be a record that this function gave on the same thread
   Result: a record of the library's, this thread's own until the next call on it; null when dmSize is not that of
   the public part, or memory is short: the record is then untouched. */
DriverDevmode* MergeDocumentRecord(PrinterCall& call, DriverDevmode* pRecord);

#endif
