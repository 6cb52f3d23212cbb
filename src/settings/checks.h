/* The two checks that settle a record: every record from outside goes through both before it is used. They
   repair in place; a third counted repair, or a hard rule, refuses the record. The caller's answer to a
   refusal is the printer's default, for the whole record or for the private part alone. */
#ifndef TQUI_SETTINGS_CHECKS_H
#define TQUI_SETTINGS_CHECKS_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Checks the public part, bytes 0 to 219; reads no further than byte 76 until the identity tests passed.
   pModel   null: the description file is opened and loaded for the check
   Result: 1 when the record may be used; 0 when it must be replaced, also when the description cannot be had.
   A refused record is left as far as its repairs had come. */
int ValidatePublicPart(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel);

/* Checks the private part, byte 220 and on, of a record whose public part was accepted. Same model rule, same
   result. */
int ValidatePrivatePart(PrinterCall& call, PrivateDevmode* pPrivate, const XpiModel* pModel);

/* Brings four choices of one colour option table into range: slots with a row of the table to 0 up to the
   number of its values minus 1, all others to 0. Result: repairs made, at most 3, where it stops. */
int ValidateOptionSlots(const XpiModel* pModel, const ColorOptionRow* pTable, i16 asValues[4]);

#endif
