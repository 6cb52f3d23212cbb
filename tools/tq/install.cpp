/* Lets a printer come and go by its events. All three throw std::runtime_error. */
#include "tools/tq/install.h"

#include <ostream>

#include "entry/exports.h"
#include "hosted/standin.h"
#include "tools/save_file.h"
#include "tools/tq/machine_text.h"
#include "tools/tq/sample_printer.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t STANDIN_BYTES = 1000;

enum : int { EVENT_INITIALIZE = 3, EVENT_DELETE = 4 };

/* The machine while one command runs; Keep stores it again. */
class KeptMachine {
  public:
    explicit KeptMachine(const fs::path& folder) : store(folder / "machine.txt")
    {
        fs::create_directories(folder / "files");
        StartMachineIn(fs::absolute(folder / "files"));
        if (fs::exists(store)) {
            Bytes text = ReadDiskFile(store);
            ReadMachineText({reinterpret_cast<const char*>(text.data()), text.size()});
        }
        SetTickCount(static_cast<u32>(PrinterNames().size()) * 0x1000 + 0x1000);
    }
    ~KeptMachine() { StopMachine(); }
    KeptMachine(const KeptMachine&) = delete;
    KeptMachine& operator=(const KeptMachine&) = delete;

    void Keep() const
    {
        const std::string text = MachineText();
        SaveFile(store, text.data(), text.size());
    }

  private:
    fs::path store;
};

WideText NamedPrinter(const MachineOptions& options)
{
    std::vector<WideText> names = PrinterNames();
    if (options.printer.empty() && names.size() == 1) {
        return names[0];
    }
    for (const WideText& wcName : names) {
        if (SameName(wcName, Widen(options.printer))) {
            return wcName;
        }
    }
    throw std::runtime_error(options.machine + ": no printer \"" + options.printer + "\"");
}

void ShowEffects(std::ostream& out)
{
    for (const std::string& command : StartedPrograms()) {
        out << "started " << command << "\n";
    }
    for (const std::string& printer : AnnouncedPrinters()) {
        out << "told the spooler of " << printer << "\n";
    }
}

} // namespace

int RunInstall(const MachineOptions& options, std::ostream& out)
{
    KeptMachine machine(options.machine);
    PrinterSetup setup = InstallSample(
        FindInfModel(ReadInf(fs::path(options.package) / "tqui.inf"), options.model), options.package);
    WideText wcName = setup.wcName;
    if (!HasFile(setup.tcDataFile)) {
        PutFile(setup.tcDataFile, Bytes(STANDIN_BYTES, ' ')); /* the samples have no font description file */
    }
    BOOL bResult = DrvPrinterEvent(wcName.data(), EVENT_INITIALIZE, 0, 0);
    machine.Keep();
    out << Narrow(wcName) << (bResult ? " is installed\n" : " could not be installed\n");
    ShowEffects(out);
    return bResult ? 0 : 1;
}

int RunUninstall(const MachineOptions& options, std::ostream& out)
{
    KeptMachine machine(options.machine);
    WideText wcName = NamedPrinter(options);
    DrvPrinterEvent(wcName.data(), EVENT_DELETE, 0, 0);
    RemovePrinter(wcName);
    machine.Keep();
    out << Narrow(wcName) << " is gone\n";
    return 0;
}

int RunData(const MachineOptions& options, std::ostream& out)
{
    KeptMachine machine(options.machine);
    out << DescribePrinter(NamedPrinter(options));
    return 0;
}
