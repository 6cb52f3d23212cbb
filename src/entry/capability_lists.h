/* The list questions of DrvDeviceCapabilities, and what one capability call knows. */
#ifndef TQUI_ENTRY_CAPABILITY_LISTS_H
#define TQUI_ENTRY_CAPABILITY_LISTS_H

#include "description/driver_files.h"

/* Characters of the rows that the spooler's interface fixes. */
constexpr int NAME_CHARS = 64; /* papers, media */
constexpr int BIN_CHARS = 24;
constexpr int PERSONALITY_CHARS = 32;

/* One call of DrvDeviceCapabilities. The model is loaded when a question first needs it. */
struct CapabilityCall {
    PrinterCall& call;
    OwnedModel pModel;
    int bModelAsked;
    BYTE* pOut; /* null only counts */
};

/* The printer's model, or null when there is none. */
const XpiModel* CapabilityModel(CapabilityCall& ask);

/* Writes row nRow of cb bytes; nothing without a buffer. Rows of numbers may lie at any address; rows of text
   are aligned as the interface's LPWSTR says. */
void PutRow(CapabilityCall& ask, DWORD nRow, const void* pRow, size_t cb);

/* Each gives the number of rows and, with a buffer, fills them. The three paper lists walk the model's
   papers, the saved papers and the user's forms in one order, so that row n is the same paper in each. */
DWORD ListPaperCodes(CapabilityCall& ask); /* WORD */
DWORD ListPaperSizes(CapabilityCall& ask); /* POINT, tenths of a millimetre */
DWORD ListPaperNames(CapabilityCall& ask);
DWORD ListBins(CapabilityCall& ask); /* WORD: installed bins, then FIRST_MEDIA_SOURCE and up for the media */
DWORD ListBinNames(CapabilityCall& ask);
DWORD ListResolutions(CapabilityCall& ask); /* two LONG */
DWORD ListMediaNames(CapabilityCall& ask);
DWORD ListMediaCodes(CapabilityCall& ask); /* DWORD */

#endif
