/* Loading of the model behind an open description file. */
#ifndef TQUI_DESCRIPTION_XPI_LOAD_H
#define TQUI_DESCRIPTION_XPI_LOAD_H

#include "description/xpi_file.h"

/* Loads the body and turns its slots into pointers. The caller owns the model. Null for a file that is not
   open, when the header, the body or the font offset table cannot be read, or memory fails; a short file gives a model
   whose missing part reads as zeros. */
OwnedModel LoadXpiModel(XpiFile& file);

#endif
