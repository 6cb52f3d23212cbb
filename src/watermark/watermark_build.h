/* Has the watermark builder, a program of its own, make the files of a row. The two share a command file in the user's
   folder, with one section "MAKEWM", and an event that bears the command file's name.

     Printer               text   name of the printer
     OutputFile            text   path of the file to make
     Type                  long   WMType
     Resolution, ImageDriver, Angle
                           int    dots per inch; 1 on kind 3, else 0; WMAngle
     on type 2:
     image.File            text   WMImageName
     image.Scale.x, .y     long   percent
     on others:
     text.String, .Face    text
     text.CharSet, .Outline, .PtSize
                           int
     text.Color            long   COLORREF: grey, but the row's own on kind 3 and for the colour file
     text.Bold, .Italic, .AutoFontChange, .RightToLeft
                           int    the third is 0
     Size.x, Size.y, Result
                           int    -1, and what the builder says behind its work: 0 is good
     text.FontChange       int    the builder's: 1 to have a text built again at the next apply

   Names are "%08lX.INI", ".WM" and ".CWM" of one tick count. */
#ifndef TQUI_WATERMARK_WATERMARK_BUILD_H
#define TQUI_WATERMARK_WATERMARK_BUILD_H

#include "description/printer_call.h"
#include "watermark/watermark_entry.h"

constexpr u32 BUILDER_MILLISECONDS = 10000; /* that one run of the builder is waited for */

struct WatermarkBuild {
    const WCHAR* wcPrinterName;
    const WCHAR* wcUserFolder;
    u16 usResolution; /* the printer's default */
    u16 usLanguage;
    u16 usColorClass;
    int bTrial; /* monochrome only, and the file is deleted again */
    const WatermarkEntry*
        pRows; /* the list in memory, nRows of them: its files are never taken for forgotten ones */
    i32 nRows;
    void (*pfnWaiting)(void* pContext); /* called twenty times a second of waiting */
    void* pContext;
};

/* Builds the files of *pRow and fills its resolution, names, sizes and, for text, bWMStale. Names that the row has are
   overwritten, their files are the caller's to delete before. First of all, what a lost power or a builder that was
   never there left of earlier builds goes.
   Result: what the builder said of the first file. 0 also, with sizes of 0 and no colour file, when it could not be started:
   the command file then stays until the next build; and, without names, when there is no name or no memory. Sizes and
   result are -1 when the builder did not answer. A file that a list could not keep, as it has no size, is deleted. */
int RunWatermarkBuild(PrinterCall& call, const WatermarkBuild& build, WatermarkEntry* pRow);

#endif
