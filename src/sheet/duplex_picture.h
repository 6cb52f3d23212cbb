/* The small picture of the duplex binding on the Layout page. */
#ifndef TQUI_SHEET_DUPLEX_PICTURE_H
#define TQUI_SHEET_DUPLEX_PICTURE_H

#include "sheet/session.h"

/* 1 for a model that can print on both sides, with or without a unit that is installed. */
inline int HasDuplexOption(const XpiModel* pModel)
{
    return ((pModel->ulOptOptions | pModel->ulStdOptions | pModel->ulMoreOptions) & OPTION_DUPLEX) != 0;
}

/* Gives the page's control the picture of the radio that is checked, from a page's painting on a model that can print on both
   sides. Each picture is loaded when first shown and kept by the session. Nothing happens on a page without the control,
   or when the picture cannot be had. */
void ShowDuplexPicture(HWND hPage, UiSession* pSession);

/* Takes the picture from the Layout page, if it has a window, and deletes all of them. The next painting loads what it
   needs. */
void DropDuplexPictures(UiSession* pSession);

#endif
