/* Writes past a buffer on its own stack, for the test of the stack guard, with the guard's own unit and flags of the
   library: overrun_program UNITS copies a wide text of that many 16-bit units into a buffer of 16. The text is what an
   attacker would write who knows the guard: wherever the guard can lie it has the guard's units, but a text has no NUL.
   Exit code: 0 when the copying function came back, 3 when the process was ended by nobody but ran on elsewhere. */
#include <cstdlib>

#include <windows.h>

#include "platform/stack_guard.h"

extern "C" unsigned long long __stack_chk_guard;

namespace {

constexpr int BUFFER_UNITS = 16, TEXT_UNITS = 512, GUARD_UNITS = 4;

WCHAR wcText[TEXT_UNITS + 1];

void MakeText(int nUnits)
{
    const unsigned long long ullGuard = __stack_chk_guard;
    for (int n = 0; n < nUnits; n++) {
        const WCHAR wcUnit = static_cast<WCHAR>(ullGuard >> n % GUARD_UNITS * 16);
        wcText[n] = wcUnit ? wcUnit : L'A';
    }
}

__attribute__((noinline)) WCHAR CopyText(const WCHAR* wcFrom)
{
    alignas(16) WCHAR wcBuffer[BUFFER_UNITS];
    volatile WCHAR* wcTo = wcBuffer; /* the compiler sees no buffer whose size it knows */
    do {
        *wcTo++ = *wcFrom;
    } while (*wcFrom++);
    return wcBuffer[0];
}

LONG WINAPI EndElsewhere(EXCEPTION_POINTERS*)
{
    ExitProcess(3);
}

} // namespace

UNGUARDED int main(int nArguments, char** acArguments)
{
    SetStackGuard();
    const int nUnits = nArguments == 2 ? std::atoi(acArguments[1]) : 0;
    if (nUnits < 1 || nUnits > TEXT_UNITS) {
        return 2;
    }
    SetUnhandledExceptionFilter(EndElsewhere);
    MakeText(nUnits);
    return CopyText(wcText) == 0;
}
