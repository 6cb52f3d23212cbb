/* A row that a table really has: for indexes that a model names by itself, where the row behind the closing one
   would be a row of another table. */
#ifndef TQUI_SETTINGS_COUNTED_ROW_H
#define TQUI_SETTINGS_COUNTED_ROW_H

#include <cstring>

#include "description/xpi_model.h"

/* Row nIndex of a table whose rows begin with a u32 that is zero in the closing row. Null when the table is
   absent or closed before that row. */
template <class RowType> const RowType* CountedRow(const XpiModel* pModel, const RowType* pTable, i32 nIndex)
{
    static_assert(sizeof(RowType) >= sizeof(u32));
    for (i32 i = 0; i <= nIndex; i++) {
        u32 ulFirst;
        std::memcpy(&ulFirst, Row(pModel, pTable, i), sizeof ulFirst);
        if (!ulFirst) {
            return nullptr;
        }
    }
    return nIndex < 0 ? nullptr : Row(pModel, pTable, nIndex);
}

#endif
