/* The font description file: as shipped, with what installation adds behind it for the rendering half.

     0               the file as shipped
     base size       a halftone block of dimension * dimension * 32 zeros for each resolution that has a dimension, in
                     the order of the rows
     behind those    the resident fonts of the description, in the order of their table, without gaps */
#ifndef TQUI_ENTRY_FONT_FILE_H
#define TQUI_ENTRY_FONT_FILE_H

#include "description/driver_files.h"

/* Adds them behind ulBase bytes. Nothing on an image printer, without a description, when the base is as large as
   what would be added, and when the file has more than its base already. The file is made anew beside the old one
   and takes its place in one step: whatever fails, and whenever the power goes, it is the old one or the whole. */
void ExtendFontFile(PrinterCall& call, const XpiModel* pModel, u32 ulBase);

/* Copies the file over those of the driver's other versions ("...\W32X86\2\", 3 and 4) that are there and smaller. */
void SyncDataFileCopies(PrinterCall& call);

#endif
