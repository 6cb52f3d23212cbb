/* The commands that write a default record and explain what the checks make of one. */
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "places.h"
#include "support/data_file.h"
#include "support/sample_machine.h"
#include "tools/tq/explain.h"
#include "tools/tq/merge.h"
#include "tools/tq/preset.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"
#include "tools/tq/scripting.h"

namespace {

const std::filesystem::path FOLDER = std::filesystem::temp_directory_path() / "tq-record-test";

class RecordCommands : public ::testing::Test {
  protected:
    void SetUp() override { std::filesystem::create_directories(FOLDER); }
    void TearDown() override
    {
        std::filesystem::remove_all(FOLDER);
        StopMachine();
    }

    std::string Record(const std::string& model, const std::vector<std::string>& assignments, bool bFile)
    {
        std::ostringstream out;
        RecordOptions options;
        options.model = model;
        options.package = TQUI_SAMPLES;
        options.bMetric = true;
        options.assignments = assignments;
        options.file = bFile ? (FOLDER / "a.rec").string() : "";
        EXPECT_EQ(RunRecord(options, out), 0);
        return out.str();
    }

    std::string Explain(const std::string& model, int nCode, const std::string& file = "a.rec")
    {
        std::ostringstream out;
        EXPECT_EQ(RunExplain({(FOLDER / file).string(), model, TQUI_SAMPLES, true}, out), nCode);
        return out.str();
    }
};

} // namespace

TEST_F(RecordCommands, ARecordIsWrittenAsTextAndAsBytes)
{
    std::string text = Record("T410A", {"dmCopies=3", "cJobComment=two words"}, false);
    EXPECT_NE(text.find("\ndmCopies                           86  3\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\ncJobComment                       696  \"two words\"\n"), std::string::npos);
    EXPECT_EQ(Record("Halden T410A", {"dmCopies=3", "cJobComment=two words"}, true), "");
    Bytes bytes = ReadDiskFile(FOLDER / "a.rec");
    DriverDevmode record = RecordFromText(text);
    ASSERT_EQ(bytes.size(), sizeof record);
    const u8* pRecord = reinterpret_cast<const u8*>(&record);
    EXPECT_EQ(bytes, Bytes(pRecord, pRecord + sizeof record));
    EXPECT_THROW(Record("T410A", {"dmCopies=x"}, true), RecordTextError);
    EXPECT_EQ(ReadDiskFile(FOLDER / "a.rec"), bytes) << "a wrong assignment writes nothing";
    EXPECT_THROW(Record("T999", {}, false), std::exception);
}

/* tests/data/explain.txt, of records in both of their forms. */
TEST_F(RecordCommands, AcceptedRepairedAndRefusedAreExplained)
{
    std::ifstream file(TQUI_SOURCE_DIR "/tests/data/explain.txt");
    std::string line, wanted, model, word;
    int nCode = 0, nCases = 0;
    std::vector<std::string> assignments;
    const auto hold = [&] {
        std::ofstream(FOLDER / "text.rec") << Record(model, assignments, false);
        Record(model, assignments, true);
        EXPECT_EQ(Explain(model, nCode), wanted);
        EXPECT_EQ(Explain(model, nCode, "text.rec"), wanted);
        nCases++;
    };
    while (std::getline(file, line)) {
        if (line.starts_with("> ")) {
            model.empty() ? void() : hold();
            std::istringstream words(line.substr(2));
            words >> nCode >> model;
            assignments.clear(), wanted.clear();
            while (words >> word) {
                assignments.push_back(word);
            }
        } else if (!line.starts_with("#")) {
            wanted += line + "\n";
        }
    }
    hold();
    EXPECT_EQ(nCases, 7);
}

TEST_F(RecordCommands, WhatIsNoRecordOrNoModelIsTold)
{
    std::ofstream(FOLDER / "short.rec") << std::string(220, '\0');
    EXPECT_THROW(Explain("T410A", 1, "short.rec"), std::exception);
    EXPECT_THROW(Explain("T410A", 1, "none.rec"), std::exception);
    std::ofstream(FOLDER / "a.rec") << "dmCopies 86 1\n";
    EXPECT_THROW(Explain("T999", 1), std::exception);
    EXPECT_NE(Explain("T410A", 1).find("refused"), std::string::npos) << "the template names no description";
}

