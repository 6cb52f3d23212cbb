/* Stores the digest of a description. */
#include "entry/digest.h"

#include <cstring>

#include "base/arithmetic.h"
#include "description/installed_set.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "entry/font_subs.h"

namespace {

constexpr int PAPER_NAME_BYTES = 14; /* of a paper's name, without its NUL */
constexpr int MEDIA_NAME_BYTES = 31;

/* A value while it is put together: first counted without a block, then filled. */
struct ValueBytes {
    u8* pBytes;
    u32 cb;
};

void Put(ValueBytes* pValue, const void* pFrom, u32 cb)
{
    if (pValue->pBytes) {
        std::memcpy(pValue->pBytes + pValue->cb, pFrom, cb);
    }
    pValue->cb += cb;
}

void PutWord(ValueBytes* pValue, i16 sWord)
{
    Put(pValue, &sWord, sizeof sWord);
}

/* A narrow text of at most cbMost bytes, and its NUL. */
void PutText(ValueBytes* pValue, const char* cText, u32 cbMost)
{
    u32 cb = 0;
    while (cb < cbMost && cText[cb]) {
        cb++;
    }
    Put(pValue, cText, cb);
    Put(pValue, "", 1);
}

using PutFunction = void (*)(ValueBytes* pValue, const XpiModel* pModel);

/* Stores what fnPut puts together, unless it puts nothing. */
void StoreRows(PrinterCall& call, const XpiModel* pModel, const WCHAR* wcValue, PutFunction fnPut)
{
    ValueBytes counted = {};
    fnPut(&counted, pModel);
    OwnedBlock<u8> pBlock(static_cast<u8*>(AllocateBlock(counted.cb)));
    if (pBlock) {
        ValueBytes filled = {pBlock.get(), 0};
        fnPut(&filled, pModel);
        StorePrinterValue(call, wcValue, REG_BINARY, pBlock.get(), filled.cb);
    }
}

void PutMargins(ValueBytes* pValue, const XpiModel* pModel)
{
    for (i32 i = 0;; i++) {
        const MarginRow* pRow = Row(pModel, pModel->pMargins, i);
        Put(pValue, pRow, sizeof *pRow);
        if (!pRow->usUsed) {
            return;
        }
    }
}

template <class PutPaper> void EachPaper(const XpiModel* pModel, PutPaper putPaper)
{
    for (i32 i = 0;; i++) {
        const PaperRow* pRow = Row(pModel, pModel->pPaperTable, i);
        if (!pRow->sNameId) {
            return;
        }
        putPaper(*pRow);
    }
}

void PutPaperSizes(ValueBytes* pValue, const XpiModel* pModel)
{
    EachPaper(pModel, [pValue](const PaperRow& row) {
        if (row.sPaperCode > USER_SIZED_PAPER) {
            PutWord(pValue, row.sPaperCode);
            PutWord(pValue, row.sWidth);
            PutWord(pValue, row.sLength);
        }
    });
}

void PutStandardPapers(ValueBytes* pValue, const XpiModel* pModel)
{
    EachPaper(pModel, [pValue](const PaperRow& row) {
        if (row.sPclCode >= 0) {
            PutWord(pValue, row.sPaperCode);
            PutWord(pValue, row.sPclCode);
        }
    });
}

void PutPaperNames(ValueBytes* pValue, const XpiModel* pModel)
{
    EachPaper(pModel, [pValue](const PaperRow& row) {
        if (row.cPaperName[0]) {
            PutWord(pValue, row.sPaperCode);
            PutText(pValue, row.cPaperName, PAPER_NAME_BYTES);
        }
    });
}

void PutMediaNames(ValueBytes* pValue, const XpiModel* pModel)
{
    for (i32 i = 0;; i++) {
        const MediaRow* pRow = Row(pModel, pModel->pMediaTypes, i);
        if (!pRow->ulMask) {
            break;
        }
        PutText(pValue, pRow->cMediaName, MEDIA_NAME_BYTES);
    }
    Put(pValue, "", 1);
}

void StoreMemory(PrinterCall& call, const XpiModel* pModel, const DeviceInfo& info)
{
    i32 lMemory = LowWord(LookupXpiMemory(pModel, static_cast<u16>(pModel->sStdMemory + pModel->sOptMemory)));
    if (info.ulOptions & OPTION_DISK) {
        lMemory += pModel->sDiskMemory;
    }
    SetPrinterMemory(call, static_cast<u32>(lMemory));
}

void StoreFontSubs(PrinterCall& call, const XpiModel* pModel)
{
    OwnedBlock<WCHAR> pList;
    u32 cb = BuildFontSubs(call, pModel, 1, &pList);
    if (cb && pList) {
        SetFontSubs(call, pList.get(), cb);
    }
}

void StoreColorData(PrinterCall& call)
{
    XpiFile* pFile = OpenXpiFile(call);
    u32 cb = pFile ? ReadXpiColorData(*pFile, nullptr) : 0;
    OwnedBlock<u8> pData(static_cast<u8*>(AllocateBlock(cb ? cb : 1)));
    if (pData && (!cb || ReadXpiColorData(*pFile, pData.get()) == cb)) {
        StorePrinterValue(call, TEXT("ColorData"), REG_BINARY, pData.get(), cb ? cb : 1);
    }
}

} // namespace

void DigestXpi(PrinterCall& call, const XpiModel* pModel)
{
    DeviceInfo info;
    BuildDeviceInfo(call, pModel, &info, 1);
    SetDeviceInfo(call, &info);
    call.rDeviceInfo = info; /* what is told from now on */
    call.deviceState = ANSWERED;
    if (pModel->pMemoryTable) {
        StoreMemory(call, pModel, info);
    }
    if (pModel->sResFontCount > 0) {
        StoreFontSubs(call, pModel);
    }
    if (pModel->pMargins) {
        StoreRows(call, pModel, TEXT("Margin"), PutMargins);
    }
    u16 usKind = pModel->usLanguage;
    if (pModel->pPaperTable) {
        StoreRows(call, pModel, TEXT("PaperSizes"), PutPaperSizes);
        if (usKind == KIND_PCL6 || usKind == KIND_PCL5) {
            StoreRows(call, pModel, TEXT("StdPapers"), PutStandardPapers);
        }
        if (usKind == KIND_PCL6) {
            StoreRows(call, pModel, TEXT("PaperNames"), PutPaperNames);
        }
    }
    if (pModel->usColorClass != CLASS_COLOR) {
        StoreColorData(call);
    }
    if (pModel->pMediaTypes) {
        StoreRows(call, pModel, TEXT("MediaTypes"), PutMediaNames);
    }
}
