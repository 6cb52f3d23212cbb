/* The job path: whole jobs of the samples against their goldens; the buffer protocol at every size; what
   settling does; each rule of the head and of both forms of the render parameters on small descriptions. */
#include <set>

#include "base/narrow.h"
#include "description/control_ids.h"
#include "description/driver_files.h"
#include "entry/pjl_commands.h"
#include "entry/render_parameters.h"
#include "hosted/user_input.h"
#include "places.h"
#include "support/job_machine.h"
#include "support/same_bytes.h"
#include "support/sweep.h"

namespace {

const JobExports OWN = {GuiStartJob, GuiStartSheet, GuiEndJob};

/* Offsets in a description's body. */
enum : size_t {
    KIND = 2,
    BINS = 24,
    OUTPUTS = 32,
    MEDIA = 48,
    DEFAULT_BIN = 116,
    RESOLUTIONS = 174,
    OUTPUT_KEY = 182,
    FEATURES = 188,
    FEATURE_VALUES = 196,
    COLOR_CLASS = 302,
    FLAGS = 314
};

/* A monochrome description that both checks accept: papers of any size, one bin. */
DescriptionBuilder Small(u16 usKind)
{
    DescriptionBuilder builder;
    builder.Set<u16>(KIND, usKind).Set<u16>(COLOR_CLASS, 1).Set<u16>(DEFAULT_BIN, 1025);
    builder.Table<BinRow>(BINS, {{1, 1025, 0}, {}});
    builder.Table<ResolutionRow>(RESOLUTIONS, {{1, 600, 0, 0, 600, 600, 0, 0}, {}});
    return builder;
}

} // namespace

class JobCommands : public JobTest {
  protected:
    /* Makes the printer of a builder and its default record. */
    void Use(const DescriptionBuilder& builder, const std::string& ini = "")
    {
        AddTestPrinter(builder.Build(), ini);
        record = DefaultRecord();
    }

    void UseSample(const std::string& section,
                   const std::vector<std::pair<std::string, std::string>>& overrides)
    {
        AddTestPrinter(CompileSample(section, overrides));
        record = DefaultRecord();
    }

    void SetOptions(u32 ulOptions)
    {
        Bytes value(16);
        Poke(&value, 8, ulOptions);
        SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, value);
    }

    std::string Head() { return RunJob(OWN, hPrinter, 7, &record).head.bytes; }
    std::string Sheet() { return RunJob(OWN, hPrinter, 7, &record).sheet.bytes; }

    DriverDevmode record;
};

TEST_F(JobCommands, WholeJobsOfTheSamples)
{
    int nGoldens = 0;
    std::set<std::string> sections;
    for (const auto& entry : std::filesystem::directory_iterator(TQUI_SOURCE_DIR "/tests/golden/job")) {
        SCOPED_TRACE(entry.path());
        JobGolden golden = ReadJobGolden(entry.path(), 7);
        StartMachine();
        AddSample(golden.section);
        SetLocaleValue(u"iMeasure", u"0");
        AddJob(wcPrinter, 7, u"Brief an Gr\u00F6\u00DFe");
        record = DefaultRecord();
        for (const std::string& assignment : golden.sets) {
            SetRecordField(&record, assignment);
        }
        JobOutput output = RunJob(OWN, hPrinter, 7, &record);
        ExpectPart(golden, "head", output.head);
        ExpectPart(golden, "sheet", output.sheet);
        ExpectPart(golden, "tail", output.tail);
        bool bImage = golden.section == "K100" || golden.section == "IX300";
        EXPECT_EQ(output.bNamed, bImage);
        EXPECT_EQ(Narrow(output.wcJobName), bImage ? "Brief an Gr\u00F6\u00DFe" : "");
        sections.insert(golden.section);
        nGoldens++;
    }
    EXPECT_EQ(sections.size(), 6u);
    EXPECT_GE(nGoldens, 11);
}

/* Every size from none to two more than needed: result, length and whole pieces from the front, nothing
   beyond. */
