/* Starts other programs: companions of the driver, and what shows the user a page. Nobody waits for them here. */
#ifndef TQUI_BASE_STARTED_PROGRAM_H
#define TQUI_BASE_STARTED_PROGRAM_H

#include "platform/basic.h"

/* Starts a program. The command line is its path, in quotation marks only when it holds a blank, and behind a blank the
   arguments as they stand. Refused, since something else could start: any path but a whole one on a drive without "..",
   as the system would search its folders for it; a command line that the system's code page does not hold exactly; one
   with arguments of more than COMMAND_LINE_BYTES.
   wcArguments   I   may be null
   uShow         I   SW_HIDE or SW_SHOWNORMAL
   Result: 1 when it was started. */
constexpr int COMMAND_LINE_BYTES = 260;
int StartProgram(const WCHAR* tcPath, const WCHAR* wcArguments, UINT uShow);

/* The same by the file name alone, with the program's folder as the current one, for programs that look for their files
   there. The current folder is as before when this returns; without knowing it nothing is started. */
int StartInItsFolder(const WCHAR* tcPath, UINT uShow);

/* 1 when that program's file can be opened for reading in the same way. */
int IsInItsFolder(const WCHAR* tcPath);

#endif
