/* The default row. */
#include "watermark/watermark_entry.h"

#include <cstring>

void ResetWatermarkEntry(WatermarkEntry* pRow)
{
    std::memset(pRow, 0, sizeof *pRow);
    CopyWide(pRow->WMFace, sizeof pRow->WMFace / sizeof(WCHAR), TEXT("Times New Roman"));
    pRow->WMAngle = 450;
    pRow->WMTransparency = 50;
    pRow->WMSize = 72;
    pRow->WMColor = 255;
    pRow->bWMStale = 1;
}
