/* The settings record: what carries a document's settings through the system. Applications hold it as an opaque
   DEVMODEW, the spooler stores it, the rendering half reads it. A persisted format, little-endian, 4088 bytes:

     0     public part, 220 bytes: the published DEVMODEW
     220   private part, 3868 bytes
     2040  its extension region, 2048 bytes; offsets held in the record count from here

   Every offset is asserted in driver_devmode.cpp. The record is packed and some fields lie at odd addresses: a
   field is read and written by value; no reference or pointer to one is taken. Records are copied whole.

   Paper codes (dmPaperSize and the four paper fields of covers, separators and inserts): see paper.h; there
   0xFFFF is the paper of the job itself. Pixel fields are dots of ulResolution. Sizes of paper are tenths of a
   millimetre. "Kind" is the model's usLanguage. */
#ifndef TQUI_SETTINGS_DRIVER_DEVMODE_H
#define TQUI_SETTINGS_DRIVER_DEVMODE_H

#include "platform/basic.h"
#include "platform/types.h"

/* Values that a record of this family holds. */
constexpr u32 RECORD_STAMP = 0xCACA0001; /* ulVersion */
constexpr u16 SPEC_VERSION = 1025;
constexpr u16 DRIVER_VERSION = 2611; /* 10.51: major in the high byte */
constexpr u16 PUBLIC_BYTES = 220;
constexpr u16 PRIVATE_BYTES = 3868;
constexpr u16 RECORD_SIZE = 4088;
constexpr u16 EXTENSION_AT = 2040; /* offsets in the record count from here */
constexpr u16 OVERLAY_DIR_OFFSET = 332;
constexpr u16 COLOR_COMMAND_OFFSET = 660;
constexpr i16 EXCEPTION_OFFSET = 940;
constexpr u32 OEM_OFFSET = 1744;
constexpr u32 OEM_SIZE = 304;
constexpr u16 BIN_AUTO = 1025;
constexpr i16 FIRST_MEDIA_SOURCE = 2000; /* a source from here on is a row of the media table */
constexpr u16 PAPER_OF_JOB = 0xFFFF;

/* ulWMType: bit 0 a text, bit 1 a file, bit 5 a bitmap. */
enum : u32 { WM_TEXT = 0x01, WM_FILE = 0x02, WM_BITMAP = 0x20 };

/* sScale: what the page is scaled to. */
enum : u16 {
    SCALE_NONE = 0,
    SCALE_FIT_CENTRED = 1, /* to the target paper, centred */
    SCALE_ZOOM = 2,        /* by sScaleTarget percent */
    SCALE_TARGET = 4,      /* on the target paper, not fitted */
    SCALE_FIT = 33,        /* to the target paper; what a companion paper sets */
    SCALE_ZOOM_CENTRED = 66,
    SCALE_TARGET_CENTRED = 68,
    SCALE_KEPT = 1024 /* accepted; nothing here writes it */
};

constexpr u16 COLOR_MONOCHROME = 1, COLOR_FULL = 2; /* dmColor */
constexpr u32 MODE_ALWAYS_COLOR = 42;               /* ulColorMode: in colour whatever dmColor says */
constexpr u32 METHOD_NONE = 1, METHOD_SYSTEM = 2;   /* dmICMMethod */

/* sProfile and sScreen: the driver's own, none, and a file that the user has named. */
constexpr u16 PROFILE_BUILT_IN = 0, PROFILE_OFF = 1, PROFILE_NAMED = 2, SCREEN_BUILT_IN = 0, SCREEN_NAMED = 1;

/* dmFields, by the system's bits; matching: method, intent and media type */
constexpr u32 FIELDS_ORIENTATION = 0x0001, FIELDS_PAPERSIZE = 0x0002, FIELDS_COPIES = 0x0100,
              FIELDS_DEFAULTSOURCE = 0x0200, FIELDS_COLOR = 0x0800, FIELDS_DUPLEX = 0x1000,
              FIELDS_COLLATE = 0x8000, FIELDS_MEDIATYPE = 0x02000000, FIELDS_MATCHING = 0x03800000,
              FIELDS_ALL_COLOR = FIELDS_COLOR | FIELDS_MATCHING;

