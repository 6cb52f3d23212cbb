/* What the Layout page's controls say, in plain data, and what becomes of the record by it. No window is asked for here. */
#ifndef TQUI_SHEET_LAYOUT_CHOICE_H
#define TQUI_SHEET_LAYOUT_CHOICE_H

#include "description/printer_call.h"
#include "description/xpi_model.h"
#include "settings/driver_devmode.h"
#include "sheet/selection.h"

/* Pages in a group of a booklet are whole sheets of four pages each. */
constexpr i32 BOOKLET_PAGES = 4, BOOKLET_LIMIT = 32764;

struct LayoutChoice {
    int bLandscape, bRotate180, bBorders;
    Selection type;   /* LAYOUT_ values */
    Selection pages;  /* on a sheet */
    Selection order;  /* of the pages on a sheet */
    Selection poster; /* sheets across and down; 0: none */
    int bBindRight;   /* of a booklet */
    i32 lBooklet;     /* pages in a group of a booklet, as typed */
    u16 usDuplex;     /* 1 to 3, as dmDuplex */
};

/* What the page asks of a printer. */
struct LayoutDevice {
    int bDuplex;                    /* the model can print on both sides */
    int bDuplexUnit;                /* and the unit is installed */
    int bPosterSizes;               /* the rendering half makes posters of several sizes */
    int bOnServer;                  /* on a shared printer there are neither booklets nor two sides */
    i16 sDefaultBin, sDefaultMedia; /* of the model */
};
LayoutDevice DescribeLayoutDevice(const XpiModel* pModel, const DeviceInfo& info, int bOnServer);

/* 1 when the choice differs from the record, or the record from the snapshot in a field that is written before the apply. */
int LayoutDiffers(const LayoutChoice& choice, const LayoutDevice& device, const DriverDevmode& record,
                  const DriverDevmode& snapshot);

/* Writes the choice into the record, but for the size of the paper. */
void StoreLayout(const LayoutChoice& choice, const LayoutDevice& device, DriverDevmode* pRecord);

/* What a page's start repairs: a shared printer prints one side, and no booklet. */
void RepairSharedLayout(DriverDevmode* pRecord);

/* Pages of a booklet's group that are shown for a stored or typed number: whole sheets, 0 to BOOKLET_LIMIT. */
i32 BookletPages(i32 lPages);

#endif
