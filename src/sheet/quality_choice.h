/* What the Quality page's controls say, in plain data, and what becomes of the record by it. No window is asked for here. */
#ifndef TQUI_SHEET_QUALITY_CHOICE_H
#define TQUI_SHEET_QUALITY_CHOICE_H

#include "description/xpi_model.h"
#include "settings/driver_devmode.h"
#include "sheet/selection.h"
#include "watermark/watermark_entry.h"

constexpr i32 TONE_MIN = -50, TONE_MAX = 50; /* contrast and brightness */

struct QualityChoice {
    int bColor;
    Selection mode;   /* row of the colour modes */
    Selection intent; /* as dmICMIntent */
    int bAdjustment;
    Selection resolution; /* row */
    Selection screening;  /* row */
    int bBlackText;
    Selection contrast, brightness; /* as typed; what is no number counts as not chosen */
};

/* Which of the alternatives below the first group are seen: the colour correction with its options or with the rendering
   intent, the tone, or nothing.
   ulModeMask   kinds of all colour modes of the model
   ulKind       of the mode that is selected; 0 without one */
struct ColorGroup {
    int bCorrection;
    int bEditable; /* a mode has options or an intent: decides which of two labels is seen */
    int bIntent, bOptions, bOptionsOffered, bTone;
};
ColorGroup DescribeColorGroup(const XpiModel* pModel, u32 ulModeMask, u16 usColor, u32 ulKind);

/* 1 when the choice differs from the record, or the record from the snapshot in a field that is written before the apply;
   the names of the colour files are not looked at. */
int QualityDiffers(const QualityChoice& choice, const XpiModel* pModel, const DriverDevmode& record,
                   const DriverDevmode& snapshot);

/* Writes the choice into the record. nRows of pRows are the user's watermarks: one that the record has is given the file
   that was built for its colours. */
void StoreQuality(const QualityChoice& choice, const XpiModel* pModel, const WatermarkEntry* pRows, i32 nRows,
                  DriverDevmode* pRecord);

#endif
