/* The groups of the private check: watermark, covers, colour slices, option slots, exception region. */
#include "settings/check_core.h"

#include <cstring>

namespace {

constexpr int FEATURE_ROWS = 32; /* slots of sPJLValueIndex; rows of a model beyond them are not looked at */
constexpr int OPTION_SLOTS = 4;
constexpr i32 TYPED_FIRST = -8; /* typed values are -8 to -1 */

/* A cover page, by value: front and back are checked by one routine. */
struct CoverValues {
    u16 sCover;
    i16 sBin;
    u16 sPaperSize;
    i16 sWidth, sLength;
    u16 sPps; /* 1 on the back, which has none */
    u16 sDuplex;
    i16 sMediaIndex;
};

/* store writes the values back into the record: at each repair, so that the recorder finds it there. */
template <class Store>
int CheckCover(CoverValues cover, int nRow, const PrivateLimits& limits, CheckState* pState, Store store)
{
    const auto Rule = [nRow](int nPart) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    u16 usPps = cover.sPps;
    MEND(Rule(1), cover.sBin > 0 && (cover.sBin < 16 || cover.sBin > 255),
         (cover.sBin = BIN_AUTO, store(cover)));
    MEND(Rule(2), PaperFits(limits.rCustom, cover.sPaperSize, cover.sWidth, cover.sLength),
         (cover.sCover = 0, store(cover)));
    MEND(Rule(3),
         usPps == 1 || usPps == 2 || usPps == 4 || usPps == 6 || usPps == 8 || usPps == 9 || usPps == 16,
         (cover.sPps = 1, store(cover)));
    MEND(Rule(4), cover.sDuplex <= 1, (cover.sDuplex = 1, store(cover)));
    MEND(Rule(5), cover.sMediaIndex >= limits.lMediaFirst && cover.sMediaIndex <= limits.lMediaCount,
         (cover.sCover = 0, store(cover)));
    return 1;
}

int IsEnded(const WCHAR* wcText, size_t cb)
{
    WCHAR wcLast;
    std::memcpy(&wcLast, reinterpret_cast<const u8*>(wcText) + cb - sizeof wcLast, sizeof wcLast);
    return wcLast == 0;
}

/* Clears a text of the watermark and the watermark with it. */
void DropText(PrivateDevmode* pPrivate, WCHAR* wcText, size_t cb)
{
    std::memset(static_cast<void*>(wcText), 0, cb);
    pPrivate->ulWMType = 0;
}

int CheckTextWatermark(PrivateDevmode* pPrivate, CheckState* pState)
{
    constexpr auto Rule = [](int nPart) { return RuleNumber(PRIVATE_FIELDS, 17, nPart); };
    MEND(Rule(31), pPrivate->sWMCharSet >= 0, pPrivate->ulWMType = 0);
    MEND(Rule(32), IsEnded(pPrivate->wcWMString, sizeof pPrivate->wcWMString),
         DropText(pPrivate, pPrivate->wcWMString, sizeof pPrivate->wcWMString));
    MEND(Rule(33), IsEnded(pPrivate->wcWMFace, sizeof pPrivate->wcWMFace),
         DropText(pPrivate, pPrivate->wcWMFace, sizeof pPrivate->wcWMFace));
    MEND(Rule(34), pPrivate->ulWMPtSize != 0, pPrivate->ulWMType = 0);
    MEND(Rule(35), pPrivate->ulWMAngle < 3600, pPrivate->ulWMType = 0);
    MEND(Rule(36), pPrivate->ulWMColor <= 0xFFFFFF, pPrivate->ulWMType = 0);
    MEND(Rule(37), pPrivate->sWMBold <= 1, pPrivate->ulWMType = 0);
    MEND(Rule(38), pPrivate->sWMItalic <= 1, pPrivate->ulWMType = 0);
    return 1;
}

/* Byte nAt of the record's own count, with room for what stands there: the region walk reads no further than
   a few bytes behind the region. */
u8* RecordByte(PrivateDevmode* pPrivate, u32 nAt)
{
    return reinterpret_cast<u8*>(pPrivate) + (nAt - PUBLIC_BYTES);
}

void ClearCounts(PrivateDevmode* pPrivate)
{
    pPrivate->bStyleCount = 0;
    pPrivate->bBlockCount = 0;
}

/* 1 when value sSlot of the list that begins at row lFirst is there: no row up to it ends the list. */
template <class RowOf> int ListHas(i16 sSlot, i32 lFirst, RowOf rowOf)
{
    if (sSlot < 0 || lFirst < 0) {
        return 0;
    }
    for (i32 i = 0; i <= sSlot; i++) {
        if (!rowOf(lFirst + i)->usNameId) {
            return 0;
        }
    }
    return 1;
}

} // namespace

