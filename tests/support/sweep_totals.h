/* Prints at a program's end what its sweeps have done; the program's own least figures are asserted when all of its
   tests ran. Include it in one source and call ExpectTotals there. */
#ifndef TQUI_TESTS_SWEEP_TOTALS_H
#define TQUI_TESTS_SWEEP_TOTALS_H

#include <cstdio>

#include <gtest/gtest.h>

#include "support/sweep.h"

class TotalsPrinter : public ::testing::Environment {
  public:
    explicit TotalsPrinter(const SweepTotals& wanted) : least(wanted) {}
    void TearDown() override
    {
        const SweepTotals& t = sweepTotals;
        std::printf(
            "[  TOTALS  ] %lld faults in %.0f s, %lld false answers in %.0f s, %lld loads in %.0f s\n",
            static_cast<long long>(t.nInjections), t.dFaultSeconds, static_cast<long long>(t.nLies),
            t.dLieSeconds, static_cast<long long>(t.nLoads), t.dLoadSeconds);
        const SweepBudget& budget = sweepBudget;
        if (budget.IsSet()) {
            std::printf("[  BUDGET  ] visited %zu of %zu steps\n", budget.nVisited, budget.nSteps);
            EXPECT_GE(budget.nVisited * SweepBudget::LEAST_PART, budget.nSteps);
        }
        if (GTEST_FLAG_GET(filter) == "*" && budget.IsSet()) {
            EXPECT_GE(static_cast<i64>(budget.nSteps), least.nInjections + least.nLies + least.nLoads);
            EXPECT_GT(budget.nVisited, 0u);
        } else if (GTEST_FLAG_GET(filter) == "*") {
            EXPECT_GE(t.nInjections, least.nInjections);
            EXPECT_GE(t.nLies, least.nLies);
            EXPECT_GE(t.nLoads, least.nLoads);
        }
    }

  private:
    SweepTotals least;
};

/* For a static of the program; gtest frees what it gives. */
inline ::testing::Environment* ExpectTotals(i64 nInjections, i64 nLies, i64 nLoads)
{
    SweepTotals least;
    least.nInjections = nInjections;
    least.nLies = nLies;
    least.nLoads = nLoads;
    return ::testing::AddGlobalTestEnvironment(new TotalsPrinter(least));
}

#endif
