/* What the driver's .INI file brings for a printer's users: papers of their own, and watermarks. */
#ifndef TQUI_ENTRY_INSTALL_IMPORT_H
#define TQUI_ENTRY_INSTALL_IMPORT_H

#include "description/printer_call.h"
#include "description/xpi_model.h"

/* Copies the papers and the watermarks of the driver's .INI file to the user's settings file. Each paper also becomes
   a form of the printer and one more row of the value "PaperSizes": at every call, whatever is there already. On a
   second image printer the watermarks become file watermarks of their text's name. Nothing tells of the outcome.
   pModel   may be null: margins are then a quarter of an inch */
void ImportInstallSettings(PrinterCall& call, const XpiModel* pModel);

#endif
