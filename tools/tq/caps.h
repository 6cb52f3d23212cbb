/* The command `tq caps`: all capability answers of a printer. */
#ifndef TQUI_TOOLS_TQ_CAPS_H
#define TQUI_TOOLS_TQ_CAPS_H

#include <iosfwd>
#include <string>

struct CapsOptions {
    std::string what;    /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    std::string language = "0409";
    bool bMetric = false;
    bool bRaw = false; /* one line a question, rows in hex */
};

/* Result: the exit code. Throws for what is not to be had. */
int RunCaps(const CapsOptions& options, std::ostream& out);

#endif
