#include "inf.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <map>
#include <set>

namespace {

/* "key = value" (key empty for a line that is a list entry) with the line it stands on. */
struct InfLine {
    std::string key, value;
    int nLine;
};
using InfSection = std::vector<InfLine>;

struct InfFile {
    std::string name;
    std::map<std::string, InfSection> sections; /* by name in capitals */
    std::map<std::string, int> sectionLines;    /* the same */
    std::map<std::string, std::string> strings; /* by key in capitals */
    std::set<std::string> used;                 /* sections that somebody asked for */

    [[noreturn]] void Fail(int nLine, const std::string& sentence) const
    {
        throw InfError(name + ":" + std::to_string(nLine) + ": " + sentence);
    }
};

std::string Upper(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string Trim(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/* A line without its comment; a semicolon within quotes is text. */
std::string WithoutComment(const InfFile& inf, const std::string& line, int nLine)
{
    bool bQuoted = false;
    for (size_t n = 0; n < line.size(); n++) {
        if (line[n] == '"') {
            bQuoted = !bQuoted;
        } else if (line[n] == ';' && !bQuoted) {
            return line.substr(0, n);
        }
    }
    if (bQuoted) {
        inf.Fail(nLine, "a quote is not closed");
    }
    return line;
}

/* Quotes off, %key% replaced. */
std::string Resolve(const InfFile& inf, const std::string& text, int nLine)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        return text.substr(1, text.size() - 2);
    }
    if (text.find('"') != std::string::npos) {
        inf.Fail(nLine, "a quote within a word: " + text);
    }
    if (text.size() > 2 && text.front() == '%' && text.back() == '%') {
        const auto string = inf.strings.find(Upper(text.substr(1, text.size() - 2)));
        if (string == inf.strings.end()) {
            inf.Fail(nLine, "[Strings] has no " + text);
        }
        return string->second;
    }
    return text;
}

/* The parts of a value between commas, resolved; an empty part is an error. */
std::vector<std::string> Split(const InfFile& inf, const InfLine& line)
{
    std::vector<std::string> parts;
    std::string part;
    bool bQuoted = false;
    for (const char c : line.value + ",") {
        bQuoted = bQuoted != (c == '"');
        if (c == ',' && !bQuoted) {
            parts.push_back(Resolve(inf, Trim(part), line.nLine));
            if (parts.back().empty()) {
                inf.Fail(line.nLine, "an empty word in a list");
            }
            part.clear();
        } else {
            part += c;
        }
    }
    return parts;
}

InfFile ReadLines(const std::filesystem::path& path)
{
    InfFile inf;
    inf.name = path.filename().string();
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        inf.Fail(0, "cannot be opened");
    }
    InfSection* pSection = nullptr;
    std::string text;
    for (int nLine = 1; std::getline(file, text); nLine++) {
        if (!text.empty() && text.back() == '\r') {
            text.pop_back();
        }
        const std::string line = Trim(WithoutComment(inf, text, nLine));
        if (line.empty()) {
            continue;
        }
        if (line.front() == '[') {
            const std::string section = Upper(line.substr(1, line.size() - 2));
            if (line.back() != ']' || section.empty() || inf.sections.contains(section)) {
                inf.Fail(nLine, "not a section, or one that was there before: " + line);
            }
            pSection = &inf.sections[section];
            inf.sectionLines[section] = nLine;
        } else if (!pSection) {
            inf.Fail(nLine, "a line before the first section");
        } else if (const auto equal = line.find('='); equal == std::string::npos) {
            pSection->push_back({"", line, nLine});
        } else {
            pSection->push_back({Trim(line.substr(0, equal)), Trim(line.substr(equal + 1)), nLine});
            if (pSection->back().key.empty() || pSection->back().value.empty()) {
                inf.Fail(nLine, "a key or a value is missing: " + line);
            }
        }
    }
    return inf;
}

const InfSection& Section(InfFile& inf, const std::string& name, int nLine)
{
    const auto section = inf.sections.find(Upper(name));
    if (section == inf.sections.end() || section->second.empty()) {
        inf.Fail(nLine, "section [" + name + "] is missing or empty");
    }
    inf.used.insert(Upper(name));
    return section->second;
}