int CheckWatermark(PrivateDevmode* pPrivate, CheckState* pState)
{
    constexpr auto Rule = [](int nPart) { return RuleNumber(PRIVATE_FIELDS, 17, nPart); };
    constexpr size_t NAME_BYTES = sizeof pPrivate->wcWMOverlayName;
    u32 ulType = pPrivate->ulWMType; /* the kind of tests stays though a failing one ends the watermark */
    MEND(Rule(1), pPrivate->sWMOnePage <= 1, pPrivate->sWMOnePage = 0);
    if (ulType & WM_BITMAP) {
        MEND(Rule(11), pPrivate->sWMResolution > 0, pPrivate->ulWMType = 0);
        MEND(Rule(12), IsEnded(pPrivate->wcWMOverlayName, NAME_BYTES),
             DropText(pPrivate, pPrivate->wcWMOverlayName, NAME_BYTES));
        MEND(Rule(13), pPrivate->ulWMWidth > 0, pPrivate->ulWMType = 0);
        MEND(Rule(14), pPrivate->ulWMLength > 0, pPrivate->ulWMType = 0);
    } else if (ulType & WM_FILE) {
        MEND(Rule(21), IsEnded(pPrivate->wcWMOverlayName, NAME_BYTES),
             DropText(pPrivate, pPrivate->wcWMOverlayName, NAME_BYTES));
    } else if (ulType & WM_TEXT && !CheckTextWatermark(pPrivate, pState)) {
        return 0;
    }
    MEND(Rule(41), pPrivate->usWMPlacement < 10, pPrivate->usWMPlacement = 0);
    return 1;
}

int CheckFrontCover(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    CoverValues cover = {pPrivate->sFrontCover,  pPrivate->sFrontBin,       pPrivate->sFrontPaperSize,
                         pPrivate->sFrontWidth,  pPrivate->sFrontLength,    pPrivate->sFrontPPS,
                         pPrivate->sFrontDuplex, pPrivate->sFrontMediaIndex};
    return CheckCover(cover, 19, limits, pState, [pPrivate](const CoverValues& mended) {
        pPrivate->sFrontCover = mended.sCover;
        pPrivate->sFrontBin = mended.sBin;
        pPrivate->sFrontPPS = mended.sPps;
        pPrivate->sFrontDuplex = mended.sDuplex;
    });
}

int CheckBackCover(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    CoverValues cover = {pPrivate->sBackCover,  pPrivate->sBackBin,       pPrivate->sBackPaperSize,
                         pPrivate->sBackWidth,  pPrivate->sBackLength,    1,
                         pPrivate->sBackDuplex, pPrivate->sBackMediaIndex};
    return CheckCover(cover, 21, limits, pState, [pPrivate](const CoverValues& mended) {
        pPrivate->sBackCover = mended.sCover;
        pPrivate->sBackBin = mended.sBin;
        pPrivate->sBackDuplex = mended.sDuplex;
    });
}

int CheckColorSlices(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    constexpr size_t FIRST = offsetof(PrivateDevmode, sTextHdrOffset);
    constexpr int PAIRS = 6;
    static_assert(offsetof(PrivateDevmode, sGraphicsLength) == FIRST + (2 * PAIRS - 1) * sizeof(i16));
    const auto isWithin = [&limits](i16 sNumber) { return sNumber >= 0 && sNumber <= limits.lColorDataSize; };
    u8* pPairs = reinterpret_cast<u8*>(pPrivate) + FIRST;
    for (int i = 0; i < PAIRS; i++) {
        i16 asPair[2]; /* offset and length; both are judged by what came in, though a bad one clears both */
        u8* pPair = pPairs + static_cast<size_t>(i) * sizeof asPair;
        std::memcpy(asPair, pPair, sizeof asPair);
        const auto Rule = [i](int nHalf) { return RuleNumber(PRIVATE_FIELDS, 40, 2 * i + nHalf); };
        MEND(Rule(1), isWithin(asPair[0]), std::memset(pPair, 0, sizeof asPair));
        MEND(Rule(2), isWithin(asPair[1]), std::memset(pPair, 0, sizeof asPair));
    }
    return 1;
}

int CheckColorCommands(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    constexpr int COMMANDS = static_cast<int>(sizeof pPrivate->ColorCommand / sizeof(ColorCommandRow));
    for (int i = 0; i < COMMANDS; i++) {
        ColorCommandRow row = pPrivate->ColorCommand[i];
        i32 lEnd = row.sColorCmdOffset + (row.sColorCmdLength & COMMAND_LENGTH);
        MEND(RuleNumber(PRIVATE_FIELDS, 50), row.sColorCmdOffset >= 0 && lEnd <= limits.lColorDataSize,
             pPrivate->ColorCommand[i] = {});
    }
    return 1;
}

