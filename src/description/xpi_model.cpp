/* Loads the body of a description file and gives its rows. */
#include "description/xpi_model.h"

#include <cstring>

#include "description/xpi_file.h"

namespace {

constexpr u32 FIXED_BYTES  = sizeof(XpiModel);
constexpr u32 TAIL_BYTES   = 128; /* holds two of the widest rows, so that a walk cannot step over it */
constexpr u32 PREFIX_BYTES = 8;

constexpr int FONT_ROWS    = 256;   /* rows of the font offset table read at a time */

constexpr u16 aSlots[] = {8,   24,  32,  40,  48,  96,  104, 124, 132, 140, 148, 158,
                          166, 174, 188, 196, 220, 228, 236, 244, 252, 260, 268, 284};

/* Bytes of the body and of the fixed part, whichever is more: where the tail begins. */
u32 BlockBody(const XpiModel* pModel)
{
    u32 ulSize;
    std::memcpy(&ulSize, reinterpret_cast<const u8*>(pModel) - PREFIX_BYTES, sizeof ulSize);
    return ulSize;
}

/* Bytes of the body in the file. */
u32 FileBody(const XpiModel* pModel)
{
    u32 ulSize;
    std::memcpy(&ulSize, reinterpret_cast<const u8*>(pModel) - PREFIX_BYTES + 4, sizeof ulSize);
    return ulSize;
}

void FixSlots(u8* pBody, u32 ulFileBody, u32 ulBlockBody)
{
    for (u16 usSlot : aSlots) {
        u64 ullSlot;
        std::memcpy(&ullSlot, pBody + usSlot, sizeof ullSlot);
        if (!ullSlot) {
            continue;
        }
        u32       ulOffset = static_cast<u32>(ullSlot); /* only the low half counts */
        const u8* pTarget  = pBody + (ulOffset < ulFileBody ? ulOffset : ulBlockBody);
        std::memcpy(pBody + usSlot, &pTarget, sizeof pTarget);
    }
}

/* Writes one start number into the model's own room for them: behind the fixed part, inside the body. */
struct FontPages {
    u8* pBody;
    u64 ullTable; /* offset of pFontPageTable in the body */
    u32 ulBody;
    u32 nPages;
};

void PutFontPage(FontPages* pPages, u32 nFirstFont)
{
    u64 ullAt  = pPages->ullTable + 2 * static_cast<u64>(pPages->nPages++);
    u16 usFont = static_cast<u16>(nFirstFont);
    if (ullAt >= FIXED_BYTES && ullAt + sizeof usFont <= pPages->ulBody) {
        std::memcpy(pPages->pBody + ullAt, &usFont, sizeof usFont);
    }
}

/* Lists where each chunk of resident fonts begins. Result: 0 when the offset table cannot be read; a short
   one reads as zeros. */
int FillFontPages(XpiFile& file, XpiModel* pModel)
{
    const XpiHeader* pHeader = ReadXpiHeader(file);
    u8*              pBody   = reinterpret_cast<u8*>(pModel);
    FontPages        pages   = {pBody, static_cast<u64>(reinterpret_cast<const u8*>(pModel->pFontPageTable) - pBody),
                                FileBody(pModel), 0};
    u32              nFonts  = pModel->sResFontCount > 0 ? static_cast<u32>(pModel->sResFontCount) : 0;
    u32              nChunkFirst = 1, cbChunk = 0;
    u32              aRows[FONT_ROWS];
    u32              ulFirst = 0; /* font whose row stands first in aRows */
    for (u32 nFont = 0; nFont < nFonts; nFont++) {
        if (nFont == ulFirst + FONT_ROWS - 1 || nFont == 0) {
            u32 nRows = nFonts + 1 - nFont < FONT_ROWS ? nFonts + 1 - nFont : FONT_ROWS;
            u32 cbGot;
            std::memset(aRows, 0, sizeof aRows);
            if (!ReadXpiBytes(file, pHeader->dwFontTableOffset + 4 * static_cast<u64>(nFont), aRows, 4 * nRows,
                              &cbGot)) {
                return 0;
            }
            ulFirst = nFont;
        }
        u32 cbFont = XpiFontBytes(aRows[nFont - ulFirst], aRows[nFont - ulFirst + 1]);
        if (cbChunk + cbFont > FONT_CHUNK_BYTES) {
            PutFontPage(&pages, nChunkFirst);
            nChunkFirst = nFont + 1;
            cbChunk     = 0;
        }
        cbChunk += cbFont;
    }
    PutFontPage(&pages, nChunkFirst);
    return 1;
}

} // namespace

