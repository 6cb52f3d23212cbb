/* System calls, one behind the other. */
#include "bench/floors.h"

#include <cstdlib>
#include <cstring>

#include "platform/process.h"
#include "platform/profile.h"
#include "platform/text.h"

namespace {

constexpr u32 HEADER_BYTES = 64, LIST_BYTES = 4096;

void Require(bool bDone)
{
    if (!bDone) {
        std::abort();
    }
}

void ReadSpan(HANDLE hFile, FileSpan span, void* pOut)
{
    LARGE_INTEGER offset;
    DWORD cbRead = 0;
    offset.QuadPart = span.ulOffset;
    Require(SetFilePointerEx(hFile, offset, nullptr, FILE_BEGIN));
    Require(ReadFile(hFile, pOut, span.cb, &cbRead, nullptr) && cbRead == span.cb);
}

void* TakeBlock(u32 cb)
{
    void* pBlock = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, cb);
    Require(pBlock != nullptr);
    return pBlock;
}

void GiveBlock(void* pBlock)
{
    HeapFree(GetProcessHeap(), 0, pBlock);
}

void AskValue(HANDLE hPrinter, const WCHAR* wcValue)
{
    WCHAR wcText[260];
    DWORD dwType, cb;
    GetPrinterDataW(hPrinter, const_cast<LPWSTR>(wcValue), &dwType, reinterpret_cast<BYTE*>(wcText),
                    sizeof wcText, &cb);
}

/* A device or a pipe is never read, so every opening asks what it got. */
HANDLE OpenOnDisk(const WCHAR* tcPath)
{
    HANDLE hFile = CreateFileW(tcPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    Require(hFile != INVALID_HANDLE_VALUE && GetFileType(hFile) == FILE_TYPE_DISK);
    return hFile;
}

} // namespace

void FloorOfTextFile(const WCHAR* tcPath)
{
    HANDLE hFile = OpenOnDisk(tcPath);
    LARGE_INTEGER size;
    DWORD cbRead = 0;
    Require(GetFileSizeEx(hFile, &size));
    u32 cb = static_cast<u32>(size.QuadPart);
    u8* pBytes = static_cast<u8*>(TakeBlock(cb));
    Require(ReadFile(hFile, pBytes, cb, &cbRead, nullptr) && cbRead == cb);
    CloseHandle(hFile);
    u32 ulSum = 0;
    for (u32 i = 0; i < cb; i++) {
        ulSum = (ulSum ^ pBytes[i]) * 0x01000193;
    }
    asm volatile("" : : "r"(ulSum));
    if (cb < 2 || pBytes[0] != 0xFF || pBytes[1] != 0xFE) { /* in the system's code page */
        WCHAR* pText = static_cast<WCHAR*>(TakeBlock(cb * sizeof(WCHAR)));
        MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(pBytes), static_cast<int>(cb), pText,
                            static_cast<int>(cb));
        GiveBlock(pText);
    }
    GiveBlock(pBytes);
}

void FloorOfModelLoad(const WCHAR* tcPath, FileSpan body)
{
    u8 abHeader[HEADER_BYTES];
    HANDLE hFile = OpenOnDisk(tcPath);
    DWORD cbRead = 0;
    Require(ReadFile(hFile, abHeader, HEADER_BYTES, &cbRead, nullptr) && cbRead == HEADER_BYTES);
    void* pBody = TakeBlock(body.cb);
    ReadSpan(hFile, body, pBody);
    GiveBlock(pBody);
    CloseHandle(hFile);
}

void FloorOfNames(HANDLE hFile, const NameSections& sections)
{
    u8 abHeader[HEADER_BYTES], abRows[LIST_BYTES], abTexts[LIST_BYTES];
    u16 usBase;
    Require(sections.rows.cb <= LIST_BYTES && sections.texts.cb <= LIST_BYTES);
    ReadSpan(hFile, {0, HEADER_BYTES}, abHeader);
    ReadSpan(hFile, sections.base, &usBase);
    ReadSpan(hFile, sections.rows, abRows);
    ReadSpan(hFile, sections.texts, abTexts);
}

void FloorOfPrinterCalls(HANDLE hPrinter, const WCHAR* tcIni, int bCustom)
{
    constexpr u32 DRIVER_BYTES = 4096, FORM_BYTES = 16384;
    DWORD cb, nRows;
    AskValue(hPrinter, TEXT("XPI"));
    BYTE* pDriver = static_cast<BYTE*>(TakeBlock(DRIVER_BYTES));
    Require(GetPrinterDriverW(hPrinter, nullptr, 3, pDriver, DRIVER_BYTES, &cb));
    if (bCustom) {
        AskValue(hPrinter, TEXT("Settings"));
        FloorOfTextFile(tcIni);
        GetProfileIntW(TEXT("intl"), TEXT("iMeasure"), 1);
        BYTE* pForms = static_cast<BYTE*>(TakeBlock(FORM_BYTES));
        Require(EnumFormsW(hPrinter, 1, pForms, FORM_BYTES, &cb, &nRows));
        GiveBlock(pForms);
    }
    GiveBlock(pDriver);
}

void FloorOfJobStart(HANDLE hPrinter, DWORD dwJobId, const WCHAR* tcPath, const JobSections& sections,
                     int bImage)
{
    constexpr u32 ANSWER_BYTES = 4096, PRINTER_BYTES = 8192;
    u8 abHeader[HEADER_BYTES], abRows[LIST_BYTES], abCommands[LIST_BYTES];
    DWORD cb;
    Require(sections.rows.cb <= LIST_BYTES && sections.commands.cb <= LIST_BYTES &&
            sections.fonts.cb <= LIST_BYTES);
    AskValue(hPrinter, TEXT("XPI"));
    BYTE* pAnswer = static_cast<BYTE*>(TakeBlock(ANSWER_BYTES));
    Require(GetPrinterDriverW(hPrinter, nullptr, 3, pAnswer, ANSWER_BYTES, &cb));
    HANDLE hFile = OpenOnDisk(tcPath);
    ReadSpan(hFile, {0, HEADER_BYTES}, abHeader);
    void* pBody = TakeBlock(sections.body.cb);
    ReadSpan(hFile, sections.body, pBody);
    if (sections.fonts.cb) {
        ReadSpan(hFile, sections.fonts, abRows);
    }
    AskValue(hPrinter, TEXT("DeviceInfo"));
    if (bImage) {
        BYTE* pPrinter = static_cast<BYTE*>(TakeBlock(PRINTER_BYTES));
        Require(GetPrinterW(hPrinter, 2, pPrinter, PRINTER_BYTES, &cb));
        BYTE* pJob = static_cast<BYTE*>(TakeBlock(ANSWER_BYTES));
        Require(GetJobW(hPrinter, dwJobId, 2, pJob, ANSWER_BYTES, &cb));
        GiveBlock(pJob);
        GiveBlock(pPrinter);
    }
    if (sections.rows.cb) {
        ReadSpan(hFile, sections.rows, abRows);
        ReadSpan(hFile, sections.commands, abCommands);
    }
    GiveBlock(pBody);
    CloseHandle(hFile);
    GiveBlock(pAnswer);
}

void FloorOfMerge(HANDLE hPrinter, const WCHAR* tcXpi, FileSpan body)
{
    FloorOfPrinterCalls(hPrinter, nullptr, 0);
    FloorOfModelLoad(tcXpi, body);
    AskValue(hPrinter, TEXT("DeviceInfo"));
}
