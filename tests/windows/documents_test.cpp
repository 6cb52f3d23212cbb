/* Records in the system's own spooler: merged as applications ask for it, and by the exports, each byte held
   against what the hosted build makes of the same record. TQUI_HOSTED_CAPS has, for each model, NAME.in (the
   application's record), NAME.merged and NAME.default, which is what becomes of the default that the installation
   stored. */
#include <cstring>
#include <fstream>
#include <iterator>
#include <thread>

#include <gtest/gtest.h>

#include "installed_printer.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t RECORD_BYTES = 4088, NAME_BYTES = 64, FORM_NAME = 102, FORM_END = 166;
constexpr WCHAR wcMonitorKey[] = L"SOFTWARE\\QuilonMonitor";
constexpr DWORD UPDATE = 1, COPY = 2, MODIFY = 8;

using Record = std::vector<unsigned char>;

struct PropertyHeader { /* DOCUMENTPROPERTYHEADER, which the toolchain's headers lack */
    WORD cbSize = 48, wReserved = 0;
    HANDLE hPrinter;
    const WCHAR* wcPrinter;
    void *pIn, *pOut;
    DWORD cbOut, fMode;
};

struct ContextEvent {
    const WCHAR *wcDriver, *wcDevice;
    void* pRecord;
    BOOL bInformation;
};

using SheetsExport = LONG(WINAPI*)(void*, LPARAM);
using ConvertExport = BOOL(WINAPI*)(const WCHAR*, void*, void*, DWORD*, DWORD);
using EventExport = int(WINAPI*)(HANDLE, void*, int, DWORD, void*, DWORD, void*);
using QueryExport = BOOL(WINAPI*)(HANDLE, void*, DWORD*);
using PropertiesExport = BOOL(WINAPI*)(HWND, HANDLE);

const std::vector<InfModel>& Models()
{
    static const std::vector<InfModel> models = ReadInf(PathFromEnvironment("TQUI_BUILT") / "tqui.inf");
    return models;
}

InstalledPrinter Install(const std::string& model)
{
    return {FindInfModel(Models(), model), PathFromEnvironment("TQUI_BUILT"),
            PathFromEnvironment("TQUI_TEST_LIBRARY")};
}

Record HostedRecord(const std::string& section, const char* cKind)
{
    std::ifstream file(PathFromEnvironment("TQUI_HOSTED_CAPS") / (section + cKind), std::ios::binary);
    Record bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_EQ(bytes.size(), RECORD_BYTES) << section << cKind;
    bytes.resize(RECORD_BYTES);
    return bytes;
}

/* First byte from nFrom on in which two records differ; -1 for none. A default bears the name of its printer, which
   is another here: such records are compared from behind it. Behind the end of the form's empty name the spooler leaves
   bytes of its own when it stores a record; they are no part of it. */
int Difference(const Record& one, const Record& other, size_t nFrom = 0)
{
    const bool bNoForm = !one[FORM_NAME] && !one[FORM_NAME + 1] && !other[FORM_NAME] && !other[FORM_NAME + 1];
    for (size_t n = nFrom; n < RECORD_BYTES; n++) {
        const bool bBehindForm = bNoForm && n > FORM_NAME && n < FORM_END;
        if (!bBehindForm && one[n] != other[n]) {
            return static_cast<int>(n);
        }
    }
    return -1;
}

void SetPaper(Record* pRecord, short sCode)
{
    std::memcpy(pRecord->data() + 78, &sCode, sizeof sCode);
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
    const auto sheets = printer.Export<SheetsExport>("DrvDocumentPropertySheets");
    const auto convert = printer.Export<ConvertExport>("DrvConvertDevMode");
    ASSERT_TRUE(sheets && convert);
    const Record given = HostedRecord(GetParam(), ".in"), wanted = HostedRecord(GetParam(), ".merged");
    for (DWORD dwMode : {MODIFY | COPY, MODIFY | UPDATE, MODIFY}) {
        Record in = given, out(RECORD_BYTES, 0xA5);
        PropertyHeader header{.hPrinter = printer.Handle(),
                              .wcPrinter = printer.Name(),
                              .pIn = in.data(),
                              .pOut = out.data(),
                              .cbOut = RECORD_BYTES,
                              .fMode = dwMode};
        EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&header)), 1);
        EXPECT_EQ(Difference(out, dwMode == MODIFY ? Record(RECORD_BYTES, 0xA5) : wanted, NAME_BYTES), -1)
            << dwMode;
    }
    Record standard(RECORD_BYTES);
    PropertyHeader header{.hPrinter = printer.Handle(),
                          .wcPrinter = printer.Name(),
                          .pIn = nullptr,
                          .pOut = standard.data(),
                          .cbOut = RECORD_BYTES,
                          .fMode = COPY};
    EXPECT_EQ(sheets(nullptr, reinterpret_cast<LPARAM>(&header)), 1);
    EXPECT_EQ(Difference(standard, HostedRecord(GetParam(), ".default"), NAME_BYTES), -1);

    Record settled = wanted, converted(RECORD_BYTES);
    DWORD cb = RECORD_BYTES;
    SetLastError(77);
    EXPECT_TRUE(convert(printer.Name(), settled.data(), converted.data(), &cb, 0));
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_EQ(Difference(converted, settled), -1) << "what was mended is mended in both";
    cb = RECORD_BYTES - 1;
    EXPECT_FALSE(convert(printer.Name(), settled.data(), converted.data(), &cb, 0));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(cb, RECORD_BYTES);
    cb = RECORD_BYTES;
    EXPECT_FALSE(convert(L"No such printer", nullptr, converted.data(), &cb, 0));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PRINTER_NAME));
}

