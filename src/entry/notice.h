/* Where the sheets hand the job path their notice dialog. */
#ifndef TQUI_ENTRY_NOTICE_H
#define TQUI_ENTRY_NOTICE_H

#include "description/language_dll.h"

/* Runs the notice without an owner window and returns when it ended, by whichever button. hLanguageDll is the
   language library, never null and borrowed, choice what was found with it. Result: 0 when memory for it
   cannot be had, else 1. */
using NoticeFunction = int (*)(PrinterCall& call, HMODULE hLanguageDll, const LanguageChoice& choice);

/* Null until a notice is there: a job is then answered as if the dialog had ended. Set once, while the
   library is loaded. */
inline NoticeFunction fnShowNotice = nullptr;

#endif
