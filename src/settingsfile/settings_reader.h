/* Reads the section "PrinterSettings" of a settings file into a record. */
#ifndef TQUI_SETTINGSFILE_SETTINGS_READER_H
#define TQUI_SETTINGSFILE_SETTINGS_READER_H

#include "profile/profile_file.h"
#include "settings/driver_devmode.h"

/* Reads the settings that the file names; every other field keeps its value, but ulWMType becomes 0 when the
   file does not name it. Nothing is checked.
   bReadOnly    1: the margins stay, and bit 1 of ulLanguageFeatures
   usLanguage   kind of the model
   Result: 1. 0 when the file's guard key names another description, or memory is short: the record is as it
   was. A file that is not there acts like an empty one. */
int ReadPrinterSettings(const ProfileFile& file, DriverDevmode* pRecord, int bReadOnly, u16 usLanguage);

#endif
