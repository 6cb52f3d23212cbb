/* The driver's message box. */
#ifndef TQUI_SHEET_NOTICES_H
#define TQUI_SHEET_NOTICES_H

#include "description/string_ids.h"
#include "sheet/session.h"

/* What a notice is about, by the string of its title. */
enum NoticeId : i16 {
    NOTICE_CONFLICT = IDS_TITLE_CONFLICT,     /* sNoticeText of the session, or four fixed lines */
    NOTICE_PAPER_SIZE = IDS_TITLE_PAPER_SIZE, /* the model's limits */
    NOTICE_OUTLINE = IDS_TITLE_OUTLINE,       /* asks, with two buttons */
    NOTICE_NAME = IDS_TITLE_NAME,
    NOTICE_NOT_PRINTED =
        IDS_TITLE_NOT_PRINTED /* during a job: no owner window, only library and id are set */
};

/* Shows a notice, modal over hOwner; sDialogArg is as before when it returns. Result: 0 for IDC_OK, 1 for any other
   end and when it cannot be shown. */
INT_PTR ShowNotice(UiSession* pSession, HWND hOwner, NoticeId notice);

/* The notice of the job path; see entry/notice.h. */
int ShowJobNotice(HMODULE hLanguageDll, const LanguageChoice& choice);

/* Looks for a conflict of the session's record and shows it over the page. 1 when there is one. */
int CheckConstraints(HWND hPage, UiSession* pSession);

#endif
