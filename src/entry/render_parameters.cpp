/* Writes the render parameters in both forms. */
#include "entry/render_parameters.h"

#include <algorithm>
#include <cstring>

#include "base/format.h"
#include "base/narrow.h"
#include "description/color_formats.h"
#include "description/installed_set.h"
#include "description/printer_store.h"
#include "entry/pjl_commands.h"
#include "settings/counted_row.h"

namespace {

constexpr u8 FLAG_TEXT_FORM = 0x08; /* of bModelFlags */
constexpr i32 ERROR_DIFFUSION = 2;  /* number in a screen's command */
constexpr i32 OPTION_ROWS = 4;      /* choices that a record has for one list */
constexpr int WORD_BYTES = SHORT_COMMAND_BYTES;
constexpr int XPI_NAME_CHARS = 160;
constexpr size_t ENTRY_MARGIN = 6; /* counted beside key and value: =, NUL and an index of 4 digits */

const char* ColorFormatName(u32 ulCode)
{
    for (const ColorFormat& format : aColorFormats) {
        if (format.ulCode == ulCode) {
            return format.cName;
        }
    }
    return "";
}

/* The names that both forms have, still wide. */
struct WideNames {
    WCHAR wcModel[PATH_CHARS];
    WCHAR tcXpi[XPI_NAME_CHARS + 1];
    WCHAR wcProfile[PATH_CHARS], wcScreen[PATH_CHARS]; /* "" unless the record wants them */
};

void CollectNames(PrinterCall& call, const PrivateDevmode& part, WideNames* pNames)
{
    *pNames = {};
    GetDriverName(call, pNames->wcModel);
    std::memcpy(pNames->tcXpi, part.tcXPIName, sizeof part.tcXPIName);
    if (part.sProfile == PROFILE_NAMED) {
        GetProfileName(call, pNames->wcProfile, PATH_CHARS);
    }
    if (part.sScreen == SCREEN_NAMED) {
        GetScreenName(call, pNames->wcScreen, PATH_CHARS);
    }
}

/* One of the four option lists with the record's choices of it. */
struct OptionList {
    const ColorOptionRow* pTable;
    i16 asChoices[OPTION_ROWS];
    const char* acKeys[OPTION_ROWS]; /* of the text form */
    int nIndexed;                    /* first row whose key takes the row's index */
};

struct OptionLists {
    OptionList rText, rImage, rGraphics, rGeneral;
};

OptionLists CollectOptions(const PrivateDevmode& part, const XpiModel* pModel)
{
    OptionLists lists = {
        {pModel->pTextOptions, {}, {"intentText", "preserveKText", "correctionText", "correctionText"}, 2},
        {pModel->pImageOptions,
         {},
         {"intentImage", "preserveKImage", "correctionImage", "correctionImage"},
         2},
        {pModel->pGraphicsOptions,
         {},
         {"intentGraphics", "preserveKGraphics", "correctionGraphics", "correctionGraphics"},
         2},
        {pModel->pGeneralOptions,
         {},
         {"correctionGeneral", "correctionGeneral", "correctionGeneral", "correctionGeneral"},
         0},
    };
    std::memcpy(lists.rText.asChoices, part.sTextOption, sizeof part.sTextOption);
    std::memcpy(lists.rImage.asChoices, part.sImageOption, sizeof part.sImageOption);
    std::memcpy(lists.rGraphics.asChoices, part.sGraphicsOption, sizeof part.sGraphicsOption);
    std::memcpy(lists.rGeneral.asChoices, part.sGeneralOption, sizeof part.sGeneralOption);
    return lists;
}

/* The chosen value of row nRow, or null when the list has no such row. */
const OptionValueRow* ChosenValue(const OptionList& list, i32 nRow, const XpiModel* pModel)
{
    const ColorOptionRow* pRow = Row(pModel, list.pTable, nRow);
    return pRow->usNameId ? Row(pModel, pModel->pOptionValues, pRow->sFirstValue + list.asChoices[nRow])
                          : nullptr;
}

/* Number at the start of a text: blanks, one sign, digits; stops at the limits of 32 bits. */
i32 ParseNumber(const char* cText)
{
    while (*cText == ' ' || (*cText >= '\t' && *cText <= '\r')) {
        cText++;
    }
    int bNegative = *cText == '-';
    if (*cText == '-' || *cText == '+') {
        cText++;
    }
    i64 lValue = 0;
    for (; *cText >= '0' && *cText <= '9' && lValue < 0x7FFFFFFF; cText++) {
        lValue = lValue * 10 + (*cText - '0');
    }
    lValue = lValue > 0x7FFFFFFF ? 0x7FFFFFFF : lValue;
    return static_cast<i32>(bNegative ? -lValue : lValue);
}

/* Key, index (negative: none), '=', value. Sizes are those of the header. */
size_t PutEntry(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, int nIndex,
                const char* cValue)
{
    char cIndex[12] = "";
    if (nIndex >= 0) {
        FormatNarrow(cIndex, sizeof cIndex, "%d", nIndex);
    }
    size_t nKey = std::strlen(cKey), nDigits = std::strlen(cIndex), nValue = std::strlen(cValue);
    size_t nEstimate = nKey + nValue + ENTRY_MARGIN;
    size_t nEntry = nKey + nDigits + 1 + nValue + 1;
    if (!cBuffer || nOffset + nEstimate >= cbBuffer || nEntry > nEstimate) {
        return nEstimate;
    }
    char* cAt = cBuffer + nOffset;
    std::copy_n(cKey, nKey, cAt);
    std::copy_n(cIndex, nDigits, cAt + nKey);
    cAt[nKey + nDigits] = '=';
    std::memcpy(cAt + nKey + nDigits + 1, cValue, nValue + 1);
    return nEntry;
}

/* A text in the making. */
struct ParameterText {
    char* cBuffer;
    size_t cbBuffer;
    size_t nLength;
};

void Put(ParameterText& text, const char* cKey, const char* cValue)
{
    text.nLength += AppendKeyValue(text.cBuffer, text.cbBuffer, text.nLength, cKey, cValue);
}

void Put(ParameterText& text, const char* cKey, i32 lNumber)
{
    text.nLength += AppendKeyNumber(text.cBuffer, text.cbBuffer, text.nLength, cKey, lNumber);
}

void PutScreen(ParameterText& text, const PrivateDevmode& part, const XpiModel* pModel, XpiCommands& commands)
{
    if (!pModel->pScreens) {
        return;
    }
    char cCommand[WORD_BYTES];
    u16 usId = static_cast<u16>(Row(pModel, pModel->pScreens, part.sScreening)->sCmdId);
    ReadShortCommand(commands, usId, cCommand, WORD_BYTES);
    int bDiffusion = ParseNumber(cCommand) == ERROR_DIFFUSION;
    Put(text, "hts", bDiffusion ? "FALSE" : "TRUE");
    Put(text, "errDiff", bDiffusion ? "TRUE" : "FALSE");
}

void PutOptions(ParameterText& text, const OptionList& list, const XpiModel* pModel, XpiCommands& commands)
{
    char cValue[WORD_BYTES];
    for (i32 i = 0; i < OPTION_ROWS; i++) {
        const OptionValueRow* pValue = ChosenValue(list, i, pModel);
        if (!pValue) {
            return;
        }
        ReadShortCommand(commands, pValue->usOffset, cValue, WORD_BYTES);
        if (i < list.nIndexed) {
            Put(text, list.acKeys[i], cValue);
        } else {
            text.nLength +=
                AppendIndexedKeyValue(text.cBuffer, text.cbBuffer, text.nLength, list.acKeys[i], i, cValue);
        }
    }
}

void PutFeatures(ParameterText& text, const PrivateDevmode& part, u32 ulOptions, const XpiModel* pModel,
                 XpiCommands& commands)
{
    char cKey[WORD_BYTES], cValue[WORD_BYTES], cTyped[TYPED_BYTES];
    for (i32 i = 0; i < FEATURE_SLOTS; i++) {
        const FeatureRow* pRow = Row(pModel, pModel->pPjlFeatures, i);
        if (!pRow->usNameId) {
            return;
        }
        if (pRow->ulMask && !(pRow->ulMask & ulOptions)) {
            continue;
        }
        i16 sChoice = part.sOCMValueIndex[i];
        u16 usId = sChoice < 0 ? u16{0} : PjlValueRow(pModel, pRow->sFirstValue + sChoice)->usCmdId;
        cValue[0] = 0;
        if (usId) {
            ReadShortCommand(commands, usId, cValue, WORD_BYTES);
        }
        ReadTypedValue(part, sChoice, cTyped); /* empty unless the choice is a typed value */
        const char* cChosen = sChoice < 0 ? cTyped : cValue;
        if (cChosen[0]) {
            if (ReadSettingKey(commands, pRow->usCmdId, cKey)) {
                Put(text, cKey, cChosen);
            }
        }
    }
}

int BuildText(PrinterCall& call, char* cBuffer, size_t cbBuffer, u32* pcbLength, const WideNames& names,
              const WCHAR* wcJobName, const DriverDevmode* pRecord, const XpiModel* pModel, XpiFile& file)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    const WCHAR* wcProfile = part.sProfile == PROFILE_NAMED ? names.wcProfile : nullptr;
    const WCHAR* wcScreen = part.sScreen == SCREEN_NAMED ? names.wcScreen : nullptr;
    OwnedBlock<char> cModel = NarrowText(names.wcModel), cXpi = NarrowText(names.tcXpi);
    OwnedBlock<char> cProfile = wcProfile ? NarrowText(wcProfile) : nullptr;
    OwnedBlock<char> cScreen = wcScreen ? NarrowText(wcScreen) : nullptr;
    OwnedBlock<char> cJobName = wcJobName ? NarrowText(wcJobName) : nullptr;
    if (!cModel || !cXpi || !cProfile != !wcProfile || !cScreen != !wcScreen || !cJobName != !wcJobName) {
        return 0;
    }
    ParameterText text = {cBuffer, cbBuffer, 0};
    XpiCommands commands(file);
    Put(text, "modelName", cModel.get());
    Put(text, "xpiName", cXpi.get());
    Put(text, "format", ColorFormatName(part.dwColorFormat));
    PutScreen(text, part, pModel, commands);
    OptionLists lists = CollectOptions(part, pModel);
    for (const OptionList* pList : {&lists.rText, &lists.rImage, &lists.rGraphics, &lists.rGeneral}) {
        PutOptions(text, *pList, pModel, commands);
    }
    Put(text, "cmm", part.sProfile == PROFILE_OFF ? "FALSE" : "TRUE");
    if (cProfile) {
        Put(text, "profile", cProfile.get());
    }
    if (cScreen) {
        Put(text, "halftone", cScreen.get());
    }
    const ResolutionRow* pResolution = CountedRow(pModel, pModel->pResolutions, part.sResolution);
    Put(text, "dpi.x", pResolution ? static_cast<i16>(pResolution->usDpiX) : 0);
    Put(text, "dpi.y", pResolution ? static_cast<i16>(pResolution->usDpiY) : 0);
    Put(text, "contrast", part.sContrast);
    Put(text, "brightness", part.sBrightness);
    if (cJobName) {
        Put(text, "jobName", cJobName.get());
    }
    if (pModel->pOutputBins && pModel->sOutputBinCmdId) {
        char cKey[WORD_BYTES], cValue[WORD_BYTES];
        ReadShortCommand(commands, part.sOutputOCMsid, cValue, WORD_BYTES); /* goes out empty too */
        if (ReadSettingKey(commands, pModel->sOutputBinCmdId, cKey)) {
            Put(text, cKey, cValue);
        }
    }
    PutFeatures(text, part, GetDeviceInfo(call, pModel)->ulOptions, pModel, commands);
    size_t cbText = text.nLength + 1; /* the closing NUL is there: the buffer was cleared */
    cbText += cbText == sizeof(RenderParameterRecord);
    *pcbLength = static_cast<u32>(cbText);
    return cbText <= cbBuffer;
}

