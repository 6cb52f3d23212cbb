/* The merge through the document property calls: which source is taken, what is written, and each step of the
   fitting, held against the whole record. */
#include "document/merge.h"

#include <atomic>
#include <thread>

#include "document/defaults.h"
#include "entry/exports.h"
#include "settings/check_support.h"
#include "support/guarded_pages.h"
#include "support/record_changes.h"
#include "support/well_formed.h"

namespace {

constexpr DWORD UPDATE = 1, COPY = 2, MODIFY = 8;

DriverDevmode Filled()
{
    DriverDevmode record;
    std::memset(static_cast<void*>(&record), 0x77, sizeof record);
    return record;
}

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
                "[Watermarks]\r\nNumWatermarks=3\r\n"
                "WMType0=2\r\nWMString0=a\r\nWMImageName0=C:\\w\\a.bmp\r\nWMFileName0=C:\\w\\mono.wm\r\n"
                "WMColorFile0=C:\\w\\color.wm\r\nWMResolution0=600\r\nWMWidth0=10\r\nWMHeight0=10\r\n"
                "WMType1=2\r\nWMString1=b\r\nWMImageName1=C:\\w\\b.bmp\r\nWMFileName1=C:\\w\\only.wm\r\n"
                "WMResolution1=600\r\nWMWidth1=10\r\nWMHeight1=10\r\n"
                "WMType2=2\r\nWMString2=c\r\nWMImageName2=C:\\w\\c.bmp\r\nWMFileName2=m\r\nWMColorFile2=c\r\n"
                "WMResolution2=600\r\nWMWidth2=10\r\nWMHeight2=10\r\n");
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
        return DrvDocumentPropertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
    }

    DriverDevmode Merged(DriverDevmode in, DWORD dwMode = MODIFY | COPY)
    {
        DriverDevmode out = Filled();
        EXPECT_EQ(Call(&in, &out, dwMode), 1);
        return out;
    }
};

/* Each row of the oracle in every mode that writes; what is settled stays settled. */
TEST_F(MergeTest, EachStepAndWhatAPrinterDoesNotHave)
{
    DriverDevmode base = good;
    for (const DataRow& row : ReadRows("merge.txt")) {
        if (row.size() == 1) {
            unsigned nKind = 0, nClass = 0, nOptions = 0, nFeatures = 0;
            ASSERT_EQ(std::sscanf(row[0].c_str(), "kind %u class %u options %u features %u", &nKind, &nClass,
                                  &nOptions, &nFeatures),
                      4);
            Use(static_cast<u16>(nKind), static_cast<u16>(nClass), nOptions,
                row[0].find(" with a collate command") != std::string::npos, nFeatures);
            base = good;
            continue;
        }
        ASSERT_EQ(row.size(), 3u) << row[0];
        const DriverDevmode in = Changed(good, row[1]), expected = Changed(base, row[2]);
        for (DWORD dwMode : {MODIFY | COPY, MODIFY | UPDATE, MODIFY | COPY | UPDATE}) {
            EXPECT_EQ(Changes(expected, Merged(in, dwMode)), "") << row[0];
        }
        EXPECT_EQ(Changes(expected, Merged(expected)), "") << row[0] << ": settled is settled";
        base = row[0] == "nothing" ? expected : base;
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
    FailCall(CALL_GetPrinterW, 1, FAIL_FROM_THERE);
    EXPECT_EQ(FirstDifference(Merged(in), Filled()), -1) << "no default to replace it, so nothing is written";
    EXPECT_GT(StopFaults(), 0);

    /* Repairs are the caller's as well; without a mode that writes nothing else happens. */
    in = Changed(good, "dmScale=50 dmSize=4088 dmDriverExtra=0");
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
    const WideText wcKnown = std::exchange(wcPrinter, u"No such printer");
    hPrinter = nullptr;
    auto expectNothing = [&](const char* cWhat) {
        for (DriverDevmode* pIn : {&in, static_cast<DriverDevmode*>(nullptr)}) {
            out = Filled();
            EXPECT_EQ(Call(pIn, &out, MODIFY | COPY), 1);
            EXPECT_EQ(FirstDifference(out, Filled()), -1) << cWhat;
        }
    };
    expectNothing("no printer");
    hPrinter = hOpen;
    wcPrinter = wcKnown;
    PutFile(u"C:\\drv\\qa.xpi", "");
    expectNothing("an empty description");
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    expectNothing("no description");
}

TEST_F(MergeTest, ForeignRecordsGiveTheirBasicFields)
{
    Use(KIND_PCL6, CLASS_COLOR, 3);
    const std::string given = "dmOrientation=2 dmPaperSize=8 dmCopies=3 dmDefaultSource=261 dmCollate=1";
    DriverDevmode in = Changed(Filled(), "dmSize=220 dmDriverExtra=0 " + given);
    for (DWORD dwMode : {MODIFY, MODIFY | COPY}) {
        const DriverDevmode expected =
            Changed(Filled(), "dmFields=0x8B0F dmPaperWidth=2970 dmPaperLength=4200 dmColor=2 " + given);
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
    in = Changed(in, "dmCollate=2 dmOrientation=3 dmCopies=-4 dmPaperSize=-8");
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
