/* The library in the system's own spooler: installed from the built package as an installer does it, asked
   as applications ask. Variables: TQUI_BUILT, the package; TQUI_TEST_LIBRARY, the copy of TQUI.dll that takes
   its spooler calls from the supplement; TQUI_HOSTED_CAPS, a folder with what the hosted build answers and
   with a settings record for each golden of TQUI_JOB_GOLDENS; TQUI_CORE, the stand-in rendering core. */
#include <algorithm>
#include <sstream>

#include "entry/exports.h"
#include "spooled_record.h"
#include "standins/job_core.h"
#include "support/job_golden.h"

namespace fs = std::filesystem;

namespace {

constexpr LONG cbRecord = sizeof(DriverDevmode);
constexpr int QUESTIONS = 35;

/* Asks one question: number and output block (null to count), as the export does. */
using CapabilityCall = std::function<int(int nQuestion, void* pOut)>;

/* The export, asked with a handle. */
CapabilityCall ByHandle(const InstalledPrinter& printer)
{
    const auto ask = EXPORT_OF(printer, DrvDeviceCapabilities);
    return [ask, &printer](int nQuestion, void* pOut) {
        return static_cast<int>(ask(printer.Handle(), const_cast<LPWSTR>(printer.Name()),
                                    static_cast<WORD>(nQuestion), pOut, nullptr));
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
    std::istringstream text(FileBytes(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line.substr(0, line.find_last_not_of("\r ") + 1));
    }
    return lines;
}

/* Bytes of one row of a question's answer; 0 for questions without rows. */
size_t RowSize(int nQuestion)
{
    switch (nQuestion) {
    case DC_PAPERS:
    case DC_BINS: return 2;
    case 33: /* DC_NUP */
    case DC_MEDIATYPES: return 4;
    case DC_PAPERSIZE:
    case DC_ENUMRESOLUTIONS: return 8;
    case DC_BINNAMES: return 48;
    case DC_PERSONALITY: return 64;
    case DC_PAPERNAMES:
    case DC_MEDIAREADY:
    case DC_MEDIATYPENAMES: return 128;
    default: return 0;
    }
}

/* The answers as "tq caps --raw" writes them: number, result, the rows' bytes, "-" for none. Rows lie in front of a guard;
   what goes wrong in the asking stands in the line in place of the bytes. */
std::vector<std::string> CapabilityLines(const CapabilityCall& call)
{
    const std::string guard(256, '\xCD');
    std::vector<std::string> lines;
    for (int nQuestion = 1; nQuestion <= QUESTIONS; nQuestion++) {
        const int nRows = call(nQuestion, nullptr);
        const size_t cbRows = nRows > 0 ? RowSize(nQuestion) * static_cast<size_t>(nRows) : 0;
        std::string block = std::string(cbRows, '\0') + guard, rows = cbRows ? "" : "-";
        if (cbRows && (call(nQuestion, block.data()) != nRows || block.substr(cbRows) != guard)) {
            rows = "ANOTHER COUNT, OR WRITTEN BEHIND THE ROWS ";
        }
        for (size_t n = 0; n < cbRows; n++) {
            rows += "0123456789abcdef"[block[n] >> 4 & 15];
            rows += "0123456789abcdef"[block[n] & 15];
        }
        lines.push_back(std::to_string(nQuestion) + " " + std::to_string(static_cast<unsigned>(nRows)) + " " +
                        rows);
    }
    return lines;
}

void ExpectSameLines(const std::vector<std::string>& found, const std::vector<std::string>& wanted)
{
    ASSERT_EQ(wanted.size(), static_cast<size_t>(QUESTIONS)) << "the expectation is not whole";
    for (size_t n = 0; n < wanted.size(); n++) {
        EXPECT_EQ(found.at(n), wanted[n]);
    }
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

/* The parts that a job has to have, as text. */
std::string GoldenLines(const JobGolden& golden, const std::wstring& wcJobName)
{
    JobOutput wanted = {};
    wanted.wcJobName = wcJobName;
    wanted.head = {1, golden.parts.at("head")};
    wanted.sheet = {1, golden.parts.at("sheet")};
    wanted.tail = {1, golden.parts.at("tail")};
    return JobLines(wanted);
}

class EveryModel : public ::testing::TestWithParam<std::string> {};

} // namespace

/* The library as it ships, without the supplement: everything that does not need the missing calls. */
TEST(ShippedPackage, InstallsAndAnswers)
{
    const InstalledPrinter printer = Install("QP5", nullptr);
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer.Handle(), const_cast<LPWSTR>(printer.Name()), nullptr,
                                  nullptr, 0),
              cbRecord);
    EXPECT_EQ(ByApplication(printer)(DC_EXTRA, nullptr), cbRecord - 220);
    EXPECT_EQ(ByHandle(printer)(DC_VERSION, nullptr), 1025);
}

TEST_P(EveryModel, LiesInTheSpoolerAsTheInfSays)
{
    const InfModel& model = FindInfModel(PackageModels(), GetParam());
    const InstalledPrinter printer = Install(GetParam());
    std::vector<std::string> found;
    for (const fs::path& tcFile : printer.Files()) {
        EXPECT_TRUE(fs::exists(tcFile)) << tcFile;
        EXPECT_EQ(tcFile.parent_path().filename(), "3")
            << "not in the folder of installed drivers: " << tcFile;
        found.push_back(tcFile.filename().string());
    }
    EXPECT_EQ(found, AllInfFiles(model));
}

TEST_P(EveryModel, AnswersAsTheHostedBuild)
{
    const InfModel& model = FindInfModel(PackageModels(), GetParam());
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

INSTANTIATE_TEST_SUITE_P(Package, EveryModel, ::testing::ValuesIn(PackageSections()),
                         [](const auto& test) { return test.param; });

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
        Record record = HostedRecord(golden.stem, ".record");
        const JobExports exports = {EXPORT_OF(printer, GuiStartJob), EXPORT_OF(printer, GuiStartSheet),
                                    EXPORT_OF(printer, GuiEndJob)};
        const JobOutput output =
            RunJob(exports, job.hPrinter, job.dwJobId, reinterpret_cast<DriverDevmode*>(record.data()));
        const bool bImage = golden.section == "K100" || golden.section == "IX300";
        EXPECT_EQ(JobLines(output), GoldenLines(golden, bImage ? wcDocument : L""));
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
    std::string found;
    for (const std::string& line : ReadLines(tcOutput)) {
        found += line + "\n";
    }
    EXPECT_EQ(found, GoldenLines(golden, L""));
    DeleteFileW(tcOutput.c_str());
}

/* Not a test of the product: run by name to see that a wrong expectation turns the run red. */
TEST(Canary, DISABLED_IsRed)
{
    std::vector<std::string> wanted(QUESTIONS, "1 0 -");
    const auto found = wanted;
    wanted[20] = "1 1 -";
    ExpectSameLines(found, wanted);
}
