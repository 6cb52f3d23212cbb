/* Text from a format and typed arguments. One formatter serves wide and narrow text, since what the C
   library's %s takes differs between libraries.

   Conversions: %d, %u, %x, %X, %s and %%, the numbers with an optional leading 0, a width up to 20 and an
   optional l. %s takes wide text in a wide format and narrow text in a narrow one. A format that asks for
   anything else, for more arguments than there are, or for another type than was given is copied as it
   stands, without any replacement. */
#ifndef TQUI_BASE_FORMAT_H
#define TQUI_BASE_FORMAT_H

#include "platform/basic.h"
#include "platform/types.h"

template <class Char> struct FormatArgument {
    enum Kind { SIGNED, UNSIGNED, TEXT_ARGUMENT } kind;
    i64 lNumber;
    const Char* pText;

    constexpr FormatArgument(int nValue) : kind(SIGNED), lNumber(nValue), pText(nullptr) {}
    constexpr FormatArgument(long lValue) : kind(SIGNED), lNumber(lValue), pText(nullptr) {}
    constexpr FormatArgument(unsigned nValue) : kind(UNSIGNED), lNumber(nValue), pText(nullptr) {}
    constexpr FormatArgument(unsigned long ulValue)
        : kind(UNSIGNED), lNumber(static_cast<i64>(ulValue & 0xFFFFFFFF)), pText(nullptr)
    {
    }
    constexpr FormatArgument(const Char* pValue) : kind(TEXT_ARGUMENT), lNumber(0), pText(pValue) {}
};

using WideArgument = FormatArgument<WCHAR>;
using NarrowArgument = FormatArgument<char>;

/* Fills a buffer of cchOut characters, always ended by a NUL, from a format and its arguments.
   Result: 1 if all fitted, 0 if the text was cut at the buffer's end (a path is then to be given up). */
int FormatWideList(WCHAR* wcOut, int cchOut, const WCHAR* wcFormat, const WideArgument* pArguments,
                   int nCount);
int FormatNarrowList(char* cOut, int cchOut, const char* cFormat, const NarrowArgument* pArguments,
                     int nCount);

template <class... Arguments>
int FormatWide(WCHAR* wcOut, int cchOut, const WCHAR* wcFormat, Arguments... arguments)
{
    const WideArgument aArguments[] = {WideArgument(arguments)..., WideArgument(0)};
    return FormatWideList(wcOut, cchOut, wcFormat, aArguments, static_cast<int>(sizeof...(arguments)));
}

template <class... Arguments>
int FormatNarrow(char* cOut, int cchOut, const char* cFormat, Arguments... arguments)
{
    const NarrowArgument aArguments[] = {NarrowArgument(arguments)..., NarrowArgument(0)};
    return FormatNarrowList(cOut, cchOut, cFormat, aArguments, static_cast<int>(sizeof...(arguments)));
}

#endif
