/* The notice dialog of the job path. It lies on a higher floor, which hands it down when the library is loaded. */
#ifndef TQUI_ENTRY_NOTICE_H
#define TQUI_ENTRY_NOTICE_H

#include "description/language_dll.h"

/* Runs the notice that a document was not printed, without an owner window, and returns when the dialog has ended, by
   whichever button. hLanguageDll is the language library, never null and borrowed; choice is what was found with it.
   Result: 0 when memory for the dialog cannot be had, else 1. */
using JobNotice = int (*)(HMODULE hLanguageDll, const LanguageChoice& choice);

/* Sets the notice of all later jobs; without one a job is answered as if its notice had been closed. */
void SetJobNotice(JobNotice pfnNotice);

#endif
