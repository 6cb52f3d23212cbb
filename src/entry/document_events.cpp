/* The hook around device contexts and documents: gives GDI settled records, and leaves three values for the port
   monitor, which belong to the user and not to a printer or a job. */
#include "entry/document_events.h"

#include <cstring>

#include "base/format.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "document/merge.h"
#include "entry/exports.h"
#include "entry/fast_drivers.h"
#include "entry/thread_store.h"
#include "platform/process.h"
#include "platform/registry.h"
#include "settings/caller_record.h"
#include "settings/checks.h"

namespace {

constexpr WCHAR wcMonitorKey[] = TEXT("SOFTWARE\\QuilonMonitor\\");
constexpr WCHAR wcLargePaper[] = TEXT("FeedEdge");
constexpr WCHAR wcStarted[] = TEXT("Refresh_FeedEdge");
constexpr WCHAR wcFastPrinter[] = TEXT("33PPM");

constexpr i16 LARGEST_SMALL_SIDE = 2160; /* tenths of a millimetre */

template <class... Numbers> void Trace(const char* cFormat, Numbers... numbers)
{
    char cText[128];
    FormatNarrow(cText, static_cast<int>(sizeof cText), cFormat, numbers...);
    OutputDebugStringA(cText);
}

/* A number of the monitor's key. 1 when it is there; else 0 and *pdwValue 0. */
int ReadMonitorValue(const WCHAR* wcValue, DWORD* pdwValue)
{
    HKEY hKey;
    DWORD dwType = 0, dwRead = 0, cb = sizeof dwRead;
    *pdwValue = 0;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, wcMonitorKey, 0, KEY_QUERY_VALUE, &hKey) != 0) {
        return 0;
    }
    LSTATUS lRead = RegQueryValueExW(hKey, wcValue, nullptr, &dwType, reinterpret_cast<BYTE*>(&dwRead), &cb);
    RegCloseKey(hKey);
    if (lRead != 0 || dwType != REG_DWORD || cb != sizeof dwRead) {
        return 0;
    }
    *pdwValue = dwRead;
    return 1;
}

/* 1 when the value could be written, under a key that is made where it is missing. */
int WriteMonitorValue(const WCHAR* wcValue, DWORD dwValue)
{
    HKEY hKey;
    if (RegCreateKeyW(HKEY_CURRENT_USER, wcMonitorKey, &hKey) != 0) {
        return 0;
    }
    LSTATUS lWritten =
        RegSetValueExW(hKey, wcValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dwValue), sizeof dwValue);
    RegCloseKey(hKey);
    return lWritten == 0;
}

int IsLargePaper(const DriverDevmode& record)
{
    return record.dmPaperWidth > LARGEST_SMALL_SIDE || record.dmPaperLength > LARGEST_SMALL_SIDE;
}

/* The printer's default; where nothing can be asked, the template. */
void FetchDefaults(PrinterCall& call, DriverDevmode* pRecord)
{
    if (FindPrinterDefaults(call, pRecord) == DEFAULT_NONE) {
        *pRecord = recordTemplate;
    }
}

/* Traces of the two device context events: what they begin with, then their text. */
void TraceRecord(const char* cEvent, const DriverDevmode& record)
{
    Trace("%s-dm_in = %d,%d,%d\n", cEvent, static_cast<int>(record.dmOrientation),
          static_cast<int>(record.dmPaperWidth), static_cast<int>(record.dmPaperLength));
}

DWORD ReadStarted(const char* cEvent)
{
    DWORD dwStarted;
    if (ReadMonitorValue(wcStarted, &dwStarted)) {
        Trace("%s-Refresh_FeedEdge = %d\n", cEvent, static_cast<int>(dwStarted));
    }
    return dwStarted;
}

void WriteLargePaper(const char* cEvent, int bLarge)
{
    if (WriteMonitorValue(wcLargePaper, static_cast<DWORD>(bLarge))) {
        Trace("%s-dwnumber: %d\n", cEvent, bLarge);
    }
}

/* GDI's slot for a record may lie at any address. */
void StorePointer(void* pvOut, const void* pvRecord)
{
    if (pvOut) {
        std::memcpy(pvOut, &pvRecord, sizeof pvRecord);
    }
}

