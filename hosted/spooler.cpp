/* Stand-ins for the spooler: printers with their driver's files, stored values and forms in memory. The
   structures are laid into the caller's buffer as the spooler does it: the fixed part in front, the texts
   behind it. */
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include "hosted/standin.h"

namespace {

struct PrinterValue {
    DWORD dwType;
    Bytes bytes;
};

struct Job {
    bool bNamed;
    WideText wcDocument;
};

struct Printer {
    PrinterSetup setup;
    std::map<WideText, PrinterValue> values; /* by name in one form */
    std::map<DWORD, Job> jobs;
};

struct OpenPrinterHandle {
    WideText wcPrinter;
};

struct Spooler {
    std::map<WideText, Printer> printers; /* by name in one form */
    std::vector<MachineForm> forms;
    std::vector<std::string> processors = {"winprint=localspl.dll"};
    std::vector<std::string> announced;
    std::vector<std::unique_ptr<OpenPrinterHandle>> handles;
    std::vector<std::string> opened;
    std::map<DWORD, DWORD> denied;
};

Spooler& spooler()
{
    static Spooler instance;
    return instance;
}

Printer* FindPrinter(HANDLE hPrinter)
{
    for (const auto& handle : spooler().handles) {
        if (handle.get() == hPrinter) {
            auto found = spooler().printers.find(handle->wcPrinter);
            return found == spooler().printers.end() ? nullptr : &found->second;
        }
    }
    return nullptr;
}

/* Lays a fixed part and the texts behind it into a caller's buffer. With LIE_GROWS each asking needs more
   than the one before. */
class Layout {
  public:
    Layout(CallId id, size_t cbFixed, LPBYTE pOut, DWORD cbOut)
        : call(id), pBuffer(pOut), cbBuffer(cbOut), cbUsed(cbFixed)
    {
        if (Lies(call, LIE_GROWS)) {
            static size_t cbGrowth = 0;
            cbGrowth += 6000;
            cbUsed += cbGrowth;
            if (cbGrowth > 60000) {
                cbGrowth = 0;
            }
        }
    }

    LPWSTR Put(const WideText& wcText)
    {
        if (Lies(call, LIE_NULL_MEMBERS)) {
            return nullptr;
        }
        return PutRaw(wcText.data(), wcText.size());
    }

    LPWSTR PutMany(const std::vector<WideText>& texts)
    {
        if (Lies(call, LIE_NULL_MEMBERS) || texts.empty()) {
            return nullptr;
        }
        WideText wcAll;
        for (const WideText& wcText : texts) {
            wcAll += wcText;
            wcAll += u'\0';
        }
        return PutRaw(wcAll.data(), wcAll.size());
    }

    /* A stored record, aligned as a structure. Half of it, at the very end of the buffer, with LIE_SHORT. */
    LPDEVMODEW PutRecord(const Bytes& record)
    {
        if (Lies(call, LIE_NULL_MEMBERS) || record.empty()) {
            return nullptr;
        }
        size_t cbAt = (cbUsed + 7) & ~static_cast<size_t>(7);
        cbUsed = cbAt + record.size();
        if (cbUsed > cbBuffer) {
            return nullptr;
        }
        size_t cbPut = record.size();
        if (Lies(call, LIE_SHORT)) {
            cbPut /= 2;
            cbAt = cbBuffer - cbPut;
        }
        std::memcpy(pBuffer + cbAt, record.data(), cbPut);
        return reinterpret_cast<LPDEVMODEW>(pBuffer + cbAt);
    }

    bool Fits() const { return cbUsed <= cbBuffer; }
    DWORD Needed() const { return Lies(call, LIE_HUGE) ? 0xFFFFFFF0 : static_cast<DWORD>(cbUsed); }

  private:
    LPWSTR PutRaw(const WCHAR* wcText, size_t cch)
    {
        size_t cbAt = (cbUsed + 1) & ~static_cast<size_t>(1);
        int bOpen = Lies(call, LIE_UNTERMINATED);
        cbUsed = cbAt + (cch + 1) * sizeof(WCHAR);
        if (cbUsed > cbBuffer) {
            return nullptr;
        }
        std::memcpy(pBuffer + cbAt, wcText, cch * sizeof(WCHAR));
        WCHAR wcEnd = bOpen ? u'X' : u'\0';
        std::memcpy(pBuffer + cbAt + cch * sizeof(WCHAR), &wcEnd, sizeof(WCHAR));
        return reinterpret_cast<LPWSTR>(pBuffer + cbAt);
    }

