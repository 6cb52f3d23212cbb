/* The user's own papers without any window: their list, their names, and the four places that know of them. */
#ifndef TQUI_SHEET_SAVED_PAPERS_H
#define TQUI_SHEET_SAVED_PAPERS_H

#include "base/owned.h"
#include "description/paper_row.h"
#include "description/printer_call.h"

/* A list with its spare row. */
struct SavedPapers {
    OwnedBlock<PaperSizeRow>* pRows;
    i16* psCount; /* the spare row is not counted */
};

/* Most papers of a list: the settings file is not read any further. */
int IsListFull(i32 nCount);

/* Removes the rows without a name and puts a new spare row behind the others. A spare row that has got a name becomes
   the last paper. Result: 1; 0 when memory for another row fails: the spare row is then a new one again. */
int CompactPapers(const SavedPapers& papers, const XpiModel* pModel);

/* 1 when two lists have the same rows, byte for byte. */
int SamePapers(const PaperSizeRow* pOne, i32 nOne, const PaperSizeRow* pOther, i32 nOther);

/* 1 when one of the first nRows papers has that name, case included. */
int IsPaperNameTaken(const PaperSizeRow* pRows, i32 nRows, const WCHAR* wcName);

/* Name and size of a paper in its own unit, as "Card (100.0 x 152.4 mm)". wcUnit names that unit. */
void FormatPaper(const PaperSizeRow& row, const WCHAR* wcDecimal, const WCHAR* wcUnit, WCHAR* wcOut, int cch);

/* Stores the papers in the user's settings file, as forms of the printer, and in the value "PaperSizes". The forms of
   the papers that the file had are deleted. Nothing tells of the outcome: while the file cannot be written the others
   stay at its papers, and a form or value that cannot be stored is passed over. */
void StorePapers(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRows, i32 nRows);

#endif
