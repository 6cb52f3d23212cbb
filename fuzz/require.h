/* What a fuzz target demands: the fuzzer keeps the input that ends the program. */
#ifndef TQUI_FUZZ_REQUIRE_H
#define TQUI_FUZZ_REQUIRE_H

#include <cstdlib>

inline void Require(bool bTrue)
{
    if (!bTrue) {
        std::abort();
    }
}

#endif
