/* Bitmap files of watermarks, on any bytes: drawn into a cell, they take no more than their share of time and leave
   nothing behind. The first two bytes choose placement and scale; the file is the rest. */
#include <cstring>

#include "fuzz/require.h"
#include "preview/preview_tools.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* pData, size_t cbData)
{
    StartOnce();
    if (cbData < 2) {
        return 0;
    }
    constexpr WCHAR tcPath[] = u"C:\\F.BMP";
    PutFile(tcPath, Bytes(pData + 2, pData + cbData));
    WatermarkEntry entry = {};
    entry.WMType = ENTRY_IMAGE;
    std::memcpy(entry.WMImageName, tcPath, sizeof tcPath);
    entry.WMPlacement = pData[0] & 15;
    entry.WMResolution = static_cast<u16>(pData[0] & 0xF0);
    entry.WMScaleX = pData[1] * 2u;
    entry.WMScaleY = 100;
    entry.WMPositionX = pData[1] - 128;
    PreviewRequest request = {};
    request.pWatermark = &entry;
    request.lPageWidth = 21000;
    request.lPageLength = 29700;
    request.sResolution = 300;

    const LiveCounts before = CountLive();
    const HDC hScreen = CreateDCW(u"DISPLAY", nullptr, nullptr, nullptr), hDc = CreateCompatibleDC(hScreen);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, 100, 140);
    const HGDIOBJ hOld = SelectObject(hDc, hBitmap);
    PreviewTools tools = {};
    DrawWatermarkImage(tools, hDc, request, {1, 1, 93, 133});
    ReleasePreviewTools(&tools);
    SelectObject(hDc, hOld);
    DeleteDC(hDc);
    DeleteDC(hScreen);
    DeleteObject(hBitmap);
    Require(CountLive() == before);
    return 0;
}
