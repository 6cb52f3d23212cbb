/* Checks and repairs the private part of a record: the shell, the identity and the fields in their order. The
   order is part of the behaviour, since a repair can decide a later test. */
#include "settings/check_core.h"

#include <cstring>
#include <type_traits>

#include "description/driver_files.h"

namespace {

constexpr int XPI_NAME_CHARS = static_cast<int>(sizeof(PrivateDevmode::tcXPIName) / sizeof(WCHAR));

constexpr u16 aScaleModes[] = {SCALE_NONE, SCALE_FIT_CENTRED,  SCALE_ZOOM,           SCALE_TARGET,
                               SCALE_FIT,  SCALE_ZOOM_CENTRED, SCALE_TARGET_CENTRED, SCALE_KEPT};
constexpr i32 aPagesPerSheet[] = {1, 2, 4, 6, 8, 9, 12, 16, 25};
constexpr u32 aWatermarkTypes[] = {0, 1, 2, 5, 6, 17, 21, 32, 36};
constexpr u16 PAGE_ORDER_BITS = 0x13;

template <class T, size_t n> int IsOneOf(const T (&aSet)[n], T value)
{
    for (T one : aSet) {
        if (one == value) {
            return 1;
        }
    }
    return 0;
}

/* From the last backslash on; the whole text without one. */
const WCHAR* FileName(const WCHAR* tcPath)
{
    const WCHAR* tcName = BehindLast(tcPath, TEXT('\\'));
    return tcName == tcPath ? tcPath : tcName - 1;
}

/* The record is one of this build's layout and of this printer; the path follows a driver that was moved. */
int CheckIdentity(PrivateDevmode* pPrivate, const XpiModel* pModel, const PrivateLimits& limits,
                  CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_IDENTITY, nRow, nPart); };
    REQUIRE(Rule(1), pPrivate->ulVersion == RECORD_STAMP);
    REQUIRE(Rule(2, 1), pPrivate->sOverlayDirOffset == OVERLAY_DIR_OFFSET);
    REQUIRE(Rule(2, 2), pPrivate->sGenColorCmdOffset == COLOR_COMMAND_OFFSET);
    i16 sException = pPrivate->sExceptionInfoOffset;
    REQUIRE(Rule(3), sException == 0 || sException == EXCEPTION_OFFSET ||
                         (sException == -EXCEPTION_OFFSET && pModel->usLanguage != KIND_IMAGE));
    REQUIRE(Rule(4, 1), pPrivate->OEMData.ulOEMOffset == OEM_OFFSET);
    REQUIRE(Rule(4, 2), pPrivate->OEMData.ulOEMSize == OEM_SIZE);
    WCHAR tcName[XPI_NAME_CHARS];
    std::memcpy(tcName, pPrivate->tcXPIName, sizeof tcName);
    REQUIRE(Rule(4, 3), tcName[XPI_NAME_CHARS - 1] == 0);
    tcName[XPI_NAME_CHARS - 1] = 0;
    REQUIRE(Rule(5), SameWide(FileName(limits.tcXpiPath), FileName(tcName)));
    if (!SameWide(limits.tcXpiPath, tcName)) {
        std::memset(tcName, 0, sizeof tcName);
        CopyWide(tcName, XPI_NAME_CHARS, limits.tcXpiPath);
        FORCE(Rule(6), 0, std::memcpy(pPrivate->tcXPIName, tcName, sizeof tcName));
    }
    REQUIRE(Rule(7), pPrivate->tcOverlayDir[sizeof pPrivate->tcOverlayDir / sizeof(WCHAR) - 1] == 0);
    return 1;
}

int ScaleTargetFits(const PrivateDevmode* pPrivate, const PrivateLimits& limits)
{
    switch (pPrivate->sScale) {
    case SCALE_NONE: return 1;
    case SCALE_ZOOM:
    case SCALE_ZOOM_CENTRED: return pPrivate->sScaleTarget >= 20 && pPrivate->sScaleTarget <= 500;
    default:
        return PaperFits(limits.rCustom, pPrivate->sScaleTarget, pPrivate->sTargetWidth,
                         pPrivate->sTargetLength);
    }
}

int MarginsFit(const PrivateDevmode* pPrivate)
{
    return pPrivate->sMargins != 2 || (pPrivate->sMarginLeft >= 0 && pPrivate->sMarginTop >= 0 &&
                                       pPrivate->sMarginRight >= 0 && pPrivate->sMarginBottom >= 0);
}

