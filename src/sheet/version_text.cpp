/* Reads version resources. What lies in one is the file's, so it may say anything: the system is given a block in which
   every walk by 16-bit lengths ends in zeros, and what it answers is held against the block. */
#include "sheet/version_text.h"

#include <cstring>

#include "base/format.h"
#include "base/owned.h"
#include "base/system_library.h"
#include "platform/version.h"

namespace {

constexpr u32 LARGEST_VERSION =
    0x40000;                       /* the resource is at most 64 KB, and the system asks for some more */
constexpr u32 ZERO_TAIL = 0x10400; /* farther than a 16-bit length and a name lead */
constexpr u16 ENGLISH_US = 1033, LATIN_PAGE = 1252;

struct Translation {
    u16 usLanguage, usCodePage;
};

/* The system's routines, in a library that is loaded for one reading: it is no part of the import table, where the
   host's folder would come before the system's. */
struct VersionCalls {
    OwnedModule hLibrary = OpenSystemLibrary(TEXT("version.dll"));
    decltype(&GetFileVersionInfoSizeW) fnGetSize =
        FindRoutine<decltype(&GetFileVersionInfoSizeW)>(hLibrary, "GetFileVersionInfoSizeW");
    decltype(&GetFileVersionInfoW) fnGetBlock =
        FindRoutine<decltype(&GetFileVersionInfoW)>(hLibrary, "GetFileVersionInfoW");
    decltype(&VerQueryValueW) fnFindValue =
        FindRoutine<decltype(&VerQueryValueW)>(hLibrary, "VerQueryValueW");
};

struct VersionBlock {
    decltype(&VerQueryValueW) fnFindValue;
    OwnedBlock<u8> pBytes;
    u32 cb; /* without the tail */
};

/* A value of at least cbLeast bytes; null when there is none. *pcb is what of it lies in the block. */
const u8* FindValue(const VersionBlock& block, const WCHAR* wcName, u32 cbLeast, u32* pcb)
{
    void* pValue = nullptr;
    UINT nUnits = 0;
    if (!block.fnFindValue(block.pBytes.get(), wcName, &pValue, &nUnits) || !pValue || !nUnits) {
        return nullptr;
    }
    std::uintptr_t ulAt = reinterpret_cast<std::uintptr_t>(pValue);
    std::uintptr_t ulBegin = reinterpret_cast<std::uintptr_t>(block.pBytes.get());
    if (ulAt < ulBegin || ulAt - ulBegin > block.cb || block.cb - (ulAt - ulBegin) < cbLeast) {
        return nullptr;
    }
    *pcb = block.cb - static_cast<u32>(ulAt - ulBegin);
    return block.pBytes.get() + (ulAt - ulBegin);
}

/* 1 when there is a text that has an end and is not empty. Whether the length counts bytes or characters depends on who
   wrote the resource, so the end is looked for. */
int FindText(const VersionBlock& block, Translation translation, WCHAR* wcVersion)
{
    WCHAR wcName[64];
    FormatWide(wcName, 64, TEXT("\\StringFileInfo\\%04X%04X\\FileVersion"), unsigned{translation.usLanguage},
               unsigned{translation.usCodePage});
    u32 cb;
    const u8* pText = FindValue(block, wcName, sizeof(WCHAR), &cb);
    u32 cch = 0;
    for (u32 nMost = pText ? cb / u32{sizeof(WCHAR)} : 0; cch < nMost; cch++) {
        WCHAR wc;
        std::memcpy(&wc, pText + cch * sizeof wc, sizeof wc);
        if (cch < VERSION_CHARS) {
            wcVersion[cch] = wc;
        }
        if (!wc) {
            wcVersion[VERSION_CHARS - 1] = 0;
            return cch > 0;
        }
    }
    return 0;
}

} // namespace

int ReadVersionText(const WCHAR* tcPath, WCHAR* wcVersion)
{
    wcVersion[0] = 0;
    const VersionCalls calls;
    if (!calls.fnGetSize || !calls.fnGetBlock || !calls.fnFindValue) {
        return 0;
    }
    DWORD dwHandle = 0;
    u32 cb = calls.fnGetSize(tcPath, &dwHandle);
    if (cb < sizeof(u16) || cb > LARGEST_VERSION) {
        return 0;
    }
    VersionBlock block = {calls.fnFindValue, OwnedBlock<u8>(static_cast<u8*>(AllocateBlock(cb + ZERO_TAIL))),
                          cb};
    if (!block.pBytes || !calls.fnGetBlock(tcPath, 0, cb, block.pBytes.get())) {
        return 0;
    }
    u32 cbValue;
    Translation translation;
    const u8* pRow = FindValue(block, TEXT("\\VarFileInfo\\Translation"), sizeof translation, &cbValue);
    if (!pRow) {
        return 0;
    }
    std::memcpy(&translation, pRow, sizeof translation);
    if (!FindText(block, translation, wcVersion) && !FindText(block, {ENGLISH_US, LATIN_PAGE}, wcVersion)) {
        wcVersion[0] = 0;
    }
    return 1;
}
