/* The notice dialog of the job path. It lies above this floor, so what it is to do is told here. */
#ifndef TQUI_ENTRY_NOTICE_H
#define TQUI_ENTRY_NOTICE_H

#include "description/language_dll.h"

/* Runs the notice that a document was not printed, without an owner window, and returns when it ended, by whichever
   button. The sheets have it (sheet/notices.cpp). hLanguageDll is the language library, never null and borrowed, choice
   what was found with it. Result: 0 when memory for it cannot be had, else 1. */
int ShowJobNotice(HMODULE hLanguageDll, const LanguageChoice& choice);

#endif