TEST_F(RecordCommands, MergeTellsWhatAPrinterMakesOfARecord)
{
    const auto merge = [](const std::string& model, const std::string& record, unsigned uMode, int nCode,
                          const std::string& file = "") {
        std::ostringstream out;
        MergeOptions options = {model, TQUI_SAMPLES, true, record, uMode, file};
        EXPECT_EQ(RunMerge(options, out), nCode);
        return out.str();
    };
    Record("T410A", {"dmPaperSize=8", "dmScale=50"}, true);
    std::string record = (FOLDER / "a.rec").string(), merged = (FOLDER / "b.rec").string();
    std::string text = merge("T410A", record, 10, 0);
    EXPECT_NE(text.find("the caller's record: dmScale 50 -> 100\n"), std::string::npos) << text;
    EXPECT_NE(text.find("dmPaperWidth                       82  2100 -> 2970\n"), std::string::npos) << text;
    EXPECT_NE(text.find("0 -> 33\n"), std::string::npos) << text;
    EXPECT_EQ(merge("T410A", record, 8, 1), "the caller's record: dmScale 50 -> 100\nnothing was written\n");
    EXPECT_EQ(merge("T410A", record, 10, 0, merged), "");
    EXPECT_EQ(merge("T410A", merged, 10, 0), "the record is as it was\n");
    EXPECT_EQ(merge("T410A", "", 2, 0, merged), "");
    EXPECT_EQ(ReadRecordFile(merged).dmPaperSize, 9);
}

TEST_F(RecordCommands, ThePageForScriptsIsWhatThePrintersDo)
{
    Bytes page = ReadDiskFile(TQUI_SOURCE_DIR "/docs/scripting.md");
    EXPECT_EQ(std::string(page.begin(), page.end()), ScriptingPage(TQUI_SAMPLES))
        << "docs/scripting.md is stale: tq scripting > docs/scripting.md";
}

TEST_F(RecordCommands, PresetsAreMadeCheckedAndCompared)
{
    using Command = int (*)(const PresetOptions&, std::ostream&);
    const auto run = [](Command pfnRun, int nCode, const char* cModel, const char* cFile, const char* cOther,
                        const std::vector<std::string>& assignments) {
        std::ostringstream out;
        PresetOptions options = {cModel,          TQUI_SAMPLES, false,      FOLDER / cFile,
                                 FOLDER / cOther, "",           assignments};
        EXPECT_EQ(pfnRun(options, out), nCode) << out.str();
        return out.str();
    };
    for (const char* cModel : {"K100", "T410A", "T440B", "IX300", "QP5", "QPS"}) {
        EXPECT_EQ(run(RunPresetMake, 0, cModel, "a", "", {}), "") << cModel;
        EXPECT_EQ(run(RunPresetCheck, 0, cModel, "a", "", {}).find(" is "), std::string::npos) << cModel;
    }
    EXPECT_EQ(
        run(RunPresetMake, 0, "T410A", "a", "", {"dmCopies=3", "wcDefaultFont=F", "sColorCorrection=2"}),
        "not carried: sColorCorrection 2\n");
    run(RunPresetMake, 0, "T410A", "b", "", {"dmCopies=4"});
    const std::string differing = run(RunPresetCompare, 1, "T410A", "a", "b", {});
    EXPECT_NE(differing.find("  3 -> 4\n"), std::string::npos) << differing;
    EXPECT_NE(differing.find("wcDefaultFont "), std::string::npos) << differing;
    EXPECT_EQ(run(RunPresetCompare, 0, "T410A", "b", "b", {}), "the settings are the same\n");
    EXPECT_THROW(run(RunPresetCheck, 1, "QPS", "a", "", {}), std::exception) << "for another model";
    std::ofstream(FOLDER / "c") << "[Other]\nCopies=2\n";
    EXPECT_NE(run(RunPresetCheck, 1, "T410A", "c", "", {}).find("no settings"), std::string::npos);
    const std::string missing = run(RunPresetMissing, 0, "T410A", "a", "", {});
    EXPECT_NE(missing.find("\nsPosterX "), std::string::npos) << missing;
    for (const char* cCarried : {"\nwcDefaultFont ", "\ndmCopies ", "\nwcWMString ", "\nsTextOption["}) {
        EXPECT_EQ(missing.find(cCarried), std::string::npos) << cCarried;
    }
    for (const DataRow& row : ReadRows("preset_keys.txt")) { /* model, key and value, what is said of it */
        std::ofstream(FOLDER / "c") << "[PrinterSettings]\n" << row[1] << "\n";
        std::ostringstream out;
        RunPresetCheck({row[0], TQUI_SAMPLES, false, FOLDER / "c", "", "", {}}, out);
        const std::string said = out.str().substr(0, out.str().find('\n'));
        EXPECT_EQ(said.starts_with(row[1] + ": ") ? said.substr(row[1].size() + 2) : "", row[2]) << row[1];
    }
}
