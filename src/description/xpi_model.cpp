/* The block behind a model, and its rows. */
#include "description/xpi_model.h"

#include <cstring>

namespace {

constexpr u32 FIXED_BYTES = sizeof(XpiModel);
constexpr u32 TAIL_BYTES = 128; /* holds two of the widest rows, so that a walk cannot step over it */
constexpr u32 PREFIX_BYTES = 8;
constexpr u32 WIDEST_ROW = 64;
constexpr u32 START_BYTES = FIXED_BYTES + WIDEST_ROW; /* of the body, kept as in the file */
static_assert(WIDEST_ROW <= TAIL_BYTES);

/* The prefix holds two sizes: that of the body in the file, and where the tail begins. */
u32 PrefixWord(const XpiModel* pModel, u32 nWord)
{
    u32 ulSize;
    std::memcpy(&ulSize, reinterpret_cast<const u8*>(pModel) - PREFIX_BYTES + 4 * nWord, sizeof ulSize);
    return ulSize;
}

u8* KeptStart(const XpiModel* pModel)
{
    return const_cast<u8*>(reinterpret_cast<const u8*>(pModel)) + ModelTailOffset(pModel) + TAIL_BYTES;
}

} // namespace

OwnedModel NewModelBlock(u32 cbBody)
{
    u32 cbToTail = cbBody > FIXED_BYTES ? cbBody : FIXED_BYTES;
    u8* pBlock = static_cast<u8*>(AllocateBlock(PREFIX_BYTES + cbToTail + TAIL_BYTES + START_BYTES + 1));
    if (!pBlock) {
        return nullptr;
    }
    std::memcpy(pBlock, &cbBody, sizeof cbBody);
    std::memcpy(pBlock + 4, &cbToTail, sizeof cbToTail);
    return OwnedModel(reinterpret_cast<XpiModel*>(pBlock + PREFIX_BYTES));
}

u32 ModelBodyBytes(const XpiModel* pModel)
{
    return PrefixWord(pModel, 0);
}

u32 ModelTailOffset(const XpiModel* pModel)
{
    return PrefixWord(pModel, 1);
}

void KeepModelStart(XpiModel* pModel)
{
    /* Never short: a block has at least the fixed part and the tail. */
    std::memcpy(KeptStart(pModel), pModel, START_BYTES);
}

void ModelDeleter::operator()(const XpiModel* pModel) const
{
    if (pModel) {
        FreeBlock(const_cast<u8*>(reinterpret_cast<const u8*>(pModel)) - PREFIX_BYTES);
    }
}

const void* RowAt(const XpiModel* pModel, const void* pTable, i32 nIndex, u32 cbRow)
{
    static constexpr u8 abZeroRow[WIDEST_ROW] = {};
    if (!pModel || !pTable || nIndex < 0) {
        return abZeroRow;
    }
    u64 ullBlock = reinterpret_cast<std::uintptr_t>(pModel);
    u64 ullEnd = ullBlock + ModelTailOffset(pModel) + TAIL_BYTES;
    u64 ullTable = reinterpret_cast<std::uintptr_t>(pTable);
    if (ullTable < ullBlock || ullTable > ullEnd) {
        return abZeroRow;
    }
    u64 ullRow = ullTable + static_cast<u64>(nIndex) * cbRow; /* below 2^31 * 64 above an address: no wrap */
    if (ullRow + cbRow > ullEnd) {
        return abZeroRow;
    }
    u64 ullOffset = ullRow - ullBlock;
    return (ullOffset < FIXED_BYTES ? KeptStart(pModel) : reinterpret_cast<const u8*>(pModel)) + ullOffset;
}

const char* BodyText(const XpiModel* pModel, const char* pText)
{
    /* One byte inside the block is enough: the tail and the kept start end with zeros. */
    return static_cast<const char*>(RowAt(pModel, pText, 0, 1));
}

const FeatureValueRow* PjlValueRow(const XpiModel* pModel, i32 nIndex)
{
    u32 cbRow = pModel && pModel->usLanguage == KIND_IMAGE ? 6 : 4;
    return static_cast<const FeatureValueRow*>(
        RowAt(pModel, pModel ? pModel->pPjlValues : nullptr, nIndex, cbRow));
}

namespace {

/* The row of a table, ended by a mask of 0, that the test takes; null for none. A pointer to a member would forget that
   rows lie at any address. */
template <class RowType, class Test>
const RowType* FindMaskedRow(const XpiModel* pModel, const RowType* pTable, Test test)
{
    for (i32 i = 0;; i++) {
        const RowType* pRow = Row(pModel, pTable, i);
        if (!pRow->ulMask) {
            return nullptr;
        }
        if (test(pRow)) {
            return pRow;
        }
    }
}

} // namespace

const BinRow* FindBin(const XpiModel* pModel, u16 usBinId)
{
    return FindMaskedRow(pModel, pModel->pInputBins,
                         [usBinId](const BinRow* pRow) { return pRow->usBinId == usBinId; });
}

const OutputBinRow* FindOutputBin(const XpiModel* pModel, u16 usCmdId)
{
    return FindMaskedRow(pModel, pModel->pOutputBins,
                         [usCmdId](const OutputBinRow* pRow) { return pRow->usCmdId == usCmdId; });
}

u16 LookupXpiMemory(const XpiModel* pModel, u16 usKey)
{
    if (!pModel) {
        return 0;
    }
    for (i32 i = 0;; i++) {
        const MemoryRow* pRow = Row(pModel, pModel->pMemoryTable, i);
        if (!pRow->usKey) {
            return Row(pModel, pModel->pMemoryTable, 0)->usValue;
        }
        if (pRow->usKey == usKey) {
            return pRow->usValue;
        }
    }
}

u64 GetXpiHalftoneBytes(const XpiModel* pModel)
{
    u64 ullSum = 0;
    for (i32 i = 0; pModel; i++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, i);
        if (!pRow->ulUsed) {
            break;
        }
        i32 lDim = pRow->sHalftoneDim;
        if (lDim >= 1 && lDim <= 1024) {
            ullSum += 32 * static_cast<u64>(lDim) * static_cast<u64>(lDim);
        }
    }
    return ullSum;
}
