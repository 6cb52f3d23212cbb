/* The command `tq merge`. */
#include "tools/tq/merge.h"

#include <cstring>
#include <ostream>

#include "entry/exports.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"

MergedRecord MergeOnce(HANDLE hPrinter, const WideText& wcPrinter, DriverDevmode* pIn, unsigned uMode)
{
    constexpr u8 FILLER = 0xA5;
    MergedRecord merged;
    DriverDevmode before;
    WideText wcName = wcPrinter;
    std::memset(static_cast<void*>(&before), FILLER, sizeof before);
    merged.record = before;
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof header;
    header.hPrinter = hPrinter;
    header.pszPrinterName = wcName.data();
    header.pdmIn = reinterpret_cast<PDEVMODEW>(pIn);
    header.pdmOut = reinterpret_cast<PDEVMODEW>(&merged.record);
    header.cbOut = RECORD_SIZE;
    header.fMode = uMode;
    DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    merged.bWritten = !DifferingFields(before, merged.record).empty();
    return merged;
}

int RunMerge(const MergeOptions& options, std::ostream& out)
{
    DriverDevmode given = recordTemplate, in;
    if (!options.record.empty()) {
        given = ReadRecordFile(options.record);
    }
    in = given;
    MergedRecord merged;
    WideText wcName = StartModel(options.model, options.package, options.bMetric).wcName;
    {
        OpenSample printer(wcName);
        merged = MergeOnce(printer.hPrinter, wcName, options.record.empty() ? nullptr : &in, options.uMode);
    }
    StopMachine();
    if (options.file.empty()) {
        for (const FieldValue& field : DifferingFields(given, in)) {
            out << "the caller's record: " << field.name << " " << FieldOf(given, field.name).value << " -> "
                << field.value << "\n";
        }
    }
    if (!merged.bWritten) {
        out << "nothing was written\n";
        return 1;
    }
    if (!options.file.empty()) {
        WriteRecordFile(options.file, merged.record);
        return 0;
    }
    std::vector<FieldValue> fields = DifferingFields(given, merged.record);
    for (FieldValue& field : fields) {
        field.value = FieldOf(given, field.name).value + " -> " + field.value;
    }
    out << (fields.empty() ? "the record is as it was\n" : FieldLines(fields));
    return 0;
}
