/* Must fail, each test in its own way: the runner calls it first and stops when it cannot turn red. */
#include <gtest/gtest.h>

#include "support/both_builds.h"

#ifndef _WIN32
#include "hosted/standin.h"
#endif

TEST(Canary, FailsAnExpectation)
{
    EXPECT_EQ(WideString(TEXT("red")), WideString(TEXT("green")));
}

#ifndef _WIN32

class CanaryMachine : public BothBuilds {};

TEST_F(CanaryMachine, LeaksABlock)
{
    EXPECT_NE(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 16), nullptr);
}

TEST_F(CanaryMachine, MissesAFault)
{
    FailCall(CALL_HeapAlloc, 1);
    void* pBlock = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, 16);
    EXPECT_NE(pBlock, nullptr); /* the fault makes it null: an expectation blind to that would pass */
    EXPECT_EQ(StopFaults(), 1);
}

#endif
