/* The library's hot paths, one by one, for counting the instructions that they take: hot_paths NAME runs one of
   them inside MeasuredWork, which scripts/instructions has callgrind watch; hot_paths alone lists the names. */
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>

#include "description/driver_files.h"
#include "document/defaults.h"
#include "entry/exports.h"
#include "entry/job_records.h"
#include "places.h"
#include "settings/checks.h"
#include "settingsfile/settings_reader.h"
#include "settingsfile/settings_writer.h"
#include "tools/tq/ask.h"
#include "tools/tq/sample_printer.h"

extern "C" [[gnu::noinline]] void MeasuredWork(const std::function<void()>& work)
{
    work();
    asm volatile("" : : : "memory");
}

namespace {

/* An installed sample and its default record. */
struct Bench {
    PrinterSetup setup;
    OpenSample printer;
    DriverDevmode record;

    explicit Bench(const char* cSection)
        : setup(InstallSample(FindInfModel(ReadInf(TQUI_SAMPLES "/tqui.inf"), cSection), TQUI_SAMPLES)),
          printer(setup.wcName)
    {
        PrinterCall call(printer.hPrinter);
        WideText wcName = setup.wcName;
        BuildDefaultRecord(call, wcName.data(), &record, 0);
    }

    DWORD Capability(WORD wQuestion, void* pOut)
    {
        return DrvDeviceCapabilities(printer.hPrinter, setup.wcName.data(), wQuestion, pOut, nullptr);
    }
};

std::function<void()> ListOf(const char* cSection, WORD wQuestion)
{
    auto bench = std::make_shared<Bench>(cSection);
    Bytes rows(bench->Capability(wQuestion, nullptr) * RowBytes(wQuestion));
    return [bench, rows, wQuestion]() mutable { bench->Capability(wQuestion, rows.data()); };
}

std::function<void()> WithRecord(const char* cSection,
                                 const std::function<void(PrinterCall&, DriverDevmode*)>& body)
{
    auto bench = std::make_shared<Bench>(cSection);
    return [bench, body] {
        PrinterCall call(bench->printer.hPrinter);
        DriverDevmode copy = bench->record;
        body(call, &copy);
    };
}

void CheckBoth(PrinterCall& call, DriverDevmode* pRecord)
{
    OwnedModel pModel = LoadPrinterModel(call);
    if (!ValidatePublicPart(call, pRecord, pModel.get()) ||
        !ValidatePrivatePart(call, &pRecord->rPrivate, pModel.get())) {
        std::abort();
    }
}

void BuildDefault(PrinterCall& call, DriverDevmode* pRecord)
{
    WCHAR wcName[] = TEXT("Printer");
    BuildDefaultRecord(call, wcName, pRecord, 1);
}

/* The head of a job into a buffer with room for it. */
std::function<void()> JobHead(const char* cSection)
{
    auto bench = std::make_shared<Bench>(cSection);
    return [bench] {
        DriverDevmode copy = bench->record;
        GuiJobRecord job = {};
        char cBuffer[8192] = "";
        DWORD cb = sizeof cBuffer;
        job.hPrinter = bench->printer.hPrinter;
        if (GuiStartJob(&copy, cBuffer, &cb, &job) != JOB_DONE) {
            std::abort();
        }
        if (job.pJobName) {
            HeapFree(GetProcessHeap(), 0, job.pJobName);
        }
    };
}

PDEVMODEW AsDevmode(DriverDevmode* pRecord)
{
    return reinterpret_cast<PDEVMODEW>(pRecord);
}

/* What an application's record becomes, as GDI asks for it. */
std::function<void()> Merge(const char* cSection)
{
    auto bench = std::make_shared<Bench>(cSection);
    return [bench] {
        DriverDevmode in = bench->record, out;
        DOCUMENTPROPERTYHEADER header = {};
        header.cbSize = sizeof header;
        header.hPrinter = bench->printer.hPrinter;
        header.pszPrinterName = bench->setup.wcName.data();
        header.pdmIn = AsDevmode(&in);
        header.pdmOut = AsDevmode(&out);
        header.cbOut = sizeof out;
        header.fMode = 2 | 8; /* copy out what came in */
        DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    };
}

std::function<void()> Initialise(const char* cSection)
{
    auto bench = std::make_shared<Bench>(cSection);
    return [bench] {
        if (!DrvPrinterEvent(bench->setup.wcName.data(), 3, 0, 0)) {
            std::abort();
        }
    };
}

void WriteSettings(PrinterCall&, DriverDevmode* pRecord)
{
    if (!WritePrinterSettings(TEXT("C:\\drv\\user.ini"), pRecord, 0)) {
        std::abort();
    }
}

void ReadSettings(PrinterCall&, DriverDevmode* pRecord)
{
    ReadPrinterSettings(OpenProfile(TEXT("C:\\drv\\user.ini")), pRecord, 0, 0);
}

std::function<void()> ReadBack(const char* cSection)
{
    PutFile(u"C:\\drv\\none.txt", std::string_view("")); /* its folder */
    WithRecord(cSection, WriteSettings)();
    return WithRecord(cSection, ReadSettings);
}

using Path = std::function<std::function<void()>()>;
const std::map<std::string, Path>& Paths()
{
    static const std::map<std::string, Path> paths = {
        {"papers", [] { return ListOf("T410A", DC_PAPERS); }},
        {"paper-names", [] { return ListOf("T410A", DC_PAPERNAMES); }},
        {"checks", [] { return WithRecord("T410A", CheckBoth); }},
        {"default", [] { return WithRecord("K100", BuildDefault); }},
        {"job-head", [] { return JobHead("T410A"); }},
        {"job-texts", [] { return JobHead("K100"); }},
        {"job-record", [] { return JobHead("IX300"); }},
        {"merge", [] { return Merge("T410A"); }},
        {"initialise", [] { return Initialise("T410A"); }},
        {"initialise-image", [] { return Initialise("K100"); }},
        {"read-settings", [] { return ReadBack("T410A"); }},
        {"write-settings",
         [] {
             ReadBack("T410A");
             return WithRecord("T410A", WriteSettings);
         }},
    };
    return paths;
}

} // namespace

int main(int nArgs, char** cArgs)
{
    if (nArgs != 2) {
        for (const auto& [name, path] : Paths()) {
            std::printf("%s\n", name.c_str());
        }
        return 0;
    }
    auto found = Paths().find(cArgs[1]);
    if (found == Paths().end()) {
        return 2;
    }
    StartMachine();
    {
        std::function<void()> work = found->second();
        work();
        MeasuredWork(work);
    }
    StopMachine();
    return 0;
}