int OutputBinFits(const PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    u16 usBin = pPrivate->sOutputPJLsid;
    if (!pModel->pOutputBins) {
        return usBin == 0;
    }
    return static_cast<i16>(usBin) >= 0 && FindOutputBin(pModel, usBin);
}

/* The border that goes with a resolution; other resolutions keep what they have. */
void SetPageBorder(PrivateDevmode* pPrivate, CheckState* pState)
{
    constexpr struct {
        u32 ulResolution;
        i16 sWidth, sLength;
    } aBorders[] = {{300, 3, 59}, {600, 6, 118}, {1200, 12, 236}};
    for (const auto& border : aBorders) {
        if (pPrivate->ulResolution == border.ulResolution) {
            FORCE(RuleNumber(PRIVATE_FIELDS, 15, 5),
                  pPrivate->sPageBorderWidth == border.sWidth &&
                      pPrivate->sPageBorderLength == border.sLength,
                  (pPrivate->sPageBorderWidth = border.sWidth, pPrivate->sPageBorderLength = border.sLength));
        }
    }
}

int CheckFonts(PrivateDevmode* pPrivate, const XpiModel* pModel, const PrivateLimits& limits,
               CheckState* pState)
{
    constexpr auto Rule = [](int nRow) { return RuleNumber(PRIVATE_FIELDS, nRow); };
    int bHalftone = pModel->usLanguage == KIND_PCL5 && pModel->usColorClass == CLASS_COLOR;
    u16 usFonts = static_cast<u16>(pModel->sResFontCount);
    MEND(Rule(1), pPrivate->ulResFontOffset <= limits.ulFontFileSize,
         (pPrivate->ulNumResFonts = 0, pPrivate->ulResFontOffset = 0));
    MEND(Rule(2), pPrivate->sBitmapFonts == 0 || pPrivate->sBitmapFonts == 32767, pPrivate->sBitmapFonts = 0);
    MEND(Rule(3), pPrivate->sDoNotReportFonts <= 1, pPrivate->sDoNotReportFonts = 0);
    MEND(Rule(4), pPrivate->ulNumResFonts == 0 || (pPrivate->ulNumResFonts & 0xFFFF) == usFonts,
         pPrivate->ulNumResFonts = usFonts);
    MEND(Rule(5), pPrivate->ulHalftone == 0 || (bHalftone && pPrivate->ulHalftone <= 4),
         pPrivate->ulHalftone = 0);
    MEND(Rule(6),
         pPrivate->ulHalftoneOffset == 0 ||
             (bHalftone && pPrivate->ulHalftoneOffset <= limits.ulFontFileSize),
         (pPrivate->ulHalftone = 0, pPrivate->ulHalftoneOffset = 0));
    MEND(Rule(7),
         pPrivate->ulHalftoneDim == 0 ||
             (bHalftone && (pPrivate->ulHalftoneDim == 8 || pPrivate->ulHalftoneDim == 16 ||
                            pPrivate->ulHalftoneDim == 32)),
         (pPrivate->ulHalftone = 0, pPrivate->ulHalftoneDim = 0));
    MEND(Rule(8), pPrivate->ulMemory == 0, pPrivate->ulMemory = 0);
    return 1;
}

