/* Makes an application's record fit the printer's present options: what the document property calls do when no
   window is asked for. */
#ifndef TQUI_DOCUMENT_MERGE_H
#define TQUI_DOCUMENT_MERGE_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Carries out one request without a window.
   header   pdmOut, not null, has room for cbOut bytes, pdmIn may be null or overlap it; of fMode DM_UPDATE, DM_COPY
            and DM_MODIFY count
   DM_MODIFY with a pdmIn takes that record, in whose own bytes the checks make their repairs; without either the
   printer's default is the source. DM_UPDATE or DM_COPY writes the source to pdmOut, fitted to paper, colour,
   resolution, collation, duplex unit and overlay as the printer has them. A pdmIn of a foreign size gives pdmOut its
   basic fields whatever the mode, and pdmOut keeps the rest. Nothing is written when cbOut is below a record's size,
   or when neither the printer's description nor its default can be had. The spool folder is copied in any case. */
void MergeDocumentSettings(PrinterCall& call, const DOCUMENTPROPERTYHEADER& header);

/* Sizes from the paper's code, as GetPaperSize tells them. */
void StorePaperSize(PrinterCall& call, const XpiModel* pModel, DriverDevmode* pRecord);

/* Brings the pixel fields of a record from one resolution to another, rounded toward zero, but for the width of page
   borders, which follows the resolution on its page alone. ulOld is not 0. */
void RescalePixels(PrivateDevmode* pPart, i32 lNew, u32 ulOld);

#endif
