/* The table rows of a description file (.XPI), as they lie in the file: little-endian, packed, no
   alignment. A table has no count: a row whose first field is zero ends it, unless told otherwise. String ids
   follow one rule: from 1 up a text of the file, below 1 the resource string of the negated number in the
   language library. Command id 0 means none. Masks are tested against the installed set (DeviceInfo). Paper
   sizes are tenths of a millimetre. Rows are reached through Row() of xpi_model.h only. */
#ifndef TQUI_DESCRIPTION_XPI_ROWS_H
#define TQUI_DESCRIPTION_XPI_ROWS_H

#include "platform/types.h"

#pragma pack(push, 1)

struct PaperRow {
    i16 sNameId; /* 0 ends */
    i16 sPaperCode;
    i16 sWidth, sLength;
    i16 sMetric;         /* not 0: a metric paper */
    i16 sEnvelope;       /* not 0: an envelope */
    i16 sPclCode;        /* negative: none */
    i16 sCompanionPaper; /* the document is scaled to this paper; 0 or negative: none */
    char cPaperName[32]; /* PCL6 name, at most 14 characters; empty when not needed */
};

struct BinRow {
    u32 ulMask; /* 0 ends */
    u16 usBinId;
    i16 sNameId;
};

struct OutputBinRow {
    u32 ulMask;  /* 0 ends */
    u16 usCmdId; /* also what the record's sOutputPJLsid holds */
    i16 sNameId;
};

struct OptionRow {
    u32 ulMask; /* 0 ends */
    i16 sNameId;
    u16 usReserved6;
};

struct MediaRow {
    u32 ulMask; /* 0 ends; also the bit that constraint rows name */
    i16 sNameId;
    u16 usCmdId;
    char cMediaName[32];
    u32 ulMediaCode; /* dmMediaType */
};

struct MemoryRow {
    u16 usKey; /* 0 ends; the closing row may be read */
    u16 usValue;
};

struct ConstraintRow {
    u16 usUsed; /* 0 ends */
    u16 usReserved2;
    u8 bPapers[32]; /* bit set of paper codes 0 to 255, high bit first; all zero: any paper */
    i16 sMinWidth, sMaxWidth, sMinLength, sMaxLength;
    u32 ulInputs, ulOutputs, ulMedia, ulOptions; /* 0: any */
    u16 sMessageId;
    u16 usReserved62;
};

struct MarginRow {
    u16 usUsed;     /* 0 ends; the closing row is a full row, its margins are the model's default */
    u8 bPapers[32]; /* as above; bit 0 marks a row for sizes 256 and up */
    i16 sMinWidth, sMaxWidth, sMinLength, sMaxLength; /* range of a row with bit 0 */
    u16 usModes;                                      /* 1 portrait, 2 landscape */
    i16 sResolution;                                  /* dots per inch of the four margins */
    i16 sMarginX, sMarginY;
    i16 sMarginXRotated, sMarginYRotated; /* for a paper code given as a negative number */
};

struct ResolutionRow {
    u32 ulUsed; /* 0 ends */
    i16 sDpi;   /* ulResolution of the record */
    u16 usCmdId;
    i16 sNameId;
    u16 usDpiX, usDpiY; /* dmPrintQuality, dmYResolution */
    i16 sHalftoneDim;   /* 0 none */
    u16 usHalftoneId;
};

struct FeatureRow {
    u16 usNameId; /* 0 ends */
    u16 usCmdId;
    u32 ulMask; /* 0 always there, 8 the margin row, else the device option needed */
    i16 sFirstValue;
    u16 usReserved10;
};

/* On an image model (kind 3) a value row has usData behind it and is 6 bytes wide; see PjlValueRow. */
struct FeatureValueRow {
    u16 usNameId; /* 0 ends a list */
    u16 usCmdId;
};

/* ulKind of a colour mode: what decides about the colours. */
enum : u32 {
    MODE_PRINTER = 1, /* the printer's default */
    MODE_SYSTEM = 2,  /* the system's colour management */
    MODE_OWN = 4,     /* options that the user edits */
    MODE_FIXED = 8    /* options that the mode presets */
};

struct ColorModeRow {
    u32 ulKind; /* 0 ends */
    i16 sNameId;
    i16 sFirstPreset; /* negative: none */
};

struct ColorOptionRow {
    u16 usNameId; /* 0 ends */
    i16 sFirstValue;
};

struct OptionValueRow {
    u16 usNameId;             /* 0 ends a list */
    u16 usOffset, usLength;   /* slice of the colour data; the header slice when usLength2 is not 0 */
    u16 usOffset2, usLength2; /* second slice; length 0: none */
};

struct ColorPresetRow {
    i16 sTarget; /* 1 text, 2 image, 3 graphics, 4 general; 0 ends a list */
    i16 sSlot;   /* 0 to 3 */
    i16 sValue;
};

struct ScreenRow {
    u16 usNameId; /* 0 ends */
    i16 sCmdId;
    u16 usReserved4;
};

#pragma pack(pop)

static_assert(sizeof(PaperRow) == 48 && offsetof(PaperRow, cPaperName) == 16 && alignof(PaperRow) == 1);
static_assert(sizeof(BinRow) == 8 && sizeof(OutputBinRow) == 8 && sizeof(OptionRow) == 8);
static_assert(sizeof(MediaRow) == 44 && offsetof(MediaRow, ulMediaCode) == 40);
static_assert(sizeof(MemoryRow) == 4);
static_assert(sizeof(ConstraintRow) == 64 && offsetof(ConstraintRow, ulInputs) == 44 &&
              offsetof(ConstraintRow, sMessageId) == 60);
static_assert(sizeof(MarginRow) == 54 && offsetof(MarginRow, usModes) == 42 &&
              offsetof(MarginRow, sMarginXRotated) == 50);
static_assert(sizeof(ResolutionRow) == 18 && offsetof(ResolutionRow, usDpiX) == 10);
static_assert(sizeof(FeatureRow) == 12 && offsetof(FeatureRow, sFirstValue) == 8);
static_assert(sizeof(FeatureValueRow) == 4 && sizeof(ColorModeRow) == 8 && sizeof(ColorOptionRow) == 4);
static_assert(sizeof(OptionValueRow) == 10 && sizeof(ColorPresetRow) == 6 && sizeof(ScreenRow) == 6);

#endif
