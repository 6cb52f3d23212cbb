/* Writes the job head and the job's end. */
#include "entry/pjl_commands.h"

#include <algorithm>
#include <cstring>

#include "description/installed_set.h"
#include "settings/counted_row.h"

namespace {

constexpr u8 FLAG_DATA_MODE = 0x02; /* of bModelFlags */
constexpr u32 MARGIN_ROW = 8;       /* ulMask of the feature that follows the margin setting */
constexpr u16 COLOR_CHOSEN = 2;     /* dmColor */
constexpr u16 MARGINS_WHOLE = 1;    /* sMargins */
constexpr int LINE_BYTES = 512;
constexpr int WORD_BYTES = SHORT_COMMAND_BYTES; /* a key or a value */
constexpr char cBareHead[] = "%!PS-Adobe-3.0\r\n";
constexpr char cJobEnd[] = "@PJL EOJ\r\n";

/* cText has nText bytes and a NUL. */
size_t AppendPiece(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cText, size_t nText)
{
    if (cBuffer && nOffset + nText + 1 <= cbBuffer) {
        const void* pEnd = std::memchr(cBuffer, 0, cbBuffer);
        size_t nUsed = pEnd ? static_cast<size_t>(static_cast<const char*>(pEnd) - cBuffer) : cbBuffer;
        if (nUsed + nText + 1 <= cbBuffer) {
            std::memcpy(cBuffer + nUsed, cText, nText + 1);
        }
    }
    return nText;
}

/* A text in the making. */
struct PjlText {
    char* cBuffer;
    size_t cbBuffer;
    size_t nLength; /* of all pieces so far */
};

PjlText BeginText(char* cBuffer, u32 cbBuffer)
{
    return {cBuffer, cBuffer ? cbBuffer : 0, 0};
}

void Append(PjlText& text, const char* cPiece)
{
    text.nLength += AppendPjlText(text.cBuffer, text.cbBuffer, text.nLength, cPiece);
}

/* Gives the length out. Result: 1 when all fitted. */
int EndText(const PjlText& text, u32* pcbLength)
{
    *pcbLength = static_cast<u32>(text.nLength + 1);
    return text.nLength + 1 <= text.cbBuffer;
}

void AppendSetting(PjlText& text, const char* cKey, const char* cValue)
{
    text.nLength += AppendPjlSetting(text.cBuffer, text.cbBuffer, text.nLength, cKey, cValue);
}

/* A command as the description has it, line ends included; 0 is none. */
void AppendCommand(PjlText& text, XpiCommands& commands, u16 usId)
{
    char cLine[LINE_BYTES];
    if (usId && ReadCommand(commands, usId, cLine, LINE_BYTES)) {
        Append(text, cLine);
    }
}

void AppendColor(PjlText& text, const DriverDevmode* pRecord, const XpiModel* pModel)
{
    if (pModel->usColorClass != CLASS_COLOR) {
        return;
    }
    int bColor = pRecord->dmColor == COLOR_CHOSEN;
    Append(text, bColor ? "@PJL SET RENDERMODE=COLOR\r\n" : "@PJL SET RENDERMODE=GRAYSCALE\r\n");
    if (pModel->bModelFlags & FLAG_DATA_MODE) {
        Append(text, bColor ? "@PJL SET DATAMODE=COLOR\r\n" : "@PJL SET DATAMODE=GRAYSCALE\r\n");
    }
}

/* The value that the record chooses for a feature; "" when it sends nothing. */
void ReadFeatureValue(const PrivateDevmode& part, i32 nSlot, const FeatureRow* pRow, const XpiModel* pModel,
                      XpiCommands& commands, char (&cValue)[WORD_BYTES])
{
    i16 sChoice = part.sPJLValueIndex[nSlot];
    if (pRow->ulMask == MARGIN_ROW) {
        sChoice = part.sMargins == MARGINS_WHOLE;
    }
    if (sChoice < 0) {
        char cTyped[TYPED_BYTES];
        ReadTypedValue(part, sChoice, cTyped);
        std::memcpy(cValue, cTyped, sizeof cTyped);
        return;
    }
    u16 usId = PjlValueRow(pModel, pRow->sFirstValue + sChoice)->usCmdId;
    cValue[0] = 0;
    if (usId) {
        ReadShortCommand(commands, usId, cValue, WORD_BYTES);
    }
}

void AppendFeatures(PjlText& text, const PrivateDevmode& part, u32 ulOptions, const XpiModel* pModel,
                    XpiCommands& commands)
{
    char cKey[WORD_BYTES], cValue[WORD_BYTES];
    for (i32 i = 0; i < FEATURE_SLOTS; i++) {
        const FeatureRow* pRow = Row(pModel, pModel->pPjlFeatures, i);
        if (!pRow->usNameId) {
            return;
        }
        u32 ulMask = pRow->ulMask;
        if (ulMask && ulMask != MARGIN_ROW && !(ulMask & ulOptions)) {
            continue;
        }
        ReadFeatureValue(part, i, pRow, pModel, commands, cValue);
        if (cValue[0]) {
            if (ReadSettingKey(commands, pRow->usCmdId, cKey)) {
                AppendSetting(text, cKey, cValue);
            }
        }
    }
}

int IsBareJob(const PrivateDevmode& part, const XpiModel* pModel)
{
    return pModel->usLanguage == KIND_POSTSCRIPT && part.sNoPJL;
}

} // namespace

