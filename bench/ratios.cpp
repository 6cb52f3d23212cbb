/* Measures pieces of work beside the system calls that they cannot do without, in one run, and holds the
   ratios against their limits. Exit code 1 when one is over its limit.

   Each measurement is repeated many times, in random order with the others, and its fastest repetition
   counts: what else the machine does only adds. Options are those of Google Benchmark. */
#include <cstdio>
#include <map>

#include <benchmark/benchmark.h>

#include "bench/floors.h"
#include "description/xpi_file.h"
#include "description/xpi_text.h"
#include "entry/exports.h"
#include "hosted/standin.h"
#include "places.h"
#include "support/description_builder.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr int REPETITIONS = 40;
constexpr double REPETITION_SECONDS = 0.005;
constexpr u32 NAMES = 40;

/* ---- what is measured on ---- */

struct Printer {
    WideText wcName, tcXpi, tcIni;
    HANDLE hPrinter = nullptr;
    Bytes description;
    FileSpan body = {};
};

void Open(Printer* pPrinter)
{
    pPrinter->description = GetFile(pPrinter->tcXpi);
    u32 ulBody = Peek<u32>(pPrinter->description, AT_BODY);
    pPrinter->body = {ulBody, Peek<u32>(pPrinter->description, AT_STRING_BASE) - ulBody};
    if (!OpenPrinterW(pPrinter->wcName.data(), &pPrinter->hPrinter, nullptr)) {
        std::abort();
    }
}

Printer AddSample(const InfModel& model)
{
    Printer printer;
    PrinterSetup setup = InstallSample(model, TQUI_SAMPLES);
    printer.wcName = setup.wcName;
    for (const WideText& tcFile : setup.atcDependentFiles) {
        WideText tcEnd = LowerText(tcFile.substr(tcFile.size() - 4));
        printer.tcXpi = tcEnd == LowerText(u".xpi") ? tcFile : printer.tcXpi;
        printer.tcIni = tcEnd == LowerText(u".ini") ? tcFile : printer.tcIni;
    }
    Open(&printer);
    return printer;
}

/* A printer with nPapers papers, each with a name, and nothing else. */
Printer AddList(int nPapers)
{
    DescriptionBuilder builder;
    std::vector<PaperRow> rows;
    for (int i = 0; i < nPapers; i++) {
        i16 sName = builder.Text("Paper " + std::to_string(i) + " of this list");
        rows.push_back({sName, static_cast<i16>(i + 1), 2100, 2970, 1, 0, 0, 0, {}});
    }
    rows.push_back({});
    builder.Table(8, rows);

    Printer printer;
    printer.wcName = u"List " + Widen(std::to_string(nPapers));
    printer.tcXpi = u"C:\\drv\\list" + Widen(std::to_string(nPapers)) + u".xpi";
    PutFile(printer.tcXpi, builder.Build());
    PrinterSetup setup;
    setup.wcName = printer.wcName;
    setup.atcDependentFiles = {printer.tcXpi};
    AddPrinter(setup);
    Open(&printer);
    return printer;
}

/* The sections with the texts 1 to NAMES of a list's only language. */
NameSections ListSections(const Bytes& file)
{
    NameSections sections = {};
    sections.base = {Peek<u32>(file, AT_STRING_BASE) + 2 * 9, 2};
    u32 ulRow = Peek<u16>(file, sections.base.ulOffset) + 1u;
    sections.rows = {Peek<u32>(file, AT_STRING_ID) + 2 * ulRow, 2 * NAMES};
    u32 ulFirst = Peek<u16>(file, sections.rows.ulOffset);
    u32 ulLast = Peek<u16>(file, sections.rows.ulOffset + sections.rows.cb - 2);
    u32 ulTexts = Peek<u32>(file, AT_STRING_DATA) + ulFirst;
    u32 ulToEnd = static_cast<u32>(file.size()) - ulTexts;
    sections.texts = {ulTexts, std::min(ulLast - ulFirst + 64, ulToEnd)};
    return sections;
}

/* ---- the library's side ---- */

void LoadModel(const Printer& printer)
{
    XpiFile file;
    OwnedModel pModel;
    if (!OpenXpiPath(file, printer.tcXpi.c_str()) || !(pModel = LoadXpiModel(file))) {
        std::abort();
    }
    benchmark::DoNotOptimize(pModel.get());
}

void AskPapers(Printer& printer, WORD wQuestion, DWORD nRows)
{
    static u8 abRows[1024 * 128];
    if (DrvDeviceCapabilities(printer.hPrinter, printer.wcName.data(), wQuestion, abRows, nullptr) != nRows) {
        std::abort();
    }
}

void ReadNames(XpiFile& file, const i16* aIds)
{
    static WCHAR wcNames[NAMES * 64];
    file.bHeaderRead = 0;
    ReadXpiStrings(file, 9, nullptr, aIds, NAMES, wcNames, 64, 64);
    if (wcNames[(NAMES - 1) * 64] != 'P') {
        std::abort();
    }
}

/* ---- running and judging ---- */

