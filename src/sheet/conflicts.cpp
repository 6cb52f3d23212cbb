#include "sheet/conflicts.h"

#include "base/arithmetic.h"
#include "base/wide.h"
#include "description/paper.h"
#include "entry/pjl_commands.h"
#include "settings/counted_row.h"

namespace {

constexpr u16 PAPER_OF_JOB = 0xFFFF;
constexpr i32 USER_SIZED = 256;
constexpr i32 FIRST_SIZED_CODE =
    256; /* from here on a rule's size range counts, and bit 0 stands for the code */
constexpr i32 FIRST_MEDIA_SOURCE = 2000;
constexpr i32 BIN_LIMIT = 32;
constexpr i32 FEATURE_LIMIT = 32;
constexpr u32 OPTION_DUPLEX = 1;

/* What a kind of sheet is printed on. */
struct Sheet {
    i32 lPaper;
    i16 sWidth, sLength; /* tenths of a millimetre, of a user-sized paper */
    u16 usSource;
    i16 sMedia; /* 1-based */
    u16 usDuplex;
};

/* Chooses a sheet's own paper, or that of the job. */
void ChoosePaper(Sheet* pSheet, u16 usPaper, i16 sWidth, i16 sLength, const DriverDevmode* pRecord)
{
    if (usPaper == PAPER_OF_JOB) {
        pSheet->lPaper = pRecord->dmPaperSize;
        pSheet->sWidth = pRecord->dmPaperWidth;
        pSheet->sLength = pRecord->dmPaperLength;
    } else {
        pSheet->lPaper = static_cast<i16>(usPaper);
        pSheet->sWidth = sWidth;
        pSheet->sLength = sLength;
    }
}

/* 1 when the job prints sheets of this kind. */
int DescribeSheet(const DriverDevmode* pRecord, SheetKind kind, Sheet* pSheet)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    u16 usDuplex = pRecord->dmDuplex;
    u16 usInsert = part.sInsertPages;
    int bOn = 1;
    switch (kind) {
    case SHEET_FRONT_COVER:
        bOn = part.sFrontCover != 0;
        *pSheet = {0,
                   0,
                   0,
                   static_cast<u16>(part.sFrontBin),
                   part.sFrontMediaIndex,
                   part.sFrontDuplex ? usDuplex : u16{1}};
        ChoosePaper(pSheet, part.sFrontPaperSize, part.sFrontWidth, part.sFrontLength, pRecord);
        break;
    case SHEET_BACK_COVER:
        bOn = part.sBackCover != 0;
        *pSheet = {0,
                   0,
                   0,
                   static_cast<u16>(part.sBackBin),
                   part.sBackMediaIndex,
                   part.sBackDuplex ? usDuplex : u16{1}};
        ChoosePaper(pSheet, part.sBackPaperSize, part.sBackWidth, part.sBackLength, pRecord);
        break;
    case SHEET_SEPARATOR:
        bOn = part.sSeparators != 0;
        *pSheet = {0, 0, 0, static_cast<u16>(part.sSeparatorBin), part.sSeparatorMediaIndex, usDuplex};
        ChoosePaper(pSheet, part.sSeparatorPaper, part.sSeparatorWidth, part.sSeparatorLength, pRecord);
        break;
    case SHEET_INSERT:
        bOn = usInsert != 0;
        *pSheet = {0,
                   0,
                   0,
                   static_cast<u16>(part.sInsertPageBin),
                   part.sInsertPageMediaIndex,
                   (usInsert == 3 || usInsert == 5) && (usDuplex == 2 || usDuplex == 3) ? usDuplex : u16{1}};
        ChoosePaper(pSheet, part.sInsertPaper, part.sInsertWidth, part.sInsertLength, pRecord);
        break;
    default:
        *pSheet = {0, 0, 0, static_cast<u16>(pRecord->dmDefaultSource), part.sMediaTypeIndex, usDuplex};
        ChoosePaper(pSheet, PAPER_OF_JOB, 0, 0, pRecord);
        break;
    }
    /* What leaves the printer is the paper that the page is scaled to. */
    u16 usScale = part.sScale;
    if (usScale == 1 || usScale == 4 || usScale == 33 || usScale == 68) {
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
    if (!pTest->bSized && sheet.lPaper != USER_SIZED) {
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
    i32 lBit = sheet.lPaper < FIRST_SIZED_CODE ? sheet.lPaper : 0;
    if (!IsBitSet(pRule->bPapers, sizeof pRule->bPapers * 8, lBit)) {
        return IsAnyPaper(pRule);
    }
    if (sheet.lPaper < FIRST_SIZED_CODE) {
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
