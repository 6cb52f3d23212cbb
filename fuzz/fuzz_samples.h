/* The sample models as printers of the machine, for the fuzz targets that change one of them. */
#ifndef TQUI_FUZZ_SAMPLES_H
#define TQUI_FUZZ_SAMPLES_H

#include <array>
#include <cstring>
#include <optional>

#include "description/printer_call.h"
#include "fuzz/require.h"
#include "places.h"
#include "settings/driver_devmode.h"
#include "tools/tq/sample_printer.h"
#include "xpi_format.h"

inline constexpr std::array acStems = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};

/* A printer of one letter with no file but its description. */
struct FuzzSample {
    WideText wcName, tcXpi;
    Bytes description;
    std::optional<OpenSample> printer;
    std::optional<PrinterCall> call;
};

/* Sample i; all are there from the first time on, and stay: the machine may go first. */
inline FuzzSample& SampleOf(size_t i)
{
    static FuzzSample* const aSamples = [] {
        StartOnce();
        auto* aAll = new FuzzSample[acStems.size()];
        for (size_t n = 0; n < acStems.size(); n++) {
            FuzzSample& sample = aAll[n];
            const std::string path = std::string(TQUI_SOURCE_DIR "/package/models/") + acStems[n] + ".toml";
            const Bytes text = ReadDiskFile(path);
            sample.description =
                CompileXpi({reinterpret_cast<const char*>(text.data()), text.size()}, path).bytes;
            Require(!sample.description.empty());
            PrinterSetup setup;
            sample.wcName = setup.wcName = setup.wcDriverName = WideText(1, static_cast<WCHAR>(u'A' + n));
            setup.tcDriverPath = u"C:\\FUZZ\\DRIVER.DLL";
            sample.tcXpi = u"C:\\FUZZ\\" + setup.wcName + u".XPI";
            setup.atcDependentFiles = {sample.tcXpi};
            PutFile(sample.tcXpi, sample.description);
            AddPrinter(setup);
            sample.printer.emplace(sample.wcName);
            sample.call.emplace(sample.printer->hPrinter);
        }
        return aAll;
    }();
    return aSamples[i % acStems.size()];
}

/* Lays the bytes over the first of a record. */
inline void LayOver(DriverDevmode* pRecord, const u8* pBytes, size_t cb)
{
    std::memcpy(static_cast<void*>(pRecord), pBytes, cb < sizeof *pRecord ? cb : sizeof *pRecord);
}

#endif
