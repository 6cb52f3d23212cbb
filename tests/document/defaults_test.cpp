/* Default records: of the sample models against their goldens, step by step on small descriptions, and what becomes
   of a stored one. */
#include <sstream>

#include "description/driver_files.h"
#include "document/defaults.h"
#include "places.h"
#include "settings/check_core.h"
#include "support/record_changes.h"
#include "support/sample_machine.h"
#include "support/sweep_totals.h"

namespace {

[[maybe_unused]] const auto* const pTotals = ExpectTotals(600, 30, 0);

/* Offsets in the body. */
enum : size_t {
    KIND = 2,
    INPUTS = 24,
    MEDIA = 48,
    STD_OPTIONS = 64,
    OPT_OPTIONS = 76,
    DEFAULT_RESOLUTION = 120,
    DEFAULT_FONT = 124,
    PROP_FONT = 132,
    FONT_COUNT = 156,
    RESOLUTIONS = 174,
    COLLATE = 184,
    FEATURES = 188,
    FEATURE_VALUES = 196,
    LANGUAGE_FEATURES = 216,
    COLOR_MODES = 220,
    DEFAULT_MODE = 280,
    COLOR_CLASS = 302,
    DEFAULT_INTENT = 306,
    DEFAULT_MEDIA = 312
};

const ResolutionRow RESOLUTION_600 = {1, 600, 0, 0, 600, 600, 0, 0};

/* A monochrome description that both checks accept: papers of any size, one bin. */
DescriptionBuilder Small()
{
    DescriptionBuilder builder;
    builder.Set<u16>(COLOR_CLASS, 1).Set<u16>(116, 1025);
    builder.Table<BinRow>(INPUTS, {{1, 1025, 0}, {}});
    builder.Table<ResolutionRow>(RESOLUTIONS, {RESOLUTION_600, {}});
    return builder;
}

/* The same with a font name of the body. */
DescriptionBuilder WithFont(size_t nSlot, const std::string& name)
{
    DescriptionBuilder builder = Small();
    builder.Table<char>(nSlot, std::vector<char>(name.c_str(), name.c_str() + name.size() + 1));
    return builder;
}

std::string Golden(const std::string& stem)
{
    Bytes bytes = ReadDiskFile(TQUI_SOURCE_DIR "/tests/golden/defaults/" + stem + ".txt");
    return {bytes.begin(), bytes.end()};
}

std::string WithoutComments(const std::string& text)
{
    std::istringstream lines(text);
    std::string line, kept;
    while (std::getline(lines, line)) {
        kept += line.empty() || line[0] == '#' ? "" : line + "\n";
    }
    return kept;
}

Bytes BytesOf(const DriverDevmode& record)
{
    const u8* pBytes = reinterpret_cast<const u8*>(&record);
    return {pBytes, pBytes + sizeof record};
}

DriverDevmode Poisoned()
{
    DriverDevmode record;
    std::memset(&record, 0xA5, sizeof record);
    return record;
}

class DefaultsTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetLocaleValue(u"iMeasure", u"0");
    }

    DriverDevmode Build(int bIni = 1, const WideText& wcName = u"Test")
    {
        DriverDevmode record = Poisoned();
        WideText wcCopy = wcName;
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcCopy.data(), &record, bIni);
        return record;
    }

    DriverDevmode BuildFrom(const DescriptionBuilder& builder, const std::string& ini = "")
    {
        AddTestPrinter(builder.Build(), ini);
        return Build();
    }

    DefaultSource Find(DriverDevmode* pRecord)
    {
        PrinterCall call(hPrinter);
        return FindPrinterDefaults(call, pRecord);
    }

    /* Both checks: accepted, and how many repairs. */
    std::pair<bool, int> Check(DriverDevmode* pRecord)
    {
        int nRepairs = 0;
        RuleRecorder recorder = {[](void* pContext, int, int nOutcome) {
                                     *static_cast<int*>(pContext) +=
                                         nOutcome == RULE_MENDED || nOutcome == RULE_LAST;
                                 },
                                 &nRepairs};
        PrinterCall call(hPrinter);
        OwnedModel pModel = LoadPrinterModel(call);
        bool bGood = ValidatePublicPartNoted(call, pRecord, pModel.get(), recorder) &&
                     ValidatePrivatePartNoted(call, &pRecord->rPrivate, pModel.get(), recorder);
        return {bGood, nRepairs};
    }
};

