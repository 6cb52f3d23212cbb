/* What the rendering half asks for at a job's start, before a sheet and at the job's end. The three calls
   share nothing: each opens the description, settles the record that it was given, builds its bytes and
   releases all. */
#include <cstring>

#include "base/file_name.h"
#include "description/driver_files.h"
#include "entry/exports.h"
#include "entry/notice.h"
#include "entry/pjl_commands.h"
#include "entry/render_parameters.h"
#include "entry/settle.h"

namespace {

constexpr int XPI_NAME_CHARS = 160;

/* The caller's length may lie at any address. */
u32 LoadLength(const DWORD* pcbLength)
{
    u32 cbLength;
    static_assert(sizeof cbLength == sizeof *pcbLength);
    std::memcpy(&cbLength, pcbLength, sizeof cbLength);
    return cbLength;
}

void StoreLength(DWORD* pcbLength, u32 cbLength)
{
    std::memcpy(pcbLength, &cbLength, sizeof cbLength);
}

DWORD FitResult(int bFitted)
{
    return bFitted ? JOB_DONE : JOB_TOO_SMALL;
}

JobNotice pfnJobNotice;

/* Without a language library there is no dialog: its template would be looked for in the program's own
   resources. */
DWORD ShowNotice(PrinterCall& call)
{
    LanguageChoice choice;
    OwnedModule hLanguageDll = OpenLanguageDll(call, &choice);
    HMODULE hModule = static_cast<HMODULE>(hLanguageDll.get());
    return !hModule || !pfnJobNotice || pfnJobNotice(hModule, choice) ? JOB_NOTICE : JOB_FAILED;
}

/* Opens the description that the record names for the job's end: a whole path on a drive of this computer.
   Another computer's, a device's or a path that depends on the current folder is none. 0 when it cannot be
   opened or has nothing in it. */
int OpenNamedDescription(const PrivateDevmode& part, XpiFile& file)
{
    WCHAR tcName[XPI_NAME_CHARS];
    std::memcpy(tcName, part.tcXPIName, sizeof tcName);
    return BoundedLength(tcName, XPI_NAME_CHARS) < XPI_NAME_CHARS && IsDrivePath(tcName) &&
           OpenXpiPath(file, tcName) && XpiBodyBytes(ReadXpiHeader(file));
}

/* The description for the job's end: the record's own, unless overlays are at work, else the printer's. Null
   when neither can be opened. */
XpiFile* ChooseDescription(PrinterCall& call, const PrivateDevmode& part, XpiFile& named)
{
    WCHAR tcName[XPI_NAME_CHARS];
    std::memcpy(tcName, part.tcXPIName, sizeof tcName);
    int bPlain = tcName[0] && !part.tcOverlayDir[0];
    /* Most often it is the printer's own, which the record's check opens anyway. */
    int bOwn = BoundedLength(tcName, XPI_NAME_CHARS) < XPI_NAME_CHARS && SameWide(tcName, GetXpiPath(call));
    return bPlain && !bOwn && OpenNamedDescription(part, named) ? &named : OpenXpiFile(call);
}

} // namespace

void SetJobNotice(JobNotice pfnNotice)
{
    pfnJobNotice = pfnNotice;
}

extern "C" {

DWORD WINAPI GuiStartJob(DriverDevmode* pRecord, void* pBuffer, DWORD* pcbLength, GuiJobRecord* pJob)
{
    if (!pJob || !pcbLength) {
        return JOB_FAILED;
    }
    KeptLastError kept;
    /* What the caller says is read once, before anything is written: the records may overlap. */
    const GuiJobRecord job = *pJob;
    u32 cbLength = LoadLength(pcbLength);
    PrinterCall call(job.hPrinter);
    pJob->dwReservedOut = 0;
    if (job.bShowNotice) {
        StoreLength(pcbLength, 0);
        return ShowNotice(call);
    }
    if (!pRecord) {
        return JOB_DONE;
    }
    OwnedModel pModel = LoadPrinterModel(call);
    if (!pModel) {
        return JOB_FAILED;
    }
    XpiFile& file = *OpenXpiFile(call);
    SettleRecord(call, pRecord, pModel.get(), 1);
    int bFitted;
    if (pModel->usLanguage == KIND_IMAGE) {
        OwnedBlock<WCHAR> wcName = ReadDocumentName(call, job.dwJobId);
        pRecord->dmReserved1 = job.dwJobId;
        bFitted = BuildRenderParameters(call, pBuffer, &cbLength, wcName.get(), pRecord, pModel.get(), file);
        pJob->pJobName = wcName.release();
    } else {
        bFitted = BuildPjlJobHead(call, static_cast<char*>(pBuffer), &cbLength, pRecord, pModel.get(), file);
    }
    StoreLength(pcbLength, cbLength);
    return FitResult(bFitted);
}

DWORD WINAPI GuiEndJob(DriverDevmode* pRecord, void* pBuffer, DWORD* pcbLength, GuiJobRecord* pJob)
{
    if (!pJob || !pcbLength) {
        return JOB_FAILED;
    }
    if (!pRecord) {
        return JOB_DONE;
    }
    KeptLastError kept;
    u32 cbLength = LoadLength(pcbLength); /* before the record is settled in place, which may overlap it */
    PrinterCall call(pJob->hPrinter);
    XpiFile named = {};
    XpiFile* pFile = ChooseDescription(call, pRecord->rPrivate, named);
    OwnedModel pModel = pFile ? LoadXpiModel(*pFile) : nullptr;
    if (!pModel) {
        return JOB_FAILED;
    }
    SettleRecord(call, pRecord, pModel.get(), pFile != &named);
    int bFitted =
        pModel->usLanguage == KIND_IMAGE
            ? BuildRenderParameters(call, pBuffer, &cbLength, nullptr, pRecord, pModel.get(), *pFile)
            : BuildPjlJobEnd(static_cast<char*>(pBuffer), &cbLength, pRecord, pModel.get());
    StoreLength(pcbLength, cbLength);
    return FitResult(bFitted);
}

DWORD WINAPI GuiStartSheet(DriverDevmode* pRecord, GuiSheetRecord* pSheet)
{
    if (!pSheet) {
        return JOB_FAILED;
    }
    if (!pRecord) {
        return JOB_DONE;
    }
    KeptLastError kept;
    const GuiSheetRecord sheet = *pSheet; /* before the record is settled in place, which may overlap it */
    PrinterCall call(sheet.hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    if (!pModel) {
        return JOB_FAILED;
    }
    SettleRecord(call, pRecord, pModel.get(), 1);
    u32 cbLength = pModel->usLanguage == KIND_IMAGE ? sheet.cbBuffer : 0;
    int bFitted = 1;
    if (pModel->usLanguage == KIND_IMAGE) {
        bFitted = BuildRenderParameters(call, sheet.pBuffer, &cbLength, nullptr, pRecord, pModel.get(),
                                        *OpenXpiFile(call));
    }
    pSheet->cbBuffer = cbLength;
    return FitResult(bFitted);
}
}
