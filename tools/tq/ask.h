/* Asks the library's capability entry point all its questions, as the spooler would. */
#ifndef TQUI_TOOLS_TQ_ASK_H
#define TQUI_TOOLS_TQ_ASK_H

#include <string>
#include <vector>

#include "hosted/machine.h"

constexpr WORD FIRST_QUESTION = DC_FIELDS, LAST_QUESTION = DC_MEDIATYPES;

struct CapabilityAnswer {
    WORD wQuestion;
    DWORD dwResult;
    Bytes rows; /* what was filled: dwResult rows of the question's width; empty for plain numbers */
};

/* "DC_PAPERS" and the like. */
const char* QuestionName(WORD wQuestion);

/* Bytes of one row of a list answer; 0 for a question that is answered by its number alone. */
size_t RowBytes(WORD wQuestion);

/* Asks one question twice: for the count, then with a buffer of that many rows between guard bytes. Aborts
   the program when a guard was overwritten: that is never the asker's fault. */
CapabilityAnswer AskCapability(HANDLE hPrinter, const WideText& wcPrinter, WORD wQuestion);

/* One line for comparing: "NUMBER RESULT HEX", "-" for no rows. */
std::string RawLine(const CapabilityAnswer& answer);

/* Readable lines: number, name and result, then the rows. wide: the fields as text for terminals. */
std::string ReadableLines(const std::vector<CapabilityAnswer>& answers);

#endif
