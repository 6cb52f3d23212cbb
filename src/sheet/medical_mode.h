/* The mode for medical pictures: one choice for all printers of the user, which a port monitor reads. It is no part of
   the record: a DWORD in the user's registry, SOFTWARE\QuilonMonitor, MedicalPrintMode. */
#ifndef TQUI_SHEET_MEDICAL_MODE_H
#define TQUI_SHEET_MEDICAL_MODE_H

#include "platform/types.h"

enum MedicalMode : u32 { MEDICAL_OFF, MEDICAL_A5_LANDSCAPE, MEDICAL_A5_PORTRAIT };

/* MEDICAL_OFF also when the key or the value cannot be read, or is something else. What was read is traced. */
MedicalMode ReadMedicalMode();

/* Stores the mode. One that cannot be written leaves the old, and no trace. */
void WriteMedicalMode(u32 ulMode);

#endif
