/* The printers of a driver package as its INF lists them: what the tests of both builds install by.

   Strict: whatever the reader does not understand is an error with its line, never skipped, so that the INF
   stays within what both the tests and the system read alike. */
#ifndef TQUI_TOOLS_TQ_INF_H
#define TQUI_TOOLS_TQ_INF_H

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

/* One printer. File names without folder, spelled as in the INF. */
struct InfModel {
    std::string name;    /* driver name, as the user sees it */
    std::string section; /* install section: the stem of its own files */
    std::string driverFile, configFile, dataFile, helpFile;
    std::vector<std::string> dependentFiles; /* in the order of CopyFiles, without the four */
    std::vector<std::string> processorFiles; /* for the folder of print processors, no files of the driver */
};

/* What the reader refuses: "FILE:LINE: sentence". */
struct InfError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/* Reads the 64-bit models of an INF in the order listed.
   Throws InfError when the file cannot be read, when a line, section or key is unknown or twice there, when
   a section that is referred to is missing, when a file is copied that has no source disk or the reverse,
   when one of the four files is not copied, and when a print processor is not copied to where it is registered. The result is never empty. */
std::vector<InfModel> ReadInf(const std::filesystem::path& path);

/* The model of a name, or of an install section. Throws std::out_of_range. */
const InfModel& FindInfModel(const std::vector<InfModel>& models, const std::string& nameOrSection);

/* All files of a model's driver, each once: the four, then the dependent ones. */
std::vector<std::string> AllInfFiles(const InfModel& model);

/* The pieces of file names that the driver searches for, in capitals. */
const std::vector<std::string>& SearchedNames();

/* Holds a model against the search by pieces of names: how many of its files (the rendering half's
   DriverFile is not searched, but counts all the same) contain each piece. Result: a sentence for each piece
   that more than one file contains; empty when the model is sound. */
std::vector<std::string> FindAmbiguousNames(const InfModel& model);

#endif
