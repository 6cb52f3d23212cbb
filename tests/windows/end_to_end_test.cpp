/* The library in the system's own spooler: installed from the built package as an installer does it, asked
   as applications ask. Variables: TQUI_BUILT, the package; TQUI_TEST_LIBRARY, the copy of TQUI.dll that takes
   its spooler calls from the supplement; TQUI_HOSTED_CAPS, a folder with what the hosted build answers and
   with a settings record for each golden of TQUI_JOB_GOLDENS; TQUI_CORE, the stand-in rendering core. */
#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include "capability_text.h"
#include "installed_printer.h"
#include "standins/job_core.h"
#include "support/job_golden.h"

namespace fs = std::filesystem;

namespace {

/* The record as the library keeps it: 220 bytes that the system knows, 3868 of its own. */
constexpr LONG cbRecord = 4088;

using DeviceCapabilitiesExport = int(WINAPI*)(HANDLE, const WCHAR*, WORD, void*, void*);

const std::vector<InfModel>& Models()
{
    static const std::vector<InfModel> models = ReadInf(PathFromEnvironment("TQUI_BUILT") / "tqui.inf");
    return models;
}

InstalledPrinter Install(const std::string& model, const char* cLibraryVariable = "TQUI_TEST_LIBRARY")
{
    const fs::path tcPackage = PathFromEnvironment("TQUI_BUILT");
    return {FindInfModel(Models(), model), tcPackage,
            cLibraryVariable ? PathFromEnvironment(cLibraryVariable) : tcPackage / "TQUI.dll"};
}

/* The export, asked with a handle. */
CapabilityCall ByHandle(const InstalledPrinter& printer)
{
    const auto ask = printer.Export<DeviceCapabilitiesExport>("DrvDeviceCapabilities");
    return [ask, &printer](int nQuestion, void* pOut) {
        return ask(printer.Handle(), printer.Name(), static_cast<WORD>(nQuestion), pOut, nullptr);
    };
}

/* The system's call, as applications use it. */
CapabilityCall ByApplication(const InstalledPrinter& printer)
{
    return [&printer](int nQuestion, void* pOut) {
        return DeviceCapabilitiesW(printer.Name(), L"FILE:", static_cast<WORD>(nQuestion),
                                   static_cast<WCHAR*>(pOut), nullptr);
    };
}

std::vector<std::string> ReadLines(const fs::path& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}

/* The part of a line that a reader wants to see: what leads to a place, and some more. */
std::string Around(const std::string& line, size_t nAt)
{
    const size_t nFirst = nAt > 40 ? nAt - 40 : 0;
    return (nFirst > 0 ? "..." : "") + line.substr(nFirst, 100) + (line.size() > nFirst + 100 ? "..." : "");
}

void ExpectSameLines(const std::vector<std::string>& found, const std::vector<std::string>& wanted)
{
    ASSERT_EQ(wanted.size(), static_cast<size_t>(nCapabilityQuestions)) << "the expectation is not whole";
    ASSERT_EQ(found.size(), wanted.size());
    for (size_t n = 0; n < found.size(); n++) {
        if (found[n] != wanted[n]) {
            const size_t nAt =
                static_cast<size_t>(std::ranges::mismatch(found[n], wanted[n]).in1 - found[n].begin());
            ADD_FAILURE() << "question " << n + 1 << " differs at character " << nAt << "\n  found  "
                          << Around(found[n], nAt) << "\n  wanted " << Around(wanted[n], nAt);
        }
    }
}

template <typename Value> std::vector<Value> Rows(const CapabilityCall& call, int nQuestion)
{
    const int nRows = call(nQuestion, nullptr);
    std::vector<Value> rows(nRows > 0 ? static_cast<size_t>(nRows) : 0);
    EXPECT_EQ(call(nQuestion, rows.data()), nRows);
    return rows;
}

BOOL AddUserForm(HANDLE hPrinter, const WCHAR* wcName, LONG lWidth, LONG lLength)
{
    FORM_INFO_1W form{FORM_USER, const_cast<LPWSTR>(wcName), {lWidth, lLength}, {0, 0, lWidth, lLength}};
    return AddFormW(hPrinter, 1, reinterpret_cast<LPBYTE>(&form));
}

constexpr WCHAR wcDocument[] = L"Brief an Gr\u00F6\u00DFe";

/* A document of that name, begun on a printer as an application begins one, and ended without a page. */
struct SpooledJob {
    HANDLE hPrinter = nullptr;
    DWORD dwJobId = 0;
    fs::path tcOutput = fs::temp_directory_path() / "tqui-job.prn";

