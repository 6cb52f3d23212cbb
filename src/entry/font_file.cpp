/* Extends the font description file and keeps its copies alike. */
#include "entry/font_file.h"

namespace {

constexpr u32 CHUNK_BYTES = 0x10000;
constexpr u64 ADDITION_LIMIT =
    0x4000000; /* bytes; the additions of an honest description have a few hundred thousand */
constexpr i32 DIMENSION_LIMIT = 1024; /* of a halftone, as GetXpiHalftoneBytes counts */

/* The new file while it is written. */
struct NewFile {
    HANDLE hFile;
    u8* pChunk; /* CHUNK_BYTES of room */
};

int WriteChunk(NewFile& file, u32 cb)
{
    DWORD cbWritten = 0;
    return WriteFile(file.hFile, file.pChunk, cb, &cbWritten, nullptr) && cbWritten == cb;
}

int WriteZeros(NewFile& file, u64 cb)
{
    for (u32 i = 0; i < CHUNK_BYTES; i++) {
        file.pChunk[i] = 0;
    }
    while (cb) {
        u32 cbChunk = cb < CHUNK_BYTES ? static_cast<u32>(cb) : CHUNK_BYTES;
        if (!WriteChunk(file, cbChunk)) {
            return 0;
        }
        cb -= cbChunk;
    }
    return 1;
}

/* Copies cb bytes from an open description or font file; all must come. */
int CopyBytes(NewFile& file, XpiFile& source, u64 ullOffset, u64 cb)
{
    while (cb) {
        u32 cbGot, cbChunk = cb < CHUNK_BYTES ? static_cast<u32>(cb) : CHUNK_BYTES;
        if (!ReadXpiBytes(source, ullOffset, file.pChunk, cbChunk, &cbGot) || cbGot != cbChunk ||
            !WriteChunk(file, cbChunk)) {
            return 0;
        }
        ullOffset += cbChunk;
        cb -= cbChunk;
    }
    return 1;
}

int WriteHalftones(NewFile& file, const XpiModel* pModel)
{
    for (i32 i = 0;; i++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, i);
        if (!pRow->ulUsed) {
            return 1;
        }
        i32 lDim = pRow->sHalftoneDim;
        if (lDim >= 1 && lDim <= DIMENSION_LIMIT &&
            !WriteZeros(file, u64{32} * static_cast<u32>(lDim * lDim))) {
            return 0;
        }
    }
}

/* Writes font after font; a table that falls ends the fonts there. */
int WriteFonts(NewFile& file, XpiFile& xpiFile, const XpiModel* pModel)
{
    if (pModel->sResFontCount < 1) {
        return 1;
    }
    u32 nFonts = static_cast<u32>(pModel->sResFontCount);
    u32 cbTable = (nFonts + 1) * static_cast<u32>(sizeof(u32)), cbGot;
    OwnedBlock<u32> pTable(static_cast<u32*>(AllocateBlock(cbTable)));
    const XpiHeader* pHeader = ReadXpiHeader(xpiFile);
    if (!pTable || !ReadXpiBytes(xpiFile, pHeader->dwFontTableOffset, pTable.get(), cbTable, &cbGot) ||
        cbGot != cbTable) {
        return 0;
    }
    const u32* aRows = pTable.get();
    u32 ulEnd = aRows[nFonts];
    for (u32 i = 0; i < nFonts; i++) {
        if (aRows[i + 1] < aRows[i] || aRows[i + 1] > ulEnd) {
            return 1;
        }
        if (!CopyBytes(file, xpiFile, static_cast<u64>(pHeader->dwFontDataOffset) + aRows[i],
                       aRows[i + 1] - aRows[i])) {
            return 0;
        }
    }
    return 1;
}

/* Writes base and additions to the open new file, and to the disk. */
int WriteWhole(NewFile& file, PrinterCall& call, const XpiModel* pModel, u32 ulBase)
{
    XpiFile old = {};
    old.hFile =
        OpenFontFile(call, GENERIC_READ | GENERIC_WRITE); /* who may not write it does not get it replaced */
    LARGE_INTEGER size;
    if (!IsOpen(old.hFile.get()) || !GetFileSizeEx(old.hFile.get(), &size) || size.QuadPart < 0 ||
        size.QuadPart > ulBase) {
        return 0;
    }
    u64 ullSize = static_cast<u64>(size.QuadPart);
    return CopyBytes(file, old, 0, ullSize) && WriteZeros(file, ulBase - ullSize) &&
           WriteHalftones(file, pModel) && WriteFonts(file, *OpenXpiFile(call), pModel) &&
           FlushFileBuffers(file.hFile);
}

} // namespace

void ExtendFontFile(PrinterCall& call, const XpiModel* pModel, u32 ulBase)
{
    XpiFile* pXpiFile = OpenXpiFile(call);
    WCHAR tcPath[PATH_CHARS], tcNew[PATH_CHARS];
    if (!pXpiFile || !pModel || pModel->usLanguage == KIND_IMAGE) {
        return;
    }
    u64 ullAdded = static_cast<u64>(GetXpiFontDataSize(*pXpiFile, pModel)) + GetXpiHalftoneBytes(pModel);
    if (ulBase >= ullAdded || ullAdded > ADDITION_LIMIT || ulBase + ullAdded > 0xFFFFFFFF ||
        !GetFontFilePath(call, tcPath) || !CopyWideWhole(tcNew, PATH_CHARS, tcPath) ||
        !AppendWideWhole(tcNew, PATH_CHARS, TEXT(".new"))) {
        return;
    }
    OwnedBlock<u8> pChunk(static_cast<u8*>(AllocateBlock(CHUNK_BYTES)));
    if (!pChunk) {
        return;
    }
    /* What an interrupted extension left, or a link that somebody put there, goes first: CREATE_NEW then meets
       nothing that could lead elsewhere. */
    DeleteFileW(tcNew);
    OwnedFile hNew(CreateFileW(tcNew, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!IsOpen(hNew.get())) {
        return;
    }
    NewFile file = {hNew.get(), pChunk.get()};
    int bWhole = WriteWhole(file, call, pModel, ulBase);
    hNew.reset();
    if (!bWhole || !MoveFileExW(tcNew, tcPath, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        DeleteFileW(tcNew);
    }
}

void SyncDataFileCopies(PrinterCall& call)
{
    static constexpr WCHAR wcVersions[] = {'2', '3', '4'};
    WCHAR tcPath[PATH_CHARS], tcCopy[PATH_CHARS];
    u32 cbOwn = GetFontFileSize(call);
    if (cbOwn == NO_FONT_FILE || !GetFontFilePath(call, tcPath)) {
        return;
    }
    const WCHAR* wcFolder = TEXT("\\W32X86\\");
    const WCHAR* wcFound = FindWide(tcPath, wcFolder);
    std::ptrdiff_t nVersion = wcFound ? wcFound - tcPath + WideLength(wcFolder) : 0;
    if (!wcFound || !tcPath[nVersion]) {
        return;
    }
    CopyWide(tcCopy, PATH_CHARS, tcPath);
    for (WCHAR wcVersion : wcVersions) {
        LARGE_INTEGER size = {};
        tcCopy[nVersion] = wcVersion;
        OwnedFile hCopy(CreateFileW(tcCopy, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr));
        int bSmaller = IsOpen(hCopy.get()) && GetFileSizeEx(hCopy.get(), &size) && size.QuadPart < cbOwn;
        hCopy.reset(); /* the copying opens it by itself */
        if (bSmaller) {
            CopyFileW(tcPath, tcCopy, 0);
        }
    }
}
