/* The fields of a settings record by name: what its structure says, for programs that work with names. */
#ifndef TQUI_TOOLS_TQ_RECORD_FIELDS_H
#define TQUI_TOOLS_TQ_RECORD_FIELDS_H

#include <string>
#include <vector>

enum FieldKind { SIGNED_NUMBER, UNSIGNED_NUMBER, FLAGS, WIDE_TEXT, NARROW_TEXT, PLAIN_BYTES };

/* One field, a row of a list by itself ("sTextOption[2]", "ColorCommand[0].sColorCmdLength"). */
struct FieldPlace {
    std::string name;
    unsigned nOffset, nBytes; /* from the record's start */
    FieldKind kind;
    bool bSecondName; /* its bytes belong to fields that have a row of their own */
};

/* All fields by offset. Those without the mark cover each byte of the record once. */
const std::vector<FieldPlace>& RecordPlaces();

#endif
