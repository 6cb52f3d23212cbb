/* A printer of the package, installed in the system's spooler for as long as the object lives. */
#ifndef TQUI_TESTS_WINDOWS_INSTALLED_PRINTER_H
#define TQUI_TESTS_WINDOWS_INSTALLED_PRINTER_H

#include <filesystem>
#include <string>
#include <vector>

#include <windows.h>
#include <winspool.h>

#include "tools/tq/inf.h"

/* The built package: the folder that the environment variable TQUI_BUILT names, as a Windows or a Unix path.
   Throws std::runtime_error when it is not set. The same for other variables that name paths. */
std::filesystem::path PathFromEnvironment(const char* cVariable);

/* The models of the built package, and their sections. */
const std::vector<InfModel>& PackageModels();
std::vector<std::string> PackageSections();

/* Copies a model's files to the spooler's driver folder, adds the driver and a printer "NAME (test)" on
   FILE:. Throws std::runtime_error with the call and its error code; what was done until then is undone. */
class InstalledPrinter {
  public:
    /* tcLibrary: the file to install as the model's ConfigFile, the shipped one or a test copy. */
    InstalledPrinter(const InfModel& model, const std::filesystem::path& tcPackage,
                     const std::filesystem::path& tcLibrary);
    ~InstalledPrinter();
    InstalledPrinter(const InstalledPrinter&) = delete;
    InstalledPrinter& operator=(const InstalledPrinter&) = delete;

    HANDLE Handle() const { return m_hPrinter; } /* open with all access */
    const WCHAR* Name() const { return m_wcName.c_str(); }

    /* Full paths as the spooler lists them: driver, config, data, help, dependent files. */
    std::vector<std::filesystem::path> Files() const;

    /* The installed library, loaded for the life of the object, and a routine of it. */
    template <typename Routine> Routine Export(const char* cName) const
    {
        return reinterpret_cast<Routine>(reinterpret_cast<void*>(GetProcAddress(m_hLibrary, cName)));
    }

  private:
    void Install(const InfModel& model, const std::filesystem::path& tcPackage,
                 const std::filesystem::path& tcLibrary);
    void Remove();

    std::wstring m_wcName, m_wcDriver;
    std::vector<std::filesystem::path> m_copied;
    bool m_bDriver = false;
    HANDLE m_hPrinter = nullptr;
    HMODULE m_hLibrary = nullptr;
};

/* A model of the built package by its name or section, with the file that the variable names as ConfigFile; null: with
   the library as it ships. */
InstalledPrinter Install(const std::string& model, const char* cLibraryVariable = "TQUI_TEST_LIBRARY");

/* A routine of a printer's library by the name that it is declared by. */
#define EXPORT_OF(printer, name) (printer).Export<decltype(&(name))>(#name)

/* A whole file; empty when it is not there. */
std::string FileBytes(const std::filesystem::path& path);

#endif
