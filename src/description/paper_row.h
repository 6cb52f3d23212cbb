/* Saved papers and spooler forms as rows, and the defaults that follow the user's locale. */
#ifndef TQUI_DESCRIPTION_PAPER_ROW_H
#define TQUI_DESCRIPTION_PAPER_ROW_H

#include "description/xpi_model.h"
#include "platform/basic.h"

/* One saved paper or form. Unlike all other paper sizes these are hundredths of a millimetre. */
struct PaperSizeRow {
    u32 ulWidth, ulLength; /* hundredths of a millimetre */
    u32 ulMetric;          /* 1: a metric size */
    WCHAR wcName[64];      /* "" marks the spare row, which stands for a new paper */
};
static_assert(sizeof(PaperSizeRow) == 140);

/* The default papers, where no table says otherwise. */
enum : i16 { PAPER_LETTER = 1, PAPER_A4 = 9 };

/* 1 unless the value "iMeasure" of the locale is 1; a missing value counts as 1. */
int IsMetricLocale();

/* PAPER_A4 on a metric locale, PAPER_LETTER otherwise. */
i16 GetDefaultPaper();

/* Built-in size of the default paper in tenths of a millimetre. Result: 1 when it is metric. */
int GetDefaultPaperSize(i16* psWidth, i16* psLength);

/* Fills the spare row behind a list: the model's smallest custom size rounded to whole millimetres times 10
   or tenths of an inch, and no name. */
void NewPaperRow(PaperSizeRow* pRow, const XpiModel* pModel);

#endif
