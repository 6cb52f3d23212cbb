#include "tools/tq/caps.h"

#include <filesystem>
#include <ostream>

#include "hosted/standin.h"
#include "tools/tq/ask.h"
#include "tools/tq/sample_printer.h"

int RunCaps(const CapsOptions& options, std::ostream& out)
{
    namespace fs = std::filesystem;
    StartMachine();
    SetUserLanguage(static_cast<u16>(std::stoul(options.language, nullptr, 16)));
    SetLocaleValue(u"iMeasure", options.bMetric ? u"0" : u"1");
    PrinterSetup setup;
    fs::path path(options.what);
    if (fs::is_regular_file(path)) {
        setup = InstallDescription(Widen(path.stem().string()), ReadDiskFile(path), options.package);
    } else {
        setup = InstallSample(FindInfModel(ReadInf(fs::path(options.package) / "tqui.inf"), options.what),
                              options.package);
    }
    std::vector<CapabilityAnswer> answers;
    {
        OpenSample printer(setup.wcName);
        for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
            answers.push_back(AskCapability(printer.hPrinter, setup.wcName, wQuestion));
        }
    }
    StopMachine();
    if (options.bRaw) {
        for (const CapabilityAnswer& answer : answers) {
            out << RawLine(answer) << "\n";
        }
    } else {
        out << Narrow(setup.wcName) << "\n" << ReadableLines(answers);
    }
    return 0;
}
