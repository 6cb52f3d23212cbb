/* The spooler calls that Wine 8 lacks, for the end-to-end tests: TQUISPOO.DRV, a name as long as
   WINSPOOL.DRV. It keeps what they store in the registry and forwards every other call to winspool.drv. A
   test program, and the test copy of TQUI.dll, have that name put into their import table in place of
   WINSPOOL.DRV; the shipped TQUI.dll stays as it was built.

   User forms lie below Print\Forms, one key each, in the order in which they were added; print processors lie
   where the spooler itself looks for them. */
#include <cstring>
#include <string>
#include <vector>

#include <windows.h>
#include <winspool.h>

namespace {

constexpr WCHAR wcPrintKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Print\\";
constexpr WCHAR wcFormsKey[] = L"SYSTEM\\CurrentControlSet\\Control\\Print\\Forms";
constexpr WCHAR wcOwnEnvironment[] = L"Windows x64";

constexpr DWORD ERROR_NO_SUCH_FORM = ERROR_INVALID_FORM_NAME;

/* A form as stored, and as a value "Form" of its key. */
struct StoredForm {
    DWORD dwNumber; /* counts up; decides the order */
    DWORD dwFlags;
    SIZEL size;
    RECTL area;
};

struct NamedForm {
    std::wstring wcName;
    StoredForm form;
};

/* The system's own routine of a name, past this DLL. */
template <typename Routine> Routine Original(const char* cName)
{
    static const HMODULE hSpooler = LoadLibraryW(L"winspool.drv");
    return reinterpret_cast<Routine>(reinterpret_cast<void*>(GetProcAddress(hSpooler, cName)));
}

BOOL Answer(DWORD dwError)
{
    if (dwError != ERROR_SUCCESS) {
        SetLastError(dwError);
    }
    return dwError == ERROR_SUCCESS;
}

/* The name behind a printer handle; empty when the handle is none. */
std::wstring PrinterName(HANDLE hPrinter)
{
    DWORD cbNeeded = 0;
    GetPrinterW(hPrinter, 2, nullptr, 0, &cbNeeded);
    std::vector<BYTE> info(cbNeeded);
    if (info.empty() || !GetPrinterW(hPrinter, 2, info.data(), cbNeeded, &cbNeeded)) {
        return {};
    }
    return reinterpret_cast<const PRINTER_INFO_2W*>(info.data())->pPrinterName;
}

/* User forms, first added first. */
std::vector<NamedForm> ReadForms()
{
    std::vector<NamedForm> forms;
    HKEY hForms = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, wcFormsKey, 0, KEY_READ, &hForms) != ERROR_SUCCESS) {
        return forms;
    }
    WCHAR wcName[256];
    for (DWORD n = 0;; n++) {
        DWORD cchName = 256;
        if (RegEnumKeyExW(hForms, n, wcName, &cchName, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            break;
        }
        NamedForm form{wcName, {}};
        DWORD cbForm = sizeof form.form;
        if (RegGetValueW(hForms, wcName, L"Form", RRF_RT_REG_BINARY, nullptr, &form.form, &cbForm) ==
                ERROR_SUCCESS &&
            cbForm == sizeof form.form) {
            auto place = forms.begin();
            while (place != forms.end() && place->form.dwNumber < form.form.dwNumber) {
                ++place;
            }
            forms.insert(place, form);
        }
    }
    RegCloseKey(hForms);
    return forms;
}

/* The system's forms as it gives them; the structures point into the block. */
DWORD ReadSystemForms(HANDLE hPrinter, std::vector<BYTE>* pBlock, DWORD* pnForms)
{
    const auto enumForms = Original<decltype(&EnumFormsW)>("EnumFormsW");
    DWORD cbNeeded = 0;
    *pnForms = 0;
    if (enumForms(hPrinter, 1, nullptr, 0, &cbNeeded, pnForms)) {
        return ERROR_SUCCESS;
    }
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return GetLastError();
    }
    pBlock->resize(cbNeeded);
    return enumForms(hPrinter, 1, pBlock->data(), cbNeeded, &cbNeeded, pnForms) ? ERROR_SUCCESS
                                                                                : GetLastError();
}

