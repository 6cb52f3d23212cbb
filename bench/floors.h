/* The floors of the ratios: the bare system calls that a piece of work cannot do without, one behind the other,
   with nothing of the library around them. Each ends the program when a call does not do its part, since a floor
   that does less would be too low. */
#ifndef TQUI_BENCH_FLOORS_H
#define TQUI_BENCH_FLOORS_H

#include "platform/files.h"
#include "platform/spooler.h"

struct FileSpan {
    u32 ulOffset, cb;
};

/* Opens a description, reads 64 bytes and then the body into a zeroed block, closes. */
void FloorOfModelLoad(const WCHAR* tcPath, FileSpan body);

/* Reads a text file whole, passes over its bytes once, one behind the other, and has the system make wide text of them
   where the file is not UTF-16. */
void FloorOfTextFile(const WCHAR* tcPath);

/* Reads header, base row, offset rows and texts of a list from an open description: at most 4096 bytes of
   rows and of texts. */
struct NameSections {
    FileSpan base, rows, texts;
};
void FloorOfNames(HANDLE hFile, const NameSections& sections);

/* What the question for the papers asks of the spooler, the settings file and the locale. bCustom:
   the model allows custom papers, so that the saved ones and the spooler's forms are asked for as well. */
void FloorOfPrinterCalls(HANDLE hPrinter, const WCHAR* tcIni, int bCustom);

/* What the start of a job asks for: the stored values, the driver's files, from the open description header,
   body, font offsets and, each in one piece, the rows and bytes of its commands. bImage: the printer's and
   the job's information too. */
struct JobSections {
    FileSpan body, fonts, rows, commands;
};
void FloorOfJobStart(HANDLE hPrinter, DWORD dwJobId, const WCHAR* tcPath, const JobSections& sections,
                     int bImage);

/* What a merge of a full record reads: where the description is, its header and body, and the stored installed
   set. */
void FloorOfMerge(HANDLE hPrinter, const WCHAR* tcXpi, FileSpan body);

#endif
