/* Reads settings files into memory. */
#include "profile/profile_file.h"

#include <cstring>

#include "platform/text.h"
#include "profile/profile_lines.h"

namespace {

constexpr u32 MARK_BYTES = 2, UTF8_MARK_BYTES = 3;

/* The text of cb bytes that stand at the start of a block of cb + 1 or more. */
ProfileState DecodeWide(OwnedBlock<WCHAR> pBytes, u32 cb, int bBig, ProfileFile* pFile)
{
    WCHAR* pText = pBytes.get();
    u32 nLength =
        (cb - MARK_BYTES) / static_cast<u32>(sizeof(WCHAR)); /* a lone byte at the end is none of it */
    std::memmove(pText, pText + 1, nLength * sizeof(WCHAR));
    for (u32 i = 0; bBig && i < nLength; i++) {
        pText[i] = static_cast<WCHAR>((pText[i] & 0xFF) << 8 | (pText[i] >> 8 & 0xFF));
    }
    pFile->pText = std::move(pBytes);
    pFile->nLength = nLength;
    return PROFILE_READ;
}

ProfileState DecodeBytes(const u8* pBytes, u32 cb, UINT uCodePage, ProfileFile* pFile)
{
    if (!cb) {
        return PROFILE_READ;
    }
    pFile->pText.reset(static_cast<WCHAR*>(AllocateRows(cb, sizeof(WCHAR))));
    if (!pFile->pText) {
        return PROFILE_NO_MEMORY;
    }
    /* No code page makes more characters than there were bytes. */
    int nGot = MultiByteToWideChar(uCodePage, 0, reinterpret_cast<const char*>(pBytes), static_cast<int>(cb),
                                   pFile->pText.get(), static_cast<int>(cb));
    if (nGot < 1 || nGot > static_cast<int>(cb)) {
        return PROFILE_UNREADABLE;
    }
    pFile->nLength = static_cast<u32>(nGot);
    return PROFILE_READ;
}

ProfileState Decode(OwnedBlock<WCHAR> pBlock, u32 cb, ProfileFile* pFile)
{
    const u8* pBytes = reinterpret_cast<const u8*>(pBlock.get());
    int bLittle = cb >= MARK_BYTES && pBytes[0] == 0xFF && pBytes[1] == 0xFE;
    int bBig = cb >= MARK_BYTES && pBytes[0] == 0xFE && pBytes[1] == 0xFF;
    if (bLittle || bBig) {
        return DecodeWide(std::move(pBlock), cb, bBig, pFile);
    }
    if (cb >= UTF8_MARK_BYTES && pBytes[0] == 0xEF && pBytes[1] == 0xBB && pBytes[2] == 0xBF) {
        return DecodeBytes(pBytes + UTF8_MARK_BYTES, cb - UTF8_MARK_BYTES, CP_UTF8, pFile);
    }
    return DecodeBytes(pBytes, cb, CP_ACP, pFile);
}

/* 1 when all cb bytes could be read. */
int ReadBytes(HANDLE hFile, u8* pOut, u32 cb)
{
    DWORD cbGot = 0;
    for (u32 nAt = 0; nAt < cb; nAt += cbGot) {
        if (!ReadFile(hFile, pOut + nAt, cb - nAt, &cbGot, nullptr) || !cbGot || cbGot > cb - nAt) {
            return 0;
        }
    }
    return 1;
}

ProfileState ReadInto(HANDLE hFile, ProfileFile* pFile)
{
    LARGE_INTEGER lSize;
    if (GetFileType(hFile) != FILE_TYPE_DISK || !GetFileSizeEx(hFile, &lSize) || lSize.QuadPart < 0 ||
        lSize.QuadPart > PROFILE_BYTES_LIMIT) {
        return PROFILE_UNREADABLE;
    }
    u32 cb = static_cast<u32>(lSize.QuadPart);
    OwnedBlock<WCHAR> pBlock(static_cast<WCHAR*>(AllocateBlock(u64{cb} + 1)));
    if (!pBlock) {
        return PROFILE_NO_MEMORY;
    }
    return ReadBytes(hFile, reinterpret_cast<u8*>(pBlock.get()), cb) ? Decode(std::move(pBlock), cb, pFile)
                                                                     : PROFILE_UNREADABLE;
}

} // namespace

int HasFolder(const WCHAR* tcPath)
{
    return FindWide(tcPath, TEXT("\\")) != nullptr;
}

ProfileFile ReadProfile(HANDLE hFile)
{
    ProfileFile file = {};
    file.state = ReadInto(hFile, &file);
    if (file.state != PROFILE_READ) {
        file.pText.reset();
        file.nLength = 0;
    }
    return file;
}

ProfileFile OpenProfile(const WCHAR* tcPath)
{
    ProfileFile file = {};
    if (!HasFolder(tcPath)) {
        return file;
    }
    OwnedFile hFile(CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (IsOpen(hFile.get())) {
        return ReadProfile(hFile.get());
    }
    DWORD dwError = GetLastError();
    int bAbsent = dwError == ERROR_FILE_NOT_FOUND || dwError == ERROR_PATH_NOT_FOUND;
    file.state = bAbsent ? PROFILE_ABSENT : PROFILE_UNREADABLE;
    return file;
}

u32 ListProfileSections(const ProfileFile& file, WCHAR* wcOut, u32 cch)
{
    TextSpan text = TextOf(file), name;
    u32 nUsed = 0;
    for (u32 nAt = 0; nAt < text.nLength;) {
        if (!IsHeader(TakeLine(text, &nAt), &name) || !name.nLength) {
            continue;
        }
        if (!AddListName(name, wcOut, cch, &nUsed)) {
            break;
        }
    }
    wcOut[nUsed] = wcOut[nUsed + 1] = 0;
    return nUsed;
}
