/* Puts printers on the hosted machine: a sample of the package as its INF lists it, or a bare description. */
#ifndef TQUI_TOOLS_TQ_SAMPLE_PRINTER_H
#define TQUI_TOOLS_TQ_SAMPLE_PRINTER_H

#include <filesystem>

#include "hosted/machine.h"
#include "tools/tq/inf.h"

/* Where the driver's files lie on the machine, with a backslash at the end. */
constexpr const WCHAR* wcDriverFolder = TEXT("C:\\Windows\\System32\\spool\\DRIVERS\\x64\\3\\");

/* The sample's files as the spooler would list them; those that the folder holds are put on the machine. A print
   processor that it does not hold, as the hosted build makes none, is a file of one blank. The printer bears the
   model's name. */
PrinterSetup InstallSample(const InfModel& model, const std::filesystem::path& folder);

/* A printer of this name whose driver has one dependent file, the description with these bytes, and the two
   language libraries that the folder holds, if any. */
PrinterSetup InstallDescription(const WideText& wcName, const Bytes& description,
                                const std::filesystem::path& folder);

/* Bytes of a file of this disk. Throws std::runtime_error when it cannot be read. */
Bytes ReadDiskFile(const std::filesystem::path& path);

/* Opens a printer of the machine. Throws std::runtime_error when there is none of that name. */
struct OpenSample {
    HANDLE hPrinter;
    explicit OpenSample(const WideText& wcName);
    ~OpenSample();
    OpenSample(const OpenSample&) = delete;
    OpenSample& operator=(const OpenSample&) = delete;
};

#endif