/* sLayoutType */
enum : u16 { LAYOUT_N_UP = 0, LAYOUT_POSTER = 1, LAYOUT_BOOKLET = 99 };

/* Flags of sColorCmdLength; the low 13 bits are the length. None of the three: all objects. */
enum : u16 {
    COMMAND_TEXT = 0x8000,
    COMMAND_IMAGE = 0x4000,
    COMMAND_GRAPHICS = 0x2000,
    COMMAND_LENGTH = 0x1FFF
};

#pragma pack(push, 1)

struct RecordPoint {
    union {
        i32 x, cx;
    };
    union {
        i32 y, cy;
    };
};

struct RecordScale {
    u32 cx, cy; /* percent, at most 10000 */
};

struct OemHeader {
    u32 ulOEMVersion; /* 1 */
    u32 ulOEMOffset;  /* 1744 */
    u32 ulOEMSize;    /* 304 */
};

struct ColorCommandRow {
    i16 sColorCmdOffset; /* into the colour data */
    u16 sColorCmdLength; /* with its flags */
};

struct PrivateDevmode {
    u32 ulVersion;               /* record stamp, must be 0xCACA0001 */
    u32 ulNumResFonts;           /* 0, or the model's resident font count */
    u32 ulResFontOffset;         /* offset into the printer's font description file; not beyond its size */
    WCHAR wcDefaultFont[32];     /* default fixed-pitch font */
    WCHAR wcDefaultPropFont[32]; /* default proportional font */
    u32 ulDefaultFontSize;       /* points */
    u32 ulHalftone;              /* 0 to 4; non-zero only on a PCL5 colour model */
    u32 ulHalftoneOffset; /* offset into the font description file; non-zero only on a PCL5 colour model */
    u32 ulHalftoneDim;    /* halftone cell size: 0, 8, 16 or 32; non-zero only on a PCL5 colour model */
    u32 ulMemory;         /* kept 0 */
    u32 ulResolution;   /* dots per inch of the chosen resolution row; the unit of every pixel field below */
    u16 sRotate180;     /* 0 or 1 */
    u16 sCollate;       /* 0 or 1 */
    u16 sScale;         /* scaling mode */
    u16 sScaleTarget;   /* also read as Zoom: percent, or the target paper code */
    i16 sTargetLength;  /* target paper length, tenths of a millimetre */
    i16 sTargetWidth;   /* target paper width, tenths of a millimetre */
    i16 sBookletPrint;  /* 0 off; otherwise sheets per booklet group, 1 or a multiple of 4 */
    u16 sPageBorders;   /* 0 to 3, border style round N-up pages */
    i32 lPagesPerSheet; /* 1, 2, 4, 6, 8, 9, 12, 16 or 25 */
    i32 lBindLong;      /* binding offset on the long edge, pixels */
    i32 lBindShort;     /* binding offset on the short edge, pixels */
    u32 ulWMType;       /* watermark type */
    RecordPoint ptlWMPosition; /* pixels */
    u16 sWMOnePage;            /* 0 every page, 1 first page only */
    union {
        i16 sWMCharSet;    /* text: character set */
        i16 sWMResolution; /* bitmap: its dots per inch */
    };
    union {
        struct {
            WCHAR wcWMString[64]; /* text watermark */
            WCHAR wcWMFace[32];   /* its font */
        };
        WCHAR wcWMOverlayName[96]; /* file and bitmap watermark: name of the file */
    };
    union {
        u32 ulWMPtSize; /* text: points */
        u32 ulWMWidth;  /* bitmap: pixels of sWMResolution */
    };
    union {
        u32 ulWMAngle;  /* text: tenths of a degree, below 3600 */
        u32 ulWMLength; /* bitmap: pixels of sWMResolution */
    };
    u32 ulWMColor;     /* COLORREF: red in the low byte, 0x00BBGGRR */
    u16 sWMBold;       /* 0 or 1 */
    u16 sWMItalic;     /* 0 or 1 */
    u16 usWMPlacement; /* 0 to 9 */
    u16 usReserved638; /* zero */
    RecordPoint szlWMSize;
    u16 sFrontCover;     /* 0 or 1 */
    i16 sFrontBin;       /* bin id */
    u16 sFrontPaperSize; /* paper code; 0xFFFF is the paper of the job */
    i16 sFrontLength;    /* tenths of a millimetre */
    i16 sFrontWidth;     /* tenths of a millimetre */
    u16 sFrontPPS;       /* pages per sheet on the cover: 1, 2, 4, 6, 8, 9 or 16 */
    u16 sFrontDuplex;    /* 0 or 1 */
    u16 sBackCover;      /* 0 or 1 */
    i16 sBackBin;        /* bin id */
    u16 sBackPaperSize;  /* as sFrontPaperSize */
    i16 sBackLength;
    i16 sBackWidth;
    u16 sSeparators;     /* kept 0 */
    i16 sSeparatorBin;   /* bin id */
    u16 sSeparatorPaper; /* as sFrontPaperSize */
    i16 sSeparatorLength;
    i16 sSeparatorWidth;
    u16 sMargins;             /* 0, 1 or 2; 2 means the four sMargin fields apply */
    char cCollatePJL[12];     /* printer command for collation; last byte NUL */
    char cJobComment[128];    /* job comment; last byte NUL */
    char cStartJobPJL[640];   /* commands sent at job start; last byte NUL */
    char cEndJobPJL[256];     /* commands sent at job end; last byte NUL */
    u32 ulColorMode;          /* cleared on every build and validation */
    i16 sMediaTypeIndex;      /* 1-based row of the media table */
    u8 bReserved1726[14];     /* zero */
    i16 sFrontMediaIndex;     /* 1-based row of the media table */
    u8 bReserved1742[14];     /* zero */
    i16 sBackMediaIndex;      /* 1-based row of the media table */
    u8 bReserved1758[14];     /* zero */
    i16 sSeparatorMediaIndex; /* 1-based row of the media table */
    u8 bReserved1774[14];     /* zero */
    u16 sLanguageLevel;       /* copied from the printer description */
    i16 sMarginLeft;          /* pixels */
    i16 sMarginTop;           /* pixels */
    i16 sMarginRight;         /* pixels */
    i16 sMarginBottom;        /* pixels */
    u16 sOverlayDirOffset;    /* constant 332: offset of tcOverlayDir inside the extension region */
    u16 sNoPJL;               /* 0 or 1; 1 means the job carries no printer job language wrapper */
    u16 sBlackText;           /* 0 or 1 */
    u16 sNumColors;           /* 0, 2 or 256 */
    u16 sBackDuplex;          /* 0 or 1 */
    u16 sPageOrder;           /* only bits 0, 1 and 4 may be set */
    u16 sReverseOrder;        /* 0 or 1 */
    u16 sBitmapFonts;         /* 0 or 32767 */
    i16 sContrast;            /* -50 to 50 */
    i16 sBrightness;          /* -50 to 50 */
    u16 sHalftoneFrequency;   /* cleared on every validation */
    u16 sHalftoneAngle;       /* cleared on every validation */
    i16 sMaxPageFeature;      /* not negative */
    /* bit 0 set by the overlay code for Image models; bit 3 is a check box on Image-family models; the
       rest comes from the printer description */
    u32 ulLanguageFeatures;
    u16 sOverlay;            /* 0 to 10 */
    WCHAR wcOverlayFile[13]; /* 8.3 overlay file name; last wchar 0 */
    i16 sTextHdrOffset;      /* offset into the colour data */
    i16 sTextHdrLength;      /* bytes */
    i16 sImageHdrOffset;
    i16 sImageHdrLength;
    i16 sGraphicsHdrOffset;
    i16 sGraphicsHdrLength;
    i16 sTextOffset;
    i16 sTextLength;
    i16 sImageOffset;
    i16 sImageLength;
    i16 sGraphicsOffset;
    i16 sGraphicsLength;
    u16 sDoNotReportFonts; /* 0 or 1 */
    i16 sPageBorderWidth;  /* pixels */
    u16 sInsertPages;      /* cleared on every validation */
    union {                /* 0, or 940: where the exception region lies in the extension region */
        i16 sExceptionInfoOffset;
        i16 sInsertPageOffset; /* kinds other than 3: may also be -940 */
    };
    i16 sInsertPageBin;        /* bin id */
    i16 sInsertPageMediaIndex; /* 1-based row of the media table */
    u8 bReserved1892[14];      /* zero */
    u16 usCenterMargin;        /* pixels */
    u16 usOuterMargin;         /* pixels */
    u16 sInsertPaper;          /* as sFrontPaperSize */
    i16 sInsertLength;
    i16 sInsertWidth;
    WCHAR wcOverlayFile2[13]; /* second overlay file name; last wchar 0 */
    u16 sGenColorCmdOffset;   /* constant 660: offset of ColorCommand[0] inside the extension region */
    i16 sGenColorCmdCount;    /* number of ColorCommand rows in use */
    u16 sPosterGrowth;        /* 0 to 5 */
    u32 ulReserved0;          /* zero */
    u16 usBindingMode;        /* 0, 1 to 7, or 256 */
    i32 lBindLongBack;        /* pixels */
    i32 lBindShortBack;       /* pixels */
    i16 sPosterX;             /* not negative */
    i16 sPosterY;             /* 0 to 5 */
    u16 sPosterOrient;        /* 1 or 2 when both poster counts are non-zero */
    i16 sPageBorderLength;    /* pixels */
    u8 bReserved1970[70];     /* zero */
    OemHeader OEMData;        /* at 2040, where the extension region begins */
    WCHAR tcXPIName[160];     /* full path of the printer description file; last wchar 0 */
    WCHAR tcOverlayDir[160];  /* overlay folder; last wchar 0 */
    u32 dwColorFormat;        /* colour format of an Image model */
    u16 sProfile;             /* choice of the colour profile list; validation clears it */
    u16 sScreen;              /* choice of the screen list; validation clears it */
    ColorCommandRow ColorCommand[16]; /* slices of the colour data; sGenColorCmdCount rows in use */
    union { /* a choice per printer option: row of its values, or -1 to -8 for a typed value */
        i16 sPJLValueIndex[32];
        i16 sOCMValueIndex[32]; /* kind 3 */
    };
    union { /* typed values, byte 11 of each NUL */
        char cPJLUserValue[8][12];
        char cOCMUserValue[8][12]; /* kind 3 */
    };
    union { /* command id of the chosen output bin */
        u16 sOutputPJLsid;
        u16 sOutputOCMsid; /* kind 3 */
    };
    u16 bMetric;                  /* 0 or 1; 1 when the locale measures in metric */
    u16 bHTUser;                  /* 0 or 1 */
    i16 sColorCorrection;         /* row of the colour-mode table */
    i16 sResolution;              /* row of the resolution table */
    i16 sScreening;               /* row of the screen table */
    u32 dwOCMFlags;               /* handed to the rendering half */
    u16 sOCMData1;                /* handed to the rendering half */
    u16 sOCMData2;                /* handed to the rendering half */
    u16 sOCMData3;                /* handed to the rendering half */
    u16 sOCMData4;                /* handed to the rendering half */
    i16 sTextOption[4];           /* choice index per text colour option row */
    i16 sGraphicsOption[4];       /* choice index per graphics colour option row */
    i16 sImageOption[4];          /* choice index per image colour option row */
    i16 sGeneralOption[4];        /* choice index per general colour option row */
    union {                       /* what the kind of the model says; live only until the next check */
        u8 bExceptionRegion[738]; /* ends behind the last byte that a style or block may touch */
        struct {
            u8 bStyleCount, bBlockCount; /* kinds 3 and 4: then the styles and the blocks, without gaps */
        };
        u16 sInsertPageList[9]; /* all other kinds */
    };
    u16 sWMTransparency;    /* 0 to 100, or 0xFFFF; a kind 4 model starts at 50 */
    RecordScale szlWMScale; /* percent, at most 10000 */
    u8 bOutputQuality;      /* stored and restored */
    u8 bSeparatorSheet;     /* stored and restored */
    u8 bReserved3730[38];   /* zero */
    u16 sLayoutType;        /* 0 N-up, 1 poster, 99 booklet */
    u16 sColorRadioSaved;   /* 1 when the first of the two colour radio buttons was confirmed */
    u16 sColorFilesMode;    /* 0, 1 or 2: the choice of the colour files dialog */
    u16 sColorRadio;        /* current state of the same radio pair; handed to the rendering half */
    u16 sLayoutTypeShown;   /* the layout type that the dialog showed last */
    u8 bReserved3778[310];  /* zero, with the 304-byte OEM block in its last bytes */
};

