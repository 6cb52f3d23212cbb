#include "installed_printer.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const std::string& call)
{
    throw std::runtime_error(call + " failed with error " + std::to_string(GetLastError()));
}

/* Names in the INF are ASCII. */
std::wstring Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

} // namespace

fs::path PathFromEnvironment(const char* cVariable)
{
    const char* cText = std::getenv(cVariable);
    if (!cText || !*cText) {
        throw std::runtime_error(std::string(cVariable) + " is not set");
    }
    return fs::path(*cText == '/' ? std::string("Z:") + cText : cText).make_preferred();
}

const std::vector<InfModel>& PackageModels()
{
    static const std::vector<InfModel> models = ReadInf(PathFromEnvironment("TQUI_BUILT") / "tqui.inf");
    return models;
}

std::vector<std::string> PackageSections()
{
    std::vector<std::string> sections;
    for (const InfModel& model : PackageModels()) {
        sections.push_back(model.section);
    }
    return sections;
}

InstalledPrinter Install(const std::string& model, const char* cLibraryVariable)
{
    const fs::path tcPackage = PathFromEnvironment("TQUI_BUILT");
    return {FindInfModel(PackageModels(), model), tcPackage,
            cLibraryVariable ? PathFromEnvironment(cLibraryVariable) : tcPackage / "TQUI.dll"};
}

std::string FileBytes(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

InstalledPrinter::InstalledPrinter(const InfModel& model, const fs::path& tcPackage,
                                   const fs::path& tcLibrary)
    : m_wcName(Wide(model.name) + L" (test)"), m_wcDriver(Wide(model.name))
{
    try {
        Install(model, tcPackage, tcLibrary);
    } catch (...) {
        Remove();
        throw;
    }
}

InstalledPrinter::~InstalledPrinter()
{
    Remove();
}

void InstalledPrinter::Install(const InfModel& model, const fs::path& tcPackage, const fs::path& tcLibrary)
{
    const auto copy = [&](const std::string& file, const fs::path& tcFrom,
                          decltype(&GetPrinterDriverDirectoryW) find) {
        WCHAR tcFolder[MAX_PATH];
        DWORD cbNeeded = 0;
        if (!find(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(tcFolder), sizeof tcFolder, &cbNeeded)) {
            Fail("asking for the folder of " + file);
        }
        fs::create_directories(tcFolder);
        const fs::path tcTo = fs::path(tcFolder) / file;
        if (!CopyFileW(tcFrom.c_str(), tcTo.c_str(), FALSE)) {
            Fail("copying " + tcFrom.string());
        }
        return tcTo;
    };
    for (const std::string& file : AllInfFiles(model)) {
        m_copied.push_back(
            copy(file, file == model.configFile ? tcLibrary : tcPackage / file, GetPrinterDriverDirectoryW));
    }
    for (const std::string& file : model.processorFiles) {
        copy(file, tcPackage / file, GetPrintProcessorDirectoryW);
    }

    std::wstring wcDependent;
    for (const std::string& file : model.dependentFiles) {
        wcDependent += Wide(file) + L'\0';
    }
    std::wstring wcDriverFile = Wide(model.driverFile), wcConfigFile = Wide(model.configFile);
    std::wstring wcDataFile = Wide(model.dataFile), wcHelpFile = Wide(model.helpFile);
    DRIVER_INFO_3W driver{};
    driver.cVersion = 3;
    driver.pName = m_wcDriver.data();
    driver.pDriverPath = wcDriverFile.data();
    driver.pConfigFile = wcConfigFile.data();
    driver.pDataFile = wcDataFile.data();
    driver.pHelpFile = wcHelpFile.data();
    driver.pDependentFiles = wcDependent.data();
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&driver), APD_COPY_ALL_FILES)) {
        Fail("AddPrinterDriverExW");
    }
    m_bDriver = true;

    WCHAR wcPort[] = L"FILE:", wcProcessor[] = L"winprint", wcDatatype[] = L"RAW";
    PRINTER_INFO_2W printer{};
    printer.pPrinterName = m_wcName.data();
    printer.pDriverName = m_wcDriver.data();
    printer.pPortName = wcPort;
    printer.pPrintProcessor = wcProcessor;
    printer.pDatatype = wcDatatype;
    const HANDLE hAdded = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&printer));
    if (!hAdded) {
        Fail("AddPrinterW");
    }
    ClosePrinter(hAdded);

    PRINTER_DEFAULTSW defaults{nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (!OpenPrinterW(m_wcName.data(), &m_hPrinter, &defaults)) {
        m_hPrinter = nullptr;
        Fail("OpenPrinterW");
    }
    m_hLibrary = LoadLibraryW(Files().at(1).c_str());
    if (!m_hLibrary) {
        Fail("loading the installed library");
    }
}

void InstalledPrinter::Remove()
{
    if (m_hLibrary) {
        FreeLibrary(m_hLibrary);
        m_hLibrary = nullptr;
    }
    if (m_hPrinter) {
        DeletePrinter(m_hPrinter);
        ClosePrinter(m_hPrinter);
        m_hPrinter = nullptr;
    }
    if (m_bDriver) {
        DeletePrinterDriverExW(nullptr, nullptr, m_wcDriver.data(), 0, 0);
        m_bDriver = false;
    }
    for (const fs::path& tcFile : m_copied) {
        DeleteFileW(tcFile.c_str());
        DeleteFileW((tcFile.parent_path() / "3" / tcFile.filename()).c_str());
    }
    m_copied.clear();
}

std::vector<fs::path> InstalledPrinter::Files() const
{
    DWORD cbNeeded = 0;
    GetPrinterDriverW(m_hPrinter, nullptr, 3, nullptr, 0, &cbNeeded);
    std::vector<BYTE> block(cbNeeded);
    if (block.empty() || !GetPrinterDriverW(m_hPrinter, nullptr, 3, block.data(), cbNeeded, &cbNeeded)) {
        Fail("GetPrinterDriverW");
    }
    const auto& driver = *reinterpret_cast<const DRIVER_INFO_3W*>(block.data());

    std::vector<fs::path> files = {driver.pDriverPath, driver.pConfigFile, driver.pDataFile,
                                   driver.pHelpFile};
    for (const WCHAR* wcFile = driver.pDependentFiles; wcFile && *wcFile; wcFile += wcslen(wcFile) + 1) {
        files.emplace_back(wcFile);
    }
    return files;
}
