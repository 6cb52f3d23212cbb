/* Ownership: blocks of the process heap, open files and modules, released on every way out; the caller's last error. */
#ifndef TQUI_BASE_OWNED_H
#define TQUI_BASE_OWNED_H

#include <memory>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/resources.h"
#include "platform/types.h"

/* A zero-filled block of the process heap, or null when there is no memory or cbSize is 0 or beyond
   BLOCK_LIMIT (no honest structure of ours comes near). Freed with FreeBlock. */
constexpr u64 BLOCK_LIMIT = 0x10000000;
void* AllocateBlock(u64 cbSize);

/* The same for nCount rows of one size; null also when the product is out of range. */
void* AllocateRows(u64 nCount, u64 cbRow);

/* Frees what AllocateBlock gave; null is nothing to free. */
void FreeBlock(void* pBlock);

/* 1 for a handle that can be used: some openers say null on failure, some say the invalid handle. */
inline int IsOpen(HANDLE hObject)
{
    return hObject && hObject != INVALID_HANDLE_VALUE;
}

struct BlockDeleter {
    void operator()(void* pBlock) const { FreeBlock(pBlock); }
};
template <class T> using OwnedBlock = std::unique_ptr<T, BlockDeleter>;

struct FileDeleter {
    using pointer = HANDLE;
    void operator()(HANDLE hFile) const
    {
        if (IsOpen(hFile)) {
            CloseHandle(hFile);
        }
    }
};
using OwnedFile = std::unique_ptr<void, FileDeleter>;

struct ModuleDeleter {
    using pointer = HMODULE;
    void operator()(HMODULE hModule) const { FreeLibrary(hModule); }
};
using OwnedModule = std::unique_ptr<void, ModuleDeleter>;

/* The thread's last error as a caller left it, put back at the end of an export: only the conversion of a record
   reports through it. */
struct KeptLastError {
    DWORD dwError = GetLastError();
    KeptLastError() = default;
    ~KeptLastError() { SetLastError(dwError); }
    KeptLastError(const KeptLastError&) = delete;
    KeptLastError& operator=(const KeptLastError&) = delete;
};

#endif
