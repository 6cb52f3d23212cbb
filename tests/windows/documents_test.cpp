/* Records in the system's own spooler: merged as applications ask for it, and by the exports, each byte held
   against what the hosted build makes of the same record. */
#include <cstring>
#include <thread>

#include "entry/exports.h"
#include "spooled_record.h"

namespace {

constexpr WCHAR wcMonitorKey[] = L"SOFTWARE\\QuilonMonitor";
constexpr DWORD UPDATE = 1, COPY = 2, MODIFY = 8;

/* The export's merge of a record (null: of the default) into another. */
LONG Merge(const InstalledPrinter& printer, DEVMODEW* pIn, Record& out, DWORD fMode)
{
    const auto sheets = EXPORT_OF(printer, DrvDocumentPropertySheets);
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof header;
    header.hPrinter = printer.Handle();
    header.pszPrinterName = const_cast<LPWSTR>(printer.Name());
    header.pdmIn = pIn;
    header.pdmOut = AsDevmode(out);
    header.cbOut = sizeof(DriverDevmode);
    header.fMode = fMode;
    return sheets(nullptr, reinterpret_cast<LPARAM>(&header));
}

/* FeedEdge, Refresh_FeedEdge and 33PPM in the user's registry, "-" for none. */
std::string MonitorValues()
{
    std::string text;
    for (const WCHAR* wcValue : {L"FeedEdge", L"Refresh_FeedEdge", L"33PPM"}) {
        DWORD dwValue = 0, cb = sizeof dwValue;
        LSTATUS lError =
            RegGetValueW(HKEY_CURRENT_USER, wcMonitorKey, wcValue, RRF_RT_REG_DWORD, nullptr, &dwValue, &cb);
        text += lError == ERROR_SUCCESS ? std::to_string(dwValue) : "-";
    }
    return text;
}

class EveryRecord : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(EveryRecord, IsMergedAsOnTheHostedBuild)
{
    const InstalledPrinter printer = Install(GetParam());
    const auto convert = EXPORT_OF(printer, DrvConvertDevMode);
    const Record given = HostedRecord(GetParam(), ".in"), wanted = HostedRecord(GetParam(), ".merged");
    const Record untouched(sizeof(DriverDevmode), 0xA5);
    for (DWORD dwMode : {MODIFY | COPY, MODIFY | UPDATE, MODIFY}) {
        Record in = given, out = untouched;
        EXPECT_EQ(Merge(printer, AsDevmode(in), out, dwMode), 1);
        EXPECT_EQ(Difference(out, dwMode == MODIFY ? untouched : wanted), -1) << dwMode;
    }
    Record standard = untouched, settled = wanted, converted = untouched;
    EXPECT_EQ(Merge(printer, nullptr, standard, COPY), 1);
    EXPECT_EQ(Difference(standard, HostedRecord(GetParam(), ".default")), -1);
    DWORD cb = sizeof(DriverDevmode);
    EXPECT_TRUE(
        convert(const_cast<LPWSTR>(printer.Name()), AsDevmode(settled), AsDevmode(converted), &cb, 0));
    EXPECT_EQ(Difference(converted, settled), -1) << "what was mended is mended in both";
}

/* As an application does it: size, default, change, merge. The system hands our export the room that the
   application's own records tell of; a record in one piece is what reaches the merge. */
TEST_P(EveryRecord, IsWhatAnApplicationGetsBack)
{
    const InstalledPrinter printer = Install(GetParam());
    WCHAR* wcName = const_cast<WCHAR*>(printer.Name());
    ASSERT_EQ(DocumentPropertiesW(nullptr, printer.Handle(), wcName, nullptr, nullptr, 0),
              static_cast<LONG>(sizeof(DriverDevmode)));
    Record in = HostedRecord(GetParam(), ".in"), out(in.size());
    for (Record* pRecord : {&in, &out}) {
        AsDevmode(*pRecord)->dmSize = sizeof(DriverDevmode);
        AsDevmode(*pRecord)->dmDriverExtra = 0;
    }
    EXPECT_GE(
        DocumentPropertiesW(nullptr, printer.Handle(), wcName, AsDevmode(out), AsDevmode(in), MODIFY | COPY),
        0);
    EXPECT_EQ(Difference(out, HostedRecord(GetParam(), ".merged")), -1);
}

INSTANTIATE_TEST_SUITE_P(Package, EveryRecord, ::testing::ValuesIn(PackageSections()),
                         [](const auto& test) { return test.param; });

TEST(DocumentEvents, TellThePortMonitorOverADocument)
{
    const InstalledPrinter printer = Install("T410A");
    const auto event = EXPORT_OF(printer, DrvDocumentEvent);
    Record record = HostedRecord("T410A", ".merged");
    void *pIn = record.data(), *pOut = nullptr;
    DOCEVENT_CREATEDCPRE create = {};
    create.pdm = AsDevmode(record);
    const auto raise = [&](int iEsc, short sPaper, void** ppOut) {
        AsDevmode(record)->dmPaperSize = sPaper;
        EXPECT_EQ(event(printer.Handle(), nullptr, iEsc, 0, iEsc == 1 ? static_cast<void*>(&create) : &pIn, 0,
                        ppOut),
                  1);
        return MonitorValues();
    };
    constexpr int CREATE = 1, RESET = 3, START = 5;
    constexpr short A4 = 9, A5 = 11;
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);
    EXPECT_EQ(raise(CREATE, A5, &pOut), "0--");
    EXPECT_TRUE(pOut && pOut != pIn);
    EXPECT_EQ(raise(START, A5, nullptr), "011");
    EXPECT_EQ(raise(RESET, A4, &pOut), "111");
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);

    void *pTheirs = nullptr, *pOurs = pOut;
    std::thread([&] { raise(CREATE, A5, &pTheirs); }).join();
    EXPECT_NE(pTheirs, nullptr);
    EXPECT_NE(pTheirs, pOurs);
    EXPECT_EQ(raise(RESET, A4, &pOut), "1--");
    EXPECT_EQ(pOut, pOurs) << "each thread's record stays its own";
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);
}

/* The test copy of the library loads the supplement in place of the spooler library. */
TEST(Forwarders, CallTheSystemsRoutines)
{
    const InstalledPrinter printer = Install("QP5");
    Record record = HostedRecord("QP5", ".in");
    DWORD dwMessage = 99;
    EXPECT_TRUE(EXPORT_OF(printer, DevQueryPrint)(printer.Handle(), AsDevmode(record), &dwMessage));
    EXPECT_EQ(dwMessage, 0u);
    EXPECT_EQ(EXPORT_OF(printer, PrinterProperties)(nullptr, printer.Handle()),
              PrinterProperties(nullptr, printer.Handle()));
}
