/* Writes docs/scripting.md: asks the merge for every field, value and sample. */
#include "tools/tq/scripting.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "settings/checks.h"
#include "tools/tq/inf.h"
#include "tools/tq/merge.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"

namespace {

constexpr const char* acSections[] = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};

constexpr const char* cIntroduction =
    R"(# Scripting a printer

Which members of a `DEVMODE` a script or an application can set, and what comes back. Made by `tq scripting`; do not
edit. The columns are the sample printers of the package, for a user with a metric locale.

A record goes through `DocumentProperties` with `DM_IN_BUFFER | DM_OUT_BUFFER` before it is used: ask for the size
with mode 0, for the default with `DM_OUT_BUFFER`, change members, set their bits in `dmFields`, and hand it in again.
What comes back is the record that the printer will print with. Use that one and nothing else: the private part behind
the public members goes with it.

Each line below is one change to the printer's default, and each cell what became of that member:

- `kept`: it came back as it was set.
- `-> n`: it came back as n. Of several members each has its own, told once where they agree.
- `refused`: the record is not one of this printer, and the printer's default came back in its place.
- what stands behind `;` are other members that followed (`sScale` 33: the page is scaled to the paper of that number).

Three members that cannot stand get the whole record refused, so change few at a time and look at what comes back.
Paper sizes are tenths of a millimetre and follow the paper's code; for a size of your own set `dmPaperSize` to 256
with both sides. Scaling, watermarks, pages on a sheet and everything else of the driver's pages lie in the private part
and have no member here: set them in the printing preferences and keep the record.
)";

struct Group {
    const char* cTitle;
    std::vector<const char*> changes; /* assignments, several with a blank between */
};

const std::vector<Group> aGroups = {
    {"The page",
     {"dmOrientation=1", "dmOrientation=2", "dmOrientation=3", "dmPaperSize=1", "dmPaperSize=5",
      "dmPaperSize=8", "dmPaperSize=9", "dmPaperSize=11", "dmPaperSize=300", "dmPaperWidth=1000",
      "dmPaperLength=2000", "dmPaperSize=256 dmPaperWidth=1000 dmPaperLength=2000",
      "dmPaperSize=256 dmPaperWidth=1000 dmPaperLength=20", "dmScale=50", "dmFormName=A4"}},
    {"Copies and sides",
     {"dmCopies=0", "dmCopies=2", "dmCopies=9999", "dmCollate=0", "dmCollate=1", "dmCollate=2", "dmDuplex=1",
      "dmDuplex=2", "dmDuplex=3", "dmDuplex=4"}},
    {"Source and medium",
     {"dmDefaultSource=1", "dmDefaultSource=4", "dmDefaultSource=15", "dmDefaultSource=257",
      "dmDefaultSource=1025", "dmDefaultSource=1028", "dmDefaultSource=2000", "dmDefaultSource=2001",
      "dmMediaType=1", "dmMediaType=4", "dmMediaType=256"}},
    {"Quality and colour",
     {"dmPrintQuality=300 dmYResolution=300",
      "dmPrintQuality=600 dmYResolution=600",
      "dmPrintQuality=1200 dmYResolution=1200",
      "dmPrintQuality=300",
      "dmYResolution=300",
      "dmPrintQuality=65532",
      "dmColor=0",
      "dmColor=1",
      "dmColor=2",
      "dmTTOption=1",
      "dmTTOption=2",
      "dmTTOption=3",
      "dmTTOption=4",
      "dmTTOption=5",
      "dmICMMethod=1",
      "dmICMMethod=2",
      "dmICMMethod=5",
      "dmICMIntent=1",
      "dmICMIntent=2",
      "dmICMIntent=5",
      "dmDitherType=1"}},
    {"What says whose record it is",
     {"dmDeviceName=Other", "dmDeviceName=", "dmSpecVersion=1024", "dmDriverVersion=2610",
      "dmDriverVersion=2612", "dmSize=156", "dmDriverExtra=0", "dmFields=0", "dmFields=1"}},
    {"Kept at zero",
     {"dmLogPixels=1", "dmBitsPerPel=1", "dmPelsWidth=1", "dmPelsHeight=1", "dmDisplayFlags=1",
      "dmDisplayFrequency=1", "dmReserved1=1", "dmReserved2=1", "dmPanningWidth=1", "dmPanningHeight=1"}},
};

