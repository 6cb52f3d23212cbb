/* The list of watermarks of a printer. */
#include "watermark/watermark_store.h"

#include <cstring>

#include "description/printer_store.h"
#include "platform/text.h"
#include "watermark/watermark_rows.h"

namespace {

constexpr u32 WM_OUTLINE = 0x10; /* of ulWMType */

/* The record's side of a comparison: its texts may lack their NUL. */
struct SoughtWatermark {
    WCHAR wcString[64 + 1];
    WCHAR wcFace[32 + 1];
    WCHAR wcOverlayName[96 + 1];
};

template <int cch> int IsSameText(const WCHAR (&wcField)[cch], const WCHAR* wcSought)
{
    return lstrcmpW(wcField, wcSought) == 0;
}

int IsSameTextWatermark(const WatermarkEntry& row, const SoughtWatermark& sought, const PrivateDevmode* p)
{
    return static_cast<u8>(p->sWMCharSet) == row.WMCharSet &&
           static_cast<u32>(static_cast<i32>(row.WMSize)) == p->ulWMPtSize && row.WMBold == p->sWMBold &&
           row.WMItalic == p->sWMItalic && row.WMAngle == p->ulWMAngle && row.WMColor == p->ulWMColor &&
           !row.WMOutline == !(p->ulWMType & WM_OUTLINE) && IsSameText(row.WMString, sought.wcString) &&
           IsSameText(row.WMFace, sought.wcFace);
}

int IsSameImage(const WatermarkEntry& row, const SoughtWatermark& sought, const PrivateDevmode* p)
{
    return row.WMScaleX == p->szlWMScale.cx && row.WMScaleY == p->szlWMScale.cy &&
           row.WMPlacement == p->usWMPlacement && IsSameText(row.WMImageName, sought.wcOverlayName);
}

void DeleteBuiltFile(WCHAR (&tcName)[PATH_CHARS])
{
    if (tcName[0]) {
        DeleteFileW(tcName);
        std::memset(tcName, 0, sizeof tcName);
    }
}

} // namespace

i32 GetSavedWatermarks(PrinterCall& call, OwnedBlock<WatermarkEntry>* outRows)
{
    return ReadWatermarks(GetUserSettings(call), outRows);
}

void SetSavedWatermarks(PrinterCall& call, const WatermarkEntry* pRows, i32 nCount)
{
    WCHAR tcPath[PATH_CHARS];
    if (GetUserSettingsPath(call, tcPath)) {
        WriteWatermarks(tcPath, pRows, nCount);
        ForgetUserSettings(call);
    }
}

void DeleteWatermarkFiles(WatermarkEntry* pRow, u16 usLanguage)
{
    if (usLanguage != 4) {
        DeleteBuiltFile(pRow->WMFileName);
        DeleteBuiltFile(pRow->WMColorFile);
    }
}

i32 CompactWatermarks(OwnedBlock<WatermarkEntry>* pRows, i32 nCount)
{
    WatermarkEntry* pOld = pRows->get();
    i32 nKept = 0;
    for (i32 i = 0; i <= nCount; i++) {
        nKept += pOld[i].WMType != ENTRY_FREE;
    }
    OwnedBlock<WatermarkEntry> pNew;
    if (nKept <= LONGEST_WATERMARK_LIST) {
        pNew.reset(
            static_cast<WatermarkEntry*>(AllocateRows(static_cast<u64>(nKept) + 1, sizeof(WatermarkEntry))));
    }
    if (!pNew) {
        ResetWatermarkEntry(pOld + nCount);
        return -1;
    }
    WatermarkEntry* pNext = pNew.get();
    for (i32 i = 0; i <= nCount; i++) {
        if (pOld[i].WMType != ENTRY_FREE) {
            std::memcpy(pNext++, pOld + i, sizeof(WatermarkEntry));
        }
    }
    ResetWatermarkEntry(pNext);
    *pRows = std::move(pNew);
    return nKept;
}

i32 MatchWatermark(const WatermarkEntry* pRows, i32 nCount, const PrivateDevmode* pPrivate)
{
    SoughtWatermark sought = {};
    std::memcpy(sought.wcString, pPrivate->wcWMString, sizeof pPrivate->wcWMString);
    std::memcpy(sought.wcFace, pPrivate->wcWMFace, sizeof pPrivate->wcWMFace);
    std::memcpy(sought.wcOverlayName, pPrivate->wcWMOverlayName, sizeof pPrivate->wcWMOverlayName);
    int bText = (pPrivate->ulWMType & WM_TEXT) != 0;
    int bFile = (pPrivate->ulWMType & WM_FILE) != 0;
    if (!bText && !bFile && !sought.wcOverlayName[0]) {
        return -1;
    }
    for (i32 i = 0; pRows && i < nCount && pRows[i].WMType != ENTRY_FREE; i++) {
        const WatermarkEntry& row = pRows[i];
        if (bText   ? IsSameTextWatermark(row, sought, pPrivate)
            : bFile ? IsSameImage(row, sought, pPrivate)
                    : IsSameText(row.WMFileName, sought.wcOverlayName) ||
                          IsSameText(row.WMColorFile, sought.wcOverlayName)) {
            return i;
        }
    }
    return -1;
}