struct SampleCase {
    const char* cSection;
    const WCHAR* wcName;
    int nFirst, nSecond; /* repairs of a first and a second pass of both checks */
    const char* cMended; /* by the first */
};
const SampleCase aSamples[] = {
    {"T410A", u"Halden T410A", 0, 0, ""},
    {"QP5", u"Quill P5", 1, 0, "dmColor=0"},
    {"QPS", u"Quill PS", 1, 1, ""}, /* the default paper is too wide, and is what it is replaced by */
    {"K100", u"Ostra K100", 0, 0, ""},
    {"IX300", u"Quill IX-300", 1, 0, "dmColor=0"},
    {"T440B", u"Halden T440B", 2, 0, "dmColor=0 sProfile=0 bExceptionRegion=00"},
};

} // namespace

TEST_F(DefaultsTest, TheSamplesGiveTheirGoldens)
{
    for (const SampleCase& sample : aSamples) {
        SCOPED_TRACE(sample.cSection);
        AddSample(sample.cSection);
        DriverDevmode record = Build(1, sample.wcName);
        std::string golden = Golden(sample.cSection);
        EXPECT_EQ(RecordText(record), WithoutComments(golden));
        EXPECT_EQ(BytesOf(RecordFromText(golden)), BytesOf(record));
        /* A printer without a stored record answers with the same. */
        DriverDevmode found = Poisoned();
        EXPECT_EQ(Find(&found), DEFAULT_BUILT);
        EXPECT_EQ(Changes(record, found), "");
    }
}

TEST_F(DefaultsTest, TheChecksTakeTheSamplesDefaults)
{
    for (const SampleCase& sample : aSamples) {
        SCOPED_TRACE(sample.cSection);
        AddSample(sample.cSection);
        DriverDevmode record = Build(1, sample.wcName), before = record;
        EXPECT_EQ(Check(&record), std::pair(true, sample.nFirst));
        EXPECT_EQ(Changes(before, record), sample.cMended);
        before = record;
        EXPECT_EQ(Check(&record), std::pair(true, sample.nSecond));
        EXPECT_EQ(Changes(before, record), "");
    }
}

/* The goldens hold what differs from the template; this holds the template itself. */
TEST_F(DefaultsTest, TheTemplate)
{
    DriverDevmode zeros;
    std::memset(&zeros, 0, sizeof zeros);
    std::string wanted;
    for (const DataRow& row : ReadRows("template.txt")) {
        wanted += (wanted.empty() ? "" : " ") + row[0];
    }
    EXPECT_EQ(Changes(zeros, recordTemplate), wanted);
}

TEST_F(DefaultsTest, ThePrintersOwnNameWithoutServerAndTail)
{
    AddTestPrinter(Small().Build());
    for (const DataRow& row : ReadRows("device_names.txt")) {
        DriverDevmode record = Poisoned();
        WideText wcName = Wide(row[0]);
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcName.data(), &record, 1);
        EXPECT_EQ(
            std::memcmp(record.dmDeviceName, (Wide(row[1]) + WideText(1, 0)).data(), 2 * row[1].size() + 2),
            0)
            << row[0];
        EXPECT_EQ(Narrow(wcName.c_str()), row[2]) << "what the caller is left with";
    }
    DriverDevmode record = Poisoned();
    PrinterCall call(hPrinter);
    BuildDefaultRecord(call, nullptr, &record, 1);
    EXPECT_EQ(FieldOf(record, "dmDeviceName").value, "\"\"");
}

