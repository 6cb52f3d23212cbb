/* Any bytes as a settings record: the first picks a sample's model, the rest lie over the record. A record
   that is accepted is accepted again, and has what its readers rely on. */
#include "description/driver_files.h"
#include "fuzz/fuzz_samples.h"
#include "settings/check_core.h"
#include "support/well_formed.h"

namespace {

/* The sample's model, loaded once. */
const XpiModel* ModelOf(size_t i)
{
    static std::array<OwnedModel, acStems.size()>& models = *new std::array<OwnedModel, acStems.size()>;
    OwnedModel& pModel = models[i % acStems.size()];
    if (!pModel) {
        pModel = LoadPrinterModel(*SampleOf(i).call);
    }
    Require(pModel != nullptr);
    return pModel.get();
}

bool IsSettled(const DriverDevmode& record)
{
    const PrivateDevmode part = record.rPrivate;
    return IsWellFormed(record) && part.sContrast >= -50 && part.sContrast <= 50 &&
           part.lPagesPerSheet >= 1 && part.lPagesPerSheet <= 25 && part.sMargins == 0 &&
           part.bStyleCount == 0 && part.bBlockCount == 0 && static_cast<u16>(part.sColorCorrection) <= 3;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* pBytes, size_t cb)
{
    if (cb < 1) {
        return 0;
    }
    FuzzSample& sample = SampleOf(pBytes[0]);
    DriverDevmode record = recordTemplate;
    LayOver(&record, pBytes + 1, cb - 1);
    if (pBytes[0] & 0x80) { /* past the identity, which random bytes hardly ever are */
        PrivateDevmode& part = record.rPrivate;
        part.ulVersion = RECORD_STAMP;
        part.sOverlayDirOffset = OVERLAY_DIR_OFFSET;
        part.sGenColorCmdOffset = COLOR_COMMAND_OFFSET;
        part.sExceptionInfoOffset = EXCEPTION_OFFSET;
        part.OEMData = {1, OEM_OFFSET, OEM_SIZE};
        part.tcOverlayDir[159] = 0;
        const WCHAR* tcPath = GetXpiPath(*sample.call);
        std::memcpy(part.tcXPIName, tcPath, static_cast<size_t>(WideLength(tcPath) + 1) * sizeof(WCHAR));
        part.tcXPIName[159] = 0;
    }
    for (int nTime = 0; nTime < 2; nTime++) {
        const XpiModel* pModel = nTime ? nullptr : ModelOf(pBytes[0]);
        PrinterCall fresh(sample.printer->hPrinter);
        PrinterCall& call = nTime ? fresh : *sample.call;
        int nPublic = ValidatePublicPart(call, &record, pModel);
        int nPrivate = ValidatePrivatePart(call, &record.rPrivate, pModel);
        if (!nPublic || !nPrivate) {
            break;
        }
        Require(IsSettled(record));
    }
    return 0;
}
