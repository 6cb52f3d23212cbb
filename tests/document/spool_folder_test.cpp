/* DC_VERSION copies the spool folder of an image printer into the printer's registry key. The steps are those of
   tests/data/spool_folder.txt. */
#include "entry/exports.h"
#include "support/machine_script.h"

namespace {

class SpoolFolder : public Scripted<MachineTest> {
  protected:
    /* A machine with that printer and these keys of printers. */
    void Add(const Args& w)
    {
        StartMachine();
        AddSample(w[0]);
        for (size_t n = 1; n < w.size(); n++) {
            AddKey(KEYS + WideWord(w[n]));
        }
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
    }

    /* Asks under a name, or under none; the folder that then stands in a key, "" for none. */
    std::string Copied(HANDLE hOf, WideText wcName, const WideText& wcKey, bool bName = true)
    {
        const WideText wcBefore = wcName;
        EXPECT_EQ(DrvDeviceCapabilities(hOf, bName ? wcName.data() : nullptr, DC_VERSION, nullptr, nullptr),
                  1025u);
        EXPECT_EQ(wcName, wcBefore);
        DWORD dwType = 0;
        Bytes bytes;
        if (!GetKeyValue(KEYS + wcKey, u"SpoolDirectory", &dwType, &bytes)) {
            return "";
        }
        EXPECT_EQ(dwType, REG_SZ);
        WideText wcFolder(reinterpret_cast<const WCHAR*>(bytes.data()), bytes.size() / sizeof(WCHAR));
        EXPECT_EQ(wcFolder.find(u'\0'), wcFolder.size() - 1) << "stored with its NUL and nothing behind";
        return Narrow(wcFolder.substr(0, wcFolder.size() - 1));
    }

    static inline const WideText KEYS = u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\";
};

SCRIPTED(SpoolFolder, IsCopiedAsWritten, "spool_folder.txt")
{
    PlayBy({
        DEED("add", Add(w)),
        VERB("copied", Copied(hPrinter, wcPrinter, wcPrinter)),
        VERB("copied-as", Copied(hPrinter, WideWord(w[0]), WideWord(w[1]))),
        VERB("copied-without-name", Copied(hPrinter, u"", wcPrinter, false)),
        VERB("copied-without-both", Copied(nullptr, u"", wcPrinter, false)),
        VERB("copied-without-handle", Copied(nullptr, w.empty() ? wcPrinter : WideWord(w[0]), wcPrinter)),
    });
}

} // namespace
