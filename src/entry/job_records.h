/* The two request records of the rendering half. Each is a wire format between two modules that are built by
   themselves: packed, little-endian, at any address. Bytes that have no name are neither read nor written
   here.

   GuiJobRecord (GuiStartJob, GuiEndJob)          GuiSheetRecord (GuiStartSheet)
     10  handle   hPrinter       in                 10  handle   hPrinter  in
     18  u32      dwJobId        in                 30  pointer  pBuffer   in
     30  u32      bShowNotice    in                 38  u32      cbBuffer  in: size, out: needed
     42  u32      dwReservedOut  out: 0
     48  pointer  pJobName       out */
#ifndef TQUI_ENTRY_JOB_RECORDS_H
#define TQUI_ENTRY_JOB_RECORDS_H

#include "platform/basic.h"
#include "platform/types.h"

/* Results of the three exports. */
enum JobResult : u32 {
    JOB_FAILED = 0,         /* no description, or no memory for the notice; a null pointer that must not be */
    JOB_DONE = 1,           /* the length is what was written */
    JOB_TOO_SMALL = 2,      /* the length is what is needed */
    JOB_NOTICE = 0xFFFFFFFF /* GuiStartJob: the notice was shown, the job gets no head */
};

#pragma pack(push, 1)

struct GuiJobRecord {
    u8 bReserved0[10];
    HANDLE hPrinter; /* open printer; all that a call asks for is asked of it */
    u32 dwJobId;     /* the spooler's job */
    u8 bReserved22[8];
    u32 bShowNotice; /* GuiStartJob: not 0 asks for the notice in place of a head */
    u8 bReserved34[8];
    u32 dwReservedOut; /* GuiStartJob sets it to 0 in every case */
    u8 bReserved46[2];
    /* GuiStartJob on an image printer: the document's name, a block of the process heap that the rendering
       half frees with HeapFree; null without one. Written by each call that does not answer 0. */
    WCHAR* pJobName;
};

struct GuiSheetRecord {
    u8 bReserved0[10];
    HANDLE hPrinter;
    u8 bReserved18[12];
    void* pBuffer; /* may be null when cbBuffer is 0 */
    u32 cbBuffer;
};

#pragma pack(pop)

static_assert(offsetof(GuiJobRecord, hPrinter) == 10 && sizeof(GuiJobRecord::hPrinter) == 8);
static_assert(offsetof(GuiJobRecord, dwJobId) == 18);
static_assert(offsetof(GuiJobRecord, bShowNotice) == 30);
static_assert(offsetof(GuiJobRecord, dwReservedOut) == 42);
static_assert(offsetof(GuiJobRecord, pJobName) == 48 && sizeof(GuiJobRecord) == 56);
static_assert(offsetof(GuiSheetRecord, hPrinter) == 10);
static_assert(offsetof(GuiSheetRecord, pBuffer) == 30 && sizeof(GuiSheetRecord::pBuffer) == 8);
static_assert(offsetof(GuiSheetRecord, cbBuffer) == 38 && sizeof(GuiSheetRecord) == 42);
static_assert(alignof(GuiJobRecord) == 1 && alignof(GuiSheetRecord) == 1);

#endif
