#include "sheet/conflicts.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/wide.h"
#include "description/paper.h"
#include "entry/pjl_commands.h"
#include "settings/counted_row.h"

namespace {

constexpr i32 BIN_LIMIT = 32;
constexpr i32 FEATURE_LIMIT = 32;
constexpr u16 DUPLEX_NONE = 1; /* of dmDuplex; 2 and 3 print both sides */

/* What a kind of sheet is printed on. */
struct Sheet {
    i32 lPaper;
    i16 sWidth, sLength; /* tenths of a millimetre, of a user-sized paper */
    u16 usSource;
    i16 sMedia; /* 1-based */
    u16 usDuplex;
};

/* Where the record keeps what belongs to a kind of sheet, as offsets into the private part, since a pointer to a member
   of a packed structure would be read as if it were aligned. */
struct SheetFields {
    u16 usSwitch;          /* u16: not 0 when the job prints such sheets */
    u16 usPaper;           /* u16 */
    u16 usWidth, usLength; /* i16, the size of a user-sized paper */
    u16 usBin, usMedia;    /* i16 */
    u16 usDuplex;          /* u16: not 0 when the sheets are printed as the job is; NO_FIELD: always */
};
constexpr u16 NO_FIELD = 0xFFFF;
#define AT(field) static_cast<u16>(offsetof(PrivateDevmode, field))
constexpr SheetFields aSheetFields[SHEET_KINDS] = {
    {}, /* the body is the job itself, in the public part */
    {AT(sFrontCover), AT(sFrontPaperSize), AT(sFrontWidth), AT(sFrontLength), AT(sFrontBin),
     AT(sFrontMediaIndex), AT(sFrontDuplex)},
    {AT(sBackCover), AT(sBackPaperSize), AT(sBackWidth), AT(sBackLength), AT(sBackBin), AT(sBackMediaIndex),
     AT(sBackDuplex)},
    {AT(sSeparators), AT(sSeparatorPaper), AT(sSeparatorWidth), AT(sSeparatorLength), AT(sSeparatorBin),
     AT(sSeparatorMediaIndex), NO_FIELD},
    {AT(sInsertPages), AT(sInsertPaper), AT(sInsertWidth), AT(sInsertLength), AT(sInsertPageBin),
     AT(sInsertPageMediaIndex), NO_FIELD},
};
#undef AT

u16 FieldAt(const PrivateDevmode& part, u16 usAt)
{
    u16 usValue;
    std::memcpy(&usValue, reinterpret_cast<const u8*>(&part) + usAt, sizeof usValue);
    return usValue;
}

/* The duplex of a kind of sheet: that of the job, or none. Inserts follow the job only where they are printed on. */
u16 DuplexOfSheet(const DriverDevmode* pRecord, SheetKind kind)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    u16 usJob = pRecord->dmDuplex, usField = aSheetFields[kind].usDuplex;
    if (kind == SHEET_INSERT) {
        u16 usInsert = part.sInsertPages;
        return (usInsert == 3 || usInsert == 5) && (usJob == 2 || usJob == 3) ? usJob : DUPLEX_NONE;
    }
    return usField == NO_FIELD || FieldAt(part, usField) ? usJob : DUPLEX_NONE;
}

Sheet SheetOfJob(const DriverDevmode* pRecord)
{
    return {pRecord->dmPaperSize,
            pRecord->dmPaperWidth,
            pRecord->dmPaperLength,
            static_cast<u16>(pRecord->dmDefaultSource),
            pRecord->rPrivate.sMediaTypeIndex,
            pRecord->dmDuplex};
}

