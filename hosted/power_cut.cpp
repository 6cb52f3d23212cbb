/* Lost power: a log of what was done to the disk, and the disks that can be left when it ends at some point.

   Names and contents are two orders. Creations, renames and deletions happen in their order, each whole; the last
   of them may not have reached the disk. A write that no flush of its file followed may have reached it whole,
   in its first bytes, as zeros or not at all, whatever became of other writes and of names. A flush, and a
   rename that waits for the disk, take all names in front of them along. */
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

#include "hosted/open_files.h"

namespace {

enum EventKind { CREATE, RENAME, REMOVE, EMPTY, WRITE, FLUSH };

struct Event {
    EventKind kind;
    size_t nNode = 0;
    std::string host, to;
    i64 lAt = 0;
    Bytes bytes;
    bool bDurable = false;
};

struct Log {
    bool bOn = false;
    std::vector<Event> events;
    std::map<std::string, i64> names; /* node of each path when it was first met; -1: nothing was there */
    std::vector<Bytes> contents;      /* of each node when it was first met */
    std::map<u64, size_t> nodes;      /* by their numbers on the host */
};

Log& log()
{
    static Log instance;
    return instance;
}

bool IsName(const Event& event)
{
    return event.kind <= REMOVE;
}

bool IsData(const Event& event)
{
    return event.kind == EMPTY || event.kind == WRITE;
}

size_t NewNode(u64 ulNode, const Bytes& bytes)
{
    log().contents.push_back(bytes);
    log().nodes[ulNode] = log().contents.size() - 1;
    return log().contents.size() - 1;
}

void Add(Event event)
{
    if (log().bOn) {
        log().events.push_back(std::move(event));
    }
}

size_t NodeOf(u64 ulNode)
{
    auto found = log().nodes.find(ulNode);
    if (found == log().nodes.end()) {
        std::fprintf(stderr, "a file was changed that was open before the log began\n");
        std::abort();
    }
    return found->second;
}

u32 NextRandom(u32* pulState)
{
    *pulState = *pulState * 1664525 + 1013904223;
    return *pulState >> 8;
}

/* Brings one event of the contents into a node. */
void Apply(const Event& event, i64 lKept, Bytes* pBytes)
{
    if (lKept == LOST_WRITE) {
        return;
    }
    if (event.kind == EMPTY) {
        pBytes->clear();
        return;
    }
    size_t cb = lKept < 0 ? event.bytes.size() : std::min(event.bytes.size(), static_cast<size_t>(lKept));
    size_t nAt = static_cast<size_t>(event.lAt);
    pBytes->resize(std::max(pBytes->size(), nAt + cb));
    for (size_t i = 0; i < cb; i++) {
        (*pBytes)[nAt + i] = lKept == ZEROED_WRITE ? u8{0} : event.bytes[i];
    }
}

/* What may have become of a write, for the n-th cut that asks. */
i64 Fate(const Event& event, u32 ulRandom)
{
    if (event.kind == EMPTY) {
        return ulRandom % 2 ? WHOLE_WRITE : LOST_WRITE;
    }
    switch (ulRandom % 4) {
    case 0: return LOST_WRITE;
    case 1: return WHOLE_WRITE;
    case 2: return ZEROED_WRITE;
    default: return static_cast<i64>(ulRandom / 4 % (event.bytes.size() + 1));
    }
}

} // namespace

void LogBefore(const std::string& host)
{
    struct stat there = {};
    if (!log().bOn || log().names.count(host)) {
        return;
    }
    Bytes bytes;
    if (lstat(host.c_str(), &there) != 0 || !S_ISREG(there.st_mode)) {
        log().names[host] = -1;
    } else {
        ReadHostBytes(host, &bytes);
        auto found = log().nodes.find(there.st_ino);
        size_t nNode = found != log().nodes.end() ? found->second : NewNode(there.st_ino, bytes);
        log().names[host] = static_cast<i64>(nNode);
    }
}

