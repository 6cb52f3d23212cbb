/* The preview of a sheet that is open: pages win over the record, item by item, and text and picture say the same. */
#include "hosted/user_input.h"

#include <random>

#include "description/control_ids.h"
#include "sheet/preview_panel.h"
#include "support/sheet_machine.h"

namespace {

constexpr int LINES[] = {IDC_PREVIEW_LINE1, IDC_PREVIEW_LINE2, IDC_PREVIEW_LINE3, IDC_PREVIEW_LINE4,
                         IDC_PREVIEW_LINE5};

class PreviewPanelTest : public SheetTest {
  protected:
    void Open(const char* cSample, std::initializer_list<size_t> pages)
    {
        AddSample(cSample);
        DriverDevmode in = Defaults();
        OpenDocument(&in);
        record.dmColor = 2;
        for (size_t nPage : pages) {
            ASSERT_TRUE(ShowSheetPage(pSheet, nPage));
        }
    }

    /* Gives a list of a page these item data and selects a row. */
    static void Fill(HWND hPage, int nControl, const std::vector<i32>& values, int nSelected)
    {
        const bool bList = nControl == IDC_WATERMARKS_LIST;
        SendDlgItemMessageW(hPage, nControl, bList ? LB_RESETCONTENT : CB_RESETCONTENT, 0, 0);
        for (i32 lValue : values) {
            const LRESULT nRow = SendDlgItemMessageW(hPage, nControl, bList ? LB_ADDSTRING : CB_ADDSTRING, 0,
                                                     reinterpret_cast<LPARAM>(u"row"));
            SendDlgItemMessageW(hPage, nControl, bList ? LB_SETITEMDATA : CB_SETITEMDATA,
                                static_cast<WPARAM>(nRow), lValue);
        }
        SendDlgItemMessageW(hPage, nControl, bList ? LB_SETCURSEL : CB_SETCURSEL,
                            static_cast<WPARAM>(nSelected), 0);
    }
    static void Check(HWND hPage, int nControl, bool bChecked)
    {
        SendDlgItemMessageW(hPage, nControl, BM_SETCHECK, bChecked ? BST_CHECKED : BST_UNCHECKED, 0);
    }
    static void Type(HWND hPage, int nControl, const std::string& text)
    {
        SetDlgItemTextW(hPage, nControl, Widen(text).c_str());
    }

    /* The text panel after an update without painting, lines split by "|". */
    std::string Panel(size_t nPage)
    {
        UpdatePreview(Page(nPage), nullptr, Session(), 0);
        std::string text = Narrow(TextOf(Page(nPage), IDC_PREVIEW_SIZE));
        for (int nLine : LINES) {
            const std::string line = Narrow(TextOf(Page(nPage), nLine));
            text += line.empty() ? "" : "|" + line;
        }
        return text;
    }
};

} // namespace

TEST_F(PreviewPanelTest, FollowsTheRecordWhereNoPageTells)
{
    Open("T410A", {2});
    PrivateDevmode& part = record.rPrivate;
    record.dmPaperSize = 9;
    record.dmOrientation = 2;
    part.lPagesPerSheet = 2;
    part.sPosterGrowth = 3;
    EXPECT_EQ(Panel(2), "210 x 297 mm");
    EXPECT_EQ(GatherPreviewChoice(Session()).sPosterSize, 0);
    SendMessageW(Page(2), WM_COMMAND, MAKEWPARAM(IDC_UNIT, BN_CLICKED), 0);
    EXPECT_EQ(Panel(2), "8.27 x 11.69 in") << "a flip lasts as long as the paper";
    PaintWindows(Page(2));
    EXPECT_EQ(Panel(2), "8.27 x 11.69 in");
    part.sScale = 4;
    part.sScaleTarget = 1;
    EXPECT_EQ(Panel(2), "8.5 x 11 in|Scaled") << "the target's is shown";
    part.sScale = 0;
    record.dmCopies = 4;
    record.dmDuplex = 3;
    EXPECT_EQ(Panel(2), "210 x 297 mm|4 copies")
        << "another paper, its own unit; the sides are the Layout page's";
    SendDlgItemMessageW(Page(0), IDC_LAYOUT_TYPE, CB_RESETCONTENT, 0, 0);
    EXPECT_EQ(Panel(2), "210 x 297 mm|4 copies|Two sides, short edge") << "a page whose lists say nothing";
}

