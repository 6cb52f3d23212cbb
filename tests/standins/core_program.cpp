/* Stand-in for a rendering core: plays the commands of one job through a TQUI.dll and prints them.

     CORE.EXE DLL PRINTER RECORD [DOCUMENT]

   RECORD is a file of 4088 bytes. With a document the job is one of the spooler's, begun and given up again.
   Prints what JobLines says and, with a job name, a line "name" with it in UTF-8. Exit code 0, 2 for wrong
   arguments, 1 for what cannot be opened. */
#include <cstdio>
#include <fstream>

#include <windows.h>
#include <winspool.h>

#include "standins/job_core.h"

namespace {

template <class Routine> Routine Export(HMODULE hLibrary, const char* cName)
{
    return reinterpret_cast<Routine>(reinterpret_cast<void*>(GetProcAddress(hLibrary, cName)));
}

int Fail(const char* cWhat)
{
    std::fprintf(stderr, "%s: error %lu\n", cWhat, GetLastError());
    return 1;
}

} // namespace

int main()
{
    int nArguments = 0;
    WCHAR** pwcArguments = CommandLineToArgvW(GetCommandLineW(), &nArguments);
    if (!pwcArguments || nArguments < 4 || nArguments > 5) {
        std::fprintf(stderr, "usage: CORE DLL PRINTER RECORD [DOCUMENT]\n");
        return 2;
    }
    HMODULE hLibrary = LoadLibraryW(pwcArguments[1]);
    HANDLE hPrinter = nullptr;
    DriverDevmode record = {};
    if (!hLibrary || !OpenPrinterW(pwcArguments[2], &hPrinter, nullptr)) {
        return Fail(hLibrary ? "the printer" : "the library");
    }
    HANDLE hFile =
        CreateFileW(pwcArguments[3], GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD cbRead = 0;
    if (!ReadFile(hFile, &record, sizeof record, &cbRead, nullptr) || cbRead != sizeof record) {
        return Fail("the record");
    }
    CloseHandle(hFile);
    const JobExports exports = {Export<decltype(&GuiStartJob)>(hLibrary, "GuiStartJob"),
                                Export<decltype(&GuiStartSheet)>(hLibrary, "GuiStartSheet"),
                                Export<decltype(&GuiEndJob)>(hLibrary, "GuiEndJob")};
    if (!exports.pStartJob || !exports.pStartSheet || !exports.pEndJob) {
        return Fail("the exports");
    }
    DWORD dwJobId = 0;
    WCHAR wcRaw[] = L"RAW";
    DOC_INFO_1W document = {nArguments == 5 ? pwcArguments[4] : nullptr, nullptr, wcRaw};
    if (document.pDocName) {
        dwJobId = StartDocPrinterW(hPrinter, 1, reinterpret_cast<LPBYTE>(&document));
    }
    const JobOutput output = RunJob(exports, hPrinter, dwJobId, &record);
    std::fputs(JobLines(output).c_str(), stdout);
    if (output.bNamed) {
        char cName[512] = "";
        WideCharToMultiByte(CP_UTF8, 0, output.wcJobName.c_str(), -1, cName, sizeof cName, nullptr, nullptr);
        std::printf("name %s\n", cName);
    }
    AbortPrinter(hPrinter);
    ClosePrinter(hPrinter);
    FreeLibrary(hLibrary);
    return 0;
}
