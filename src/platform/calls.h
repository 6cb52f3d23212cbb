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
    X(DWORD, GetTickCount, (void), 0) \
    X(UINT, WinExec, (LPCSTR, UINT), 0) \
    X(LCID, GetUserDefaultLCID, (void), 0) \
    X(BOOL, GetVersionExW, (LPOSVERSIONINFOW), 0) \
    X(HANDLE, CreateSemaphoreW, (LPSECURITY_ATTRIBUTES, LONG, LONG, LPCWSTR), nullptr) \
    X(HANDLE, OpenSemaphoreW, (DWORD, BOOL, LPCWSTR), nullptr) \
    X(HANDLE, CreateEventW, (LPSECURITY_ATTRIBUTES, BOOL, BOOL, LPCWSTR), nullptr) \
    X(HANDLE, OpenEventW, (DWORD, BOOL, LPCWSTR), nullptr) \
    X(DWORD, WaitForSingleObject, (HANDLE, DWORD), WAIT_FAILED) \
    X(BOOL, GetComputerNameW, (LPWSTR, LPDWORD), 0) \
    X(DWORD, GetEnvironmentVariableW, (LPCWSTR, LPWSTR, DWORD), 0) \
    X(DWORD, ExpandEnvironmentStringsW, (LPCWSTR, LPWSTR, DWORD), 0) \
    X(UINT, GetSystemDirectoryW, (LPWSTR, UINT), 0) \
    X(LANGID, GetUserDefaultLangID, (void), 0)

#define FILE_CALLS(X) \
    X(HANDLE, CreateFileW, (LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE), \
      INVALID_HANDLE_VALUE) \
    X(BOOL, ReadFile, (HANDLE, LPVOID, DWORD, LPDWORD, LPOVERLAPPED), 0) \
    X(BOOL, WriteFile, (HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED), 0) \
    X(BOOL, FlushFileBuffers, (HANDLE), 0) \
    X(BOOL, SetFilePointerEx, (HANDLE, LARGE_INTEGER, PLARGE_INTEGER, DWORD), 0) \
    X(BOOL, GetFileSizeEx, (HANDLE, PLARGE_INTEGER), 0) \
    X(DWORD, GetFileType, (HANDLE), 0) \
    X(DWORD, GetFinalPathNameByHandleW, (HANDLE, LPWSTR, DWORD, DWORD), 0) \
    X(BOOL, SetFileInformationByHandle, (HANDLE, FILE_INFO_BY_HANDLE_CLASS, LPVOID, DWORD), 0) \
    X(HANDLE, FindFirstFileW, (LPCWSTR, LPWIN32_FIND_DATAW), INVALID_HANDLE_VALUE) \
    X(BOOL, FindNextFileW, (HANDLE, LPWIN32_FIND_DATAW), 0) \
    X(BOOL, FindClose, (HANDLE), 0) \
    X(BOOL, CopyFileW, (LPCWSTR, LPCWSTR, BOOL), 0) \
    X(BOOL, CloseHandle, (HANDLE), 0) \
    X(DWORD, GetFileAttributesW, (LPCWSTR), INVALID_FILE_ATTRIBUTES) \
    X(BOOL, SetFileAttributesW, (LPCWSTR, DWORD), 0) \
    X(BOOL, DeleteFileW, (LPCWSTR), 0) \
    X(BOOL, MoveFileExW, (LPCWSTR, LPCWSTR, DWORD), 0) \
    X(BOOL, CreateDirectoryW, (LPCWSTR, LPSECURITY_ATTRIBUTES), 0) \
    X(DWORD, GetCurrentDirectoryW, (DWORD, LPWSTR), 0) \
    X(BOOL, SetCurrentDirectoryW, (LPCWSTR), 0)

#define PROFILE_CALLS(X) \
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
    X(BOOL, SetPrinterW, (HANDLE, DWORD, LPBYTE, DWORD), 0) \
    X(BOOL, GetPrinterDriverW, (HANDLE, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD), 0) \
    X(BOOL, GetJobW, (HANDLE, DWORD, DWORD, LPBYTE, DWORD, LPDWORD), 0) \
    X(DWORD, GetPrinterDataW, (HANDLE, LPWSTR, LPDWORD, LPBYTE, DWORD, LPDWORD), ERROR_GEN_FAILURE) \
    X(DWORD, SetPrinterDataW, (HANDLE, LPWSTR, DWORD, LPBYTE, DWORD), ERROR_GEN_FAILURE) \
    X(BOOL, AddFormW, (HANDLE, DWORD, LPBYTE), 0) \
    X(BOOL, DeleteFormW, (HANDLE, LPWSTR), 0) \
    X(BOOL, EnumPrintProcessorsW, (LPWSTR, LPWSTR, DWORD, LPBYTE, DWORD, LPDWORD, LPDWORD), 0) \
    X(BOOL, AddPrintProcessorW, (LPWSTR, LPWSTR, LPWSTR, LPWSTR), 0) \
    X(DWORD, DeletePrinterDataW, (HANDLE, LPWSTR), ERROR_GEN_FAILURE) \
    X(BOOL, EnumFormsW, (HANDLE, DWORD, LPBYTE, DWORD, LPDWORD, LPDWORD), 0)

