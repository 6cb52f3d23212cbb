/* What a preview shows, as plain choices: read from a record, or from pages that are open, whose controls then win item
   by item. From the same choices come the text panel beside the picture and the request for the picture. */
#ifndef TQUI_PREVIEW_PREVIEW_CHOICE_H
#define TQUI_PREVIEW_PREVIEW_CHOICE_H

#include "description/paper_row.h"
#include "description/string_ids.h"
#include "description/xpi_file.h"
#include "preview/preview_request.h"
#include "settings/driver_devmode.h"

constexpr u16 NO_TARGET = 0xFFFF;

struct PreviewChoice {
    u16 usPaper, usTarget; /* paper codes; target: that the page is scaled to, NO_TARGET for none */
    i32 lZoom;             /* percent, as it was typed; 0 stands for 100 */
    int bCentred, bFitZoom, bScaled;
    i32 lCopies;
    int bCollate, bReverse;
    u16 usFrontCover, usBackCover, usSeparators; /* 1 and 2 show; others none */
    u16 usDuplex;                                /* 2 and 3 are two-sided */
    u16 usOrientation;                           /* as in a request */
    int bRotate180;
    i16 sLayout; /* as in a request */
    int bBooklet;
    i16 sPosterSize, sPageOrder; /* as in a request */
    int bBorders;
    i32 lWatermark; /* row of the list; outside it: none */
    int bWMOnePage;
    int bColor;
    u16 usResolution; /* dots per inch of the job */
};

/* What a printer and its user offer to choose from. An array may be null whatever its count says: it has no rows
   then. */
struct PreviewLists {
    const XpiModel* pModel;
    const PaperSizeRow* pCustomPapers;
    i32 nCustomPapers;
    const PaperSizeRow* pForms; /* of the spooler; their codes follow those of the custom papers */
    i32 nForms;
    const WatermarkEntry* pWatermarks;
    i32 nWatermarks;
};

/* The choices that a record holds, also one that nothing has checked yet. */
PreviewChoice ChoiceFromRecord(const DriverDevmode& record, const PreviewLists& lists);

/* Colour is on when the record's colour mode says so, or else the choice does. */
int IsPreviewColor(const DriverDevmode& record, int bChosen);

/* Dots per inch of a row of the resolutions; 0 when the model has no such row. */
u16 ResolutionOfRow(const XpiModel* pModel, i32 nRow);

/* A paper by its code. One that is found nowhere has the size of the default paper: this never fails. Unlike
   GetPaperSize it finds all rows of the model's table. */
struct PreviewPaper {
    i32 lWidth, lLength; /* measures, as the list has them */
    int bMetric, bEnvelope;
};
PreviewPaper FindPreviewPaper(const PreviewLists& lists, u16 usPaper);

/* The papers of a choice. Without a target it is the paper itself. */
struct PreviewSizes {
    i32 lPageWidth, lPageLength, lTargetWidth, lTargetLength;
    int bEnvelope, bMetric; /* of the paper that is shown: the target's if there is one */
    u16 usShown;            /* its code */
};
PreviewSizes FindPreviewSizes(const PreviewLists& lists, const PreviewChoice& choice);

/* The language library's name of the unit of a size line. */
constexpr u16 UnitString(int bMetric)
{
    return bMetric ? IDS_UNIT_MM : IDS_UNIT_INCH;
}

/* The size line, such as "8.5 x 11 in", into TEXT_CHARS of room; zeros at a fraction's end are left out.
   wcUnit   name of the unit that bMetric tells, see UnitString */
void FormatSizeLine(const PreviewSizes& sizes, const PreviewChoice& choice, int bMetric, const WCHAR* wcUnit,
                    const WCHAR* wcDecimal, WCHAR* wcOut);

/* The status lines in their order, as far as there is room for them; those behind are dropped. */
constexpr int STATUS_LINES = 5;
struct StatusLine {
    u16 usString; /* of the language library */
    i32 lCopies;  /* above 0: goes into the string, for its %d */
};
int ListStatusLines(const PreviewChoice& choice, const XpiModel* pModel, StatusLine (&aLines)[STATUS_LINES]);

/* A line's text from its string, into TEXT_CHARS of room. */
void FormatStatusLine(const StatusLine& line, const WCHAR* wcString, WCHAR* wcOut);

/* The request for the picture, for the frame of the document pages. A watermark is copied to *pCopy, which must outlive
   the request; without colour a text is made grey on models that could print it coloured. */
void RequestFromChoice(const PreviewChoice& choice, const PreviewSizes& sizes, const PreviewLists& lists,
                       WatermarkEntry* pCopy, PreviewRequest* pRequest);

/* What the pictures of a model take from it; usLanguage and hLanguageDll as for ReadXpiString. */
void DescribePreviewDevice(XpiFile& file, const XpiModel* pModel, u16 usLanguage, HMODULE hLanguageDll,
                           PreviewDevice* pDevice);

#endif
