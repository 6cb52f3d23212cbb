/* The merge through the document property calls: which source is taken, what is written, and each step of the
   fitting, held against the whole record. */
#include "document/merge.h"

#include <atomic>
#include <functional>
#include <thread>

#include "document/defaults.h"
#include "entry/exports.h"
#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "support/well_formed.h"

namespace {

using Change = std::function<void(DriverDevmode&)>;

struct MergeRow {
    const char* cName;
    Change in;     /* what the application changed in a good record */
    Change merged; /* how the result differs from the good record's */
};

constexpr DWORD UPDATE = 1, COPY = 2, MODIFY = 8;

void SetOverlay(DriverDevmode& record, const WCHAR* wcFile)
{
    record.rPrivate.sOverlay = 1;
    CopyWide(record.rPrivate.tcOverlayDir, 160, u"C:\\ov");
    CopyWide(record.rPrivate.wcOverlayFile, 13, wcFile);
    CopyWide(record.rPrivate.wcWMString, 64, u"text");
}

void SetBitmap(DriverDevmode& record, const WCHAR* wcFile)
{
    record.rPrivate.ulWMType = 36;
    record.rPrivate.sWMResolution = 600;
    record.rPrivate.ulWMWidth = 10;
    record.rPrivate.ulWMLength = 10;
    CopyWide(record.rPrivate.wcWMOverlayName, 96, wcFile);
}

const MergeRow aRows[] = {
    {"a companion paper scales to it",
     [](DriverDevmode& r) {
         r.dmPaperSize = 8;
         r.rPrivate.sScale = 66;
         r.rPrivate.sScaleTarget = 150;
     },
     [](DriverDevmode& r) {
         r.dmPaperSize = 8;
         r.dmPaperWidth = 2970;
         r.dmPaperLength = 4200;
         r.rPrivate.sScale = 33;
         r.rPrivate.sScaleTarget = 9;
         r.rPrivate.sTargetWidth = 2100;
         r.rPrivate.sTargetLength = 2970;
     }},
    {"but not what is fitted to a paper already",
     [](DriverDevmode& r) {
         r.dmPaperSize = 8;
         r.rPrivate.sScale = 1;
         r.rPrivate.sScaleTarget = 1;
         r.rPrivate.sTargetWidth = 2159;
         r.rPrivate.sTargetLength = 2794;
     },
     [](DriverDevmode& r) {
         r.dmPaperSize = 8;
         r.dmPaperWidth = 2970;
         r.dmPaperLength = 4200;
         r.rPrivate.sScale = 1;
         r.rPrivate.sScaleTarget = 1;
         r.rPrivate.sTargetWidth = 2159;
         r.rPrivate.sTargetLength = 2794;
     }},
    {"sizes follow the code",
     [](DriverDevmode& r) {
         r.dmPaperSize = 9;
         r.dmPaperWidth = 1000;
     },
     [](DriverDevmode& r) {
         r.dmPaperSize = 9;
         r.dmPaperWidth = 2100;
         r.dmPaperLength = 2970;
     }},
    {"a code of no paper that is told of", [](DriverDevmode& r) { r.dmPaperSize = 300; },
     [](DriverDevmode& r) { r.dmPaperSize = 300; }},
    {"an own size stays",
     [](DriverDevmode& r) {
         r.dmPaperSize = 256;
         r.dmPaperWidth = 1000;
         r.dmPaperLength = 2000;
     },
     [](DriverDevmode& r) {
         r.dmPaperSize = 256;
         r.dmPaperWidth = 1000;
         r.dmPaperLength = 2000;
     }},
    {"unless a side is missing",
     [](DriverDevmode& r) {
         r.dmPaperSize = 256;
         r.dmDefaultSource = 1028;
         r.dmPaperLength = 0;
     },
     [](DriverDevmode& r) { r.dmDefaultSource = 1028; }},
    {"a medium as source", [](DriverDevmode& r) { r.dmDefaultSource = 2001; },
     [](DriverDevmode& r) {
         r.dmFields |= 0x02000000;
         r.dmDefaultSource = 2001;
         r.dmMediaType = 300;
         r.rPrivate.sMediaTypeIndex = 2;
     }},
    {"monochrome has no colour commands",
     [](DriverDevmode& r) {
         r.dmColor = 1;
         r.dmICMMethod = 2;
         for (size_t nAt = 1854 - 24; nAt < 1854; nAt += 2) {
             Put(&r, {nAt, 2, 0});
         }
         r.rPrivate.sTextHdrOffset = 3;
         r.rPrivate.sTextHdrLength = 4;
         r.rPrivate.sGraphicsLength = 5;
         r.rPrivate.sGenColorCmdCount = 1;
         r.rPrivate.ColorCommand[0] = {7, 8};
     },
     [](DriverDevmode& r) {
         r.dmColor = 1;
         r.dmICMMethod = 1;
         r.rPrivate.ColorCommand[0] = {7, 8};
     }},
    {"600 to 300",
     [](DriverDevmode& r) {
         r.dmPrintQuality = 300;
         r.dmYResolution = 300;
         r.rPrivate.ptlWMPosition.x = -101;
         r.rPrivate.ptlWMPosition.y = 0x7FFFFFFF;
         r.rPrivate.usCenterMargin = 7;
         r.rPrivate.usOuterMargin = 0xFFFF;
     },
     [](DriverDevmode& r) {
         r.dmPrintQuality = 300;
         r.dmYResolution = 300;
         r.rPrivate.sResolution = 0;
         r.rPrivate.ulResolution = 300;
         r.rPrivate.ptlWMPosition.x = -50;
         r.rPrivate.ptlWMPosition.y = 0x3FFFFFFF;
         r.rPrivate.usCenterMargin = 3;
         r.rPrivate.usOuterMargin = 0x7FFF;
     }},
    {"another unit of the pixels, the row being right",
     [](DriverDevmode& r) { r.rPrivate.ulResolution = 77; },
     [](DriverDevmode& r) { r.rPrivate.ulResolution = 77; }},
    {"no unit of the pixels",
     [](DriverDevmode& r) {
         r.dmPrintQuality = 1200;
         r.rPrivate.ulResolution = 0;
         r.rPrivate.usCenterMargin = 7;
     },
     [](DriverDevmode& r) {
         r.dmPrintQuality = 1200;
         r.rPrivate.sResolution = 2;
         r.rPrivate.ulResolution = 1200;
         r.rPrivate.usCenterMargin = 7;
     }},
    {"two-sided stays", [](DriverDevmode& r) { r.dmDuplex = 3; }, [](DriverDevmode& r) { r.dmDuplex = 3; }},
    {"two-sided without its bit",
     [](DriverDevmode& r) {
         r.dmFields &= ~0x1000u;
         r.dmDuplex = 3;
     },
     [](DriverDevmode&) {}},
    {"an overlay that is there", [](DriverDevmode& r) { SetOverlay(r, u"A.OVL"); },
     [](DriverDevmode& r) { CopyWide(r.rPrivate.tcOverlayDir, 160, u"C:\\ov"); }},
    {"an overlay to be made", [](DriverDevmode& r) { SetOverlay(r, u"B.OVL"); },
     [](DriverDevmode& r) { SetOverlay(r, u"B.OVL"); }},
    {"an overlay without a name", [](DriverDevmode& r) { SetOverlay(r, u""); },
     [](DriverDevmode& r) { SetOverlay(r, u""); }},
    {"a watermark in colour", [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\mono.wm"); },
     [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\color.wm"); }},
    {"a watermark without colour",
     [](DriverDevmode& r) {
         r.dmColor = 1;
         SetBitmap(r, u"C:\\w\\color.wm");
     },
     [](DriverDevmode& r) {
         r.dmColor = 1;
         r.dmICMMethod = 1;
         SetBitmap(r, u"C:\\w\\mono.wm");
     }},
    {"a watermark without a file for that colour", [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\only.wm"); },
     [](DriverDevmode& r) {
         SetBitmap(r, u"");
         r.rPrivate.ulWMType = 0;
     }},
    {"a watermark that is gone", [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\other.wm"); },
     [](DriverDevmode& r) {
         SetBitmap(r, u"C:\\w\\other.wm");
         r.rPrivate.ulWMType = 0;
     }},
    {"the one-piece form",
     [](DriverDevmode& r) {
         r.dmSize = 4088;
         r.dmDriverExtra = 0;
     },
     [](DriverDevmode&) {}},
};

} // namespace

class MergeTest : public CheckTest {
  protected:
    void Use(u16 usKind, u16 usClass, u32 ulOptions, bool bCollate = true, u32 ulFeatures = 0)
    {
        DescriptionBuilder b = CheckModel(usKind, usClass);
        b.Table<PaperRow>(8, {{1, 1, 2159, 2794, 0, 0, -1, 0, ""},
                              {1, 8, 2970, 4200, 1, 0, -1, 9, ""},
                              {1, 9, 2100, 2970, 1, 0, -1, 0, ""},
                              {}});
        b.Set<u32>(216, ulFeatures);
        if (bCollate) {
            b.Set<u16>(184, b.Command("@COLLATE"));
        }
        UseModel(b);
        const u32 aInfo[4] = {0, 0, ulOptions, 0};
        const u8* pInfo = reinterpret_cast<const u8*>(aInfo);
        SetPrinterValue(wcPrinter, u"DeviceInfo", REG_BINARY, Bytes(pInfo, pInfo + sizeof aInfo));
        SetPrinterText(wcPrinter, u"Settings", u"USER.EXT");
        PutFile(u"C:\\Users\\worker\\Application Data\\Corvantis Optics\\Test Driver\\USER.EXT",
                "[Watermarks]\r\nNumWatermarks=2\r\n"
                "WMType0=2\r\nWMString0=a\r\nWMImageName0=C:\\w\\a.bmp\r\nWMFileName0=C:\\w\\mono.wm\r\n"
                "WMColorFile0=C:\\w\\color.wm\r\nWMResolution0=600\r\nWMWidth0=10\r\nWMHeight0=10\r\n"
                "WMType1=2\r\nWMString1=b\r\nWMImageName1=C:\\w\\b.bmp\r\nWMFileName1=C:\\w\\only.wm\r\n"
                "WMResolution1=600\r\nWMWidth1=10\r\nWMHeight1=10\r\n");
        PutFile(u"C:\\ov\\A.OVL", "overlay");
        good.dmDuplex = ulOptions & 1;
    }

    LONG Call(DriverDevmode* pIn, void* pOut, DWORD dwMode, DWORD cbOut = RECORD_SIZE)
    {
        DOCUMENTPROPERTYHEADER header = {48,
                                         0,
                                         hPrinter,
                                         wcPrinter.data(),
                                         reinterpret_cast<PDEVMODEW>(pIn),
                                         static_cast<PDEVMODEW>(pOut),
                                         cbOut,
                                         dwMode};
        LONG lResult = DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
        cbTold = header.cbOut;
        return lResult;
    }

    DriverDevmode Merged(DriverDevmode in, DWORD dwMode = MODIFY | COPY)
    {
        DriverDevmode out;
        std::memset(static_cast<void*>(&out), 0x77, sizeof out);
        EXPECT_EQ(Call(&in, &out, dwMode), 1);
        return out;
    }

    DriverDevmode Changed(DriverDevmode record, const Change& change)
    {
        change(record);
        return record;
    }

    static DriverDevmode Filled()
    {
        DriverDevmode record;
        std::memset(static_cast<void*>(&record), 0x77, sizeof record);
        return record;
    }

    DWORD cbTold = 0;
};

TEST_F(MergeTest, EachStepOnAColourPrinterWithEverything)
{
    Use(KIND_PCL6, CLASS_COLOR, 3);
    DriverDevmode base = Merged(good);
    EXPECT_EQ(FirstDifference(base, Changed(good,
                                            [](DriverDevmode& r) {
                                                r.dmFields &= ~0x02000000u;
                                                std::memcpy(r.rPrivate.cCollatePJL, "@COLLATE", 9);
                                            })),
              -1);
    for (const MergeRow& row : aRows) {
        DriverDevmode in = Changed(good, row.in);
        for (DWORD dwMode : {MODIFY | COPY, MODIFY | UPDATE, MODIFY | COPY | UPDATE}) {
            EXPECT_EQ(FirstDifference(Merged(in, dwMode), Changed(base, row.merged)), -1)
                << row.cName << ", first differing byte";
        }
        DriverDevmode merged = Merged(in);
        EXPECT_EQ(FirstDifference(Merged(merged), merged), -1) << row.cName << ": settled is settled";
    }
}

TEST_F(MergeTest, WhatAPrinterDoesNotHave)
{
    struct {
        const char* cName;
        u16 usKind, usClass;
        u32 ulOptions;
        bool bCollate;
        Change in, merged; /* both from the good record */
    } const aModels[] = {
        {"no unit, no disk", KIND_PCL6, 1, 0, true,
         [](DriverDevmode& r) {
             r.dmDuplex = 2;
             r.rPrivate.cCollatePJL[0] = 'x';
         },
         [](DriverDevmode& r) {
             r.dmFields &= ~0x1000u;
             r.dmDuplex = 0;
             r.rPrivate.cCollatePJL[0] = 0;
         }},
        {"no command for collation", KIND_PCL5, 1, 1, false,
         [](DriverDevmode& r) { r.rPrivate.cCollatePJL[0] = 'x'; },
         [](DriverDevmode& r) { r.rPrivate.cCollatePJL[0] = 'x'; }},
        {"no colour", KIND_PCL6, 1, 1, false,
         [](DriverDevmode& r) {
             r.dmFields |= 0x03800000;
             r.dmICMMethod = 2;
             r.dmICMIntent = 3;
             r.rPrivate.sTextHdrLength = 4;
             r.rPrivate.sGenColorCmdCount = 1;
             SetBitmap(r, u"C:\\w\\other.wm");
         },
         [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\other.wm"); }},
        {"told as colour", KIND_PCL6, CLASS_TOLD_COLOR, 1, false,
         [](DriverDevmode& r) {
             r.dmMediaType = 300;
             SetBitmap(r, u"C:\\w\\mono.wm");
         },
         [](DriverDevmode& r) {
             r.dmFields |= 0x02000800;
             r.dmColor = 2;
             r.dmMediaType = 300;
             SetBitmap(r, u"C:\\w\\color.wm");
         }},
        {"an image printer keeps a watermark's name", KIND_IMAGE, CLASS_COLOR, 1, false,
         [](DriverDevmode& r) { SetBitmap(r, u"C:\\w\\mono.wm"); },
         [](DriverDevmode& r) {
             r.dmFields &= ~0x02000000u;
             SetBitmap(r, u"C:\\w\\mono.wm");
             r.rPrivate.ulLanguageFeatures |= 1;
         }},
        {"an image printer without colour has no overlays", KIND_IMAGE, 1, 1, false,
         [](DriverDevmode& r) { r.dmFields |= 0x03800000; }, [](DriverDevmode&) {}},
    };
    for (const auto& model : aModels) {
        Use(model.usKind, model.usClass, model.ulOptions, model.bCollate, 1);
        EXPECT_EQ(FirstDifference(Merged(Changed(good, model.in)), Changed(good, model.merged)), -1)
            << model.cName;
    }
}

TEST_F(MergeTest, TheSourceIsTheCallersOrThePrintersDefault)
{
    Use(KIND_PCL6, CLASS_COLOR, 3);
    DriverDevmode standard, base = Merged(good);
    {
        PrinterCall call(hPrinter);
        ASSERT_EQ(FindPrinterDefaults(call, &standard), DEFAULT_BUILT);
    }
    DriverDevmode fitted = Merged(good, COPY);
    EXPECT_EQ(fitted.dmCopies, standard.dmCopies);
    EXPECT_STREQ(fitted.rPrivate.cStartJobPJL, standard.rPrivate.cStartJobPJL);
    DriverDevmode out = Filled();
    EXPECT_EQ(Call(nullptr, &out, MODIFY | COPY), 1);
    EXPECT_EQ(FirstDifference(out, fitted), -1) << "no record is no source";

    DriverDevmode in = good;
    in.dmCopies = 7;
    in.rPrivate.sContrast = 51;
    out = Merged(in);
    EXPECT_EQ(out.dmCopies, 7) << "a bad private part is replaced alone";
    EXPECT_TRUE(SameBytes(out.rPrivate, standard.rPrivate));
    in.dmSpecVersion = 1024;
    EXPECT_EQ(FirstDifference(Merged(in), fitted), -1) << "a bad public part takes all with it";

    /* Repairs are the caller's as well; without a mode that writes nothing else happens. */
    in = good;
    in.dmScale = 50;
    in.dmSize = 4088;
    in.dmDriverExtra = 0;
    out = Filled();
    EXPECT_EQ(Call(&in, &out, MODIFY), 1);
    EXPECT_EQ(FirstDifference(in, good), -1);
    EXPECT_EQ(FirstDifference(out, Filled()), -1);
    EXPECT_EQ(Call(&in, &out, MODIFY | COPY, RECORD_SIZE - 1), 1);
    EXPECT_EQ(FirstDifference(out, Filled()), -1);

    /* One buffer for both, and buffers that overlap on either side. */
    std::vector<u8> room(2 * RECORD_SIZE);
    for (int nShift : {0, 1, 72, 220, -1, -220, -4000}) {
        u8* pIn = room.data() + (nShift < 0 ? -nShift : 0);
        std::memcpy(pIn, &good, sizeof good);
        Call(reinterpret_cast<DriverDevmode*>(pIn), pIn + nShift, MODIFY | COPY);
        std::memcpy(static_cast<void*>(&out), pIn + nShift, sizeof out);
        EXPECT_EQ(FirstDifference(out, base), -1) << nShift;
    }
    /* Without a handle the printer of that name is asked, as the system does before the printer is there for all. */
    const HANDLE hOpen = hPrinter;
    for (HANDLE hNone : {HANDLE{nullptr}, INVALID_HANDLE_VALUE}) {
        hPrinter = hNone;
        const int nOpen = CountLive().nPrinters;
        out = Filled();
        EXPECT_EQ(Call(nullptr, &out, COPY), 1);
        EXPECT_EQ(FirstDifference(out, fitted), -1);
        EXPECT_EQ(CountLive().nPrinters, nOpen);
    }
    hPrinter = hOpen;
    /* No printer, no description, none that can be read. */
    const WideText wcKnown = wcPrinter;
    for (int nCase = 0; nCase < 3; nCase++) {
        if (nCase == 0) {
            hPrinter = nullptr;
            wcPrinter = u"No such printer";
        }
        if (nCase) {
            PutFile(u"C:\\drv\\qa.xpi", "");
        }
        if (nCase == 2) {
            std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
        }
        for (DriverDevmode* pIn : {&in, static_cast<DriverDevmode*>(nullptr)}) {
            out = Filled();
            EXPECT_EQ(Call(pIn, &out, MODIFY | COPY), 1);
            EXPECT_EQ(FirstDifference(out, Filled()), -1) << nCase;
        }
        hPrinter = hOpen;
        wcPrinter = wcKnown;
    }
}

TEST_F(MergeTest, ForeignRecordsGiveTheirBasicFields)
{
    Use(KIND_PCL6, CLASS_COLOR, 3);
    DriverDevmode in = Filled();
    in.dmSize = 220;
    in.dmDriverExtra = 0;
    in.dmOrientation = 2;
    in.dmPaperSize = 8;
    in.dmCopies = 3;
    in.dmDefaultSource = 261;
    in.dmCollate = 1;
    for (DWORD dwMode : {MODIFY, MODIFY | COPY}) {
        DriverDevmode expected = Changed(Filled(), [](DriverDevmode& r) {
            r.dmFields = 0x8B0F;
            r.dmOrientation = 2;
            r.dmPaperSize = 8;
            r.dmPaperWidth = 2970;
            r.dmPaperLength = 4200;
            r.dmCopies = 3;
            r.dmDefaultSource = 261;
            r.dmCollate = 1;
            r.dmColor = 2;
        });
        EXPECT_EQ(FirstDifference(Merged(in, dwMode), expected), -1) << dwMode;
    }
    /* Every size that a record can claim, none of its bytes behind that to be touched; one that ends in front of
       a field has none. */
    GuardedPages pages;
    for (u32 cb = 0; cb < RECORD_SIZE; cb++) {
        in.dmSize = static_cast<u16>(cb < 220 ? cb : 220);
        in.dmDriverExtra = static_cast<u16>(cb - in.dmSize);
        DriverDevmode* pIn = pages.Place(in, cb < 72 ? 72 : cb);
        DriverDevmode out = Filled(), before;
        out.dmColor = 1;
        size_t cbIn = cb < 72 ? 72 : cb;
        std::memcpy(static_cast<void*>(&before), pIn, cbIn);
        ASSERT_EQ(Call(pIn, &out, MODIFY | COPY), 1);
        ASSERT_EQ(std::memcmp(&before, pIn, cbIn), 0) << cb;
        ASSERT_EQ(out.dmCopies, cb < 88 ? 1 : 3) << cb;
        ASSERT_EQ(out.dmPaperSize, cb < 80 ? 1 : 8) << cb;
        ASSERT_EQ(out.dmOrientation, cb < 78 ? 1 : 2) << cb;
        ASSERT_EQ(out.dmDefaultSource, cb < 90 ? 1025 : 261) << cb;
        ASSERT_EQ(out.dmCollate, cb < 102 ? 0 : 1) << cb;
        ASSERT_EQ(out.dmColor, 1) << cb;
    }
    in.dmCollate = 2;
    in.dmOrientation = 3;
    in.dmCopies = -4;
    in.dmPaperSize = -8;
    DriverDevmode out = Merged(in);
    EXPECT_EQ(out.dmCollate, 0);
    EXPECT_EQ(out.dmOrientation, 1);
    EXPECT_EQ(out.dmCopies, 1);
    EXPECT_EQ(out.dmPaperSize, 1);
    Use(KIND_PCL6, 1, 3);
    EXPECT_EQ(Merged(in).dmFields, 0x830Fu);
    EXPECT_EQ(Merged(in).dmColor, 0x7777);

    /* Sizes whose sum is a record's, but not in its two forms: the printer's default. */
    DriverDevmode fitted = Merged(good, COPY);
    for (auto [usSize, usExtra] : {std::pair<u16, u16>{219, 3869},
                                   {221, 3867},
                                   {0, 4088},
                                   {4087, 1},
                                   {220, 65535},
                                   {65535, 65535},
                                   {4088, 1},
                                   {220, 3869}}) {
        DriverDevmode lies = good;
        lies.dmSize = usSize;
        lies.dmDriverExtra = usExtra;
        EXPECT_EQ(FirstDifference(Merged(*pages.Place(lies, RECORD_SIZE)), fitted), -1) << usSize;
    }
}

/* Another thread may change a record under us: what was checked is what is used. */
TEST_F(MergeTest, SizesAndFieldsAreReadOnce)
{
    Use(KIND_PCL6, CLASS_COLOR, 3);
    auto pIn = std::make_unique<DriverDevmode>(good);
    std::atomic<bool> bStop = false;
    std::thread changer([&] {
        volatile u16* pSizes = reinterpret_cast<volatile u16*>(reinterpret_cast<u8*>(pIn.get()) + 68);
        volatile u16* pPaper = reinterpret_cast<volatile u16*>(reinterpret_cast<u8*>(pIn.get()) + 78);
        for (u16 us = 0; !bStop; us++) {
            pSizes[0] = us % 3 ? 220 : 65535;
            pSizes[1] = us % 5 ? 3868 : 0;
            pPaper[0] = us % 2 ? 8 : 9;
        }
    });
    for (int i = 0; i < 300; i++) {
        DriverDevmode out = Filled();
        Call(pIn.get(), &out, MODIFY | COPY);
        int nPaper = out.dmPaperSize;
        int nWidth = out.dmPaperWidth;
        EXPECT_TRUE((nPaper == 8 && nWidth == 2970) || (nPaper == 9 && nWidth == 2100) ||
                    (nPaper == 1 && nWidth == 2159))
            << nPaper << " is " << nWidth << " wide";
    }
    bStop = true;
    changer.join();
}
