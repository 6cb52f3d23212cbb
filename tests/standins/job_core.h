/* Stand-in for the rendering half as far as a job's commands go: calls the three exports as a rendering core
   does. One source for both builds. */
#ifndef TQUI_TESTS_JOB_CORE_H
#define TQUI_TESTS_JOB_CORE_H

#include <string>

#include "entry/exports.h"

struct JobExports {
    decltype(&GuiStartJob) pStartJob;
    decltype(&GuiStartSheet) pStartSheet;
    decltype(&GuiEndJob) pEndJob;
};

struct JobPart {
    DWORD dwResult;    /* of the last call made for it */
    std::string bytes; /* as long as the call told, its NUL included; empty unless the result is 1 */
};

struct JobOutput {
    JobPart head, sheet, tail;
    bool bNamed; /* pJobName was given */
    std::basic_string<WCHAR> wcJobName;
};

/* One call each, as the rendering half makes it. pOutput, which may be null, gets the job's name; the block that held
   it is freed. */
DWORD CallStart(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord,
                void* pBuffer, DWORD* pcbLength, JobOutput* pOutput);
DWORD CallSheet(const JobExports& exports, HANDLE hPrinter, DriverDevmode* pRecord, void* pBuffer,
                DWORD* pcbLength);
DWORD CallEnd(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord,
              void* pBuffer, DWORD* pcbLength);

/* One job of one sheet. Each part is asked for its size first and then with a buffer of just that size, which
   begins with a NUL; pJobName is freed after each call that gave one. The record goes through all calls, as a
   job's does. */
JobOutput RunJob(const JobExports& exports, HANDLE hPrinter, DWORD dwJobId, DriverDevmode* pRecord);

/* "head 1 HEX", "sheet ...", "tail ...": a line a part, '-' for no bytes. */
std::string JobLines(const JobOutput& output);

#endif