    CallId call;
    LPBYTE pBuffer;
    size_t cbBuffer, cbUsed;
};

Bytes TextBytes(std::u16string_view wcText)
{
    Bytes bytes((wcText.size() + 1) * sizeof(WCHAR));
    std::memcpy(bytes.data(), wcText.data(), wcText.size() * sizeof(WCHAR));
    return bytes;
}

} // namespace

void ResetSpooler()
{
    spooler() = Spooler();
    liveCounts.nPrinters = 0;
}

void AddPrinter(const PrinterSetup& setup)
{
    Printer& printer = spooler().printers[LowerText(setup.wcName)];
    printer = {setup, {}, {}};
}

void SetPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue, DWORD dwType,
                     const Bytes& bytes)
{
    spooler().printers[LowerText(wcPrinter)].values[LowerText(wcValue)] = {dwType, bytes};
}

void SetPrinterText(std::u16string_view wcPrinter, std::u16string_view wcValue, std::u16string_view wcText)
{
    SetPrinterValue(wcPrinter, wcValue, REG_SZ, TextBytes(wcText));
}

void SetPrinterRecord(std::u16string_view wcPrinter, const Bytes& devmode)
{
    spooler().printers[LowerText(wcPrinter)].setup.devmode = devmode;
}

void DropPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue)
{
    spooler().printers[LowerText(wcPrinter)].values.erase(LowerText(wcValue));
}

bool GetPrinterValue(std::u16string_view wcPrinter, std::u16string_view wcValue, DWORD* pdwType,
                     Bytes* pBytes)
{
    auto& values = spooler().printers[LowerText(wcPrinter)].values;
    auto found = values.find(LowerText(wcValue));
    if (found == values.end()) {
        return false;
    }
    *pdwType = found->second.dwType;
    *pBytes = found->second.bytes;
    return true;
}

void AddMachineForm(std::u16string_view wcName, DWORD dwFlags, i32 lWidth, i32 lLength)
{
    spooler().forms.push_back({WideText(wcName), dwFlags, {lWidth, lLength}, {0, 0, lWidth, lLength}});
}

void AddMachineForm(const MachineForm& form)
{
    spooler().forms.push_back(form);
}

const std::vector<MachineForm>& MachineForms()
{
    return spooler().forms;
}

std::vector<WideText> PrinterNames()
{
    std::vector<WideText> names;
    for (const auto& [wcForm, printer] : spooler().printers) {
        names.push_back(printer.setup.wcName);
    }
    return names;
}

PrinterSetup GetPrinterSetup(std::u16string_view wcPrinter)
{
    return spooler().printers[LowerText(wcPrinter)].setup;
}

std::vector<MachineValue> PrinterValues(std::u16string_view wcPrinter)
{
    std::vector<MachineValue> values;
    for (const auto& [wcName, value] : spooler().printers[LowerText(wcPrinter)].values) {
        values.push_back({wcName, value.dwType, value.bytes});
    }
    return values;
}

void RemovePrinter(std::u16string_view wcPrinter)
{
    spooler().printers.erase(LowerText(wcPrinter));
}

const std::vector<std::string>& PrintProcessors()
{
    return spooler().processors;
}

void SetPrintProcessors(const std::vector<std::string>& processors)
{
    spooler().processors = processors;
}

const std::vector<std::string>& AnnouncedPrinters()
{
    return spooler().announced;
}

void AnnouncePrinter(LPCWSTR wcName)
{
    spooler().announced.push_back(Narrow(wcName));
}

void AddJob(std::u16string_view wcPrinter, DWORD dwJobId, const WCHAR* wcDocument)
{
    spooler().printers[LowerText(wcPrinter)].jobs[dwJobId] = {wcDocument != nullptr,
                                                              wcDocument ? wcDocument : u""};
}

void DropMachineForms()
{
    spooler().forms.clear();
}

void DenyPrinterAccess(DWORD dwAccess, DWORD dwError)
{
    if (dwError) {
        spooler().denied[dwAccess] = dwError;
    } else {
        spooler().denied.clear();
    }
}

const std::vector<std::string>& OpenedPrinters()
{
    return spooler().opened;
}

