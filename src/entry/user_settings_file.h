/* The user's settings file: how it comes into being, and how it goes with its printer. */
#ifndef TQUI_ENTRY_USER_SETTINGS_FILE_H
#define TQUI_ENTRY_USER_SETTINGS_FILE_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

/* Sees that the user has a settings file for the printer. Without a value "Settings" a name that no file bears is
   made of the system's clock and stored as that value; a file that is not there is written from the record.
   pRecord   null: nothing is written
   Result: 1 when the file was not there and is now, or would be with a record; 0 for one that is there, and when it
   cannot be made. */
int EnsureSettingsFile(PrinterCall& call, const DriverDevmode* pRecord, u16 usLanguage);

/* Deletes the settings file of this user, with the watermark files built for it. Folders that lead elsewhere are
   passed over: the profile's own, what the profile's data folder leads to outside the profile, and the driver's. */
void DeleteUserSettings(PrinterCall& call);

/* The same for all users of the machine: in every folder beside the user's profile. */
void DeleteAllSettings(PrinterCall& call);

#endif
