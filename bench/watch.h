/* What the hand-written benchmarks share: the fastest of many rounds, and a line of outcome. */
#ifndef TQUI_BENCH_WATCH_H
#define TQUI_BENCH_WATCH_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

/* Nothing of what is measured may be left out by the compiler. */
template <class T> void Use(T& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

/* Nanoseconds of one call: the best of many rounds, which are taken in turns with those of its rival. */
struct Watch {
    double best = 1e18;

    template <class Body> void Round(int nTimes, Body body)
    {
        auto begun = std::chrono::steady_clock::now();
        for (int i = 0; i < nTimes; i++) {
            body();
        }
        std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - begun;
        best = std::min(best, took.count() / nTimes);
    }
};

/* Result: 1 when the ratio is over its figure. */
inline int Report(const char* cSection, const char* cWhat, double nanoseconds, double floor, double figure)
{
    double ratio = nanoseconds / floor;
    std::printf("%-6s %-38s %9.0f ns  %5.2f times (at most %.2f)%s\n", cSection, cWhat, nanoseconds, ratio,
                figure, ratio > figure ? "  OVER" : "");
    return ratio > figure;
}

inline void Require(bool bTrue, const char* cSection, const char* cWhat)
{
    if (!bTrue) {
        std::printf("%s: %s\n", cSection, cWhat);
        std::exit(1);
    }
}

#endif
