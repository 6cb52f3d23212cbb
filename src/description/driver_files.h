/* The driver's companion files, found in the list of files that the spooler keeps for the driver: a file is
   matched by a piece of its name, case ignored, anywhere in its path. */
#ifndef TQUI_DESCRIPTION_DRIVER_FILES_H
#define TQUI_DESCRIPTION_DRIVER_FILES_H

#include "base/wide.h"
#include "description/printer_call.h"
#include "description/xpi_load.h"

/* Finds a driver file: by the text of the printer value wcValue when that is there and not empty, else by
   wcDefault; either may be "" for none. The list is searched in the order dependent files, data file, help
   file, configuration file; the driver file itself is not.
   tcOut     O   full path in capitals, PATH_CHARS of room; "" when nothing is found
   Result: 1 when found. */
int FindDriverFile(PrinterCall& call, const WCHAR* wcValue, const WCHAR* wcDefault, WCHAR* tcOut);

/* The driver's .INI file, read when it is first asked for; the call's own. An absent one when the driver has none:
   call.iniState is then NO_ANSWER. */
const ProfileFile& GetDriverIni(PrinterCall& call);

/* Path of the printer's description file: value "XPI", default ".XPI", asked once a call. "" when there is
   none. */
const WCHAR* GetXpiPath(PrinterCall& call);

/* Opens that file, once a call. Null when there is none or it cannot be opened. The call closes it. */
XpiFile* OpenXpiFile(PrinterCall& call);

/* Loads the model of OpenXpiFile; the caller owns it. Null without a file, or when it cannot be loaded. */
OwnedModel LoadPrinterModel(PrinterCall& call);

/* The font description file, which is the driver's data file. 1 when it is named. PATH_CHARS of room. */
int GetFontFilePath(PrinterCall& call, WCHAR* tcOut);

/* Its size in bytes; 0xFFFFFFFF when it cannot be opened or has 4 GB and more. */
constexpr u32 NO_FONT_FILE = 0xFFFFFFFF;
u32 GetFontFileSize(PrinterCall& call);

/* Opens the existing font description file without sharing, after a read-only attribute was cleared. */
OwnedFile OpenFontFile(PrinterCall& call, u32 dwAccess);

/* The rendering half: the file named by the value "NTCoreName", else by "XPSCoreName" (default "CRE.DLL"),
   else the driver file as the spooler spells it. 1 when one is named. PATH_CHARS of room. */
int GetRenderCorePath(PrinterCall& call, WCHAR* tcOut);

#endif