TEST_F(DefaultsTest, WithoutADescriptionTheTemplateStands)
{
    /* What stands in the template already is left out. */
    auto expected = [](const std::string& path, const std::string& metric) {
        return "dmDeviceName=\"Test\" sOverlayDirOffset=332 sGenColorCmdOffset=660 OEMData.ulOEMVersion=1 "
               "OEMData.ulOEMOffset=1744 OEMData.ulOEMSize=304" +
               path + metric;
    };
    const std::string path = " tcXPIName=\"C:\\\\DRV\\\\QA.XPI\"", metric = " bMetric=1";
    AddTestPrinter(Small().Build(), "[PrinterSettings]\r\nCopies=7\r\n");
    FailCall(CALL_ReadFile, 2, FAIL_FROM_THERE); /* behind the header: not to be loaded */
    EXPECT_EQ(Changes(recordTemplate, Build()), expected(path, metric));
    EXPECT_GT(StopFaults(), 0);
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    EXPECT_EQ(Changes(recordTemplate, Build()), expected(path, metric));
    SetPrinterText(u"Test", u"XPI", u"NONE.XPI"); /* not in the driver's list */
    SetLocaleValue(u"iMeasure", u"1");
    EXPECT_EQ(Changes(recordTemplate, Build()), expected("", ""));
}

TEST_F(DefaultsTest, APathTooLongForTheRecordIsLeftOut)
{
    for (size_t nLength : {size_t{159}, size_t{160}, size_t{259}}) {
        PrinterSetup setup;
        WideText tcPath = u"C:\\D\\" + WideText(nLength - 11, u'X') + u"\\A.XPI";
        tcPath.erase(5, tcPath.size() - nLength);
        setup.wcName = u"Test";
        setup.atcDependentFiles = {tcPath};
        PutFile(tcPath, Small().Build());
        AddTestPrinter(Small().Build());
        AddPrinter(setup);
        DriverDevmode record = Build();
        WCHAR tcStored[160];
        std::memcpy(tcStored, record.rPrivate.tcXPIName, sizeof tcStored);
        EXPECT_EQ(WideText(tcStored), nLength < 160 ? tcPath : WideText()) << nLength;
        EXPECT_EQ(record.rPrivate.sExceptionInfoOffset, 940) << "the rest is built all the same";
    }
}

