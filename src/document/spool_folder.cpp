/* Copies the spool folder of an image printer into the registry. */
#include "document/spool_folder.h"

#include "base/file_name.h"
#include "base/format.h"
#include "platform/process.h"
#include "platform/registry.h"

namespace {

constexpr int KEY_CHARS = 512;

/* 1 on version 5.1 and all above. */
int IsAboveVersion5()
{
    DWORD dwVersion = GetVersion();
    DWORD dwMajor = dwVersion & 0xFF;
    DWORD dwMinor = dwVersion >> 8 & 0xFF;
    return dwMajor > 5 || (dwMajor == 5 && dwMinor > 0);
}

} // namespace

void CopySpoolFolder(PrinterCall& call, const XpiModel* pModel, const WCHAR* wcPrinterName)
{
    WCHAR wcName[KEY_CHARS], wcKey[KEY_CHARS], tcFolder[PATH_CHARS];
    int bEnded = 0;
    if (!pModel || pModel->usLanguage != KIND_IMAGE || !IsAboveVersion5() ||
        !CopyWideWhole(wcName, KEY_CHARS, BehindLast(wcPrinterName, '\\')) ||
        !ReadPrinterText(call, TEXT("DefaultSpoolDirectory"), tcFolder, PATH_CHARS, &bEnded) || !bEnded ||
        !IsPlainPath(tcFolder)) {
        return;
    }
    if (const WCHAR* wcTail = FindWide(wcName, TEXT(",Local"))) {
        wcName[wcTail - wcName] = 0;
    }
    HKEY hKey;
    if (!wcName[0] ||
        !FormatWide(wcKey, KEY_CHARS, TEXT("SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\%s"),
                    static_cast<const WCHAR*>(wcName)) ||
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, wcKey, 0, KEY_SET_VALUE, &hKey) != 0) {
        return;
    }
    RegSetValueExW(hKey, TEXT("SpoolDirectory"), 0, REG_SZ, reinterpret_cast<const BYTE*>(tcFolder),
                   static_cast<DWORD>(WideLength(tcFolder) + 1) * static_cast<DWORD>(sizeof(WCHAR)));
    RegCloseKey(hKey);
}
