/* All pages there are, in the order of their tabs. */
#ifndef TQUI_SHEET_PAGE_TABLE_H
#define TQUI_SHEET_PAGE_TABLE_H

#include "sheet/page_frame.h"

extern const PageTableRow aPageTable[];

/* The About page: of a sheet that has no other. */
extern const PageTableRow rAboutPage;

#endif