/* 1 when the job prints sheets of this kind. */
int DescribeSheet(const DriverDevmode* pRecord, SheetKind kind, Sheet* pSheet)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    int bOn = 1;
    *pSheet = SheetOfJob(pRecord);
    if (kind != SHEET_BODY) {
        const SheetFields& fields = aSheetFields[kind];
        u16 usPaper = FieldAt(part, fields.usPaper);
        bOn = FieldAt(part, fields.usSwitch) != 0;
        pSheet->usSource = FieldAt(part, fields.usBin);
        pSheet->sMedia = static_cast<i16>(FieldAt(part, fields.usMedia));
        pSheet->usDuplex = DuplexOfSheet(pRecord, kind);
        if (usPaper != PAPER_OF_JOB) {
            pSheet->lPaper = static_cast<i16>(usPaper);
            pSheet->sWidth = static_cast<i16>(FieldAt(part, fields.usWidth));
            pSheet->sLength = static_cast<i16>(FieldAt(part, fields.usLength));
        }
    }
    /* What leaves the printer is the paper that the page is scaled to. */
    u16 usScale = part.sScale;
    if (usScale == SCALE_FIT_CENTRED || usScale == SCALE_TARGET || usScale == SCALE_FIT ||
        usScale == SCALE_TARGET_CENTRED) {
        pSheet->lPaper = static_cast<i16>(part.sScaleTarget);
        pSheet->sWidth = part.sTargetWidth;
        pSheet->sLength = part.sTargetLength;
    }
    return bOn;
}

/* The record and what rules are matched against, found once for a sheet. */
struct ConflictTest {
    PrinterCall* pCall;
    const DriverDevmode* pRecord;
    const XpiModel* pModel;
    u32 ulInstalled; /* installed device options */
    u32 ulOutput;
    i32 lKnownEnd;
    Sheet rSheet;
    u32 ulInput, ulMedia;
    int bSized; /* the size of the paper is known */
};

/* Only the first rows of the table count. */
u32 OutputMask(const XpiModel* pModel, u16 usCmdId)
{
    const OutputBinRow* pRow = FindOutputBin(pModel, usCmdId);
    return pRow && pRow - pModel->pOutputBins < BIN_LIMIT ? pRow->ulMask : 0;
}

/* A medium as source is no bin. */
u32 InputMask(const XpiModel* pModel, u16 usSource)
{
    const BinRow* pRow = usSource < FIRST_MEDIA_SOURCE ? FindBin(pModel, usSource) : nullptr;
    return pRow ? pRow->ulMask : 0;
}

u32 MediaMask(const XpiModel* pModel, i16 sMedia)
{
    const MediaRow* pRow = CountedRow(pModel, pModel->pMediaTypes, sMedia - 1);
    return pRow ? pRow->ulMask : 0;
}

/* The size is asked for when the first rule wants it: most rules name a paper that the sheet has not. */
void KnowSize(ConflictTest* pTest)
{
    Sheet& sheet = pTest->rSheet;
    if (!pTest->bSized && sheet.lPaper != USER_SIZED_PAPER) {
        GetPaperSize(*pTest->pCall, pTest->pModel, static_cast<i16>(sheet.lPaper), &sheet.sWidth,
                     &sheet.sLength);
    }
    pTest->bSized = 1;
}

int IsAnyPaper(const ConstraintRow* pRule)
{
    for (u8 bBits : pRule->bPapers) {
        if (bBits) {
            return 0;
        }
    }
    return 1;
}

int PaperMatches(ConflictTest* pTest, const ConstraintRow* pRule)
{
    Sheet& sheet = pTest->rSheet;
    i32 lBit = sheet.lPaper < USER_SIZED_PAPER ? sheet.lPaper : 0;
    if (!IsBitSet(pRule->bPapers, sizeof pRule->bPapers * 8, lBit)) {
        return IsAnyPaper(pRule);
    }
    if (sheet.lPaper < USER_SIZED_PAPER) {
        return 1;
    }
    KnowSize(pTest);
    if (sheet.lPaper < pTest->lKnownEnd) {
        return sheet.sWidth >= pRule->sMinWidth && sheet.sWidth <= pRule->sMaxWidth &&
               sheet.sLength >= pRule->sMinLength && sheet.sLength <= pRule->sMaxLength;
    }
    return sheet.sWidth == pRule->sMinWidth && sheet.sWidth == pRule->sMaxWidth &&
           sheet.sLength == pRule->sMinLength && sheet.sLength == pRule->sMaxLength;
}

