/* Copies records out of callers' memory and repairs back into it. */
#include "settings/caller_record.h"

#include <cstring>

namespace {

constexpr u32 SIZES_END = offsetof(DriverDevmode, dmFields); /* the two sizes stand in front of it */
static_assert(SIZES_END == 72);

} // namespace

void TakeCallerRecord(void* pRecord, CallerRecord* pTaken)
{
    pTaken->pOwner = pRecord;
    std::memset(&pTaken->rRead, 0, sizeof pTaken->rRead);
    std::memcpy(&pTaken->rRead, pRecord, SIZES_END);
    pTaken->cbClaimed = static_cast<u32>(pTaken->rRead.dmSize) + pTaken->rRead.dmDriverExtra;
    u32 cb = pTaken->cbClaimed < RECORD_SIZE ? pTaken->cbClaimed : RECORD_SIZE;
    if (cb > SIZES_END) {
        std::memcpy(reinterpret_cast<u8*>(&pTaken->rRead) + SIZES_END,
                    static_cast<const u8*>(pRecord) + SIZES_END, cb - SIZES_END);
    }
    pTaken->rCopy = pTaken->rRead;
}

void GiveRepairs(CallerRecord* pTaken)
{
    u8* pOwner = static_cast<u8*>(pTaken->pOwner);
    u8* pRead = reinterpret_cast<u8*>(&pTaken->rRead);
    const u8* pCopy = reinterpret_cast<const u8*>(&pTaken->rCopy);
    u32 cb = IsForeign(*pTaken) ? pTaken->cbClaimed : RECORD_SIZE;
    for (u32 i = 0; i < cb; i++) {
        if (pCopy[i] != pRead[i]) {
            pOwner[i] = pCopy[i];
            pRead[i] = pCopy[i];
        }
    }
}
