/* Windows build only: what the system's loader reads of the library beyond its header. The toolchain's linker does not
   enter these tables into the header, so scripts/load-config does it behind the linking; it finds them in a section of
   their own. */
#include <cstddef>

#include "platform/process.h"

namespace {

constexpr DWORD SHADOW_STACK_COMPATIBLE = 1;   /* IMAGE_DLLCHARACTERISTICS_EX_CET_COMPAT */
constexpr DWORD EXTENDED_CHARACTERISTICS = 20; /* IMAGE_DEBUG_TYPE_EX_DLLCHARACTERISTICS */

struct LoaderTables {
    IMAGE_LOAD_CONFIG_DIRECTORY64 config;
    IMAGE_DEBUG_DIRECTORY characteristics;
    DWORD dwCharacteristics;
};
static_assert(sizeof(IMAGE_LOAD_CONFIG_DIRECTORY64) == 112 && sizeof(IMAGE_DEBUG_DIRECTORY) == 28);
static_assert(offsetof(IMAGE_LOAD_CONFIG_DIRECTORY64, Reserved1) == 78);
static_assert(offsetof(LoaderTables, characteristics) == 112 &&
              offsetof(LoaderTables, dwCharacteristics) == 140);

/* The imported libraries are looked for in the system's folder alone: the flags stand in the word that older headers
   call reserved. And no function of ours leaves by another way than its caller's, so the system may keep the return
   addresses a second time and hold each return against them. */
constexpr LoaderTables MakeTables()
{
    LoaderTables tables = {};
    tables.config.Size = sizeof tables.config;
    tables.config.Reserved1 = LOAD_LIBRARY_SEARCH_SYSTEM32;
    tables.characteristics.Type = EXTENDED_CHARACTERISTICS;
    tables.characteristics.SizeOfData = sizeof tables.dwCharacteristics;
    tables.dwCharacteristics = SHADOW_STACK_COMPATIBLE;
    return tables;
}

} // namespace

extern "C" {
extern const LoaderTables _load_config_used;
__attribute__((section(".loader"), used)) constinit const LoaderTables _load_config_used = MakeTables();
}