int CheckLayout(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    MEND(Rule(9), pPrivate->sRotate180 <= 1, pPrivate->sRotate180 = 0);
    MEND(Rule(10), pPrivate->sCollate <= 1, pPrivate->sCollate = 0);
    MEND(Rule(11), IsOneOf(aScaleModes, pPrivate->sScale), pPrivate->sScale = SCALE_NONE);
    MEND(Rule(12), ScaleTargetFits(pPrivate, limits), pPrivate->sScale = SCALE_NONE);
    MEND(Rule(13), pPrivate->sBookletPrint >= 0, pPrivate->sBookletPrint = 0);
    MEND(Rule(14), IsOneOf(aPagesPerSheet, pPrivate->lPagesPerSheet), pPrivate->lPagesPerSheet = 1);
    if (pPrivate->lPagesPerSheet > 1) {
        MEND(Rule(15, 1), pPrivate->sPageBorders <= 3, pPrivate->sPageBorders = 0);
        MEND(Rule(15, 2), !(pPrivate->sPageOrder & ~PAGE_ORDER_BITS), pPrivate->sPageOrder = 0);
        MEND(Rule(15, 3), pPrivate->sPageBorderWidth >= 0, pPrivate->sPageBorderWidth = 0);
        MEND(Rule(15, 4), pPrivate->sPageBorderLength >= 0, pPrivate->sPageBorderLength = 0);
        SetPageBorder(pPrivate, pState);
    }
    MEND(Rule(16), IsOneOf(aWatermarkTypes, pPrivate->ulWMType), pPrivate->ulWMType = 0);
    if (pPrivate->ulWMType && !CheckWatermark(pPrivate, pState)) {
        return 0;
    }
    MEND(Rule(18), pPrivate->sFrontCover <= 1, pPrivate->sFrontCover = 0);
    if (pPrivate->sFrontCover == 1 && !CheckFrontCover(pPrivate, limits, pState)) {
        return 0;
    }
    MEND(Rule(20), pPrivate->sBackCover <= 1, pPrivate->sBackCover = 0);
    if (pPrivate->sBackCover == 1 && !CheckBackCover(pPrivate, limits, pState)) {
        return 0;
    }
    FORCE(Rule(22), pPrivate->sSeparators == 0, pPrivate->sSeparators = 0);
    MEND(Rule(23), pPrivate->sMargins <= 2, pPrivate->sMargins = 0);
    MEND(Rule(24), MarginsFit(pPrivate), pPrivate->sMargins = 0);
    return 1;
}

#define IS_ENDED(field) (pPrivate->field[sizeof pPrivate->field / sizeof pPrivate->field[0] - 1] == 0)
#define CLEAR(field)    std::memset(pPrivate->field, 0, sizeof pPrivate->field)

int CheckJob(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    MEND(Rule(25), IS_ENDED(cCollatePJL), CLEAR(cCollatePJL));
    MEND(Rule(26), IS_ENDED(cJobComment), CLEAR(cJobComment));
    MEND(Rule(27), IS_ENDED(cStartJobPJL), CLEAR(cStartJobPJL));
    MEND(Rule(28), IS_ENDED(cEndJobPJL), CLEAR(cEndJobPJL));
    MEND(Rule(29), pPrivate->sNoPJL <= 1, pPrivate->sNoPJL = 0);
    FORCE(Rule(30), pPrivate->ulColorMode == 0, pPrivate->ulColorMode = 0);
    MEND(Rule(31),
         pPrivate->sMediaTypeIndex >= limits.lMediaFirst && pPrivate->sMediaTypeIndex <= limits.lMediaCount,
         pPrivate->sMediaTypeIndex = 1); /* 1 without a media table too: such a record is mended each time */
    MEND(Rule(32), pPrivate->sBlackText <= 1, pPrivate->sBlackText = 0);
    MEND(Rule(33), pPrivate->sNumColors == 0 || pPrivate->sNumColors == 2 || pPrivate->sNumColors == 256,
         pPrivate->sNumColors = 0);
    MEND(Rule(34), pPrivate->sReverseOrder <= 1, pPrivate->sReverseOrder = 0);
    REQUIRE(Rule(35, 1), pPrivate->sContrast >= -50 && pPrivate->sContrast <= 50);
    REQUIRE(Rule(35, 2), pPrivate->sBrightness >= -50 && pPrivate->sBrightness <= 50);
    FORCE(Rule(36, 1), pPrivate->sHalftoneFrequency == 0, pPrivate->sHalftoneFrequency = 0);
    FORCE(Rule(36, 2), pPrivate->sHalftoneAngle == 0, pPrivate->sHalftoneAngle = 0);
    MEND(Rule(37), pPrivate->sMaxPageFeature >= 0, pPrivate->sMaxPageFeature = 0);
    MEND(Rule(38), pPrivate->sOverlay <= 10, pPrivate->sOverlay = 0);
    if (pPrivate
            ->sOverlay) { /* asked once: the second name is tested also when the first ended the overlay */
        MEND(Rule(39, 1), IS_ENDED(wcOverlayFile), (CLEAR(wcOverlayFile), pPrivate->sOverlay = 0));
        MEND(Rule(39, 2), IS_ENDED(wcOverlayFile2), (CLEAR(wcOverlayFile2), pPrivate->sOverlay = 0));
    }
    return 1;
}

