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
#include "support/script.h"

namespace {

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

    /* The value of "@PJL SET KEY=value" or of the entry "key=value", "-" for none. */
    static std::string ValueOf(const std::string& text, const std::string& key)
    {
        const std::string whole = '\0' + text;
        for (const std::string& start : {"@PJL SET " + key + "=", std::string(1, '\0') + key + "="}) {
            const size_t nAt = whole.find(start);
            if (nAt != std::string::npos) {
                const std::string value = whole.substr(nAt + start.size()).c_str();
                return value.substr(0, start[0] ? value.find("\r\n") : value.size());
            }
        }
        return "-";
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
    for (const char* cSection : acSamples) {
        SCOPED_TRACE(cSection);
        StartMachine();
        AddSample(cSection);
        AddJob(wcPrinter, 7, u"Letter");
        record = DefaultRecord();
        JobOutput whole = RunJob(OWN, hPrinter, 7, &record);
        const bool bText =
            whole.sheet.bytes.empty(); /* printer job language, which has nothing for a sheet */
        EXPECT_EQ(CheckEverySize(JOB_HEAD, hPrinter, record, whole.head.bytes, bText), "");
        EXPECT_EQ(CheckEverySize(JOB_SHEET, hPrinter, record, whole.sheet.bytes, bText), "");
        EXPECT_EQ(CheckEverySize(JOB_TAIL, hPrinter, record, whole.tail.bytes, bText), "");
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
    const PartCall head = CallPart(JOB_HEAD, hPrinter, &record, 0);
    EXPECT_EQ(head.dwResult, 2u);
    EXPECT_EQ(u32{record.dmReserved1}, 7u);
    EXPECT_FALSE(head.bNamed) << "there is no such job";
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

/* The length of the buffer lies in the record that is settled in place: what the settling writes there is no length. */
TEST_F(JobCommands, ALengthWithinTheRecordIsReadOnce)
{
    for (const char* cSample : {"T410A", "K100"}) {
        AddSample(cSample);
        record = DefaultRecord();
        const DWORD cbRoom = 16;
        u8* pAt = reinterpret_cast<u8*>(&record) + offsetof(DriverDevmode, rPrivate.ulVersion);
        std::vector<u8> buffer(cbRoom); /* of just that size: a sanitizer sees each byte too many */
        GuiJobRecord job = {};
        job.hPrinter = hPrinter;
        for (const auto fnJob : {GuiStartJob, GuiEndJob}) {
            std::memcpy(pAt, &cbRoom, sizeof cbRoom);
            fnJob(&record, buffer.data(), reinterpret_cast<DWORD*>(pAt), &job);
        }
        auto* pRequest = reinterpret_cast<GuiSheetRecord*>(pAt - offsetof(GuiSheetRecord, cbBuffer));
        pRequest->hPrinter = hPrinter;
        pRequest->pBuffer = buffer.data();
        pRequest->cbBuffer = cbRoom;
        EXPECT_EQ(GuiStartSheet(&record, pRequest), std::string_view(cSample) == "K100" ? 2u : 1u);
    }
}

/* The record's own description serves the job's end unless overlays are at work; another computer's, a
   device's or a relative path is never opened. Rows of record_paths.txt: the path, "overlay", taken or not. */
TEST_F(JobCommands, TheEndTakesTheRecordsDescription)
{
    AddTestPrinter(Small(KIND_PCL6).Build());
    const DriverDevmode good = DefaultRecord();
    for (const char16_t* tcThere : {u"D:\\Else\\qa.xpi", u"\\\\server\\share\\qa.xpi"}) {
        PutFile(tcThere, Small(KIND_IMAGE).Build());
    }
    XpiFile device = {};
    EXPECT_FALSE(OpenXpiPath(device, u"C:\\NUL"));
    for (const DataRow& row : ReadRows("record_paths.txt")) {
        record = good;
        WCHAR tcName[161] = {}, tcOverlay[160] = {static_cast<WCHAR>(row[1].empty() ? 0 : 'o')};
        CopyWide(tcName, 161, WideWord(row[0]).c_str()); /* 160 characters have no end */
        std::memcpy(record.rPrivate.tcXPIName, tcName, 160 * sizeof(WCHAR));
        std::memcpy(record.rPrivate.tcOverlayDir, tcOverlay, sizeof tcOverlay);
        const PartCall end = CallPart(JOB_TAIL, hPrinter, &record, 0);
        EXPECT_EQ(end.dwResult, 2u);
        EXPECT_EQ(end.cbLength, row[2] == "taken" ? 1040u : 11u) << row[0];
    }
}

/* What the rows of job_values.txt say of heads and sheets: lines in job language and entries of parameters. */
TEST_F(JobCommands, ValuesInHeadsAndSheets)
{
    size_t nValues = 0;
    for (const DataRow& row : ReadRows("job_values.txt")) {
        SCOPED_TRACE(row[0] + ", " + row[1] + ", " + row[2]);
        StartMachine();
        SetEnvironmentValue(u"USERPROFILE", u"C:\\Users\\ada");
        PutFile(u"C:\\Users\\ada\\Application Data\\Corvantis Optics\\Ostra K100\\a.ext",
                "[Basalt]\r\nProfile=p\xFC.icm\r\nScreen=s.dot\r\n");
        const std::vector<std::string> sets = AddChanged(row[0], row[1]);
        record = DefaultRecord();
        for (const std::string& assignment : sets) {
            assignment == "zero" ? static_cast<void>(std::memset(&record, 0, sizeof record))
                                 : SetRecordField(&record, assignment);
        }
        const std::string bytes =
            row[2] == "head" ? CallPart(JOB_HEAD, hPrinter, &record, 4000).buffer : Sheet();
        for (const std::string& value : SplitTrimmed(row[3], ',')) {
            const size_t nAt = value.find('=');
            EXPECT_EQ(ValueOf(bytes, value.substr(0, nAt)), UnescapeGolden('"' + value.substr(nAt + 1) + '"'))
                << value;
            nValues++;
        }
    }
    EXPECT_GE(nValues, 60u);
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

/* A job name in the code page; a job without a name has no entry. */
TEST_F(JobCommands, JobNames)
{
    AddSample("K100");
    record = DefaultRecord();
    const auto jobName = [this](const WCHAR* wcDocument) {
        AddJob(wcPrinter, 7, wcDocument);
        return ValueOf(Head(), "jobName");
    };
    EXPECT_EQ(jobName(u"\u00E9t\u00E9 \u4E2D"), "\xE9t\xE9 ?");
    EXPECT_EQ(jobName(u""), "");
    EXPECT_EQ(jobName(nullptr), "-");
    EXPECT_EQ(jobName(WideText(9000, u'n').c_str()), std::string(9000, 'n'));
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
        const PartCall head = CallPart(JOB_HEAD, hPrinter, &record, cbBuffer);
        EXPECT_EQ(head.dwResult, dwResult) << cbBuffer;
        EXPECT_EQ(head.cbLength, cbTold) << cbBuffer;
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
            FailCall(CALL_WideCharToMultiByte, lie == LIE_NONE ? 1 : 1000);
            TellLies(lie, CALL_WideCharToMultiByte);
            const PartCall sheet = CallPart(JOB_SHEET, hPrinter, &record, 1990, '#');
            TellLies(LIE_NONE);
            StopFaults();
            EXPECT_EQ(sheet.fault, "");
            if (sheet.dwResult ==
                1) { /* a record's names that are told longer than they are come out short */
                EXPECT_STREQ(cSection, "IX300");
                continue;
            }
            EXPECT_EQ(sheet.dwResult, 2u);
            EXPECT_EQ(sheet.cbLength, 1990u);
            EXPECT_EQ(sheet.buffer, std::string(1990, '\0'));
        }
    }
}

/* What a call asks for, it asks for once; one block for each thing that is asked, none that grows with the
   job. */
TEST_F(JobCommands, EachFactOfThePrinterIsAskedOnceACall)
{
    for (const char* cSection : acSamples) {
        SCOPED_TRACE(cSection);
        StartMachine();
        AddChanged(cSection, "options 0x1F");
        AddJob(wcPrinter, 7, u"Letter");
        record = DefaultRecord();
        RunJob(OWN, hPrinter, 7, &record); /* settled */
        bool bImage = std::string(cSection) == "K100" || std::string(cSection) == "IX300";
        for (int nCall = 0; nCall < 3; nCall++) {
            DriverDevmode copy = record;
            const JobPartId part = static_cast<JobPartId>(nCall);
            EXPECT_EQ(CallPart(part, hPrinter, &copy, part == JOB_SHEET ? 0 : 4096).dwResult,
                      part == JOB_SHEET && bImage ? 2u : 1u);
            EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), 1);
            EXPECT_EQ(CallCount(CALL_CreateFileW), 1);
            EXPECT_LE(CallCount(CALL_GetPrinterW), bImage);
            EXPECT_LE(CallCount(CALL_GetPrinterDataW), 2);
            EXPECT_EQ(CallCount(CALL_GetJobW), nCall == 0 && bImage);
            EXPECT_LE(CallCount(CALL_ReadFile), 5) << "header, body, fonts, rows of commands, their bytes";
            EXPECT_LE(CallCount(CALL_HeapAlloc), 2 + (bImage ? 8 : 0));
        }
    }
}