BOOL WINAPI OpenPrinterW(LPWSTR wcName, LPHANDLE phPrinter, LPPRINTER_DEFAULTSW pDefaults)
{
    FAILS(OpenPrinterW);
    DWORD dwAccess = pDefaults ? pDefaults->DesiredAccess : PRINTER_ACCESS_USE;
    char cAccess[16];
    std::snprintf(cAccess, sizeof cAccess, "|%X", dwAccess);
    spooler().opened.push_back(Narrow(wcName ? wcName : u"(server)") + cAccess);
    if (auto denied = spooler().denied.find(dwAccess); denied != spooler().denied.end()) {
        return Refuse(denied->second);
    }
    /* "\\THISPC\Name" is the printer "Name" of this computer. */
    std::u16string_view wcAsked(wcName ? wcName : u"");
    if (wcAsked.starts_with(u"\\\\")) {
        size_t nSlash = wcAsked.find(u'\\', 2);
        wcAsked = nSlash == std::u16string_view::npos ? u"" : wcAsked.substr(nSlash + 1);
    }
    if (!spooler().printers.count(LowerText(wcAsked))) {
        return Refuse(ERROR_INVALID_PRINTER_NAME);
    }
    spooler().handles.push_back(std::make_unique<OpenPrinterHandle>(OpenPrinterHandle{LowerText(wcAsked)}));
    *phPrinter = spooler().handles.back().get();
    liveCounts.nPrinters++;
    return 1;
}

BOOL WINAPI ClosePrinter(HANDLE hPrinter)
{
    std::lock_guard held(machineLock);
    int bFails = CallFails(CALL_ClosePrinter);
    if (!std::erase_if(spooler().handles,
                       [hPrinter](const auto& handle) { return handle.get() == hPrinter; })) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    liveCounts.nPrinters--;
    return !bFails;
}