int CheckColorAndPoster(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    if (!CheckColorSlices(pPrivate, limits, pState)) {
        return 0;
    }
    /* Against the data's size alone: who reads the rows stops at sixteen. */
    MEND(Rule(41), pPrivate->sGenColorCmdCount >= 0 && pPrivate->sGenColorCmdCount <= limits.lColorDataSize,
         pPrivate->sGenColorCmdCount = 0);
    FORCE(Rule(42), pPrivate->sInsertPages == 0, pPrivate->sInsertPages = 0);
    MEND(Rule(43), pPrivate->sPosterGrowth <= 5, pPrivate->sPosterGrowth = 0);
    /* The row count is held against 5 twice: with its sign for the column count, without for itself. */
    MEND(Rule(44), pPrivate->sPosterX >= 0 && pPrivate->sPosterY <= 5, pPrivate->sPosterX = 0);
    MEND(Rule(45), static_cast<u16>(pPrivate->sPosterY) <= 5, pPrivate->sPosterY = 0);
    MEND(Rule(46),
         pPrivate->sPosterX == 0 || pPrivate->sPosterY == 0 || pPrivate->sPosterOrient == 1 ||
             pPrivate->sPosterOrient == 2,
         pPrivate->sPosterOrient = 1);
    MEND(Rule(47), pPrivate->usBindingMode <= 7 || pPrivate->usBindingMode == 256,
         pPrivate->usBindingMode = 0);
    MEND(Rule(48), pPrivate->sProfile == 0, pPrivate->sProfile = 0);
    MEND(Rule(49), pPrivate->sScreen == 0, pPrivate->sScreen = 0);
    return CheckColorCommands(pPrivate, limits, pState);
}

int CheckChoices(PrivateDevmode* pPrivate, const XpiModel* pModel, const PrivateLimits& limits,
                 CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    if (!CheckFeatureSlots(pPrivate, pModel, pState)) {
        return 0;
    }
    for (int i = 0; i < 8; i++) {
        MEND(Rule(52), pPrivate->cPJLUserValue[i][11] == 0, pPrivate->cPJLUserValue[i][11] = 0);
    }
    MEND(Rule(53), OutputBinFits(pPrivate, pModel), pPrivate->sOutputPJLsid = 0);
    MEND(Rule(54), pPrivate->bMetric <= 1, pPrivate->bMetric = 0);
    MEND(Rule(55), pPrivate->bHTUser <= 1, pPrivate->bHTUser = 0);
    MEND(Rule(56), pPrivate->sColorCorrection >= 0 && pPrivate->sColorCorrection <= limits.lColorModeLast,
         pPrivate->sColorCorrection = static_cast<i16>(pModel->sDefaultColorMode));
    MEND(Rule(57), pPrivate->sResolution >= 0 && pPrivate->sResolution <= limits.lResolutionLast,
         pPrivate->sResolution = pModel->sDefaultResolution);
    MEND(Rule(58), pPrivate->sScreening >= 0 && pPrivate->sScreening <= limits.lScreenLast,
         pPrivate->sScreening = 0);
    return CheckColorOptions(pPrivate, pModel, pState);
}

/* Decides the result at the end: a record with a binding offset or margins is not accepted, and the styles
   and inserted pages of a settings file live no longer than until here. */
int CloseCheck(PrivateDevmode* pPrivate, CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    constexpr size_t INSERT_BYTES = sizeof pPrivate->sInsertPageList;
    constexpr u8 abZero[INSERT_BYTES] = {};
    REQUIRE(Rule(67, 1), pPrivate->lBindLong == 0);
    REQUIRE(Rule(67, 2), pPrivate->lBindShort == 0);
    REQUIRE(Rule(67, 3), pPrivate->sMargins == 0);
    REQUIRE(Rule(67, 4), pPrivate->sMarginBottom == 0);
    REQUIRE(Rule(67, 5), pPrivate->sMarginLeft == 0);
    REQUIRE(Rule(67, 6), pPrivate->sMarginRight == 0);
    REQUIRE(Rule(67, 7), pPrivate->sMarginTop == 0);
    FORCE(Rule(67, 8), std::memcmp(pPrivate->bExceptionRegion, abZero, INSERT_BYTES) == 0,
          std::memset(pPrivate->bExceptionRegion, 0, INSERT_BYTES));
    for (int i = 0; i < 2; i++) {
        REQUIRE(Rule(67, 9), static_cast<u16>(pPrivate->sTextOption[i]) <= 3);
        REQUIRE(Rule(67, 10), static_cast<u16>(pPrivate->sGraphicsOption[i]) <= 3);
        REQUIRE(Rule(67, 11), static_cast<u16>(pPrivate->sImageOption[i]) <= 3);
        REQUIRE(Rule(67, 12), static_cast<u16>(pPrivate->sGeneralOption[i]) <= 3);
    }
    REQUIRE(Rule(67, 13), static_cast<u16>(pPrivate->sColorCorrection) <= 3);
    return 1;
}

