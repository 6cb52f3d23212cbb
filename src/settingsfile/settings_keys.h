/* The keys of section "PrinterSettings" in the order of the file: what the reader and the writer walk.

   A run is a stretch of the file in which rows do not see each other. Between the runs stand the few keys that
   decide about others; they are code in the reader and the writer:

     XPI                in front     file name of the description that the settings were made for
     WMType             hex          bit 0 chooses RUN_TEXT_WATERMARK, else RUN_FILE_WATERMARK
     ColorMode          always 0     stands for ulColorMode, which no file carries
     InsertPageOffset   -1 or 1      the sign of sInsertPageOffset
     StyleCount ...     see ReadStyles

   In the runs of margins a read-only session reads nothing; of LanguageFeatures it keeps bit 1. */
#ifndef TQUI_SETTINGSFILE_SETTINGS_KEYS_H
#define TQUI_SETTINGSFILE_SETTINGS_KEYS_H

#include "profile/profile_section.h"
#include "settings/driver_devmode.h"

constexpr WCHAR SETTINGS_SECTION[] = TEXT("PrinterSettings");

/* How a value stands in the file; the ways of reading are those of profile/profile_values.h. */
enum KeyForm : u8 {
    KEY_INT,  /* decimal */
    KEY_LONG, /* decimal, of 32 bits */
    KEY_HEX,  /* 8 hexadecimal digits */
    KEY_TEXT  /* at most bCount - 1 characters */
};

/* Sets of kinds. */
enum KindSet : u8 {
    ON_OTHERS = 1, /* all kinds but 3 and 4 */
    ON_3 = 2,
    ON_4 = 4,
    NOT_3 = ON_OTHERS | ON_4,
    ON_ALL = ON_OTHERS | ON_3 | ON_4
};

/* The set that holds only the kind. */
constexpr u8 KindOf(u16 usLanguage)
{
    return usLanguage == 3 ? ON_3 : usLanguage == 4 ? ON_4 : ON_OTHERS;
}

struct SettingKey {
    const WCHAR* wcKey; /* with bCount above 1 on a number: the stem, the index from 0 behind it */
    u16 usOffset;       /* of the field in the record */
    u8 bWidth;          /* bytes of a number; 2 for a character */
    u8 bCount;          /* numbers, or characters of the text with its NUL */
    u8 bStride;         /* bytes from one number to the next */
    u8 bSigned;         /* a 16-bit number with a sign */
    KeyForm form;
    u8 bKindsRead, bKindsWritten;
};

/* Runs in the order of the file. */
enum KeyRun : int {
    RUN_PAGE,           /* Orientation to BindShort; WMType stands behind it */
    RUN_WATERMARK,      /* WMOnePage */
    RUN_TEXT_WATERMARK, /* WMString to WMColor */
    RUN_PLACEMENT,      /* WMPlacement: read always, not written with a text watermark */
    RUN_FILE_WATERMARK, /* WMFileName */
    RUN_COVERS,         /* FrontCover to SeparatorWidth */
    RUN_MARGIN_MODE,    /* Margins; ColorMode stands behind it */
    RUN_MEDIA,          /* MediaTypeIndex to LanguageLevel */
    RUN_MARGINS,        /* MarginLeft to MarginBottom */
    RUN_OUTPUT,         /* BlackText to InsertPages; InsertPageOffset stands behind it */
    RUN_INSERT,         /* InsertPageBin to Screen */
    RUN_COLOR_COMMANDS, /* two stems of one count, written in turn: offset 0, length 0, offset 1 ... */
    RUN_CHOICES,        /* PJLValueIndex to GeneralOption, InsertPages0 to 7; the styles stand behind it */
    RUN_TAIL,           /* WMTransparency to LayoutType */
    RUN_COUNT
};

struct KeyRows {
    const SettingKey* pKeys;
    int nKeys;
};
extern const KeyRows aKeyRuns[RUN_COUNT];

/* A number at any address, as it prints: 32 bits with their sign, 16 bits with one if bSigned, 8 bits without.
   Storing keeps the low bits. */
i32 LoadNumber(const u8* pAt, u8 bWidth, u8 bSigned);
void StoreNumber(u8* pAt, u8 bWidth, i32 lValue);

/* Number nIndex of a key, below its bCount, in the record. */
i32 GetKeyNumber(const DriverDevmode* pRecord, const SettingKey& key, int nIndex);
void SetKeyNumber(DriverDevmode* pRecord, const SettingKey& key, int nIndex, i32 lValue);

/* The exception region of kinds 3 and 4, as offsets from its start at byte 2980 of the record: the two counts,
   then styles and blocks without gaps.

   Style   +0  u16  size of the style          Block   +0  u8   StyleIndex
           +2  u8   StyleType, 0 to 6                  +1  u8   PageCount
           +3  u8   StyleUsage                         +2  u16  a page number each
           +4       by type: aStyleKeys, and a name, see StyleNameAt */
constexpr int STYLES_AT = 2;
constexpr int STYLES_END = 736; /* no style or block may end behind it */
constexpr int STYLE_BODY_AT = 4;
constexpr int BLOCK_BODY_AT = 2;
constexpr int OVERLAY_NAME_CHARS = 24; /* longest StyleOverlayFile, that its size holds */

struct StyleKey {
    const WCHAR* wcStem; /* the index of the style behind it */
    u8 bOffset;          /* from the start of the style */
    u8 bWidth;
    u8 bSigned;
    KeyForm form;
    u8 bTypes; /* bit n: on StyleType n */
    u8 bKindsRead, bKindsWritten;
};
constexpr int STYLE_KEY_COUNT = 14;
extern const StyleKey aStyleKeys[STYLE_KEY_COUNT];

/* Where the name of a style lies in it, at an odd address on type 6; 0 for a type without one. *pwcStem, when
   the result is not 0, is its key's. */
int StyleNameAt(u8 bType, u16 usLanguage, const WCHAR** pwcStem);

/* Bytes of a style with a name of nChars characters. */
int StyleSize(u8 bType, u16 usLanguage, int nChars);

/* Reads StyleCount, BlockCount and what hangs on them into the region (kinds 3 and 4). A style or block that
   would not end at STYLES_END or before is not read, nor any behind it in its list; the counts become those of
   the records read. Blocks follow where the styles end. */
void ReadStyles(const ProfileSection& section, DriverDevmode* pRecord, u16 usLanguage);

#endif