BOOL WINAPI GetPrinterW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pOut, DWORD cbOut, LPDWORD pcbNeeded)
{
    FAILS(GetPrinterW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter || dwLevel != 2) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    Layout layout(CALL_GetPrinterW, sizeof(PRINTER_INFO_2W), pOut, cbOut);
    PRINTER_INFO_2W info = {};
    info.pPrinterName = layout.Put(pPrinter->setup.wcName);
    info.pDriverName = layout.Put(pPrinter->setup.wcDriverName);
    info.pPortName = layout.Put(u"LPT1:");
    info.pComment = layout.Put(pPrinter->setup.wcComment);
    info.pLocation = layout.Put(pPrinter->setup.wcLocation);
    info.pPrintProcessor = layout.Put(pPrinter->setup.wcPrintProcessor);
    info.pDatatype = layout.Put(u"RAW");
    info.pSecurityDescriptor = layout.Put(u"descriptor");
    info.pDevMode = layout.PutRecord(pPrinter->setup.devmode);
    *pcbNeeded = layout.Needed();
    if (!layout.Fits() || Lies(CALL_GetPrinterW, LIE_HUGE)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(pOut, &info, sizeof info);
    return 1;
}

BOOL WINAPI GetPrinterDriverW(HANDLE hPrinter, LPWSTR, DWORD dwLevel, LPBYTE pOut, DWORD cbOut,
                              LPDWORD pcbNeeded)
{
    FAILS(GetPrinterDriverW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter || dwLevel != 3) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    const PrinterSetup& setup = pPrinter->setup;
    Layout layout(CALL_GetPrinterDriverW, sizeof(DRIVER_INFO_3W), pOut, cbOut);
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = layout.Put(setup.wcDriverName);
    info.pEnvironment = layout.Put(u"Windows x64");
    info.pDriverPath = layout.Put(setup.tcDriverPath);
    info.pDataFile = layout.Put(setup.tcDataFile);
    info.pConfigFile = layout.Put(setup.tcConfigFile);
    info.pHelpFile = setup.tcHelpFile.empty() ? nullptr : layout.Put(setup.tcHelpFile);
    info.pDependentFiles = layout.PutMany(setup.atcDependentFiles);
    info.pDefaultDataType = layout.Put(u"RAW");
    *pcbNeeded = layout.Needed();
    if (!layout.Fits() || Lies(CALL_GetPrinterDriverW, LIE_HUGE)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(pOut, &info, sizeof info);
    return 1;
}

BOOL WINAPI GetJobW(HANDLE hPrinter, DWORD dwJobId, DWORD dwLevel, LPBYTE pOut, DWORD cbOut,
                    LPDWORD pcbNeeded)
{
    FAILS(GetJobW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter || dwLevel != 2) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    auto found = pPrinter->jobs.find(dwJobId);
    if (found == pPrinter->jobs.end()) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    Layout layout(CALL_GetJobW, sizeof(JOB_INFO_2W), pOut, cbOut);
    JOB_INFO_2W info = {};
    info.JobId = dwJobId;
    info.pPrinterName = layout.Put(pPrinter->setup.wcName);
    info.pUserName = layout.Put(u"user");
    info.pDocument = found->second.bNamed ? layout.Put(found->second.wcDocument) : nullptr;
    info.pDatatype = layout.Put(u"RAW");
    info.pPrintProcessor = layout.Put(u"winprint");
    info.pDriverName = layout.Put(pPrinter->setup.wcDriverName);
    *pcbNeeded = layout.Needed();
    if (!layout.Fits() || Lies(CALL_GetJobW, LIE_HUGE)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(pOut, &info, sizeof info);
    return 1;
}

DWORD WINAPI GetPrinterDataW(HANDLE hPrinter, LPWSTR wcValue, LPDWORD pdwType, LPBYTE pOut, DWORD cbOut,
                             LPDWORD pcbNeeded)
{
    FAILS(GetPrinterDataW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter) {
        return ERROR_INVALID_HANDLE;
    }
    auto found = pPrinter->values.find(LowerText(wcValue));
    if (found == pPrinter->values.end()) {
        return ERROR_FILE_NOT_FOUND;
    }
    const Bytes& bytes = found->second.bytes;
    DWORD cb = static_cast<DWORD>(bytes.size());
    if (pdwType) {
        *pdwType = found->second.dwType + (Lies(CALL_GetPrinterDataW, LIE_TYPE) ? 1 : 0);
    }
    if (Lies(CALL_GetPrinterDataW, LIE_HUGE)) {
        *pcbNeeded = 0xFFFFFFF0;
        return pOut ? ERROR_SUCCESS : ERROR_MORE_DATA;
    }
    if (Lies(CALL_GetPrinterDataW, LIE_GROWS) && cbOut <= cb + 64) {
        *pcbNeeded = cbOut + 64;
        return ERROR_MORE_DATA;
    }
    if (Lies(CALL_GetPrinterDataW, LIE_SHORT)) {
        cb /= 2;
    }
    *pcbNeeded = cb;
    if (cbOut < cb) {
        return ERROR_MORE_DATA;
    }
    if (cb) {
        std::memcpy(pOut, bytes.data(), cb);
    }
    if (Lies(CALL_GetPrinterDataW, LIE_UNTERMINATED)) {
        std::memset(pOut, 'A', cbOut);
        *pcbNeeded = cbOut;
    }
    return ERROR_SUCCESS;
}

DWORD WINAPI SetPrinterDataW(HANDLE hPrinter, LPWSTR wcValue, DWORD dwType, LPBYTE pBytes, DWORD cbBytes)
{
    FAILS(SetPrinterDataW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter) {
        return ERROR_INVALID_HANDLE;
    }
    pPrinter->values[LowerText(wcValue)] = {dwType, Bytes(pBytes, pBytes + cbBytes)};
    return ERROR_SUCCESS;
}

DWORD WINAPI DeletePrinterDataW(HANDLE hPrinter, LPWSTR wcValue)
{
    FAILS(DeletePrinterDataW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter) {
        return ERROR_INVALID_HANDLE;
    }
    return pPrinter->values.erase(LowerText(wcValue)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

BOOL WINAPI EnumFormsW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pOut, DWORD cbOut, LPDWORD pcbNeeded,
                       LPDWORD pnForms)
{
    FAILS(EnumFormsW);
    *pnForms = 0;
    if (!FindPrinter(hPrinter) || dwLevel != 1) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    const std::vector<MachineForm>& forms = spooler().forms;
    Layout layout(CALL_EnumFormsW, forms.size() * sizeof(FORM_INFO_1W), pOut, cbOut);
    std::vector<FORM_INFO_1W> rows;
    for (const MachineForm& form : forms) {
        FORM_INFO_1W row = {};
        row.Flags = form.dwFlags;
        row.pName = layout.Put(form.wcName);
        row.Size = form.size;
        row.ImageableArea = form.area;
        rows.push_back(row);
    }
    *pcbNeeded = layout.Needed();
    if (!layout.Fits() || Lies(CALL_EnumFormsW, LIE_HUGE)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    if (!rows.empty()) {
        std::memcpy(pOut, rows.data(), rows.size() * sizeof(FORM_INFO_1W));
    }
    *pnForms = static_cast<DWORD>(rows.size());
    return 1;
}

BOOL WINAPI SetPrinterW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pInfo, DWORD dwCommand)
{
    FAILS(SetPrinterW);
    Printer* pPrinter = FindPrinter(hPrinter);
    if (!pPrinter || dwLevel != 2 || dwCommand) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    PRINTER_INFO_2W info;
    std::memcpy(&info, pInfo, sizeof info);
    PrinterSetup& setup = pPrinter->setup;
    auto text = [](LPCWSTR wcText) { return WideText(wcText ? wcText : u""); };
    std::vector<std::string>& processors = spooler().processors;
    WideText wcProcessor = text(info.pPrintProcessor);
    if (!wcProcessor.empty() && std::none_of(processors.begin(), processors.end(), [&](const auto& known) {
            return SameName(Widen(known.substr(0, known.find('='))), wcProcessor);
        })) {
        return Refuse(1798 /* ERROR_UNKNOWN_PRINTPROCESSOR */);
    }
    setup.wcDriverName = text(info.pDriverName);
    setup.wcComment = text(info.pComment);
    setup.wcLocation = text(info.pLocation);
    setup.wcPrintProcessor = wcProcessor;
    setup.nSecurityWrites += info.pSecurityDescriptor != nullptr;
    CallDriverBack();
    if (info.pDevMode) {
        const u8* pRecord = reinterpret_cast<const u8*>(info.pDevMode);
        u16 usSize, usExtra; /* dmSize and dmDriverExtra */
        std::memcpy(&usSize, pRecord + 68, sizeof usSize);
        std::memcpy(&usExtra, pRecord + 70, sizeof usExtra);
        setup.devmode.assign(pRecord, pRecord + usSize + usExtra);
    }
    return 1;
}

BOOL WINAPI AddFormW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pForm)
{
    FAILS(AddFormW);
    if (!FindPrinter(hPrinter) || dwLevel != 1) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    FORM_INFO_1W info;
    std::memcpy(&info, pForm, sizeof info);
    if (!info.pName || !*info.pName || info.Size.cx <= 0 || info.Size.cy <= 0) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    for (const MachineForm& other : spooler().forms) {
        if (SameName(other.wcName, info.pName)) {
            return Refuse(ERROR_FILE_EXISTS);
        }
    }
    spooler().forms.push_back({info.pName, info.Flags, info.Size, info.ImageableArea});
    return 1;
}

BOOL WINAPI DeleteFormW(HANDLE hPrinter, LPWSTR wcName)
{
    FAILS(DeleteFormW);
    if (!FindPrinter(hPrinter)) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    /* The system's own forms stay. */
    return std::erase_if(spooler().forms,
                         [&](const MachineForm& form) {
                             return form.dwFlags != FORM_BUILTIN && SameName(form.wcName, wcName);
                         })
               ? 1
               : Refuse(1902 /* ERROR_INVALID_FORM_NAME */);
}

BOOL WINAPI EnumPrintProcessorsW(LPWSTR wcServer, LPWSTR, DWORD dwLevel, LPBYTE pOut, DWORD cbOut,
                                 LPDWORD pcbNeeded, LPDWORD pnRows)
{
    FAILS(EnumPrintProcessorsW);
    *pnRows = 0;
    if (wcServer || dwLevel != 1) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    const std::vector<std::string>& processors = spooler().processors;
    Layout layout(CALL_EnumPrintProcessorsW, processors.size() * sizeof(PRINTPROCESSOR_INFO_1W), pOut, cbOut);
    std::vector<PRINTPROCESSOR_INFO_1W> rows;
    for (const std::string& processor : processors) {
        rows.push_back({layout.Put(Widen(processor.substr(0, processor.find('='))))});
    }
    *pcbNeeded = layout.Needed();
    if (!layout.Fits() || Lies(CALL_EnumPrintProcessorsW, LIE_HUGE)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    if (!rows.empty()) {
        std::memcpy(pOut, rows.data(), rows.size() * sizeof rows[0]);
    }
    *pnRows = static_cast<DWORD>(rows.size());
    return 1;
}

BOOL WINAPI AddPrintProcessorW(LPWSTR wcServer, LPWSTR, LPWSTR tcFile, LPWSTR wcProcessor)
{
    FAILS(AddPrintProcessorW);
    if (wcServer || !tcFile || !*tcFile || !wcProcessor || !*wcProcessor) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    if (!HasFile(tcProcessorFolder + tcFile)) {
        return Refuse(ERROR_FILE_NOT_FOUND);
    }
    spooler().processors.push_back(Narrow(wcProcessor) + "=" + Narrow(tcFile));
    return 1;
}
