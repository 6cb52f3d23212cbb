/* Conversion from wide text to the code page. */
#include "base/narrow.h"

#include "base/wide.h"
#include "platform/text.h"
#include "platform/types.h"

namespace {

constexpr int CHARACTER_BYTES = 4; /* no code page takes more for 16 bits of wide text */

/* Converts nChars characters without a NUL; without a buffer it measures. */
int Convert(const WCHAR* wcText, int nChars, char* cOut, int cbOut)
{
    return WideCharToMultiByte(CP_ACP, 0, wcText, nChars, cOut, cbOut, nullptr, nullptr);
}

} // namespace

OwnedBlock<char> NarrowText(const WCHAR* wcText)
{
    int nChars = WideLength(wcText);
    int cbText = nChars ? Convert(wcText, nChars, nullptr, 0) : 0;
    if ((nChars && cbText < 1) || cbText / CHARACTER_BYTES > nChars) {
        return nullptr;
    }
    OwnedBlock<char> cText(static_cast<char*>(AllocateBlock(static_cast<u64>(cbText) + 1)));
    if (!cText || (nChars && Convert(wcText, nChars, cText.get(), cbText) != cbText)) {
        return nullptr;
    }
    return cText; /* zero-filled: it has its NUL */
}

int NarrowInto(const WCHAR* wcText, char* cOut, int cbOut)
{
    int cbRoom = cbOut - 1;
    /* The longest beginning that fits: nFits characters do, nOver do not (or are more than there can be). */
    int nFits = 0, nOver = BoundedLength(wcText, 2 * cbRoom) + 1;
    int nTry = nOver - 1;
    while (nTry > nFits) {
        int cbText = Convert(wcText, nTry, nullptr, 0);
        if (cbText < 1) {
            cOut[0] = 0;
            return 0;
        }
        if (cbText <= cbRoom) {
            nFits = nTry;
        } else {
            nOver = nTry;
        }
        nTry = nFits + (nOver - nFits) / 2;
    }
    if (nFits && (wcText[nFits - 1] & 0xFC00) == 0xD800 && (wcText[nFits] & 0xFC00) == 0xDC00) {
        nFits--; /* the two halves of a pair are one character */
    }
    int cbDone = nFits ? Convert(wcText, nFits, cOut, cbRoom) : 0;
    int bDone = cbDone >= 0 && cbDone <= cbRoom && (cbDone || !nFits);
    cOut[bDone ? cbDone : 0] = 0;
    return bDone;
}