void LogCreation(const std::string& host, u64 ulNode)
{
    if (log().bOn) {
        log().names.emplace(host, -1);
        Add({CREATE, NewNode(ulNode, Bytes()), host, {}, 0, {}, false});
    }
}

void LogEmptying(u64 ulNode)
{
    if (log().bOn) {
        Add({EMPTY, NodeOf(ulNode), {}, {}, 0, {}, false});
    }
}

void LogWrite(u64 ulNode, i64 lAt, const void* pBytes, size_t cb)
{
    if (log().bOn && cb) {
        const u8* pFrom = static_cast<const u8*>(pBytes);
        Add({WRITE, NodeOf(ulNode), {}, {}, lAt, Bytes(pFrom, pFrom + cb), false});
    }
}

void LogFlush(u64 ulNode)
{
    if (log().bOn) {
        Add({FLUSH, NodeOf(ulNode), {}, {}, 0, {}, true});
    }
}

void LogRename(const std::string& from, const std::string& to, bool bDurable)
{
    Add({RENAME, 0, from, to, 0, {}, bDurable});
}

void LogDeletion(const std::string& host)
{
    Add({REMOVE, 0, host, {}, 0, {}, false});
}

void LogDisk()
{
    log() = Log();
    log().bOn = true;
}

void ResetPowerCuts()
{
    log() = Log();
}

std::vector<PowerCut> PowerCuts(size_t nPerPoint)
{
    log().bOn = false;
    const std::vector<Event>& events = log().events;
    std::vector<PowerCut> cuts;
    u32 ulState = 1;
    for (size_t nEvents = 0; nEvents <= events.size(); nEvents++) {
        size_t nNames = 0, nSafeNames = 0, nOpen = 0;
        std::vector<bool> safe(nEvents);
        for (size_t i = 0; i < nEvents; i++) {
            nNames += IsName(events[i]);
            nSafeNames = events[i].bDurable ? nNames : nSafeNames;
            for (size_t j = i; j < nEvents; j++) {
                safe[i] = safe[i] || (events[j].kind == FLUSH && events[j].nNode == events[i].nNode);
            }
            nOpen += IsData(events[i]) && !safe[i];
        }
        for (size_t nCut = 0; nCut < (nOpen || nNames > nSafeNames ? nPerPoint : 1); nCut++) {
            /* First all in order, then names alone, then contents alone, then anything. */
            PowerCut cut = {nEvents, nCut == 2 ? nSafeNames : nNames, {}};
            if (nCut > 2 && nNames > nSafeNames) {
                cut.nNames = nSafeNames + NextRandom(&ulState) % (nNames - nSafeNames + 1);
            }
            for (size_t i = 0; i < nEvents; i++) {
                bool bWhole = !IsData(events[i]) || safe[i] || nCut == 0 || nCut == 2;
                cut.kept.push_back(bWhole      ? WHOLE_WRITE
                                   : nCut == 1 ? LOST_WRITE
                                               : Fate(events[i], NextRandom(&ulState)));
            }
            cuts.push_back(cut);
        }
    }
    return cuts;
}

void CutPower(const PowerCut& cut)
{
    log().bOn = false;
    std::map<std::string, i64> names = log().names;
    std::vector<Bytes> contents = log().contents;
    size_t nNames = 0;
    for (size_t i = 0; i < cut.nEvents; i++) {
        const Event& event = log().events[i];
        if (IsData(event)) {
            Apply(event, cut.kept[i], &contents[event.nNode]);
        }
        if (!IsName(event) || nNames++ >= cut.nNames) {
            continue;
        }
        if (event.kind == RENAME) {
            names[event.to] = names[event.host];
        }
        names[event.host] = event.kind == CREATE ? static_cast<i64>(event.nNode) : -1;
    }
    for (const auto& [host, nNode] : names) {
        std::error_code ignored;
        std::filesystem::remove(host, ignored);
        if (nNode >= 0) {
            const Bytes& bytes = contents[static_cast<size_t>(nNode)];
            std::ofstream(host, std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
    }
}
