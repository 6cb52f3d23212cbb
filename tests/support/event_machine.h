/* What the tests of a printer's events share: a sample that is installed, its events, where users' settings lie. */
#ifndef TQUI_TESTS_EVENT_MACHINE_H
#define TQUI_TESTS_EVENT_MACHINE_H

#include "entry/exports.h"
#include "support/sample_machine.h"

enum : int { ADD_CONNECTION = 1, DELETE_CONNECTION, INITIALIZE, DELETE_PRINTER };

inline const WideText tcUsers = u"C:\\Users\\";
inline const WideText tcOurFolder = u"\\Application Data\\Corvantis Optics\\";

/* Watermark rows of a settings file that name these images' files. */
inline std::string WatermarkRows(const std::vector<std::string>& files)
{
    std::string text = "[Watermarks]\r\nNumWatermarks=" + std::to_string(files.size()) + "\r\n";
    for (size_t i = 0; i < files.size(); i++) {
        for (const std::string& value :
             std::initializer_list<std::string>{"Type#=2", "String#=x", "ImageName#=y", "Resolution#=1",
                                                "Width#=1", "Height#=1", "FileName#=" + files[i]}) {
            std::string line = "WM" + value + "\r\n";
            text += line.replace(line.find('#'), 1, std::to_string(i));
        }
    }
    return text;
}

/* Base: MachineTest or one made from it. */
template <class Base> class EventTest : public Base {
  protected:
    BOOL Raise(int nEvent)
    {
        WideText wcName = this->wcPrinter;
        return DrvPrinterEvent(wcName.data(), nEvent, 0, 0);
    }

    void InstallSample(const char* cStem)
    {
        this->AddSample(cStem);
        tcFontFile = GetPrinterSetup(this->wcPrinter).tcDataFile;
        PutFile(tcFontFile, Bytes(1000, 0x46));
    }

    /* Folder of the driver's settings in a profile. */
    WideText UserFolder(std::u16string_view wcUser) const
    {
        return tcUsers + WideText(wcUser) + tcOurFolder + this->wcPrinter;
    }

    WideText tcFontFile;
};

#endif
