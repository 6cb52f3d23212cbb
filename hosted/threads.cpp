/* Stand-ins for values by thread. The one lock of the machine is here as well: every stand-in holds it from its
   first line to its last, so that any number of threads may call. */
#include <map>
#include <thread>

#include "hosted/standin.h"

std::recursive_mutex machineLock;

namespace {

struct Slot {
    PFLS_CALLBACK_FUNCTION fnCallback;
    std::map<std::thread::id, LPVOID> values;
};

struct Slots {
    std::map<DWORD, Slot> slots;
    DWORD dwNext = 1;
};

/* Never taken down: threads may end behind everything else. */
Slots& slotsOfMachine()
{
    static Slots* pSlots = new Slots;
    return *pSlots;
}

/* Tells the callback of one thread's value, if it has one. */
void EndValue(Slot& slot, std::thread::id thread)
{
    auto found = slot.values.find(thread);
    if (found == slot.values.end()) {
        return;
    }
    LPVOID pValue = found->second;
    slot.values.erase(found);
    if (pValue && slot.fnCallback) {
        slot.fnCallback(pValue);
    }
}

struct ThreadEnd {
    ~ThreadEnd()
    {
        std::lock_guard held(machineLock);
        for (auto& [dwSlot, slot] : slotsOfMachine().slots) {
            EndValue(slot, std::this_thread::get_id());
        }
    }
    void Watch() {}
};

thread_local ThreadEnd threadEnd;

} // namespace

void ResetThreads()
{
    slotsOfMachine().slots.clear();
}

DWORD WINAPI FlsAlloc(PFLS_CALLBACK_FUNCTION fnCallback)
{
    FAILS(FlsAlloc);
    slotsOfMachine().slots[slotsOfMachine().dwNext] = {fnCallback, {}};
    return slotsOfMachine().dwNext++;
}

LPVOID WINAPI FlsGetValue(DWORD dwSlot)
{
    FAILS(FlsGetValue);
    auto slot = slotsOfMachine().slots.find(dwSlot);
    if (slot == slotsOfMachine().slots.end()) {
        SetHostedError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    SetHostedError(ERROR_SUCCESS);
    auto value = slot->second.values.find(std::this_thread::get_id());
    return value == slot->second.values.end() ? nullptr : value->second;
}

BOOL WINAPI FlsSetValue(DWORD dwSlot, LPVOID pValue)
{
    FAILS(FlsSetValue);
    auto slot = slotsOfMachine().slots.find(dwSlot);
    if (slot == slotsOfMachine().slots.end()) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    threadEnd.Watch();
    slot->second.values[std::this_thread::get_id()] = pValue;
    return 1;
}

BOOL WINAPI FlsFree(DWORD dwSlot)
{
    std::lock_guard held(machineLock);
    int bFails = CallFails(CALL_FlsFree); /* a release that fails still releases */
    auto slot = slotsOfMachine().slots.find(dwSlot);
    if (slot == slotsOfMachine().slots.end()) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    while (!slot->second.values.empty()) {
        EndValue(slot->second, slot->second.values.begin()->first);
    }
    slotsOfMachine().slots.erase(slot);
    return !bFails;
}
