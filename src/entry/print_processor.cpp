/* Registers the print processor. */
#include "entry/print_processor.h"

#include "base/file_name.h"
#include "description/driver_files.h"

namespace {

constexpr u32 PROCESSOR_BYTES = 1024;

BOOL AskProcessors(HANDLE, BYTE* pOut, DWORD cbOut, DWORD* pcbNeeded, DWORD* pnRows)
{
    return EnumPrintProcessorsW(nullptr, nullptr, 1, pOut, cbOut, pcbNeeded, pnRows);
}

int IsListed(PrinterCall& call, const WCHAR* wcProcessor)
{
    u32 cb;
    DWORD nRows;
    AskState state;
    OwnedBlock<PRINTPROCESSOR_INFO_1W> pRows(static_cast<PRINTPROCESSOR_INFO_1W*>(
        AskSpooler(call.hPrinter, AskProcessors, PROCESSOR_BYTES, &cb, &nRows, &state)));
    for (u32 i = 0; pRows && i < nRows && i < cb / sizeof(PRINTPROCESSOR_INFO_1W); i++) {
        if (SameFileName(AnswerText(pRows.get(), cb, pRows.get()[i].pName), wcProcessor)) {
            return 1;
        }
    }
    return 0;
}

} // namespace

void RegisterPrintProcessor(PrinterCall& call)
{
    WCHAR tcPath[PATH_CHARS], tcFile[PATH_CHARS], wcProcessor[PATH_CHARS];
    if (!FindDriverFile(call, TEXT("PrintProcessor"), TEXT("JOB.DLL"), tcPath)) {
        return;
    }
    CopyWide(tcFile, PATH_CHARS, BehindLast(tcPath, '\\'));
    CopyWide(wcProcessor, PATH_CHARS, tcFile);
    const WCHAR* wcExtension = BehindLast(wcProcessor, '.');
    if (wcExtension > wcProcessor) {
        wcProcessor[wcExtension - wcProcessor - 1] = 0;
    }
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    if (!pInfo || !wcProcessor[0] || SameFileName(PrinterText(call, pInfo->pPrintProcessor), wcProcessor)) {
        return;
    }
    if (!IsListed(call, wcProcessor)) {
        AddPrintProcessorW(nullptr, nullptr, tcFile, wcProcessor);
    }
    PRINTER_INFO_2W info = *pInfo;
    info.pPrintProcessor = wcProcessor;
    SetPrinterInfo(call, info);
}