TEST_F(DefaultsTest, StepsOfADescription)
{
    const std::map<std::string, std::pair<size_t, size_t>> fields = {/* place in the body, and width */
                                                                     {"kind=", {KIND, 2}},
                                                                     {"class=", {COLOR_CLASS, 2}},
                                                                     {"options=", {OPT_OPTIONS, 4}},
                                                                     {"mode=", {DEFAULT_MODE, 2}},
                                                                     {"media=", {DEFAULT_MEDIA, 2}},
                                                                     {"resolution=", {DEFAULT_RESOLUTION, 2}},
                                                                     {"resolutions=", {RESOLUTIONS, 8}},
                                                                     {"standard=", {STD_OPTIONS, 4}},
                                                                     {"features=", {LANGUAGE_FEATURES, 4}}};
    DescriptionBuilder plain = Small();
    plain.Set<u16>(292, 1).Set<u32>(298, 0x1000).Set<u32>(DEFAULT_INTENT, 3).Set<i16>(DEFAULT_RESOLUTION, 4);
    plain.Set<u16>(DEFAULT_MODE, 1).Set<i16>(DEFAULT_MEDIA, 2);
    plain.Table<ColorModeRow>(COLOR_MODES, {{1, 1, -1}, {2, 1, -1}, {}, {2, 1, -1}});
    MediaRow light = {}, heavy = {};
    light.ulMask = heavy.ulMask = 1;
    light.ulMediaCode = 1;
    heavy.ulMediaCode = 256;
    plain.Table<MediaRow>(MEDIA, {light, heavy, {}, heavy});
    plain.Table<ResolutionRow>(RESOLUTIONS,
                               {{1, 150, 0, 0, 151, 152, 0, 0},
                                {1, 0, 0, 0, 300, 301, 0, 0}, /* no end: the first field counts */
                                {1, 1200, 0, 0, 1201, 1202, 0, 0},
                                {1, 1200, 0, 0, 1200, 1200, 0, 0},
                                {},
                                {1, 300, 0, 0, 300, 300, 0, 0}});
    for (const DataRow& row : ReadRows("default_steps.txt")) {
        DescriptionBuilder builder = plain;
        for (const std::string& word : Words(row[0])) {
            const size_t nValue = word.find('=') + 1;
            if (word.rfind("collate=", 0) == 0) {
                builder.Set<u16>(COLLATE, builder.Command(word.substr(nValue)));
                continue;
            }
            const auto found = fields.find(word.substr(0, nValue));
            ASSERT_NE(found, fields.end()) << word;
            const long long llValue = ToNumber(word.substr(nValue));
            std::memcpy(builder.body.data() + found->second.first, &llValue, found->second.second);
        }
        const DriverDevmode record = BuildFrom(builder);
        for (const std::string& wanted : Words(row[1])) {
            const std::string name = wanted.substr(0, wanted.find('='));
            EXPECT_EQ(name + "=" + FieldOf(record, name).value, wanted) << row[0];
        }
        if (row.size() > 2) {
            EXPECT_EQ(FieldOf(record, "cStartJobPJL").value, row[2]) << row[0];
        }
        EXPECT_EQ(FieldOf(record, "cEndJobPJL").value, "\"@PJL SET GUIENDJOB=1\\r\\n\"");
    }
}

/* Rows of default_fonts.txt: code page, bytes of the model's font, the record's. */
TEST_F(DefaultsTest, FontsAreTheModelsWhereItHasThem)
{
    for (const DataRow& row : ReadRows("default_fonts.txt")) {
        SetCodePage(static_cast<UINT>(ToNumber(row[0])));
        const DriverDevmode record = BuildFrom(WithFont(DEFAULT_FONT, FromHex<std::string>(row[1])));
        EXPECT_EQ(FieldOf(record, "wcDefaultFont").value, row[2]) << row[1];
    }
    SetCodePage(1252);
    DriverDevmode record = BuildFrom(WithFont(PROP_FONT, "Sans").Set<i16>(FONT_COUNT, -1).Set<i16>(122, 14));
    EXPECT_EQ(Fields(record, "wcDefaultFont wcDefaultPropFont ulNumResFonts ulDefaultFontSize"),
              "wcDefaultFont=\"Courier\" wcDefaultPropFont=\"Sans\" ulNumResFonts=0 ulDefaultFontSize=14");
}

TEST_F(DefaultsTest, WhatIsInstalledDoesNotCountForTheJobLine)
{
    AddTestPrinter(Small().Build());
    SetPrinterValue(u"Test", u"DeviceInfo", REG_BINARY, {0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0});
    DriverDevmode record = Build();
    EXPECT_EQ(FieldOf(record, "cStartJobPJL").value.find("@PJL JOB NAME="), 1u);
    EXPECT_EQ(record.dmDuplex, 1) << "but the duplex unit does";
}

