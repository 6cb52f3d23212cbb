/* What installation stores of the description with the printer, for readers that have no description at hand. All
   numbers are little-endian; texts of the rows are narrow, each ended by a NUL.

     value        type           present when                                 content
     DeviceInfo   REG_BINARY     always                                       the installed set, 16 bytes
     Memory       REG_DWORD      the model has a memory table                 usable megabytes
     FontSubs     REG_MULTI_SZ   the model has resident fonts                 see font_subs.h
     Margin       REG_BINARY     the model has margins                        its rows of 54 bytes with the closing one
     PaperSizes   REG_BINARY     a paper has a code above 256                 u16 code, width, length, in tenths of a mm
     StdPapers    REG_BINARY     kind 0 or 1 and a paper has a PCL code       u16 code, PCL code
     PaperNames   REG_BINARY     kind 0 and a paper has a PCL6 name           u16 code, name of at most 14 characters
     ColorData    REG_BINARY     the colour class is not 0                    the colour data, or one zero byte
     MediaTypes   REG_BINARY     the model has media types                    their names, an empty one at the end */
#ifndef TQUI_ENTRY_DIGEST_H
#define TQUI_ENTRY_DIGEST_H

#include "description/driver_files.h"

/* Stores the values in that order. What is not present now is left as an earlier installation stored it; a value
   that cannot be had or written is missing. Nothing tells of the outcome. */
void DigestXpi(PrinterCall& call, const XpiModel* pModel);

#endif
