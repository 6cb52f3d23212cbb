/* The command `tq job`: what goes to the printer in front of a job, before a sheet and behind the job. */
#ifndef TQUI_TOOLS_TQ_JOB_H
#define TQUI_TOOLS_TQ_JOB_H

#include <iosfwd>
#include <string>
#include <vector>

struct JobOptions {
    std::string model;   /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    bool bMetric = false;
    std::string record;                   /* file of a record, bytes or text; empty: the default record */
    std::vector<std::string> assignments; /* "field=value" */
    std::string jobName;                  /* empty: the spooler has no such job */
    bool bHex = false;
};

/* Plays one job of one sheet through the exports, as a rendering core does. Result: the exit code, 1 when a
   call failed. Throws RecordTextError for a wrong assignment, another exception for a model or file that is
   not to be had. */
int RunJobCommand(const JobOptions& options, std::ostream& out);

/* The layout of the binary render parameters as rows of a Markdown table. */
std::string RenderRecordTable();

#endif
