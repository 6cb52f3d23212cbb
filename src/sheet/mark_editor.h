/* What the two editors of watermarks have in common: the row under edit, title and buttons, position and unit, the
   picture. */
#ifndef TQUI_SHEET_MARK_EDITOR_H
#define TQUI_SHEET_MARK_EDITOR_H

#include "preview/preview_request.h"
#include "sheet/session.h"

/* Builds the file of a watermark that is in no list, to see whether it can be built, and deletes it again.
   Result: as the builder says, 1 when an outline could not be made. */
using TrialBuild = int (*)(UiSession* pSession, HWND hDialog, const WatermarkEntry* pTrial);

/* What the opener of an editor leaves in pDialogData. sDialogArg holds the number of a notice while one is shown. */
struct MarkEdit {
    i32 nRow; /* of the session's list; the spare row becomes a new watermark */
    TrialBuild pfnTrial = nullptr;
};
inline const MarkEdit* CurrentMarkEdit(const UiSession* pSession)
{
    return static_cast<const MarkEdit*>(pSession->pDialogData);
}

/* The row under edit; null when the list has no such row. */
WatermarkEntry* EditedMark(const UiSession* pSession);
int IsNewMark(const UiSession* pSession);

/* Title, buttons and position of the dialog, for a row that is there. */
void InitMarkEditor(HWND hDialog, UiSession* pSession, const WatermarkEntry& row);

/* Only what is complete can be confirmed: Enter leaves the dialog otherwise. */
int MarkConfirmButton(const UiSession* pSession);
void OfferMarkConfirm(HWND hDialog, const UiSession* pSession, int bComplete);

/* The commands of both editors: position and unit. Result: 1 when it was one of these. */
int MarkEditorCommand(HWND hDialog, UiSession* pSession, int nControl, int nCode);

/* Holds a number below an upper limit while it is typed, so that the first digits are let through. */
void CapNumber(HWND hDialog, int nControl, i32 lMax);

/* Reads a text of a row into zeroed room of cch characters, up to PATH_CHARS, as the settings file would give it back. */
void ReadMarkText(HWND hDialog, int nControl, WCHAR* wcOut, int cch);

void ReadMarkPosition(HWND hDialog, const UiSession* pSession, WatermarkEntry* pShown);

/* A white sheet of the document's paper in the frame IDC_MARK_PREVIEW, without a watermark yet. */
PreviewRequest MarkRequest(const UiSession* pSession);

/* Draws the request in its frame. */
void DrawMark(HWND hDialog, HDC hdc, UiSession* pSession, PreviewRequest* pRequest);

#endif