    explicit SpooledJob(const InstalledPrinter& printer)
    {
        WCHAR wcRaw[] = L"RAW";
        std::wstring wcName = wcDocument, wcOutput = tcOutput.wstring();
        DOC_INFO_1W document = {wcName.data(), wcOutput.data(), wcRaw};
        if (OpenPrinterW(const_cast<LPWSTR>(printer.Name()), &hPrinter, nullptr)) {
            dwJobId = StartDocPrinterW(hPrinter, 1, reinterpret_cast<LPBYTE>(&document));
        }
    }
    ~SpooledJob()
    {
        EndDocPrinter(hPrinter);
        ClosePrinter(hPrinter);
        DeleteFileW(tcOutput.c_str());
    }
    SpooledJob(const SpooledJob&) = delete;
    SpooledJob& operator=(const SpooledJob&) = delete;
};

void ExpectSameBytes(const std::string& found, const std::string& wanted, const char* cPart)
{
    const size_t nAt = static_cast<size_t>(
        std::mismatch(found.begin(), found.end(), wanted.begin(), wanted.end()).first - found.begin());
    EXPECT_TRUE(found == wanted) << cPart << " of " << found.size() << " bytes, wanted " << wanted.size()
                                 << ", differs at byte " << nAt << "\n  found  " << found.substr(nAt, 60)
                                 << "\n  wanted " << (nAt < wanted.size() ? wanted.substr(nAt, 60) : "");
}

class EveryModel : public ::testing::TestWithParam<std::string> {};

} // namespace

/* The library as it ships, without the supplement: everything that does not need the missing calls. */
TEST(ShippedPackage, InstallsAndAnswers)
{
    const InstalledPrinter printer = Install("Quill P5", nullptr);
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer.Handle(), const_cast<LPWSTR>(printer.Name()), nullptr,
                                  nullptr, 0),
              cbRecord);
    EXPECT_EQ(ByApplication(printer)(DC_EXTRA, nullptr), cbRecord - 220);
    EXPECT_EQ(ByHandle(printer)(DC_VERSION, nullptr), 1025);
}

TEST_P(EveryModel, LiesInTheSpoolerAsTheInfSays)
{
    const InfModel& model = FindInfModel(Models(), GetParam());
    const InstalledPrinter printer = Install(GetParam());
    std::vector<std::string> found;
    for (const fs::path& tcFile : printer.Files()) {
        EXPECT_TRUE(fs::exists(tcFile)) << tcFile;
        EXPECT_EQ(tcFile.parent_path().filename(), "3")
            << "not in the folder of installed drivers: " << tcFile;
        found.push_back(tcFile.filename().string());
    }
    EXPECT_EQ(found, AllInfFiles(model));
    EXPECT_EQ(FindAmbiguousNames(model), std::vector<std::string>());
}

TEST_P(EveryModel, AnswersAsTheHostedBuild)
{
    const InfModel& model = FindInfModel(Models(), GetParam());
    const InstalledPrinter printer = Install(GetParam());
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer.Handle(), const_cast<LPWSTR>(printer.Name()), nullptr,
                                  nullptr, 0),
              cbRecord);
    const auto hosted = ReadLines(PathFromEnvironment("TQUI_HOSTED_CAPS") / (model.section + ".caps"));
    {
        SCOPED_TRACE("asked with a handle");
        ExpectSameLines(CapabilityLines(ByHandle(printer)), hosted);
    }
    {
        SCOPED_TRACE("asked as an application does");
        ExpectSameLines(CapabilityLines(ByApplication(printer)), hosted);
    }
}

