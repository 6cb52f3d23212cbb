/* What the tests of a printer's events share: a sample that is installed, its events, where users' settings lie. */
#ifndef TQUI_TESTS_EVENT_MACHINE_H
#define TQUI_TESTS_EVENT_MACHINE_H

#include "entry/exports.h"
#include "support/sample_machine.h"

enum : int { ADD_CONNECTION = 1, DELETE_CONNECTION, INITIALIZE, DELETE_PRINTER };

inline const WideText tcUsers = u"C:\\Users\\";
inline const WideText tcOurFolder = u"\\Application Data\\Corvantis Optics\\";

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
