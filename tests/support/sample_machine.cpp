/* Installs test printers on the hosted machine. */
#include "support/sample_machine.h"

#include "entry/exports.h"
#include "places.h"

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