std::wstring ProcessorKey(const WCHAR* wcEnvironment, const WCHAR* wcProcessor)
{
    return std::wstring(wcPrintKey) + L"Environments\\" +
           (wcEnvironment && *wcEnvironment ? wcEnvironment : wcOwnEnvironment) + L"\\Print Processors\\" +
           wcProcessor;
}

} // namespace

extern "C" {

DWORD WINAPI Supply_DeletePrinterDataW(HANDLE hPrinter, LPWSTR wcValue)
{
    const std::wstring wcPrinter = PrinterName(hPrinter);
    if (wcPrinter.empty()) {
        return ERROR_INVALID_HANDLE;
    }
    const std::wstring wcKey = std::wstring(wcPrintKey) + L"Printers\\" + wcPrinter + L"\\PrinterDriverData";
    HKEY hKey = nullptr;
    LSTATUS lDone = RegOpenKeyExW(HKEY_LOCAL_MACHINE, wcKey.c_str(), 0, KEY_SET_VALUE, &hKey);
    if (lDone == ERROR_SUCCESS) {
        lDone = RegDeleteValueW(hKey, wcValue);
        RegCloseKey(hKey);
    }
    return static_cast<DWORD>(lDone);
}

BOOL WINAPI Supply_AddFormW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pForm)
{
    if (dwLevel != 1) {
        return Answer(ERROR_INVALID_LEVEL);
    }
    const FORM_INFO_1W& info = *reinterpret_cast<const FORM_INFO_1W*>(pForm);
    if (!info.pName || !*info.pName || wcschr(info.pName, L'\\') || wcslen(info.pName) > 255 ||
        info.Size.cx <= 0 || info.Size.cy <= 0) {
        return Answer(ERROR_INVALID_PARAMETER);
    }
    std::vector<BYTE> block;
    DWORD nSystem = 0;
    if (const DWORD dwError = ReadSystemForms(hPrinter, &block, &nSystem)) {
        return Answer(dwError);
    }
    for (DWORD n = 0; n < nSystem; n++) {
        if (lstrcmpiW(reinterpret_cast<const FORM_INFO_1W*>(block.data())[n].pName, info.pName) == 0) {
            return Answer(ERROR_FILE_EXISTS);
        }
    }
    StoredForm form{0, info.Flags, info.Size, info.ImageableArea};
    for (const NamedForm& other : ReadForms()) {
        if (lstrcmpiW(other.wcName.c_str(), info.pName) == 0) {
            return Answer(ERROR_FILE_EXISTS);
        }
        form.dwNumber = other.form.dwNumber + 1;
    }
    const std::wstring wcKey = std::wstring(wcFormsKey) + L"\\" + info.pName;
    return Answer(static_cast<DWORD>(
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, wcKey.c_str(), L"Form", REG_BINARY, &form, sizeof form)));
}

BOOL WINAPI Supply_DeleteFormW(HANDLE hPrinter, LPWSTR wcName)
{
    if (PrinterName(hPrinter).empty()) {
        return Answer(ERROR_INVALID_HANDLE);
    }
    if (!wcName || !*wcName || wcschr(wcName, L'\\')) {
        return Answer(ERROR_INVALID_PARAMETER);
    }
    const std::wstring wcKey = std::wstring(wcFormsKey) + L"\\" + wcName;
    return Answer(RegDeleteTreeW(HKEY_LOCAL_MACHINE, wcKey.c_str()) == ERROR_SUCCESS ? ERROR_SUCCESS
                                                                                     : ERROR_NO_SUCH_FORM);
}