#define RESOURCE_CALLS(X) \
    X(HMODULE, LoadLibraryExW, (LPCWSTR, HANDLE, DWORD), nullptr) \
    X(FARPROC, GetProcAddress, (HMODULE, LPCSTR), nullptr) \
    X(BOOL, FreeLibrary, (HMODULE), 0) \
    X(int, LoadStringW, (HINSTANCE, UINT, LPWSTR, int), 0)

/* Routines of version.dll. They are found by name when they are needed (base/system_library.h), so the library does
   not import them. */
#define VERSION_CALLS(X) \
    X(DWORD, GetFileVersionInfoSizeW, (LPCWSTR, LPDWORD), 0) \
    X(BOOL, GetFileVersionInfoW, (LPCWSTR, DWORD, DWORD, LPVOID), 0) \
    X(BOOL, VerQueryValueW, (LPCVOID, LPCWSTR, LPVOID*, PUINT), 0)

/* Routines of comdlg32.dll, which are found in the same way. */
#define COMMON_DIALOG_CALLS(X) \
    X(BOOL, ChooseColorW, (LPCHOOSECOLORW), 0) \
    X(BOOL, GetOpenFileNameW, (LPOPENFILENAMEW), 0)
/* The one routine of the help control, which is found by number when help is first asked for. */
#define HELP_CALLS(X) X(HWND, HtmlHelpW, (HWND, LPCWSTR, UINT, DWORD_PTR), nullptr)

#define WINDOW_CALLS(X) \
    X(HDC, BeginPaint, (HWND, LPPAINTSTRUCT), nullptr) \
    X(LRESULT, CallWindowProcW, (WNDPROC, HWND, UINT, WPARAM, LPARAM), 0) \
    X(BOOL, CheckDlgButton, (HWND, int, UINT), 0) \
    X(BOOL, CheckRadioButton, (HWND, int, int, int), 0) \
    X(BOOL, DeleteObject, (HGDIOBJ), 0) \
    X(INT_PTR, DialogBoxParamW, (HINSTANCE, LPCWSTR, HWND, DLGPROC, LPARAM), -1) \
    X(BOOL, EnableWindow, (HWND, BOOL), 0) \
    X(BOOL, EndDialog, (HWND, INT_PTR), 0) \
    X(BOOL, EndPaint, (HWND, const PAINTSTRUCT*), 0) \
    X(BOOL, EnumChildWindows, (HWND, WNDENUMPROC, LPARAM), 0) \
    X(BOOL, GetClientRect, (HWND, LPRECT), 0) \
    X(HCURSOR, GetCursor, (void), nullptr) \
    X(HWND, GetDesktopWindow, (void), nullptr) \
    X(BOOL, GetCursorPos, (LPPOINT), 0) \
    X(int, GetDlgCtrlID, (HWND), 0) \
    X(HWND, GetDlgItem, (HWND, int), nullptr) \
    X(UINT, GetDlgItemInt, (HWND, int, BOOL*, BOOL), 0) \
    X(UINT, GetDlgItemTextW, (HWND, int, LPWSTR, int), 0) \
    X(HWND, GetFocus, (void), nullptr) \
    X(HWND, GetParent, (HWND), nullptr) \
    X(BOOL, GetScrollInfo, (HWND, int, LPSCROLLINFO), 0) \
    X(LONG_PTR, GetWindowLongPtrW, (HWND, int), 0) \
    X(BOOL, GetWindowPlacement, (HWND, WINDOWPLACEMENT*), 0) \
    X(BOOL, GetWindowRect, (HWND, LPRECT), 0) \
    X(BOOL, InvalidateRect, (HWND, const RECT*, BOOL), 0) \
    X(UINT, IsDlgButtonChecked, (HWND, int), 0) \
    X(BOOL, IsWindowEnabled, (HWND), 0) \
    X(BOOL, IsWindowVisible, (HWND), 0) \
    X(HCURSOR, LoadCursorW, (HINSTANCE, LPCWSTR), nullptr) \
    X(HICON, LoadIconW, (HINSTANCE, LPCWSTR), nullptr) \
    X(HANDLE, LoadImageW, (HINSTANCE, LPCWSTR, UINT, int, int, UINT), nullptr) \
    X(int, MapWindowPoints, (HWND, HWND, LPPOINT, UINT), 0) \
    X(int, MessageBoxW, (HWND, LPCWSTR, LPCWSTR, UINT), 0) \
    X(BOOL, MoveWindow, (HWND, int, int, int, int, BOOL), 0) \
    X(LRESULT, SendDlgItemMessageW, (HWND, int, UINT, WPARAM, LPARAM), 0) \
    X(LRESULT, SendMessageTimeoutW, (HWND, UINT, WPARAM, LPARAM, UINT, UINT, PDWORD_PTR), 0) \
    X(LRESULT, SendMessageW, (HWND, UINT, WPARAM, LPARAM), 0) \
    X(HCURSOR, SetCursor, (HCURSOR), nullptr) \
    X(BOOL, SetDlgItemInt, (HWND, int, UINT, BOOL), 0) \
    X(BOOL, SetDlgItemTextW, (HWND, int, LPCWSTR), 0) \
    X(HWND, SetFocus, (HWND), nullptr) \
    X(BOOL, SetForegroundWindow, (HWND), 0) \
    X(int, SetScrollInfo, (HWND, int, LPCSCROLLINFO, BOOL), 0) \
    X(LONG_PTR, SetWindowLongPtrW, (HWND, int, LONG_PTR), 0) \
    X(BOOL, SetWindowPlacement, (HWND, const WINDOWPLACEMENT*), 0) \
    X(BOOL, SetWindowTextW, (HWND, LPCWSTR), 0) \
    X(BOOL, ShowWindow, (HWND, int), 0) \
    X(BOOL, UpdateWindow, (HWND), 0)

