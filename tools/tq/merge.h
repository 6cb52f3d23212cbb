/* The command `tq merge`: what the printer makes of an application's record. */
#ifndef TQUI_TOOLS_TQ_MERGE_H
#define TQUI_TOOLS_TQ_MERGE_H

#include <iosfwd>
#include <string>

#include "settings/driver_devmode.h"
#include "tools/tq/sample_printer.h"

struct MergeOptions {
    std::string model, package; /* as of tq record */
    bool bMetric = false;
    std::string
        record; /* file with the application's record; empty: none, the printer's default is asked for */
    unsigned uMode = 10; /* DM_UPDATE 1, DM_COPY 2, DM_MODIFY 8 */
    std::string file;    /* for the merged record's bytes; empty: the difference as text to the output */
};

/* A record and whether the call wrote it at all; what it left alone is as it was handed in. */
struct MergedRecord {
    DriverDevmode record;
    bool bWritten;
};

/* One document property call on an open printer. pIn may be null; the checks repair it. */
MergedRecord MergeOnce(HANDLE hPrinter, const WideText& wcPrinter, DriverDevmode* pIn, unsigned uMode);

/* Result: the exit code, 1 when nothing was written. Throws an exception for a model or file that is not to be
   had. */
int RunMerge(const MergeOptions& options, std::ostream& out);

#endif
