/* The parameters that an image printer's rendering half gets, at the job's start, for each sheet and at its
   end. The model chooses between two forms, which do not hold the same data:

   Text     "key=value" texts, each with its NUL, and one NUL more. ANSI code page, numbers in decimal, in
            this order: modelName, xpiName, format; hts, errDiff with a screen table; for each row of the
            four option lists intent/preserveK/correction2/correction3 + Text, Image, Graphics, and
            correctionGeneral0 to 3; cmm; profile, halftone where the record wants them; dpi.x, dpi.y,
            contrast, brightness; jobName at the job's start; the output bin under its own key; the printer's
            features under theirs.
   Binary   RenderParameterRecord. */
#ifndef TQUI_ENTRY_RENDER_PARAMETERS_H
#define TQUI_ENTRY_RENDER_PARAMETERS_H

#include "description/printer_call.h"
#include "settings/driver_devmode.h"

#pragma pack(push, 1)

/* Little-endian, zero where nothing is said. Names are narrow, in the ANSI code page, ended by a NUL; what
   does not fit loses whole characters at its end. */
struct RenderParameterRecord {
    char cModelName[32]; /* the printer's driver */
    char cXpiName[200];  /* the record's tcXPIName */
    u32 dwColorFormat;
    u16 usScreen;           /* number of the chosen screen; 0 without a screen table */
    u32 adwTextOptions[16]; /* number of the chosen value, for each row of the list; at 238 */
    u32 adwImageOptions[16];
    u32 adwGraphicsOptions[16];
    u32 adwGeneralOptions[16];
    u16 sProfile;                 /* at 494 */
    char cProfileName[200];       /* with sProfile 2 */
    u16 sScreen;                  /* at 696 */
    char cScreenName[200];        /* with sScreen 1 */
    u16 usDpiX, usDpiY;           /* at 898 */
    u16 usContrast, usBrightness; /* two's complement */
    u8 bReserved906[8];
    u16 usColorRadio; /* the record's sColorRadio */
    u8 bReserved916[64];
    u32 dwOCMFlags;
    u16 sOCMData1, sOCMData2, sOCMData3, sOCMData4;
    u8 bReserved992[4];
    u32 dwJobId; /* at the job's start when the job has a name, else 0 */
    u8 bReserved1000[40];
};

#pragma pack(pop)

#define RENDER_AT(nOffset, nSize, field) \
    static_assert(offsetof(RenderParameterRecord, field) == (nOffset) && \
                      sizeof(RenderParameterRecord::field) == (nSize), \
                  #field " is not at " #nOffset)
RENDER_AT(0, 32, cModelName);
RENDER_AT(32, 200, cXpiName);
RENDER_AT(232, 4, dwColorFormat);
RENDER_AT(236, 2, usScreen);
RENDER_AT(238, 64, adwTextOptions);
RENDER_AT(302, 64, adwImageOptions);
RENDER_AT(366, 64, adwGraphicsOptions);
RENDER_AT(430, 64, adwGeneralOptions);
RENDER_AT(494, 2, sProfile);
RENDER_AT(496, 200, cProfileName);
RENDER_AT(696, 2, sScreen);
RENDER_AT(698, 200, cScreenName);
RENDER_AT(898, 2, usDpiX);
RENDER_AT(900, 2, usDpiY);
RENDER_AT(902, 2, usContrast);
RENDER_AT(904, 2, usBrightness);
RENDER_AT(906, 8, bReserved906);
RENDER_AT(914, 2, usColorRadio);
RENDER_AT(916, 64, bReserved916);
RENDER_AT(980, 4, dwOCMFlags);
RENDER_AT(984, 2, sOCMData1);
RENDER_AT(986, 2, sOCMData2);
RENDER_AT(988, 2, sOCMData3);
RENDER_AT(990, 2, sOCMData4);
RENDER_AT(992, 4, bReserved992);
RENDER_AT(996, 4, dwJobId);
RENDER_AT(1000, 40, bReserved1000);
static_assert(sizeof(RenderParameterRecord) == 1040 && alignof(RenderParameterRecord) == 1);
#undef RENDER_AT

/* Builds the parameters from a settled record and sets the record's dmICMMethod to 2.
   pBuffer     O   null counts as of no size; all *pcbLength bytes are cleared first
   pcbLength   IO  size of the buffer; needed size. A text that did not fit asks for some bytes more than it
                   will take (about 4 an entry), so a second call with that size succeeds and tells the true
                   one. A text never takes 1040 bytes, so that the length tells the form.
   wcJobName   the document's name at the job's start, else null
   Result: 1 when all was written; 0 with the new length when it does not fit, and with the old one, the
   buffer cleared, when a name could not be converted. */
int BuildRenderParameters(PrinterCall& call, void* pBuffer, u32* pcbLength, const WCHAR* wcJobName,
                          DriverDevmode* pRecord, const XpiModel* pModel, XpiFile& file);

/* Each writes one entry of the text at an offset and gives its bytes with the NUL. An entry that does not
   leave room for 6 bytes beside key and value is not written, and those are its bytes then. */
size_t AppendKeyValue(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, const char* cValue);
size_t AppendKeyNumber(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, i32 lNumber);
/* Key and index without a gap; nIndex from 0 to 9999, which the 6 bytes cover. */
size_t AppendIndexedKeyValue(char* cBuffer, size_t cbBuffer, size_t nOffset, const char* cKey, int nIndex,
                             const char* cValue);

#endif
