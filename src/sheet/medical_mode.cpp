#include "sheet/medical_mode.h"

#include "platform/process.h"
#include "platform/registry.h"

namespace {

constexpr const WCHAR* wcMonitorKey = TEXT("SOFTWARE\\QuilonMonitor\\");
constexpr const WCHAR* wcModeValue = TEXT("MedicalPrintMode");

u32 ReadStoredMode()
{
    HKEY hKey;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, wcMonitorKey, 0, KEY_READ, &hKey) != 0) {
        return MEDICAL_OFF;
    }
    DWORD dwType = 0, dwMode = 0, cbMode = sizeof dwMode;
    LSTATUS lStatus =
        RegQueryValueExW(hKey, wcModeValue, nullptr, &dwType, reinterpret_cast<BYTE*>(&dwMode), &cbMode);
    RegCloseKey(hKey);
    return lStatus == 0 && dwType == REG_DWORD && cbMode == sizeof dwMode ? u32{dwMode} : u32{MEDICAL_OFF};
}

} // namespace

MedicalMode ReadMedicalMode()
{
    switch (ReadStoredMode()) {
    case MEDICAL_A5_LANDSCAPE: OutputDebugStringA("MedicalPrintMode->A5L"); return MEDICAL_A5_LANDSCAPE;
    case MEDICAL_A5_PORTRAIT: OutputDebugStringA("MedicalPrintMode->A5P"); return MEDICAL_A5_PORTRAIT;
    default: OutputDebugStringA("MedicalPrintMode->OFF"); return MEDICAL_OFF;
    }
}

void WriteMedicalMode(u32 ulMode)
{
    HKEY hKey;
    if (RegCreateKeyW(HKEY_CURRENT_USER, wcMonitorKey, &hKey) != 0) {
        return;
    }
    DWORD dwMode = ulMode;
    if (RegSetValueExW(hKey, wcModeValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dwMode),
                       sizeof dwMode) == 0) {
        OutputDebugStringA("MedicalPrintMode Set");
    }
    RegCloseKey(hKey);
}
