/* Rewrites the value of the papers' sizes. */
#include "entry/paper_sizes.h"

#include <cstring>

#include "description/paper.h"
#include "description/printer_store.h"

namespace {

const WCHAR* const wcPaperSizes = TEXT("PaperSizes");

constexpr u32 ROW_BYTES = sizeof(StoredPaperSize);

/* Bytes of the leading rows, at most nMost, whose papers are the model's. */
u32 CountModelBytes(const u8* pValue, u32 cbValue, i32 nMost)
{
    u32 cbKept = 0;
    for (i32 i = 0; i < nMost && cbKept + ROW_BYTES <= cbValue; i++, cbKept += ROW_BYTES) {
        StoredPaperSize row;
        std::memcpy(&row, pValue + cbKept, sizeof row);
        if (row.usCode >= FIRST_SAVED_CODE) {
            break;
        }
    }
    return cbKept;
}

/* Stores the first cbKept bytes of the old value with a row for each paper behind them. */
void StoreRows(PrinterCall& call, const u8* pOld, u32 cbKept, const PaperSizeRow* pRows, i32 nRows)
{
    u32 cbNew = static_cast<u32>(nRows) * ROW_BYTES;
    OwnedBlock<u8> pNew(static_cast<u8*>(AllocateBlock(static_cast<u64>(cbKept) + cbNew)));
    if (!pNew) {
        return;
    }
    if (cbKept) {
        std::memcpy(pNew.get(), pOld, cbKept);
    }
    for (i32 i = 0; i < nRows; i++) {
        StoredPaperSize row = {static_cast<u16>(FIRST_SAVED_CODE + i),
                               static_cast<u16>(pRows[i].ulWidth / 10),
                               static_cast<u16>(pRows[i].ulLength / 10)};
        std::memcpy(pNew.get() + cbKept + static_cast<size_t>(i) * sizeof row, &row, sizeof row);
    }
    StorePrinterValue(call, wcPaperSizes, REG_BINARY, pNew.get(), cbKept + cbNew);
}

} // namespace

void AppendPaperSizes(PrinterCall& call, const PaperSizeRow* pRows, i32 nRows)
{
    OwnedBlock<u8> pOld;
    u32 cbOld;
    if (ReadPrinterBlock(call, wcPaperSizes, &pOld, &cbOld) != VALUE_UNREADABLE) {
        StoreRows(call, pOld.get(), cbOld, pRows, nRows);
    }
}

void ReplacePaperSizes(PrinterCall& call, i32 nModelPapers, const PaperSizeRow* pRows, i32 nRows)
{
    OwnedBlock<u8> pOld;
    u32 cbOld;
    if (ReadPrinterBlock(call, wcPaperSizes, &pOld, &cbOld) == VALUE_UNREADABLE) {
        return; /* the model's rows in it are not to be lost */
    }
    u32 cbKept = CountModelBytes(pOld.get(), cbOld, nModelPapers);
    if (cbKept || nRows > 0) {
        StoreRows(call, pOld.get(), cbKept, pRows, nRows);
    } else {
        DeletePrinterDataW(call.hPrinter, const_cast<LPWSTR>(wcPaperSizes));
    }
}
