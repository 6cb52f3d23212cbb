/* Lists of papers: the model's and the user's own, as the Paper page and the dialog of saved papers show them. */
#ifndef TQUI_SHEET_PAPER_LISTS_H
#define TQUI_SHEET_PAPER_LISTS_H

#include "sheet/session.h"

/* Appends the saved papers to IDC_SIZES_LIST, the only list box of papers, or to a combo box; item data is the paper
   code. With bDetail each row also shows the size in the paper's own unit. Papers whose code does not fit into 16 bits
   are left out. */
void FillPaperList(HWND hDialog, const UiSession* pSession, int nControl, int bDetail);

/* Fills IDC_PAPER_SIZE and IDC_PAPER_TARGET of the Paper page from empty: the model's papers, then the saved ones; item
   data is the paper code. While bPaperHasTarget is clear the target list begins with the row "none", item data -1.
   Nothing is selected afterwards. */
void FillPaperCombo(HWND hPage, UiSession* pSession);

/* Fills both lists of an open Paper page once more after the saved papers have changed. The rows that were selected are
   found again by their exact text; a paper that is gone gives way to the default paper, a target to the first row. */
void RefreshPaperCombos(UiSession* pSession);

#endif
