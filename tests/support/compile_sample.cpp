/* Samples with fields of their own, by the compiler of descriptions. */
#include "places.h"
#include "support/data_file.h"
#include "support/job_golden.h"
#include "support/sample_machine.h"
#include "xpi_format.h"

Bytes CompileSample(const std::string& stem,
                    const std::vector<std::pair<std::string, std::string>>& overrides)
{
    std::string path = TQUI_SOURCE_DIR "/package/models/" + stem + ".toml";
    Bytes text = ReadDiskFile(path);

    std::vector<XpiOverride> changes;
    for (const auto& [key, value] : overrides) {
        changes.push_back({key, value});
    }
    XpiCompiled compiled =
        CompileXpi({reinterpret_cast<const char*>(text.data()), text.size()}, path, changes);
    for (const XpiError& error : compiled.errors) {
        ADD_FAILURE() << FormatXpiError(path, error);
    }
    return compiled.bytes;
}

std::vector<std::string> MachineTest::AddChanged(const std::string& sample, const std::string& changes)
{
    AddSample(sample);
    std::vector<std::pair<std::string, std::string>> overrides;
    std::vector<std::string> sets;
    Bytes installed(16);
    for (const std::string& change : SplitTrimmed(changes, ';')) {
        const size_t nKind = std::min(change.find(' '), change.size());
        const std::string kind = change.substr(0, nKind),
                          text = change.substr(std::min(nKind + 1, change.size()));
        const size_t nAt = text.find('=');
        const std::string name = text.substr(0, nAt), value = nAt == text.npos ? "" : text.substr(nAt + 1);
        if (kind == "xpi") {
            overrides.emplace_back(name, value);
        } else if (kind == "ini") {
            PutFile(wcDriverFolder + Widen(sample) + u".INI", UnescapeGolden('"' + text + '"'));
        } else if (kind == "options" || kind == "inputs") {
            Poke(&installed, kind == "options" ? 8 : 0, static_cast<u32>(ToNumber(text)));
            SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, installed);
        } else if (kind == "number") {
            Bytes bytes;
            Poke(&bytes, 0, static_cast<u32>(ToNumber(value)));
            SetPrinterValue(wcPrinter, Widen(name), REG_DWORD, bytes);
        } else if (kind == "text") {
            SetPrinterText(wcPrinter, Widen(name), Widen(value));
        } else if (kind == "language") {
            SetUserLanguage(static_cast<u16>(ToNumber("0x" + text)));
        } else if (kind == "form") {
            const std::vector<std::string> words = Words(text);
            AddMachineForm(Widen(words[3]), static_cast<DWORD>(ToNumber(words[0])),
                           static_cast<LONG>(ToNumber(words[1])), static_cast<LONG>(ToNumber(words[2])));
        } else if (kind == "set") {
            sets.push_back(text);
        } else {
            EXPECT_EQ(kind, "") << "no change that is known";
        }
    }
    if (!overrides.empty()) {
        PutFile(wcDriverFolder + Widen(sample) + u".XPI", CompileSample(sample, overrides));
    }
    return sets;
}
