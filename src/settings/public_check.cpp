/* Checks and repairs the public part of a record. */
#include "settings/check_core.h"

#include <cstring>

#include "description/driver_files.h"
#include "description/paper_row.h"

#ifdef TQUI_MUTATE
#include <cstdlib>

int RuleIsOn(int nRule)
{
    static const char* cOff = std::getenv("TQUI_RULE_OFF");
    static const int nOff = cOff ? std::atoi(cOff) : 0;
    return nRule != nOff;
}
#endif

namespace {

constexpr i16 BIN_USER_SIZED = 1028; /* feeds paper of any size; no bin row needs to have it */

/* Bit nBit of dmFields as 0 or 1. */
u32 FieldsBit(const DriverDevmode* pRecord, int nBit)
{
    return pRecord->dmFields >> nBit & 1;
}

int VersionFits(u16 usVersion)
{
    return usVersion >> 8 < DRIVER_VERSION >> 8 ||
           (usVersion >> 8 == DRIVER_VERSION >> 8 && (usVersion & 0xFF) <= (DRIVER_VERSION & 0xFF));
}

int SourceFits(const XpiModel* pModel, const PublicLimits& limits, i16 sSource)
{
    if (sSource >= FIRST_MEDIA_SOURCE) {
        return sSource - FIRST_MEDIA_SOURCE < limits.nMedia;
    }
    return sSource == BIN_USER_SIZED || FindBin(pModel, static_cast<u16>(sSource));
}

int HasResolution(const XpiModel* pModel, u16 usDpiX, u16 usDpiY)
{
    for (i32 i = 0;; i++) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, i);
        if (!pRow->ulUsed) {
            return 0;
        }
        if (pRow->usDpiX == usDpiX && pRow->usDpiY == usDpiY) {
            return 1;
        }
    }
}

/* Rows of the resolution table up to its end. */
i32 CountResolutions(const XpiModel* pModel)
{
    i32 n = 0;
    while (Row(pModel, pModel->pResolutions, n)->ulUsed) {
        n++;
    }
    return n;
}

/* Nothing when the model has no such row: there is nothing better than what the record says. */
void SetDefaultResolution(DriverDevmode* pRecord, const XpiModel* pModel)
{
    i16 sDefault = pModel->sDefaultResolution;
    if (sDefault >= 0 && sDefault < CountResolutions(pModel)) {
        const ResolutionRow* pRow = Row(pModel, pModel->pResolutions, sDefault);
        pRecord->dmPrintQuality = pRow->usDpiX;
        pRecord->dmYResolution = pRow->usDpiY;
    }
}

void SetDefaultSize(DriverDevmode* pRecord)
{
    i16 sWidth, sLength;
    GetDefaultPaperSize(&sWidth, &sLength);
    pRecord->dmPaperWidth = sWidth;
    pRecord->dmPaperLength = sLength;
}

constexpr int IsIccChoice(u32 ulValue, u32 ulFirstBad)
{
    return ulValue < ulFirstBad || ulValue >= 256;
}

/* Nothing behind dmFields is read before these hold. */
int CheckIdentity(DriverDevmode* pRecord, CheckState* pState)
{
    constexpr auto Rule = [](int nRow) { return RuleNumber(PUBLIC_IDENTITY, nRow); };
    REQUIRE(Rule(1), pRecord->dmDeviceName[0]);
    REQUIRE(Rule(2), pRecord->dmSpecVersion == SPEC_VERSION);
    REQUIRE(Rule(3), VersionFits(pRecord->dmDriverVersion));
    /* A record told as one piece is cut into its two parts. */
    FORCE(RuleNumber(PUBLIC_IDENTITY, 4, 1), pRecord->dmSize != RECORD_SIZE || pRecord->dmDriverExtra != 0,
          (pRecord->dmSize = PUBLIC_BYTES, pRecord->dmDriverExtra = PRIVATE_BYTES));
    REQUIRE(RuleNumber(PUBLIC_IDENTITY, 4, 2), pRecord->dmSize == PUBLIC_BYTES);
    REQUIRE(Rule(5), pRecord->dmDriverExtra == PRIVATE_BYTES);
    REQUIRE(Rule(6), pRecord->dmFields != 0);
    return 1;
}

