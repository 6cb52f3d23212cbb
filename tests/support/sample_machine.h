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

    /* A sample with changes, as rows of test data write them, separated by ';':
         xpi KEY=VALUE  of its description       ini TEXT         its .INI file, \r and \n as such
         options 0x10   installed, no other      inputs 0x3       the same of input bins
         number N=98    printer value, DWORD     text N=a.ext     printer value
         language 0407  of the user              set TEXT         handed back for the record
         form 0 2100 2970 NAME  of the machine, FORM_USER (0) or of another kind
       Result: what is set. */
    std::vector<std::string> AddChanged(const std::string& sample, const std::string& changes);

    /* Row-by-row answers: numbers of a list, texts of a list. */
    static std::vector<i64> Numbers(const CapabilityAnswer& answer);
    static std::vector<std::string> Texts(const CapabilityAnswer& answer);
    /* Either of them as texts; an answer by its number alone, which is hexadecimal where it is made of bits or halves. */
    static std::vector<std::string> AnswerWords(const CapabilityAnswer& answer);

    CapabilityAnswer Ask(WORD wQuestion) { return AskCapability(hPrinter, wcPrinter, wQuestion); }

    void SetUp() override;
    void TearDown() override;

    HANDLE hPrinter = nullptr;
    WideText wcPrinter;

  private:
    void Open(const WideText& wcName);

    std::optional<OpenSample> opened;
};

/* Sections of the package's samples, one of each kind of printer. */
inline constexpr const char* acSamples[] = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};

/* The samples' INF, read once. */
const std::vector<InfModel>& SampleModels();

/* The text of a sample's description compiled with some of its fields changed. Fails the test on an error. */
Bytes CompileSample(const std::string& stem,
                    const std::vector<std::pair<std::string, std::string>>& overrides = {});

#endif
