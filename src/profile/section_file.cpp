/* Replaces sections and keys of settings files by way of a copy. */
#include "profile/section_file.h"

#include <cstring>

#include "base/format.h"
#include "profile/profile_lines.h"

namespace {

constexpr u32 FIRST_ROOM = 8192; /* characters: most sections of one printer */
constexpr int LONGEST_TEXT = 0x7FFF;
constexpr int COPY_NAMES = 8;
constexpr int TRIES = 10;
constexpr DWORD WAIT_MILLISECONDS = 20;
constexpr WCHAR BYTE_ORDER_MARK = 0xFEFF;

enum Outcome : int {
    DONE,
    REFUSED,
    BUSY /* another process has the file open at this moment */
};

/* A section in a text; where there is none, all of them are the text's end. */
struct Place {
    u32 nHeader, nBody; /* its first line, and the first line behind that */
    u32 nEnd;           /* behind the last line of it that is no comment and not blank */
    int bFound;
};

/* What replaces the characters from nFrom to nTo of the old text. */
struct Change {
    u32 nFrom, nTo;
    const WCHAR* wcSection; /* null: no header line */
    TextSpan lines;
};

int Append(SectionLines* pLines, const WCHAR* pText, u32 nLength)
{
    if (!nLength) {
        return !pLines->bShort;
    }
    if (pLines->bShort || nLength > pLines->nRoom - pLines->nLength) {
        u64 nRoom = pLines->nRoom ? u64{pLines->nRoom} * 2 : FIRST_ROOM;
        while (nRoom < u64{pLines->nLength} + nLength) {
            nRoom *= 2;
        }
        OwnedBlock<WCHAR> pNew(
            static_cast<WCHAR*>(pLines->bShort ? nullptr : AllocateRows(nRoom, sizeof(WCHAR))));
        if (!pNew) {
            pLines->bShort = 1;
            return 0;
        }
        if (pLines->nLength) {
            std::memcpy(pNew.get(), pLines->pText.get(), pLines->nLength * sizeof(WCHAR));
        }
        pLines->pText = std::move(pNew);
        pLines->nRoom = static_cast<u32>(nRoom);
    }
    std::memcpy(pLines->pText.get() + pLines->nLength, pText, nLength * sizeof(WCHAR));
    pLines->nLength += nLength;
    return 1;
}

int IsControl(WCHAR wcChar)
{
    return wcChar < 0x20 || wcChar == 0x7F;
}

Place FindSection(TextSpan text, const WCHAR* wcSection)
{
    Place place = {text.nLength, text.nLength, text.nLength, 0};
    TextSpan name;
    u32 nNext = FindSectionBody(text, SpanOf(wcSection), &place.nHeader);
    place.bFound = place.nHeader < text.nLength;
    place.nBody = place.nEnd = nNext;
    while (nNext < text.nLength) {
        TextSpan line = TakeLine(text, &nNext);
        if (IsHeader(line, &name)) {
            break;
        }
        if (!IsRemark(line)) {
            place.nEnd = nNext;
        }
    }
    return place;
}

/* 1 when the section has the key, whose line is then from *pnFrom to *pnTo. */
int FindKey(TextSpan text, const Place& place, const WCHAR* wcKey, u32* pnFrom, u32* pnTo)
{
    u32 nNext = place.nBody;
    for (u32 nAt = place.nBody; nAt < place.nEnd; nAt = nNext) {
        TextSpan line = TakeLine(text, &nNext), key, value;
        if (IsRemark(line)) {
            continue;
        }
        SplitLine(line, &key, &value);
        if (IsSameName(key, SpanOf(wcKey))) {
            *pnFrom = nAt;
            *pnTo = nNext;
            return 1;
        }
    }
    return 0;
}

Outcome ReadOld(const WCHAR* tcPath, ProfileFile* pOld)
{
    DWORD dwAttributes = GetFileAttributesW(tcPath);
    if (dwAttributes == INVALID_FILE_ATTRIBUTES) {
        /* Only a file that is certainly not there counts as an empty one. */
        return GetLastError() == ERROR_FILE_NOT_FOUND ? DONE : REFUSED;
    }
    if (dwAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_REPARSE_POINT)) {
        return REFUSED;
    }
    /* Writers are kept out: half of what they write would become the file. */
    OwnedFile hFile(CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT,
                                nullptr));
    if (!IsOpen(hFile.get())) {
        return GetLastError() == ERROR_SHARING_VIOLATION ? BUSY : REFUSED;
    }
    *pOld = ReadProfile(hFile.get());
    return pOld->state == PROFILE_READ ? DONE : REFUSED;
}

