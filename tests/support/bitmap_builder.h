/* Bitmap files, made from their measures, for both builds. */
#ifndef TQUI_TESTS_BITMAP_BUILDER_H
#define TQUI_TESTS_BITMAP_BUILDER_H

#include <cstring>
#include <functional>
#include <vector>

#include "platform/drawing.h"

struct BitmapSpec {
    i32 lWidth, lHeight; /* a negative height: rows from the top, as many */
    u16 usBits;
    u32 nColors = 0; /* behind the header, as biClrUsed tells; 0: none for more than 8 bits, else all */
    u32 cbInfo = 40; /* of the header */
};

/* A colour of the tables, by its number. */
inline RGBQUAD BitmapColor(u32 n)
{
    return {static_cast<BYTE>(n * 7), static_cast<BYTE>(255 - n), static_cast<BYTE>(40 + n * 31), 0};
}

/* What each pixel is, of the lowest row first: for 16 and more bits a COLORREF's bytes, else a colour's number. */
using PixelOf = std::function<u32(int x, int y)>;

inline std::vector<u8> BitmapFile(const BitmapSpec& spec, const PixelOf& pixelOf = {})
{
    const u32 nColors = spec.nColors ? spec.nColors : spec.usBits <= 8 ? 1u << spec.usBits : 0;
    const u32 nHeight = static_cast<u32>(spec.lHeight < 0 ? -spec.lHeight : spec.lHeight);
    const u32 cbRow = (static_cast<u32>(spec.lWidth) * spec.usBits + 31) / 32 * 4;
    const u32 ulRows = 14 + spec.cbInfo + 4 * nColors;
    std::vector<u8> file(ulRows + size_t{cbRow} * nHeight);
    BITMAPFILEHEADER header = {0x4D42, static_cast<DWORD>(file.size()), 0, 0, ulRows};
    BITMAPINFOHEADER info = {};
    info.biSize = spec.cbInfo;
    info.biWidth = spec.lWidth;
    info.biHeight = spec.lHeight;
    info.biPlanes = 1;
    info.biBitCount = spec.usBits;
    info.biClrUsed = spec.usBits <= 8 ? nColors : 0;
    std::memcpy(file.data(), &header, sizeof header);
    std::memcpy(file.data() + 14, &info, sizeof info);
    for (u32 n = 0; n < nColors; n++) {
        const RGBQUAD color = BitmapColor(n);
        std::memcpy(file.data() + 14 + spec.cbInfo + 4 * n, &color, sizeof color);
    }
    for (u32 y = 0; pixelOf && y < nHeight; y++) {
        for (i32 x = 0; x < spec.lWidth; x++) {
            const u32 ulPixel = pixelOf(x, static_cast<int>(y));
            u8* pRow = file.data() + ulRows + size_t{cbRow} * y;
            const u32 nBit = static_cast<u32>(x) * spec.usBits;
            if (spec.usBits >= 24) {
                pRow[nBit / 8] = static_cast<u8>(ulPixel >> 16);
                pRow[nBit / 8 + 1] = static_cast<u8>(ulPixel >> 8);
                pRow[nBit / 8 + 2] = static_cast<u8>(ulPixel);
            } else if (spec.usBits <= 8) {
                const u32 nShift = 8 - spec.usBits - nBit % 8;
                pRow[nBit / 8] = static_cast<u8>(pRow[nBit / 8] | ulPixel << nShift);
            }
        }
    }
    return file;
}

#endif
