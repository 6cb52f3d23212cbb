/* DC_VERSION copies the spool folder of an image printer into the printer's registry key. */
#include "entry/exports.h"
#include "support/sample_machine.h"

namespace {

class SpoolFolderTest : public MachineTest {
  protected:
    static constexpr const WCHAR* wcKeys = u"HKLM\\SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\";

    void Add(const std::string& sample, const std::vector<std::u16string_view>& keys)
    {
        StartMachine();
        AddSample(sample);
        for (std::u16string_view wcKey : keys) {
            AddKey(WideText(wcKeys).append(wcKey));
        }
        SetPrinterText(wcPrinter, u"DefaultSpoolDirectory", u"D:\\Spool");
    }

    /* Asks under a name; the folder that then stands in a key, "" for none. */
    std::string Copied(HANDLE hOf, WideText wcName, const WideText& wcKey, bool bName = true)
    {
        EXPECT_EQ(DrvDeviceCapabilities(hOf, bName ? wcName.data() : nullptr, DC_VERSION, nullptr, nullptr),
                  1025u);
        DWORD dwType = 0;
        Bytes bytes;
        if (!GetKeyValue(wcKeys + wcKey, u"SpoolDirectory", &dwType, &bytes)) {
            return "";
        }
        EXPECT_EQ(dwType, REG_SZ);
        WideText wcFolder(reinterpret_cast<const WCHAR*>(bytes.data()), bytes.size() / sizeof(WCHAR));
        EXPECT_EQ(wcFolder.find(u'\0'), wcFolder.size() - 1) << "stored with its NUL and nothing behind";
        wcFolder.pop_back();
        return Narrow(wcFolder);
    }
};

} // namespace

TEST_F(SpoolFolderTest, IsWrittenForTheFirstImageKindAloneUnderThePlainName)
{
    for (const char* cSample : {"K100", "IX300"}) {
        Add(cSample, {u"Ostra K100", u"Quill IX-300"});
        EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "D:\\Spool") << cSample;
    }
    for (const char* cSample : {"T410A", "QP5", "QPS", "T440B"}) {
        Add(cSample, {u"Halden T410A", u"Quill P5", u"Quill PS", u"Halden T440B"});
        EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "") << cSample;
    }
    WideText wcLong(120, u'n');
    const std::pair<WideText, WideText> aNames[] = {{u"P,LocalOnly", u"P"},
                                                    {u"\\\\SERVER\\P", u"P"},
                                                    {u"\\\\SERVER\\P,Local", u"P"},
                                                    {u"P,local", u"P,local"},
                                                    {wcLong, wcLong}};
    for (const auto& [wcName, wcKey] : aNames) {
        Add("K100", {wcKey});
        EXPECT_EQ(Copied(hPrinter, wcName, wcKey), "D:\\Spool") << Narrow(wcName);
    }
}

TEST_F(SpoolFolderTest, ConditionsOfTheCopy)
{
    for (const auto& [nMajor, nMinor] : {std::pair{5, 0}, {4, 0}, {4, 90}, {5, 1}, {5, 2}, {6, 0}, {10, 0}}) {
        Add("K100", {u"Ostra K100"});
        SetSystemVersion(nMajor, nMinor);
        const bool bCopied = nMajor > 5 || (nMajor == 5 && nMinor > 0);
        EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), bCopied ? "D:\\Spool" : "")
            << nMajor << "." << nMinor;
    }
    Add("K100", {u"Ostra K100"});
    EXPECT_EQ(Copied(hPrinter, u"", wcPrinter, false), "") << "without a name";
    EXPECT_EQ(Copied(nullptr, u"", wcPrinter, false), "");
    EXPECT_EQ(Copied(nullptr, wcPrinter, wcPrinter), "") << "without a handle of the caller's own";
    EXPECT_EQ(Copied(nullptr, u"No Such Printer", wcPrinter), "");
    EXPECT_EQ(Copied(hPrinter, u"", u""), "");
    EXPECT_EQ(Copied(hPrinter, u"\\\\SERVER\\", u""), "");

    Add("K100", {}); /* the key is opened, never made */
    EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "");
    EXPECT_EQ(CallCount(CALL_RegSetValueExW), 0);

    const std::tuple<const char*, DWORD, Bytes> aValues[] = {
        {"no NUL", REG_SZ, {'D', 0, ':', 0}},
        {"empty", REG_SZ, {0, 0}},
        {"no bytes", REG_SZ, {}},
        {"a number", REG_DWORD, {'D', 0, 0, 0}},
        {"longer than a path", REG_SZ, Bytes(700, 'x')},
        {"of the current folder", REG_SZ, {'D', 0, ':', 0, 's', 0, 0, 0}},
        {"a share", REG_SZ, {'\\', 0, '\\', 0, 's', 0, '\\', 0, 'x', 0, 0, 0}},
        {"above", REG_SZ, {'D', 0, ':', 0, '\\', 0, '.', 0, '.', 0, 0, 0}}};
    for (const auto& [cWhat, dwType, bytes] : aValues) {
        Add("K100", {u"Ostra K100"});
        SetPrinterValue(wcPrinter, u"DefaultSpoolDirectory", dwType, bytes);
        EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "") << cWhat;
    }
    Add("K100", {u"Ostra K100"});
    DropPrinterValue(wcPrinter, u"DefaultSpoolDirectory");
    EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "");
    Add("K100", {u"Ostra K100"});
    SetPrinterValue(wcPrinter, u"DefaultSpoolDirectory", REG_SZ,
                    {'D', 0, ':', 0, '\\', 0, 0, 0, 'q', 0, 'q', 0}); /* more behind its NUL */
    EXPECT_EQ(Copied(hPrinter, wcPrinter, wcPrinter), "D:\\");

    /* The caller's string stays as it is. */
    Add("K100", {u"P"});
    WideText wcName = u"\\\\SERVER\\P,Local";
    DrvDeviceCapabilities(hPrinter, wcName.data(), DC_VERSION, nullptr, nullptr);
    EXPECT_EQ(wcName, u"\\\\SERVER\\P,Local");
}
