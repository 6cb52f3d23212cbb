/* Copies the section "PrinterDriver". */
#include "entry/printer_driver_section.h"

#include "base/file_name.h"
#include "description/driver_files.h"
#include "description/printer_store.h"
#include "profile/profile_values.h"

namespace {

constexpr u32 KEYS_CHARS = 4096; /* all names, each with its NUL, and one NUL more */

} // namespace

int CopyPrinterDriverSection(PrinterCall& call)
{
    WCHAR wcText[TEXT_CHARS];
    int bUserMode = 0;
    ProfileSection section = OpenSection(GetDriverIni(call), TEXT("PrinterDriver"));
    OwnedBlock<WCHAR> pKeys;
    if (section.nKeys) {
        pKeys.reset(static_cast<WCHAR*>(AllocateRows(KEYS_CHARS, sizeof(WCHAR))));
    }
    if (!pKeys) {
        return 0;
    }
    ListProfileKeys(section, pKeys.get(), KEYS_CHARS);
    for (const WCHAR* wcKey = pKeys.get(); *wcKey; wcKey += WideLength(wcKey) + 1) {
        if (ReadProfileText(section, wcKey, wcText, TEXT_CHARS) && wcText[0]) {
            StorePrinterText(call, wcKey, wcText);
            bUserMode |= SameFileName(wcKey, TEXT("SPLUserModePrinterDriver"));
        }
    }
    return bUserMode;
}