INSTANTIATE_TEST_SUITE_P(Package, EveryModel, ::testing::ValuesIn([] {
                             std::vector<std::string> names;
                             for (const InfModel& model : Models()) {
                                 names.push_back(model.section);
                             }
                             return names;
                         }()),
                         [](const auto& test) { return test.param; });

/* User forms come last in the papers, in the order of their adding, with sizes in tenths of a millimetre;
   forms of other kinds are not papers, and a model without custom sizes lists none. */
TEST(UserForms, ArePapersBehindTheModels)
{
    const InstalledPrinter printer = Install("Halden T410A");
    const InstalledPrinter other = Install("Quill P5");
    const auto before = Rows<WORD>(ByHandle(printer), DC_PAPERS);
    const auto without = Rows<WORD>(ByHandle(other), DC_PAPERS);

    ASSERT_TRUE(AddUserForm(printer.Handle(), L"Zoning map", 150000, 400000));
    ASSERT_TRUE(AddUserForm(printer.Handle(), L"Bookmark", 100996, 200004));
    const auto papers = Rows<WORD>(ByHandle(printer), DC_PAPERS);
    const auto sizes = Rows<POINT>(ByHandle(printer), DC_PAPERSIZE);
    struct Name {
        WCHAR wcText[64];
    };
    const auto names = Rows<Name>(ByHandle(printer), DC_PAPERNAMES);
    const auto seen = Rows<WORD>(ByApplication(printer), DC_PAPERS);
    const auto stillNot = Rows<WORD>(ByHandle(other), DC_PAPERS);
    EXPECT_TRUE(DeleteFormW(printer.Handle(), const_cast<LPWSTR>(L"Zoning map")));
    EXPECT_TRUE(DeleteFormW(printer.Handle(), const_cast<LPWSTR>(L"Bookmark")));
    EXPECT_EQ(Rows<WORD>(ByHandle(printer), DC_PAPERS), before);

    ASSERT_EQ(papers.size(), before.size() + 2);
    EXPECT_TRUE(std::equal(before.begin(), before.end(), papers.begin()));
    EXPECT_GE(papers[before.size()], 448);
    EXPECT_EQ(papers[before.size() + 1], papers[before.size()] + 1);
    ASSERT_EQ(names.size(), papers.size());
    EXPECT_STREQ(names[before.size()].wcText, L"Zoning map");
    EXPECT_STREQ(names[before.size() + 1].wcText, L"Bookmark");
    ASSERT_EQ(sizes.size(), papers.size());
    EXPECT_EQ(sizes[before.size()].x, 1500);
    EXPECT_EQ(sizes[before.size()].y, 4000);
    EXPECT_EQ(sizes[before.size() + 1].x, 1010); /* 100996: (100996 + 5) / 10 / 10 */
    EXPECT_EQ(sizes[before.size() + 1].y, 2000);
    EXPECT_EQ(seen, papers);
    EXPECT_EQ(stillNot, without);
}

/* The library as it ships, called by the stand-in rendering core for a document in the spooler: the same
   bytes as on the hosted build. */
