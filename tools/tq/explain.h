/* The command `tq explain`: what the two checks make of a settings record, rule by rule. */
#ifndef TQUI_TOOLS_TQ_EXPLAIN_H
#define TQUI_TOOLS_TQ_EXPLAIN_H

#include <iosfwd>
#include <string>

#include "settings/driver_devmode.h"

struct ExplainOptions {
    std::string file;    /* the record: its 4088 bytes, or the lines of `tq record` */
    std::string model;   /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    bool bMetric = false;
};

/* Prints each rule that mended or refused something, with the fields that it changed, the verdict, and of an
   accepted record the first conflict that the sheets would find. All is the library's own, told on by it.
   Result: the exit code, 0 for an accepted record, 1 for a refused one. Throws when the record or the
   model is not to be had. */
int RunExplain(const ExplainOptions& options, std::ostream& out);

/* The same for a record that is there. */
int ExplainRecord(DriverDevmode record, const std::string& model, const std::string& package, bool bMetric,
                  std::ostream& out);

#endif
