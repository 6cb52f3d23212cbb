/* Loads the body of a description file: slots become pointers, the font pages are worked out. */
#include "description/xpi_load.h"

#include <cstring>

namespace {

constexpr int FONT_ROWS = 256; /* rows of the font offset table read at a time */

constexpr u16 aSlots[] = {8,   24,  32,  40,  48,  96,  104, 124, 132, 140, 148, 158,
                          166, 174, 188, 196, 220, 228, 236, 244, 252, 260, 268, 284};

void FixSlots(XpiModel* pModel)
{
    u8* pBody = reinterpret_cast<u8*>(pModel);
    u32 ulFileBody = ModelBodyBytes(pModel);
    for (u16 usSlot : aSlots) {
        u64 ullSlot;
        std::memcpy(&ullSlot, pBody + usSlot, sizeof ullSlot);
        if (!ullSlot) {
            continue;
        }
        u32 ulOffset = static_cast<u32>(ullSlot); /* only the low half counts */
        const u8* pTarget = pBody + (ulOffset < ulFileBody ? ulOffset : ModelTailOffset(pModel));
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
    u64 ullAt = pPages->ullTable + 2 * static_cast<u64>(pPages->nPages++);
    u16 usFont = static_cast<u16>(nFirstFont);
    if (ullAt >= sizeof(XpiModel) && ullAt + sizeof usFont <= pPages->ulBody) {
        std::memcpy(pPages->pBody + ullAt, &usFont, sizeof usFont);
    }
}

/* Lists where each chunk of resident fonts begins. Result: 0 when the offset table cannot be read; a short
   one reads as zeros. */
int FillFontPages(XpiFile& file, XpiModel* pModel)
{
    const XpiHeader* pHeader = ReadXpiHeader(file);
    u8* pBody = reinterpret_cast<u8*>(pModel);
    FontPages pages = {pBody, static_cast<u64>(reinterpret_cast<const u8*>(pModel->pFontPageTable) - pBody),
                       ModelBodyBytes(pModel), 0};
    u32 nFonts = pModel->sResFontCount > 0 ? static_cast<u32>(pModel->sResFontCount) : 0;
    u32 nChunkFirst = 1, cbChunk = 0;
    u32 aRows[FONT_ROWS];
    u32 ulFirst = 0; /* font whose row stands first in aRows */
    for (u32 nFont = 0; nFont < nFonts; nFont++) {
        if (nFont == ulFirst + FONT_ROWS - 1 || nFont == 0) {
            u32 nRows = nFonts + 1 - nFont < FONT_ROWS ? nFonts + 1 - nFont : FONT_ROWS;
            u32 cbGot;
            std::memset(aRows, 0, sizeof aRows);
            if (!ReadXpiBytes(file, pHeader->dwFontTableOffset + 4 * static_cast<u64>(nFont), aRows,
                              4 * nRows, &cbGot)) {
                return 0;
            }
            ulFirst = nFont;
        }
        u32 cbFont = XpiFontBytes(aRows[nFont - ulFirst], aRows[nFont - ulFirst + 1]);
        if (cbChunk + cbFont > FONT_CHUNK_BYTES) {
            PutFontPage(&pages, nChunkFirst);
            nChunkFirst = nFont + 1;
            cbChunk = 0;
        }
        cbChunk += cbFont;
    }
    PutFontPage(&pages, nChunkFirst);
    return 1;
}

} // namespace

OwnedModel LoadXpiModel(XpiFile& file)
{
    if (!IsOpen(file.hFile.get())) {
        return nullptr;
    }
    const XpiHeader* pHeader = ReadXpiHeader(file);
    if (file.bHeaderFailed) {
        return nullptr;
    }
    u32 cbBody = XpiBodyBytes(pHeader);
    u32 cbGot;
    OwnedModel pModel = NewModelBlock(cbBody);
    if (!pModel || (cbBody && !ReadXpiBytes(file, pHeader->dwBodyOffset, pModel.get(), cbBody, &cbGot))) {
        return nullptr;
    }
    KeepModelStart(pModel.get());
    FixSlots(pModel.get());
    if (pModel->pFontPageTable && !FillFontPages(file, pModel.get())) {
        return nullptr;
    }
    return pModel;
}
