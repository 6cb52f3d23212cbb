/* Reads registry values into buffers of fixed size. */
#include "base/registry_text.h"

RegistryText ReadDefaultText(HKEY hRoot, const WCHAR* wcKey, WCHAR* wcOut)
{
    HKEY hKey;
    wcOut[0] = 0;
    if (RegOpenKeyExW(hRoot, wcKey, 0, KEY_QUERY_VALUE, &hKey) != 0) {
        return KEY_ABSENT;
    }
    DWORD dwType = REG_NONE, cbRead = PATH_CHARS * sizeof(WCHAR);
    LSTATUS lStatus =
        RegQueryValueExW(hKey, TEXT(""), nullptr, &dwType, reinterpret_cast<BYTE*>(wcOut), &cbRead);
    RegCloseKey(hKey);
    int bText =
        lStatus == 0 && (dwType == REG_SZ || dwType == REG_EXPAND_SZ) && cbRead <= PATH_CHARS * sizeof(WCHAR);
    wcOut[bText ? cbRead / sizeof(WCHAR) : 0] = 0;
    return !wcOut[0] ? TEXT_ABSENT : dwType == REG_SZ ? TEXT_STORED : TEXT_TO_EXPAND;
}
