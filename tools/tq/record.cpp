/* The command `tq record`. */
#include "tools/tq/record.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "document/defaults.h"
#include "hosted/standin.h"
#include "tools/save_file.h"
#include "tools/tq/record_text.h"

PrinterSetup StartModel(const std::string& model, const std::string& package, bool bMetric)
{
    namespace fs = std::filesystem;
    StartMachine();
    SetLocaleValue(u"iMeasure", bMetric ? u"0" : u"1");
    fs::path path(model);
    if (fs::is_regular_file(path)) {
        return InstallDescription(Widen(path.stem().string()), ReadDiskFile(path), package);
    }
    return InstallSample(FindInfModel(ReadInf(fs::path(package) / "tqui.inf"), model), package);
}

DriverDevmode ReadRecordFile(const std::string& file)
{
    Bytes bytes = ReadDiskFile(file);
    DriverDevmode record;
    if (bytes.size() == sizeof record) {
        std::memcpy(&record, bytes.data(), sizeof record);
        return record;
    }
    if (std::find(bytes.begin(), bytes.end(), u8{0}) != bytes.end()) {
        throw std::runtime_error(file + ": a record has " + std::to_string(sizeof record) +
                                 " bytes, this has " + std::to_string(bytes.size()));
    }
    return RecordFromText({bytes.begin(), bytes.end()});
}

void WriteRecordFile(const std::string& path, const DriverDevmode& record)
{
    SaveFile(path, &record, sizeof record);
}

int RunRecord(const RecordOptions& options, std::ostream& out)
{
    DriverDevmode record;
    WideText wcName = StartModel(options.model, options.package, options.bMetric).wcName;
    {
        OpenSample printer(wcName);
        PrinterCall call(printer.hPrinter);
        BuildDefaultRecord(call, wcName.data(), &record, 1);
    }
    StopMachine();
    for (const std::string& assignment : options.assignments) {
        SetRecordField(&record, assignment);
    }
    if (options.file.empty()) {
        out << (options.bAll ? FieldLines(RecordFields(record)) : RecordText(record));
        return 0;
    }
    WriteRecordFile(options.file, record);
    return 0;
}
