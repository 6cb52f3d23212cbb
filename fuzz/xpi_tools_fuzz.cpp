/* Any bytes as a description file: dump, review, and compile what the dump says. Any bytes as the compiler's
 * text. */
#include "xpi_format.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::span<const std::uint8_t> file(data, size);
    XpiCompiled text = CompileXpi(std::string(file.begin(), file.end()), "");
    if (!text.bytes.empty() && CompileXpi(DumpXpi(text.bytes), "").bytes != text.bytes) {
        std::abort(); /* a file of our own must come back */
    }
    LintXpi(file);
    XpiCompiled again = CompileXpi(DumpXpi(file), "");
    if (again.bytes.empty() != !again.errors.empty()) {
        std::abort();
    }
    return 0;
}