void ModelDeleter::operator()(const XpiModel* pModel) const
{
    if (pModel) {
        FreeBlock(const_cast<u8*>(reinterpret_cast<const u8*>(pModel)) - PREFIX_BYTES);
    }
}

OwnedModel LoadXpiModel(XpiFile& file)
{
    if (!IsOpen(file.hFile.get())) {
        return nullptr;
    }
    const XpiHeader* pHeader = ReadXpiHeader(file);
    /* The size is a difference of low halves, taken as 16 bits: a body is at most 65535 bytes. */
    u32 cbBody  = static_cast<u16>(pHeader->dwStringBaseOffset - pHeader->dwBodyOffset);
    u32 cbBlock = cbBody > FIXED_BYTES ? cbBody : FIXED_BYTES;
    u8* pBlock  = static_cast<u8*>(AllocateBlock(PREFIX_BYTES + cbBlock + TAIL_BYTES));
    if (!pBlock) {
        return nullptr;
    }
    std::memcpy(pBlock, &cbBlock, sizeof cbBlock);
    std::memcpy(pBlock + 4, &cbBody, sizeof cbBody);
    OwnedModel pModel(reinterpret_cast<XpiModel*>(pBlock + PREFIX_BYTES));
    u32        cbGot;
    if (cbBody && !ReadXpiBytes(file, pHeader->dwBodyOffset, pModel.get(), cbBody, &cbGot)) {
        return nullptr;
    }
    FixSlots(pBlock + PREFIX_BYTES, cbBody, cbBlock);
    if (pModel->pFontPageTable && !FillFontPages(file, pModel.get())) {
        return nullptr;
    }
    return pModel;
}

const void* RowAt(const XpiModel* pModel, const void* pTable, i32 nIndex, u32 cbRow)
{
    static constexpr u8 abZeroRow[64] = {};
    if (!pModel || !pTable || nIndex < 0) {
        return abZeroRow;
    }
    u64 ullBlock = reinterpret_cast<std::uintptr_t>(pModel);
    u64 ullEnd   = ullBlock + BlockBody(pModel) + TAIL_BYTES;
    u64 ullTable = reinterpret_cast<std::uintptr_t>(pTable);
    if (ullTable < ullBlock || ullTable > ullEnd) {
        return abZeroRow;
    }
    u64 ullRow = ullTable + static_cast<u64>(nIndex) * cbRow; /* below 2^31 * 64 above an address: no wrap */
    if (ullRow + cbRow > ullEnd) {
        return abZeroRow;
    }
    return reinterpret_cast<const u8*>(pModel) + (ullRow - ullBlock);
}

const char* BodyText(const XpiModel* pModel, const char* pText)
{
    /* One byte inside the block is enough: the tail ends with zeros. */
    return static_cast<const char*>(RowAt(pModel, pText, 0, 1));
}

const FeatureValueRow* PjlValueRow(const XpiModel* pModel, i32 nIndex)
{
    u32 cbRow = pModel && pModel->usLanguage == KIND_IMAGE ? 6 : 4;
    return static_cast<const FeatureValueRow*>(
        RowAt(pModel, pModel ? pModel->pPjlValues : nullptr, nIndex, cbRow));
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
