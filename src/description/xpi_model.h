/* The loaded body of a description file, and the one way to its rows.

   The block behind a model is [sizes, 8 bytes][body][zero tail][start of the body as in the file]. A slot is
   8 bytes wide, in the file an offset into the body, in memory a pointer into the block: so all tables lie in
   it and one free releases everything. A slot that leads beyond the body points at the tail, which reads as
   an empty table or text. A row that lies over the slots reads what the file has there, never a pointer. */
#ifndef TQUI_DESCRIPTION_XPI_MODEL_H
#define TQUI_DESCRIPTION_XPI_MODEL_H

#include "base/owned.h"
#include "description/xpi_rows.h"

/* usLanguage: what the printer speaks. */
enum : u16 { KIND_PCL6 = 0, KIND_PCL5 = 1, KIND_POSTSCRIPT = 2, KIND_IMAGE = 3, KIND_IMAGE_SECOND = 4 };

/* usColorClass: 0 a colour device, 42 one that is told as colour capable, others monochrome. */
enum : u16 { CLASS_COLOR = 0, CLASS_TOLD_COLOR = 42 };

/* Device options of word 2 of the installed set. */
enum : u32 { OPTION_DUPLEX = 0x01, OPTION_DISK = 0x02, OPTION_STAPLER = 0x10 };

#pragma pack(push, 1)
struct XpiModel {
    u16 usReserved0;
    u16 usLanguage;
    u16 sLanguageLevel;
    u16 usReserved6;
    const PaperRow* pPaperTable;            /* at 8 */
    i16 sMinCustomWidth, sMaxCustomWidth;   /* tenths of a millimetre; maximum 0: no custom */
    i16 sMinCustomLength, sMaxCustomLength; /* paper, or no limit where a size is checked */
    const BinRow* pInputBins;               /* at 24 */
    const OutputBinRow* pOutputBins;
    const OptionRow* pOptions; /* read by nothing here */
    const MediaRow* pMediaTypes;
    u32 ulStdInputs, ulStdOutputs, ulStdOptions; /* at 56: what every printer has */
    u32 ulOptInputs, ulOptOutputs, ulOptOptions; /* installed by default */
    u32 ulMoreInputs, ulMoreOutputs, ulMoreOptions;
    i16 sStdMemory;
    u16 sOptMemory;
    const MemoryRow* pMemoryTable; /* at 96 */
    const void* pAboutStrings;     /* u16 string ids, read with RowAt */
    u32 ulReserved112;
    u16 sDefaultBin, sDefaultOutputBin;
    i16 sDefaultResolution;   /* row */
    i16 sDefaultFontSize;     /* points */
    const char* pDefaultFont; /* at 124 */
    const char* pDefaultPropFont;
    const void* pFontPageTable; /* the loader writes here where each font chunk begins */
    const char* pFontSubs;      /* pairs of texts, closed by an empty one */
    i16 sResFontCount;
    const ConstraintRow* pConstraints; /* at 158 */
    const MarginRow* pMargins;
    const ResolutionRow* pResolutions;
    u16 sOutputBinCmdId, sCollateCmdId;
    i16 sDiskMemory;
    const FeatureRow* pPjlFeatures; /* at 188 */
    const FeatureValueRow* pPjlValues;
    u8 bReserved204[12];
    u32 ulLanguageFeatures;
    const ColorModeRow* pColorModes; /* at 220 */
    const ColorOptionRow* pTextOptions;
    const ColorOptionRow* pImageOptions;
    const ColorOptionRow* pGraphicsOptions;
    const ColorOptionRow* pGeneralOptions;
    const OptionValueRow* pOptionValues;
    const ColorPresetRow* pColorPresets;
    u32 ulIntentMask; /* at 276 */
    u16 sDefaultColorMode, sWebLinkCmdId;
    const ScreenRow* pScreens;
    u16 sDefaultScreen;
    u8 bReserved294[4];
    u32 ulDefaultColorFormat;
    u16 usColorClass;
    u16 usReserved304;
    u32 ulDefaultIntent;
    u16 usPreviewLabel;
    i16 sDefaultMedia; /* row, counted from 1 */
    u8 bModelFlags;    /* 0x02 data-mode command in the job head, 0x08 text parameter block */
};
#pragma pack(pop)

