/* The bytes tell which sample's printer has an event, then what its .INI file, its user's settings file and two of its
   values hold: the pieces are cut at the byte 0xFE. Whatever they are, nothing outside the driver's own folders changes
   and nothing is held. */
#include "entry/exports.h"
#include "fuzz/require.h"
#include "places.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr u8 CUT = 0xFE;
const WideText tcOther = u"C:\\Users\\worker\\other.wm";

struct Sample {
    PrinterSetup setup;
    WideText tcIni, tcSettings;
};

Bytes TakePiece(const u8** ppBytes, const u8* pEnd)
{
    const u8* pFrom = *ppBytes;
    while (*ppBytes < pEnd && **ppBytes != CUT) {
        ++*ppBytes;
    }
    Bytes piece(pFrom, *ppBytes);
    *ppBytes += *ppBytes < pEnd;
    return piece;
}

std::vector<Sample> InstallSamples()
{
    std::vector<Sample> samples;
    StartOnce();
    for (const InfModel& model : ReadInf(TQUI_SAMPLES "/tqui.inf")) {
        Sample sample = {InstallSample(model, TQUI_SAMPLES), {}, {}};
        for (const WideText& tcFile : sample.setup.atcDependentFiles) {
            sample.tcIni = tcFile.ends_with(u".INI") ? tcFile : sample.tcIni;
        }
        sample.tcSettings = u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\" +
                            sample.setup.wcDriverName + u"\\s.ini";
        samples.push_back(sample);
    }
    return samples;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    static const std::vector<Sample> samples = InstallSamples();
    if (cb < 1) {
        return 0;
    }
    const Sample& sample = samples[pBytes[0] / 8 % samples.size()];
    int nEvent = pBytes[0] % 8 % 4 + 1;
    const u8* pAt = pBytes + 1;
    const u8* pEnd = pBytes + cb;
    AddPrinter(sample.setup);
    DropMachineForms();
    PutFile(sample.setup.tcDataFile, Bytes(100, 0x46));
    PutFile(tcOther, "other");
    if (!sample.tcIni.empty()) {
        PutFile(sample.tcIni, TakePiece(&pAt, pEnd));
    }
    PutFile(sample.tcSettings, TakePiece(&pAt, pEnd));
    const WideText wcPrinter = sample.setup.wcName;
    SetPrinterText(wcPrinter, u"Settings", pBytes[0] & 4 ? u"s.ini" : u"..\\..\\..\\other.wm");
    SetPrinterValue(wcPrinter, u"PaperSizes", REG_BINARY, TakePiece(&pAt, pEnd));
    SetPrinterValue(wcPrinter, u"TQNetworkInstall", REG_MULTI_SZ, TakePiece(&pAt, pEnd));
    SetSystemVersion(pBytes[0] & 128 ? 4 : 10, 0);
    LiveCounts before = CountLive();
    WideText wcName = wcPrinter;
    Require(DrvPrinterEvent(wcName.data(), nEvent, 0, 0) == 1);
    DropSemaphores();
    Require(CountLive() == before);
    Require(GetFile(tcOther) == Bytes({'o', 't', 'h', 'e', 'r'}));
    RemovePrinter(wcPrinter);
    std::error_code ignored;
    std::filesystem::remove_all(HostPath(sample.tcSettings).parent_path(), ignored);
    return 0;
}
