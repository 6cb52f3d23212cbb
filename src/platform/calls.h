/* Every Windows call that the library makes, once, with the value it gives on failure. From these lists
   come the hosted prototypes, the fault counters, the check of every prototype against the system's headers
   and the check that the library imports nothing else.

   Row: result, name, parameters, value on failure. */
#ifndef TQUI_PLATFORM_CALLS_H
#define TQUI_PLATFORM_CALLS_H

#define PROCESS_CALLS(X) \
    X(HANDLE, GetProcessHeap, (void), nullptr) \
    X(LPVOID, HeapAlloc, (HANDLE, DWORD, SIZE_T), nullptr) \
    X(BOOL, HeapFree, (HANDLE, DWORD, LPVOID), 0) \
    X(DWORD, GetLastError, (void), 0) \
    X(void, SetLastError, (DWORD), 0) \
    X(void, OutputDebugStringA, (LPCSTR), 0) \
    X(DWORD, FlsAlloc, (PFLS_CALLBACK_FUNCTION), FLS_OUT_OF_INDEXES) \
    X(LPVOID, FlsGetValue, (DWORD), nullptr) \
    X(BOOL, FlsSetValue, (DWORD, LPVOID), 0) \
    X(BOOL, FlsFree, (DWORD), 0) \
    X(DWORD, GetVersion, (void), 0) \
    X(void, Sleep, (DWORD), 0) \
    X(BOOL, GetVersionExW, (LPOSVERSIONINFOW), 0) \
    X(HANDLE, CreateSemaphoreW, (LPSECURITY_ATTRIBUTES, LONG, LONG, LPCWSTR), nullptr) \
    X(HANDLE, OpenSemaphoreW, (DWORD, BOOL, LPCWSTR), nullptr) \
    X(BOOL, GetComputerNameW, (LPWSTR, LPDWORD), 0) \
    X(DWORD, GetEnvironmentVariableW, (LPCWSTR, LPWSTR, DWORD), 0) \
    X(LANGID, GetUserDefaultLangID, (void), 0)

#define FILE_CALLS(X) \
    X(HANDLE, CreateFileW, (LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE), \
      INVALID_HANDLE_VALUE) \
    X(BOOL, ReadFile, (HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED), 0) \
    X(BOOL, WriteFile, (HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED), 0) \
    X(BOOL, FlushFileBuffers, (HANDLE), 0) \
    X(BOOL, SetFilePointerEx, (HANDLE, LARGE_INTEGER, PLARGE_INTEGER, DWORD), 0) \
    X(BOOL, GetFileSizeEx, (HANDLE, PLARGE_INTEGER), 0) \
    X(BOOL, CloseHandle, (HANDLE), 0) \
    X(DWORD, GetFileAttributesW, (LPCWSTR), INVALID_FILE_ATTRIBUTES) \
    X(BOOL, SetFileAttributesW, (LPCWSTR, DWORD), 0) \
    X(BOOL, DeleteFileW, (LPCWSTR), 0) \
    X(BOOL, MoveFileExW, (LPCWSTR, LPCWSTR, DWORD), 0) \
    X(BOOL, CreateDirectoryW, (LPCWSTR, LPSECURITY_ATTRIBUTES), 0)

#define PROFILE_CALLS(X) \
    X(UINT, GetPrivateProfileIntW, (LPCWSTR, LPCWSTR, INT, LPCWSTR), 0) \
    X(DWORD, GetPrivateProfileStringW, (LPCWSTR, LPCWSTR, LPCWSTR, LPWSTR, DWORD, LPCWSTR), 0) \
    X(UINT, GetProfileIntW, (LPCWSTR, LPCWSTR, INT), 0) \
    X(DWORD, GetProfileStringW, (LPCWSTR, LPCWSTR, LPCWSTR, LPWSTR, DWORD), 0)

#define REGISTRY_CALLS(X) \
    X(LSTATUS, RegOpenKeyExW, (HKEY, LPCWSTR, DWORD, REGSAM, PHKEY), ERROR_GEN_FAILURE) \
    X(LSTATUS, RegCreateKeyW, (HKEY, LPCWSTR, PHKEY), ERROR_GEN_FAILURE) \
    X(LSTATUS, RegQueryValueExW, (HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD), ERROR_GEN_FAILURE) \
    X(LSTATUS, RegSetValueExW, (HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD), ERROR_GEN_FAILURE) \
    X(LSTATUS, RegCloseKey, (HKEY), ERROR_GEN_FAILURE)

#define SPOOLER_CALLS(X) \
    X(BOOL, OpenPrinterW, (LPWSTR, LPHANDLE, LPPRINTER_DEFAULTSW), 0) \
    X(BOOL, ClosePrinter, (HANDLE), 0) \
    X(BOOL, GetPrinterW, (HANDLE, DWORD, LPBYTE, DWORD, LPDWORD), 0) \
    X(BOOL, GetPrinterDriverW, (HANDLE, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD), 0) \
    X(BOOL, GetJobW, (HANDLE, DWORD, DWORD, LPBYTE, DWORD, LPDWORD), 0) \
    X(DWORD, GetPrinterDataW, (HANDLE, LPWSTR, LPDWORD, LPBYTE, DWORD, LPDWORD), ERROR_GEN_FAILURE) \
    X(DWORD, SetPrinterDataW, (HANDLE, LPWSTR, DWORD, LPBYTE, DWORD), ERROR_GEN_FAILURE) \
    X(DWORD, DeletePrinterDataW, (HANDLE, LPWSTR), ERROR_GEN_FAILURE) \
    X(BOOL, EnumFormsW, (HANDLE, DWORD, LPBYTE, DWORD, LPDWORD, LPDWORD), 0)

#define RESOURCE_CALLS(X) \
    X(HMODULE, LoadLibraryExW, (LPCWSTR, HANDLE, DWORD), nullptr) \
    X(FARPROC, GetProcAddress, (HMODULE, LPCSTR), nullptr) \
    X(BOOL, FreeLibrary, (HMODULE), 0) \
    X(int, LoadStringW, (HINSTANCE, UINT, LPWSTR, int), 0)

#define TEXT_CALLS(X) \
    X(int, MultiByteToWideChar, (UINT, DWORD, LPCSTR, int, LPWSTR, int), 0) \
    X(int, WideCharToMultiByte, (UINT, DWORD, LPCWSTR, int, LPSTR, int, LPCSTR, LPBOOL), 0) \
    X(DWORD, CharUpperBuffW, (LPWSTR, DWORD), 0) \
    X(int, lstrcmpW, (LPCWSTR, LPCWSTR), -2)

#define ALL_CALLS(X) \
    PROCESS_CALLS(X) \
    FILE_CALLS(X) \
    PROFILE_CALLS(X) \
    REGISTRY_CALLS(X) \
    SPOOLER_CALLS(X) \
    RESOURCE_CALLS(X) \
    TEXT_CALLS(X)

#endif