/* pOut is one of the record's four rows of numbers. */
void StoreOptions(void* pOut, const OptionList& list, const XpiModel* pModel)
{
    u32 adwValues[16] = {};
    for (i32 i = 0; i < OPTION_ROWS; i++) {
        const OptionValueRow* pValue = ChosenValue(list, i, pModel);
        if (!pValue) {
            break;
        }
        adwValues[i] = pValue->usOffset | static_cast<u32>(pValue->usLength) << 16;
    }
    std::memcpy(pOut, adwValues, sizeof adwValues);
}

int BuildBinary(void* pBuffer, size_t cbBuffer, u32* pcbLength, const WideNames& names, int bNamedJob,
                const DriverDevmode* pRecord, const XpiModel* pModel)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    RenderParameterRecord out = {};
    if (!NarrowInto(names.wcModel, out.cModelName, sizeof out.cModelName) ||
        !NarrowInto(names.tcXpi, out.cXpiName, sizeof out.cXpiName) ||
        !NarrowInto(names.wcProfile, out.cProfileName, sizeof out.cProfileName) ||
        !NarrowInto(names.wcScreen, out.cScreenName, sizeof out.cScreenName)) {
        return 0;
    }
    *pcbLength = sizeof out;
    if (cbBuffer < sizeof out) {
        return 0;
    }
    out.dwColorFormat = part.dwColorFormat;
    out.usScreen = static_cast<u16>(Row(pModel, pModel->pScreens, part.sScreening)->sCmdId);
    OptionLists lists = CollectOptions(part, pModel);
    StoreOptions(out.adwTextOptions, lists.rText, pModel);
    StoreOptions(out.adwImageOptions, lists.rImage, pModel);
    StoreOptions(out.adwGraphicsOptions, lists.rGraphics, pModel);
    StoreOptions(out.adwGeneralOptions, lists.rGeneral, pModel);
    out.sProfile = part.sProfile;
    out.sScreen = part.sScreen;
    if (const ResolutionRow* pResolution = CountedRow(pModel, pModel->pResolutions, part.sResolution)) {
        out.usDpiX = pResolution->usDpiX;
        out.usDpiY = pResolution->usDpiY;
    }
    out.usContrast = static_cast<u16>(part.sContrast);
    out.usBrightness = static_cast<u16>(part.sBrightness);
    out.usColorRadio = part.sColorRadio;
    out.dwOCMFlags = part.dwOCMFlags;
    out.sOCMData1 = part.sOCMData1;
    out.sOCMData2 = part.sOCMData2;
    out.sOCMData3 = part.sOCMData3;
    out.sOCMData4 = part.sOCMData4;
    out.dwJobId = bNamedJob ? pRecord->dmReserved1 : 0;
    std::memcpy(pBuffer, &out, sizeof out);
    return 1;
}

} // namespace

