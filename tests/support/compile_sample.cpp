/* Samples with fields of their own, by the compiler of descriptions. */
#include "places.h"
#include "support/sample_machine.h"
#include "xpi_format.h"

Bytes CompileSample(const std::string& stem,
                    const std::vector<std::pair<std::string, std::string>>& overrides)
{
    std::string path = TQUI_SOURCE_DIR "/package/models/" + stem + ".toml";
    Bytes text = ReadDiskFile(path);

    std::vector<XpiOverride> changes;
    for (const auto& [key, value] : overrides) {
        changes.push_back({key, value});
    }
    XpiCompiled compiled =
        CompileXpi({reinterpret_cast<const char*>(text.data()), text.size()}, path, changes);
    for (const XpiError& error : compiled.errors) {
        ADD_FAILURE() << FormatXpiError(path, error);
    }
    return compiled.bytes;
}
