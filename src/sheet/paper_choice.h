/* What the Paper page's controls say, in plain data, and what becomes of the record by it. No window is asked for here. */
#ifndef TQUI_SHEET_PAPER_CHOICE_H
#define TQUI_SHEET_PAPER_CHOICE_H

#include "description/xpi_model.h"
#include "settings/driver_devmode.h"
#include "sheet/selection.h"

constexpr i32 ZOOM_MIN = 25, ZOOM_NONE = 100, ZOOM_MAX = 400; /* percent */
constexpr i32 COPIES_MIN = 1, COPIES_MAX = 99;

/* A bit of the language features that the user sets on image models. */
constexpr u32 FEATURE_IMAGE_OPTION = 0x08;

struct PaperChoice {
    Selection paper;    /* code */
    Selection media;    /* row of the media, counted from 1 */
    Selection output;   /* command id of the output bin */
    i32 lCopies, lZoom; /* as typed */
    int bCollate, bReverse, bCentre, bImageOption;
};

/* 1 for the models that have the image option. */
int HasImageOption(const XpiModel* pModel);

/* Row of the media, counted from 1, that the record asks for. */
i32 ShownMedia(const DriverDevmode& record);

/* 1 when the choice differs from the record, or the record from the snapshot in a field that is written before the apply. */
int PaperDiffers(const PaperChoice& choice, const XpiModel* pModel, const DriverDevmode& record,
                 const DriverDevmode& snapshot);

/* Writes the choice into the record, but for the size of the paper. */
void StorePaper(const PaperChoice& choice, const XpiModel* pModel, DriverDevmode* pRecord);

/* Writes a zoom, within its limits, into the record, as the zoom's edit control does when it loses the focus. */
void StoreZoom(i32 lZoom, DriverDevmode* pRecord);

/* How the controls of the scaling stand for a record. */
struct ScalingState {
    i32 lZoom;                           /* percent that is shown */
    int bCentre;                         /* the zoomed page is centred */
    int bZoomOffered;                    /* the zoom may be edited */
    i32 lTarget;                         /* paper of the target list; -1: its first row */
    int bFit, bCentreTarget, bTargetSet; /* both check boxes of the target, and whether they may be clicked */
    int bBlockedByLayout;                /* the sign for a target that N-up excludes */
};
ScalingState DescribeScaling(const PrivateDevmode& part, int bNup, int bScalingAllowed);

#endif