/* The keys of a section, which must be exactly the given ones. */
std::map<std::string, InfLine> Keys(InfFile& inf, const std::string& name, int nLine,
                                    const std::set<std::string>& wanted)
{
    std::map<std::string, InfLine> keys;
    for (const InfLine& line : Section(inf, name, nLine)) {
        if (!wanted.contains(Upper(line.key)) || !keys.emplace(Upper(line.key), line).second) {
            inf.Fail(line.nLine, "key unknown or twice: " + line.key);
        }
    }
    if (keys.size() != wanted.size()) {
        inf.Fail(inf.sectionLines[Upper(name)], "a key is missing in [" + name + "]");
    }
    return keys;
}

std::string Single(const InfFile& inf, const InfLine& line)
{
    const auto parts = Split(inf, line);
    if (parts.size() != 1) {
        inf.Fail(line.nLine, "one word is expected: " + line.value);
    }
    return parts.front();
}

void CheckHead(InfFile& inf)
{
    const auto version =
        Keys(inf, "Version", 0, {"SIGNATURE", "CLASS", "CLASSGUID", "PROVIDER", "DRIVERVER", "PNPLOCKDOWN"});
    const std::array<std::pair<const char*, const char*>, 4> fixed = {{
        {"SIGNATURE", "$Windows NT$"},
        {"CLASS", "Printer"},
        {"CLASSGUID", "{4D36E979-E325-11CE-BFC1-08002BE10318}"},
        {"PNPLOCKDOWN", "1"},
    }};
    for (const auto& [key, text] : fixed) {
        if (Single(inf, version.at(key)) != text) {
            inf.Fail(version.at(key).nLine, std::string("not ") + text);
        }
    }
    Single(inf, version.at("PROVIDER"));
    if (Split(inf, version.at("DRIVERVER")).size() != 2) {
        inf.Fail(version.at("DRIVERVER").nLine, "a date and a version are expected");
    }
    const auto folders = Keys(inf, "DestinationDirs", 0, {"DEFAULTDESTDIR", "PROCESSOR_FILES"});
    if (Single(inf, folders.at("DEFAULTDESTDIR")) != "66000") {
        inf.Fail(folders.at("DEFAULTDESTDIR").nLine, "printer drivers go to 66000");
    }
    if (Single(inf, folders.at("PROCESSOR_FILES")) != "66001") {
        inf.Fail(folders.at("PROCESSOR_FILES").nLine, "print processors go to 66001");
    }
    const auto package = Keys(inf, "PrinterPackageInstallation.amd64", 0, {"PACKAGEAWARE"});
    if (Single(inf, package.at("PACKAGEAWARE")) != "TRUE") {
        inf.Fail(package.at("PACKAGEAWARE").nLine, "the package is whole: TRUE is expected");
    }
    Single(inf, Keys(inf, "SourceDisksNames.amd64", 0, {"1"}).at("1"));
}

const std::string PROCESSOR_LIST = "Processor_Files";

/* A processor's entry "name,file", whose file the section copies into the folder of print processors. */
void CheckProcessor(InfFile& inf, const InfLine& line, const std::vector<std::string>& lists)
{
    const std::string entry = Single(inf, line);
    const size_t nComma = entry.find(',');
    const std::string file = nComma == std::string::npos ? "" : entry.substr(nComma + 1);
    const InfSection& files = Section(inf, PROCESSOR_LIST, line.nLine);
    if (nComma == 0 || files.size() != 1 || Single(inf, files.front()) != file ||
        !std::ranges::count(lists, PROCESSOR_LIST)) {
        inf.Fail(line.nLine, "a processor is \"name,file\", with the file alone in " + PROCESSOR_LIST);
    }
}

/* Without such an entry the driver registers the processor that it finds among its own files, and the spooler then looks
   for it in the folder of print processors: the file goes to both or to neither. */
