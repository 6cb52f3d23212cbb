/* What writing a section costs, as a ratio to the same bytes written to a new file, flushed and renamed bare in the
   same run. Exit code 1 when a ratio is over its figure. */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "base/owned.h"
#include "description/custom_sizes.h"
#include "description/driver_files.h"
#include "document/defaults.h"
#include "places.h"
#include "profile/section_file.h"
#include "settingsfile/settings_writer.h"
#include "tools/tq/sample_printer.h"

namespace {

constexpr double SECTION_FIGURE = 2.5; /* times the bare writing: 200 keys are formatted and merged */
constexpr double KEY_FIGURE = 3.0;     /* the file is read and one line of it is another */
constexpr double GROWTH_FIGURE = 1.8;  /* a row of 4000, beside one of 400 */
constexpr WCHAR SETTINGS_FILE[] = u"C:\\set\\a.ini";
constexpr int ROUNDS = 60;

/* Nanoseconds of one call: the best of the rounds, which are taken in turns. */
struct Watch {
    double best = 1e18;

    template <class Body> void Round(Body body)
    {
        auto begun = std::chrono::steady_clock::now();
        if (!body()) {
            std::printf("a writing failed\n");
            std::exit(1);
        }
        std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - begun;
        best = std::min(best, took.count());
    }
};

bool WriteBare(const Bytes& bytes)
{
    DWORD cbDone;
    OwnedFile hFile(CreateFileW(u"C:\\set\\bare.tmp", GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    bool bWritten =
        WriteFile(hFile.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &cbDone, nullptr) &&
        FlushFileBuffers(hFile.get());
    hFile.reset();
    return bWritten && MoveFileExW(u"C:\\set\\bare.tmp", u"C:\\set\\bare.ini",
                                   MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

int Report(const char* cWhat, double nanoseconds, double floor, double figure)
{
    double ratio = nanoseconds / floor;
    std::printf("%-38s %9.0f ns  %5.2f times (at most %.2f)%s\n", cWhat, nanoseconds, ratio, figure,
                ratio > figure ? "  OVER" : "");
    return ratio > figure;
}

} // namespace

int main()
{
    StartMachine();
    PrinterSetup setup =
        InstallSample(FindInfModel(ReadInf(TQUI_SAMPLES "/tqui.inf"), "T410A"), TQUI_SAMPLES);
    DriverDevmode record;
    {
        OpenSample printer(setup.wcName);
        PrinterCall call(printer.hPrinter);
        BuildDefaultRecord(call, setup.wcName.data(), &record, 0);
    }
    std::vector<PaperSizeRow> papers(4000);
    for (PaperSizeRow& row : papers) {
        row = {21000, 29700, 1, u"A paper of the user's"};
    }
    PutFile(u"C:\\set\\bare.ini", std::string_view("x"));
    WritePrinterSettings(SETTINGS_FILE, &record, 0);
    const Bytes bytes = GetFile(SETTINGS_FILE);
    Watch bare, section, key, few, many;
    for (int i = 0; i < ROUNDS; i++) {
        bare.Round([&] { return WriteBare(bytes); });
        section.Round([&] { return WritePrinterSettings(SETTINGS_FILE, &record, 0); });
        key.Round([&] { return ReplaceKey(SETTINGS_FILE, u"PrinterSettings", u"Copies", u"1"); });
        few.Round([&] { return WriteCustomSizes(u"C:\\set\\few.ini", papers.data(), 400); });
        many.Round([&] { return WriteCustomSizes(u"C:\\set\\many.ini", papers.data(), 4000); });
    }
    int nOver = Report("a section of 200 keys", section.best, bare.best, SECTION_FIGURE) |
                Report("one key of it", key.best, bare.best, KEY_FIGURE) |
                Report("a saved paper of 4000, beside 400", many.best / 4000, few.best / 400, GROWTH_FIGURE);
    StopMachine();
    return nOver;
}
