/* Stand-ins for named events and waiting. A wait moves the machine's clock, and runs the programs that are due. */
#include <map>
#include <memory>

#include "hosted/standin.h"

namespace {

struct Event {
    WideText wcName; /* empty: none */
    bool bManual, bSignalled;
};

/* By open handle: an event is there as long as one handle is. Names compare with their case. */
std::map<HANDLE, std::shared_ptr<Event>> events;
std::uintptr_t nLastEvent = 0;

std::shared_ptr<Event> FindNamed(std::u16string_view wcName)
{
    for (const auto& [hEvent, event] : events) {
        if (!wcName.empty() && event->wcName == wcName) {
            return event;
        }
    }
    return nullptr;
}

HANDLE KeepEvent(std::shared_ptr<Event> event)
{
    const auto hEvent = reinterpret_cast<HANDLE>(++nLastEvent * 0x10000 + 12);
    events.emplace(hEvent, std::move(event));
    liveCounts.nEvents++;
    return hEvent;
}

} // namespace

bool HasEvent(std::u16string_view wcName)
{
    return FindNamed(wcName) != nullptr;
}

void DropEvents()
{
    events.clear();
    liveCounts.nEvents = 0;
}

bool CloseEvent(HANDLE hObject)
{
    if (!events.erase(hObject)) {
        return false;
    }
    liveCounts.nEvents--;
    return true;
}

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES, BOOL bManual, BOOL bSignalled, LPCWSTR wcName)
{
    FAILS(CreateEventW);
    const std::u16string_view wcWanted = wcName ? wcName : u"";
    if (wcWanted.find(u'\\') != wcWanted.npos || HasSemaphore(wcWanted)) {
        SetHostedError(HasSemaphore(wcWanted) ? ERROR_INVALID_HANDLE : ERROR_PATH_NOT_FOUND);
        return nullptr;
    }
    std::shared_ptr<Event> event = FindNamed(wcWanted);
    SetHostedError(event ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    if (!event) {
        event = std::make_shared<Event>(Event{WideText(wcWanted), bManual != 0, bSignalled != 0});
    }
    return KeepEvent(event);
}

HANDLE WINAPI OpenEventW(DWORD, BOOL, LPCWSTR wcName)
{
    FAILS(OpenEventW);
    const std::shared_ptr<Event> event = FindNamed(wcName ? wcName : u"");
    if (!event) {
        SetHostedError(wcName ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return KeepEvent(event);
}

BOOL WINAPI SetEvent(HANDLE hEvent)
{
    std::lock_guard held(machineLock);
    const auto found = events.find(hEvent);
    if (found == events.end()) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    found->second->bSignalled = true;
    return 1;
}

DWORD WINAPI WaitForSingleObject(HANDLE hObject, DWORD dwMost)
{
    FAILS(WaitForSingleObject);
    const auto found = events.find(hObject);
    if (found == events.end()) {
        SetHostedError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    const std::shared_ptr<Event> event = found->second;
    const DWORD dwBegun = MachineTicks();
    while (!event->bSignalled) {
        const DWORD dwGone = MachineTicks() - dwBegun;
        if (dwGone > dwMost || !RunNextProgram(dwMost - dwGone)) {
            return WAIT_TIMEOUT;
        }
    }
    event->bSignalled = event->bManual;
    return WAIT_OBJECT_0;
}