void CheckOwnProcessor(const InfFile& inf, const InfLine& copied, const InfModel& model)
{
    const std::string piece = "JOB.DLL"; /* what the driver searches for */
    std::vector<std::string> own;
    for (const std::string& file : AllInfFiles(model)) {
        if (Upper(file).find(piece) != std::string::npos) {
            own.push_back(file);
        }
    }
    if (model.processorFiles != own) {
        inf.Fail(copied.nLine, own.empty() ? PROCESSOR_LIST + " without a PrintProcessor"
                                           : own.front() + " is not copied to the print processors");
    }
}

InfModel ReadModel(InfFile& inf, const std::string& name, const std::string& section, int nLine)
{
    std::set<std::string> wanted = {"DRIVERFILE", "CONFIGFILE", "DATAFILE", "HELPFILE", "COPYFILES"};
    const auto bProcessor = std::ranges::any_of(Section(inf, section, nLine), [](const InfLine& line) {
        return Upper(line.key) == "PRINTPROCESSOR";
    });
    if (bProcessor) {
        wanted.insert("PRINTPROCESSOR");
    }
    const auto keys = Keys(inf, section, nLine, wanted);
    const std::vector<std::string> lists = Split(inf, keys.at("COPYFILES"));
    if (bProcessor) {
        CheckProcessor(inf, keys.at("PRINTPROCESSOR"), lists);
    }
    InfModel model{name,
                   section,
                   Single(inf, keys.at("DRIVERFILE")),
                   Single(inf, keys.at("CONFIGFILE")),
                   Single(inf, keys.at("DATAFILE")),
                   Single(inf, keys.at("HELPFILE")),
                   {},
                   {}};
    const std::array<std::string, 4> four = {model.driverFile, model.configFile, model.dataFile,
                                             model.helpFile};
    std::set<std::string> copied;
    for (const std::string& list : lists) {
        for (const InfLine& line : Section(inf, list, keys.at("COPYFILES").nLine)) {
            const std::string file = line.key.empty() ? Single(inf, line) : "";
            if (file.empty() || file.find_first_of("\\/:") != std::string::npos) {
                inf.Fail(line.nLine, "a plain file name is expected");
            }
            /* What lies with the print processors is none of the driver's files. */
            const bool bOwnFolder = list == PROCESSOR_LIST;
            if (!copied.insert((bOwnFolder ? "\\" : "") + Upper(file)).second) {
                inf.Fail(line.nLine, file + " is copied twice for " + name);
            }
            if (bOwnFolder) {
                model.processorFiles.push_back(file);
            } else if (std::ranges::find(four, file) == four.end()) {
                model.dependentFiles.push_back(file);
            }
        }
    }
    for (const std::string& file : four) {
        if (!copied.contains(Upper(file))) {
            inf.Fail(inf.sectionLines[Upper(section)], file + " is not in CopyFiles");
        }
    }
    if (!bProcessor) {
        CheckOwnProcessor(inf, keys.at("COPYFILES"), model);
    }
    return model;
}

/* The files on the disks and the files that models copy are the same ones. */
void CheckSourceFiles(InfFile& inf, const std::vector<InfModel>& models)
{
    std::map<std::string, int> disk;
    for (const InfLine& line : Section(inf, "SourceDisksFiles", 0)) {
        if (line.key.empty() || line.value != "1" || !disk.emplace(line.key, line.nLine).second) {
            inf.Fail(line.nLine, "not a file on disk 1, or one that was there before");
        }
    }
    std::set<std::string> copied;
    for (const InfModel& model : models) {
        std::vector<std::string> files = AllInfFiles(model);
        files.insert(files.end(), model.processorFiles.begin(), model.processorFiles.end());
        for (const std::string& file : files) {
            copied.insert(file);
            if (!disk.contains(file)) {
                inf.Fail(inf.sectionLines[Upper(model.section)], file + " is not in [SourceDisksFiles]");
            }
        }
    }
    for (const auto& [file, nLine] : disk) {
        if (!copied.contains(file)) {
            inf.Fail(nLine, file + " is copied for no model");
        }
    }
}

