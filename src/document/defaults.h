/* The default record: built from the description, or the printer's stored one while that is good. */
#ifndef TQUI_DOCUMENT_DEFAULTS_H
#define TQUI_DOCUMENT_DEFAULTS_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Where a default came from. */
enum DefaultSource : int { DEFAULT_NONE, DEFAULT_BUILT, DEFAULT_STORED };

/* Fills the 4088 bytes at pRecord from the printer's description.
   wcPrinterName        IO  may be null; a ",Local" tail is cut off in the caller's own text
   bApplySettingsFile   1: the driver's .INI file is merged at the end, without a check
   Without a description the record is the template with name, constants and measure. */
void BuildDefaultRecord(PrinterCall& call, WCHAR* wcPrinterName, DriverDevmode* pRecord,
                        int bApplySettingsFile);

/* The same, but the name is only read, whatever its tail.
   pModel   the printer's own model where the caller has it; null: loaded here */
void BuildModelRecord(PrinterCall& call, const WCHAR* wcPrinterName, DriverDevmode* pRecord,
                      int bApplySettingsFile, const XpiModel* pModel);

/* The printer's stored default, checked, or a built one where there is none or it was refused.
   DEFAULT_NONE: the printer cannot be asked, *pRecord is untouched. DEFAULT_BUILT: the printer has no stored
   record. DEFAULT_STORED: the stored one, also when it was refused and built anew.
   pModel   the printer's own model where the caller has it; null: loaded here */
DefaultSource FindPrinterDefaults(PrinterCall& call, DriverDevmode* pRecord,
                                  const XpiModel* pModel = nullptr);

/* The same as 1 for DEFAULT_STORED, else 0. */
int GetPrinterDefaults(PrinterCall& call, DriverDevmode* pRecord);

#endif