/* As an application does it: size, default, change, merge. The system hands our export the room that the
   application's own records tell of; a record in one piece is what reaches the merge. */
TEST_P(EveryRecord, IsWhatAnApplicationGetsBack)
{
    const InstalledPrinter printer = Install(GetParam());
    WCHAR* wcName = const_cast<WCHAR*>(printer.Name());
    ASSERT_EQ(DocumentPropertiesW(nullptr, printer.Handle(), wcName, nullptr, nullptr, 0),
              static_cast<LONG>(RECORD_BYTES));
    Record in = HostedRecord(GetParam(), ".in"), out(RECORD_BYTES);
    const WORD awOnePiece[2] = {RECORD_BYTES, 0};
    std::memcpy(in.data() + 68, awOnePiece, sizeof awOnePiece);
    std::memcpy(out.data() + 68, awOnePiece, sizeof awOnePiece);
    EXPECT_GE(DocumentPropertiesW(nullptr, printer.Handle(), wcName, reinterpret_cast<DEVMODEW*>(out.data()),
                                  reinterpret_cast<DEVMODEW*>(in.data()), MODIFY | COPY),
              0);
    EXPECT_EQ(Difference(out, HostedRecord(GetParam(), ".merged"), NAME_BYTES), -1);
}

INSTANTIATE_TEST_SUITE_P(Package, EveryRecord, ::testing::ValuesIn([] {
                             std::vector<std::string> names;
                             for (const InfModel& model : Models()) {
                                 names.push_back(model.section);
                             }
                             return names;
                         }()),
                         [](const auto& test) { return test.param; });

TEST(DocumentEvents, TellThePortMonitorOverADocument)
{
    const InstalledPrinter printer = Install("Halden T410A");
    const auto event = printer.Export<EventExport>("DrvDocumentEvent");
    ASSERT_TRUE(event);
    Record record = HostedRecord("T410A", ".merged");
    void *pIn = record.data(), *pOut = nullptr;
    ContextEvent create{nullptr, nullptr, record.data(), FALSE};
    const auto onCreate = [&](short sPaper) {
        SetPaper(&record, sPaper);
        EXPECT_EQ(event(printer.Handle(), nullptr, 1, 0, &create, 0, &pOut), 1);
        return MonitorValues();
    };
    const auto onReset = [&](short sPaper) {
        SetPaper(&record, sPaper);
        EXPECT_EQ(event(printer.Handle(), nullptr, 3, 0, &pIn, 0, &pOut), 1);
        return MonitorValues();
    };
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);
    EXPECT_EQ(event(printer.Handle(), nullptr, 14, 0, &create, 0, &pOut), 1);
    EXPECT_EQ(MonitorValues(), "---");
    EXPECT_EQ(onCreate(11), "0--"); /* A5, A4 */
    ASSERT_NE(pOut, nullptr);
    EXPECT_NE(pOut, pIn);
    EXPECT_EQ(onReset(9), "1--");
    EXPECT_EQ(onCreate(11), "0--");
    EXPECT_EQ(event(printer.Handle(), nullptr, 5, 0, nullptr, 0, nullptr), 1);
    EXPECT_EQ(MonitorValues(), "011");
    EXPECT_EQ(onReset(11), "011");
    EXPECT_EQ(onReset(9), "111");
    EXPECT_EQ(onReset(11), "111");
    EXPECT_EQ(onCreate(11), "111");
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);

    void *pTheirs = nullptr, *pOurs = pOut;
    std::thread([&] {
        ContextEvent own{nullptr, nullptr, record.data(), FALSE};
        EXPECT_EQ(event(printer.Handle(), nullptr, 1, 0, &own, 0, &pTheirs), 1);
    }).join();
    EXPECT_NE(pTheirs, nullptr);
    EXPECT_NE(pTheirs, pOurs);
    EXPECT_EQ(onReset(9), "1--");
    EXPECT_EQ(pOut, pOurs) << "each thread's record stays its own";
    RegDeleteKeyW(HKEY_CURRENT_USER, wcMonitorKey);
}

/* The test copy of the library loads the supplement in place of the spooler library. */
TEST(Forwarders, CallTheSystemsRoutines)
{
    const InstalledPrinter printer = Install("Quill P5");
    const auto query = printer.Export<QueryExport>("DevQueryPrint");
    const auto properties = printer.Export<PropertiesExport>("PrinterProperties");
    ASSERT_TRUE(query && properties);
    Record record = HostedRecord("QP5", ".in");
    DWORD dwMessage = 99;
    EXPECT_TRUE(query(printer.Handle(), record.data(), &dwMessage));
    EXPECT_EQ(dwMessage, 0u);
    EXPECT_EQ(properties(nullptr, printer.Handle()), PrinterProperties(nullptr, printer.Handle()));
}