std::vector<std::string> Words(const std::string& text)
{
    std::vector<std::string> words;
    size_t nAt = 0;
    while (nAt < text.size()) {
        size_t nEnd = std::min(text.find(' ', nAt), text.size());
        words.push_back(text.substr(nAt, nEnd - nAt));
        nAt = nEnd + 1;
    }
    return words;
}

/* Members that a script sees, and the scaling that a paper can bring with it. */
bool IsShown(const std::string& name)
{
    return name.starts_with("dm") || name == "sScale" || name == "sScaleTarget";
}

bool IsRefused(HANDLE hPrinter, DriverDevmode record)
{
    PrinterCall call(hPrinter);
    return !ValidatePublicPart(call, &record, nullptr) ||
           !ValidatePrivatePart(call, &record.rPrivate, nullptr);
}

/* One cell: what became of the changed members, then what followed. */
std::string Cell(HANDLE hPrinter, const WideText& wcPrinter, const DriverDevmode& standard,
                 const std::vector<std::string>& changes)
{
    DriverDevmode asked = standard;
    std::set<std::string> names;
    std::vector<std::string> cells;
    for (const std::string& change : changes) {
        SetRecordField(&asked, change);
        names.insert(change.substr(0, change.find('=')));
    }
    if (asked.dmSize + asked.dmDriverExtra < RECORD_SIZE) {
        return "the basic members alone";
    }
    if (IsRefused(hPrinter, asked)) {
        return "refused";
    }
    DriverDevmode in = asked;
    DriverDevmode merged = MergeOnce(hPrinter, wcPrinter, &in, 10).record;
    for (const std::string& change : changes) {
        std::string name = change.substr(0, change.find('='));
        std::string got = FieldOf(merged, name).value;
        std::string cell = got == FieldOf(asked, name).value ? "kept" : "-> " + got;
        if (cells.empty() || cells.back() != cell) {
            cells.push_back(cell);
        }
    }
    std::string text;
    for (const std::string& cell : cells) {
        text += (text.empty() ? "" : ", ") + cell;
    }
    std::string behind;
    for (const FieldValue& field : DifferingFields(standard, merged)) {
        if (!names.count(field.name) && IsShown(field.name)) {
            behind += (behind.empty() ? "; " : ", ") + field.name + " " + field.value;
        }
    }
    return text + behind;
}

std::string Line(const std::string& change, const std::vector<std::string>& cells)
{
    std::string line = "| `" + change + "` |";
    for (const std::string& cell : cells) {
        line += " " + cell + " |";
    }
    return line + "\n";
}

} // namespace

std::string ScriptingPage(const std::string& package)
{
    std::map<std::string, std::vector<std::string>> cells;
    std::string head = "| set |", rule = "|---|", standards;
    for (const char* cSection : acSections) {
        WideText wcName = StartModel(cSection, package, true).wcName;
        {
            OpenSample printer(wcName);
            DriverDevmode standard = MergeOnce(printer.hPrinter, wcName, nullptr, 2).record;
            standard = MergeOnce(printer.hPrinter, wcName, &standard, 10).record;
            for (const Group& group : aGroups) {
                for (const char* cChange : group.changes) {
                    cells[cChange].push_back(Cell(printer.hPrinter, wcName, standard, Words(cChange)));
                }
            }
            standards += std::string("| ") + cSection + " |";
            for (const char* cName : {"dmFields", "dmPaperSize", "dmDefaultSource", "dmPrintQuality",
                                      "dmColor", "dmDuplex", "dmMediaType"}) {
                standards += " " + FieldOf(standard, cName).value + " |";
            }
            standards += "\n";
        }
        StopMachine();
        head += std::string(" ") + cSection + " |";
        rule += "---|";
    }
    std::string page = cIntroduction;
    page +=
        "\n## The defaults\n\n| printer | dmFields | dmPaperSize | dmDefaultSource | dmPrintQuality | dmColor | "
        "dmDuplex | dmMediaType |\n|---|---|---|---|---|---|---|---|\n" +
        standards;
    for (const Group& group : aGroups) {
        page += std::string("\n## ") + group.cTitle + "\n\n" + head + "\n" + rule + "\n";
        for (const char* cChange : group.changes) {
            page += Line(cChange, cells[cChange]);
        }
    }
    return page;
}
