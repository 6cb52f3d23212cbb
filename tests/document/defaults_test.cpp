/* Default records: of the sample models against their goldens, step by step on small descriptions, and what becomes
   of a stored one. */
#include <functional>
#include <sstream>

#include "description/driver_files.h"
#include "document/defaults.h"
#include "places.h"
#include "settings/check_core.h"
#include "support/sample_machine.h"
#include "support/sweep_totals.h"
#include "tools/tq/record_text.h"

namespace {

[[maybe_unused]] const auto* const pTotals = ExpectTotals(600, 30, 0);

using Names = std::vector<std::string>;

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

Names Differing(const DriverDevmode& first, const DriverDevmode& second)
{
    Names names;
    for (const FieldValue& field : DifferingFields(first, second)) {
        names.push_back(field.name + "=" + field.value);
    }
    return names;
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
    Names mended;        /* by the first */
};
const SampleCase aSamples[] = {
    {"T410A", u"Halden T410A", 0, 0, {}},
    {"QP5", u"Quill P5", 1, 0, {"dmColor=0"}},
    {"QPS", u"Quill PS", 1, 1, {}}, /* the default paper is too wide, and is what it is replaced by */
    {"K100", u"Ostra K100", 0, 0, {}},
    {"IX300", u"Quill IX-300", 1, 0, {"dmColor=0"}},
    {"T440B", u"Halden T440B", 2, 0, {"dmColor=0", "sProfile=0", "bExceptionRegion=00"}},
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
        EXPECT_EQ(Differing(record, found), Names());
    }
}

TEST_F(DefaultsTest, TheChecksTakeTheSamplesDefaults)
{
    for (const SampleCase& sample : aSamples) {
        SCOPED_TRACE(sample.cSection);
        AddSample(sample.cSection);
        DriverDevmode record = Build(1, sample.wcName), before = record;
        EXPECT_EQ(Check(&record), std::pair(true, sample.nFirst));
        EXPECT_EQ(Differing(before, record), sample.mended);
        before = record;
        EXPECT_EQ(Check(&record), std::pair(true, sample.nSecond));
        EXPECT_EQ(Differing(before, record), Names());
    }
}

TEST_F(DefaultsTest, ThePrintersOwnNameWithoutServerAndTail)
{
    AddTestPrinter(Small().Build());
    const std::vector<std::array<WideText, 3>> cases = {
        {u"\\\\SRV\\Lab,LocalOnly", u"Lab", u"\\\\SRV\\Lab"},
        {u"Lab,Local", u"Lab", u"Lab"},
        {u"Lab,local", u"Lab,local", u"Lab,local"},
        {u"A,Local\\B", u"B", u"A,Local\\B"},
        {u"A\\,Local", u"", u"A\\"},
        {u"\\\\SRV\\", u"", u"\\\\SRV\\"},
        {WideText(31, u'n'), WideText(31, u'n'), WideText(31, u'n')},
        {WideText(40, u'n') + u",LocalOnly", WideText(31, u'n'), WideText(40, u'n')},
        {WideText(27, u'n') + u",Local", WideText(27, u'n'), WideText(27, u'n')},
    };
    for (const auto& [wcGiven, wcDevice, wcLeft] : cases) {
        DriverDevmode record = Poisoned();
        WideText wcName = wcGiven;
        PrinterCall call(hPrinter);
        BuildDefaultRecord(call, wcName.data(), &record, 1);
        WCHAR wcStored[32];
        std::memcpy(wcStored, record.dmDeviceName, sizeof wcStored);
        EXPECT_EQ(wcDevice, WideText(wcStored)) << Narrow(wcGiven);
        EXPECT_EQ(wcStored[31], 0);
        EXPECT_EQ(wcLeft, WideText(wcName.c_str())) << "what the caller is left with";
    }
    DriverDevmode record = Poisoned();
    PrinterCall call(hPrinter);
    BuildDefaultRecord(call, nullptr, &record, 1);
    EXPECT_EQ(FieldOf(record, "dmDeviceName").value, "\"\"");
}

