/* Settings records as applications and the hosted build have them. */
#ifndef TQUI_TESTS_WINDOWS_SPOOLED_RECORD_H
#define TQUI_TESTS_WINDOWS_SPOOLED_RECORD_H

#include <cstddef>

#include <gtest/gtest.h>

#include "installed_printer.h"
#include "settings/driver_devmode.h"

using Record = std::vector<unsigned char>;

inline DEVMODEW* AsDevmode(Record& record)
{
    return reinterpret_cast<DEVMODEW*>(record.data());
}

/* A record of TQUI_HOSTED_CAPS, which run_end_to_end fills: NAME.in is an application's, NAME.merged what becomes of
   it, NAME.stored the default of an installation, NAME.default what becomes of that. */
inline Record HostedRecord(const std::string& section, const char* cKind)
{
    const std::string bytes = FileBytes(PathFromEnvironment("TQUI_HOSTED_CAPS") / (section + cKind));
    EXPECT_EQ(bytes.size(), sizeof(DriverDevmode)) << section << cKind;
    Record record(bytes.begin(), bytes.end());
    record.resize(sizeof(DriverDevmode));
    return record;
}

/* First byte in which two records differ, -1 for none, but for the printer's name, which is another here. Behind the
   end of the form's empty name the spooler leaves bytes of its own when it stores a record; they are no part of it. */
inline int Difference(const Record& one, const Record& other)
{
    constexpr size_t FORM = offsetof(DEVMODEW, dmFormName), FORM_END = FORM + sizeof DEVMODEW::dmFormName;
    const bool bNoForm = !one[FORM] && !one[FORM + 1] && !other[FORM] && !other[FORM + 1];
    for (size_t n = sizeof DEVMODEW::dmDeviceName; n < one.size(); n++) {
        if (one[n] != other[n] && !(bNoForm && n > FORM && n < FORM_END)) {
            return static_cast<int>(n);
        }
    }
    return -1;
}

#endif
