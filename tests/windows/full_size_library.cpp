/* A ConfigFile between the system and the library, for the tests of applications: a spooler that tells the driver how
   much room an application's record has. Wine's tells what the record in the application's buffer says of itself, which
   is nothing yet; here the room for a whole record is told. Every other export goes straight on (see CMakeLists.txt). */
#include <windows.h>
#include <winspool.h>

namespace {

constexpr DWORD RECORD_BYTES = 4088;

struct PropertyHeader { /* DOCUMENTPROPERTYHEADER, which the toolchain's headers lack */
    WORD cbSize, wReserved;
    HANDLE hPrinter;
    WCHAR* wcPrinter;
    void *pIn, *pOut;
    DWORD cbOut, fMode;
};

struct SheetInformation { /* the beginning of PROPSHEETUI_INFO */
    WORD cbSize, wVersion, wFlags, wReason;
    HANDLE hSheet;
    void* fnSheet;
    LPARAM lParamInit;
};

} // namespace

extern "C" LONG WINAPI FullSize_DrvDocumentPropertySheets(void* pInfo, LPARAM lParam)
{
    static const auto fnOriginal = reinterpret_cast<LONG(WINAPI*)(void*, LPARAM)>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"TQUITEST.dll"), "DrvDocumentPropertySheets")));
    auto* pHeader =
        reinterpret_cast<PropertyHeader*>(pInfo ? static_cast<SheetInformation*>(pInfo)->lParamInit : lParam);
    if (pHeader && pHeader->fMode && pHeader->pOut) {
        pHeader->cbOut = RECORD_BYTES;
    }
    return fnOriginal(pInfo, lParam);
}
