/* The table of keys, and what a style of the exception region holds. */
#include "settingsfile/settings_keys.h"

#include <cstring>
#include <type_traits>

#include "base/arithmetic.h"

namespace {

#define PRIVATE_OFFSET(field) \
    static_cast<u16>(offsetof(DriverDevmode, rPrivate) + offsetof(PrivateDevmode, field))
#define NUMBER_ROW(wcKey, usOffset, type, nCount, nStride, form, read, written) \
    { \
        TEXT(wcKey), usOffset, sizeof(type), nCount, nStride, std::is_signed_v<type>, form, read, written \
    }

/* A number of the public part, one of the private part, a text, an array of numbers: all but the first take
   fields of the private part. */
#define PUBLIC_KEY(wcKey, field, form) \
    NUMBER_ROW(wcKey, offsetof(DriverDevmode, field), decltype(DriverDevmode::field), 1, 0, form, ON_ALL, \
               ON_ALL)
#define KIND_KEY(wcKey, field, form, read, written) \
    NUMBER_ROW(wcKey, PRIVATE_OFFSET(field), decltype(PrivateDevmode::field), 1, 0, form, read, written)
#define KEY(wcKey, field, form) KIND_KEY(wcKey, field, form, ON_ALL, ON_ALL)
#define TEXT_KEY(wcKey, field) \
    { \
        TEXT(wcKey), PRIVATE_OFFSET(field), sizeof(WCHAR), std::extent_v<decltype(PrivateDevmode::field)>, \
            sizeof(WCHAR), 0, KEY_TEXT, ON_ALL, ON_ALL \
    }
#define COUNTED_KEYS(wcStem, field, nCount, read, written) \
    NUMBER_ROW(wcStem, PRIVATE_OFFSET(field), std::remove_extent_t<decltype(PrivateDevmode::field)>, nCount, \
               sizeof(std::remove_extent_t<decltype(PrivateDevmode::field)>), KEY_INT, read, written)
#define EACH_KEY(wcStem, field, read, written) \
    COUNTED_KEYS(wcStem, field, std::extent_v<decltype(PrivateDevmode::field)>, read, written)
#define COMMAND_KEY(wcStem, field) \
    NUMBER_ROW(wcStem, PRIVATE_OFFSET(ColorCommand) + offsetof(ColorCommandRow, field), \
               decltype(ColorCommandRow::field), std::extent_v<decltype(PrivateDevmode::ColorCommand)>, \
               sizeof(ColorCommandRow), KEY_INT, ON_ALL, ON_ALL)

constexpr SettingKey aPageKeys[] = {
    PUBLIC_KEY("Orientation", dmOrientation, KEY_INT),
    PUBLIC_KEY("PaperSize", dmPaperSize, KEY_INT),
    PUBLIC_KEY("Copies", dmCopies, KEY_INT),
    PUBLIC_KEY("DefaultSource", dmDefaultSource, KEY_INT),
    PUBLIC_KEY("PrintQuality", dmPrintQuality, KEY_INT),
    PUBLIC_KEY("Color", dmColor, KEY_INT),
    PUBLIC_KEY("Duplex", dmDuplex, KEY_INT),
    PUBLIC_KEY("YResolution", dmYResolution, KEY_INT),
    PUBLIC_KEY("Collate", dmCollate, KEY_INT),
    PUBLIC_KEY("ICMMethod", dmICMMethod, KEY_LONG),
    PUBLIC_KEY("ICMIntent", dmICMIntent, KEY_LONG),
    PUBLIC_KEY("MediaType", dmMediaType, KEY_LONG),
    KEY("NumResFonts", ulNumResFonts, KEY_LONG),
    TEXT_KEY("DefaultFont", wcDefaultFont),
    TEXT_KEY("DefaultPropFont", wcDefaultPropFont),
    KEY("DefaultFontSize", ulDefaultFontSize, KEY_LONG),
    KEY("Halftone", ulHalftone, KEY_LONG),
    KEY("HalftoneDim", ulHalftoneDim, KEY_LONG),
    KEY("Resolution", ulResolution, KEY_LONG),
    KEY("Rotate180", sRotate180, KEY_INT),
    KEY("Collate", sCollate, KEY_INT), /* the same key once more: the file holds this one */
    KEY("Scale", sScale, KEY_INT),
    KEY("ScaleTarget", sScaleTarget, KEY_INT),
    KEY("TargetLength", sTargetLength, KEY_INT),
    KEY("TargetWidth", sTargetWidth, KEY_INT),
    KEY("BookletPrint", sBookletPrint, KEY_INT),
    KEY("PageBorders", sPageBorders, KEY_INT),
    KEY("PagesPerSheet", lPagesPerSheet, KEY_LONG),
    KEY("BindLong", lBindLong, KEY_LONG),
    KEY("BindShort", lBindShort, KEY_LONG),
};

constexpr SettingKey aWatermarkKeys[] = {
    KEY("WMOnePage", sWMOnePage, KEY_INT),
};

/* One row a line, which the formatter would not keep for rows of this length. */
/* clang-format off */
constexpr SettingKey aTextWatermarkKeys[] = {
    TEXT_KEY("WMString", wcWMString),
    TEXT_KEY("WMFace", wcWMFace),
    KEY("WMCharSet", sWMCharSet, KEY_INT),
    KEY("WMPtSize", ulWMPtSize, KEY_LONG),
    KEY("WMBold", sWMBold, KEY_INT),
    KEY("WMItalic", sWMItalic, KEY_INT),
    KEY("WMAngle", ulWMAngle, KEY_LONG),
    KEY("WMColor", ulWMColor, KEY_HEX),
};
/* clang-format on */

constexpr SettingKey aPlacementKeys[] = {
    KIND_KEY("WMPlacement", usWMPlacement, KEY_INT, ON_ALL, ON_3),
};

constexpr SettingKey aFileWatermarkKeys[] = {
    TEXT_KEY("WMFileName", wcWMOverlayName),
};

constexpr SettingKey aCoverKeys[] = {
    KEY("FrontCover", sFrontCover, KEY_INT),
    KEY("FrontBin", sFrontBin, KEY_INT),
    KEY("FrontPaperSize", sFrontPaperSize, KEY_LONG),
    KEY("FrontLength", sFrontLength, KEY_INT),
    KEY("FrontWidth", sFrontWidth, KEY_INT),
    KEY("FrontPPS", sFrontPPS, KEY_INT),
    KEY("FrontDuplex", sFrontDuplex, KEY_INT),
    KEY("BackCover", sBackCover, KEY_INT),
    KEY("BackBin", sBackBin, KEY_INT),
    KEY("BackPaperSize", sBackPaperSize, KEY_LONG),
    KEY("BackLength", sBackLength, KEY_INT),
    KEY("BackWidth", sBackWidth, KEY_INT),
    KEY("Separators", sSeparators, KEY_INT),
    KEY("SeparatorBin", sSeparatorBin, KEY_INT),
    KEY("SeparatorPaper", sSeparatorPaper, KEY_LONG),
    KEY("SeparatorLength", sSeparatorLength, KEY_INT),
    KEY("SeparatorWidth", sSeparatorWidth, KEY_INT),
};

constexpr SettingKey aMarginModeKeys[] = {
    KEY("Margins", sMargins, KEY_INT),
};

constexpr SettingKey aMediaKeys[] = {
    KEY("MediaTypeIndex", sMediaTypeIndex, KEY_INT),
    KEY("FrontMediaIndex", sFrontMediaIndex, KEY_INT),
    KEY("BackMediaIndex", sBackMediaIndex, KEY_INT),
    KEY("SeparatorMediaIndex", sSeparatorMediaIndex, KEY_INT),
    KEY("LanguageLevel", sLanguageLevel, KEY_INT),
};

constexpr SettingKey aMarginKeys[] = {
    KEY("MarginLeft", sMarginLeft, KEY_INT),
    KEY("MarginTop", sMarginTop, KEY_INT),
    KEY("MarginRight", sMarginRight, KEY_INT),
    KEY("MarginBottom", sMarginBottom, KEY_INT),
};

constexpr SettingKey aOutputKeys[] = {
    KEY("BlackText", sBlackText, KEY_INT),
    KEY("BackDuplex", sBackDuplex, KEY_INT),
    KEY("PageOrder", sPageOrder, KEY_INT),
    KEY("ReverseOrder", sReverseOrder, KEY_INT),
    KEY("BitmapFonts", sBitmapFonts, KEY_INT),
    KEY("Contrast", sContrast, KEY_LONG),
    KEY("Brightness", sBrightness, KEY_LONG),
    KEY("HalftoneFrequency", sHalftoneFrequency, KEY_INT),
    KEY("HalftoneAngle", sHalftoneAngle, KEY_INT),
    KEY("MaxPageFeature", sMaxPageFeature, KEY_INT),
    KEY("LanguageFeatures", ulLanguageFeatures, KEY_HEX),
    KEY("Overlay", sOverlay, KEY_INT),
    TEXT_KEY("OverlayFile", wcOverlayFile),
    KEY("TextHdrOffset", sTextHdrOffset, KEY_INT),
    KEY("TextHdrLength", sTextHdrLength, KEY_INT),
    KEY("ImageHdrOffset", sImageHdrOffset, KEY_INT),
    KEY("ImageHdrLength", sImageHdrLength, KEY_INT),
    KEY("GraphicsHdrOffset", sGraphicsHdrOffset, KEY_INT),
    KEY("GraphicsHdrLength", sGraphicsHdrLength, KEY_INT),
    KEY("TextOffset", sTextOffset, KEY_INT),
    KEY("TextLength", sTextLength, KEY_INT),
    KEY("ImageOffset", sImageOffset, KEY_INT),
    KEY("ImageLength", sImageLength, KEY_INT),
    KEY("GraphicsOffset", sGraphicsOffset, KEY_INT),
    KEY("GraphicsLength", sGraphicsLength, KEY_INT),
    KEY("PageBorderWidth", sPageBorderWidth, KEY_INT),
    KIND_KEY("InsertPages", sInsertPages, KEY_INT, ON_OTHERS, NOT_3),
};

constexpr SettingKey aInsertKeys[] = {
    KIND_KEY("InsertPageBin", sInsertPageBin, KEY_INT, ON_OTHERS, NOT_3),
    KIND_KEY("InsertPageMediaIndex", sInsertPageMediaIndex, KEY_INT, ON_OTHERS, NOT_3),
    KIND_KEY("InsertPaper", sInsertPaper, KEY_LONG, ON_OTHERS, NOT_3),
    KIND_KEY("InsertLength", sInsertLength, KEY_INT, ON_OTHERS, NOT_3),
    KIND_KEY("InsertWidth", sInsertWidth, KEY_INT, ON_OTHERS, NOT_3),
    KEY("CenterMargin", usCenterMargin, KEY_INT),
    KEY("OuterMargin", usOuterMargin, KEY_INT),
    TEXT_KEY("OverlayFile2", wcOverlayFile2),
    KEY("GenColorCmdCount", sGenColorCmdCount, KEY_INT),
    KIND_KEY("Poster", sPosterGrowth, KEY_INT, ON_ALL, ON_3),
    KEY("ColorFormat", dwColorFormat, KEY_HEX),
    KEY("Profile", sProfile, KEY_INT),
    KEY("Screen", sScreen, KEY_INT),
};

constexpr SettingKey aColorCommandKeys[] = {
    COMMAND_KEY("ColorCommandOffset", sColorCmdOffset),
    COMMAND_KEY("ColorCommandLength", sColorCmdLength),
};

constexpr SettingKey aChoiceKeys[] = {
    EACH_KEY("PJLValueIndex", sPJLValueIndex, NOT_3, NOT_3),
    EACH_KEY("OCMValueIndex", sOCMValueIndex, ON_3, ON_3),
    KIND_KEY("OutputPJLsid", sOutputPJLsid, KEY_INT, NOT_3, NOT_3),
    KIND_KEY("OutputOCMsid", sOutputOCMsid, KEY_INT, ON_3, ON_3),
    KEY("Metric", bMetric, KEY_INT),
    KEY("HTUser", bHTUser, KEY_INT),
    KEY("ResolutionIndex", sResolution, KEY_INT),
    KEY("Screening", sScreening, KEY_INT),
    EACH_KEY("TextOption", sTextOption, ON_ALL, ON_ALL),
    EACH_KEY("ImageOption", sImageOption, ON_ALL, ON_ALL),
    EACH_KEY("GraphicsOption", sGraphicsOption, ON_ALL, ON_ALL),
    EACH_KEY("GeneralOption", sGeneralOption, ON_ALL, ON_ALL),
    COUNTED_KEYS("InsertPages", sInsertPageList, 8, ON_OTHERS, NOT_3), /* the ninth word has no key */
};

constexpr SettingKey aTailKeys[] = {
    KEY("WMTransparency", sWMTransparency, KEY_INT),
    NUMBER_ROW("WMScaleX", PRIVATE_OFFSET(szlWMScale) + offsetof(RecordScale, cx), decltype(RecordScale::cx),
               1, 0, KEY_LONG, ON_ALL, ON_ALL),
    NUMBER_ROW("WMScaleY", PRIVATE_OFFSET(szlWMScale) + offsetof(RecordScale, cy), decltype(RecordScale::cy),
               1, 0, KEY_LONG, ON_ALL, ON_ALL),
    KEY("OutputQuality", bOutputQuality, KEY_INT),
    KEY("SeparatorSheet", bSeparatorSheet, KEY_INT),
    KEY("LayoutType", sLayoutType, KEY_INT),
};

template <size_t nKeys> constexpr KeyRows Rows(const SettingKey (&aKeys)[nKeys])
{
    return {aKeys, static_cast<int>(nKeys)};
}

} // namespace