struct DriverDevmode {
    WCHAR dmDeviceName[32]; /* printer name; replaced when a record is built */
    u16 dmSpecVersion;      /* must be 1025 (0x0401) */
    u16 dmDriverVersion;    /* 2611 (0x0A33): high byte 10, low byte 51; a higher number is refused */
    u16 dmSize;             /* size of the public part */
    u16 dmDriverExtra;      /* size of the private part */
    u32 dmFields;           /* DM_ flags */
    u16 dmOrientation;      /* 1 portrait, 2 landscape */
    i16 dmPaperSize;        /* paper code */
    i16 dmPaperLength;      /* tenths of a millimetre */
    i16 dmPaperWidth;       /* tenths of a millimetre */
    u16 dmScale;            /* must stay 100; scaling lives in sScale */
    i16 dmCopies;           /* at least 1 */
    /* input bin id; BIN_AUTO; FIRST_MEDIA_SOURCE + n is media row n */
    i16 dmDefaultSource;
    u16 dmPrintQuality;     /* horizontal dots per inch of the chosen resolution row */
    u16 dmColor;            /* 0 when the model has no colour, 1 monochrome, 2 colour */
    u16 dmDuplex;           /* 0 no duplex unit, 1 simplex, 2 and 3 the two-sided modes */
    u16 dmYResolution;      /* vertical dots per inch of the chosen resolution row */
    u16 dmTTOption;         /* 1 to 4 */
    u16 dmCollate;          /* 0 or 1 */
    WCHAR dmFormName[32];   /* kept empty */
    u16 dmLogPixels;        /* kept 0 */
    u32 dmBitsPerPel;       /* kept 0 */
    u32 dmPelsWidth;        /* kept 0 */
    u32 dmPelsHeight;       /* kept 0 */
    u32 dmDisplayFlags;     /* also called dmNup; kept 0 */
    u32 dmDisplayFrequency; /* kept 0 */
    u32 dmICMMethod;        /* 0 to 4, or 256 and up */
    u32 dmICMIntent;        /* 0 to 4, or 256 and up */
    u32 dmMediaType;        /* the media row's media code; 0 to 3, or 256 and up */
    u32 dmDitherType;       /* kept 0 */
    u32 dmReserved1;        /* kept 0 */
    u32 dmReserved2;        /* kept 0 */
    u32 dmPanningWidth;     /* kept 0 */
    u32 dmPanningHeight;    /* kept 0 */
    PrivateDevmode rPrivate;
};

#pragma pack(pop)

static_assert(sizeof(DriverDevmode) == RECORD_SIZE && sizeof(PrivateDevmode) == PRIVATE_BYTES);
static_assert(alignof(DriverDevmode) == 1 && offsetof(DriverDevmode, rPrivate) == PUBLIC_BYTES);

/* The built-in record: what every record starts as before a model fills it. */
extern const DriverDevmode recordTemplate;

#endif
