/* What the watermarks page and its editors say, in plain data, and what becomes of the record and of the list's rows by
   it. No window is asked for here. */
#ifndef TQUI_SHEET_WATERMARK_CHOICE_H
#define TQUI_SHEET_WATERMARK_CHOICE_H

#include "description/xpi_model.h"
#include "settings/driver_devmode.h"
#include "sheet/selection.h"
#include "watermark/watermark_entry.h"

constexpr i32 NO_MARK = -1; /* in the place of a row: no watermark */
constexpr i32 TRANSPARENCY_MAX = 100;
constexpr i32 DARKNESS_MIN = 1, DARKNESS_MAX = 100; /* percent */
constexpr i32 MARK_SCALE_MAX = 400;
constexpr u32 MARK_GREY = 0xC0C0C0; /* of trials, and of new texts without colour */

struct WatermarksChoice {
    Selection mark;    /* row of the list, or NO_MARK */
    int bFirstPage;    /* the watermark is on the first page only */
    i32 lTransparency; /* within 0 to TRANSPARENCY_MAX; counts on the second image kind only */
};

/* 1 for the models that print a watermark's own values; for the others a file is built from them. */
constexpr int PrintsMarkItself(const XpiModel* pModel)
{
    return pModel->usLanguage == KIND_IMAGE_SECOND;
}
constexpr int IsColorModel(const XpiModel* pModel)
{
    return pModel->usColorClass == CLASS_COLOR || pModel->usColorClass == CLASS_TOLD_COLOR;
}

/* The record's transparency as the page shows it. */
i32 ShownTransparency(const PrivateDevmode& part);

/* 1 when the choice differs from the record, or the record's unit from the snapshot's.
   nMatched   row that the record's watermark came from, or NO_MARK */
int WatermarksDiffer(const WatermarksChoice& choice, i32 nMatched, const XpiModel* pModel,
                     const DriverDevmode& record, const DriverDevmode& snapshot);

/* Takes the watermark out of the record. Transparency and scale stay. */
void ClearWatermark(PrivateDevmode* pPart);

/* Writes a row of the list into the record: its built file, or its own values on a model that prints them. */
void StoreWatermark(const WatermarksChoice& choice, const WatermarkEntry& row, const XpiModel* pModel,
                    DriverDevmode* pRecord);

/* Darkness in percent and the grey that it stands for; of a colour the darkness of its grey. */
u32 ColorOfDarkness(i32 lDarkness);
i32 DarknessOfColor(u32 ulColor);

/* Tenths of a degree from degrees as typed. */
u16 AngleOfDegrees(i32 lDegrees);

/* Writes what an editor shows into its row of the list; both editors call it when they are confirmed. A text keeps
   what its editor does not show, its built files among it; an image does not. */
void StoreMark(const WatermarkEntry& shown, const XpiModel* pModel, WatermarkEntry* pRow);

/* Scales an image for the picture as its file was built: from the dots per inch of the file to those of the job. What
   cannot be worked out leaves it. */
void FitImageScale(const WatermarkEntry& row, const XpiModel* pModel, u16 usResolution,
                   WatermarkEntry* pShown);

#endif