constexpr KeyRows aKeyRuns[RUN_COUNT] = {
    Rows(aPageKeys),          /* RUN_PAGE */
    Rows(aWatermarkKeys),     /* RUN_WATERMARK */
    Rows(aTextWatermarkKeys), /* RUN_TEXT_WATERMARK */
    Rows(aPlacementKeys),     /* RUN_PLACEMENT */
    Rows(aFileWatermarkKeys), /* RUN_FILE_WATERMARK */
    Rows(aCoverKeys),         /* RUN_COVERS */
    Rows(aMarginModeKeys),    /* RUN_MARGIN_MODE */
    Rows(aMediaKeys),         /* RUN_MEDIA */
    Rows(aMarginKeys),        /* RUN_MARGINS */
    Rows(aOutputKeys),        /* RUN_OUTPUT */
    Rows(aInsertKeys),        /* RUN_INSERT */
    Rows(aColorCommandKeys),  /* RUN_COLOR_COMMANDS */
    Rows(aChoiceKeys),        /* RUN_CHOICES */
    Rows(aTailKeys),          /* RUN_TAIL */
};

/* Sets of types in StyleKey. */
#define TYPE(n) (1 << (n))

constexpr StyleKey aStyleKeys[STYLE_KEY_COUNT] = {
    {TEXT("StyleBin"), 4, 2, 1, KEY_INT, TYPE(1) | TYPE(2) | TYPE(3), ON_3 | ON_4, ON_3},
    {TEXT("StyleMediaIndex"), 6, 2, 1, KEY_INT, TYPE(1) | TYPE(2) | TYPE(3), ON_3 | ON_4, ON_3},
    {TEXT("StylePaperSize"), 8, 2, 1, KEY_INT, TYPE(2) | TYPE(3), ON_3 | ON_4, ON_3},
    {TEXT("StylePaperLength"), 10, 2, 1, KEY_INT, TYPE(2) | TYPE(3), ON_3 | ON_4, ON_3},
    {TEXT("StylePaperWidth"), 12, 2, 1, KEY_INT, TYPE(2) | TYPE(3), ON_3 | ON_4, ON_3},
    {TEXT("StyleOverlayUnder"), 4, 1, 0, KEY_INT, TYPE(5), ON_4, 0},
    {TEXT("StyleWMOver"), 4, 1, 0, KEY_INT, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMPlacement"), 5, 1, 0, KEY_INT, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMPositionX"), 6, 4, 0, KEY_LONG, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMPositionY"), 10, 4, 0, KEY_LONG, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMWidth"), 14, 4, 0, KEY_LONG, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMLength"), 18, 4, 0, KEY_LONG, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMResolution"), 22, 2, 0, KEY_INT, TYPE(6), ON_3 | ON_4, ON_3},
    {TEXT("StyleWMAlpha"), 24, 1, 0, KEY_INT, TYPE(6), ON_3 | ON_4, ON_3},
};

