/* The command `tq lint`. */
#include "lint.h"

#include "xpi_format.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

int RunLint(const std::string& path, std::ostream& out, std::ostream& err)
{
    std::vector<std::uint8_t> bytes;
    if (!ReadXpiBytes(path, bytes)) {
        err << path << ": cannot be read\n";
        return 1;
    }
    std::vector<XpiFinding> findings = LintXpi(bytes);
    std::size_t table = 5, row = 3, field = 5;
    for (const XpiFinding& finding : findings) {
        table = std::max(table, finding.table.size());
        row = std::max(row, std::to_string(finding.row).size());
        field = std::max(field, finding.field.size());
    }
    auto line = [&](const std::string& a, const std::string& b, const std::string& c, const std::string& d) {
        out << std::left << std::setw(static_cast<int>(table)) << a << "  " << std::right
            << std::setw(static_cast<int>(row)) << b << "  " << std::left
            << std::setw(static_cast<int>(field)) << c << "  " << d << '\n';
    };
    if (!findings.empty()) {
        line("TABLE", "ROW", "FIELD", "CONSEQUENCE");
    }
    for (const XpiFinding& finding : findings) {
        line(finding.table, finding.row < 0 ? "-" : std::to_string(finding.row),
             finding.field.empty() ? "-" : finding.field, finding.consequence);
    }
    out << path << ": ";
    if (findings.empty()) {
        out << "nothing to say\n";
    } else {
        out << findings.size() << (findings.size() == 1 ? " finding\n" : " findings\n");
    }
    return findings.empty() ? 0 : 1;
}
