/* Settling: what a record from outside goes through before a job is made from it. */
#ifndef TQUI_ENTRY_SETTLE_H
#define TQUI_ENTRY_SETTLE_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Checks the record in place. A refused private part is replaced by that of the printer's default, 3868
   bytes; a refused public part by the whole default. Where the printer has none to give, the record keeps
   what its checks left: what reads it afterwards relies on nothing. pModel      what the record is checked
   against bOwnModel   1: it is the printer's own, which its default is made from too */
void SettleRecord(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel, int bOwnModel);

#endif
