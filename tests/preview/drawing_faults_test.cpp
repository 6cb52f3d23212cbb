/* The preview's drawing when something fails, and on files that are no good bitmaps. */
#include <algorithm>
#include <filesystem>
#include <random>
#include <set>

#include <unistd.h>

#include "hosted/drawing/drawing_state.h"
#include "preview/picture_cases.h"
#include "support/sample_machine.h"
#include "support/sweep.h"

namespace {

class DrawingFaults : public MachineTest {
  protected:
    void SetUp() override
    {
        MachineTest::SetUp();
        PutFile(IMAGE, FourColors(24));
        PutFile(LARGE_IMAGE, Large(0x4000 / 128));
    }
    /* 128 pixels wide, each row of another colour. */
    static Bytes Large(i32 lRows)
    {
        return BitmapFile({128, lRows, 24},
                          [](int x, int y) { return static_cast<u32>(x * 2 + y * 0x10100); });
    }

    static constexpr const WCHAR* IMAGE = u"C:\\Images\\Four.bmp";
    static constexpr const WCHAR* LARGE_IMAGE = u"C:\\Images\\Large.bmp";

    /* Together they walk every step of a picture. */
    static std::vector<PictureCase> Sheets()
    {
        std::vector<PictureCase> sheets = {CaseOf("page", ""),
                                           CaseOf("envelope", "envelope 1"),
                                           CaseOf("dividers", "layout 4"),
                                           CaseOf("image", "layout 2 borders 1 one-page 1 image 9 30", IMAGE),
                                           CaseOf("tiles", "image 1 10", IMAGE),
                                           CaseOf("solid", "text Draft 0"),
                                           CaseOf("outline", "text No 1"),
                                           CaseOf("poster", "poster 2 turned 1"),
                                           CaseOf("shrunk", "image 0 100", LARGE_IMAGE)};
        for (PictureCase& sheet : sheets) {
            sheet.rFrame = {12, 20, 82, 90}; /* small, since there are so many */
        }
        return sheets;
    }
};

/* What a canvas holds behind a picture that was given up: nothing, or the empty frame. */
bool IsUntransferred(const Picture& picture, const RECT& rFrame)
{
    Picture framed = {CANVAS_WIDTH, CANVAS_HEIGHT,
                      std::vector<COLORREF>(picture.pixels.size(), CANVAS_COLOR)};
    const bool bBare = picture == framed;
    Fill(&framed, rFrame, FACE_COLOR);
    return bBare || picture == framed;
}

/* When one of these fails, what it would have drawn is missing; when any other does, a picture or its watermark is. */
bool LeavesGaps(CallId call)
{
    static const std::set<CallId> gaps = {
        ANY_CALL, CALL_LineTo, CALL_MoveToEx, CALL_Pie, CALL_PolyBezier, CALL_Rectangle, CALL_StretchBlt,
        CALL_DrawTextW, CALL_ExtTextOutW, CALL_SetBkMode, CALL_SetTextColor, CALL_SetTextAlign,
        /* Letters in front of the one that fails stay, and a measure that fails is 0. */
        CALL_HeapAlloc, CALL_GetProcessHeap, CALL_GetGlyphOutlineW, CALL_GetFontLanguageInfo,
        CALL_GetCharacterPlacementW, CALL_GetTextExtentPointW, CALL_GetTextExtentPoint32W};
    return gaps.count(call) == 1;
}

struct Held {
    HPEN hPen;
    HBRUSH hBrush;
    HFONT hFont;
    bool operator==(const Held&) const = default;
};
Held HeldBy(HDC hDc)
{
    const DrawingContext* pContext = FindContext(hDc);
    return {pContext->hPen, pContext->hBrush, pContext->hFont};
}

struct FaultyPaint {
    int nHit = 0;
    std::string fault;
    bool bGivenUp = false;
};

/* One painting with a fault, and a good one behind it with the same objects. */
FaultyPaint PaintWithFault(const PictureCase& sheet, const Picture& whole, const Picture& blank, CallId call,
                           int nTh, FaultMode mode)
{
    FaultyPaint paint;
    paint.fault = HoldsNothing([&] {
        std::string fault;
        PreviewTools tools = {};
        {
            const Canvas canvas(CANVAS_WIDTH, CANVAS_HEIGHT, CANVAS_COLOR);
            const Held before = HeldBy(canvas.Dc());
            FailCall(call, nTh, mode);
            Compose(tools, canvas.Dc(), sheet);
            paint.nHit = StopFaults();
            if (call != CALL_SelectObject && call != ANY_CALL && !(HeldBy(canvas.Dc()) == before)) {
                fault += "the page's context holds other objects; ";
            }
            const Picture got = Shown(canvas);
            paint.bGivenUp = IsUntransferred(got, sheet.rFrame);
            if (!paint.bGivenUp && got != whole && got != blank && !LeavesGaps(call)) {
                fault += "a part of the picture; ";
            }
        }
        const Canvas canvas(CANVAS_WIDTH, CANVAS_HEIGHT, CANVAS_COLOR);
        Compose(tools, canvas.Dc(), sheet);
        const PictureDifference apart = Compare(whole, Shown(canvas));
        if (apart.nPixels) {
            fault += "the next picture differs in " + std::to_string(apart.nPixels) + " pixels from " +
                     std::to_string(apart.rWhere.left) + "," + std::to_string(apart.rWhere.top) + "; ";
        }
        ReleasePreviewTools(&tools);
        return fault;
    });
    return paint;
}

TEST_F(DrawingFaults, AFailingObjectLeavesNoPartOfAPictureAndNothingBehind)
{
    int nFaults = 0, nGivenUp = 0;
    for (const PictureCase& sheet : Sheets()) {
        const Picture whole = DrawCase(sheet);
        PictureCase plain = sheet;
        plain.watermark = {};
        const Picture blank = DrawCase(plain);
        ASSERT_FALSE(IsUntransferred(blank, sheet.rFrame));
        ASSERT_EQ(whole == blank, sheet.watermark.WMType == ENTRY_FREE) << sheet.name;
        for (int nCall = ANY_CALL; nCall < CALL_COUNT; nCall++) {
            const CallId call = static_cast<CallId>(nCall);
            /* That a colour cannot be had is not to be seen: it is black. And a contour's font, which only its own call
               knows, is lost when the context does not let go of it. */
            const bool bContours = sheet.watermark.WMType == ENTRY_TEXT && sheet.watermark.WMOutline;
            if (call == CALL_GetSysColor || (bContours && (call == ANY_CALL || call == CALL_SelectObject))) {
                continue;
            }
            for (const FaultMode mode : {FAIL_ONCE, FAIL_FROM_THERE}) {
                for (int n = call == ANY_CALL ? 2 : 1;; n++) {
                    const FaultyPaint paint = PaintWithFault(sheet, whole, blank, call, n, mode);
                    ASSERT_EQ(paint.fault, "") << sheet.name << ": " << CallName(call) << " number " << n
                                               << (mode == FAIL_ONCE ? "" : " and all behind it");
                    nFaults += paint.nHit;
                    nGivenUp += paint.bGivenUp;
                    if (!paint.nHit) {
                        break;
                    }
                }
            }
        }
    }
    EXPECT_GT(nFaults, 1000);
    EXPECT_GT(nGivenUp, 100);
    std::printf("%d faults, %d pictures given up\n", nFaults, nGivenUp);
}

TEST_F(DrawingFaults, ObjectsAreMadeOnceAndTheLogosFontAtEachMockPage)
{
    PreviewTools tools = {};
    const Canvas canvas(CANVAS_WIDTH, CANVAS_HEIGHT, CANVAS_COLOR);
    const PictureCase sheet = CaseOf("", "image 1 50 poster 2", IMAGE);
    Compose(tools, canvas.Dc(), sheet);
    BITMAP surface = {};
    GetObjectW(tools.hPreviewBitmap, sizeof surface, &surface);
    EXPECT_EQ(std::pair(surface.bmWidth, surface.bmHeight), (std::pair<LONG, LONG>(950, 1350)));
    const int nObjects = CountLive().nGdiObjects, nContexts = CountLive().nContexts;
    ResetCallCounts();
    for (int i = 0; i < 20; i++) {
        Compose(tools, canvas.Dc(), sheet);
    }
    EXPECT_EQ(CountLive().nGdiObjects, nObjects);
    EXPECT_EQ(CountLive().nContexts, nContexts);
    EXPECT_EQ(CallCount(CALL_CreatePen) + CallCount(CALL_ExtCreatePen) + CallCount(CALL_CreateSolidBrush) +
                  CallCount(CALL_CreateCompatibleDC) + CallCount(CALL_CreateCompatibleBitmap),
              0);
    EXPECT_EQ(CallCount(CALL_CreateFontIndirectW), 20);
    EXPECT_EQ(CallCount(CALL_CreateDIBitmap), 20);
    ReleasePreviewTools(&tools);
}

/* Sheets that follow a larger picture look as if they were the first, whole, whatever room that one left. */
TEST_F(DrawingFaults, NoSheetIsCutByTheOneBeforeIt)
{
    for (const LONG lSide : {159, 199, 239, 318, 477}) {
        /* Enlarged; A3, flat; A3; one that grows out of its frame; a strip. */
        std::vector<PictureCase> sheets = {CaseOf("", "layout 0 zoom 400 corner 1"),
                                           CaseOf("", "layout 0 page 29700 42000 orientation 2"),
                                           CaseOf("", "layout 0 page 29700 42000"),
                                           CaseOf("", "layout 0 page 21000 35560 largest 3200 2970"),
                                           CaseOf("", "layout 0 page 800 29700"),
                                           CaseOf("", "layout 0 page 29700 42000")};
        for (const size_t nFirst : {size_t{0}, size_t{4}}) {
            PreviewTools tools = {};
            for (size_t i = nFirst; i < sheets.size(); i++) {
                sheets[i].rFrame = {5, 90, 5 + lSide, 90 + lSide};
                const Canvas canvas(487, 577, CANVAS_COLOR), fresh(487, 577, CANVAS_COLOR);
                Compose(tools, canvas.Dc(), sheets[i]);
                PreviewTools own = {};
                Compose(own, fresh.Dc(), sheets[i]);
                ReleasePreviewTools(&own);
                EXPECT_EQ(Compare(fresh.Pixels(), canvas.Pixels()).nPixels, 0) << lSide << ", sheet " << i;
            }
            ReleasePreviewTools(&tools);
        }
    }
}

TEST_F(DrawingFaults, OutlinesAreLinesOfOnePixel)
{
    PictureCase sheet = CaseOf("", "layout 0 text I 1 size 400");
    sheet.watermark.WMAngle = 0;
    WideText(u"DejaVu Sans\0\0\0\0", 15).copy(sheet.watermark.WMFace, 15);
    const Picture got = DrawCase(sheet), blank = DrawCase(CaseOf("", "layout 0"));
    const auto ink = [&](int x, int y) { return got.At(x, y) != blank.At(x, y); };
    int nInk = 0, nBlocks = 0;
    for (int y = 0; y + 1 < got.nHeight; y++) {
        for (int x = 0; x + 1 < got.nWidth; x++) {
            nInk += ink(x, y);
            nBlocks += ink(x, y) && ink(x + 1, y) && ink(x, y + 1) && ink(x + 1, y + 1);
        }
    }
    EXPECT_GT(nInk, 50);
    EXPECT_EQ(nBlocks, 0);
}

/* ---- files ---- */

class HostileBitmaps : public DrawingFaults {
  protected:
    PictureCase Sheet() { return CaseOf("", "layout 0 frame 12 20 60 68 image 0 20", IMAGE); }
    Picture Draw(const Bytes& file)
    {
        PutFile(IMAGE, file);
        return DrawCase(Sheet());
    }
    Picture Blank() { return DrawCase(CaseOf("", "layout 0 frame 12 20 60 68")); }
};

/* Fields of the headers at the ends of their ranges, alone and in pairs: within bounds of time and memory, and a sheet
   comes out of it every time. */
TEST_F(HostileBitmaps, HeaderFieldsAtTheEndsOfTheirRanges)
{
    constexpr u32 aulValues[] = {0,      1,      2,       40,         54,         0x7FFF,
                                 0x8000, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    const auto cbOf = [](size_t nField) { return nField == 0 || nField == 26 || nField == 28 ? 2u : 4u; };
    const Picture blank = Blank();
    std::string faults;
    int nShown = 0;
    for (const u16 usBits : {u16{1}, u16{8}, u16{24}}) {
        ASSERT_FALSE(Draw(FourColors(usBits)) == blank);
        for (const size_t nOne : {0, 2, 10, 14, 18, 22, 26, 28, 30, 34, 46, 50}) {
            for (const u32 ulOne : aulValues) {
                for (const size_t nOther : {18, 22, 28}) {
                    Bytes file = FourColors(usBits);
                    std::memcpy(file.data() + nOther, &aulValues[(nOne + ulOne) % 12], cbOf(nOther));
                    std::memcpy(file.data() + nOne, &ulOne, cbOf(nOne));
                    faults += WithinBounds([&] { nShown += Draw(file) != blank; });
                }
            }
        }
    }
    EXPECT_EQ(faults, "");
    EXPECT_GT(nShown, 0);
}

TEST_F(HostileBitmaps, AFileThatEndsEarlyShowsNothing)
{
    const Bytes good = FourColors(24);
    const Picture blank = Blank();
    for (size_t cb = 0; cb < good.size(); cb += cb < 60 ? 1 : 179) {
        EXPECT_TRUE(Draw(Bytes(good.begin(), good.begin() + static_cast<long>(cb))) == blank) << cb;
    }
    Bytes longer = good;
    longer.push_back(0);
    EXPECT_FALSE(Draw(longer) == blank);
    longer.pop_back();
    Poke(&longer, 22, i32{-40}); /* rows from the top are not read */
    EXPECT_TRUE(Draw(longer) == blank);
    PutFile(IMAGE, good);
    std::filesystem::resize_file(HostPath(IMAGE), 0x10000000); /* nor what is larger than any page */
    EXPECT_FALSE(DrawCase(Sheet()) == blank);
    std::filesystem::resize_file(HostPath(IMAGE), 0x10000001);
    EXPECT_TRUE(DrawCase(Sheet()) == blank);
}

TEST_F(HostileBitmaps, AFileIsReadOnceAPaintAndAnewForTheNext)
{
    const PictureCase sheet = CaseOf("", "layout 25 image 0 50", IMAGE);
    PreviewTools tools = {};
    const Canvas canvas(CANVAS_WIDTH, CANVAS_HEIGHT, CANVAS_COLOR);
    PutFile(IMAGE, FourColors(24));
    for (int i = 0; i < 2; i++) {
        ResetCallCounts();
        Compose(tools, canvas.Dc(), sheet);
        EXPECT_EQ(CallCount(CALL_CreateFileW), 1);
        EXPECT_EQ(CallCount(CALL_StretchBlt), 25);
    }
    const Picture four = Shown(canvas);
    PutFile(IMAGE, BitmapFile({60, 40, 24}));
    Compose(tools, canvas.Dc(), sheet);
    EXPECT_FALSE(Shown(canvas) == four);
    ReleasePreviewTools(&tools);
}

TEST_F(HostileBitmaps, OnlyFilesOfADiskAreRead)
{
    const Picture blank = Blank();
    PictureCase sheet = Sheet();
    ASSERT_EQ(symlink("/dev/zero", HostPath(u"C:\\Images\\Zero.bmp").c_str()), 0);
    for (const WCHAR* wcName : {u"C:\\Images\\Zero.bmp", u"C:\\Images", u"C:\\Images\\None.bmp", u"Four.bmp",
                                u"NUL", u"", u"\\\\.\\pipe\\x", u"C:\\Images\\F*.bmp"}) {
        UseImage(sheet, wcName, 0);
        EXPECT_TRUE(DrawCase(sheet) == blank) << Narrow(wcName);
    }
    std::fill_n(sheet.watermark.WMImageName, PATH_CHARS, u'x'); /* without its end */
    EXPECT_TRUE(DrawCase(sheet) == blank);
    EXPECT_EQ(CountLive().nFiles, 0);
}

/* What the calls tell is not believed. */
TEST_F(HostileBitmaps, LiesDoNoHarm)
{
    PictureCase labelled = SheetCase("", 1);
    std::fill_n(labelled.device.wcLabel, std::size(labelled.device.wcLabel), u'L');
    labelled.device.bLabel = 1;
    for (int nKind = LIE_SHORT; nKind < LIE_KIND_COUNT; nKind++) {
        TellLies(static_cast<LieKind>(nKind));
        EXPECT_EQ(WithinBounds([&] {
                      DrawCase(Sheet());
                      DrawCase(SheetCase("", 1));
                      DrawCase(labelled);
                  }),
                  "")
            << nKind;
        TellLies(LIE_NONE);
    }
}

/* An image that is shrunk once gives the pixels that each cell and each tile would take from the image itself, also at
   the edges; and a great one in many tiny tiles holds nothing up. */
TEST_F(HostileBitmaps, AShrunkImageGivesTheSamePixels)
{
    for (const char* cLayout : {"layout 0 ", "layout 4 ", "layout 25 "}) {
        for (const char* cImage : {"image 0 60", "image 1 60", "image 3 60"}) {
            /* Some beyond the edge. */
            const PictureCase sheet = CaseOf("", std::string(cLayout) + cImage + " at 4000 0", LARGE_IMAGE);
            PutFile(LARGE_IMAGE, Large(128));
            const Picture shrunk = DrawCase(sheet);
            FailCall(CALL_CreateCompatibleBitmap, 3, FAIL_FROM_THERE); /* behind canvas and surface */
            const Picture direct = DrawCase(sheet);
            EXPECT_GT(StopFaults(), 0);
            EXPECT_EQ(Compare(direct, shrunk).nPixels, 0) << cLayout << cImage;
        }
    }
    PutFile(LARGE_IMAGE, BitmapFile({1600, 1600, 1}));
    EXPECT_EQ(WithinBounds([&] { DrawCase(CaseOf("", "layout 0 image 1 16384", LARGE_IMAGE)); }), "");
}

/* Requests that no page makes. */
TEST_F(HostileBitmaps, RequestsOutOfAllBounds)
{
    std::mt19937 random(7);
    constexpr i32 alExtremes[] = {0,     1,     -1,     2,       99,         100,      2540,
                                  21000, 35560, 0x7FFF, -0x8000, 0x7FFFFFFF, INT32_MIN};
    std::string faults;
    const auto poke = [&](void* pInto, size_t nFrom, size_t nTo, int nTimes) {
        for (int i = 0; i < nTimes; i++) {
            std::memcpy(static_cast<u8*>(pInto) + nFrom +
                            random() % ((nTo - nFrom) / sizeof(i32)) * sizeof(i32),
                        &alExtremes[random() % std::size(alExtremes)], sizeof(i32));
        }
    };
    for (int i = 0; i < 900; i++) {
        PictureCase sheet = CaseOf("", i % 3 ? "image 1 50" : "", IMAGE);
        poke(&sheet.request, 0, sizeof sheet.request, 8);
        if (i % 3) {
            poke(&sheet.watermark, offsetof(WatermarkEntry, WMScaleX), offsetof(WatermarkEntry, WMWidth), 3);
        }
        sheet.rFrame = {0, 0, static_cast<LONG>(random() % 200), static_cast<LONG>(random() % 200)};
        faults += WithinBounds([&] { DrawCase(sheet); });
    }
    EXPECT_EQ(faults, "");
}

} // namespace