int CheckFeatureSlots(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState)
{
    constexpr auto Rule = [](int nPart) { return RuleNumber(PRIVATE_FIELDS, 51, nPart); };
    const auto valueRow = [pModel](i32 nIndex) { return PjlValueRow(pModel, nIndex); };
    for (int i = 0; i < FEATURE_ROWS; i++) {
        const FeatureRow* pRow = Row(pModel, pModel->pPjlFeatures, i);
        if (!pRow->usNameId) {
            break;
        }
        i16 sSlot = pPrivate->sPJLValueIndex[i];
        if (ListHas(0, pRow->sFirstValue, valueRow)) {
            MEND(Rule(1), ListHas(sSlot, pRow->sFirstValue, valueRow), pPrivate->sPJLValueIndex[i] = 0);
        } else {
            MEND(Rule(2), sSlot >= TYPED_FIRST && sSlot <= -1, pPrivate->sPJLValueIndex[i] = -1);
        }
    }
    return 1;
}

int ValidateOptionSlots(const XpiModel* pModel, const ColorOptionRow* pTable, i16 asValues[4])
{
    int nRepairs = 0;
    int bInTable = pTable != nullptr;
    const auto valueRow = [pModel](i32 nIndex) { return Row(pModel, pModel->pOptionValues, nIndex); };
    for (int i = 0; i < OPTION_SLOTS && nRepairs < REPAIR_LIMIT; i++) {
        const ColorOptionRow* pRow = Row(pModel, pTable, i);
        bInTable = bInTable && pRow->usNameId;
        if (bInTable ? !ListHas(asValues[i], pRow->sFirstValue, valueRow) : asValues[i] != 0) {
            asValues[i] = 0;
            nRepairs++;
        }
    }
    return nRepairs;
}

int CheckColorOptions(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState)
{
    const struct {
        int nRow;
        size_t nAt;
        const ColorOptionRow* pTable;
    } aArrays[] = {{59, offsetof(PrivateDevmode, sTextOption), pModel->pTextOptions},
                   {60, offsetof(PrivateDevmode, sGraphicsOption), pModel->pGraphicsOptions},
                   {61, offsetof(PrivateDevmode, sImageOption), pModel->pImageOptions},
                   {62, offsetof(PrivateDevmode, sGeneralOption), pModel->pGeneralOptions}};
    for (const auto& array : aArrays) {
        int nRule = RuleNumber(PRIVATE_FIELDS, array.nRow);
        if (!RuleIsOn(nRule)) {
            continue;
        }
        i16 asValues[OPTION_SLOTS];
        u8* pValues = reinterpret_cast<u8*>(pPrivate) + array.nAt;
        std::memcpy(asValues, pValues, sizeof asValues);
        int nRepairs = ValidateOptionSlots(pModel, array.pTable, asValues);
        std::memcpy(pValues, asValues, sizeof asValues);
        for (int bLast = 0; nRepairs > 0; nRepairs--) {
            bLast = CountRepair(pState, nRule);
            if (bLast) {
                return 0;
            }
        }
    }
    return 1;
}

int CheckExceptionRegion(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState)
{
    constexpr auto Rule = [](int nPart) { return RuleNumber(PRIVATE_FIELDS, 63, nPart); };
    constexpr u32 FIRST_STYLE = 2982, REGION_END = 3716;
    constexpr u8 MOST_RECORDS = 3;
    if (pModel->usLanguage != KIND_IMAGE) {
        MEND(Rule(7), pPrivate->sInsertPageList[8] == 0, pPrivate->sInsertPageList[8] = 0);
        return 1;
    }
    u8 bStyles = pPrivate->bStyleCount, bBlocks = pPrivate->bBlockCount; /* both as they came in */
    MEND(Rule(1), bStyles <= MOST_RECORDS, ClearCounts(pPrivate));
    MEND(Rule(2), bBlocks <= MOST_RECORDS, ClearCounts(pPrivate));
    u32 nAt = FIRST_STYLE; /* never above REGION_END where a record is read */
    for (u8 i = 0; i < pPrivate->bStyleCount && i < MOST_RECORDS; i++) {
        u16 usSize;
        std::memcpy(&usSize, RecordByte(pPrivate, nAt), sizeof usSize);
        MEND(Rule(3), *RecordByte(pPrivate, nAt + 2) < 7, *RecordByte(pPrivate, nAt + 2) = 0);
        nAt += usSize;
        if (nAt > REGION_END) {
            MEND(Rule(4), 0, ClearCounts(pPrivate));
            break;
        }
    }
    for (u8 i = 0; i < pPrivate->bBlockCount && i < MOST_RECORDS; i++) {
        MEND(Rule(5), *RecordByte(pPrivate, nAt) <= 3, *RecordByte(pPrivate, nAt) = 0);
        nAt += 2u + 2u * *RecordByte(pPrivate, nAt + 1);
        if (nAt > REGION_END) {
            MEND(Rule(6), 0, ClearCounts(pPrivate));
            break;
        }
    }
    return 1;
}
