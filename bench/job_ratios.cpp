/* What the start of a job costs beside the system calls that it cannot do without, and what the text of a
   head costs beside the C library's formatter, in one run. Exit code 1 when a ratio is over its figure. */
#include <cstring>

#include "bench/floors.h"
#include "bench/watch.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "entry/exports.h"
#include "entry/pjl_commands.h"
#include "places.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr double START_FIGURE = 1.5; /* times the bulk reads of what it needs */
constexpr double TEXT_FIGURE = 0.5;  /* times snprintf */
constexpr DWORD JOB_ID = 7;
constexpr u32 BUFFER_BYTES = 4096;
constexpr int LINES = 20;
constexpr const char* acSections[] = {"T410A", "QP5", "K100", "IX300", "T440B"};

/* The sections of a description by its header. */
JobSections SectionsOf(const Bytes& description, const XpiModel* pModel)
{
    const auto* pHeader = reinterpret_cast<const XpiHeader*>(description.data());
    JobSections sections = {};
    sections.body = {pHeader->dwBodyOffset, pHeader->dwStringBaseOffset - pHeader->dwBodyOffset};
    if (pModel->pFontPageTable) {
        sections.fonts = {pHeader->dwFontTableOffset, 4 * (static_cast<u32>(pModel->sResFontCount) + 1)};
    }
    if (pModel->bModelFlags != 0 || pModel->usLanguage != KIND_IMAGE) {
        sections.rows = {pHeader->dwCommandTableOffset,
                         pHeader->dwCommandDataOffset - pHeader->dwCommandTableOffset};
        sections.commands = {pHeader->dwCommandDataOffset,
                             pHeader->dwFontDataOffset - pHeader->dwCommandDataOffset};
        for (FileSpan* pSpan : {&sections.rows, &sections.commands}) {
            pSpan->cb = std::min(pSpan->cb, 2048u);
        }
    }
    return sections;
}

int MeasureStart(const char* cSection, const std::vector<InfModel>& models)
{
    PrinterSetup setup = InstallSample(FindInfModel(models, cSection), TQUI_SAMPLES);
    OpenSample printer(setup.wcName);
    SetPrinterValue(setup.wcName, u"DeviceInfo", REG_BINARY, Bytes(16, 0x1F));
    AddJob(setup.wcName, JOB_ID, u"Letter");
    PrinterCall call(printer.hPrinter);
    OwnedModel pModel = LoadPrinterModel(call);
    Require(pModel != nullptr, cSection, "no model");
    WideText tcPath = GetXpiPath(call), wcName = setup.wcName;
    JobSections sections = SectionsOf(GetFile(tcPath), pModel.get());
    int bImage = pModel->usLanguage == KIND_IMAGE;
    DriverDevmode record;
    BuildDefaultRecord(call, wcName.data(), &record, 1);
    static char cBuffer[BUFFER_BYTES];
    Watch start, floor;
    for (int nRound = 0; nRound < 60; nRound++) {
        floor.Round(50, [&] {
            std::memset(cBuffer, 0, BUFFER_BYTES);
            FloorOfJobStart(printer.hPrinter, JOB_ID, tcPath.c_str(), sections, bImage);
        });
        start.Round(50, [&] {
            GuiJobRecord job = {};
            DWORD cbLength = BUFFER_BYTES;
            job.hPrinter = printer.hPrinter;
            job.dwJobId = JOB_ID;
            cBuffer[0] = 0;
            Require(GuiStartJob(&record, cBuffer, &cbLength, &job) == JOB_DONE, cSection, "no head");
            FreeBlock(job.pJobName);
        });
    }
    return Report(cSection, "GuiStartJob", start.best, floor.best, START_FIGURE);
}

int MeasureText()
{
    static constexpr const char* acKeys[] = {"RENDERMODE", "OUTBIN", "ECONOMODE", "EDGETOEDGE"};
    static constexpr const char* acValues[] = {"GRAYSCALE", "UPPER", "ON", "TRANSPARENCY"};
    char cOurs[BUFFER_BYTES] = "", cTheirs[BUFFER_BYTES] = "";
    Watch ours, theirs;
    for (int nRound = 0; nRound < 200; nRound++) {
        ours.Round(200, [&] {
            size_t nLength = 0;
            cOurs[0] = 0;
            for (int i = 0; i < LINES; i++) {
                nLength += AppendPjlSetting(cOurs, sizeof cOurs, nLength, acKeys[i % 4], acValues[i / 4 % 4]);
            }
            Use(cOurs);
        });
        theirs.Round(200, [&] {
            size_t nLength = 0;
            for (int i = 0; i < LINES; i++) {
                nLength += static_cast<size_t>(std::snprintf(cTheirs + nLength, sizeof cTheirs - nLength,
                                                             "@PJL SET %s=%s\r\n", acKeys[i % 4],
                                                             acValues[i / 4 % 4]));
            }
            Use(cTheirs);
        });
    }
    Require(std::strcmp(cOurs, cTheirs) == 0, "text", "the two texts differ");
    return Report("text", "20 lines of a head, to snprintf", ours.best, theirs.best, TEXT_FIGURE);
}

} // namespace

int main()
{
    std::vector<InfModel> models = ReadInf(TQUI_SAMPLES "/tqui.inf");
    int nOver = MeasureText();
    for (const char* cSection : acSections) {
        StartMachine();
        nOver |= MeasureStart(cSection, models);
        StopMachine();
    }
    return nOver;
}
