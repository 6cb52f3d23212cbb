/* Settles a job's record. */
#include "entry/settle.h"

#include "document/defaults.h"
#include "settings/checks.h"

void SettleRecord(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel, int bOwnModel)
{
    int bPublicGood = ValidatePublicPart(call, pRecord, pModel);
    if (bPublicGood && ValidatePrivatePart(call, &pRecord->rPrivate, pModel)) {
        return;
    }
    DriverDevmode defaults;
    if (FindPrinterDefaults(call, &defaults, bOwnModel ? pModel : nullptr) == DEFAULT_NONE) {
        return;
    }
    if (bPublicGood) {
        pRecord->rPrivate = defaults.rPrivate;
    } else {
        *pRecord = defaults;
    }
}