/* Creates the copy and names it in tcCopy, PATH_CHARS of room. */
HANDLE CreateCopy(const WCHAR* tcPath, WCHAR* tcCopy)
{
    for (int n = 0; n < 2 * COPY_NAMES; n++) {
        if (!FormatWide(tcCopy, PATH_CHARS, TEXT("%s.~%d"), tcPath, n % COPY_NAMES)) {
            return INVALID_HANDLE_VALUE;
        }
        if (n >= COPY_NAMES) {
            DeleteFileW(tcCopy); /* of a link the link itself; a copy in use cannot be deleted */
        }
        HANDLE hCopy = CreateFileW(tcCopy, GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                   FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        if (IsOpen(hCopy) || GetLastError() != ERROR_FILE_EXISTS) {
            return hCopy;
        }
    }
    return INVALID_HANDLE_VALUE;
}

int WriteWhole(HANDLE hFile, const WCHAR* pText, u32 nLength)
{
    const u8* pBytes = reinterpret_cast<const u8*>(pText);
    u32 cb = nLength * static_cast<u32>(sizeof(WCHAR));
    DWORD cbDone = 0;
    for (u32 nAt = 0; nAt < cb; nAt += cbDone) {
        if (!WriteFile(hFile, pBytes + nAt, cb - nAt, &cbDone, nullptr) || !cbDone || cbDone > cb - nAt) {
            return 0;
        }
    }
    return FlushFileBuffers(hFile);
}

Outcome PutInPlace(const WCHAR* tcPath, const WCHAR* pText, u32 nLength)
{
    WCHAR tcCopy[PATH_CHARS];
    OwnedFile hCopy(CreateCopy(tcPath, tcCopy));
    if (!IsOpen(hCopy.get())) {
        return REFUSED;
    }
    int bWritten = WriteWhole(hCopy.get(), pText, nLength);
    hCopy.reset();
    if (bWritten && MoveFileExW(tcCopy, tcPath, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return DONE;
    }
    DWORD dwError = GetLastError();
    DeleteFileW(tcCopy);
    int bHeld = dwError == ERROR_ACCESS_DENIED || dwError == ERROR_SHARING_VIOLATION;
    return bWritten && bHeld ? BUSY : REFUSED;
}

/* Puts the new text together and on the disk. */
Outcome WriteChange(const WCHAR* tcPath, TextSpan old, const Change& change)
{
    const WCHAR wcMark[] = {BYTE_ORDER_MARK, 0};
    const WCHAR* pOld = old.pText;
    int bOpenLine = change.nFrom && pOld[change.nFrom - 1] != '\n' && pOld[change.nFrom - 1] != '\r';
    SectionLines text = {};
    Append(&text, wcMark, 1);
    Append(&text, pOld, change.nFrom);
    Append(&text, TEXT("\r\n"), bOpenLine ? 2 : 0);
    if (change.wcSection) {
        Append(&text, TEXT("["), 1);
        Append(&text, change.wcSection, static_cast<u32>(WideLength(change.wcSection)));
        Append(&text, TEXT("]\r\n"), 3);
    }
    Append(&text, change.lines.pText, change.lines.nLength);
    Append(&text, pOld + change.nTo, old.nLength - change.nTo);
    int bTooLong = text.nLength > PROFILE_BYTES_LIMIT / sizeof(WCHAR);
    return text.bShort || bTooLong ? REFUSED : PutInPlace(tcPath, text.pText.get(), text.nLength);
}

/* One try. Without a key the lines are the section's, with one they are the key's. */
Outcome TryChange(const WCHAR* tcPath, const WCHAR* wcSection, const WCHAR* wcKey, TextSpan lines)
{
    ProfileFile file = {};
    Outcome outcome = ReadOld(tcPath, &file);
    if (outcome != DONE) {
        return outcome;
    }
    TextSpan old = TextOf(file);
    Place place = FindSection(old, wcSection);
    Change change = {place.nHeader, place.nEnd, wcSection, lines};
    if (wcKey && place.bFound) {
        change = {place.nEnd, place.nEnd, nullptr, lines};
        FindKey(old, place, wcKey, &change.nFrom, &change.nTo);
    }
    return WriteChange(tcPath, old, change);
}

int ChangeFile(const WCHAR* tcPath, const WCHAR* wcSection, const WCHAR* wcKey, const SectionLines& lines)
{
    if (lines.bShort || !tcPath || !HasFolder(tcPath)) {
        return 0;
    }
    for (int nTry = 1;; nTry++) {
        Outcome outcome = TryChange(tcPath, wcSection, wcKey, {lines.pText.get(), lines.nLength});
        if (outcome != BUSY || nTry == TRIES) {
            return outcome == DONE;
        }
        Sleep(WAIT_MILLISECONDS);
    }
}

/* 1 for a text that stands in quotation marks itself. */
int IsQuoted(TextSpan text)
{
    text = TrimSpan(text);
    return text.nLength >= 2 && (text.pText[0] == '"' || text.pText[0] == '\'') &&
           text.pText[text.nLength - 1] == text.pText[0];
}

} // namespace

void WriteProfileText(SectionLines* pLines, const WCHAR* wcKey, const WCHAR* wcText, int cchMax)
{
    u32 nKey = static_cast<u32>(WideLength(wcKey));
    u32 nText = static_cast<u32>(BoundedLength(wcText, cchMax));
    u32 nMark = static_cast<u32>(IsQuoted({wcText, nText}));
    Append(pLines, wcKey, nKey);
    Append(pLines, TEXT("="), 1);
    Append(pLines, TEXT("\""), nMark);
    if (Append(pLines, wcText, nText)) {
        WCHAR* pValue = pLines->pText.get() + (pLines->nLength - nText);
        for (u32 i = 0; i < nText; i++) {
            pValue[i] = IsControl(pValue[i]) ? static_cast<WCHAR>(' ') : pValue[i];
        }
    }
    Append(pLines, TEXT("\""), nMark);
    Append(pLines, TEXT("\r\n"), 2);
}

void WriteProfileDecimal(SectionLines* pLines, const WCHAR* wcKey, i32 lValue)
{
    WCHAR wcText[TEXT_CHARS];
    FormatWide(wcText, TEXT_CHARS, TEXT("%d"), lValue);
    WriteProfileText(pLines, wcKey, wcText, TEXT_CHARS);
}

void WriteProfileLong(SectionLines* pLines, const WCHAR* wcKey, i32 lValue)
{
    WCHAR wcText[TEXT_CHARS];
    FormatWide(wcText, TEXT_CHARS, TEXT("%ld"), lValue);
    WriteProfileText(pLines, wcKey, wcText, TEXT_CHARS);
}

void WriteProfileHex(SectionLines* pLines, const WCHAR* wcKey, u32 ulValue)
{
    WCHAR wcText[TEXT_CHARS];
    FormatWide(wcText, TEXT_CHARS, TEXT("%08lX"), ulValue);
    WriteProfileText(pLines, wcKey, wcText, TEXT_CHARS);
}

int ReplaceSection(const WCHAR* tcPath, const WCHAR* wcSection, const SectionLines& lines)
{
    return ChangeFile(tcPath, wcSection, nullptr, lines);
}

int ReplaceKey(const WCHAR* tcPath, const WCHAR* wcSection, const WCHAR* wcKey, const WCHAR* wcText)
{
    SectionLines line = {};
    WriteProfileText(&line, wcKey, wcText, LONGEST_TEXT);
    return ChangeFile(tcPath, wcSection, wcKey, line);
}
