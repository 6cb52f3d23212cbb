/* Installs sample printers on the hosted machine. */
#include "tools/tq/sample_printer.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "hosted/standin.h"

namespace {

/* A driver file as the spooler names it; its content, if the folder has it, is put there. */
WideText DriverFile(const std::string& name, const std::filesystem::path& folder)
{
    WideText tcPath = wcDriverFolder + Widen(name);
    if (std::filesystem::exists(folder / name)) {
        PutFile(tcPath, ReadDiskFile(folder / name));
    }
    return tcPath;
}

} // namespace

Bytes ReadDiskFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path.string() + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

PrinterSetup InstallSample(const InfModel& model, const std::filesystem::path& folder)
{
    PrinterSetup setup;
    setup.wcName = Widen(model.name);
    setup.wcDriverName = setup.wcName;
    setup.tcDriverPath = DriverFile(model.driverFile, folder);
    setup.tcConfigFile = DriverFile(model.configFile, folder);
    setup.tcDataFile = DriverFile(model.dataFile, folder);
    setup.tcHelpFile = model.helpFile.empty() ? WideText() : DriverFile(model.helpFile, folder);
    for (const std::string& file : model.dependentFiles) {
        setup.atcDependentFiles.push_back(DriverFile(file, folder));
    }
    for (const std::string& file : model.processorFiles) {
        const bool bThere = std::filesystem::exists(folder / file);
        PutFile(tcProcessorFolder + Widen(file), bThere ? ReadDiskFile(folder / file) : Bytes(1, ' '));
    }
    AddPrinter(setup);
    return setup;
}

PrinterSetup InstallDescription(const WideText& wcName, const Bytes& description,
                                const std::filesystem::path& folder)
{
    PrinterSetup setup;
    setup.wcName = wcName;
    setup.wcDriverName = wcName;
    setup.tcDriverPath = wcDriverFolder + WideText(u"DRIVER.DLL");
    setup.tcConfigFile = wcDriverFolder + WideText(u"TQUI.DLL");
    setup.tcDataFile = wcDriverFolder + WideText(u"FONTS.FDF");
    WideText tcXpi = wcDriverFolder + WideText(u"MODEL.XPI");
    PutFile(tcXpi, description);
    setup.atcDependentFiles.push_back(tcXpi);
    for (const char* cLibrary : {"TXT.DLL", "ENUS.DLL"}) {
        if (std::filesystem::exists(folder / cLibrary)) {
            setup.atcDependentFiles.push_back(DriverFile(cLibrary, folder));
        }
    }
    AddPrinter(setup);
    return setup;
}

OpenSample::OpenSample(const WideText& wcName) : hPrinter(nullptr)
{
    WideText wcCopy = wcName;
    PRINTER_DEFAULTSW defaults = {};
    defaults.DesiredAccess = PRINTER_ACCESS_USE;
    if (!OpenPrinterW(wcCopy.data(), &hPrinter, &defaults)) {
        throw std::runtime_error("no printer \"" + Narrow(wcName) + "\" on this machine");
    }
}

OpenSample::~OpenSample()
{
    ClosePrinter(hPrinter);
}
