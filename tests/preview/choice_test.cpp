/* Choices of the preview: papers, scaling, size line, status lines, request. */
#include <algorithm>
#include <random>

#include "description/control_ids.h"
#include "description/driver_files.h"
#include "description/string_ids.h"
#include "preview/preview_choice.h"
#include "support/sample_machine.h"

namespace {

constexpr i16 FILM = 257, ENVELOPE = 20;

class ChoiceTest : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        SetLocaleValue(u"iMeasure", u"0");
        builder.Table<PaperRow>(offsetof(XpiModel, pPaperTable), {{1, 1, 2159, 2794, 0, 0, 0, 0, {}},
                                                                  {1, 9, 2100, 2970, 7, 0, 0, 0, {}},
                                                                  {1, ENVELOPE, 1048, 2413, 0, 3, 0, 0, {}},
                                                                  {1, FILM, 2032, 2540, 0, 0, 0, 0, {}},
                                                                  {}});
        builder.Table<ResolutionRow>(offsetof(XpiModel, pResolutions),
                                     {{1, 300, 0, 0, 0, 0, 0, 0}, {1, 1200, 0, 0, 0, 0, 0, 0}, {}});
        Load();
    }
    void TearDown() override
    {
        pModel.reset();
        MachineTest::TearDown();
    }
    void Load()
    {
        AddTestPrinter(builder.Build());
        PrinterCall call(hPrinter);
        pModel = LoadPrinterModel(call);
        ASSERT_TRUE(pModel);
        lists = {pModel.get(), aCustom, 2, aForms, 1, aWatermarks, 2};
    }

    std::string PaperText(i32 lCode, const PreviewLists& of)
    {
        const PreviewPaper paper = FindPreviewPaper(of, static_cast<u16>(lCode));
        return std::to_string(paper.lWidth) + " x " + std::to_string(paper.lLength) +
               (paper.bMetric ? " mm" : " in") + (paper.bEnvelope ? " envelope" : "");
    }

    DescriptionBuilder builder;
    OwnedModel pModel;
    PaperSizeRow aCustom[2] = {{20009, 30000, 1, {}}, {9999, 70000, 0, {}}};
    PaperSizeRow aForms[1] = {{12345, 23456, 1, {}}};
    WatermarkEntry aWatermarks[2] = {};
    PreviewLists lists = {};
};

std::string SizeLine(i32 lWidth, i32 lLength, int bMetric, u16 usOrientation, i16 sLayout,
                     const WCHAR* wcDecimal = u".", const WideText& wcUnit = u"")
{
    PreviewSizes sizes = {};
    sizes.lTargetWidth = lWidth;
    sizes.lTargetLength = lLength;
    PreviewChoice choice = {};
    choice.usOrientation = usOrientation;
    choice.sLayout = sLayout;
    WCHAR wcLine[TEXT_CHARS];
    FormatSizeLine(sizes, choice, bMetric, wcUnit.empty() ? bMetric ? u"mm" : u"in" : wcUnit.c_str(),
                   wcDecimal, wcLine);
    return Ascii(wcLine);
}

std::vector<int> LinesOf(const PreviewChoice& choice, const XpiModel* pModel)
{
    StatusLine aLines[STATUS_LINES];
    std::vector<int> ids;
    for (int i = 0, nLines = ListStatusLines(choice, pModel, aLines); i < nLines; i++) {
        ids.push_back(aLines[i].usString);
        EXPECT_EQ(aLines[i].lCopies,
                  ids.back() == IDS_STATUS_COPIES || ids.back() == IDS_STATUS_COLLATED ? choice.lCopies : 0);
    }
    return ids;
}

} // namespace

