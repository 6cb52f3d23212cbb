/* Reads the sections of a description file. */
#include "description/xpi_file.h"

#include <cstring>

int OpenXpiPath(XpiFile& file, const WCHAR* tcPath)
{
    file.bHeaderRead = 0;
    file.hFile.reset(CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (IsOpen(file.hFile.get()) && GetFileType(file.hFile.get()) != FILE_TYPE_DISK) {
        file.hFile.reset();
    }
    return IsOpen(file.hFile.get());
}

u32 XpiBodyBytes(const XpiHeader* pHeader)
{
    return static_cast<u16>(pHeader->dwStringBaseOffset - pHeader->dwBodyOffset);
}

int ReadXpiBytes(XpiFile& file, u64 ullOffset, void* pOut, u32 cb, u32* pcbGot)
{
    *pcbGot = 0;
    LARGE_INTEGER offset;
    offset.QuadPart = static_cast<i64>(ullOffset);
    DWORD cbRead = 0;
    if (!SetFilePointerEx(file.hFile.get(), offset, nullptr, FILE_BEGIN) ||
        !ReadFile(file.hFile.get(), pOut, cb, &cbRead, nullptr)) {
        return 0;
    }
    *pcbGot = cbRead < cb ? cbRead : cb;
    return 1;
}

const XpiHeader* ReadXpiHeader(XpiFile& file)
{
    if (!file.bHeaderRead) {
        u32 cbGot;
        file.rHeader = {};
        file.bHeaderRead = 1;
        file.bHeaderFailed = !ReadXpiBytes(file, 0, &file.rHeader, sizeof file.rHeader, &cbGot);
    }
    return &file.rHeader;
}

namespace {

/* Offset of a command among the command bytes; 0 when the table does not have it. Rows are held from a
   multiple of their number on. */
int FindCommand(XpiCommands& commands, u16 usId, u16* pusOffset)
{
    constexpr u32 HELD_ROWS = sizeof commands.ausRows / sizeof *commands.ausRows;
    u32 nFirst = usId - usId % HELD_ROWS;
    if (!commands.nRows || commands.nFirstRow != nFirst) {
        u32 cbGot;
        commands.nRows = 0;
        if (!ReadXpiBytes(commands.file,
                          ReadXpiHeader(commands.file)->dwCommandTableOffset + 2 * static_cast<u64>(nFirst),
                          commands.ausRows, sizeof commands.ausRows, &cbGot)) {
            return 0;
        }
        commands.nFirstRow = nFirst;
        commands.nRows = cbGot / static_cast<u32>(sizeof *commands.ausRows);
    }
    *pusOffset = usId - nFirst < commands.nRows ? commands.ausRows[usId - nFirst] : u16{0};
    return usId - nFirst < commands.nRows;
}

/* Command bytes from a place in the file on, up to nMost; *pcb is how many there are. Null after a failed
   read. Bytes are held from a multiple of the longest command on, so that one always lies whole in what is
   held. */
const char* HoldCommandBytes(XpiCommands& commands, u64 ullStart, u32 nMost, u32* pcb)
{
    u64 ullFirst = ullStart - ullStart % COMMAND_BYTES;
    if (!commands.cbBytes || commands.ullFirstByte != ullFirst) {
        commands.cbBytes = 0;
        if (!ReadXpiBytes(commands.file, ullFirst, commands.cBytes, sizeof commands.cBytes, pcb)) {
            return nullptr;
        }
        commands.ullFirstByte = ullFirst;
        commands.cbBytes = *pcb;
    }
    u32 nAt = static_cast<u32>(ullStart - ullFirst);
    u32 cbHeld = commands.cbBytes > nAt ? commands.cbBytes - nAt : 0;
    *pcb = cbHeld < nMost ? cbHeld : nMost;
    return commands.cBytes + nAt;
}

int ReadLimitedCommand(XpiCommands& commands, u16 usId, u32 nLimit, char* cOut, int cbOut)
{
    if (cbOut < 1) {
        return 0;
    }
    cOut[0] = 0;
    const XpiHeader* pHeader = ReadXpiHeader(commands.file);
    u16 usOffset;
    u32 cbGot;
    if (!FindCommand(commands, usId, &usOffset)) {
        return 0;
    }
    u64 ullStart = static_cast<u64>(pHeader->dwCommandDataOffset) + usOffset;
    if (ullStart >= pHeader->dwFontDataOffset) {
        return 0;
    }
    u64 ullRoom = pHeader->dwFontDataOffset - ullStart;
    u32 nMost = ullRoom < nLimit ? static_cast<u32>(ullRoom) : nLimit;
    const char* cText = HoldCommandBytes(commands, ullStart, nMost, &cbGot);
    if (!cText || !cbGot) {
        return 0;
    }
    const void* pEnd = std::memchr(cText, 0, cbGot);
    u32 nLength = pEnd ? static_cast<u32>(static_cast<const char*>(pEnd) - cText) : cbGot;
    if (nLength >= nLimit || nLength >= static_cast<u32>(cbOut)) {
        return 0;
    }
    std::memcpy(cOut, cText, nLength);
    cOut[nLength] = 0;
    return static_cast<int>(nLength);
}

/* The same, all or nothing. */
int ReadFontRows(XpiFile& file, u32 nFirst, u32* aRows, u32 nRows)
{
    u32 nGot;
    return ReadXpiFontRows(file, nFirst, aRows, nRows, &nGot) && nGot == nRows;
}

} // namespace

int ReadCommand(XpiCommands& commands, u16 usId, char* cOut, int cbOut)
{
    return ReadLimitedCommand(commands, usId, COMMAND_BYTES, cOut, cbOut);
}

int ReadShortCommand(XpiCommands& commands, u16 usId, char* cOut, int cbOut)
{
    return ReadLimitedCommand(commands, usId, SHORT_COMMAND_BYTES, cOut, cbOut);
}

int ReadXpiCommand(XpiFile& file, u16 usId, char* cOut, int cbOut)
{
    XpiCommands commands(file);
    return ReadCommand(commands, usId, cOut, cbOut);
}

int ReadXpiShortCommand(XpiFile& file, u16 usId, char* cOut, int cbOut)
{
    XpiCommands commands(file);
    return ReadShortCommand(commands, usId, cOut, cbOut);
}

int ReadXpiFontRows(XpiFile& file, u32 nFirst, u32* aRows, u32 nRows, u32* pnGot)
{
    u32 cbGot;
    int bRead = ReadXpiBytes(file, ReadXpiHeader(file)->dwFontTableOffset + 4 * static_cast<u64>(nFirst),
                             aRows, 4 * nRows, &cbGot);
    *pnGot = cbGot / 4;
    return bRead;
}

u32 ReadXpiFontChunk(XpiFile& file, const XpiModel* pModel, u8* pOut, i32 nFirst)
{
    if (!pModel || nFirst < 1 || nFirst > pModel->sResFontCount) {
        return 0;
    }
    u32 nFonts = static_cast<u32>(pModel->sResFontCount);
    u32 nFont = static_cast<u32>(nFirst) - 1;
    u32 aRows[65];
    u32 ulStart = 0, cbChunk = 0;
    for (u32 nHeld = 0, nAt = 0; nFont < nFonts; nFont++, nAt++) {
        if (nAt == nHeld) {
            nHeld = nFonts - nFont < 64 ? nFonts - nFont : 64;
            nAt = 0;
            if (!ReadFontRows(file, nFont, aRows, nHeld + 1)) {
                return 0;
            }
            ulStart = nFont + 1 == static_cast<u32>(nFirst) ? aRows[0] : ulStart;
        }
        u32 cbFont = XpiFontBytes(aRows[nAt], aRows[nAt + 1]);
        if (cbChunk + cbFont > FONT_CHUNK_BYTES) {
            break;
        }
        cbChunk += cbFont;
    }
    if (pOut && cbChunk) {
        u32 cbGot;
        if (!ReadXpiBytes(file, static_cast<u64>(ReadXpiHeader(file)->dwFontDataOffset) + ulStart, pOut,
                          cbChunk, &cbGot) ||
            cbGot < cbChunk) {
            return 0;
        }
    }
    return cbChunk;
}

u32 GetXpiFontDataSize(XpiFile& file, const XpiModel* pModel)
{
    if (!pModel || pModel->sResFontCount < 1) {
        return 0;
    }
    u32 ulFirst, ulLast;
    LARGE_INTEGER size;
    if (!ReadFontRows(file, 0, &ulFirst, 1) ||
        !ReadFontRows(file, static_cast<u32>(pModel->sResFontCount), &ulLast, 1) || ulLast < ulFirst ||
        !GetFileSizeEx(file.hFile.get(), &size) ||
        static_cast<u64>(ReadXpiHeader(file)->dwFontDataOffset) + ulLast > static_cast<u64>(size.QuadPart)) {
        return 0;
    }
    return ulLast - ulFirst;
}

OwnedBlock<u8> ReadXpiBitmap(XpiFile& file, u16 usId, u32* pcbOut)
{
    constexpr u32 FILE_HEADER_BYTES = 14;
    const XpiHeader* pHeader = ReadXpiHeader(file);
    u32 ulOffset, cbGot, cbFile;
    u8 abHeader[FILE_HEADER_BYTES];
    LARGE_INTEGER size;
    *pcbOut = 0;
    if (!ReadXpiBytes(file, pHeader->dwBitmapTableOffset + 4 * static_cast<u64>(usId), &ulOffset,
                      sizeof ulOffset, &cbGot) ||
        cbGot < sizeof ulOffset) {
        return nullptr;
    }
    u64 ullStart = static_cast<u64>(pHeader->dwBitmapDataOffset) + ulOffset;
    if (!ReadXpiBytes(file, ullStart, abHeader, sizeof abHeader, &cbGot) || cbGot < sizeof abHeader) {
        return nullptr;
    }
    std::memcpy(&cbFile, abHeader + 2, sizeof cbFile);
    if (cbFile < FILE_HEADER_BYTES || !GetFileSizeEx(file.hFile.get(), &size) ||
        ullStart + cbFile > static_cast<u64>(size.QuadPart)) {
        return nullptr;
    }
    OwnedBlock<u8> pBitmap(static_cast<u8*>(AllocateBlock(cbFile)));
    if (!pBitmap || !ReadXpiBytes(file, ullStart, pBitmap.get(), cbFile, &cbGot) || cbGot < cbFile) {
        return nullptr;
    }
    *pcbOut = cbFile;
    return pBitmap;
}

u32 ReadXpiColorData(XpiFile& file, u8* pOut)
{
    const XpiHeader* pHeader = ReadXpiHeader(file);
    u32 cbData = static_cast<u16>(pHeader->dwColorDataSize);
    u32 cbGot;
    if (pOut && cbData) {
        std::memset(pOut, 0, cbData);
        if (!ReadXpiBytes(file, pHeader->dwColorDataOffset, pOut, cbData, &cbGot)) {
            return 0;
        }
    }
    return cbData;
}
