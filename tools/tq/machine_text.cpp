/* Writes and reads the state of a hosted machine. */
#include "tools/tq/machine_text.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "hosted/standin.h"

namespace {

constexpr size_t ROW_BYTES = 32;

std::string Hex(const u8* pBytes, size_t cb, const char* cBetween)
{
    static constexpr char cDigits[] = "0123456789ABCDEF";
    std::string text;
    for (size_t i = 0; i < cb; i++) {
        text += i ? cBetween : "";
        text += cDigits[pBytes[i] >> 4];
        text += cDigits[pBytes[i] & 15];
    }
    return text;
}

std::string Hex(const Bytes& bytes)
{
    return bytes.empty() ? "-" : Hex(bytes.data(), bytes.size(), "");
}

Bytes FromHex(const std::string& text)
{
    Bytes bytes;
    if (text == "-") {
        return bytes;
    }
    if (text.size() % 2 || text.find_first_not_of("0123456789ABCDEF") != text.npos) {
        throw std::runtime_error("no hex number: " + text);
    }
    for (size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<u8>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

/* Names may hold blanks: those of values are written with %20 for one, and %25 for %. */
std::string Quoted(const WideText& wcName)
{
    std::string text;
    for (char character : Narrow(wcName)) {
        text += character == ' ' ? "%20" : character == '%' ? "%25" : std::string(1, character);
    }
    return text;
}

WideText Unquoted(std::string text)
{
    for (size_t nAt = 0; (nAt = text.find('%', nAt)) != text.npos; nAt++) {
        text.replace(nAt, 3, text.compare(nAt, 3, "%20") == 0 ? " " : "%");
    }
    return Widen(text);
}

std::string ValueLine(const MachineValue& value)
{
    return "  value " + std::to_string(value.dwType) + " " + Quoted(value.wcName) + " " + Hex(value.bytes) +
           "\n";
}

std::string PrinterLines(const WideText& wcPrinter)
{
    PrinterSetup setup = GetPrinterSetup(wcPrinter);
    std::string text = "printer " + Narrow(wcPrinter) + "\n";
    auto line = [&text](const char* cWord, const WideText& wcText) {
        text += wcText.empty() ? "" : std::string("  ") + cWord + " " + Narrow(wcText) + "\n";
    };
    line("driver", setup.wcDriverName);
    line("file path", setup.tcDriverPath);
    line("file config", setup.tcConfigFile);
    line("file data", setup.tcDataFile);
    line("file help", setup.tcHelpFile);
    for (const WideText& tcFile : setup.atcDependentFiles) {
        line("file depend", tcFile);
    }
    line("comment", setup.wcComment);
    line("location", setup.wcLocation);
    line("processor", setup.wcPrintProcessor);
    line("record", Widen(Hex(setup.devmode)));
    for (const MachineValue& value : PrinterValues(wcPrinter)) {
        text += ValueLine(value);
    }
    return text;
}

/* The reader's place: what indented lines belong to. */
struct Place {
    PrinterSetup setup;
    std::vector<MachineValue> values;
    WideText wcKey;
    bool bPrinter = false;

    void Finish()
    {
        if (bPrinter) {
            AddPrinter(setup);
            for (const MachineValue& value : values) {
                SetPrinterValue(setup.wcName, value.wcName, value.dwType, value.bytes);
            }
        }
        *this = Place();
    }
};

std::string Rest(std::istream& line)
{
    std::string text;
    std::getline(line >> std::ws, text);
    return text;
}

void ReadFileLine(Place* pPlace, std::istream& line)
{
    std::string role;
    line >> role;
    WideText tcPath = Widen(Rest(line));
    PrinterSetup& setup = pPlace->setup;
    if (role == "depend") {
        setup.atcDependentFiles.push_back(tcPath);
        return;
    }
    WideText* pField = role == "path"     ? &setup.tcDriverPath
                       : role == "config" ? &setup.tcConfigFile
                       : role == "data"   ? &setup.tcDataFile
                       : role == "help"   ? &setup.tcHelpFile
                                          : nullptr;
    if (!pField) {
        throw std::runtime_error("unknown file " + role);
    }
    *pField = tcPath;
}

void ReadInnerLine(Place* pPlace, const std::string& word, std::istream& line)
{
    if (word == "value") {
        MachineValue value;
        std::string name, hex;
        line >> value.dwType >> name >> hex;
        value.wcName = Unquoted(name);
        value.bytes = FromHex(hex);
        if (pPlace->bPrinter) {
            pPlace->values.push_back(value);
        } else {
            SetKeyValue(pPlace->wcKey, value);
        }
    } else if (word == "file") {
        ReadFileLine(pPlace, line);
    } else if (word == "record") {
        pPlace->setup.devmode = FromHex(Rest(line));
    } else {
        WideText* pField = word == "driver"      ? &pPlace->setup.wcDriverName
                           : word == "comment"   ? &pPlace->setup.wcComment
                           : word == "location"  ? &pPlace->setup.wcLocation
                           : word == "processor" ? &pPlace->setup.wcPrintProcessor
                                                 : nullptr;
        if (!pField) {
            throw std::runtime_error("unknown word " + word);
        }
        *pField = Widen(Rest(line));
    }
}

void ReadOuterLine(Place* pPlace, const std::string& word, std::istream& line,
                   std::vector<std::string>* pProcessors, std::vector<FontFamily>* pFamilies)
{
    pPlace->Finish();
    if (word == "printer") {
        pPlace->bPrinter = true;
        pPlace->setup.wcName = Widen(Rest(line));
    } else if (word == "key") {
        pPlace->wcKey = Widen(Rest(line));
        AddKey(pPlace->wcKey);
    } else if (word == "form") {
        MachineForm form = {};
        line >> form.dwFlags >> form.size.cx >> form.size.cy >> form.area.left >> form.area.top >>
            form.area.right >> form.area.bottom;
        form.wcName = Widen(Rest(line));
        AddMachineForm(form);
    } else if (word == "processor") {
        pProcessors->push_back(Rest(line));
    } else if (word == "family") {
        FontFamily family = {};
        unsigned uCharSet = 0;
        line >> family.dwType >> uCharSet;
        family.bCharSet = static_cast<u8>(uCharSet);
        family.wcName = Widen(Rest(line));
        pFamilies->push_back(family);
    } else {
        throw std::runtime_error("unknown word " + word);
    }
}

/* Texts of a value whose characters are wide, each in quotation marks. */
std::string DescribeTexts(const Bytes& bytes)
{
    WideText wcAll(bytes.size() / sizeof(WCHAR), u'\0');
    std::memcpy(wcAll.data(), bytes.data(), wcAll.size() * sizeof(WCHAR));
    std::string text = "\"";
    for (WCHAR character : wcAll) {
        text += character ? Narrow({&character, 1}) : "\\0";
    }
    return text + "\"";
}

std::string DescribeFiles(const std::filesystem::path& folder)
{
    std::vector<std::string> lines;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
        if (entry.is_regular_file()) {
            lines.push_back("file " + std::to_string(entry.file_size()) + " " +
                            entry.path().lexically_relative(machineRoot).string() + "\n");
        }
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return text;
}

} // namespace

std::string MachineText()
{
    std::string text;
    for (const WideText& wcPrinter : PrinterNames()) {
        text += PrinterLines(wcPrinter);
    }
    for (const MachineForm& form : MachineForms()) {
        std::ostringstream line;
        line << "form " << form.dwFlags << " " << form.size.cx << " " << form.size.cy << " " << form.area.left
             << " " << form.area.top << " " << form.area.right << " " << form.area.bottom << " "
             << Narrow(form.wcName) << "\n";
        text += line.str();
    }
    for (const std::string& processor : PrintProcessors()) {
        text += "processor " + processor + "\n";
    }
    for (const FontFamily& family : FontFamilies()) {
        text += "family " + std::to_string(family.dwType) + " " + std::to_string(family.bCharSet) + " " +
                Narrow(family.wcName) + "\n";
    }
    for (const WideText& wcPath : KeyPaths()) {
        text += "key " + Narrow(wcPath) + "\n";
        for (const MachineValue& value : KeyValues(wcPath)) {
            text += ValueLine(value);
        }
    }
    return text;
}

void ReadMachineText(const std::string& text)
{
    std::istringstream lines(text);
    std::vector<std::string> processors;
    std::vector<FontFamily> families;
    Place place;
    int nLine = 0;
    for (std::string whole; std::getline(lines, whole);) {
        nLine++;
        std::istringstream line(whole);
        std::string word;
        if (!(line >> word)) {
            continue;
        }
        try {
            if (whole[0] == ' ') {
                ReadInnerLine(&place, word, line);
            } else {
                ReadOuterLine(&place, word, line, &processors, &families);
            }
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(nLine) + ": " + error.what());
        }
    }
    place.Finish();
    SetPrintProcessors(processors);
    SetFontFamilies(families);
}

std::string DescribeValue(DWORD dwType, const Bytes& bytes)
{
    if (dwType == REG_SZ || dwType == REG_MULTI_SZ) {
        return std::string(dwType == REG_SZ ? "sz " : "multi ") + DescribeTexts(bytes);
    }
    if (dwType == REG_DWORD && bytes.size() == sizeof(u32)) {
        u32 ulValue;
        std::memcpy(&ulValue, bytes.data(), sizeof ulValue);
        return "dword " + std::to_string(ulValue);
    }
    std::string text = "binary " + std::to_string(bytes.size());
    for (size_t nAt = 0; nAt < bytes.size(); nAt += ROW_BYTES) {
        text += "\n    " + Hex(bytes.data() + nAt, std::min(ROW_BYTES, bytes.size() - nAt), " ");
    }
    return text;
}

std::string DescribePrinter(const WideText& wcPrinter)
{
    PrinterSetup setup = GetPrinterSetup(wcPrinter);
    std::string text = "printer " + Narrow(wcPrinter) + ", processor " + Narrow(setup.wcPrintProcessor) +
                       ", record " + std::to_string(setup.devmode.size()) + " bytes\n";
    for (const MachineValue& value : PrinterValues(wcPrinter)) {
        text += "value " + Narrow(value.wcName) + " " + DescribeValue(value.dwType, value.bytes) + "\n";
    }
    for (const MachineForm& form : MachineForms()) {
        std::ostringstream line;
        line << "form \"" << Narrow(form.wcName) << "\" flags " << form.dwFlags << ", " << form.size.cx
             << " x " << form.size.cy << ", area " << form.area.left << " " << form.area.top << " "
             << form.area.right << " " << form.area.bottom << "\n";
        text += line.str();
    }
    for (const std::string& processor : PrintProcessors()) {
        text += "processor " + processor + "\n";
    }
    return text + DescribeFiles(HostPath(u"C:\\Users\\"));
}