void BeforeCreate(PrinterCall& call, const void* pvIn, void* pvOut)
{
    DOCEVENT_CREATEDCPRE create;
    if (!pvIn) {
        return;
    }
    Trace("DOCUMENTEVENT_CREATEDCPRE");
    std::memcpy(&create, pvIn, sizeof create);
    DriverDevmode* pGiven = reinterpret_cast<DriverDevmode*>(create.pdm);
    if (!pGiven) {
        return;
    }
    const DriverDevmode* pMerged = MergeDocumentRecord(call, pGiven);
    if (pMerged != pGiven) {
        StorePointer(pvOut, pMerged);
    }
    if (!pMerged) {
        return;
    }
    TraceRecord("CREATEDCPRE", *pMerged);
    DWORD dwStarted = ReadStarted("CREATEDCPRE");
    if (!dwStarted) {
        WriteLargePaper("CREATEDCPRE", IsLargePaper(*pMerged));
    }
}

void BeforeReset(PrinterCall& call, const void* pvIn, void* pvOut)
{
    void* pvGiven = nullptr;
    if (pvIn) {
        std::memcpy(&pvGiven, pvIn, sizeof pvGiven);
    }
    if (!pvGiven) {
        return;
    }
    const DriverDevmode* pMerged = MergeDocumentRecord(call, static_cast<DriverDevmode*>(pvGiven));
    StorePointer(pvOut, pMerged);
    if (!pMerged) {
        return;
    }
    TraceRecord("RESETDCPRE", *pMerged);
    DWORD dwStarted = ReadStarted("RESETDCPRE");
    int bLarge = IsLargePaper(*pMerged);
    /* Within a document the value can be raised and never lowered. */
    if (dwStarted == 0 || (dwStarted == 1 && bLarge)) {
        WriteLargePaper("RESETDCPRE", bLarge);
    }
}

void StartDocument(PrinterCall& call)
{
    Trace("DOCUMENTEVENT_STARTDOC----------------");
    if (WriteMonitorValue(wcStarted, 1)) {
        Trace("DOCUMENTEVENT_STARTDOC-dwnumber: %d\n", 1);
    }
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(call);
    WriteMonitorValue(wcFastPrinter, pInfo && IsFastDriver(PrinterText(call, pInfo->pDriverName)) ? 1 : 0);
}

} // namespace

DriverDevmode* MergeDocumentRecord(PrinterCall& call, DriverDevmode* pRecord)
{
    CallerRecord taken;
    TakeCallerRecord(pRecord, &taken);
    ThreadStore* pStore = taken.rRead.dmSize == PUBLIC_BYTES ? GetThreadStore() : nullptr;
    if (!pStore) {
        return nullptr;
    }
    OwnedModel pModel = LoadPrinterModel(call);
    DriverDevmode* pMerged = &pStore->rMerged;
    int bPublic = ValidatePublicPart(call, &taken.rCopy, pModel.get());
    GiveRepairs(&taken);
    if (bPublic) {
        *pMerged = taken.rCopy;
    } else {
        FetchDefaults(call, pMerged);
    }
    if (!ValidatePrivatePart(call, &pMerged->rPrivate, pModel.get())) {
        FetchDefaults(call, &pStore->rScratch);
        pMerged->rPrivate = pStore->rScratch.rPrivate;
    }
    StorePaperSize(call, pModel.get(), pMerged);
    return pMerged;
}

extern "C" int WINAPI DrvDocumentEvent(HANDLE hPrinter, void*, int iEsc, u32, void* pvIn, u32, void* pvOut)
{
    KeptLastError kept;
    PrinterCall call(hPrinter);
    switch (iEsc) {
    case DOCUMENT_EVENT_CREATEDCPRE: BeforeCreate(call, pvIn, pvOut); break;
    case DOCUMENT_EVENT_RESETDCPRE: BeforeReset(call, pvIn, pvOut); break;
    case DOCUMENT_EVENT_STARTDOC: StartDocument(call); break;
    default: break;
    }
    return DOCUMENT_EVENT_SUCCESS;
}