#define MODEL_AT(nOffset, field) \
    static_assert(offsetof(XpiModel, field) == (nOffset), #field " is not at " #nOffset)
MODEL_AT(2, usLanguage);
MODEL_AT(8, pPaperTable);
MODEL_AT(16, sMinCustomWidth);
MODEL_AT(22, sMaxCustomLength);
MODEL_AT(48, pMediaTypes);
MODEL_AT(88, ulMoreOptions);
MODEL_AT(104, pAboutStrings);
MODEL_AT(116, sDefaultBin);
MODEL_AT(124, pDefaultFont);
MODEL_AT(140, pFontPageTable);
MODEL_AT(156, sResFontCount);
MODEL_AT(158, pConstraints);
MODEL_AT(174, pResolutions);
MODEL_AT(182, sOutputBinCmdId);
MODEL_AT(196, pPjlValues);
MODEL_AT(216, ulLanguageFeatures);
MODEL_AT(220, pColorModes);
MODEL_AT(276, ulIntentMask);
MODEL_AT(284, pScreens);
MODEL_AT(298, ulDefaultColorFormat);
MODEL_AT(302, usColorClass);
MODEL_AT(310, usPreviewLabel);
MODEL_AT(312, sDefaultMedia);
MODEL_AT(314, bModelFlags);
static_assert(sizeof(XpiModel) == 315);
static_assert(alignof(XpiModel) == 1);
#undef MODEL_AT

struct ModelDeleter {
    void operator()(const XpiModel* pModel) const;
};
using OwnedModel = std::unique_ptr<XpiModel, ModelDeleter>;

/* A zeroed block for a body of cbBody bytes; null when memory fails. The loader fills it and has its start
   kept before slots become pointers: those differ from load to load, and a list may not. */
OwnedModel NewModelBlock(u32 cbBody);
void KeepModelStart(XpiModel* pModel);

/* Bytes of the body in the file, and where the tail begins: the same unless the fixed part is longer. */
u32 ModelBodyBytes(const XpiModel* pModel);
u32 ModelTailOffset(const XpiModel* pModel);

/* Row nIndex of a table whose rows are cbRow wide (at most 64). Gives the row, or a shared row of zeros when
   the table is absent or does not lie in the model's block, or the row would leave the block or has an index
   below 0. Never null: a walk that goes forward ends in the tail at the latest. */
const void* RowAt(const XpiModel* pModel, const void* pTable, i32 nIndex, u32 cbRow);

template <class T> const T* Row(const XpiModel* pModel, const T* pTable, i32 nIndex)
{
    static_assert(alignof(T) == 1);
    static_assert(sizeof(T) <= 64);
    return static_cast<const T*>(RowAt(pModel, pTable, nIndex, sizeof(T)));
}

/* A text in the body; "" when it does not lie in the block. It always has an end: the tail. */
const char* BodyText(const XpiModel* pModel, const char* pText);

/* Row of pPjlValues: 6 bytes wide on an image model, 4 on all others. */
const FeatureValueRow* PjlValueRow(const XpiModel* pModel, i32 nIndex);

/* The row of an input bin by its id, and of an output bin by its command id; null when the model has none. */
const BinRow* FindBin(const XpiModel* pModel, u16 usBinId);
const OutputBinRow* FindOutputBin(const XpiModel* pModel, u16 usCmdId);

/* The value that the model's memory table has for a key; the first row's value when no row has the key, 0
   without a table. */
u16 LookupXpiMemory(const XpiModel* pModel, u16 usKey);

/* Sum over the resolutions of the bytes that their halftone patterns take (32 bytes a cell). A dimension
   outside 1 to 1024 counts as 0. */
u64 GetXpiHalftoneBytes(const XpiModel* pModel);

#endif
