/* Settings records as readable text: a line a field, "name offset value", and back. Numbers are decimal, flags
   0x...; texts stand in quotation marks with \r \n \t \\ \" \xNN (narrow) and \uNNNN (wide), up to the last
   character that is not zero; other bytes are hex digits, up to the last that is not zero. Nothing is lost on the
   way: text to record gives the same bytes. Names are those of the record's structure, rows of arrays and lists
   counted from 0 ("sTextOption[2]", "ColorCommand[0].sColorCmdLength"). */
#ifndef TQUI_TOOLS_TQ_RECORD_TEXT_H
#define TQUI_TOOLS_TQ_RECORD_TEXT_H

#include <stdexcept>
#include <string>
#include <vector>

#include "settings/driver_devmode.h"

/* What is wrong with a text, with the field's name. */
struct RecordTextError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct FieldValue {
    std::string name;
    unsigned nOffset; /* bytes from the record's start */
    unsigned nBytes;
    std::string value;
};

/* Every field in the record's order, each byte of the record in exactly one of them. Where fields share their
   bytes, the one that text is written with. */
std::vector<FieldValue> RecordFields(const DriverDevmode& record);

/* The fields in which two records differ, with the values of the second. */
std::vector<FieldValue> DifferingFields(const DriverDevmode& first, const DriverDevmode& second);

/* One field of a record by its name, also by its second name where fields share their bytes. */
FieldValue FieldOf(const DriverDevmode& record, const std::string& name);

/* The lines of fields, "name offset value" in columns. */
std::string FieldLines(const std::vector<FieldValue>& fields);

/* The record's lines: what differs from the template. */
std::string RecordText(const DriverDevmode& record);

/* The record that lines describe: the template with these fields. Empty lines and lines that begin with # say
   nothing. Throws RecordTextError: a line that is none, a field that there is not or that is named twice, another
   offset than the field's, a value that the field cannot hold. */
DriverDevmode RecordFromText(const std::string& text);

/* Carries out "field=value"; a text may stand without quotation marks. Throws RecordTextError, the record is then
   as it was. */
void SetRecordField(DriverDevmode* pRecord, const std::string& assignment);

#endif
