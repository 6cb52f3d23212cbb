/* A hosted machine with a test printer, or with the sample printers of the package. */
#ifndef TQUI_TESTS_SAMPLE_MACHINE_H
#define TQUI_TESTS_SAMPLE_MACHINE_H

#include <optional>

#include "description/printer_call.h"
#include "hosted/standin.h"
#include "support/both_builds.h"
#include "support/description_builder.h"
#include "tools/tq/ask.h"
#include "tools/tq/sample_printer.h"

/* A machine of its own for each test, on which the library is loaded, with nothing held after it. */
class MachineTest : public BothBuilds {
  protected:
    /* The printer "Test" with driver files below C:\drv: QA.XPI with these bytes, QA.INI with this text (none
       when empty), and the language libraries of the samples. Its handle is open until the test ends. */
    HANDLE AddTestPrinter(const Bytes& description, const std::string& ini = "");

    /* The printer of a sample, installed and opened. */
    HANDLE AddSample(const std::string& nameOrSection);

    /* Row-by-row answers: numbers of a list, texts of a list. */
    static std::vector<i64> Numbers(const CapabilityAnswer& answer);
    static std::vector<std::string> Texts(const CapabilityAnswer& answer);

    CapabilityAnswer Ask(WORD wQuestion) { return AskCapability(hPrinter, wcPrinter, wQuestion); }

    void SetUp() override;
    void TearDown() override;

    HANDLE hPrinter = nullptr;
    WideText wcPrinter;

  private:
    void Open(const WideText& wcName);

    std::optional<OpenSample> opened;
};

/* The samples' INF, read once. */
const std::vector<InfModel>& SampleModels();

/* The text of a sample's description compiled with some of its fields changed. Fails the test on an error. */
Bytes CompileSample(const std::string& stem,
                    const std::vector<std::pair<std::string, std::string>>& overrides = {});

#endif