int ReadSettingKey(XpiCommands& commands, u16 usId, char (&cKey)[SHORT_COMMAND_BYTES])
{
    return ReadShortCommand(commands, usId, cKey, SHORT_COMMAND_BYTES) || !usId;
}

size_t AppendPjlText(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cText)
{
    return AppendPiece(cBuffer, cbBuffer, nOffset, cText, std::strlen(cText));
}

size_t AppendPjlSetting(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, const char* cValue)
{
    static constexpr char cSet[] = "@PJL SET ";
    char cLine[LINE_BYTES];
    size_t nKey = std::strlen(cKey), nValue = std::strlen(cValue);
    char* cAt = cLine + sizeof cSet - 1;
    static_assert(sizeof cSet + 2 * WORD_BYTES + sizeof "=\r\n" <= LINE_BYTES);
    if (nKey >= WORD_BYTES || nValue >= WORD_BYTES) {
        return 0;
    }
    std::memcpy(cLine, cSet, sizeof cSet - 1);
    std::copy_n(cKey, nKey, cAt);
    cAt[nKey] = '=';
    std::copy_n(cValue, nValue, cAt + nKey + 1);
    std::memcpy(cAt + nKey + 1 + nValue, "\r\n", sizeof "\r\n");
    return AppendPiece(cBuffer, cbBuffer, nOffset, cLine,
                       sizeof cSet - 1 + nKey + 1 + nValue + sizeof "\r\n" - 1);
}

void ReadTypedValue(const PrivateDevmode& part, i16 sChoice, char (&cOut)[TYPED_BYTES])
{
    constexpr int TYPED_VALUES = 8;
    static_assert(sizeof part.cPJLUserValue == TYPED_VALUES * TYPED_BYTES);
    cOut[0] = 0;
    int nRow = -1 - sChoice;
    if (nRow < 0 || nRow >= TYPED_VALUES) {
        return;
    }
    std::memcpy(cOut, part.cPJLUserValue[nRow], TYPED_BYTES);
    cOut[TYPED_BYTES - 1] = 0;
    for (const char* cAt = cOut; *cAt; cAt++) {
        u8 bChar = static_cast<u8>(*cAt);
        if (bChar < 0x20 || bChar == 0x7F) {
            cOut[0] = 0;
            return;
        }
    }
}

int BuildPjlJobHead(PrinterCall& call, char* cBuffer, u32* pcbLength, const DriverDevmode* pRecord,
                    const XpiModel* pModel, XpiFile& file)
{
    const PrivateDevmode& part = pRecord->rPrivate;
    PjlText text = BeginText(cBuffer, *pcbLength);
    if (IsBareJob(part, pModel)) {
        Append(text, cBareHead);
        return EndText(text, pcbLength);
    }
    u32 ulOptions = GetDeviceInfo(call, pModel)->ulOptions;
    XpiCommands commands(file);
    AppendColor(text, pRecord, pModel);
    const ResolutionRow* pResolution = CountedRow(pModel, pModel->pResolutions, part.sResolution);
    const MediaRow* pMedia = CountedRow(pModel, pModel->pMediaTypes, part.sMediaTypeIndex - 1);
    AppendCommand(text, commands, pResolution ? pResolution->usCmdId : u16{0});
    AppendCommand(text, commands, pMedia ? pMedia->usCmdId : u16{0});
    if (part.sOutputPJLsid) {
        char cKey[WORD_BYTES], cValue[WORD_BYTES];
        if (ReadShortCommand(commands, part.sOutputPJLsid, cValue, WORD_BYTES) &&
            ReadSettingKey(commands, pModel->sOutputBinCmdId, cKey)) {
            AppendSetting(text, cKey, cValue);
        }
    }
    AppendFeatures(text, part, ulOptions, pModel, commands);
    return EndText(text, pcbLength);
}

int BuildPjlJobEnd(char* cBuffer, u32* pcbLength, const DriverDevmode* pRecord, const XpiModel* pModel)
{
    if (IsBareJob(pRecord->rPrivate, pModel)) {
        *pcbLength = 0;
        return 1;
    }
    PjlText text = BeginText(cBuffer, *pcbLength);
    Append(text, cJobEnd);
    return EndText(text, pcbLength);
}