TEST_F(ChoiceTest, FindsPapersInAllLists)
{
    const std::pair<i32, const char*> aCases[] = {
        {9, "21000 x 29700 mm"},      {ENVELOPE, "10480 x 24130 in envelope"},
        {FILM, "20320 x 25400 in"},   {448, "20009 x 30000 mm"},
        {449, "9999 x 70000 in"},     {450, "12345 x 23456 mm"},
        {451, "21000 x 29700 mm"},    {447, "21000 x 29700 mm"},
        {256, "21000 x 29700 mm"},    {0x8000, "21000 x 29700 mm"},
        {0xFFFF, "21000 x 29700 mm"},
    };
    for (const auto& [lCode, expected] : aCases) {
        EXPECT_EQ(PaperText(lCode, lists), expected) << lCode;
    }
    SetLocaleValue(u"iMeasure", u"1");
    EXPECT_EQ(PaperText(451, lists), "21590 x 27940 in");
    lists.pCustomPapers = nullptr;
    EXPECT_EQ(PaperText(448, lists), "21590 x 27940 in");
    EXPECT_EQ(PaperText(450, lists), "12345 x 23456 mm") << "forms keep their codes";
    lists.pForms = nullptr;
    EXPECT_EQ(PaperText(450, lists), "21590 x 27940 in");

    PreviewChoice choice = {};
    choice.usPaper = ENVELOPE;
    choice.usTarget = NO_TARGET;
    PreviewSizes sizes = FindPreviewSizes(lists, choice);
    EXPECT_EQ(sizes.lTargetLength, 24130);
    EXPECT_TRUE(sizes.bEnvelope && !sizes.bMetric && sizes.usShown == ENVELOPE);
    choice.usTarget = 9;
    sizes = FindPreviewSizes(lists, choice);
    EXPECT_EQ(sizes.lPageLength, 24130);
    EXPECT_EQ(sizes.lTargetLength, 29700);
    EXPECT_TRUE(!sizes.bEnvelope && sizes.bMetric && sizes.usShown == 9) << "the target's are shown";
}

TEST_F(ChoiceTest, ShowsSizesShort)
{
    const struct {
        i32 lWidth, lLength;
        bool bMetric;
        const char* cLine;
    } aRows[] = {{2540, 3810, false, "1 x 1.5 in"},        {2667, 2540, false, "1.05 x 1 in"},
                 {3810, 2667, false, "1.5 x 1.05 in"},     {21590, 27940, false, "8.5 x 11 in"},
                 {21590, 27940, true, "215.9 x 279.4 mm"}, {21000, 29700, false, "8.27 x 11.69 in"},
                 {2539, 12700, false, "1 x 5 in"}};
    for (const auto& row : aRows) {
        EXPECT_EQ(SizeLine(row.lWidth, row.lLength, row.bMetric, 1, 1), row.cLine);
    }
    EXPECT_EQ(SizeLine(21590, 27940, 0, 1, 1, u","), "8,5 x 11 in");
    EXPECT_EQ(SizeLine(2540, 2540, 0, 1, 1, u".", WideText(300, u'u')).size(), 127u);
    for (i16 sLayout : std::initializer_list<i16>{0, 1, 2, 4, 6, 8, 9, 12, 16, 25, 99}) {
        const bool bTurned = sLayout == 2 || sLayout == 6 || sLayout == 8;
        for (u16 sOrientation = 0; sOrientation <= 2; sOrientation++) {
            const bool bUpright = sOrientation == (bTurned ? 2 : 1);
            EXPECT_EQ(SizeLine(21000, 29700, 1, sOrientation, sLayout),
                      bUpright ? "210 x 297 mm" : "297 x 210 mm")
                << sLayout << " " << sOrientation;
        }
    }
}

TEST_F(ChoiceTest, ReadsTheScalingOfARecord)
{
    struct Case {
        bool bTarget, bCentred, bFitZoom;
    };
    const std::map<int, Case> cases = {{1, {true, true, true}},    {2, {false, false, false}},
                                       {4, {true, false, false}},  {33, {true, false, true}},
                                       {66, {false, true, false}}, {68, {true, true, false}}};
    for (int nScale : {0, 1, 2, 3, 4, 5, 32, 33, 34, 65, 66, 67, 68, 1024, 0xFFFF}) {
        DriverDevmode record = recordTemplate;
        record.rPrivate.sScale = static_cast<u16>(nScale);
        record.rPrivate.sScaleTarget = 150;
        const PreviewChoice choice = ChoiceFromRecord(record, lists);
        const bool bScaled = cases.count(nScale) == 1;
        const Case each = bScaled ? cases.at(nScale) : Case{};
        SCOPED_TRACE(nScale);
        EXPECT_EQ(choice.bScaled, bScaled);
        EXPECT_EQ(choice.usTarget, each.bTarget ? 150 : NO_TARGET);
        EXPECT_EQ(choice.lZoom, bScaled && !each.bTarget ? 150 : 100);
        EXPECT_EQ(choice.bCentred, each.bCentred);
        EXPECT_EQ(choice.bFitZoom, each.bFitZoom);
    }
}

