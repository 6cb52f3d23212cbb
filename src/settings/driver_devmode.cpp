/* The record's layout, field by field, and its template. */
#include "settings/driver_devmode.h"

#include <type_traits>

static_assert(std::is_trivially_copyable_v<DriverDevmode>);

#define PUBLIC_AT(nOffset, nSize, field) \
    static_assert(offsetof(DriverDevmode, field) == (nOffset) && sizeof(DriverDevmode::field) == (nSize), \
                  #field " is not at " #nOffset)
#define PRIVATE_AT(nOffset, nSize, field) \
    static_assert(offsetof(PrivateDevmode, field) == (nOffset)-220 && \
                      sizeof(PrivateDevmode::field) == (nSize), \
                  #field " is not at " #nOffset)

PUBLIC_AT(0, 64, dmDeviceName);
PUBLIC_AT(64, 2, dmSpecVersion);
PUBLIC_AT(66, 2, dmDriverVersion);
PUBLIC_AT(68, 2, dmSize);
PUBLIC_AT(70, 2, dmDriverExtra);
PUBLIC_AT(72, 4, dmFields);
PUBLIC_AT(76, 2, dmOrientation);
PUBLIC_AT(78, 2, dmPaperSize);
PUBLIC_AT(80, 2, dmPaperLength);
PUBLIC_AT(82, 2, dmPaperWidth);
PUBLIC_AT(84, 2, dmScale);
PUBLIC_AT(86, 2, dmCopies);
PUBLIC_AT(88, 2, dmDefaultSource);
PUBLIC_AT(90, 2, dmPrintQuality);
PUBLIC_AT(92, 2, dmColor);
PUBLIC_AT(94, 2, dmDuplex);
PUBLIC_AT(96, 2, dmYResolution);
PUBLIC_AT(98, 2, dmTTOption);
PUBLIC_AT(100, 2, dmCollate);
PUBLIC_AT(102, 64, dmFormName);
PUBLIC_AT(166, 2, dmLogPixels);
PUBLIC_AT(168, 4, dmBitsPerPel);
PUBLIC_AT(172, 4, dmPelsWidth);
PUBLIC_AT(176, 4, dmPelsHeight);
PUBLIC_AT(180, 4, dmDisplayFlags);
PUBLIC_AT(184, 4, dmDisplayFrequency);
PUBLIC_AT(188, 4, dmICMMethod);
PUBLIC_AT(192, 4, dmICMIntent);
PUBLIC_AT(196, 4, dmMediaType);
PUBLIC_AT(200, 4, dmDitherType);
PUBLIC_AT(204, 4, dmReserved1);
PUBLIC_AT(208, 4, dmReserved2);
PUBLIC_AT(212, 4, dmPanningWidth);
PUBLIC_AT(216, 4, dmPanningHeight);

PRIVATE_AT(220, 4, ulVersion);
PRIVATE_AT(224, 4, ulNumResFonts);
PRIVATE_AT(228, 4, ulResFontOffset);
PRIVATE_AT(232, 64, wcDefaultFont);
PRIVATE_AT(296, 64, wcDefaultPropFont);
PRIVATE_AT(360, 4, ulDefaultFontSize);
PRIVATE_AT(364, 4, ulHalftone);
PRIVATE_AT(368, 4, ulHalftoneOffset);
PRIVATE_AT(372, 4, ulHalftoneDim);
PRIVATE_AT(376, 4, ulMemory);
PRIVATE_AT(380, 4, ulResolution);
PRIVATE_AT(384, 2, sRotate180);
PRIVATE_AT(386, 2, sCollate);
PRIVATE_AT(388, 2, sScale);
PRIVATE_AT(390, 2, sScaleTarget);
PRIVATE_AT(392, 2, sTargetLength);
PRIVATE_AT(394, 2, sTargetWidth);
PRIVATE_AT(396, 2, sBookletPrint);
PRIVATE_AT(398, 2, sPageBorders);
PRIVATE_AT(400, 4, lPagesPerSheet);
PRIVATE_AT(404, 4, lBindLong);
PRIVATE_AT(408, 4, lBindShort);
PRIVATE_AT(412, 4, ulWMType);
PRIVATE_AT(416, 8, ptlWMPosition);
PRIVATE_AT(424, 2, sWMOnePage);
PRIVATE_AT(426, 2, sWMCharSet);
PRIVATE_AT(426, 2, sWMResolution);
PRIVATE_AT(428, 128, wcWMString);
PRIVATE_AT(428, 192, wcWMOverlayName);
PRIVATE_AT(556, 64, wcWMFace);
PRIVATE_AT(620, 4, ulWMPtSize);
PRIVATE_AT(620, 4, ulWMWidth);
PRIVATE_AT(624, 4, ulWMAngle);
PRIVATE_AT(624, 4, ulWMLength);
PRIVATE_AT(628, 4, ulWMColor);
PRIVATE_AT(632, 2, sWMBold);
PRIVATE_AT(634, 2, sWMItalic);
PRIVATE_AT(636, 2, usWMPlacement);
PRIVATE_AT(638, 2, usReserved638);
PRIVATE_AT(640, 8, szlWMSize);
PRIVATE_AT(648, 2, sFrontCover);
PRIVATE_AT(650, 2, sFrontBin);
PRIVATE_AT(652, 2, sFrontPaperSize);
PRIVATE_AT(654, 2, sFrontLength);
PRIVATE_AT(656, 2, sFrontWidth);
PRIVATE_AT(658, 2, sFrontPPS);
PRIVATE_AT(660, 2, sFrontDuplex);
PRIVATE_AT(662, 2, sBackCover);
PRIVATE_AT(664, 2, sBackBin);
PRIVATE_AT(666, 2, sBackPaperSize);
PRIVATE_AT(668, 2, sBackLength);
PRIVATE_AT(670, 2, sBackWidth);
PRIVATE_AT(672, 2, sSeparators);
PRIVATE_AT(674, 2, sSeparatorBin);
PRIVATE_AT(676, 2, sSeparatorPaper);
PRIVATE_AT(678, 2, sSeparatorLength);
PRIVATE_AT(680, 2, sSeparatorWidth);
PRIVATE_AT(682, 2, sMargins);
PRIVATE_AT(684, 12, cCollatePJL);
PRIVATE_AT(696, 128, cJobComment);
PRIVATE_AT(824, 640, cStartJobPJL);
PRIVATE_AT(1464, 256, cEndJobPJL);
PRIVATE_AT(1720, 4, ulColorMode);
PRIVATE_AT(1724, 2, sMediaTypeIndex);
PRIVATE_AT(1726, 14, bReserved1726);
PRIVATE_AT(1740, 2, sFrontMediaIndex);
PRIVATE_AT(1742, 14, bReserved1742);
PRIVATE_AT(1756, 2, sBackMediaIndex);
PRIVATE_AT(1758, 14, bReserved1758);
PRIVATE_AT(1772, 2, sSeparatorMediaIndex);
PRIVATE_AT(1774, 14, bReserved1774);
PRIVATE_AT(1788, 2, sLanguageLevel);
PRIVATE_AT(1790, 2, sMarginLeft);
PRIVATE_AT(1792, 2, sMarginTop);
PRIVATE_AT(1794, 2, sMarginRight);
PRIVATE_AT(1796, 2, sMarginBottom);
PRIVATE_AT(1798, 2, sOverlayDirOffset);
PRIVATE_AT(1800, 2, sNoPJL);
PRIVATE_AT(1802, 2, sBlackText);
PRIVATE_AT(1804, 2, sNumColors);
PRIVATE_AT(1806, 2, sBackDuplex);
PRIVATE_AT(1808, 2, sPageOrder);
PRIVATE_AT(1810, 2, sReverseOrder);
PRIVATE_AT(1812, 2, sBitmapFonts);
PRIVATE_AT(1814, 2, sContrast);
PRIVATE_AT(1816, 2, sBrightness);
PRIVATE_AT(1818, 2, sHalftoneFrequency);
PRIVATE_AT(1820, 2, sHalftoneAngle);
PRIVATE_AT(1822, 2, sMaxPageFeature);
PRIVATE_AT(1824, 4, ulLanguageFeatures);
PRIVATE_AT(1828, 2, sOverlay);
PRIVATE_AT(1830, 26, wcOverlayFile);
PRIVATE_AT(1856, 2, sTextHdrOffset);
PRIVATE_AT(1858, 2, sTextHdrLength);
PRIVATE_AT(1860, 2, sImageHdrOffset);
PRIVATE_AT(1862, 2, sImageHdrLength);
PRIVATE_AT(1864, 2, sGraphicsHdrOffset);
PRIVATE_AT(1866, 2, sGraphicsHdrLength);
PRIVATE_AT(1868, 2, sTextOffset);
PRIVATE_AT(1870, 2, sTextLength);
PRIVATE_AT(1872, 2, sImageOffset);
PRIVATE_AT(1874, 2, sImageLength);
PRIVATE_AT(1876, 2, sGraphicsOffset);
PRIVATE_AT(1878, 2, sGraphicsLength);
PRIVATE_AT(1880, 2, sDoNotReportFonts);
PRIVATE_AT(1882, 2, sPageBorderWidth);
PRIVATE_AT(1884, 2, sInsertPages);
PRIVATE_AT(1886, 2, sExceptionInfoOffset);
PRIVATE_AT(1886, 2, sInsertPageOffset);
PRIVATE_AT(1888, 2, sInsertPageBin);
PRIVATE_AT(1890, 2, sInsertPageMediaIndex);
PRIVATE_AT(1892, 14, bReserved1892);
PRIVATE_AT(1906, 2, usCenterMargin);
PRIVATE_AT(1908, 2, usOuterMargin);
PRIVATE_AT(1910, 2, sInsertPaper);
PRIVATE_AT(1912, 2, sInsertLength);
PRIVATE_AT(1914, 2, sInsertWidth);
PRIVATE_AT(1916, 26, wcOverlayFile2);
PRIVATE_AT(1942, 2, sGenColorCmdOffset);
PRIVATE_AT(1944, 2, sGenColorCmdCount);
PRIVATE_AT(1946, 2, sPosterGrowth);
PRIVATE_AT(1948, 4, ulReserved0);
PRIVATE_AT(1952, 2, usBindingMode);
PRIVATE_AT(1954, 4, lBindLongBack);
PRIVATE_AT(1958, 4, lBindShortBack);
PRIVATE_AT(1962, 2, sPosterX);
PRIVATE_AT(1964, 2, sPosterY);
PRIVATE_AT(1966, 2, sPosterOrient);
PRIVATE_AT(1968, 2, sPageBorderLength);
PRIVATE_AT(1970, 70, bReserved1970);
PRIVATE_AT(2040, 12, OEMData);
PRIVATE_AT(2052, 320, tcXPIName);
PRIVATE_AT(2372, 320, tcOverlayDir);
PRIVATE_AT(2692, 4, dwColorFormat);
PRIVATE_AT(2696, 2, sProfile);
PRIVATE_AT(2698, 2, sScreen);
PRIVATE_AT(2700, 64, ColorCommand);
PRIVATE_AT(2764, 64, sPJLValueIndex);
PRIVATE_AT(2764, 64, sOCMValueIndex);
PRIVATE_AT(2828, 96, cPJLUserValue);
PRIVATE_AT(2828, 96, cOCMUserValue);
PRIVATE_AT(2924, 2, sOutputPJLsid);
PRIVATE_AT(2924, 2, sOutputOCMsid);
PRIVATE_AT(2926, 2, bMetric);
PRIVATE_AT(2928, 2, bHTUser);
PRIVATE_AT(2930, 2, sColorCorrection);
PRIVATE_AT(2932, 2, sResolution);
PRIVATE_AT(2934, 2, sScreening);
PRIVATE_AT(2936, 4, dwOCMFlags);
PRIVATE_AT(2940, 2, sOCMData1);
PRIVATE_AT(2942, 2, sOCMData2);
PRIVATE_AT(2944, 2, sOCMData3);
PRIVATE_AT(2946, 2, sOCMData4);
PRIVATE_AT(2948, 8, sTextOption);
PRIVATE_AT(2956, 8, sGraphicsOption);
PRIVATE_AT(2964, 8, sImageOption);
PRIVATE_AT(2972, 8, sGeneralOption);
PRIVATE_AT(2980, 738, bExceptionRegion);
PRIVATE_AT(2981, 1, bBlockCount);
PRIVATE_AT(2980, 18, sInsertPageList);
PRIVATE_AT(3718, 2, sWMTransparency);
PRIVATE_AT(3720, 8, szlWMScale);
PRIVATE_AT(3728, 1, bOutputQuality);
PRIVATE_AT(3729, 1, bSeparatorSheet);
PRIVATE_AT(3730, 38, bReserved3730);
PRIVATE_AT(3768, 2, sLayoutType);
PRIVATE_AT(3770, 2, sColorRadioSaved);
PRIVATE_AT(3772, 2, sColorFilesMode);
PRIVATE_AT(3774, 2, sColorRadio);
PRIVATE_AT(3776, 2, sLayoutTypeShown);
PRIVATE_AT(3778, 310, bReserved3778);

/* The high byte first in the number, as the version is compared. */
static_assert(DRIVER_VERSION == 0x0A33);

namespace {

constexpr DriverDevmode MakeTemplate()
{
    DriverDevmode record = {};
    PrivateDevmode& part = record.rPrivate;
    constexpr WCHAR wcdmDeviceName[] = TEXT("Corvantis Optics");
    for (unsigned i = 0; i < sizeof wcdmDeviceName / sizeof(WCHAR); i++) {
        record.dmDeviceName[i] = wcdmDeviceName[i];
    }
    record.dmSpecVersion = 1025;
    record.dmDriverVersion = 2611;
    record.dmSize = 220;
    record.dmDriverExtra = 3868;
    record.dmFields = 0x0000E70F;
    record.dmOrientation = 1;
    record.dmPaperSize = 1;
    record.dmScale = 100;
    record.dmCopies = 1;
    record.dmDefaultSource = 1025;
    record.dmPrintQuality = 600;
    record.dmColor = 1;
    record.dmYResolution = 600;
    record.dmTTOption = 2;
    part.ulVersion = 0xCACA0001;
    constexpr WCHAR wcwcDefaultFont[] = TEXT("Courier");
    for (unsigned i = 0; i < sizeof wcwcDefaultFont / sizeof(WCHAR); i++) {
        part.wcDefaultFont[i] = wcwcDefaultFont[i];
    }
    constexpr WCHAR wcwcDefaultPropFont[] = TEXT("Arial");
    for (unsigned i = 0; i < sizeof wcwcDefaultPropFont / sizeof(WCHAR); i++) {
        part.wcDefaultPropFont[i] = wcwcDefaultPropFont[i];
    }
    part.ulDefaultFontSize = 10;
    part.ulResolution = 600;
    part.lPagesPerSheet = 1;
    part.sFrontBin = 1025;
    part.sFrontPaperSize = 0xFFFF;
    part.sFrontPPS = 1;
    part.sFrontDuplex = 1;
    part.sBackBin = 1025;
    part.sBackPaperSize = 0xFFFF;
    part.sSeparatorBin = 1025;
    part.sSeparatorPaper = 0xFFFF;
    part.sBackDuplex = 1;
    part.ulLanguageFeatures = 0x00080000;
    part.sDoNotReportFonts = 1;
    part.sPageBorderWidth = 6;
    part.sInsertPageBin = 1025;
    part.sInsertPaper = 0xFFFF;
    return record;
}

} // namespace

constexpr DriverDevmode recordTemplate = MakeTemplate();
