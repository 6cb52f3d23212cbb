/* Changes of records as text: "field=value field=value", the fields in the record's order. */
#ifndef TQUI_TESTS_RECORD_CHANGES_H
#define TQUI_TESTS_RECORD_CHANGES_H

#include "support/data_file.h"
#include "tools/tq/record_text.h"

/* The record with these fields changed. Texts may not hold blanks. */
inline DriverDevmode Changed(DriverDevmode record, const std::string& changes)
{
    for (const std::string& word : Words(changes)) {
        SetRecordField(&record, word);
    }
    return record;
}

/* What tells the second record from the first, with the second's values. */
inline std::string Changes(const DriverDevmode& first, const DriverDevmode& second)
{
    std::string changes;
    for (const FieldValue& field : DifferingFields(first, second)) {
        changes += (changes.empty() ? "" : " ") + field.name + "=" + field.value;
    }
    return changes;
}

/* The fields named, separated by blanks, as text. */
inline std::string Fields(const DriverDevmode& record, const std::string& names)
{
    std::string fields;
    for (const std::string& name : Words(names)) {
        fields += (fields.empty() ? "" : " ") + name + "=" + FieldOf(record, name).value;
    }
    return fields;
}

#endif
