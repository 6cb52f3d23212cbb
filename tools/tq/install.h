/* The commands `tq install`, `tq uninstall` and `tq data`: a printer's life on a machine that is kept in a folder. The
   folder holds machine.txt, see machine_text.h, and files/, the disk of the machine. */
#ifndef TQUI_TOOLS_TQ_INSTALL_H
#define TQUI_TOOLS_TQ_INSTALL_H

#include <iosfwd>
#include <string>

struct MachineOptions {
    std::string machine; /* folder; made by install */
    std::string package;
    std::string model;   /* install: name or section of the INF */
    std::string printer; /* the others: name; "" is the only one */
};

/* Adds the model's printer and tells the driver. Result: 0; 1 when the driver says no. */
int RunInstall(const MachineOptions& options, std::ostream& out);

/* Tells the driver that the printer goes, and removes it. */
int RunUninstall(const MachineOptions& options, std::ostream& out);

/* Shows what the machine holds for the printer. */
int RunData(const MachineOptions& options, std::ostream& out);

#endif