TEST(Jobs, GiveTheGoldensBytes)
{
    int nGoldens = 0;
    for (const auto& entry : fs::directory_iterator(PathFromEnvironment("TQUI_JOB_GOLDENS"))) {
        SCOPED_TRACE(entry.path().filename().string());
        const InstalledPrinter printer = Install(ReadJobGolden(entry.path(), 0).section, nullptr);
        const SpooledJob job(printer);
        ASSERT_NE(job.dwJobId, 0u) << GetLastError();
        const JobGolden golden = ReadJobGolden(entry.path(), job.dwJobId);
        DriverDevmode record = {};
        std::ifstream file(PathFromEnvironment("TQUI_HOSTED_CAPS") / (golden.stem + ".record"),
                           std::ios::binary);
        ASSERT_TRUE(file.read(reinterpret_cast<char*>(&record), sizeof record));
        const JobExports exports = {printer.Export<decltype(&GuiStartJob)>("GuiStartJob"),
                                    printer.Export<decltype(&GuiStartSheet)>("GuiStartSheet"),
                                    printer.Export<decltype(&GuiEndJob)>("GuiEndJob")};
        const JobOutput output = RunJob(exports, job.hPrinter, job.dwJobId, &record);
        ExpectSameBytes(output.head.bytes, golden.parts.at("head"), "head");
        ExpectSameBytes(output.sheet.bytes, golden.parts.at("sheet"), "sheet");
        ExpectSameBytes(output.tail.bytes, golden.parts.at("tail"), "tail");
        EXPECT_EQ(output.head.dwResult + output.sheet.dwResult + output.tail.dwResult, 3u);
        const bool bImage = golden.section == "K100" || golden.section == "IX300";
        EXPECT_EQ(output.wcJobName, bImage ? wcDocument : L"");
        nGoldens++;
    }
    EXPECT_GE(nGoldens, 11);
}

/* The program, as somebody calls it by hand. */
TEST(Jobs, ArePlayedByTheCoreProgram)
{
    const InstalledPrinter printer = Install("T410A", nullptr);
    const fs::path tcRecord = PathFromEnvironment("TQUI_HOSTED_CAPS") / "T410A-busy.record";
    const fs::path tcOutput = fs::temp_directory_path() / "tqui-core.txt";
    const std::wstring wcCommand = L"cmd /c \"\"" + PathFromEnvironment("TQUI_CORE").wstring() + L"\" \"" +
                                   printer.Files().at(1).wstring() + L"\" \"" + printer.Name() + L"\" \"" +
                                   tcRecord.wstring() + L"\" > \"" + tcOutput.wstring() + L"\"\"";
    EXPECT_EQ(_wsystem(wcCommand.c_str()), 0);
    const JobGolden golden = ReadJobGolden(PathFromEnvironment("TQUI_JOB_GOLDENS") / "T410A-busy.txt", 0);
    JobOutput wanted = {};
    wanted.head = {1, golden.parts.at("head")};
    wanted.sheet = {1, golden.parts.at("sheet")};
    wanted.tail = {1, golden.parts.at("tail")};
    std::string found;
    for (const std::string& line : ReadLines(tcOutput)) {
        found += line + "\n";
    }
    EXPECT_EQ(found, JobLines(wanted));
    DeleteFileW(tcOutput.c_str());
}

