/* A ConfigFile between the system and the library, for the tests of applications: a spooler that tells the driver how
   much room an application's record has. Wine's tells what the record in the application's buffer says of itself, which
   is nothing yet; here the room for a whole record is told. Every other export goes straight on (see CMakeLists.txt). */
#include "platform/sheet.h"
#include "platform/spooler.h"
#include "settings/driver_devmode.h"

extern "C" LONG WINAPI FullSize_DrvDocumentPropertySheets(void* pInfo, LPARAM lParam)
{
    static const auto fnOriginal = reinterpret_cast<LONG(WINAPI*)(void*, LPARAM)>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"TQUITEST.dll"), "DrvDocumentPropertySheets")));
    auto* pHeader = reinterpret_cast<DOCUMENTPROPERTYHEADER*>(
        pInfo ? static_cast<PROPSHEETUI_INFO*>(pInfo)->lParamInit : lParam);
    if (pHeader && pHeader->fMode && pHeader->pdmOut) {
        pHeader->cbOut = sizeof(DriverDevmode);
    }
    return fnOriginal(pInfo, lParam);
}
