/* tq, the companion tool: shows what the library makes of a printer description, without Windows. */
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "hosted/standin.h"
#include "places.h"
#include "tools/tq/caps.h"
#include "tools/tq/explain.h"
#include "tools/tq/gallery.h"
#include "tools/tq/install.h"
#include "tools/tq/job.h"
#include "tools/tq/lint.h"
#include "tools/tq/merge.h"
#include "tools/tq/preset.h"
#include "tools/tq/preview.h"
#include "tools/tq/record.h"
#include "tools/tq/sample_printer.h"
#include "tools/tq/scripting.h"

namespace {

std::string IsLanguageId(const std::string& text)
{
    return text.size() == 4 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos
               ? std::string()
               : "not four hex digits: " + text;
}

/* Words of a watermark fit its fields whole. */
CLI::Validator FitsIn(size_t cchMost)
{
    return CLI::Validator(
        [cchMost](const std::string& text) {
            const size_t cch = Widen(text).size();
            return cch >= 1 && cch <= cchMost ? std::string()
                                              : "not 1 to " + std::to_string(cchMost) + " characters";
        },
        "1 to " + std::to_string(cchMost) + " characters");
}

/* One kind of watermark, and no option that would change nothing. */
void AddWatermarkOptions(CLI::App* pPreview, PreviewOptions* pOptions)
{
    CLI::Option* pText =
        pPreview->add_option("--watermark", pOptions->text, "A text watermark")->check(FitsIn(63));
    CLI::Option* pImage =
        pPreview->add_option("--image", pOptions->image, "An image watermark: a bitmap file")
            ->check(CLI::ExistingFile)
            ->excludes(pText);
    CLI::Option* apOfText[] = {
        pPreview->add_option("--face", pOptions->face, "Its face (default Times New Roman)")
            ->check(FitsIn(31)),
        pPreview->add_option("--size", pOptions->nSize, "Its size in points (default 72)")
            ->check(CLI::Range(8, 300)),
        pPreview->add_flag("--bold", pOptions->bBold, "Bold letters"),
        pPreview->add_flag("--italic", pOptions->bItalic, "Italic letters"),
        pPreview->add_flag("--outline", pOptions->bOutline, "Only the outline of its letters"),
        pPreview->add_flag("--rtl", pOptions->bRightToLeft, "It reads from right to left"),
        pPreview->add_option("--angle", pOptions->dAngle, "Degrees by which it is turned (default 45)")
            ->check(CLI::Range(0.0, 359.9))};
    for (CLI::Option* pOption : apOfText) {
        pOption->needs(pText);
    }
    pPreview
        ->add_option("--placement", pOptions->nPlacement,
                     "Of the image, 0 to 9 (default 0, the centre; 1 tiles)")
        ->check(CLI::Range(0, 9))
        ->needs(pImage);
    pPreview->add_option("--scale", pOptions->nScale, "Of the image, percent")
        ->check(CLI::Range(25, 400))
        ->needs(pImage);
    pPreview
        ->add_option("--position", pOptions->position,
                     "X,Y: millimetres from its place to the right and upwards, -250 to 250")
        ->delimiter(',')
        ->expected(2)
        ->check(CLI::Range(-250.0, 250.0));
    pPreview->add_flag("--first-page", pOptions->bFirstPage,
                       "On the first page of a sheet alone; also the record's own watermark");
}

/* A command line's word, and what it runs with the options that the words behind it set. */
struct Command {
    CLI::App* pApp;
    std::function<int()> run;
};
using Commands = std::vector<Command>;

void AddCaps(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<CapsOptions>();
    CapsOptions& caps = *pOptions;
    CLI::App* pCaps = app.add_subcommand("caps", "All 35 capability answers of a printer");
    pCaps
        ->add_option("printer", caps.what,
                     "A description file (.XPI), or a sample's name or section of the INF")
        ->required();
    pCaps->add_option("--package", caps.package, "Folder with tqui.inf, descriptions and language libraries")
        ->check(CLI::ExistingDirectory);
    pCaps
        ->add_option("--language", caps.language,
                     "Language id of the user, four hex digits (0407 German, 0409 English)")
        ->check(IsLanguageId);
    pCaps->add_flag("--metric", caps.bMetric, "The user's locale is metric");
    pCaps->add_flag("--raw", caps.bRaw, "One line a question: number, result, rows in hex");
    caps.package = TQUI_SAMPLES;
    commands.push_back({pCaps, [pOptions] { return RunCaps(*pOptions, std::cout); }});
}

void AddLint(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<std::string>();
    std::string& lintFile = *pOptions;
    CLI::App* pLint = app.add_subcommand("lint", "The faults of a description file, by table, row and field");
    pLint->add_option("file", lintFile, "A description file (.XPI)")->required();
    commands.push_back({pLint, [pOptions] { return RunLint(*pOptions, std::cout, std::cerr); }});
}

void AddRecord(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<RecordOptions>();
    RecordOptions& record = *pOptions;
    CLI::App* pRecord = app.add_subcommand("record", "A printer's default settings record, changed as asked");
    pRecord->add_option("--model", record.model, "A description file, or a sample's name or section")
        ->required();
    pRecord->add_option("--package", record.package, "Folder with tqui.inf, descriptions and settings files")
        ->check(CLI::ExistingDirectory);
    pRecord->add_option("--set", record.assignments, "field=value; several times");
    pRecord->add_option("--out", record.file, "File for the 4088 bytes; without it the record comes as text");
    pRecord->add_flag("--all", record.bAll,
                      "The text has every field, not only what differs from the template");
    pRecord->add_flag("--metric", record.bMetric, "The user's locale is metric");
    record.package = TQUI_SAMPLES;
    commands.push_back({pRecord, [pOptions] { return RunRecord(*pOptions, std::cout); }});
}

void AddExplain(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<ExplainOptions>();
    ExplainOptions& explain = *pOptions;
    CLI::App* pExplain =
        app.add_subcommand("explain", "Why a record is accepted, repaired or refused, rule by rule");
    pExplain->add_option("record", explain.file, "The record: its 4088 bytes, or the text of tq record")
        ->required();
    pExplain->add_option("--model", explain.model, "A description file, or a sample's name or section")
        ->required();
    pExplain
        ->add_option("--package", explain.package, "Folder with tqui.inf, descriptions and settings files")
        ->check(CLI::ExistingDirectory);
    pExplain->add_flag("--metric", explain.bMetric, "The user's locale is metric");
    explain.package = TQUI_SAMPLES;
    commands.push_back({pExplain, [pOptions] { return RunExplain(*pOptions, std::cout); }});
}

void AddJob(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<JobOptions>();
    auto pLayout = std::make_shared<bool>(false);
    JobOptions& job = *pOptions;
    bool& bLayout = *pLayout;
    CLI::App* pJob = app.add_subcommand("job", "What goes to the printer round a job and before a sheet");
    pJob->add_option("--model", job.model, "A description file, or a sample's name or section");
    pJob->add_option("--package", job.package, "Folder with tqui.inf, descriptions and settings files")
        ->check(CLI::ExistingDirectory);
    pJob->add_option("--record", job.record, "A record: its 4088 bytes, or the text of tq record");
    pJob->add_option("--set", job.assignments, "field=value; several times");
    pJob->add_option("--job-name", job.jobName, "Name of the document in the spooler");
    pJob->add_flag("--metric", job.bMetric, "The user's locale is metric");
    pJob->add_flag("--hex", job.bHex, "All bytes, sixteen a line");
    pJob->add_flag("--layout", bLayout, "The layout of the binary render parameters, and nothing else");
    job.package = TQUI_SAMPLES;
    pJob->callback([pOptions, pLayout] {
        if (!*pLayout && pOptions->model.empty()) {
            throw CLI::RequiredError("--model");
        }
    });
    commands.push_back({pJob, [pOptions, pLayout] {
                            if (!*pLayout) {
                                return RunJobCommand(*pOptions, std::cout);
                            }
                            std::cout << RenderRecordTable();
                            return 0;
                        }});
}

void AddMerge(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<MergeOptions>();
    MergeOptions& merge = *pOptions;
    CLI::App* pMerge =
        app.add_subcommand("merge", "What a printer makes of an application's record, or of its own default");
    pMerge->add_option("--model", merge.model, "A description file, or a sample's name or section")
        ->required();
    pMerge->add_option(
        "--record", merge.record,
        "The record: its 4088 bytes, or the text of tq record; without one the printer's default");
    pMerge->add_option("--mode", merge.uMode, "DM_UPDATE 1, DM_COPY 2, DM_MODIFY 8, added up (default 10)");
    pMerge->add_option("--out", merge.file, "File for the merged record; without it the difference as text");
    pMerge->add_option("--package", merge.package, "Folder with tqui.inf, descriptions and settings files")
        ->check(CLI::ExistingDirectory);
    pMerge->add_flag("--metric", merge.bMetric, "The user's locale is metric");
    merge.package = TQUI_SAMPLES;
    commands.push_back({pMerge, [pOptions] { return RunMerge(*pOptions, std::cout); }});
}

void AddPreset(CLI::App& app, Commands& commands)
{
    CLI::App* pPreset = app.add_subcommand("preset", "Preset files: what they say, and what they cannot say");
    pPreset->require_subcommand(1);
    const auto add = [&](const char* cName, const char* cText,
                         int (*pfnRun)(const PresetOptions&, std::ostream&)) {
        auto pOptions = std::make_shared<PresetOptions>();
        CLI::App* pCommand = pPreset->add_subcommand(cName, cText);
        pCommand->add_option("--model", pOptions->model, "A description file, or a sample's name or section")
            ->required();
        pCommand
            ->add_option("--package", pOptions->package,
                         "Folder with tqui.inf, descriptions and settings files")
            ->check(CLI::ExistingDirectory);
        pCommand->add_flag("--metric", pOptions->bMetric, "The user's locale is metric");
        pOptions->package = TQUI_SAMPLES;
        commands.push_back({pCommand, [pOptions, pfnRun] { return pfnRun(*pOptions, std::cout); }});
        return std::pair{pCommand, pOptions};
    };
    const auto [pMake, pMade] = add("make", "Writes a record's settings as a preset", RunPresetMake);
    pMake->add_option("--record", pMade->record,
                      "The record: its 4088 bytes, or the text of tq record; else the default");
    pMake->add_option("--set", pMade->assignments, "field=value; several times");
    pMake->add_option("-o,--out", pMade->file, "The preset file")->required();
    const auto [pCheck, pChecked] =
        add("check", "Holds a preset, or a driver's .INI file, against a model", RunPresetCheck);
    pCheck->add_option("file", pChecked->file, "The preset file")->required();
    const auto [pCompare, pCompared] =
        add("compare", "The fields in which two presets differ", RunPresetCompare);
    pCompare->add_option("first", pCompared->file, "A preset file")->required();
    pCompare->add_option("second", pCompared->other, "Another one")->required();
    add("missing", "The fields that no preset of a model carries", RunPresetMissing);
}

void AddPreview(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<PreviewOptions>();
    PreviewOptions& preview = *pOptions;
    CLI::App* pPreview =
        app.add_subcommand("preview", "The picture that the sheets show of a record, as PNG");
    pPreview->add_option("--model", preview.model, "A description file, or a sample's name or section")
        ->required();
    pPreview
        ->add_option("--package", preview.package, "Folder with tqui.inf, descriptions and settings files")
        ->check(CLI::ExistingDirectory);
    pPreview->add_option("--record", preview.record,
                         "The record: its 4088 bytes, or the text of tq record; without one the default");
    pPreview->add_option("--set", preview.assignments, "field=value; several times");
    AddWatermarkOptions(pPreview, pOptions.get());
    pPreview->add_option("--frame", preview.nFrame, "Pixels of the frame's sides (default 240)")
        ->check(CLI::Range(20, 2000));
    pPreview->add_option("--language", preview.language, "Language id of the user, four hex digits")
        ->check(IsLanguageId);
    pPreview->add_flag("--metric", preview.bMetric, "The user's locale is metric");
    pPreview->add_option("-o,--out", preview.file, "The PNG file")->required();
    preview.package = TQUI_SAMPLES;
    pPreview->callback([pOptions] {
        if (!pOptions->position.empty() && pOptions->text.empty() && pOptions->image.empty()) {
            throw CLI::RequiresError("--position", "--watermark or --image");
        }
    });
    commands.push_back({pPreview, [pOptions] { return RunPreview(*pOptions, std::cout); }});
}

void AddGallery(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<std::string>();
    std::string& galleryFile = *pOptions;
    CLI::App* pGallery =
        app.add_subcommand("gallery", "One contact sheet of what the preview can show, as PNG");
    pGallery->add_option("-o,--out", galleryFile, "The PNG file")->required();
    commands.push_back({pGallery, [pOptions] { return RunGallery(*pOptions); }});
}

void AddScripting(CLI::App& app, Commands& commands)
{
    auto pOptions = std::make_shared<std::string>();
    std::string& scriptingPackage = *pOptions;
    scriptingPackage = TQUI_SAMPLES;
    CLI::App* pScripting = app.add_subcommand("scripting", "The page docs/scripting.md");
    pScripting->add_option("--package", scriptingPackage, "Folder with tqui.inf and the samples' files")
        ->check(CLI::ExistingDirectory);
    commands.push_back({pScripting, [pOptions] {
                            std::cout << ScriptingPage(*pOptions);
                            return 0;
                        }});
}

/* What names a printer of a machine that is there. */
void AddMachine(CLI::App* pCommand, MachineOptions& options)
{
    pCommand->add_option("printer", options.printer, "Its name, where there are several");
    pCommand->add_option("--machine", options.machine, "Folder of the machine")
        ->required()
        ->check(CLI::ExistingDirectory);
}

/* The three commands of a machine that is kept in a folder. */
void AddMachineCommands(CLI::App& app, Commands& commands)
{
    auto pInstalled = std::make_shared<MachineOptions>(), pRemoved = std::make_shared<MachineOptions>(),
         pShown = std::make_shared<MachineOptions>();
    MachineOptions& install = *pInstalled;
    CLI::App* pInstall =
        app.add_subcommand("install", "Adds a printer to a machine that is kept in a folder");
    pInstall->add_option("model", install.model, "A sample's name or section of the INF")->required();
    pInstall->add_option("--package", install.package, "Folder with tqui.inf and the files that it names")
        ->check(CLI::ExistingDirectory);
    pInstall->add_option("--machine", install.machine, "Folder of the machine; made when missing")
        ->required();
    install.package = TQUI_SAMPLES;
    CLI::App* pUninstall = app.add_subcommand("uninstall", "Removes a printer from such a machine");
    AddMachine(pUninstall, *pRemoved);
    CLI::App* pData = app.add_subcommand("data", "What such a machine holds for a printer");
    AddMachine(pData, *pShown);
    commands.push_back({pInstall, [pInstalled] { return RunInstall(*pInstalled, std::cout); }});
    commands.push_back({pUninstall, [pRemoved] { return RunUninstall(*pRemoved, std::cout); }});
    commands.push_back({pData, [pShown] { return RunData(*pShown, std::cout); }});
}

/* Runs the one command that was asked for. */
int RunAsked(const Commands& commands)
{
    for (const Command& command : commands) {
        if (*command.pApp) {
            return command.run();
        }
    }
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app("Shows what the printer driver interface makes of a printer description.", "tq");
    Commands commands;
    app.require_subcommand(1);
    for (auto* pfnAdd : {AddCaps, AddLint, AddRecord, AddExplain, AddJob, AddMerge, AddPreset, AddPreview,
                         AddGallery, AddScripting, AddMachineCommands}) {
        pfnAdd(app, commands);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << error.what() << "\n\n" << app.help();
        return 2;
    }
    try {
        return RunAsked(commands);
    } catch (const std::exception& error) {
        std::cerr << "tq: " << error.what() << "\n";
        StopMachine();
        return 1;
    }
}
