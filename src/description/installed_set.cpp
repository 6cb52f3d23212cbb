/* Reads, builds and stores the installed set. */
#include "description/installed_set.h"

#include "profile/profile_values.h"

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
    if (!bUseIni) {
        return;
    }
    ProfileSection section = OpenSection(GetDriverIni(call), TEXT("DeviceInfo"));
    pInfo->ulInputs = ReadProfileHex(section, TEXT("Sources"), pInfo->ulInputs);
    pInfo->ulOutputs = ReadProfileHex(section, TEXT("Destinations"), pInfo->ulOutputs);
    pInfo->ulOptions = ReadProfileHex(section, TEXT("Options"), pInfo->ulOptions);
    pInfo->ulMemoryKey =
        static_cast<u32>(ReadProfileLong(section, TEXT("TotalMemory"), static_cast<i32>(pInfo->ulMemoryKey)));
}

void SetDeviceInfo(PrinterCall& call, const DeviceInfo* pInfo)
{
    DeviceInfo copy = *pInfo;
    SetPrinterDataW(call.hPrinter, const_cast<LPWSTR>(TEXT("DeviceInfo")), REG_BINARY,
                    reinterpret_cast<BYTE*>(&copy), sizeof copy);
}
