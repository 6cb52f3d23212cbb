/* The driver's message box and its About box. */
#ifndef TQUI_SHEET_NOTICES_H
#define TQUI_SHEET_NOTICES_H

#include "sheet/session.h"

/* What a notice tells; its title is the string of the same number. */
enum NoticeId : i16 {
    NOTICE_CONFLICT = 1090,   /* sNoticeText of the session, or four fixed lines */
    NOTICE_PAPER_SIZE = 1091, /* the model's limits */
    NOTICE_OUTLINE = 1092,    /* asks: template 1091 with two buttons */
    NOTICE_NAME = 1093,
    NOTICE_NOT_PRINTED = 1097 /* during a job: no owner window, only the library and the id are set */
};

/* Shows a notice, modal over hOwner; sDialogArg is as before when it returns. Result: 0 for button 1702, 1 for any
   other end and when it cannot be shown. */
INT_PTR ShowNotice(UiSession* pSession, HWND hOwner, NoticeId notice);

/* The About box, modal over hOwner. */
void ShowAbout(UiSession* pSession, HWND hOwner);

/* The About page (template 1098). */
INT_PTR CALLBACK AboutPageProc(HWND hPage, UINT uMessage, WPARAM wParam, LPARAM lParam);

/* Looks for a conflict of the session's record and shows it over the page. 1 when there is one. */
int CheckConstraints(HWND hPage, UiSession* pSession);

#endif