TEST_F(PreviewPanelTest, TakesWhatThePaperPageShows)
{
    Open("T410A", {1});
    record.rPrivate.sScale = 2;
    record.rPrivate.sScaleTarget = 150;
    Fill(Page(1), IDC_PAPER_SIZE, {9, 1}, 1);
    Type(Page(1), IDC_PAPER_COPIES, "-3");
    Type(Page(1), IDC_PAPER_ZOOM, "100");
    Check(Page(1), IDC_PAPER_COLLATE, true);
    EXPECT_EQ(Panel(1), "8.5 x 11 in|Scaled") << "the record's scaling stays until it is changed there";
    EXPECT_EQ(GatherPreviewChoice(Session()).lCopies, 1);
    EXPECT_EQ(GatherPreviewChoice(Session()).lZoom, 100);
    record.rPrivate.sScale = 0;
    EXPECT_EQ(Panel(1), "8.5 x 11 in");
    Type(Page(1), IDC_PAPER_ZOOM, "");
    Type(Page(1), IDC_PAPER_COPIES, "12");
    Check(Page(1), IDC_PAPER_CENTRE, true);
    EXPECT_EQ(Panel(1), "8.5 x 11 in|12 copies, collated|Scaled");
    const PreviewChoice choice = GatherPreviewChoice(Session());
    EXPECT_EQ(choice.lZoom, 0);
    EXPECT_TRUE(choice.bCentred);
    Check(Page(1), IDC_PAPER_REVERSE, true);
    Type(Page(1), IDC_PAPER_COPIES, "2");
    Type(Page(1), IDC_PAPER_ZOOM, "100");
    ASSERT_TRUE(ShowSheetPage(pSheet, 0));
    Fill(Page(0), IDC_LAYOUT_TYPE, {0, 1, 99}, 0);
    Check(Page(0), IDC_LAYOUT_PORTRAIT, true);
    for (const auto& [nRadio, cLine] : {std::pair{IDC_LAYOUT_ONE_SIDE, ""},
                                        {IDC_LAYOUT_LONG_EDGE, "|Two sides, long edge"},
                                        {IDC_LAYOUT_SHORT_EDGE, "|Two sides, short edge"}}) {
        CheckRadioButton(Page(0), IDC_LAYOUT_ONE_SIDE, IDC_LAYOUT_SHORT_EDGE, nRadio);
        EXPECT_EQ(Panel(0), std::string("8.5 x 11 in|2 copies, collated|Last page first") + cLine);
    }
    Fill(Page(0), IDC_LAYOUT_TYPE, {0, 1, 99}, 2);
    EXPECT_EQ(Panel(0), "8.5 x 11 in|Booklet|2 copies, collated|Last page first");
}

TEST_F(PreviewPanelTest, TakesWhatQualityAndWatermarkPagesShow)
{
    Open("IX300", {2, 3});
    HWND hQuality = Page(2), hMarks = Page(3);
    const XpiModel* pModel = Session()->pXpi.get();
    record.rPrivate.ulResolution = 77;
    record.rPrivate.ulColorMode = 0;
    SendDlgItemMessageW(hQuality, IDC_QUALITY_RESOLUTION, CB_RESETCONTENT, 0, 0);
    EXPECT_EQ(GatherPreviewChoice(Session()).usResolution, 77) << "no row, and the record tells";
    Fill(hQuality, IDC_QUALITY_RESOLUTION, {0, 0}, 1);
    EXPECT_EQ(GatherPreviewChoice(Session()).usResolution,
              ResolutionOfRow(pModel, 1) ? ResolutionOfRow(pModel, 1) : 77)
        << "the row itself, whatever its item data";
    for (u16 usColor : {u16{1}, u16{2}}) {
        record.dmColor = usColor;
        for (bool bColor : {false, true}) {
            Check(hQuality, IDC_QUALITY_COLOR, bColor);
            Check(hQuality, IDC_QUALITY_MONOCHROME, !bColor);
            EXPECT_EQ(GatherPreviewChoice(Session()).bColor, bColor);
        }
    }
    Fill(hMarks, IDC_WATERMARKS_LIST, {-1, 0}, 0);
    EXPECT_EQ(GatherPreviewChoice(Session()).lWatermark, -1);
    Fill(hMarks, IDC_WATERMARKS_LIST, {-1, 0}, 1);
    Check(hMarks, IDC_WATERMARKS_FIRST_PAGE, true);
    EXPECT_EQ(GatherPreviewChoice(Session()).lWatermark, 0) << "its item data, not its row";
    EXPECT_EQ(GatherPreviewChoice(Session()).bWMOnePage, 1);
}

