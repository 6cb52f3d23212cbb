/* The spool folder of an image printer, copied to where the spooler reads it. */
#ifndef TQUI_DOCUMENT_SPOOL_FOLDER_H
#define TQUI_DOCUMENT_SPOOL_FOLDER_H

#include "description/printer_call.h"
#include "description/xpi_model.h"

/* On systems above version 5.0 and for an image model: writes the printer value "DefaultSpoolDirectory" as
   "SpoolDirectory" into the printer's key below
   HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\Print\Printers, which must be there. The key's name is
   the printer's without a server in front and without a ",Local" tail. A folder that is not a whole path on a drive,
   or holds "..", is not taken over. Nothing tells of the outcome. */
void CopySpoolFolder(PrinterCall& call, const XpiModel* pModel, const WCHAR* wcPrinterName);

#endif