/* The other section of a printer installs the same files but for the processor among the driver's. */
void CheckAlternative(const InfFile& inf, const InfModel& model, const InfModel& other)
{
    std::vector<std::string> less = AllInfFiles(model);
    std::erase(less, inf.sections.at(Upper(PROCESSOR_LIST)).front().value);
    if (AllInfFiles(other) != less || other.processorFiles != model.processorFiles) {
        inf.Fail(inf.sectionLines.at(Upper(other.section)),
                 "[" + other.section + "] installs other files than [" + model.section + "]");
    }
}

} // namespace

std::vector<InfModel> ReadInf(const std::filesystem::path& path)
{
    InfFile inf = ReadLines(path);
    for (const InfLine& line : Section(inf, "Strings", 0)) {
        const std::string text = Resolve(inf, line.value, line.nLine);
        if (line.value.front() != '"' || !inf.strings.emplace(Upper(line.key), text).second) {
            inf.Fail(line.nLine, "a string is not quoted or twice there: " + line.key);
        }
    }
    CheckHead(inf);

    std::vector<InfModel> models;
    const InfSection& makers = Section(inf, "Manufacturer", 0);
    for (const InfLine& maker : makers) {
        const auto list = Split(inf, maker);
        if (list.size() != 2 || Upper(list[1]) != "NTAMD64") {
            inf.Fail(maker.nLine, "the models' section and NTamd64 are expected");
        }
        for (const InfLine& line : Section(inf, list[0] + "." + list[1], maker.nLine)) {
            const std::string name = Resolve(inf, line.key, line.nLine);
            const auto words = Split(inf, line);
            if (name.empty() || words.size() != 2) {
                inf.Fail(line.nLine, "a model is \"name\" = section, hardware id");
            }
            for (const InfModel& model : models) {
                if (model.name == name) {
                    inf.Fail(line.nLine, "model twice: " + name);
                }
            }
            models.push_back(ReadModel(inf, name, words[0], line.nLine));
        }
    }
    CheckSourceFiles(inf, models);
    for (const InfModel& model : models) {
        /* The section of the same printer that an integrator may take in its place. */
        const std::string other = model.section + "_Processor";
        if (inf.sections.contains(Upper(other))) {
            CheckAlternative(inf, model, ReadModel(inf, model.name, other, inf.sectionLines[Upper(other)]));
        }
    }
    for (const auto& [section, nLine] : inf.sectionLines) {
        if (!inf.used.contains(section)) {
            inf.Fail(nLine, "nothing refers to section [" + section + "]");
        }
    }
    return models;
}

const InfModel& FindInfModel(const std::vector<InfModel>& models, const std::string& nameOrSection)
{
    for (const InfModel& model : models) {
        if (model.name == nameOrSection || model.section == nameOrSection) {
            return model;
        }
    }
    throw std::out_of_range("no model " + nameOrSection);
}

std::vector<std::string> AllInfFiles(const InfModel& model)
{
    std::vector<std::string> files = {model.driverFile, model.configFile, model.dataFile, model.helpFile};
    files.insert(files.end(), model.dependentFiles.begin(), model.dependentFiles.end());
    return files;
}

const std::vector<std::string>& SearchedNames()
{
    static const std::vector<std::string> names = {".XPI",    ".INI",     "TXT.DLL", "ENUS.DLL",
                                                   ".CHM",    "RDR.DLL",  "LAY.DLL", "GLYF.EXE",
                                                   "MRK.EXE", "KRND.DLL", "JOB.DLL", "CRE.DLL"};
    return names;
}

std::vector<std::string> FindAmbiguousNames(const InfModel& model)
{
    std::vector<std::string> findings;
    for (const std::string& piece : SearchedNames()) {
        std::string found;
        int nFound = 0;
        for (const std::string& file : AllInfFiles(model)) {
            if (Upper(file).find(piece) != std::string::npos) {
                found += " " + file;
                nFound++;
            }
        }
        if (nFound > 1) {
            findings.push_back(model.name + ": " + piece + " is in" + found);
        }
    }
    return findings;
}