void MendFieldBits(DriverDevmode* pRecord, const XpiModel* pModel, CheckState* pState)
{
    constexpr auto Rule = [](int nRow) { return RuleNumber(PUBLIC_BITS, nRow); };
    FORCE(Rule(1), pRecord->dmFields & FIELDS_ORIENTATION,
          (pRecord->dmFields |= FIELDS_ORIENTATION, pRecord->dmOrientation = 1));
    FORCE(Rule(2), pRecord->dmFields & FIELDS_PAPERSIZE,
          (pRecord->dmFields |= FIELDS_PAPERSIZE, pRecord->dmPaperSize = GetDefaultPaper()));
    FORCE(Rule(3), pRecord->dmFields & FIELDS_COPIES,
          (pRecord->dmFields |= FIELDS_COPIES, pRecord->dmCopies = 1));
    FORCE(Rule(4), pRecord->dmFields & FIELDS_DEFAULTSOURCE,
          (pRecord->dmFields |= FIELDS_DEFAULTSOURCE,
           pRecord->dmDefaultSource = static_cast<i16>(pModel->sDefaultBin)));
    FORCE(Rule(5), pRecord->dmFields & FIELDS_COLLATE,
          (pRecord->dmFields |= FIELDS_COLLATE, pRecord->dmCollate = 0));
    if (pModel->usColorClass == CLASS_COLOR) {
        FORCE(RuleNumber(PUBLIC_BITS, 6, 1), pRecord->dmFields & FIELDS_COLOR,
              (pRecord->dmFields |= FIELDS_COLOR, pRecord->dmColor = 2));
    } else {
        FORCE(RuleNumber(PUBLIC_BITS, 6, 2), !(pRecord->dmFields & FIELDS_COLOR),
              (pRecord->dmFields &= ~FIELDS_COLOR, pRecord->dmColor = 0));
    }
}

} // namespace

CustomLimits GetCustomLimits(const XpiModel* pModel)
{
    constexpr i16 NO_LIMIT = 32767;
    return {pModel->sMinCustomWidth, pModel->sMaxCustomWidth ? pModel->sMaxCustomWidth : NO_LIMIT,
            pModel->sMinCustomLength, pModel->sMaxCustomLength ? pModel->sMaxCustomLength : NO_LIMIT};
}

void CollectPublicLimits(const XpiModel* pModel, PublicLimits* pLimits)
{
    pLimits->rCustom = GetCustomLimits(pModel);
    pLimits->nMedia = 0;
    while (Row(pModel, pModel->pMediaTypes, pLimits->nMedia)->ulMask) {
        pLimits->nMedia++;
    }
}

void NoteRule(const CheckState* pState, int nRule, int nOutcome)
{
    if (pState->recorder.fnNote) {
        pState->recorder.fnNote(pState->recorder.pContext, nRule, nOutcome);
    }
}

int CountRepair(CheckState* pState, int nRule)
{
    int bLast = ++pState->nRepairs >= REPAIR_LIMIT;
    NoteRule(pState, nRule, bLast ? RULE_LAST : RULE_MENDED);
    return bLast;
}

