/* Forms of a printer: its papers as the spooler's users can choose them. Sizes are thousandths of a millimetre. */
#ifndef TQUI_ENTRY_FORMS_H
#define TQUI_ENTRY_FORMS_H

#include "description/margins.h"

constexpr i32 FORM_UNITS_PER_INCH = 25400;

/* Adds a printer form in place of one of that name. Its printable area is what the margins leave: those of the
   upright paper from left and top, those of the rotated one from right and bottom. Sizes are brought to 32 bits.
   Nothing without a name; nothing tells of the outcome. */
void ReplacePrinterForm(PrinterCall& call, const WCHAR* wcName, i64 lWidth, i64 lLength, Margins upright,
                        Margins rotated);

/* Adds a form for each of the model's papers from code 256 on, under the name that the description has for the
   user's language. */
void AddModelForms(PrinterCall& call, const XpiModel* pModel);

/* Adds a form for each saved paper in place of one of its name. The codes begin at that of the first saved paper, and
   the saved papers that margins may be asked from are these. */
void AddSavedPaperForms(PrinterCall& call, const XpiModel* pModel, const PaperSizeRow* pRows, i32 nRows);

#endif
