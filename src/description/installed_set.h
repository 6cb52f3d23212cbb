/* The installed set: which bins and options this printer has. Stored as the printer value "DeviceInfo"; until
   it is stored, the model tells it, and the driver's .INI file over the model:

     [DeviceInfo]
     Sources=...       hex      installed input bins
     Destinations=...  hex      installed output bins
     Options=...       hex      installed device options
     TotalMemory=...   decimal  memory key */
#ifndef TQUI_DESCRIPTION_INSTALLED_SET_H
#define TQUI_DESCRIPTION_INSTALLED_SET_H

#include "description/driver_files.h"

/* The installed set, asked for once a call: the stored value when it has exactly its 16 bytes, else what
   BuildDeviceInfo gives with the .INI file. pModel may be null. Never null. */
const DeviceInfo* GetDeviceInfo(PrinterCall& call, const XpiModel* pModel);

/* The installed set of the model (zeros without one), with bUseIni overridden by each key that the driver's
   .INI file has. */
void BuildDeviceInfo(PrinterCall& call, const XpiModel* pModel, DeviceInfo* pInfo, int bUseIni);

/* Stores the set; what comes of it is not told. */
void SetDeviceInfo(PrinterCall& call, const DeviceInfo* pInfo);

#endif
