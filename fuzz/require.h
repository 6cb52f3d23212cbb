/* What a fuzz target demands, and its machine. */
#ifndef TQUI_FUZZ_REQUIRE_H
#define TQUI_FUZZ_REQUIRE_H

#include <cstdlib>

#include "hosted/machine.h"

/* The fuzzer keeps the input that ends the program. */
inline void Require(bool bTrue)
{
    if (!bTrue) {
        std::abort();
    }
}

/* One machine for all runs of a target. */
inline void StartOnce()
{
    static const bool bStarted = (StartMachine(), true);
    static_cast<void>(bStarted);
}

#endif
