#include "capability_text.h"

#include <algorithm>

size_t CapabilityRowSize(int nQuestion)
{
    switch (nQuestion) {
    case 2: return 2;    /* DC_PAPERS */
    case 3: return 8;    /* DC_PAPERSIZE */
    case 6: return 2;    /* DC_BINS */
    case 12: return 48;  /* DC_BINNAMES */
    case 13: return 8;   /* DC_ENUMRESOLUTIONS */
    case 16: return 128; /* DC_PAPERNAMES */
    case 25: return 64;  /* DC_PERSONALITY */
    case 29: return 128; /* DC_MEDIAREADY */
    case 33: return 4;   /* DC_NUP */
    case 34: return 128; /* DC_MEDIATYPENAMES */
    case 35: return 4;   /* DC_MEDIATYPES */
    default: return 0;
    }
}

static std::string RowBytes(const CapabilityCall& call, int nQuestion, int nRows)
{
    constexpr size_t cbGuard = 256;
    constexpr unsigned char bGuard = 0xCD;
    if (nRows <= 0) {
        return "-";
    }
    const size_t cbRows = CapabilityRowSize(nQuestion) * static_cast<size_t>(nRows);
    std::vector<unsigned char> block(cbRows + cbGuard);
    std::fill(block.begin() + static_cast<std::ptrdiff_t>(cbRows), block.end(), bGuard);
    const int nFilled = call(nQuestion, block.data());
    if (nFilled != nRows) {
        return "ANOTHER COUNT WITH A BUFFER: " + std::to_string(nFilled);
    }
    if (std::count(block.begin() + static_cast<std::ptrdiff_t>(cbRows), block.end(), bGuard) !=
        static_cast<std::ptrdiff_t>(cbGuard)) {
        return "WROTE BEHIND THE ROWS";
    }
    std::string text;
    for (size_t n = 0; n < cbRows; n++) {
        text += "0123456789abcdef"[block[n] >> 4];
        text += "0123456789abcdef"[block[n] & 15];
    }
    return text;
}

std::vector<std::string> CapabilityLines(const CapabilityCall& call)
{
    std::vector<std::string> lines;
    for (int nQuestion = 1; nQuestion <= nCapabilityQuestions; nQuestion++) {
        const int nResult = call(nQuestion, nullptr);
        lines.push_back(std::to_string(nQuestion) + " " + std::to_string(static_cast<unsigned>(nResult)) +
                        " " + (CapabilityRowSize(nQuestion) > 0 ? RowBytes(call, nQuestion, nResult) : "-"));
    }
    return lines;
}
