/* Contours of letters, from any bytes as the outline; the first of them are the letter's place. */
#include "fuzz/preview_inputs.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* pData, size_t cbData)
{
    POINT origin = {};
    if (cbData >= sizeof origin) {
        std::memcpy(&origin, pData, sizeof origin);
        TryOutline(pData + sizeof origin, static_cast<u32>(cbData - sizeof origin), origin);
    }
    return 0;
}
