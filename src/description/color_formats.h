/* The colour formats of image printers: codes of the record and of the description, and the names by which the rendering
   half knows them. */
#ifndef TQUI_DESCRIPTION_COLOR_FORMATS_H
#define TQUI_DESCRIPTION_COLOR_FORMATS_H

#include "platform/types.h"

struct ColorFormat {
    u32 ulCode;
    const char* cName;
};
inline constexpr ColorFormat aColorFormats[] = {
    {0x00000, "OCM_COLOR_NONE"},  {0x00001, "OCM_COLOR_BGR24"},  {0x00002, "OCM_COLOR_RGB24"},
    {0x00004, "OCM_COLOR_BGR32"}, {0x00008, "OCM_COLOR_RGB32"},  {0x00010, "OCM_COLOR_GRAY8"},
    {0x00020, "OCM_COLOR_GRAY4"}, {0x00040, "OCM_COLOR_GRAY2"},  {0x00080, "OCM_COLOR_GRAY1"},
    {0x00100, "OCM_COLOR_CMY24"}, {0x00200, "OCM_COLOR_CMY3"},   {0x01000, "OCM_COLOR_CMYK32"},
    {0x02000, "OCM_COLOR_CMYK6"}, {0x04000, "OCM_COLOR_CMYK4"},  {0x08000, "OCM_COLOR_CMYK7"},
    {0x10000, "OCM_COLOR_CMYK8"}, {0x20000, "OCM_COLOR_CMYK16"},
};

#endif