int CheckPublicFields(DriverDevmode* pRecord, const XpiModel* pModel, const PublicLimits& limits,
                      CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PUBLIC_FIELDS, nRow, nPart); };
    if (!CheckIdentity(pRecord, pState)) {
        return 0;
    }
    MendFieldBits(pRecord, pModel, pState);

    u16 usDefaultColor = pModel->usColorClass == CLASS_COLOR ? 2 : 0;
    MEND(Rule(1), pRecord->dmOrientation == 1 || pRecord->dmOrientation == 2, pRecord->dmOrientation = 1);
    MEND(Rule(2), IsPaperCode(pRecord->dmPaperSize), pRecord->dmPaperSize = GetDefaultPaper());
    /* By the source as it came in, and whatever the paper code says. */
    MEND(Rule(3),
         pRecord->dmDefaultSource == BIN_USER_SIZED ||
             SizeFits(limits.rCustom, pRecord->dmPaperWidth, pRecord->dmPaperLength),
         SetDefaultSize(pRecord));
    MEND(Rule(4), pRecord->dmScale == 100, pRecord->dmScale = 100);
    MEND(Rule(5), pRecord->dmCopies >= 1, pRecord->dmCopies = 1);
    MEND(Rule(6), SourceFits(pModel, limits, pRecord->dmDefaultSource),
         pRecord->dmDefaultSource = static_cast<i16>(pModel->sDefaultBin));
    MEND(Rule(7), HasResolution(pModel, pRecord->dmPrintQuality, pRecord->dmYResolution),
         SetDefaultResolution(pRecord, pModel));
    MEND(Rule(8),
         pModel->usColorClass == CLASS_COLOR ? pRecord->dmColor == 1 || pRecord->dmColor == 2
                                             : pRecord->dmColor == 0,
         pRecord->dmColor = usDefaultColor);
    MEND(Rule(9), pRecord->dmDuplex <= 3, pRecord->dmDuplex = pRecord->dmFields & FIELDS_DUPLEX ? 1 : 0);
    MEND(Rule(10), pRecord->dmTTOption >= 1 && pRecord->dmTTOption <= 4, pRecord->dmTTOption = 2);
    MEND(Rule(11), pRecord->dmCollate <= 1, pRecord->dmCollate = 0);
    MEND(Rule(12), pRecord->dmFormName[0] == 0,
         std::memset(pRecord->dmFormName, 0, sizeof pRecord->dmFormName));
    MEND(Rule(13), pRecord->dmLogPixels == 0, pRecord->dmLogPixels = 0);
    MEND(Rule(14, 1), pRecord->dmBitsPerPel == 0, pRecord->dmBitsPerPel = 0);
    MEND(Rule(14, 2), pRecord->dmPelsWidth == 0, pRecord->dmPelsWidth = 0);
    MEND(Rule(14, 3), pRecord->dmPelsHeight == 0, pRecord->dmPelsHeight = 0);
    MEND(Rule(14, 4), pRecord->dmDisplayFlags == 0, pRecord->dmDisplayFlags = 0);
    MEND(Rule(14, 5), pRecord->dmDisplayFrequency == 0, pRecord->dmDisplayFrequency = 0);
    MEND(Rule(15), IsIccChoice(pRecord->dmICMMethod, 5), pRecord->dmICMMethod = FieldsBit(pRecord, 23));
    MEND(Rule(16), IsIccChoice(pRecord->dmICMIntent, 5), pRecord->dmICMIntent = FieldsBit(pRecord, 24));
    MEND(Rule(17), IsIccChoice(pRecord->dmMediaType, 4), pRecord->dmMediaType = FieldsBit(pRecord, 25));
    MEND(Rule(18, 1), pRecord->dmDitherType == 0, pRecord->dmDitherType = 0);
    MEND(Rule(18, 2), pRecord->dmReserved1 == 0, pRecord->dmReserved1 = 0);
    MEND(Rule(18, 3), pRecord->dmReserved2 == 0, pRecord->dmReserved2 = 0);
    MEND(Rule(18, 4), pRecord->dmPanningWidth == 0, pRecord->dmPanningWidth = 0);
    MEND(Rule(18, 5), pRecord->dmPanningHeight == 0, pRecord->dmPanningHeight = 0);
    return 1;
}

int ValidatePublicPartNoted(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel,
                            RuleRecorder recorder)
{
    OwnedModel pOwn;
    if (!pModel) {
        pOwn = LoadPrinterModel(call);
        pModel = pOwn.get();
    }
    if (!HasBody(pModel)) {
        return 0;
    }
    PublicLimits limits;
    CollectPublicLimits(pModel, &limits);
    CheckState state = {0, recorder};
    return CheckPublicFields(pRecord, pModel, limits, &state);
}

int ValidatePublicPart(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel)
{
    return ValidatePublicPartNoted(call, pRecord, pModel, {nullptr, nullptr});
}
