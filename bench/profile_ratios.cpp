/* What reading settings files costs, as ratios to one bare read of the file and one pass over its bytes in the same
   run. Exit code 1 when a ratio is over its figure. */
#include "bench/floors.h"
#include "bench/watch.h"
#include "description/paper.h"
#include "description/printer_store.h"
#include "document/defaults.h"
#include "entry/exports.h"
#include "entry/user_settings_file.h"
#include "places.h"
#include "settingsfile/settings_reader.h"
#include "settingsfile/settings_writer.h"
#include "tools/tq/sample_printer.h"
#include "watermark/watermark_rows.h"

namespace {

constexpr double SETTINGS_FIGURE = 1.5; /* times the read and the pass */
constexpr double PAPERS_FIGURE = 1.25;  /* times the same question without saved papers, and the read */
constexpr double ROWS_MILLISECONDS = 10;
constexpr int KEYS = 250, PAPERS = 100;
constexpr WCHAR SETTINGS_FILE[] = u"C:\\set\\a.ini";
constexpr WCHAR ROWS_FILE[] = u"C:\\set\\rows.ini";

/* A section of KEYS keys: those of the record, and others that a later version may have. */
void WriteSettings(const DriverDevmode& record)
{
    PutFile(SETTINGS_FILE, std::string_view("x"));
    WritePrinterSettings(SETTINGS_FILE, &record, 0);
    Bytes bytes = GetFile(SETTINGS_FILE);
    int nKeys = static_cast<int>(std::count(bytes.begin(), bytes.end(), u8{'='}));
    for (; nKeys < KEYS; nKeys++) {
        for (char c : "LaterKey" + std::to_string(nKeys) + "=" + std::to_string(nKeys * 7) + "\r\n") {
            bytes.push_back(static_cast<u8>(c));
            bytes.push_back(0);
        }
    }
    PutFile(SETTINGS_FILE, bytes);
}

int MeasureSettings(const DriverDevmode& record)
{
    Watch read, floor;
    WriteSettings(record);
    for (int nRound = 0; nRound < 200; nRound++) {
        floor.Round(20, [] { FloorOfTextFile(SETTINGS_FILE); });
        read.Round(20, [&] {
            DriverDevmode copy = record;
            Require(ReadPrinterSettings(OpenProfile(SETTINGS_FILE), &copy, 0, 0), "profile", "not read");
            Use(copy);
        });
    }
    return Report("read", "a section of 250 keys", read.best, floor.best, SETTINGS_FIGURE);
}

int MeasurePapers(const PrinterSetup& setup, HANDLE hPrinter, const DriverDevmode& record)
{
    std::vector<PaperSizeRow> papers(PAPERS);
    for (PaperSizeRow& row : papers) {
        row = {21000, 29700, 1, u"A paper of the user's"};
    }
    WCHAR tcUser[PATH_CHARS];
    PrinterCall call(hPrinter);
    EnsureSettingsFile(call, &record, 0);
    GetUserSettingsPath(call, tcUser);
    const Bytes none = GetFile(tcUser);
    SetSavedPapers(call, papers.data(), PAPERS);
    const Bytes saved = GetFile(tcUser);
    WideText wcName = setup.wcName;
    std::vector<WORD> codes(1024);
    DWORD nPapers[2];
    Watch watches[2], read;
    for (int nRound = 0; nRound < 120; nRound++) {
        for (int i : {0, 1}) {
            PutFile(tcUser, i ? saved : none);
            watches[i].Round(20, [&] {
                nPapers[i] = DrvDeviceCapabilities(hPrinter, wcName.data(), DC_PAPERS, codes.data(), nullptr);
            });
        }
        read.Round(20, [&] { FloorOfTextFile(tcUser); });
    }
    Require(nPapers[1] == nPapers[0] + PAPERS, "papers", "the saved ones are not listed");
    return Report("caps", "papers with 100 saved ones", watches[1].best, watches[0].best + read.best,
                  PAPERS_FIGURE);
}

int MeasureRows()
{
    std::vector<WatermarkEntry> rows(WATERMARK_LIMIT);
    for (WatermarkEntry& row : rows) {
        ResetWatermarkEntry(&row);
        row.WMType = ENTRY_TEXT;
        CopyWide(row.WMString, 64, u"Draft");
    }
    Require(WriteWatermarks(ROWS_FILE, rows.data(), WATERMARK_LIMIT), "rows", "not written");
    Watch read;
    for (int nRound = 0; nRound < 100; nRound++) {
        read.Round(1, [] {
            OwnedBlock<WatermarkEntry> pRows;
            Require(ReadWatermarks(OpenProfile(ROWS_FILE), &pRows) == WATERMARK_LIMIT, "rows",
                    "not all read");
            Use(pRows);
        });
    }
    return Report("rows", "4096 watermarks, in milliseconds", read.best, 1e6, ROWS_MILLISECONDS);
}

} // namespace

int main()
{
    StartMachine();
    int nOver;
    {
        PrinterSetup setup =
            InstallSample(FindInfModel(ReadInf(TQUI_SAMPLES "/tqui.inf"), "T410A"), TQUI_SAMPLES);
        OpenSample printer(setup.wcName);
        PrinterCall call(printer.hPrinter);
        DriverDevmode record;
        BuildDefaultRecord(call, setup.wcName.data(), &record, 0);
        nOver = MeasureSettings(record) | MeasurePapers(setup, printer.hPrinter, record) | MeasureRows();
    }
    StopMachine();
    return nOver;
}
