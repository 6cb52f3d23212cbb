/* The table of the record's fields. */
#include "tools/tq/record_fields.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "settings/driver_devmode.h"

namespace {

/* A field, or a list of nRows of them nStride bytes apart. */
struct RecordField {
    const char* cName;
    const char* cMember; /* of a list of structures, with its point: ".sColorCmdOffset" */
    unsigned nOffset, nBytes;
    FieldKind kind;
    unsigned nRows, nStride; /* 0 rows: not a list */
    bool bSecondName;        /* of bytes that another field writes */
};

template <class Type> constexpr FieldKind NumberKind()
{
    return std::is_signed_v<Type> ? SIGNED_NUMBER : UNSIGNED_NUMBER;
}

/* The row of a member, by its type: wide and narrow arrays are texts, arrays of u8 are bytes, arrays of narrow
   texts and of numbers are lists. */
template <class Type>
constexpr RecordField MakeField(const char* cName, unsigned nOffset, bool bFlags = false,
                                bool bSecondName = false)
{
    RecordField field = {cName, "", nOffset, sizeof(Type), FLAGS, 0, 0, bSecondName};
    using Element = std::remove_extent_t<Type>;
    if constexpr (std::is_same_v<Element, WCHAR>) {
        field.kind = WIDE_TEXT;
    } else if constexpr (std::is_same_v<Element, char>) {
        field.kind = NARROW_TEXT;
    } else if constexpr (std::is_array_v<Type> && std::is_same_v<Element, u8>) {
        field.kind = PLAIN_BYTES;
    } else if constexpr (std::is_array_v<Type>) {
        field = MakeField<Element>(cName, nOffset, bFlags, bSecondName);
        field.nRows = std::extent_v<Type>;
        field.nStride = sizeof(Element);
    } else if (!bFlags) {
        field.kind = NumberKind<Type>();
    }
    return field;
}

#define TYPE_IN(record, member) decltype(std::declval<record&>().member)
#define PUBLIC(member)          MakeField<TYPE_IN(DriverDevmode, member)>(#member, offsetof(DriverDevmode, member))
#define PUBLIC_FLAGS(member) \
    MakeField<TYPE_IN(DriverDevmode, member)>(#member, offsetof(DriverDevmode, member), true)
#define PRIVATE_AT(member)    PUBLIC_BYTES + offsetof(PrivateDevmode, member)
#define PRIVATE(member)       MakeField<TYPE_IN(PrivateDevmode, member)>(#member, PRIVATE_AT(member))
#define PRIVATE_FLAGS(member) MakeField<TYPE_IN(PrivateDevmode, member)>(#member, PRIVATE_AT(member), true)
#define SECOND(member)        MakeField<TYPE_IN(PrivateDevmode, member)>(#member, PRIVATE_AT(member), false, true)

constexpr RecordField aFields[] = {
    PUBLIC(dmDeviceName),
    PUBLIC(dmSpecVersion),
    PUBLIC(dmDriverVersion),
    PUBLIC(dmSize),
    PUBLIC(dmDriverExtra),
    PUBLIC_FLAGS(dmFields),
    PUBLIC(dmOrientation),
    PUBLIC(dmPaperSize),
    PUBLIC(dmPaperLength),
    PUBLIC(dmPaperWidth),
    PUBLIC(dmScale),
    PUBLIC(dmCopies),
    PUBLIC(dmDefaultSource),
    PUBLIC(dmPrintQuality),
    PUBLIC(dmColor),
    PUBLIC(dmDuplex),
    PUBLIC(dmYResolution),
    PUBLIC(dmTTOption),
    PUBLIC(dmCollate),
    PUBLIC(dmFormName),
    PUBLIC(dmLogPixels),
    PUBLIC(dmBitsPerPel),
    PUBLIC(dmPelsWidth),
    PUBLIC(dmPelsHeight),
    PUBLIC(dmDisplayFlags),
    PUBLIC(dmDisplayFrequency),
    PUBLIC(dmICMMethod),
    PUBLIC(dmICMIntent),
    PUBLIC(dmMediaType),
    PUBLIC(dmDitherType),
    PUBLIC(dmReserved1),
    PUBLIC(dmReserved2),
    PUBLIC(dmPanningWidth),
    PUBLIC(dmPanningHeight),

    PRIVATE_FLAGS(ulVersion),
    PRIVATE(ulNumResFonts),
    PRIVATE(ulResFontOffset),
    PRIVATE(wcDefaultFont),
    PRIVATE(wcDefaultPropFont),
    PRIVATE(ulDefaultFontSize),
    PRIVATE(ulHalftone),
    PRIVATE(ulHalftoneOffset),
    PRIVATE(ulHalftoneDim),
    PRIVATE(ulMemory),
    PRIVATE(ulResolution),
    PRIVATE(sRotate180),
    PRIVATE(sCollate),
    PRIVATE(sScale),
    PRIVATE(sScaleTarget),
    PRIVATE(sTargetLength),
    PRIVATE(sTargetWidth),
    PRIVATE(sBookletPrint),
    PRIVATE(sPageBorders),
    PRIVATE(lPagesPerSheet),
    PRIVATE(lBindLong),
    PRIVATE(lBindShort),
    PRIVATE_FLAGS(ulWMType),
    PRIVATE(ptlWMPosition.x),
    PRIVATE(ptlWMPosition.y),
    PRIVATE(sWMOnePage),
    PRIVATE(sWMCharSet),
    SECOND(sWMResolution),
    PRIVATE(wcWMString),
    PRIVATE(wcWMFace),
    SECOND(wcWMOverlayName),
    PRIVATE(ulWMPtSize),
    SECOND(ulWMWidth),
    PRIVATE(ulWMAngle),
    SECOND(ulWMLength),
    PRIVATE_FLAGS(ulWMColor),
    PRIVATE(sWMBold),
    PRIVATE(sWMItalic),
    PRIVATE(usWMPlacement),
    PRIVATE(usReserved638),
    PRIVATE(szlWMSize.cx),
    PRIVATE(szlWMSize.cy),

    PRIVATE(sFrontCover),
    PRIVATE(sFrontBin),
    PRIVATE(sFrontPaperSize),
    PRIVATE(sFrontLength),
    PRIVATE(sFrontWidth),
    PRIVATE(sFrontPPS),
    PRIVATE(sFrontDuplex),
    PRIVATE(sBackCover),
    PRIVATE(sBackBin),
    PRIVATE(sBackPaperSize),
    PRIVATE(sBackLength),
    PRIVATE(sBackWidth),
    PRIVATE(sSeparators),
    PRIVATE(sSeparatorBin),
    PRIVATE(sSeparatorPaper),
    PRIVATE(sSeparatorLength),
    PRIVATE(sSeparatorWidth),
    PRIVATE(sMargins),

    PRIVATE(cCollatePJL),
    PRIVATE(cJobComment),
    PRIVATE(cStartJobPJL),
    PRIVATE(cEndJobPJL),
    PRIVATE(ulColorMode),
    PRIVATE(sMediaTypeIndex),
    PRIVATE(bReserved1726),
    PRIVATE(sFrontMediaIndex),
    PRIVATE(bReserved1742),
    PRIVATE(sBackMediaIndex),
    PRIVATE(bReserved1758),
    PRIVATE(sSeparatorMediaIndex),
    PRIVATE(bReserved1774),
    PRIVATE(sLanguageLevel),
    PRIVATE(sMarginLeft),
    PRIVATE(sMarginTop),
    PRIVATE(sMarginRight),
    PRIVATE(sMarginBottom),
    PRIVATE(sOverlayDirOffset),
    PRIVATE(sNoPJL),
    PRIVATE(sBlackText),
    PRIVATE(sNumColors),
    PRIVATE(sBackDuplex),
    PRIVATE_FLAGS(sPageOrder),
    PRIVATE(sReverseOrder),
    PRIVATE(sBitmapFonts),
    PRIVATE(sContrast),
    PRIVATE(sBrightness),
    PRIVATE(sHalftoneFrequency),
    PRIVATE(sHalftoneAngle),
    PRIVATE(sMaxPageFeature),
    PRIVATE_FLAGS(ulLanguageFeatures),
    PRIVATE(sOverlay),
    PRIVATE(wcOverlayFile),

    PRIVATE(sTextHdrOffset),
    PRIVATE(sTextHdrLength),
    PRIVATE(sImageHdrOffset),
    PRIVATE(sImageHdrLength),
    PRIVATE(sGraphicsHdrOffset),
    PRIVATE(sGraphicsHdrLength),
    PRIVATE(sTextOffset),
    PRIVATE(sTextLength),
    PRIVATE(sImageOffset),
    PRIVATE(sImageLength),
    PRIVATE(sGraphicsOffset),
    PRIVATE(sGraphicsLength),

    PRIVATE(sDoNotReportFonts),
    PRIVATE(sPageBorderWidth),
    PRIVATE(sInsertPages),
    PRIVATE(sExceptionInfoOffset),
    SECOND(sInsertPageOffset),
    PRIVATE(sInsertPageBin),
    PRIVATE(sInsertPageMediaIndex),
    PRIVATE(bReserved1892),
    PRIVATE(usCenterMargin),
    PRIVATE(usOuterMargin),
    PRIVATE(sInsertPaper),
    PRIVATE(sInsertLength),
    PRIVATE(sInsertWidth),
    PRIVATE(wcOverlayFile2),
    PRIVATE(sGenColorCmdOffset),
    PRIVATE(sGenColorCmdCount),
    PRIVATE(sPosterGrowth),
    PRIVATE(ulReserved0),
    PRIVATE(usBindingMode),
    PRIVATE(lBindLongBack),
    PRIVATE(lBindShortBack),
    PRIVATE(sPosterX),
    PRIVATE(sPosterY),
    PRIVATE(sPosterOrient),
    PRIVATE(sPageBorderLength),
    PRIVATE(bReserved1970),

    PRIVATE(OEMData.ulOEMVersion),
    PRIVATE(OEMData.ulOEMOffset),
    PRIVATE(OEMData.ulOEMSize),
    PRIVATE(tcXPIName),
    PRIVATE(tcOverlayDir),
    PRIVATE_FLAGS(dwColorFormat),
    PRIVATE(sProfile),
    PRIVATE(sScreen),
    {"ColorCommand", ".sColorCmdOffset", PRIVATE_AT(ColorCommand[0].sColorCmdOffset), 2, SIGNED_NUMBER, 16,
     sizeof(ColorCommandRow), false},
    {"ColorCommand", ".sColorCmdLength", PRIVATE_AT(ColorCommand[0].sColorCmdLength), 2, FLAGS, 16,
     sizeof(ColorCommandRow), false},
    PRIVATE(sPJLValueIndex),
    SECOND(sOCMValueIndex),
    PRIVATE(cPJLUserValue),
    SECOND(cOCMUserValue),
    PRIVATE(sOutputPJLsid),
    SECOND(sOutputOCMsid),
    PRIVATE(bMetric),
    PRIVATE(bHTUser),
    PRIVATE(sColorCorrection),
    PRIVATE(sResolution),
    PRIVATE(sScreening),
    PRIVATE_FLAGS(dwOCMFlags),
    PRIVATE(sOCMData1),
    PRIVATE(sOCMData2),
    PRIVATE(sOCMData3),
    PRIVATE(sOCMData4),
    PRIVATE(sTextOption),
    PRIVATE(sGraphicsOption),
    PRIVATE(sImageOption),
    PRIVATE(sGeneralOption),
    PRIVATE(bExceptionRegion),
    SECOND(bStyleCount),
    SECOND(bBlockCount),
    SECOND(sInsertPageList),
    PRIVATE(sWMTransparency),
    PRIVATE(szlWMScale.cx),
    PRIVATE(szlWMScale.cy),
    PRIVATE(bOutputQuality),
    PRIVATE(bSeparatorSheet),
    PRIVATE(bReserved3730),
    PRIVATE(sLayoutType),
    PRIVATE(sColorRadioSaved),
    PRIVATE(sColorFilesMode),
    PRIVATE(sColorRadio),
    PRIVATE(sLayoutTypeShown),
    PRIVATE(bReserved3778),
};

} // namespace

const std::vector<FieldPlace>& RecordPlaces()
{
    static const std::vector<FieldPlace> places = [] {
        std::vector<FieldPlace> all;
        for (const RecordField& field : aFields) {
            if (!field.nRows) {
                all.push_back({field.cName, field.nOffset, field.nBytes, field.kind, field.bSecondName});
            }
            for (unsigned n = 0; n < field.nRows; n++) {
                all.push_back({field.cName + ("[" + std::to_string(n) + "]") + field.cMember,
                               field.nOffset + n * field.nStride, field.nBytes, field.kind,
                               field.bSecondName});
            }
        }
        std::stable_sort(all.begin(), all.end(), [](const FieldPlace& one, const FieldPlace& other) {
            return one.nOffset < other.nOffset;
        });
        return all;
    }();
    return places;
}