/* Each line is there exactly when the record says so and one of the five is free. */
TEST_F(ChoiceTest, HasALineForWhateverARecordChooses)
{
    std::mt19937 random(6104);
    const auto Any = [&](int nLimit) { return static_cast<int>(random() % static_cast<u32>(nLimit)); };
    std::map<int, int> seen;
    size_t nCut = 0;
    for (int i = 0; i < 10000; i++) {
        if (i % 2000 == 0) {
            builder.Set(offsetof(XpiModel, usColorClass),
                        static_cast<u16>(std::array{0, 1, 42, 0, 0}[size_t(i / 2000)]));
            Load();
        }
        DriverDevmode record = recordTemplate;
        PrivateDevmode& part = record.rPrivate;
        record.dmColor = static_cast<u16>(Any(4));
        record.dmCopies = static_cast<i16>(Any(5) - 1);
        record.dmCollate = static_cast<u16>(Any(2));
        record.dmDuplex = static_cast<u16>(Any(5));
        part.ulColorMode = Any(3) ? 0 : 42;
        part.sBookletPrint = static_cast<i16>(Any(3) ? 0 : 4);
        part.lPagesPerSheet = Any(4) ? 2 : 99;
        part.sReverseOrder = static_cast<u16>(Any(2));
        part.sFrontCover = static_cast<u16>(Any(6));
        part.sBackCover = static_cast<u16>(Any(6));
        part.sSeparators = static_cast<u16>(Any(6));
        part.sScale = static_cast<u16>(Any(3));
        std::vector<int> wanted;
        const auto Say = [&](bool bSaid, int nString) { bSaid ? wanted.push_back(nString) : void(); };
        const bool bColor = record.dmColor == 2 || part.ulColorMode == 42, bBook = part.sBookletPrint;
        Say(bBook, IDS_STATUS_BOOKLET);
        Say(pModel->usColorClass == 0 && !bColor, IDS_STATUS_MONOCHROME);
        Say(record.dmCopies > 1,
            record.dmCollate || bBook || part.lPagesPerSheet == 99 ? IDS_STATUS_COLLATED : IDS_STATUS_COPIES);
        Say(part.sReverseOrder, IDS_STATUS_REVERSE);
        Say(part.sFrontCover == 1, IDS_STATUS_FRONT_COVER);
        Say(part.sFrontCover == 2, IDS_STATUS_FRONT_COVER_EMPTY);
        Say(part.sBackCover == 1, IDS_STATUS_BACK_COVER);
        Say(part.sBackCover == 2, IDS_STATUS_BACK_COVER_EMPTY);
        Say(part.sSeparators - 1u < 2u, IDS_STATUS_BACK_COVER + part.sSeparators);
        Say(!bBook && record.dmDuplex / 2 == 1, IDS_STATUS_SEPARATORS + record.dmDuplex);
        Say(part.sScale, IDS_STATUS_SCALED);
        nCut += wanted.size() > 5;
        wanted.resize(std::min<size_t>(wanted.size(), 5));
        ASSERT_EQ(LinesOf(ChoiceFromRecord(record, lists), pModel.get()), wanted) << i;
        for (int nString : wanted) {
            seen[nString]++;
        }
    }
    EXPECT_EQ(seen.size(), 14u);
    EXPECT_GT(nCut, 500u);
}

TEST_F(ChoiceTest, TurnsATextGreyWithoutColour)
{
    struct Case {
        u16 usClass;
        bool bColor;
        u32 ulType, ulColor, ulShown;
    };
    const Case aCases[] = {
        {0, false, ENTRY_TEXT, 0x0000FF, 0x494949},  {0, false, ENTRY_TEXT, 0x00FF00, 0x9A9A9A},
        {42, false, ENTRY_TEXT, 0xFF0000, 0x1A1A1A}, {42, true, ENTRY_TEXT, 0xFF0000, 0xFF0000},
        {1, false, ENTRY_TEXT, 0x0000FF, 0x0000FF},  {0, false, ENTRY_IMAGE, 0x0000FF, 0x0000FF},
    };
    for (const Case& each : aCases) {
        SCOPED_TRACE(each.ulColor);
        builder.Set(offsetof(XpiModel, usColorClass), each.usClass);
        Load();
        aWatermarks[1].WMType = each.ulType;
        aWatermarks[1].WMColor = each.ulColor;
        PreviewChoice choice = {};
        choice.lWatermark = 1;
        choice.bWMOnePage = 1;
        choice.bColor = each.bColor;
        WatermarkEntry copy;
        PreviewRequest request;
        RequestFromChoice(choice, {}, lists, &copy, &request);
        ASSERT_EQ(request.pWatermark, &copy);
        EXPECT_EQ(copy.WMColor, each.ulShown);
        EXPECT_EQ(aWatermarks[1].WMColor, each.ulColor) << "the list keeps its own";
        EXPECT_EQ(request.bWMOnePage, 1);
    }
    PreviewLists none = lists;
    none.pWatermarks = nullptr;
    WatermarkEntry copy;
    for (i32 lRow : {-1, 2, 0x7FFFFFFF, 1}) {
        PreviewChoice choice = {};
        choice.lWatermark = lRow;
        PreviewRequest request;
        RequestFromChoice(choice, {}, lRow == 1 ? none : lists, &copy, &request);
        EXPECT_EQ(request.pWatermark, nullptr) << lRow;
    }
}