BOOL WINAPI Supply_EnumFormsW(HANDLE hPrinter, DWORD dwLevel, LPBYTE pOut, DWORD cbOut, LPDWORD pcbNeeded,
                              LPDWORD pnReturned)
{
    if (dwLevel != 1) {
        return Original<decltype(&EnumFormsW)>("EnumFormsW")(hPrinter, dwLevel, pOut, cbOut, pcbNeeded,
                                                             pnReturned);
    }
    std::vector<BYTE> block;
    DWORD nSystem = 0;
    *pcbNeeded = 0;
    *pnReturned = 0;
    if (const DWORD dwError = ReadSystemForms(hPrinter, &block, &nSystem)) {
        return Answer(dwError);
    }
    std::vector<FORM_INFO_1W> rows(nSystem);
    if (nSystem > 0) {
        std::memcpy(rows.data(), block.data(), nSystem * sizeof(FORM_INFO_1W));
    }
    const std::vector<NamedForm> forms = ReadForms();
    for (const NamedForm& form : forms) {
        rows.push_back(
            {form.form.dwFlags, const_cast<LPWSTR>(form.wcName.c_str()), form.form.size, form.form.area});
    }
    size_t cbNames = 0;
    for (const FORM_INFO_1W& row : rows) {
        cbNames += (wcslen(row.pName) + 1) * sizeof(WCHAR);
    }
    const size_t cbRows = rows.size() * sizeof(FORM_INFO_1W);
    *pcbNeeded = static_cast<DWORD>(cbRows + cbNames);
    if (cbOut < cbRows + cbNames || !pOut) {
        return Answer(ERROR_INSUFFICIENT_BUFFER);
    }
    WCHAR* wcNext = reinterpret_cast<WCHAR*>(pOut + cbRows);
    for (FORM_INFO_1W& row : rows) {
        const size_t cchName = wcslen(row.pName) + 1;
        std::memcpy(wcNext, row.pName, cchName * sizeof(WCHAR));
        row.pName = wcNext;
        wcNext += cchName;
    }
    std::memcpy(pOut, rows.data(), cbRows);
    *pnReturned = static_cast<DWORD>(rows.size());
    return TRUE;
}

/* The file must lie in the folder of the print processors, as the spooler wants it. */
BOOL WINAPI Supply_AddPrintProcessorW(LPWSTR wcServer, LPWSTR wcEnvironment, LPWSTR tcFile,
                                      LPWSTR wcProcessor)
{
    WCHAR tcFolder[MAX_PATH];
    DWORD cbNeeded = 0;
    if (!tcFile || !*tcFile || !wcProcessor || !*wcProcessor || wcschr(wcProcessor, L'\\')) {
        return Answer(ERROR_INVALID_PARAMETER);
    }
    if (!GetPrintProcessorDirectoryW(wcServer, wcEnvironment, 1, reinterpret_cast<LPBYTE>(tcFolder),
                                     sizeof tcFolder, &cbNeeded)) {
        return FALSE;
    }
    const std::wstring tcPath = std::wstring(tcFolder) + L"\\" + tcFile;
    if (GetFileAttributesW(tcPath.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return Answer(ERROR_FILE_NOT_FOUND);
    }
    const DWORD cbFile = static_cast<DWORD>((wcslen(tcFile) + 1) * sizeof(WCHAR));
    return Answer(static_cast<DWORD>(RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                                                     ProcessorKey(wcEnvironment, wcProcessor).c_str(),
                                                     L"Driver", REG_SZ, tcFile, cbFile)));
}

BOOL WINAPI Supply_DeletePrintProcessorW(LPWSTR, LPWSTR wcEnvironment, LPWSTR wcProcessor)
{
    if (!wcProcessor || !*wcProcessor || wcschr(wcProcessor, L'\\')) {
        return Answer(ERROR_INVALID_PARAMETER);
    }
    const LSTATUS lDone =
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, ProcessorKey(wcEnvironment, wcProcessor).c_str());
    return Answer(lDone == ERROR_SUCCESS ? ERROR_SUCCESS : ERROR_UNKNOWN_PRINTPROCESSOR);
}

/* Can this document print with what is in the printer? Nothing is known to be missing here. */
BOOL WINAPI Supply_DevQueryPrint(HANDLE hPrinter, LPDEVMODEW pDevMode, DWORD* pdwMessage)
{
    if (PrinterName(hPrinter).empty() || !pDevMode || !pdwMessage) {
        return Answer(ERROR_INVALID_PARAMETER);
    }
    *pdwMessage = 0;
    return TRUE;
}
}
