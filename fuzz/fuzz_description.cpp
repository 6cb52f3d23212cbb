/* The bytes are a description file. Its model is loaded, every reader is run on it and all capability
   questions are asked: nothing may be read or written outside the buffers, no list may have another length when
   it is filled than when it was counted, nothing may stay held.

   Seeds are the first 8192 bytes of the samples; made anew with
     cd build/hosted/samples && for f in ?*.XPI; do head -c 8192 $f >../../../fuzz/corpus/description/$f; done */
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "fuzz/require.h"
#include "places.h"
#include "support/every_reader.h"
#include "support/sweep.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr size_t LARGEST_FILE = 1 << 20;

HANDLE hPrinter;
int nDescriptor;

/* One machine for all runs; only the description's bytes change. A small language library: it is read anew by
   every question that wants it. */
bool Begin()
{
    StartMachine();
    PrinterSetup setup = InstallDescription(u"Test", {}, "");
    setup.atcDependentFiles.push_back(wcDriverFolder + WideText(u"TXT.DLL"));
    PutFile(setup.atcDependentFiles.back(),
            ReadDiskFile(TQUI_SOURCE_DIR "/fuzz/corpus/pe_resources/tiny.dll"));
    AddPrinter(setup);
    AddMachineForm(u"Form", FORM_USER, 215905, 310000);
    SetPrinterValue(setup.wcName, u"Memory", REG_DWORD, {98, 0, 0, 0});
    SetPrinterText(setup.wcName, u"DefaultSpoolDirectory", u"D:\\Spool");
    Require(OpenPrinterW(setup.wcName.data(), &hPrinter, nullptr));
    nDescriptor = open(HostPath(wcDriverFolder + WideText(u"MODEL.XPI")).c_str(), O_WRONLY | O_CLOEXEC);
    Require(nDescriptor >= 0);
    return true;
}

void RequireGood(const std::string& fault, const char* cAsked)
{
    if (!fault.empty()) {
        std::fprintf(stderr, "%s: %s\n", cAsked, fault.c_str());
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    static const bool bBegun = Begin();
    if (!bBegun || cb > LARGEST_FILE) {
        return -1;
    }
    Require(ftruncate(nDescriptor, 0) == 0 && pwrite(nDescriptor, pBytes, cb, 0) == static_cast<ssize_t>(cb));
    RequireGood(HoldsNothing([] { return ReadEverything(hPrinter); }), "readers");
    for (WORD wQuestion = FIRST_QUESTION; wQuestion <= LAST_QUESTION; wQuestion++) {
        const std::string fault = HoldsNothing([&] {
            GuardedAnswer answer = AskGuarded(ByHandle(hPrinter, u"Test", wQuestion), wQuestion);
            return answer.fault +
                   (answer.dwCounted == answer.dwFilled ? "" : "counted and filled differently; ");
        });
        RequireGood(fault, QuestionName(wQuestion));
    }
    return 0;
}
