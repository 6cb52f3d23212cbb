/* Records and rows are compared whole, gaps included. */
#ifndef TQUI_TESTS_SAME_BYTES_H
#define TQUI_TESTS_SAME_BYTES_H

#include <algorithm>

#include "platform/types.h"

template <class T> bool SameBytes(const T& one, const T& other)
{
    const u8* pOne = reinterpret_cast<const u8*>(&one);
    return std::equal(pOne, pOne + sizeof one, reinterpret_cast<const u8*>(&other));
}

#endif
