/* What the two checks of a record cost, as ratios to floors measured in the same run: the rules alone against
   one pass of two-sided comparisons, the whole calls against the loading of the model, the merge against its own
   reads. Exit code 1 when a
   ratio is over its figure. */
#include <cstring>

#include "bench/floors.h"
#include "bench/watch.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "document/merge.h"
#include "places.h"
#include "settings/check_core.h"
#include "sheet/conflicts.h"
#include "tests/support/description_builder.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr double MERGE_FIGURE = 2.0;  /* times its own reads */
constexpr double RULES_FIGURE = 6.0;  /* times one pass of comparisons */
constexpr double CALLS_FIGURE = 1.75; /* times one load of the model */
/* times a plain pass for each kind of sheet: each row is reached by the checked way */
constexpr double CONFLICT_FIGURE = 10.0;
constexpr double CONFLICT_NANOSECONDS = 1e6;
constexpr int RULES = 1000;
constexpr int COMPARISONS = 300;
constexpr const char* acSections[] = {"T410A", "QP5", "K100", "IX300", "T440B"};

/* A range for every so many bytes of the record. */
struct Comparison {
    u16 usAt;
    i32 lLow, lHigh;
};

int CountWithin(const DriverDevmode& record, const Comparison* aRanges)
{
    int nWithin = 0;
    for (int i = 0; i < COMPARISONS; i++) {
        i32 lValue;
        std::memcpy(&lValue, reinterpret_cast<const u8*>(&record) + aRanges[i].usAt, sizeof lValue);
        if (lValue >= aRanges[i].lLow && lValue <= aRanges[i].lHigh) {
            nWithin++;
        }
    }
    return nWithin;
}

int Measure(const char* cSection, const std::vector<InfModel>& models)
{
    PrinterSetup setup = InstallSample(FindInfModel(models, cSection), TQUI_SAMPLES);
    OpenSample printer(setup.wcName);
    PrinterCall call(printer.hPrinter);
    OwnedModel pOwned = LoadPrinterModel(call);
    const XpiModel* pModel = pOwned.get();
    DriverDevmode record;
    WideText wcName = setup.wcName;
    BuildDefaultRecord(call, wcName.data(), &record, 0);
    Require(ValidatePublicPart(call, &record, pModel) && ValidatePrivatePart(call, &record.rPrivate, pModel),
            cSection, "the default record is refused");

    PublicLimits publicLimits;
    PrivateLimits privateLimits = {};
    CollectPublicLimits(pModel, &publicLimits);
    CollectModelLimits(pModel, &privateLimits);
    privateLimits.lColorDataSize = static_cast<i32>(ReadXpiColorData(*OpenXpiFile(call), nullptr));
    privateLimits.tcXpiPath = GetXpiPath(call);

    Comparison aRanges[COMPARISONS];
    for (int i = 0; i < COMPARISONS; i++) {
        aRanges[i] = {static_cast<u16>(i * static_cast<int>(sizeof record - 4) / COMPARISONS), -50,
                      0x7FFFFFF0};
    }
    Watch rules, comparisons, load, bothChecks, eachByItself, merge, ownReads;
    SetPrinterValue(setup.wcName, u"DeviceInfo", REG_BINARY, Bytes(16));
    DOCUMENTPROPERTYHEADER header = {};
    DriverDevmode merged;
    header.hPrinter = printer.hPrinter;
    header.pdmIn = reinterpret_cast<PDEVMODEW>(&record);
    header.pdmOut = reinterpret_cast<PDEVMODEW>(&merged);
    header.cbOut = sizeof merged;
    header.fMode = 10; /* DM_MODIFY and DM_COPY */
    const XpiHeader* pHeader = ReadXpiHeader(*OpenXpiFile(call));
    FileSpan body = {pHeader->dwBodyOffset, pHeader->dwStringBaseOffset - pHeader->dwBodyOffset};
    int nRepairs = 0;
    for (int nRound = 0; nRound < 60; nRound++) {
        comparisons.Round(2000, [&] {
            Use(record);
            int nWithin = CountWithin(record, aRanges);
            Use(nWithin);
        });
        rules.Round(2000, [&] {
            Use(record);
            CheckState publicState = {0, {nullptr, nullptr}}, privateState = publicState;
            CheckPublicFields(&record, pModel, publicLimits, &publicState);
            CheckPrivateFields(&record.rPrivate, pModel, privateLimits, &privateState);
            nRepairs += publicState.nRepairs + privateState.nRepairs;
        });
        load.Round(50, [&] {
            PrinterCall fresh(printer.hPrinter);
            OwnedModel pFresh = LoadPrinterModel(fresh);
            Use(pFresh);
        });
        bothChecks.Round(50, [&] {
            PrinterCall fresh(printer.hPrinter);
            OwnedModel pFresh = LoadPrinterModel(fresh);
            Use(record);
            ValidatePublicPart(fresh, &record, pFresh.get());
            ValidatePrivatePart(fresh, &record.rPrivate, pFresh.get());
        });
        eachByItself.Round(50, [&] {
            PrinterCall fresh(printer.hPrinter);
            Use(record);
            ValidatePublicPart(fresh, &record, nullptr);
            ValidatePrivatePart(fresh, &record.rPrivate, nullptr);
        });
        ownReads.Round(50, [&] { FloorOfMerge(printer.hPrinter, GetXpiPath(call), body); });
        merge.Round(50, [&] {
            PrinterCall fresh(printer.hPrinter);
            MergeDocumentSettings(fresh, header);
            Use(merged);
        });
    }
    Require(merged.dmSize == PUBLIC_BYTES, cSection, "nothing was merged");
    Require(nRepairs == 0, cSection, "the record needs repairs at each check: there is nothing to compare");
    return Report(cSection, "rules of both checks", rules.best, comparisons.best, RULES_FIGURE) |
           Report(cSection, "load and both checks", bothChecks.best, load.best, CALLS_FIGURE) |
           Report(cSection, "both checks, each loading the model", eachByItself.best, load.best,
                  CALLS_FIGURE) |
           Report(cSection, "merge of a full record", merge.best, ownReads.best, MERGE_FIGURE);
}

