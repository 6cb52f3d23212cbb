#include "settingsfile/settings_writer.h"

#include "settingsfile/settings_reader.h"
#include "settings/driver_devmode.h"
#include "platform/hosted/standin.h"
#include "support/both_builds.h"

class SettingsWriter : public BothBuilds {};
TEST_F(SettingsWriter, Smoke)
{
    PutFile(u"C:\\set\\k.txt", std::string_view("x"));
    for (u16 k = 0; k < 5; k++) {
        DriverDevmode record = recordTemplate;
        EXPECT_EQ(WritePrinterSettings(u"C:\\set\\a.ini", &record, k), 1);
        EXPECT_EQ(ReadPrinterSettings(u"C:\\set\\a.ini", &record, 0, k), 1);
    }
}
