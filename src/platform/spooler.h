/* Printers, their drivers, their stored values, forms, and the questions of the spooler's interface. */
#ifndef TQUI_PLATFORM_SPOOLER_H
#define TQUI_PLATFORM_SPOOLER_H

#include "platform/basic.h"
#include "platform/value_types.h"

#ifdef _WIN32

#include <winspool.h>

#else

#include "platform/calls.h"

struct DEVMODEW;
using PDEVMODEW = DEVMODEW*;
using LPDEVMODEW = DEVMODEW*;
using PSECURITY_DESCRIPTOR = void*;
using LPHANDLE = HANDLE*;

struct PRINTER_DEFAULTSW {
    LPWSTR pDatatype;
    LPDEVMODEW pDevMode;
    DWORD DesiredAccess;
};
using LPPRINTER_DEFAULTSW = PRINTER_DEFAULTSW*;

struct PRINTER_INFO_2W {
    LPWSTR pServerName;
    LPWSTR pPrinterName;
    LPWSTR pShareName;
    LPWSTR pPortName;
    LPWSTR pDriverName;
    LPWSTR pComment;
    LPWSTR pLocation;
    LPDEVMODEW pDevMode;
    LPWSTR pSepFile;
    LPWSTR pPrintProcessor;
    LPWSTR pDatatype;
    LPWSTR pParameters;
    PSECURITY_DESCRIPTOR pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
};

struct DRIVER_INFO_3W {
    DWORD cVersion;
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDriverPath;
    LPWSTR pDataFile;
    LPWSTR pConfigFile;
    LPWSTR pHelpFile;
    LPWSTR pDependentFiles; /* texts one behind the other, an empty one at the end */
    LPWSTR pMonitorName;
    LPWSTR pDefaultDataType;
};

struct FORM_INFO_1W {
    DWORD Flags;
    LPWSTR pName;
    SIZEL Size; /* thousandths of a millimetre */
    RECTL ImageableArea;
};

struct PRINTPROCESSOR_INFO_1W {
    LPWSTR pName;
};

struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};

struct JOB_INFO_2W {
    DWORD JobId;
    LPWSTR pPrinterName, pMachineName, pUserName;
    LPWSTR pDocument; /* null when the job has no name */
    LPWSTR pNotifyName, pDatatype, pPrintProcessor, pParameters, pDriverName;
    LPDEVMODEW pDevMode;
    LPWSTR pStatus;
    PSECURITY_DESCRIPTOR pSecurityDescriptor;
    DWORD Status, Priority, Position, StartTime, UntilTime, TotalPages, Size;
    SYSTEMTIME Submitted;
    DWORD Time, PagesPrinted;
};

constexpr DWORD FORM_USER = 0;
constexpr DWORD FORM_BUILTIN = 1;
constexpr DWORD FORM_PRINTER = 2;

constexpr DWORD PRINTER_ALL_ACCESS = 0xF000C;
constexpr DWORD PRINTER_ACCESS_USE = 8;

/* Questions of DrvDeviceCapabilities. */
enum : DWORD {
    DC_FIELDS = 1,
    DC_PAPERS,
    DC_PAPERSIZE,
    DC_MINEXTENT,
    DC_MAXEXTENT,
    DC_BINS,
    DC_DUPLEX,
    DC_SIZE,
    DC_EXTRA,
    DC_VERSION,
    DC_DRIVER,
    DC_BINNAMES,
    DC_ENUMRESOLUTIONS,
    DC_FILEDEPENDENCIES,
    DC_TRUETYPE,
    DC_PAPERNAMES,
    DC_ORIENTATION,
    DC_COPIES,
    DC_BINADJUST,
    DC_EMF_COMPLIANT,
    DC_DATATYPE_PRODUCED,
    DC_COLLATE,
    DC_MANUFACTURER,
    DC_MODEL,
    DC_PERSONALITY,
    DC_PRINTRATE,
    DC_PRINTRATEUNIT,
    DC_PRINTERMEM,
    DC_MEDIAREADY,
    DC_STAPLE,
    DC_PRINTRATEPPM,
    DC_COLORDEVICE,
    DC_NUP,
    DC_MEDIATYPENAMES,
    DC_MEDIATYPES
};

SPOOLER_CALLS(DECLARE_CALL)

#endif

/* The published headers of the property sheet calls, which the toolchain's headers lack. */
struct DOCUMENTPROPERTYHEADER {
    WORD cbSize; /* 48 */
    WORD Reserved;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    PDEVMODEW pdmIn, pdmOut;
    DWORD cbOut; /* bytes of pdmOut, told back by the size call */
    DWORD fMode;
};
static_assert(sizeof(DOCUMENTPROPERTYHEADER) == 48);

struct DEVICEPROPERTYHEADER {
    WORD cbSize; /* 24 */
    WORD Flags;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
};
static_assert(sizeof(DEVICEPROPERTYHEADER) == 24);

/* Codes of DrvDocumentEvent that are served here, its result, and what a device context is made from. */
enum : int {
    DOCUMENT_EVENT_SUCCESS = 1,
    DOCUMENT_EVENT_CREATEDCPRE = 1, /* of a DOCEVENT_CREATEDCPRE */
    DOCUMENT_EVENT_RESETDCPRE = 3,  /* of a pointer to a record */
    DOCUMENT_EVENT_STARTDOC = 5
};

struct DOCEVENT_CREATEDCPRE {
    LPWSTR pszDriver, pszDevice;
    PDEVMODEW pdm;
    BOOL bIC; /* an information context */
};
static_assert(sizeof(DOCEVENT_CREATEDCPRE) == 32);

#endif