#define GDI_CALLS(X) \
    X(HDC, CreateDCW, (LPCWSTR, LPCWSTR, LPCWSTR, const DEVMODEW*), nullptr) \
    X(BOOL, DeleteDC, (HDC), 0) \
    X(int, EnumFontFamiliesW, (HDC, LPCWSTR, FONTENUMPROCW, LPARAM), 0)

#define DRAWING_CALLS(X) \
    X(BOOL, BitBlt, (HDC, int, int, int, int, HDC, int, int, DWORD), 0) \
    X(HBITMAP, CreateCompatibleBitmap, (HDC, int, int), nullptr) \
    X(HDC, CreateCompatibleDC, (HDC), nullptr) \
    X(HBITMAP, CreateDIBitmap, (HDC, const BITMAPINFOHEADER*, DWORD, const void*, const BITMAPINFO*, UINT), \
      nullptr) \
    X(HPEN, CreatePen, (int, int, COLORREF), nullptr) \
    X(HBRUSH, CreateSolidBrush, (COLORREF), nullptr) \
    X(BOOL, DPtoLP, (HDC, LPPOINT, int), 0) \
    X(HPEN, ExtCreatePen, (DWORD, DWORD, const LOGBRUSH*, DWORD, const DWORD*), nullptr) \
    X(int, GetMapMode, (HDC), 0) \
    X(int, GetObjectW, (HANDLE, int, LPVOID), 0) \
    X(HGDIOBJ, GetStockObject, (int), nullptr) \
    X(DWORD, GetSysColor, (int), 0) \
    X(HBRUSH, GetSysColorBrush, (int), nullptr) \
    X(BOOL, LineTo, (HDC, int, int), 0) \
    X(BOOL, MoveToEx, (HDC, int, int, LPPOINT), 0) \
    X(BOOL, Pie, (HDC, int, int, int, int, int, int, int, int), 0) \
    X(BOOL, PolyBezier, (HDC, const POINT*, DWORD), 0) \
    X(BOOL, Rectangle, (HDC, int, int, int, int), 0) \
    X(HGDIOBJ, SelectObject, (HDC, HGDIOBJ), nullptr) \
    X(int, SetBkMode, (HDC, int), 0) \
    X(int, SetDIBits, (HDC, HBITMAP, UINT, UINT, const void*, const BITMAPINFO*, UINT), 0) \
    X(int, SetMapMode, (HDC, int), 0) \
    X(BOOL, StretchBlt, (HDC, int, int, int, int, HDC, int, int, int, int, DWORD), 0)

#define GLYPH_CALLS(X) \
    X(HFONT, CreateFontIndirectW, (const LOGFONTW*), nullptr) \
    X(int, DrawTextW, (HDC, LPCWSTR, int, LPRECT, UINT), 0) \
    X(BOOL, ExtTextOutW, (HDC, int, int, UINT, const RECT*, LPCWSTR, UINT, const INT*), 0) \
    X(DWORD, GetCharacterPlacementW, (HDC, LPCWSTR, int, int, GCP_RESULTSW*, DWORD), 0) \
    X(DWORD, GetFontLanguageInfo, (HDC), GCP_ERROR) \
    X(DWORD, GetGlyphOutlineW, (HDC, UINT, UINT, GLYPHMETRICS*, DWORD, LPVOID, const MAT2*), GDI_ERROR) \
    X(BOOL, GetTextExtentPoint32W, (HDC, LPCWSTR, int, SIZE*), 0) \
    X(BOOL, GetTextExtentPointW, (HDC, LPCWSTR, int, SIZE*), 0) \
    X(UINT, SetTextAlign, (HDC, UINT), GDI_ERROR) \
    X(COLORREF, SetTextColor, (HDC, COLORREF), CLR_INVALID)

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
    VERSION_CALLS(X) \
    COMMON_DIALOG_CALLS(X) \
    HELP_CALLS(X) \
    WINDOW_CALLS(X) \
    GDI_CALLS(X) \
    DRAWING_CALLS(X) \
    GLYPH_CALLS(X) \
    TEXT_CALLS(X)

#endif