/* Random states of the Layout and the Paper page: the picture is asked for with what the controls show. The lines for a
   choice are held by the tests of the preview. */
TEST_F(PreviewPanelTest, ThePictureShowsTheStateOfTheControls)
{
    std::mt19937 random(6105);
    const auto Any = [&](int nLimit) { return static_cast<int>(random() % static_cast<u32>(nLimit)); };
    for (const char* cSample : {"T410A", "QP5", "QPS"}) {
        Open(cSample, {0, 1});
        HWND hLayout = Page(0), hPaper = Page(1);
        for (int i = 0; i < 150; i++) {
            const int nType = std::array{0, 1, 99}[size_t(Any(3))];
            const int nPages = std::array{1, 2, 4, 9, 16}[size_t(Any(5))], nZoom = Any(2) ? 100 : 60;
            const bool bPortrait = Any(2), bBorders = Any(2), bBack = Any(2);
            record.dmColor = static_cast<u16>(1 + Any(2));
            record.rPrivate.ulColorMode = 0;
            Fill(hLayout, IDC_LAYOUT_TYPE, {0, 1, 99}, nType == 99 ? 2 : nType);
            Fill(hLayout, IDC_LAYOUT_PAGES, {nPages}, 0);
            Fill(hLayout, IDC_LAYOUT_ORDER, {0, 17}, Any(2));
            Fill(hLayout, IDC_LAYOUT_POSTER, {0, 2, 3}, 2);
            Check(hLayout, IDC_LAYOUT_PORTRAIT, bPortrait);
            Check(hLayout, IDC_LAYOUT_LANDSCAPE, !bPortrait);
            Check(hLayout, IDC_LAYOUT_BORDERS, bBorders);
            Check(hLayout, IDC_LAYOUT_BIND_RIGHT, bBack);
            Fill(hPaper, IDC_PAPER_SIZE, {9, 1}, 0);
            Type(hPaper, IDC_PAPER_ZOOM, std::to_string(nZoom));
            ASSERT_EQ(Panel(1), Panel(0)) << "all pages say the same";

            const PreviewLists lists = SessionPreviewLists(Session());
            const PreviewChoice choice = GatherPreviewChoice(Session());
            PreviewRequest request;
            WatermarkEntry copy;
            RequestFromChoice(choice, FindPreviewSizes(lists, choice), lists, &copy, &request);
            ASSERT_EQ(request.sLayout, nType == 0 ? nPages : nType);
            ASSERT_EQ(request.sPosterSize, nType == 1 ? 3 : 0);
            ASSERT_EQ(request.sPageOrder == 1, nType == 99 && bBack);
            ASSERT_EQ(request.sOrientation, bPortrait ? 1 : 0);
            ASSERT_EQ(request.bBorders, bBorders);
            ASSERT_EQ(request.sZoom, nZoom);
            ASSERT_EQ(request.bColor, record.dmColor == 2);
            if (i % 10 == 0) {
                InvalidateRect(hLayout, nullptr, 0);
                PaintWindows(hLayout);
            }
        }
        Close();
        EXPECT_EQ(CountLive().nGdiObjects, 0) << "what the pictures were drawn with";
    }
}