TEST_F(DefaultsTest, WithoutADescriptionTheTemplateStands)
{
    const Names constants = {"sOverlayDirOffset=332", "sGenColorCmdOffset=660", "OEMData.ulOEMVersion=1",
                             "OEMData.ulOEMOffset=1744", "OEMData.ulOEMSize=304"};
    auto expected = [&](const char* cPath, bool bMetric) {
        Names names = {"dmDeviceName=\"Test\""};
        names.insert(names.end(), constants.begin(), constants.end());
        if (*cPath) {
            names.push_back("tcXPIName=\"" + std::string(cPath) + "\"");
        }
        if (bMetric) {
            names.push_back("bMetric=1");
        }
        return names;
    };
    AddTestPrinter(Small().Build(), "[PrinterSettings]\r\nCopies=7\r\n");
    FailCall(CALL_ReadFile, 2, FAIL_FROM_THERE); /* behind the header: not to be loaded */
    EXPECT_EQ(Differing(recordTemplate, Build()), expected("C:\\\\DRV\\\\QA.XPI", true));
    EXPECT_GT(StopFaults(), 0);
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    EXPECT_EQ(Differing(recordTemplate, Build()), expected("C:\\\\DRV\\\\QA.XPI", true));
    SetPrinterText(u"Test", u"XPI", u"NONE.XPI"); /* not in the driver's list */
    SetLocaleValue(u"iMeasure", u"1");
    EXPECT_EQ(Differing(recordTemplate, Build()), expected("", false));
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

TEST_F(DefaultsTest, KindClassAndDuplexUnitDecideTheFields)
{
    struct Case {
        u16 usKind, usClass;
        u32 ulOptions, ulFields;
        Names more; /* "field=value" */
    };
    const std::vector<Case> cases = {
        {0,
         0,
         1,
         0x0380FF0F,
         {"dmDuplex=1", "dmICMMethod=2", "dmICMIntent=3", "dmMediaType=256", "sNumColors=0"}},
        {2, 0, 0, 0x0380EF0F, {"dmDuplex=0", "dmICMMethod=2", "sNumColors=2", "sDoNotReportFonts=0"}},
        {2, 1, 0, 0x0000E70F, {"dmICMMethod=0", "dmMediaType=0", "sNumColors=0", "sDoNotReportFonts=0"}},
        {3, 0, 0, 0x0000EF0F, {"dmICMMethod=0", "dmMediaType=0", "sScreening=1", "dwColorFormat=0x00001000"}},
        {3, 1, 0, 0x0000E70F, {"sScreening=0", "dwColorFormat=0x00000000", "sColorCorrection=0"}},
        {1, 1, 1, 0x0000F70F, {"dmDuplex=1", "dmColor=1", "sDoNotReportFonts=1", "sColorCorrection=0"}},
        {4, 42, 1, 0x0000F70F, {"dmColor=1", "dmMediaType=0", "sWMTransparency=50", "sDoNotReportFonts=1"}},
        {4,
         0,
         0,
         0x0380EF0F,
         {"sWMTransparency=50", "sScreening=0", "dwColorFormat=0x00000000", "sColorCorrection=1"}},
    };
    for (const Case& one : cases) {
        DescriptionBuilder builder = Small();
        builder.Set<u16>(KIND, one.usKind)
            .Set<u16>(COLOR_CLASS, one.usClass)
            .Set<u32>(OPT_OPTIONS, one.ulOptions);
        builder.Set<u16>(292, 1).Set<u32>(298, 0x1000).Set<u32>(DEFAULT_INTENT, 3);
        builder.Set<u16>(DEFAULT_MODE, 1).Set<i16>(DEFAULT_MEDIA, 2);
        builder.Table<ColorModeRow>(COLOR_MODES, {{1, 1, -1}, {2, 1, -1}, {}});
        MediaRow plain = {}, heavy = {};
        plain.ulMask = heavy.ulMask = 1;
        plain.ulMediaCode = 1;
        heavy.ulMediaCode = 256;
        builder.Table<MediaRow>(MEDIA, {plain, heavy, {}});
        DriverDevmode record = BuildFrom(builder);
        EXPECT_EQ(record.dmFields, one.ulFields) << one.usKind << " " << one.usClass;
        for (const std::string& more : one.more) {
            std::string name = more.substr(0, more.find('='));
            EXPECT_EQ(name + "=" + FieldOf(record, name).value, more) << one.usKind << " " << one.usClass;
        }
        for (const char* cIndex : {"sMediaTypeIndex", "sFrontMediaIndex", "sBackMediaIndex",
                                   "sSeparatorMediaIndex", "sInsertPageMediaIndex"}) {
            EXPECT_EQ(FieldOf(record, cIndex).value, "2") << cIndex;
        }
    }
}

TEST_F(DefaultsTest, WhatAColourTableLacksHasAFallback)
{
    MediaRow media = {};
    media.ulMask = 1;
    media.ulMediaCode = 256;
    for (i16 sMedia : {i16{1}, i16{0}, i16{2}, i16{-1}, i16{32767}}) {
        DescriptionBuilder builder = Small();
        builder.Set<u16>(COLOR_CLASS, 0).Set<i16>(DEFAULT_MEDIA, sMedia).Set<u16>(DEFAULT_MODE, 2);
        builder.Table<MediaRow>(MEDIA, {media, {}, media});
        builder.Table<ColorModeRow>(COLOR_MODES,
                                    {{1, 1, -1}, {}, {2, 1, -1}}); /* mode 2 lies behind the end */
        DriverDevmode record = BuildFrom(builder);
        EXPECT_EQ(record.dmMediaType, sMedia == 1 ? 256u : 1u) << sMedia;
        EXPECT_EQ(record.dmICMMethod, 1u);
        EXPECT_EQ(record.rPrivate.sColorCorrection, 2);
    }
}

TEST_F(DefaultsTest, ResolutionAndBorderComeFromTheRow)
{
    struct Case {
        i16 sRow;
        u32 ulResolution;
        u16 usX, usY;
        i16 sLength, sWidth;
    };
    DescriptionBuilder builder = Small();
    builder.Table<ResolutionRow>(RESOLUTIONS,
                                 {{1, 150, 0, 0, 151, 152, 0, 0},
                                  {1, 0, 0, 0, 300, 301, 0, 0}, /* no end: the first field counts */
                                  {1, 1200, 0, 0, 1201, 1202, 0, 0},
                                  {1, 1200, 0, 0, 1200, 1200, 0, 0},
                                  {},
                                  RESOLUTION_600});
    const std::vector<Case> cases = {{0, 150, 151, 152, 59, 3},      {1, 0, 300, 301, 118, 6},
                                     {2, 1200, 1201, 1202, 236, 12}, {3, 1200, 1200, 1200, 0, 6},
                                     {4, 600, 600, 600, 0, 6},       {5, 600, 600, 600, 0, 6},
                                     {-1, 600, 600, 600, 0, 6},      {32767, 600, 600, 600, 0, 6}};
    for (const Case& one : cases) {
        DriverDevmode record = BuildFrom(DescriptionBuilder(builder).Set<i16>(DEFAULT_RESOLUTION, one.sRow));
        EXPECT_EQ(record.rPrivate.sResolution, one.sRow);
        EXPECT_EQ(record.rPrivate.ulResolution, one.ulResolution) << one.sRow;
        EXPECT_EQ(record.dmPrintQuality, one.usX) << one.sRow;
        EXPECT_EQ(record.dmYResolution, one.usY) << one.sRow;
        EXPECT_EQ(record.rPrivate.sPageBorderLength, one.sLength) << one.sRow;
        EXPECT_EQ(record.rPrivate.sPageBorderWidth, one.sWidth) << one.sRow;
    }
    EXPECT_EQ(BuildFrom(DescriptionBuilder(builder).Set<u64>(RESOLUTIONS, 0)).dmPrintQuality, 600);
}

TEST_F(DefaultsTest, FontsAreTheModelsWhereItHasThem)
{
    auto font = [](const DriverDevmode& record) { return FieldOf(record, "wcDefaultFont").value; };
    EXPECT_EQ(font(BuildFrom(WithFont(DEFAULT_FONT, std::string(40, 'f')))),
              '"' + std::string(31, 'f') + '"');
    EXPECT_EQ(font(BuildFrom(WithFont(DEFAULT_FONT, "Pr\xFC"
                                                    "f"))),
              "\"Pr\\u00FCf\"");
    EXPECT_EQ(font(BuildFrom(WithFont(DEFAULT_FONT, ""))), "\"\"") << "there, and empty";
    /* Characters count, not bytes: 20 of two bytes stay whole, 31 of 40 stay. */
    for (UINT uPage : {932u, 65001u}) {
        SetCodePage(uPage);
        for (int nChars : {20, 31, 40}) {
            std::string name, value;
            for (int i = 0; i < nChars; i++) {
                name += uPage == 932 ? "\x82\xA0" : "\xE3\x81\x82";
                value += i < 31 ? "\\u3042" : "";
            }
            EXPECT_EQ(font(BuildFrom(WithFont(DEFAULT_FONT, name))), '"' + value + '"')
                << uPage << " " << nChars;
        }
    }
    SetCodePage(65001);
    EXPECT_EQ(font(BuildFrom(WithFont(DEFAULT_FONT, std::string(30, 'f') + "\xF0\x9F\x98\x80"))),
              '"' + std::string(30, 'f') + '"')
        << "no half of a pair";
    SetCodePage(1252);
    DriverDevmode record = BuildFrom(WithFont(PROP_FONT, "Sans").Set<i16>(FONT_COUNT, -1).Set<i16>(122, 14));
    EXPECT_EQ(font(record), "\"Courier\"");
    EXPECT_EQ(FieldOf(record, "wcDefaultPropFont").value, "\"Sans\"");
    EXPECT_EQ(record.rPrivate.ulNumResFonts, 0u) << "fewer fonts than none";
    EXPECT_EQ(record.rPrivate.ulDefaultFontSize, 14u);
}

TEST_F(DefaultsTest, TheJobLineFollowsTheModelsStandardOptions)
{
    const std::string named = "@PJL JOB NAME=\\\"!JOBNAME\\\"\\r\\n", start = "@PJL SET GUISTARTJOB=1\\r\\n";
    const std::string shown = "@PJL JOB DISPLAY=\\\"!JOBNAME\\\"\\r\\n";
    struct Case {
        u16 usKind;
        u32 ulStandard, ulOptional, ulFeatures;
        std::string start;
        u16 usNoPjl;
    };
    const std::vector<Case> cases = {{0, 4, 0, 0, shown + start, 0},       {0, 0, 4, 0, named + start, 0},
                                     {0, 4, 0, 0x40, shown + start, 0},    {2, 4, 0, 0x40, start, 1},
                                     {2, 0xFB, 0, 0xBF, named + start, 0}, {3, 0, 0, 0x40, named + start, 0}};
    for (const Case& one : cases) {
        DescriptionBuilder builder = Small();
        builder.Set<u16>(KIND, one.usKind)
            .Set<u32>(STD_OPTIONS, one.ulStandard)
            .Set<u32>(OPT_OPTIONS, one.ulOptional);
        builder.Set<u32>(LANGUAGE_FEATURES, one.ulFeatures);
        DriverDevmode record = BuildFrom(builder);
        EXPECT_EQ(FieldOf(record, "cStartJobPJL").value, '"' + one.start + '"')
            << one.usKind << one.ulStandard;
        EXPECT_EQ(record.rPrivate.sNoPJL, one.usNoPjl);
        EXPECT_EQ(FieldOf(record, "cEndJobPJL").value, "\"@PJL SET GUIENDJOB=1\\r\\n\"");
        EXPECT_EQ(record.rPrivate.ulLanguageFeatures, 0x00080000 | one.ulFeatures);
    }
    /* What is stored as installed does not count. */
    AddTestPrinter(Small().Build());
    SetPrinterValue(u"Test", u"DeviceInfo", REG_BINARY, {0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0});
    DriverDevmode record = Build();
    EXPECT_EQ(FieldOf(record, "cStartJobPJL").value, '"' + named + start + '"');
    EXPECT_EQ(record.dmDuplex, 1) << "but the duplex unit does";
}

TEST_F(DefaultsTest, CollationNeedsADiskAndACommandThatFits)
{
    struct Case {
        u32 ulOptions;
        std::string command, stored;
    };
    const std::vector<Case> cases = {{7, "QTY", "QTY"},
                                     {5, "QTY", ""},
                                     {7, "", ""},
                                     {2, "12345678901", "12345678901"},
                                     {2, "123456789012", ""}};
    for (const Case& one : cases) {
        DescriptionBuilder builder = Small();
        u16 usId = one.command.empty() ? u16{0} : builder.Command(one.command);
        builder.Set<u32>(OPT_OPTIONS, one.ulOptions).Set<u16>(COLLATE, usId);
        EXPECT_EQ(FieldOf(BuildFrom(builder), "cCollatePJL").value, '"' + one.stored + '"') << one.command;
    }
}

TEST_F(DefaultsTest, TypedOptionsCountAmongThemselves)
{
    auto slots = [this](u16 usKind, const std::vector<FeatureRow>& rows, const Bytes& values) {
        DescriptionBuilder builder = Small();
        builder.Set<u16>(KIND, usKind);
        builder.Table<FeatureRow>(FEATURES, rows);
        if (!values.empty()) {
            builder.Table<u8>(FEATURE_VALUES, values);
        }
        DriverDevmode record = BuildFrom(builder);
        std::vector<int> all;
        for (i16 sSlot : record.rPrivate.sPJLValueIndex) {
            all.push_back(sSlot);
        }
        EXPECT_EQ(FieldOf(record, "cPJLUserValue[0]").value, "\"\"");
        return all;
    };
    auto padded = [](std::vector<int> all) {
        all.resize(32);
        return all;
    };
    /* As rows of 4 bytes: a value, an end, a value, an end. As rows of 6: two values and an end. */
    const Bytes values = {1, 0, 0, 0, 0, 0, 9, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    const std::vector<FeatureRow> four = {
        {1, 0, 0, 0, 0}, {1, 0, 0, 1, 0}, {1, 0, 0, 2, 0}, {1, 0, 0, -1, 0}, {}};
    EXPECT_EQ(slots(0, four, values), padded({0, -1, 0, -2}));
    EXPECT_EQ(slots(4, four, values), padded({0, -1, 0, -2}));
    EXPECT_EQ(slots(3, four, values), padded({0, 0, -1, -2}));
    EXPECT_EQ(slots(0, four, {}), padded({-1, -2, -3, -4})) << "no values at all: every row is typed";
    std::vector<int> falling;
    for (int n = 1; n <= 32; n++) {
        falling.push_back(-n);
    }
    EXPECT_EQ(slots(0, std::vector<FeatureRow>(40, {1, 0, 0, 0, 0}), {}), falling) << "32 slots, no more";
}

TEST_F(DefaultsTest, TheSettingsFileOfTheDriverComesLastAndUnchecked)
{
    const std::string ini =
        "[PrinterSettings]\r\nPaperSize=11\r\nContrast=90\r\nMargins=1\r\nMarginTop=7\r\nScreen=3\r\n";
    DriverDevmode plain = BuildFrom(Small()), record = BuildFrom(Small(), ini);
    EXPECT_EQ(Differing(plain, record),
              (Names{"dmPaperSize=11", "sMargins=1", "sMarginTop=7", "sContrast=90", "sScreen=3"}))
        << "the size stays that of the default paper";
    EXPECT_EQ(record.dmPaperLength, 2970);
    EXPECT_EQ(Differing(plain, Build(0)), Names()) << "not asked for";
    EXPECT_EQ(Differing(plain, BuildFrom(Small(), "[PrinterSettings]\r\nXPI=OTHER.XPI\r\nCopies=5\r\n")),
              Names());
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
    EXPECT_EQ(Differing(stored, record), Names());

    DriverDevmode mended = stored;
    mended.dmScale = 50;
    mended.rPrivate.sBlackText = 9;
    SetPrinterRecord(u"Test", BytesOf(mended));
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Differing(stored, record), Names()) << "repaired";
    PrinterCall call(hPrinter);
    EXPECT_EQ(GetPrinterDefaults(call, &record), 1);
}

TEST_F(DefaultsTest, ARefusedRecordIsBuiltAnew)
{
    AddTestPrinter(Small().Build());
    const DriverDevmode built = Build();
    auto refuse = [this, &built](const std::function<void(DriverDevmode*)>& spoil) {
        DriverDevmode stored = built, record = Poisoned();
        stored.dmCopies = 5;
        spoil(&stored);
        SetPrinterRecord(u"Test", BytesOf(stored));
        PrinterCall call(hPrinter);
        for (int n = 0; n < 2; n++) { /* a second look in the same call finds nothing mended */
            EXPECT_EQ(FindPrinterDefaults(call, &record), DEFAULT_STORED);
            EXPECT_EQ(Differing(built, record), Names());
        }
    };
    refuse([](DriverDevmode* p) { p->rPrivate.sContrast = 60; });
    refuse([](DriverDevmode* p) { p->dmSpecVersion = 1026; });
    refuse([](DriverDevmode* p) {
        p->dmScale = p->dmOrientation = p->dmTTOption = 9;
    }); /* dmColor is a fourth */

    Bytes whole = BytesOf(built);
    SetPrinterRecord(u"Test", Bytes(whole.begin(), whole.begin() + 220)); /* lies not wholly in the answer */
    TellLies(LIE_SHORT, CALL_GetPrinterW);
    DriverDevmode record = Poisoned();
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Differing(built, record), Names());
    TellLies(LIE_NONE);

    SetPrinterRecord(u"Test", whole); /* good, but the description is gone */
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    EXPECT_EQ(Find(&record), DEFAULT_STORED);
    EXPECT_EQ(Differing(record, Build()), Names());
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
        for (FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
            FaultSweep sweep = SweepFaults(ANY_CALL, mode, 3000, verdict);
            EXPECT_EQ(sweep.fault, "");
            nFaults += sweep.nFaults;
        }
        for (int nLie = LIE_SHORT; nLie < LIE_KIND_COUNT; nLie++) {
            EXPECT_EQ(SweepLie(static_cast<LieKind>(nLie), ANY_CALL, verdict), "");
        }
    }
    EXPECT_GT(nFaults, 100) << "the sweep met the calls";
}