/* 1 when the chosen value of a feature does something: a value row with a command, or typed text that can go to the
   printer. */
int IsFeatureOn(const ConflictTest& test, i32 nFeature, i16 sFirstValue)
{
    const PrivateDevmode& part = test.pRecord->rPrivate;
    i16 sChosen = part.sPJLValueIndex[nFeature];
    if (sChosen >= 0) {
        return PjlValueRow(test.pModel, sFirstValue + sChosen)->usCmdId != 0;
    }
    char cTyped[TYPED_BYTES];
    ReadTypedValue(part, sChosen, cTyped);
    return cTyped[0] != 0;
}

int OptionsMatch(const ConflictTest& test, u32 ulOptions)
{
    if (ulOptions & OPTION_DUPLEX) {
        u16 usDuplex = test.rSheet.usDuplex;
        if (!(test.ulInstalled & OPTION_DUPLEX) || (usDuplex != 2 && usDuplex != 3)) {
            return 0;
        }
    }
    if (!(ulOptions & ~OPTION_DUPLEX)) {
        return 1;
    }
    u32 ulShared = ulOptions & test.ulInstalled & ~OPTION_DUPLEX;
    if (!ulShared || !test.pModel->pPjlFeatures) {
        return 0;
    }
    for (i32 i = 0; i < FEATURE_LIMIT; i++) {
        const FeatureRow* pRow = Row(test.pModel, test.pModel->pPjlFeatures, i);
        if (!pRow->usNameId) {
            break;
        }
        if ((pRow->ulMask & ulOptions & test.ulInstalled) && !IsFeatureOn(test, i, pRow->sFirstValue)) {
            return 0;
        }
    }
    return 1;
}

int RuleHits(ConflictTest* pTest, const ConstraintRow* pRule)
{
    return (!pRule->ulInputs || (pRule->ulInputs & pTest->ulInput)) &&
           (!pRule->ulOutputs || (pRule->ulOutputs & pTest->ulOutput)) &&
           (!pRule->ulMedia || (pRule->ulMedia & pTest->ulMedia)) && PaperMatches(pTest, pRule) &&
           OptionsMatch(*pTest, pRule->ulOptions);
}

} // namespace

int FindConflict(PrinterCall& call, const DriverDevmode* pRecord, const DeviceInfo* pInfo,
                 const XpiModel* pModel, i32 lKnownEnd, Conflict* pConflict)
{
    if (!pModel || !pModel->pConstraints) {
        return 0;
    }
    ConflictTest test = {&call,
                         pRecord,
                         pModel,
                         pInfo->ulOptions,
                         OutputMask(pModel, pRecord->rPrivate.sOutputPJLsid),
                         lKnownEnd,
                         {},
                         0,
                         0,
                         0};
    for (int nKind = SHEET_BODY; nKind < SHEET_KINDS; nKind++) {
        SheetKind kind = static_cast<SheetKind>(nKind);
        if (!DescribeSheet(pRecord, kind, &test.rSheet)) {
            continue;
        }
        test.ulInput = InputMask(pModel, test.rSheet.usSource);
        test.ulMedia = MediaMask(pModel, test.rSheet.sMedia);
        test.bSized = 0;
        for (i32 i = 0;; i++) {
            const ConstraintRow* pRule = Row(pModel, pModel->pConstraints, i);
            if (!pRule->usUsed) {
                break;
            }
            if (RuleHits(&test, pRule)) {
                *pConflict = {kind, i, static_cast<i16>(pRule->sMessageId)};
                return 1;
            }
        }
    }
    return 0;
}
