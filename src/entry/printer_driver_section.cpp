/* Copies the section "PrinterDriver". */
#include "entry/printer_driver_section.h"

#include "base/file_name.h"
#include "description/driver_files.h"
#include "description/printer_store.h"
#include "platform/profile.h"
#include "settingsfile/profile_values.h"

namespace {

const WCHAR* const wcSection = TEXT("PrinterDriver");
constexpr u32 KEYS_CHARS = 4096; /* all names, each with its NUL, and one NUL more */

/* The section's keys one behind the other, an empty one at the end; null when there are none. */
OwnedBlock<WCHAR> ReadKeys(const WCHAR* tcIni)
{
    OwnedBlock<WCHAR> pKeys;
    if (HasFolder(tcIni)) {
        pKeys.reset(static_cast<WCHAR*>(AllocateRows(KEYS_CHARS + 2, sizeof(WCHAR))));
    }
    if (!pKeys) {
        return nullptr;
    }
    u32 cch = GetPrivateProfileStringW(wcSection, nullptr, TEXT(""), pKeys.get(), KEYS_CHARS, tcIni);
    if (cch >= KEYS_CHARS - 2) {
        /* The list did not fit: its last key is cut. */
        cch = KEYS_CHARS - 2;
        while (cch && pKeys.get()[cch - 1]) {
            cch--;
        }
    }
    pKeys.get()[cch] = 0;
    pKeys.get()[cch + 1] = 0;
    return pKeys;
}

} // namespace

int CopyPrinterDriverSection(PrinterCall& call)
{
    WCHAR tcIni[PATH_CHARS], wcText[TEXT_CHARS];
    int bUserMode = 0;
    OwnedBlock<WCHAR> pKeys;
    if (FindDriverFile(call, TEXT(""), TEXT(".INI"), tcIni)) {
        pKeys = ReadKeys(tcIni);
    }
    if (!pKeys) {
        return 0;
    }
    for (const WCHAR* wcKey = pKeys.get(); *wcKey; wcKey += WideLength(wcKey) + 1) {
        ReadProfileText(wcSection, wcKey, TEXT(""), wcText, TEXT_CHARS, tcIni);
        if (wcText[0]) {
            StorePrinterText(call, wcKey, wcText);
            bUserMode |= SameFileName(wcKey, TEXT("SPLUserModePrinterDriver"));
        }
    }
    return bUserMode;
}