/* Rows of typed_options.txt: kind, features by the index of their first value, the values' bytes, the slots. */
TEST_F(DefaultsTest, TypedOptionsCountAmongThemselves)
{
    for (const DataRow& row : ReadRows("typed_options.txt")) {
        DescriptionBuilder builder = Small();
        builder.Set(KIND, static_cast<u16>(ToNumber(row[0])));
        std::vector<FeatureRow> rows;
        for (i16 sFirst : ToNumbers<i16>(row[1])) {
            rows.push_back({1, 0, 0, sFirst, 0});
        }
        rows.push_back({});
        builder.Table<FeatureRow>(FEATURES, rows);
        if (!row[2].empty()) {
            builder.Table<u8>(FEATURE_VALUES, FromHex<Bytes>(row[2]));
        }
        const DriverDevmode record = BuildFrom(builder);
        std::string all;
        for (i16 sSlot : record.rPrivate.sPJLValueIndex) {
            all += std::to_string(sSlot) + " ";
        }
        EXPECT_EQ(FieldOf(record, "cPJLUserValue[0]").value, "\"\"");
        EXPECT_EQ(all.substr(0, all.find_last_not_of(" 0") + 1), row[3]) << row[0] << " " << row[2];
    }
}

TEST_F(DefaultsTest, TheSettingsFileOfTheDriverComesLastAndUnchecked)
{
    const std::string ini =
        "[PrinterSettings]\r\nPaperSize=11\r\nContrast=90\r\nMargins=1\r\nMarginTop=7\r\nScreen=3\r\n";
    DriverDevmode plain = BuildFrom(Small()), record = BuildFrom(Small(), ini);
    EXPECT_EQ(Changes(plain, record), "dmPaperSize=11 sMargins=1 sMarginTop=7 sContrast=90 sScreen=3")
        << "the size stays that of the default paper";
    EXPECT_EQ(record.dmPaperLength, 2970);
    EXPECT_EQ(Changes(plain, Build(0)), "") << "not asked for";
    EXPECT_EQ(Changes(plain, BuildFrom(Small(), "[PrinterSettings]\r\nXPI=OTHER.XPI\r\nCopies=5\r\n")), "");
}

TEST_F(DefaultsTest, AStoredRecordIsCheckedAndGiven)
{
    AddTestPrinter(Small().Build());
    DriverDevmode stored = Build();
    stored.dmColor = 0;
    stored.dmCopies = 5;
    std::memset(stored.rPrivate.bReserved3778, 0x77,
                sizeof stored.rPrivate.bReserved3778); /* of a newer build */
    SetPrinterRecord(u"Test", BytesOf(stored));
    DriverDevmode record = Poisoned();
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Changes(stored, record), "");

    DriverDevmode mended = stored;
    mended.dmScale = 50;
    mended.rPrivate.sBlackText = 9;
    SetPrinterRecord(u"Test", BytesOf(mended));
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Changes(stored, record), "") << "repaired";
    PrinterCall call(hPrinter);
    EXPECT_EQ(GetPrinterDefaults(call, &record), 1);
}

TEST_F(DefaultsTest, ARefusedRecordIsBuiltAnew)
{
    AddTestPrinter(Small().Build());
    const DriverDevmode built = Build();
    for (const char* cSpoiled : {"dmCopies=5 sContrast=60", "dmCopies=5 dmSpecVersion=1026",
                                 "dmScale=9 dmOrientation=9 dmTTOption=9" /* dmColor is a fourth */}) {
        SetPrinterRecord(u"Test", BytesOf(Changed(built, cSpoiled)));
        PrinterCall call(hPrinter);
        for (int n = 0; n < 2; n++) { /* a second look in the same call finds nothing mended */
            DriverDevmode record = Poisoned();
            EXPECT_EQ(FindPrinterDefaults(call, &record), DEFAULT_STORED);
            EXPECT_EQ(Changes(built, record), "") << cSpoiled;
        }
    }

    Bytes whole = BytesOf(built);
    SetPrinterRecord(u"Test", Bytes(whole.begin(), whole.begin() + 220)); /* lies not wholly in the answer */
    TellLies(LIE_SHORT, CALL_GetPrinterW);
    DriverDevmode record = Poisoned();
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Changes(built, record), "");
    TellLies(LIE_NONE);

    SetPrinterRecord(u"Test", whole); /* good, but the description is gone */
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Changes(record, Build()), "");
    EXPECT_EQ(record.rPrivate.sExceptionInfoOffset, 0);
}

