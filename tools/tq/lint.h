/* The command `tq lint`: tells the author of a printer description what the driver will quietly drop or
 * repair. */
#pragma once

#include <iosfwd>
#include <string>

/* Reviews a description file and prints the findings as a table.
   path   I   the .XPI file
   out    O   the findings and a closing line with their number
   err    O   one line when the file cannot be read
   Result: the exit code, 0 without findings, 1 with findings or when the file cannot be read. */
int RunLint(const std::string& path, std::ostream& out, std::ostream& err);
