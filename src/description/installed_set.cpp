/* Reads, builds and stores the installed set. */
#include "description/installed_set.h"

#include "settingsfile/profile_values.h"

const DeviceInfo* GetDeviceInfo(PrinterCall& call, const XpiModel* pModel)
{
    if (call.deviceState == NOT_ASKED) {
        call.deviceState = ANSWERED;
        DeviceInfo stored;
        if (ReadPrinterBytes(call, TEXT("DeviceInfo"), &stored, sizeof stored) == sizeof stored) {
            call.rDeviceInfo = stored;
        } else {
            BuildDeviceInfo(call, pModel, &call.rDeviceInfo, 1);
        }
    }
    return &call.rDeviceInfo;
}

void BuildDeviceInfo(PrinterCall& call, const XpiModel* pModel, DeviceInfo* pInfo, int bUseIni)
{
    *pInfo = {};
    if (pModel) {
        pInfo->ulInputs = pModel->ulOptInputs | pModel->ulStdInputs;
        pInfo->ulOutputs = pModel->ulOptOutputs | pModel->ulStdOutputs;
        pInfo->ulOptions = pModel->ulOptOptions | pModel->ulStdOptions;
        pInfo->ulMemoryKey = static_cast<u32>(pModel->sStdMemory + pModel->sOptMemory);
    }
    WCHAR tcIni[PATH_CHARS];
    if (!bUseIni || !FindDriverFile(call, TEXT(""), TEXT(".INI"), tcIni)) {
        return;
    }
    const WCHAR* wcSection = TEXT("DeviceInfo");
    pInfo->ulInputs = ReadProfileHex(wcSection, TEXT("Sources"), pInfo->ulInputs, tcIni);
    pInfo->ulOutputs = ReadProfileHex(wcSection, TEXT("Destinations"), pInfo->ulOutputs, tcIni);
    pInfo->ulOptions = ReadProfileHex(wcSection, TEXT("Options"), pInfo->ulOptions, tcIni);
    pInfo->ulMemoryKey = static_cast<u32>(
        ReadProfileLong(wcSection, TEXT("TotalMemory"), static_cast<i32>(pInfo->ulMemoryKey), tcIni));
}

void SetDeviceInfo(PrinterCall& call, const DeviceInfo* pInfo)
{
    DeviceInfo copy = *pInfo;
    SetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(TEXT("DeviceInfo")), REG_BINARY,
                    reinterpret_cast<BYTE*>(&copy), sizeof copy);
}