size_t AppendKeyValue(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, const char* cValue)
{
    return PutEntry(cBuffer, cbBuffer, nOffset, cKey, -1, cValue);
}

size_t AppendKeyNumber(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, i32 lNumber)
{
    char cNumber[16];
    FormatNarrow(cNumber, sizeof cNumber, "%d", lNumber);
    return PutEntry(cBuffer, cbBuffer, nOffset, cKey, -1, cNumber);
}

size_t AppendIndexedKeyValue(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, int nIndex,
                             const char* cValue)
{
    return PutEntry(cBuffer, cbBuffer, nOffset, cKey, nIndex, cValue);
}

int BuildRenderParameters(PrinterCall& call, void* pBuffer, u32* pcbLength, const WCHAR* wcJobName,
                          DriverDevmode* pRecord, const XpiModel* pModel, XpiFile& file)
{
    size_t cbBuffer = pBuffer ? *pcbLength : 0;
    WideNames names;
    pRecord->dmICMMethod = METHOD_SYSTEM;
    if (cbBuffer) {
        std::memset(pBuffer, 0, cbBuffer);
    }
    CollectNames(call, pRecord->rPrivate, &names);
    return pModel->bModelFlags & FLAG_TEXT_FORM
               ? BuildText(call, static_cast<char*>(pBuffer), cbBuffer, pcbLength, names, wcJobName, pRecord,
                           pModel, file)
               : BuildBinary(pBuffer, cbBuffer, pcbLength, names, wcJobName != nullptr, pRecord, pModel);
}
