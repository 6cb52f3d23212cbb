/* The command `tq record`: writes a printer's default settings record, changed as asked. */
#ifndef TQUI_TOOLS_TQ_RECORD_H
#define TQUI_TOOLS_TQ_RECORD_H

#include <iosfwd>
#include <string>
#include <vector>

#include "settings/driver_devmode.h"
#include "tools/tq/sample_printer.h"

struct RecordOptions {
    std::string model;   /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    bool bMetric = false;
    std::vector<std::string> assignments; /* "field=value" */
    std::string file;                     /* empty: readable text to the output */
    bool bAll = false; /* the text has every field, not only what differs from the template */
};

/* Starts the machine and installs a printer: of a description file with its name, or of a sample. */
PrinterSetup StartModel(const std::string& model, const std::string& package, bool bMetric);

/* A record from a file with its bytes, or with its text, and back. Throw an exception. */
DriverDevmode ReadRecordFile(const std::string& path);
void WriteRecordFile(const std::string& path, const DriverDevmode& record);

/* Result: the exit code. Throws RecordTextError for a wrong assignment, another exception for a model or
   file that is not to be had. */
int RunRecord(const RecordOptions& options, std::ostream& out);

#endif
