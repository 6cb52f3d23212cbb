/* Stand-in for the watermark builder. It obeys the builder's contract and renders a row into a text that a test can read
   back: the size, then every line of its command but the file's name and what it answers itself. One source for both
   builds: a program on Windows, a routine that the hosted machine runs. */
#ifndef TQUI_TESTS_BUILDER_STANDIN_H
#define TQUI_TESTS_BUILDER_STANDIN_H

#include <string>

#include "platform/basic.h"

struct BuilderManners {
    enum Mode : int {
        HONEST,
        SILENT,   /* does nothing and says nothing */
        CRASHING, /* ends in the middle of the output file */
        QUIET,    /* does its work but never signals that it is done */
        NONSENSE, /* writes the file, and wcNonsense in the place of numbers */
        MODE_COUNT
    } mode = HONEST;
    int nResult = 0, nFontChange = 0;
    std::basic_string<WCHAR> wcNonsense;
};

/* What a command line tells the program: all behind its first blank, or the first one behind its quotation marks. */
std::basic_string<WCHAR> CommandFileOf(const std::basic_string<WCHAR>& wcCommandLine);

/* One run on a command file. */
void RunBuilderStandin(const std::basic_string<WCHAR>& tcCommandFile, const BuilderManners& manners);

#endif
