/* Installs test printers on the hosted machine. */
#include "support/sample_machine.h"

#include "entry/exports.h"
#include "places.h"
#include "support/data_file.h"
#include "support/job_golden.h"
#include "xpi_format.h"

void MachineTest::SetUp()
{
    BothBuilds::SetUp();
    DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr);
}

void MachineTest::TearDown()
{
    opened.reset();
    DllMain(nullptr, DLL_PROCESS_DETACH, nullptr);
    BothBuilds::TearDown();
}

void MachineTest::Open(const WideText& wcName)
{
    wcPrinter = wcName;
    opened.reset();
    opened.emplace(wcName);
    hPrinter = opened->hPrinter;
}

HANDLE MachineTest::AddTestPrinter(const Bytes& description, const std::string& ini)
{
    PrinterSetup setup;
    setup.wcName = u"Test";
    setup.wcDriverName = u"Test Driver";
    setup.tcDriverPath = u"C:\\drv\\qrnd.dll";
    setup.tcConfigFile = u"C:\\drv\\tqui.dll";
    setup.tcDataFile = u"C:\\drv\\qa.fdf";
    setup.tcHelpFile = u"C:\\drv\\qa.chm";
    setup.atcDependentFiles = {u"C:\\drv\\qa.xpi", u"C:\\drv\\qa.ini", u"C:\\drv\\txt.dll",
                               u"C:\\drv\\enus.dll"};
    PutFile(u"C:\\drv\\qa.xpi", description);
    if (!ini.empty()) {
        PutFile(u"C:\\drv\\qa.ini", std::string_view(ini));
    }
    PutFile(u"C:\\drv\\txt.dll", ReadDiskFile(TQUI_SAMPLES "/TXT.DLL"));
    PutFile(u"C:\\drv\\enus.dll", ReadDiskFile(TQUI_SAMPLES "/ENUS.DLL"));
    AddPrinter(setup);
    Open(setup.wcName);
    return hPrinter;
}

HANDLE MachineTest::AddSample(const std::string& nameOrSection)
{
    Open(InstallSample(FindInfModel(SampleModels(), nameOrSection), TQUI_SAMPLES).wcName);
    return hPrinter;
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

std::vector<i64> MachineTest::Numbers(const CapabilityAnswer& answer)
{
    size_t cbRow = RowBytes(answer.wQuestion);
    size_t cb = cbRow == 8 ? 4 : cbRow; /* pairs of LONG come one number after the other */
    std::vector<i64> numbers;
    for (size_t nAt = 0; nAt + cb <= answer.rows.size(); nAt += cb) {
        numbers.push_back(cb == 2 ? Peek<i16>(answer.rows, nAt) : Peek<i32>(answer.rows, nAt));
    }
    return numbers;
}

std::vector<std::string> MachineTest::Texts(const CapabilityAnswer& answer)
{
    size_t cbRow = RowBytes(answer.wQuestion);
    std::vector<std::string> texts;
    for (size_t nRow = 0; (nRow + 1) * cbRow <= answer.rows.size(); nRow++) {
        WideText wcText;
        size_t nAt = 0;
        while (nAt < cbRow && Peek<u16>(answer.rows, nRow * cbRow + nAt)) {
            wcText += static_cast<WCHAR>(Peek<u16>(answer.rows, nRow * cbRow + nAt));
            nAt += sizeof(WCHAR);
        }
        EXPECT_LT(nAt, cbRow) << "row " << nRow << " has no end";
        texts.push_back(Narrow(wcText));
    }
    return texts;
}

std::vector<std::string> MachineTest::AnswerWords(const CapabilityAnswer& answer)
{
    if (RowBytes(answer.wQuestion) > 8) {
        return Texts(answer);
    }
    if (!RowBytes(answer.wQuestion)) {
        const bool bHex = answer.wQuestion == DC_FIELDS || answer.wQuestion == DC_MINEXTENT ||
                          answer.wQuestion == DC_MAXEXTENT;
        char cNumber[16];
        std::snprintf(cNumber, sizeof cNumber, bHex ? "0x%08X" : "%u", answer.dwResult);
        return {cNumber};
    }
    std::vector<std::string> words;
    for (i64 lNumber : Numbers(answer)) {
        words.push_back(std::to_string(lNumber));
    }
    return words;
}

const std::vector<InfModel>& SampleModels()
{
    static const std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    return models;
}

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
