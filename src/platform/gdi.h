/* Device contexts and the fonts of the display. */
#ifndef TQUI_PLATFORM_GDI_H
#define TQUI_PLATFORM_GDI_H

#include "platform/basic.h"

#ifndef _WIN32

#include "platform/calls.h"

using HDC = struct HDC__*;
struct DEVMODEW;
struct TEXTMETRICW;

constexpr int LF_FACESIZE = 32;

struct LOGFONTW {
    LONG lfHeight, lfWidth, lfEscapement, lfOrientation, lfWeight;
    BYTE lfItalic, lfUnderline, lfStrikeOut, lfCharSet;
    BYTE lfOutPrecision, lfClipPrecision, lfQuality, lfPitchAndFamily;
    WCHAR lfFaceName[LF_FACESIZE];
};

/* Kinds of a font, as bits. */
constexpr DWORD RASTER_FONTTYPE = 1;
constexpr DWORD DEVICE_FONTTYPE = 2;
constexpr DWORD TRUETYPE_FONTTYPE = 4;

using FONTENUMPROCW = int(CALLBACK*)(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM);

GDI_CALLS(DECLARE_CALL)

#endif
#endif