/* What the supplement has to do itself: the library's tests stand on it. */
TEST(Supplement, KeepsFormsValuesAndProcessors)
{
    const InstalledPrinter printer = Install("Ostra K100");
    const HANDLE hPrinter = printer.Handle();

    EXPECT_FALSE(AddUserForm(hPrinter, L"A4", 100000, 100000)) << "a form of the system's has that name";
    ASSERT_TRUE(AddUserForm(hPrinter, L"Ticket", 80000, 150000));
    EXPECT_FALSE(AddUserForm(hPrinter, L"TICKET", 80000, 150000));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
    DWORD cbNeeded = 0, nForms = 0;
    EXPECT_FALSE(EnumFormsW(hPrinter, 1, nullptr, 0, &cbNeeded, &nForms));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    std::vector<BYTE> block(cbNeeded);
    ASSERT_TRUE(EnumFormsW(hPrinter, 1, block.data(), cbNeeded, &cbNeeded, &nForms));
    const auto* pForms = reinterpret_cast<const FORM_INFO_1W*>(block.data());
    ASSERT_GT(nForms, 100u) << "the system's own forms are missing";
    EXPECT_STREQ(pForms[nForms - 1].pName, L"Ticket");
    EXPECT_EQ(pForms[nForms - 1].Size.cy, 150000);
    EXPECT_EQ(pForms[0].Flags, static_cast<DWORD>(FORM_BUILTIN));
    EXPECT_TRUE(DeleteFormW(hPrinter, const_cast<LPWSTR>(L"Ticket")));
    EXPECT_FALSE(DeleteFormW(hPrinter, const_cast<LPWSTR>(L"Ticket")));

    WCHAR wcValue[] = L"Try";
    DWORD dwData = 7, dwType = 0;
    ASSERT_EQ(SetPrinterDataW(hPrinter, wcValue, REG_DWORD, reinterpret_cast<LPBYTE>(&dwData), sizeof dwData),
              0u);
    EXPECT_EQ(DeletePrinterDataW(hPrinter, wcValue), 0u);
    EXPECT_EQ(GetPrinterDataW(hPrinter, wcValue, &dwType, reinterpret_cast<LPBYTE>(&dwData), sizeof dwData,
                              &cbNeeded),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(DeletePrinterDataW(hPrinter, wcValue), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));

    WCHAR tcFile[] = L"SUP.DLL", wcProcessor[] = L"SUP", tcFolder[MAX_PATH];
    ASSERT_TRUE(GetPrintProcessorDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(tcFolder),
                                            sizeof tcFolder, &cbNeeded));
    const fs::path tcProcessor = fs::path(tcFolder) / tcFile;
    DeletePrintProcessorW(nullptr, nullptr, wcProcessor); /* that an earlier run's printer events brought */
    DeleteFileW(tcProcessor.c_str());
    EXPECT_FALSE(AddPrintProcessorW(nullptr, nullptr, tcFile, wcProcessor)) << "the file is not there yet";
    fs::create_directories(tcFolder);
    ASSERT_TRUE(
        CopyFileW((PathFromEnvironment("TQUI_BUILT") / "JOB.DLL").c_str(), tcProcessor.c_str(), FALSE));
    const auto processors = [] {
        DWORD cb = 0, nRows = 0;
        EnumPrintProcessorsW(nullptr, nullptr, 1, nullptr, 0, &cb, &nRows);
        std::vector<BYTE> rows(cb);
        std::vector<std::wstring> processorNames;
        EXPECT_TRUE(EnumPrintProcessorsW(nullptr, nullptr, 1, rows.data(), cb, &cb, &nRows));
        for (DWORD n = 0; n < nRows; n++) {
            processorNames.push_back(reinterpret_cast<const PRINTPROCESSOR_INFO_1W*>(rows.data())[n].pName);
        }
        return processorNames;
    };
    const auto processorsBefore = processors();
    EXPECT_TRUE(AddPrintProcessorW(nullptr, nullptr, tcFile, wcProcessor));
    EXPECT_EQ(processors().size(), processorsBefore.size() + 1);
    EXPECT_EQ(std::ranges::count(processors(), std::wstring(wcProcessor)), 1);
    EXPECT_TRUE(DeletePrintProcessorW(nullptr, nullptr, wcProcessor));
    EXPECT_EQ(processors(), processorsBefore);
    DeleteFileW(tcProcessor.c_str());

    /* Not in the system's header: taken by name, as the library does. */
    const auto query = reinterpret_cast<BOOL(WINAPI*)(HANDLE, DEVMODEW*, DWORD*)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"TQUISPOO.DRV"), "DevQueryPrint")));
    ASSERT_TRUE(query);
    DWORD dwMessage = 99;
    DEVMODEW record{};
    EXPECT_TRUE(query(hPrinter, &record, &dwMessage));
    EXPECT_EQ(dwMessage, 0u);
}

/* Not a test of the product: run by name to see that a wrong expectation turns the run red. */
TEST(Canary, DISABLED_IsRed)
{
    std::vector<std::string> wanted(nCapabilityQuestions, "1 0 -");
    const auto found = wanted;
    wanted[20] = "1 1 -";
    ExpectSameLines(found, wanted);
}
