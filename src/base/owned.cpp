/* Blocks of the process heap. */
#include "base/owned.h"

void* AllocateBlock(u64 cbSize)
{
    if (cbSize == 0 || cbSize > BLOCK_LIMIT) {
        return nullptr;
    }
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, static_cast<SIZE_T>(cbSize));
}

void* AllocateRows(u64 nCount, u64 cbRow)
{
    if (cbRow == 0 || nCount > BLOCK_LIMIT / cbRow) {
        return nullptr;
    }
    return AllocateBlock(nCount * cbRow);
}

void FreeBlock(void* pBlock)
{
    if (pBlock) {
        HeapFree(GetProcessHeap(), 0, pBlock);
    }
}