/* Every rule's masks and its bit of one paper, one rule behind the other. */
int CountPlain(const ConstraintRow* aRules, int nCode, u32 ulInput, u32 ulOptions)
{
    int nHits = 0;
    for (int i = 0; i < RULES; i++) {
        const ConstraintRow& rule = aRules[i];
        nHits += (rule.bPapers[nCode / 8] >> (7 - nCode % 8) & 1) && (rule.ulInputs & ulInput) &&
                 (rule.ulOptions & ulOptions);
    }
    return nHits;
}

/* A thousand rules of which each is held against everything and none hits, on a job with all kinds of sheet. */
int MeasureConflicts()
{
    DescriptionBuilder builder;
    ConstraintRow rule = {};
    rule.usUsed = 1;
    rule = WithPapers(rule, {9});
    rule.ulInputs = rule.ulOptions = 1;
    std::vector<ConstraintRow> rules(RULES, rule);
    rules.push_back({});
    builder.Table(offsetof(XpiModel, pConstraints), rules);
    builder.Table<BinRow>(offsetof(XpiModel, pInputBins), {{1, 1025, 1}, {}});
    PutFile(u"C:\\drv\\rules.xpi", builder.Build());
    XpiFile file = {};
    Require(OpenXpiPath(file, u"C:\\drv\\rules.xpi"), "rules", "cannot be opened");
    OwnedModel pModel = LoadXpiModel(file);
    Require(pModel && Row(pModel.get(), pModel->pConstraints, RULES - 1)->usUsed, "rules",
            "cannot be loaded");

    DriverDevmode record = recordTemplate;
    PrivateDevmode& part = record.rPrivate;
    record.dmPaperSize = 9;
    record.dmDefaultSource = 1025;
    record.dmDuplex = 1; /* what keeps each rule from a hit is tested last */
    part.sScale = 0;
    part.sFrontCover = part.sBackCover = part.sSeparators = part.sInsertPages = 1;
    part.sFrontPaperSize = part.sBackPaperSize = part.sSeparatorPaper = part.sInsertPaper = 0xFFFF;
    part.sFrontBin = part.sBackBin = part.sSeparatorBin = part.sInsertPageBin = 1025;
    DeviceInfo installed = {1, 1, 1, 0};
    PrinterCall call(nullptr);
    Conflict conflict;
    Require(!FindConflict(call, &record, &installed, pModel.get(), 448, &conflict), "rules", "one hits");
    record.dmDuplex = 2;
    Require(FindConflict(call, &record, &installed, pModel.get(), 448, &conflict), "rules", "none can hit");
    record.dmDuplex = 1;

    Watch plain, check;
    for (int nRound = 0; nRound < 60; nRound++) {
        plain.Round(50, [&] {
            Use(rules);
            for (int nKind = 0; nKind < SHEET_KINDS; nKind++) {
                int nHits = CountPlain(rules.data(), record.dmPaperSize, 1, 1);
                Use(nHits);
            }
        });
        check.Round(50, [&] {
            Use(record);
            int bFound = FindConflict(call, &record, &installed, pModel.get(), 448, &conflict);
            Use(bFound);
        });
    }
    int bSlow = check.best > CONFLICT_NANOSECONDS;
    if (bSlow) {
        std::printf("the check of %d rules takes a millisecond and more\n", RULES);
    }
    return bSlow |
           Report("rules", "conflicts of five kinds of sheet", check.best, plain.best, CONFLICT_FIGURE);
}

} // namespace

int main()
{
    std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    int nOver = 0;
    for (const char* cSection : acSections) {
        StartMachine();
        nOver |= Measure(cSection, models);
        StopMachine();
    }
    StartMachine();
    nOver |= MeasureConflicts();
    StopMachine();
    return nOver;
}