TEST_F(JobCommands, EverySizeOfABuffer)
{
    for (const char* cSection : {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"}) {
        SCOPED_TRACE(cSection);
        StartMachine();
        AddSample(cSection);
        AddJob(wcPrinter, 7, u"Letter");
        record = DefaultRecord();
        JobOutput whole = RunJob(OWN, hPrinter, 7, &record);
        EXPECT_EQ(CheckEverySize(OWN, hPrinter, 7, record, whole), "");
    }
}

TEST_F(JobCommands, PiecesJoinOnBehindTheBuffersFirstNul)
{
    const auto append = [](std::string buffer, size_t nSize, size_t nOffset, const char* cText) {
        EXPECT_EQ(AppendPjlText(buffer.data(), nSize, nOffset, cText), std::strlen(cText));
        return buffer;
    };
    const std::string zeros(8, '\0');
    EXPECT_EQ(append(zeros, 4, 0, "abc").substr(0, 5), std::string("abc\0\0", 5));
    EXPECT_EQ(append(zeros, 3, 0, "abc"), zeros);
    EXPECT_EQ(append(zeros, 8, 5, "abc"), zeros) << "an offset counts what did not fit";
    EXPECT_EQ(append("X" + zeros, 8, 0, "abc").substr(0, 5), std::string("Xabc\0", 5));
    EXPECT_EQ(append("XXXXXX" + zeros, 8, 0, "abc"), "XXXXXX" + zeros) << "never half a piece";
    EXPECT_EQ(append("XXXXXXXX", 8, 0, "abc"), "XXXXXXXX") << "no NUL to begin at";
    EXPECT_EQ(AppendPjlText(nullptr, 8, 0, "abc"), 3u);
}

TEST_F(JobCommands, NullsAndTheOrderOfTheFirstSteps)
{
    AddSample("T410A");
    record = DefaultRecord();
    DWORD cbLength = 77;
    GuiJobRecord job = {};
    job.hPrinter = hPrinter;
    job.dwReservedOut = 9;
    EXPECT_EQ(GuiStartJob(&record, nullptr, nullptr, &job), 0u);
    EXPECT_EQ(u32{job.dwReservedOut}, 9u) << "nothing is touched";
    EXPECT_EQ(GuiStartJob(&record, nullptr, &cbLength, nullptr), 0u);
    EXPECT_EQ(GuiEndJob(&record, nullptr, nullptr, &job), 0u);
    EXPECT_EQ(GuiEndJob(&record, nullptr, &cbLength, nullptr), 0u);
    EXPECT_EQ(GuiStartSheet(&record, nullptr), 0u);

    GuiSheetRecord sheet = {};
    sheet.cbBuffer = 5;
    EXPECT_EQ(GuiStartJob(nullptr, nullptr, &cbLength, &job), 1u);
    EXPECT_EQ(u32{job.dwReservedOut}, 0u);
    EXPECT_EQ(GuiEndJob(nullptr, nullptr, &cbLength, &job), 1u);
    EXPECT_EQ(GuiStartSheet(nullptr, &sheet), 1u);
    EXPECT_EQ(cbLength, 77u);
    EXPECT_EQ(u32{sheet.cbBuffer}, 5u);

    job.bShowNotice = 1;
    job.dwReservedOut = 9;
    char cTail[11] = "";
    DWORD cbTail = sizeof cTail;
    EXPECT_EQ(GuiEndJob(&record, cTail, &cbTail, &job), 1u) << "the end knows no notice";
    EXPECT_STREQ(cTail, "@PJL EOJ\r\n");
    EXPECT_EQ(u32{job.dwReservedOut}, 9u);
    EXPECT_EQ(GuiStartJob(nullptr, nullptr, &cbLength, &job), 0xFFFFFFFFu);
    EXPECT_EQ(cbLength, 0u);
    EXPECT_EQ(u32{job.dwReservedOut}, 0u);

    /* Without a description, or a printer, nothing but the reserved word is touched. */
    job = {};
    cbLength = 77;
    WCHAR tcNone[160] = {};
    std::memcpy(record.rPrivate.tcXPIName, tcNone, sizeof tcNone);
    const DriverDevmode before = record;
    EXPECT_EQ(GuiStartJob(&record, nullptr, &cbLength, &job), 0u);
    job.hPrinter = INVALID_HANDLE_VALUE;
    EXPECT_EQ(GuiEndJob(&record, nullptr, &cbLength, &job), 0u);
    EXPECT_EQ(GuiStartSheet(&record, &sheet), 0u);
    EXPECT_EQ(cbLength, 77u);
    EXPECT_EQ(u32{sheet.cbBuffer}, 5u);
    EXPECT_TRUE(SameBytes(record, before));
}

TEST_F(JobCommands, TheNoticeTakesThePlaceOfTheHead)
{
    AddSample("K100");
    HWND hParent = reinterpret_cast<HWND>(1);
    WCHAR wcTitle[128] = u"";
    const auto start = [&] {
        QueueModalStep([&](HWND hDialog) {
            hParent = GetParent(hDialog);
            EXPECT_EQ(ForegroundWindow(), hDialog);
            GetWindowTextW(hDialog, wcTitle, 128);
            ClickControl(hDialog, IDC_NOTICE_OK);
        });
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        job.bShowNotice = 0x80000000;
        DWORD cbLength = 5;
        DWORD dwResult = GuiStartJob(nullptr, nullptr, &cbLength, &job);
        EXPECT_EQ(cbLength, 0u);
        EXPECT_EQ(static_cast<WCHAR*>(job.pJobName), nullptr);
        return dwResult;
    };
    EXPECT_EQ(start(), 0xFFFFFFFFu);
    EXPECT_EQ(DialogsOpened(), 1);
    EXPECT_EQ(ForcedCloses(), 0);
    EXPECT_EQ(Narrow(wcTitle), "Document Not Printed");
    EXPECT_EQ(hParent, nullptr) << "it has no owner";

    FailCall(CALL_LoadLibraryExW, 1, FAIL_FROM_THERE);
    EXPECT_EQ(start(), 0xFFFFFFFFu) << "without a library there is no dialog";
    EXPECT_GT(StopFaults(), 0);
    EXPECT_EQ(DialogsOpened(), 1);

    /* Whatever fails, the job gets no head; 0 only for want of memory. */
    bool bOnceZero = false;
    FaultSweep sweep = SweepFaults(CALL_HeapAlloc, FAIL_ONCE, 100, [&] {
        DWORD dwResult = start();
        bOnceZero |= dwResult == 0;
        return dwResult == 0 || dwResult == 0xFFFFFFFF ? std::string() : "another result; ";
    });
    EXPECT_EQ(sweep.fault, "");
    EXPECT_TRUE(bOnceZero);
}

TEST_F(JobCommands, TheRecordIsSettledInPlace)
{
    AddSample("K100");
    const DriverDevmode good = DefaultRecord();
    /* A good public half stays, the refused private half becomes the default's. */
    record = good;
    record.dmCopies = 7;
    record.rPrivate.sContrast = 60;
    Sheet();
    DriverDevmode wanted = good;
    wanted.dmCopies = 7;
    wanted.dmICMMethod = 2;
    EXPECT_EQ(Differing(wanted, record), "");
    /* A refused public half takes all with it; the caller's record may lie anywhere. */
    alignas(8) u8 abAnywhere[sizeof record + 1];
    auto* pAnywhere = reinterpret_cast<DriverDevmode*>(abAnywhere + 1);
    for (int nFill : {0x00, 0xFF, 0x20}) {
        std::memset(abAnywhere, nFill, sizeof abAnywhere);
        RunJob(OWN, hPrinter, 7, pAnywhere);
        std::memcpy(&record, pAnywhere, sizeof record);
        wanted = good;
        wanted.dmICMMethod = 2;
        EXPECT_EQ(Differing(wanted, record), "") << nFill;
    }
    /* The job's number is stored behind the check, which the next call counts as a repair and takes back. */
    record = good;
    DWORD cbLength = 0;
    GuiJobRecord job = {};
    job.hPrinter = hPrinter;
    job.dwJobId = 7;
    EXPECT_EQ(GuiStartJob(&record, nullptr, &cbLength, &job), 2u);
    EXPECT_EQ(u32{record.dmReserved1}, 7u);
    EXPECT_EQ(static_cast<WCHAR*>(job.pJobName), nullptr) << "there is no such job";
    GuiSheetRecord sheet = {};
    sheet.hPrinter = hPrinter;
    EXPECT_EQ(GuiStartSheet(&record, &sheet), 2u);
    EXPECT_EQ(u32{record.dmReserved1}, 0u);
    /* Where the printer has no default to give, the record stays and the job goes on. */
    std::memset(&record, 0xFF, sizeof record);
    FailCall(CALL_GetPrinterW, 1, FAIL_FROM_THERE);
    JobOutput output = RunJob(OWN, hPrinter, 7, &record);
    EXPECT_GT(StopFaults(), 0);
    EXPECT_EQ(output.tail.dwResult, 1u);
    EXPECT_EQ(output.tail.bytes.substr(0, 11), std::string("modelName=\0", 11));
}

/* The record's own description serves the job's end unless overlays are at work; another computer's, a
   device's or a relative path is never opened. */
TEST_F(JobCommands, TheEndTakesTheRecordsDescription)
{
    AddTestPrinter(Small(KIND_PCL6).Build());
    const DriverDevmode good = DefaultRecord();
    PutFile(u"D:\\Else\\qa.xpi", Small(KIND_IMAGE).Build());
    struct Row {
        const WCHAR* wcName;
        int bOverlay, bTaken;
    };
    const Row aRows[] = {
        {u"D:\\Else\\qa.xpi", 0, 1},
        {u"d:\\ELSE\\QA.XPI", 0, 1},
        {u"D:\\Else\\qa.xpi", 1, 0},
        {u"D:\\Else\\none.xpi", 0, 0},
        {u"", 0, 0},
        {u"D:", 0, 0},
        {u"D:Else\\qa.xpi", 0, 0},
        {u"D:/Else/qa.xpi", 0, 0},
        {u"\\Else\\qa.xpi", 0, 0},
        {u"qa.xpi", 0, 0},
        {u"\\\\D:\\Else\\qa.xpi", 0, 0},
        {u"\\\\?\\D:\\Else\\qa.xpi", 0, 0},
        {u"\\\\.\\D:\\Else\\qa.xpi", 0, 0},
        {u"1:\\Else\\qa.xpi", 0, 0},
        {u"\u0144:\\Else\\qa.xpi", 0, 0},
    };
    for (const Row& row : aRows) {
        record = good;
        WCHAR tcName[160] = {}, tcOverlay[160] = {static_cast<WCHAR>(row.bOverlay ? 'o' : 0)};
        CopyWide(tcName, 160, row.wcName);
        std::memcpy(record.rPrivate.tcXPIName, tcName, sizeof tcName);
        std::memcpy(record.rPrivate.tcOverlayDir, tcOverlay, sizeof tcOverlay);
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        DWORD cbLength = 0;
        ResetCallCounts();
        EXPECT_EQ(GuiEndJob(&record, nullptr, &cbLength, &job), 2u);
        EXPECT_EQ(cbLength, row.bTaken ? 1040u : 11u) << Narrow(row.wcName) << row.bOverlay;
    }
    /* 160 characters without an end. */
    record = good;
    WCHAR tcLong[160];
    std::fill(std::begin(tcLong), std::end(tcLong), u'x');
    std::memcpy(tcLong, u"D:\\", 6);
    std::memcpy(record.rPrivate.tcXPIName, tcLong, sizeof tcLong);
    EXPECT_EQ(RunJob(OWN, hPrinter, 7, &record).tail.bytes, std::string("@PJL EOJ\r\n\0", 11));
}

TEST_F(JobCommands, LinesOfTheHead)
{
    /* Colour: class 0 alone, DATAMODE by a bit, every colour but 2 is gray. */
    struct Color {
        const char *cClass, *cFlags;
        u16 usColor;
        std::string head;
    };
    const std::string rest = "@PJL SET RESOLUTION=600\r\n";
    for (const Color& row :
         {Color{"0", "0", 2, "@PJL SET RENDERMODE=COLOR\r\n"},
          Color{"0", "0x0A", 2, "@PJL SET RENDERMODE=COLOR\r\n@PJL SET DATAMODE=COLOR\r\n"},
          Color{"0", "0x02", 1, "@PJL SET RENDERMODE=GRAYSCALE\r\n@PJL SET DATAMODE=GRAYSCALE\r\n"},
          Color{"0", "0x08", 1, "@PJL SET RENDERMODE=GRAYSCALE\r\n"}, Color{"1", "0x02", 2, ""},
          Color{"42", "0x02", 2, ""}}) {
        UseSample("T410A", {{"model.color_class", row.cClass}, {"model.model_flags", row.cFlags}});
        record.dmColor = row.usColor;
        EXPECT_EQ(Head().substr(0, row.head.size() + rest.size()), row.head + rest)
            << row.cClass << row.cFlags;
    }
    /* Features by the installed options; row 8 is the margin row whatever is installed. */
    const std::string edge = "@PJL SET EDGETOEDGE=NO\r\n";
    for (auto [ulOptions, tail] : {std::pair<u32, std::string>{0, edge},
                                   {0x10, edge + "@PJL SET STAPLE=ONE\r\n"},
                                   {0x02, edge + "@PJL SET HOLDKEY=4711\r\n"},
                                   {0x20, edge + "@PJL SET PUNCH=FOUR\r\n"},
                                   {0x32, edge + "@PJL SET STAPLE=ONE\r\n@PJL SET HOLDKEY=4711\r\n"
                                                 "@PJL SET PUNCH=FOUR\r\n"}}) {
        AddSample("T410A");
        SetOptions(ulOptions);
        record = DefaultRecord();
        for (const char* cSet :
             {"sPJLValueIndex[1]=1", "sPJLValueIndex[2]=1", "cPJLUserValue[0]=4711", "sPJLValueIndex[5]=2"}) {
            SetRecordField(&record, cSet);
        }
        std::string head = Head();
        EXPECT_EQ(head.substr(head.find(edge)), tail + '\0') << ulOptions;
    }
    /* Typed values: up to eleven characters. */
    for (auto [text, line] :
         {std::pair<std::string, std::string>{"Eleven char", "@PJL SET USERNAME=Eleven char\r\n"},
          {"\x80\xFF", "@PJL SET USERNAME=\x80\xFF\r\n"},
          {"", ""}}) {
        AddSample("T410A");
        record = DefaultRecord();
        text.copy(record.rPrivate.cPJLUserValue[1], 11);
        std::string head = Head();
        EXPECT_EQ(head.substr(head.find(edge)), edge + line + '\0');
    }
}

/* What stands in the margin row comes from a default that was built with the .INI file, which is not checked. */
TEST_F(JobCommands, TheMarginRowFollowsABuiltDefault)
{
    for (auto [cMargins, cValue] : {std::pair{"0", "NO"}, {"1", "YES"}, {"2", "NO"}}) {
        AddSample("T410A");
        PutFile(wcDriverFolder + WideText(u"T410A.INI"),
                std::string("[PrinterSettings]\r\nXPI=T410A.XPI\r\nMargins=") + cMargins + "\r\n");
        std::memset(&record, 0, sizeof record);
        DWORD cbLength = 4000;
        char cHead[4000] = "";
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        EXPECT_EQ(GuiStartJob(&record, cHead, &cbLength, &job), 1u);
        EXPECT_NE(std::string(cHead).find(std::string("EDGETOEDGE=") + cValue + "\r\n"), std::string::npos)
            << cHead;
    }
}

/* Models that lack tables or have too much in them. */
TEST_F(JobCommands, EdgesOfADescription)
{
    Use(Small(KIND_PCL6));
    record.rPrivate.sMediaTypeIndex = 0;
    EXPECT_EQ(Head(), std::string(1, '\0')) << "no line at all: a NUL";

    /* Commands up to their room, longer ones are none; command 0 is none even if it has a text. */
    for (size_t nExtra : {size_t{0}, size_t{1}}) {
        DescriptionBuilder builder = Small(KIND_PCL6);
        builder.commands[0] = {'z', 0};
        const std::string line(511 + nExtra, 'r'), word(127 + nExtra, 'v'), key(127, 'k');
        u16 usLine = builder.Command(line), usKey = builder.Command(key), usWord = builder.Command(word);
        u16 usShort = builder.Command("s");
        builder.Table<ResolutionRow>(RESOLUTIONS, {{1, 600, usLine, 0, 600, 600, 0, 0}, {}});
        builder.Table<FeatureRow>(FEATURES,
                                  {{1, usKey, 0, 0, 0}, {1, usKey, 0, 1, 0}, {1, usKey, 0, 2, 0}, {}});
        builder.Table<FeatureValueRow>(FEATURE_VALUES, {{1, usWord}, {1, usShort}, {1, 0}, {}});
        Use(builder);
        std::string expected = (nExtra ? "" : line + "@PJL SET " + key + "=" + word + "\r\n") + "@PJL SET " +
                               key + "=s\r\n" + '\0';
        EXPECT_EQ(Head(), expected) << nExtra;
    }

    /* Forty features: the record has choices for 32. A table that leads nowhere has no rows. */
    DescriptionBuilder many = Small(KIND_PCL6);
    u16 usKey = many.Command("K"), usValue = many.Command("V");
    many.Table<FeatureRow>(FEATURES, std::vector<FeatureRow>(40, {1, usKey, 0, 0, 0}));
    many.Table<FeatureValueRow>(FEATURE_VALUES, {{1, usValue}, {}});
    Use(many);
    EXPECT_EQ(Head().size(), 32 * 14 + 1u);
    many.Set<u64>(FEATURE_VALUES, 0xFFFFFF).Set<u64>(MEDIA, 0xFFFFFF).Set<u64>(RESOLUTIONS, 0xFFFFFF);
    AddTestPrinter(many.Build());
    EXPECT_EQ(Head(), std::string(1, '\0'));
}

/* A row of the text form with the value that the key has in it, or "-". */
static std::string ValueOf(const std::string& text, const std::string& key)
{
    std::string entry = std::string(1, '\0') + key + "=";
    size_t nAt = (std::string(1, '\0') + text).find(entry);
    return nAt == std::string::npos ? "-" : text.substr(nAt + entry.size() - 1).c_str();
}

TEST_F(JobCommands, RowsOfTheTextForm)
{
    /* The screen: the number at the start of the command's text. */
    for (auto [nScreen, cDiffusion] : {std::pair{0, "TRUE"}, {1, "FALSE"}, {2, "TRUE"}, {3, "FALSE"}}) {
        AddSample("K100");
        record = DefaultRecord();
        record.rPrivate.sScreening = static_cast<i16>(nScreen);
        std::string sheet = Sheet();
        EXPECT_EQ(ValueOf(sheet, "errDiff"), cDiffusion) << nScreen; /* "2", "1", " +2x", "abc" */
        EXPECT_NE(ValueOf(sheet, "hts"), cDiffusion);
    }
    /* Dots are signed, a bin without a key has no entry, features follow their masks and take 6-byte rows. */
    AddTestPrinter(
        CompileSample("K100", {{"resolutions.rows[0].dpi_x", "40000"}, {"model.output_bin_command", "0"}}));
    SetOptions(0);
    record = DefaultRecord();
    record.rPrivate.sPJLValueIndex[4] = 1;
    std::string sheet = Sheet();
    EXPECT_EQ(ValueOf(sheet, "dpi.x"), "-25536");
    EXPECT_EQ(ValueOf(sheet, "OutputTray"), "-");
    EXPECT_EQ(ValueOf(sheet, "GlossCoat"), "-") << "mask 8 is an option here";
    EXPECT_EQ(ValueOf(sheet, "PageOrder"), "ASCENDING");
    /* The bin's entry stands even without a value. */
    AddSample("K100");
    record = DefaultRecord();
    record.rPrivate.sOutputOCMsid = 0;
    EXPECT_EQ(ValueOf(Sheet(), "OutputTray"), "");

    /* A job name in the code page; a job without a name has no entry. */
    const auto jobName = [this](const WCHAR* wcDocument) {
        AddJob(wcPrinter, 7, wcDocument);
        return ValueOf(Head(), "jobName");
    };
    EXPECT_EQ(jobName(u"\u00E9t\u00E9 \u4E2D"), "\xE9t\xE9 ?");
    EXPECT_EQ(jobName(u""), "");
    EXPECT_EQ(jobName(nullptr), "-");
    EXPECT_EQ(jobName(WideText(9000, u'n').c_str()), std::string(9000, 'n'));

    /* The names of profile and screen come with a default that was built from the .INI file. */
    SetEnvironmentValue(u"USERPROFILE", u"C:\\Users\\ada");
    for (auto [cProfile, cCmm, cName] :
         {std::tuple{"0", "TRUE", "-"}, {"1", "FALSE", "-"}, {"2", "TRUE", "p\xFC.icm"}}) {
        AddSample("K100");
        SetPrinterText(wcPrinter, u"Settings", u"a.ext");
        PutFile(u"C:\\Users\\ada\\Application Data\\Corvantis Optics\\Ostra K100\\a.ext",
                "[Basalt]\r\nProfile=p\xFC.icm\r\nScreen=s.dot\r\n");
        PutFile(wcDriverFolder + WideText(u"K100.INI"),
                std::string("[PrinterSettings]\r\nXPI=K100.XPI\r\nScreen=1\r\nProfile=") + cProfile + "\r\n");
        std::memset(&record, 0, sizeof record);
        std::vector<char> buffer(4000);
        DWORD cbLength = 4000;
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        EXPECT_EQ(GuiStartJob(&record, buffer.data(), &cbLength, &job), 1u);
        std::string text(buffer.data(), cbLength);
        EXPECT_EQ(ValueOf(text, "cmm"), cCmm);
        EXPECT_EQ(ValueOf(text, "profile"), cName);
        EXPECT_EQ(ValueOf(text, "halftone"), "s.dot");
    }
}

/* An entry fits with six bytes beside key and value; 1040 bytes are never told. */
TEST_F(JobCommands, FitOfTheTextForm)
{
    std::string buffer(32, '#');
    EXPECT_EQ(AppendKeyValue(buffer.data(), 14, 1, "key", "vals"), 13u) << "1 + 3 + 4 + 6 is not below 14";
    EXPECT_EQ(buffer, std::string(32, '#'));
    EXPECT_EQ(AppendKeyValue(buffer.data(), 15, 1, "key", "vals"), 9u);
    EXPECT_EQ(buffer.substr(0, 11), std::string("#key=vals\0#", 11));
    EXPECT_EQ(AppendIndexedKeyValue(buffer.data(), 32, 0, "k", 9999, "v"), 8u);
    EXPECT_EQ(buffer.substr(0, 9), std::string("k9999=v\0s", 9).substr(0, 8) + buffer[8]);
    EXPECT_EQ(AppendIndexedKeyValue(buffer.data(), 32, 0, "k", 10000, "v"), 8u)
        << "not covered: measured only";
    EXPECT_EQ(buffer[1], '9');
    EXPECT_EQ(AppendKeyNumber(buffer.data(), 32, 0, "n", -2147483647 - 1), 14u);
    EXPECT_STREQ(buffer.c_str(), "n=-2147483648");

    AddSample("K100");
    record = DefaultRecord();
    AddJob(wcPrinter, 7, u"");
    size_t cbPlain = RunJob(OWN, hPrinter, 7, &record).head.bytes.size();
    AddJob(wcPrinter, 7, WideText(1040 - cbPlain, u'n').c_str());
    for (auto [cbBuffer, dwResult, cbTold] : {std::tuple<DWORD, DWORD, DWORD>{1039, 2, 1044},
                                              {1040, 2, 1044},
                                              {1041, 2, 1044},
                                              {1043, 2, 1044},
                                              {1044, 1, 1041},
                                              {4096, 1, 1041}}) {
        std::vector<char> text(4096);
        DWORD cbLength = cbBuffer;
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        job.dwJobId = 7;
        EXPECT_EQ(GuiStartJob(&record, text.data(), &cbLength, &job), dwResult) << cbBuffer;
        EXPECT_EQ(cbLength, cbTold) << cbBuffer;
        FreeBlock(job.pJobName);
    }
}

/* Names that do not fit the binary form lose whole characters. */
TEST_F(JobCommands, NamesOfTheBinaryForm)
{
    PrinterSetup setup = InstallSample(FindInfModel(SampleModels(), "IX300"), TQUI_SAMPLES);
    for (auto [uCodePage, wcDriver, cName] :
         {std::tuple<UINT, WideText, std::string>{1252, WideText(31, u'\u00FC'), std::string(31, '\xFC')},
          {1252, WideText(34, u'x'), std::string(31, 'x')},
          {65001, WideText(40, u'\u00FC'),
           "\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC\u00FC"
           "\u00FC\u00FC\u00FC"},
          {65001, u"0123456789012345678901234567\U0001F600", "0123456789012345678901234567"}}) {
        SetCodePage(uCodePage);
        setup.wcDriverName = wcDriver;
        AddPrinter(setup);
        OpenSample printer(setup.wcName);
        std::memset(&record, 0, sizeof record);
        std::string sheet = RunJob(OWN, printer.hPrinter, 7, &record).sheet.bytes;
        ASSERT_EQ(sheet.size(), 1040u);
        EXPECT_EQ(sheet.substr(0, 32), cName + std::string(32 - cName.size(), '\0'));
    }
    SetCodePage(1252);
}

/* A name that cannot be converted: the length stays, the buffer is cleared. */
TEST_F(JobCommands, ANameThatCannotBeConverted)
{
    for (const char* cSection : {"K100", "IX300"}) {
        AddSample(cSection);
        for (LieKind lie : {LIE_NONE, LIE_HUGE, LIE_SHORT}) {
            record = DefaultRecord();
            std::string buffer(2000, '#');
            GuiSheetRecord sheet = {};
            sheet.hPrinter = hPrinter;
            sheet.pBuffer = buffer.data();
            sheet.cbBuffer = 1990;
            FailCall(CALL_WideCharToMultiByte, lie == LIE_NONE ? 1 : 1000);
            TellLies(lie, CALL_WideCharToMultiByte);
            DWORD dwResult = GuiStartSheet(&record, &sheet);
            TellLies(LIE_NONE);
            StopFaults();
            if (dwResult == 1) { /* a record's names that are told longer than they are come out short */
                EXPECT_STREQ(cSection, "IX300");
                continue;
            }
            EXPECT_EQ(dwResult, 2u);
            EXPECT_EQ(u32{sheet.cbBuffer}, 1990u);
            EXPECT_EQ(buffer, std::string(1990, '\0') + std::string(10, '#'));
        }
    }
}

/* What a call asks for, it asks for once; one block for each thing that is asked, none that grows with the
   job. */
TEST_F(JobCommands, EachFactOfThePrinterIsAskedOnceACall)
{
    for (const char* cSection : {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"}) {
        SCOPED_TRACE(cSection);
        StartMachine();
        AddSample(cSection);
        SetOptions(0x1F);
        AddJob(wcPrinter, 7, u"Letter");
        record = DefaultRecord();
        RunJob(OWN, hPrinter, 7, &record); /* settled */
        bool bImage = std::string(cSection) == "K100" || std::string(cSection) == "IX300";
        for (int nCall = 0; nCall < 3; nCall++) {
            DriverDevmode copy = record;
            std::vector<char> buffer(4096);
            DWORD cbLength = 4096;
            GuiJobRecord job = {};
            GuiSheetRecord sheet = {};
            job.hPrinter = sheet.hPrinter = hPrinter;
            job.dwJobId = 7;
            ResetCallCounts();
            EXPECT_EQ(nCall == 0   ? GuiStartJob(&copy, buffer.data(), &cbLength, &job)
                      : nCall == 1 ? GuiStartSheet(&copy, &sheet)
                                   : GuiEndJob(&copy, buffer.data(), &cbLength, &job),
                      nCall == 1 && bImage ? 2u : 1u);
            EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), 1);
            EXPECT_EQ(CallCount(CALL_CreateFileW), 1);
            EXPECT_LE(CallCount(CALL_GetPrinterW), bImage);
            EXPECT_LE(CallCount(CALL_GetPrinterDataW), 2);
            EXPECT_EQ(CallCount(CALL_GetJobW), nCall == 0 && bImage);
            EXPECT_LE(CallCount(CALL_ReadFile), 5) << "header, body, fonts, rows of commands, their bytes";
            EXPECT_LE(CallCount(CALL_HeapAlloc), 2 + (bImage ? 8 : 0));
            FreeBlock(job.pJobName);
        }
    }
}