TEST_F(DefaultsTest, NoneBuiltAndStoredAreToldApart)
{
    AddTestPrinter(Small().Build());
    DriverDevmode record = Poisoned();
    FailCall(CALL_GetPrinterW, 1, FAIL_FROM_THERE);
    EXPECT_EQ(Find(&record), DEFAULT_NONE);
    EXPECT_EQ(StopFaults(), 1);
    EXPECT_EQ(BytesOf(record), BytesOf(Poisoned())) << "untouched";
    PrinterCall noPrinter(nullptr), call(hPrinter);
    EXPECT_EQ(GetPrinterDefaults(noPrinter, &record), 0);
    EXPECT_EQ(BytesOf(record), BytesOf(Poisoned()));
    EXPECT_EQ(GetPrinterDefaults(call, &record), 0) << "built, but the printer had none";
    EXPECT_EQ(record.dmSize, 220);

    SetPrinterRecord(u"Test", BytesOf(record));
    PrinterSetup setup;
    setup.wcName = u"\\\\SRV\\Lab,LocalOnly"; /* the spooler's name keeps its tail */
    AddPrinter(setup);
    OpenSample other(u"\\\\HERE\\\\\\SRV\\Lab,LocalOnly");
    PrinterCall otherCall(other.hPrinter);
    EXPECT_EQ(FindPrinterDefaults(otherCall, &record), DEFAULT_BUILT);
    EXPECT_EQ(FieldOf(record, "dmDeviceName").value, "\"Lab\"");
    EXPECT_EQ(WideText(PrinterText(otherCall, GetPrinterInfo(otherCall)->pPrinterName)),
              u"\\\\SRV\\Lab,LocalOnly");
}

TEST_F(DefaultsTest, AStoredRecordTakesOneAnswerOfTheSpooler)
{
    AddSample("T410A");
    DriverDevmode record = Build(1, u"Halden T410A");
    SetPrinterRecord(u"Halden T410A", BytesOf(record));
    ResetCallCounts();
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(CallCount(CALL_GetPrinterW), 1);
    EXPECT_EQ(CallCount(CALL_GetPrinterDriverW), 1);
    EXPECT_EQ(CallCount(CALL_CreateFileW), 1);
}

TEST_F(DefaultsTest, EveryFailureLeavesAWholeRecordOrNone)
{
    AddSample("T440B");
    DriverDevmode good = Build(1, u"Halden T440B"), refused = good;
    refused.rPrivate.sContrast = 60;
    auto verdict = [this] {
        DriverDevmode record = Poisoned();
        if (Find(&record) == DEFAULT_NONE) {
            return BytesOf(record) == BytesOf(Poisoned()) ? "" : std::string("touched; ");
        }
        std::string fault = record.dmSize == 220 && record.rPrivate.ulVersion == RECORD_STAMP &&
                                    record.rPrivate.sOverlayDirOffset == 332 && record.dmFields
                                ? ""
                                : "not a record; ";
        for (const FieldValue& field : RecordFields(record)) {
            fault += field.value.find("A5A5") == std::string::npos ? "" : field.name + " was not filled; ";
        }
        return fault;
    };
    int nFaults = 0;
    for (const Bytes& stored : {Bytes(), BytesOf(good), BytesOf(refused)}) {
        SetPrinterRecord(u"Halden T440B", stored);
        FaultSweep sweep = SweepFaultsBothWays(ANY_CALL, 3000, verdict);
        EXPECT_EQ(sweep.fault, "");
        nFaults += sweep.nFaults;
        for (int nLie = LIE_SHORT; nLie < LIE_KIND_COUNT; nLie++) {
            EXPECT_EQ(SweepLie(static_cast<LieKind>(nLie), ANY_CALL, verdict), "");
        }
    }
    EXPECT_GT(nFaults, 100) << "the sweep met the calls";
}
