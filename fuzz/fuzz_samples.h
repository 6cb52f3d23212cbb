/* The sample models as printers of the machine, for the fuzz targets that change one of them. */
#ifndef TQUI_FUZZ_SAMPLES_H
#define TQUI_FUZZ_SAMPLES_H

#include "fuzz/require.h"
#include "places.h"
#include "tools/tq/sample_printer.h"
#include "xpi_format.h"

inline constexpr const char* acStems[] = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};
inline constexpr size_t SAMPLES = std::size(acStems);

/* Adds sample i as a printer of one letter with no file but its description. Result: that file's bytes. */
inline Bytes AddFuzzSample(size_t i, PrinterSetup* pSetup)
{
    std::string path = std::string(TQUI_SOURCE_DIR "/package/models/") + acStems[i] + ".toml";
    Bytes text = ReadDiskFile(path);
    Bytes description = CompileXpi({reinterpret_cast<const char*>(text.data()), text.size()}, path).bytes;
    Require(!description.empty());
    pSetup->wcName = pSetup->wcDriverName = WideText(1, static_cast<WCHAR>(u'A' + i));
    pSetup->tcDriverPath = u"C:\\FUZZ\\DRIVER.DLL";
    pSetup->atcDependentFiles = {u"C:\\FUZZ\\" + pSetup->wcName + u".XPI"};
    PutFile(pSetup->atcDependentFiles[0], description);
    AddPrinter(*pSetup);
    return description;
}

#endif
