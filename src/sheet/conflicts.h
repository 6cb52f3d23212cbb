/* The model's conflict table: combinations of paper, bins, media and options that the printer cannot do. Every
   kind of sheet that a job prints is tested, since a cover may come from another bin than the body. */
#ifndef TQUI_SHEET_CONFLICTS_H
#define TQUI_SHEET_CONFLICTS_H

#include "description/installed_set.h"
#include "settings/driver_devmode.h"

enum SheetKind : int {
    SHEET_BODY,
    SHEET_FRONT_COVER,
    SHEET_BACK_COVER,
    SHEET_SEPARATOR,
    SHEET_INSERT,
    SHEET_KINDS
};

struct Conflict {
    SheetKind kind;
    i32 nRule;      /* row of the conflict table, from 0 */
    i16 sMessageId; /* text of the description; 0: none of its own */
};

/* Looks for the first conflict of a record: kinds of sheet in their order, rules in theirs.
   lKnownEnd   first paper code behind the saved papers and the spooler's forms: 448 and their number
   Result: 1 with *pConflict filled; 0 without a conflict, without a model or a table. */
int FindConflict(PrinterCall& call, const DriverDevmode* pRecord, const DeviceInfo* pInfo,
                 const XpiModel* pModel, i32 lKnownEnd, Conflict* pConflict);

#endif
