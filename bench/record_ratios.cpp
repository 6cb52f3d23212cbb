/* What the two checks of a record cost, as ratios to floors measured in the same run: the rules alone against
   one pass of two-sided comparisons, the whole calls against the loading of the model, the merge against its own
   reads. Exit code 1 when a
   ratio is over its figure. */
#include <cstring>

#include "bench/floors.h"
#include "bench/watch.h"
#include "description/driver_files.h"
#include "settings/check_core.h"
#include "settings/defaults.h"
#include "settings/merge.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr double RULES_FIGURE = 6.0;  /* times one pass of comparisons */
constexpr double CALLS_FIGURE = 1.75; /* times one load of the model */
constexpr double MERGE_FIGURE = 2.0;  /* times its own reads */
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
    return nOver;
}
