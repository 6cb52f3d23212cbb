/* The preview on the pages of a document sheet: what the record and the pages that are open choose, as text lines and
   as a picture. */
#ifndef TQUI_SHEET_PREVIEW_PANEL_H
#define TQUI_SHEET_PREVIEW_PANEL_H

#include "preview/preview_choice.h"
#include "sheet/session.h"

/* The arrays stay the session's. */
PreviewLists SessionPreviewLists(const UiSession* pSession);

/* What the pages that are open show, edits that are not applied included; the record where no page tells. A list that
   tells which group of choices a page is about and has no selection counts as a page that is closed. */
PreviewChoice GatherPreviewChoice(const UiSession* pSession);

/* Writes the size line and the status lines of a page; the unit follows the paper when another is shown than before.
   bPaint   1: draws the picture, too, by hdc, the page's from BeginPaint; 0: hdc is not used */
void UpdatePreview(HWND hPage, HDC hdc, UiSession* pSession, int bPaint);

/* Paint routines of the pages: in a document's sheet the preview, in a printer's nothing. That of pages with a duplex
   picture keeps it up to date. */
void PaintPreviewPage(HWND hPage, UiSession* pSession);
void PaintDuplexPage(HWND hPage, UiSession* pSession);

/* Shows the size in the other unit, on every page by its button. */
void FlipPreviewUnit(HWND hPage, UiSession* pSession);

/* The commands of a page that has none but those of its preview. */
void PreviewCommand(HWND hPage, UiSession* pSession, WPARAM wParam, LPARAM lParam);

#endif