TEST_F(ChoiceTest, AsksForWhatTheRecordChooses)
{
    aWatermarks[0].WMType = aWatermarks[1].WMType = ENTRY_IMAGE;
    std::memcpy(aWatermarks[1].WMImageName, u"C:\\w.bmp", 18);
    aWatermarks[1].WMScaleX = aWatermarks[1].WMScaleY = 100;
    DriverDevmode record = recordTemplate;
    record.dmPaperSize = FILM;
    record.dmOrientation = 2;
    record.dmColor = 2;
    PrivateDevmode& part = record.rPrivate;
    part.ulResolution = 0x10258;
    part.sRotate180 = 1;
    part.lPagesPerSheet = 0x50004;
    part.sPageOrder = 17;
    part.sPageBorders = 3;
    part.sPosterGrowth = 3;
    part.sScale = 66;
    part.sScaleTarget = 0xFFFE;
    part.ulWMType = WM_FILE;
    part.szlWMScale = {100, 100};
    part.usWMPlacement = 0;
    std::memset(part.wcWMOverlayName, 0, sizeof part.wcWMOverlayName);
    std::memcpy(part.wcWMOverlayName, u"C:\\w.bmp", 16);
    part.sWMOnePage = 1;
    const PreviewChoice choice = ChoiceFromRecord(record, lists);
    EXPECT_EQ(choice.lWatermark, 1);
    WatermarkEntry copy;
    PreviewRequest request;
    RequestFromChoice(choice, FindPreviewSizes(lists, choice), lists, &copy, &request);
    const std::vector<i32> found = {request.lPageWidth,    request.lPageLength,     request.lTargetWidth,
                                    request.sOrientation,  request.bRotate180,      request.sResolution,
                                    request.sLayout,       request.sPageOrder,      request.sPosterSize,
                                    request.bBorders != 0, request.sPreviewControl, request.bCenterInFrame,
                                    request.bDeviceExtent, request.bColor,          request.sZoom,
                                    request.bNotCentered,  request.bFitZoom,        request.bWMOnePage};
    EXPECT_EQ(found, (std::vector<i32>{20320, 25400, 20320, 2, 1, 600, 4, 17, 0, 1, IDC_PREVIEW, 0, 1, 1,
                                       10000, 0, 0, 1}));
    EXPECT_EQ(request.pWatermark, &copy);
    PreviewChoice typed = choice;
    for (const auto& [lTyped, sZoom] :
         std::map<i32, i16>{{0, i16{0}}, {-7, i16{1}}, {0x7FFFFFFF, i16{10000}}}) {
        typed.lZoom = lTyped;
        RequestFromChoice(typed, {}, lists, &copy, &request);
        EXPECT_EQ(request.sZoom, sZoom);
    }
    const u16 ausDpi[] = {0, 300, 1200, 0, 0};
    for (i32 nRow = -1; nRow < 4; nRow++) {
        EXPECT_EQ(ResolutionOfRow(pModel.get(), nRow), ausDpi[nRow + 1]) << nRow;
    }
}

TEST_F(ChoiceTest, KnowsThePrintersLargestPaperAndItsLabel)
{
    for (const char* cText : {static_cast<const char*>(nullptr), "H", "Draft only", ""}) {
        builder.Set(offsetof(XpiModel, usPreviewLabel), cText ? builder.Text(cText) : i16{0});
        Load();
        PrinterCall call(hPrinter);
        XpiFile file = {};
        ASSERT_TRUE(OpenXpiPath(file, u"C:\\drv\\qa.xpi"));
        PreviewDevice device;
        DescribePreviewDevice(file, pModel.get(), 9, nullptr, &device);
        EXPECT_EQ(Ascii(device.wcLabel), cText ? cText : "M");
        EXPECT_EQ(device.bLabel, cText ? 1u : 0u);
        EXPECT_EQ(device.lMaxWidth, 2159);
        EXPECT_EQ(device.lMaxLength, 2970);
        EXPECT_EQ(device.lDefaultLength, 29700);
    }
}
