/* What the live picture of a sheet is made from. A request is built anew, zero-filled, for each paint. Lengths on
   paper are measures: hundredths of a millimetre. Pixels are those of the dialog. All divisions cut. */
#ifndef TQUI_PREVIEW_PREVIEW_REQUEST_H
#define TQUI_PREVIEW_PREVIEW_REQUEST_H

#include "platform/basic.h"
#include "watermark/watermark_entry.h"

struct PreviewRequest {
    i32 lPageWidth, lPageLength; /* of the document's paper */
    u16 sOrientation; /* 1 portrait; landscape: 2 as stored in a record, 0 as read from an open page */
    i32 bRotate180;   /* the picture is turned by 180 degrees */
    u16 sResolution;  /* dots per inch of the job, for image watermarks */
    i16 sLayout; /* pages per sheet 1, 2, 4, 6, 8, 9, 12, 16, 25; 99 booklet; 0 no page content (editors) */
    i16 sPageOrder;             /* 0 to 3, 16 to 19 */
    i16 sPosterSize;            /* tiles per side; below 2 no poster */
    i32 bBorders;               /* borders around the pages of a sheet */
    WatermarkEntry* pWatermark; /* a copy that the composition scales in place, or null; the caller's */
    i32 bWMOnePage;             /* the watermark is on the first page only */
    i16 sPreviewControl;        /* control of the frame: IDC_PREVIEW, in the editors IDC_MARK_PREVIEW */
    i32 bCenterInFrame;         /* a flat sheet stands in the frame's middle, not on its bottom edge */
    i32 bDeviceExtent;          /* the sheet shrinks in proportion to the device's largest paper */
    i32 bEnvelope;
    i32 bColor;
    i16 sZoom;                       /* percent; 0 stands for 100 */
    i32 lTargetWidth, lTargetLength; /* of the paper that leaves the printer; 0: the page's own */
    i32 bNotCentered;                /* a scaled page stays in the sheet's top left corner */
    i32 bFitZoom;                    /* the zoom follows from page and target */
};

/* What a picture takes from the printer. */
struct PreviewDevice {
    i32 lMaxWidth, lMaxLength; /* of the largest paper, tenths of a millimetre */
    i32 lDefaultWidth,
        lDefaultLength; /* measures of the default paper: stands in for a paper without a size */
    WCHAR wcLabel
        [128];  /* the model's preview label; "M" without one of its own. Of one character: the logo letter
                           of a single page; longer: the text in its middle */
    u32 bLabel; /* the model has a label of its own */
};

#endif