i32 LoadNumber(const u8* pAt, u8 bWidth, u8 bSigned)
{
    u32 ulBits = 0;
    std::memcpy(&ulBits, pAt, bWidth); /* little-endian, as the record */
    return bWidth == 2 && bSigned ? LowWord(ulBits) : static_cast<i32>(ulBits);
}

void StoreNumber(u8* pAt, u8 bWidth, i32 lValue)
{
    std::memcpy(pAt, &lValue, bWidth);
}

i32 GetKeyNumber(const DriverDevmode* pRecord, const SettingKey& key, int nIndex)
{
    const u8* pField = reinterpret_cast<const u8*>(pRecord) + key.usOffset + nIndex * key.bStride;
    return LoadNumber(pField, key.bWidth, key.bSigned);
}

void SetKeyNumber(DriverDevmode* pRecord, const SettingKey& key, int nIndex, i32 lValue)
{
    u8* pField = reinterpret_cast<u8*>(pRecord) + key.usOffset + nIndex * key.bStride;
    StoreNumber(pField, key.bWidth, lValue);
}

int StyleNameAt(u8 bType, u16 usLanguage, const WCHAR** pwcStem)
{
    if (bType == 5 && usLanguage == 4) {
        *pwcStem = TEXT("StyleOverlayFile");
        return 6;
    }
    *pwcStem = TEXT("StyleWMFileName");
    return bType == 6 ? 25 : 0;
}

int StyleSize(u8 bType, u16 usLanguage, int nChars)
{
    switch (bType) {
    case 1: return 8;
    case 2:
    case 3: return 14;
    case 5: return usLanguage == 4 ? 32 + nChars : 4;
    case 6: return 27 + 2 * nChars;
    default: return 4;
    }
}