/* Rows up to the first whose opening number is 0. */
template <class T> i32 CountRows(const XpiModel* pModel, const T* pTable)
{
    i32 n = 0;
    for (;; n++) {
        const T* pRow = Row(pModel, pTable, n);
        u32 ulFirst = 0;
        std::memcpy(&ulFirst, pRow, std::is_same_v<T, ScreenRow> ? sizeof(u16) : sizeof(u32));
        if (!ulFirst) {
            return n;
        }
    }
}

} // namespace

void CollectModelLimits(const XpiModel* pModel, PrivateLimits* pLimits)
{
    pLimits->rCustom = GetCustomLimits(pModel);
    pLimits->lMediaFirst = pModel->pMediaTypes ? 1 : 0;
    pLimits->lMediaCount = CountRows(pModel, pModel->pMediaTypes);
    pLimits->lResolutionLast = CountRows(pModel, pModel->pResolutions) - 1;
    pLimits->lColorModeLast = pModel->pColorModes ? CountRows(pModel, pModel->pColorModes) - 1 : 0;
    pLimits->lScreenLast = pModel->pScreens ? CountRows(pModel, pModel->pScreens) - 1 : 0;
}

int CheckPrivateFields(PrivateDevmode* pPrivate, const XpiModel* pModel, const PrivateLimits& limits,
                       CheckState* pState)
{
    constexpr auto Rule = [](int nRow, int nPart = 0) { return RuleNumber(PRIVATE_FIELDS, nRow, nPart); };
    if (!CheckIdentity(pPrivate, pModel, limits, pState) || !CheckFonts(pPrivate, pModel, limits, pState) ||
        !CheckLayout(pPrivate, limits, pState) || !CheckJob(pPrivate, limits, pState) ||
        !CheckColorAndPoster(pPrivate, limits, pState) || !CheckChoices(pPrivate, pModel, limits, pState) ||
        !CheckExceptionRegion(pPrivate, pModel, pState)) {
        return 0;
    }
    MEND(Rule(64), pPrivate->sWMTransparency <= 100 || pPrivate->sWMTransparency == 0xFFFF,
         pPrivate->sWMTransparency = 50);
    MEND(Rule(65), pPrivate->szlWMScale.cx <= 10000, pPrivate->szlWMScale.cx = 100);
    MEND(Rule(66), pPrivate->szlWMScale.cy <= 10000, pPrivate->szlWMScale.cy = pPrivate->szlWMScale.cx);
    return CloseCheck(pPrivate, pState);
}

int ValidatePrivatePartNoted(PrinterCall& call, PrivateDevmode* pPrivate, const XpiModel* pModel,
                             RuleRecorder recorder)
{
    /* Also with a model in hand: the size of the colour data stands in the file alone. */
    XpiFile* pFile = OpenXpiFile(call);
    OwnedModel pOwn;
    if (pFile && !pModel) {
        pOwn = LoadPrinterModel(call);
        pModel = pOwn.get();
    }
    if (!pFile || !HasBody(pModel)) {
        return 0;
    }
    PrivateLimits limits;
    CollectModelLimits(pModel, &limits);
    limits.tcXpiPath = GetXpiPath(call);
    limits.lColorDataSize = static_cast<i32>(ReadXpiColorData(*pFile, nullptr));
    /* Offset 0 is inside a file of any size: nearly every record spares the question. */
    limits.ulFontFileSize =
        pPrivate->ulResFontOffset || pPrivate->ulHalftoneOffset ? GetFontFileSize(call) : 0;
    CheckState state = {0, recorder};
    return CheckPrivateFields(pPrivate, pModel, limits, &state);
}

int ValidatePrivatePart(PrinterCall& call, PrivateDevmode* pPrivate, const XpiModel* pModel)
{
    return ValidatePrivatePartNoted(call, pPrivate, pModel, {nullptr, nullptr});
}
