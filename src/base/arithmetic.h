/* Checked arithmetic: products in 64 bits, divisions toward zero, results brought to their field. */
#ifndef TQUI_BASE_ARITHMETIC_H
#define TQUI_BASE_ARITHMETIC_H

#include "platform/types.h"

/* lValue * lMul / lDiv with the product in 64 bits, rounded toward zero.
   Result: 0 for a zero divisor; else the quotient, which the caller brings to its field. */
constexpr i64 MulDivTrunc(i32 lValue, i32 lMul, i32 lDiv)
{
    return lDiv == 0 ? 0 : static_cast<i64>(lValue) * lMul / lDiv;
}

/* The low 16 or 32 bits, as a store into a field of that width keeps them. */
constexpr i16 LowWord(i64 lValue)
{
    return static_cast<i16>(static_cast<u16>(static_cast<u64>(lValue)));
}

constexpr i32 LowLong(i64 lValue)
{
    return static_cast<i32>(static_cast<u32>(static_cast<u64>(lValue)));
}

/* Absolute value in 32 bits, so that -32768 has one. */
constexpr i32 AbsoluteCode(i16 sCode)
{
    return sCode < 0 ? -static_cast<i32>(sCode) : sCode;
}

/* 1 when bit nCode of a bit set with the high bit first is set; 0 for codes outside the set's cBits. */
constexpr int IsBitSet(const u8* pBits, int cBits, int nCode)
{
    return nCode >= 0 && nCode < cBits && (pBits[nCode / 8] >> (7 - nCode % 8) & 1);
}

#endif
