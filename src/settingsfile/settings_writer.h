/* Writes the section "PrinterSettings" of a settings file; see settings_keys.h for its keys. */
#ifndef TQUI_SETTINGSFILE_SETTINGS_WRITER_H
#define TQUI_SETTINGSFILE_SETTINGS_WRITER_H

#include "settings/driver_devmode.h"

/* Replaces the section by the settings of the record; the other sections stay. The record may be unchecked:
   texts without their NUL end with their field, and of the styles and blocks those are written that lie in the
   exception region whole, up to the first that does not; StyleCount and BlockCount tell how many these are.
   usLanguage   the model's kind
   Result: 1; 0 when the file could not be changed or memory failed: it then holds what it held. */
int WritePrinterSettings(const WCHAR* tcPath, const DriverDevmode* pRecord, u16 usLanguage);

#endif
