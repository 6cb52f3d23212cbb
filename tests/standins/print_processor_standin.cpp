/* Stand-in for the print processor of the image printers, JOB.DLL.

   Not a product file: it offers the functions that the spooler looks for and processes nothing. It is there
   so that a print processor can be registered; an integrator puts the real one in its place. */
#include <windows.h>

extern "C" __declspec(dllexport) BOOL WINAPI
    EnumPrintProcessorDatatypesW(LPWSTR, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD pcbNeeded, LPDWORD pcReturned)
{
    *pcbNeeded = 0;
    *pcReturned = 0;
    return TRUE;
}

extern "C" __declspec(dllexport) HANDLE WINAPI OpenPrintProcessor(LPWSTR, void*)
{
    SetLastError(ERROR_NOT_SUPPORTED);
    return nullptr;
}

extern "C" __declspec(dllexport) BOOL WINAPI PrintDocumentOnPrintProcessor(HANDLE, LPWSTR)
{
    return FALSE;
}

extern "C" __declspec(dllexport) BOOL WINAPI ControlPrintProcessor(HANDLE, DWORD)
{
    return FALSE;
}

extern "C" __declspec(dllexport) BOOL WINAPI ClosePrintProcessor(HANDLE)
{
    return FALSE;
}
