/* DrvDeviceCapabilities: what the printer can do, computed afresh at every call. */
#include <cstring>

#include "base/format.h"
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "document/spool_folder.h"
#include "entry/capability_lists.h"
#include "entry/exports.h"
#include "entry/fast_drivers.h"
#include "platform/process.h"
#include "settings/driver_devmode.h"

namespace {

constexpr DWORD FIELDS_ALWAYS = 0x0000E70F;

/* Questions whose answer is the same for every printer. */
struct ConstantAnswer {
    WORD wQuestion;
    DWORD dwAnswer;
};
constexpr ConstantAnswer aConstants[] = {
    {DC_SIZE, PUBLIC_BYTES},
    {DC_EXTRA, PRIVATE_BYTES},
    {DC_VERSION, SPEC_VERSION},
    {DC_DRIVER, DRIVER_VERSION},
    {DC_FILEDEPENDENCIES, 0},
    {DC_ORIENTATION, 90},
    {DC_COPIES, 99},
    {DC_BINADJUST, 0},
    {DC_EMF_COMPLIANT, 0},
    {DC_DATATYPE_PRODUCED, 0},
    {DC_COLLATE, 1},
    {DC_MANUFACTURER, 0},
    {DC_MODEL, 0},
    {DC_PRINTRATEUNIT, 1},
};

const ConstantAnswer* FindConstant(WORD wQuestion)
{
    for (const ConstantAnswer& constant : aConstants) {
        if (constant.wQuestion == wQuestion) {
            return &constant;
        }
    }
    return nullptr;
}

/* Pages a minute of the fast printers and of all others. */
constexpr DWORD FAST_RATE = 33, COMMON_RATE = 26;

constexpr DWORD aPagesPerSheet[] = {1, 2, 4, 6, 8, 9, 16};
constexpr DWORD aPagesPerSheetImage[] = {1, 2, 4, 6, 8, 9, 12, 16, 25};

DWORD InstalledOptions(CapabilityCall& ask)
{
    return GetDeviceInfo(ask.call, CapabilityModel(ask))->ulOptions;
}

int IsColorTold(const XpiModel* pModel)
{
    return pModel && (pModel->usColorClass == CLASS_COLOR || pModel->usColorClass == CLASS_TOLD_COLOR);
}

DWORD AnswerFields(CapabilityCall& ask)
{
    DWORD dwFields = FIELDS_ALWAYS;
    if (InstalledOptions(ask) & OPTION_DUPLEX) {
        dwFields |= FIELDS_DUPLEX;
    }
    return IsColorTold(CapabilityModel(ask)) ? dwFields | FIELDS_ALL_COLOR : dwFields;
}

/* Width in the low word, length in the high word. */
DWORD PackExtent(i32 lWidth, i32 lLength)
{
    return (static_cast<DWORD>(lWidth) & 0xFFFF) | static_cast<DWORD>(lLength) << 16;
}

DWORD AnswerExtent(CapabilityCall& ask, int bMaximum)
{
    const XpiModel* pModel = CapabilityModel(ask);
    if (!pModel) {
        i16 sWidth, sLength;
        GetDefaultPaperSize(&sWidth, &sLength);
        return PackExtent(sWidth, sLength);
    }
    PaperExtents extents = GetPaperExtents(pModel);
    return bMaximum ? PackExtent(extents.lMaxWidth, extents.lMaxLength)
                    : PackExtent(extents.lMinWidth, extents.lMinLength);
}

void PutName(CapabilityCall& ask, const WCHAR* wcName, int cchRow)
{
    WCHAR wcRow[NAME_CHARS] = {};
    CopyWide(wcRow, cchRow, wcName);
    PutRow(ask, 0, wcRow, static_cast<size_t>(cchRow) * sizeof(WCHAR));
}

DWORD AnswerPersonality(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    const WCHAR* wcName = TEXT("Basalt");
    if (pModel) {
        switch (pModel->usLanguage) {
        case KIND_PCL6: wcName = TEXT("PCL6"); break;
        case KIND_PCL5: wcName = IsColorTold(pModel) ? TEXT("PCL5c") : TEXT("PCL5e"); break;
        case KIND_POSTSCRIPT: wcName = TEXT("PostScript"); break;
        case KIND_IMAGE: wcName = TEXT("Image"); break;
        default: return 1; /* counted, but nothing is written */
        }
    }
    PutName(ask, wcName, PERSONALITY_CHARS);
    return 1;
}

DWORD AnswerPrintRate(CapabilityCall& ask)
{
    const PRINTER_INFO_2W* pInfo = GetPrinterInfo(ask.call);
    if (!pInfo) {
        return ask.call.printerState == NO_MEMORY ? 0 : COMMON_RATE;
    }
    return IsFastDriver(PrinterText(ask.call, pInfo->pDriverName)) ? FAST_RATE : COMMON_RATE;
}

DWORD AnswerPrinterMemory(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    return pModel && pModel->pMemoryTable ? GetPrinterMemory(ask.call) << 10 : 0;
}

DWORD AnswerPagesPerSheet(CapabilityCall& ask)
{
    const XpiModel* pModel = CapabilityModel(ask);
    int bImage = pModel && pModel->usLanguage == KIND_IMAGE;
    const DWORD* pRows = bImage ? aPagesPerSheetImage : aPagesPerSheet;
    DWORD nRows = bImage ? 9 : 7;
    for (DWORD i = 0; i < nRows; i++) {
        PutRow(ask, i, pRows + i, sizeof *pRows);
    }
    return nRows;
}

DWORD Answer(CapabilityCall& ask, WORD wQuestion)
{
    const XpiModel* pModel;
    switch (wQuestion) {
    case DC_FIELDS: return AnswerFields(ask);
    case DC_PAPERS: return ListPaperCodes(ask);
    case DC_PAPERSIZE: return ListPaperSizes(ask);
    case DC_PAPERNAMES: return ListPaperNames(ask);
    case DC_MINEXTENT: return AnswerExtent(ask, 0);
    case DC_MAXEXTENT: return AnswerExtent(ask, 1);
    case DC_BINS: return ListBins(ask);
    case DC_BINNAMES: return ListBinNames(ask);
    case DC_DUPLEX: return (InstalledOptions(ask) & OPTION_DUPLEX) != 0;
    case DC_STAPLE: return (InstalledOptions(ask) & OPTION_STAPLER) != 0;
    case DC_ENUMRESOLUTIONS: return ListResolutions(ask);
    case DC_TRUETYPE:
        pModel = CapabilityModel(ask);
        return pModel && pModel->usLanguage != KIND_IMAGE ? 3
                                                          : 1; /* bitmaps and download, or bitmaps alone */
    case DC_PERSONALITY: return AnswerPersonality(ask);
    case DC_PRINTRATE:
    case DC_PRINTRATEPPM: return AnswerPrintRate(ask);
    case DC_PRINTERMEM: return AnswerPrinterMemory(ask);
    case DC_MEDIAREADY: PutName(ask, IsMetricLocale() ? TEXT("A4") : TEXT("Letter"), NAME_CHARS); return 1;
    case DC_COLORDEVICE: pModel = CapabilityModel(ask); return pModel && pModel->usColorClass == CLASS_COLOR;
    case DC_NUP: return AnswerPagesPerSheet(ask);
    case DC_MEDIATYPENAMES: return ListMediaNames(ask);
    case DC_MEDIATYPES: return ListMediaCodes(ask);
    default: break;
    }
    const ConstantAnswer* pConstant = FindConstant(wQuestion);
    return pConstant ? pConstant->dwAnswer : 0;
}

/* 1 when the answer depends on the printer. */
int NeedsPrinter(WORD wQuestion)
{
    return wQuestion != DC_MEDIAREADY && !FindConstant(wQuestion);
}

} // namespace

extern "C" DWORD WINAPI DrvDeviceCapabilities(HANDLE hPrinter, LPWSTR pDeviceName, WORD iDevCap,
                                              LPVOID pvOutput, PDEVMODEW)
{
    if (iDevCap < DC_FIELDS || iDevCap > DC_MEDIATYPES) {
        return 0;
    }
    KeptLastError kept;
    OwnedPrinter hNamed;
    if (!IsOpen(hPrinter) && pDeviceName && NeedsPrinter(iDevCap)) {
        hNamed = OpenPrinterByName(pDeviceName);
        hPrinter = hNamed.get();
    }
    PrinterCall call(hPrinter);
    CapabilityCall ask = {call, nullptr, 0, static_cast<BYTE*>(pvOutput)};
    DWORD dwAnswer = Answer(ask, iDevCap);
    if (iDevCap == DC_VERSION && pDeviceName && IsOpen(hPrinter)) {
        CopySpoolFolder(call, CapabilityModel(ask), pDeviceName);
    }
    return dwAnswer;
}
