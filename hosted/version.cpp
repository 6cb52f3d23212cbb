/* Version resources: the size and the bytes come from the file's resource, values are found in the block as the system
   finds them, by the lengths that stand in it and by nothing else. A block is a row of

     OFFSET  SIZE
          0     2  length in bytes of all of it, what is below included
          2     2  length of the value: in characters for a text, else in bytes
          4     2  1 for a text
          6        name with its NUL; value; blocks below it; each at the next multiple of 4

   so whoever asks has to answer for what lies behind it. */
#include <algorithm>
#include <cstring>

#include "hosted/pe_resources.h"
#include "hosted/standin.h"

namespace {

constexpr u16 PE_VERSION = 16;
constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812, ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;

bool FindVersion(LPCWSTR tcPath, Bytes* pBytes)
{
    Bytes file;
    PePiece piece{};
    if (!tcPath || !ReadHostFile(tcPath, &file)) {
        return Refuse(ERROR_FILE_NOT_FOUND);
    }
    if (!IsPeFile(file) ||
        !FindPeResource(file, PeName(PE_VERSION), PeName(1), LanguageOrder(HostedUserLanguage()), &piece)) {
        return Refuse(ERROR_RESOURCE_DATA_NOT_FOUND);
    }
    const auto first = file.begin() + static_cast<std::ptrdiff_t>(piece.nOffset);
    pBytes->assign(first, first + static_cast<std::ptrdiff_t>(piece.cbSize));
    return !pBytes->empty();
}

u16 WordAt(const u8* pAt)
{
    u16 usWord;
    std::memcpy(&usWord, pAt, sizeof usWord);
    return usWord;
}

/* Bytes of the name with its NUL. */
size_t NameBytes(const u8* pBlock)
{
    size_t cb = 0;
    while (WordAt(pBlock + 6 + cb)) {
        cb += 2;
    }
    return cb + 2;
}

size_t Aligned(size_t nOffset)
{
    return (nOffset + 3) & ~size_t{3};
}

size_t ValueOffset(const u8* pBlock)
{
    return Aligned(6 + NameBytes(pBlock));
}

const u8* FindBelow(const u8* pBlock, std::u16string_view wcName)
{
    const size_t cbValue = size_t{WordAt(pBlock + 2)} * (WordAt(pBlock + 4) ? 2 : 1);
    size_t nAt = Aligned(ValueOffset(pBlock) + cbValue);
    while (nAt < WordAt(pBlock)) {
        const u8* pBelow = pBlock + nAt;
        if (!WordAt(pBelow)) {
            return nullptr;
        }
        WideText wcOwn;
        for (size_t n = 0; n <= wcName.size() && WordAt(pBelow + 6 + 2 * n); n++) {
            wcOwn += static_cast<WCHAR>(WordAt(pBelow + 6 + 2 * n));
        }
        if (SameName(wcOwn, wcName)) {
            return pBelow;
        }
        nAt += Aligned(WordAt(pBelow));
    }
    return nullptr;
}

} // namespace

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR tcPath, LPDWORD pdwHandle)
{
    if (pdwHandle) {
        *pdwHandle = 0;
    }
    FAILS(GetFileVersionInfoSizeW);
    Bytes bytes;
    if (!FindVersion(tcPath, &bytes)) {
        return 0;
    }
    if (Lies(CALL_GetFileVersionInfoSizeW, LIE_HUGE)) {
        return 0xFFFFFFF0;
    }
    const DWORD cb = static_cast<DWORD>(bytes.size());
    return Lies(CALL_GetFileVersionInfoSizeW, LIE_SHORT) ? cb / 2 : cb;
}

BOOL WINAPI GetFileVersionInfoW(LPCWSTR tcPath, DWORD, DWORD cbOut, LPVOID pOut)
{
    FAILS(GetFileVersionInfoW);
    Bytes bytes;
    if (!FindVersion(tcPath, &bytes) || !pOut) {
        return Refuse(ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
    std::memcpy(pOut, bytes.data(), std::min<size_t>(cbOut, bytes.size()));
    return 1;
}

BOOL WINAPI VerQueryValueW(LPCVOID pInfo, LPCWSTR wcPath, LPVOID* ppValue, PUINT pnUnits)
{
    FAILS(VerQueryValueW);
    const u8* pBlock = static_cast<const u8*>(pInfo);
    std::u16string_view wcRest = wcPath ? wcPath : u"";
    while (pBlock && !wcRest.empty()) {
        const size_t nEnd = wcRest.find(u'\\');
        const std::u16string_view wcName = wcRest.substr(0, nEnd);
        wcRest = nEnd == wcRest.npos ? u"" : wcRest.substr(nEnd + 1);
        pBlock = wcName.empty() ? pBlock : FindBelow(pBlock, wcName);
    }
    if (!pBlock) {
        *pnUnits = 0;
        return Refuse(ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
    *pnUnits = Lies(CALL_VerQueryValueW, LIE_HUGE) ? 0x7FFFFFFF : UINT{WordAt(pBlock + 2)};
    *ppValue =
        Lies(CALL_VerQueryValueW, LIE_NULL_MEMBERS) ? nullptr : const_cast<u8*>(pBlock) + ValueOffset(pBlock);
    return 1;
}