/* Keeps the fastest repetition of each benchmark, in nanoseconds of this process's time. */
class Fastest : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                auto [found, bNew] = times.try_emplace(run.run_name.function_name, run.GetAdjustedCPUTime());
                found->second = std::min(found->second, run.GetAdjustedCPUTime());
            }
        }
    }

    double Of(const std::string& name) const { return times.at(name); }

  private:
    std::map<std::string, double> times;
};

template <class Work> void Measure(const std::string& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](benchmark::State& state) {
                                     for (auto turn : state) {
                                         static_cast<void>(turn);
                                         work();
                                     }
                                 })
        ->Repetitions(REPETITIONS)
        ->MinTime(REPETITION_SECONDS);
}

bool Judge(const char* cWhat, double dWork, double dFloor, double dLimit)
{
    double dRatio = dWork / dFloor;
    std::printf("%-52s %9.0f %9.0f %7.2f %7.2f  %s\n", cWhat, dWork, dFloor, dRatio, dLimit,
                dRatio <= dLimit ? "ok" : "OVER");
    return dRatio <= dLimit;
}

} // namespace

int main(int argc, char** argv)
{
    StartMachine();
    std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    Printer custom = AddSample(FindInfModel(models, "T410A"));
    Printer plain = AddSample(FindInfModel(models, "QP5"));
    Printer list40 = AddList(NAMES), list10 = AddList(10), list100 = AddList(100), list1000 = AddList(1000);
    AddMachineForm(u"Form", FORM_USER, 215905, 310000);
    NameSections sections = ListSections(list40.description);
    i16 aIds[NAMES];
    for (u32 i = 0; i < NAMES; i++) {
        aIds[i] = static_cast<i16>(i + 1);
    }
    XpiFile names = {};
    OpenXpiPath(names, list40.tcXpi.c_str());

    for (Printer* pPrinter : {&custom, &plain}) {
        std::string of = Narrow(pPrinter->wcName);
        DWORD nPapers =
            DrvDeviceCapabilities(pPrinter->hPrinter, pPrinter->wcName.data(), DC_PAPERS, nullptr, nullptr);
        int bCustom = pPrinter == &custom;
        Measure("load of " + of, [=] { LoadModel(*pPrinter); });
        Measure("load floor of " + of, [=] { FloorOfModelLoad(pPrinter->tcXpi.c_str(), pPrinter->body); });
        Measure("papers of " + of, [=] { AskPapers(*pPrinter, DC_PAPERS, nPapers); });
        Measure("printer calls of " + of,
                [=] { FloorOfPrinterCalls(pPrinter->hPrinter, pPrinter->tcIni.c_str(), bCustom); });
    }
    Measure("names", [&] { ReadNames(names, aIds); });
    Measure("names floor", [&] { FloorOfNames(names.hFile.get(), sections); });
    Measure("papers 10", [&] { AskPapers(list10, DC_PAPERNAMES, 10); });
    Measure("papers 100", [&] { AskPapers(list100, DC_PAPERNAMES, 100); });
    Measure("papers 1000", [&] { AskPapers(list1000, DC_PAPERNAMES, 1000); });

    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> options(argv, argv + argc);
    options.push_back(interleaving.data());
    int nOptions = static_cast<int>(options.size());
    benchmark::Initialize(&nOptions, options.data());
    Fastest fastest;
    benchmark::RunSpecifiedBenchmarks(&fastest);

    std::printf("%-52s %9s %9s %7s %7s\n", "nanoseconds", "library", "floor", "ratio", "limit");
    bool bGood = true;
    for (const Printer* pPrinter : {&custom, &plain}) {
        std::string of = Narrow(pPrinter->wcName);
        double dFloor = fastest.Of("load floor of " + of);
        double dPapers = fastest.Of("papers of " + of) - fastest.Of("printer calls of " + of);
        bGood &= Judge(("model load, " + of).c_str(), fastest.Of("load of " + of), dFloor, 1.25);
        bGood &= Judge(("DC_PAPERS without its printer calls, " + of).c_str(), dPapers, dFloor, 1.5);
    }
    bGood &= Judge("40 paper names", fastest.Of("names"), fastest.Of("names floor"), 1.5);
    bGood &= Judge("a paper's name of 1000, beside one of 100", fastest.Of("papers 1000") / 1000,
                   fastest.Of("papers 100") / 100, 1.3);
    bGood &= Judge("each paper from 100 to 1000, beside 10 to 100",
                   (fastest.Of("papers 1000") - fastest.Of("papers 100")) / 900,
                   (fastest.Of("papers 100") - fastest.Of("papers 10")) / 90, 1.3);
    std::printf(
        "\nFloors: open, read 64 bytes, read the body into a zeroed block, close; for names the four bulk\n"
        "reads of their sections. Subtracted from the library's side: for DC_PAPERS the calls to the\n"
        "spooler, the settings file and the locale, made by themselves (%.0f and %.0f).\n",
        fastest.Of("printer calls of " + Narrow(custom.wcName)),
        fastest.Of("printer calls of " + Narrow(plain.wcName)));
    names.hFile.reset();
    for (const Printer* pPrinter : {&custom, &plain, &list40, &list10, &list100, &list1000}) {
        ClosePrinter(pPrinter->hPrinter);
    }
    StopMachine();
    return bGood ? 0 : 1;
}
