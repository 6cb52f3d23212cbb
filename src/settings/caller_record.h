/* A record in a caller's memory. What it claims of its sizes decides how much of it may be read, and the caller may
   change it while we work: so it is copied once, the checks run on the copy, and their repairs are given back. */
#ifndef TQUI_SETTINGS_CALLER_RECORD_H
#define TQUI_SETTINGS_CALLER_RECORD_H

#include "settings/driver_devmode.h"

struct CallerRecord {
    void* pOwner;        /* the caller's record */
    u32 cbClaimed;       /* dmSize + dmDriverExtra as they were read */
    DriverDevmode rRead; /* what was there, up to cbClaimed or RECORD_SIZE; zero behind */
    DriverDevmode rCopy; /* the same, for the checks to work on */
};

/* Copies a caller's record of at least 72 bytes, those that hold its sizes. */
void TakeCallerRecord(void* pRecord, CallerRecord* pTaken);

/* Gives the caller what has changed in the copy since it was taken, or since the last call of this. */
void GiveRepairs(CallerRecord* pTaken);

/* 1 for a record that claims less than the record of this family has: only its basic fields can be used. */
inline int IsForeign(const CallerRecord& taken)
{
    return taken.cbClaimed < RECORD_SIZE;
}

#endif
