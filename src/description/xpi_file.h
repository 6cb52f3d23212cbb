/* An open description file and the sections that are read from it one by one.

   A file is a header of sixteen little-endian u32 and sections at the offsets that it gives:
     body                 from dwBodyOffset to dwStringBaseOffset
     string base table    u16 by primary language id
     string offset table  u16 from dwStringDataOffset, by base + string id
     string bytes         texts in the system's ANSI code page, each ended by a NUL
     command offset table u16 from dwCommandDataOffset, by command id
     command bytes        printer commands, each ended by a NUL; they end where the font bytes begin
     font offset table    u32 from dwFontDataOffset, one row more than there are fonts
     font bytes
     bitmap offset table  u32 from dwBitmapDataOffset, by bitmap id
     bitmap bytes         whole BMP files
     colour data          raw printer commands, addressed by offset and length

   The file has no signature and no checksum. Offsets are taken in 64 bits; a read beyond the end gives what
   there is. A file serves one thread at a time, since each read moves its file pointer. */
#ifndef TQUI_DESCRIPTION_XPI_FILE_H
#define TQUI_DESCRIPTION_XPI_FILE_H

#include "base/owned.h"
#include "description/xpi_model.h"

struct XpiHeader {
    u32 ulReserved0, ulReserved4;
    u32 dwBodyOffset, dwStringBaseOffset, dwStringIdOffset, dwStringDataOffset;
    u32 dwCommandTableOffset, dwCommandDataOffset;
    u32 dwFontTableOffset, dwFontDataOffset;
    u32 dwBitmapTableOffset, dwBitmapDataOffset;
    u32 dwColorDataOffset, dwColorDataSize;
    u32 ulReserved56, ulReserved60;
};
static_assert(sizeof(XpiHeader) == 64 && offsetof(XpiHeader, dwColorDataSize) == 52);

/* The file with its header, which is read when first asked for and kept as long as the file is open. */
struct XpiFile {
    OwnedFile hFile;
    int bHeaderRead, bHeaderFailed; /* failed: not short, but not to be read */
    XpiHeader rHeader;
};

/* Sizes that go with the readers. */
constexpr int COMMAND_BYTES = 1024;
constexpr int SHORT_COMMAND_BYTES = 128;
constexpr u32 FONT_CHUNK_BYTES = 32767;

/* Opens a file by its path for reading, shared for reading. 1 when it is open; a device or a pipe never is. */
int OpenXpiPath(XpiFile& file, const WCHAR* tcPath);

/* Bytes of the body: a difference of low halves, taken as 16 bits, so at most 65535. */
u32 XpiBodyBytes(const XpiHeader* pHeader);

/* The header; what a short or unreadable file does not give is zero. Never null. */
const XpiHeader* ReadXpiHeader(XpiFile& file);

/* Reads up to cb bytes at an offset into pOut. 1 unless seek or read fail; *pcbGot is what came, never more
   than cb. What did not come is left as it was. */
int ReadXpiBytes(XpiFile& file, u64 ullOffset, void* pOut, u32 cb, u32* pcbGot);

/* Reads a command of at most COMMAND_BYTES - 1 (SHORT_COMMAND_BYTES - 1) characters into a buffer of cbOut,
   ended by a NUL. A command that has no end within its limit, or does not fit, leaves the buffer empty: never
   half a command. Result: its length. */
int ReadXpiCommand(XpiFile& file, u16 usId, char* cOut, int cbOut);
int ReadXpiShortCommand(XpiFile& file, u16 usId, char* cOut, int cbOut);

/* The same for many commands of one file: what was read for one serves those beside it, so that a list costs
   about as much as two reads. Lives as long as the call that reads the list. */
struct XpiCommands {
    XpiFile& file;
    u32 nFirstRow, nRows; /* rows of the offset table that are held */
    u64 ullFirstByte;     /* place in the file of the bytes that are held */
    u32 cbBytes;
    u16 ausRows[64];
    char cBytes[2 * COMMAND_BYTES];

    explicit XpiCommands(XpiFile& of) : file(of), nFirstRow(0), nRows(0), ullFirstByte(0), cbBytes(0) {}
};
int ReadCommand(XpiCommands& commands, u16 usId, char* cOut, int cbOut);
int ReadShortCommand(XpiCommands& commands, u16 usId, char* cOut, int cbOut);

/* Size of one resident font from two neighbouring offset rows: a 16-bit difference. */
constexpr u32 XpiFontBytes(u32 ulRow, u32 ulNextRow)
{
    return static_cast<u16>(ulNextRow - ulRow);
}

/* Reads nRows rows of the font offset table from the 0-based row nFirst on; *pnGot is how many the file has of them.
   0 when the read fails. */
int ReadXpiFontRows(XpiFile& file, u32 nFirst, u32* aRows, u32 nRows, u32* pnGot);

/* Reads the fonts from the 1-based number nFirst on that make up one chunk of at most FONT_CHUNK_BYTES into
   pOut (that many bytes of room; null only measures). Result: the chunk's size; 0 when there is no such font,
   it alone is larger, or the bytes did not all come. Callers that step by chunks advance by one font at
   least. */
u32 ReadXpiFontChunk(XpiFile& file, const XpiModel* pModel, u8* pOut, i32 nFirst);

/* Bytes of all resident fonts; 0 when the table falls or leads beyond the file. */
u32 GetXpiFontDataSize(XpiFile& file, const XpiModel* pModel);

/* One whole BMP file as a new block (*pcbOut its size), the caller's; null when it cannot be read whole. Only
   its size field has been looked at: who draws it checks the rest. */
OwnedBlock<u8> ReadXpiBitmap(XpiFile& file, u16 usId, u32* pcbOut);

/* Copies the colour data (null only measures). Result: its size, the low 16 bits of what the header says;
   0 after a failed read. What a short file lacks is zero. */
u32 ReadXpiColorData(XpiFile& file, u8* pOut);

#endif
