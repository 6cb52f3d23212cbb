/* What a list or combo box has selected, in plain data. */
#ifndef TQUI_SHEET_SELECTION_H
#define TQUI_SHEET_SELECTION_H

#include "platform/types.h"

struct Selection {
    int bChosen; /* 0: no row is selected, or the control is not there; a record's field is left alone then */
    i32 lValue;  /* item data of the row */
};

constexpr i32 ValueOr(const Selection& selection, i32 lOther)
{
    return selection.bChosen ? selection.lValue : lOther;
}

/* 1 when a row is selected that says something else than the record. */
constexpr int IsOther(const Selection& selection, i32 lValue)
{
    return selection.bChosen && selection.lValue != lValue;
}

#endif
