/* The command `tq preset`: makes preset files and says what a printer makes of one. All that is said comes from the
   library's own reader, writer and checks. */
#ifndef TQUI_TOOLS_TQ_PRESET_H
#define TQUI_TOOLS_TQ_PRESET_H

#include <iosfwd>
#include <string>
#include <vector>

struct PresetOptions {
    std::string model;   /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    bool bMetric = false;
    std::string file; /* the preset; of RunPresetMake the one to be written */
    std::string other;
    std::string record;                   /* a record, as bytes or text; empty: the printer's default */
    std::vector<std::string> assignments; /* "field=value" */
};

/* Writes the record's settings as a preset, and prints the fields that it does not carry and in which the record differs
   from the printer's factory default. Result of all four: the exit code. They throw what `tq record` throws. */
int RunPresetMake(const PresetOptions& options, std::ostream& out);

/* Prints each key that says something else than it seems to: unknown, not of this model, no number, not what its field
   holds afterwards; then what both checks make of the default record with these settings. Serves the driver's .INI file
   as well. 0 when the model takes the file and both checks the record, without a word on any key. */
int RunPresetCheck(const PresetOptions& options, std::ostream& out);

/* Prints the fields in which the default records with the two files' settings differ. 0 when there are none, else 1. */
int RunPresetCompare(const PresetOptions& options, std::ostream& out);

/* Prints the fields that no preset for the model carries. */
int RunPresetMissing(const PresetOptions& options, std::ostream& out);

#endif
