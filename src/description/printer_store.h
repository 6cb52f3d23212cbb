/* The printer's stored values, and the folder and settings file of the user. */
#ifndef TQUI_DESCRIPTION_PRINTER_STORE_H
#define TQUI_DESCRIPTION_PRINTER_STORE_H

#include "base/wide.h"
#include "description/printer_call.h"

/* Stores a value. 1 when the spooler took it. */
int StorePrinterValue(PrinterCall& call, const WCHAR* wcValue, u32 dwType, const void* pBytes, u32 cb);
int StorePrinterText(PrinterCall& call, const WCHAR* wcValue, const WCHAR* wcText);

/* A value of any type and size up to a megabyte. */
enum ValueState : int { VALUE_ABSENT, VALUE_UNREADABLE, VALUE_READ }; /* absent: also empty */

/* Reads it as a new block, the caller's, that has two NULs (and one byte) behind its *pcb bytes. Other results
   than VALUE_READ leave null and 0. */
ValueState ReadPrinterBlock(PrinterCall& call, const WCHAR* wcValue, OwnedBlock<u8>* outBlock, u32* pcb);

/* Value "Memory": megabytes; 0 when it is not there or has not 4 bytes. */
u32 GetPrinterMemory(PrinterCall& call);
void SetPrinterMemory(PrinterCall& call, u32 ulMemory);

/* Value "FontSubs": pairs of texts, closed by an empty one. Result: its size in bytes, an even number, with
   *outBlock a new block, the caller's, that has two NULs behind that size; 0 and null when the value is
   absent, empty or unreadable. */
u32 GetFontSubs(PrinterCall& call, OwnedBlock<u8>* outBlock);
void SetFontSubs(PrinterCall& call, const void* pBlock, u32 cb);

/* Value "Settings": the plain name of the user's settings file. 1 when it could be read; a text that names
   another folder, or none, counts as unreadable. The writers of this header tell nothing of the outcome. */
int GetSettingsFileName(PrinterCall& call, WCHAR* wcOut, int cch);
void SetSettingsFileName(PrinterCall& call, const WCHAR* wcName);

/* Name of the printer's driver, at most 259 characters; "" when it is not to be had. PATH_CHARS of room. */
int GetDriverName(PrinterCall& call, WCHAR* wcOut);

/* The same as the name of a folder: what a file name may not hold is replaced. 0 and "" when it names no folder. */
int GetDriverFolderName(PrinterCall& call, WCHAR* wcOut);

/* What lies between a user's profile and the driver's folder there. */
constexpr const WCHAR* wcProfileFolder = TEXT("\\Application Data");
constexpr const WCHAR* wcMakerFolder = TEXT("\\Corvantis Optics");

/* The user's folder for this driver: "%USERPROFILE%\Application Data\Corvantis Optics\DRIVER", the driver's
   name made safe for a file name. Missing folders on the way are made. 1 when it can be named; else "".
   PATH_CHARS of room. */
int GetUserFolder(PrinterCall& call, WCHAR* tcOut);

/* The user's settings file: that folder and the value "Settings". 1, or 0 and "". PATH_CHARS of room. */
int GetUserSettingsPath(PrinterCall& call, WCHAR* tcOut);

/* That file, read when it is first asked for; the call's own. An absent one when it has no path. Who has changed the
   file lets the call forget it: it is read anew when it is asked for again. */
const ProfileFile& GetUserSettings(PrinterCall& call);
void ForgetUserSettings(PrinterCall& call);

/* Keys "Profile" and "Screen" of the section "Basalt" of the user's settings file: file names, "" by
   default. */
void GetProfileName(PrinterCall& call, WCHAR* wcOut, int cch);
void GetScreenName(PrinterCall& call, WCHAR* wcOut, int cch);
void SetProfileName(PrinterCall& call, const WCHAR* wcName);
void SetScreenName(PrinterCall& call, const WCHAR* wcName);

#endif
