/* The sweep over lost power: what a change may leave on the disk, judged by the rule of the one who asks. */
#ifndef TQUI_TESTS_POWER_CUTS_H
#define TQUI_TESTS_POWER_CUTS_H

#include <functional>
#include <string>

#include "hosted/machine.h"

struct PowerSweep {
    size_t nCuts = 0, nBad = 0;
    size_t nOld = 0, nNew = 0; /* cuts that left the file as before and as behind the change */
    std::string fault;         /* the first bad one */
};

/* Runs the change once, with its files logged, then judges the disk behind every cut: empty for a good one. The
   file is for the counts, and at last it is as behind the change. */
inline PowerSweep SweepPowerCuts(const WideText& tcFile, size_t nPerPoint,
                                 const std::function<void()>& change,
                                 const std::function<std::string()>& judge)
{
    PowerSweep sweep;
    const Bytes before = GetFile(tcFile);
    LogDisk();
    change();
    const Bytes after = GetFile(tcFile);
    const std::vector<PowerCut> cuts = PowerCuts(nPerPoint);
    for (const PowerCut& cut : cuts) {
        CutPower(cut);
        const Bytes left = GetFile(tcFile);
        sweep.nOld += left == before;
        sweep.nNew += left == after;
        const std::string fault = judge();
        sweep.nBad += !fault.empty();
        if (!fault.empty() && sweep.fault.empty()) {
            sweep.fault = "cut behind event " + std::to_string(cut.nEvents) + " with " +
                          std::to_string(cut.nNames) + " names on the disk: " + fault;
        }
    }
    sweep.nCuts = cuts.size();
    PowerCut none = cuts.back();
    none.kept.assign(none.kept.size(), WHOLE_WRITE);
    none.nNames = none.nEvents;
    CutPower(none);
    return sweep;
}

/* The rule of a file that is replaced: old or new, nothing between. */
inline std::string OldOrNew(const Bytes& left, const Bytes& before, const Bytes& after)
{
    return left == before || left == after ? "" : "the file has " + std::to_string(left.size()) + " bytes";
}

#endif
